#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/export.h"
#include "platform/dao/database.h"

// The definition of a table: of a new one between Create and Append, or of one that is there after
// Open.
class SG_API CDaoTableDef {
  public:
    // It can be used as long as the database stays open.
    explicit CDaoTableDef(CDaoDatabase* database);
    virtual ~CDaoTableDef();
    CDaoTableDef(const CDaoTableDef&) = delete;
    CDaoTableDef& operator=(const CDaoTableDef&) = delete;

    // Begins a new table, or with `connect` (";DATABASE=path") a link to the table `sourceTable`
    // of another file.
    virtual void Create(const std::wstring& name, int32_t attributes = 0,
                        const std::wstring& sourceTable = {}, const std::wstring& connect = {});
    // Puts the new table with its fields and indexes into the database. Throws 3010 when a table
    // has the name already, 3012 when a query has it, 3125 for what is no name, 3264 when it has no
    // fields, 3090 for two counters, 3409 for an index over a field that is not there, 3367 when it
    // has been appended; for a link also what RefreshLink throws.
    virtual void Append();
    // Throws 3265 when there is no table or link of this name.
    virtual void Open(const std::wstring& name);
    virtual void Close();
    bool IsOpen() const;

    std::wstring GetName() const;
    // Renames the table; relations follow. Throws 3010, 3012, 3125; 3211 while a recordset of this
    // database is open on it.
    void SetName(const std::wstring& name);
    int32_t GetAttributes() const;
    std::wstring GetConnect() const;
    void SetConnect(const std::wstring& connect);  // in effect after RefreshLink or Append
    std::wstring GetSourceTableName() const;
    // Looks that the file and the table that a link names are there: 3024, 3044 or 3011 when not;
    // 3321 when it names no file, 3219 for a table that is no link.
    void RefreshLink();
    // -1 for a linked table.
    int32_t GetRecordCount();

    // Adds a field; to an open table at once, in which every record then has Null in it, or its
    // number. Throws 3191 (twice in a new table), 3380 (there already), 3259 for a type that can't
    // be made, 3382 for a text that is too long. Recordsets that are open on the table follow.
    void CreateField(const std::wstring& name, int16_t type, int32_t size, int32_t attributes = 0);
    void CreateField(CDaoFieldInfo& info);
    // Throws 3265; 3280 when an index has it, 3303 when a relation names it.
    void DeleteField(const std::wstring& name);
    int16_t GetFieldCount();
    void GetFieldInfo(int index, CDaoFieldInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetFieldInfo(const std::wstring& name, CDaoFieldInfo& info,
                      uint32_t level = AFX_DAO_PRIMARY_INFO);

    // Adds an index in the same way. Throws 3284 when there is one of the name, 3283 for a second
    // primary key, 3022 when it is unique and records have equal keys.
    void CreateIndex(CDaoIndexInfo& info);
    // Throws 3265; 3281 when a relation needs it.
    void DeleteIndex(const std::wstring& name);
    // The ends of relations, which programs cannot use, are among them with m_bForeign.
    int16_t GetIndexCount();
    void GetIndexInfo(int index, CDaoIndexInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetIndexInfo(const std::wstring& name, CDaoIndexInfo& info,
                      uint32_t level = AFX_DAO_PRIMARY_INFO);

    CDaoDatabase* m_pDatabase;

  private:
    struct State;

    State& opened() const;

    std::shared_ptr<sg::dao::DatabaseSession> session_;  // of m_pDatabase
    std::unique_ptr<State> state_;
};
