#include "host/lisp/text/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Numbers, IntegerIsTheLeadingDigits) {
    const struct {
        const wchar_t* text;
        int32_t value;
    } rows[] = {
        {L"97", 97},
        {L"3.9", 3},
        {L"  -12abc", -12},
        {L"+7", 7},
        {L"", 0},
        {L"abc", 0},
        {L"-", 0},
        {L"- 5", 0},
        {L"--5", 0},
        {L"1e3", 1},
        {L"007", 7},
        {L"2147483647", 2147483647},
        {L"2147483648", 2147483647},
        {L"-2147483648", std::numeric_limits<int32_t>::min()},
        {L"-2147483649", std::numeric_limits<int32_t>::min()},
        {L"99999999999999999999999999", 2147483647},
        {L"-99999999999999999999999999", std::numeric_limits<int32_t>::min()},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseInteger(row.text), row.value) << toUtf8(row.text);
}

TEST(Numbers, RealIsTheLongestNumberAtTheStart) {
    const struct {
        const wchar_t* text;
        double value;
    } rows[] = {
        {L"97.1", 97.1},
        {L"3", 3},
        {L".5", 0.5},
        {L"5.", 5},
        {L".", 0},
        {L"-.5x", -0.5},
        {L"\t+2.5e2", 250},
        {L"2.5E-2m", 0.025},
        {L"1e", 1},
        {L"1e+", 1},
        {L"1,5", 1},
        {L"1.2.3", 1.2},
        {L"abc", 0},
        {L"", 0},
        {L"inf", 0},
        {L"nan", 0},
        {L"0x10", 0},
        {L"1e308", 1e308},
        {L"1e309", kInfinity},
        {L"-1e309", -kInfinity},
        {L"0.0001e400", kInfinity},
        {L"1e-400", 0},
        {L"1000e-400", 0},
        {L"1e99999999999999999999", kInfinity},
        {L"1e-99999999999999999999", 0},
        {L"0e99999999999999999999", 0},
        {L"0.1000000000000000055511151231257827021181583404541015625", 0.1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parseReal(row.text), row.value) << toUtf8(row.text);
}

TEST(Numbers, ManyDigitsOverflowByTheirCount) {
    EXPECT_EQ(parseReal(std::wstring(400, L'9')), kInfinity);
    EXPECT_EQ(parseReal(L"0." + std::wstring(400, L'0') + L"1"), 0);
    EXPECT_EQ(parseReal(L"0." + std::wstring(400, L'0') + L"1e401"), 1);
}

TEST(Numbers, RealPrintsSixDigitsAndAPoint) {
    const struct {
        double value;
        const wchar_t* text;
    } rows[] = {
        {1, L"1.0"},
        {0, L"0.0"},
        {-0.0, L"0.0"},
        {-1.5, L"-1.5"},
        {3.14159265358979, L"3.14159"},
        {100000, L"100000.0"},
        {999999, L"999999.0"},
        {999999.5, L"1.0e+06"},
        {1000000, L"1.0e+06"},
        {1234567, L"1.23457e+06"},
        {1e10, L"1.0e+10"},
        {-1e10, L"-1.0e+10"},
        {1e100, L"1.0e+100"},
        {1e-5, L"1.0e-05"},
        {0.0001, L"0.0001"},
        {1.0 / 3, L"0.333333"},
        {1e-320, L"9.99989e-321"},
        {std::numeric_limits<double>::max(), L"1.79769e+308"},
        {kInfinity, L"1.#INF"},
        {-kInfinity, L"-1.#INF"},
        {std::nan(""), L"1.#QNAN"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(formatReal(row.value), row.text) << row.value;
}

}  // namespace
}  // namespace sg
