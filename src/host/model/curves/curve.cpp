#include "platform/db/curve.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "host/model/curves/curve_access.h"

using sg::model::CurveAccess;
using sg::model::CurveShape;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

AcDbCurve::AcDbCurve() = default;
AcDbCurve::~AcDbCurve() = default;

bool AcDbCurve::subShape(CurveShape&) const {
    return false;
}

AcDbCurve* AcDbCurve::subPart(double, double) const {
    return nullptr;
}

namespace {

Acad::ErrorStatus shapeOf(const AcDbCurve& curve, CurveShape& shape) {
    curve.assertReadEnabled();
    if (CurveAccess::shapeOf(curve, shape)) return Acad::eOk;
    return Acad::eNotImplementedYet;
}

// Does `answer` with the shape, where there is one.
template <class Answer>
Acad::ErrorStatus ask(const AcDbCurve& curve, const Answer& answer) {
    CurveShape shape;
    const Acad::ErrorStatus status = shapeOf(curve, shape);
    return status == Acad::eOk ? answer(shape) : status;
}

Acad::ErrorStatus finite(double value, double& result) {
    if (!std::isfinite(value)) return Acad::eInvalidInput;
    result = value;
    return Acad::eOk;
}

// The values at a parameter; eInvalidInput for one outside.
template <class Answer>
Acad::ErrorStatus atParam(const AcDbCurve& curve, double parameter, const Answer& answer) {
    return ask(curve, [&](const CurveShape& shape) {
        size_t span = 0;
        double inside = parameter;
        if (!shape.locate(inside, span)) return Acad::eInvalidInput;
        answer(shape.values(shape.spans[span], inside));
        return Acad::eOk;
    });
}

}  // namespace

bool AcDbCurve::isClosed() const {
    CurveShape shape;
    return shapeOf(*this, shape) == Acad::eOk && shape.closed;
}

bool AcDbCurve::isPeriodic() const {
    CurveShape shape;
    return shapeOf(*this, shape) == Acad::eOk && shape.periodic;
}

Acad::ErrorStatus AcDbCurve::getStartParam(double& parameter) const {
    return ask(*this,
               [&](const CurveShape& shape) { return finite(shape.startParam(), parameter); });
}

Acad::ErrorStatus AcDbCurve::getEndParam(double& parameter) const {
    return ask(*this, [&](const CurveShape& shape) { return finite(shape.endParam(), parameter); });
}

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d& point) const {
    return ask(*this, [&](const CurveShape& shape) {
        if (!std::isfinite(shape.startParam())) return Acad::eInvalidInput;
        point = shape.spans.front().piece.start();
        return Acad::eOk;
    });
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d& point) const {
    return ask(*this, [&](const CurveShape& shape) {
        if (!std::isfinite(shape.endParam())) return Acad::eInvalidInput;
        point = shape.spans.back().piece.end();
        return Acad::eOk;
    });
}

Acad::ErrorStatus AcDbCurve::getPointAtParam(double parameter, AcGePoint3d& point) const {
    return atParam(*this, parameter, [&](const auto& values) { point = values.point; });
}

Acad::ErrorStatus AcDbCurve::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    return ask(*this, [&](const CurveShape& shape) {
        return shape.paramAtPoint(point, parameter) ? Acad::eOk : Acad::eInvalidInput;
    });
}

Acad::ErrorStatus AcDbCurve::getDistAtParam(double parameter, double& distance) const {
    return ask(*this, [&](const CurveShape& shape) {
        size_t span = 0;
        double inside = parameter;
        if (!std::isfinite(shape.startParam()) || !shape.locate(inside, span)) {
            return Acad::eInvalidInput;
        }
        return finite(shape.lengthTo(inside, span), distance);
    });
}

Acad::ErrorStatus AcDbCurve::getParamAtDist(double distance, double& parameter) const {
    return ask(*this, [&](const CurveShape& shape) {
        const bool found =
            std::isfinite(shape.startParam()) && shape.paramAtLength(distance, parameter);
        return found ? Acad::eOk : Acad::eInvalidInput;
    });
}

Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d& point, double& distance) const {
    double parameter = 0;
    const Acad::ErrorStatus status = getParamAtPoint(point, parameter);
    return status == Acad::eOk ? getDistAtParam(parameter, distance) : status;
}

Acad::ErrorStatus AcDbCurve::getPointAtDist(double distance, AcGePoint3d& point) const {
    double parameter = 0;
    const Acad::ErrorStatus status = getParamAtDist(distance, parameter);
    return status == Acad::eOk ? getPointAtParam(parameter, point) : status;
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(double parameter, AcGeVector3d& derivative) const {
    return atParam(*this, parameter, [&](const auto& values) { derivative = values.first; });
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(const AcGePoint3d& point,
                                           AcGeVector3d& derivative) const {
    double parameter = 0;
    const Acad::ErrorStatus status = getParamAtPoint(point, parameter);
    return status == Acad::eOk ? getFirstDeriv(parameter, derivative) : status;
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(double parameter, AcGeVector3d& derivative) const {
    return atParam(*this, parameter, [&](const auto& values) { derivative = values.second; });
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(const AcGePoint3d& point,
                                            AcGeVector3d& derivative) const {
    double parameter = 0;
    const Acad::ErrorStatus status = getParamAtPoint(point, parameter);
    return status == Acad::eOk ? getSecondDeriv(parameter, derivative) : status;
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                               bool extend) const {
    return ask(*this, [&](const CurveShape& shape) {
        closest = (extend ? shape.extended() : shape).closest(given).point;
        return Acad::eOk;
    });
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& given,
                                               const AcGeVector3d& direction, AcGePoint3d& closest,
                                               bool extend) const {
    if (direction.isZeroLength()) return Acad::eInvalidInput;
    return ask(*this, [&](const CurveShape& shape) {
        const AcGeVector3d unit = direction / direction.length();
        closest = (extend ? shape.extended() : shape).closestAlong(given, unit).point;
        return Acad::eOk;
    });
}

Acad::ErrorStatus AcDbCurve::getArea(double& area) const {
    return ask(*this, [&](const CurveShape& shape) {
        if (!shape.isBounded()) return Acad::eInvalidInput;
        if (shape.planarity == AcDb::kNonPlanar) return Acad::eNonPlanarEntity;
        area = shape.planarity == AcDb::kLinear ? 0 : shape.areaVector().length();
        return Acad::eOk;
    });
}

Acad::ErrorStatus AcDbCurve::reverseCurve() {
    return Acad::eNotImplementedYet;
}

Acad::ErrorStatus AcDbCurve::getOffsetCurves(double, AcDbVoidPtrArray&) const {
    return Acad::eNotImplementedYet;
}

Acad::ErrorStatus AcDbCurve::extend(double) {
    return Acad::eNotImplementedYet;
}

namespace {

// Where the pieces of a split begin and end: on a periodic curve from one parameter round to it
// again, on others from the start to the end.
std::vector<double> cutsOf(const CurveShape& shape, const AcGeDoubleArray& parameters) {
    std::vector<double> cuts(parameters.begin(), parameters.end());
    if (shape.periodic) {
        cuts.push_back(cuts.front() + (shape.endParam() - shape.startParam()));
    } else {
        cuts.insert(cuts.begin(), shape.startParam());
        cuts.push_back(shape.endParam());
        cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    }
    return cuts;
}

}  // namespace

Acad::ErrorStatus AcDbCurve::getSplitCurves(const AcGeDoubleArray& parameters,
                                            AcDbVoidPtrArray& pieces) const {
    CurveShape shape;
    const Acad::ErrorStatus status = shapeOf(*this, shape);
    if (status != Acad::eOk) return status;
    if (parameters.isEmpty() || !std::is_sorted(parameters.begin(), parameters.end())) {
        return Acad::eInvalidInput;
    }
    AcGeDoubleArray inside = parameters;
    size_t span = 0;
    for (double& parameter : inside) {
        if (!shape.locate(parameter, span)) return Acad::eInvalidInput;
    }
    const std::vector<double> cuts = cutsOf(shape, inside);
    std::vector<std::unique_ptr<AcDbCurve>> made;
    for (size_t i = 1; i < cuts.size(); ++i) {
        if (cuts[i] <= cuts[i - 1]) return Acad::eInvalidInput;
        made.emplace_back(subPart(cuts[i - 1], cuts[i]));
        if (made.back() == nullptr) return Acad::eNotImplementedYet;
        made.back()->setPropertiesFrom(this);
    }
    for (auto& piece : made)
        pieces.append(piece.release());
    return Acad::eOk;
}

bool AcDbCurve::isPlanar() const {
    CurveShape shape;
    return shapeOf(*this, shape) == Acad::eOk && shape.planarity != AcDb::kNonPlanar;
}

Acad::ErrorStatus AcDbCurve::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    return ask(*this, [&](const CurveShape& shape) {
        type = shape.planarity;
        if (type == AcDb::kNonPlanar) return Acad::eNonPlanarEntity;
        const sg::model::Piece& first = shape.spans.front().piece;
        AcGeVector3d normal = shape.normal;
        // Of the planes through a line the one nearest to its normal.
        if (type == AcDb::kLinear) {
            const double t = std::isfinite(first.first) ? first.first : 0;
            const AcGeVector3d along = first.derivative(t).normal();
            normal -= along * normal.dotProduct(along);
            if (normal.length() < 1e-6) normal = along.perpVector();
        }
        plane = AcGePlane(std::isfinite(first.first) ? first.start() : first.origin, normal);
        return Acad::eOk;
    });
}

Acad::ErrorStatus AcDbCurve::subGetGeomExtents(AcDbExtents& extents) const {
    CurveShape shape;
    if (shapeOf(*this, shape) != Acad::eOk) return AcDbEntity::subGetGeomExtents(extents);
    if (!shape.isBounded()) return Acad::eInvalidExtents;
    extents.addExt(shape.extents());
    return Acad::eOk;
}
