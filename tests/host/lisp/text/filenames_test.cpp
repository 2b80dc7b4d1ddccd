#include "host/lisp/text/filenames.h"

#include <gtest/gtest.h>

#include "base/encoding.h"

namespace sg {
namespace {

TEST(Filenames, Parts) {
    const wchar_t* const none = nullptr;
    const struct {
        const wchar_t* path;
        const wchar_t* directory;
        const wchar_t* base;
        const wchar_t* extension;
    } rows[] = {
        {L"c:\\acadwin\\acad.exe", L"c:\\acadwin", L"acad", L".exe"},
        {L"c:\\acadwin", L"c:\\", L"acadwin", none},
        {L"c:\\acadwin\\output", L"c:\\acadwin", L"output", none},
        {L"template.txt", L"", L"template", L".txt"},
        {L"/home/user/plan.dwg", L"/home/user", L"plan", L".dwg"},
        {L"c:/mixed\\path/plan.dwg", L"c:/mixed\\path", L"plan", L".dwg"},
        {L"/plan.dwg", L"/", L"plan", L".dwg"},
        {L"\\\\server\\share\\a.b", L"\\\\server\\share", L"a", L".b"},
        {L"folder/", L"folder", L"", none},
        {L"folder//plan", L"folder", L"plan", none},
        {L"c:\\", L"c:\\", L"", none},
        {L"c:", L"c:", L"", none},
        {L"c:plan.dwg", L"c:", L"plan", L".dwg"},
        {L"/", L"/", L"", none},
        {L"", L"", L"", none},
        {L"folder.old/plan", L"folder.old", L"plan", none},
        {L"archive.tar.gz", L"", L"archive.tar", L".gz"},
        {L".profile", L"", L"", L".profile"},
        {L"plan.", L"", L"plan", L"."},
        {L"../plan.lsp", L"..", L"plan", L".lsp"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(toUtf8(row.path));
        EXPECT_EQ(filenameDirectory(row.path), row.directory);
        EXPECT_EQ(filenameBase(row.path), row.base);
        const auto extension = filenameExtension(row.path);
        ASSERT_EQ(extension.has_value(), row.extension != nullptr);
        if (extension) {
            EXPECT_EQ(*extension, row.extension);
        }
    }
}

}  // namespace
}  // namespace sg
