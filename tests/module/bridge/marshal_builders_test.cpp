#include "bridge/marshal_builders.h"

#include <gtest/gtest.h>

#include <functional>

#include "bridge/marshal_variants.h"
#include "module/bridge/list_notation.h"
#include "platform/variant/ole_variant.h"

namespace sg {
namespace {

using test::describe;
using test::List;

// What an append puts behind the opening node; the tail must be at the last node.
std::string appended(const std::function<void(resbuf*&)>& append) {
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    beginResultList(head, tail);
    const List list(head);
    EXPECT_EQ(head, tail);
    append(tail);
    EXPECT_EQ(tail->rbnext, nullptr);
    const std::string all = describe(head);
    return all.substr(std::min<size_t>(2, all.size()));
}

struct Case {
    std::function<void(resbuf*&)> append;
    const char* expected;
};

void check(std::initializer_list<Case> cases) {
    const size_t live = acutLiveNodeCount();
    for (const Case& c : cases)
        EXPECT_EQ(appended(c.append), c.expected);
    EXPECT_EQ(acutLiveNodeCount(), live);
}

TEST(Builders, SingleItems) {
    check({
        {[](resbuf*& t) { appendInt(t, 5); }, "5"},
        {[](resbuf*& t) { appendReal(t, 2.5); }, "2.5r"},
        {[](resbuf*& t) { appendString(t, L"a b "); }, "'a_b_'"},
        {[](resbuf*& t) { appendString(t, {}); }, "''"},
        {[](resbuf*& t) {
             appendPoint(t, {1, 2, 3});
         },
         "<1,2,3>"},
        {[](resbuf*& t) { appendBool(t, true); }, "T"},
        {[](resbuf*& t) { appendBool(t, false); }, "nil"},
        {[](resbuf*& t) { appendObjectId(t, AcDbObjectId()); }, "nil"},
        {[](resbuf*& t) { appendVariant(t, COleVariant::fromString(L" a ")); }, "'_a'"},
        {[](resbuf*& t) { appendListBegin(t), appendListEnd(t); }, "( )"},
    });
}

TEST(Builders, Pairs) {
    check({
        {[](resbuf*& t) { appendPair(t, 1, 5); }, "( 1 . 5 )"},
        {[](resbuf*& t) { appendPair(t, 1, 2.5); }, "( 1 . 2.5r )"},
        {[](resbuf*& t) { appendPair(t, 1, L"a "); }, "( 1 . 'a_' )"},
        {[](resbuf*& t) { appendPair(t, 1, AcGePoint3d(1, 2, 3)); }, "( 1 . <1,2,3> )"},
        {[](resbuf*& t) { appendPair(t, 2.5, 5); }, "( 2.5r . 5 )"},
        {[](resbuf*& t) { appendPair(t, AcGePoint3d(1, 2, 3), 0.5); }, "( <1,2,3> . 0.5r )"},
        {[](resbuf*& t) { appendPair(t, L"k", L"v"); }, "( 'k' . 'v' )"},
        {[](resbuf*& t) { appendPair(t, L"k", 5); }, "( 'k' . 5 )"},
        {[](resbuf*& t) { appendPair(t, L"k", 2.5); }, "( 'k' . 2.5r )"},
        {[](resbuf*& t) { appendPair(t, L"k", AcGePoint3d(1, 2, 3)); }, "( 'k' . <1,2,3> )"},
        {[](resbuf*& t) { appendNilPair(t, L"k"); }, "( 'k' . nil )"},
        {[](resbuf*& t) { appendTPair(t, L"k"); }, "( 'k' . T )"},
        {[](resbuf*& t) { appendBoolPair(t, L"k", true); }, "( 'k' . T )"},
        {[](resbuf*& t) { appendBoolPair(t, L"k", false); }, "( 'k' . nil )"},
        {[](resbuf*& t) { appendPair(t, L"k", AcDbObjectId()); }, "( 'k' . nil )"},
        {[](resbuf*& t) { appendPair(t, L"k", static_cast<AcDbObject*>(nullptr)); },
         "( 'k' . nil )"},
        {[](resbuf*& t) { appendPair(t, L"k", COleVariant::null()); }, "( 'k' . nil )"},
    });
}

TEST(Builders, TheKeyOfAVariantDecidesAboutTrimming) {
    const struct {
        const wchar_t* key;
        const wchar_t* value;
        const char* expected;
    } cases[] = {
        {L"name", L"a  ", "( 'name' . 'a' )"},
        {L"s_name", L"a  ", "( 's_name' . 'a__' )"},
        {L"S_name", L"a  ", "( 'S_name' . 'a' )"},
        {L"s_", L"a ", "( 's_' . 'a_' )"},
        {L"s", L"a ", "( 's' . 'a' )"},
        {L"", L"a ", "( '' . 'a' )"},
        {L"name", L" ", "( 'name' . '' )"},
        {L"s_name", L" ", "( 's_name' . '' )"},
        {L"s_name", L"  ", "( 's_name' . '__' )"},
        {L"s_name", L"\t", "( 's_name' . '\t' )"},
        {L"name", L"\t", "( 'name' . '' )"},
    };
    for (const auto& c : cases) {
        const COleVariant value = COleVariant::fromString(c.value);
        EXPECT_EQ(appended([&](resbuf*& t) { appendPair(t, c.key, value); }), c.expected);
    }
}

}  // namespace
}  // namespace sg
