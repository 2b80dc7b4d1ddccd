#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "base/encoding.h"
#include "host/jet/database/database.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/recordset.h"
#include "host/jet/schema/schema.h"
#include "host/jet/values/value_convert.h"
#include "host/sql/run/session.h"

namespace sg::sql {

struct SelectCase {
    const wchar_t* text;
    const char* rows;  // "1 a; 2 b", or "error N"
};

// A small building: levels, rooms on them, and one link between rooms.
//
//     Levels:  Id Name     Height (Double)
//               1 Ground   3.5
//               2 First    3
//               3 Roof     Null
//     Rooms:   Id Code Level Area  Cost (Currency) Built (Date)  Heated
//               1 A1   1     10.5  100.25          2017-01-31    True
//               2 a2   1     20    50              2018-06-01    False
//               3 B1   2     5.25  Null            Null          True
//               4 b2   Null  30    1.5             2017-12-24    False
//               5 Null 2     5.25  100.25          2016-02-29    True
class SessionTest : public testing::Test {
  protected:
    SessionTest()
        : path_(std::filesystem::temp_directory_path() /
                (std::string("sg_sql_") + std::to_string(getpid()) + "_" +
                 testing::UnitTest::GetInstance()->current_test_info()->name() + ".mdb")) {
        remove();
        database_.reset(new jet::Database(jet::Database::create(path_.wstring())));
        makeLevels();
        makeRooms();
        session_ = std::make_unique<Session>(*database_);
    }
    ~SessionTest() override {
        session_.reset();
        database_.reset();
        remove();
    }

    static jet::ColumnDesign column(const wchar_t* name, jet::ColumnType type) {
        jet::ColumnDesign design;
        design.name = name;
        design.type = type;
        return design;
    }
    static jet::IndexDesign index(const wchar_t* name, const wchar_t* column) {
        jet::IndexDesign design;
        design.name = name;
        design.columns = {{column}};
        return design;
    }

    static std::string shown(const jet::Value& value) {
        if (jet::isNull(value)) {
            return "Null";
        }
        if (const auto* date = std::get_if<jet::Date>(&value)) {
            const std::string text = toUtf8(jet::toText(*date));
            return text.substr(11) == "00:00:00" ? text.substr(0, 10) : text;
        }
        if (const auto* truth = std::get_if<bool>(&value)) {
            return *truth ? "True" : "False";
        }
        return toUtf8(jet::toInvariantText(value));
    }

    // All rows, their values separated by blanks and rows by "; ".
    std::string rows(std::wstring_view text, const Parameters& parameters = {}) {
        try {
            const auto result = session_->select(text, parameters);
            std::string all;
            for (; !result->isEof(); result->move(1)) {
                all += all.empty() ? "" : "; ";
                for (size_t i = 0; i < result->columns().size(); ++i) {
                    all += std::string(i == 0 ? "" : " ") + shown(result->value(i));
                }
                if (result->recordCount() == 0) {
                    break;
                }
            }
            return all;
        } catch (const jet::Error& error) {
            return std::string("error ") + std::to_string(error.code()) + detail(error);
        }
    }
    // The columns' names.
    std::string names(std::wstring_view text) {
        std::string all;
        const auto result = session_->select(text);
        for (const jet::RecordColumn& column : result->columns()) {
            all += std::string(all.empty() ? "" : ",") + toUtf8(column.name);
        }
        return all;
    }
    // How many records a statement changed.
    std::string executed(std::wstring_view text, const Parameters& parameters = {}) {
        try {
            return std::to_string(session_->execute(text, parameters));
        } catch (const jet::Error& error) {
            return std::string("error ") + std::to_string(error.code()) + detail(error);
        }
    }

    void check(const std::vector<SelectCase>& cases, const Parameters& parameters = {}) {
        for (const SelectCase& c : cases) {
            EXPECT_EQ(rows(c.text, parameters), c.rows) << toUtf8(c.text);
        }
    }

    std::string file() const { return path_.string(); }

    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<Session> session_;

  private:
    // Only of errors that the engine has no number for.
    static std::string detail(const jet::Error& error) {
        return error.code() == 3360 ? std::string(" ") + toUtf8(error.place().detail) : "";
    }
    void remove() {
        for (const char* suffix : {"", "-log", "-lock"}) {
            std::filesystem::remove(path_.string() + suffix);
        }
        std::filesystem::remove(std::filesystem::path(path_).replace_extension(".ldb"));
    }

    void add(const wchar_t* table, std::vector<jet::Value> row) {
        database_->writer(table).insert(row);
    }
    void makeLevels() {
        jet::TableDesign design;
        design.name = L"Levels";
        design.columns = {column(L"Id", jet::ColumnType::Long),
                          column(L"Name", jet::ColumnType::Text),
                          column(L"Height", jet::ColumnType::Double)};
        design.indexes = {index(L"PrimaryKey", L"Id")};
        design.indexes[0].primary = true;
        jet::createTable(*database_, design);
        add(L"Levels", {int32_t(1), L"Ground", 3.5});
        add(L"Levels", {int32_t(2), L"First", 3.0});
        add(L"Levels", {int32_t(3), L"Roof", {}});
    }
    void makeRooms() {
        using jet::ColumnType;
        jet::TableDesign design;
        design.name = L"Rooms";
        design.columns = {
            column(L"Id", ColumnType::Long),       column(L"Code", ColumnType::Text),
            column(L"Level", ColumnType::Integer), column(L"Area", ColumnType::Double),
            column(L"Cost", ColumnType::Currency), column(L"Built", ColumnType::Date),
            column(L"Heated", ColumnType::Boolean)};
        design.columns[0].autoNumber = true;
        design.indexes = {index(L"PrimaryKey", L"Id"), index(L"ByCode", L"Code"),
                          index(L"ByArea", L"Area")};
        design.indexes[0].primary = true;
        jet::createTable(*database_, design);
        const auto day = [](int year, int month, int dayOfMonth) {
            jet::Date date;
            jet::dateOfParts({year, month, dayOfMonth, 0, 0, 0}, date);
            return date;
        };
        const auto amount = [](int64_t scaled) { return jet::Currency{scaled}; };
        using S = int16_t;
        add(L"Rooms", {{}, L"A1", S(1), 10.5, amount(1002500), day(2017, 1, 31), true});
        add(L"Rooms", {{}, L"a2", S(1), 20.0, amount(500000), day(2018, 6, 1), false});
        add(L"Rooms", {{}, L"B1", S(2), 5.25, {}, {}, true});
        add(L"Rooms", {{}, L"b2", {}, 30.0, amount(15000), day(2017, 12, 24), false});
        add(L"Rooms", {{}, {}, S(2), 5.25, amount(1002500), day(2016, 2, 29), true});
    }

    std::filesystem::path path_;
};

}  // namespace sg::sql
