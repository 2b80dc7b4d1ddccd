#pragma once

#include <fmt/xchar.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/schema/schema.h"

// What the benchmarks of the database engine work on: files in a folder of their own, and a table
// of 200,000 rows of 6 columns with a unique index over a number and one over a text.
namespace sg::bench {

inline constexpr int rowCount = 200'000;

class Folder {
  public:
    Folder() { std::filesystem::create_directories(path_); }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    // A name in it that no file has any more.
    std::wstring file(const char* name) const {
        std::filesystem::remove(path_ / name);
        return (path_ / name).wstring();
    }

  private:
    std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("sg_bench" + std::to_string(getpid()));
};

inline const Folder& folder() {
    static const Folder made;
    return made;
}

inline jet::TableDesign partsTable(const wchar_t* name) {
    using jet::ColumnType;
    return {.name = name,
            .columns = {{.name = L"ixPart", .type = ColumnType::Long},
                        {.name = L"sKey", .type = ColumnType::Text, .size = 40},
                        {.name = L"sDescription", .type = ColumnType::Text, .size = 100},
                        {.name = L"dLength", .type = ColumnType::Double},
                        {.name = L"bShown", .type = ColumnType::Boolean},
                        {.name = L"dtMade", .type = ColumnType::Date}},
            .indexes = {{.name = L"ixPart", .columns = {{L"ixPart"}}, .primary = true},
                        {.name = L"sKey", .columns = {{L"sKey"}}}}};
}

// Keys come in no order, as names do.
inline std::vector<jet::Value> part(int row) {
    const auto mixed = static_cast<unsigned>(row) * 2654435761u;
    return {row,
            fmt::format(L"duct {:08x}", mixed),
            fmt::format(L"Straight piece {}", row),
            row * 0.25,
            row % 3 == 0,
            jet::Date{42000.0 + row % 1000}};
}

// In one transaction; `make` gives the row of a number.
template <class Make>
void fill(jet::Database& database, const wchar_t* table, int rows, Make make) {
    database.beginTransaction();
    jet::TableWriter& writer = database.writer(table);
    for (int row = 0; row < rows; ++row) {
        std::vector<jet::Value> values = make(row);
        writer.insert(values);
    }
    database.commitTransaction();
}

}  // namespace sg::bench
