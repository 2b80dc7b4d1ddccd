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
// word is a name: the LISP function C:NAME where there is one, else a built-in command; the words
// after it answer the prompts.
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
    Result runCommand(Document& document, std::wstring_view line);
    Result withQueued(Result result);
    template <class Body>
    Result inDocument(Document& document, const Body& body);

    Host& host_;
    bool draining_ = false;
};

}  // namespace sg
