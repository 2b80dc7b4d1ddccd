#include "platform/lisp/resbuf.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

class ResbufTest : public testing::Test {
  protected:
    void TearDown() override { EXPECT_EQ(acutLiveNodeCount(), before_); }
    const size_t before_ = acutLiveNodeCount();
};

std::vector<int> typesOf(const resbuf* list) {
    std::vector<int> types;
    for (; list != nullptr; list = list->rbnext)
        types.push_back(list->restype);
    return types;
}

TEST_F(ResbufTest, NewNodeIsZeroedAlsoWhenItsMemoryWasUsedBefore) {
    const ads_point point = {1, 2, 3};
    resbuf* const used = acutBuildList(RTPOINT, point, RTSTR, L"text", 0);
    acutRelRb(used);
    for (int i = 0; i < 3; ++i) {
        resbuf* const node = acutNewRb(RT3DPOINT);
        EXPECT_EQ(node->rbnext, nullptr);
        EXPECT_EQ(node->restype, RT3DPOINT);
        for (const double coordinate : node->resval.rpoint)
            EXPECT_EQ(coordinate, 0);
        acutRelRb(node);
    }
}

TEST_F(ResbufTest, BuildListTakesEveryKindOfValue) {
    const ads_point point = {1.5, 2.5, 3.5};
    const ads_name name = {7, 9};
    resbuf* const list =
        acutBuildList(RTLB, RTREAL, 0.25, RTSHORT, -5, RTLONG, 70000, RTSTR, L"caf\u00e9", RTPOINT,
                      point, RT3DPOINT, point, RTENAME, name, RTPICKS, name, RTANG, 3.0, RTDOTE,
                      RTNIL, RTT, RTVOID, RTLE, 0);
    ASSERT_EQ(typesOf(list),
              (std::vector<int>{RTLB, RTREAL, RTSHORT, RTLONG, RTSTR, RTPOINT, RT3DPOINT, RTENAME,
                                RTPICKS, RTANG, RTDOTE, RTNIL, RTT, RTVOID, RTLE}));
    const resbuf* node = list->rbnext;
    EXPECT_EQ(node->resval.rreal, 0.25);
    EXPECT_EQ((node = node->rbnext)->resval.rint, -5);
    EXPECT_EQ((node = node->rbnext)->resval.rlong, 70000);
    EXPECT_STREQ((node = node->rbnext)->resval.rstring, L"caf\u00e9");
    EXPECT_EQ((node = node->rbnext)->resval.rpoint[1], 2.5);
    EXPECT_EQ(node->resval.rpoint[2], 0) << "a 2D point has no third coordinate";
    EXPECT_EQ((node = node->rbnext)->resval.rpoint[2], 3.5);
    EXPECT_EQ((node = node->rbnext)->resval.rlname[1], 9);
    acutRelRb(list);
}

TEST_F(ResbufTest, BuildListTakesGroupCodesByTheirKind) {
    const ads_point point = {1, 2, 3};
    resbuf* const list = acutBuildList(RTDXF0, L"LINE", 8, L"Pipes", 10, point, 39, 2.5, 62, 3, 90,
                                       100000, -3, 1001, L"QUILLON", 1070, 4, RTNONE, 77);
    ASSERT_EQ(typesOf(list), (std::vector<int>{0, 8, 10, 39, 62, 90, -3, 1001, 1070}));
    EXPECT_STREQ(list->resval.rstring, L"LINE");
    EXPECT_EQ(list->rbnext->rbnext->resval.rpoint[2], 3);
    EXPECT_EQ(list->rbnext->rbnext->rbnext->resval.rreal, 2.5);
    acutRelRb(list);
}

TEST_F(ResbufTest, BuildListOfAnUnknownCodeLeavesNothing) {
    for (const int unknown : {80, 200, 1072, 4999, 5011, 6000, -6}) {
        EXPECT_EQ(acutBuildList(RTSTR, L"a", RTSTR, L"b", unknown, 1, 0), nullptr) << unknown;
    }
    EXPECT_EQ(acutBuildList(0), nullptr);
    resbuf* const list = acutBuildList(RTSTR, static_cast<const wchar_t*>(nullptr), 0);
    EXPECT_STREQ(list->resval.rstring, L"");
    acutRelRb(list);
}

TEST_F(ResbufTest, ReleaseAnswersNormalForNull) {
    EXPECT_EQ(acutRelRb(nullptr), RTNORM);
}

TEST_F(ResbufTest, LiveCountFollowsEveryNode) {
    resbuf* head = nullptr;
    for (size_t i = 1; i <= 5000; ++i) {
        resbuf* const node = acutNewRb(RTSTR);
        node->resval.rstring = acutNewString(L"shared");
        node->rbnext = head;
        head = node;
        ASSERT_EQ(acutLiveNodeCount(), before_ + i);
    }
    resbuf* const rest = head->rbnext;
    head->rbnext = nullptr;
    acutRelRb(head);
    EXPECT_EQ(acutLiveNodeCount(), before_ + 4999);
    EXPECT_EQ(acutRelRb(rest), RTNORM);
}

// Lengths around the borders of the size classes and beyond the largest one.
TEST_F(ResbufTest, StringsOfEveryLengthKeepTheirText) {
    std::vector<wchar_t*> strings;
    for (size_t length = 0; length < 600; ++length) {
        const std::wstring text(length, static_cast<wchar_t>(L'a' + length % 26));
        strings.push_back(acutNewString(text.c_str()));
    }
    for (size_t i = 0; i < strings.size(); i += 2)
        acutDelString(strings[i]);
    for (size_t i = 0; i < strings.size(); i += 2) {
        EXPECT_EQ(strings[i], nullptr);
        strings[i] = acutNewString(std::wstring(i, L'#').c_str());
    }
    for (size_t i = 0; i < strings.size(); ++i) {
        const wchar_t filler = i % 2 == 0 ? L'#' : static_cast<wchar_t>(L'a' + i % 26);
        EXPECT_EQ(std::wstring(strings[i]), std::wstring(i, filler));
        acutDelString(strings[i]);
    }
}

TEST_F(ResbufTest, StringOfALengthKeepsZerosAndEndsItself) {
    wchar_t* text = acutNewString(L"ab\0cdef", 4);
    EXPECT_EQ(std::wstring(text, 5), std::wstring(L"ab\0c\0", 5));
    acutDelString(text);
    acutDelString(text);
    EXPECT_EQ(acutNewString(nullptr), nullptr);
}

TEST_F(ResbufTest, ASharedStringLivesUntilItsLastNode) {
    EXPECT_EQ(sgShareNodeString(nullptr), nullptr);
    for (const size_t length : {size_t{3}, size_t{5000}}) {
        const std::wstring text(length, L'k');
        resbuf* const list = acutBuildList(RTSTR, text.c_str(), RTSTR, L"", RTSTR, L"", 0);
        wchar_t* const first = list->resval.rstring;
        for (resbuf* node = list->rbnext; node != nullptr; node = node->rbnext) {
            acutDelString(node->resval.rstring);
            node->resval.rstring = sgShareNodeString(first);
            EXPECT_EQ(node->resval.rstring, first);
        }
        resbuf* const rest = list->rbnext;
        list->rbnext = nullptr;
        acutRelRb(list);
        wchar_t* const other = acutNewString(std::wstring(length, L'x').c_str());
        EXPECT_EQ(rest->rbnext->resval.rstring, text);
        acutRelRb(rest);
        wchar_t* released = other;
        acutDelString(released);
    }
}

TEST(GroupCodeTest, KindsOfGroupCodes) {
    const struct {
        int code;
        int type;
    } cases[] = {
        {-6, RTNONE},      {-5, RTENAME},     {-4, RTSTR},     {-3, RTNONE},
        {-2, RTENAME},     {-1, RTENAME},     {0, RTSTR},      {5, RTSTR},
        {9, RTSTR},        {10, RT3DPOINT},   {18, RT3DPOINT}, {20, RTREAL},
        {38, RTREAL},      {59, RTREAL},      {60, RTSHORT},   {79, RTSHORT},
        {80, RTNONE},      {89, RTNONE},      {90, RTLONG},    {99, RTLONG},
        {100, RTSTR},      {103, RTNONE},     {105, RTSTR},    {110, RT3DPOINT},
        {140, RTREAL},     {150, RTNONE},     {170, RTSHORT},  {210, RT3DPOINT},
        {230, RTREAL},     {270, RTSHORT},    {290, RTSHORT},  {300, RTSTR},
        {310, RTSTR},      {330, RTENAME},    {369, RTENAME},  {370, RTSHORT},
        {390, RTENAME},    {410, RTSTR},      {420, RTLONG},   {430, RTSTR},
        {450, RTLONG},     {460, RTREAL},     {470, RTSTR},    {481, RTENAME},
        {482, RTNONE},     {998, RTNONE},     {999, RTSTR},    {1000, RTSTR},
        {1005, RTSTR},     {1010, RT3DPOINT}, {1040, RTREAL},  {1070, RTSHORT},
        {1071, RTLONG},    {1072, RTNONE},    {RTSTR, RTNONE}, {-2000000, RTNONE},
        {2000000, RTNONE},
    };
    for (const auto& [code, type] : cases)
        EXPECT_EQ(acdbGroupCodeToType(code), type) << code;
}

}  // namespace
