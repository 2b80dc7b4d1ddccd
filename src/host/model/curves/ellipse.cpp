#include "host/model/curves/ellipse.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/model/curves/curve_access.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/curves/math/angles.h"
#include "host/model/curves/planar.h"
#include "host/model/curves/smooth_offset.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, 0, 0, L"ELLIPSE", L"")

namespace {
constexpr double kTurn = 2 * std::numbers::pi;
}

AcDbEllipse::AcDbEllipse() = default;
AcDbEllipse::AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& normal,
                         const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                         double endAngle) {
    set(center, normal, majorAxis, radiusRatio, startAngle, endAngle);
}
AcDbEllipse::~AcDbEllipse() = default;

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& normal,
                                   const AcGeVector3d& majorAxis, double radiusRatio,
                                   double startAngle, double endAngle) {
    assertWriteEnabled();
    AcGeVector3d up;
    const double size = majorAxis.length();
    if (!setUnit(up, normal) || !(size > 0) || !(radiusRatio > 0 && radiusRatio <= 1) ||
        std::abs(up.dotProduct(majorAxis)) > 1e-6 * size) {
        return Acad::eInvalidInput;
    }
    center_ = center;
    normal_ = up;
    major_ = majorAxis;
    ratio_ = radiusRatio;
    setParams(paramAtAngle(startAngle), paramAtAngle(endAngle));
    return Acad::eOk;
}

void AcDbEllipse::setParams(double start, double end) {
    start_ = normalAngle(start);
    const double past = angleFrom(end, start_);
    end_ = past > start_ ? past : start_ + kTurn;
}

Acad::ErrorStatus AcDbEllipse::setRadiusRatio(double ratio) {
    return ratio > 0 && ratio <= 1 ? assign(ratio_, ratio) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbEllipse::setStartParam(double parameter) {
    assertWriteEnabled();
    setParams(parameter, end_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setEndParam(double parameter) {
    assertWriteEnabled();
    setParams(start_, parameter);
    return Acad::eOk;
}

// Both keep whole turns and quarter turns as they are.
double AcDbEllipse::paramAtAngle(double angle) const {
    const double inTurn = std::atan2(std::sin(angle), ratio_ * std::cos(angle));
    return inTurn + kTurn * std::round((angle - inTurn) / kTurn);
}

double AcDbEllipse::angleAtParam(double parameter) const {
    const double inTurn = std::atan2(ratio_ * std::sin(parameter), std::cos(parameter));
    return inTurn + kTurn * std::round((parameter - inTurn) / kTurn);
}

bool AcDbEllipse::isWhole() const {
    return end_ - start_ >= kTurn * (1 - 1e-14);
}

bool AcDbEllipse::subShape(CurveShape& shape) const {
    shape.spans.emplace_back(Piece::conic(center_, major_, minorAxis(), start_, end_));
    shape.closed = isWhole();
    shape.periodic = shape.closed;
    shape.normal = normal_;
    return true;
}

AcDbCurve* AcDbEllipse::subPart(double from, double to) const {
    auto* const part = new AcDbEllipse(center_, normal_, major_, ratio_);
    part->setParams(from, to);
    return part;
}

bool AcDbEllipse::setFrom(const Piece& conic, const AcGeVector3d& side) {
    const AcGeVector3d& u = conic.u;
    const AcGeVector3d& v = conic.v;
    const double size = std::max(u.lengthSqrd(), v.lengthSqrd());
    const double skew = 2 * u.dotProduct(v);
    const double excess = u.lengthSqrd() - v.lengthSqrd();
    // Where the major axis is; a circle's stays where it was.
    const double turn = std::hypot(skew, excess) <= 1e-14 * size ? 0 : std::atan2(skew, excess) / 2;
    const AcGeVector3d major = u * std::cos(turn) + v * std::sin(turn);
    const AcGeVector3d minor = v * std::cos(turn) - u * std::sin(turn);
    const AcGeVector3d up = major.crossProduct(minor);
    const double ratio = minor.length() / major.length();
    if (!(size > 0) || !(ratio >= 1e-10)) return false;
    const bool whole = isWholeTurn(conic);
    const bool clockwise = up.dotProduct(side) < 0;
    center_ = conic.origin;
    normal_ = up / (clockwise ? -up.length() : up.length());
    major_ = major;
    ratio_ = std::min(ratio, 1.0);
    if (whole) {
        setParams(0, kTurn);
    } else if (clockwise) {
        setParams(turn - conic.last, turn - conic.first);
    } else {
        setParams(conic.first - turn, conic.last - turn);
    }
    return true;
}

Acad::ErrorStatus AcDbEllipse::copyOfArc(const AcDbCurve& arc, const AcGeMatrix3d& transform,
                                         AcDbEntity*& copy) {
    copy = nullptr;
    CurveShape shape;
    if (!CurveAccess::shapeOf(arc, shape)) return Acad::eNotApplicable;
    auto ellipse = std::make_unique<AcDbEllipse>();
    const Piece conic = shape.spans.front().piece.transformed(transform);
    if (!ellipse->setFrom(conic, transform * shape.normal)) return Acad::eCannotScaleNonUniformly;
    ellipse->setPropertiesFrom(&arc);
    copy = ellipse.release();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    return offsetSmoothly(*this, distance, curves);
}

Acad::ErrorStatus AcDbEllipse::reverseCurve() {
    assertWriteEnabled();
    normal_.negate();
    if (!isWhole()) setParams(-end_, -start_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::extend(double parameter) {
    assertWriteEnabled();
    if (parameter < start_ && parameter > end_ - kTurn) {
        setParams(parameter, end_);
    } else if (parameter > end_ && parameter < start_ + kTurn) {
        setParams(start_, parameter);
    } else {
        return Acad::eInvalidInput;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    const Piece conic =
        Piece::conic(center_, major_, minorAxis(), start_, end_).transformed(transform);
    return setFrom(conic, transform * normal_) ? Acad::eOk : Acad::eCannotScaleNonUniformly;
}

Acad::ErrorStatus AcDbEllipse::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                AcDbIntArray&) const {
    assertReadEnabled();
    const AcGeVector3d minor = minorAxis();
    points.append(center_);
    for (const AcGeVector3d& spoke : {major_, -major_, minor, -minor}) {
        points.append(center_ + spoke);
    }
    if (isWhole()) return Acad::eOk;
    const Piece conic = Piece::conic(center_, major_, minor, start_, end_);
    points.append(conic.start());
    points.append(conic.end());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) {
        center_ += offset;
        return Acad::eOk;
    }
    AcGePoint3dArray grips;
    AcDbIntArray none;
    subGetGripPoints(grips, none, none);
    for (const int index : indices) {
        if (index < 1 || index >= grips.length()) continue;
        AcGeVector3d spoke = grips[index] + offset - center_;
        spoke -= normal_ * spoke.dotProduct(normal_);
        if (spoke.length() == 0) return Acad::eDegenerateGeometry;
        AcGeVector3d u = major_;
        AcGeVector3d v = minorAxis();
        if (index >= 5) {
            const double angle = major_.angleTo(spoke, normal_);
            (index == 5) ? setParams(paramAtAngle(angle), end_)
                         : setParams(start_, paramAtAngle(angle));
            continue;
        }
        if (index <= 2) {
            u = index == 1 ? spoke : -spoke;
            v = normal_.crossProduct(u) * (minorAxis().length() / u.length());
        } else {
            v = v * (spoke.length() / v.length());
        }
        if (!setFrom(Piece::conic(center_, u, v, start_, end_), normal_)) {
            return Acad::eDegenerateGeometry;
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(center_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    if (indices.contains(0)) center_ += offset;
    return Acad::eOk;
}

void AcDbEllipse::subList() const {
    AcDbCurve::subList();
    listPoint(L"Center:", center_);
    listPoint(L"Major Axis:", AcGePoint3d::kOrigin + major_);
    listPoint(L"Minor Axis:", AcGePoint3d::kOrigin + minorAxis());
    listNumber(L"Radius Ratio:", ratio_);
    if (!isWhole()) {
        listAngle(L"start angle", startAngle());
        listAngle(L"end angle", endAngle());
    }
    listNormal(normal_);
}

Acad::ErrorStatus AcDbEllipse::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readPoint3d(&center_);
    filer->readVector3d(&major_);
    filer->readVector3d(&normal_);
    filer->readDouble(&ratio_);
    filer->readDouble(&start_);
    filer->readDouble(&end_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEllipse::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writePoint3d(center_);
    filer->writeVector3d(major_);
    filer->writeVector3d(normal_);
    filer->writeDouble(ratio_);
    filer->writeDouble(start_);
    filer->writeDouble(end_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEllipse::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbEllipse")) return status;
    AcGeVector3d major = major_;
    double ratio = ratio_;
    double start = start_;
    double end = end_;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 10:
                center_ = fields.point();
                break;
            case 11:
                major = fields.vector();
                break;
            case 40:
                ratio = fields.real();
                break;
            case 41:
                start = fields.real();
                break;
            case 42:
                end = fields.real();
                break;
            case 210:
                setUnit(normal_, fields.vector());
                break;
            default:
                break;
        }
    }
    const double tilt = major.dotProduct(normal_);
    if (std::abs(tilt) > 1e-9 * major.length()) major -= normal_ * tilt;
    ratio = std::abs(ratio);
    if (!(major.length() > 0) || !(ratio > 0)) {
        return filer->setError(Acad::eInvalidInput, L"an ellipse needs two axes");
    }
    // What is called the minor axis may be the longer one.
    const AcGeVector3d minor = normal_.crossProduct(major) * ratio;
    setParams(start, end);
    if (ratio <= 1) {
        major_ = major;
        ratio_ = ratio;
    } else {
        setFrom(Piece::conic(center_, major, minor, start_, end_), normal_);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEllipse::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeString(100, L"AcDbEllipse");
    filer->writePoint3d(10, center_);
    filer->writePoint3d(11, AcGePoint3d::kOrigin + major_);
    filer->writeVector3d(210, normal_);
    filer->writeDouble(40, ratio_);
    filer->writeDouble(41, start_);
    filer->writeDouble(42, end_);
    return filer->filerStatus();
}
