#include "base/text.h"
#include "host/editor/commands/command.h"
#include "host/editor/commands/programs.h"
#include "host/editor/documents.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg::commands {
namespace {

// "2018", "2013" and so on, or DXF.
constexpr const wchar_t* kFormats = L"Enter file format [2000/2004/2007/2010/2013/2018/DXF]";

std::wstring withEnding(const std::wstring& path, const wchar_t* ending) {
    const bool hasOne = lastComponent(path).rfind(L'.') != std::wstring_view::npos;
    return hasOne ? path : path + ending;
}

// A program that names a file that is there answers whether to replace it, as a user does.
bool mayWrite(Command& c, const std::wstring& path) {
    const ResolvedPath target = resolvePath(absolutePath(path));
    const bool isOwn = c.document().isTitled() && target.path == c.document().fileName();
    constexpr int kNoQuestion = 2;
    if (isOwn || !target.exists || c.whole(L"EXPERT") >= kNoQuestion) return true;
    c.print(L"A drawing with this name already exists.");
    return c.yes(L"Do you want to replace it? [Yes/No] <N>: ", false);
}

void saveUnder(Command& c, const std::wstring& release, const wchar_t* ending) {
    const std::wstring before = c.document().fileName();
    const std::wstring typed(trimmed(c.text(L"Save drawing as <" + before + L">: ")));
    const std::wstring path = withEnding(typed.empty() ? before : typed, ending);
    if (mayWrite(c, path)) c.saveFile(path, release);
}

}  // namespace

void openDrawing(Command& c) {
    const std::wstring path(trimmed(c.text(L"Enter name of drawing to open: ")));
    if (!path.empty()) c.openFile(withEnding(path, L".dwg"));
}

void save(Command& c) {
    saveUnder(c, L"", L".dwg");
}

void saveAs(Command& c) {
    std::wstring format = c.option(std::wstring(kFormats) + L" <2018>: ", L"R14 LT98 Standards");
    const bool isDxf = format == L"DXF";
    if (isDxf) {
        const std::wstring precision =
            c.word(L"Enter decimal places of accuracy (0 to 16) or [Objects/Binary] <16>: ");
        format = equalIgnoringCase(precision, L"B") || equalIgnoringCase(precision, L"Binary")
                     ? L"binary"
                     : L"";
    }
    saveUnder(c, format, isDxf ? L".dxf" : L".dwg");
}

void quickSave(Command& c) {
    if (!c.document().isTitled()) return save(c);
    c.saveFile(L"", L"");
}

}  // namespace sg::commands
