#include "host/editor/status_bar.h"

#include <algorithm>
#include <utility>

namespace sg {

bool StatusBar::start(std::wstring label, int minimum, int maximum) {
    if (minimum > maximum) return false;
    restore();
    meter_ = Meter{std::move(label), minimum, maximum, minimum};
    if (display_ != nullptr) display_->begin(meter_->label);
    return true;
}

bool StatusBar::move(int position) {
    if (!meter_) return false;
    const auto from = int64_t{meter_->minimum}, to = int64_t{meter_->maximum};
    const bool isStep = position < 0 && from >= 0;
    const int64_t wanted = isStep ? int64_t{meter_->position} - position : int64_t{position};
    const int64_t reached = std::clamp(wanted, from, to);
    meter_->position = static_cast<int>(reached);
    if (display_ != nullptr) {
        display_->show(static_cast<uint64_t>(reached - from), static_cast<uint64_t>(to - from));
    }
    return true;
}

void StatusBar::restore() {
    hide();
    meter_.reset();
}

void StatusBar::hide() {
    if (display_ != nullptr) display_->hide();
}

}  // namespace sg
