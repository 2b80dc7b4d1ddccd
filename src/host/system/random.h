#pragma once

#include <cstdint>

namespace sg {

// A linear congruential generator with 15 bits of each state as its number: what programs of the
// system of origin get from their run-time library.
class RandomGenerator {
  public:
    static constexpr int kGreatest = 0x7FFF;

    void seed(uint32_t value) { state_ = value; }
    // 0 to kGreatest.
    int next() {
        state_ = state_ * 214013U + 2531011U;
        return static_cast<int>(state_ >> 16 & kGreatest);
    }

  private:
    uint32_t state_ = 1;
};

}  // namespace sg
