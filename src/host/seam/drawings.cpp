#include <fmt/xchar.h>

#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/editor.h"
#include "host/editor/header_upkeep.h"
#include "host/exchange/drawing_files.h"
#include "host/rx/exception_text.h"
#include "host/rx/module_loader.h"
#include "host/seam/file_error.h"
#include "host/seam/host.h"
#include "host/system/files.h"
#include "host/system/paths.h"

// Drawings as files.

namespace sg {
namespace {

// Two open drawings never have one file.
void checkNotOpenElsewhere(const DocumentManager& documents, const Document& document,
                           const std::wstring& file) {
    for (const auto& other : documents.all()) {
        if (other.get() != &document && other->fileName() == file) {
            throw FileError(fmt::format(L"{}: that drawing is open", file));
        }
    }
}

// Runs what may end in an error of a drawing file.
template <class Body>
auto withFileErrors(const Body& body) {
    try {
        return body();
    } catch (const dxf::Error& error) {
        throw FileError(error.text());
    }
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

void Host::reportDrawing(const std::vector<std::wstring>& warnings) {
    constexpr size_t kMost = 20;
    for (size_t i = 0; i < warnings.size() && i < kMost; ++i)
        output_->reportError(warnings[i]);
    if (warnings.size() > kMost) {
        output_->reportError(fmt::format(L"and {} more", warnings.size() - kMost));
    }
}

Document& Host::openDrawing(const std::wstring& path) {
    const ResolvedPath found = resolvePath(absolutePath(path));
    if (!found.exists) throw FileError(L"no such drawing: " + found.path);
    if (!isFile(found.path)) {
        throw FileError(L"not a drawing file: " + found.path +
                        (isFolder(found.path) ? L", but a folder" : L""));
    }
    for (const auto& document : documents().all()) {
        if (document->isTitled() && document->fileName() == found.path) {
            documents().activateDocument(document.get());
            return *document;
        }
    }
    FileLock lock(found.path);
    auto database = std::make_unique<AcDbDatabase>(false);
    reportDrawing(withFileErrors([&] { return exchange::readFile(*database, found.path); }));
    if (!lock.isFree()) {
        output_->reportError(fmt::format(L"{}: the drawing is open in {}; it is opened read-only",
                                         found.path, lock.holder()));
    }
    return documents().open(found.path, std::move(database), std::move(lock));
}

void Host::saveDrawing(Document& document, const std::wstring& path) {
    saveDrawing(document, path, {});
}

void Host::saveDrawing(Document& document, const std::wstring& path,
                       const dxf::WriteOptions& options) {
    if (path.empty() && !document.isTitled()) {
        throw FileError(fmt::format(L"{} has no file yet: name one", document.fileName()));
    }
    const std::wstring target =
        path.empty() ? std::wstring(document.fileName()) : resolvePath(absolutePath(path)).path;
    const bool isOwn = document.isTitled() && target == document.fileName();
    checkNotOpenElsewhere(documents(), document, target);
    withFileErrors([&] { exchange::checkCanWrite(target); });
    if (isOwn && document.isReadOnly()) {
        throw FileError(
            fmt::format(L"{}: the drawing is open in {}, and read-only here; save it "
                        L"under another name",
                        target, document.fileHolder()));
    }
    FileLock lock;
    if (!isOwn) lock = FileLock(target);
    if (!lock.isFree()) {
        throw FileError(fmt::format(L"{}: that drawing is open in {}", target, lock.holder()));
    }
    notifyReactors(*this, [&](AcEditorReactor& reactor) {
        reactor.beginSave(document.database(), target.c_str());
    });
    dxf::WriteOptions reporting = options;
    reporting.report = [this](const std::wstring& text) { output_->reportError(text); };
    document.headerUpkeep().stamp();
    withFileErrors([&] { exchange::writeFile(*document.database(), target, reporting); });
    if (!isOwn) document.setFile(target, std::move(lock));
    notifyReactors(*this, [&](AcEditorReactor& reactor) {
        reactor.saveComplete(document.database(), target.c_str());
    });
}

}  // namespace sg
