#include "host/jet/pages/definition_records.h"

#include <algorithm>

#include "host/jet/format/error.h"

namespace sg::jet {

std::vector<uint32_t> DefinitionRecords::readPages(const PageStore& store, uint32_t first) {
    std::vector<uint32_t> pages;
    bytes_.clear();
    for (uint32_t page = first; page != 0;) {
        if (pages.size() == definitions::mostPages ||
            std::find(pages.begin(), pages.end(), page) != pages.end()) {
            throwDamaged(L"the chain of a table's definition pages does not end", page);
        }
        pages.push_back(page);
        const PageRef ref = store.read(page, PageKind::TableDefinition);
        const ByteView part = bytes_.empty() ? ref.bytes() : ref->from(definitions::nextPageHead);
        bytes_.insert(bytes_.end(), part.begin(), part.end());
        page = ref->get32(format_->table.nextPage);
    }
    return pages;
}

void DefinitionRecords::readRecords() {
    const TableLayout& layout = format_->table;
    const uint64_t length = all().get32(layout.length);
    if (length == 0) {
        bytes_.clear();
        return;
    }
    if (length + definitions::nextPageHead > bytes_.size()) {
        throwDamaged(L"a table's definition is longer than its pages");
    }
    bytes_.resize(static_cast<size_t>(length + definitions::nextPageHead));
    const uint32_t realCount = all().get32(layout.realIndexes);
    end_ = 0;
    take(layout.head);
    for (uint32_t i = 0; i < realCount; ++i) {
        take(format_->index.countSize);
    }
    readColumns();
    readIndexes(realCount);
    readMaps();
}

// Where `size` bytes begin that come next.
size_t DefinitionRecords::take(size_t size) {
    const size_t at = end_;
    all().sub(at, size);
    end_ += size;
    return at;
}

void DefinitionRecords::skipNames(size_t count) {
    for (size_t i = 0; i < count; ++i) {
        take(all().get16(take(format_->nameLengthSize)));
    }
}

void DefinitionRecords::readColumns() {
    const size_t count = all().get16(format_->table.columns);
    for (size_t i = 0; i < count; ++i) {
        const size_t at = take(format_->column.size);
        order_.push_back(all().get16(at + format_->column.number));
        if (!columns_.emplace(order_.back(), at).second) {
            throwDamaged(L"two columns have the number " + std::to_wstring(order_.back()));
        }
    }
    skipNames(count);
}

void DefinitionRecords::readIndexes(uint32_t realCount) {
    realStart_ = end_;
    for (uint32_t i = 0; i < realCount; ++i) {
        const size_t at = take(format_->index.realSize);
        realIndexes_.emplace(all().get32(at + format_->index.realRoot), i);
    }
    const uint32_t count = all().get32(format_->table.logicalIndexes);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t at = take(format_->index.logicalSize);
        logicalIndexes_.emplace(all().get32(at + format_->index.logicalNumber), at);
    }
    skipNames(count);
}

void DefinitionRecords::readMaps() {
    while (bytes_.size() - end_ >= 2) {
        const uint16_t number = all().get16(take(2));
        if (number == columns::none) {
            return;
        }
        maps_.emplace_back(number,
                           all().sub(take(definitions::mapsRecord), definitions::mapsRecord));
    }
}

std::optional<ByteView> DefinitionRecords::column(uint16_t number) const {
    const auto found = columns_.find(number);
    if (found == columns_.end()) {
        return std::nullopt;
    }
    return all().sub(found->second, format_->column.size);
}

std::optional<size_t> DefinitionRecords::realIndex(uint32_t root) const {
    const auto found = realIndexes_.find(root);
    return found == realIndexes_.end() ? std::nullopt : std::optional(found->second);
}

ByteView DefinitionRecords::count(size_t place) const {
    const size_t size = format_->index.countSize;
    return all().sub(format_->table.head + place * size, size);
}

ByteView DefinitionRecords::real(size_t place) const {
    const size_t size = format_->index.realSize;
    return all().sub(realStart_ + place * size, size);
}

std::optional<ByteView> DefinitionRecords::logical(uint32_t number) const {
    const auto found = logicalIndexes_.find(number);
    if (found == logicalIndexes_.end()) {
        return std::nullopt;
    }
    return all().sub(found->second, format_->index.logicalSize);
}

}  // namespace sg::jet
