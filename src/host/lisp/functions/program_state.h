#pragma once

#include <string>
#include <vector>

#include "host/lisp/interpreter.h"
#include "host/system/files.h"

namespace sg::lisp {

// What the stream, file and program functions of one interpreter keep between calls.
struct ProgramState {
    std::wstring
        typedAhead;  // the rest of a typed line of which read-char took the first characters
    std::vector<std::wstring> loaded;        // full paths of programs, in order, each once
    std::vector<std::wstring> forNewSpaces;  // programs that vl-load-all loaded
    TemporaryFiles temporaryFiles;           // of vl-filename-mktemp
};

inline ProgramState& programState(Interpreter& in) {
    if (!in.programState) in.programState = std::make_shared<ProgramState>();
    return *in.programState;
}

// A file name that a program gives. A zero character would end it early, so that it would name
// another file; such a name is an error.
inline std::wstring_view fileName(Interpreter& in, Value value) {
    const std::wstring_view name = in.text(value);
    if (name.find(L'\0') != std::wstring_view::npos) {
        in.badValue(L"file name: " + in.toQuotedText(value));
    }
    return name;
}

// The full path of the file that a program names: what the findFile hook answers; without a hook,
// the file of that name as seen from the current folder.
std::optional<std::wstring> locateFile(Interpreter& in, const std::wstring& name);

// Loads the program file `name`, with or without its extension .lsp, into the current namespace;
// nullopt when it is not found or cannot be read. Errors of the program are thrown.
std::optional<Value> loadProgram(Interpreter& in, const std::wstring& name);

// Loads into the current namespace what vl-load-all loaded so far: for a document that has just
// been opened. Errors are thrown.
void loadProgramsForNewNamespace(Interpreter& in);

}  // namespace sg::lisp
