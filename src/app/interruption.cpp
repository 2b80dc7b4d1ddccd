#include "app/interruption.h"

#include <atomic>
#include <iterator>

namespace sg::app {
namespace {

std::atomic<bool> wanted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void onSignal(int) {
    wanted = true;
}

}  // namespace

Interruption::Interruption() {
    wanted = false;
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    for (size_t i = 0; i < std::size(signals); ++i) {
        sigaction(signals[i], nullptr, &before_[i]);
        if (before_[i].sa_handler != SIG_IGN) sigaction(signals[i], &action, nullptr);
    }
}

Interruption::~Interruption() {
    for (size_t i = 0; i < std::size(signals); ++i)
        sigaction(signals[i], &before_[i], nullptr);
}

bool Interruption::isWanted() const {
    return wanted;
}

}  // namespace sg::app
