#include <cstring>

#include "host/jet/format/error.h"
#include "host/jet/pages/definition_writer.h"

// The numbers on a definition's first page that change with every row.
namespace sg::jet {
namespace {

[[noreturn]] void throwNoDefinition(uint32_t page) {
    throwDamaged(L"a table's definition does not begin here", page);
}

uint32_t load(const uint8_t* from) {
    uint32_t value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

void store(uint8_t* to, uint32_t value) {
    std::memcpy(to, &value, sizeof value);
}

uint32_t get(const PageStore& pages, uint32_t page, size_t offset) {
    return pages.read(page, PageKind::TableDefinition)->get32(offset);
}

void put(WriteTransaction& pages, uint32_t page, size_t offset, uint32_t value) {
    const std::span<uint8_t> bytes = pages.write(page);
    if (bytes[0] != static_cast<uint8_t>(PageKind::TableDefinition) ||
        offset + sizeof value > bytes.size()) {
        throwNoDefinition(page);
    }
    store(bytes.data() + offset, value);
}

// Some programs leave it empty.
uint32_t stepOf(uint32_t stored) {
    return stored == 0 ? 1 : stored;
}

size_t entryCountOffset(const Format& format, size_t index) {
    return format.table.head + index * format.index.countSize + format.index.countRows;
}

}  // namespace

uint32_t readRowCount(const PageStore& pages, const TableDefinition& table) {
    return get(pages, table.page, pages.format().table.rowCount);
}

uint32_t readAutoNumber(const PageStore& pages, const TableDefinition& table) {
    return get(pages, table.page, pages.format().table.autoNumber);
}

uint32_t readAutoNumberStep(const PageStore& pages, const TableDefinition& table) {
    const size_t offset = pages.format().table.autoNumberStep;
    return stepOf(offset == 0 ? 0 : get(pages, table.page, offset));
}

uint32_t readEntryCount(const PageStore& pages, const TableDefinition& table, size_t index) {
    return get(pages, table.page, entryCountOffset(pages.format(), index));
}

void writeAutoNumber(WriteTransaction& pages, const TableDefinition& table, uint32_t last) {
    put(pages, table.page, pages.format().table.autoNumber, last);
}

void writeAutoNumberStep(WriteTransaction& pages, const TableDefinition& table, uint32_t step) {
    put(pages, table.page, pages.format().table.autoNumberStep, step);
}

DefinitionCounters::DefinitionCounters(WriteTransaction& pages, const TableDefinition& table)
    : page_(pages.write(table.page)), format_(&pages.format()), number_(table.page) {
    if (page_[0] != static_cast<uint8_t>(PageKind::TableDefinition)) throwNoDefinition(number_);
}

uint8_t* DefinitionCounters::at(size_t offset) const {
    if (offset + sizeof(uint32_t) > page_.size()) throwNoDefinition(number_);
    return page_.data() + offset;
}

uint32_t DefinitionCounters::rowCount() const {
    return load(at(format_->table.rowCount));
}

void DefinitionCounters::setRowCount(uint32_t count) {
    store(at(format_->table.rowCount), count);
}

uint32_t DefinitionCounters::autoNumber() const {
    return load(at(format_->table.autoNumber));
}

void DefinitionCounters::setAutoNumber(uint32_t last) {
    store(at(format_->table.autoNumber), last);
}

uint32_t DefinitionCounters::autoNumberStep() const {
    return stepOf(load(at(format_->table.autoNumberStep)));
}

void DefinitionCounters::addEntry(size_t index) {
    uint8_t* const place = at(entryCountOffset(*format_, index));
    store(place, load(place) + 1);
}

}  // namespace sg::jet
