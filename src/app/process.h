#pragma once

#include <string>

// What the process asks of the operating system for itself.
namespace sg::app {

// Lets the main thread's stack grow far enough for deep recursion of LISP programs. Must be called
// before the host is made, which measures the stack.
void raiseStackLimit();

// The folders of what comes with this executable, found by its own place: modules, in an
// installation or in a build; documents and the programs of the support path.
std::wstring moduleFolder();
std::wstring shareFolder();

// The folder for what the program remembers between runs, made when it is not there:
// $XDG_STATE_HOME/swiftgate, else ~/.local/state/swiftgate. Empty when it cannot be made.
std::wstring stateFolder();

// Writes to standard output, or a line to standard error with the program's name in front.
void printOut(const std::wstring& text);
void complain(const std::wstring& text);

// All that comes from standard input.
std::string readStandardInput();

// Writes what standard output still holds. False when that, or any write before, failed.
bool flushOutput();

// The columns of the terminal that an open file is, that of standard output unless another one is
// named; 80 when it is none.
int terminalColumns();
int terminalColumns(int file);

}  // namespace sg::app
