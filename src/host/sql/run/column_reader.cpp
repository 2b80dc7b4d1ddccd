#include "host/sql/run/column_reader.h"

#include <string_view>

#include "host/jet/values/text_codec.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/text_order.h"

namespace sg::sql {
namespace {

bool isText(const jet::RowCursor& rows, size_t column) {
    return rows.table().definition().columns[column].isText() && !rows.isNull(column);
}

std::string_view textOf(const jet::RowCursor& rows, size_t column, std::string& buffer) {
    return jet::decodeTextUtf8(rows.content(column), rows.table().store().format(), buffer);
}

}  // namespace

void ColumnReader::answer(sqlite3_context* context, const jet::RowCursor& rows, size_t column) {
    if (isText(rows, column)) {
        const std::string_view text = textOf(rows, column, text_);
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
        return;
    }
    rows.value(column, value_);
    sql::answer(context, value_);
}

std::optional<uint64_t> ColumnReader::hash(const jet::RowCursor& rows, size_t column) {
    if (isText(rows, column)) {
        return hashOf(textOf(rows, column, text_));
    }
    rows.value(column, value_);
    return hashOf(value_);
}

}  // namespace sg::sql
