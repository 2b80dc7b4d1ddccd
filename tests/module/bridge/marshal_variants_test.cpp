#include "bridge/marshal_variants.h"

#include <gtest/gtest.h>

#include <limits>

#include "module/bridge/list_notation.h"

namespace sg {
namespace {

using test::describe;
using test::List;
using test::makeList;

std::string describeVariant(const VARIANT& v) {
    switch (v.vt) {
        case VT_EMPTY:
            return "EMPTY";
        case VT_NULL:
            return "NULL";
        case VT_I4:
            return std::to_string(v.lVal);
        case VT_R8:
            return std::to_string(v.dblVal);
        case VT_BOOL:
            return "BOOL" + std::to_string(v.boolVal);
        case VT_BSTR: {
            const std::wstring_view text = variantText(v);
            return "'" + std::string(text.begin(), text.end()) + "'";
        }
        default:
            return "vt " + std::to_string(v.vt);
    }
}

std::string describeArray(const COleSafeArray& array) {
    std::string text;
    for (const COleVariant& v : array.Variants()) {
        text += (text.empty() ? "" : " ") + describeVariant(v);
    }
    return text;
}

TEST(ResbufToVariant, TypesOfTheTableAndNoOther) {
    const struct {
        const char* node;
        std::string variant;
    } cases[] = {
        {"2.5r", std::to_string(2.5)},
        {"-5s", "-5"},
        {"70000", "70000"},
        {"'a_'", "'a '"},
        {"''", "''"},
        {"nil", "EMPTY"},
        {"T", "BOOL-1"},
        {"(", "refused"},
        {")", "refused"},
        {".", "refused"},
        {"void", "refused"},
        {"<1,2>", "refused"},
        {"<1,2,3>", "refused"},
        {"e:1,2", "refused"},
        {"p:1,2", "refused"},
        {"70:5s", "refused"},
        {"1:'a'", "refused"},
    };
    for (const auto& c : cases) {
        const List node = makeList(c.node);
        COleVariant out = COleVariant::fromInt32(4711);
        const bool taken = resbufToVariant(*node, out);
        EXPECT_EQ(taken ? describeVariant(out) : "refused", c.variant) << c.node;
        if (!taken) {
            EXPECT_EQ(describeVariant(out), "4711") << c.node;
        }
    }
}

TEST(VariantToResbuf, EveryType) {
    COleVariant error, decimal;
    error.vt = VT_ERROR;
    decimal.vt = VT_DECIMAL;
    COleVariant oddTruth = COleVariant::fromBool(true);
    oddTruth.boolVal = 1;
    COleSafeArray array;
    array.CreateFromVariants({COleVariant()});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        COleVariant variant;
        const char* node;
    } cases[] = {
        {COleVariant::fromInt16(-5), "-5"},
        {COleVariant::fromInt32(70000), "70000"},
        {COleVariant::fromByte(255), "255"},
        {COleVariant::fromBool(true), "-1"},
        {COleVariant::fromBool(false), "0"},
        {oddTruth, "-1"},
        {COleVariant::fromFloat(0.5F), "0.5r"},
        {COleVariant::fromDouble(2.5), "2.5r"},
        {COleVariant::fromDouble(nan), "0r"},
        {COleVariant::fromFloat(static_cast<float>(nan)), "0r"},
        {COleVariant::fromDouble(std::numeric_limits<double>::infinity()), "infr"},
        {COleVariant(), "nil"},
        {COleVariant::null(), "nil"},
        {COleVariant::fromCurrency({10000}), "nil"},
        {error, "nil"},
        {decimal, "nil"},
        {array, "nil"},
    };
    for (const auto& c : cases) {
        for (const bool trim : {true, false}) {
            const List node(variantToResbuf(c.variant, trim));
            EXPECT_EQ(describe(node.get()), c.node) << c.variant.vt;
        }
    }
}

TEST(VariantToResbuf, Trimming) {
    const struct {
        const wchar_t* text;
        const char* trimmed;
        const char* untrimmed;
    } cases[] = {
        {L"a", "'a'", "'a'"},  {L" a  ", "'_a'", "'_a__'"}, {L" ", "''", "''"},
        {L"  ", "''", "'__'"}, {L"", "''", "''"},           {L"a\t\r\n", "'a'", "'a\t\r\n'"},
        {L"\t", "''", "'\t'"},
    };
    for (const auto& c : cases) {
        const COleVariant variant = COleVariant::fromString(c.text);
        EXPECT_EQ(describe(List(variantToResbuf(variant, true)).get()), c.trimmed);
        EXPECT_EQ(describe(List(variantToResbuf(variant, false)).get()), c.untrimmed);
    }
}

TEST(Variants, Markers) {
    const COleVariant begin = COleVariant::fromString(L"*RTLB*");
    const COleVariant end = COleVariant::fromString(L"*RTLE*");
    EXPECT_TRUE(isListBeginMarker(begin));
    EXPECT_FALSE(isListBeginMarker(end));
    EXPECT_TRUE(isListEndMarker(end));
    EXPECT_FALSE(isListEndMarker(begin));
    for (const wchar_t* text : {L"", L"*rtlb*", L"*RTLB* ", L"*RTLB"}) {
        EXPECT_FALSE(isListBeginMarker(COleVariant::fromString(text))) << text;
    }
    EXPECT_FALSE(isListEndMarker(COleVariant()));
}

TEST(Variants, Truth) {
    EXPECT_FALSE(isVariantTrue(COleVariant()));
    EXPECT_FALSE(isVariantTrue(COleVariant::fromBool(false)));
    EXPECT_TRUE(isVariantTrue(COleVariant::fromBool(true)));
    EXPECT_TRUE(isVariantTrue(COleVariant::null()));
    EXPECT_TRUE(isVariantTrue(COleVariant::fromInt32(0)));
    EXPECT_TRUE(isVariantTrue(COleVariant::fromString(L"")));
}

struct ArrayCase {
    const char* list;
    const char* array;  // null for a failure
};

template <typename Convert>
void checkArrays(const Convert& convert, std::initializer_list<ArrayCase> cases) {
    for (const ArrayCase& c : cases) {
        const List list = makeList(c.list);
        COleSafeArray array;
        array.CreateFromVariants({COleVariant::fromInt32(4711)});
        const bool converted = convert(list.get(), array);
        EXPECT_EQ(converted, c.array != nullptr) << c.list;
        EXPECT_EQ(describeArray(array), c.array != nullptr ? c.array : "4711") << c.list;
        EXPECT_EQ(array.GetLBound(), 0);
    }
}

TEST(ListToVariantArray, KeepsTheStructure) {
    checkArrays(listToVariantArray,
                {
                    {"", ""},
                    {"nil", "EMPTY"},
                    {"( 'a' . 1s ) T", "'*RTLB*' 'a' '*RTDOTE*' 1 '*RTLE*' BOOL-1"},
                    {") ( .", "'*RTLE*' '*RTLB*' '*RTDOTE*'"},
                    {"( 'a' <1,2> 'b' )", nullptr},
                    {"70:1s", nullptr},
                    {"void", nullptr},
                });
}

TEST(PairsToVariantArray, NamesAndValuesAlternate) {
    checkArrays(pairsToVariantArray, {
                                         {"( ( 'a' . 1s ) ( 'b' . 'x' ) )", "'a' 1 'b' 'x'"},
                                         {"( ( 'a' 1s ) ( 'b' 'x' ) )", "'a' 1 'b' 'x'"},
                                         {"( 'a' 1s 'b' 'x' )", "'a' 1 'b' 'x'"},
                                         {"'a' 1s 'b' 'x'", "'a' 1 'b' 'x'"},
                                         {"( 'a' )", "'a' NULL"},
                                         {"( ( 'a' ) ( 'b' . 2s ) )", "'a' NULL 'b' 2"},
                                         {"( 'a' . nil )", "'a' EMPTY"},
                                         {"( 'a' T ) ) )", "'a' BOOL-1"},
                                         {"'a'", nullptr},
                                         {"( 'a' .", nullptr},
                                         {"", nullptr},
                                         {"( )", nullptr},
                                         {"( 'a' ( 1 ) 'b' 2 )", nullptr},
                                         {"'a' <1,2,3> 'b' 2", nullptr},
                                     });
}

TEST(PairsToVariantArray, ANameThatIsNoStringFailsTheWhole) {
    checkArrays(pairsToVariantArray, {
                                         {"nil", nullptr},
                                         {"1 2", nullptr},
                                         {"( 'a' 1 2 3 'b' 4 )", nullptr},
                                         {"( 70:1s 5 )", nullptr},
                                     });
}

}  // namespace
}  // namespace sg
