#pragma once

#include <string_view>

#include "base/export.h"

namespace sg {

struct ScreenSize {
    int width = 0;  // in pixels
    int height = 0;
    friend bool operator==(const ScreenSize&, const ScreenSize&) = default;
};

// The size of the first screen that is switched on, as the graphics cards under `folder` tell it
// (/sys/class/drm). SWIFTGATE_SCREEN of the environment, "1600x1200", counts instead of it. Where
// there is neither, 1920 by 1080.
SG_API ScreenSize screenSize(std::wstring_view folder = L"/sys/class/drm");

}  // namespace sg
