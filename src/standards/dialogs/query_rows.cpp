#include "standards/dialogs/query_rows.h"

#include "bridge/marshal_variants.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "standards/layer_rules.h"
#include "standards/record_columns.h"

namespace sg {

QueryRows::QueryRows(CDBConnection& connection, const std::wstring& sql) {
    if (!select(connection, sql, items_)) return;
    const auto items = items_.Variants();
    // A row is its mark, and then names and values.
    for (size_t i = 0; i < items.size(); i += isNewRecordMarker(items[i]) ? 1 : 2) {
        if (isNewRecordMarker(items[i])) starts_.push_back(i + 1);
    }
}

const VARIANT& QueryRows::value(size_t row, const wchar_t* column) const {
    static const COleVariant none;
    const auto items = items_.Variants();
    const size_t end = row + 1 < starts_.size() ? starts_[row + 1] - 1 : items.size();
    for (size_t i = starts_[row]; i + 1 < end; i += 2) {
        if (variantText(items[i]) == column) return items[i + 1];
    }
    return none;
}

bool select(CDBConnection& connection, const std::wstring& sql, COleSafeArray& rows) {
    if (connection.ExecuteSelect(sql, rows)) return true;
    reportDialogDatabaseError(&connection);
    return false;
}

std::wstring shownValue(const VARIANT& value, int digits) {
    switch (value.vt) {
        case VT_EMPTY:
        case VT_NULL:
            return {};
        case VT_BSTR:
            return std::wstring(variantText(value));
        case VT_BOOL:
            return columnValue(value, false) ? L"1" : L"0";
        case VT_R4:
        case VT_R8:
            return fixedNumber(columnValue(value, 0.0), digits);
        default:
            return std::to_wstring(columnValue(value, int32_t{}));
    }
}

bool execute(CDBConnection& connection, const std::wstring& sql) {
    if (connection.ExecuteAction(sql)) return true;
    reportDialogDatabaseError(&connection);
    return false;
}

}  // namespace sg
