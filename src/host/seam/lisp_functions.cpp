#include "host/seam/lisp_functions.h"

#include <fmt/xchar.h>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/input_source.h"
#include "host/jet/compact/compact.h"
#include "host/jet/format/error.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/program_state.h"
#include "host/rx/module_loader.h"
#include "host/seam/external_functions.h"
#include "host/seam/file_error.h"
#include "host/seam/host.h"
#include "host/system/database_files.h"
#include "host/system/paths.h"
#include "host/system/shell.h"
#include "platform/ed/command_line.h"
#include "platform/rx/modules.h"

namespace sg {
namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ListBuilder;
using lisp::Value;

// ---- Messages ----------------------------------------------------------------------------------

Value fnAlert(Interpreter& in, Args a) {
    acedAlert(in.str(a[0]).c_str());
    return Value::nil();
}

Value fnTextScreen(Interpreter&, Args) {
    acedTextScr();
    return Value::nil();
}

Value fnGraphScreen(Interpreter&, Args) {
    acedGraphScr();
    return Value::nil();
}

// ---- Programs and modules ----------------------------------------------------------------------

Value fnStartApp(Interpreter& in, Args a) {
    const std::wstring argument = a.has(1) ? in.str(a[1]) : std::wstring();
    const intptr_t answer = Host::the().shell().start(in.text(a[0]), argument);
    return answer > 32 ? Value::integer(static_cast<int32_t>(answer)) : Value::nil();
}

Value onFailure(Interpreter& in, Args a, const wchar_t* function, const std::wstring& why) {
    if (a.has(1)) return a[1];
    Host::the().output().reportError(why);
    in.fail(fmt::format(L"{} failed: {}", function, in.toQuotedText(a[0])));
}

Value fnArxLoad(Interpreter& in, Args a) {
    const auto result = Host::the().modules().load(in.str(a[0]));
    return result ? a[0] : onFailure(in, a, L"ARXLOAD", result.message);
}

Value fnArxUnload(Interpreter& in, Args a) {
    const auto result = Host::the().modules().unload(in.str(a[0]));
    return result ? a[0] : onFailure(in, a, L"ARXUNLOAD", result.message);
}

Value fnArx(Interpreter& in, Args) {
    ListBuilder names(in);
    for (const std::wstring& name : acrxLoadedApplications())
        names.add(in.string(name));
    return names.list();
}

// ---- Drawings ----------------------------------------------------------------------------------

Document& documentNamed(Interpreter& in, Value name) {
    const std::wstring_view wanted = in.text(name);
    Document* byTitle = nullptr;
    for (const auto& document : Host::the().documents().all()) {
        if (document->fileName() == wanted) return *document;
        if (equalIgnoringCase(document->fileName(), wanted) ||
            equalIgnoringCase(document->docTitle(), wanted)) {
            byTitle = document.get();
        }
    }
    if (byTitle == nullptr) in.fail(fmt::format(L"no such drawing is open: {}", wanted));
    return *byTitle;
}

Document& namedOrActive(Interpreter& in, Value name) {
    if (name) return documentNamed(in, name);
    Document* const active = Host::the().documents().active();
    if (active == nullptr) in.fail(L"no drawing is open");
    return *active;
}

Value nameOf(Interpreter& in, const Document& document) {
    return in.string(document.fileName());
}

Value fnOpenDrawing(Interpreter& in, Args a) {
    const std::wstring path = in.str(a[0]);
    try {
        return nameOf(in, Host::the().openDrawing(path));
    } catch (const FileError& error) {
        in.fail(error.text());
    }
}

Value fnNewDrawing(Interpreter& in, Args) {
    return nameOf(in, Host::the().documents().create());
}

Value fnActivateDrawing(Interpreter& in, Args a) {
    Document& document = documentNamed(in, a[0]);
    Host::the().documents().activateDocument(&document);
    return nameOf(in, document);
}

Value fnCloseDrawing(Interpreter& in, Args a) {
    Document& document = namedOrActive(in, a.get(0));
    if (!document.isQuiescent()) {
        in.fail(fmt::format(L"a program is running in the drawing: {}", document.fileName()));
    }
    if (document.lockCount() > 0) {
        in.fail(fmt::format(L"the drawing is locked: {}", document.fileName()));
    }
    Host::the().documents().close(document);
    return in.t();
}

Value fnSaveDrawing(Interpreter& in, Args a) {
    Document& document = namedOrActive(in, Value::nil());
    const std::wstring path = a.get(0) ? in.str(a[0]) : std::wstring();
    try {
        Host::the().saveDrawing(document, path);
    } catch (const FileError& error) {
        in.fail(error.text());
    }
    return nameOf(in, document);
}

Value fnDrawings(Interpreter& in, Args) {
    ListBuilder names(in);
    for (const auto& document : Host::the().documents().all())
        names.add(nameOf(in, *document));
    return names.list();
}

Value fnSend(Interpreter& in, Args a) {
    Document& document = documentNamed(in, a[0]);
    Host::the().documents().sendStringToExecute(&document, in.str(a[1]).c_str(), bool(a.get(2)),
                                                false, false);
    return in.t();
}

Value fnArguments(Interpreter& in, Args) {
    ListBuilder items(in);
    for (const std::wstring& argument : Host::the().options().arguments) {
        items.add(in.string(argument));
    }
    return items.list();
}

// ---- Database files ----------------------------------------------------------------------------

// (host-compact-database file backup [repair])
Value fnCompactDatabase(Interpreter& in, Args a) {
    jet::CompactOptions options;
    options.repair = bool(a.get(2));
    options.storage = databaseOptions();
    options.progress = [&](uint64_t, uint64_t) { return !in.interruptPending(); };
    const auto fullPath = [&](Value name) {
        return absolutePath(resolvePath(lisp::fileName(in, name)).path);
    };
    const std::wstring file = fullPath(a[0]), backup = fullPath(a[1]);
    try {
        ListBuilder losses(in);
        for (const std::wstring& loss : jet::compactInPlace(file, backup, options).losses)
            losses.add(in.string(loss));
        return losses.list();
    } catch (const jet::Error& error) {
        in.fail(error.code() == jet::Damaged ? error.describe() : error.text());
    }
}

constexpr FunctionRow kRows[] = {
    {L"alert", fnAlert, 1, 1},
    {L"textscr", fnTextScreen, 0, 0},
    {L"graphscr", fnGraphScreen, 0, 0},
    {L"textpage", fnTextScreen, 0, 0},
    {L"startapp", fnStartApp, 1, 2},
    {L"arxload", fnArxLoad, 1, 2},
    {L"arxunload", fnArxUnload, 1, 2},
    {L"arx", fnArx, 0, 0},
    {L"host-open-drawing", fnOpenDrawing, 1, 1},
    {L"host-new-drawing", fnNewDrawing, 0, 0},
    {L"host-activate-drawing", fnActivateDrawing, 1, 1},
    {L"host-close-drawing", fnCloseDrawing, 0, 1},
    {L"host-save-drawing", fnSaveDrawing, 0, 1},
    {L"host-drawings", fnDrawings, 0, 0},
    {L"host-send", fnSend, 2, 3},
    {L"host-arguments", fnArguments, 0, 0},
    {L"host-compact-database", fnCompactDatabase, 2, 3},
};

}  // namespace

std::span<const FunctionRow> hostFunctions() {
    return kRows;
}

}  // namespace sg
