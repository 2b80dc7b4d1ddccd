#include <algorithm>

#include "host/model/curves/filing_groups.h"
#include "host/model/curves/planar.h"
#include "host/model/tables/filing.h"
#include "platform/db/polyline.h"

using namespace sg::model;

namespace {
enum PolylineFlag { kClosedFlag = 1, kPlinegenFlag = 128 };  // of group 70
}

Acad::ErrorStatus AcDbPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    filer->writeBool(closed_);
    filer->writeBool(plinegen_);
    filer->writeDouble(elevation_);
    filer->writeDouble(thickness_);
    filer->writeVector3d(normal_);
    filer->writeUInt32(numVerts());
    for (const BulgeVertex& vertex : vertices_) {
        filer->writePoint2d(vertex.point);
        filer->writeDouble(vertex.bulge);
        filer->writeDouble(vertex.startWidth);
        filer->writeDouble(vertex.endWidth);
    }
    filer->writeBool(!identifiers_.empty());
    for (const int32_t identifier : identifiers_)
        filer->writeInt32(identifier);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    filer->readBool(&closed_);
    filer->readBool(&plinegen_);
    filer->readDouble(&elevation_);
    filer->readDouble(&thickness_);
    filer->readVector3d(&normal_);
    uint32_t count = 0;
    filer->readUInt32(&count);
    vertices_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        BulgeVertex& vertex = vertices_.emplace_back();
        filer->readPoint2d(&vertex.point);
        filer->readDouble(&vertex.bulge);
        filer->readDouble(&vertex.startWidth);
        filer->readDouble(&vertex.endWidth);
    }
    bool identified = false;
    filer->readBool(&identified);
    identifiers_.assign(identified ? vertices_.size() : 0, 0);
    for (int32_t& identifier : identifiers_)
        filer->readInt32(&identifier);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    const bool all = showsDefaults(filer);
    double width = 0;
    const bool constant = getConstantWidth(width) == Acad::eOk;
    const int flags = (closed_ ? kClosedFlag : 0) | (plinegen_ ? kPlinegenFlag : 0);
    filer->writeString(100, L"AcDbPolyline");
    filer->writeInt32(90, static_cast<int32_t>(numVerts()));
    filer->writeInt16(70, static_cast<int16_t>(flags));
    if (constant) filer->writeDouble(43, width);
    if (all || elevation_ != 0) filer->writeDouble(38, elevation_);
    if (all || thickness_ != 0) filer->writeDouble(39, thickness_);
    for (size_t i = 0; i < vertices_.size(); ++i) {
        const BulgeVertex& vertex = vertices_[i];
        const int32_t identifier = identifiers_.empty() ? 0 : identifiers_[i];
        filer->writePoint2d(10, vertex.point);
        if (all || !constant) {
            filer->writeDouble(40, vertex.startWidth);
            filer->writeDouble(41, vertex.endWidth);
        }
        if (all || vertex.bulge != 0) filer->writeDouble(42, vertex.bulge);
        if (all || identifier != 0) filer->writeInt32(91, identifier);
    }
    writeNormal(filer, normal_);
    return filer->filerStatus();
}

// The groups behind a point are of its vertex. Points take the place of all vertices that were
// there; a constant width goes before those that the vertices tell.
Acad::ErrorStatus AcDbPolyline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbPolyline")) return status;
    std::vector<BulgeVertex> vertices;
    std::vector<int32_t> identifiers;
    bool hasConstant = false;
    double constant = 0;
    FieldReader fields(filer);
    while (fields.next()) {
        BulgeVertex unused;
        int32_t noIdentifier = 0;
        BulgeVertex& vertex = vertices.empty() ? unused : vertices.back();
        int32_t& identifier = identifiers.empty() ? noIdentifier : identifiers.back();
        switch (fields.code()) {
            case 10:
                vertices.emplace_back().point = fields.point2d();
                identifiers.push_back(0);
                break;
            case 38:
                elevation_ = fields.real();
                break;
            case 39:
                thickness_ = fields.real();
                break;
            case 40:
                vertex.startWidth = std::max(fields.real(), 0.0);
                break;
            case 41:
                vertex.endWidth = std::max(fields.real(), 0.0);
                break;
            case 42:
                vertex.bulge = fields.real();
                break;
            case 43:
                hasConstant = true;
                constant = fields.real();
                break;
            case 70:
                closed_ = (fields.integer() & kClosedFlag) != 0;
                plinegen_ = (fields.integer() & kPlinegenFlag) != 0;
                break;
            case 91:
                identifier = fields.integer();
                break;
            case 210:
                setUnit(normal_, fields.vector());
                break;
            default:
                break;
        }
    }
    if (!vertices.empty()) {
        vertices_ = std::move(vertices);
        const bool plain = std::all_of(identifiers.begin(), identifiers.end(),
                                       [](int32_t identifier) { return identifier == 0; });
        identifiers_ = plain ? std::vector<int32_t>() : std::move(identifiers);
    }
    if (hasConstant) setConstantWidth(std::max(constant, 0.0));
    return filer->filerStatus();
}
