#include <cmath>
#include <vector>

#include "host/model/curves/chords.h"
#include "host/model/curves/curve_access.h"
#include "platform/db/curve.h"
#include "platform/gi/draw.h"

using sg::model::CurveAccess;
using sg::model::CurveShape;
using sg::model::Piece;
using sg::model::Span;

namespace {

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
            chain_ = sg::model::chordsOf(piece, deviation);
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
