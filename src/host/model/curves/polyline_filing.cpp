#include <algorithm>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/planar.h"
#include "host/model/tables/filing.h"
#include "platform/db/polyline.h"

using namespace sg::model;

namespace {

enum PolylineFlag { kClosedFlag = 1, kPlinegenFlag = 128 };  // of group 70

// What a DWG object has of the polyline.
enum Present : int16_t {
    kNormal = 1,
    kThickness = 2,
    kConstantWidth = 4,
    kElevation = 8,
    kBulges = 16,
    kWidths = 32,
    kPlinegen = 256,
    kClosed = 512,
    kIdentifiers = 1024,  // from release 2010 on
};

// Filers in memory get everything, so that nothing comes back otherwise than it was.
int presentOf(AcDbDwgFiler* filer, const AcDbPolyline& line, bool hasIdentifiers) {
    int present = (line.hasPlinegen() ? kPlinegen : 0) | (line.isClosed() ? kClosed : 0);
    if (hasIdentifiers && !isBefore(filer, AcDb::kDHL_1024)) present |= kIdentifiers;
    if (filer->dwgForm() == nullptr) {
        return present | kNormal | kThickness | kElevation | kBulges | kWidths;
    }
    if (line.normal() != AcGeVector3d::kZAxis) present |= kNormal;
    if (line.thickness() != 0) present |= kThickness;
    if (line.elevation() != 0) present |= kElevation;
    if (line.hasBulges()) present |= kBulges;
    double width = 0;
    const bool isConstant = line.getConstantWidth(width) == Acad::eOk;
    if (isConstant && width != 0) present |= kConstantWidth;
    if (!isConstant && line.hasWidth()) present |= kWidths;
    return present;
}

// From release 2000 on a file has each point near to the one before.
void writePoints(AcDbDwgFiler& filer, const std::vector<BulgeVertex>& vertices) {
    DwgForm* const form = isBefore(&filer, AcDb::kDHL_1015) ? nullptr : filer.dwgForm();
    for (size_t i = 0; i < vertices.size(); ++i) {
        const AcGePoint2d& point = vertices[i].point;
        if (form == nullptr || i == 0) {
            filer.writePoint2d(point);
            continue;
        }
        form->writeNear(point.x, vertices[i - 1].point.x);
        form->writeNear(point.y, vertices[i - 1].point.y);
    }
}

void readPoints(AcDbDwgFiler& filer, uint32_t count, std::vector<BulgeVertex>& vertices) {
    DwgForm* const form = isBefore(&filer, AcDb::kDHL_1015) ? nullptr : filer.dwgForm();
    vertices.clear();
    AcGePoint2d point;
    for (uint32_t i = 0; i < count && filer.filerStatus() == Acad::eOk; ++i) {
        if (form == nullptr || i == 0) {
            filer.readPoint2d(&point);
        } else {
            form->readNear(&point.x, point.x);
            form->readNear(&point.y, point.y);
        }
        vertices.emplace_back().point = point;
    }
}

// A list with its own length, of which there may be as many as there are vertices.
uint32_t readLength(AcDbDwgFiler& filer, int present, Present part) {
    uint32_t length = 0;
    if ((present & part) != 0) filer.readUInt32(&length);
    return length;
}

// Items beyond the last vertex are read and left.
template <class Item, class Read>
void readInto(AcDbDwgFiler& filer, uint32_t length, std::vector<Item>& items, const Read& read) {
    Item unused{};
    for (uint32_t i = 0; i < length && filer.filerStatus() == Acad::eOk; ++i)
        read(i < items.size() ? items[i] : unused);
}

}  // namespace

Acad::ErrorStatus AcDbPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    if (status != Acad::eOk) return status;
    const int present = presentOf(filer, *this, !identifiers_.empty());
    filer->writeInt16(static_cast<int16_t>(present));
    if ((present & kConstantWidth) != 0) filer->writeDouble(vertices_.front().startWidth);
    if ((present & kElevation) != 0) filer->writeDouble(elevation_);
    if ((present & kThickness) != 0) filer->writeDouble(thickness_);
    if ((present & kNormal) != 0) filer->writeVector3d(normal_);
    filer->writeUInt32(numVerts());
    for (const Present list : {kBulges, kIdentifiers, kWidths}) {
        if ((present & list) != 0) filer->writeUInt32(numVerts());
    }
    writePoints(*filer, vertices_);
    if ((present & kBulges) != 0) {
        for (const BulgeVertex& vertex : vertices_)
            filer->writeDouble(vertex.bulge);
    }
    if ((present & kIdentifiers) != 0) {
        for (const int32_t identifier : identifiers_)
            filer->writeInt32(identifier);
    }
    if ((present & kWidths) == 0) return filer->filerStatus();
    for (const BulgeVertex& vertex : vertices_) {
        filer->writeDouble(vertex.startWidth);
        filer->writeDouble(vertex.endWidth);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    int16_t present = 0;
    double width = 0;
    uint32_t count = 0;
    elevation_ = thickness_ = 0;
    normal_ = AcGeVector3d::kZAxis;
    filer->readInt16(&present);
    closed_ = (present & kClosed) != 0;
    plinegen_ = (present & kPlinegen) != 0;
    if ((present & kConstantWidth) != 0) filer->readDouble(&width);
    if ((present & kElevation) != 0) filer->readDouble(&elevation_);
    if ((present & kThickness) != 0) filer->readDouble(&thickness_);
    if ((present & kNormal) != 0) filer->readVector3d(&normal_);
    filer->readUInt32(&count);
    const uint32_t bulges = readLength(*filer, present, kBulges);
    const uint32_t identifiers = readLength(*filer, present, kIdentifiers);
    const uint32_t widths = readLength(*filer, present, kWidths);
    readPoints(*filer, count, vertices_);
    readInto(*filer, bulges, vertices_,
             [&](BulgeVertex& vertex) { filer->readDouble(&vertex.bulge); });
    identifiers_.assign((present & kIdentifiers) != 0 ? vertices_.size() : 0, 0);
    readInto(*filer, identifiers, identifiers_,
             [&](int32_t& identifier) { filer->readInt32(&identifier); });
    if ((present & kWidths) == 0) {
        for (BulgeVertex& vertex : vertices_)
            vertex.startWidth = vertex.endWidth = width;
    }
    readInto(*filer, widths, vertices_, [&](BulgeVertex& vertex) {
        filer->readDouble(&vertex.startWidth);
        filer->readDouble(&vertex.endWidth);
    });
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
