#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "base/encoding.h"
#include "host/lisp/text/unit_table.h"
#include "host/lisp/text/units.h"

namespace sg {
namespace {

struct Row {
    double value;
    const wchar_t* from;
    const wchar_t* to;
    double result;
};

TEST(ConvertUnit, ExactFactorsStayExact) {
    const Row rows[] = {
        {1, L"minute", L"second", 60},
        {1, L"inch", L"cm", 2.54},
        {1, L"acre", L"sq yard", 4840},
        {1, L"ft", L"in", 12},
        {1, L"mile", L"feet", 5280},
        {1, L"gallon", L"cu in", 231},
        {1, L"ton", L"pounds", 2000},
        {1, L"hectare", L"m2", 10000},
        {1, L"day", L"hours", 24},
        {1, L"revolution", L"degrees", 360},
        {1, L"nautical mile", L"meters", 1852},
        {1, L"lb", L"kg", 0.45359237},
        {90, L"degrees", L"grads", 100},
        {1, L"ton of refrigeration", L"Btu/hr", 12000},
        {1, L"tons_of_refrigeration", L"mbh", 12},
        {1, L"bar", L"kPa", 100},
        {1, L"kWh", L"MJ", 3.6},
        {32, L"fahrenheit", L"celsius", 0},
        {212, L"F", L"C", 100},
        {-40, L"celsius", L"fahrenheit", -40},
        {0, L"deg C", L"kelvin", 273.15},
        {0, L"C", L"rankine", 491.67},
        {0.1, L"meter", L"meter", 0.1},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(convertUnit(row.value, row.from, row.to), row.result)
            << toUtf8(row.from) << " to " << toUtf8(row.to);
    }
}

TEST(ConvertUnit, BuildingServices) {
    const Row rows[] = {
        {1000, L"cfm", L"l/s", 471.947443},
        {1, L"l/s", L"m3/h", 3.6},
        {1, L"gpm", L"l/s", 0.0630901964},
        {1, L"ton of refrigeration", L"kW", 3.51685284},
        {1, L"inwg", L"Pa", 249.08891},
        {1, L"in. w.g.", L"pa", 249.08891},
        {1, L"inches of water", L"mmh2o", 25.4},
        {1, L"psi", L"kpa", 6.89475729},
        {1, L"atm", L"inHg", 29.9212556},
        {1, L"hp", L"w", 745.699872},
        {1, L"Btu", L"joules", 1055.05585},
        {1, L"therm", L"kwh", 29.3071070},
        {1, L"Btu/hr-ft2-F", L"W/m2.K", 5.67826334},
        {1, L"footcandle", L"lux", 10.7639104},
        {1, L"fpm", L"m/s", 0.00508},
        {100, L"ft of water", L"psi", 43.3527504},
        {1, L"rpm", L"radians/second", 0.104719755},
        {1, L"ft-lb", L"newton meters", 1.35581795},
        {1, L"lbf-in", L"in-lb", 1},
        {1, L"lb/ft3", L"kg/m^3", 16.0184634},
    };
    for (const Row& row : rows) {
        const auto result = convertUnit(row.value, row.from, row.to);
        ASSERT_TRUE(result) << toUtf8(row.from) << " to " << toUtf8(row.to);
        EXPECT_NEAR(*result, row.result, row.result * 1e-8)
            << toUtf8(row.from) << " to " << toUtf8(row.to);
    }
}

TEST(ConvertUnit, SpellingsOfOneUnit) {
    for (const wchar_t* name : {L"sq in", L"sq_in", L"sqin", L"square inch", L"square inches",
                                L"in2", L"in^2", L"SQ INCH", L"sq. in.", L"inch squared", L"in*in",
                                L"in in", L"inches2", L"in^3/in", L"acre in2/acre"}) {
        const auto result = convertUnit(1, name, L"mm2");
        ASSERT_TRUE(result) << toUtf8(name);
        EXPECT_NEAR(*result, 645.16, 1e-9) << toUtf8(name);
    }
    for (const wchar_t* name : {L"km/h", L"kph", L"kilometers per hour", L"Kilometre/Hour",
                                L"km*h^-1", L"km h^-1", L"1/h*km"}) {
        const auto result = convertUnit(36, name, L"m/s");
        ASSERT_TRUE(result) << toUtf8(name);
        EXPECT_NEAR(*result, 10, 1e-12) << toUtf8(name);
    }
}

TEST(ConvertUnit, DivisorIsTheWholeProductAfterTheBar) {
    EXPECT_TRUE(convertUnit(1, L"w/m2 k", L"w/m2/k"));
    EXPECT_FALSE(convertUnit(1, L"w/m2*k", L"w/m2/k"));
    EXPECT_TRUE(convertUnit(1, L"w/m2*k", L"w k/m2"));
}

TEST(ConvertUnit, TemperatureInAnExpressionIsADifference) {
    EXPECT_NEAR(*convertUnit(1, L"J/C", L"J/F"), 5 / 9.0, 1e-15);
    EXPECT_NEAR(*convertUnit(9, L"F^2/F", L"C^2/C"), 5, 1e-15);
}

TEST(ConvertUnit, WhatHasNoAnswer) {
    const struct {
        const wchar_t* from;
        const wchar_t* to;
    } rows[] = {
        {L"gallon", L"furlong"}, {L"m", L"m2"},        {L"blorp", L"m"},
        {L"m", L"blorp"},        {L"", L"m"},          {L"", L""},
        {L"m/", L"m"},           {L"/m", L"m"},        {L"m//s", L"m/s"},
        {L"m^", L"m"},           {L"m^-", L"m"},       {L"m^99", L"m^99"},
        {L"^2", L"m2"},          {L"sq", L"m2"},       {L"m(2)", L"m2"},
        {L"kiloinch", L"inch"},  {L"kilom", L"m"},     {L"1000 m", L"m"},
        {L"cs", L"c"},           {L"m22", L"m^22"},    {L"rpm", L"hertz"},
        {L"radian", L"meter"},   {L"J", L"foot lb m"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(convertUnit(1, row.from, row.to), std::nullopt)
            << toUtf8(row.from) << " to " << toUtf8(row.to);
    }
    EXPECT_EQ(convertUnit(1e300, L"parsec^9", L"nm^9"), std::nullopt);
    EXPECT_EQ(convertUnit(std::nan(""), L"m", L"m"), std::nullopt);
}

TEST(UnitTable, EveryNameStandsOnceAndFindsItsUnit) {
    std::set<std::wstring_view> seen;
    for (const Unit& unit : allUnits()) {
        std::wstring_view names = unit.names;
        EXPECT_GT(unit.factor, 0) << toUtf8(unit.names);
        while (!names.empty()) {
            const size_t end = std::min(names.find(L' '), names.size());
            const std::wstring_view name = names.substr(0, end);
            EXPECT_TRUE(seen.insert(name).second) << toUtf8(name);
            EXPECT_EQ(findUnit(name), &unit) << toUtf8(name);
            EXPECT_EQ(convertUnit(1, name, name), 1.0) << toUtf8(name);
            names.remove_prefix(std::min(end + 1, names.size()));
        }
    }
}

TEST(UnitTable, Plurals) {
    EXPECT_EQ(findUnit(L"inches"), findUnit(L"inch"));
    EXPECT_EQ(findUnit(L"henries"), findUnit(L"henry"));
    EXPECT_EQ(findUnit(L"yds"), findUnit(L"yard"));
    EXPECT_EQ(findUnit(L"cs"), nullptr);
    EXPECT_EQ(findUnit(L""), nullptr);
    EXPECT_EQ(findUnit(L"s"), findUnit(L"second"));
}

}  // namespace
}  // namespace sg
