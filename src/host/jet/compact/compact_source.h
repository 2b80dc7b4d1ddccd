#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "host/jet/catalog/catalog.h"
#include "host/jet/compact/compact_run.h"
#include "host/jet/database/database.h"
#include "host/jet/pages/database_header.h"
#include "host/jet/pages/table.h"
#include "host/jet/storage/page_store.h"

// The database that a compaction reads. For compact*.cpp alone.
namespace sg::jet::compaction {

class Source;

// A table's rows. A repair finds those that the table's map has lost, too, and passes over what is
// damaged.
class SourceRows {
  public:
    SourceRows(const Source& source, const Table& table);

    bool next();
    // Throws Damaged when the row is not there.
    void seek(RowId id);
    RowId id() const { return cursor_.id(); }
    // A damaged value is Null for a repair.
    void value(size_t column, Value& into);
    Value value(size_t column);
    // The column with this name; Null where there is none.
    Value value(std::wstring_view column);

  private:
    bool nextLost();

    const Source& source_;
    Table table_;
    RowCursor cursor_;
    bool isWalked_ = false;       // the pages of the map
    std::vector<uint32_t> lost_;  // data pages that the map does not have
    size_t lostPage_ = 0;
    uint32_t lostRow_ = 0;
};

class Source {
  public:
    // `made` is the new database, whose catalog is laid out as every other. Throws
    // CannotOpenDatabase when the catalog can't be read, unless for a repair.
    Source(const PageStore& pages, const Database& made, Run& run);

    const PageStore& pages() const { return pages_; }
    const Format& format() const { return pages_.format(); }
    const DatabaseHeader& header() const { return header_; }
    Run& run() const { return run_; }
    // The account's identifier without the mask of this file.
    void unmaskAccount(Bytes& account) const;

    // The catalog's rows, in their order.
    const std::vector<CatalogObject>& objects() const { return objects_; }
    const Table& catalog() const { return *catalog_; }
    // Throws Damaged.
    Table tableAt(uint32_t page, std::wstring_view name) const;
    // A system table by its name. None when the catalog has none; throws Damaged.
    std::optional<Table> systemTable(std::wstring_view name) const;

    // How many rows the definition tells of, as far as that may be.
    uint64_t tableRows(const TableDefinition& table) const;

    // The rest is for repairs.

    // Definitions of users' tables with rows that the catalog does not name.
    std::vector<uint32_t> unnamedTables() const;
    // Data pages of the table, in use, that its map does not have.
    std::vector<uint32_t> lostPages(const Table& table) const;

    // Counts what is read of a long value. In a sound file all of them together are not longer than
    // the file; rows that point at the same bytes again and again would fill the disk. Throws
    // Damaged when too much was read.
    void spend(uint64_t bytes) const;

  private:
    void scan();
    void readCatalog(const Database& made);
    void readObjects();
    void tellForeignPages(const Table& table, const UsageMap& map) const;

    const PageStore& pages_;
    Run& run_;
    DatabaseHeader header_;
    std::vector<CatalogObject> objects_;
    std::optional<Table> catalog_;
    bool isCatalogWhole_ = true;
    std::map<uint32_t, std::vector<uint32_t>> dataPages_;  // in use, by owner
    std::vector<uint32_t> definitionPages_;                // in use
    bool knowsFreePages_ = false;
    mutable uint64_t longBytes_ = 0;
};

}  // namespace sg::jet::compaction
