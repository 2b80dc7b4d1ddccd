#pragma once

#include "platform/win/window.h"

namespace sg {

// Gives the window that was active its place back.
class ActiveWindowKept {
  public:
    ActiveWindowKept() : window_(GetActiveWindow()) {}
    ~ActiveWindowKept() { SetActiveWindow(window_); }
    ActiveWindowKept(const ActiveWindowKept&) = delete;
    ActiveWindowKept& operator=(const ActiveWindowKept&) = delete;
    HWND window() const { return window_; }

  private:
    const HWND window_;
};

}  // namespace sg
