#include "bridge/marshal_readers.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "module/bridge/list_notation.h"

namespace sg {
namespace {

using test::describe;
using test::List;
using test::makeList;

// A reader under test, as text: what it read, or "refused".
using Reader = std::function<std::string(const resbuf*&)>;

std::string point(double x, double y) {
    return "<" + std::to_string(x) + "," + std::to_string(y) + ">";
}

std::string decimal(int32_t value) {
    return std::to_string(value);
}

const Reader kString = [](const resbuf*& at) {
    std::wstring text = L"kept";
    if (!nextString(at, text)) return std::string(text == L"kept" ? "refused" : "output changed");
    return std::string(text.begin(), text.end());
};
const Reader kInt = [](const resbuf*& at) {
    int32_t value = 4711;
    if (!nextInt(at, value)) return std::string(value == 4711 ? "refused" : "output changed");
    return decimal(value);
};
const Reader kReal = [](const resbuf*& at) {
    double value = 4711;
    if (!nextReal(at, value)) return std::string(value == 4711 ? "refused" : "output changed");
    return std::to_string(value);
};
const Reader kNumber = [](const resbuf*& at) {
    double value = 4711;
    if (!nextNumber(at, value)) return std::string(value == 4711 ? "refused" : "output changed");
    return std::to_string(value);
};
const Reader kBool = [](const resbuf*& at) {
    bool value = true;
    if (!nextBool(at, value)) return std::string(value ? "refused" : "output changed");
    return std::string(value ? "true" : "false");
};
const Reader kBoolWord = [](const resbuf*& at) {
    int16_t value = 4711;
    if (!nextBoolWord(at, value)) return std::string(value == 4711 ? "refused" : "output changed");
    return decimal(value);
};
const Reader kPoint2d = [](const resbuf*& at) {
    AcGePoint2d value(-9, -9);
    if (!nextPoint2d(at, value)) return std::string(value.x == -9 ? "refused" : "output changed");
    return point(value.x, value.y);
};
const Reader kPoint3d = [](const resbuf*& at) {
    AcGePoint3d value(-9, -9, -9);
    if (!nextPoint3d(at, value)) return std::string(value.x == -9 ? "refused" : "output changed");
    return point(value.x, value.y) + std::to_string(value.z);
};
const Reader kEntityName = [](const resbuf*& at) {
    ads_name name = {8, 9};
    if (!nextEntityName(at, name)) return std::string(name[0] == 8 ? "refused" : "output changed");
    return decimal(name[0]) + "," + decimal(name[1]);
};
const Reader kSelectionSet = [](const resbuf*& at) {
    ads_name name = {8, 9};
    if (!nextSelectionSet(at, name)) {
        return std::string(name[0] == 8 ? "refused" : "output changed");
    }
    return decimal(name[0]) + "," + decimal(name[1]);
};
const Reader kKeyedInt = [](const resbuf*& at) {
    std::wstring key = L"kept";
    int32_t value = 4711;
    const bool expected = isKeyedIntNext(at);
    if (!nextKeyedInt(at, key, value)) {
        const bool kept = !expected && key == L"kept" && value == 4711;
        return std::string(kept ? "refused" : "output changed");
    }
    if (!expected) return std::string("isKeyedIntNext disagrees");
    return std::string(key.begin(), key.end()) + "=" + decimal(value);
};
const Reader kListBegin = [](const resbuf*& at) { return nextListBegin(at) ? "read" : "refused"; };
const Reader kListEnd = [](const resbuf*& at) { return nextListEnd(at) ? "read" : "refused"; };
const Reader kSkip = [](const resbuf*& at) { return skipNext(at) ? "read" : "refused"; };

struct Case {
    const Reader& reader;
    const char* list;
    std::string read;
    const char* rest;  // the position afterwards
};

void check(std::initializer_list<Case> cases) {
    int number = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE("case " + std::to_string(number++) + ": " + c.list);
        const List list = makeList(c.list);
        const resbuf* position = list.get();
        EXPECT_EQ(c.reader(position), c.read);
        EXPECT_EQ(describe(position), c.rest);
        EXPECT_EQ(describe(list.get()), c.list);
    }
}

TEST(Readers, ANullPositionIsRefused) {
    for (const Reader* reader :
         {&kString, &kInt, &kReal, &kNumber, &kBool, &kBoolWord, &kPoint2d, &kPoint3d, &kEntityName,
          &kSelectionSet, &kKeyedInt, &kListBegin, &kListEnd, &kSkip}) {
        const resbuf* position = nullptr;
        EXPECT_EQ((*reader)(position), "refused");
        EXPECT_EQ(position, nullptr);
    }
    const resbuf* position = nullptr;
    AcDbObjectId id;
    std::unique_ptr<char[]> bytes;
    EXPECT_FALSE(nextObjectId(position, id));
    EXPECT_FALSE(nextBytes(position, bytes));
    EXPECT_FALSE(isKeyedIntNext(position));
}

TEST(Readers, StringsAndNames) {
    check({
        {kString, "'abc' 5", "abc", "5"},
        {kString, "''", "", ""},
        {kString, "5 'abc'", "refused", "5 'abc'"},
        {kString, "1:'abc'", "refused", "1:'abc'"},
        {kEntityName, "e:3,4 5", "3,4", "5"},
        {kEntityName, "p:3,4", "refused", "p:3,4"},
        {kSelectionSet, "p:3,-4", "3,-4", ""},
        {kSelectionSet, "e:3,4", "refused", "e:3,4"},
    });
}

TEST(Readers, Integers) {
    check({
        {kInt, "-7s 1", "-7", "1"},
        {kInt, "70000", "70000", ""},
        {kInt, "2.9r", "2", ""},
        {kInt, "-2.9r", "-2", ""},
        {kInt, "-2147483648r", "-2147483648", ""},
        {kInt, "-2147483648.9r", "-2147483648", ""},
        {kInt, "2147483647.9r", "2147483647", ""},
        {kInt, "2147483648r", "-2147483648", ""},
        {kInt, "nanr", "-2147483648", ""},
        // A DXF node answers its group code and is not passed.
        {kInt, "70:5s 1", "70", "70:5s 1"},
        {kInt, "0:'LINE'", "0", "0:'LINE'"},
        {kInt, "-1:e:1,2", "-1", "-1:e:1,2"},
        {kInt, "'5'", "refused", "'5'"},
        {kInt, "nil", "refused", "nil"},
        {kInt, "T", "refused", "T"},
    });
}

TEST(Readers, Reals) {
    check({
        {kReal, "2.5r 1", std::to_string(2.5), "1"},
        {kReal, "2", "refused", "2"},
        {kReal, "2s", "refused", "2s"},
        {kReal, "40:2.5r", "refused", "40:2.5r"},
        {kNumber, "2.5r 1", std::to_string(2.5), "1"},
        {kNumber, "2 1", std::to_string(2.0), "1"},
        {kNumber, "-2s", std::to_string(-2.0), ""},
        {kNumber, "40:2.5r", std::to_string(40.0), "40:2.5r"},
        {kNumber, "nil", "refused", "nil"},
    });
}

TEST(Readers, Truth) {
    check({
        {kBool, "nil 1", "false", "1"},
        {kBool, ") 1", "false", ") 1"},
        {kBool, "( )", "refused", "( )"},
        {kBool, "T", "true", ""},
        {kBool, "0 1", "true", "1"},
        {kBool, "'' 1", "true", "1"},
        {kBool, ". 1", "true", "1"},
        {kBoolWord, "nil", "0", ""},
        {kBoolWord, ")", "0", ")"},
        {kBoolWord, "T", "-1", ""},
        {kBoolWord, "( )", "refused", "( )"},
    });
}

TEST(Readers, Points2d) {
    const std::string p = point(1, 2);
    check({
        {kPoint2d, "<1,2> 5", p, "5"},
        {kPoint2d, "<1,2,3> 5", p, "5"},
        {kPoint2d, "10:<1,2,3> 5", p, "5"},
        {kPoint2d, "17:<1,2,3>", p, ""},
        {kPoint2d, "18:<1,2,3>", "refused", "18:<1,2,3>"},
        {kPoint2d, "1r 2r 3r", p, "3r"},
        {kPoint2d, "1r", "refused", "1r"},
        {kPoint2d, "1r 2", "refused", "1r 2"},
        {kPoint2d, "1 2r", "refused", "1 2r"},
        {kPoint2d, "1s 2s", "refused", "1s 2s"},
        {kPoint2d, "( 1r 2r )", "refused", "( 1r 2r )"},
    });
}

TEST(Readers, Points3d) {
    const std::string flat = point(1, 2) + std::to_string(0.0);
    const std::string p = point(1, 2) + std::to_string(3.0);
    check({
        {kPoint3d, "<1,2,3> 5", p, "5"},
        {kPoint3d, "<1,2> 5", flat, "5"},
        {kPoint3d, "10:<1,2,3> 5", p, "5"},
        {kPoint3d, "17:<1,2,3>", p, ""},
        {kPoint3d, "18:<1,2,3>", "refused", "18:<1,2,3>"},
        {kPoint3d, "9:'a'", "refused", "9:'a'"},
        // Three numbers, and a third that is missing.
        {kPoint3d, "1r 2r 3r 4r", p, "4r"},
        {kPoint3d, "1r 2 3s )", p, ")"},
        {kPoint3d, "1 2r 3", p, ""},
        {kPoint3d, "1 2 )", flat, ")"},
        {kPoint3d, "1r 2r", flat, ""},
        {kPoint3d, "1r 2r nil", flat, "nil"},
        {kPoint3d, "1r 2r 40:3r", flat, "40:3r"},
        // The second number of a real or a long is not a short.
        {kPoint3d, "1r 2s 3r", "refused", "1r 2s 3r"},
        {kPoint3d, "1 2s 3r", "refused", "1 2s 3r"},
        {kPoint3d, "1r nil", "refused", "1r nil"},
        {kPoint3d, "1r", "refused", "1r"},
        // After a short any node is an integer.
        {kPoint3d, "1s 2s 3s", p, ""},
        {kPoint3d, "1s 2 3r", p, ""},
        {kPoint3d, "1s 2.9r 3r", p, ""},
        {kPoint3d, "1s 70:2s 3r", p, ""},
        {kPoint3d, "1s 40:2.9r 3r", p, ""},
        {kPoint3d, "1s 'a' 3r", point(1, 0) + std::to_string(3.0), ""},
        {kPoint3d, "1s ) 5s", point(1, 0) + std::to_string(5.0), ""},
        {kPoint3d, "1s", "refused", "1s"},
        {kPoint3d, "'a' 2r", "refused", "'a' 2r"},
    });
}

TEST(Readers, Structure) {
    check({
        {kListBegin, "( 1", "read", "1"},
        {kListBegin, ") 1", "refused", ") 1"},
        {kListEnd, ") 1", "read", "1"},
        {kListEnd, "( 1", "refused", "( 1"},
        {kSkip, "( 1", "read", "1"},
        {kSkip, "70:1s", "read", ""},
        {kKeyedInt, "( 'a' . 5 ) 1", "a=5", "1"},
        {kKeyedInt, "( 'a' . -5s )", "a=-5", ""},
        {kKeyedInt, "( 'a' . 2.5r )", "refused", "( 'a' . 2.5r )"},
        {kKeyedInt, "( 'a' . 70:5s )", "refused", "( 'a' . 70:5s )"},
        {kKeyedInt, "( 'a' . 'b' )", "refused", "( 'a' . 'b' )"},
        {kKeyedInt, "( 'a' 5 )", "refused", "( 'a' 5 )"},
        {kKeyedInt, "( 5 . 5 )", "refused", "( 5 . 5 )"},
        {kKeyedInt, "( 'a' . 5 6 )", "refused", "( 'a' . 5 6 )"},
        {kKeyedInt, "( 'a' . 5", "refused", "( 'a' . 5"},
        {kKeyedInt, "'a' . 5 )", "refused", "'a' . 5 )"},
        {kKeyedInt, "( 'a' .", "refused", "( 'a' ."},
        {kKeyedInt, "(", "refused", "("},
    });
}

TEST(Readers, BytesAreOneACharacter) {
    const List list = makeList("'a\xE2\x82\xAC\xC3\xA9\xCE\xB1' 5");
    const resbuf* position = list.get();
    std::unique_ptr<char[]> bytes;
    ASSERT_TRUE(nextBytes(position, bytes));
    EXPECT_STREQ(bytes.get(), "a\x80\xE9?");
    EXPECT_EQ(describe(position), "5");
    EXPECT_FALSE(nextBytes(position, bytes));
    EXPECT_STREQ(bytes.get(), "a\x80\xE9?");
    EXPECT_EQ(describe(position), "5");
}

}  // namespace
}  // namespace sg
