#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "base/export.h"
#include "host/jet/database/relation_rules.h"
#include "host/jet/database/row_draft.h"
#include "host/jet/database/table_indexes.h"
#include "host/jet/database/table_rules.h"
#include "host/jet/index/index_key.h"
#include "host/jet/pages/row_store.h"
#include "host/jet/pages/table.h"
#include "host/jet/values/value.h"

namespace sg::jet {

class Database;
class DefinitionCounters;
class WriteScope;

// Inserts, updates and deletes one table's rows, with everything that hangs on them: indexes, long
// values, counters, counts, rules and relations. Every call is atomic, and a part of the open
// transaction when there is one: what is refused costs nothing else of it. Got from
// Database::writer(); it stays until the table's design changes.
//
// Rows are vectors with one value for each column, in the order of TableDefinition::columns. Values
// of other types are converted (convertTo()).
//
// The calls throw
// - ReadOnlyDatabase, and 3186 when another process writes for too long; ObjectClosed when the
//   table's design has changed since Database::writer();
// - OperationNotSupported when an index of the table or of a related one has keys that we can't
//   make (with the index's name), a column is of a kind that is only read (Complex, calculated), or
//   a text has a character without a weight;
// - ConversionError, FieldTooSmall, NullInRequiredField, ZeroLengthField, 3316, 3317: a value, with
//   its column's name (TableRules::check());
// - DuplicateKey, NullInIndex (of a primary key or a required index) with the index's name. An
//   index that is unique may have any number of rows with a Null in one of its columns;
// - RelatedRecordRequired with the other table's name, RelatedRecordsExist likewise; where a change
//   that a relation makes in another table breaks what is asked of that one, 3396 (a row is
//   required there), 3398 (its key would be Null), 3399 (its key is there already) and 3400 (two
//   changes to one row) with its name;
// - RecordTooLarge; RecordDeleted when the row is gone; LockedByUser and 3188 when somebody else
//   edits it.
class SG_API TableWriter {
  public:
    TableWriter(Database& database, Table table);
    ~TableWriter();
    TableWriter(const TableWriter&) = delete;
    TableWriter& operator=(const TableWriter&) = delete;

    const Table& table() const { return table_; }
    const TableDefinition& definition() const { return table_.definition(); }
    // Read from the table's properties on first use.
    const TableRules& rules() const;
    const TableIndexes& indexes() const { return *indexes_; }
    // Of a real index.
    const KeyEncoder& encoder(size_t realIndex) const { return indexes_->encoder(realIndex); }

    // Takes note of a change in the design of other tables, and of this one's rules and name. False
    // when its own columns or indexes have changed: then the object is of no use any more.
    bool followDesign();

    // Adds a row and answers its id. A counter that is Null gets its next value and an automatic
    // Guid a new one, both of which are set in `row`; a counter that is given is kept, and counts
    // on from there when it is higher (or lower, where it counts down).
    RowId insert(std::vector<Value>& row);

    // Gives the row new values: those of `row` whose flag in `changed` is set; the others of `row`
    // may be replaced by what they are. `locked` tells that the caller holds the record's lock.
    // Related rows follow where the relation cascades.
    void update(RowId id, std::vector<Value>& row, const std::vector<bool>& changed,
                bool locked = false);

    // Deletes the row, and the rows that refer to it where their relation cascades.
    void erase(RowId id, bool locked = false);

    // insert() of a row for a copy of the table: its values are stored as they are, counters too,
    // and neither rules nor relations are asked. Duplicates are refused.
    RowId insertCopy(std::vector<Value>& row);

  private:
    friend class CascadingErase;
    friend class CascadingUpdate;

    // Whose change it is that is looked at.
    enum class Origin { Caller, Relation };

    void adopt(Table table);
    void requireDesign();
    RelationRules& relations();
    void begin(WriteScope& scope);

    RowId addRow(std::vector<Value>& row, bool isCopy);
    void checkRow(WriteScope& scope, std::vector<Value>& row, bool isCopy);
    void makeCounters(std::vector<Value>& row, const PageStore& pages);
    void convert(std::vector<Value>& row, const std::vector<bool>* changed) const;
    void checkParents(WriteScope& scope, std::span<const Value> row,
                      const std::vector<bool>* changed, RowId id);
    RowId putRow(WriteScope& scope, std::span<const Value> row);
    void countKeys(DefinitionCounters& counters) const;
    static void countOn(DefinitionCounters& counters, const Value& value);

    // Rows are changed in two steps. The first one refuses what can't be done, and changes nothing.
    void read(RowId id, Origin origin);
    // Sets the columns of these relations in oldRow_.
    void readRelated(RowId id, const std::vector<RelationEnd>& ends);
    void prepareUpdate(RowId id, std::vector<Value>& row, const std::vector<bool>& changed,
                       Origin origin);
    void prepareKeys(RowId id, std::span<const Value> row, const std::vector<bool>& changed,
                     Origin origin);
    void applyUpdate(WriteScope& scope, RowId id, std::span<const Value> row,
                     const std::vector<bool>& changed);
    void prepareErase(RowId id, Origin origin);
    void applyErase(WriteScope& scope, RowId id);

    Database* database_;
    Table table_;
    uint64_t designStamp_ = 0;
    std::vector<size_t> counters_;   // columns
    std::vector<size_t> autoGuids_;  // columns
    std::vector<bool> isIndexed_;    // by column
    bool cascadesUpdates_ = false;
    bool cascadesDeletes_ = false;
    mutable std::unique_ptr<TableRules> rules_;
    std::optional<TableIndexes> indexes_;
    std::unique_ptr<RelationRules> relations_;

    // Of one transaction, as far as nothing was undone in it.
    uint64_t epoch_ = 0;
    std::optional<RowStore> rows_;

    // Of the row at hand, kept for their memory.
    std::optional<RowDraft> draft_;
    std::optional<RowCursor> cursor_;  // its pages are let go before anything is changed
    std::vector<IndexKey> keys_;       // by real index: what it gets
    std::vector<IndexKey> oldKeys_;    // what it had
    std::vector<bool> newKeys_;        // whether the index had no such key
    std::vector<bool> keyChanges_;     // whether these differ
    std::vector<Value> oldRow_;        // the columns that an index with changes has
    std::vector<size_t> made_;         // counters that were set in the row
    KeyBytes related_;
};

}  // namespace sg::jet
