#include "host/render/shaded_canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

namespace sg::render {
namespace {

constexpr double kNearer = 0.3;    // pixels by which lines stand ahead of the faces that they bound
constexpr double kDarkest = 0.55;  // of a face that the light does not reach
constexpr double kTint = 0.45;     // of white in faces, so that lines stand out from them
constexpr uint32_t kPlain = 0xD0D0D0;  // of faces in black, white and grey

AcGeVector3d areaVector(std::span<const AcGePoint3d> points) {
    AcGeVector3d sum;
    for (size_t i = 1; i + 1 < points.size(); ++i)
        sum += (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
    return sum;
}

bool isConvex(const DepthItem& item) {
    if (item.counts.size() != 1) return false;
    const size_t count = item.points.size();
    for (size_t i = 0; i < count; ++i) {
        const AcGePoint3d& p = item.points[(i + 1) % count];
        const AcGeVector3d turn =
            (p - item.points[i]).crossProduct(item.points[(i + 2) % count] - p);
        if (turn.dotProduct(item.normal) < 0) return false;
    }
    return true;
}

bool isGrey(uint32_t color) {
    const auto red = static_cast<int>(color >> 16 & 255);
    const auto green = static_cast<int>(color >> 8 & 255);
    const auto blue = static_cast<int>(color & 255);
    return std::max({red, green, blue}) - std::min({red, green, blue}) < 8;
}

// The edges of a shell, and the faces on their two sides.
class EdgeUses {
  public:
    void add(int32_t from, int32_t to, bool isFacing) {
        uses_.push_back({std::min(from, to), std::max(from, to), isFacing});
    }
    // Brings the uses of an edge together. Nothing is added afterwards.
    void gather() {
        std::sort(uses_.begin(), uses_.end(), [](const Use& a, const Use& b) {
            return std::tie(a.from, a.to) < std::tie(b.from, b.to);
        });
    }
    bool isClosed() const {
        bool areAllShared = true;
        visit([&](std::span<const Use> edge) { areAllShared = areAllShared && edge.size() == 2; });
        return areAllShared;
    }
    // Visits the edges between a face that looks at the eye and one that looks away.
    template <class Visit>
    void visitOutline(const Visit& visitor) const {
        visit([&](std::span<const Use> edge) {
            if (edge.size() == 2 && edge[0].isFacing != edge[1].isFacing) {
                visitor(edge[0].from, edge[0].to);
            }
        });
    }

  private:
    struct Use {
        int32_t from, to;
        bool isFacing;
    };

    template <class Visit>
    void visit(const Visit& visitor) const {
        for (size_t at = 0; at < uses_.size();) {
            size_t end = at + 1;
            while (end < uses_.size() && uses_[end].from == uses_[at].from &&
                   uses_[end].to == uses_[at].to)
                ++end;
            visitor(std::span(uses_).subspan(at, end - at));
            at = end;
        }
    }

    std::vector<Use> uses_;
};

}  // namespace

// The light comes over the left shoulder.
ShadedCanvas::ShadedCanvas(Canvas& target, const AcGeVector3d& towardsEye, const AcGeVector3d& up)
    : target_(target),
      towardsEye_(towardsEye),
      light_((towardsEye * 0.7 + up * 0.6 + towardsEye.crossProduct(up) * 0.4).normal()) {}

// ---- Keeping ------------------------------------------------------------------------------------

void ShadedCanvas::line(const Look& look, std::span<const AcGePoint3d> points, bool isClosed,
                        PatternRun run) {
    Call call;
    call.look = look;
    call.points.assign(points.begin(), points.end());
    call.isClosed = isClosed;
    call.run = run;
    calls_.push_back(std::move(call));
}

void ShadedCanvas::area(const Look& look, std::span<const AcGePoint3d> points,
                        std::span<const uint32_t> counts, Rule rule) {
    Call call;
    call.kind = Kind::area;
    call.look = look;
    call.points.assign(points.begin(), points.end());
    call.counts.assign(counts.begin(), counts.end());
    call.rule = rule;
    calls_.push_back(std::move(call));
}

void ShadedCanvas::image(const Look& look, const std::shared_ptr<const ShownImage>& image,
                         std::span<const AcGePoint3d> points, std::span<const uint32_t> counts) {
    area(look, points, counts, Rule::evenOdd);
    calls_.back().image = image;
}

void ShadedCanvas::endless(const Look& look, const AcGePoint3d& base, const AcGeVector3d& direction,
                           bool isBoth) {
    Call call;
    call.kind = Kind::endless;
    call.look = look;
    call.points = {base, base + direction};
    call.isClosed = isBoth;
    calls_.push_back(std::move(call));
}

// Of a closed shell the faces that look away are hidden by the others.
void ShadedCanvas::shell(const Look& look, std::span<const AcGePoint3d> points,
                         std::span<const int32_t> faces) {
    struct Face {
        std::vector<AcGePoint3d> points;
        std::vector<uint32_t> counts;
        AcGeVector3d normal;
        bool isFacing = false;
    };
    std::vector<Face> found;
    EdgeUses edges;
    for (size_t at = 0; at < faces.size();) {
        const bool isHole = faces[at] < 0;
        const auto count = static_cast<size_t>(std::abs(static_cast<int64_t>(faces[at++])));
        if (count > faces.size() - at || (isHole && found.empty())) break;
        if (!isHole) found.emplace_back();
        Face& face = found.back();
        const size_t first = face.points.size();
        for (size_t i = 0; i < count; ++i)
            face.points.push_back(points[static_cast<size_t>(faces[at + i])]);
        face.counts.push_back(static_cast<uint32_t>(count));
        if (!isHole) {
            face.normal = areaVector({face.points.data() + first, count});
            face.isFacing = face.normal.dotProduct(towardsEye_) > 0;
        }
        for (size_t i = 0; i < count; ++i)
            edges.add(faces[at + i], faces[at + (i + 1) % count], face.isFacing);
        at += count;
    }
    edges.gather();
    const bool isClosed = edges.isClosed();
    for (Face& face : found) {
        if (face.normal.isZeroLength() || (isClosed && !face.isFacing)) continue;
        Call call;
        call.kind = Kind::face;
        call.normal = face.isFacing ? face.normal.normal() : -face.normal.normal();
        call.look = shaded(look, call.normal);
        call.points = std::move(face.points);
        call.counts = std::move(face.counts);
        calls_.push_back(std::move(call));
        hasFaces_ = true;
    }
    edges.visitOutline([&](int32_t from, int32_t to) {
        const std::array<AcGePoint3d, 2> ends = {points[static_cast<size_t>(from)],
                                                 points[static_cast<size_t>(to)]};
        line(look, ends, false, PatternRun::none);
    });
}

Look ShadedCanvas::shaded(const Look& look, const AcGeVector3d& normal) const {
    const double brightness = kDarkest + (1 - kDarkest) * std::max(0.0, normal.dotProduct(light_));
    const uint32_t base = isGrey(look.color) ? kPlain : look.color;
    Look face = look;
    face.color = 0;
    for (const int shift : {16, 8, 0}) {
        const double part = base >> shift & 255;
        const double shown = (part + (255 - part) * kTint) * brightness;
        face.color |= static_cast<uint32_t>(std::lround(shown)) << shift;
    }
    face.lineWeight = 0;
    face.linetype = nullptr;
    return face;
}

// ---- Giving on ----------------------------------------------------------------------------------

void ShadedCanvas::finish() {
    if (!hasFaces_) {
        for (const Call& call : calls_)
            draw(call);
        return;
    }
    std::vector<DepthItem> items;
    items.reserve(calls_.size());
    for (uint32_t i = 0; i < calls_.size(); ++i)
        addItems(i, items);
    drawFromBehind(std::move(items), towardsEye_,
                   [this](const DepthItem& part) { drawPart(part); });
}

// Endless lines are behind everything. The points of areas are handed over.
void ShadedCanvas::addItems(uint32_t source, std::vector<DepthItem>& items) {
    Call& call = calls_[source];
    if (call.kind == Kind::endless || call.points.empty()) {
        draw(call);
        return;
    }
    if (call.kind != Kind::line) {
        AcGeVector3d normal =
            call.kind == Kind::face
                ? call.normal
                : areaVector({call.points.data(), call.counts.empty() ? 0 : call.counts.front()});
        if (normal.isZeroLength()) return;
        items.push_back(
            {source, false, std::move(call.points), std::move(call.counts), normal.normal()});
        return;
    }
    const AcGeVector3d nearer = towardsEye_ * (kNearer * unitsPerPixel());
    const size_t pieces = std::max<size_t>(call.points.size() - 1, 1);
    for (size_t i = 0; i < pieces; ++i) {
        const AcGePoint3d& to = call.points[std::min(i + 1, call.points.size() - 1)];
        items.push_back({source, true, {call.points[i] + nearer, to + nearer}, {}, {}});
    }
}

void ShadedCanvas::draw(const Call& call) const {
    switch (call.kind) {
        case Kind::line:
            target_.line(call.look, call.points, call.isClosed, call.run);
            return;
        case Kind::endless:
            target_.endless(call.look, call.points[0], call.points[1] - call.points[0],
                            call.isClosed);
            return;
        default:
            drawArea(call, call.points, call.counts);
    }
}

void ShadedCanvas::drawArea(const Call& call, std::span<const AcGePoint3d> points,
                            std::span<const uint32_t> counts) const {
    if (call.image != nullptr) {
        target_.image(call.look, call.image, points, counts);
    } else {
        target_.area(call.look, points, counts, call.rule);
    }
}

// Faces cover the seams between their parts too.
void ShadedCanvas::drawPart(const DepthItem& part) {
    const Call& call = calls_[part.source];
    if (part.isLine) {
        target_.line(call.look, part.points, false, call.run);
        return;
    }
    drawArea(call, part.points, part.counts);
    if (call.kind != Kind::face || !isConvex(part)) return;
    bound_.assign(part.points.begin(), part.points.end());
    bound_.push_back(bound_.front());
    target_.line(call.look, bound_, true, PatternRun::none);
}

}  // namespace sg::render
