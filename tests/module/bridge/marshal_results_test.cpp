#include "bridge/marshal_results.h"

#include <gtest/gtest.h>

#include "module/bridge/list_notation.h"

namespace sg {
namespace {

using test::describe;
using test::List;

COleVariant text(const wchar_t* value) {
    return COleVariant::fromString(value);
}
COleVariant number(int32_t value) {
    return COleVariant::fromInt32(value);
}
COleVariant newRecord() {
    return text(L"*NewRecord*");
}

struct Case {
    std::vector<COleVariant> items;
    const char* list;
};

void check(resbuf* (*build)(const COleSafeArray&), std::initializer_list<Case> cases) {
    const size_t live = acutLiveNodeCount();
    for (const Case& c : cases) {
        for (const int32_t lowerBound : {0, 1}) {
            COleSafeArray array;
            array.CreateFromVariants(c.items, lowerBound);
            EXPECT_EQ(describe(List(build(array)).get()), c.list);
        }
    }
    EXPECT_EQ(describe(List(build(COleSafeArray())).get()), "( )");
    EXPECT_EQ(acutLiveNodeCount(), live);
}

TEST(BuildPairList, PairsFromNamesAndValues) {
    check(buildPairList, {
                             {{}, "( )"},
                             {{text(L"a"), number(1), text(L"b"), COleVariant::null()},
                              "( ( 'a' . 1 ) ( 'b' . nil ) )"},
                             {{text(L"a"), text(L"x "), text(L"s_b"), text(L"y ")},
                              "( ( 'a' . 'x' ) ( 's_b' . 'y_' ) )"},
                             {{number(1), number(2)}, "( ( '' . 2 ) )"},
                             {{text(L"a"), number(1), text(L"b")}, "( ( 'a' . 1 ) )"},
                         });
}

TEST(BuildValueList, ItemsAreTrimmed) {
    check(buildValueList,
          {
              {{}, "( )"},
              {{text(L"a "), number(1), COleVariant(), newRecord()}, "( 'a' 1 nil '*NewRecord*' )"},
          });
}

TEST(BuildRecordList, MarkersStartRecords) {
    check(buildRecordList,
          {
              {{}, "( )"},
              {{text(L"a "), number(2)}, "( 'a' 2 )"},
              {{newRecord()}, "( ( ) )"},
              {{newRecord(), newRecord()}, "( ( ) ( ) )"},
              {{newRecord(), text(L"a"), number(1), text(L"b"), number(2), newRecord(), text(L"a"),
                number(3), text(L"b"), number(4)},
               "( ( ( 'a' . 1 ) ( 'b' . 2 ) ) ( ( 'a' . 3 ) ( 'b' . 4 ) ) )"},
              {{number(0), newRecord(), text(L"a"), number(1)}, "( 0 ( ( 'a' . 1 ) ) )"},
              // A marker in the place of a value is that value.
              {{newRecord(), text(L"a"), newRecord(), text(L"b"), number(2)},
               "( ( ( 'a' . '*NewRecord*' ) ( 'b' . 2 ) ) )"},
              {{newRecord(), text(L"a")}, "( ( ) )"},
              {{newRecord(), text(L"s_a"), text(L"x "), text(L"b"), text(L"y ")},
               "( ( ( 's_a' . 'x_' ) ( 'b' . 'y' ) ) )"},
          });
}

// Names that the array shares are shared by the list; where a record has others, they are its own.
TEST(BuildRecordList, SharedNames) {
    const size_t live = acutLiveNodeCount();
    {
        const COleVariant a = text(L"a"), s = text(L"s_b");
        std::vector<COleVariant> items;
        const auto record = [&] { items.push_back(newRecord()); };
        const auto field = [&](COleVariant name, const wchar_t* value) {
            items.push_back(std::move(name));
            items.push_back(text(value));
        };
        const auto sharing = &COleVariant::sharing;
        for (const wchar_t* const value : {L"1 ", L"3 "}) {
            record();
            field(sharing(a), value);
            field(sharing(s), value);
        }
        record();
        field(sharing(s), L"5 ");
        field(text(L"a"), L"6 ");
        field(sharing(a), L"7 ");
        record();
        field(sharing(a), L"8 ");
        COleSafeArray array;
        array.CreateFromVariants(std::move(items));
        const List list(buildRecordList(array));
        EXPECT_EQ(describe(list.get()),
                  "( ( ( 'a' . '1' ) ( 's_b' . '1_' ) ) ( ( 'a' . '3' ) ( 's_b' . '3_' ) ) "
                  "( ( 's_b' . '5_' ) ( 'a' . '6' ) ( 'a' . '7' ) ) ( ( 'a' . '8' ) ) )");
        std::vector<const wchar_t*> keys;
        for (const resbuf* node = list.get(); node != nullptr; node = node->rbnext) {
            if (node->rbnext != nullptr && node->rbnext->restype == RTDOTE)
                keys.push_back(node->resval.rstring);
        }
        ASSERT_EQ(keys.size(), 8u);
        EXPECT_EQ(keys[0], keys[2]);
        EXPECT_EQ(keys[1], keys[3]);
    }
    EXPECT_EQ(acutLiveNodeCount(), live);
}

}  // namespace
}  // namespace sg
