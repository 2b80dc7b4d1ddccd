#pragma once

#include <cstdint>
#include <span>

#include "base/export.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/values/table_definition.h"

// Writes table definitions, for Jet 4. See docs/formats/jet.md, "Table definitions".
namespace sg::jet {

// Writes the definition to its chain of pages: those in table.pages, the first of which must exist,
// more from the allocator when it has become longer, and the rest given back. Sets table.pages.
// What a definition holds beyond TableDefinition (unknown bytes of columns and indexes) is kept
// where the page had it for the same column number or index, and so are the numbers that change
// with rows (below): the table's are written for what is new, and set to what is written for the
// rest. Throws TooManyFields for more than columns::maxColumns columns, deleted ones counted,
// TooManyIndexes for more than 32 indexes unless it had more, InvalidArgument for a definition that
// contradicts itself.
SG_API void writeDefinition(PageAllocator& allocator, TableDefinition& table);
// A first page for a new definition.
SG_API uint32_t createDefinitionPage(PageAllocator& allocator);
// Gives the pages of the chain back.
SG_API void dropDefinition(PageAllocator& allocator, const TableDefinition& table);

// The numbers on the definition's first page that change with rows, read and written in place.
SG_API uint32_t readRowCount(const PageStore& pages, const TableDefinition& table);
SG_API uint32_t readAutoNumber(const PageStore& pages, const TableDefinition& table);
// What is added to a counter's last number for the next, modulo 2^32: 1 unless it is told.
SG_API uint32_t readAutoNumberStep(const PageStore& pages, const TableDefinition& table);
SG_API uint32_t readEntryCount(const PageStore& pages, const TableDefinition& table, size_t index);
SG_API void writeAutoNumber(WriteTransaction& pages, const TableDefinition& table, uint32_t last);
SG_API void writeAutoNumberStep(WriteTransaction& pages, const TableDefinition& table,
                                uint32_t step);

// The same numbers for a whole row at once. It holds for as long as nobody writes the page
// otherwise, and as the span that WriteTransaction::write() gives. Throws Damaged.
class SG_API DefinitionCounters {
  public:
    DefinitionCounters(WriteTransaction& pages, const TableDefinition& table);

    uint32_t rowCount() const;
    void setRowCount(uint32_t count);
    uint32_t autoNumber() const;
    void setAutoNumber(uint32_t last);
    uint32_t autoNumberStep() const;
    // One more key in the index.
    void addEntry(size_t index);

  private:
    uint8_t* at(size_t offset) const;

    std::span<uint8_t> page_;
    const Format* format_;
    uint32_t number_;
};

}  // namespace sg::jet
