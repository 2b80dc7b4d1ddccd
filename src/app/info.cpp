#include <fmt/xchar.h>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/session.h"
#include "base/encoding.h"
#include "host/editor/command_line_output.h"
#include "host/exchange/drawing_files.h"
#include "host/exchange/summary.h"
#include "host/seam/file_error.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

using Counts = std::map<std::wstring, size_t>;

std::wstring shown(const AcGePoint3d& point) {
    return fmt::format(L"{:.6g},{:.6g},{:.6g}", point.x, point.y, point.z);
}

std::wstring shown(const exchange::Summary::Layer& layer) {
    std::wstring text = fmt::format(L"  {}  {}", layer.name, layer.entities);
    if (layer.isOff) text += L"  off";
    if (layer.isFrozen) text += L"  frozen";
    if (layer.isLocked) text += L"  locked";
    return text;
}

void add(std::wstring& text, const wchar_t* title, const Counts& counts) {
    if (counts.empty()) return;
    text += fmt::format(L"{}\n", title);
    for (const auto& [name, count] : counts)
        text += fmt::format(L"  {}  {}\n", name, count);
}

void add(std::wstring& text, const wchar_t* title,
         const std::vector<exchange::Summary::Space>& spaces) {
    if (spaces.empty()) return;
    text += fmt::format(L"{}\n", title);
    for (const exchange::Summary::Space& space : spaces)
        text += fmt::format(L"  {}  {}\n", space.name, space.entities);
}

void add(std::wstring& text, const wchar_t* title, const std::vector<std::string>& names) {
    if (names.empty()) return;
    text += fmt::format(L"{}\n", title);
    for (const std::string& name : names)
        text += fmt::format(L"  {}\n", fromUtf8(name));
}

std::wstring shown(const exchange::Summary& summary) {
    std::wstring text =
        fmt::format(L"release {} ({}), {}", fromUtf8(summary.release), fromUtf8(summary.version),
                    summary.isDwg      ? L"DWG"
                    : summary.isBinary ? L"binary"
                                       : L"text");
    text += summary.codePage.empty() ? L"\n" : L", " + fromUtf8(summary.codePage) + L"\n";
    if (summary.extents.isEmpty()) {
        text += L"extents none\n";
    } else {
        text += fmt::format(L"extents {} to {}\n", shown(summary.extents.minPoint()),
                            shown(summary.extents.maxPoint()));
    }
    text += L"layers\n";
    for (const exchange::Summary::Layer& layer : summary.layers)
        text += shown(layer) + L"\n";
    add(text, L"layouts", summary.layouts);
    add(text, L"blocks", summary.blocks);
    add(text, L"entities", summary.entities);
    add(text, L"kept unread: entities", summary.unreadEntities);
    add(text, L"not drawn: entities", summary.invisibleEntities);
    add(text, L"kept unread: objects", summary.unreadObjects);
    add(text, L"kept unread: tables", summary.unreadTables);
    add(text, L"kept unread: sections", summary.unreadSections);
    return text;
}

}  // namespace

int info(const Arguments& arguments) {
    Session session(arguments, false);
    return session.conclude([&] {
        session.start();  // modules bring the classes of custom entities
        const ResolvedPath found = resolvePath(absolutePath(arguments.drawingFile.file));
        if (!found.exists) throw FileError(L"no such drawing: " + found.path);
        try {
            AcDbDatabase database(false, true);
            for (const std::wstring& warning : exchange::readFile(database, found.path))
                session.host().output().reportError(warning);
            session.host().output().print(shown(exchange::summaryOf(database)));
        } catch (const dxf::Error& error) {
            throw FileError(error.text());
        }
        return kDone;
    });
}

}  // namespace sg::app
