#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/text.h"

// Filing of single-line texts. Drawing files have points in the coordinates of the text's plane.

using sg::model::FieldReader;
using sg::model::showsDefaults;

Acad::ErrorStatus AcDbText::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    if (sg::model::DwgForm* const form = filer->dwgForm()) return writeFile(*filer, *form);
    filer->writePoint3d(position_);
    filer->writePoint3d(alignmentPoint_);
    filer->writeVector3d(normal_);
    filer->writeDouble(thickness_);
    filer->writeDouble(oblique_);
    filer->writeDouble(rotation_);
    filer->writeDouble(height_);
    filer->writeDouble(widthFactor_);
    filer->writeString(text_);
    filer->writeHardPointerId(style_);
    filer->writeInt16(static_cast<int16_t>(horizontalMode_));
    filer->writeInt16(static_cast<int16_t>(verticalMode_));
    return filer->writeUInt8(generation_);
}

Acad::ErrorStatus AcDbText::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    if (sg::model::DwgForm* const form = filer->dwgForm()) return readFile(*filer, *form);
    int16_t horizontal = 0;
    int16_t vertical = 0;
    filer->readPoint3d(&position_);
    filer->readPoint3d(&alignmentPoint_);
    filer->readVector3d(&normal_);
    filer->readDouble(&thickness_);
    filer->readDouble(&oblique_);
    filer->readDouble(&rotation_);
    filer->readDouble(&height_);
    filer->readDouble(&widthFactor_);
    filer->readString(text_);
    filer->readHardPointerId(&style_);
    filer->readInt16(&horizontal);
    filer->readInt16(&vertical);
    filer->readUInt8(&generation_);
    horizontalMode_ = static_cast<AcDb::TextHorzMode>(horizontal);
    verticalMode_ = static_cast<AcDb::TextVertMode>(vertical);
    return filer->filerStatus();
}

// ---- In files -----------------------------------------------------------------------------------

namespace {

// What a DWG object does without, being what it mostly is.
enum Absent : uint8_t {
    kNoElevation = 1,
    kNoAlignment = 2,
    kNoOblique = 4,
    kNoRotation = 8,
    kNoWidth = 16,
    kNoGeneration = 32,
    kNoHorizontal = 64,
    kNoVertical = 128,
};

// A value that is there unless the flags say that it is not.
class Optional {
  public:
    Optional(sg::model::DwgForm& form, AcDbDwgFiler& filer, int absent)
        : form_(form), filer_(filer), absent_(absent) {}

    bool has(Absent flag) const { return (absent_ & flag) == 0; }
    void write(Absent flag, double value) const {
        if (has(flag)) form_.writeRawDouble(value);
    }
    void write(Absent flag, int value) const {
        if (has(flag)) filer_.writeInt16(static_cast<int16_t>(value));
    }
    void read(Absent flag, double& value, double otherwise) const {
        value = otherwise;
        if (has(flag)) form_.readRawDouble(&value);
    }
    int read(Absent flag) const {
        int16_t value = 0;
        if (has(flag)) filer_.readInt16(&value);
        return value;
    }

  private:
    sg::model::DwgForm& form_;
    AcDbDwgFiler& filer_;
    int absent_;
};

}  // namespace

Acad::ErrorStatus AcDbText::writeFile(AcDbDwgFiler& filer, sg::model::DwgForm& form) const {
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    const AcGePoint3d position = toPlane * position_;
    const AcGePoint3d alignment = toPlane * alignmentPoint_;
    int absent = 0;
    if (position.z == 0) absent |= kNoElevation;
    if (isDefaultAlignment()) absent |= kNoAlignment;
    if (oblique_ == 0) absent |= kNoOblique;
    if (rotation_ == 0) absent |= kNoRotation;
    if (widthFactor_ == 1) absent |= kNoWidth;
    if (generation_ == 0) absent |= kNoGeneration;
    if (horizontalMode_ == AcDb::kTextLeft) absent |= kNoHorizontal;
    if (verticalMode_ == AcDb::kTextBase) absent |= kNoVertical;
    const Optional optional(form, filer, absent);
    filer.writeUInt8(static_cast<uint8_t>(absent));
    optional.write(kNoElevation, position.z);
    filer.writePoint2d({position.x, position.y});
    if (optional.has(kNoAlignment)) {
        form.writeNear(alignment.x, position.x);
        form.writeNear(alignment.y, position.y);
    }
    form.writeExtrusion(normal_);
    form.writeThickness(thickness_);
    optional.write(kNoOblique, oblique_);
    optional.write(kNoRotation, rotation_);
    form.writeRawDouble(height_);
    optional.write(kNoWidth, widthFactor_);
    filer.writeString(text_);
    optional.write(kNoGeneration, generation_);
    optional.write(kNoHorizontal, horizontalMode_);
    optional.write(kNoVertical, verticalMode_);
    return filer.writeHardPointerId(style_);
}

// Before release 2000 everything is there.
Acad::ErrorStatus AcDbText::readOldFile(AcDbDwgFiler& filer) {
    double elevation = 0;
    AcGePoint2d position, alignment;
    int16_t generation = 0;
    int16_t horizontal = 0;
    int16_t vertical = 0;
    filer.readDouble(&elevation);
    filer.readPoint2d(&position);
    filer.readPoint2d(&alignment);
    filer.readVector3d(&normal_);
    for (double* const value : {&thickness_, &oblique_, &rotation_, &height_, &widthFactor_})
        filer.readDouble(value);
    filer.readString(text_);
    filer.readInt16(&generation);
    filer.readInt16(&horizontal);
    filer.readInt16(&vertical);
    generation_ = static_cast<uint8_t>(generation);
    takeHorizontalMode(horizontal);
    takeVerticalMode(vertical);
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
    position_ = toWorld * AcGePoint3d(position.x, position.y, elevation);
    alignmentPoint_ = isDefaultAlignment()
                          ? AcGePoint3d()
                          : toWorld * AcGePoint3d(alignment.x, alignment.y, elevation);
    return filer.readHardPointerId(&style_);
}

Acad::ErrorStatus AcDbText::readFile(AcDbDwgFiler& filer, sg::model::DwgForm& form) {
    if (sg::model::isBefore(&filer, AcDb::kDHL_1015)) return readOldFile(filer);
    uint8_t absent = 0;
    filer.readUInt8(&absent);
    const Optional optional(form, filer, absent);
    double elevation = 0;
    AcGePoint2d position;
    optional.read(kNoElevation, elevation, 0);
    filer.readPoint2d(&position);
    AcGePoint3d alignment(0, 0, elevation);
    if (optional.has(kNoAlignment)) {
        form.readNear(&alignment.x, position.x);
        form.readNear(&alignment.y, position.y);
    }
    form.readExtrusion(&normal_);
    form.readThickness(&thickness_);
    optional.read(kNoOblique, oblique_, 0);
    optional.read(kNoRotation, rotation_, 0);
    form.readRawDouble(&height_);
    optional.read(kNoWidth, widthFactor_, 1);
    filer.readString(text_);
    generation_ = static_cast<uint8_t>(optional.read(kNoGeneration));
    horizontalMode_ = AcDb::kTextLeft;
    verticalMode_ = AcDb::kTextBase;
    takeHorizontalMode(optional.read(kNoHorizontal));
    takeVerticalMode(optional.read(kNoVertical));
    filer.readHardPointerId(&style_);
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
    position_ = toWorld * AcGePoint3d(position.x, position.y, elevation);
    alignmentPoint_ = optional.has(kNoAlignment) ? toWorld * alignment : AcGePoint3d();
    return filer.filerStatus();
}

// ---- As groups ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbText::dxfOutText(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    const bool all = showsDefaults(filer);
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    filer->writeString(100, L"AcDbText");
    sg::model::writeThickness(filer, thickness_);
    filer->writePoint3d(10, toPlane * position_);
    filer->writeDouble(40, height_);
    filer->writeString(1, text_);
    if (all || rotation_ != 0) filer->writeDouble(50, rotation_);
    if (all || widthFactor_ != 1) filer->writeDouble(41, widthFactor_);
    if (all || oblique_ != 0) filer->writeDouble(51, oblique_);
    sg::model::writeNameOf(filer, 7, style_, L"Standard");
    if (all || generation_ != 0) filer->writeInt16(71, generation_);
    if (all || horizontalMode_ != AcDb::kTextLeft) {
        filer->writeInt16(72, static_cast<int16_t>(horizontalMode_));
    }
    if (all || !isDefaultAlignment()) {
        filer->writePoint3d(11, isDefaultAlignment() ? AcGePoint3d() : toPlane * alignmentPoint_);
    }
    sg::model::writeNormal(filer, normal_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbText::dxfOutFields(AcDbDxfFiler* filer) const {
    dxfOutText(filer);
    filer->writeString(100, L"AcDbText");
    if (showsDefaults(filer) || verticalMode_ != AcDb::kTextBase) {
        filer->writeInt16(73, static_cast<int16_t>(verticalMode_));
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbText::dxfInText(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbText")) return Acad::eBadDxfSequence;
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal_);
    AcGePoint3d position = toPlane * position_;
    AcGePoint3d alignment = toPlane * alignmentPoint_;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 39:
                thickness_ = fields.real();
                break;
            case 10:
                position = fields.point();
                break;
            case 11:
                alignment = fields.point();
                break;
            case 40:
                if (!(fields.real() > 0))
                    return filer->setError(Acad::eOutOfRange, L"a text's height");
                height_ = fields.real();
                break;
            case 1:
                text_ = fields.text();
                break;
            case 50:
                rotation_ = fields.real();
                break;
            case 41:
                widthFactor_ = fields.real() > 0 ? fields.real() : 1;
                break;
            case 51:
                oblique_ = fields.real();
                break;
            case 7:
                style_ = sg::model::recordNamed(filer->database(), sg::model::NamedIn::textStyles,
                                                fields.text());
                if (style_.isNull()) {
                    return filer->setError(Acad::eKeyNotFound, L"text style " + fields.text());
                }
                break;
            case 71:
                generation_ = static_cast<uint8_t>(fields.integer());
                break;
            case 72:
                takeHorizontalMode(fields.integer());
                break;
            case 210:
                if (!fields.vector().isZeroLength()) normal_ = fields.vector().normal();
                break;
            default:
                break;
        }
    }
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
    position_ = toWorld * position;
    alignmentPoint_ = toWorld * alignment;
    return filer->filerStatus();
}

void AcDbText::takeHorizontalMode(int mode) {
    if (mode >= AcDb::kTextLeft && mode <= AcDb::kTextFit) {
        horizontalMode_ = static_cast<AcDb::TextHorzMode>(mode);
    }
}

void AcDbText::takeVerticalMode(int mode) {
    if (mode >= AcDb::kTextBase && mode <= AcDb::kTextTop) {
        verticalMode_ = static_cast<AcDb::TextVertMode>(mode);
    }
}

Acad::ErrorStatus AcDbText::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = dxfInText(filer);
    if (status != Acad::eOk) return status;
    if (filer->atSubclassData(L"AcDbText")) {
        FieldReader fields(filer);
        while (fields.next()) {
            if (fields.code() == 73) takeVerticalMode(fields.integer());
        }
    }
    // Programs give the aligned point and leave the start to be found.
    if (filer->filerType() == AcDb::kBagFiler) adjustAlignment(filer->database());
    return filer->filerStatus();
}
