#include "host/jet/database/cascade.h"

#include <algorithm>

#include "host/jet/database/table_writer.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

const RealIndex& otherIndex(const RelationEnd& end) {
    return end.other->definition().realIndexes[end.otherIndex];
}

}  // namespace

// --- deleting ---

void CascadingErase::run(TableWriter& table, RowId row) {
    table.begin(*scope_);
    const bool isReferredTo = !table.relations().children().empty();
    if (isReferredTo) {
        rows_.push_back({&table, row});
        seen_.insert(row);
        for (size_t i = 0; i < rows_.size(); ++i)
            addReferring(*rows_[i].table, rows_[i].row);
        for (const Doomed& doomed : rows_)
            checkReferring(*doomed.table, doomed.row);
    }
    for (const Freed& freed : freed_)
        release(freed);
    table.prepareErase(row, TableWriter::Origin::Caller);
    scope_->changing();
    table.applyErase(*scope_, row);
    for (size_t i = 1; i < rows_.size(); ++i) {
        TableWriter& other = *rows_[i].table;
        other.prepareErase(rows_[i].row, TableWriter::Origin::Relation);
        other.applyErase(*scope_, rows_[i].row);
    }
}

void CascadingErase::addReferring(TableWriter& table, RowId row) {
    const auto& ends = table.relations().children();
    if (std::none_of(ends.begin(), ends.end(), [](const auto& end) { return end.cascadeDeletes; }))
        return;
    table.readRelated(row, ends);
    for (const RelationEnd& end : ends) {
        if (!end.cascadeDeletes || !keyAcross(table.indexes(), end, table.oldRow_, key_)) continue;
        end.other->begin(*scope_);
        forEachEntry(table.table().store(), otherIndex(end), ByteView(key_), [&](RowId referring) {
            if (!seen_.insert(referring).second) return true;
            locks_->take(referring);
            rows_.push_back({end.other, referring});
            return true;
        });
    }
}

// Takes the columns away by which the row refers.
void CascadingErase::release(const Freed& freed) {
    TableWriter& table = *freed.table;
    std::vector<Value> values(table.definition().columns.size());
    std::vector<bool> changed(values.size());
    for (const size_t place : table.encoder(freed.index).places())
        changed[place] = true;
    try {
        CascadingUpdate(*scope_, *locks_).run(table, freed.row, values, changed);
    } catch (const Error& error) {
        if (error.code() != NullInIndex && error.code() != NullInRequiredField) throw;
        throw Error(CascadeNullKey, {table.table().name()});
    }
}

// Where a relation does not cascade, rows may go that go anyway.
void CascadingErase::checkReferring(TableWriter& table, RowId row) {
    const auto& ends = table.relations().children();
    if (std::all_of(ends.begin(), ends.end(), [](const auto& end) { return end.cascadeDeletes; }))
        return;
    table.readRelated(row, ends);
    for (const RelationEnd& end : ends) {
        if (end.cascadeDeletes || !keyAcross(table.indexes(), end, table.oldRow_, key_)) continue;
        forEachEntry(table.table().store(), otherIndex(end), ByteView(key_), [&](RowId referring) {
            if (seen_.contains(referring)) return true;
            if (end.nullsOnDelete) {
                locks_->take(referring);
                freed_.push_back({end.other, referring, end.otherIndex});
                return true;
            }
            throw Error(RelatedRecordsExist, {end.other->table().name()});
        });
    }
}

// --- updating ---

void CascadingUpdate::run(TableWriter& table, RowId row, std::vector<Value>& values,
                          const std::vector<bool>& changed) {
    table.begin(*scope_);
    locked_.insert(row);
    table.prepareUpdate(row, values, changed, TableWriter::Origin::Caller);
    table.checkParents(*scope_, values, &changed, row);
    noteReferring(table, row, values);
    scope_->changing();
    table.applyUpdate(*scope_, row, values, changed);
    for (size_t i = 0; i < followings_.size(); ++i) {
        const Following following = std::move(followings_[i]);
        follow(following);
    }
    for (const Changed& other : unchecked_)
        checkParents(other);
}

// Looks at the rows that refer to what the row, which prepareUpdate() has left in its table, was.
void CascadingUpdate::noteReferring(TableWriter& table, RowId row, std::span<const Value> values) {
    for (const RelationEnd& end : table.relations().children()) {
        if (!table.keyChanges_[end.index] || !keyAcross(table.indexes(), end, table.oldRow_, key_))
            continue;
        if (end.cascadeUpdates) {
            Following& following = followings_.emplace_back(Following{&end, key_, {}});
            for (const size_t place : table.encoder(end.index).places())
                following.values.push_back(values[place]);
            continue;
        }
        const auto staysBehind = [&](RowId referring) {
            if (end.other != &table || referring != row) return true;
            // It refers to itself: that may change together.
            IndexKey key;
            table.indexes().makeKey(end.otherIndex, values, key);
            return key.bytes == key_;
        };
        forEachEntry(table.table().store(), otherIndex(end), ByteView(key_), [&](RowId referring) {
            if (!staysBehind(referring)) return true;
            throw Error(RelatedRecordsExist, {end.other->table().name()});
        });
    }
}

void CascadingUpdate::follow(const Following& following) {
    TableWriter& table = *following.end->other;
    const size_t index = following.end->otherIndex;
    table.begin(*scope_);
    const std::vector<Column>& columns = table.definition().columns;
    std::vector<Value> values(columns.size());
    std::vector<bool> changed(columns.size());
    const std::vector<size_t>& places = table.encoder(index).places();
    for (size_t i = 0; i < places.size(); ++i) {
        values[places[i]] = following.values[i];
        changed[places[i]] = true;
    }
    std::vector<RowId> rows;
    forEachEntry(table.table().store(), otherIndex(*following.end), ByteView(following.oldKey),
                 [&](RowId row) {
                     rows.push_back(row);
                     return true;
                 });
    for (const RowId row : rows) {
        if (!seen_.insert({row, index}).second)
            throw Error(TwoCascadingUpdates, {table.table().name(), columns[places.front()].name});
        if (locked_.insert(row).second) locks_->take(row);
        table.prepareUpdate(row, values, changed, TableWriter::Origin::Relation);
        noteReferring(table, row, values);
        table.applyUpdate(*scope_, row, values, changed);
        if (table.relations().parents().size() > 1) unchecked_.push_back({&table, row});
    }
}

// By its columns a row may refer to several tables, of which one may follow later than the row.
void CascadingUpdate::checkParents(const Changed& changed) {
    TableWriter& table = *changed.table;
    table.readRelated(changed.row, table.relations().parents());
    for (const RelationEnd& end : table.relations().parents()) {
        if (!keyAcross(table.indexes(), end, table.oldRow_, key_)) continue;
        end.other->begin(*scope_);
        if (!end.other->indexes().contains(end.otherIndex, ByteView(key_)))
            throw Error(CascadeNeedsRecord, {end.other->table().name()});
    }
}

}  // namespace sg::jet
