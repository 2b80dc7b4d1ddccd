#include "host/render/proxy_graphics.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <optional>
#include <vector>

#include "base/encoding.h"
#include "host/render/proxy_format.h"
#include "host/text/line.h"

namespace sg::render {
namespace {

using namespace proxy;

// The arguments of a call. Behind their end everything is zero, and the call is damaged.
class Arguments {
  public:
    explicit Arguments(std::string_view bytes) : rest_(bytes) {}

    bool isDamaged() const { return damaged_; }
    size_t left() const { return rest_.size(); }

    int32_t whole() { return take<int32_t>(); }
    double real() {
        const double value = take<double>();
        if (!std::isfinite(value)) damaged_ = true;
        return std::isfinite(value) ? value : 0;
    }
    AcGePoint3d point() {
        const double x = real();
        const double y = real();
        return {x, y, real()};
    }
    AcGeVector3d vector() { return point().asVector(); }
    // None for more than the bytes have room for.
    std::vector<AcGePoint3d> points() { return points(whole()); }
    std::vector<AcGePoint3d> points(int64_t count) {
        std::vector<AcGePoint3d> points;
        if (count < 0 || static_cast<uint64_t>(count) > rest_.size() / 24) damaged_ = true;
        for (int64_t i = 0; !damaged_ && i < count; ++i)
            points.push_back(point());
        return points;
    }
    std::vector<int32_t> wholes(int64_t count) {
        std::vector<int32_t> values;
        if (count < 0 || static_cast<uint64_t>(count) > rest_.size() / 4) damaged_ = true;
        for (int64_t i = 0; !damaged_ && i < count; ++i)
            values.push_back(whole());
        return values;
    }
    // Texts end in a zero.
    std::wstring narrowText() {
        const size_t end = std::min(rest_.find('\0'), rest_.size());
        std::wstring text;
        for (const char c : rest_.substr(0, end))
            text += static_cast<wchar_t>(static_cast<unsigned char>(c));
        skipPadded(end + 1);
        return text;
    }
    std::wstring wideText() {
        std::u16string units;
        size_t at = 0;
        while (at + 1 < rest_.size()) {
            const auto unit = static_cast<char16_t>(static_cast<unsigned char>(rest_[at]) |
                                                    static_cast<unsigned char>(rest_[at + 1]) << 8);
            at += 2;
            if (unit == 0) break;
            units += unit;
        }
        skipPadded(at);
        return fromUtf16(units);
    }

  private:
    template <class Value>
    Value take() {
        Value value{};
        if (rest_.size() < sizeof(Value)) {
            damaged_ = true;
            rest_ = {};
            return value;
        }
        std::memcpy(&value, rest_.data(), sizeof(Value));
        rest_.remove_prefix(sizeof(Value));
        return value;
    }
    void skipPadded(size_t bytes) {
        rest_.remove_prefix(
            std::min((bytes + kAlignment - 1) / kAlignment * kAlignment, rest_.size()));
    }

    std::string_view rest_;
    bool damaged_ = false;
};

struct Circle {
    AcGePoint3d center;
    AcGeVector3d normal;
    double radius = 0;
};

// Nothing for points on a line.
std::optional<Circle> circleThrough(const AcGePoint3d& a, const AcGePoint3d& b,
                                    const AcGePoint3d& c) {
    const AcGeVector3d u = b - a;
    const AcGeVector3d v = c - a;
    const AcGeVector3d normal = u.crossProduct(v);
    const double square = normal.lengthSqrd();
    if (!(square > 0)) return std::nullopt;
    const AcGeVector3d toCenter =
        (normal.crossProduct(u) * v.lengthSqrd() + v.crossProduct(normal) * u.lengthSqrd()) /
        (2 * square);
    return Circle{a + toCenter, normal / std::sqrt(square), toCenter.length()};
}

class Player {
  public:
    explicit Player(AcGiWorldDraw& draw)
        : traits_(draw.subEntityTraits()), geometry_(draw.geometry()) {}
    // Transforms that the list leaves open do not outlive it.
    ~Player() {
        for (; pushed_ > 0; --pushed_)
            geometry_.popModelTransform();
    }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    void play(int32_t call, Arguments from) {
        if (takeProperty(call, from) || takeTransform(call, from)) return;
        switch (call) {
            case kCircle:
            case kCircleOfPoints:
            case kArc:
            case kArcOfPoints:
                drawRound(call, from);
                break;
            case kPolyline:
            case kPolygon:
            case kPolylineWithNormal:
                drawChain(call, from);
                break;
            case kMesh:
                drawMesh(from);
                break;
            case kShell:
                drawShell(from);
                break;
            case kText:
            case kStyledText:
            case kWideText:
            case kWideStyledText:
                drawText(call, from);
                break;
            case kXline:
            case kRay:
                drawEndless(call, from);
                break;
            default:
                break;
        }
    }

  private:
    bool takeProperty(int32_t call, Arguments& from) {
        switch (call) {
            case kColor: {
                const int32_t color = from.whole();
                if (color >= 0 && color <= 256) traits_.setColor(static_cast<uint16_t>(color));
                return true;
            }
            case kTrueColor:
                takeTrueColor(static_cast<uint32_t>(from.whole()));
                return true;
            case kFill:
                traits_.setFillType(from.whole() != 0 ? kAcGiFillAlways : kAcGiFillNever);
                return true;
            case kLineWeight:
                traits_.setLineWeight(from.whole());
                return true;
            case kLinetypeScale:
                traits_.setLineTypeScale(from.real());
                return true;
            case kThickness:
                traits_.setThickness(from.real());
                return true;
            default:
                return false;
        }
    }

    // The method is in the highest byte.
    void takeTrueColor(uint32_t value) {
        AcCmColor color;
        const uint32_t method = value >> 24;
        if (method == AcCmColor::kByColor) {
            color.setRGB(static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8),
                         static_cast<uint8_t>(value));
        } else if (method == AcCmColor::kByBlock) {
            color.setColorIndex(0);
        } else if (method == AcCmColor::kByACI) {
            color.setColorIndex(static_cast<uint16_t>(value & 0xFF));
        }
        traits_.setTrueColor(color);
    }

    bool takeTransform(int32_t call, Arguments& from) {
        if (call == kPopTransform) {
            if (pushed_ > 0) geometry_.popModelTransform();
            if (pushed_ > 0) --pushed_;
            return true;
        }
        if (call != kPushTransform && call != kPushOtherTransform) return false;
        AcGeMatrix3d matrix;
        for (unsigned int row = 0; row < 4; ++row) {
            for (unsigned int column = 0; column < 4; ++column)
                matrix(row, column) = from.real();
        }
        geometry_.pushModelTransform(from.isDamaged() ? AcGeMatrix3d() : matrix);
        ++pushed_;
        return true;
    }

    void drawRound(int32_t call, Arguments& from) {
        if (call == kCircle) {
            const AcGePoint3d center = from.point();
            const double radius = from.real();
            const AcGeVector3d normal = from.vector();
            if (from.isDamaged() || normal.isZeroLength()) return;
            geometry_.circle(center, radius, normal.normal());
        } else if (call == kArc) {
            const AcGePoint3d center = from.point();
            const double radius = from.real();
            const AcGeVector3d normal = from.vector();
            const AcGeVector3d start = from.vector();
            const double sweep = from.real();
            const int32_t type = from.left() >= 4 ? from.whole() : 0;
            if (from.isDamaged() || normal.isZeroLength() || start.isZeroLength()) return;
            geometry_.circularArc(center, radius, normal.normal(), start, sweep,
                                  type == 1   ? kAcGiArcSector
                                  : type == 2 ? kAcGiArcChord
                                              : kAcGiArcSimple);
        } else {
            drawThrough(call, from);
        }
    }

    void drawThrough(int32_t call, Arguments& from) {
        const AcGePoint3d first = from.point();
        const AcGePoint3d second = from.point();
        const AcGePoint3d third = from.point();
        if (from.isDamaged()) return;
        const std::optional<Circle> circle = circleThrough(first, second, third);
        if (!circle) return;
        if (call == kCircleOfPoints) {
            geometry_.circle(circle->center, circle->radius, circle->normal);
            return;
        }
        // The normal looks at the points from where they run counter-clockwise.
        const AcGeVector3d start = first - circle->center;
        const AcGeVector3d end = third - circle->center;
        double sweep =
            std::atan2(start.crossProduct(end).dotProduct(circle->normal), start.dotProduct(end));
        if (sweep <= 0) sweep += 2 * std::numbers::pi;
        geometry_.circularArc(circle->center, circle->radius, circle->normal, start, sweep);
    }

    void drawChain(int32_t call, Arguments& from) {
        const std::vector<AcGePoint3d> points = from.points();
        if (points.empty()) return;
        const auto count = static_cast<uint32_t>(points.size());
        if (call == kPolygon) {
            geometry_.polygon(count, points.data());
        } else {
            AcGeVector3d normal = AcGeVector3d::kZAxis;
            if (call == kPolylineWithNormal) normal = from.vector();
            geometry_.polyline(count, points.data(), &normal);
        }
    }

    void drawMesh(Arguments& from) {
        const int64_t rows = from.whole();
        const int64_t columns = from.whole();
        if (rows < 1 || columns < 1) return;
        const std::vector<AcGePoint3d> points = from.points(rows * columns);
        if (points.empty()) return;
        const auto across = static_cast<size_t>(columns);
        for (size_t row = 0; row * across < points.size(); ++row)
            geometry_.polyline(static_cast<uint32_t>(across), points.data() + row * across);
        std::vector<AcGePoint3d> line;
        for (size_t column = 0; column < across; ++column) {
            line.clear();
            for (size_t at = column; at < points.size(); at += across)
                line.push_back(points[at]);
            geometry_.polyline(static_cast<uint32_t>(line.size()), line.data());
        }
    }

    void drawShell(Arguments& from) {
        const std::vector<AcGePoint3d> points = from.points();
        const std::vector<int32_t> faces = from.wholes(from.whole());
        if (points.empty() || faces.empty()) return;
        geometry_.shell(static_cast<uint32_t>(points.size()), points.data(),
                        static_cast<uint32_t>(faces.size()), faces.data());
    }

    void drawText(int32_t call, Arguments& from) {
        const bool isWide = call == kWideText || call == kWideStyledText;
        const AcGePoint3d position = from.point();
        const AcGeVector3d normal = from.vector();
        const AcGeVector3d direction = from.vector();
        AcGiTextStyle style;
        std::wstring text;
        bool hasCodes = true;
        if (call == kText || call == kWideText) {
            style.height = from.real();
            style.widthFactor = from.real();
            style.oblique = from.real();
            text = isWide ? from.wideText() : from.narrowText();
        } else {
            text = isWide ? from.wideText() : from.narrowText();
            from.whole();  // its length
            hasCodes = from.whole() == 0;
            style.height = from.real();
            style.widthFactor = from.real();
            style.oblique = from.real();
            from.real();  // tracking
            style.backward = from.whole() != 0;
            style.upsideDown = from.whole() != 0;
            style.vertical = from.whole() != 0;
            if (isWide) takeFont(from, style);
        }
        if (from.isDamaged() || normal.isZeroLength() || direction.isZeroLength()) return;
        if (hasCodes) text = text::decodeLine(text).text;
        geometry_.text(position, normal.normal(), direction, text, style);
    }

    // Not every program writes this.
    static void takeFont(Arguments& from, AcGiTextStyle& style) {
        constexpr size_t kFlags = 6 * sizeof(int32_t);
        if (from.left() < kFlags) return;
        from.whole();  // underlined
        from.whole();  // overlined
        style.bold = from.whole() != 0;
        style.italic = from.whole() != 0;
        from.whole();  // character set
        from.whole();  // pitch and family
        style.typeface = from.wideText();
        style.fontFile = from.wideText();
        style.bigFontFile = from.wideText();
    }

    void drawEndless(int32_t call, Arguments& from) {
        const AcGePoint3d first = from.point();
        const AcGePoint3d second = from.point();
        if (from.isDamaged()) return;
        if (call == kXline) {
            geometry_.xline(first, second);
        } else {
            geometry_.ray(first, second);
        }
    }

    AcGiSubEntityTraits& traits_;
    AcGiGeometry& geometry_;
    int pushed_ = 0;
};

int32_t wholeAt(std::string_view bytes) {
    int32_t value = 0;
    std::memcpy(&value, bytes.data(), sizeof(value));
    return value;
}

}  // namespace

bool playProxyGraphics(AcGiWorldDraw& draw, std::string_view graphics) {
    if (graphics.size() < kHeadBytes) return false;
    Player player(draw);
    for (std::string_view rest = graphics.substr(kHeadBytes); rest.size() >= kHeadBytes;) {
        const int32_t size = wholeAt(rest);
        if (size < static_cast<int32_t>(kHeadBytes) || static_cast<size_t>(size) > rest.size())
            break;
        player.play(wholeAt(rest.substr(4)),
                    Arguments(rest.substr(kHeadBytes, static_cast<size_t>(size) - kHeadBytes)));
        rest.remove_prefix(static_cast<size_t>(size));
    }
    return true;
}

}  // namespace sg::render
