#include "platform/db/entity.h"

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/database.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)

// Properties of entities.

using sg::model::ObjectAccess;
using sg::model::peek;

namespace {

// small_: the line weight in the low half, complemented so that 0 stands for by layer; then
// visibility and the plot style's type. The bits from 20 on are left to the entities' classes.
constexpr uint32_t kWeightMask = 0xFFFF;
constexpr uint32_t kInvisibleBit = 1u << 16;
constexpr int kPlotStyleShift = 17;
constexpr uint32_t kPlotStyleMask = 3u << kPlotStyleShift;

std::wstring recordName(AcDbObjectId id, const wchar_t* other) {
    const auto* const record = peek<AcDbSymbolTableRecord>(id);
    return record == nullptr ? other : record->name();
}

const AcDbDatabase* namesOf(const AcDbEntity& entity) {
    const AcDbDatabase* const own = entity.database();
    return own != nullptr ? own : acdbHostApplicationServices()->workingDatabase();
}

}  // namespace

AcDbEntity::AcDbEntity() = default;
AcDbEntity::~AcDbEntity() = default;

// ---- Colour, layer, linetype --------------------------------------------------------------------

AcCmColor AcDbEntity::color() const {
    return color_;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, bool) {
    assertWriteEnabled();
    color_ = color;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(uint16_t index, bool doSubents) {
    AcCmColor color;
    if (!color.setColorIndex(index)) return Acad::eInvalidInput;
    return setColor(color, doSubents);
}

std::wstring AcDbEntity::layer() const {
    return recordName(layer_, L"0");
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layer, bool, bool) {
    if (layer.isNull()) return Acad::eNullObjectId;
    if (!objectId().isNull() && layer.database() != database()) return Acad::eWrongDatabase;
    const auto* const record = peek<AcDbLayerTableRecord>(layer);
    if (record == nullptr) return Acad::eInvalidLayer;
    assertWriteEnabled();
    layer_ = layer;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLayer(const wchar_t* name, bool doSubents, bool allowHiddenLayer) {
    const AcDbDatabase* const names = namesOf(*this);
    if (names == nullptr || name == nullptr) return Acad::eKeyNotFound;
    const AcDbObjectId id = sg::model::findRecord(names->layerTableId(), name);
    return id.isNull() ? Acad::eKeyNotFound : setLayer(id, doSubents, allowHiddenLayer);
}

std::wstring AcDbEntity::linetype() const {
    return recordName(linetype_, L"ByLayer");
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId linetype, bool) {
    if (linetype.isNull()) return Acad::eNullObjectId;
    if (!objectId().isNull() && linetype.database() != database()) return Acad::eWrongDatabase;
    if (peek<AcDbLinetypeTableRecord>(linetype) == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    linetype_ = linetype;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetype(const wchar_t* name, bool doSubents) {
    const AcDbDatabase* const names = namesOf(*this);
    if (names == nullptr || name == nullptr) return Acad::eKeyNotFound;
    const AcDbObjectId id = sg::model::findRecord(names->linetypeTableId(), name);
    return id.isNull() ? Acad::eKeyNotFound : setLinetype(id, doSubents);
}

double AcDbEntity::linetypeScale() const {
    return linetypeScale_;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, bool) {
    if (!(scale > 0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    linetypeScale_ = scale;
    return Acad::eOk;
}

// ---- Line weight, visibility, plot style --------------------------------------------------------

AcDb::LineWeight AcDbEntity::lineWeight() const {
    return static_cast<AcDb::LineWeight>(static_cast<int16_t>(~small_ & kWeightMask));
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight weight, bool) {
    if (weight < AcDb::kLnWtByLwDefault || weight > AcDb::kLnWt211) return Acad::eInvalidInput;
    assertWriteEnabled();
    small_ = (small_ & ~kWeightMask) | (~static_cast<uint32_t>(weight) & kWeightMask);
    return Acad::eOk;
}

AcDb::Visibility AcDbEntity::visibility() const {
    return (small_ & kInvisibleBit) != 0 ? AcDb::kInvisible : AcDb::kVisible;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility visibility, bool) {
    assertWriteEnabled();
    small_ = visibility == AcDb::kInvisible ? small_ | kInvisibleBit : small_ & ~kInvisibleBit;
    return Acad::eOk;
}

AcDb::PlotStyleNameType AcDbEntity::plotStyleNameType() const {
    return static_cast<AcDb::PlotStyleNameType>((small_ & kPlotStyleMask) >> kPlotStyleShift);
}

AcDbObjectId AcDbEntity::plotStyleNameId() const {
    const auto* const extras = ObjectAccess::extras(*this);
    return extras == nullptr ? AcDbObjectId() : AcDbObjectId(extras->plotStyle);
}

Acad::ErrorStatus AcDbEntity::setPlotStyleName(AcDb::PlotStyleNameType type, AcDbObjectId style,
                                               bool) {
    const bool isNamed = type == AcDb::kPlotStyleNameById;
    if (isNamed && style.isNull()) return Acad::eNullObjectId;
    assertWriteEnabled();
    small_ = (small_ & ~kPlotStyleMask) | static_cast<uint32_t>(type) << kPlotStyleShift;
    if (isNamed || ObjectAccess::extras(*this) != nullptr) {
        ObjectAccess::needExtras(*this).plotStyle = isNamed ? style : AcDbObjectId();
    }
    return Acad::eOk;
}

uint32_t AcDbEntity::transparency() const {
    const auto* const extras = ObjectAccess::extras(*this);
    return extras == nullptr ? 0 : extras->transparency;
}

Acad::ErrorStatus AcDbEntity::setTransparency(uint32_t transparency, bool) {
    assertWriteEnabled();
    if (transparency != 0 || ObjectAccess::extras(*this) != nullptr) {
        ObjectAccess::needExtras(*this).transparency = transparency;
    }
    return Acad::eOk;
}

AcDbObjectId AcDbEntity::materialId() const {
    const auto* const extras = ObjectAccess::extras(*this);
    return extras == nullptr ? AcDbObjectId() : AcDbObjectId(extras->material);
}

Acad::ErrorStatus AcDbEntity::setMaterial(AcDbObjectId material, bool) {
    assertWriteEnabled();
    if (!material.isNull() || ObjectAccess::extras(*this) != nullptr) {
        ObjectAccess::needExtras(*this).material = material;
    }
    return Acad::eOk;
}

// ---- Many at once -------------------------------------------------------------------------------

sg::model::EntityData ObjectAccess::entityData(const AcDbEntity& entity) {
    sg::model::EntityData data;
    data.layer = entity.layer_;
    data.linetype = entity.linetype_;
    data.color = entity.color_;
    data.linetypeScale = entity.linetypeScale_;
    data.lineWeight = entity.lineWeight();
    data.visibility = entity.visibility();
    data.plotStyleType = entity.plotStyleNameType();
    data.plotStyle = entity.plotStyleNameId();
    data.material = entity.materialId();
    data.transparency = entity.transparency();
    return data;
}

void ObjectAccess::setEntityData(AcDbEntity& entity, const sg::model::EntityData& data) {
    if (!data.layer.isNull()) entity.layer_ = data.layer;
    if (!data.linetype.isNull()) entity.linetype_ = data.linetype;
    entity.color_ = data.color;
    entity.linetypeScale_ = data.linetypeScale;
    uint32_t small = ~static_cast<uint32_t>(data.lineWeight) & kWeightMask;
    if (data.visibility == AcDb::kInvisible) small |= kInvisibleBit;
    small |= static_cast<uint32_t>(data.plotStyleType) << kPlotStyleShift;
    constexpr uint32_t kAll = kWeightMask | kInvisibleBit | kPlotStyleMask;
    entity.small_ = (entity.small_ & ~kAll) | small;
    const bool hasMore =
        !data.plotStyle.isNull() || !data.material.isNull() || data.transparency != 0;
    if (!hasMore && extras(entity) == nullptr) return;
    sg::model::Extras& extras = needExtras(entity);
    extras.plotStyle = data.plotStyle;
    extras.material = data.material;
    extras.transparency = data.transparency;
}

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity* other, bool doSubents) {
    if (other == nullptr) return Acad::eNullEntityPointer;
    assertWriteEnabled();
    if (const AcDbObjectId id = other->layerId(); !id.isNull()) {
        if (const auto status = setLayer(id, doSubents, true); status != Acad::eOk) return status;
    }
    if (const AcDbObjectId id = other->linetypeId(); !id.isNull()) setLinetype(id, doSubents);
    setColor(other->color(), doSubents);
    setLinetypeScale(other->linetypeScale(), doSubents);
    setLineWeight(other->lineWeight(), doSubents);
    setVisibility(other->visibility(), doSubents);
    setPlotStyleName(other->plotStyleNameType(), other->plotStyleNameId(), doSubents);
    setTransparency(other->transparency(), doSubents);
    return setMaterial(other->materialId(), doSubents);
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* database) {
    if (database == nullptr) database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr) return;
    if (!database->clayer().isNull()) setLayer(database->clayer());
    if (!database->celtype().isNull()) setLinetype(database->celtype());
    setColor(database->cecolor());
    setLinetypeScale(database->celtscale());
    setLineWeight(database->celweight());
    subSetDatabaseDefaults(database);
}

void AcDbEntity::subSetDatabaseDefaults(AcDbDatabase*) {}

// Entities of a locked layer are not changed.
Acad::ErrorStatus AcDbEntity::subOpen(AcDb::OpenMode mode) {
    if (mode != AcDb::kForWrite) return Acad::eOk;
    const auto* const record =
        static_cast<const AcDbLayerTableRecord*>(sg::model::DatabaseTable::objectOf(layer_));
    return record != nullptr && record->isLocked() ? Acad::eOnLockedLayer : Acad::eOk;
}
