#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/catalog/catalog.h"
#include "host/jet/catalog/properties.h"
#include "host/jet/catalog/query.h"
#include "host/jet/database/new_database.h"
#include "host/jet/format/error.h"
#include "host/jet/pages/database_header.h"
#include "host/jet/pages/page_allocator.h"
#include "host/jet/pages/table.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/storage/storage.h"

// A database file: its tables, relations, stored queries and properties.
//
//     jet::Database db = jet::Database::open(L"plan.mdb", jet::OpenMode::Shared);
//     jet::RowCursor rows = db.table(L"Rooms").scan();
//     while (rows.next()) {
//         print(rows.value(0));
//     }
//
// What changes rows is in table_writer.h, what changes the design in schema.h, and recordset.h has
// cursors that stay in place when others write.
//
// A database and what it gives belong to one thread, and it outlives what it gives.
namespace sg::jet {

class TableWriter;
class WriteScope;

class SG_API Database {
  public:
    // Throws what Storage::open() throws, InvalidPassword (the file asks for one),
    // CannotOpenDatabase (cut off, encrypted, or the catalog's definition is damaged).
    static Database open(const std::wstring& path, OpenMode mode,
                         const StorageOptions& options = {});
    static Database openReadOnly(const std::wstring& path) {
        return open(path, OpenMode::ReadOnly);
    }
    // A new Jet 4 file, opened exclusively. Throws as createDatabaseFile().
    static Database create(const std::wstring& path, const Locale& locale = {},
                           const StorageOptions& options = {});
    explicit Database(std::unique_ptr<Storage> storage, const StorageOptions& options = {});
    // The same on other pages than a file's, read-only.
    explicit Database(std::unique_ptr<PageStore> store);
    // close(), with errors passed over.
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Rolls back what is open, and closes the file. Only isOpen() may be called after it.
    void close();
    bool isOpen() const { return store_ != nullptr; }

    // The pages as this database sees them: its open transaction's, else the last committed ones.
    const PageStore& store() const { return *view_; }
    // Null when the pages are no file's.
    Storage* storage() const { return storage_; }
    bool isReadOnly() const { return storage_ == nullptr || storage_->isReadOnly(); }
    const std::wstring& name() const { return view_->name(); }
    const DatabaseHeader& header() const { return header_; }

    // Holds one state for all reads of an operation; see Storage::ReadScope.
    class SG_API ReadScope {
      public:
        explicit ReadScope(const Database& database);

      private:
        std::optional<Storage::ReadScope> scope_;
    };

    // The following read the catalog again when somebody has changed it; references and pointers
    // that they give hold until then, that is to the next call.

    // Every object, in the catalog's order.
    const std::vector<CatalogObject>& objects() const;
    // What of the catalog could not be read; empty for a sound file.
    const std::vector<Error>& catalogDamage() const;
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
    // The other file of a linked table, opened on first use in this one's mode (read-only where
    // that is refused) and kept open. A relative path is taken from this file's folder, and in
    // paths both "/" and "\\" separate. Throws what opening throws, and OperationNotSupported for
    // links that are not to database files.
    Database& linked(const CatalogObject& link);
    // Where the table `name` is: this database, or for a linked table the other one, `name`
    // becoming the table's name there. Throws InputTableNotFound.
    Database& home(std::wstring& name);

    // Changes whenever the design has changed, by whomever: what is kept of definitions must be
    // looked up again.
    uint64_t designStamp() const;

    // The following leave out what is damaged and tell it in `damage` where one is given.
    std::vector<Relation> relations(std::vector<Error>* damage = nullptr) const;
    // In the catalog's order.
    std::vector<Query> queries(std::vector<Error>* damage = nullptr) const;
    // Throws ItemNotFound.
    Query query(std::wstring_view name) const;

    // What programs keep with the object. None when it has none. Throws Damaged when they can't be
    // read.
    Properties properties(const CatalogObject& object) const;
    // Those of the table or linked table `name`; throws InputTableNotFound.
    Properties tableProperties(std::wstring_view name) const;

    // --- writing ---

    // Writes the rows of a table of this file. It stays until the table's own design has changed,
    // which shows in designStamp(). Throws as table().
    TableWriter& writer(std::wstring_view table);
    TableWriter& writerAt(uint32_t definitionPage);

    // Everything between begin and commit becomes visible to others at once, or with rollback
    // never. Transactions may be nested: rolling back an inner one undoes what was done in it.
    // When a change fails in a way that costs the whole transaction (WriteScope::Undo), all levels
    // are gone. Begin throws what Storage::beginWrite() throws, the others 3034 without a begin;
    // when commit throws, everything has been rolled back.
    void beginTransaction();
    void commitTransaction();
    void rollbackTransaction();
    int transactionDepth() const { return static_cast<int>(levels_.size()); }

    // Changes when what is kept of pages in memory (hints of where there is room) is no longer
    // true: at the begin of a transaction and after something was undone.
    uint64_t writeEpoch() const { return epoch_; }

  private:
    friend class WriteScope;

    void start();
    void readCatalog() const;
    void refreshCatalog() const;
    std::optional<Table> systemTable(std::wstring_view name, std::vector<Error>* damage) const;
    std::wstring pathOf(const CatalogObject& link) const;

    void openTransaction();
    void commitWhole();
    void rollbackWhole();
    void undoTo(WriteTransaction::SavepointId savepoint);
    void noteDesignChange();

    std::unique_ptr<PageStore> store_;
    Storage* storage_ = nullptr;  // store_, when that is one
    const PageStore* view_ = nullptr;
    StorageOptions options_;
    DatabaseHeader header_;

    // What was read of the design, when, and how often.
    mutable std::vector<CatalogObject> objects_;
    mutable std::vector<Error> catalogDamage_;
    mutable std::map<uint32_t, std::shared_ptr<const TableDefinition>> definitions_;  // by page
    mutable uint64_t catalogSequence_ = 0;
    mutable bool isCatalogStale_ = true;
    mutable uint64_t designStamp_ = 0;

    std::map<std::wstring, std::unique_ptr<Database>> linked_;  // by path
    std::map<uint32_t, std::unique_ptr<TableWriter>> writers_;  // by definition page
    uint64_t writersStamp_ = 0;                                 // of the design that they know

    std::unique_ptr<WriteTransaction> transaction_;
    std::optional<PageAllocator> allocator_;
    std::vector<WriteTransaction::SavepointId> levels_;  // of begun transactions; 0: the whole
    bool changesDesign_ = false;                         // the open transaction
    uint64_t epoch_ = 0;
};

}  // namespace sg::jet
