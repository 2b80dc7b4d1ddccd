#include "host/dxf/text_codec.h"

#include <gtest/gtest.h>

#include "base/encoding.h"

namespace sg::dxf {
namespace {

TEST(TextCodecTest, TextsComeInAndGoOut) {
    struct Case {
        const char* page;
        bool isUtf8;
        std::string bytes;
        std::wstring text;
        std::string again;  // what is written; empty: the same bytes
    };
    const Case cases[] = {
        {"ANSI_1252", false, "plain", L"plain", ""},
        {"ANSI_1252", false, "Gr\xfc\xdf \x80", L"Gr\u00fc\u00df \u20ac", ""},
        {"ANSI_1251", false, "\xc0\xff", L"\u0410\u044f", ""},
        {"ANSI_1252", false, "\\U+0410\\U+00e9", L"\u0410\u00e9", "\\U+0410\xe9"},
        {"DOS850", false, "\x81", L"\u00fc", ""},
        {"ANSI_932", false, "\x83\x5c", L"\u30bd", ""},
        {"ANSI_936", false, "\xc4\xe3", L"\u4f60", ""},
        {"ANSI_949", false, "\xb0\xa1", L"\uac00", ""},
        {"ANSI_1255", false, "\xf9\xec\xe5\xed", L"\u05e9\u05dc\u05d5\u05dd", ""},
        {"ANSI_1258", false, "\xd0\xe2y", L"\u0110\u00e2y", ""},
        {"ANSI_1361", false, "\xd0\x65\\U+4E2D", L"\ud55c\u4e2d", "\xd0\x65\xf3\xe9"},
        {"ANSI_1252", false, "\\M+18ABF", L"\u6f22", "\\U+6F22"},
        {"ANSI_1252", true, "Gr\xc3\xbc\xc3\x9f", L"Gr\u00fc\u00df", ""},
        {"ANSI_1252", true, "Gr\xfc", L"Gr\u00fc", "Gr\xc3\xbc"},
        {"ANSI_1252", true, "\\U+D83D\\U+DE00", L"\U0001F600", "\xf0\x9f\x98\x80"},
        {"ANSI_1252", false, "\\U+D83D\\U+DE00", L"\U0001F600", ""},
        {"ANSI_1252", false, "\\U+D83D", L"\uFFFD", "\\U+FFFD"},
        {"ANSI_1252", false, "a^Jb^ c^I", L"a\nb^c\t", ""},
        {"ANSI_1252", false, "1^2 ^", L"1^2 ^", "1^ 2 ^ "},
        {"ANSI_1252", false, "\\U+00G0 \\P\\M+9", L"\\U+00G0 \\P\\M+9", ""},
        {"nonsense", false, "\x80", L"\u20ac", ""},
    };
    for (const Case& c : cases) {
        const TextCodec codec(c.page, c.isUtf8);
        EXPECT_EQ(toUtf8(codec.decoded(c.bytes)), toUtf8(c.text)) << c.page << " " << c.bytes;
        std::string written;
        codec.encode(c.text, written);
        EXPECT_EQ(written, c.again.empty() ? c.bytes : c.again) << c.page;
        EXPECT_EQ(codec.decoded(written), c.text) << c.page << " " << c.bytes;
    }
}

TEST(TextCodecTest, CodePagesAreKnownByTheNamesThatDrawingsHave) {
    for (const char* name :
         {"ANSI_1252", "ansi_1250", "ANSI_874", "ANSI_932", "ANSI_936", "ANSI_949", "ANSI_950",
          "ANSI_1258", "dos437", "DOS866", "ISO8859-2", "MACINTOSH", "UTF-8"}) {
        EXPECT_TRUE(TextCodec::isKnown(name)) << name;
    }
    for (const char* name : {"", "ANSI_", "ANSI_99999", "DOS", "latin"})
        EXPECT_FALSE(TextCodec::isKnown(name)) << name;
}

}  // namespace
}  // namespace sg::dxf
