#include "host/sql/run/engine.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "base/encoding.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/sql/run/functions.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/table_module.h"
#include "host/sql/syntax_errors.h"

namespace sg::sql {
namespace {

struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, Finalizer>;

// "SCAN t0 VIRTUAL TABLE INDEX 2:=" as "SEARCH Rooms USING INDEX ByCode (=)", and with the number
// -1 as "SCAN Rooms". Other steps stay as they are.
std::wstring stepText(const Program& program, std::string_view step) {
    constexpr std::string_view scan = "SCAN ";
    constexpr std::string_view by = " VIRTUAL TABLE INDEX ";
    const size_t at = step.find(by);
    if (step.substr(0, scan.size()) != scan || at == step.npos) {
        return fromUtf8(step);
    }
    const auto source =
        program.sources.find(std::string(step.substr(scan.size(), at - scan.size())));
    if (source == program.sources.end() || source->second.table.database == nullptr) {
        return fromUtf8(step);
    }
    const std::string rest(step.substr(at + by.size()));
    const size_t colon = rest.find(':');
    const int number = std::stoi(rest);
    if (number < 0 || colon == rest.npos) {
        return L"SCAN " + source->second.name;
    }
    std::wstring name;
    const TableUse& use = source->second.table;
    const jet::Table table = use.database->table(use.name);
    for (const jet::LogicalIndex& index : table.definition().indexes) {
        if (index.realIndex == static_cast<uint32_t>(number) &&
            (name.empty() || !index.isForeign())) {
            name = index.name;
        }
    }
    const size_t end = rest.find(' ', colon);
    return L"SEARCH " + source->second.name + L" USING INDEX " + name + L" (" +
           fromUtf8(rest.substr(colon + 1, end == rest.npos ? end : end - colon - 1)) + L")" +
           (end == rest.npos ? L"" : fromUtf8(rest.substr(end)));
}

// One state of every database that the program reads.
class ReadScopes {
  public:
    explicit ReadScopes(const Program& program) {
        std::vector<const jet::Database*> seen;
        for (const TableUse& use : program.tables) {
            if (std::find(seen.begin(), seen.end(), use.database) == seen.end()) {
                seen.push_back(use.database);
                scopes_.push_back(std::make_unique<jet::Database::ReadScope>(*use.database));
            }
        }
    }

  private:
    std::vector<std::unique_ptr<jet::Database::ReadScope>> scopes_;
};

}  // namespace

Engine::Engine() {
    if (sqlite3_open_v2(":memory:", &connection_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK) {
        sqlite3_close(connection_);
        throw std::bad_alloc();
    }
    sqlite3_limit(connection_, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    // Whatever is sorted stays in memory.
    sqlite3_exec(connection_, "PRAGMA temp_store = 2", nullptr, nullptr, nullptr);
    addFunctions(connection_, running_);
}

Engine::~Engine() {
    sqlite3_close(connection_);
}

void Engine::fail() {
    if (running_.failure) {
        std::rethrow_exception(std::exchange(running_.failure, nullptr));
    }
    const int code = sqlite3_errcode(connection_);
    const std::wstring detail = fromUtf8(sqlite3_errmsg(connection_));
    if (code == SQLITE_NOMEM) {
        throw std::bad_alloc();
    }
    if (detail == L"integer overflow") {
        throw jet::Error(jet::ConversionError, {}, {.detail = L"overflow"});
    }
    throw jet::Error(TooComplex, {}, {.detail = detail});
}

sqlite3_stmt* Engine::prepare(const Program& program, const std::string& before) {
    for (size_t i = 0; i < program.tables.size(); ++i) {
        addTable(connection_, std::string("jet") + std::to_string(i), program.tables[i], running_);
    }
    const std::string text = before + program.text;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(connection_, text.data(), static_cast<int>(text.size()), &statement,
                           nullptr) != SQLITE_OK) {
        fail();
    }
    return statement;
}

void Engine::step(const Program& program, const std::string& before,
                  const std::function<void(sqlite3_stmt*)>& row) {
    const Running outer = std::exchange(running_, Running{&program, nullptr});
    struct Restore {
        Running& running;
        const Running& outer;
        ~Restore() { running = outer; }
    } const restore{running_, outer};
    const ReadScopes scopes(program);
    const StatementHandle statement(prepare(program, before));
    for (size_t i = 0; i < program.bound.size(); ++i) {
        bind(statement.get(), static_cast<int>(i) + 1, program.bound[i]);
    }
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        row(statement.get());
    }
    if (code != SQLITE_DONE) {
        fail();
    }
}

void Engine::run(const Program& program, const std::function<void(sqlite3_stmt*)>& row) {
    step(program, {}, row);
}

std::vector<std::wstring> Engine::explain(const Program& program) {
    std::vector<std::wstring> lines;
    step(program, "EXPLAIN QUERY PLAN ", [&](sqlite3_stmt* statement) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 3));
        lines.push_back(stepText(program, text == nullptr ? "" : text));
    });
    return lines;
}

}  // namespace sg::sql
