// Jet SQL over a Jet file, and SQLite over a file of its own with the same rows and indexes: from
// the text to the last value. Each case is there twice, as "ours/..." and as "SQLite/...", and both
// must find as many rows.

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/jet/recordset/recordset.h"
#include "host/sql/run/session.h"
#include "parts.h"

namespace {

using namespace sg;
using namespace sg::bench;

constexpr int fewRows = 20'000;

[[noreturn]] void fail(const std::string& what) {
    fmt::print(stderr, "sql_bench: {}\n", what);
    std::exit(1);
}

// ---- The rows. Both sides are given these values.

jet::TableDesign usesTable() {
    using jet::ColumnType;
    return {.name = L"tblUse",
            .columns = {{.name = L"ixUse", .type = ColumnType::Long},
                        {.name = L"ixPart", .type = ColumnType::Long},
                        {.name = L"ixLast", .type = ColumnType::Long},
                        {.name = L"nCount", .type = ColumnType::Integer},
                        {.name = L"sRoom", .type = ColumnType::Text, .size = 40},
                        {.name = L"cyPrice", .type = ColumnType::Currency}},
            .indexes = {{.name = L"ixUse", .columns = {{L"ixUse"}}, .primary = true},
                        {.name = L"ixPart", .columns = {{L"ixPart"}}},
                        {.name = L"nCount", .columns = {{L"nCount"}, {L"ixPart"}}}}};
}

std::vector<jet::Value> use(int row) {
    const auto mixed = static_cast<unsigned>(row) * 2654435761u;
    return {row,
            static_cast<int32_t>(mixed % rowCount),
            static_cast<int32_t>((mixed >> 7) % rowCount),
            static_cast<int16_t>(row % 100),
            fmt::format(L"Room {}", mixed % 500),
            jet::Currency{int64_t(row % 997) * 12500}};
}

jet::TableDesign fewTable() {
    return {.name = L"tblFew",
            .columns = {{.name = L"ixPart", .type = jet::ColumnType::Long},
                        {.name = L"sName", .type = jet::ColumnType::Text, .size = 40}},
            .indexes = {{.name = L"ixPart", .columns = {{L"ixPart"}}, .primary = true}}};
}

std::vector<jet::Value> few(int row) {
    return {row, fmt::format(L"Part {}", row)};
}

struct Rows {
    jet::TableDesign table;
    int count;
    std::function<std::vector<jet::Value>(int)> make;
};

std::vector<Rows> allRows() {
    return {{partsTable(L"tblPart"), rowCount, part},
            {usesTable(), rowCount, use},
            {fewTable(), fewRows, few}};
}

// ---- SQLite

class Peer {
  public:
    explicit Peer(const std::string& path) {
        check(sqlite3_open(path.c_str(), &connection_));
        run("PRAGMA cache_size = -16384");  // as much as a Jet file is given
    }
    ~Peer() { sqlite3_close(connection_); }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    // Takes every value of every row.
    int64_t run(const std::string& text) {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(connection_, text.c_str(), -1, &statement, nullptr));
        int64_t rows = 0;
        int code = SQLITE_ROW;
        while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
            ++rows;
            for (int i = 0; i < sqlite3_column_count(statement); ++i) {
                take(statement, i);
            }
        }
        check(code == SQLITE_DONE ? SQLITE_OK : code);
        sqlite3_finalize(statement);
        return rows;
    }
    int64_t execute(const std::string& text) {
        run(text);
        return sqlite3_changes(connection_);
    }

    void fill(const Rows& rows) {
        run("BEGIN");
        const std::string table = toUtf8(rows.table.name);
        std::string columns;
        std::string marks;
        for (const jet::ColumnDesign& column : rows.table.columns) {
            columns += (columns.empty() ? "" : ", ") + toUtf8(column.name) + typeOf(column.type);
            marks += marks.empty() ? "?" : ", ?";
        }
        run("CREATE TABLE " + table + " (" + columns + ")");
        for (const jet::IndexDesign& index : rows.table.indexes) {
            std::string keys;
            for (const auto& column : index.columns) {
                keys += (keys.empty() ? "" : ", ") + toUtf8(column.column);
            }
            run(std::string(index.primary ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") + table +
                "_" + toUtf8(index.name) + " ON " + table + " (" + keys + ")");
        }
        sqlite3_stmt* insert = nullptr;
        const std::string text = "INSERT INTO " + table + " VALUES (" + marks + ")";
        check(sqlite3_prepare_v2(connection_, text.c_str(), -1, &insert, nullptr));
        for (int row = 0; row < rows.count; ++row) {
            int place = 0;
            for (const jet::Value& value : rows.make(row)) {
                bind(insert, ++place, value);
            }
            sqlite3_step(insert);
            check(sqlite3_reset(insert));
        }
        sqlite3_finalize(insert);
        run("COMMIT");
    }

  private:
    void check(int code) {
        if (code != SQLITE_OK) {
            fail(sqlite3_errmsg(connection_));
        }
    }
    static std::string typeOf(jet::ColumnType type) {
        return type == jet::ColumnType::Text ? " TEXT COLLATE NOCASE"
               : type == jet::ColumnType::Double || type == jet::ColumnType::Date ? " REAL"
                                                                                  : " INTEGER";
    }
    static void bind(sqlite3_stmt* insert, int place, const jet::Value& value) {
        if (const auto* text = std::get_if<std::wstring>(&value)) {
            sqlite3_bind_text(insert, place, toUtf8(*text).c_str(), -1, SQLITE_TRANSIENT);
        } else if (const auto* number = std::get_if<double>(&value)) {
            sqlite3_bind_double(insert, place, *number);
        } else if (const auto* date = std::get_if<jet::Date>(&value)) {
            sqlite3_bind_double(insert, place, date->days);
        } else if (const auto* amount = std::get_if<jet::Currency>(&value)) {
            sqlite3_bind_int64(insert, place, amount->scaled);
        } else if (const auto* truth = std::get_if<bool>(&value)) {
            sqlite3_bind_int(insert, place, *truth ? -1 : 0);
        } else if (const auto* small = std::get_if<int16_t>(&value)) {
            sqlite3_bind_int(insert, place, *small);
        } else {
            sqlite3_bind_int(insert, place, std::get<int32_t>(value));
        }
    }
    void take(sqlite3_stmt* statement, int column) {
        switch (sqlite3_column_type(statement, column)) {
            case SQLITE_INTEGER:
                sum_ += static_cast<double>(sqlite3_column_int64(statement, column));
                return;
            case SQLITE_FLOAT:
                sum_ += sqlite3_column_double(statement, column);
                return;
            case SQLITE_NULL:
                return;
            default:
                sum_ += sqlite3_column_text(statement, column)[0];
        }
    }

    sqlite3* connection_ = nullptr;
    double sum_ = 0;  // so that the values are wanted
};

// ---- Jet

int64_t select(sql::Session& session, const std::wstring& text) {
    const auto rows = session.select(text);
    jet::Value value;
    for (; !rows->isEof(); rows->move(1)) {
        for (size_t column = 0; column < rows->columns().size(); ++column) {
            rows->value(column, value);
        }
        if (rows->recordCount() == 0) {
            break;
        }
    }
    return rows->recordCount();
}

// ---- Side by side

struct Case {
    const char* name;
    const wchar_t* ours;
    const char* theirs = nullptr;  // null: the same text
};

const Case queries[] = {
    {"all values", L"SELECT * FROM tblPart"},
    {"filter: number", L"SELECT ixPart, sKey FROM tblPart WHERE dLength > 45000"},
    {"filter: date and truth", L"SELECT ixPart FROM tblPart WHERE dtMade < #2015-03-01# AND bShown",
     "SELECT ixPart FROM tblPart WHERE dtMade < 42064 AND bShown"},
    {"filter: text equal", L"SELECT ixPart FROM tblPart WHERE sDescription = 'straight piece 777'"},
    {"filter: text range", L"SELECT ixPart FROM tblPart WHERE sDescription > 'straight piece 9'"},
    {"filter: LIKE within", L"SELECT ixPart FROM tblPart WHERE sDescription LIKE '*piece 19*'",
     "SELECT ixPart FROM tblPart WHERE sDescription LIKE '%piece 19%'"},
    {"index: equal, 1000 times",
     L"SELECT Count(*) FROM tblFew INNER JOIN tblPart ON tblFew.ixPart = tblPart.ixPart "
     L"WHERE tblFew.ixPart < 1000"},
    {"index: range of numbers", L"SELECT * FROM tblPart WHERE ixPart BETWEEN 50000 AND 70000"},
    {"index: range of texts",
     L"SELECT ixPart, dLength FROM tblPart WHERE sKey >= 'duct 4' AND sKey < 'duct 5'"},
    {"index: LIKE prefix", L"SELECT ixPart, dLength FROM tblPart WHERE sKey LIKE 'duct 4a*'",
     "SELECT ixPart, dLength FROM tblPart WHERE sKey LIKE 'duct 4a%'"},
    {"index: IN list", L"SELECT * FROM tblPart WHERE ixPart IN (5, 77777, 1234, 199999, 300000)"},
    {"index: two columns", L"SELECT ixUse FROM tblUse WHERE nCount = 7 AND ixPart < 20000"},
    {"join on an index",
     L"SELECT ixUse, sKey, dLength FROM tblUse INNER JOIN tblPart ON tblUse.ixPart = "
     L"tblPart.ixPart"},
    {"join on an index, outer",
     L"SELECT tblPart.ixPart, nCount FROM tblPart LEFT JOIN tblUse ON tblPart.ixPart = "
     L"tblUse.ixPart"},
    {"join without an index",
     L"SELECT a.ixUse, b.ixUse FROM tblUse AS a INNER JOIN tblUse AS b ON a.ixLast = b.ixLast "
     L"WHERE a.nCount = 3"},
    {"join without an index, texts",
     L"SELECT ixUse, tblPart.ixPart FROM tblUse INNER JOIN tblPart ON tblUse.sRoom = "
     L"tblPart.sDescription"},
    {"group by a number", L"SELECT nCount, Count(*), Sum(cyPrice) FROM tblUse GROUP BY nCount"},
    {"group by a text", L"SELECT sRoom, Count(*), Max(ixPart) FROM tblUse GROUP BY sRoom"},
    {"group by a date", L"SELECT dtMade, Avg(dLength) FROM tblPart GROUP BY dtMade"},
    {"aggregates", L"SELECT Count(*), Sum(dLength), Min(sKey), Max(dtMade) FROM tblPart"},
    {"order by a number", L"SELECT ixLast, ixUse FROM tblUse ORDER BY ixLast"},
    {"order by a text", L"SELECT sDescription FROM tblPart ORDER BY sDescription DESC"},
    {"order by an indexed text", L"SELECT sKey, ixPart FROM tblPart ORDER BY sKey"},
    {"order by an indexed number", L"SELECT ixPart, sKey FROM tblPart ORDER BY ixPart DESC"},
    {"distinct number", L"SELECT DISTINCT nCount FROM tblUse"},
    {"distinct text", L"SELECT DISTINCT sRoom FROM tblUse"},
    {"top by a number", L"SELECT TOP 10 ixUse FROM tblUse ORDER BY ixLast, ixUse",
     "SELECT ixUse FROM tblUse ORDER BY ixLast, ixUse LIMIT 10"},
    {"top by an index", L"SELECT TOP 10 sKey FROM tblPart ORDER BY sKey",
     "SELECT sKey FROM tblPart ORDER BY sKey LIMIT 10"},
    {"not in a query",
     L"SELECT Count(*) FROM tblPart WHERE ixPart NOT IN (SELECT ixPart FROM "
     L"tblFew)"},
};

const Case actions[] = {
    {"delete, not in a query",
     L"DELETE FROM tblFew WHERE ixPart NOT IN (SELECT ixPart FROM tblUse WHERE nCount < 50)"},
    {"update over a join",
     L"UPDATE tblFew INNER JOIN tblPart ON tblFew.ixPart = tblPart.ixPart SET tblFew.sName = "
     L"tblPart.sKey",
     "UPDATE tblFew SET sName = (SELECT sKey FROM tblPart WHERE ixPart = tblFew.ixPart)"},
    {"update of every row", L"UPDATE tblUse SET nCount = nCount + 1"},
    {"insert of every row",
     L"INSERT INTO tblPart SELECT ixPart + 500000 AS ixPart, sKey, sDescription, dLength, "
     L"bShown, dtMade FROM tblPart",
     "INSERT INTO tblPart SELECT ixPart + 500000, sKey, sDescription, dLength, bShown, dtMade "
     "FROM tblPart"},
};

std::string textOf(const Case& each) {
    return each.theirs != nullptr ? each.theirs : toUtf8(each.ours);
}

struct Files {
    std::wstring jet = folder().file("rows.mdb");
    std::string peer = toUtf8(folder().file("rows.sqlite"));

    void make() const {
        jet::Database database = jet::Database::create(jet);
        Peer other(peer);
        for (const Rows& rows : allRows()) {
            jet::createTable(database, rows.table);
            fill(database, rows.table.name.c_str(), rows.count, rows.make);
            other.fill(rows);
        }
        other.run("ANALYZE");
    }
};

// Made by the first benchmark that runs.
const Files& files() {
    static const Files made = [] {
        Files files;
        files.make();
        return files;
    }();
    return made;
}

std::string copied(const std::string& from, const char* name) {
    const std::string to = toUtf8(folder().file(name));
    std::filesystem::copy_file(from, to);
    return to;
}

// The side that runs second must find what the first one found.
void tellRows(benchmark::State& state, const Case& each, int64_t rows) {
    static std::map<const Case*, int64_t> known;
    const int64_t expected = known.try_emplace(&each, rows).first->second;
    if (rows != expected) {
        state.SkipWithError(fmt::format("{} rows, and {} before", rows, expected).c_str());
    }
    state.counters["rows"] = static_cast<double>(rows);
}

void queryOurs(benchmark::State& state, const Case& each) {
    jet::Database database = jet::Database::open(files().jet, jet::OpenMode::Shared);
    sql::Session session(database);
    int64_t rows = 0;
    for (auto _ : state)
        rows = select(session, each.ours);
    tellRows(state, each, rows);
}

void queryPeer(benchmark::State& state, const Case& each) {
    Peer peer(files().peer);
    int64_t rows = 0;
    for (auto _ : state)
        rows = peer.run(textOf(each));
    tellRows(state, each, rows);
}

// Actions run on a new copy of the file each time.
void actOurs(benchmark::State& state, const Case& each) {
    int64_t rows = 0;
    for (auto _ : state) {
        state.PauseTiming();
        {
            const std::string copy = copied(toUtf8(files().jet), "changed.mdb");
            jet::Database database = jet::Database::open(fromUtf8(copy), jet::OpenMode::Shared);
            sql::Session session(database);
            state.ResumeTiming();
            rows = session.execute(each.ours);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    tellRows(state, each, rows);
}

void actPeer(benchmark::State& state, const Case& each) {
    int64_t rows = 0;
    for (auto _ : state) {
        state.PauseTiming();
        {
            Peer peer(copied(files().peer, "changed.sqlite"));
            state.ResumeTiming();
            rows = peer.execute(textOf(each));
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    tellRows(state, each, rows);
}

using Run = void (*)(benchmark::State&, const Case&);

void add(const Case& each, Run ours, Run peer) {
    for (const auto& [side, run] : {std::pair("ours/", ours), std::pair("SQLite/", peer)}) {
        benchmark::RegisterBenchmark(
            (side + std::string(each.name)).c_str(),
            [&each, run = run](benchmark::State& state) { run(state, each); })
            ->Unit(benchmark::kMillisecond);
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (const Case& each : queries)
        add(each, queryOurs, queryPeer);
    for (const Case& each : actions)
        add(each, actOurs, actPeer);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
