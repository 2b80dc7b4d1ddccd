#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

namespace sg {

// Opens documents and starts programs for LISP and modules. What it starts runs on its own, with
// no terminal, and is not waited for beyond a second, in which an opener tells that it failed.
//
// When the environment variable SWIFTGATE_SHELL names a program, that one is run in place of each,
// and waited for: with "open" and the file or address, with "select", the folder and the files, or
// with "start", the program (which need not be there) and its arguments. Its exit status is the
// answer, 0 standing for success.
class SG_API Shell {
  public:
    // The answers of ShellExecuteW that are used; above 32 is a success.
    enum : intptr_t {
        kOutOfMemory = 0,
        kFileNotFound = 2,
        kAccessDenied = 5,
        kNoProgram = 31,
        kStarted = 42,
    };

    Shell() = default;
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;
    // What still runs goes on running.
    ~Shell();

    // What ShellExecuteW does. `operation` is empty, "open" or "explore", in any case; any other
    // has no program. An executable file, and a name that is found on PATH, is started with
    // `parameters`; an address, a document and a folder go to xdg-open. A relative file is looked
    // for in `directory`, which also is where a program starts.
    intptr_t execute(std::wstring_view operation, std::wstring_view file,
                     std::wstring_view parameters, std::wstring_view directory);

    // What startapp does: starts a program with one argument, which may be empty. The command may
    // have arguments of its own, and quotes around a name with blanks.
    // "explorer.exe /select,PATH" opens the folder that PATH is in, "explorer.exe PATH" the folder.
    intptr_t start(std::wstring_view command, std::wstring_view argument);

    // Shows a folder in the file manager with files selected, each an absolute path; without files,
    // or where the file manager cannot select, the folder alone.
    intptr_t select(const std::wstring& folder, const std::vector<std::wstring>& files);

    // Takes note of what has ended by itself. The other operations do so too.
    void reap();

    // The words of a command line; double quotes keep blanks together.
    static std::vector<std::wstring> words(std::wstring_view commandLine);

  private:
    enum class Verb { open, select, start };

    intptr_t open(const std::wstring& target);
    intptr_t startProgram(std::wstring_view program, std::vector<std::wstring> arguments,
                          std::wstring_view directory);
    // `command` is the program and its arguments.
    intptr_t run(Verb verb, const std::vector<std::wstring>& command, std::wstring_view directory);

    std::vector<pid_t> children_;
};

}  // namespace sg
