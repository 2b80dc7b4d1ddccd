#include <fmt/xchar.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/columns.h"
#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/process.h"
#include "app/session.h"
#include "base/nearest_names.h"
#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/commands/command_table.h"
#include "host/editor/documents.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/objects.h"
#include "host/seam/external_functions.h"
#include "host/seam/file_error.h"
#include "host/system/function_pages.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

constexpr size_t kMostSuggestions = 5;
constexpr const wchar_t* kCommandHelp =
    L"{0}: a command; {0} at the prompt of swiftgate repl, (command \"_.{0}\" ...) in programs\n";

// The family of the module's functions that this build may lack.
bool isOfModule(const FunctionPages::Family& family) {
    return family.file == L"qn";
}

std::wstring functionFolder() {
    return joinPath(shareFolder(), L"functions");
}

// The spelling that the module's table has of a missing function; null when it is none.
const std::wstring* findMissing(Host& host, std::wstring_view name) {
    for (const std::wstring& one : host.externals().missing()) {
        if (equalIgnoringCase(one, name)) return &one;
    }
    return nullptr;
}

bool isDefinedByModule(Session& session, std::wstring_view name) {
    lisp::Interpreter& interpreter = session.host().interpreter();
    const int64_t slot = interpreter.symbols().find(upperCased(name));
    if (slot < 0) return false;
    const lisp::Value value =
        interpreter.valueIn(session.document().variables(), static_cast<uint32_t>(slot));
    return value.isObject() && value.asObject()->kind() == lisp::ObjectKind::ExternalFunction;
}

std::vector<std::wstring> explainedNames(const FunctionPages& pages) {
    std::vector<std::wstring> names;
    for (const FunctionPages::Family& family : pages.families()) {
        for (const FunctionPages::Section& section : family.sections) {
            names.insert(names.end(), section.names.begin(), section.names.end());
        }
    }
    return names;
}

void printOverview(Output& output, const FunctionPages& pages) {
    for (const FunctionPages::Family& family : pages.families()) {
        std::vector<std::wstring> names;
        for (const FunctionPages::Section& section : family.sections) {
            names.insert(names.end(), section.names.begin(), section.names.end());
        }
        std::sort(names.begin(), names.end(), [](const std::wstring& a, const std::wstring& b) {
            return lowerCased(a) < lowerCased(b);
        });
        output.print(family.title + L"\n" + inColumns(names, terminalColumns()) + L"\n");
    }
    output.print(L"swiftgate help FUNCTION explains one.\n");
}

void printSection(Output& output, const FunctionPages::Section& section) {
    output.print(fmt::format(L"{}\n\n{}\n", fmt::join(section.names, L", "), section.text));
}

int printFunction(Session& session, const std::wstring& name, const FunctionPages& pages) {
    Output& output = session.host().output();
    const auto found = pages.find(name);
    if (found) printSection(output, *found->section);
    if (found && !isOfModule(*found->family)) return kDone;

    session.start();
    if (const std::wstring* const missing = findMissing(session.host(), name)) {
        output.print((found ? L"\n" : L"") + *missing + L": not part of this build\n");
        return kDone;
    }
    if (found) return kDone;
    if (isDefinedByModule(session, name)) {
        output.print(name + L": a function of a module, without a page of its own\n");
        return kDone;
    }
    if (const CommandRow* const command = findCommand(name)) {
        output.print(fmt::format(kCommandHelp, command->name));
        return kDone;
    }
    const std::wstring near =
        suggestion(nearestNames(explainedNames(pages), name, kMostSuggestions));
    session.complain(L"no function \"" + name + L"\"" +
                     (near.empty() ? L"; swiftgate help lists them all" : near));
    return kWrongUsage;
}

int explain(Session& session, const Arguments& arguments) {
    Output& output = session.host().output();
    if (arguments.missing) {
        session.start();
        for (const std::wstring& name : session.host().externals().missing()) {
            output.print(name + L"\n");
        }
        return kDone;
    }
    const FunctionPages pages = FunctionPages::read(functionFolder());
    if (pages.families().empty()) throw FileError(L"no function pages in " + functionFolder());
    if (arguments.names) {
        for (const std::wstring& name : explainedNames(pages))
            output.print(name + L"\n");
        return kDone;
    }
    if (!arguments.function.empty()) return printFunction(session, arguments.function, pages);
    printOverview(output, pages);
    return kDone;
}

}  // namespace

int help(const Arguments& arguments) {
    Session session(arguments, false);
    return session.conclude([&] { return explain(session, arguments); });
}

}  // namespace sg::app
