#pragma once

#include <optional>
#include <string_view>

#include "base/export.h"
#include "host/editor/commands/active_command.h"

namespace sg {

class Document;
class Host;

// The built-in commands of the host's documents: programs and people start them and answer their
// prompts. A document has one on its way at most.
class SG_API CommandRunner {
  public:
    explicit CommandRunner(Host& host) : host_(host) {}

    // Starts a command by its name; the name of a system variable asks for its value. False for an
    // unknown name, and while another command is on its way.
    bool start(Document& document, std::wstring_view name, bool fromProgram);
    // Answers the prompt that the command waits at; nullopt is Esc.
    void answer(Document& document, std::optional<PromptAnswer> answer);
    // Lets the person, or script, that answers prompts answer it. False: by Esc. Where no text is
    // asked for, an answer that starts with "(" or "!" is LISP, whose value answers.
    bool askUser(Document& document);
    // Asks so until the command has ended.
    void finish(Document& document);
    void cancel(Document& document);

  private:
    std::optional<PromptAnswer> askOnce(const ActiveCommand::Waiting& waiting);
    std::optional<PromptAnswer> evaluated(Document& document, const std::wstring& program);
    void startRow(Document& document, const CommandRow& row, bool fromProgram);
    void open(const std::wstring& path);
    void save(Document& document, const std::wstring& path, const std::wstring& release);

    Host& host_;
};

}  // namespace sg
