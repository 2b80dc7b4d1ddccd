#include "host/exchange/drawing_files.h"

#include <cerrno>
#include <cstring>

#include "base/file_kind.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "host/dwg/files.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg::exchange {
namespace {

constexpr std::wstring_view kDxf = L".dxf", kDwg = L".dwg";

std::wstring_view endingOf(const std::wstring& path) {
    const std::wstring_view name = lastComponent(path);
    const size_t dot = name.rfind(L'.');
    return dot == name.npos ? std::wstring_view() : name.substr(dot);
}

// What a file is that is no drawing, behind a message that says so.
std::wstring otherKind(std::string_view content, const std::wstring& path) {
    const FileKind kind = fileKind(content, path);
    return kind == FileKind::Drawing ? L", or a damaged one" : butWhatItIs(kind);
}

}  // namespace

std::vector<std::wstring> readFile(AcDbDatabase& database, const std::wstring& path) {
    const auto content = sg::readFile(path);
    if (!content) {
        throw dxf::Error(path + L": the drawing cannot be read: " + fromUtf8(std::strerror(errno)));
    }
    if (dwg::isDrawing(*content)) return dwg::read(database, *content, path);
    if (!dxf::isDrawing(*content))
        throw dxf::Error(path + L": this is no drawing file" + otherKind(*content, path));
    return dxf::read(database, *content, path);
}

void checkCanWrite(const std::wstring& path) {
    const std::wstring_view ending = endingOf(path);
    if (equalIgnoringCase(ending, kDxf) || equalIgnoringCase(ending, kDwg)) return;
    throw dxf::Error(path + L": drawings are written as .dwg and .dxf" +
                     (ending.empty() ? L"; the name has no ending" : L""));
}

namespace {

// The release asked for when it can be written, else the next one that can.
const dxf::Release& dwgRelease(const AcDbDatabase& database, const dxf::Release* wanted) {
    if (wanted == nullptr) return dwg::ownRelease(database);
    const dxf::Release* release = wanted;
    while (!dwg::isWritten(*release))
        release = &dxf::releaseOf(static_cast<AcDb::AcDbDwgVersion>(release->number + 1));
    return *release;
}

void writeDwg(const AcDbDatabase& database, const std::wstring& path,
              const dxf::WriteOptions& options, ReplacementFile& file) {
    const dwg::Written written = dwg::write(database, dwgRelease(database, options.release));
    for (const std::wstring& loss : written.losses) {
        if (options.report) options.report(path + L": " + loss);
    }
    file.write({reinterpret_cast<const char*>(written.bytes.data()), written.bytes.size()});
}

}  // namespace

void writeFile(const AcDbDatabase& database, const std::wstring& path,
               const dxf::WriteOptions& options) {
    checkCanWrite(path);
    ReplacementFile file(path);
    if (equalIgnoringCase(endingOf(path), kDwg)) {
        writeDwg(database, path, options, file);
    } else {
        dxf::WriteOptions told = options;
        if (options.report) {
            told.report = [&](const std::wstring& loss) { options.report(path + L": " + loss); };
        }
        dxf::write(database, told, [&](std::string_view bytes) { return file.write(bytes); });
    }
    if (file.error() == 0 && file.commitKeeping(L".bak")) return;
    throw dxf::Error(path + L": the drawing cannot be written: " +
                     fromUtf8(std::strerror(file.error())));
}

Acad::ErrorStatus readForDatabase(AcDbDatabase& database, const std::wstring& path) {
    try {
        readFile(database, path);
    } catch (const dxf::Error&) {
        return Acad::eBadDxfFile;
    }
    return Acad::eOk;
}

}  // namespace sg::exchange
