#include <limits>
#include <utility>

#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/packed_rows.h"
#include "host/jet/recordset/record_columns.h"
#include "host/jet/recordset/recordset.h"

namespace sg::jet {
namespace {

constexpr int64_t beforeFirst = -1;
constexpr int64_t behindLast = std::numeric_limits<int64_t>::max();
constexpr size_t bookmarkSize = 4;  // the row's number

// A table's values take about as much room as its pages, and no more than a few times that
// whatever their types; what is far beyond it was found again and again on the same pages.
constexpr uint64_t sharesOfFile = 8;
constexpr uint64_t leastLimit = uint64_t(1) << 20;

}  // namespace

struct SnapshotRecordset::State {
    std::vector<RecordColumn> columns;
    PackedRows rows;
    int64_t position = 0;

    int64_t count() const { return static_cast<int64_t>(rows.size()); }
    bool isBof() const { return position < 0 || rows.size() == 0; }
    bool isEof() const { return position >= count(); }
    size_t row() const {
        if (isBof() || isEof()) throw Error(NoCurrentRecord);
        return static_cast<size_t>(position);
    }
};

SnapshotRecordset::SnapshotRecordset(std::vector<RecordColumn> columns)
    : state_(std::make_unique<State>()) {
    state_->columns = std::move(columns);
}

SnapshotRecordset::SnapshotRecordset(const Database& database, std::wstring_view name)
    : state_(std::make_unique<State>()) {
    const Database::ReadScope scope(database);
    const Table table = database.table(name);
    const PageStore& pages = table.store();
    const std::vector<size_t> places = placesInOrder(table.definition());
    state_->columns = recordColumns(table.definition(), places, pages.format());
    const uint64_t limit =
        leastLimit + sharesOfFile * uint64_t(pages.pageCount()) * pages.pageSize();
    std::vector<Value> values(places.size());
    RowCursor rows(table);
    while (rows.next()) {
        for (size_t i = 0; i < places.size(); ++i)
            rows.value(places[i], values[i]);
        append(values);
        if (state_->rows.contentBytes() > limit) {
            throw Error(Damaged, {},
                        {.file = database.name(),
                         .table = table.name(),
                         .detail = L"rows share the pages of their values"});
        }
    }
}

SnapshotRecordset::~SnapshotRecordset() = default;

void SnapshotRecordset::append(std::span<const Value> row) {
    if (row.size() != state_->columns.size()) throw Error(InvalidArgument);
    state_->rows.append(row);
}

uint64_t SnapshotRecordset::contentBytes() const {
    return state_->rows.contentBytes();
}

const std::vector<RecordColumn>& SnapshotRecordset::columns() const {
    return state_->columns;
}

bool SnapshotRecordset::isBof() const {
    return state_->isBof();
}

bool SnapshotRecordset::isEof() const {
    return state_->isEof();
}

void SnapshotRecordset::moveFirst() {
    state_->position = 0;
}

void SnapshotRecordset::moveLast() {
    state_->position = state_->count() == 0 ? 0 : state_->count() - 1;
}

void SnapshotRecordset::move(int64_t count) {
    State& s = *state_;
    if (count == 0) return;
    if (count > 0 ? s.isEof() : s.isBof()) throw Error(NoCurrentRecord);
    const int64_t rows = s.count();
    if (count > 0) {
        s.position = count > rows - 1 - s.position ? behindLast : s.position + count;
    } else {
        const int64_t from = s.isEof() ? rows : s.position;
        s.position = count < -from ? beforeFirst : from + count;
    }
}

void SnapshotRecordset::value(size_t column, Value& into) const {
    if (column >= state_->columns.size()) throw Error(ItemNotFound);
    state_->rows.value(state_->row(), column, into);
}

uint32_t SnapshotRecordset::recordCount() const {
    return static_cast<uint32_t>(state_->rows.size());
}

Bytes SnapshotRecordset::bookmark() const {
    const auto row = static_cast<uint32_t>(state_->row());
    Bytes bookmark(bookmarkSize);
    for (size_t i = 0; i < bookmarkSize; ++i)
        bookmark[i] = static_cast<uint8_t>(row >> (8 * i));
    return bookmark;
}

void SnapshotRecordset::setBookmark(const Bytes& bookmark) {
    if (bookmark.size() != bookmarkSize) throw Error(InvalidBookmark);
    const uint32_t row = ByteView(bookmark).get32(0);
    if (row >= state_->rows.size()) throw Error(InvalidBookmark);
    state_->position = row;
}

}  // namespace sg::jet
