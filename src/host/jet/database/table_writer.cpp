#include "host/jet/database/table_writer.h"

#include <algorithm>
#include <cstring>
#include <random>

#include "host/jet/database/cascade.h"
#include "host/jet/database/database.h"
#include "host/jet/database/record_locks.h"
#include "host/jet/database/write_scope.h"
#include "host/jet/format/error.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/values/value_convert.h"

namespace sg::jet {
namespace {

bool isSame(const RealIndex& a, const RealIndex& b) {
    return a.columns == b.columns && a.ownedPages == b.ownedPages && a.rootPage == b.rootPage &&
           a.flags == b.flags;
}

// As far as rows and indexes are concerned. Counts change with every row.
bool isSameDesign(const TableDefinition& a, const TableDefinition& b) {
    return a.maxColumns == b.maxColumns && a.variableColumns == b.variableColumns &&
           a.ownedPages == b.ownedPages && a.freePages == b.freePages && a.columns == b.columns &&
           a.indexes == b.indexes &&
           std::equal(a.realIndexes.begin(), a.realIndexes.end(), b.realIndexes.begin(),
                      b.realIndexes.end(), isSame);
}

// A random identifier (RFC 4122, version 4), in the order of bytes that Guid has.
Guid makeGuid() {
    std::random_device random;
    Guid guid;
    for (size_t i = 0; i < guid.bytes.size(); i += 4) {
        const uint32_t word = random();
        std::memcpy(&guid.bytes[i], &word, 4);
    }
    guid.bytes[7] = static_cast<uint8_t>((guid.bytes[7] & 0x0f) | 0x40);
    guid.bytes[8] = static_cast<uint8_t>((guid.bytes[8] & 0x3f) | 0x80);
    return guid;
}

// Runs `work` so that an error which leaves it tells file and table.
template <class Work>
auto placed(const Table& table, Work work) {
    try {
        return work();
    } catch (Error& error) {
        error.addTable(table.name());
        error.addFile(table.store().name());
        throw;
    }
}

}  // namespace

// --- the design ---

TableWriter::TableWriter(Database& database, Table table)
    : database_(&database), table_(std::move(table)), designStamp_(database.designStamp()) {
    adopt(table_);
}

TableWriter::~TableWriter() = default;

void TableWriter::adopt(Table table) {
    epoch_ = 0;
    rows_.reset();
    rules_.reset();
    relations_.reset();
    table_ = std::move(table);
    const TableDefinition& design = definition();
    const Format& format = table_.store().format();
    indexes_.emplace(format, design);
    draft_.emplace(design, format);
    cursor_.emplace(table_);
    keys_.resize(indexes_->count());
    oldKeys_.resize(indexes_->count());
    newKeys_.resize(indexes_->count());
    oldRow_.resize(design.columns.size());
    counters_.clear();
    autoGuids_.clear();
    for (size_t i = 0; i < design.columns.size(); ++i) {
        const Column& column = design.columns[i];
        if ((column.flags & columns::autoNumberFlag) != 0 && column.type == ColumnType::Long)
            counters_.push_back(i);
        if ((column.flags & columns::autoGuidFlag) != 0 && column.type == ColumnType::Guid)
            autoGuids_.push_back(i);
    }
    isIndexed_.assign(design.columns.size(), false);
    for (size_t i = 0; i < indexes_->count(); ++i) {
        for (const size_t place : encoder(i).places())
            isIndexed_[place] = true;
    }
    const auto isReferredTo = [](const LogicalIndex& index) {
        return index.isForeign() && index.relatedType == LogicalIndex::referredTo;
    };
    cascadesUpdates_ = cascadesDeletes_ = false;
    for (const LogicalIndex& index : design.indexes) {
        cascadesUpdates_ = cascadesUpdates_ || (isReferredTo(index) && index.cascadeUpdates);
        cascadesDeletes_ = cascadesDeletes_ ||
                           (isReferredTo(index) && (index.cascadeDeletes || index.nullsOnDelete));
    }
}

bool TableWriter::followDesign() {
    const uint64_t stamp = database_->designStamp();
    if (stamp == designStamp_) return true;
    try {
        Table now = database_->tableAt(definition().page);
        // One that has gone may still stand on its page, but nothing names it.
        const bool hasGone = now.name().empty() && !table_.name().empty();
        if (hasGone || !isSameDesign(definition(), now.definition())) return false;
        adopt(std::move(now));
    } catch (const Error& error) {
        if (error.code() != Damaged) throw;
        return false;
    }
    designStamp_ = stamp;
    return true;
}

void TableWriter::requireDesign() {
    if (!followDesign())
        throw Error(ObjectClosed, {}, {.detail = L"the table's design has changed"});
}

const TableRules& TableWriter::rules() const {
    if (rules_ != nullptr) return *rules_;
    Properties properties;
    const std::vector<CatalogObject>& objects = database_->objects();
    const auto found = std::find_if(objects.begin(), objects.end(), [&](const auto& object) {
        return object.isTable() && object.definitionPage() == definition().page;
    });
    if (found != objects.end()) {
        const CatalogObject object = *found;  // reading may renew the list
        properties = database_->properties(object);
    }
    rules_ = std::make_unique<TableRules>(definition(), properties);
    return *rules_;
}

RelationRules& TableWriter::relations() {
    if (relations_ == nullptr) relations_ = std::make_unique<RelationRules>(*database_, *this);
    return *relations_;
}

void TableWriter::begin(WriteScope& scope) {
    requireDesign();
    if (epoch_ == database_->writeEpoch()) return;
    indexes_->requireUsable();
    for (const Column& column : definition().columns) {
        if (!column.isCalculated() && column.type != ColumnType::Complex) continue;
        throw Error(OperationNotSupported, {column.name},
                    {.detail = L"the values of column " + column.name + L" can only be read"});
    }
    PageAllocator& allocator = scope.allocator();
    const TableDefinition& design = definition();
    rows_.emplace(allocator, design.page, design.ownedPages, design.freePages);
    indexes_->begin(allocator);
    epoch_ = database_->writeEpoch();
}

// --- adding ---

RowId TableWriter::insert(std::vector<Value>& row) {
    return placed(table_, [&] { return addRow(row, false); });
}

RowId TableWriter::insertCopy(std::vector<Value>& row) {
    return placed(table_, [&] { return addRow(row, true); });
}

RowId TableWriter::addRow(std::vector<Value>& row, bool isCopy) {
    WriteScope scope(*database_, WriteScope::Undo::Transaction);
    begin(scope);
    made_.clear();
    try {
        checkRow(scope, row, isCopy);
        scope.changing();
        const RowId id = putRow(scope, row);
        scope.done();
        return id;
    } catch (...) {
        // Another try gets new ones.
        for (const size_t column : made_)
            row[column] = Value();
        throw;
    }
}

// Leaves the row's keys and its draft behind.
void TableWriter::checkRow(WriteScope& scope, std::vector<Value>& row, bool isCopy) {
    if (row.size() != definition().columns.size()) throw Error(InvalidArgument);
    if (!isCopy) {
        convert(row, nullptr);
        makeCounters(row, scope.pages());
        rules().check(row);
    }
    keyChanges_.assign(indexes_->count(), true);
    for (size_t i = 0; i < indexes_->count(); ++i) {
        indexes_->makeKey(i, row, keys_[i]);
        indexes_->check(i, keys_[i]);
    }
    if (!isCopy) checkParents(scope, row, nullptr, {});
    draft_->clear();
    for (size_t i = 0; i < row.size(); ++i)
        draft_->set(i, row[i]);
    draft_->encode();
}

void TableWriter::convert(std::vector<Value>& row, const std::vector<bool>* changed) const {
    for (size_t i = 0; i < row.size(); ++i) {
        if (changed == nullptr || (*changed)[i]) convertTo(definition().columns[i], row[i]);
    }
}

void TableWriter::makeCounters(std::vector<Value>& row, const PageStore& pages) {
    for (const size_t column : counters_) {
        if (!isNull(row[column])) continue;
        row[column] = static_cast<int32_t>(readAutoNumber(pages, definition()) +
                                           readAutoNumberStep(pages, definition()));
        made_.push_back(column);
    }
    for (const size_t column : autoGuids_) {
        if (!isNull(row[column])) continue;
        row[column] = makeGuid();
        made_.push_back(column);
    }
}

// The rows that this one refers to are there. Needs the row's keys.
void TableWriter::checkParents(WriteScope& scope, std::span<const Value> row,
                               const std::vector<bool>* changed, RowId id) {
    for (const RelationEnd& end : relations().parents()) {
        if (changed != nullptr && !indexes_->hasColumn(end.index, *changed)) continue;
        if (!keyAcross(*indexes_, end, row, related_)) continue;
        TableWriter& parent = *end.other;
        parent.begin(scope);
        // A row may refer to itself: as it will be, not as it was.
        const bool movesItself = &parent == this && keyChanges_[end.otherIndex];
        if (movesItself && keys_[end.otherIndex].bytes == related_) continue;
        if (!parent.indexes().contains(end.otherIndex, ByteView(related_),
                                       movesItself ? id : RowId()))
            throw Error(RelatedRecordRequired, {parent.table().name()});
    }
}

// Nothing is refused any more.
RowId TableWriter::putRow(WriteScope& scope, std::span<const Value> row) {
    draft_->store(scope.allocator());
    const RowId id = rows_->insert(draft_->bytes());
    for (size_t i = 0; i < keys_.size(); ++i)
        newKeys_[i] = indexes_->insert(i, keys_[i], id);
    DefinitionCounters counters(scope.pages(), definition());
    counters.setRowCount(counters.rowCount() + 1);
    countKeys(counters);
    for (const size_t column : counters_)
        countOn(counters, row[column]);
    return id;
}

// The definition counts the different keys that an index has ever got: a key that goes stays
// counted, which is how other programs have it.
void TableWriter::countKeys(DefinitionCounters& counters) const {
    for (size_t i = 0; i < newKeys_.size(); ++i) {
        if (newKeys_[i]) counters.addEntry(i);
    }
}

// The next number is above those that were given, or below them where the step is negative; behind
// the highest that there is it is the lowest.
void TableWriter::countOn(DefinitionCounters& counters, const Value& value) {
    const int32_t* number = std::get_if<int32_t>(&value);
    if (number == nullptr) return;
    const uint32_t last = counters.autoNumber();
    const uint32_t step = counters.autoNumberStep();
    const bool isNext = static_cast<uint32_t>(*number) == last + step;
    const bool isDescending = static_cast<int32_t>(step) < 0;
    const bool isBeyond =
        isDescending ? *number < static_cast<int32_t>(last) : *number > static_cast<int32_t>(last);
    if (isNext || isBeyond) counters.setAutoNumber(static_cast<uint32_t>(*number));
}

// --- changing ---

void TableWriter::read(RowId id, Origin origin) {
    cursor_->release();  // what a refused change has left there is of an older state
    if (cursor_->seek(id)) return;
    if (origin == Origin::Relation) throwDamaged(L"an index entry points at no row", id.page);
    throw Error(RecordDeleted);
}

void TableWriter::readRelated(RowId id, const std::vector<RelationEnd>& ends) {
    read(id, Origin::Relation);
    for (const RelationEnd& end : ends) {
        for (const size_t place : encoder(end.index).places())
            cursor_->value(place, oldRow_[place]);
    }
    cursor_->release();
}

void TableWriter::update(RowId id, std::vector<Value>& row, const std::vector<bool>& changed,
                         bool locked) {
    placed(table_, [&] {
        requireDesign();
        RecordLocks locks(database_->storage());
        WriteScope scope(*database_, cascadesUpdates_ ? WriteScope::Undo::Operation
                                                      : WriteScope::Undo::Transaction);
        if (!locked) locks.take(id);
        CascadingUpdate(scope, locks).run(*this, id, row, changed);
        scope.done();
    });
}

void TableWriter::prepareUpdate(RowId id, std::vector<Value>& row, const std::vector<bool>& changed,
                                Origin origin) {
    const std::vector<Column>& columns = definition().columns;
    if (row.size() != columns.size() || changed.size() != columns.size())
        throw Error(InvalidArgument);
    convert(row, &changed);
    const bool needsAll = rules().hasTableRule();
    read(id, origin);
    draft_->clear();
    for (size_t i = 0; i < columns.size(); ++i) {
        if (changed[i]) {
            draft_->set(i, row[i]);
            draft_->giveUp(i, cursor_->row());
            continue;
        }
        draft_->keep(i, cursor_->row());
        if (!columns[i].isLongValue() || isIndexed_[i] || needsAll) cursor_->value(i, row[i]);
    }
    rules().check(row, changed);
    prepareKeys(id, row, changed, origin);
    cursor_->release();
    draft_->encode();
}

void TableWriter::prepareKeys(RowId id, std::span<const Value> row,
                              const std::vector<bool>& changed, Origin origin) {
    keyChanges_.assign(indexes_->count(), false);
    for (size_t i = 0; i < indexes_->count(); ++i) {
        if (!indexes_->hasColumn(i, changed)) continue;
        for (const size_t place : encoder(i).places())
            cursor_->value(place, oldRow_[place]);
        IndexKey& key = keys_[i];
        IndexKey& old = oldKeys_[i];
        indexes_->makeKey(i, oldRow_, old);
        indexes_->makeKey(i, row, key);
        keyChanges_[i] = key.hasEntry != old.hasEntry || key.bytes != old.bytes;
        if (!keyChanges_[i]) continue;
        try {
            indexes_->check(i, key, id);
        } catch (const Error& error) {
            if (origin == Origin::Caller) throw;
            if (error.code() == NullInIndex) throw Error(CascadeNullKey, {table_.name()});
            if (error.code() == DuplicateKey) throw Error(CascadeDuplicateKey, {table_.name()});
            throw;
        }
    }
}

void TableWriter::applyUpdate(WriteScope& scope, RowId id, std::span<const Value> row,
                              const std::vector<bool>& changed) {
    draft_->store(scope.allocator());
    rows_->update(id, draft_->bytes());
    bool isCounted = true;
    for (size_t i = 0; i < keys_.size(); ++i) {
        newKeys_[i] = false;
        if (!keyChanges_[i]) continue;
        indexes_->erase(i, oldKeys_[i], id);
        newKeys_[i] = indexes_->insert(i, keys_[i], id);
        isCounted = isCounted && !newKeys_[i];
    }
    for (const size_t column : counters_)
        isCounted = isCounted && !changed[column];
    if (isCounted) return;
    DefinitionCounters counters(scope.pages(), definition());
    countKeys(counters);
    for (const size_t column : counters_) {
        if (changed[column]) countOn(counters, row[column]);
    }
}

// --- deleting ---

void TableWriter::erase(RowId id, bool locked) {
    placed(table_, [&] {
        requireDesign();
        RecordLocks locks(database_->storage());
        WriteScope scope(*database_, cascadesDeletes_ ? WriteScope::Undo::Operation
                                                      : WriteScope::Undo::Transaction);
        if (!locked) locks.take(id);
        CascadingErase(scope, locks).run(*this, id);
        scope.done();
    });
}

void TableWriter::prepareErase(RowId id, Origin origin) {
    read(id, origin);
    draft_->clear();
    for (size_t i = 0; i < definition().columns.size(); ++i) {
        draft_->giveUp(i, cursor_->row());
        if (isIndexed_[i]) cursor_->value(i, oldRow_[i]);
    }
    cursor_->release();
    for (size_t i = 0; i < indexes_->count(); ++i)
        indexes_->makeKey(i, oldRow_, oldKeys_[i]);
}

void TableWriter::applyErase(WriteScope& scope, RowId id) {
    for (size_t i = 0; i < oldKeys_.size(); ++i)
        indexes_->erase(i, oldKeys_[i], id);
    draft_->store(scope.allocator());
    rows_->erase(id);
    DefinitionCounters counters(scope.pages(), definition());
    if (counters.rowCount() > 0) counters.setRowCount(counters.rowCount() - 1);
}

}  // namespace sg::jet
