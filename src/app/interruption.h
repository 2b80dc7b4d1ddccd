#pragma once

#include <signal.h>

namespace sg::app {

// While it lives, a first Ctrl-C, hangup or request to end is only noted, so that work which would
// leave something behind can be stopped in order. A second one ends the process. What is ignored
// already stays so. One at a time.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool isWanted() const;

  private:
    static constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP};
    struct sigaction before_[3] = {};
};

}  // namespace sg::app
