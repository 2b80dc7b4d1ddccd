#pragma once

#include <cstdint>

#include "base/export.h"

// A colour: by layer, by block, an index of the colour table, or a true colour.
class SG_API AcCmColor {
  public:
    enum Method : uint8_t { kByLayer = 0xC0, kByBlock = 0xC1, kByColor = 0xC2, kByACI = 0xC3 };

    constexpr AcCmColor() = default;  // by layer

    constexpr Method colorMethod() const { return method_; }
    constexpr bool isByLayer() const { return method_ == kByLayer; }
    constexpr bool isByBlock() const { return method_ == kByBlock; }
    constexpr bool isByColor() const { return method_ == kByColor; }
    constexpr bool isByACI() const { return method_ == kByACI; }

    // 0 to 256: by block is 0, by layer 256. A true colour answers the index nearest to it.
    uint16_t colorIndex() const;
    // 0 means by block, 256 by layer. Answers false, and changes nothing, for other numbers.
    constexpr bool setColorIndex(uint16_t index) {
        if (index > 256) return false;
        method_ = index == 256 ? kByLayer : index == 0 ? kByBlock : kByACI;
        value_ = index;
        return true;
    }
    constexpr void setRGB(uint8_t red, uint8_t green, uint8_t blue) {
        method_ = kByColor;
        value_ = static_cast<uint32_t>(red) << 16 | static_cast<uint32_t>(green) << 8 | blue;
    }

    // Of a true colour; of an index, what the colour table shows for it.
    uint8_t red() const { return static_cast<uint8_t>(rgb() >> 16); }
    uint8_t green() const { return static_cast<uint8_t>(rgb() >> 8); }
    uint8_t blue() const { return static_cast<uint8_t>(rgb()); }
    uint32_t rgb() const;  // 0xRRGGBB

    friend constexpr bool operator==(const AcCmColor&, const AcCmColor&) = default;

  private:
    Method method_ = kByLayer;
    uint32_t value_ = 256;  // the index, or 0xRRGGBB
};
