#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace sg::app {

// Shows on the terminal of standard error how far long work is: a title, a bar and percents on one
// line, which is gone at the end. It comes after a moment only, so that short work shows nothing,
// and nothing is ever shown where there is no terminal.
class ProgressBar {
  public:
    // Whether the work prints to standard output meanwhile. Lines there and the bar would mix when
    // that is the terminal too: then there is no bar.
    enum class Beside { Nothing, Output };

    explicit ProgressBar(std::wstring title, Beside beside = Beside::Nothing);
    ~ProgressBar() { erase(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // To be called often: it draws seldom. The total may change on the way; 0 is an unknown one,
    // and shows the title alone.
    void show(uint64_t done, uint64_t total);

    // Takes the bar away, so that a message can be written; the next show() brings it back.
    void erase();

  private:
    using Clock = std::chrono::steady_clock;

    void draw(uint64_t done, uint64_t total);

    const std::wstring title_;
    const bool hasTerminal_;
    Clock::time_point next_;  // to draw
    std::wstring drawn_;      // empty: nothing is shown
};

}  // namespace sg::app
