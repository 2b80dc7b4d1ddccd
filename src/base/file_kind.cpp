#include "base/file_kind.h"

#include "base/text.h"

namespace sg {
namespace {

struct Magic {
    size_t place;
    std::string_view bytes;
    FileKind kind;
};

constexpr Magic kMagic[] = {
    {0, "AC10", FileKind::Drawing},
    {0, "AutoCAD Binary DXF", FileKind::Drawing},
    {4, "Standard Jet DB", FileKind::Database},
    {4, "Standard ACE DB", FileKind::Database},
    {0, "\x89PNG", FileKind::Picture},
    {0, "\xFF\xD8\xFF", FileKind::Picture},
    {0, "%PDF", FileKind::Picture},
    {0, "PK\x03\x04", FileKind::Archive},
};

struct Ending {
    std::wstring_view ending;
    FileKind kind;
};

constexpr Ending kEndings[] = {
    {L".dwg", FileKind::Drawing}, {L".dxf", FileKind::Drawing},    {L".mdb", FileKind::Database},
    {L".qn", FileKind::Database}, {L".accdb", FileKind::Database}, {L".lsp", FileKind::Program},
    {L".svg", FileKind::Picture},
};

}  // namespace

FileKind fileKind(std::string_view bytes, std::wstring_view name) {
    if (bytes.empty()) return FileKind::Empty;
    for (const Magic& magic : kMagic) {
        if (bytes.size() > magic.place && bytes.substr(magic.place).starts_with(magic.bytes)) {
            return magic.kind;
        }
    }
    const std::wstring lower = lowerCased(name);
    for (const Ending& ending : kEndings) {
        if (lower.ends_with(ending.ending)) return ending.kind;
    }
    return FileKind::Unknown;
}

std::wstring_view nameOf(FileKind kind) {
    switch (kind) {
        case FileKind::Drawing:
            return L"a drawing";
        case FileKind::Database:
            return L"a database";
        case FileKind::Program:
            return L"a program";
        case FileKind::Picture:
            return L"a picture";
        case FileKind::Archive:
            return L"an archive";
        case FileKind::Unknown:
        case FileKind::Empty:
            break;
    }
    return {};
}

std::wstring butWhatItIs(FileKind kind) {
    if (kind == FileKind::Empty) return L": it is empty";
    const std::wstring_view name = nameOf(kind);
    return name.empty() ? std::wstring() : L", but " + std::wstring(name);
}

}  // namespace sg
