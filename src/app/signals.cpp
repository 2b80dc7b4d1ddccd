#include "app/signals.h"

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>

#include "host/lisp/interpreter.h"

namespace sg::app {
namespace {

std::atomic<lisp::Interpreter*> interrupted{nullptr};
static_assert(std::atomic<lisp::Interpreter*>::is_always_lock_free);

// When the signal came last, in milliseconds; a program that catches every cancel is ended by two
// within a second.
std::atomic<int64_t> lastInterrupt{INT64_MIN / 2};
constexpr int64_t kTogether = 1000;

int64_t milliseconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

void onInterrupt(int signal) {
    lisp::Interpreter* const interpreter = interrupted.load();
    const int64_t now = milliseconds();
    const bool together = now - lastInterrupt.exchange(now) < kTogether;
    const bool busy = interpreter != nullptr && interpreter->running();
    if (interpreter != nullptr && !interpreter->interruptPending() && !(together && busy)) {
        interpreter->interrupt();
        return;
    }
    ::signal(signal, SIG_DFL);
    raise(signal);
}

}  // namespace

Signals::Signals(lisp::Interpreter& interpreter) {
    interrupted = &interpreter;
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0;  // no SA_RESTART: reads must end
    sigaction(SIGINT, &action, nullptr);
    signal(SIGPIPE, SIG_IGN);
}

Signals::~Signals() {
    signal(SIGINT, SIG_DFL);
    interrupted = nullptr;
}

bool hasInput() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return poll(&input, 1, 0) > 0;
}

bool waitForInput(const lisp::Interpreter& interpreter, const WaitingWork& work) {
    // The signal is let through only while ppoll waits, so that none falls between the look at the
    // interpreter and the wait.
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGINT);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    bool ready = false;
    while (!ready && !interpreter.interruptPending()) {
        const auto pause = work ? work() : std::nullopt;
        const auto milliseconds = pause.value_or(std::chrono::milliseconds(0)).count();
        const timespec most = {milliseconds / 1000, milliseconds % 1000 * 1'000'000};
        pollfd input = {STDIN_FILENO, POLLIN, 0};
        const int count = ppoll(&input, 1, pause ? &most : nullptr, &before);
        ready = count > 0 || (count < 0 && errno != EINTR);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return ready;
}

}  // namespace sg::app
