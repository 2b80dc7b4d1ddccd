#include "host/sql/run/engine.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "base/encoding.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/sql/run/access_path.h"
#include "host/sql/run/functions.h"
#include "host/sql/run/sqlite_values.h"
#include "host/sql/run/table_module.h"
#include "host/sql/run/transient_index.h"
#include "host/sql/syntax_errors.h"

namespace sg::sql {
namespace {

constexpr int longestValue = 1 << 28;  // bytes
constexpr int sortMemory = 32 << 20;   // of one sort, bytes
constexpr int stepsBetweenLooks = 20'000;
constexpr uint32_t rowsBetweenLooks = 1000;

struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, Finalizer>;

// What follows a name in a step, up to the next blank.
std::string_view wordAt(std::string_view step, size_t at) {
    return step.substr(at, std::min(step.find(' ', at), step.size()) - at);
}

// "SCAN t0 VIRTUAL TABLE INDEX 2:=" as "SEARCH Rooms USING INDEX ByCode (Code=?)"; queries by their
// names. Other steps stay as they are.
std::wstring stepText(const Program& program, std::string_view step) {
    constexpr std::string_view by = " VIRTUAL TABLE INDEX ";
    const size_t at = step.find(' ') + 1;
    const std::string alias(wordAt(step, at));
    const auto source = program.sources.find(alias);
    if (at == 0 || source == program.sources.end()) {
        return fromUtf8(step);
    }
    const size_t behind = at + alias.size();
    const TableUse& use = source->second.table;
    if (use.database == nullptr || step.substr(behind, by.size()) != by) {
        const std::wstring& name = source->second.name;
        return fromUtf8(step.substr(0, at)) + (name.empty() ? L"a query" : name) +
               fromUtf8(step.substr(behind));
    }
    const std::string path(wordAt(step, behind + by.size()));
    const std::string rest(step.substr(behind + by.size() + path.size()));
    const size_t colon = path.find(':');
    return describe(AccessPath::of(std::stoi(path), path.c_str() + colon + 1), source->second.name,
                    use.database->table(use.name)) +
           fromUtf8(rest);
}

// What a statement may do: read tables and call functions. A table that is made known declares its
// columns by a statement of its own.
int authorize(void* running, int action, const char*, const char*, const char*, const char*) {
    if (static_cast<Engine::Running*>(running)->declares) {
        return SQLITE_OK;
    }
    switch (action) {
        case SQLITE_SELECT:
        case SQLITE_READ:
        case SQLITE_FUNCTION:
            return SQLITE_OK;
        default:
            return SQLITE_DENY;
    }
}

// Queries of FROM stand before the text: SQLite's parser takes no deep nesting.
std::string wholeText(const Program& program) {
    std::string text;
    for (size_t i = 0; i < program.common.size(); ++i) {
        text += std::string(i == 0 ? "WITH q" : ", q") + std::to_string(i) +
                " AS NOT MATERIALIZED (" + program.common[i] + ")";
    }
    return text + (text.empty() ? "" : " ") + program.text;
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

// Tells where the first rows of an order end.
class FirstRowsCounter {
  public:
    // `counts` tells that the rows are the program's own.
    FirstRowsCounter(const Program& program, bool counts)
        : first_(counts && program.first ? &*program.first : nullptr),
          columns_(program.columns.size()) {}

    // Whether the row comes behind them; asked of every row in its turn.
    bool isBehind(sqlite3_stmt* row) {
        if (first_ == nullptr) {
            return false;
        }
        if (++rows_ > first_->count) {
            return first_->count == 0 || !hasKeys(row);
        }
        if (rows_ == first_->count) {
            for (size_t i = 0; i < first_->keys; ++i) {
                keys_.emplace_back(sqlite3_value_dup(keyOf(row, i)));
                if (keys_.back() == nullptr) {
                    throw std::bad_alloc();
                }
            }
        }
        return false;
    }

  private:
    struct Freer {
        void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
    };

    sqlite3_value* keyOf(sqlite3_stmt* row, size_t key) const {
        return sqlite3_column_value(row, static_cast<int>(columns_ + key));
    }
    bool hasKeys(sqlite3_stmt* row) const {
        for (size_t i = 0; i < keys_.size(); ++i) {
            if (!areSame(keys_[i].get(), keyOf(row, i))) {
                return false;
            }
        }
        return true;
    }

    const FirstRows* first_;  // null: all rows count
    size_t columns_;
    uint64_t rows_ = 0;
    std::vector<std::unique_ptr<sqlite3_value, Freer>> keys_;  // of the last of the first rows
};

}  // namespace

Engine::Engine() {
    if (sqlite3_open_v2(":memory:", &connection_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                        nullptr) != SQLITE_OK) {
        sqlite3_close(connection_);
        throw std::bad_alloc();
    }
    sqlite3_limit(connection_, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(connection_, SQLITE_LIMIT_LENGTH, longestValue);
    sqlite3_db_config(connection_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    // What is sorted goes to temporary files without a name when it is more than this.
    const std::string cache = "PRAGMA cache_size = -" + std::to_string(sortMemory / 1024);
    sqlite3_exec(connection_, "PRAGMA temp_store = 1", nullptr, nullptr, nullptr);
    sqlite3_exec(connection_, cache.c_str(), nullptr, nullptr, nullptr);
    running_.engine = this;
    addFunctions(connection_, running_);
    sqlite3_set_authorizer(connection_, authorize, &running_);
    sqlite3_progress_handler(connection_, stepsBetweenLooks, progress, this);
}

Engine::~Engine() {
    sqlite3_close(connection_);
}

// SQLite calls this every so many steps of its own.
int Engine::progress(void* engine) {
    auto& self = *static_cast<Engine*>(engine);
    try {
        return self.isCanceled() ? 1 : 0;
    } catch (...) {
        keepFailure(self.running_);
        return 1;
    }
}

bool Engine::isCanceled() {
    passed_ = 0;
    return limits_.isCanceled && limits_.isCanceled();
}

void Engine::passRow() {
    if (++passed_ >= rowsBetweenLooks && isCanceled()) {
        throw jet::Error(jet::Canceled);
    }
}

void Engine::checkResult(uint64_t bytes) const {
    if (bytes > limits_.resultBytes) {
        throw jet::Error(jet::ResultTooLarge);
    }
}

void Engine::fail() {
    if (running_.failure) {
        std::rethrow_exception(std::exchange(running_.failure, nullptr));
    }
    const std::wstring detail = fromUtf8(sqlite3_errmsg(connection_));
    switch (sqlite3_errcode(connection_) & 0xff) {
        case SQLITE_NOMEM:
            throw std::bad_alloc();
        case SQLITE_INTERRUPT:
            throw jet::Error(jet::Canceled);
        case SQLITE_FULL:
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:  // the temporary files
            throw jet::Error(jet::ResultTooLarge, {}, {.detail = detail});
        default:
            break;
    }
    if (detail == L"integer overflow") {
        throw jet::Error(jet::ConversionError, {}, {.detail = L"overflow"});
    }
    throw jet::Error(TooComplex, {}, {.detail = detail});
}

// Those that the last statement used in the same places are kept, as long as the design is the
// same.
void Engine::addTables(const Program& program) {
    for (size_t i = 0; i < program.tables.size(); ++i) {
        const TableUse& use = program.tables[i];
        const uint64_t stamp = use.database->designStamp();
        if (i == tables_.size()) {
            tables_.emplace_back();
        }
        KnownTable& known = tables_[i];
        if (known.use.database == use.database && known.use.name == use.name &&
            known.stamp == stamp) {
            continue;
        }
        known.use.database = nullptr;
        addTable(connection_, std::string("jet") + std::to_string(i), use, running_);
        known = {use, stamp};
    }
}

sqlite3_stmt* Engine::prepare(const Program& program, const std::string& before) {
    addTables(program);
    const std::string text = before + wholeText(program);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(connection_, text.data(), static_cast<int>(text.size()), &statement,
                           nullptr) != SQLITE_OK) {
        fail();
    }
    return statement;
}

void Engine::step(const Program& program, const std::string& before,
                  const std::function<void(sqlite3_stmt*)>& row) {
    Running outer = std::exchange(running_, Running{this, &program});
    struct Restore {
        Running& running;
        Running& outer;
        ~Restore() { running = std::move(outer); }
    } const restore{running_, outer};
    const ReadScopes scopes(program);
    const StatementHandle statement(prepare(program, before));
    for (size_t i = 0; i < program.bound.size(); ++i) {
        bind(statement.get(), static_cast<int>(i) + 1, program.bound[i]);
    }
    FirstRowsCounter counter(program, before.empty());
    int code = SQLITE_ROW;
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        if (counter.isBehind(statement.get())) {
            return;
        }
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
