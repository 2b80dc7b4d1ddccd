#include "host/system/timers.h"

#include <algorithm>
#include <vector>

namespace sg {

uintptr_t Timers::set(uintptr_t replaced, std::chrono::milliseconds period, const void* owner,
                      Call call) {
    const uintptr_t id = timers_.count(replaced) != 0 ? replaced : ++last_;
    timers_.insert_or_assign(id, Timer{period, now_() + period, owner, std::move(call)});
    return id;
}

bool Timers::kill(uintptr_t id) {
    return timers_.erase(id) != 0;
}

void Timers::killAllOf(const void* owner) {
    std::erase_if(timers_, [&](const auto& each) { return each.second.owner == owner; });
}

void Timers::runDue() {
    if (isRunning_ || timers_.empty()) return;
    const Clock::time_point now = now_();
    std::vector<uintptr_t> due;
    for (const auto& [id, timer] : timers_) {
        if (timer.due <= now) due.push_back(id);
    }
    struct Mark {
        bool& isSet;
        explicit Mark(bool& flag) : isSet(flag) { isSet = true; }
        ~Mark() { isSet = false; }
    };
    const Mark running(isRunning_);
    for (const uintptr_t id : due) {
        const auto found = timers_.find(id);
        if (found == timers_.end() || found->second.due > now) continue;
        found->second.due = now + found->second.period;
        const Call call = found->second.call;  // it may kill its timer
        call(id, now);
    }
}

std::optional<std::chrono::milliseconds> Timers::untilDue() const {
    if (timers_.empty()) return std::nullopt;
    const auto soonest =
        std::min_element(timers_.begin(), timers_.end(),
                         [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(soonest->second.due - now_());
    return std::max(left, std::chrono::milliseconds(0));
}

}  // namespace sg
