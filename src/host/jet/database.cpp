#include "host/jet/database.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace sg::jet {
namespace {

constexpr std::wstring_view catalogName = L"MSysObjects";
constexpr std::wstring_view relationsName = L"MSysRelationships";
constexpr std::wstring_view queriesName = L"MSysQueries";

void addTo(std::vector<Error>* damage, const std::vector<Error>& found) {
    if (damage != nullptr) {
        damage->insert(damage->end(), found.begin(), found.end());
    }
}

}  // namespace

Database Database::openReadOnly(const std::wstring& path, size_t cacheBytes) {
    return Database(std::make_unique<FilePageStore>(path, cacheBytes));
}

Database::Database(std::unique_ptr<PageStore> store) : store_(std::move(store)) {
    header_ = readDatabaseHeader(*store_);
    checkCanBeRead();
    try {
        readCatalog();
    } catch (const Error& error) {
        if (error.code() != Damaged) {
            throw;
        }
        // Without its catalog the file is none that can be opened; the place says why.
        ErrorPlace place = error.place();
        place.file = store_->name();
        throw Error(CannotOpenDatabase, {store_->name()}, std::move(place));
    }
}

void Database::checkCanBeRead() const {
    const std::wstring& name = store_->name();
    if (header_.hasPassword || (header_.isEncoded && store_->format().isAce())) {
        throw Error(InvalidPassword, {},
                    {.file = name, .detail = L"the file is protected by a password"});
    }
    if (header_.isEncoded) {
        throw Error(CannotOpenDatabase, {name}, {.file = name, .detail = L"the file is encrypted"});
    }
}

void Database::readCatalog() {
    const Table catalog = tableAt(pages::catalog);
    objects_ = readObjects(catalog, catalogDamage_);
    if (objects_.empty()) {
        throwDamaged(L"the catalog has no objects", pages::catalog);
    }
    // Definitions that were read before their names were known.
    definitions_.clear();
}

const CatalogObject* Database::object(std::wstring_view name, ObjectType type) const {
    const auto found = std::find_if(objects_.begin(), objects_.end(), [&](const auto& o) {
        return o.type == type && equalIgnoringCase(o.name, name);
    });
    return found == objects_.end() ? nullptr : &*found;
}

std::vector<std::wstring> Database::tables(bool withSystem) const {
    std::vector<std::wstring> names;
    for (const CatalogObject& object : objects_) {
        if (object.isTable() && (withSystem || !object.isSystem())) {
            names.push_back(object.name);
        }
    }
    return names;
}

Table Database::table(std::wstring_view name) const {
    const CatalogObject* found = object(name, ObjectType::Table);
    if (found == nullptr) {
        throw Error(InputTableNotFound, {std::wstring(name)}, {.file = store_->name()});
    }
    return tableAt(found->definitionPage());
}

Table Database::tableAt(uint32_t page) const {
    auto& definition = definitions_[page];
    if (!definition) {
        const auto named = std::find_if(objects_.begin(), objects_.end(), [&](const auto& o) {
            return o.isTable() && o.definitionPage() == page;
        });
        std::wstring name = named != objects_.end()  ? named->name
                            : page == pages::catalog ? std::wstring(catalogName)
                                                     : std::wstring();
        try {
            auto read = std::make_shared<TableDefinition>(TableDefinition::read(*store_, page));
            read->name = std::move(name);
            definition = std::move(read);
        } catch (Error& error) {
            definitions_.erase(page);
            error.addTable(name);
            error.addFile(store_->name());
            throw;
        }
    }
    return {*store_, definition};
}

std::vector<CatalogObject> Database::linkedTables() const {
    std::vector<CatalogObject> linked;
    std::copy_if(objects_.begin(), objects_.end(), std::back_inserter(linked),
                 [](const CatalogObject& object) { return object.isLinked(); });
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
    for (const CatalogObject& object : objects_) {
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
        return Properties::parse({bytes->data(), bytes->size()}, store_->format());
    } catch (Error& error) {
        error.addPage(object.row.page);
        error.addTable(object.name);
        error.addFile(store_->name());
        throw;
    }
}

Properties Database::tableProperties(std::wstring_view name) const {
    for (const CatalogObject& object : objects_) {
        if ((object.isTable() || object.isLinked()) && equalIgnoringCase(object.name, name)) {
            return properties(object);
        }
    }
    throw Error(InputTableNotFound, {std::wstring(name)}, {.file = store_->name()});
}

}  // namespace sg::jet
