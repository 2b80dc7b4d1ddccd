#include "host/jet/database/table_rules.h"

#include <gtest/gtest.h>

#include "base/encoding.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

Date fixedTime() {
    return {42766.5};
}

Column column(const wchar_t* name, ColumnType type, uint16_t length = 0, uint8_t flags = 0) {
    Column made;
    made.name = name;
    made.type = type;
    made.length = length;
    made.flags = flags;
    return made;
}

enum Place : size_t { Id, Name, Notes, Area, Price, Done, Made };

class TableRulesTest : public testing::Test {
  protected:
    TableRulesTest() {
        table_.name = L"Rooms";
        table_.columns = {column(L"Id", ColumnType::Long, 4, columns::autoNumberFlag),
                          column(L"Name", ColumnType::Text, 20),
                          column(L"Notes", ColumnType::Memo),
                          column(L"Area", ColumnType::Double, 8),
                          column(L"Price", ColumnType::Currency, 8),
                          column(L"Done", ColumnType::Boolean),
                          column(L"Made", ColumnType::Date, 8)};
    }

    void set(const wchar_t* owner, const wchar_t* name, Value value) {
        properties_.set(owner, {.name = name, .value = std::move(value)});
    }
    TableRules rules() const { return TableRules(table_, properties_); }

    // "" when the row passes, else the error's number and text.
    static std::string checked(const TableRules& rules, const std::vector<Value>& row,
                               const std::vector<bool>& changed = {}) {
        try {
            rules.check(row, changed);
            return "";
        } catch (const Error& e) {
            return e.what();
        }
    }

    TableDefinition table_;
    Properties properties_;
    const std::vector<Value> sound_ = {1, L"Hall", L"n", 10.0, Currency{20000}, true, Date{1}};
};

TEST_F(TableRulesTest, ADesignWithoutPropertiesAsksNothing) {
    const TableRules rules = this->rules();
    EXPECT_FALSE(rules.isRequired(Name));
    EXPECT_TRUE(rules.allowsZeroLength(Name));
    EXPECT_EQ(checked(rules, {{}, L"", L"", {}, {}, false, {}}), "");
    std::vector<Value> row = {5};
    rules.defaults(row);
    EXPECT_EQ(row, (std::vector<Value>{{}, {}, {}, {}, {}, false, {}}));
}

TEST_F(TableRulesTest, RequiredAndZeroLength) {
    set(L"Id", L"Required", true);
    set(L"Name", L"Required", true);
    set(L"Name", L"AllowZeroLength", true);
    set(L"notes", L"allowzerolength", false);
    const TableRules rules = this->rules();
    EXPECT_TRUE(rules.isRequired(Name));
    EXPECT_TRUE(rules.allowsZeroLength(Name));
    EXPECT_FALSE(rules.allowsZeroLength(Notes));
    std::vector<Value> row = sound_;
    EXPECT_EQ(checked(rules, row), "");
    row[Id] = Value();  // the counter's value is yet to be made
    row[Name] = L"";
    row[Notes] = Value();
    EXPECT_EQ(checked(rules, row), "");
    row[Notes] = L"";
    EXPECT_EQ(checked(rules, row), "3315: Field 'Notes' cannot be a zero-length string.");
    row[Name] = Value();
    EXPECT_EQ(checked(rules, row).substr(0, 24), "3314: The field 'Name' c");
}

TEST_F(TableRulesTest, ColumnRules) {
    set(L"Area", L"ValidationRule", L" >=0 And <1000 ");
    set(L"Price", L"ValidationRule", L">0");
    set(L"Price", L"ValidationText", L"A price is more than nothing.");
    set(L"Made", L"ValidationRule", L"Is Null Or <=[rooms].[made]");  // its own name
    const TableRules rules = this->rules();
    std::vector<Value> row = sound_;
    EXPECT_EQ(checked(rules, row), "");
    row[Price] = Currency{};
    EXPECT_EQ(checked(rules, row), "3316: A price is more than nothing.");
    row[Area] = 1000.0;
    EXPECT_EQ(checked(rules, row),
              "3317: One or more values are prohibited by the validation rule '>=0 And <1000' set "
              "for 'Area'. Enter a value that the expression for this field can accept.");
    // Only columns that change are asked.
    std::vector<bool> changed(table_.columns.size());
    EXPECT_EQ(checked(rules, row, changed), "");
    changed[Price] = true;
    EXPECT_EQ(checked(rules, row, changed).substr(0, 4), "3316");
    row[Area] = row[Price] = row[Made] = Value();
    EXPECT_EQ(checked(rules, row), "");
}

TEST_F(TableRulesTest, TheTablesRuleSeesAllColumns) {
    set(L"", L"ValidationRule", L"[Price]<=[Area] Or Rooms.Done=No");
    const TableRules rules = this->rules();
    std::vector<Value> row = sound_;
    EXPECT_EQ(checked(rules, row), "");
    row[Price] = Currency{200000};
    const std::vector<bool> none(table_.columns.size());
    EXPECT_EQ(checked(rules, row, none).substr(0, 4), "3317");
    EXPECT_NE(checked(rules, row).find("set for 'Rooms'"), std::string::npos);
    row[Done] = false;
    EXPECT_EQ(checked(rules, row), "");
    set(L"", L"ValidationText", L"Too dear.");
    row[Done] = true;
    EXPECT_EQ(checked(this->rules(), row), "3316: Too dear.");
}

TEST_F(TableRulesTest, WhatIsWrongInARuleIsToldWhenItIsNeeded) {
    set(L"Area", L"ValidationRule", L">> 1");
    set(L"Price", L"ValidationRule", L"<[Gone]");
    set(L"", L"ValidationRule", L"DoIt(1)");
    const TableRules rules = this->rules();
    std::vector<bool> changed(table_.columns.size());
    EXPECT_EQ(checked(rules, sound_, changed),
              "3085: Undefined function 'DoIt' in expression. (validation rule of Rooms)");
    changed[Price] = true;
    EXPECT_EQ(checked(rules, sound_, changed),
              "3061: Too few parameters. Expected 1. (validation rule of Price: Gone)");
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(checked(rules, sound_),
                  "3075: Syntax error (missing operator) in query expression '>> 1'. (validation "
                  "rule of Area)");
    }
}

TEST_F(TableRulesTest, Defaults) {
    setExpressionClock(fixedTime);
    set(L"Id", L"DefaultValue", L"GenUniqueID()");
    set(L"Name", L"DefaultValue", L"=\"Room \" & 1");
    set(L"Area", L"DefaultValue", L"12");
    set(L"Price", L"DefaultValue", L"1.23456");
    set(L"Done", L"DefaultValue", L"=Yes");
    set(L"Made", L"DefaultValue", L"Date()");
    std::vector<Value> row;
    rules().defaults(row);
    setExpressionClock(nullptr);
    EXPECT_EQ(row,
              (std::vector<Value>{{}, L"Room 1", {}, 12.0, Currency{12346}, true, Date{42766}}));
}

TEST_F(TableRulesTest, ATextsDefaultThatIsNoExpressionIsTheTextItself) {
    for (const wchar_t* text : {L"Supply", L"12 x \"12\"", L"Main duct", L"f(1)"}) {
        set(L"Name", L"DefaultValue", text);
        std::vector<Value> row;
        rules().defaults(row);
        EXPECT_EQ(row[Name], Value(text)) << toUtf8(text);
    }
    set(L"Name", L"DefaultValue", L"=Supply");
    std::vector<Value> row;
    EXPECT_THROW(rules().defaults(row), Error);
}

TEST_F(TableRulesTest, ADefaultThatFailsNamesItsColumn) {
    const struct {
        const wchar_t* text;
        const char* error;
    } cases[] = {
        {L"many", "3061: Too few parameters. Expected 1. (default value of Area: many)"},
        {L"1+",
         "3075: Syntax error (missing operator) in query expression '1+'. (default value of "
         "Area)"},
        {L"1/0", "3421: Data type conversion error. (default value of Area: division by zero)"},
    };
    for (const auto& c : cases) {
        set(L"Area", L"DefaultValue", c.text);
        const TableRules rules = this->rules();
        std::vector<Value> row;
        try {
            rules.defaults(row);
            ADD_FAILURE() << toUtf8(c.text);
        } catch (const Error& e) {
            EXPECT_STREQ(e.what(), c.error);
        }
    }
    set(L"Area", L"DefaultValue", L"\"wide\"");  // evaluated, but no number
    std::vector<Value> row;
    EXPECT_THROW(rules().defaults(row), Error);
}

}  // namespace
}  // namespace sg::jet
