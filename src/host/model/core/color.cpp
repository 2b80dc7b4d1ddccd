#include "platform/db/color.h"

#include <array>
#include <cstddef>
#include <iterator>

namespace {

using Components = std::array<int, 3>;

// The colour table: nine plain colours, 24 hues of ten shades each, and greys.
//
// A hue's shades come in five brightnesses, each pure and half way to white. The fifth halves the
// fourth.
class ColorTable {
  public:
    constexpr ColorTable() {
        constexpr uint32_t kPlain[] = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                       0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
        for (std::size_t i = 0; i < std::size(kPlain); ++i)
            colors_[i] = kPlain[i];
        for (int hue = 0; hue < 24; ++hue) {
            for (int shade = 0; shade < 10; ++shade)
                colors_[static_cast<std::size_t>(10 + hue * 10 + shade)] = shadeOf(hue, shade);
        }
        constexpr uint32_t kGreys[] = {0x333333, 0x5B5B5B, 0x848484, 0xADADAD, 0xD6D6D6, 0xFFFFFF};
        for (std::size_t i = 0; i < std::size(kGreys); ++i)
            colors_[250 + i] = kGreys[i];
    }

    constexpr uint32_t operator[](std::size_t index) const { return colors_[index]; }

  private:
    static constexpr uint32_t shadeOf(int hue, int shade) {
        constexpr int kBrightness[] = {255, 165, 127, 76, 76};
        uint32_t color = 0;
        for (const int pure : hueOf(hue)) {
            const int tint = shade % 2 == 0 ? pure : 127 + (pure + 1) / 2;
            int component = (tint * kBrightness[shade / 2] + 127) / 255;
            if (shade >= 8) component /= 2;
            color = color << 8 | static_cast<uint32_t>(component);
        }
        return color;
    }

    // Four steps from each of the six full hues to the next.
    static constexpr Components hueOf(int hue) {
        constexpr int kRamp[] = {0, 63, 127, 191, 255};
        const int up = kRamp[hue % 4];
        const int down = kRamp[4 - hue % 4];
        switch (hue / 4) {
            case 0:
                return {255, up, 0};
            case 1:
                return {down, 255, 0};
            case 2:
                return {0, 255, up};
            case 3:
                return {0, down, 255};
            case 4:
                return {up, 0, 255};
            default:
                return {255, 0, down};
        }
    }

    std::array<uint32_t, 256> colors_{};
};

constexpr ColorTable kTable;

constexpr int component(uint32_t rgb, int shift) {
    return static_cast<int>(rgb >> shift & 0xFF);
}

constexpr int distance(uint32_t a, uint32_t b) {
    int sum = 0;
    for (const int shift : {0, 8, 16}) {
        const int difference = component(a, shift) - component(b, shift);
        sum += difference * difference;
    }
    return sum;
}

uint16_t nearestIndex(uint32_t rgb) {
    uint16_t nearest = 1;
    for (uint16_t index = 2; index < 256; ++index) {
        if (distance(kTable[index], rgb) < distance(kTable[nearest], rgb)) nearest = index;
    }
    return nearest;
}

}  // namespace

uint16_t AcCmColor::colorIndex() const {
    return isByColor() ? nearestIndex(value_) : static_cast<uint16_t>(value_);
}

// By layer and by block show as the colour that a new layer has.
uint32_t AcCmColor::rgb() const {
    if (isByColor()) return value_;
    return kTable[isByACI() ? value_ : 7];
}
