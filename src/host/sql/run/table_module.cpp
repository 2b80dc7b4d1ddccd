#include "host/sql/run/table_module.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/pages/table.h"
#include "host/sql/run/functions.h"
#include "host/sql/run/sqlite_values.h"

namespace sg::sql {
namespace {

struct Source {
    TableUse use;
    Engine::Running* running;
};

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

enum class Bound : char { Equal = '=', Low = '>', High = '<' };

struct JetCursor : sqlite3_vtab_cursor {
    explicit JetCursor(const jet::Table& table) : sqlite3_vtab_cursor{}, rows(table) {}

    jet::RowCursor rows;
    std::optional<jet::IndexCursor> index;
    jet::KeyBytes high;  // the last keys begin with it; none: to the end
    bool ended = true;
    jet::Value value;

    JetTable& table() const { return *static_cast<JetTable*>(pVtab); }

    // To the row of the index's entry; rows that are gone are passed over.
    void settle(bool found) {
        while (found) {
            const jet::ByteView key = index->key();
            const size_t common = std::min(key.size(), high.size());
            const int order = common == 0 ? 0 : std::memcmp(key.data(), high.data(), common);
            if (order > 0) {
                break;
            }
            if (rows.seek(index->row())) {
                ended = false;
                return;
            }
            found = index->next();
        }
        ended = true;
    }
};

template <class Work>
int guarded(Engine::Running& running, Work work) {
    try {
        return work();
    } catch (...) {
        keepFailure(running);
        return SQLITE_ERROR;
    }
}

// ---- Planning

// Whether keys of such a column may be made of what a column is compared with.
bool mayBound(ColumnType type, Bound bound) {
    switch (type) {
        case ColumnType::Boolean:
        case ColumnType::Guid:
            return bound == Bound::Equal;
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::Date:
        case ColumnType::Text:
            return true;
        default:
            return false;
    }
}

std::optional<Bound> boundOf(unsigned char op) {
    switch (op) {
        case SQLITE_INDEX_CONSTRAINT_EQ:
            return Bound::Equal;
        case SQLITE_INDEX_CONSTRAINT_GT:
        case SQLITE_INDEX_CONSTRAINT_GE:
            return Bound::Low;
        case SQLITE_INDEX_CONSTRAINT_LT:
        case SQLITE_INDEX_CONSTRAINT_LE:
            return Bound::High;
        default:
            return std::nullopt;
    }
}

// The usable constraint of this kind on a column; -1 when there is none.
int constraintOn(sqlite3_index_info* info, size_t column, Bound bound, bool isText) {
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto& constraint = info->aConstraint[i];
        if (constraint.usable && constraint.iColumn == static_cast<int>(column) &&
            boundOf(constraint.op) == bound &&
            (!isText || std::strcmp(sqlite3_vtab_collation(info, i), "JET") == 0)) {
            return i;
        }
    }
    return -1;
}

struct Plan {
    size_t index = 0;
    std::string bounds;          // Bound, of one argument each
    std::vector<int> arguments;  // constraints
    size_t equalities = 0;
    double rows = 0;
};

Plan planOf(const JetTable& table, size_t index, sqlite3_index_info* info, double all) {
    const jet::TableDefinition& definition = table.table.definition();
    Plan plan{index, {}, {}, 0, all};
    for (const size_t place : table.encoders[index].places()) {
        const jet::Column& column = definition.columns[place];
        const auto take = [&](Bound bound) {
            const int at = mayBound(column.type, bound)
                               ? constraintOn(info, place, bound, column.isText())
                               : -1;
            if (at >= 0) {
                plan.bounds += static_cast<char>(bound);
                plan.arguments.push_back(at);
            }
            return at >= 0;
        };
        if (take(Bound::Equal)) {
            ++plan.equalities;
            plan.rows = std::max(1.0, std::min(plan.rows / 4, std::sqrt(plan.rows)));
            continue;
        }
        const bool low = take(Bound::Low);
        const bool high = take(Bound::High);
        plan.rows /= (low ? 3 : 1) * (high ? 3 : 1);
        break;
    }
    if (plan.equalities == table.encoders[index].places().size() &&
        definition.realIndexes[index].isUnique()) {
        plan.rows = 1;
    }
    return plan;
}

int bestIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
    auto& table = *static_cast<JetTable*>(base);
    return guarded(*table.running, [&] {
        const double all = std::max(1.0, double(table.table.rowCount()));
        std::optional<Plan> best;
        for (size_t i = 0; i < table.encoders.size(); ++i) {
            if (!table.encoders[i].usable()) {
                continue;
            }
            Plan plan = planOf(table, i, info, all);
            if (!plan.arguments.empty() && (!best || plan.rows < best->rows)) {
                best = std::move(plan);
            }
        }
        info->idxNum = -1;
        info->estimatedRows = static_cast<sqlite3_int64>(all);
        info->estimatedCost = all;
        if (!best) {
            return SQLITE_OK;
        }
        for (size_t i = 0; i < best->arguments.size(); ++i) {
            info->aConstraintUsage[best->arguments[i]].argvIndex = static_cast<int>(i) + 1;
        }
        info->idxNum = static_cast<int>(best->index);
        info->idxStr = sqlite3_mprintf("%s", best->bounds.c_str());
        info->needToFreeIdxStr = 1;
        info->estimatedRows = std::max<sqlite3_int64>(1, static_cast<sqlite3_int64>(best->rows));
        info->estimatedCost = 3 + best->rows * 3;
        if (best->rows == 1) {
            info->idxFlags = SQLITE_INDEX_SCAN_UNIQUE;
        }
        return SQLITE_OK;
    });
}

// ---- Keys

enum class Fit { Exact, None, Unbounded };

// The value of the column that bounds what is asked for; SQLite looks at the rows again, so that
// the bound may be a little wide. None: no value of the column can fulfil it.
Fit boundValue(const jet::Column& column, sqlite3_value* given, Bound bound, jet::Value& into) {
    const int held = sqlite3_value_type(given);
    if (held == SQLITE_NULL) {
        return Fit::None;
    }
    const bool isNumber = held == SQLITE_INTEGER || held == SQLITE_FLOAT;
    if (column.type == ColumnType::Text) {
        if (held != SQLITE_TEXT) {
            return Fit::Unbounded;
        }
        take(given, ColumnType::Text, into);
        return Fit::Exact;
    }
    if (column.type == ColumnType::Guid) {
        if (held != SQLITE_BLOB || sqlite3_value_bytes(given) != 16) {
            return Fit::None;
        }
        take(given, ColumnType::Guid, into);
        return Fit::Exact;
    }
    if (!isNumber) {
        return Fit::Unbounded;
    }
    if (column.type == ColumnType::Double || column.type == ColumnType::Date) {
        take(given, column.type, into);
        return Fit::Exact;
    }
    double number = sqlite3_value_double(given);
    if (column.type == ColumnType::Boolean) {
        into = number != 0;
        return number == 0 || number == -1 ? Fit::Exact : Fit::None;
    }
    if (column.type == ColumnType::Currency) {
        if (held != SQLITE_INTEGER) {
            return Fit::Unbounded;
        }
        take(given, ColumnType::Currency, into);
        return Fit::Exact;
    }
    const double whole = bound == Bound::Low ? std::floor(number) : std::ceil(number);
    if (bound == Bound::Equal && whole != number) {
        return Fit::None;
    }
    const bool isByte = column.type == ColumnType::Byte;
    const bool isShort = column.type == ColumnType::Integer;
    const double least = isByte ? 0 : isShort ? -32768.0 : -2147483648.0;
    const double most = isByte ? 255 : isShort ? 32767.0 : 2147483647.0;
    if (whole < least || whole > most) {
        const bool outside = bound == Bound::Equal || (bound == Bound::Low) == (whole > most);
        return outside ? Fit::None : Fit::Unbounded;
    }
    if (isByte) {
        into = static_cast<uint8_t>(whole);
    } else if (isShort) {
        into = static_cast<int16_t>(whole);
    } else {
        into = static_cast<int32_t>(whole);
    }
    return Fit::Exact;
}

struct Keys {
    jet::KeyBytes low;
    jet::KeyBytes high;
    bool empty = false;
};

Keys keysOf(const JetTable& table, size_t index, const char* bounds, sqlite3_value** arguments) {
    const jet::KeyEncoder& encoder = table.encoders[index];
    const jet::TableDefinition& definition = table.table.definition();
    std::vector<jet::Value> equal;
    std::optional<jet::Value> low;
    std::optional<jet::Value> high;
    for (size_t i = 0; bounds[i] != '\0'; ++i) {
        const auto bound = static_cast<Bound>(bounds[i]);
        const jet::Column& column = definition.columns[encoder.places()[equal.size()]];
        jet::Value value;
        const Fit fit = boundValue(column, arguments[i], bound, value);
        if (fit == Fit::None) {
            return {{}, {}, true};
        }
        if (fit == Fit::Unbounded) {
            if (bound == Bound::Equal) {
                break;
            }
        } else if (bound == Bound::Equal) {
            equal.push_back(std::move(value));
        } else {
            (bound == Bound::Low ? low : high) = std::move(value);
        }
    }
    Keys keys;
    const auto encode = [&](const std::optional<jet::Value>& last, jet::KeyBytes& key) {
        std::vector<jet::Value> values = equal;
        if (last) {
            values.push_back(*last);
        }
        if (!values.empty()) {
            encoder.encode(values, key);
        }
    };
    const bool ascending =
        equal.size() >= encoder.columns().size() || encoder.columns()[equal.size()].ascending;
    encode(ascending ? low : high, keys.low);
    encode(ascending ? high : low, keys.high);
    return keys;
}

int filter(sqlite3_vtab_cursor* base, int number, const char* bounds, int, sqlite3_value** values) {
    auto& cursor = *static_cast<JetCursor*>(base);
    JetTable& table = cursor.table();
    return guarded(*table.running, [&] {
        cursor.index.reset();
        if (number < 0) {
            cursor.ended = !cursor.rows.first();
            return SQLITE_OK;
        }
        const auto index = static_cast<size_t>(number);
        Keys keys;
        try {
            keys = keysOf(table, index, bounds, values);
        } catch (const jet::Error& error) {
            if (error.code() != jet::OperationNotSupported) {
                throw;
            }
            // A text without a place in the index: all rows are looked at.
            cursor.ended = !cursor.rows.first();
            return SQLITE_OK;
        }
        if (keys.empty) {
            cursor.ended = true;
            return SQLITE_OK;
        }
        cursor.index.emplace(table.table.store(),
                             table.table.definition().realIndexes[index].rootPage);
        cursor.high = std::move(keys.high);
        cursor.settle(keys.low.empty() ? cursor.index->first()
                                       : cursor.index->lowerBound(jet::ByteView(keys.low)));
        return SQLITE_OK;
    });
}

// ---- Rows

int next(sqlite3_vtab_cursor* base) {
    auto& cursor = *static_cast<JetCursor*>(base);
    return guarded(*cursor.table().running, [&] {
        if (cursor.index) {
            cursor.settle(cursor.index->next());
        } else {
            cursor.ended = !cursor.rows.next();
        }
        return SQLITE_OK;
    });
}

int atEnd(sqlite3_vtab_cursor* base) {
    return static_cast<JetCursor*>(base)->ended;
}

int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int place) {
    auto& cursor = *static_cast<JetCursor*>(base);
    return guarded(*cursor.table().running, [&] {
        cursor.rows.value(static_cast<size_t>(place), cursor.value);
        answer(context, cursor.value);
        return SQLITE_OK;
    });
}

int rowId(sqlite3_vtab_cursor* base, sqlite3_int64* id) {
    *id = static_cast<JetCursor*>(base)->rows.id().packed();
    return SQLITE_OK;
}

int open(sqlite3_vtab* base, sqlite3_vtab_cursor** cursor) {
    auto& table = *static_cast<JetTable*>(base);
    return guarded(*table.running, [&] {
        *cursor = new JetCursor(table.table);
        return SQLITE_OK;
    });
}

int close(sqlite3_vtab_cursor* cursor) {
    delete static_cast<JetCursor*>(cursor);
    return SQLITE_OK;
}

// ---- Tables

int connect(sqlite3* connection, void* auxiliary, int, const char* const*, sqlite3_vtab** table,
            char**) {
    const auto& source = *static_cast<Source*>(auxiliary);
    return guarded(*source.running, [&] {
        auto made =
            std::make_unique<JetTable>(source.use.database->table(source.use.name), source.running);
        std::string text = "CREATE TABLE t(";
        const std::vector<jet::Column>& columns = made->table.definition().columns;
        for (size_t i = 0; i < columns.size(); ++i) {
            text += std::string(i == 0 ? "c" : ", c") + std::to_string(i);
            text += columns[i].isText() ? " COLLATE JET" : "";
        }
        text += columns.empty() ? "c0)" : ")";
        const int code = sqlite3_declare_vtab(connection, text.c_str());
        if (code == SQLITE_OK) {
            *table = made.release();
        }
        return code;
    });
}

int disconnect(sqlite3_vtab* table) {
    delete static_cast<JetTable*>(table);
    return SQLITE_OK;
}

sqlite3_module makeModule() {
    sqlite3_module module = {};
    module.xConnect = connect;
    module.xBestIndex = bestIndex;
    module.xDisconnect = disconnect;
    module.xOpen = open;
    module.xClose = close;
    module.xFilter = filter;
    module.xNext = next;
    module.xEof = atEnd;
    module.xColumn = column;
    module.xRowid = rowId;
    return module;
}

}  // namespace

void addTable(sqlite3* connection, const std::string& name, const TableUse& use,
              Engine::Running& running) {
    static const sqlite3_module module = makeModule();
    const int code =
        sqlite3_create_module_v2(connection, name.c_str(), &module, new Source{use, &running},
                                 [](void* source) { delete static_cast<Source*>(source); });
    if (code != SQLITE_OK) {
        throw std::bad_alloc();
    }
}

}  // namespace sg::sql
