#include "host/editor/dialogs/dialog_words.h"

#include <gtest/gtest.h>

#include "base/encoding.h"

namespace sg {
namespace {

const std::vector<std::wstring> kNames = {L"Layer", L"Layer Name", L"", L"Layer System:", L"On"};

TEST(DialogWords, TheLongestNameIsTaken) {
    const struct {
        const wchar_t* text;
        int name;  // -1: none
        const wchar_t* rest;
        bool isWhole = false;
    } cases[] = {
        {L"Layer x", 0, L"x"},
        {L"layer NAME  x y", 1, L"x y"},
        {L"Layer Names", 0, L"Names"},
        {L"Layers", -1, L"Layers"},
        {L"Layer System: A", 3, L"A"},
        {L"Layer System A", 3, L"A"},
        {L"\"Layer\" Name", 0, L"Name"},
        {L"\"layer system\" A", 3, L"A"},
        {L"\"Nothing\" x", -1, L"\"Nothing\" x"},
        {L"\"Layer x", -1, L"\"Layer x"},
        {L"On", 4, L""},
        {L"", -1, L""},
        {L"Layer Name", 1, L"", true},
        {L"Layer Name x", -1, L"Layer Name x", true},
    };
    for (const auto& one : cases) {
        std::wstring_view text = one.text;
        const auto found = takeName(text, kNames, one.isWhole);
        EXPECT_EQ(found ? int(*found) : -1, one.name) << toUtf8(one.text);
        EXPECT_EQ(toUtf8(text), toUtf8(one.rest));
    }
}

TEST(DialogWords, NumbersStandAlone) {
    const struct {
        const wchar_t* text;
        int number;  // -1: none
        const wchar_t* rest;
    } cases[] = {{L"12", 12, L""},
                 {L"0  x", 0, L"x"},
                 {L"12x", -1, L"12x"},
                 {L"-1", -1, L"-1"},
                 {L"", -1, L""},
                 {L"1.5", -1, L"1.5"},
                 {L"99999999999", -1, L"99999999999"}};
    for (const auto& one : cases) {
        std::wstring_view text = one.text;
        EXPECT_EQ(takeWholeNumber(text).value_or(-1), one.number) << toUtf8(one.text);
        EXPECT_EQ(toUtf8(text), toUtf8(one.rest));
    }
}

}  // namespace
}  // namespace sg
