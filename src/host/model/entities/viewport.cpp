#include "platform/db/viewport.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/listing.h"
#include "host/model/tables/filing.h"
#include "platform/db/layer_table.h"
#include "platform/gi/draw.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbViewport, AcDbEntity, 0, 0, L"VIEWPORT", nullptr)

namespace {

constexpr int32_t kOff = 0x20000;
constexpr int16_t kInactive = 0;  // which of the viewports are on is not in DWG files

bool areLayers(const AcDbObjectIdArray& ids) {
    return std::all_of(ids.begin(), ids.end(), [](AcDbObjectId id) {
        AcDbLayerTableRecord* layer = nullptr;
        if (acdbOpenObject(layer, id) != Acad::eOk) return false;
        layer->close();
        return true;
    });
}

}  // namespace

AcDbViewport::AcDbViewport() = default;
AcDbViewport::~AcDbViewport() = default;

template <class Value>
Acad::ErrorStatus AcDbViewport::assign(Value& member, const Value& value) {
    assertWriteEnabled();
    member = value;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::setCenterPoint(const AcGePoint3d& center) {
    return assign(center_, center);
}
Acad::ErrorStatus AcDbViewport::setWidth(double width) {
    return width > 0 ? assign(width_, width) : Acad::eInvalidInput;
}
Acad::ErrorStatus AcDbViewport::setHeight(double height) {
    return height > 0 ? assign(height_, height) : Acad::eInvalidInput;
}
Acad::ErrorStatus AcDbViewport::setOn() {
    return assign(statusFlags_, statusFlags_ & ~kOff);
}
Acad::ErrorStatus AcDbViewport::setOff() {
    return assign(statusFlags_, statusFlags_ | kOff);
}
Acad::ErrorStatus AcDbViewport::setViewTarget(const AcGePoint3d& target) {
    return assign(target_, target);
}
Acad::ErrorStatus AcDbViewport::setViewDirection(const AcGeVector3d& direction) {
    return direction.isZeroLength() ? Acad::eInvalidInput : assign(direction_, direction);
}
Acad::ErrorStatus AcDbViewport::setViewHeight(double height) {
    return height > 0 ? assign(viewHeight_, height) : Acad::eInvalidInput;
}
Acad::ErrorStatus AcDbViewport::setViewCenter(const AcGePoint2d& center) {
    return assign(viewCenter_, center);
}
Acad::ErrorStatus AcDbViewport::setTwistAngle(double angle) {
    return assign(twist_, angle);
}

double AcDbViewport::customScale() const {
    return viewHeight_ == 0 ? 1 : height_ / viewHeight_;
}

Acad::ErrorStatus AcDbViewport::setCustomScale(double scale) {
    return scale > 0 ? setViewHeight(height_ / scale) : Acad::eInvalidInput;
}

// ---- Layers -------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbViewport::freezeLayersInViewport(const AcDbObjectIdArray& layers) {
    if (!areLayers(layers)) return Acad::eInvalidInput;
    assertWriteEnabled();
    for (const AcDbObjectId layer : layers) {
        if (!isLayerFrozenInViewport(layer)) frozen_.emplace_back(layer);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::thawLayersInViewport(const AcDbObjectIdArray& layers) {
    if (!areLayers(layers)) return Acad::eInvalidInput;
    assertWriteEnabled();
    std::erase_if(frozen_, [&](AcDbObjectId layer) { return layers.contains(layer); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::thawAllLayersInViewport() {
    assertWriteEnabled();
    frozen_.clear();
    return Acad::eOk;
}

bool AcDbViewport::isLayerFrozenInViewport(AcDbObjectId layer) const {
    assertReadEnabled();
    return std::find(frozen_.begin(), frozen_.end(), layer) != frozen_.end();
}

Acad::ErrorStatus AcDbViewport::getFrozenLayerList(AcDbObjectIdArray& layers) const {
    assertReadEnabled();
    for (const AcDbObjectId layer : frozen_)
        layers.append(layer);
    return Acad::eOk;
}

// ---- Geometry -----------------------------------------------------------------------------------

std::array<AcGePoint3d, 4> AcDbViewport::corners() const {
    const AcGeVector3d x = AcGeVector3d::kXAxis * (width_ / 2);
    const AcGeVector3d y = AcGeVector3d::kYAxis * (height_ / 2);
    return {center_ - x - y, center_ + x - y, center_ + x + y, center_ - x + y};
}

bool AcDbViewport::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const auto four = corners();
    const std::array<AcGePoint3d, 5> frame = {four[0], four[1], four[2], four[3], four[0]};
    draw->geometry().polyline(static_cast<uint32_t>(frame.size()), frame.data());
    return true;
}

// A viewport lies upright on its sheet: only its place and size follow.
Acad::ErrorStatus AcDbViewport::subTransformBy(const AcGeMatrix3d& transform) {
    AcGeVector3d x = AcGeVector3d::kXAxis;
    AcGeVector3d y = AcGeVector3d::kYAxis;
    assertWriteEnabled();
    center_ = transform * center_;
    width_ *= x.transformBy(transform).length();
    height_ *= y.transformBy(transform).length();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                 AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : corners())
        points.append(corner);
    return Acad::eOk;
}

// The corner that faces a moved one stays.
Acad::ErrorStatus AcDbViewport::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                    const AcGeVector3d& offset) {
    if (indices.isEmpty()) return Acad::eOk;
    if (indices.length() > 1) return transformBy(AcGeMatrix3d::translation(offset));
    const auto four = corners();
    const auto moved = static_cast<size_t>(indices[0]);
    if (moved >= four.size()) return Acad::eInvalidInput;
    assertWriteEnabled();
    const AcGePoint3d corner = four[moved] + offset;
    const AcGePoint3d facing = four[(moved + 2) % 4];
    center_ = facing + (corner - facing) / 2;
    width_ = std::abs(corner.x - facing.x);
    height_ = std::abs(corner.y - facing.y);
    return Acad::eOk;
}

void AcDbViewport::subList() const {
    AcDbEntity::subList();
    sg::model::listText(L"Status:", isOn() ? L"On" : L"Off");
    sg::model::listPoint(L"center", center_);
    sg::model::listNumber(L"Width", width_);
    sg::model::listNumber(L"Height", height_);
}

// ---- Filing -------------------------------------------------------------------------------------

template <class Visitor>
void AcDbViewport::visitFields(Visitor&& visit) {
    visit(center_);
    visit(target_);
    visit(width_);
    visit(height_);
    visit(number_);
    visit(sheetNumber_);
    visit(statusFlags_);
    visit(direction_);
    visit(viewHeight_);
    visit(viewCenter_);
    visit(twist_);
    visit(lensLength_);
    visit(frontClip_);
    visit(backClip_);
    visit(snapAngle_);
    visit(snapBase_);
    visit(snapSpacing_);
    visit(gridSpacing_);
    visit(circleSides_);
    visit(renderMode_);
    visit(ucsOrigin_);
    visit(ucsXAxis_);
    visit(ucsYAxis_);
    visit(ucsPerViewport_);
    visit(ucsOrthographic_);
    visit(elevation_);
    visit(plotStyleSheet_);
    visit(clipEntity_);
    visit(ucs_);
    visit(baseUcs_);
    visit(look_.majorGridLines);
    visit(look_.shadePlot);
    visitLight(visit);
    visitLightObjects(visit);
}

namespace {

// A whole number that files have in one byte.
struct Byte {
    int16_t& value;
};

struct FieldWriter {
    AcDbDwgFiler* filer;
    void operator()(const AcGePoint3d& v) const { filer->writePoint3d(v); }
    void operator()(const AcGePoint2d& v) const { filer->writePoint2d(v); }
    void operator()(const AcGeVector3d& v) const { filer->writeVector3d(v); }
    void operator()(double v) const { filer->writeDouble(v); }
    void operator()(int16_t v) const { filer->writeInt16(v); }
    void operator()(int32_t v) const { filer->writeInt32(v); }
    void operator()(uint32_t v) const { filer->writeUInt32(v); }
    void operator()(Byte v) const { filer->writeUInt8(static_cast<uint8_t>(v.value)); }
    void operator()(bool v) const { filer->writeBool(v); }
    void operator()(const std::wstring& v) const { filer->writeString(v); }
    void operator()(const AcCmColor& v) const { sg::model::writeColor(filer, v); }
    void operator()(const AcDbHardPointerId& v) const { filer->writeHardPointerId(v); }
    void operator()(const AcDbSoftPointerId& v) const { filer->writeSoftPointerId(v); }
    void operator()(const AcDbHardOwnershipId& v) const { filer->writeHardOwnershipId(v); }
};

struct FieldFiller {
    AcDbDwgFiler* filer;
    void operator()(AcGePoint3d& v) const { filer->readPoint3d(&v); }
    void operator()(AcGePoint2d& v) const { filer->readPoint2d(&v); }
    void operator()(AcGeVector3d& v) const { filer->readVector3d(&v); }
    void operator()(double& v) const { filer->readDouble(&v); }
    void operator()(int16_t& v) const { filer->readInt16(&v); }
    void operator()(int32_t& v) const { filer->readInt32(&v); }
    void operator()(uint32_t& v) const { filer->readUInt32(&v); }
    void operator()(Byte v) const {
        uint8_t byte = 0;
        filer->readUInt8(&byte);
        v.value = byte;
    }
    void operator()(bool& v) const { filer->readBool(&v); }
    void operator()(std::wstring& v) const { filer->readString(v); }
    void operator()(AcCmColor& v) const { sg::model::readColor(filer, v); }
    void operator()(AcDbHardPointerId& v) const { filer->readHardPointerId(&v); }
    void operator()(AcDbSoftPointerId& v) const { filer->readSoftPointerId(&v); }
    void operator()(AcDbHardOwnershipId& v) const { filer->readHardOwnershipId(&v); }
};

}  // namespace

template <class Visitor>
void AcDbViewport::visitLight(Visitor&& visit) {
    visit(look_.hasDefaultLights);
    visit(Byte{look_.lights});
    visit(look_.brightness);
    visit(look_.contrast);
    visit(look_.ambient);
}

template <class Visitor>
void AcDbViewport::visitLightObjects(Visitor&& visit) {
    visit(look_.background);
    visit(look_.visualStyle);
    visit(look_.shadePlotObject);
    visit(look_.sun);
}

// The main data of a DWG object.
template <class Visitor>
void AcDbViewport::visitFile(Visitor&& visit, AcDbDwgFiler* filer, uint32_t& frozen) {
    visit(center_);
    visit(width_);
    visit(height_);
    visit(target_);
    visit(direction_);
    visit(twist_);
    visit(viewHeight_);
    visit(lensLength_);
    visit(frontClip_);
    visit(backClip_);
    visit(snapAngle_);
    visit(viewCenter_);
    visit(snapBase_);
    visit(snapSpacing_);
    visit(gridSpacing_);
    visit(circleSides_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) visit(look_.majorGridLines);
    visit(frozen);
    visit(statusFlags_);
    visit(plotStyleSheet_);
    visit(Byte{renderMode_});
    bool ucsAtOrigin = false;
    visit(ucsAtOrigin);
    visit(ucsPerViewport_);
    visit(ucsOrigin_);
    visit(ucsXAxis_);
    visit(ucsYAxis_);
    visit(elevation_);
    visit(ucsOrthographic_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1018)) visit(look_.shadePlot);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) visitLight(visit);
}

namespace {

// Files before 2004 refer to frozen layers as to what must be there.
bool refersHard(AcDbDwgFiler* filer) {
    return filer->dwgForm() != nullptr && sg::model::isBefore(filer, AcDb::kDHL_1018);
}

void writeFrozen(AcDbDwgFiler* filer, const std::vector<AcDbSoftPointerId>& layers) {
    for (const AcDbSoftPointerId& layer : layers) {
        if (refersHard(filer)) {
            filer->writeHardPointerId(AcDbObjectId(layer));
        } else {
            filer->writeSoftPointerId(layer);
        }
    }
}

void readFrozen(AcDbDwgFiler* filer, uint32_t count, std::vector<AcDbSoftPointerId>& layers) {
    layers.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        AcDbSoftPointerId layer;
        filer->readSoftPointerId(&layer);
        if (!layer.isNull()) layers.push_back(layer);
    }
}

// What refers to a viewport's own table, which newer files have no more.
template <class Visitor>
void visitHeader(Visitor&& visit, AcDbDwgFiler* filer) {
    AcDbHardPointerId header;
    if (refersHard(filer)) visit(header);
}

}  // namespace

Acad::ErrorStatus AcDbViewport::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    auto& self = const_cast<AcDbViewport&>(*this);
    const FieldWriter write{filer};
    auto frozen = static_cast<uint32_t>(frozen_.size());
    if (filer->dwgForm() == nullptr) {
        self.visitFields(write);
        filer->writeUInt32(frozen);
        writeFrozen(filer, frozen_);
        return filer->filerStatus();
    }
    self.visitFile(write, filer, frozen);
    writeFrozen(filer, frozen_);
    write(clipEntity_);
    visitHeader(write, filer);
    write(ucs_);
    write(baseUcs_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) self.visitLightObjects(write);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbViewport::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    const FieldFiller fill{filer};
    uint32_t frozen = 0;
    if (filer->dwgForm() == nullptr) {
        visitFields(fill);
        filer->readUInt32(&frozen);
        readFrozen(filer, frozen, frozen_);
        return filer->filerStatus();
    }
    // Before release 2000 the view is in extended data.
    if (sg::model::isBefore(filer, AcDb::kDHL_1015)) {
        AcDbHardPointerId header;
        fill(center_);
        fill(width_);
        fill(height_);
        return filer->readHardPointerId(&header);
    }
    number_ = kInactive;
    visitFile(fill, filer, frozen);
    readFrozen(filer, frozen, frozen_);
    fill(clipEntity_);
    visitHeader(fill, filer);
    fill(ucs_);
    fill(baseUcs_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1021)) visitLightObjects(fill);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbViewport::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbViewport");
    filer->writePoint3d(10, center_);
    filer->writeDouble(40, width_);
    filer->writeDouble(41, height_);
    filer->writeInt16(68, number_);
    filer->writeInt16(69, sheetNumber_ > 0 ? sheetNumber_ : std::max(number_, int16_t(1)));
    filer->writePoint2d(12, viewCenter_);
    filer->writePoint2d(13, snapBase_);
    filer->writePoint2d(14, snapSpacing_);
    filer->writePoint2d(15, gridSpacing_);
    filer->writeVector3d(16, direction_);
    filer->writePoint3d(17, target_);
    filer->writeDouble(42, lensLength_);
    filer->writeDouble(43, frontClip_);
    filer->writeDouble(44, backClip_);
    filer->writeDouble(45, viewHeight_);
    filer->writeDouble(50, snapAngle_);
    filer->writeDouble(51, twist_);
    filer->writeInt16(72, circleSides_);
    for (const AcDbSoftPointerId& layer : frozen_)
        filer->writeObjectId(331, layer);
    filer->writeInt32(90, statusFlags_);
    if (!clipEntity_.isNull()) filer->writeObjectId(340, clipEntity_);
    filer->writeString(1, plotStyleSheet_);
    filer->writeInt16(281, renderMode_);
    filer->writeInt16(71, ucsPerViewport_ ? 1 : 0);
    filer->writeInt16(74, 0);
    filer->writePoint3d(110, ucsOrigin_);
    filer->writeVector3d(111, ucsXAxis_);
    filer->writeVector3d(112, ucsYAxis_);
    if (!ucs_.isNull()) filer->writeObjectId(345, ucs_);
    if (!baseUcs_.isNull()) filer->writeObjectId(346, baseUcs_);
    filer->writeInt16(79, ucsOrthographic_);
    return filer->writeDouble(146, elevation_);
}

Acad::ErrorStatus AcDbViewport::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbViewport")) return Acad::eBadDxfSequence;
    std::vector<AcDbSoftPointerId> frozen;
    bool listsFrozen = false;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 331) {
            listsFrozen = true;
            if (!fields.objectId().isNull()) frozen.emplace_back(fields.objectId());
        } else {
            takeField(filer, fields.group());
        }
    }
    if (listsFrozen) frozen_ = std::move(frozen);
    return filer->filerStatus();
}

void AcDbViewport::takeField(AcDbDxfFiler* filer, const resbuf& group) {
    const FieldReader field(filer, group);
    switch (field.code()) {
        case 10:
            center_ = field.point();
            break;
        case 40:
            width_ = field.real();
            break;
        case 41:
            height_ = field.real();
            break;
        case 68:
            number_ = static_cast<int16_t>(field.integer());
            break;
        case 69:
            sheetNumber_ = static_cast<int16_t>(field.integer());
            break;
        case 12:
            viewCenter_ = field.point2d();
            break;
        case 13:
            snapBase_ = field.point2d();
            break;
        case 14:
            snapSpacing_ = field.point2d();
            break;
        case 15:
            gridSpacing_ = field.point2d();
            break;
        case 16:
            direction_ = field.vector();
            break;
        case 17:
            target_ = field.point();
            break;
        case 42:
            lensLength_ = field.real();
            break;
        case 43:
            frontClip_ = field.real();
            break;
        case 44:
            backClip_ = field.real();
            break;
        case 45:
            viewHeight_ = field.real();
            break;
        case 50:
            snapAngle_ = field.real();
            break;
        case 51:
            twist_ = field.real();
            break;
        case 72:
            circleSides_ = static_cast<int16_t>(field.integer());
            break;
        case 90:
            statusFlags_ = field.integer();
            break;
        case 340:
            clipEntity_ = field.objectId();
            break;
        case 1:
            plotStyleSheet_ = field.text();
            break;
        case 281:
            renderMode_ = static_cast<int16_t>(field.integer());
            break;
        case 71:
            ucsPerViewport_ = field.flag();
            break;
        case 110:
            ucsOrigin_ = field.point();
            break;
        case 111:
            ucsXAxis_ = field.vector();
            break;
        case 112:
            ucsYAxis_ = field.vector();
            break;
        case 345:
            ucs_ = field.objectId();
            break;
        case 346:
            baseUcs_ = field.objectId();
            break;
        case 79:
            ucsOrthographic_ = static_cast<int16_t>(field.integer());
            break;
        case 146:
            elevation_ = field.real();
            break;
        default:
            break;
    }
}
