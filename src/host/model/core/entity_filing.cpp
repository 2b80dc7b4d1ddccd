#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/filing.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"

// Filing of what every entity has.

using sg::model::FieldReader;
using sg::model::peek;

namespace {

// The parts of small_ that belong to every entity.
constexpr uint32_t kCommonBits = 0xFFFFF;

}  // namespace

Acad::ErrorStatus AcDbEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) return filer->filerStatus();
    filer->writeHardPointerId(layer_);
    filer->writeHardPointerId(linetype_);
    sg::model::writeColor(filer, color_);
    filer->writeDouble(linetypeScale_);
    return filer->writeUInt32(small_ & kCommonBits);
}

Acad::ErrorStatus AcDbEntity::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
    if (status != Acad::eOk || filer->dwgForm() != nullptr) return status;
    AcDbHardPointerId layer, linetype;
    filer->readHardPointerId(&layer);
    filer->readHardPointerId(&linetype);
    layer_ = layer;
    linetype_ = linetype;
    sg::model::readColor(filer, color_);
    filer->readDouble(&linetypeScale_);
    uint32_t common = 0;
    filer->readUInt32(&common);
    small_ = (small_ & ~kCommonBits) | (common & kCommonBits);
    return filer->filerStatus();
}

namespace {

// The name of the layout that a space belongs to, which is its key in the dictionary of layouts;
// empty for a block that is no space.
std::wstring layoutName(const AcDbBlockTableRecord& block) {
    std::wstring name;
    const AcDbDatabase* const database = block.database();
    AcDbDictionary* layouts = nullptr;
    if (database == nullptr ||
        database->getLayoutDictionary(layouts, AcDb::kForRead) != Acad::eOk) {
        return name;
    }
    layouts->nameAt(block.getLayoutId(), name);
    layouts->close();
    return name;
}

// entget says of every entity in which space and layout it stands, a file only of those on paper
// that they are there.
void writeSpace(AcDbDxfFiler& filer, AcDbObjectId owner) {
    // A vertex or an attribute stands where the entity does that it belongs to.
    if (const auto* const whole = peek<AcDbEntity>(owner)) owner = whole->ownerId();
    const auto* const block = peek<AcDbBlockTableRecord>(owner);
    const bool isBag = filer.filerType() == AcDb::kBagFiler;
    const bool isSpace = block != nullptr && block->isLayout();
    const bool isPaper = isSpace && owner != owner.database()->modelSpaceId();
    if (!isPaper && !isBag) return;
    filer.writeInt16(67, isPaper ? 1 : 0);
    if (!isSpace || !isBag) return;
    const std::wstring name = layoutName(*block);
    if (!name.empty()) filer.writeString(410, name);
}

void writeColorGroups(AcDbDxfFiler& filer, const AcCmColor& color) {
    if (color.isByLayer()) return;
    filer.writeInt16(62, static_cast<int16_t>(color.colorIndex()));
    if (color.isByColor()) filer.writeInt32(420, static_cast<int32_t>(color.rgb()));
}

}  // namespace

Acad::ErrorStatus AcDbEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbEntity");
    writeSpace(*filer, ownerId());
    filer->writeString(8, layer());
    const AcDbDatabase* const owner = database();
    const bool byLayer =
        linetype_.isNull() || (owner != nullptr && linetype_ == owner->byLayerLinetype());
    if (!byLayer) filer->writeString(6, linetype());
    writeColorGroups(*filer, color_);
    if (linetypeScale_ != 1) filer->writeDouble(48, linetypeScale_);
    if (visibility() == AcDb::kInvisible) filer->writeInt16(60, 1);
    if (lineWeight() != AcDb::kLnWtByLayer) {
        filer->writeInt16(370, static_cast<int16_t>(lineWeight()));
    }
    if (transparency() != 0) filer->writeInt32(440, static_cast<int32_t>(transparency()));
    if (plotStyleNameType() != AcDb::kPlotStyleNameByLayer) {
        filer->writeInt16(380, static_cast<int16_t>(plotStyleNameType()));
        if (!plotStyleNameId().isNull()) filer->writeObjectId(390, plotStyleNameId());
    }
    if (!materialId().isNull()) filer->writeObjectId(347, materialId());
    return filer->filerStatus();
}

namespace {

void readColorIndex(AcDbEntity& entity, int32_t index) {
    // A layer's colour is negative where the layer is off; an entity's is not.
    if (index >= 0 && index <= 256) entity.setColorIndex(static_cast<uint16_t>(index));
}

void readTrueColor(AcDbEntity& entity, int32_t rgb) {
    AcCmColor color;
    sg::model::setTrueColor(color, rgb);
    entity.setColor(color);
}

// Names are those of the drawing that the filer fills, in which the entity need not be yet.
Acad::ErrorStatus readLayer(AcDbEntity& entity, const AcDbDatabase* database,
                            const std::wstring& name) {
    if (database == nullptr) return entity.setLayer(name.c_str(), true, true);
    const AcDbObjectId layer = sg::model::findRecord(database->layerTableId(), name);
    return layer.isNull() ? Acad::eKeyNotFound : entity.setLayer(layer, true, true);
}

Acad::ErrorStatus readLinetype(AcDbEntity& entity, const AcDbDatabase* database,
                               const std::wstring& name) {
    if (database == nullptr) return entity.setLinetype(name.c_str());
    const AcDbObjectId linetype = sg::model::findRecord(database->linetypeTableId(), name);
    return linetype.isNull() ? Acad::eKeyNotFound : entity.setLinetype(linetype);
}

// One group of those that every entity may have; others are left alone.
Acad::ErrorStatus readGroup(AcDbEntity& entity, const AcDbDatabase* database,
                            const FieldReader& fields) {
    switch (fields.code()) {
        case 6:
            return readLinetype(entity, database, fields.text());
        case 8:
            return readLayer(entity, database, fields.text());
        case 48:
            return entity.setLinetypeScale(fields.real());
        case 60:
            return entity.setVisibility(fields.flag() ? AcDb::kInvisible : AcDb::kVisible);
        case 62:
            readColorIndex(entity, fields.integer());
            break;
        case 347:
            return entity.setMaterial(fields.objectId());
        case 370:
            return entity.setLineWeight(static_cast<AcDb::LineWeight>(fields.integer()));
        case 380:
            if (fields.integer() < AcDb::kPlotStyleNameById && fields.integer() >= 0) {
                return entity.setPlotStyleName(
                    static_cast<AcDb::PlotStyleNameType>(fields.integer()));
            }
            break;
        case 390:
            return entity.setPlotStyleName(AcDb::kPlotStyleNameById, fields.objectId());
        case 420:
            readTrueColor(entity, fields.integer());
            break;
        case 440:
            return entity.setTransparency(static_cast<uint32_t>(fields.integer()));
        default:
            break;
    }
    return Acad::eOk;
}

}  // namespace

// A property that does not fit fails the entity: it would otherwise come out with another one.
Acad::ErrorStatus AcDbEntity::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk || !filer->atSubclassData(L"AcDbEntity")) return status;
    FieldReader fields(filer);
    while (fields.next()) {
        const Acad::ErrorStatus read = readGroup(*this, filer->database(), fields);
        if (read == Acad::eOk) continue;
        return filer->setError(
            read, L"group " + std::to_wstring(fields.code()) + L" does not fit: " + fields.text());
    }
    return filer->filerStatus();
}
