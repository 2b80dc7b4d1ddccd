#include <fmt/xchar.h>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/editor.h"
#include "host/rx/exception_text.h"
#include "host/rx/module_loader.h"
#include "host/seam/file_error.h"
#include "host/seam/host.h"
#include "host/system/files.h"
#include "host/system/paths.h"

// Drawings as files. This host does not read what a drawing file holds and no operation changes it,
// so a drawing's content is the bytes of the file that it was opened from: saving under another
// name is an exact copy, and saving under its own name leaves the file as it is.

namespace sg {
namespace {

// A drawing without any entity, as an interchange file that every reader accepts.
constexpr std::string_view kEmptyDrawing =
    "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n  0\nENDSEC\n"
    "  0\nSECTION\n  2\nENTITIES\n  0\nENDSEC\n  0\nEOF\n";

bool hasExtension(std::wstring_view path, std::wstring_view extension) {
    const size_t dot = path.rfind(L'.');
    return dot != std::wstring_view::npos && equalIgnoringCase(path.substr(dot), extension);
}

// Two open drawings never have one file.
void checkNotOpenElsewhere(const DocumentManager& documents, const Document& document,
                           const std::wstring& file) {
    for (const auto& other : documents.all()) {
        if (other.get() != &document && other->fileName() == file) {
            throw FileError(fmt::format(L"{}: that drawing is open", file));
        }
    }
}

// The bytes of a drawing's file; an empty drawing for one that has none.
std::string contentToSave(const Document& document, const std::wstring& target) {
    if (document.isTitled()) {
        auto bytes = readFile(document.fileName());
        if (bytes) return std::move(*bytes);
        throw FileError(fmt::format(L"the drawing cannot be read: {}", document.fileName()));
    }
    if (!hasExtension(target, L".dxf")) {
        throw FileError(
            fmt::format(L"{}: a new drawing can be written as .dxf only by this build", target));
    }
    return std::string(kEmptyDrawing);
}

// A reactor that fails is reported; the others hear of the event, and the operation goes on.
void notifyReactors(Host& host, const std::function<void(AcEditorReactor&)>& event) {
    host.editor().notify([&](AcEditorReactor& reactor) {
        try {
            event(reactor);
        } catch (...) {
            host.output().reportError(L"an editor reactor failed: " + currentExceptionText());
        }
    });
}

}  // namespace

Document& Host::openDrawing(const std::wstring& path) {
    const ResolvedPath found = resolvePath(absolutePath(path));
    if (!found.exists) throw FileError(L"no such drawing: " + found.path);
    if (!isFile(found.path)) throw FileError(L"not a drawing file: " + found.path);
    if (!readFile(found.path)) throw FileError(L"the drawing cannot be read: " + found.path);
    for (const auto& document : documents().all()) {
        if (document->isTitled() && document->fileName() == found.path) {
            documents().activateDocument(document.get());
            return *document;
        }
    }
    return documents().open(found.path);
}

void Host::saveDrawing(Document& document, const std::wstring& path) {
    const bool own = path.empty();
    if (own && !document.isTitled()) {
        throw FileError(fmt::format(L"{} has no file yet: name one", document.fileName()));
    }
    const std::wstring target =
        own ? std::wstring(document.fileName()) : resolvePath(absolutePath(path)).path;
    checkNotOpenElsewhere(documents(), document, target);
    notifyReactors(*this, [&](AcEditorReactor& reactor) {
        reactor.beginSave(document.database(), target.c_str());
    });
    const std::string content = contentToSave(document, target);
    if (!document.isTitled() || target != document.fileName()) {
        const FileResult written = writeFileAtomically(target, content);
        if (!written) throw FileError(written.error);
        document.setFile(target);
    }
    notifyReactors(*this, [&](AcEditorReactor& reactor) {
        reactor.saveComplete(document.database(), target.c_str());
    });
}

}  // namespace sg
