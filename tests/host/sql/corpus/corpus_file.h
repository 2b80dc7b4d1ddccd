#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/jet/values/value.h"
#include "host/sql/run/session.h"

// Files of statements with the results that they must have. README.md tells what is in them.
namespace sg::sql::corpus {

// A row or a value as the files write it: texts in quotes, dates between "#".
using Cells = std::vector<std::string>;

struct ExpectedRows {
    bool inOrder = false;
    Cells columns;  // "Name Type"
    std::vector<Cells> rows;
};

inline constexpr int anyError = 0;

// One step of a file: a statement with one of the results, or a directive.
struct Entry {
    size_t line = 0;
    std::vector<std::string> directive;  // its words

    std::wstring statement;
    Parameters parameters;
    std::optional<ExpectedRows> rows;
    std::optional<int> error;  // anyError: whatever its number
    std::optional<int64_t> changed;
    bool isDone = false;  // whatever it answers
};

// Throws std::runtime_error with the line that cannot be read.
std::vector<Entry> entriesOf(const std::filesystem::path& file);

// As the files write it.
std::string written(const jet::Value& value);
std::string written(jet::ColumnType type);

}  // namespace sg::sql::corpus
