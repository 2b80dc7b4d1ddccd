#include <gtest/gtest.h>

#include "support/byte_list_text.h"
#include "support/zip/entry_names.h"
#include "support/zip/zip_times.h"

namespace sg {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(ByteListText, IsItsCountAndItsBytes) {
    EXPECT_EQ(byteListText(Bytes{7, 0, 255}), L"3,7,0,255");
    EXPECT_EQ(byteListText({}), L"0");
}

TEST(ByteListText, IsReadAsTheLegacyRulesSay) {
    const struct {
        const wchar_t* text;
        Bytes bytes;
    } cases[] = {
        {L"3,7,0,255", {7, 0, 255}},
        {L"3,7,0,255,9,9", {7, 0, 255}},     // numbers behind the count
        {L"4,7,0", {7, 0, 0, 0}},            // a short list
        {L"2", {0, 0}},                      //
        {L"", {}},                           //
        {L"x", {}},                          //
        {L"0,1", {}},                        //
        {L" +2 bytes, 5 five,\t6", {5, 6}},  // numbers as they begin
        {L"2,,9", {0, 9}},                   //
        {L"3,256,-1,300", {0, 255, 44}},     // the low 8 bits
        {L"1,99999999999", {255}},           // the largest integer's
        {L"2;3,4", {4, 0}},                  //
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseByteListText(c.text), c.bytes) << c.text;
    for (const wchar_t* const text :
         {L"-1,5", L"2147483647,1", L"99999999999999999999,1", L"1048577"})
        EXPECT_EQ(parseByteListText(text), std::nullopt) << text;
}

TEST(ByteListText, NumbersEndAtTheirRange) {
    EXPECT_EQ(legacyInteger(L"2147483648"), 2147483647);
    EXPECT_EQ(legacyInteger(L"-2147483648"), -2147483647 - 1);
    EXPECT_EQ(legacyInteger(L"-99999999999999999999"), -2147483647 - 1);
    EXPECT_EQ(legacyInteger(L"- 5"), 0);
}

TEST(ByteListText, CharactersAreClippedByUnits) {
    EXPECT_EQ(clippedBytes(L"aé\u00ff\u0100\u20ac"), (Bytes{97, 233, 255, 255, 255}));
    EXPECT_EQ(clippedBytes(L"\U0001f600"), (Bytes{255, 255})) << "two 16-bit units";
    EXPECT_TRUE(clippedBytes(L"").empty());
}

TEST(EntryNames, StoredPathsHaveNoRoot) {
    const struct {
        const wchar_t *path, *stored;
    } cases[] = {
        {L"a/b", L"a/b"}, {L"/a//b/", L"a/b"},   {L"C:\\a\\b.txt", L"a/b.txt"},
        {L"../a", L"a"},  {L"./a/../b", L"a/b"}, {L".", L""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(storedPath(c.path), c.stored) << c.path;
}

TEST(EntryNames, NumbersStandBeforeTheExtension) {
    EXPECT_EQ(numberedName(L"a.b/c", 2), L"a.b/c (2)");
    EXPECT_EQ(numberedName(L"a/c.tar.gz", 3), L"a/c.tar (3).gz");
    EXPECT_EQ(numberedName(L"a/.hidden", 2), L"a/.hidden (2)");
}

TEST(ZipTimes, AreKeptToTheSecond) {
    for (const std::time_t time : {std::time_t(0), std::time_t(1234567891), std::time_t(-5)})
        EXPECT_EQ(timeFromField(fieldFromTime(time).value()), time);
    EXPECT_EQ(fieldFromTime(std::time_t(1) << 32), std::nullopt);
    EXPECT_EQ(timeFromField(Bytes{0, 1, 2, 3, 4}), std::nullopt);
    EXPECT_EQ(timeFromField(Bytes{1, 1, 2, 3}), std::nullopt);
}

}  // namespace
}  // namespace sg
