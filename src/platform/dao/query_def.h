#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/export.h"
#include "platform/dao/database.h"
#include "platform/variant/ole_variant.h"

namespace sg::dao {
class OpenQuery;
}

// A query that a database keeps, or a temporary one. To be opened as a recordset, or executed.
//
//     CDaoQueryDef query(&database);
//     query.Open(L"Rooms of a level");
//     query.SetParamValue(L"which", level);
//     CDaoRecordset rows(&database);
//     rows.Open(&query, dbOpenSnapshot);
class SG_API CDaoQueryDef {
  public:
    // It can be used as long as the database stays open.
    explicit CDaoQueryDef(CDaoDatabase* database);
    virtual ~CDaoQueryDef();
    CDaoQueryDef(const CDaoQueryDef&) = delete;
    CDaoQueryDef& operator=(const CDaoQueryDef&) = delete;

    // A new query, which is open then. Without a name it is temporary; with one it can be appended
    // to the database. `sql` may be given later; what is wrong in it throws the engine's number of
    // the clause (3075, 3129, 3131...).
    virtual void Create(const std::wstring& name = {}, const std::wstring& sql = {});
    // The database keeps a created query from now on. Throws 3012 when it has a query of the name,
    // 3010 for a table; 3125 without a name that a query can have, 3129 without a text, 3367 for a
    // query that it keeps already, and 3027 in a database that is only read.
    virtual void Append();
    // A stored one. Throws 3265.
    virtual void Open(const std::wstring& name);
    virtual void Close();
    bool IsOpen() const;

    // "" of a temporary query, and of one that is not open.
    std::wstring GetName() const;
    // Renames a stored query in the database at once: throws 3012, 3010, 3125, 3027 then.
    void SetName(const std::wstring& name);
    // Of a stored one as its file tells it, which need not be as it was written.
    std::wstring GetSQL() const;
    // Into the file at once when the query is stored. Throws what is wrong in the text, and 3027 in
    // a database that is only read; the query stays as it was then. Values of parameters are
    // forgotten.
    void SetSQL(const std::wstring& sql);
    // dbQSelect ... dbQSetOperation.
    int16_t GetType();
    // Whether name and text of a stored query can be changed; of another one it is true.
    bool CanUpdate() const;

    // Those that the text declares, in its order, then those that it uses without declaring them:
    // these take any value and are told as dbText. Tables that the text names must be there (3078).
    int16_t GetParameterCount();
    // By place, from 0 on, or by name, in which case and brackets do not matter. These throw 3265.
    void GetParameterInfo(int index, CDaoParameterInfo& info,
                          uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetParameterInfo(const std::wstring& name, CDaoParameterInfo& info,
                          uint32_t level = AFX_DAO_PRIMARY_INFO);
    // VT_EMPTY where none was set.
    COleVariant GetParamValue(const std::wstring& name);
    COleVariant GetParamValue(int index);
    // Converts the value to the type that is declared; 3421 when it can't. What has no value when
    // the query is opened or executed throws 3061 there.
    void SetParamValue(const std::wstring& name, const COleVariant& value);
    void SetParamValue(int index, const COleVariant& value);

    // The columns of the rows that it gives; 0 of an action.
    int16_t GetFieldCount();
    // As of a recordset.
    void GetFieldInfo(int index, CDaoFieldInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetFieldInfo(const std::wstring& name, CDaoFieldInfo& info,
                      uint32_t level = AFX_DAO_PRIMARY_INFO);

    // Runs an action, as CDaoDatabase::Execute does. Throws 3251 for a pass-through query.
    virtual void Execute(int32_t options = dbFailOnError);
    // By the last Execute.
    int32_t GetRecordsAffected();

    CDaoDatabase* m_pDatabase;

    // What stands behind it. Throws 3420 unless it is open.
    sg::dao::OpenQuery& opened() const;

  private:
    std::shared_ptr<sg::dao::DatabaseSession> session_;  // of m_pDatabase
    std::unique_ptr<sg::dao::OpenQuery> query_;
};
