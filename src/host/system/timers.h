#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "base/export.h"

namespace sg {

// Timers that call back again and again, when they are due and the program has time: somebody must
// call runDue() now and then. None runs inside the call of another.
class SG_API Timers {
  public:
    using Clock = std::chrono::steady_clock;
    using Call = std::function<void(uintptr_t id, Clock::time_point now)>;

    // In place of the usual clock, ahead of the first timer.
    void setClock(std::function<Clock::time_point()> now) { now_ = std::move(now); }

    // A new timer, or one in place of that with the id `replaced`; answers its id, which is above
    // 0. `owner` says whose code it calls.
    uintptr_t set(uintptr_t replaced, std::chrono::milliseconds period, const void* owner,
                  Call call);
    bool kill(uintptr_t id);  // false when there is none
    void killAllOf(const void* owner);

    // Calls each timer that is due, once however late it is. One that is set meanwhile waits for
    // the next time, one that is killed is not called.
    void runDue();
    // How long until one is due, 0 when one is; nullopt without timers.
    std::optional<std::chrono::milliseconds> untilDue() const;
    size_t size() const { return timers_.size(); }

  private:
    struct Timer {
        Clock::duration period;
        Clock::time_point due;
        const void* owner;
        Call call;
    };

    std::function<Clock::time_point()> now_ = Clock::now;
    std::map<uintptr_t, Timer> timers_;
    uintptr_t last_ = 0;
    bool isRunning_ = false;
};

}  // namespace sg
