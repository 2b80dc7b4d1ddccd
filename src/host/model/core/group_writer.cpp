#include "host/model/core/group_writer.h"

#include "base/encoding.h"

namespace sg::model {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

}  // namespace

double fromFileDegrees(double degrees) {
    return degrees * kDegree;
}

// Rounding to fewer digits gives back what a person wrote, unless that was no such number.
double toFileDegrees(double radians) {
    const double degrees = radians / kDegree;
    if (degrees == 0 || !std::isfinite(degrees)) return degrees;
    constexpr double kSteps = 1e11;
    const double rounded = std::round(degrees * kSteps) / kSteps;
    if (fromFileDegrees(rounded) == radians) return rounded;
    for (const double near : {degrees, std::nextafter(degrees, 0), std::nextafter(degrees, 1e9)}) {
        if (fromFileDegrees(near) == radians) return near;
    }
    return degrees;
}

std::string fromHexDigits(std::wstring_view digits) {
    const auto valueOf = [](wchar_t c) {
        if (c >= L'0' && c <= L'9') return c - L'0';
        if (c >= L'A' && c <= L'F') return c - L'A' + 10;
        if (c >= L'a' && c <= L'f') return c - L'a' + 10;
        return -1;
    };
    std::string bytes;
    for (size_t at = 0; at + 1 < digits.size(); at += 2) {
        const int high = valueOf(digits[at]);
        const int low = valueOf(digits[at + 1]);
        if (high < 0 || low < 0) break;
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

void GroupCollector::text(int code, std::wstring_view text) {
    groups_.appendText(code, toUtf8(text));
}

}  // namespace sg::model
