#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/jet/database/database.h"
#include "host/sql/run/session.h"

class CDaoRecordset;

namespace sg::dao {

// What stands behind a CDaoDatabase and what is made on it, for as long as one of them lives: the
// open database, if there is one, and what is open on it. What is closed throws ObjectClosed.
class DatabaseSession {
  public:
    // Paths in `name` go through resolvePath(). What was open is closed first. Throw jet::Error,
    // and leave it closed then.
    void open(const std::wstring& name, jet::OpenMode mode);
    void create(const std::wstring& name, const jet::Locale& locale);
    // Closes the recordsets too.
    void close();

    bool isOpen() const { return database_ != nullptr; }
    // 0 unless it is open. Each opening has a number of its own, by which those who keep something
    // of it know that it is over.
    uint64_t opening() const { return isOpen() ? opening_ : 0; }
    jet::Database& database() const;

    // Tables and links, stored queries, and relations, each in the order of their names. They hold
    // until the design changes, that is until the next call.
    const std::vector<jet::CatalogObject>& tables();
    const std::vector<jet::CatalogObject>& queries();
    const std::vector<jet::Relation>& relations();
    // The table or link of this name, ignoring case. Throws ItemNotFound.
    jet::CatalogObject table(std::wstring_view name) const;

    // Runs SQL on the database; holds until it is closed.
    sql::Session& sql();
    // Runs a statement that changes rows or the design, as CDaoDatabase::Execute tells; answers how
    // many records it changed.
    int32_t execute(const sql::Statement& statement, const sql::Parameters& parameters,
                    int32_t options);

    void add(CDaoRecordset* recordset) { recordsets_.insert(recordset); }
    void remove(CDaoRecordset* recordset) { recordsets_.erase(recordset); }
    // Throws 3211 when a recordset stands on this table.
    void requireUnused(std::wstring_view table) const;

  private:
    // What was read of a design.
    template <class Item>
    struct Listed {
        uint64_t stamp = 0;  // none has 0
        std::vector<Item> items;
    };

    void adopt(std::unique_ptr<jet::Database> database);

    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<sql::Session> sql_;  // made on first use
    uint64_t opening_ = 0;
    Listed<jet::CatalogObject> tables_;
    Listed<jet::CatalogObject> queries_;
    Listed<jet::Relation> relations_;
    std::set<CDaoRecordset*> recordsets_;
};

}  // namespace sg::dao
