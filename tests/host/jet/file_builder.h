#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/jet/format/format.h"
#include "host/jet/format/row_id.h"
#include "host/jet/values/value.h"

// Lays out small database files byte by byte, so that tests have files of every version, and can
// spoil them at a place that they know.
namespace sg::jet::test {

struct ColumnSpec {
    std::wstring name;
    ColumnType type = ColumnType::Long;
    uint16_t length = 0;
    uint8_t extraFlags = 0;
    uint8_t scale = 0;
};

// A cell's bytes as a row holds them; null where `isNull`. Of a Boolean `isNull` means false.
struct Cell {
    Bytes bytes;
    bool isNull = false;
};

inline Cell null() {
    return {{}, true};
}
Cell number(int64_t value, size_t size);
Cell floating(double value);
// A text in the version's uncompressed form.
Cell text(Version version, const std::wstring& value);
// A long value's bytes with their header, in the row.
Cell inlineLong(const Bytes& content);
// A long value's header: its length with its flags, and where its bytes begin.
Cell longHeader(uint32_t lengthAndFlags, RowId first);

class FileBuilder {
  public:
    // A file with a catalog that has only itself.
    explicit FileBuilder(Version version);

    const Format& format() const { return format_; }
    // Its bytes. Every call below may move them.
    Bytes& bytes() { return bytes_; }
    uint8_t* page(uint32_t number) { return bytes_.data() + number * format_.pageSize; }
    uint32_t pageCount() const { return static_cast<uint32_t>(bytes_.size() / format_.pageSize); }

    uint32_t addPage(PageKind kind);
    uint32_t addDataPage(uint32_t owner);
    // Puts a row behind the page's others. `flags` go into its directory entry.
    RowId addRow(uint32_t page, const Bytes& row, uint16_t flags = 0);
    // A record of an inline usage map.
    RowId addMap(const std::vector<uint32_t>& pages);
    // A record of a map that names `mapPages`.
    RowId addReferencedMap(const std::vector<uint32_t>& mapPages);

    // A table with one empty data page, and its row in the catalog. Answers its definition page;
    // the data page is the one behind.
    uint32_t addTable(const std::wstring& name, const std::vector<ColumnSpec>& columns);
    // The bytes of a row of a table with these columns.
    Bytes encodeRow(const std::vector<ColumnSpec>& columns, const std::vector<Cell>& cells) const;
    // Adds the row of an object to the catalog.
    void addObject(int32_t id, const std::wstring& name, int16_t type, int32_t flags = 0,
                   const Cell& properties = null(), const Cell& path = null());

    static const std::vector<ColumnSpec>& catalogColumns();
    static bool isFixed(ColumnType type);

  private:
    void put16(size_t at, uint16_t value);
    void put32(size_t at, uint32_t value);
    void writeDefinition(uint32_t page, const std::vector<ColumnSpec>& columns, RowId owned);
    Bytes encodeJet3Variable(Bytes row, const std::vector<Bytes>& variable, size_t maskSize) const;

    const Format& format_;
    Bytes bytes_;
};

inline constexpr uint32_t catalogDataPage = 3;

// A file with a table "Rooms" of every plain type with three rows, a memo of each kind, a linked
// table and a query; what the tests of reading and the fuzz corpus begin with.
Bytes sampleFile(Version version);

}  // namespace sg::jet::test
