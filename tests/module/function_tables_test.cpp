#include "module/function_tables.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace sg {
namespace {

TEST(FunctionTables, NumbersAreRowPositions) {
    const struct {
        int number;
        const wchar_t* name;
    } cases[] = {
        {0, L"sg_append"},
        {17, L"sg_connect"},
        {31, L"sg_sql"},
        {44, L"sg_xdget-all"},
        {52, L"sg_getVersion"},
        {62, L"sg_relationInfo"},
        {63, L"qn_qn-setGroupSelectable"},
        {63 + 32, L"asin"},
        {63 + 63, L"qn_qn-getPoint"},
        {63 + 109, L"qn_qn-setAcadWindowText"},
    };
    ASSERT_EQ(sgFunctions().size(), 63u);
    ASSERT_EQ(qnFunctions().size(), 110u);
    EXPECT_EQ(kSgBase, 0);
    EXPECT_EQ(qnBase(), 63);
    for (const auto& c : cases) {
        const bool inSg = c.number < qnBase();
        const FunctionRow& row = inSg ? sgFunctions()[static_cast<size_t>(c.number)]
                                      : qnFunctions()[static_cast<size_t>(c.number - qnBase())];
        EXPECT_STREQ(row.name, c.name) << c.number;
    }
}

TEST(FunctionTables, EveryRowHasANameAndAHandlerOfItsOwn) {
    std::set<std::wstring> names;
    std::set<int (*)()> handlers;
    for (const auto rows : {sgFunctions(), qnFunctions()}) {
        for (const FunctionRow& row : rows) {
            EXPECT_TRUE(names.insert(row.name).second) << row.name;
            ASSERT_NE(row.handler, nullptr) << row.name;
            EXPECT_TRUE(handlers.insert(row.handler).second) << row.name;
        }
    }
}

}  // namespace
}  // namespace sg
