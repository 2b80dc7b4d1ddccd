#pragma once

#include <sqlite3.h>

#include <functional>
#include <string>
#include <vector>

#include "host/sql/run/program.h"

namespace sg::sql {

// SQLite without a file, with the dialect's functions and with Jet tables as its tables.
class Engine {
  public:
    Engine();
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // Hands every row's values to `row`, in one state of the databases. Throws jet::Error.
    void run(const Program& program, const std::function<void(sqlite3_stmt*)>& row);
    // How SQLite means to run it, one line a step; tables by their names.
    std::vector<std::wstring> explain(const Program& program);

    // For the functions: what runs now, and what went wrong in it.
    struct Running {
        const Program* program = nullptr;
        std::exception_ptr failure;
    };

  private:
    sqlite3_stmt* prepare(const Program& program, const std::string& before);
    void step(const Program& program, const std::string& before,
              const std::function<void(sqlite3_stmt*)>& row);
    [[noreturn]] void fail();

    sqlite3* connection_ = nullptr;
    Running running_;
};

}  // namespace sg::sql
