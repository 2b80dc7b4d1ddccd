#include "host/jet/schema/schema_indexes.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_writer.h"
#include "host/jet/index/sort_order.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/pages/usage_map_editor.h"
#include "host/jet/schema/schema.h"

namespace sg::jet {
namespace schema {
namespace {

constexpr int noColumns = 3264;
constexpr int tooManyColumns = 3277;
constexpr int inRelation = 3281;
constexpr int invalidColumn = 3409;

constexpr size_t mostIndexes = 32;
constexpr uint8_t meaningOfFlags =
    indexes::uniqueFlag | indexes::ignoreNullsFlag | indexes::requiredFlag;
constexpr uint8_t inRelated = 1;  // LogicalIndex::relatedType of the table referred to

uint8_t flagsOf(const IndexDesign& design) {
    uint8_t flags = 0;
    if (design.unique || design.primary) flags |= indexes::uniqueFlag;
    if (design.required || design.primary) flags |= indexes::requiredFlag;
    if (design.ignoreNulls) flags |= indexes::ignoreNullsFlag;
    return flags;
}

std::vector<IndexColumn> columnsOf(const TableDefinition& table, const IndexDesign& design) {
    if (design.columns.empty()) throw Error(noColumns, {}, {.table = table.name});
    if (design.columns.size() > indexes::maxColumns) {
        throw Error(tooManyColumns, {}, {.table = table.name});
    }
    std::vector<IndexColumn> list;
    for (const IndexColumnDesign& one : design.columns) {
        const auto place = table.columnByName(one.column);
        if (!place) throw Error(invalidColumn, {one.column}, {.table = table.name});
        const uint16_t number = table.columns[*place].number;
        if (std::any_of(list.begin(), list.end(),
                        [&](const IndexColumn& other) { return other.column == number; })) {
            throw Error(FieldDefinedTwice, {one.column}, {.table = table.name});
        }
        list.push_back({number, one.ascending});
    }
    return list;
}

bool sameColumns(const std::vector<IndexColumn>& a, const std::vector<IndexColumn>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const IndexColumn& one, const IndexColumn& other) {
                          return one.column == other.column && one.ascending == other.ascending;
                      });
}

// Programs list a table's indexes in the order of their names.
bool comesBefore(const LogicalIndex& a, const LogicalIndex& b) {
    KeyBytes keyOfA;
    KeyBytes keyOfB;
    if (appendTextKey(TextOrder::GeneralLegacy, a.name, false, keyOfA) &&
        appendTextKey(TextOrder::GeneralLegacy, b.name, false, keyOfB)) {
        return keyOfA < keyOfB;
    }
    return lowerCased(a.name) < lowerCased(b.name);
}

// The entries of an index, their keys one behind the other in one place of memory.
class EntryList {
  public:
    void add(const KeyBytes& key, RowId row, bool isCompared) {
        entries_.push_back({bytes_.size(), static_cast<uint32_t>(key.size()), row, isCompared});
        bytes_.insert(bytes_.end(), key.begin(), key.end());
    }
    void sort() {
        std::sort(entries_.begin(), entries_.end(), [this](const Entry& a, const Entry& b) {
            const int order = compare(a, b);
            return order != 0 ? order < 0 : a.row < b.row;
        });
    }
    size_t size() const { return entries_.size(); }
    void copy(size_t i, IndexEntry& into) const {
        const uint8_t* key = bytes_.data() + entries_[i].start;
        into.key.assign(key, key + entries_[i].size);
        into.row = entries_[i].row;
    }
    // The following are for sorted entries.
    size_t distinctKeys() const {
        size_t count = entries_.empty() ? 0 : 1;
        for (size_t i = 1; i < entries_.size(); ++i)
            count += repeatsKey(i) ? 0 : 1;
        return count;
    }
    bool hasDuplicates() const {
        for (size_t i = 1; i < entries_.size(); ++i) {
            if (entries_[i].isCompared && repeatsKey(i)) return true;
        }
        return false;
    }

  private:
    struct Entry {
        size_t start;
        uint32_t size;
        RowId row;
        bool isCompared;  // in a unique index
    };

    bool repeatsKey(size_t i) const { return compare(entries_[i - 1], entries_[i]) == 0; }
    int compare(const Entry& a, const Entry& b) const {
        const int order =
            std::memcmp(bytes_.data() + a.start, bytes_.data() + b.start, std::min(a.size, b.size));
        return order != 0 ? order : (a.size < b.size ? -1 : a.size > b.size ? 1 : 0);
    }

    std::vector<uint8_t> bytes_;
    std::vector<Entry> entries_;
};

EntryList entriesOf(const Table& table, const RealIndex& index, const std::wstring& name) {
    const KeyEncoder encoder(table.store().format(), table.definition(), index);
    encoder.requireUsable();
    EntryList entries;
    std::vector<Value> values(encoder.places().size());
    KeyBytes key;
    for (RowCursor rows = table.scan(); rows.next();) {
        for (size_t i = 0; i < values.size(); ++i)
            rows.value(encoder.places()[i], values[i]);
        const bool hasNull = std::any_of(values.begin(), values.end(), isNull);
        if (hasNull && index.isRequired()) {
            throw Error(NullInIndex, {name}, {.table = table.name()});
        }
        if (!encoder.hasEntry(values)) continue;
        encoder.encode(values, key);
        entries.add(key, rows.id(), !hasNull);
    }
    entries.sort();
    if (index.isUnique() && entries.hasDuplicates()) {
        throw Error(DuplicateKey, {name}, {.table = table.name()});
    }
    return entries;
}

}  // namespace

size_t addDesignedIndex(TableDefinition& table, const IndexDesign& design, const Format& format) {
    checkName(design.name);
    if (table.indexByName(design.name) != nullptr) {
        throw Error(IndexExists, {}, {.table = table.name});
    }
    if (design.primary && table.primaryKey() != nullptr) {
        throw Error(PrimaryKeyExists, {}, {.table = table.name});
    }
    const size_t real = realIndexOver(table, columnsOf(table, design), flagsOf(design));
    KeyEncoder(format, table, table.realIndexes[real]).requireUsable();
    LogicalIndex index;
    index.name = design.name;
    index.realIndex = static_cast<uint32_t>(real);
    index.kind = design.primary ? IndexKind::Primary : IndexKind::Normal;
    addLogicalIndex(table, std::move(index));
    return real;
}

size_t realIndexOver(TableDefinition& table, const std::vector<IndexColumn>& columns,
                     uint8_t flags) {
    for (size_t i = 0; i < table.realIndexes.size(); ++i) {
        if ((table.realIndexes[i].flags & meaningOfFlags) == flags &&
            sameColumns(table.realIndexes[i].columns, columns)) {
            return i;
        }
    }
    RealIndex index;
    index.columns = columns;
    index.flags = flags;
    table.realIndexes.push_back(std::move(index));
    return table.realIndexes.size() - 1;
}

uint32_t addLogicalIndex(TableDefinition& table, LogicalIndex index) {
    if (table.indexes.size() >= mostIndexes) {
        throw Error(TooManyIndexes, {table.name}, {.table = table.name});
    }
    index.number = 0;
    for (const LogicalIndex& other : table.indexes)
        index.number = std::max(index.number, other.number + 1);
    const uint32_t number = index.number;
    table.indexes.insert(
        std::upper_bound(table.indexes.begin(), table.indexes.end(), index, comesBefore),
        std::move(index));
    return number;
}

void makeIndex(SchemaChange& change, TableDefinition& table, size_t real,
               const std::wstring& name) {
    RealIndex& index = table.realIndexes[real];
    if (index.rootPage != 0) return;
    const EntryList entries = entriesOf(change.table(table), index, name);
    index.ownedPages = createMap(change.allocator(), table.ownedPages);
    index.rootPage = createTree(change.allocator(), table.page, index.ownedPages);
    index.entryCount = static_cast<uint32_t>(entries.distinctKeys());
    size_t next = 0;
    buildTree(change.allocator(), index, table.page, [&](IndexEntry& entry) {
        if (next == entries.size()) return false;
        entries.copy(next++, entry);
        return true;
    });
}

void dropIndexPages(PageAllocator& allocator, const RealIndex& index) {
    dropTree(allocator, index);
    if (index.ownedPages.page != 0) dropMap(allocator, index.ownedPages);
}

void removeLogicalIndex(PageAllocator& allocator, TableDefinition& table, size_t place) {
    const uint32_t real = table.indexes[place].realIndex;
    table.indexes.erase(table.indexes.begin() + static_cast<std::ptrdiff_t>(place));
    const bool isInUse =
        std::any_of(table.indexes.begin(), table.indexes.end(),
                    [&](const LogicalIndex& index) { return index.realIndex == real; });
    if (isInUse) return;
    dropIndexPages(allocator, table.realIndexes[real]);
    table.realIndexes.erase(table.realIndexes.begin() + static_cast<std::ptrdiff_t>(real));
    for (LogicalIndex& index : table.indexes) {
        if (index.realIndex > real) --index.realIndex;
    }
}

namespace {

// Whether the relations that stand on an index still have one when `index` goes, which is none of
// theirs. What refers from here keeps the tree, which then forbids nothing any more; what is
// referred to needs an index that programs see.
void releaseFromRelations(TableDefinition& table, const LogicalIndex& index) {
    bool isReferredTo = false;
    bool refers = false;
    for (const LogicalIndex& other : table.indexes) {
        if (&other == &index || other.realIndex != index.realIndex) continue;
        if (!other.isForeign()) return;
        (other.relatedType == inRelated ? isReferredTo : refers) = true;
    }
    if (isReferredTo) throw Error(inRelation, {}, {.table = table.name});
    if (refers) {
        uint8_t& flags = table.realIndexes[index.realIndex].flags;
        flags = static_cast<uint8_t>(flags & ~(indexes::uniqueFlag | indexes::requiredFlag));
    }
}

}  // namespace
}  // namespace schema

using namespace schema;

void createIndex(Database& database, std::wstring_view name, const IndexDesign& design) {
    SchemaChange change(database);
    const CatalogObject object = ownTable(database, name);
    TableDefinition table = change.definition(object);
    const size_t real = addDesignedIndex(table, design, change.format());

    change.changing();
    makeIndex(change, table, real, design.name);
    writeDefinition(change.allocator(), table);
    changeObject(database, object);
    change.done();
}

void dropIndex(Database& database, std::wstring_view name, std::wstring_view index) {
    SchemaChange change(database);
    const CatalogObject object = ownTable(database, name);
    TableDefinition table = change.definition(object);
    const LogicalIndex* found = table.indexByName(index);
    if (found == nullptr) throw Error(IndexNotFound, {object.name, std::wstring(index)});
    if (found->isForeign()) throw Error(inRelation, {}, {.table = object.name});
    releaseFromRelations(table, *found);

    change.changing();
    removeLogicalIndex(change.allocator(), table,
                       static_cast<size_t>(found - table.indexes.data()));
    writeDefinition(change.allocator(), table);
    changeObject(database, object);
    change.done();
}

}  // namespace sg::jet
