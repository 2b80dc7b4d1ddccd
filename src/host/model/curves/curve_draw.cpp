#include <algorithm>
#include <cmath>
#include <vector>

#include "host/model/curves/curve_access.h"
#include "platform/db/curve.h"
#include "platform/gi/draw.h"

using sg::model::CurveAccess;
using sg::model::CurveShape;
using sg::model::Piece;
using sg::model::Span;

namespace {

constexpr int kMostHalvings = 10;

// Appends points between two parameters, the last one included, so that chords stand off the curve
// by no more than `deviation`.
void appendChords(const Piece& piece, double from, double to, double deviation, int halvings,
                  std::vector<AcGePoint3d>& points) {
    const AcGePoint3d start = piece.at(from);
    const AcGePoint3d end = piece.at(to);
    const double middle = (from + to) / 2;
    const Piece chord = Piece::line(start, end);
    const auto off = [&](double t) {
        const AcGePoint3d point = piece.at(t);
        return chord.at(chord.closest(point)).distanceTo(point);
    };
    const bool flat = off(middle) <= deviation && off((from + middle) / 2) <= deviation &&
                      off((middle + to) / 2) <= deviation;
    if (flat || halvings == 0) {
        points.push_back(end);
        return;
    }
    appendChords(piece, from, middle, deviation, halvings - 1, points);
    appendChords(piece, middle, to, deviation, halvings - 1, points);
}

std::vector<AcGePoint3d> chordsOf(const Piece& piece, double deviation) {
    std::vector<AcGePoint3d> points{piece.start()};
    const std::vector<double> stops = piece.samples();
    for (size_t i = 1; i < stops.size(); ++i) {
        appendChords(piece, stops[i - 1], stops[i], deviation, kMostHalvings, points);
    }
    return points;
}

// A chain of straight pieces goes out as one polyline, so that its linetype runs through.
class ShapeDrawer {
  public:
    ShapeDrawer(AcGiWorldDraw* draw, const CurveShape& shape) : draw_(draw), shape_(shape) {}

    void run() {
        for (const Span& span : shape_.spans)
            drawPiece(span.piece);
        flush();
    }

  private:
    void drawPiece(const Piece& piece) {
        if (!piece.isBounded()) {
            drawEndless(piece);
        } else if (piece.kind == Piece::Kind::Line) {
            if (chain_.empty()) chain_.push_back(piece.start());
            chain_.push_back(piece.end());
        } else if (piece.isCircular()) {
            flush();
            drawArc(piece);
        } else {
            flush();
            double deviation = draw_->deviation(piece.start());
            if (!(deviation > 0)) deviation = shape_.tolerance() * 1e3;
            chain_ = chordsOf(piece, deviation);
            flush();
        }
    }

    void drawEndless(const Piece& piece) {
        const bool both = !std::isfinite(piece.first);
        const AcGePoint3d base = both ? piece.origin : piece.start();
        if (both) {
            draw_->geometry().xline(base, base + piece.u);
        } else {
            draw_->geometry().ray(base, base + piece.u);
        }
    }

    void drawArc(const Piece& piece) {
        const AcGeVector3d axis = piece.axis();
        if (shape_.periodic) {
            draw_->geometry().circle(piece.origin, piece.radius(), shape_.normal);
        } else {
            draw_->geometry().circularArc(piece.origin, piece.radius(), axis / axis.length(),
                                          piece.start() - piece.origin, piece.last - piece.first);
        }
    }

    void flush() {
        if (chain_.size() > 1) {
            draw_->geometry().polyline(static_cast<uint32_t>(chain_.size()), chain_.data(),
                                       &shape_.normal);
        }
        chain_.clear();
    }

    AcGiWorldDraw* draw_;
    const CurveShape& shape_;
    std::vector<AcGePoint3d> chain_;
};

}  // namespace

bool AcDbCurve::subWorldDraw(AcGiWorldDraw* draw) {
    CurveShape shape;
    if (!CurveAccess::shapeOf(*this, shape)) return AcDbEntity::subWorldDraw(draw);
    if (shape.thickness != 0) draw->subEntityTraits().setThickness(shape.thickness);
    ShapeDrawer(draw, shape).run();
    return true;
}
