#include "host/jet/table.h"

#include "host/jet/error.h"

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

}  // namespace

RowCursor Table::scan() const {
    return RowCursor(*this);
}

RowCursor::RowCursor(const Table& table)
    : table_(table), reader_(*table_.store_, *table_.definition_) {}

bool RowCursor::next() {
    return placed(table_, 0, [&] { return advance(); });
}

bool RowCursor::advance() {
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

// Goes to the next page with rows of this table. What it fails on is left behind first.
bool RowCursor::openNextPage() {
    const PageStore& store = table_.store();
    if (!map_) {
        finished_ = true;  // without its map nothing can be found
        map_ = UsageMap::read(store, table_.definition().ownedPages);
        finished_ = false;
    }
    while (true) {
        std::optional<uint32_t> page;
        try {
            page = map_->next(nextPage_);
        } catch (Error&) {
            // A map page is damaged: its range of pages is passed over.
            const auto range = static_cast<uint32_t>((store.pageSize() - maps::pageBits) * 8);
            nextPage_ = (nextPage_ / range + 1) * range;
            finished_ = nextPage_ >= store.pageCount();
            throw;
        }
        if (!page) {
            return false;
        }
        if (*page >= store.pageCount()) {
            finished_ = true;
            throwDamaged(L"the table's pages go on beyond the end of the file, which has " +
                             std::to_wstring(store.pageCount()) + L" pages",
                         *page);
        }
        nextPage_ = *page + 1;
        DataPage found(store, *page);
        if (belongsHere(found)) {
            page_ = std::move(found);
            nextRow_ = 0;
            return true;
        }
    }
}

bool RowCursor::belongsHere(const DataPage& page) const {
    return page.owner() == table_.definition().page;
}

void RowCursor::stand(uint16_t row) {
    id_ = {page_.number(), row};
    if (!page_.isLookup(row)) {
        reader_.reset(page_.rowBytes(row));
        return;
    }
    overflow_ = page_;
    uint16_t at = row;
    followOverflow(table_.store(), overflow_, at);
    if (!belongsHere(overflow_)) {
        throwDamaged(L"row " + std::to_wstring(row) + L" points to a page of another table");
    }
    reader_.reset(overflow_.rowBytes(at));
}

bool RowCursor::seek(RowId id) {
    return placed(table_, id.page, [&] {
        if (id.page >= table_.store().pageCount()) {
            return false;
        }
        if (!page_ || page_.number() != id.page) {
            DataPage found(table_.store(), id.page);
            if (!belongsHere(found)) {
                return false;
            }
            page_ = std::move(found);
        }
        if (id.row >= page_.rowCount() || page_.isDeleted(id.row)) {
            return false;
        }
        finished_ = false;
        nextPage_ = id.page + 1;
        nextRow_ = uint32_t(id.row) + 1;
        stand(id.row);
        return true;
    });
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
