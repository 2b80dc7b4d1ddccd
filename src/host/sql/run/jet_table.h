#pragma once

#include <sqlite3.h>

#include <utility>
#include <vector>

#include "host/jet/index/index_key.h"
#include "host/jet/pages/table.h"
#include "host/sql/run/engine.h"

namespace sg::sql {

// A Jet table as SQLite knows it.
struct JetTable : sqlite3_vtab {
    jet::Table table;
    std::vector<jet::KeyEncoder> encoders;  // by real index
    Engine::Running* running;

    JetTable(jet::Table of, Engine::Running* keeper)
        : sqlite3_vtab{}, table(std::move(of)), running(keeper) {
        for (const jet::RealIndex& index : table.definition().realIndexes) {
            encoders.emplace_back(table.store().format(), table.definition(), index);
        }
    }
};

}  // namespace sg::sql
