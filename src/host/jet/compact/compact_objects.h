#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/jet/compact/compact_source.h"
#include "host/jet/database/database.h"
#include "host/jet/schema/schema_catalog.h"

// The catalog's rows on their way into the new database. For compact*.cpp alone.
namespace sg::jet::compaction {

class ObjectCopier {
  public:
    ObjectCopier(const Source& source, Database& into);

    // One of the objects that every database has.
    bool isBuiltIn(const CatalogObject& object) const { return builtInLike(object) != nullptr; }

    // Adds the row of a table, all columns of it, whose definition is on `page`. `dropped` are
    // columns whose properties go.
    void addTable(const CatalogObject& object, uint32_t page,
                  const std::vector<std::wstring>& dropped);
    // Adds the row of an object that is no table.
    void add(const CatalogObject& object);
    // Adds the row of an object that the source's catalog has lost; of a table with its page.
    void addLost(const std::wstring& name, ObjectType type, uint32_t page = 0);
    // Gives one that every database has what the source has of it.
    void update(const CatalogObject& object);

    // What an object's number has become; none for one that was not kept.
    std::optional<int32_t> newId(int32_t id) const;

    // The rights to all objects that were added or updated.
    void copyAccess();

  private:
    struct Access {
        int32_t object;
        Value account;
        Value rights;
        Value inherits;
    };

    bool readAccess(std::vector<Access>& list) const;
    CatalogObject containerOf(int32_t id) const;
    std::vector<schema::Field> fieldsOf(const CatalogObject& object,
                                        const std::vector<std::wstring>& dropped);
    Value propertiesOf(const Value& held, const CatalogObject& object,
                       const std::vector<std::wstring>& dropped);
    Value accountOf(Value held) const;
    int32_t parentOf(const CatalogObject& object) const;
    void insert(const std::vector<schema::Field>& fields, int32_t id);
    const CatalogObject* builtInLike(const CatalogObject& object) const;
    int32_t numberFor(const CatalogObject& object);
    int32_t unusedId();

    const Source& source_;
    Database& into_;
    std::vector<CatalogObject> builtIn_;
    Bytes databasePage_;                 // of the new database, without its mask
    Value owner_;                        // of objects that tell none
    std::map<int32_t, int32_t> ids_;     // from the source's numbers
    std::map<RowId, int32_t> numbered_;  // by the source's rows
    std::set<int32_t> used_;
    std::vector<int32_t> added_;
    std::vector<int32_t> lost_;  // of these those that the source's catalog does not have
};

}  // namespace sg::jet::compaction
