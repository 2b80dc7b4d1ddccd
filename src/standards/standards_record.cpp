#include "standards/standards_record.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "database/connection.h"
#include "database/database_error.h"

namespace sg {

StandardsRecord::StandardsRecord(bool flag, CDBConnection* connection, const wchar_t* table,
                                 const wchar_t* idColumn)
    : flag_(flag), connection_(connection), table_(table), idColumn_(idColumn) {}

// --- the connection ---

bool StandardsRecord::report(bool done) {
    if (!done && flag_) reportDialogDatabaseError(connection_);
    return done;
}

bool StandardsRecord::select(const std::wstring& index) {
    return connection_ != nullptr && report(connection_->OpenTable(table_, index));
}

bool StandardsRecord::took(bool done, const COleSafeArray& row) {
    if (report(done)) read(row);
    return done;
}

void StandardsRecord::read(const COleSafeArray& row) {
    const auto items = row.Variants();
    for (size_t i = 0; i + 1 < items.size(); i += 2) {
        const std::wstring_view name = variantText(items[i]);
        for (RecordColumn* const column : columns_) {
            if (name == column->name()) column->read(items[i + 1]);
        }
    }
}

// The id's column is the first of every table.
int32_t StandardsRecord::id() const {
    return columnValue(columns_.front()->toVariant(), int32_t{});
}

void StandardsRecord::forgetTable() {
    if (connection_ == nullptr) return;
    connection_->CloseNamedTable(table_);
    filtered_.reset();
}

bool StandardsRecord::setIndex(const std::wstring& name) {
    return select(name);
}

// --- the cursor ---

bool StandardsRecord::setFilter(const std::wstring& condition, const std::wstring& order) {
    if (connection_ == nullptr) return false;
    if (condition.empty() && order.empty()) {
        filtered_.reset();
        return true;
    }
    std::wstring sql = std::wstring(L"SELECT [") + idColumn_ + L"] FROM [" + table_ + L"]";
    if (!condition.empty()) sql += L" WHERE " + condition;
    if (!order.empty()) sql += L" ORDER BY " + order;
    COleSafeArray rows;
    if (!report(connection_->ExecuteSelect(sql, rows))) return false;
    filtered_.emplace();
    filteredAt_ = 0;
    for (const COleVariant& row : rows.Variants())
        filtered_->push_back(columnValue(row, int32_t{}));
    return true;
}

bool StandardsRecord::isBof() {
    if (connection_ == nullptr) return true;
    if (filtered_) return filteredAt_ < 0 || filtered_->empty();
    return select(L"") && connection_->IsBOF();
}

bool StandardsRecord::isEof() {
    if (connection_ == nullptr) return true;
    if (filtered_) return filteredAt_ >= std::ssize(*filtered_);
    return select(L"") && connection_->IsEOF();
}

template <class Move>
bool StandardsRecord::moveTo(const Move& move) {
    COleSafeArray row;
    return select(L"") && took(move(*connection_, row), row);
}

// To the row at a position, or where that one has been deleted since, to the next one in the
// direction of `step`.
bool StandardsRecord::moveToFiltered(ptrdiff_t position, ptrdiff_t step) {
    const ptrdiff_t count = std::ssize(*filtered_);
    filteredAt_ = std::clamp<ptrdiff_t>(position, -1, count);
    for (; filteredAt_ >= 0 && filteredAt_ < count; filteredAt_ += step) {
        if (seekId((*filtered_)[static_cast<size_t>(filteredAt_)])) return true;
    }
    return false;
}

bool StandardsRecord::moveFirst() {
    if (filtered_) return moveToFiltered(0, 1);
    return moveTo(
        [](CDBConnection& connection, COleSafeArray& row) { return connection.Top(row); });
}

bool StandardsRecord::moveNext() {
    if (filtered_) return moveToFiltered(filteredAt_ + 1, 1);
    return moveTo(
        [](CDBConnection& connection, COleSafeArray& row) { return connection.Skip(1, row); });
}

bool StandardsRecord::moveToLast() {
    if (filtered_) return moveToFiltered(std::ssize(*filtered_) - 1, -1);
    return moveTo(
        [](CDBConnection& connection, COleSafeArray& row) { return connection.Bottom(row); });
}

bool StandardsRecord::seekId(int32_t wanted) {
    COleSafeArray row;
    return select(idColumn_) &&
           took(connection_->SeekOne(COleVariant::fromInt32(wanted), row), row);
}

bool StandardsRecord::seekOn(const wchar_t* index, const std::wstring& text) {
    COleSafeArray row;
    return select(index) && took(connection_->SeekOne(COleVariant::fromString(text), row), row);
}

bool StandardsRecord::seekOn(const wchar_t* index, const COleVariant& key1,
                             const std::wstring& key2) {
    COleSafeArray row;
    return select(index) &&
           took(connection_->SeekTwo(key1, COleVariant::fromString(key2), row), row);
}

// --- writing ---

bool StandardsRecord::deleteCurrent() {
    COleSafeArray row;
    return select(idColumn_) && report(connection_->SeekOne(COleVariant::fromInt32(id()), row)) &&
           report(connection_->DeleteRecord());
}

void StandardsRecord::clearChanged() {
    for (RecordColumn* const column : columns_)
        column->changed_ = false;
}

void StandardsRecord::addNew() {
    isNew_ = true;
    isEdited_ = false;
    clearChanged();
}

void StandardsRecord::edit() {
    isNew_ = false;
    isEdited_ = true;
    editedId_ = id();
    clearChanged();
}

std::vector<COleVariant> StandardsRecord::changes() const {
    std::vector<COleVariant> pairs;
    for (const RecordColumn* const column : columns_) {
        const bool isIdOfNew = isNew_ && column == columns_.front();
        if (!column->isChanged() || isIdOfNew) continue;
        pairs.push_back(COleVariant::fromString(column->name()));
        pairs.push_back(column->toVariant());
    }
    return pairs;
}

bool StandardsRecord::write(const COleSafeArray& pairs) {
    COleSafeArray written;
    if (isNew_) return select(idColumn_) && took(connection_->Append(pairs, 0, written), written);
    return isEdited_ && seekId(editedId_) && took(connection_->Replace(pairs, written), written);
}

bool StandardsRecord::save() {
    if (connection_ == nullptr) return false;
    std::vector<COleVariant> pairs = changes();
    if (pairs.empty()) return true;
    COleSafeArray array;
    array.CreateFromVariants(std::move(pairs));
    const bool written = write(array);
    isNew_ = false;
    isEdited_ = false;
    clearChanged();
    return written;
}

}  // namespace sg
