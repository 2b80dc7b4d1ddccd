#pragma once

#include <cstdint>
#include <set>
#include <span>

#include "host/jet/database/database.h"

// Reads all that a file has, whatever its bytes are; shared by tests and by the fuzz target.
namespace sg::jet::test {

struct ReadCount {
    size_t values = 0;
    size_t errors = 0;  // thrown and gone on after
};

// Every value of every table, each definition once, then relations, queries and properties. Stops
// after `mostValues` values or errors, for files in which every row points to the same long value.
// Throws what opening the file throws.
inline ReadCount readEverything(std::span<const uint8_t> bytes, size_t mostValues = 100000) {
    ReadCount count;
    const Database db(std::make_unique<MemoryPageStore>(bytes, L"memory.mdb"));
    const auto guarded = [&](auto work) {
        try {
            work();
        } catch (const Error&) {
            ++count.errors;
        }
    };
    const auto isOver = [&] { return count.values + count.errors > mostValues; };
    std::set<uint32_t> seen;
    for (const CatalogObject& object : db.objects()) {
        if (isOver()) {
            break;
        }
        guarded([&] { db.properties(object); });
        if (!object.isTable() || !seen.insert(object.definitionPage()).second) {
            continue;
        }
        guarded([&] {
            const Table table = db.tableAt(object.definitionPage());
            RowCursor rows(table);
            Value value;
            for (bool more = true; more && !isOver();) {
                bool stands = false;
                guarded([&] { more = stands = rows.next(); });
                for (size_t i = 0; stands && i < table.definition().columns.size(); ++i) {
                    guarded([&] { rows.value(i, value); });
                    ++count.values;
                }
            }
        });
    }
    std::vector<Error> damage;
    db.relations(&damage);
    for (const Query& query : db.queries(&damage)) {
        guarded([&] { query.sql(); });
    }
    count.errors += damage.size() + db.catalogDamage().size();
    return count;
}

}  // namespace sg::jet::test
