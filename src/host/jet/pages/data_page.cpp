#include "host/jet/pages/data_page.h"

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

// A row that overflowed is pointed to directly. A few steps more are allowed for; a longer way is a
// circle.
constexpr int mostSteps = 8;

}  // namespace

DataPage::DataPage(const PageStore& store, uint32_t page)
    : page_(store.read(page, PageKind::Data)), layout_(&store.format().dataPage) {
    rowCount_ = page_->get16(layout_->rowCount);
    if (rowCount_ > (page_->size() - layout_->rowDirectory) / 2) {
        throwDamaged(
            L"the directory of " + std::to_wstring(rowCount_) + L" rows is longer than the page",
            page);
    }
}

// A page that is held is never changed in place: what is newer stands elsewhere.
bool DataPage::isCurrent(const PageStore& store) const {
    return number() < store.pageCount() &&
           store.read(number()).bytes().data() == page_.bytes().data();
}

uint16_t DataPage::entry(uint16_t row) const {
    if (row >= rowCount_) {
        throwDamaged(L"row " + std::to_wstring(row) + L" of " + std::to_wstring(rowCount_) +
                         L" is not there",
                     number());
    }
    return page_->get16(layout_->rowDirectory + 2 * size_t(row));
}

ByteView DataPage::rowBytes(uint16_t row) const {
    const size_t start = entry(row) & rows::offsetMask;
    const size_t end = row == 0 ? page_->size() : entry(row - 1) & rows::offsetMask;
    const size_t directoryEnd = layout_->rowDirectory + 2 * size_t(rowCount_);
    if (start < directoryEnd || start > end || end > page_->size()) {
        throwDamaged(L"row " + std::to_wstring(row) + L" lies from " + std::to_wstring(start) +
                         L" to " + std::to_wstring(end) + L", which is outside the page's rows",
                     number());
    }
    return page_->sub(start, end - start);
}

void followOverflow(const PageStore& store, DataPage& page, uint16_t& row) {
    for (int step = 0; page.isLookup(row); ++step) {
        const ByteView bytes = page.rowBytes(row);
        if (step == mostSteps || bytes.size() < 4) {
            throwDamaged(L"row " + std::to_wstring(row) + L" points to no row", page.number());
        }
        const RowId target = RowId::fromPacked(bytes.get32(0));
        page = DataPage(store, target.page);
        row = target.row;
    }
}

}  // namespace sg::jet
