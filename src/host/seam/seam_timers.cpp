#include <chrono>

#include "host/editor/command_line_output.h"
#include "host/rx/exception_text.h"
#include "host/rx/module_loader.h"
#include "host/seam/host.h"
#include "host/system/timers.h"
#include "platform/win/timer.h"

// platform/win/timer.h on the Host.

using sg::Host;

namespace {

constexpr uint32_t kShortestPeriod = 10;
constexpr uint32_t kLongestPeriod = 0x7FFFFFFF;

// Calls a timer's procedure as code of the module that has set it, which stays loaded meanwhile.
void callProcedure(sg::Module* module, TIMERPROC procedure, uintptr_t id,
                   sg::Timers::Clock::time_point now) {
    Host& host = Host::the();
    std::optional<sg::ModuleLoader::Running> running;
    if (module != nullptr) running.emplace(host.modules(), *module);
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    try {
        procedure(nullptr, WM_TIMER, id, static_cast<uint32_t>(time.count()));
    } catch (...) {
        host.output().reportError(L"a timer's procedure failed: " + sg::currentExceptionText());
    }
}

}  // namespace

uintptr_t SetTimer(HWND, uintptr_t id, uint32_t milliseconds, TIMERPROC procedure) {
    if (procedure == nullptr) return 0;
    Host& host = Host::the();
    sg::Module* const module = host.modules().currentModule();
    const bool isUsual = milliseconds >= kShortestPeriod && milliseconds <= kLongestPeriod;
    const std::chrono::milliseconds period(isUsual ? milliseconds : kShortestPeriod);
    return host.timers().set(id, period, module, [module, procedure](uintptr_t timer, auto now) {
        callProcedure(module, procedure, timer, now);
    });
}

bool KillTimer(HWND, uintptr_t id) {
    return Host::the().timers().kill(id);
}
