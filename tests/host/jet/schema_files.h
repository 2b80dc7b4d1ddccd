#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/jet/check/check.h"
#include "host/jet/database/database.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/pages/usage_map.h"
#include "host/jet/schema/schema.h"
#include "host/jet/storage_files.h"
#include "host/system/temporary_folder.h"
#include "real_data.h"

// Databases whose design tests change: new ones, and copies of files that other programs made.
namespace sg::jet::test {

// The Jet 4 files of other programs; empty where there are none.
inline std::vector<std::filesystem::path> realFiles() {
    const std::filesystem::path folder = sg::test::realData() / "mdb";
    std::vector<std::filesystem::path> files;
    for (const char* name : {"indexTestV2000.mdb", "queryTestV2000.mdb", "compIndexTestV2000.mdb",
                             "overflowTestV2003.mdb"}) {
        if (std::filesystem::exists(folder / name)) files.push_back(folder / name);
    }
    return files;
}

// Columns with a line each.
inline ColumnDesign longColumn(const std::wstring& name, bool counter = false) {
    ColumnDesign column;
    column.name = name;
    column.type = ColumnType::Long;
    column.autoNumber = counter;
    return column;
}
inline ColumnDesign textColumn(const std::wstring& name, uint16_t size = 50) {
    ColumnDesign column;
    column.name = name;
    column.size = size;
    return column;
}
inline ColumnDesign columnOfType(const std::wstring& name, ColumnType type) {
    ColumnDesign column;
    column.name = name;
    column.type = type;
    return column;
}
inline IndexDesign indexOver(const std::wstring& name, const std::vector<std::wstring>& columns,
                             bool unique = false) {
    IndexDesign index;
    index.name = name;
    index.unique = unique;
    for (const std::wstring& column : columns)
        index.columns.push_back({column, true});
    return index;
}
inline IndexDesign primaryOver(const std::vector<std::wstring>& columns) {
    IndexDesign index = indexOver(L"PrimaryKey", columns);
    index.primary = true;
    return index;
}
inline TableDesign tableOf(const std::wstring& name, const std::vector<ColumnDesign>& columns,
                           const std::vector<IndexDesign>& indexes = {}) {
    TableDesign table;
    table.name = name;
    table.columns = columns;
    table.indexes = indexes;
    return table;
}

class SchemaTest : public FolderTest {
  protected:
    // A new file, opened.
    Database& create() {
        db_.reset();
        std::filesystem::remove(folder_ / "test.mdb");
        db_.reset(new Database(Database::create(path("test.mdb"))));
        return *db_;
    }
    // A copy of another program's file, opened.
    Database& copyOf(const std::filesystem::path& file) {
        db_.reset();
        std::filesystem::copy_file(file, folder_ / "test.mdb",
                                   std::filesystem::copy_options::overwrite_existing);
        std::filesystem::permissions(folder_ / "test.mdb", std::filesystem::perms::owner_all);
        return reopen();
    }
    Database& reopen() {
        db_.reset();
        db_.reset(new Database(Database::open(path("test.mdb"), OpenMode::Exclusive)));
        return *db_;
    }
    Database& db() { return *db_; }
    void close() { db_.reset(); }

    // Nothing in the file contradicts itself; `after` tells what was done before.
    void expectSound(const std::string& after) {
        if (db_->transactionDepth() == 0) reopen();
        for (const CheckFinding& finding : checkDatabase(*db_)) {
            ADD_FAILURE() << after << ": " << toUtf8(finding.table) << ": " << toUtf8(finding.what)
                          << ", page " << finding.page.value_or(0);
        }
    }

    // How many pages of the file are in use.
    size_t pagesInUse() {
        const UsageMap free = UsageMap::read(db_->store(), {pages::globalMap, 0});
        size_t count = 0;
        for (uint32_t page = 0; page < db_->store().pageCount(); ++page)
            count += free.contains(page) ? 0 : 1;
        return count;
    }

    RowId insert(std::wstring_view table, std::vector<Value> row) {
        return db_->writer(table).insert(row);
    }
    // A table "Rooms" with a counter as key, a name, an area and notes, and three rows.
    void makeRooms() {
        createTable(db(), tableOf(L"Rooms",
                                  {longColumn(L"Id", true), textColumn(L"Name"),
                                   columnOfType(L"Area", ColumnType::Double),
                                   columnOfType(L"Notes", ColumnType::Memo)},
                                  {primaryOver({L"Id"}), indexOver(L"ByName", {L"Name"})}));
        for (const wchar_t* name : {L"Hall", L"Kitchen", L"Attic"})
            insert(L"Rooms", {Value(), std::wstring(name), 12.5, std::wstring(3000, L'n')});
    }
    // A column's values, in file order.
    std::vector<Value> values(std::wstring_view table, std::wstring_view column) {
        std::vector<Value> list;
        const Table from = db_->table(table);
        const size_t place = from.definition().columnByName(column).value();
        for (RowCursor rows = from.scan(); rows.next();)
            list.push_back(rows.value(place));
        return list;
    }
    // A system table's rows with this number in this column.
    std::vector<std::map<std::wstring, Value>> systemRows(std::wstring_view table,
                                                          std::wstring_view column, int32_t id) {
        std::vector<std::map<std::wstring, Value>> list;
        const Table from = db_->table(table);
        const size_t place = from.definition().columnByName(column).value();
        for (RowCursor rows = from.scan(); rows.next();) {
            if (rows.value(place) != Value(id)) continue;
            auto& row = list.emplace_back();
            for (size_t i = 0; i < from.definition().columns.size(); ++i)
                row[from.definition().columns[i].name] = rows.value(i);
        }
        return list;
    }

    // What another program prints of the file, which is closed for that; empty when it is not
    // installed.
    std::string printed(const std::string& program, const std::string& arguments = {}) {
        close();
        std::string output;
        const std::string command =
            program + " '" + (folder_ / "test.mdb").string() + "' " + arguments + " 2>/dev/null";
        if (FILE* pipe = ::popen(command.c_str(), "r"); pipe != nullptr) {
            for (int c; (c = std::fgetc(pipe)) != EOF;)
                output += static_cast<char>(c);
            ::pclose(pipe);
        }
        reopen();
        return output;
    }
    static bool hasTools() {
        static const bool has = std::system("command -v mdb-schema >/dev/null 2>&1") == 0;
        return has;
    }

    std::unique_ptr<Database> db_;
};

// The error's number and names.
struct Thrown {
    int code = 0;
    std::vector<std::wstring> names;
};

template <class F>
Thrown thrownBy(F&& f) {
    try {
        f();
    } catch (const Error& error) {
        return {error.code(), error.names()};
    }
    return {};
}

}  // namespace sg::jet::test
