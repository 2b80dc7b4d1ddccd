#pragma once

#include <chrono>
#include <functional>
#include <optional>

namespace sg::lisp {
class Interpreter;
}

namespace sg::app {

// While it lives, Ctrl-C cancels the LISP program that runs. A second Ctrl-C that comes before the
// program has noticed the first one, or within a second of it while a program runs, ends the
// process, as it does without a handler: a program may catch cancels. Writing to a closed pipe
// becomes an error of the write in place of a signal.
//
// Blocking reads end with EINTR. One at a time.
class Signals {
  public:
    explicit Signals(lisp::Interpreter& interpreter);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
};

// True when a character waits at standard input.
bool hasInput();

// Waits until standard input has something to read. False when Ctrl-C came first, or had come
// before and no program has noticed it. `work` is done ahead of every wait, and answers after what
// time there is more to do.
using WaitingWork = std::function<std::optional<std::chrono::milliseconds>()>;
bool waitForInput(const lisp::Interpreter& interpreter, const WaitingWork& work);

}  // namespace sg::app
