#include <gtest/gtest.h>

#include <set>

#include "base/encoding.h"
#include "drawing/compressed_guid.h"
#include "drawing/shell_keywords.h"
#include "module/module_fixture.h"

namespace sg {
namespace {

TEST(ShellKeywordsTest, NumbersOfTheSystem) {
    const std::pair<const wchar_t*, int> folders[] = {
        {L"ADMINTOOLS", 48},     {L"COMMON_ADMINTOOLS", 47}, {L"APPDATA", 26},
        {L"COMMON_APPDATA", 35}, {L"COMMON_DOCUMENTS", 46},  {L"COOKIES", 33},
        {L"DESKTOP", 16},        {L"FLAG_CREATE", 32768},    {L"HISTORY", 34},
        {L"INTERNET_CACHE", 32}, {L"LOCAL_APPDATA", 28},     {L"MYPICTURES", 39},
        {L"PERSONAL", 5},        {L"PROGRAM_FILES", 38},     {L"PROGRAM_FILES_COMMON", 43},
        {L"SYSTEM", 37},         {L"WINDOWS", 36},
    };
    for (const auto& [keyword, number] : folders)
        EXPECT_EQ(folderNumberOf(keyword), number) << toUtf8(keyword);
    for (const wchar_t* const unknown : {L"desktop", L"", L"DESKTOP ", L"FONTS"})
        EXPECT_EQ(folderNumberOf(unknown), std::nullopt) << toUtf8(unknown);

    const std::pair<const wchar_t*, int> commands[] = {
        {L"HIDE", 0},         {L"SHOWMAXIMIZED", 3},
        {L"MAXIMIZE", 3},     {L"SHOWMINIMIZED", 2},
        {L"MINIMIZE", 6},     {L"SHOWMINNOACTIVE", 7},
        {L"RESTORE", 9},      {L"SHOWNA", 8},
        {L"SHOW", 5},         {L"SHOWNOACTIVATE", 4},
        {L"SHOWDEFAULT", 10}, {L"SHOWNORMAL", 1},
        {L"show", 0},         {L"", 0},
        {L"FULLSCREEN", 0},
    };
    for (const auto& [keyword, number] : commands)
        EXPECT_EQ(showCommandOf(keyword), number) << toUtf8(keyword);
}

TEST(CompressedGuidTest, IsOneNumberInBase64) {
    const std::pair<GUID, const wchar_t*> cases[] = {
        {{0, 0, 0, {}}, L"0000000000000000000000"},
        {{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}, L"0000000000000000000001"},
        {{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}},
         L"018qLdYQlDxm4ZHMU9gytl"},
        {{0xFFFFFFFF, 0xFFFF, 0xFFFF, {255, 255, 255, 255, 255, 255, 255, 255}},
         L"3$$$$$$$$$$$$$$$$$$$$$"},
    };
    for (const auto& [guid, text] : cases)
        EXPECT_EQ(compressedGuid(guid), text);
}

using ToDoTest = test::ModuleTest;

TEST_F(ToDoTest, WorkRunsInTheOtherDrawing) {
    start();
    documents().create();
    EXPECT_EQ(eval("(qn_qn-executeToDo \"DRAWING1.dwg\" \"(setq done 1)\")"), "1");
    EXPECT_STREQ(documents().active()->fileName(), L"Drawing1.dwg") << "it is made active";
    EXPECT_EQ(documentAt(0).typed.size(), 1u);
    EXPECT_EQ(documentAt(0).typed.front(), L"(setq done 1)\n");

    const Document::Running busy(documentAt(1));
    EXPECT_EQ(eval("(qn_qn-executeToDo \"Drawing2.dwg\" \"x\")"), "-1");
    EXPECT_TRUE(documentAt(1).typed.empty());
    EXPECT_EQ(eval("(qn_qn-executeToDo \"Drawing3.dwg\" \"x\")"), "0");
    EXPECT_EQ(eval("(qn_qn-executeToDo \"Drawing1.dwg\")"), "; error: ADS request error");
}

TEST_F(ToDoTest, TheNameOutlivesTheDrawing) {
    start();
    eval("(qn_qn-setToDoDrawing \"plan.dwg\")");
    EXPECT_EQ(eval("(qn_qn-setToDoDrawing 5)"), "; error: ADS request error");
    documents().create();
    documents().close(documentAt(0));
    EXPECT_EQ(eval("(qn_qn-getToDoDrawing)"), "\"plan.dwg\"");
    eval("(qn_qn-setToDoDrawing \"\")");
}

}  // namespace
}  // namespace sg
