#pragma once

#include <ucontext.h>

#include <cstddef>
#include <exception>
#include <functional>

namespace sg {

// A function that runs on a stack of its own and can stop in the middle, so that whoever resumes it
// goes on meanwhile. All on one thread.
//
// suspend() is never called while an exception is being handled: the handlers of the two stacks
// would end in the wrong order.
class Fiber {
  public:
    explicit Fiber(std::function<void()> body);
    // The body must have ended.
    ~Fiber();
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;

    // Runs the body until it suspends or ends; an exception out of it comes out here.
    void resume();
    // Called by the body: resume() returns, and the next one comes back here.
    void suspend();
    bool isDone() const { return done_; }

  private:
    static void enter(unsigned high, unsigned low);
    void run();

    const std::function<void()> body_;
    void* stack_ = nullptr;
    ucontext_t own_{}, resumer_{};
    bool done_ = false;
    std::exception_ptr failure_;
    // What the address sanitizer is to know of the stacks.
    void* ownFake_ = nullptr;
    void* resumerFake_ = nullptr;
    const void* resumerStack_ = nullptr;
    size_t resumerSize_ = 0;
};

}  // namespace sg
