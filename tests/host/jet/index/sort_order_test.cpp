#include "host/jet/index/sort_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/jet/hex.h"
#include "real_data.h"

namespace {

using sg::jet::appendTextKey;
using sg::jet::hex;
using sg::jet::KeyBytes;
using sg::jet::TextOrder;

std::string key(std::wstring_view text, TextOrder order = TextOrder::GeneralLegacy,
                bool descending = false) {
    KeyBytes bytes;
    return appendTextKey(order, text, descending, bytes) ? hex(bytes) : "unknown";
}

std::string key97(std::wstring_view text, bool descending = false) {
    return key(text, TextOrder::General97, descending);
}

struct Case {
    std::wstring text;
    std::string key;
};

// A reference list has one line a character: a letter for the kind, and weights in hexadecimal
// without their leading zero, separated by commas. This is the key of a text of that one character.
std::string keyOfLine(const std::string& line) {
    std::vector<std::string> parts(1);
    for (char c : line.substr(1)) {
        if (c == ',') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    for (std::string& part : parts) {
        if (part.size() % 2 != 0) part.insert(part.begin(), '0');
    }
    switch (line[0]) {
        case 'X':
            return "0100";
        case 'S':
            return parts[0] + "0100";
        case 'I':
            return parts[0] + "01" + parts[1] + "00";
        case 'U':
            return "01010101800706" + parts[0] + "00";
        case 'P':  // extra bytes up to 02 say nothing at the end
            return parts[0] <= "02" ? "0100" : "01" + parts[0] + "00";
        case 'Z':
            return parts[0] + "01" + parts[1] + "0101" + (parts[2] == "01" ? "A0" : "") +
                   "FF0280FF80" + "00";
        default:
            return "no such kind";
    }
}

std::filesystem::path referenceFolder() {
    return sg::test::realData() / "jet_sort";
}

// The lists leave out the surrogates, which are no characters: their 0xF800 lines reach U+FFFF.
TEST(SortOrder, AgreesWithTheReferenceLists) {
    unsigned c = 0;
    unsigned wrong = 0;
    for (const char* name : {"index_codes_genleg.txt", "index_codes_ext_genleg.txt"}) {
        std::ifstream file(referenceFolder() / name);
        if (!file) GTEST_SKIP() << "no reference list " << name;
        for (std::string line; std::getline(file, line); ++c) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (c == 0xD800) c = 0xE000;
            // A blank alone is dropped as a trailing one.
            const std::string expected = c == ' ' ? "0100" : keyOfLine(line);
            const std::string found = key(std::wstring(1, static_cast<wchar_t>(c)));
            if (found != expected && ++wrong <= 10)
                ADD_FAILURE() << std::hex << c << ": " << found << ", expected " << expected;
        }
    }
    EXPECT_EQ(c, 0x10000u);
    EXPECT_EQ(wrong, 0u);
}

TEST(SortOrder, WeightsOfEachKind) {
    const Case cases[] = {
        {L"", "0100"},
        {L"Chai", "4D574A590100"},
        {L"3 x", "3C07750100"},
        {L"\u4E00", "9F020100"},        // an ideograph
        {L"\uE000", "E6020100"},        // private use
        {L"\uFF21\uFF42", "4A4C0100"},  // full width
        {L"\u00DF", "6B6B0100"},        // a sharp s is two letters
        {L"\u00E6", "4A510100"},
        {L"\uFB03", "5353590100"},                // and the ffi ligature three
        {L"na\u00EFve", "624A5971510102021300"},  // plain letters before the accent are filled in
        {L"\u00E9\u00E8", "5151010E0F00"},
        {L"\u01C6z", "4F787801021400"},  // one character with two extra bytes
        {L"\u0640", "0100"},             // nothing at all
    };
    for (const Case& c : cases)
        EXPECT_EQ(key(c.text), c.key) << testing::PrintToString(c.text);
}

// Combining accents add to the extra byte of the letter before them: with U+0301 a letter has the
// key of its composed form.
TEST(SortOrder, CombiningAccents) {
    EXPECT_EQ(key(L"e\u0301"), key(L"\u00E9"));
    EXPECT_EQ(key(L"xe\u0301y"), key(L"x\u00E9y"));
    EXPECT_EQ(key(L"\u00E9\u0301"), "51011A00");
    EXPECT_EQ(key(L"\u0301e"), "51010C00");
    EXPECT_EQ(key(L"\u0301\u0301e"), "51011800");
}

// Hyphens and apostrophes follow the letters, each with its position in the extra bytes.
TEST(SortOrder, UnprintableCharacters) {
    EXPECT_EQ(key(L"-a"),
              "4A0101010180070682"
              "00");
    EXPECT_EQ(key(L"x-y"), "757601010101800B068200");
    EXPECT_EQ(key(L"a'b-c"), "4A4C4D01010101800B0680800F068200");
    // The letter with two extra bytes counts twice, an accent without a letter not at all.
    EXPECT_EQ(key(L"\u01C6-"), "4F78010214010101800F068200");
    EXPECT_EQ(key(L"\u0301-"),
              "010C01010180070682"
              "00");
    // With an accent before them the position counts letters that are still to be filled in.
    EXPECT_EQ(key(L"\u00E9ab-"), "514A4C010E0101018013068200");
}

TEST(SortOrder, Kana) {
    EXPECT_EQ(key(L"\u3042"), "7F02010101FF0280FF8000");
    EXPECT_EQ(key(L"\u30A2"), key(L"\u3042"));  // katakana is hiragana
    EXPECT_EQ(key(L"\u3041"), "7F02010101A0FF0280FF8000");
    // Flags are three to a byte, and those at the end that are not small are dropped.
    EXPECT_EQ(key(L"\u3041\u3042\u3041\u3041\u3042"), "7F027F027F027F027F02010101AEA0FF0280FF8000");
    EXPECT_EQ(key(L"\u3042-"), "7F02010101FF0280FF80FF01800B068200");
    EXPECT_EQ(key(L"\u304C"), "7F0A01030101FF0280FF8000");
}

TEST(SortOrder, CaseBlanksAndLength) {
    EXPECT_EQ(key(L"ANTON\u00C9"), key(L"anton\u00E9"));
    EXPECT_EQ(key(L"ab   "), key(L"ab"));
    EXPECT_EQ(key(L"   "), key(L""));
    EXPECT_NE(key(L" ab"), key(L"ab"));
    EXPECT_NE(key(L"ab\t"), key(L"ab"));

    // What follows the 255th character makes no difference; blanks before it are trailing then.
    const std::wstring full(255, L'x');
    EXPECT_EQ(key(full + L"y"), key(full));
    EXPECT_EQ(key(full.substr(0, 254) + L" y"), key(full.substr(0, 254)));
    EXPECT_NE(key(full.substr(0, 254) + L"y"), key(full.substr(0, 254)));
    EXPECT_EQ(key(full + L"\U0001F600"), key(full));
}

// Every bit of the key is inverted, with an end byte of its own, and a plain one follows.
TEST(SortOrder, Descending) {
    EXPECT_EQ(key(L"a", TextOrder::GeneralLegacy, true), "B5FEFF00");
    EXPECT_EQ(key(L"", TextOrder::GeneralLegacy, true), "FEFF00");
    EXPECT_EQ(key97(L"a", true), "9FFF");

    const std::wstring_view ascending[] = {L"", L" a", L"a", L"ab", L"a\u00E9", L"b", L"\u4E00"};
    for (size_t i = 1; i < std::size(ascending); ++i) {
        EXPECT_LT(key(ascending[i - 1]), key(ascending[i]));
        EXPECT_GT(key(ascending[i - 1], TextOrder::GeneralLegacy, true),
                  key(ascending[i], TextOrder::GeneralLegacy, true));
    }
}

TEST(SortOrder, UnknownCharactersAndOrdersLeaveTheKeyAlone) {
    KeyBytes bytes{1, 2, 3};
    for (wchar_t c : {wchar_t(0xD800), wchar_t(0xDFFF), wchar_t(0x10000), wchar_t(0x10FFFF)})
        EXPECT_FALSE(
            appendTextKey(TextOrder::GeneralLegacy, std::wstring(L"ab") + c, false, bytes));
    EXPECT_FALSE(appendTextKey(TextOrder::Unknown, L"ab", false, bytes));
    EXPECT_EQ(hex(bytes), "010203");
    EXPECT_TRUE(appendTextKey(TextOrder::GeneralLegacy, L"a", false, bytes));
    EXPECT_EQ(hex(bytes), "0102034A0100");
}

TEST(SortOrder, OrdersOfAColumn) {
    EXPECT_EQ(sg::jet::textOrder(0x0409, 0), TextOrder::GeneralLegacy);
    EXPECT_EQ(sg::jet::textOrder(0, 0), TextOrder::GeneralLegacy);
    EXPECT_EQ(sg::jet::textOrder(0x0409, 1), TextOrder::Unknown);
    EXPECT_EQ(sg::jet::textOrder(0x0407, 0), TextOrder::Unknown);
}

TEST(SortOrder, General97) {
    const Case cases[] = {
        {L"", "00"},
        {L"Chai  ", "6269606A00"},
        {L"x-y", "7C1E7D00"},  // hyphens are weights like any other
        {L"\u00C6", "606600"},
        {L"\u00E9",
         "66040"
         "0"},                                // nibbles 0, 4, 0, and one to fill the byte
        {L"na\u00EFve", "70606A7A66022600"},  // of n, a, i; v cannot have an accent
        {L"v\u00FC", "7A780600"},
        {L"a\u00FC", "60780260"},
        {L"\u0153", "726600"},
        {L"\u00DF\u00E4",
         "76766002260"
         "0"},  // both letters of a sharp s are filled in
        {std::wstring(1, L'\0'), "1000"},
        {L"\u4E00", "2600"},  // stored as a question mark
    };
    for (const Case& c : cases)
        EXPECT_EQ(key97(c.text), c.key) << testing::PrintToString(c.text);
}

}  // namespace
