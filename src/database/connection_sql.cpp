// SQL through a connection.

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "bridge/marshal_variants.h"
#include "database/connection.h"
#include "platform/dao/query_def.h"

namespace sg {
namespace {

std::vector<COleVariant> fieldNames(CDaoRecordset& rows) {
    std::vector<COleVariant> names;
    const int count = rows.GetFieldCount();
    CDaoFieldInfo info;
    for (int field = 0; field < count; ++field) {
        rows.GetFieldInfo(field, info, AFX_DAO_PRIMARY_INFO);
        names.push_back(COleVariant::fromString(info.m_strName));
    }
    return names;
}

std::vector<COleVariant> onlyColumn(CDaoRecordset& rows) {
    std::vector<COleVariant> values;
    values.reserve(static_cast<size_t>(rows.GetRecordCount()));
    for (; !rows.IsEOF(); rows.MoveNext())
        values.push_back(rows.GetFieldValue(0));
    return values;
}

std::vector<COleVariant> allRecords(CDaoRecordset& rows, const std::vector<COleVariant>& names) {
    const COleVariant newRecord = COleVariant::fromString(kNewRecordMarker);
    std::vector<COleVariant> items;
    items.reserve(static_cast<size_t>(rows.GetRecordCount()) * (1 + 2 * names.size()));
    for (; !rows.IsEOF(); rows.MoveNext()) {
        items.push_back(COleVariant::sharing(newRecord));
        for (size_t field = 0; field < names.size(); ++field) {
            items.push_back(COleVariant::sharing(names[field]));
            items.push_back(rows.GetFieldValue(static_cast<int>(field)));
        }
    }
    return items;
}

// The rows of an open query.
void collectRows(CDaoDatabase& database, CDaoQueryDef& query, COleSafeArray& out) {
    out.Clear();
    CDaoRecordset rows(&database);
    rows.Open(&query, dbOpenSnapshot);
    if (!rows.IsEOF() || !rows.IsBOF()) {
        const std::vector<COleVariant> names = fieldNames(rows);
        out.CreateFromVariants(names.size() == 1 ? onlyColumn(rows) : allRecords(rows, names));
    }
    rows.Close();
    query.Close();
}

bool namesAndValuesAlternate(std::span<const COleVariant> items) {
    for (size_t i = 0; i < items.size(); i += 2) {
        if (items[i].vt != VT_BSTR) return false;
    }
    return items.size() % 2 == 0;
}

void setParameters(CDaoQueryDef& query, std::span<const COleVariant> items) {
    for (size_t i = 0; i + 1 < items.size(); i += 2)
        query.SetParamValue(std::wstring(variantText(items[i])), items[i + 1]);
}

}  // namespace

bool CDBConnection::ExecuteSelect(const std::wstring& sql, COleSafeArray& rows) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoQueryDef query(&database_);
               query.Create(L"", sql);
               collectRows(database_, query, rows);
               return true;
           });
}

bool CDBConnection::RunQuery(const std::wstring& name, const COleSafeArray& parameters,
                             COleSafeArray& rows) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoQueryDef query(&database_);
               query.Open(name);
               if (!namesAndValuesAlternate(parameters.Variants())) return false;
               setParameters(query, parameters.Variants());
               collectRows(database_, query, rows);
               return true;
           });
}

bool CDBConnection::ExecuteAction(const std::wstring& sql) {
    int32_t count = 0;
    return ExecuteActionCount(sql, count);
}

bool CDBConnection::ExecuteActionCount(const std::wstring& sql, int32_t& count) {
    clearError();
    return canUpdate() && capture([&] {
               CDaoQueryDef query(&database_);
               query.Create(L"", sql);
               query.Execute(dbFailOnError);
               count = query.GetRecordsAffected();
               query.Close();
               return true;
           });
}

bool CDBConnection::SetQuerySql(const std::wstring& name, const std::wstring& sql) {
    clearError();
    return IsOpen() && capture([&] {
               CDaoQueryDef query(&database_);
               query.Open(name);
               query.SetSQL(sql);
               query.Close();
               return true;
           });
}

}  // namespace sg
