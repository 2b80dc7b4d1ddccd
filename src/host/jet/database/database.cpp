#include "host/jet/database/database.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/storage/write_transaction.h"

namespace sg::jet {
namespace {

constexpr std::wstring_view catalogName = L"MSysObjects";
constexpr std::wstring_view relationsName = L"MSysRelationships";
constexpr std::wstring_view queriesName = L"MSysQueries";

constexpr int maxLinks = 16;  // one behind another

void addTo(std::vector<Error>* damage, const std::vector<Error>& found) {
    if (damage != nullptr) {
        damage->insert(damage->end(), found.begin(), found.end());
    }
}

}  // namespace

Database Database::open(const std::wstring& path, OpenMode mode, const StorageOptions& options) {
    return Database(Storage::open(path, mode, options), options);
}

Database Database::create(const std::wstring& path, const Locale& locale,
                          const StorageOptions& options) {
    return Database(createDatabaseFile(path, locale, options), options);
}

Database::Database(std::unique_ptr<Storage> storage, const StorageOptions& options)
    : storage_(storage.get()), view_(&storage->view()), options_(options) {
    store_ = std::move(storage);
    start();
}

Database::Database(std::unique_ptr<PageStore> store)
    : store_(std::move(store)), view_(store_.get()) {
    start();
}

Database::~Database() {
    try {
        close();
    } catch (const std::exception&) {
        // The next open has the work to do that was left.
    }
}

void Database::close() {
    if (!isOpen()) return;
    writers_.clear();
    linked_.clear();
    definitions_.clear();
    allocator_.reset();
    levels_.clear();
    transaction_.reset();
    const std::unique_ptr<PageStore> closing = std::move(store_);
    if (storage_ != nullptr) storage_->close();
}

Database::ReadScope::ReadScope(const Database& database) {
    if (database.storage_ != nullptr) scope_.emplace(*database.storage_);
}

// --- the design ---

void Database::start() {
    const ReadScope scope(*this);
    header_ = readDatabaseHeader(*view_);
    requireReadable(header_, *view_);
    try {
        refreshCatalog();
    } catch (const Error& error) {
        if (error.code() != Damaged) {
            throw;
        }
        // Without its catalog the file is none that can be opened; the place says why.
        ErrorPlace place = error.place();
        place.file = name();
        throw Error(CannotOpenDatabase, {name()}, std::move(place));
    }
}

void Database::readCatalog() const {
    auto definition =
        std::make_shared<TableDefinition>(TableDefinition::read(*view_, pages::catalog));
    definition->name = catalogName;
    std::vector<Error> damage;
    std::vector<CatalogObject> objects = readObjects({*view_, std::move(definition)}, damage);
    if (objects.empty()) {
        throwDamaged(L"the catalog has no objects", pages::catalog);
    }
    objects_ = std::move(objects);
    catalogDamage_ = std::move(damage);
    definitions_.clear();
    ++designStamp_;
}

void Database::refreshCatalog() const {
    if (!isOpen()) throw Error(InvalidOperation);
    if (!isCatalogStale_ &&
        (storage_ == nullptr || storage_->designSequence() <= catalogSequence_)) {
        return;
    }
    const ReadScope scope(*this);
    // The state that is read stands still only while the scope lives.
    if (storage_ != nullptr) catalogSequence_ = storage_->sequence();
    isCatalogStale_ = true;
    readCatalog();
    isCatalogStale_ = false;
}

uint64_t Database::designStamp() const {
    refreshCatalog();
    return designStamp_;
}

const std::vector<CatalogObject>& Database::objects() const {
    refreshCatalog();
    return objects_;
}

const std::vector<Error>& Database::catalogDamage() const {
    refreshCatalog();
    return catalogDamage_;
}

const CatalogObject* Database::object(std::wstring_view name, ObjectType type) const {
    refreshCatalog();
    const auto found = std::find_if(objects_.begin(), objects_.end(), [&](const auto& o) {
        return o.type == type && equalIgnoringCase(o.name, name);
    });
    return found == objects_.end() ? nullptr : &*found;
}

std::vector<std::wstring> Database::tables(bool withSystem) const {
    std::vector<std::wstring> names;
    for (const CatalogObject& object : objects()) {
        if (object.isTable() && (withSystem || !object.isSystem())) {
            names.push_back(object.name);
        }
    }
    return names;
}

Table Database::table(std::wstring_view name) const {
    const CatalogObject* found = object(name, ObjectType::Table);
    if (found == nullptr) {
        throw Error(InputTableNotFound, {std::wstring(name)}, {.file = this->name()});
    }
    return tableAt(found->definitionPage());
}

Table Database::tableAt(uint32_t page) const {
    refreshCatalog();
    auto& definition = definitions_[page];
    if (!definition) {
        const auto named = std::find_if(objects_.begin(), objects_.end(), [&](const auto& o) {
            return o.isTable() && o.definitionPage() == page;
        });
        std::wstring tableName = named != objects_.end()  ? named->name
                                 : page == pages::catalog ? std::wstring(catalogName)
                                                          : std::wstring();
        try {
            auto read = std::make_shared<TableDefinition>(TableDefinition::read(*view_, page));
            read->name = tableName;
            definition = std::move(read);
        } catch (Error& error) {
            definitions_.erase(page);
            error.addTable(tableName);
            error.addFile(name());
            throw;
        }
    }
    return {*view_, definition};
}

std::vector<CatalogObject> Database::linkedTables() const {
    std::vector<CatalogObject> linked;
    for (const CatalogObject& object : objects()) {
        if (object.isLinked()) linked.push_back(object);
    }
    return linked;
}

// Absent where the catalog has none of the name, or its definition is damaged.
std::optional<Table> Database::systemTable(std::wstring_view name,
                                           std::vector<Error>* damage) const {
    if (object(name, ObjectType::Table) == nullptr) {
        return std::nullopt;
    }
    try {
        return table(name);
    } catch (const Error& error) {
        addTo(damage, {error});
        return std::nullopt;
    }
}

std::vector<Relation> Database::relations(std::vector<Error>* damage) const {
    const auto table = systemTable(relationsName, damage);
    if (!table) {
        return {};
    }
    std::vector<Error> found;
    std::vector<Relation> list = readRelations(*table, found);
    addTo(damage, found);
    return list;
}

std::vector<Query> Database::queries(std::vector<Error>* damage) const {
    std::vector<Query> list;
    std::map<int32_t, size_t> byId;
    for (const CatalogObject& object : objects()) {
        if (object.type == ObjectType::Query) {
            byId.emplace(object.id, list.size());
            list.push_back({object.name, object.id, object.flags, {}});
        }
    }
    const auto table = systemTable(queriesName, damage);
    if (!table) {
        return list;
    }
    std::vector<Error> found;
    for (QueryRow& row : readQueryRows(*table, found)) {
        if (const auto at = byId.find(row.object); at != byId.end()) {
            list[at->second].rows.push_back(std::move(row));
        }
    }
    for (Query& query : list) {
        sortQueryRows(query.rows);
    }
    addTo(damage, found);
    return list;
}

Query Database::query(std::wstring_view name) const {
    for (Query& query : queries()) {
        if (equalIgnoringCase(query.name, name)) return std::move(query);
    }
    throw Error(ItemNotFound, {}, {.file = this->name()});
}

Properties Database::properties(const CatalogObject& object) const {
    const Table catalog = tableAt(pages::catalog);
    const auto column = catalog.definition().columnByName(L"LvProp");
    RowCursor cursor(catalog);
    if (!column || !cursor.seek(object.row)) {
        return {};
    }
    const Value value = cursor.value(*column);
    const Bytes* bytes = std::get_if<Bytes>(&value);
    if (bytes == nullptr) {
        return {};
    }
    try {
        return Properties::parse({bytes->data(), bytes->size()}, view_->format());
    } catch (Error& error) {
        error.addPage(object.row.page);
        error.addTable(object.name);
        error.addFile(name());
        throw;
    }
}

Properties Database::tableProperties(std::wstring_view name) const {
    for (const CatalogObject& object : objects()) {
        if ((object.isTable() || object.isLinked()) && equalIgnoringCase(object.name, name)) {
            // A copy: reading its row may read the catalog again.
            return properties(CatalogObject(object));
        }
    }
    throw Error(InputTableNotFound, {std::wstring(name)}, {.file = this->name()});
}

// --- links ---

Database& Database::home(std::wstring& name) {
    Database* at = this;
    // A link may lead to a table that is linked itself; in a circle of them nobody is at home.
    for (int steps = 0; steps < maxLinks; ++steps) {
        if (at->object(name, ObjectType::Table) != nullptr) return *at;
        const CatalogObject* link = at->object(name, ObjectType::LinkedTable);
        if (link == nullptr) link = at->object(name, ObjectType::LinkedOdbcTable);
        if (link == nullptr) break;
        std::wstring foreign = link->foreignName;
        at = &at->linked(*link);
        name = std::move(foreign);
    }
    throw Error(InputTableNotFound, {name}, {.file = at->name()});
}

Database& Database::linked(const CatalogObject& link) {
    if (link.type != ObjectType::LinkedTable || !link.connect.empty()) {
        throw Error(OperationNotSupported, {},
                    {.file = name(),
                     .table = link.name,
                     .detail = L"it is linked to something other than a database file"});
    }
    const std::wstring path = pathOf(link);
    if (path == name()) return *this;
    std::unique_ptr<Database>& found = linked_[path];
    if (found == nullptr) {
        OpenMode mode = isReadOnly() ? OpenMode::ReadOnly : OpenMode::Shared;
        try {
            found.reset(new Database(open(path, mode, options_)));
        } catch (const Error& error) {
            if (error.code() != CannotOpenFile || mode == OpenMode::ReadOnly) throw;
            found.reset(new Database(open(path, OpenMode::ReadOnly, options_)));
        }
    }
    return *found;
}

std::wstring Database::pathOf(const CatalogObject& link) const {
    std::wstring path = link.database;
    std::replace(path.begin(), path.end(), L'\\', L'/');
    const size_t folder = name().rfind(L'/');
    if (!path.starts_with(L'/') && folder != std::wstring::npos) {
        path.insert(0, name(), 0, folder + 1);
    }
    return options_.findFile ? options_.findFile(path) : path;
}

// --- writing ---

TableWriter& Database::writer(std::wstring_view table) {
    const CatalogObject* found = object(table, ObjectType::Table);
    if (found == nullptr) {
        throw Error(InputTableNotFound, {std::wstring(table)}, {.file = name()});
    }
    return writerAt(found->definitionPage());
}

TableWriter& Database::writerAt(uint32_t definitionPage) {
    if (writersStamp_ != designStamp()) {
        std::erase_if(writers_, [](const auto& writer) { return !writer.second->followDesign(); });
        writersStamp_ = designStamp_;
    }
    auto found = writers_.find(definitionPage);
    if (found == writers_.end()) {
        auto writer = std::make_unique<TableWriter>(*this, tableAt(definitionPage));
        found = writers_.emplace(definitionPage, std::move(writer)).first;
    }
    return *found->second;
}

void Database::openTransaction() {
    if (storage_ == nullptr) throw Error(ReadOnlyDatabase, {}, {.file = name()});
    transaction_ = storage_->beginWrite();
    allocator_.emplace(*transaction_);
    changesDesign_ = false;
    ++epoch_;
}

void Database::commitWhole() {
    if (changesDesign_) transaction_->noteDesignChange();
    allocator_.reset();
    levels_.clear();
    const std::unique_ptr<WriteTransaction> ended = std::move(transaction_);
    try {
        ended->commit();
    } catch (...) {
        isCatalogStale_ = isCatalogStale_ || changesDesign_;
        throw;
    }
}

void Database::rollbackWhole() {
    allocator_.reset();
    levels_.clear();
    isCatalogStale_ = isCatalogStale_ || changesDesign_;
    // Its end is the rollback.
    transaction_.reset();
}

void Database::undoTo(WriteTransaction::SavepointId savepoint) {
    isCatalogStale_ = isCatalogStale_ || changesDesign_;
    transaction_->rollbackTo(savepoint);
    allocator_->rolledBack();
    ++epoch_;
}

void Database::noteDesignChange() {
    changesDesign_ = true;
    isCatalogStale_ = true;
}

void Database::beginTransaction() {
    if (transaction_ == nullptr) {
        openTransaction();
        levels_.push_back(0);
        return;
    }
    levels_.push_back(transaction_->savepoint());
}

void Database::commitTransaction() {
    if (levels_.empty()) throw Error(NoTransaction, {}, {.file = name()});
    if (levels_.size() == 1) {
        commitWhole();
        return;
    }
    transaction_->release(levels_.back());
    levels_.pop_back();
}

void Database::rollbackTransaction() {
    if (levels_.empty()) throw Error(NoTransaction, {}, {.file = name()});
    if (levels_.size() == 1) {
        rollbackWhole();
        return;
    }
    const WriteTransaction::SavepointId savepoint = levels_.back();
    levels_.pop_back();
    undoTo(savepoint);
}

}  // namespace sg::jet
