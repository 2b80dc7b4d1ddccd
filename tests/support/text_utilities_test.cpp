#include "support/text_utilities.h"

#include <gmock/gmock.h>

#include <iterator>

#include "base/encoding.h"

namespace sg {
namespace {

using testing::ElementsAre;

using Texts = std::list<std::wstring>;

TEST(TextUtilitiesTest, FileFilters) {
    EXPECT_EQ(BuildFileFilter(L"dwg"), L"DWG Files (*.dwg)|*.dwg|");
    EXPECT_EQ(BuildFileFilter(L"dwg;Qn"), L"DWG Files (*.dwg)|*.dwg|QN Files (*.Qn)|*.Qn|");
}

TEST(TextUtilitiesTest, FileNames) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {{L"C:\\a\\b.dwg", L"b.dwg"},
                                                               {L"/a/b.dwg", L"b.dwg"},
                                                               {L"b.dwg", L""},
                                                               {L"", L""},
                                                               {L"a\\", L""},
                                                               {L"a\\b/c", L"b/c"},
                                                               {L"a/b\\c", L"c"}};
    for (const auto& [path, name] : cases)
        EXPECT_EQ(GetFileNamePart(path), name) << toUtf8(path);
}

TEST(TextUtilitiesTest, FindingIsExact) {
    const std::vector<std::wstring> array = {L"b", L"a", L"A", L"a"};
    EXPECT_EQ(FindInStringArray(L"a", array), 1);
    EXPECT_EQ(FindInStringArray(L"A", array), 2);
    EXPECT_EQ(FindInStringArray(L"", array), -1);
    EXPECT_EQ(FindInStringArray(L"a", {}), -1);
    const Texts list(array.begin(), array.end());
    EXPECT_EQ(std::distance(list.begin(), FindInStringList(L"a", list)), 1);
    EXPECT_EQ(FindInStringList(L"a ", list), list.end());
}

TEST(TextUtilitiesTest, InsertSorted) {
    Texts list;
    for (const wchar_t* const text : {L"m", L"a  ", L"z", L"m \t", L"M", L"\xFF21", L"\U0001F600"})
        InsertSorted(list, text);
    EXPECT_THAT(list, ElementsAre(L"M", L"a", L"m", L"z", L"\U0001F600", L"\xFF21"))
        << "16-bit units sort, of which the last text's is the greatest";
    Texts padded = {L"b  ", L"d "};
    InsertSorted(padded, L"d");
    InsertSorted(padded, L"c ");
    EXPECT_THAT(padded, ElementsAre(L"b  ", L"c", L"d "));
    Texts unsorted = {L"a", L"z", L"b", L"y"};
    InsertSorted(unsorted, L"c");
    EXPECT_THAT(unsorted, ElementsAre(L"a", L"z", L"b", L"c", L"y")) << "the last that is smaller";
}

TEST(TextUtilitiesTest, ThousandsSeparators) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"", L""},
        {L"123", L"123"},
        {L"-123", L"-123"},
        {L"1234", L"1,234"},
        {L"-1234", L"-1,234"},
        {L"1234.5678", L"1,234.5678"},
        {L"-123456.7", L"-123,456.7"},
        {L"1234567890", L"1,234,567,890"},
        {L".5", L".5"},
        {L"1.2345.6", L"1.2,345.6"},
    };
    for (const auto& [text, separated] : cases)
        EXPECT_EQ(AddThousandsSeparators(text), separated) << toUtf8(text);
}

}  // namespace
}  // namespace sg
