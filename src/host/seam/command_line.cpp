#include "host/seam/command_line.h"

#include <fmt/xchar.h>

#include <algorithm>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/editor/input_source.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/reader.h"
#include "host/seam/host.h"

namespace sg {

using lisp::Interpreter;
using lisp::Value;

namespace {

// What follows the comment that the text begins with.
std::wstring_view withoutComment(std::wstring_view text) {
    const bool block = text.starts_with(L";|");
    const size_t end = block ? text.find(L"|;", 2) : text.find(L'\n');
    if (end == std::wstring_view::npos) return {};
    return trimmed(text.substr(end + (block ? 2 : 1)));
}

}  // namespace

// Runs `body` as a program of the document, in the document's variables.
template <class Body>
CommandLine::Result CommandLine::inDocument(Document& document, const Body& body) {
    Interpreter& in = host_.interpreter();
    Interpreter::Outcome outcome;
    lisp::Namespace* const own = &document.variables();
    lisp::Namespace* const before = in.enterNamespace(own);
    {
        const Document::Running running(document);
        outcome = in.runTopLevel(body);
    }
    // The program may have closed the drawing that was worked on before.
    in.enterNamespace(in.isAlive(before) ? before : nullptr);
    return {outcome.failed, outcome.exited};
}

CommandLine::Result CommandLine::load(Document& document, std::wstring_view text,
                                      const std::wstring& file) {
    return withQueued(
        inDocument(document, [&] { return host_.interpreter().loadText(text, file); }));
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

CommandLine::Result CommandLine::runOne(Document& document, std::wstring_view text, Echo echo) {
    text = trimmed(text);
    // Typed text may hold several lines, and an expression may span them.
    Result result;
    while (!text.empty() && !result.exited) {
        if (text.front() == L'(' || text.front() == L'!') {
            if (text.front() == L'!') text.remove_prefix(1);
            size_t used = text.size();
            Interpreter& in = host_.interpreter();
            const Result one = inDocument(document, [&] {
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
            result.failed = result.failed || one.failed;
            result.exited = one.exited;
            if (one.failed && used == text.size()) break;
            text = trimmed(text.substr(used));
            continue;
        }
        if (text.front() == L';') {
            text = withoutComment(text);
            continue;
        }
        const size_t end = std::min(text.find(L'\n'), text.size());
        const Result one = runCommand(document, trimmed(text.substr(0, end)));
        result.failed = result.failed || one.failed;
        result.exited = one.exited;
        text = trimmed(text.substr(end));
    }
    return result;
}

CommandLine::Result CommandLine::runCommand(Document& document, std::wstring_view line) {
    const auto end = std::find_if(line.begin(), line.end(), isBlank);
    const std::wstring name = upperCased({line.begin(), end});
    const std::wstring_view words(end, line.end());
    Interpreter& in = host_.interpreter();
    const int64_t slot = in.symbols().find(L"C:" + name);
    if (slot < 0 || in.valueIn(document.variables(), static_cast<uint32_t>(slot)).isNil()) {
        if (!host_.output().atLineStart()) host_.output().print(L"\n");
        host_.output().print(fmt::format(L"Unknown command \"{}\".\n", name));
        return {true, false};
    }
    host_.typedWords().set(words);
    const Result result = inDocument(
        document, [&] { return in.apply(Value::symbol(static_cast<uint32_t>(slot)), {}); });
    host_.typedWords().clear();
    return result;
}

}  // namespace sg
