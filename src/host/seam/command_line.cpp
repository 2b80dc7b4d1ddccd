#include "host/seam/command_line.h"

#include <fmt/xchar.h>

#include <algorithm>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/commands/command_table.h"
#include "host/editor/documents.h"
#include "host/editor/input_source.h"
#include "host/editor/undo_history.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/reader.h"
#include "host/seam/command_runner.h"
#include "host/seam/host.h"

namespace sg {

using lisp::Interpreter;
using lisp::Value;

namespace {

std::wstring_view withoutBlanks(std::wstring_view text) {
    const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
    return text.substr(static_cast<size_t>(first - text.begin()));
}

// What follows the comment that the text begins with.
std::wstring_view withoutComment(std::wstring_view text) {
    const bool block = text.starts_with(L";|");
    const size_t end = block ? text.find(L"|;", 2) : text.find(L'\n');
    if (end == std::wstring_view::npos) return {};
    return trimmed(text.substr(end + (block ? 2 : 1)));
}

}  // namespace

// Runs `body` as a program of the document, in the document's variables; what it changes is undone
// under the name.
template <class Body>
CommandLine::Result CommandLine::inDocument(Document& document, const std::wstring& name,
                                            const Body& body) {
    Interpreter& in = host_.interpreter();
    Interpreter::Outcome outcome;
    lisp::Namespace* const own = &document.variables();
    lisp::Namespace* const before = in.enterNamespace(own);
    {
        const Document::Running running(document);
        const UndoHistory::Running record(document.undo(), name);
        outcome = in.runTopLevel(body);
        if (outcome.failed || outcome.exited) {
            host_.commands().cancel(document);
        } else {
            host_.commands().finish(document);
        }
    }
    // The program may have closed the drawing that was worked on before.
    in.enterNamespace(in.isAlive(before) ? before : nullptr);
    return {outcome.failed, outcome.exited};
}

CommandLine::Result CommandLine::load(Document& document, std::wstring_view text,
                                      const std::wstring& file) {
    return withQueued(
        inDocument(document, L"LOAD", [&] { return host_.interpreter().loadText(text, file); }));
}

CommandLine::Result CommandLine::run(Document& document, std::wstring_view text, Echo echo) {
    return withQueued(runOne(document, text, echo));
}

// What a program has sent to documents runs when it has ended, unless it left by (exit).
CommandLine::Result CommandLine::withQueued(Result result) {
    if (result.exited) return result;
    const Result queued = runQueued();
    return {result.failed || queued.failed, queued.exited};
}

CommandLine::Result CommandLine::runQueued() {
    Result result;
    if (draining_) return result;
    draining_ = true;
    while (Document* document = host_.documents().nextWithTyped()) {
        const std::wstring text = std::move(document->typed.front());
        document->typed.pop_front();
        Result one;
        host_.documents().withCurrent(*document,
                                      [&] { one = runOne(*document, text, Echo::None); });
        result.failed = result.failed || one.failed;
        if (one.exited) {
            result.exited = true;
            break;
        }
    }
    draining_ = false;
    return result;
}

// Typed text may hold several lines, and an expression may span them.
CommandLine::Result CommandLine::runOne(Document& document, std::wstring_view text, Echo echo) {
    Result result;
    while (!result.exited) {
        text = withoutBlanks(text);
        if (text.empty()) break;
        if (text.front() == L';') {
            text = withoutComment(text);
            continue;
        }
        const bool isExpression = text.front() == L'(' || text.front() == L'!';
        const Result one =
            isExpression ? runExpression(document, text, echo) : runNamed(document, text);
        result.failed = result.failed || one.failed;
        result.exited = one.exited;
    }
    return result;
}

CommandLine::Result CommandLine::runExpression(Document& document, std::wstring_view& text,
                                               Echo echo) {
    if (text.front() == L'!') text.remove_prefix(1);
    size_t used = text.size();
    Interpreter& in = host_.interpreter();
    const Result result = inDocument(document, L"LISP", [&] {
        lisp::Reader reader(in, text);
        Value value;
        if (reader.more()) {
            const Value form = reader.read();
            used = reader.position();
            in.push(form);
            value = in.eval(form);
            in.push(value);
        }
        if (echo == Echo::Values && !value.isVoid()) {
            if (!host_.output().atLineStart()) host_.output().print(L"\n");
            host_.output().print(in.toQuotedText(value) + L"\n");
        }
        return value;
    });
    text.remove_prefix(used);
    return result;
}

int64_t CommandLine::functionNamed(Document& document, const std::wstring& name) {
    Interpreter& in = host_.interpreter();
    const int64_t slot = in.symbols().find(L"C:" + name);
    if (slot < 0) return slot;
    const Value value = in.valueIn(document.variables(), static_cast<uint32_t>(slot));
    return value.isNil() ? -1 : slot;
}

// Takes the name, and what has answered its command, off the text.
CommandLine::Result CommandLine::runNamed(Document& document, std::wstring_view& text) {
    const std::wstring_view line = text.substr(0, text.find(L'\n'));
    const auto end = std::find_if(line.begin(), line.end(), isBlank);
    std::wstring name = upperCased({line.begin(), end});
    const std::wstring_view words(end, line.end());
    if (name.starts_with(L'\'')) name.erase(0, 1);
    int64_t slot = functionNamed(document, name);
    const std::wstring_view meant = commandOfAlias(name);
    if (slot < 0 && !meant.empty()) {
        slot = functionNamed(document, std::wstring(meant));
        name = meant;
    }
    if (slot >= 0) {
        text.remove_prefix(line.size());
        return runFunction(document, static_cast<uint32_t>(slot), name, words);
    }
    host_.typedWords().setLines(text.substr(line.size() - words.size()));
    bool isKnown = false;
    {
        const Document::Running running(document);
        isKnown = host_.commands().start(document, name, false);
        host_.commands().finish(document);
    }
    if (isKnown) {
        text = text.substr(text.size() - host_.typedWords().left());
        host_.typedWords().clear();
        return {};
    }
    host_.typedWords().clear();
    text.remove_prefix(line.size());
    if (!host_.output().atLineStart()) host_.output().print(L"\n");
    host_.output().print(fmt::format(L"Unknown command \"{}\".\n", name));
    return {true, false};
}

CommandLine::Result CommandLine::runFunction(Document& document, uint32_t slot,
                                             const std::wstring& name, std::wstring_view words) {
    host_.typedWords().set(words);
    const Result result = inDocument(
        document, name, [&] { return host_.interpreter().apply(Value::symbol(slot), {}); });
    host_.typedWords().clear();
    return result;
}

}  // namespace sg
