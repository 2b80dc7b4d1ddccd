#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "base/encoding.h"
#include "host/lisp/text/units.h"

namespace sg {
namespace {

constexpr double kPi = std::numbers::pi;

UnitSettings zeros(int dimzin) {
    UnitSettings settings;
    settings.dimzin = dimzin;
    return settings;
}

UnitSettings typed() {
    UnitSettings settings;
    settings.unitmode = 1;
    return settings;
}

struct DistanceRow {
    double value;
    int mode;
    int precision;
    const wchar_t* text;
};

void check(const UnitSettings& settings, std::initializer_list<DistanceRow> rows) {
    for (const DistanceRow& row : rows) {
        EXPECT_EQ(formatDistance(row.value, row.mode, row.precision, settings), row.text)
            << row.value << " mode " << row.mode << " precision " << row.precision << " dimzin "
            << settings.dimzin;
    }
}

TEST(FormatDistance, Scientific) {
    check({}, {
                  {17.5, 1, 4, L"1.7500E+01"},
                  {-17.5, 1, 2, L"-1.75E+01"},
                  {0.00012345, 1, 2, L"1.23E-04"},
                  {9.996, 1, 2, L"1.00E+01"},
                  {9.996, 1, 0, L"1E+01"},
                  {2.5, 1, 0, L"3E+00"},
                  {1e100, 1, 1, L"1.0E+100"},
                  {0, 1, 2, L"0.00E+00"},
              });
    check(zeros(8), {{17.5, 1, 4, L"1.75E+01"}, {100, 1, 4, L"1E+02"}});
}

TEST(FormatDistance, Decimal) {
    check({}, {
                  {17.5, 2, 2, L"17.50"},
                  {17.5, 2, 0, L"18"},
                  {0.5, 2, 0, L"1"},
                  {2.5, 2, 0, L"3"},
                  {-2.5, 2, 0, L"-3"},
                  {0.125, 2, 2, L"0.13"},
                  {0.375, 2, 2, L"0.38"},
                  {99.995, 2, 2, L"100.00"},  // the double lies above the tie
                  {9.5, 2, 0, L"10"},
                  {-0.001, 2, 2, L"0.00"},
                  {-0.0, 2, 1, L"0.0"},
                  {1e20, 2, 1, L"100000000000000000000.0"},
                  {kPi, 2, 15, L"3.141592653589793"},
                  {1.0 / 3, 2, 99, L"0.3333333333333333"},
                  {17.5, 2, -3, L"18"},
                  {17.5, 9, 1, L"17.5"},
              });
}

TEST(FormatDistance, DecimalZerosThatAreLeftOut) {
    check(zeros(8),
          {{17.5, 2, 4, L"17.5"}, {17, 2, 4, L"17"}, {0, 2, 4, L"0"}, {100, 2, 0, L"100"}});
    check(zeros(4),
          {{0.5, 2, 2, L".50"}, {-0.5, 2, 2, L"-.50"}, {0, 2, 2, L".00"}, {0, 2, 0, L"0"}});
    check(zeros(12), {{0.5, 2, 2, L".5"}, {0, 2, 2, L"0"}, {10, 2, 2, L"10"}});
}

TEST(FormatDistance, Engineering) {
    check({}, {
                  {17.5, 3, 2, L"1'-5.50\""},
                  {5.5, 3, 2, L"5.50\""},
                  {12, 3, 2, L"1'"},
                  {0, 3, 2, L"0.00\""},
                  {11.996, 3, 2, L"1'"},
                  {23.996, 3, 2, L"2'"},
                  {-17.5, 3, 0, L"-1'-6\""},
                  {12.25, 3, 2, L"1'-0.25\""},
              });
    check(zeros(1), {{5.5, 3, 1, L"0'-5.5\""}, {12, 3, 1, L"1'-0.0\""}});
    check(zeros(8), {{17.5, 3, 4, L"1'-5.5\""}, {17, 3, 4, L"1'-5\""}});
    check(zeros(12), {{12.25, 3, 4, L"1'-.25\""}});
}

TEST(FormatDistance, Architectural) {
    check({}, {
                  {17.5, 4, 2, L"1'-5 1/2\""},
                  {17.5, 4, 0, L"1'-6\""},
                  {17.49, 4, 0, L"1'-5\""},
                  {0.5, 4, 4, L"1/2\""},
                  {6, 4, 4, L"6\""},
                  {12, 4, 4, L"1'"},
                  {12.75, 4, 4, L"1'-0 3/4\""},
                  {0, 4, 4, L"0\""},
                  {11.999, 4, 4, L"1'"},
                  {-17.5, 4, 2, L"-1'-5 1/2\""},
                  {1.0 / 256, 4, 8, L"1/256\""},
                  {1.0 / 256, 4, 20, L"1/256\""},
                  {-0.001, 4, 4, L"0\""},
              });
    check(zeros(1), {{0.5, 4, 4, L"0'-0 1/2\""},
                     {6, 4, 4, L"0'-6\""},
                     {12, 4, 4, L"1'-0\""},
                     {12.75, 4, 4, L"1'-0 3/4\""},
                     {0, 4, 4, L"0'-0\""}});
    check(zeros(2), {{0.5, 4, 4, L"0'-0 1/2\""},
                     {6, 4, 4, L"0'-6\""},
                     {12, 4, 4, L"1'"},
                     {12.75, 4, 4, L"1'-0 3/4\""},
                     {0, 4, 4, L"0'"}});
    check(zeros(3), {{0.5, 4, 4, L"1/2\""},
                     {6, 4, 4, L"6\""},
                     {12, 4, 4, L"1'-0\""},
                     {12.75, 4, 4, L"1'-0 3/4\""},
                     {0, 4, 4, L"0\""}});
}

TEST(FormatDistance, Fractional) {
    check({}, {
                  {17.5, 5, 2, L"17 1/2"},
                  {17, 5, 2, L"17"},
                  {0.75, 5, 2, L"3/4"},
                  {-0.75, 5, 2, L"-3/4"},
                  {0, 5, 2, L"0"},
                  {2.999, 5, 4, L"3"},
                  {0.125, 5, 2, L"1/4"},
                  {1e22, 5, 8, L"10000000000000000000000"},
              });
}

TEST(FormatDistance, AsOneTypesIt) {
    check(typed(), {
                       {17.5, 1, 4, L"1.7500E+01"},
                       {17.5, 2, 2, L"17.50"},
                       {17.5, 3, 2, L"1'5.50\""},
                       {17.5, 4, 2, L"1'5-1/2\""},
                       {17.5, 5, 2, L"17-1/2"},
                       {0.5, 4, 2, L"1/2\""},
                       {0.5, 5, 2, L"1/2"},
                   });
}

TEST(FormatDistance, WhatIsNoNumber) {
    EXPECT_EQ(formatDistance(std::numeric_limits<double>::infinity(), 4, 2, {}), L"1.#INF");
    EXPECT_EQ(formatDistance(std::nan(""), 2, 2, {}), L"1.#QNAN");
    EXPECT_EQ(formatAngle(std::nan(""), 1, 2, {}), L"1.#QNAN");
}

struct AngleRow {
    double radians;
    int mode;
    int precision;
    const wchar_t* text;
};

void check(const UnitSettings& settings, std::initializer_list<AngleRow> rows) {
    for (const AngleRow& row : rows) {
        EXPECT_EQ(formatAngle(row.radians, row.mode, row.precision, settings), row.text)
            << row.radians << " mode " << row.mode << " precision " << row.precision;
    }
}

double degrees(double d) {
    return d * kPi / 180;
}

TEST(FormatAngle, DegreesGradsAndRadians) {
    check({}, {
                  AngleRow{0.785398, 0, 0, L"45"},
                  {0.785398, 0, 4, L"45.0000"},
                  {-0.785398, 0, 4, L"315.0000"},
                  {kPi / 4, 2, 0, L"50g"},
                  {kPi / 4, 2, 4, L"50.0000g"},
                  {0.785398, 3, 4, L"0.7854r"},
                  {-1, 3, 4, L"5.2832r"},
                  {1, 3, 16, L"1.0000000000000000r"},
                  {5.9, 3, 0, L"6r"},
                  {2 * kPi, 0, 2, L"0.00"},
                  {degrees(359.999), 0, 2, L"0.00"},
                  {degrees(359.999), 0, 3, L"359.999"},
                  {degrees(399.9), 0, 1, L"39.9"},
                  {-1e-20, 0, 4, L"0.0000"},
                  {degrees(90), 7, 0, L"90"},
              });
    check(zeros(8), {AngleRow{kPi / 4, 0, 4, L"45"}, {degrees(22.5), 0, 4, L"22.5"}});
    check(zeros(4), {AngleRow{0.785398, 3, 4, L".7854r"}});
}

TEST(FormatAngle, DegreesMinutesSeconds) {
    check({}, {
                  AngleRow{0.785398, 1, 4, L"45d0'0\""},
                  {degrees(45.5), 1, 0, L"46d"},
                  {degrees(45.5), 1, 1, L"45d30'"},
                  {degrees(45.5), 1, 2, L"45d30'"},
                  {degrees(45.5125), 1, 3, L"45d30'45\""},
                  {degrees(45.5125), 1, 6, L"45d30'45.00\""},
                  {degrees(30) + degrees(0.05 / 3600), 1, 6, L"30d0'0.05\""},
                  {degrees(59.9999), 1, 2, L"60d0'"},
                  {degrees(359.9999), 1, 2, L"0d0'"},
                  {degrees(-0.25), 1, 4, L"359d45'0\""},
              });
    check(zeros(8), {AngleRow{degrees(45.5125), 1, 6, L"45d30'45\""}});
}

TEST(FormatAngle, Bearings) {
    check({}, {
                  AngleRow{kPi / 4, 4, 4, L"N 45d0'0\" E"},
                  {kPi / 4, 4, 2, L"N 45d0' E"},
                  {kPi / 4, 4, 0, L"N 45d E"},
                  {degrees(100), 4, 0, L"N 10d W"},
                  {degrees(170), 4, 0, L"N 80d W"},
                  {degrees(200), 4, 0, L"S 70d W"},
                  {degrees(280), 4, 0, L"S 10d E"},
                  {degrees(-20), 4, 0, L"S 70d E"},
                  {0, 4, 4, L"E"},
                  {degrees(90), 4, 4, L"N"},
                  {degrees(180), 4, 4, L"W"},
                  {degrees(270), 4, 4, L"S"},
                  {degrees(359.9999), 4, 2, L"E"},
                  {degrees(89.9999), 4, 2, L"N"},
              });
    check(typed(), {AngleRow{kPi / 4, 4, 4, L"N45d0'0\"E"}});
}

TEST(FormatAngle, BaseAndDirection) {
    UnitSettings settings;
    settings.angbase = kPi / 2;
    check(settings, {AngleRow{kPi / 2, 0, 0, L"0"}, {0, 0, 0, L"270"}, {kPi, 0, 0, L"90"}});
    settings.angdir = 1;
    check(settings, {AngleRow{kPi / 2, 0, 0, L"0"}, {0, 0, 0, L"90"}, {kPi, 0, 0, L"270"}});
}

}  // namespace
}  // namespace sg
