#pragma once

#include <memory>
#include <string>

#include "base/export.h"
#include "platform/dao/database.h"

// A query that a database keeps, or a temporary one.
class SG_API CDaoQueryDef {
  public:
    // It can be used as long as the database stays open.
    explicit CDaoQueryDef(CDaoDatabase* database);
    virtual ~CDaoQueryDef();
    CDaoQueryDef(const CDaoQueryDef&) = delete;
    CDaoQueryDef& operator=(const CDaoQueryDef&) = delete;

    // A temporary query has the name "".
    virtual void Create(const std::wstring& name = {}, const std::wstring& sql = {});
    // A stored one. Throws 3265.
    virtual void Open(const std::wstring& name);
    virtual void Close();
    bool IsOpen() const;

    std::wstring GetName() const;
    std::wstring GetSQL() const;

    CDaoDatabase* m_pDatabase;

  private:
    struct State;

    std::shared_ptr<sg::dao::DatabaseSession> session_;  // of m_pDatabase
    std::unique_ptr<State> state_;
};
