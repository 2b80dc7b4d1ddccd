#include "host/model/entities/dimension/kinds.h"

#include <cmath>

#include "host/model/curves/filing_groups.h"
#include "host/model/entities/dimension/sketch.h"
#include "host/model/tables/filing.h"

using sg::model::AngleSector;
using sg::model::DimensionSketch;
using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbAlignedDimension, AcDbDimension, 0, 0, L"DIMENSION", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbRotatedDimension, AcDbAlignedDimension, 0, 0, L"DIMENSION", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDb2LineAngularDimension, AcDbDimension, 0, 0, L"DIMENSION", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDb3PointAngularDimension, AcDbDimension, 0, 0, L"DIMENSION", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbArcDimension, AcDb3PointAngularDimension, 0, 0, L"ARC_DIMENSION",
                        nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbRadialDimension, AcDbDimension, 0, 0, L"DIMENSION", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbDiametricDimension, AcDbDimension, 0, 0, L"DIMENSION", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbOrdinateDimension, AcDbDimension, 0, 0, L"DIMENSION", nullptr)

// ---- Aligned and rotated ------------------------------------------------------------------------

AcDbAlignedDimension::AcDbAlignedDimension() = default;
AcDbAlignedDimension::AcDbAlignedDimension(const AcGePoint3d& first, const AcGePoint3d& second,
                                           const AcGePoint3d& lineThrough) {
    put(k13, first);
    put(k14, second);
    put(kDefinition, lineThrough);
}
AcDbAlignedDimension::~AcDbAlignedDimension() = default;

double AcDbAlignedDimension::angle() const {
    const AcGeVector2d along =
        DimensionSketch::flat(*this, at(k14)) - DimensionSketch::flat(*this, at(k13));
    return along.angle();
}

double AcDbAlignedDimension::measurement() const {
    const AcGeVector2d apart =
        DimensionSketch::flat(*this, at(k14)) - DimensionSketch::flat(*this, at(k13));
    return std::abs(apart.dotProduct({std::cos(angle()), std::sin(angle())}));
}

std::span<const wchar_t* const> AcDbAlignedDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDbAlignedDimension"};
    return kMarkers;
}

void AcDbAlignedDimension::dxfOutOwn(AcDbDxfFiler* filer) const {
    filer->writePoint3d(13, at(k13));
    filer->writePoint3d(14, at(k14));
    if (kind() == Kind::Rotated) filer->writeDouble(50, rotation_);
    if (oblique_ != 0) filer->writeDouble(52, oblique_);
}

std::span<const AcDbDimension::Slot> AcDbAlignedDimension::grips() const {
    static constexpr Slot kGrips[] = {k13, k14, kDefinition, kDefinition, kText};
    return kGrips;
}

Acad::ErrorStatus AcDbAlignedDimension::subGetGripPoints(AcGePoint3dArray& points,
                                                         AcDbIntArray& osnapModes,
                                                         AcDbIntArray& geomIds) const {
    const int before = points.length();
    const Acad::ErrorStatus status = AcDbDimension::subGetGripPoints(points, osnapModes, geomIds);
    if (status != Acad::eOk) return status;
    const auto [first, second] =
        DimensionSketch::lineEnds(*this, at(k13), at(k14), at(kDefinition), angle(), oblique_);
    points[before + 2] = first;
    points[before + 3] = second;
    return Acad::eOk;
}

void AcDbAlignedDimension::draw(DimensionSketch& sketch) const {
    sketch.linear(at(k13), at(k14), at(kDefinition), angle(), oblique_);
}

AcDbRotatedDimension::AcDbRotatedDimension() = default;
AcDbRotatedDimension::AcDbRotatedDimension(double rotation, const AcGePoint3d& first,
                                           const AcGePoint3d& second,
                                           const AcGePoint3d& lineThrough)
    : AcDbAlignedDimension(first, second, lineThrough) {
    rotation_ = rotation;
}
AcDbRotatedDimension::~AcDbRotatedDimension() = default;

std::span<const wchar_t* const> AcDbRotatedDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDbAlignedDimension", L"AcDbRotatedDimension"};
    return kMarkers;
}

// ---- Angles -------------------------------------------------------------------------------------

AcDb2LineAngularDimension::AcDb2LineAngularDimension() = default;
AcDb2LineAngularDimension::AcDb2LineAngularDimension(const AcGePoint3d& firstStart,
                                                     const AcGePoint3d& firstEnd,
                                                     const AcGePoint3d& secondStart,
                                                     const AcGePoint3d& secondEnd,
                                                     const AcGePoint3d& arcThrough) {
    put(k13, firstStart);
    put(k14, firstEnd);
    put(k15, secondStart);
    put(kDefinition, secondEnd);
    put(k16, arcThrough);
}
AcDb2LineAngularDimension::~AcDb2LineAngularDimension() = default;

double AcDb2LineAngularDimension::measurement() const {
    const auto sector =
        AngleSector::betweenLines(*this, {at(k13), at(k14)}, {at(k15), at(kDefinition)}, at(k16));
    return sector ? sector->sweep : 0;
}

std::span<const wchar_t* const> AcDb2LineAngularDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDb2LineAngularDimension"};
    return kMarkers;
}

void AcDb2LineAngularDimension::dxfOutOwn(AcDbDxfFiler* filer) const {
    filer->writePoint3d(13, at(k13));
    filer->writePoint3d(14, at(k14));
    filer->writePoint3d(15, at(k15));
    filer->writePoint3d(16, at(k16));
}

std::span<const AcDbDimension::Slot> AcDb2LineAngularDimension::grips() const {
    static constexpr Slot kGrips[] = {k13, k14, k15, kDefinition, k16, kText};
    return kGrips;
}

void AcDb2LineAngularDimension::draw(DimensionSketch& sketch) const {
    const auto sector =
        AngleSector::betweenLines(*this, {at(k13), at(k14)}, {at(k15), at(kDefinition)}, at(k16));
    if (sector) sketch.angular(*sector);
}

AcDb3PointAngularDimension::AcDb3PointAngularDimension() = default;
AcDb3PointAngularDimension::AcDb3PointAngularDimension(const AcGePoint3d& center,
                                                       const AcGePoint3d& first,
                                                       const AcGePoint3d& second,
                                                       const AcGePoint3d& arcThrough) {
    put(k15, center);
    put(k13, first);
    put(k14, second);
    put(kDefinition, arcThrough);
}
AcDb3PointAngularDimension::~AcDb3PointAngularDimension() = default;

double AcDb3PointAngularDimension::measurement() const {
    const auto sector = AngleSector::atVertex(*this, at(k15), at(k13), at(k14), at(kDefinition));
    return sector ? sector->sweep : 0;
}

std::span<const wchar_t* const> AcDb3PointAngularDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDb3PointAngularDimension"};
    return kMarkers;
}

void AcDb3PointAngularDimension::dxfOutOwn(AcDbDxfFiler* filer) const {
    filer->writePoint3d(13, at(k13));
    filer->writePoint3d(14, at(k14));
    filer->writePoint3d(15, at(k15));
}

std::span<const AcDbDimension::Slot> AcDb3PointAngularDimension::grips() const {
    static constexpr Slot kGrips[] = {k15, k13, k14, kDefinition, kText};
    return kGrips;
}

void AcDb3PointAngularDimension::draw(DimensionSketch& sketch) const {
    const auto sector = AngleSector::atVertex(*this, at(k15), at(k13), at(k14), at(kDefinition));
    if (sector) sketch.angular(*sector);
}

AcDbArcDimension::AcDbArcDimension() = default;
AcDbArcDimension::AcDbArcDimension(const AcGePoint3d& center, const AcGePoint3d& first,
                                   const AcGePoint3d& second, const AcGePoint3d& arcThrough)
    : AcDb3PointAngularDimension(center, first, second, arcThrough) {}
AcDbArcDimension::~AcDbArcDimension() = default;

double AcDbArcDimension::measurement() const {
    return AcDb3PointAngularDimension::measurement() * at(k15).distanceTo(at(k13));
}

std::span<const wchar_t* const> AcDbArcDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDbArcDimension"};
    return kMarkers;
}

void AcDbArcDimension::dxfOutOwn(AcDbDxfFiler* filer) const {
    AcDb3PointAngularDimension::dxfOutOwn(filer);
    filer->writeInt16(70, partial_ ? 1 : 0);
    filer->writeDouble(40, startParameter_);
    filer->writeDouble(41, endParameter_);
    filer->writeInt16(71, hasLeader_ ? 1 : 0);
    filer->writePoint3d(16, at(k16));
    filer->writePoint3d(17, at(k17));
}

bool AcDbArcDimension::dxfInOwn(const FieldReader& field) {
    switch (field.code()) {
        case 70:
            partial_ = field.flag();
            return true;
        case 71:
            hasLeader_ = field.flag();
            return true;
        case 40:
            startParameter_ = field.real();
            return true;
        case 41:
            endParameter_ = field.real();
            return true;
        default:
            return AcDbDimension::dxfInOwn(field);
    }
}

// ---- Circles ------------------------------------------------------------------------------------

AcDbRadialDimension::AcDbRadialDimension() = default;
AcDbRadialDimension::AcDbRadialDimension(const AcGePoint3d& center, const AcGePoint3d& chord,
                                         double leaderLength) {
    put(kDefinition, center);
    put(k15, chord);
    leaderLength_ = leaderLength;
}
AcDbRadialDimension::~AcDbRadialDimension() = default;

std::span<const wchar_t* const> AcDbRadialDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDbRadialDimension"};
    return kMarkers;
}

void AcDbRadialDimension::dxfOutOwn(AcDbDxfFiler* filer) const {
    filer->writePoint3d(15, at(k15));
    filer->writeDouble(40, leaderLength_);
}

std::span<const AcDbDimension::Slot> AcDbRadialDimension::grips() const {
    static constexpr Slot kGrips[] = {kDefinition, k15, kText};
    return kGrips;
}

void AcDbRadialDimension::draw(DimensionSketch& sketch) const {
    sketch.radial(at(kDefinition), at(k15), leaderLength_);
}

AcDbDiametricDimension::AcDbDiametricDimension() = default;
AcDbDiametricDimension::AcDbDiametricDimension(const AcGePoint3d& chord,
                                               const AcGePoint3d& farChord, double leaderLength) {
    put(k15, chord);
    put(kDefinition, farChord);
    leaderLength_ = leaderLength;
}
AcDbDiametricDimension::~AcDbDiametricDimension() = default;

std::span<const wchar_t* const> AcDbDiametricDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDbDiametricDimension"};
    return kMarkers;
}

void AcDbDiametricDimension::dxfOutOwn(AcDbDxfFiler* filer) const {
    filer->writePoint3d(15, at(k15));
    filer->writeDouble(40, leaderLength_);
}

std::span<const AcDbDimension::Slot> AcDbDiametricDimension::grips() const {
    static constexpr Slot kGrips[] = {k15, kDefinition, kText};
    return kGrips;
}

void AcDbDiametricDimension::draw(DimensionSketch& sketch) const {
    sketch.diametric(at(k15), at(kDefinition), leaderLength_);
}

// ---- Ordinates ----------------------------------------------------------------------------------

AcDbOrdinateDimension::AcDbOrdinateDimension() = default;
AcDbOrdinateDimension::AcDbOrdinateDimension(bool xAxis, const AcGePoint3d& feature,
                                             const AcGePoint3d& leaderEnd,
                                             const AcGePoint3d& origin) {
    put(kDefinition, origin);
    put(k13, feature);
    put(k14, leaderEnd);
    xType_ = xAxis;
}
AcDbOrdinateDimension::~AcDbOrdinateDimension() = default;

double AcDbOrdinateDimension::measurement() const {
    const AcGeVector2d apart =
        DimensionSketch::flat(*this, at(k13)) - DimensionSketch::flat(*this, at(kDefinition));
    const AcGeVector2d along = DimensionSketch::horizontal(*this);
    return std::abs(apart.dotProduct(xType_ ? along : along.perpVector()));
}

std::span<const wchar_t* const> AcDbOrdinateDimension::markers() const {
    static constexpr const wchar_t* kMarkers[] = {L"AcDbOrdinateDimension"};
    return kMarkers;
}

void AcDbOrdinateDimension::dxfOutOwn(AcDbDxfFiler* filer) const {
    filer->writePoint3d(13, at(k13));
    filer->writePoint3d(14, at(k14));
}

std::span<const AcDbDimension::Slot> AcDbOrdinateDimension::grips() const {
    static constexpr Slot kGrips[] = {k13, k14, kDefinition, kText};
    return kGrips;
}

void AcDbOrdinateDimension::draw(DimensionSketch& sketch) const {
    sketch.ordinate(at(k13), at(k14), xType_);
}
