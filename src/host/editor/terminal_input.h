#pragma once

#include <functional>
#include <string>

#include "base/export.h"
#include "host/editor/input_source.h"

namespace sg {

// Asks a person at a terminal.
class SG_API TerminalInput : public InputSource {
  public:
    // Shows a prompt and reads a line, without its end. Outcome::none at the end of the input,
    // Outcome::cancelled on Ctrl-C.
    using ReadLine = std::function<Answer<std::wstring>(const std::wstring& prompt)>;
    using Print = std::function<void(const std::wstring& text)>;

    TerminalInput(ReadLine readLine, Print print)
        : readLine_(std::move(readLine)), print_(std::move(print)) {}

    // The prompt's last line goes to ReadLine, lines before it are printed.
    Answer<std::wstring> text(const TextRequest& request) override;

    // Prints title and text and asks for a button, by its name or the start of it; an empty line is
    // the default button. Asks again until the answer names one button.
    Answer<int> messageBox(const BoxRequest& request) override;

    // Prints title, folder, kinds of files and recent answers, and asks for a name; an empty line
    // is the name that stands there. A file chooser without such a name is cancelled by an empty
    // line.
    Answer<std::wstring> file(const FileRequest& request) override;

  private:
    const ReadLine readLine_;
    const Print print_;
};

}  // namespace sg
