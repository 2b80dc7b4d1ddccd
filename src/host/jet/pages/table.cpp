#include "host/jet/pages/table.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "host/jet/format/error.h"
#include "host/jet/pages/definition_writer.h"

namespace sg::jet {
namespace {

// Runs `work` so that an error that leaves it tells file, table and, where nobody nearer knew it,
// page.
template <class Work>
auto placed(const Table& table, uint32_t page, Work work) {
    try {
        return work();
    } catch (Error& error) {
        if (page != 0) {
            error.addPage(page);
        }
        error.addTable(table.name());
        error.addFile(table.store().name());
        throw;
    }
}

// Pages that one map page has bits for.
uint32_t pagesOfMapPage(const PageStore& store) {
    return static_cast<uint32_t>((store.pageSize() - maps::pageBits) * 8);
}

[[noreturn]] void throwBeyondEnd(const PageStore& store, uint32_t page) {
    throwDamaged(L"the table's pages go on beyond the end of the file, which has " +
                     std::to_wstring(store.pageCount()) + L" pages",
                 page);
}

}  // namespace

uint32_t Table::rowCount() const {
    return readRowCount(*store_, *definition_);
}

RowCursor Table::scan() const {
    return RowCursor(*this);
}

RowCursor::RowCursor(const Table& table)
    : table_(table), reader_(*table_.store_, *table_.definition_) {}

bool RowCursor::next() {
    return placed(table_, 0, [&] { return advance(); });
}

bool RowCursor::previous() {
    return placed(table_, 0, [&] { return goBack(); });
}

bool RowCursor::first() {
    page_ = DataPage();
    nextPage_ = 0;
    finished_ = false;
    return next();
}

bool RowCursor::last() {
    page_ = DataPage();
    nextPage_ = std::numeric_limits<uint32_t>::max();
    return previous();
}

bool RowCursor::advance() {
    valid_ = false;
    while (!finished_) {
        while (page_ && nextRow_ < page_.rowCount()) {
            const auto row = static_cast<uint16_t>(nextRow_++);
            if (!page_.isDeleted(row)) {
                placed(table_, page_.number(), [&] { stand(row); });
                return true;
            }
        }
        page_ = DataPage();
        if (!openNextPage()) {
            finished_ = true;
        }
    }
    return false;
}

bool RowCursor::goBack() {
    valid_ = false;
    finished_ = false;
    do {
        while (page_ && row_ > 0) {
            const auto row = static_cast<uint16_t>(--row_);
            if (!page_.isDeleted(row)) {
                placed(table_, page_.number(), [&] { stand(row); });
                return true;
            }
        }
        if (page_) {
            nextPage_ = page_.number();
            page_ = DataPage();
        }
    } while (openPreviousPage());
    return false;
}

void RowCursor::readMap() {
    if (!map_) {
        map_ = UsageMap::read(table_.store(), table_.definition().ownedPages);
    }
}

// Goes to the next page with rows of this table. What it fails on is left behind first.
bool RowCursor::openNextPage() {
    const PageStore& store = table_.store();
    finished_ = true;  // without its map nothing can be found
    readMap();
    finished_ = false;
    while (true) {
        std::optional<uint32_t> page;
        try {
            page = map_->next(nextPage_);
        } catch (Error&) {
            // A map page is damaged: its range of pages is passed over.
            const uint32_t range = pagesOfMapPage(store);
            nextPage_ = (nextPage_ / range + 1) * range;
            finished_ = nextPage_ >= store.pageCount();
            throw;
        }
        if (!page) {
            return false;
        }
        if (*page >= store.pageCount()) {
            finished_ = true;
            throwBeyondEnd(store, *page);
        }
        nextPage_ = *page + 1;
        DataPage found(store, *page);
        if (belongsHere(found)) {
            page_ = std::move(found);
            row_ = nextRow_ = 0;
            return true;
        }
    }
}

bool RowCursor::openPreviousPage() {
    const PageStore& store = table_.store();
    const uint32_t before = std::exchange(nextPage_, 0);
    if (before == 0) {
        return false;
    }
    readMap();
    for (nextPage_ = before; nextPage_ > 0;) {
        std::optional<uint32_t> page;
        try {
            page = map_->previous(nextPage_);
        } catch (Error&) {
            const uint32_t range = pagesOfMapPage(store);
            nextPage_ = (std::min(nextPage_, store.pageCount()) - 1) / range * range;
            throw;
        }
        if (!page) {
            break;
        }
        if (*page >= store.pageCount()) {
            nextPage_ = store.pageCount();
            throwBeyondEnd(store, *page);
        }
        nextPage_ = *page;
        DataPage found(store, *page);
        if (belongsHere(found)) {
            page_ = std::move(found);
            nextPage_ = *page + 1;
            row_ = nextRow_ = page_.rowCount();
            return true;
        }
    }
    nextPage_ = 0;
    return false;
}

bool RowCursor::belongsHere(const DataPage& page) const {
    return page.owner() == table_.definition().page;
}

// The page when it holds rows of this table, else none.
DataPage RowCursor::ownPage(uint32_t number) const {
    const PageStore& store = table_.store();
    if (number >= store.pageCount() ||
        store.read(number)->get8(0) != static_cast<uint8_t>(PageKind::Data)) {
        return {};
    }
    DataPage page(store, number);
    return belongsHere(page) ? page : DataPage();
}

void RowCursor::stand(uint16_t row) {
    id_ = {page_.number(), row};
    row_ = row;
    nextRow_ = uint32_t(row) + 1;
    if (!page_.isLookup(row)) {
        reader_.reset(page_.rowBytes(row));
    } else {
        overflow_ = page_;
        uint16_t at = row;
        followOverflow(table_.store(), overflow_, at);
        if (!belongsHere(overflow_)) {
            throwDamaged(L"row " + std::to_wstring(row) + L" points to a page of another table");
        }
        reader_.reset(overflow_.rowBytes(at));
    }
    valid_ = true;
}

bool RowCursor::seek(RowId id) {
    valid_ = false;
    return placed(table_, id.page, [&] {
        if (!page_ || page_.number() != id.page) {
            page_ = ownPage(id.page);
        }
        finished_ = false;
        row_ = id.row;
        nextRow_ = uint32_t(id.row) + 1;
        nextPage_ = id.page + 1;
        if (!page_ || id.row >= page_.rowCount() || page_.isDeleted(id.row)) {
            return false;
        }
        stand(id.row);
        return true;
    });
}

// A place in front of `row` of `page`; `behind` is the first row behind it.
void RowCursor::startAt(uint32_t page, uint32_t row, uint32_t behind) {
    finished_ = false;
    page_ = ownPage(page);
    nextPage_ = page_ ? page + 1 : page;
    if (page_) {
        row_ = std::min<uint32_t>(row, page_.rowCount());
        nextRow_ = behind;
    }
}

bool RowCursor::seekAfter(RowId id) {
    return placed(table_, 0, [&] {
        startAt(id.page, id.row, uint32_t(id.row) + 1);
        return advance();
    });
}

bool RowCursor::seekBefore(RowId id) {
    return placed(table_, 0, [&] {
        startAt(id.page, id.row, uint32_t(id.row) + 1);
        return goBack();
    });
}

bool RowCursor::refresh() {
    return placed(table_, page_ ? page_.number() : 0, [&] {
        const PageStore& store = table_.store();
        map_.reset();
        finished_ = false;
        if (!page_) {
            return false;
        }
        const bool stood = std::exchange(valid_, false);
        if (page_.isCurrent(store) &&
            (!stood || !page_.isLookup(id_.row) || overflow_.isCurrent(store))) {
            return valid_ = stood;
        }
        startAt(page_.number(), row_, nextRow_);
        if (!stood || !page_ || id_.row >= page_.rowCount() || page_.isDeleted(id_.row)) {
            return false;
        }
        stand(id_.row);
        return true;
    });
}

void RowCursor::release() {
    page_ = DataPage();
    overflow_ = DataPage();
    map_.reset();
    valid_ = false;
}

ByteView RowCursor::content(size_t column) const {
    return placed(table_, id_.page, [&] { return reader_.content(column); });
}

void RowCursor::value(size_t column, Value& into) const {
    placed(table_, id_.page, [&] { reader_.decode(column, into); });
}

Value RowCursor::value(size_t column) const {
    Value result;
    value(column, result);
    return result;
}

}  // namespace sg::jet
