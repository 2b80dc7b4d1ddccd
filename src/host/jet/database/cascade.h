#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "host/jet/database/record_locks.h"
#include "host/jet/database/relation_rules.h"
#include "host/jet/database/write_scope.h"
#include "host/jet/format/row_id.h"
#include "host/jet/values/value.h"

// What goes with a row that is deleted or changed, through all relations. No depth of relations,
// and no circle of them, is too much: what is left to do stands in a list.
namespace sg::jet {

class TableWriter;

// Deletes a row and all rows that refer to it in relations that cascade; in relations that say so
// the rows that referred to it refer to none.
class CascadingErase {
  public:
    CascadingErase(WriteScope& scope, RecordLocks& locks) : scope_(&scope), locks_(&locks) {}

    // The caller has the row's lock. What is refused is refused before anything is changed, but for
    // what a row that is to refer to none refuses.
    void run(TableWriter& table, RowId row);

  private:
    struct Doomed {
        TableWriter* table;
        RowId row;
    };

    // A row that stays, and the index by which it refers.
    struct Freed {
        TableWriter* table;
        RowId row;
        size_t index;
    };

    void addReferring(TableWriter& table, RowId row);
    void checkReferring(TableWriter& table, RowId row);
    void release(const Freed& freed);

    WriteScope* scope_;
    RecordLocks* locks_;
    std::vector<Doomed> rows_;
    std::vector<Freed> freed_;
    std::set<RowId> seen_;  // the same; no two tables share a page
    KeyBytes key_;
};

// Changes a row, and in all rows that refer to it in relations that cascade what they refer by.
class CascadingUpdate {
  public:
    CascadingUpdate(WriteScope& scope, RecordLocks& locks) : scope_(&scope), locks_(&locks) {}

    // The caller has the row's lock.
    void run(TableWriter& table, RowId row, std::vector<Value>& values,
             const std::vector<bool>& changed);

  private:
    // Rows that have to follow.
    struct Following {
        const RelationEnd* end;  // of the table whose row has changed
        KeyBytes oldKey;
        std::vector<Value> values;
    };
    struct Changed {
        TableWriter* table;
        RowId row;
    };

    void noteReferring(TableWriter& table, RowId row, std::span<const Value> values);
    void follow(const Following& following);
    void checkParents(const Changed& changed);

    WriteScope* scope_;
    RecordLocks* locks_;
    std::vector<Following> followings_;
    std::set<RowId> locked_;
    std::set<std::pair<RowId, size_t>> seen_;  // row and the index by which it refers
    std::vector<Changed> unchecked_;           // rows that refer in more than one relation
    KeyBytes key_;
};

}  // namespace sg::jet
