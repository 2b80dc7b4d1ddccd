#include "base/encoding.h"

#include <gtest/gtest.h>

namespace sg {
namespace {

TEST(Encoding, Utf8RoundTripsEveryPlane) {
    const std::wstring text = L"A\u00E9\u20AC\uFFFD\U0001F600\U0010FFFF";
    EXPECT_EQ(fromUtf8(toUtf8(text)), text);
    EXPECT_EQ(toUtf8(L"\u00E9\u20AC\U0001F600"), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(fromUtf16(toUtf16(text)), text);
    EXPECT_EQ(toUtf16(L"\U0001F600"), u"\xD83D\xDE00");
}

TEST(Encoding, MalformedUtf8BecomesReplacementsAndNothingIsReadBeyondTheEnd) {
    struct Case {
        std::string_view bytes;
        std::wstring expected;
    };
    const Case cases[] = {
        {"a\xC3", L"a\uFFFD"},            // cut off
        {"\xE2\x82", L"\uFFFD"},          // cut off after two of three
        {"\xC0\xAF", L"\uFFFD\uFFFD"},    // overlong
        {"\xED\xA0\x80", L"\uFFFD"},      // a surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD"},  // beyond U+10FFFF
        {"\x80z", L"\uFFFDz"},            // a lone continuation
        {"\xE2(\x82", L"\uFFFD(\uFFFD"},  // broken by ASCII, which survives
    };
    for (const Case& c : cases) {
        EXPECT_EQ(fromUtf8(c.bytes), c.expected);
        EXPECT_FALSE(isUtf8(c.bytes));
    }
    EXPECT_EQ(toUtf8(std::wstring(1, wchar_t(0xD800))), "\xEF\xBF\xBD");
    EXPECT_EQ(fromUtf16(u"a\xDC00z"), L"a\uFFFDz");
}

TEST(Encoding, CodePage1252) {
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    EXPECT_EQ(toCp1252(fromCp1252(all)), all);
    EXPECT_EQ(fromCp1252("\x80\x9F\xE9"), L"\u20AC\u0178\u00E9");
    EXPECT_EQ(toCp1252(L"\u0416\u20AC"), "?\x80");
}

TEST(Encoding, TextFilesAreDecodedByWhatTheyHold) {
    using namespace std::string_view_literals;
    EXPECT_EQ(decodeTextFile("\xEF\xBB\xBF\xC3\xA9"), L"\u00E9");
    EXPECT_EQ(decodeTextFile("\xC3\xA9"), L"\u00E9");
    EXPECT_EQ(decodeTextFile("caf\xE9"), L"caf\u00E9");
    EXPECT_EQ(decodeTextFile("\xFF\xFE(\x00\xE9\x00"sv), L"(\u00E9");
    EXPECT_EQ(decodeTextFile("\xFE\xFF\x00("sv), L"(");
    EXPECT_EQ(decodeTextFile(""), L"");
}

}  // namespace
}  // namespace sg
