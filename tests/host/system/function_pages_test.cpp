#include "host/system/function_pages.h"

#include "host/system/temporary_folder.h"

namespace sg {
namespace {

using FunctionPagesTest = FolderTest;

TEST_F(FunctionPagesTest, TheFileOfATopic) {
    write("curves.md", "# Curves\n### `getLength` `getWidth`\ntext\n");
    write("layers.md", "# Layers\n### `create`\ntext\n```\n### `fenced`\n```\n");
    write("empty.md", "# Nothing\n");
    const FunctionPages pages = FunctionPages::read(path());
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"GETWIDTH", "curves.md"},
        {L"create", "layers.md"},
        {L"Layers", "layers.md"},
        {L"swift.chm::\\html\\Layers.htm#create", "layers.md"},
        {L"html/getLength.html", "curves.md"},
        {L"fenced", ""},
        {L"empty", ""},
        {L"", ""},
        {L"#", ""},
        {L"../curves", "curves.md"},
    };
    for (const auto& [topic, file] : cases) {
        const std::wstring expected = *file != 0 ? path(file) : std::wstring();
        EXPECT_EQ(pages.fileOf(topic), expected) << toUtf8(topic);
    }
    EXPECT_EQ(FunctionPages::read(path("none")).fileOf(L"create"), L"");
}

}  // namespace
}  // namespace sg
