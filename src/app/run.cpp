#include <fmt/xchar.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/process.h"
#include "app/session.h"
#include "base/encoding.h"
#include "base/file_kind.h"
#include "base/text.h"
#include "host/seam/command_line.h"
#include "host/seam/file_error.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

struct Program {
    std::wstring file;  // as messages name it
    std::wstring text;
};

// The program's file: as named or with .lsp behind it, in the current folder or on the support
// path.
std::wstring locateProgram(Host& host, const std::wstring& name) {
    std::vector<std::wstring> names = {name};
    if (!lowerCased(name).ends_with(L".lsp")) names.push_back(name + L".lsp");
    for (const std::wstring& one : names) {
        const ResolvedPath here = resolvePath(one);
        if (here.exists && isFile(here.path)) return here.path;
    }
    if (isFolder(name)) throw FileError(name + L" is a folder, no program");
    std::wstring message = L"no such program: " + name + L"; looked for";
    for (const std::wstring& one : names) {
        const std::wstring found = host.supportPath().find(one);
        if (!found.empty()) return found;
        message += L"\n  " + absolutePath(one);
        if (isAbsolutePath(one)) continue;
        for (const std::wstring& place : host.supportPath().places(one)) {
            if (place != absolutePath(one)) message += L"\n  " + place;
        }
    }
    throw FileError(message);
}

// Throws for a file of another kind, with what to do with such ones.
void checkKind(FileKind kind, const std::wstring& file) {
    if (kind == FileKind::Program || nameOf(kind).empty()) return;
    std::wstring advice;
    if (kind == FileKind::Drawing) advice = L"; --drawing opens it for a program";
    if (kind == FileKind::Database) advice = L"; swiftgate db tables shows what is in it";
    throw FileError(fmt::format(L"{} is {}, no program{}", file, nameOf(kind), advice));
}

Program readProgram(Host& host, const std::wstring& name) {
    if (name == L"-") return {L"standard input", decodeTextFile(readStandardInput())};
    const std::wstring file = locateProgram(host, name);
    const auto bytes = readFile(file);
    if (!bytes) {
        throw FileError(L"the program cannot be read: " + file + L": " +
                        fromUtf8(std::strerror(errno)));
    }
    checkKind(fileKind(*bytes, file), file);
    return {file, decodeTextFile(*bytes)};
}

// An expression has its place named in messages as a program has; anything else is a typed line.
CommandLine::Result runExpression(Session& session, const std::wstring& text) {
    CommandLine& commandLine = session.host().commandLine();
    if (trimmed(text).starts_with(L'(')) {
        return commandLine.load(session.document(), text, L"--eval");
    }
    return commandLine.run(session.document(), text, CommandLine::Echo::None);
}

int runProgram(Session& session, const Arguments& arguments) {
    std::optional<Program> program;
    if (!arguments.program.empty()) program = readProgram(session.host(), arguments.program);
    session.start();

    CommandLine::Result result;
    if (program) {
        result =
            session.host().commandLine().load(session.document(), program->text, program->file);
    }
    for (const std::wstring& text : arguments.expressions) {
        if (result.failed || result.exited) break;
        result = runExpression(session, text);
    }
    if (result.failed) {
        if (!arguments.saveAs.empty()) {
            session.complain(L"the program ended in an error: " + arguments.saveAs +
                             L" is not written");
        }
        return kLispError;
    }
    if (!arguments.saveAs.empty()) {
        session.host().saveDrawing(session.document(), arguments.saveAs);
    }
    return kDone;
}

}  // namespace

int run(const Arguments& arguments) {
    Session session(arguments, arguments.program != L"-");
    return session.conclude([&] { return runProgram(session, arguments); });
}

}  // namespace sg::app
