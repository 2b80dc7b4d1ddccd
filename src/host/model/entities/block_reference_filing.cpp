#include "host/model/core/dwg_form.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/block_reference.h"

// Filing of block references, and their arrays.

using sg::model::FieldReader;
using sg::model::showsDefaults;

ACRX_DXF_DEFINE_MEMBERS(AcDbMInsertBlock, AcDbBlockReference, 0, 0, L"INSERT", nullptr)

namespace {

// How a DWG object has the scale.
enum ScaleForm : uint8_t { kAllDiffer = 0, kFirstIsOne = 1, kAllAlike = 2, kAllAreOne = 3 };

uint8_t scaleFormOf(const AcGeScale3d& scale) {
    if (scale.sx == scale.sy && scale.sx == scale.sz) return scale.sx == 1 ? kAllAreOne : kAllAlike;
    return scale.sx == 1 ? kFirstIsOne : kAllDiffer;
}

void writeScale(AcDbDwgFiler& filer, const AcGeScale3d& scale) {
    sg::model::DwgForm* const form = filer.dwgForm();
    if (form == nullptr) {
        filer.writeScale3d(scale);
        return;
    }
    const uint8_t kind = scaleFormOf(scale);
    form->writeBits(kind, 2);
    if (kind == kAllDiffer || kind == kAllAlike) form->writeRawDouble(scale.sx);
    if (kind == kAllAlike || kind == kAllAreOne) return;
    form->writeNear(scale.sy, scale.sx);
    form->writeNear(scale.sz, scale.sx);
}

void readScale(AcDbDwgFiler& filer, AcGeScale3d& scale) {
    sg::model::DwgForm* const form = filer.dwgForm();
    if (form == nullptr || sg::model::isBefore(&filer, AcDb::kDHL_1015)) {
        filer.readScale3d(&scale);
        return;
    }
    uint8_t kind = kAllAreOne;
    form->readBits(&kind, 2);
    scale = AcGeScale3d(1, 1, 1);
    if (kind == kAllDiffer || kind == kAllAlike) form->readRawDouble(&scale.sx);
    scale.sy = scale.sz = scale.sx;
    if (kind == kAllAlike || kind == kAllAreOne) return;
    form->readNear(&scale.sy, scale.sx);
    form->readNear(&scale.sz, scale.sx);
}

}  // namespace

// A copy outside a database is without attributes; a file has no erased ones. There the point is in
// the coordinates of the reference's plane.
Acad::ErrorStatus AcDbBlockReference::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    const bool isCopy = filer->filerType() == AcDb::kCopyFiler;
    std::vector<AcDbHardOwnershipId> present;
    if (inFile) {
        for (const AcDbHardOwnershipId& attribute : attributes_) {
            if (!attribute.isErased()) present.push_back(attribute);
        }
    }
    const std::vector<AcDbHardOwnershipId>& attributes = inFile ? present : attributes_;
    const bool hasParts = !isCopy && (!attributes.empty() || (!inFile && !sequenceEnd_.isNull()));
    filer->writePoint3d(inFile ? AcGeMatrix3d::worldToPlane(normal_) * position_ : position_);
    writeScale(*filer, scale_);
    filer->writeDouble(rotation_);
    filer->writeVector3d(normal_);
    filer->writeBool(hasParts);
    filer->writeHardPointerId(block_);
    if (!hasParts) return filer->filerStatus();
    sg::model::writePartCount(filer, attributes.size());
    sg::model::writePartIds(filer, attributes);
    return filer->writeHardOwnershipId(sequenceEnd_);
}

Acad::ErrorStatus AcDbBlockReference::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    bool hasParts = false;
    filer->readPoint3d(&position_);
    readScale(*filer, scale_);
    filer->readDouble(&rotation_);
    filer->readVector3d(&normal_);
    filer->readBool(&hasParts);
    filer->readHardPointerId(&block_);
    if (filer->dwgForm() != nullptr) {
        position_ = AcGeMatrix3d::planeToWorld(normal_) * position_;
    }
    if (filer->filerType() == AcDb::kCopyFiler) return filer->filerStatus();
    attributes_.clear();
    sequenceEnd_ = AcDbHardOwnershipId();
    if (!hasParts) return filer->filerStatus();
    uint32_t count = 0;
    sg::model::readPartCount(filer, count);
    sg::model::readPartIds(filer, count, attributes_);
    return filer->readHardOwnershipId(&sequenceEnd_);
}

Acad::ErrorStatus AcDbBlockReference::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    const bool all = showsDefaults(filer);
    filer->writeString(100, marker());
    if (!attributes_.empty()) filer->writeInt16(66, 1);
    filer->writeString(2, sg::model::nameOf(block_));
    filer->writePoint3d(10, AcGeMatrix3d::worldToPlane(normal_) * position_);
    if (all || scale_.sx != 1) filer->writeDouble(41, scale_.sx);
    if (all || scale_.sy != 1) filer->writeDouble(42, scale_.sy);
    if (all || scale_.sz != 1) filer->writeDouble(43, scale_.sz);
    if (all || rotation_ != 0) filer->writeDouble(50, rotation_);
    dxfOutArray(filer);
    sg::model::writeNormal(filer, normal_);
    return filer->filerStatus();
}

// entget shows that there is no array.
void AcDbBlockReference::dxfOutArray(AcDbDxfFiler* filer) const {
    if (!showsDefaults(filer)) return;
    filer->writeInt16(70, 0);
    filer->writeInt16(71, 0);
    filer->writeDouble(44, 0);
    filer->writeDouble(45, 0);
}

Acad::ErrorStatus AcDbBlockReference::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    // Programs write arrays with the marker of a single reference too.
    if (!filer->atSubclassData(marker()) && !filer->atSubclassData(L"AcDbBlockReference")) {
        return Acad::eBadDxfSequence;
    }
    AcGePoint3d position = AcGeMatrix3d::worldToPlane(normal_) * position_;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 2:
                block_ = sg::model::recordNamed(filer->database(), sg::model::NamedIn::blocks,
                                                fields.text());
                if (block_.isNull()) {
                    return filer->setError(Acad::eBlockNotFound, L"block " + fields.text());
                }
                break;
            case 10:
                position = fields.point();
                break;
            case 41:
                scale_.sx = fields.real();
                break;
            case 42:
                scale_.sy = fields.real();
                break;
            case 43:
                scale_.sz = fields.real();
                break;
            case 50:
                rotation_ = fields.real();
                break;
            case 210:
                if (!fields.vector().isZeroLength()) normal_ = fields.vector().normal();
                break;
            default:
                dxfInArray(filer, fields.group());
                break;
        }
    }
    if (block_.isNull()) return filer->setError(Acad::eBlockNotFound, L"a block reference's block");
    position_ = AcGeMatrix3d::planeToWorld(normal_) * position;
    return filer->filerStatus();
}

// ---- Arrays -------------------------------------------------------------------------------------

AcDbMInsertBlock::AcDbMInsertBlock() = default;
AcDbMInsertBlock::~AcDbMInsertBlock() = default;

Acad::ErrorStatus AcDbMInsertBlock::setColumns(uint16_t columns) {
    if (columns == 0) return Acad::eInvalidInput;
    assertWriteEnabled();
    columns_ = columns;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMInsertBlock::setRows(uint16_t rows) {
    if (rows == 0) return Acad::eInvalidInput;
    assertWriteEnabled();
    rows_ = rows;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMInsertBlock::setColumnSpacing(double spacing) {
    assertWriteEnabled();
    columnSpacing_ = spacing;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMInsertBlock::setRowSpacing(double spacing) {
    assertWriteEnabled();
    rowSpacing_ = spacing;
    return Acad::eOk;
}

std::vector<AcGeVector3d> AcDbMInsertBlock::copies(Copies which) const {
    const auto step = [&](uint16_t count) {
        return which == Copies::all || count < 2 ? 1 : count - 1;
    };
    std::vector<AcGeVector3d> made;
    for (int row = 0; row < rows_; row += step(rows_)) {
        for (int column = 0; column < columns_; column += step(columns_)) {
            made.emplace_back(column * columnSpacing_, row * rowSpacing_, 0);
        }
    }
    return made;
}

Acad::ErrorStatus AcDbMInsertBlock::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbBlockReference::dwgOutFields(filer);
    filer->writeUInt16(columns_);
    filer->writeUInt16(rows_);
    filer->writeDouble(columnSpacing_);
    return filer->writeDouble(rowSpacing_);
}

Acad::ErrorStatus AcDbMInsertBlock::dwgInFields(AcDbDwgFiler* filer) {
    AcDbBlockReference::dwgInFields(filer);
    filer->readUInt16(&columns_);
    filer->readUInt16(&rows_);
    filer->readDouble(&columnSpacing_);
    return filer->readDouble(&rowSpacing_);
}

void AcDbMInsertBlock::dxfOutArray(AcDbDxfFiler* filer) const {
    filer->writeInt16(70, static_cast<int16_t>(columns_));
    filer->writeInt16(71, static_cast<int16_t>(rows_));
    filer->writeDouble(44, columnSpacing_);
    filer->writeDouble(45, rowSpacing_);
}

void AcDbMInsertBlock::dxfInArray(AcDbDxfFiler* filer, const resbuf& group) {
    const FieldReader field(filer, group);
    switch (field.code()) {
        case 70:
            columns_ = static_cast<uint16_t>(std::max(1, field.integer()));
            break;
        case 71:
            rows_ = static_cast<uint16_t>(std::max(1, field.integer()));
            break;
        case 44:
            columnSpacing_ = field.real();
            break;
        case 45:
            rowSpacing_ = field.real();
            break;
        default:
            break;
    }
}
