#pragma once

#include <sqlite3.h>

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/sql/run/program.h"
#include "host/sql/run/session.h"

namespace sg::sql {

class TransientIndex;

// SQLite without a file, with the dialect's functions and with Jet tables as its tables. It is
// sealed: it reads these tables and calls functions, and can do nothing else.
class Engine {
  public:
    Engine();
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    void limit(Limits limits) { limits_ = std::move(limits); }
    const Limits& limits() const { return limits_; }

    // Hands every row's values to `row`, in one state of the databases. Throws jet::Error.
    void run(const Program& program, const std::function<void(sqlite3_stmt*)>& row);
    // How SQLite means to run it, one line a step; tables by their names.
    std::vector<std::wstring> explain(const Program& program);

    // To be called now and then in work that goes on for long. Throws Canceled (3059) when the
    // limits say so.
    void passRow();
    // Throws ResultTooLarge (3183) for rows that take more than the limits allow.
    void checkResult(uint64_t bytes) const;

    // An index of a table that lives as long as the statement.
    struct TransientUse {
        size_t count = 0;  // how often rows were asked of it
        std::shared_ptr<TransientIndex> index;
    };
    // For the functions and tables: what runs now, and what went wrong in it.
    struct Running {
        Engine* engine = nullptr;
        const Program* program = nullptr;
        std::exception_ptr failure{};
        bool declares = false;  // a table's columns
        // By table and columns.
        std::map<std::pair<const void*, std::vector<size_t>>, TransientUse> transients{};

        void passRow() { engine->passRow(); }
    };

  private:
    // A table as SQLite has it under the name "jetN", N being its place.
    struct KnownTable {
        TableUse use;
        uint64_t stamp = 0;  // of the design that it was made known with
    };

    static int progress(void* engine);
    bool isCanceled();
    void addTables(const Program& program);
    sqlite3_stmt* prepare(const Program& program, const std::string& before);
    void step(const Program& program, const std::string& before,
              const std::function<void(sqlite3_stmt*)>& row);
    [[noreturn]] void fail();

    sqlite3* connection_ = nullptr;
    Limits limits_;
    uint32_t passed_ = 0;  // rows, since the limits were asked last
    std::vector<KnownTable> tables_;
    Running running_;
};

}  // namespace sg::sql
