#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/export.h"

namespace sg {

// Where a front end shows how far long work is.
class SG_API ProgressDisplay {
  public:
    virtual ~ProgressDisplay() = default;
    virtual void begin(const std::wstring& label) = 0;
    virtual void show(uint64_t done, uint64_t total) = 0;
    // Takes away what is shown; the next show() brings it back.
    virtual void hide() = 0;
};

// The state of the status bar: a progress meter, or none.
class SG_API StatusBar {
  public:
    struct Meter {
        std::wstring label;
        int minimum = 0;
        int maximum = 0;
        int position = 0;
    };

    // Takes the display of the front end; null for none.
    void setDisplay(std::unique_ptr<ProgressDisplay> display) { display_ = std::move(display); }

    // What acedSetStatusBarProgressMeter, ...Pos and acedRestoreStatusBar do; false for a failure.
    bool start(std::wstring label, int minimum, int maximum);
    bool move(int position);
    void restore();

    // Makes room for other text where the meter shows.
    void hide();

    const std::optional<Meter>& meter() const { return meter_; }

  private:
    std::optional<Meter> meter_;
    std::unique_ptr<ProgressDisplay> display_;
};

}  // namespace sg
