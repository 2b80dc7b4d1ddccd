#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/catalog.h"
#include "host/jet/database_header.h"
#include "host/jet/error.h"
#include "host/jet/page_store.h"
#include "host/jet/properties.h"
#include "host/jet/query.h"
#include "host/jet/table.h"

// A database file for reading: its tables, relations, stored queries and properties.
//
//     const jet::Database db = jet::Database::openReadOnly(L"plan.mdb");
//     jet::RowCursor rows = db.table(L"Rooms").scan();
//     while (rows.next()) {
//         print(rows.value(0));
//     }
//
// A database and what it gives belong to one thread.
namespace sg::jet {

class SG_API Database {
  public:
    // Throws FileNotFound, CannotOpenFile, UnrecognizedFormat (no database, or a version that is
    // newer than any known), InvalidPassword (the file asks for one), CannotOpenDatabase (cut off,
    // encrypted, or the catalog's definition is damaged).
    static Database openReadOnly(const std::wstring& path,
                                 size_t cacheBytes = FilePageStore::defaultCacheBytes);
    // The same on other pages than a file's.
    explicit Database(std::unique_ptr<PageStore> store);

    const PageStore& store() const { return *store_; }
    const DatabaseHeader& header() const { return header_; }

    // Every object, in the catalog's order.
    const std::vector<CatalogObject>& objects() const { return objects_; }
    // What of the catalog could not be read; empty for a sound file.
    const std::vector<Error>& catalogDamage() const { return catalogDamage_; }
    // Ignoring case; nullptr when there is none. Tables, linked tables and queries share their
    // names.
    const CatalogObject* object(std::wstring_view name, ObjectType type) const;

    // The names of the tables in this file, in the catalog's order. Linked ones are not among
    // them.
    std::vector<std::wstring> tables(bool withSystem = false) const;
    // Throws InputTableNotFound; Damaged when its definition can't be read. A definition is read
    // once.
    Table table(std::wstring_view name) const;
    // The table whose definition begins on `page`, named as the catalog does.
    Table tableAt(uint32_t page) const;

    std::vector<CatalogObject> linkedTables() const;

    // The following leave out what is damaged and tell it in `damage` where one is given.
    std::vector<Relation> relations(std::vector<Error>* damage = nullptr) const;
    // In the catalog's order.
    std::vector<Query> queries(std::vector<Error>* damage = nullptr) const;

    // What programs keep with the object. None when it has none. Throws Damaged when they can't be
    // read.
    Properties properties(const CatalogObject& object) const;
    // Those of the table or linked table `name`; throws InputTableNotFound.
    Properties tableProperties(std::wstring_view name) const;

  private:
    void checkCanBeRead() const;
    void readCatalog();
    std::optional<Table> systemTable(std::wstring_view name, std::vector<Error>* damage) const;

    std::unique_ptr<PageStore> store_;
    DatabaseHeader header_;
    std::vector<CatalogObject> objects_;
    std::vector<Error> catalogDamage_;
    mutable std::map<uint32_t, std::shared_ptr<const TableDefinition>> definitions_;  // by page
};

}  // namespace sg::jet
