#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/process.h"
#include "app/session.h"
#include "base/encoding.h"
#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/reader.h"
#include "host/seam/command_line.h"

namespace sg::app {
namespace {

constexpr const wchar_t* kPrompt = L"swiftgate> ";
constexpr const wchar_t* kContinuation = L"      ...> ";

using Ending = LineEditor::Ending;
using Line = LineEditor::Line;

// Reads a line of a file or pipe.
Line readPlain() {
    char* bytes = nullptr;
    size_t room = 0;
    const ssize_t count = getline(&bytes, &room, stdin);
    Line line{count < 0 ? Ending::Closed : Ending::Entered, {}};
    if (count > 0) line.text = decodeTextFile({bytes, static_cast<size_t>(count)});
    std::free(bytes);
    while (line.text.ends_with(L'\n') || line.text.ends_with(L'\r'))
        line.text.pop_back();
    return line;
}

Line readLine(Session& session, const wchar_t* prompt) {
    if (!session.hasTerminal()) return readPlain();
    Output& output = session.host().output();
    if (!output.atLineStart()) output.print(L"\n");
    output.flush();
    return session.editor().read(prompt);
}

// Only expressions go on over several lines.
bool wantsMore(std::wstring_view text) {
    text = trimmed(text);
    const bool expression =
        text.starts_with(L'(') || text.starts_with(L'!') || text.starts_with(L";|");
    return expression && lisp::isIncomplete(text);
}

// A whole expression, or a command's line.
Line readEntry(Session& session) {
    Line entry = readLine(session, kPrompt);
    while (entry.ending == Ending::Entered && wantsMore(entry.text)) {
        const Line more = readLine(session, kContinuation);
        if (more.ending == Ending::Closed && !session.hasTerminal()) break;  // the reader complains
        entry.ending = more.ending;
        entry.text += L'\n' + more.text;
    }
    return entry;
}

// What follows the comments and blanks at the start of a text.
std::wstring_view withoutComments(std::wstring_view text) {
    for (;;) {
        text = trimmed(text);
        if (!text.starts_with(L';')) return text;
        const std::wstring_view end = text.starts_with(L";|") ? L"|;" : L"\n";
        const size_t found = text.find(end, end.size());
        if (found == std::wstring_view::npos) return {};
        text.remove_prefix(found + end.size());
    }
}

int runLines(Session& session) {
    session.start();
    lisp::Interpreter& interpreter = session.host().interpreter();
    bool failed = false;
    for (;;) {
        const Line entry = readEntry(session);
        if (entry.ending == Ending::Closed) break;
        interpreter.clearInterrupt();
        const std::wstring_view text = withoutComments(entry.text);
        if (entry.ending == Ending::Cancelled || text.empty()) continue;
        if (session.hasTerminal()) session.editor().remember(entry.text);
        const CommandLine::Result result =
            session.host().commandLine().run(session.document(), text, CommandLine::Echo::Values);
        failed = failed || result.failed;
        if (result.exited) break;
    }
    return failed && !session.hasTerminal() ? kLispError : kDone;
}

}  // namespace

int repl(const Arguments& arguments) {
    Session session(arguments, true);
    return session.conclude([&] { return runLines(session); });
}

}  // namespace sg::app
