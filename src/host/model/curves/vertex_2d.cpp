#include <algorithm>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/tables/filing.h"
#include "platform/db/polyline_2d.h"

using namespace sg::model;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbVertex, AcDbEntity)
ACRX_DXF_DEFINE_MEMBERS(AcDb2dVertex, AcDbVertex, 0, 0, L"VERTEX", L"")

AcDbVertex::AcDbVertex() = default;
AcDbVertex::~AcDbVertex() = default;

Acad::ErrorStatus AcDbVertex::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status == Acad::eOk) static_cast<void>(filer->atSubclassData(L"AcDbVertex"));
    return status;
}

Acad::ErrorStatus AcDbVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    if (status == Acad::eOk) filer->writeString(100, L"AcDbVertex");
    return status;
}

AcDb2dVertex::AcDb2dVertex() = default;
AcDb2dVertex::AcDb2dVertex(const AcGePoint3d& position, double bulge, double startWidth,
                           double endWidth, double tangent)
    : position_(position),
      bulge_(bulge),
      startWidth_(startWidth),
      endWidth_(endWidth),
      tangent_(tangent) {}
AcDb2dVertex::~AcDb2dVertex() = default;

namespace {

enum VertexFlag { kFitted = 1, kTangentUsed = 2, kSplineFitted = 8, kFrame = 16 };  // of group 70

int flagOf(AcDb::Vertex2dType type) {
    switch (type) {
        case AcDb::k2dCurveFitVertex:
            return kFitted;
        case AcDb::k2dSplineFitVertex:
            return kSplineFitted;
        case AcDb::k2dSplineCtlVertex:
            return kFrame;
        case AcDb::k2dVertex:
            break;
    }
    return 0;
}

AcDb::Vertex2dType typeOf(int flags) {
    if ((flags & kFrame) != 0) return AcDb::k2dSplineCtlVertex;
    if ((flags & kSplineFitted) != 0) return AcDb::k2dSplineFitVertex;
    return (flags & kFitted) != 0 ? AcDb::k2dCurveFitVertex : AcDb::k2dVertex;
}

}  // namespace

Acad::ErrorStatus AcDb2dVertex::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeUInt8(static_cast<uint8_t>(flagOf(type_) | (tangentUsed_ ? kTangentUsed : 0)));
    filer->writePoint3d(position_);
    filer->writeDouble(startWidth_);
    filer->writeDouble(endWidth_);
    filer->writeDouble(bulge_);
    if (!isBefore(filer, AcDb::kDHL_1024)) filer->writeInt32(identifier_);
    return filer->writeDouble(tangent_);
}

Acad::ErrorStatus AcDb2dVertex::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    uint8_t flags = 0;
    filer->readUInt8(&flags);
    type_ = typeOf(flags);
    tangentUsed_ = (flags & kTangentUsed) != 0;
    filer->readPoint3d(&position_);
    filer->readDouble(&startWidth_);
    // A width below 0 in a file stands for both.
    if (startWidth_ < 0 && filer->dwgForm() != nullptr) {
        startWidth_ = endWidth_ = -startWidth_;
    } else {
        filer->readDouble(&endWidth_);
    }
    filer->readDouble(&bulge_);
    identifier_ = 0;
    if (!isBefore(filer, AcDb::kDHL_1024)) filer->readInt32(&identifier_);
    return filer->readDouble(&tangent_);
}

Acad::ErrorStatus AcDb2dVertex::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDb2dVertex")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 10:
                position_ = fields.point();
                break;
            case 40:
                startWidth_ = std::max(fields.real(), 0.0);
                break;
            case 41:
                endWidth_ = std::max(fields.real(), 0.0);
                break;
            case 42:
                bulge_ = fields.real();
                break;
            case 50:
                tangent_ = fields.real();
                break;
            case 70:
                type_ = typeOf(fields.integer());
                tangentUsed_ = (fields.integer() & kTangentUsed) != 0;
                break;
            case 91:
                identifier_ = fields.integer();
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dVertex::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbVertex::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    const int flags = flagOf(type_) | (tangentUsed_ ? kTangentUsed : 0);
    filer->writeString(100, L"AcDb2dVertex");
    filer->writePoint3d(10, position_);
    if (all || startWidth_ != 0 || endWidth_ != 0) {
        filer->writeDouble(40, startWidth_);
        filer->writeDouble(41, endWidth_);
    }
    if (all || bulge_ != 0) filer->writeDouble(42, bulge_);
    if (all || identifier_ != 0) filer->writeInt32(91, identifier_);
    if (all || flags != 0) filer->writeInt16(70, static_cast<int16_t>(flags));
    if (all || tangentUsed_) filer->writeDouble(50, tangent_);
    if (all) {
        for (const int code : {71, 72, 73, 74})
            filer->writeInt16(code, 0);
    }
    return filer->filerStatus();
}
