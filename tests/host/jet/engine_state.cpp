#include "host/jet/engine_state.h"

#include <algorithm>
#include <sstream>

#include "base/encoding.h"
#include "host/jet/check/check.h"
#include "host/jet/recordset/recordset.h"

namespace sg::jet::test {
namespace {

TableState stateOfTable(const Table& table) {
    const TableDefinition& definition = table.definition();
    TableState state;
    for (const Column& column : definition.columns)
        state.columns.push_back({column.name, column.type});
    for (const LogicalIndex& index : definition.indexes) {
        if (!index.isForeign()) state.indexes.insert(index.name);
    }
    state.lastNumber = static_cast<int32_t>(definition.lastAutoNumber);
    const size_t id = state.columnByName(L"Id");
    for (RowCursor rows(table); rows.next();) {
        std::vector<Value> row(definition.columns.size());
        for (size_t i = 0; i < row.size(); ++i)
            rows.value(i, row[i]);
        const auto number = std::get<int32_t>(row[id]);
        if (!state.rows.emplace(number, std::move(row)).second)
            throw std::runtime_error("a row is there twice");
    }
    return state;
}

std::string differenceOfTables(const TableState& found, const TableState& expected) {
    std::ostringstream text;
    if (found.columns != expected.columns) {
        text << "columns: " << found.columns.size() << " for " << expected.columns.size();
    } else if (found.indexes != expected.indexes) {
        text << "indexes: " << found.indexes.size() << " for " << expected.indexes.size();
    } else if (found.lastNumber != expected.lastNumber) {
        text << "counter: " << found.lastNumber << " for " << expected.lastNumber;
    }
    if (!text.str().empty()) return text.str();
    for (const auto& [id, row] : expected.rows) {
        const auto other = found.rows.find(id);
        if (other == found.rows.end()) return "row " + std::to_string(id) + " is missing";
        for (size_t i = 0; i < row.size(); ++i) {
            if (row[i] != other->second[i])
                return "row " + std::to_string(id) + ": " + toUtf8(expected.columns[i].name);
        }
    }
    for (const auto& [id, row] : found.rows) {
        if (!expected.rows.contains(id)) return "row " + std::to_string(id) + " is too many";
    }
    return {};
}

bool isLeftOut(const RealIndex& index, const std::vector<Value>& keys) {
    return index.ignoresNulls() && std::all_of(keys.begin(), keys.end(), isNull);
}

// The rows of one table through one of its indexes.
std::string missingInIndex(Database& database, const std::wstring& name, const std::wstring& index,
                           const TableState& state) {
    TableRecordset rows(database, name, true);
    const TableDefinition& definition = rows.table().definition();
    const LogicalIndex* logical = definition.indexByName(index);
    if (logical == nullptr) return "it is gone";
    const RealIndex& real = definition.realOf(*logical);
    const size_t id = rows.columnByName(L"Id");
    rows.setIndex(index);
    size_t expected = 0;
    for (const auto& [number, row] : state.rows) {
        std::vector<Value> keys;
        for (const IndexColumn& column : real.columns)
            keys.push_back(row[*definition.columnByNumber(column.column)]);
        if (isLeftOut(real, keys)) continue;
        ++expected;
        bool isThere = rows.seek(SeekOperator::Equal, keys);
        while (isThere && rows.value(id) != Value(number)) {
            rows.move(1);
            isThere = !rows.isEof();
        }
        if (!isThere) return "row " + std::to_string(number) + " is not found";
    }
    size_t count = 0;
    for (rows.moveFirst(); !rows.isEof(); rows.move(1))
        ++count;
    return count == expected ? std::string() : std::to_string(count) + " rows in order";
}

}  // namespace

size_t TableState::columnByName(std::wstring_view name) const {
    for (size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].name == name) return i;
    }
    throw std::runtime_error("no column " + toUtf8(name));
}

DatabaseState stateOf(const Database& database) {
    const Database::ReadScope scope(database);
    DatabaseState state;
    for (const std::wstring& name : database.tables())
        state.tables[name] = stateOfTable(database.table(name));
    for (const Relation& relation : database.relations())
        state.relations.insert(relation.name);
    return state;
}

std::string differenceOf(const DatabaseState& found, const DatabaseState& expected) {
    if (found.relations != expected.relations) return "relations";
    for (const auto& [name, table] : expected.tables) {
        const auto other = found.tables.find(name);
        if (other == found.tables.end()) return "table " + toUtf8(name) + " is missing";
        const std::string difference = differenceOfTables(other->second, table);
        if (!difference.empty()) return toUtf8(name) + ": " + difference;
    }
    for (const auto& [name, table] : found.tables) {
        if (!expected.tables.contains(name)) return "table " + toUtf8(name) + " is too many";
    }
    return {};
}

std::string findingsIn(const Database& database) {
    std::string text;
    for (const CheckFinding& finding : checkDatabase(database)) {
        text += toUtf8(finding.table) + ": " + toUtf8(finding.what) + ", page " +
                std::to_string(finding.page.value_or(0)) + "\n";
    }
    return text;
}

std::string missingInIndexes(Database& database, const DatabaseState& state) {
    std::string text;
    for (const auto& [name, table] : state.tables) {
        for (const std::wstring& index : table.indexes) {
            const std::string missing = missingInIndex(database, name, index, table);
            if (!missing.empty())
                text += toUtf8(name) + ", " + toUtf8(index) + ": " + missing + "\n";
        }
    }
    return text;
}

}  // namespace sg::jet::test
