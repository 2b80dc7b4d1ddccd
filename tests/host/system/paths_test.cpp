#include "host/system/paths.h"

#include <gmock/gmock.h>

#include "host/system/temporary_folder.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using PathsTest = FolderTest;

TEST_F(PathsTest, ResolvesAsWrittenThenIgnoringCase) {
    write("Work/Plans/Ground Floor.dwg");
    write("Work/plans/attic.dwg");
    write("UPPER.txt");
    write("upper.txt");
    const struct {
        std::string written, result;
        bool exists;
    } cases[] = {
        {"Work/Plans/Ground Floor.dwg", "Work/Plans/Ground Floor.dwg", true},
        {"Work\\Plans\\Ground Floor.dwg", "Work/Plans/Ground Floor.dwg", true},
        {"work/PLANS/ground floor.DWG", "Work/Plans/Ground Floor.dwg", true},
        {"WORK/Plans/ATTIC.dwg", "Work/plans/attic.dwg", true},  // not in the folder that fits best
        {"upper.txt", "upper.txt", true},
        {"Upper.TXT", "UPPER.txt", true},
        {"work/plans/new.dwg", "Work/plans/new.dwg", false},
        {"work\\none\\deep\\x.dwg", "Work/none/deep/x.dwg", false},
        {"upper.TXT/x", "UPPER.txt/x", false},
        {"work", "Work", true},
        {"Work//Plans/", "Work//Plans/", true},
        {"work//plans/", "Work/plans", true},
    };
    for (const auto& [written, result, exists] : cases) {
        const ResolvedPath found = resolvePath(path() + L"/" + fromUtf8(written));
        EXPECT_EQ(toUtf8(found.path), toUtf8(path()) + "/" + result) << written;
        EXPECT_EQ(found.exists, exists) << written;
    }
    EXPECT_FALSE(resolvePath(L"").exists);
    EXPECT_TRUE(resolvePath(L"\\").exists);
    EXPECT_TRUE(resolvePath(L".").exists);
}

TEST(PathTextTest, AbsoluteAndJoined) {
    EXPECT_EQ(absolutePath(L"/a/./b//c/../d/"), L"/a/b/d");
    EXPECT_EQ(absolutePath(L"\\..\\..\\x"), L"/x");
    EXPECT_EQ(absolutePath(L"/"), L"/");
    EXPECT_TRUE(absolutePath(L"x").ends_with(L"/x"));
    EXPECT_EQ(joinPath(L"a\\b\\", L"c\\d"), L"a/b/c/d");
    EXPECT_EQ(joinPath(L"a", L"\\d"), L"/d");
    EXPECT_EQ(joinPath(L"", L"d"), L"d");
    EXPECT_EQ(parentFolder(L"/x"), L"/");
    EXPECT_EQ(parentFolder(L"x"), L"");
    EXPECT_EQ(lastComponent(L"a\\b/c.d"), L"c.d");
}

TEST(FilePatternTest, Matches) {
    const struct {
        const wchar_t* name;
        const wchar_t* pattern;
        bool matches;
    } cases[] = {
        {L"plan.dwg", L"*.DWG", true},
        {L"plan.dwg.bak", L"*.dwg", false},
        {L"plan", L"*.*", true},
        {L".hidden", L"*.*", true},
        {L"plan", L"plan.*", true},
        {L"plan", L"p*.*", true},
        {L"plan.dwg", L"plan.*", true},
        {L"planned", L"plan.*", false},
        {L"plan", L"plan?.*", false},
        {L"plan", L"*.", true},
        {L"plan.dwg", L"*.", false},
        {L"plan", L"p*.", true},
        {L"plan1.dwg", L"plan?.dwg", true},
        {L"plan.dwg", L"plan?.dwg", false},
        {L"aXbXc", L"a*x*c", true},
        {L"aXbXcd", L"a*x*c", false},
        {L"abc", L"abc*", true},
        {L"abc", L"**c", true},
        {L"", L"*", true},
        {L"", L"?", false},
        {L"a", L"", false},
        {L"[a]#", L"[A]#", true},
    };
    for (const auto& [name, pattern, matches] : cases) {
        EXPECT_EQ(matchesFilePattern(name, pattern), matches) << toUtf8(name) << toUtf8(pattern);
    }
    const std::wstring hostile(2000, L'a');
    EXPECT_FALSE(matchesFilePattern(hostile, L"*a*a*a*a*a*a*a*a*a*a*b"));
}

TEST_F(PathsTest, ListsFolders) {
    for (const char* const name : {"b.lsp", "A.LSP", "c.txt", "Sub.lsp/x", "lib/y"})
        write(name);
    EXPECT_THAT(listFolder(path(), L"", ListedEntries::all),
                ElementsAre(L".", L"..", L"A.LSP", L"b.lsp", L"c.txt", L"lib", L"Sub.lsp"));
    EXPECT_THAT(listFolder(path(), L"*.lsp", ListedEntries::filesOnly),
                ElementsAre(L"A.LSP", L"b.lsp"));
    EXPECT_THAT(listFolder(path(), L"*.*", ListedEntries::foldersOnly),
                ElementsAre(L".", L"..", L"lib", L"Sub.lsp"));
    EXPECT_THAT(listFolder(path() + L"\\LIB", L"*.LSP", ListedEntries::all), IsEmpty());
    EXPECT_THAT(listFolder(path() + L"/none", L"", ListedEntries::all), IsEmpty());
    EXPECT_THAT(listFolder(path() + L"/b.lsp", L"", ListedEntries::all), IsEmpty());
}

TEST_F(PathsTest, SupportPathFindsTheFirst) {
    write("one/a.lsp");
    write("two/A.lsp");
    write("two/only.lsp");
    write("two/sub/deep.lsp");
    SupportPath support;
    support.add(path("one"));
    support.add(path() + L"\\TWO\\");
    support.add(path("one") + L"/");
    EXPECT_EQ(support.text(), path("one") + L"/;" + path("two") + L"/");
    EXPECT_EQ(support.find(L"A.LSP"), path("one/a.lsp"));
    EXPECT_EQ(support.find(L"only.lsp"), path("two/only.lsp"));
    EXPECT_EQ(support.find(L"SUB\\deep.lsp"), path("two/sub/deep.lsp"));
    EXPECT_EQ(support.find(L"sub"), L"");
    EXPECT_EQ(support.find(L""), L"");
    EXPECT_EQ(support.find(path("TWO/Only.lsp")), path("two/only.lsp"));
    EXPECT_EQ(support.find(L"none.lsp"), L"");
    EXPECT_THAT(support.places(L"x.lsp"), ElementsAre(path("one/x.lsp"), path("two/x.lsp")));
    EXPECT_THAT(support.places(L"\\x.lsp"), ElementsAre(L"/x.lsp"));
}

}  // namespace
}  // namespace sg
