#include "companion/kernel/fault_guard.h"

#include <csetjmp>
#include <csignal>

namespace sg::companion {
namespace {

constexpr int kSignals[] = {SIGSEGV, SIGFPE, SIGBUS, SIGILL};

// Where a signal of this thread goes back to, while work runs.
thread_local sigjmp_buf* wayBack = nullptr;

void leave(int) {
    if (wayBack != nullptr) siglongjmp(*wayBack, 1);
}

// Takes the signals over, and gives them back.
class SignalScope {
  public:
    explicit SignalScope(sigjmp_buf& way) : before_(wayBack) {
        wayBack = &way;
        struct sigaction action = {};
        action.sa_handler = leave;
        action.sa_flags = SA_ONSTACK | SA_NODEFER;
        for (size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &action, &old_[i]);
    }
    ~SignalScope() {
        for (size_t i = 0; i < std::size(kSignals); ++i)
            sigaction(kSignals[i], &old_[i], nullptr);
        wayBack = before_;
    }
    SignalScope(const SignalScope&) = delete;
    SignalScope& operator=(const SignalScope&) = delete;

  private:
    sigjmp_buf* const before_;
    struct sigaction old_[std::size(kSignals)] = {};
};

bool withoutExceptions(const std::function<bool()>& work) {
    try {
        return work();
    } catch (...) {
        return false;
    }
}

}  // namespace

bool withoutFaults(const std::function<bool()>& work) {
    sigjmp_buf way;
    const SignalScope scope(way);
    if (sigsetjmp(way, 1) != 0) return false;
    return withoutExceptions(work);
}

}  // namespace sg::companion
