#include "host/model/curves/filing_groups.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/spline.h"
#include "host/model/tables/filing.h"

using namespace sg::model;

namespace {

// What group 70 says.
enum SplineFlag { kClosed = 1, kPeriodic = 2, kRational = 4, kPlanar = 8, kLinear = 16 };

template <class Item, class Write>
void writeCounted(AcDbDwgFiler* filer, const std::vector<Item>& items, const Write& write) {
    filer->writeUInt32(static_cast<uint32_t>(items.size()));
    for (const Item& item : items)
        write(item);
}

// A count that is not true ends at the stream's end.
template <class Item, class Read>
void readCounted(AcDbDwgFiler* filer, std::vector<Item>& items, const Read& read) {
    uint32_t count = 0;
    filer->readUInt32(&count);
    items.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        items.emplace_back();
        read(items.back());
    }
}

}  // namespace

Acad::ErrorStatus AcDbSpline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    const auto point = [&](const AcGePoint3d& value) { filer->writePoint3d(value); };
    const auto real = [&](double value) { filer->writeDouble(value); };
    filer->writeInt32(curve_.degree);
    writeCounted(filer, curve_.knots, real);
    writeCounted(filer, curve_.controls, point);
    writeCounted(filer, curve_.weights, real);
    writeCounted(filer, fitPoints_, point);
    filer->writeVector3d(startTangent_);
    filer->writeVector3d(endTangent_);
    filer->writeDouble(fitTolerance_);
    filer->writeBool(closed_);
    filer->writeBool(periodic_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    const auto point = [&](AcGePoint3d& value) { filer->readPoint3d(&value); };
    const auto real = [&](double& value) { filer->readDouble(&value); };
    filer->readInt32(&curve_.degree);
    readCounted(filer, curve_.knots, real);
    readCounted(filer, curve_.controls, point);
    readCounted(filer, curve_.weights, real);
    readCounted(filer, fitPoints_, point);
    filer->readVector3d(&startTangent_);
    filer->readVector3d(&endTangent_);
    filer->readDouble(&fitTolerance_);
    filer->readBool(&closed_);
    filer->readBool(&periodic_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    CurveShape shape;
    const bool hasShape = subShape(shape);
    const bool planar = hasShape && shape.planarity != AcDb::kNonPlanar;
    const bool linear = hasShape && shape.planarity == AcDb::kLinear;
    const int flags = (closed_ ? kClosed : 0) | (periodic_ ? kPeriodic : 0) |
                      (isRational() ? kRational : 0) | (planar ? kPlanar : 0) |
                      (linear ? kLinear : 0);
    filer->writeString(100, L"AcDbSpline");
    if (planar) filer->writeVector3d(210, shape.normal);
    filer->writeInt16(70, static_cast<int16_t>(flags));
    filer->writeInt16(71, static_cast<int16_t>(curve_.degree));
    filer->writeInt16(72, static_cast<int16_t>(curve_.knots.size()));
    filer->writeInt16(73, static_cast<int16_t>(curve_.controls.size()));
    filer->writeInt16(74, static_cast<int16_t>(fitPoints_.size()));
    filer->writeDouble(42, AcGeContext::gTol.equalPoint());
    filer->writeDouble(43, AcGeContext::gTol.equalPoint());
    if (hasFitData()) {
        filer->writeDouble(44, fitTolerance_);
        if (!startTangent_.isZeroLength()) filer->writeVector3d(12, startTangent_);
        if (!endTangent_.isZeroLength()) filer->writeVector3d(13, endTangent_);
    }
    for (const double knot : curve_.knots)
        filer->writeDouble(40, knot);
    for (size_t i = 0; i < curve_.controls.size(); ++i) {
        filer->writePoint3d(10, curve_.controls[i]);
        if (isRational()) filer->writeDouble(41, curve_.weights[i]);
    }
    for (const AcGePoint3d& point : fitPoints_)
        filer->writePoint3d(11, point);
    return filer->filerStatus();
}

// The lists in the groups take the place of those that were there.
struct AcDbSpline::Groups {
    Nurbs curve;
    std::vector<AcGePoint3d> fitPoints;
    AcGeVector3d startTangent, endTangent;
    double fitTolerance = 0;
    int flags = 0;
    bool any = false;  // something of the curve's form is told

    void take(const FieldReader& field) {
        const int code = field.code();
        any = any || code == 10 || code == 11 || code == 40;
        switch (field.code()) {
            case 10:
                curve.controls.push_back(field.point());
                break;
            case 11:
                fitPoints.push_back(field.point());
                break;
            case 12:
                startTangent = field.vector();
                break;
            case 13:
                endTangent = field.vector();
                break;
            case 40:
                curve.knots.push_back(field.real());
                break;
            case 41:
                curve.weights.push_back(field.real());
                break;
            case 44:
                fitTolerance = field.real();
                break;
            case 70:
                flags = field.integer();
                break;
            case 71:
                curve.degree = field.integer();
                break;
            default:
                break;
        }
    }
};

Acad::ErrorStatus AcDbSpline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbSpline")) return status;
    Groups groups;
    FieldReader fields(filer);
    while (fields.next())
        groups.take(fields);
    if (!groups.any && curve_.isValid()) return filer->filerStatus();
    const bool fitOnly = groups.curve.controls.empty() && groups.fitPoints.size() > 1;
    if (!fitOnly && !groups.curve.isValid()) {
        return filer->setError(Acad::eInvalidInput,
                               L"the knots, control points and weights make no spline");
    }
    fitPoints_ = std::move(groups.fitPoints);
    startTangent_ = groups.startTangent;
    endTangent_ = groups.endTangent;
    fitTolerance_ = groups.fitTolerance;
    closed_ = (groups.flags & kClosed) != 0;
    periodic_ = (groups.flags & kPeriodic) != 0;
    if (!fitOnly) {
        curve_ = std::move(groups.curve);
    } else if (!refit()) {
        return filer->setError(Acad::eInvalidInput, L"all points of the spline are the same");
    }
    return filer->filerStatus();
}
