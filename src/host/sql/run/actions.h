#pragma once

#include <cstdint>

#include "host/sql/run/engine.h"
#include "host/sql/run/session.h"
#include "host/sql/statements.h"

namespace sg::jet {
class Database;
}

namespace sg::sql {

// A transaction that is rolled back unless it is committed.
class Transaction {
  public:
    explicit Transaction(jet::Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

  private:
    jet::Database& database_;
    int depth_;
};

// What a statement runs with.
struct Setting {
    jet::Database& database;
    Engine& engine;
    const std::vector<ParameterDeclaration>& declared;
    const Parameters& parameters;
    Refused refused = Refused::UndoesAll;
};

// Statements that change rows. Each collects what it writes before it writes anything, and answers
// how many records it wrote. A row that a join meets several times is written once, with the values
// of the last time. Of several files that one statement writes each has a transaction of its own:
// they are committed one after the other, so that all are unchanged when anything fails before, but
// a crash between two commits leaves the first ones written.
int64_t insert(const Setting& setting, const Insert& statement);
int64_t update(const Setting& setting, const Update& statement);
int64_t erase(const Setting& setting, const Delete& statement);
// SELECT ... INTO.
int64_t makeTable(const Setting& setting, const Query& query, const IntoTable& into);

// Statements that change the design.
void createTable(const Setting& setting, const CreateTable& statement);
void alterTable(const Setting& setting, const AlterTable& statement);
void createIndex(const Setting& setting, const CreateIndex& statement);
void drop(const Setting& setting, const Drop& statement);

}  // namespace sg::sql
