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

}  // namespace
}  // namespace sg
