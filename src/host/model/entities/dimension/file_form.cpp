#include "host/model/core/dwg_form.h"
#include "host/model/entities/dimension/kinds.h"

// Dimensions as DWG files have them.

using namespace sg::model;

namespace {

enum DimensionBit : uint8_t { kTextAtDefault = 1, kBlockIsOwn = 2 };
enum OrdinateBit : uint8_t { kAlongX = 1 };

constexpr uint8_t kVersion = 0;  // of what the class files, from release 2010 on

}  // namespace

// The points that a kind has, in their order. One in the plane of a two-line angle stands ahead.
std::span<const AcDbDimension::Slot> AcDbDimension::filedPoints() const {
    static constexpr Slot kLinear[] = {k13, k14, kDefinition};
    static constexpr Slot kTwoLines[] = {k13, k14, k15, kDefinition};
    static constexpr Slot kAngle[] = {kDefinition, k13, k14, k15};
    static constexpr Slot kRadius[] = {kDefinition, k15};
    static constexpr Slot kDiameter[] = {k15, kDefinition};
    static constexpr Slot kOrdinate[] = {kDefinition, k13, k14};
    switch (kind()) {
        case Kind::Rotated:
        case Kind::Aligned:
            return kLinear;
        case Kind::Angular2Line:
            return kTwoLines;
        case Kind::Angular3Point:
        case Kind::Arc:
            return kAngle;
        case Kind::Radial:
            return kRadius;
        case Kind::Diametric:
            return kDiameter;
        case Kind::Ordinate:
            return kOrdinate;
    }
    return {};
}

Acad::ErrorStatus AcDbDimension::writeFile(AcDbDwgFiler& filer) const {
    const AcGePoint3d text = AcGeMatrix3d::worldToPlane(normal_) * points_[kText];
    const int bits = (textPlaced_ ? 0 : kTextAtDefault) | (blockIsOwn_ ? kBlockIsOwn : 0);
    if (!isBefore(&filer, AcDb::kDHL_1024)) filer.writeUInt8(kVersion);
    filer.writeVector3d(normal_);
    filer.writePoint2d({text.x, text.y});
    filer.writeDouble(text.z);
    filer.writeUInt8(static_cast<uint8_t>(bits));
    filer.writeString(text_);
    filer.writeDouble(textRotation_);
    filer.writeDouble(horizontal_);
    filer.writeScale3d(AcGeScale3d(1, 1, 1));
    filer.writeDouble(blockRotation_);
    filer.writeInt16(static_cast<int16_t>(attachment_));
    filer.writeInt16(static_cast<int16_t>(lineSpacingStyle_));
    filer.writeDouble(lineSpacing_);
    filer.writeDouble(measurement());
    if (!isBefore(&filer, AcDb::kDHL_1021)) {
        for (const bool flag : {false, flipFirst_, flipSecond_})
            filer.writeBool(flag);
    }
    filer.writePoint2d({blockPosition_.x, blockPosition_.y});
    writeFileOwn(filer);
    filer.writeHardPointerId(style_);
    return filer.writeHardPointerId(block_);
}

Acad::ErrorStatus AcDbDimension::readFile(AcDbDwgFiler& filer) {
    uint8_t byte = 0;
    AcGePoint2d text;
    AcGePoint2d position;
    double elevation = 0;
    AcGeScale3d scale;
    if (!isBefore(&filer, AcDb::kDHL_1024)) filer.readUInt8(&byte);
    filer.readVector3d(&normal_);
    filer.readPoint2d(&text);
    filer.readDouble(&elevation);
    filer.readUInt8(&byte);
    textPlaced_ = (byte & kTextAtDefault) == 0;
    blockIsOwn_ = (byte & kBlockIsOwn) != 0;
    points_[kText] = AcGeMatrix3d::planeToWorld(normal_) * AcGePoint3d(text.x, text.y, elevation);
    filer.readString(text_);
    filer.readDouble(&textRotation_);
    filer.readDouble(&horizontal_);
    filer.readScale3d(&scale);
    filer.readDouble(&blockRotation_);
    if (!isBefore(&filer, AcDb::kDHL_1015)) {
        double measured = 0;
        readInt16As(&filer, attachment_);
        readInt16As(&filer, lineSpacingStyle_);
        filer.readDouble(&lineSpacing_);
        filer.readDouble(&measured);
    }
    if (!isBefore(&filer, AcDb::kDHL_1021)) {
        bool unused = false;
        for (bool* const flag : {&unused, &flipFirst_, &flipSecond_})
            filer.readBool(flag);
    }
    filer.readPoint2d(&position);
    blockPosition_ = AcGePoint3d(position.x, position.y, elevation);
    readFileOwn(filer);
    filer.readHardPointerId(&style_);
    return filer.readHardPointerId(&block_);
}

void AcDbDimension::writeFileOwn(AcDbDwgFiler& filer) const {
    if (kind() == Kind::Angular2Line) filer.writePoint2d({points_[k16].x, points_[k16].y});
    for (const Slot slot : filedPoints())
        filer.writePoint3d(points_[slot]);
    switch (kind()) {
        case Kind::Rotated:
            filer.writeDouble(oblique_);
            filer.writeDouble(rotation_);
            break;
        case Kind::Aligned:
            filer.writeDouble(oblique_);
            break;
        case Kind::Radial:
        case Kind::Diametric:
            filer.writeDouble(leaderLength_);
            break;
        case Kind::Ordinate:
            filer.writeUInt8(xType_ ? kAlongX : 0);
            break;
        default:
            break;
    }
}

void AcDbDimension::readFileOwn(AcDbDwgFiler& filer) {
    if (kind() == Kind::Angular2Line) {
        AcGePoint2d arc;
        filer.readPoint2d(&arc);
        points_[k16] = AcGePoint3d(arc.x, arc.y, blockPosition_.z);
    }
    for (const Slot slot : filedPoints())
        filer.readPoint3d(&points_[slot]);
    uint8_t bits = 0;
    switch (kind()) {
        case Kind::Rotated:
            filer.readDouble(&oblique_);
            filer.readDouble(&rotation_);
            break;
        case Kind::Aligned:
            filer.readDouble(&oblique_);
            break;
        case Kind::Radial:
        case Kind::Diametric:
            filer.readDouble(&leaderLength_);
            break;
        case Kind::Ordinate:
            filer.readUInt8(&bits);
            xType_ = (bits & kAlongX) != 0;
            break;
        default:
            break;
    }
}

// ---- Lengths of arcs ----------------------------------------------------------------------------

Acad::ErrorStatus AcDbArcDimension::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbDimension::dwgOutFields(filer);
    filer->writeBool(partial_);
    filer->writeDouble(startParameter_);
    filer->writeDouble(endParameter_);
    filer->writeBool(hasLeader_);
    if (filer->dwgForm() == nullptr) return filer->filerStatus();
    filer->writePoint3d(at(k16));
    return filer->writePoint3d(at(k17));
}

Acad::ErrorStatus AcDbArcDimension::dwgInFields(AcDbDwgFiler* filer) {
    AcDbDimension::dwgInFields(filer);
    filer->readBool(&partial_);
    filer->readDouble(&startParameter_);
    filer->readDouble(&endParameter_);
    filer->readBool(&hasLeader_);
    if (filer->dwgForm() == nullptr) return filer->filerStatus();
    AcGePoint3d first, second;
    filer->readPoint3d(&first);
    filer->readPoint3d(&second);
    put(k16, first);
    put(k17, second);
    return filer->filerStatus();
}
