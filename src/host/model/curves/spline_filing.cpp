#include <algorithm>

#include "host/model/core/dwg_form.h"
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
    if (filer->dwgForm() != nullptr) return writeFile(*filer);
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
    if (filer->dwgForm() != nullptr) return readFile(*filer);
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

// ---- In files -----------------------------------------------------------------------------------

namespace {

enum Shaping { kByControls = 1, kByFit = 2 };
// From release 2013 on.
enum SplineBit { kFitMethod = 1, kClosedFit = 4, kUsesKnots = 8 };
constexpr int32_t kChordKnots = 0;
constexpr int32_t kCustomKnots = 15;

bool areSame(const Nurbs& a, const Nurbs& b) {
    constexpr double kNear = 1e-9;
    if (a.degree != b.degree || a.controls.size() != b.controls.size()) return false;
    double size = 1;
    for (const AcGePoint3d& point : a.controls)
        size = std::max(size, point.asVector().length());
    for (size_t i = 0; i < a.controls.size(); ++i) {
        if (a.controls[i].distanceTo(b.controls[i]) > kNear * size) return false;
    }
    return true;
}

}  // namespace

// A file has either the control points or the fit points. The latter, where they make the curve
// that the spline is.
bool AcDbSpline::isMadeByFit() const {
    if (fitPoints_.size() < 2 || periodic_) return false;
    AcDbSpline again;
    again.fitPoints_ = fitPoints_;
    again.startTangent_ = startTangent_;
    again.endTangent_ = endTangent_;
    again.fitTolerance_ = fitTolerance_;
    again.closed_ = closed_;
    again.periodic_ = periodic_;
    return again.refit() && areSame(again.curve_, curve_);
}

Acad::ErrorStatus AcDbSpline::writeFile(AcDbDwgFiler& filer) const {
    // Whether a curve by fit points is closed is known from release 2013 on.
    const bool isOld = isBefore(&filer, AcDb::kDHL_1027);
    const bool isFit = !(isOld && closed_) && isMadeByFit();
    filer.writeInt32(isFit ? kByFit : kByControls);
    if (!isOld) {
        const int bits = (isFit ? kFitMethod : 0) | (closed_ ? kClosedFit : 0) | kUsesKnots;
        filer.writeInt32(bits);
        filer.writeInt32(isFit ? kChordKnots : kCustomKnots);
    }
    filer.writeInt32(curve_.degree);
    if (isFit) {
        writeFit(filer);
    } else {
        writeControls(filer);
    }
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbSpline::readFile(AcDbDwgFiler& filer) {
    int32_t shaping = 0;
    filer.readInt32(&shaping);
    closed_ = periodic_ = false;
    if (!isBefore(&filer, AcDb::kDHL_1027)) {
        int32_t bits = 0;
        int32_t knots = 0;
        filer.readInt32(&bits);
        filer.readInt32(&knots);
        closed_ = (bits & kClosedFit) != 0;
        if ((bits & kFitMethod) != 0) shaping = kByFit;
        if (knots == kCustomKnots) shaping = kByControls;
    }
    filer.readInt32(&curve_.degree);
    if ((shaping & kByControls) != 0) {
        readControls(filer);
    } else {
        readFit(filer);
    }
    if (filer.filerStatus() == Acad::eOk && !curve_.isValid()) {
        filer.setFilerStatus(Acad::eInvalidInput);
    }
    return filer.filerStatus();
}

void AcDbSpline::writeControls(AcDbDwgFiler& filer) const {
    filer.writeBool(isRational());
    filer.writeBool(closed_);
    filer.writeBool(periodic_);
    filer.writeDouble(AcGeContext::gTol.equalPoint());
    filer.writeDouble(AcGeContext::gTol.equalPoint());
    filer.writeUInt32(static_cast<uint32_t>(curve_.knots.size()));
    filer.writeUInt32(static_cast<uint32_t>(curve_.controls.size()));
    filer.writeBool(isRational());
    for (const double knot : curve_.knots)
        filer.writeDouble(knot);
    for (size_t i = 0; i < curve_.controls.size(); ++i) {
        filer.writePoint3d(curve_.controls[i]);
        if (isRational()) filer.writeDouble(curve_.weights[i]);
    }
}

void AcDbSpline::readControls(AcDbDwgFiler& filer) {
    bool isRational = false;
    bool hasWeights = false;
    double tolerance = 0;
    uint32_t knots = 0;
    uint32_t controls = 0;
    filer.readBool(&isRational);
    filer.readBool(&closed_);
    filer.readBool(&periodic_);
    filer.readDouble(&tolerance);
    filer.readDouble(&tolerance);
    filer.readUInt32(&knots);
    filer.readUInt32(&controls);
    filer.readBool(&hasWeights);
    fitPoints_.clear();
    curve_.knots.clear();
    curve_.controls.clear();
    curve_.weights.clear();
    for (uint32_t i = 0; i < knots && filer.filerStatus() == Acad::eOk; ++i)
        filer.readDouble(&curve_.knots.emplace_back());
    for (uint32_t i = 0; i < controls && filer.filerStatus() == Acad::eOk; ++i) {
        filer.readPoint3d(&curve_.controls.emplace_back());
        if (hasWeights) filer.readDouble(&curve_.weights.emplace_back());
    }
}

void AcDbSpline::writeFit(AcDbDwgFiler& filer) const {
    filer.writeDouble(fitTolerance_);
    filer.writeVector3d(startTangent_);
    filer.writeVector3d(endTangent_);
    writeCounted(&filer, fitPoints_, [&](const AcGePoint3d& point) { filer.writePoint3d(point); });
}

void AcDbSpline::readFit(AcDbDwgFiler& filer) {
    filer.readDouble(&fitTolerance_);
    filer.readVector3d(&startTangent_);
    filer.readVector3d(&endTangent_);
    readCounted(&filer, fitPoints_, [&](AcGePoint3d& point) { filer.readPoint3d(&point); });
    if (filer.filerStatus() == Acad::eOk && !refit()) filer.setFilerStatus(Acad::eInvalidInput);
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
