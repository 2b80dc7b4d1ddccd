#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/recording_files.h"
#include "host/jet/recordset/recordset.h"
#include "host/jet/schema/schema.h"
#include "host/jet/storage_files.h"

namespace sg::jet {

// A database that two users have open.
class RecordsetTest : public testing::Test {
  protected:
    RecordsetTest() {
        {
            Database made = Database::create(path, {}, options(L"maker"));
            createTable(made, rooms());
        }
        mine_ = open(L"me");
        theirs_ = open(L"them");
    }

    static IndexDesign index(const wchar_t* name, std::vector<IndexColumnDesign> columns) {
        IndexDesign design;
        design.name = name;
        design.columns = std::move(columns);
        return design;
    }
    static TableDesign rooms() {
        TableDesign design;
        design.name = L"Rooms";
        const auto column = [&](const wchar_t* name, ColumnType type) -> ColumnDesign& {
            design.columns.emplace_back();
            design.columns.back().name = name;
            design.columns.back().type = type;
            return design.columns.back();
        };
        column(L"Id", ColumnType::Long).autoNumber = true;
        column(L"Code", ColumnType::Text).size = 10;
        column(L"Level", ColumnType::Integer).defaultValue = L"7";
        column(L"Area", ColumnType::Double);
        column(L"Note", ColumnType::Memo);
        design.indexes = {index(L"PrimaryKey", {{L"Id"}}), index(L"ByCode", {{L"Code"}}),
                          index(L"ByLevel", {{L"Level", false}, {L"Code"}}),
                          index(L"ByArea", {{L"Area"}})};
        design.indexes[0].primary = true;
        design.indexes[3].unique = true;
        design.indexes[3].ignoreNulls = true;
        return design;
    }

    StorageOptions options(const std::wstring& user) {
        StorageOptions options;
        options.checkpointDelay = options.writerPatience = std::chrono::milliseconds(0);
        options.name = {user, L"machine"};
        options.files = &files_;
        return options;
    }
    std::unique_ptr<Database> open(const std::wstring& user, OpenMode mode = OpenMode::Shared) {
        return std::unique_ptr<Database>(new Database(Database::open(path, mode, options(user))));
    }

    static void set(TableRecordset& rows, const std::map<std::wstring, Value>& values) {
        for (const auto& [name, value] : values)
            rows.setValue(rows.columnByName(name), value);
    }
    // Adds a row and answers its bookmark.
    static Bytes add(Database& database, const std::map<std::wstring, Value>& values) {
        TableRecordset rows(database, L"rooms");
        rows.addNew();
        set(rows, values);
        rows.update();
        return rows.lastModified();
    }
    void addCodes(std::initializer_list<const wchar_t*> codes) {
        for (const wchar_t* code : codes)
            add(*mine_, {{L"Code", code}});
    }
    static void change(Database& database, const Bytes& row,
                       const std::map<std::wstring, Value>& values) {
        TableRecordset rows(database, L"rooms");
        rows.setBookmark(row);
        rows.edit();
        set(rows, values);
        rows.update();
    }
    static void erase(Database& database, const Bytes& row) {
        TableRecordset rows(database, L"rooms");
        rows.setBookmark(row);
        rows.erase();
    }

    // The code of the current row, or what stands in its place.
    static std::wstring at(const Recordset& rows) {
        if (rows.isBof()) return rows.isEof() ? L"empty" : L"BOF";
        if (rows.isEof()) return L"EOF";
        try {
            const Value code = rows.value(rows.columnByName(L"Code"));
            return isNull(code) ? L"Null" : std::get<std::wstring>(code);
        } catch (const Error& error) {
            return std::to_wstring(error.code());
        }
    }

    const std::wstring path = L"plan.mdb";
    RecordingFiles files_{{}};
    std::unique_ptr<Database> mine_;
    std::unique_ptr<Database> theirs_;
};

inline constexpr const wchar_t* orders[] = {L"", L"PrimaryKey", L"ByCode", L"ByLevel"};

}  // namespace sg::jet
