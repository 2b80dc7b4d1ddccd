#include "platform/variant/variant.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/variant/safe_array.h"

namespace {

TEST(SysString, KeepsItsLengthAndEndsWithAZero) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    SysFreeString(nullptr);

    BSTR empty = SysAllocString(L"");
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(SysStringLen(empty), 0u);
    EXPECT_EQ(empty[0], L'\0');
    SysFreeString(empty);

    BSTR withZero = SysAllocStringLen(L"a\0b", 3);
    EXPECT_EQ(SysStringLen(withZero), 3u);
    EXPECT_EQ(std::wstring(withZero, 4), std::wstring(L"a\0b\0", 4));
    SysFreeString(withZero);

    BSTR blank = SysAllocStringLen(nullptr, 2);
    EXPECT_EQ(std::wstring(blank, 3), std::wstring(3, L'\0'));
    SysFreeString(blank);

    EXPECT_EQ(SysAllocStringLen(L"", static_cast<size_t>(-1)), nullptr);
}

TEST(Bstr, ASharedStringLivesUntilItsLastHolder) {
    EXPECT_EQ(sgShareBstr(nullptr), nullptr);
    std::vector<COleVariant> holders;
    {
        const COleVariant first = COleVariant::fromString(std::wstring_view(L"a\0b", 3));
        for (int i = 0; i < 3; ++i) {
            holders.push_back(COleVariant::sharing(first));
            EXPECT_EQ(holders.back().bstrVal, first.bstrVal);
        }
    }
    holders.erase(holders.begin());
    EXPECT_EQ(variantText(holders.front()), std::wstring_view(L"a\0b", 3));
    COleVariant copy = holders.front();
    EXPECT_NE(copy.bstrVal, holders.front().bstrVal) << "a copy is its holder's own";
    copy.bstrVal[0] = L'x';
    EXPECT_EQ(variantText(holders.back()), std::wstring_view(L"a\0b", 3));
}

TEST(VariantCopy, CopiesOwnWhatTheyHold) {
    COleVariant text = COleVariant::fromString(L"abc");
    COleVariant copy = text;
    ASSERT_NE(copy.bstrVal, text.bstrVal);
    copy.bstrVal[0] = L'x';
    EXPECT_EQ(variantText(text), L"abc");
    EXPECT_EQ(variantText(copy), L"xbc");

    EXPECT_EQ(VariantCopy(&text, &text), S_OK);
    EXPECT_EQ(variantText(text), L"abc");

    COleSafeArray array;
    array.CreateFromVariants({text, COleVariant::fromInt32(7)});
    COleSafeArray arrayCopy = array;
    array.GetElement(0) = COleVariant::null();
    EXPECT_EQ(variantText(arrayCopy.GetElement(0)), L"abc");
    EXPECT_EQ(arrayCopy.GetElement(1).lVal, 7);

    const COleVariant nested = arrayCopy;
    EXPECT_EQ(nested.vt, VT_ARRAY | VT_VARIANT);
    EXPECT_NE(nested.parray, arrayCopy.parray);
}

TEST(COleVariant, MovesLeaveNothingBehind) {
    COleVariant source = COleVariant::fromString(L"abc");
    const BSTR text = source.bstrVal;
    COleVariant moved = std::move(source);
    EXPECT_EQ(source.vt, VT_EMPTY);
    EXPECT_EQ(moved.bstrVal, text);

    COleVariant assigned = COleVariant::fromString(L"old");
    assigned = std::move(moved);
    EXPECT_EQ(moved.vt, VT_EMPTY);
    EXPECT_EQ(assigned.bstrVal, text);

    COleVariant& self = assigned;
    assigned = std::move(self);
    EXPECT_EQ(variantText(assigned), L"abc");

    VARIANT released = assigned.release();
    EXPECT_EQ(assigned.vt, VT_EMPTY);
    const COleVariant adopted = COleVariant::adopt(released);
    EXPECT_EQ(released.vt, VT_EMPTY);
    EXPECT_EQ(adopted.bstrVal, text);
}

TEST(COleVariant, FactoriesSetTypeAndValue) {
    EXPECT_EQ(COleVariant().vt, VT_EMPTY);
    EXPECT_EQ(COleVariant::null().vt, VT_NULL);
    EXPECT_EQ(COleVariant::fromInt16(-3).iVal, -3);
    EXPECT_EQ(COleVariant::fromBool(true).boolVal, -1);
    EXPECT_EQ(COleVariant::fromBool(false).boolVal, 0);
    EXPECT_EQ(COleVariant::fromByte(255).bVal, 255);
    EXPECT_EQ(COleVariant::fromFloat(0.5F).fltVal, 0.5F);
    EXPECT_EQ(COleVariant::fromDate(2.5).vt, VT_DATE);
    EXPECT_EQ(COleVariant::fromCurrency({12345}).cyVal.int64, 12345);
    EXPECT_EQ(variantText(COleVariant::fromInt32(5)), L"");
}

TEST(COleSafeArray, BoundsAndAccessInPlace) {
    COleSafeArray none;
    EXPECT_FALSE(none.HasArray());
    EXPECT_EQ(none.GetOneDimSize(), 0u);
    EXPECT_EQ(none.GetUBound(), -1);
    EXPECT_THROW(none.GetElement(0), std::out_of_range);

    COleSafeArray array;
    std::vector<COleVariant> values;
    values.push_back(COleVariant::fromString(L"a"));
    values.push_back(COleVariant::fromInt32(2));
    const BSTR text = values[0].bstrVal;
    array.CreateFromVariants(std::move(values), 5);
    EXPECT_EQ(array.GetLBound(), 5);
    EXPECT_EQ(array.GetUBound(), 6);
    EXPECT_EQ(array.GetElement(5).bstrVal, text);
    EXPECT_EQ(&array.GetElement(6), &array.Variants()[1]);
    EXPECT_THROW(array.GetElement(4), std::out_of_range);
    EXPECT_THROW(array.GetElement(7), std::out_of_range);

    array.CreateFromVariants({});
    EXPECT_TRUE(array.HasArray());
    EXPECT_EQ(array.GetUBound(), -1);
}

TEST(COleSafeArray, BytesAreNoVariants) {
    COleSafeArray array;
    array.CreateFromBytes({0, 255, 7});
    EXPECT_EQ(array.vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(array.GetOneDimSize(), 3u);
    EXPECT_EQ(array.Bytes()[1], 255);
    EXPECT_TRUE(array.Variants().empty());
    EXPECT_THROW(array.GetElement(0), std::out_of_range);
}

TEST(COleSafeArray, TravelsAsAVariant) {
    COleSafeArray array;
    array.CreateFromVariants({COleVariant::fromString(L"a")});
    const SAFEARRAY* held = array.parray;
    COleVariant variant = array.Detach();
    EXPECT_FALSE(array.HasArray());
    EXPECT_EQ(variant.parray, held);

    COleSafeArray again(std::move(variant));
    EXPECT_EQ(again.parray, held);
    EXPECT_EQ(variant.vt, VT_EMPTY);
    COleVariant number = COleVariant::fromInt32(1);
    EXPECT_FALSE(COleSafeArray(std::move(number)).HasArray());

    COleSafeArray moved;
    moved = std::move(again);
    EXPECT_EQ(moved.parray, held);
    EXPECT_FALSE(again.HasArray());
}

}  // namespace
