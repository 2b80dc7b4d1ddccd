#include "host/editor/commands/fiber.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <new>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#define SG_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SG_ADDRESS_SANITIZER
#endif
#endif

#ifdef SG_ADDRESS_SANITIZER
#include <sanitizer/common_interface_defs.h>
#endif

namespace sg {
namespace {

// Only what is touched takes memory. Below it lies a page that must not be touched.
constexpr size_t kStackSize = size_t{8} << 20;

size_t pageSize() {
    return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

void leaveStack([[maybe_unused]] void** fake, [[maybe_unused]] const void* target,
                [[maybe_unused]] size_t size) {
#ifdef SG_ADDRESS_SANITIZER
    __sanitizer_start_switch_fiber(fake, target, size);
#endif
}

void arriveOnStack([[maybe_unused]] void* fake, [[maybe_unused]] const void** from,
                   [[maybe_unused]] size_t* size) {
#ifdef SG_ADDRESS_SANITIZER
    __sanitizer_finish_switch_fiber(fake, from, size);
#endif
}

}  // namespace

Fiber::Fiber(std::function<void()> body) : body_(std::move(body)) {
    stack_ = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (stack_ == MAP_FAILED) throw std::bad_alloc();
    mprotect(stack_, pageSize(), PROT_NONE);
    getcontext(&own_);
    own_.uc_stack.ss_sp = stack_;
    own_.uc_stack.ss_size = kStackSize;
    own_.uc_link = nullptr;
    // makecontext() passes numbers of the size of int.
    const auto address = reinterpret_cast<uintptr_t>(this);
    makecontext(&own_, reinterpret_cast<void (*)()>(&Fiber::enter), 2,
                static_cast<unsigned>(address >> 32), static_cast<unsigned>(address));
}

Fiber::~Fiber() {
    munmap(stack_, kStackSize);
}

void Fiber::enter(unsigned high, unsigned low) {
    const uintptr_t address = static_cast<uintptr_t>(high) << 32 | low;
    reinterpret_cast<Fiber*>(address)->run();
}

void Fiber::run() {
    arriveOnStack(nullptr, &resumerStack_, &resumerSize_);
    try {
        body_();
    } catch (...) {
        failure_ = std::current_exception();
    }
    done_ = true;
    leaveStack(nullptr, resumerStack_, resumerSize_);
    swapcontext(&own_, &resumer_);
}

void Fiber::resume() {
    leaveStack(&resumerFake_, stack_, kStackSize);
    swapcontext(&resumer_, &own_);
    arriveOnStack(resumerFake_, nullptr, nullptr);
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void Fiber::suspend() {
    leaveStack(&ownFake_, resumerStack_, resumerSize_);
    swapcontext(&own_, &resumer_);
    arriveOnStack(ownFake_, &resumerStack_, &resumerSize_);
}

}  // namespace sg
