#include "host/editor/prompts/typed_values.h"

#include <charconv>
#include <cmath>
#include <vector>

#include "base/encoding.h"
#include "base/text.h"

namespace sg {
namespace {

bool take(std::wstring_view& text, wchar_t c) {
    if (!text.starts_with(c)) return false;
    text.remove_prefix(1);
    return true;
}

std::vector<std::wstring_view> split(std::wstring_view text, wchar_t separator) {
    std::vector<std::wstring_view> parts;
    for (;;) {
        const size_t at = text.find(separator);
        parts.push_back(text.substr(0, at));
        if (at == std::wstring_view::npos) return parts;
        text.remove_prefix(at + 1);
    }
}

// Coordinates as an offset; `hasZ` tells whether the third was given.
struct Typed {
    AcGeVector3d offset;
    bool hasZ = false;
};

std::optional<Typed> parseRectangular(std::wstring_view text, const TypedContext& context) {
    const std::vector<std::wstring_view> parts = split(text, L',');
    if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
    Typed typed;
    for (size_t i = 0; i < parts.size(); ++i) {
        const auto number = parseTypedDistance(parts[i], context);
        if (!number) return std::nullopt;
        typed.offset[static_cast<unsigned>(i)] = *number;
    }
    typed.hasZ = parts.size() == 3;
    return typed;
}

// distance<angle, distance<angle,z or distance<angle<angle from the plane
std::optional<Typed> parsePolar(std::wstring_view text, const TypedContext& context) {
    std::vector<std::wstring_view> parts = split(text, L'<');
    if (parts.size() > 3) return std::nullopt;
    std::wstring_view height;
    if (parts.size() == 2) {
        const size_t comma = parts[1].find(L',');
        if (comma != std::wstring_view::npos) {
            height = parts[1].substr(comma + 1);
            parts[1] = parts[1].substr(0, comma);
            if (height.empty()) return std::nullopt;
        }
    }
    const auto distance = parseTypedDistance(parts[0], context);
    const auto angle = parseTypedAngle(parts[1], context);
    if (!distance || !angle) return std::nullopt;
    Typed typed;
    double flat = *distance;
    if (parts.size() == 3) {
        TypedContext plain = context;  // measured from the plane, whatever the zero direction is
        plain.units.angbase = 0;
        plain.units.angdir = 0;
        const auto rise = parseTypedAngle(parts[2], plain);
        if (!rise) return std::nullopt;
        flat = *distance * std::cos(*rise);
        typed.offset.z = *distance * std::sin(*rise);
        typed.hasZ = true;
    } else if (!height.empty()) {
        const auto z = parseTypedDistance(height, context);
        if (!z) return std::nullopt;
        typed.offset.z = *z;
        typed.hasZ = true;
    }
    typed.offset.x = flat * std::cos(*angle);
    typed.offset.y = flat * std::sin(*angle);
    return typed;
}

}  // namespace

std::optional<double> parseTypedDistance(std::wstring_view text, const TypedContext& context) {
    const bool known = context.lunits >= 1 && context.lunits <= 5;
    const auto number = parseDistance(trimmed(text), known ? context.lunits : 2);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<double> parseTypedAngle(std::wstring_view text, const TypedContext& context) {
    const bool known = context.aunits >= 0 && context.aunits <= 4;
    return parseAngle(text, known ? context.aunits : 0, context.units);
}

std::optional<AcGePoint3d> parseTypedPoint(std::wstring_view text, const TypedContext& context) {
    text = trimmed(text);
    take(text, L'#');
    const bool relative = take(text, L'@');
    if (relative && text.empty()) return context.last;
    const bool world = take(text, L'*');
    const bool polar = text.find(L'<') != std::wstring_view::npos;
    const auto typed = polar ? parsePolar(text, context) : parseRectangular(text, context);
    if (!typed) return std::nullopt;
    if (relative) {
        return context.last + (world ? context.toUser * typed->offset : typed->offset);
    }
    AcGePoint3d point = AcGePoint3d::kOrigin + typed->offset;
    if (world) return context.toUser * point;
    if (!typed->hasZ) point.z = context.elevation;
    return point;
}

std::optional<int32_t> parseTypedInteger(std::wstring_view text) {
    text = trimmed(text);
    if (text.starts_with(L'+') && !text.starts_with(L"+-")) text.remove_prefix(1);
    const std::string digits = toUtf8(text);
    int32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

}  // namespace sg
