#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "app/arguments.h"
#include "app/line_editor.h"
#include "app/signals.h"
#include "host/seam/host.h"

namespace sg {
class Document;
}

namespace sg::app {

// A host as the command line asks for it, and the person or script that answers its prompts.
class Session {
  public:
    // Makes the host and reads the input script. A person is asked for what the script does not
    // answer when `interactive` and standard input and output are a terminal. Throws FileError.
    Session(const Arguments& arguments, bool interactive);

    Host& host() { return host_; }
    // True when a person sits at standard input and output.
    bool hasTerminal() const { return terminal_; }

    // Opens the drawing and loads the module. Throws FileError.
    void start();

    // The active document. Throws FileError when no drawing is open.
    Document& document();

    // Reads a line from the terminal. Only with one.
    LineEditor& editor();

    // Does a command's work: `body` answers the exit code, a FileError out of it becomes
    // kFileError. Then ends the line that standard output is in when that is a terminal, and writes
    // out what is buffered; lost output becomes kFileError too. Both are reported.
    int conclude(const std::function<int()>& body);

    // Reports on standard error, on a line of its own.
    void complain(const std::wstring& text);

  private:
    void setInput(const Arguments& arguments);

    Host host_;
    const Signals signals_;
    const bool terminal_;
    std::unique_ptr<LineEditor> editor_;
};

}  // namespace sg::app
