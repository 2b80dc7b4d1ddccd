#include "host/sql/run/text_order.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/jet/index/sort_order.h"

namespace sg::sql {
namespace {

jet::KeyBytes keyOf(const std::string& text) {
    jet::KeyBytes key;
    EXPECT_TRUE(jet::appendTextKey(jet::TextOrder::GeneralLegacy, fromUtf8(text), false, key));
    return key;
}

int signOf(int order) {
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

int orderOfKeys(const std::string& a, const std::string& b) {
    const auto order = keyOf(a) <=> keyOf(b);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

TEST(TextOrderTest, Pairs) {
    struct Case {
        const char* a;
        const char* b;
        int order;
    };
    const Case cases[] = {
        {"", "", 0},
        {"", "a", -1},
        {"", "  ", 0},
        {"abc", "ABC  ", 0},
        {"abc", "abd", -1},
        {"ab", "abc", -1},
        {"a b", "ab", -1},
        {"a_b", "a b", 1},
        {"co-op", "coop", 1},  // the hyphen counts last
        {"co-op", "cooq", -1},
        {"e", "\xC3\xA9", -1},  // an accent counts behind all letters
        {"\xC3\xA9"
         "a",
         "eb", -1},
        {"z", "\xF0\x9F\x98\x80", -1},  // without a weight: behind all others
        {"za", "zb\xF0\x9F\x98\x80", -1},
        {"zb", "za\xF0\x9F\x98\x80", -1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(signOf(compareTexts(c.a, c.b)), c.order) << c.a << " and " << c.b;
        EXPECT_EQ(signOf(compareTexts(c.b, c.a)), -c.order) << c.b << " and " << c.a;
    }
}

// What indexes don't keep of long texts tells them apart.
TEST(TextOrderTest, LongTexts) {
    const std::string kept(255, 'x');
    EXPECT_EQ(compareTexts(kept, kept), 0);
    EXPECT_LT(compareTexts(kept, kept + "a"), 0);
    EXPECT_LT(compareTexts(kept + "a", kept + "b"), 0);
    EXPECT_EQ(compareTexts(kept + "a", kept + "A "), 0);
    EXPECT_EQ(hashOf(kept + "a"), hashOf(kept + "A "));
}

TEST(TextOrderTest, IsTheOrderOfKeys) {
    const std::vector<std::string> parts = {"a",        "A",        "b", "B", " ",  "-",   "'",
                                            "0",        "9",        "_", "^", "{",  "+",   "~",
                                            "\xC3\xA9", "\xC3\x9F", "z", "s", "\t", "\x01"};
    std::mt19937 random(1);
    const auto made = [&] {
        std::string text;
        for (size_t length = random() % 5; length > 0; --length) {
            text += parts[random() % parts.size()];
        }
        return text;
    };
    for (int i = 0; i < 20'000; ++i) {
        const std::string a = made();
        const std::string b = made();
        const int order = orderOfKeys(a, b);
        ASSERT_EQ(signOf(compareTexts(a, b)), order) << a << " and " << b;
        if (order == 0) {
            ASSERT_EQ(hashOf(a), hashOf(b)) << a << " and " << b;
        }
    }
}

TEST(TextOrderTest, KeysKeepTheBeginning) {
    EXPECT_EQ(keptByKeys("duct 4 "), "duct 4");
    EXPECT_EQ(keptByKeys("co-op"), "co");
    EXPECT_EQ(keptByKeys("\xC3\xA9"), "");
    EXPECT_EQ(keptByKeys("  "), "");
    for (const char* rest : {"", "-", "' x", "\xC3\xA9", "\xCC\x81"}) {
        const jet::KeyBytes whole = keyOf(std::string("DUCT 4") + rest);
        jet::KeyBytes kept = keyOf("duct 4");
        kept.resize(kept.size() - 2);
        EXPECT_TRUE(std::equal(kept.begin(), kept.end(), whole.begin())) << rest;
    }
}

}  // namespace
}  // namespace sg::sql
