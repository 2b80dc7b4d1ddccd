#include "app/browse/table_rows.h"

#include <utility>

#include "app/shown_value.h"
#include "host/jet/values/value_convert.h"

namespace sg::app {
namespace {

jet::Database& homeOf(jet::Database& database, std::wstring& table) {
    return database.home(table);
}

}  // namespace

TableRows::TableRows(jet::Database& database, std::wstring table)
    : rows_(homeOf(database, table), table, database.isReadOnly()) {}

bool TableRows::CanWrite(size_t column) const {
    const jet::Column& definition = rows_.columnDefinition(column);
    switch (definition.type) {
        case jet::ColumnType::Binary:
        case jet::ColumnType::Ole:
        case jet::ColumnType::Complex:
            return false;
        default:
            return !rows_.isReadOnly() && !definition.isAutoNumber() && !definition.isCalculated();
    }
}

bool TableRows::ReadNext(std::vector<std::wstring>& texts) {
    if (!std::exchange(hasBegun_, true)) {
        rows_.moveFirst();
    } else {
        rows_.move(1);
    }
    if (rows_.isEof()) return false;
    bookmarks_.push_back(rows_.bookmark());
    texts.resize(Columns().size());
    for (size_t column = 0; column < texts.size(); ++column)
        texts[column] = shownValue(rows_.value(column));
    return true;
}

std::wstring TableRows::Write(size_t row, size_t column, const std::wstring& text) {
    rows_.setBookmark(bookmarks_.at(row));
    try {
        rows_.edit();
        rows_.setValue(column, text.empty() ? jet::Value() : jet::Value(text));
        rows_.update();
    } catch (...) {
        if (rows_.editMode() != jet::EditMode::None) rows_.cancelUpdate();
        throw;
    }
    rows_.setBookmark(bookmarks_[row]);
    return shownValue(rows_.value(column));
}

SortKey sortKey(const std::wstring& text, jet::ColumnType type) {
    SortKey key;
    key.isNull = text.empty();
    if (key.isNull) return key;
    if (isNumber(type)) {
        jet::toDouble(jet::Value(text), key.number);
        return key;
    }
    key.text = text;
    const bool isText = type == jet::ColumnType::Text || type == jet::ColumnType::Memo;
    if (isText && !jet::appendTextKey(jet::TextOrder::GeneralLegacy, text, false, key.bytes)) {
        key.bytes = {0xFF};
    }
    return key;
}

int compare(const SortKey& a, const SortKey& b) {
    if (a.isNull != b.isNull) return a.isNull ? -1 : 1;
    if (a.number != b.number) return a.number < b.number ? -1 : 1;
    if (a.bytes != b.bytes) return a.bytes < b.bytes ? -1 : 1;
    return a.text.compare(b.text);
}

}  // namespace sg::app
