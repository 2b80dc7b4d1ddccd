#pragma once

#include <string>
#include <string_view>

#include "base/export.h"

namespace sg {

class Document;
class Host;

// Runs what is typed at a document's command line.
//
// Text that starts with "(" is LISP, and "!" in front of anything makes it so. Otherwise its first
// word is a name: the LISP function C:NAME where there is one, else a built-in command, its short
// name, or a system variable; "." in front of it stands for the built-in one. The words after it
// answer the prompts, and so do the lines after it those of a built-in command. A command that a
// program leaves waiting is then answered by whoever sits there.
class SG_API CommandLine {
  public:
    explicit CommandLine(Host& host) : host_(host) {}

    enum class Echo { None, Values };  // Values: print what an expression answers

    struct Result {
        bool failed = false;  // a LISP error ended it, or the command is unknown
        bool exited = false;  // (exit) or (quit) did
    };

    // Runs typed text in a document, and then everything that it queued for any document. Errors
    // are reported as a program's top level reports them.
    Result run(Document& document, std::wstring_view text, Echo echo);

    // Reads and runs a program text in a document; `file` names it in messages.
    Result load(Document& document, std::wstring_view text, const std::wstring& file);

    // Runs what is queued for documents until nothing is.
    Result runQueued();

  private:
    Result runOne(Document& document, std::wstring_view text, Echo echo);
    Result runExpression(Document& document, std::wstring_view& text, Echo echo);
    Result runNamed(Document& document, std::wstring_view& text);
    Result runFunction(Document& document, uint32_t slot, const std::wstring& name,
                       std::wstring_view words);
    // The symbol of C:NAME where the document has such a function; below 0 where it has none.
    int64_t functionNamed(Document& document, const std::wstring& name);
    Result withQueued(Result result);
    template <class Body>
    Result inDocument(Document& document, const std::wstring& name, const Body& body);

    Host& host_;
    bool draining_ = false;
};

}  // namespace sg
