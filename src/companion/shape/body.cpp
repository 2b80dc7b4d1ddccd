#include "companion/shape/body.h"

#include <algorithm>
#include <utility>

namespace sg::companion {
namespace {

class Transformer {
  public:
    explicit Transformer(const AcGeMatrix3d& matrix)
        : matrix_(matrix), isMirror_(matrix.det() < 0) {}

    void operator()(AddBody& step) const { std::visit(*this, step.body); }
    void operator()(CutBody& step) const { std::visit(*this, step.body); }
    void operator()(SliceLast& step) const {
        step.point = matrix_ * step.point;
        step.normal = (matrix_ * step.normal).normal();
    }
    void operator()(Unite& step) const { apply(step.steps); }

    void operator()(Extrusion& body) const {
        apply(body.outlines);
        body.along = matrix_ * body.along;
    }
    void operator()(Revolution& body) const {
        apply(body.outlines);
        body.center = matrix_ * body.center;
        body.axis = (matrix_ * body.axis).normal();
        if (isMirror_) body.axis = -body.axis;
    }
    // What is outside stays outside: a mirror image turns the bounds round.
    void operator()(Patchwork& body) const {
        for (PlaneFace& face : body.faces) {
            for (Curve& curve : face)
                apply(curve);
            if (!isMirror_) continue;
            std::reverse(face.begin(), face.end());
            for (Curve& curve : face)
                curve = curve.reversed();
        }
        for (Patch& patch : body.patches) {
            apply(patch.lower);
            apply(patch.upper);
            if (isMirror_) std::swap(patch.lower, patch.upper);
        }
    }

    void apply(Steps& steps) const {
        for (Step& step : steps)
            std::visit(*this, step.action);
    }

  private:
    void apply(Curve& curve) const {
        for (AcGePoint3d& pole : curve.poles)
            pole = matrix_ * pole;
    }
    void apply(std::vector<Outline>& outlines) const {
        for (Outline& outline : outlines) {
            for (Segment& segment : outline) {
                segment.from = matrix_ * segment.from;
                segment.via = matrix_ * segment.via;
            }
        }
    }

    const AcGeMatrix3d matrix_;
    const bool isMirror_;
};

}  // namespace

void transform(Steps& steps, const AcGeMatrix3d& matrix) {
    Transformer(matrix).apply(steps);
}

}  // namespace sg::companion
