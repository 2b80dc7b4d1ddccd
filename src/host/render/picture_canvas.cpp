#include "host/render/picture_canvas.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/render/image_files.h"
#include "host/render/text_shapes.h"

namespace sg::render {
namespace {

constexpr double kThinnest = 1;        // of lines, in pixels
constexpr double kSmallest = 0.4;      // what is smaller is a dot
constexpr double kNearest = 0.15;      // points of a chain that are nearer count as one
constexpr double kDensestPattern = 3;  // pixels; a shorter pattern shows as an unbroken line
constexpr double kMargin = 4;          // around the box, for what lines cover beside them
constexpr double kFarthest = 20000;    // pixels off the box; areas that reach further are cut

PicturePoint point(const AcGePoint2d& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y)};
}

AcGePoint2d between(const AcGePoint2d& a, const AcGePoint2d& b, double share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

bool overlaps(const PixelBox& a, const PixelBox& b) {
    return a.left <= b.right && b.left <= a.right && a.top <= b.bottom && b.top <= a.bottom;
}

}  // namespace

// Joins the parts of lines that continue each other.
class PictureCanvas::ChainMaker {
  public:
    ChainMaker(PictureCanvas& canvas, const Pen& pen) : canvas_(canvas), pen_(pen) {}
    ~ChainMaker() { flush(); }
    ChainMaker(const ChainMaker&) = delete;
    ChainMaker& operator=(const ChainMaker&) = delete;

    void add(const AcGePoint2d& from, const AcGePoint2d& to) {
        if (points_.empty() || points_.back().x != from.x || points_.back().y != from.y) {
            flush();
            points_.push_back(from);
        }
        points_.push_back(to);
    }
    void flush() {
        if (!points_.empty()) canvas_.addChain(pen_, points_);
        points_.clear();
    }

  private:
    PictureCanvas& canvas_;
    const Pen pen_;
    std::vector<AcGePoint2d> points_;
};

PictureCanvas::PictureCanvas(PictureBuilder& builder, Looks& looks, const WeightScale& weights,
                             const PictureView& view)
    : builder_(builder), looks_(looks), weights_(weights), view_(view) {}

double PictureCanvas::shownLength(const AcGeVector3d& vector) const {
    return view_.projection.along(vector).length();
}

const Pen& PictureCanvas::penOf(const Look& look, Pen::Kind kind) {
    auto place = layers_.find(look.layer);
    if (place == layers_.end()) {
        place = layers_.emplace(look.layer, builder_.layer(looks_.layerName(look.layer))).first;
    }
    pen_.kind = kind;
    pen_.alpha = look.alpha;
    pen_.color = look.color;
    pen_.width = static_cast<float>(kThinnest);
    if (kind == Pen::Kind::line && weights_.areShown) {
        pen_.width = static_cast<float>(
            std::max(kThinnest, look.lineWeight / 100.0 * weights_.pixelsPerMillimetre));
    }
    pen_.layer = place->second;
    pen_.clip = view_.clip;
    pen_.image = 0;
    return pen_;
}

// False for what has no place, or none near the box.
bool PictureCanvas::project(std::span<const AcGePoint3d> points) {
    pixels_.clear();
    for (const AcGePoint3d& p : points) {
        const AcGePoint2d pixel = view_.projection.at(p);
        if (!std::isfinite(pixel.x) || !std::isfinite(pixel.y)) return false;
        pixels_.push_back(pixel);
    }
    return !pixels_.empty();
}

void PictureCanvas::addChain(const Pen& pen, std::span<const AcGePoint2d> points) {
    chain_.clear();
    chain_.push_back(point(points.front()));
    AcGePoint2d last = points.front();
    for (size_t i = 1; i < points.size(); ++i) {
        const bool isNear =
            std::abs(points[i].x - last.x) < kNearest && std::abs(points[i].y - last.y) < kNearest;
        if (isNear && i + 1 < points.size()) continue;
        if (isNear && chain_.size() > 1) chain_.pop_back();
        if (isNear && chain_.size() == 1 && points.size() == 2) break;
        last = points[i];
        chain_.push_back(point(last));
    }
    builder_.line(pen, chain_);
}

void PictureCanvas::line(const Look& look, std::span<const AcGePoint3d> points, bool isClosed,
                         PatternRun run) {
    if (!project(points)) return;
    const Pen& pen = penOf(look, Pen::Kind::line);
    const PixelBox reach = boxOf(pixels_);
    if (!overlaps(reach, view_.box.grown(pen.width + kMargin))) return;
    if (reach.right - reach.left < kSmallest && reach.bottom - reach.top < kSmallest) {
        addChain(pen, {pixels_.data(), 1});
        return;
    }
    const bool isBroken = look.linetype != nullptr && run != PatternRun::none && points.size() > 1;
    if (isBroken) {
        drawBroken(look, pen, points, isClosed, run);
    } else {
        drawUnbroken(pen);
    }
}

void PictureCanvas::drawUnbroken(const Pen& pen) {
    const PixelBox box = view_.box.grown(pen.width + kMargin);
    if (std::all_of(pixels_.begin(), pixels_.end(),
                    [&](const AcGePoint2d& p) { return box.contains(p); })) {
        addChain(pen, pixels_);
        return;
    }
    ChainMaker chains(*this, pen);
    for (size_t i = 0; i + 1 < pixels_.size(); ++i) {
        double from = 0;
        double to = 1;
        if (!box.clipLine(pixels_[i], pixels_[i + 1], from, to)) continue;
        chains.add(from == 0 ? pixels_[i] : between(pixels_[i], pixels_[i + 1], from),
                   to == 1 ? pixels_[i + 1] : between(pixels_[i], pixels_[i + 1], to));
    }
}

void PictureCanvas::drawBroken(const Look& look, const Pen& pen,
                               std::span<const AcGePoint3d> points, bool isClosed, PatternRun run) {
    lengths_.clear();
    for (size_t i = 0; i + 1 < points.size(); ++i) {
        lengths_.push_back(view_.pixelsPerPatternUnit > 0
                               ? pixels_[i].distanceTo(pixels_[i + 1]) / view_.pixelsPerPatternUnit
                               : points[i].distanceTo(points[i + 1]));
    }
    if (run == PatternRun::through) {
        drawSegments(look, pen, 0, lengths_.size(), isClosed);
        return;
    }
    for (size_t i = 0; i < lengths_.size(); ++i)
        drawSegments(look, pen, i, i + 1, false);
}

// The segments from `first` up to `last`, which carry one pattern.
void PictureCanvas::drawSegments(const Look& look, const Pen& pen, size_t first, size_t last,
                                 bool isClosed) {
    double units = 0;
    double shown = 0;
    for (size_t i = first; i < last; ++i) {
        units += lengths_[i];
        shown += pixels_[i].distanceTo(pixels_[i + 1]);
    }
    if (!(units > 0)) return;
    const double pixelsPerUnit = shown / units;
    Linetype unbroken;
    const bool isDense =
        look.linetype->length * look.linetypeScale * pixelsPerUnit < kDensestPattern;
    const LaidPattern pattern(isDense ? unbroken : *look.linetype, look.linetypeScale, units,
                              isClosed);
    const PixelBox box = view_.box.grown(pen.width + kMargin);
    ChainMaker chains(*this, pen);
    double start = 0;
    for (size_t i = first; i < last; ++i) {
        const double length = lengths_[i];
        const AcGePoint2d a = pixels_[i];
        const AcGePoint2d b = pixels_[i + 1];
        double from = 0;
        double to = 1;
        if (length > 0 && box.clipLine(a, b, from, to)) {
            const auto at = [&](double place) { return between(a, b, (place - start) / length); };
            pattern.visit(
                start + from * length, start + to * length,
                [&](double dashFrom, double dashTo) {
                    chains.add(dashFrom <= start ? a : at(dashFrom),
                               dashTo >= start + length ? b : at(dashTo));
                },
                [&](const Linetype::Element& element, double place) {
                    drawPatternText(look, element, pattern.scale(), pixelsPerUnit, at(place),
                                    (b - a) / a.distanceTo(b));
                });
        }
        start += length;
    }
}

void PictureCanvas::drawPatternText(const Look& look, const Linetype::Element& element,
                                    double scale, double pixelsPerUnit, const AcGePoint2d& at,
                                    const AcGeVector2d& along) {
    const AcGeVector2d right = element.isUpright ? AcGeVector2d(1, 0) : along;
    const double size = scale * pixelsPerUnit;
    const AcGeVector2d left(along.y, -along.x);  // of a line, seen on a picture's y axis
    const AcGePoint2d origin =
        at + along * (element.offset.x * size) + left * (element.offset.y * size);
    const double turn = element.rotation;
    const AcGeVector2d x(right.x * std::cos(turn) + right.y * std::sin(turn),
                         right.y * std::cos(turn) - right.x * std::sin(turn));
    const AcGeVector2d y(x.y, -x.x);
    const Pen pen = penOf(look, Pen::Kind::line);
    visitGlyphs(element.text, element.style, [&](const PlacedGlyph& glyph) {
        size_t first = 0;
        std::vector<AcGePoint2d> chain;
        for (const uint32_t count : glyph.counts) {
            chain.clear();
            for (size_t i = first; i < first + count; ++i) {
                chain.push_back(origin + x * (glyph.points[i].x * size) +
                                y * (glyph.points[i].y * size));
            }
            if (!chain.empty()) addChain(pen, chain);
            first += count;
        }
    });
}

void PictureCanvas::area(const Look& look, std::span<const AcGePoint3d> points,
                         std::span<const uint32_t> counts, Rule rule) {
    if (!project(points)) return;
    const PixelBox reach = boxOf(pixels_);
    if (!overlaps(reach, view_.box)) return;
    fill(look, penOf(look, rule == Rule::evenOdd ? Pen::Kind::evenOdd : Pen::Kind::nonZero), reach,
         counts);
}

// An area between chains of the projected points.
void PictureCanvas::fill(const Look& look, const Pen& pen, const PixelBox& reach,
                         std::span<const uint32_t> counts) {
    if (reach.right - reach.left < kSmallest && reach.bottom - reach.top < kSmallest) {
        addChain(penOf(look, Pen::Kind::line), {pixels_.data(), 1});
        return;
    }
    const bool isFar =
        !overlaps(view_.box.grown(kFarthest), reach) || reach.left < view_.box.left - kFarthest ||
        reach.right > view_.box.right + kFarthest || reach.top < view_.box.top - kFarthest ||
        reach.bottom > view_.box.bottom + kFarthest;
    builder_.beginArea(pen);
    std::span<const AcGePoint2d> rest = pixels_;
    for (const uint32_t count : counts) {
        const std::span<const AcGePoint2d> loop = rest.first(count);
        rest = rest.subspan(count);
        std::vector<AcGePoint2d> cut;
        if (isFar) cut = view_.box.grown(kMargin).clipArea(loop);
        chain_.clear();
        for (const AcGePoint2d& p : isFar ? std::span<const AcGePoint2d>(cut) : loop)
            chain_.push_back(point(p));
        builder_.boundary(chain_);
    }
    builder_.endArea();
}

void PictureCanvas::image(const Look& look, const std::shared_ptr<const ShownImage>& image,
                          std::span<const AcGePoint3d> points, std::span<const uint32_t> counts) {
    if (!project(points)) return;
    const PixelBox reach = boxOf(pixels_);
    if (!overlaps(reach, view_.box)) return;
    const AcGePoint2d corner = view_.projection.at(image->corner);
    const AcGePoint2d right = view_.projection.at(image->corner + image->right);
    const AcGePoint2d down = view_.projection.at(image->corner + image->down);
    const auto pixels =
        image->files->pixels(*image, corner.distanceTo(right), corner.distanceTo(down));
    if (pixels == nullptr) return;
    const auto reachOf = [&](const AcGePoint2d& end) {
        return point(AcGePoint2d(end.x - corner.x, end.y - corner.y));
    };
    Pen pen = penOf(look, Pen::Kind::evenOdd);
    pen.image = builder_.image({pixels, point(corner), reachOf(right), reachOf(down)});
    fill(look, pen, reach, counts);
}

void PictureCanvas::endless(const Look& look, const AcGePoint3d& base,
                            const AcGeVector3d& direction, bool isBoth) {
    const std::array<AcGePoint3d, 2> given = {base, base + direction};
    if (!project(given)) return;
    const PixelBox box = view_.box.grown(kMargin);
    double from = 0;
    double to = 0;
    if (pixels_[0].distanceTo(pixels_[1]) == 0 ||
        !box.clipEndless(pixels_[0], pixels_[1], isBoth, from, to)) {
        return;
    }
    const std::array<AcGePoint3d, 2> ends = {base + direction * from, base + direction * to};
    line(look, ends, false, PatternRun::through);
}

}  // namespace sg::render
