#include "host/model/curves/filing_groups.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/block_reference.h"

// Filing of block references, and their arrays.

using sg::model::FieldReader;
using sg::model::showsDefaults;

ACRX_DXF_DEFINE_MEMBERS(AcDbMInsertBlock, AcDbBlockReference, 0, 0, L"INSERT", nullptr)

Acad::ErrorStatus AcDbBlockReference::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    filer->writeHardPointerId(block_);
    filer->writePoint3d(position_);
    filer->writeVector3d(normal_);
    filer->writeScale3d(scale_);
    filer->writeDouble(rotation_);
    // A copy outside a database is without attributes.
    const bool isCopy = filer->filerType() == AcDb::kCopyFiler;
    filer->writeUInt32(isCopy ? 0 : static_cast<uint32_t>(attributes_.size()));
    if (isCopy) return filer->filerStatus();
    for (const AcDbHardOwnershipId& attribute : attributes_)
        filer->writeHardOwnershipId(attribute);
    return filer->writeHardOwnershipId(sequenceEnd_);
}

Acad::ErrorStatus AcDbBlockReference::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    uint32_t count = 0;
    filer->readHardPointerId(&block_);
    filer->readPoint3d(&position_);
    filer->readVector3d(&normal_);
    filer->readScale3d(&scale_);
    filer->readDouble(&rotation_);
    filer->readUInt32(&count);
    if (filer->filerType() == AcDb::kCopyFiler) return filer->filerStatus();
    attributes_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        AcDbHardOwnershipId attribute;
        filer->readHardOwnershipId(&attribute);
        if (!attribute.isNull()) attributes_.push_back(attribute);
    }
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

std::vector<AcGeVector3d> AcDbMInsertBlock::copies() const {
    std::vector<AcGeVector3d> made;
    for (uint16_t row = 0; row < rows_; ++row) {
        for (uint16_t column = 0; column < columns_; ++column) {
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
