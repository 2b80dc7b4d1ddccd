#include "base/text.h"

#include <gtest/gtest.h>

namespace sg {
namespace {

TEST(Text, CaseOfLettersBeyondAscii) {
    EXPECT_EQ(upperCased(L"duct \u00E9\u00FF\u0161\u017E\u03C3\u0434\u0451"),
              L"DUCT \u00C9\u0178\u0160\u017D\u03A3\u0414\u0401");
    EXPECT_EQ(lowerCased(L"DUCT \u00C9\u0178\u0160\u017D\u03A3\u0414\u0401"),
              L"duct \u00E9\u00FF\u0161\u017E\u03C3\u0434\u0451");
    // Signs between the letters are none.
    EXPECT_EQ(upperCased(L"\u00F7"), L"\u00F7");
    EXPECT_EQ(lowerCased(L"\u00D7"), L"\u00D7");
}

// Whatever toUpper maps, toLower maps back, but for the few letters that share a capital.
TEST(Text, CaseMappingsAreEachOthersInverse) {
    for (wchar_t c = 0; c < 0x500; ++c) {
        const wchar_t upper = toUpper(c);
        if (upper == c || c == 0x131 || c == 0x17F || c == 0x3C2) continue;
        EXPECT_EQ(toLower(upper), c) << "U+" << std::hex << static_cast<unsigned>(c);
    }
}

TEST(Text, ComparisonAndTrimming) {
    EXPECT_TRUE(equalIgnoringCase(L"Quillon \u00C9", L"QUILLON \u00E9"));
    EXPECT_FALSE(equalIgnoringCase(L"abc", L"abcd"));
    EXPECT_EQ(trimmedRight(L" a \t\r\n\u00A0"), L" a");
    EXPECT_EQ(trimmed(L"\n a b \v"), L"a b");
    EXPECT_EQ(trimmed(L" \t "), L"");
}

}  // namespace
}  // namespace sg
