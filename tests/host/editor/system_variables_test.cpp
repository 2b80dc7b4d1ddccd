#include "host/editor/system_variables.h"

#include <gtest/gtest.h>

#include <limits>

#include "base/encoding.h"

namespace sg {
namespace {

using Value = SystemVariableValue;
using Point2 = std::array<double, 2>;
using Point3 = std::array<double, 3>;
using enum SystemVariables::SetResult;

Value text(const wchar_t* value) {
    return std::wstring(value);
}
Value shortValue(int value) {
    return static_cast<int16_t>(value);
}
Value longValue(int value) {
    return int32_t{value};
}

TEST(SystemVariablesTest, InitialValuesOfTheirTypes) {
    const SystemVariables variables;
    EXPECT_EQ(variables.get(L"acadver"), text(L"21.0s (LMS Tech)"));
    EXPECT_EQ(variables.get(L"CmdEcho"), shortValue(1));
    EXPECT_EQ(variables.get(L"TREEMAX"), longValue(10000000));
    EXPECT_EQ(variables.get(L"DIMTXT"), Value(0.18));
    EXPECT_EQ(variables.get(L"LIMMAX"), Value(Point2{12, 9}));
    EXPECT_EQ(variables.get(L"UCSXDIR"), Value(Point3{1, 0, 0}));
    EXPECT_EQ(variables.get(L"NOSUCH"), std::nullopt);
    EXPECT_EQ(variables.get(L""), std::nullopt);
    EXPECT_EQ(variables.get(L"ZZZ"), std::nullopt);
}

// The table is data: what it says of each variable must agree with itself.
TEST(SystemVariablesTest, EveryInitialValueCanBeSetAgain) {
    SystemVariables variables;
    EXPECT_GE(SystemVariables::names().size(), 300u);
    for (const SystemVariableRow& row : systemVariableTable()) {
        const auto initial = variables.get(row.name);
        ASSERT_TRUE(initial.has_value()) << toUtf8(row.name);
        EXPECT_EQ(variables.set(row.name, *initial), row.isReadOnly ? readOnly : ok)
            << toUtf8(row.name);
        EXPECT_EQ(variables.get(row.name), initial) << toUtf8(row.name);
    }
}

TEST(SystemVariablesTest, SettingChecksTypeAndRange) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const wchar_t* name;
        Value value;
        SystemVariables::SetResult result;
        std::optional<Value> after = {};
    } cases[] = {
        {L"NOSUCH", shortValue(1), unknown},
        {L"ACADVER", text(L"9"), readOnly},
        {L"ACADVER", shortValue(9), readOnly},
        {L"CMDECHO", shortValue(0), ok, shortValue(0)},
        {L"cmdecho", longValue(1), ok, shortValue(1)},
        {L"CMDECHO", shortValue(2), outOfRange, shortValue(1)},
        {L"CMDECHO", shortValue(-1), outOfRange},
        {L"CMDECHO", Value(1.0), wrongType},
        {L"CMDECHO", text(L"1"), wrongType},
        {L"OSMODE", longValue(16384), ok, shortValue(16384)},
        {L"OSMODE", longValue(32768), outOfRange},
        {L"USERI1", longValue(-32768), ok, shortValue(-32768)},
        {L"USERI1", longValue(70000), outOfRange},
        {L"TREEMAX", shortValue(7), ok, longValue(7)},
        {L"SURFTYPE", shortValue(8), ok, shortValue(8)},
        {L"SURFTYPE", shortValue(7), outOfRange},
        {L"PDMODE", shortValue(35), ok},
        {L"PDMODE", shortValue(5), outOfRange},
        {L"CELWEIGHT", shortValue(-3), ok},
        {L"LWDEFAULT", shortValue(-3), outOfRange},
        {L"LTSCALE", longValue(2), ok, Value(2.0)},
        {L"LTSCALE", Value(0.0), outOfRange, Value(2.0)},
        {L"LTSCALE", Value(1e-300), ok},
        {L"LTSCALE", Value(nan), outOfRange},
        {L"USERR1", Value(nan), outOfRange},
        {L"USERR1", Value(-std::numeric_limits<double>::infinity()), outOfRange},
        {L"FILLETRAD", Value(0.0), ok},
        {L"FILLETRAD", Value(-0.1), outOfRange},
        {L"USERS1", text(L"caf\u00e9"), ok, text(L"caf\u00e9")},
        {L"USERS1", shortValue(1), wrongType},
        {L"LIMMAX", Value(Point3{1, 2, 3}), ok, Value(Point2{1, 2})},
        {L"INSBASE", Value(Point2{1, 2}), ok, Value(Point3{1, 2, 0})},
        {L"INSBASE", Value(Point3{1, nan, 0}), outOfRange},
        {L"INSBASE", Value(1.0), wrongType},
    };
    SystemVariables variables;
    for (const auto& [name, value, result, after] : cases) {
        EXPECT_EQ(variables.set(name, value), result) << toUtf8(name);
        if (after) {
            EXPECT_EQ(variables.get(name), after) << toUtf8(name);
        }
    }
}

TEST(SystemVariablesTest, TheHostSetsWhatUsersMayNot) {
    SystemVariables variables;
    EXPECT_EQ(variables.assign(L"CMDNAMES", text(L"LINE")), ok);
    EXPECT_EQ(variables.get(L"CMDNAMES"), text(L"LINE"));
    EXPECT_EQ(variables.assign(L"CMDNAMES", shortValue(1)), wrongType);
    EXPECT_EQ(variables.assign(L"DBMOD", longValue(40000)), outOfRange);
    EXPECT_EQ(variables.assign(L"NOSUCH", shortValue(1)), unknown);
}

TEST(SystemVariablesTest, DocumentsShareTheApplicationsVariablesOnly) {
    const auto application = std::make_shared<SystemVariables>();
    SystemVariables one(application), two(application);
    ASSERT_EQ(one.set(L"FILEDIA", shortValue(0)), ok);
    ASSERT_EQ(one.set(L"CLAYER", text(L"Pipes")), ok);
    EXPECT_EQ(two.get(L"FILEDIA"), shortValue(0));
    EXPECT_EQ(application->get(L"FILEDIA"), shortValue(0));
    EXPECT_EQ(two.get(L"CLAYER"), text(L"0"));
    EXPECT_EQ(application->get(L"CLAYER"), text(L"0"));
}

TEST(SystemVariablesTest, ProvidersAnswerForTheirSet) {
    const auto application = std::make_shared<SystemVariables>();
    SystemVariables one(application), two(application);
    double now = 1;
    EXPECT_TRUE(one.setProvider(L"date", [&] { return Value(now); }));
    EXPECT_TRUE(one.setProvider(L"DWGNAME", [] { return text(L"one.dwg"); }));
    EXPECT_FALSE(one.setProvider(L"NOSUCH", [] { return text(L""); }));
    now = 2;
    EXPECT_EQ(two.get(L"DATE"), Value(2.0)) << "the application's";
    EXPECT_EQ(one.get(L"DWGNAME"), text(L"one.dwg"));
    EXPECT_EQ(two.get(L"DWGNAME"), text(L"Drawing1.dwg"));
    EXPECT_TRUE(one.setProvider(L"DWGNAME", nullptr));
    EXPECT_EQ(one.get(L"DWGNAME"), text(L"Drawing1.dwg"));
}

}  // namespace
}  // namespace sg
