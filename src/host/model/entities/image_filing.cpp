#include <algorithm>
#include <memory>

#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"
#include "host/model/entities/image.h"
#include "host/model/tables/filing.h"
#include "platform/db/database.h"

// Filing of images, and the objects behind them.

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImageDef, AcDbObject, 0, 0, L"IMAGEDEF", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbRasterImageDefReactor, AcDbObject, 0, 0, L"IMAGEDEF_REACTOR", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbRasterVariables, AcDbObject, 0, 0, L"RASTERVARIABLES", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbWipeoutVariables, AcDbObject, 0, 0, L"WIPEOUTVARIABLES", nullptr)

// ---- Images -------------------------------------------------------------------------------------

namespace {

// A rectangle is in files without the number of its corners.
constexpr uint32_t kRectangleCorners = 2;

// The boundary around all pixels.
std::vector<AcGePoint2d> wholeBoundary(const AcGeVector2d& size) {
    return {{-0.5, -0.5}, {size.x - 0.5, size.y - 0.5}};
}

}  // namespace

Acad::ErrorStatus AcDbRasterImage::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    filer->writeInt32(version_);
    filer->writePoint3d(origin_);
    filer->writeVector3d(u_);
    filer->writeVector3d(v_);
    filer->writeVector2d(size_);
    filer->writeHardPointerId(definition_);
    // A copy outside a database has no reactor.
    filer->writeHardOwnershipId(filer->filerType() == AcDb::kCopyFiler ? AcDbHardOwnershipId()
                                                                       : reactor_);
    filer->writeInt16(display_);
    filer->writeBool(clipping_);
    filer->writeUInt8(brightness_);
    filer->writeUInt8(contrast_);
    filer->writeUInt8(fade_);
    if (!sg::model::isBefore(filer, AcDb::kDHL_1024)) filer->writeBool(clipInverted_);
    filer->writeInt16(clipType_);
    const bool inFile = filer->dwgForm() != nullptr;
    const bool isWhole = inFile && clipType_ == kRectangle && clip_.size() != kRectangleCorners;
    const std::vector<AcGePoint2d> clip = isWhole ? wholeBoundary(size_) : clip_;
    if (!inFile || clipType_ != kRectangle) {
        filer->writeUInt32(static_cast<uint32_t>(clip.size()));
    }
    for (const AcGePoint2d& point : clip)
        filer->writePoint2d(point);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbRasterImage::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    int16_t type = 0;
    uint32_t count = 0;
    filer->readInt32(&version_);
    filer->readPoint3d(&origin_);
    filer->readVector3d(&u_);
    filer->readVector3d(&v_);
    filer->readVector2d(&size_);
    filer->readHardPointerId(&definition_);
    filer->readHardOwnershipId(&reactor_);
    filer->readInt16(&display_);
    filer->readBool(&clipping_);
    filer->readUInt8(&brightness_);
    filer->readUInt8(&contrast_);
    filer->readUInt8(&fade_);
    clipInverted_ = false;
    if (!sg::model::isBefore(filer, AcDb::kDHL_1024)) filer->readBool(&clipInverted_);
    filer->readInt16(&type);
    clipType_ = static_cast<ClipType>(type);
    if (filer->dwgForm() != nullptr && clipType_ == kRectangle) {
        count = kRectangleCorners;
    } else {
        filer->readUInt32(&count);
    }
    clip_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i)
        filer->readPoint2d(&clip_.emplace_back());
    return filer->filerStatus();
}

// Without a boundary of its own an image has the one around all its pixels.
Acad::ErrorStatus AcDbRasterImage::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, marker());
    filer->writeInt32(90, version_);
    filer->writePoint3d(10, origin_);
    filer->writeVector3d(11, u_);
    filer->writeVector3d(12, v_);
    filer->writePoint2d(13, {size_.x, size_.y});
    filer->writeObjectId(340, definition_);
    filer->writeInt16(70, display_);
    filer->writeInt16(280, clipping_ ? 1 : 0);
    filer->writeInt16(281, brightness_);
    filer->writeInt16(282, contrast_);
    filer->writeInt16(283, fade_);
    filer->writeObjectId(360, reactor_);
    filer->writeInt16(71, clipType_);
    const std::vector<AcGePoint2d> boundary = clip_.empty() ? wholeBoundary(size_) : clip_;
    filer->writeInt32(91, static_cast<int32_t>(boundary.size()));
    for (const AcGePoint2d& point : boundary)
        filer->writePoint2d(14, point);
    if (filer->dwgVersion() >= AcDb::kDHL_1024) filer->writeBool(290, clipInverted_);
    return filer->filerStatus();
}

bool AcDbRasterImage::takeGroup(const FieldReader& field) {
    const auto percent = [&] {
        return static_cast<uint8_t>(std::clamp<int32_t>(field.integer(), 0, 100));
    };
    switch (field.code()) {
        case 90:
            version_ = field.integer();
            return true;
        case 10:
            origin_ = field.point();
            return true;
        case 11:
            u_ = field.vector();
            return true;
        case 12:
            v_ = field.vector();
            return true;
        case 13:
            if (field.point().x > 0 && field.point().y > 0) size_ = field.point2d().asVector();
            return true;
        case 340:
            definition_ = field.objectId();
            return true;
        case 360:
            reactor_ = field.objectId();
            return true;
        case 70:
            display_ = static_cast<int16_t>(field.integer());
            return true;
        case 71:
            clipType_ = field.integer() == kPolygon ? kPolygon : kRectangle;
            return true;
        case 280:
            clipping_ = field.flag();
            return true;
        case 281:
            brightness_ = percent();
            return true;
        case 282:
            contrast_ = percent();
            return true;
        case 283:
            fade_ = percent();
            return true;
        case 290:
            clipInverted_ = field.flag();
            return true;
        default:
            return false;
    }
}

Acad::ErrorStatus AcDbRasterImage::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(marker())) return Acad::eBadDxfSequence;
    std::vector<AcGePoint2d> boundary;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 14) {
            boundary.push_back(fields.point2d());
        } else {
            takeGroup(fields);
        }
    }
    if (!boundary.empty()) clip_ = std::move(boundary);
    return filer->filerStatus();
}

// ---- Definitions --------------------------------------------------------------------------------

AcDbRasterImageDef::AcDbRasterImageDef() = default;
AcDbRasterImageDef::~AcDbRasterImageDef() = default;

Acad::ErrorStatus AcDbRasterImageDef::setSourceFileName(const wchar_t* name) {
    if (name == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    file_ = name;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRasterImageDef::setSize(const AcGeVector2d& pixels) {
    assertWriteEnabled();
    size_ = pixels;
    return Acad::eOk;
}

AcDbObjectId AcDbRasterImageDef::imageDictionary(AcDbDatabase& database) {
    constexpr const wchar_t* kName = L"ACAD_IMAGE_DICT";
    AcDbDictionary* objects = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(objects, database.namedObjectsDictionaryId()) != Acad::eOk) return id;
    if (objects->getAt(kName, id) != Acad::eOk && objects->upgradeOpen() == Acad::eOk) {
        auto made = std::make_unique<AcDbDictionary>();
        if (objects->setAt(kName, made.get(), id) == Acad::eOk) made.release()->close();
    }
    objects->close();
    return id;
}

Acad::ErrorStatus AcDbRasterImageDef::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeInt32(version_);
    filer->writeVector2d(size_);
    filer->writeString(file_);
    filer->writeBool(loaded_);
    filer->writeUInt8(static_cast<uint8_t>(units_));
    return filer->writeVector2d(pixelSize_);
}

Acad::ErrorStatus AcDbRasterImageDef::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    uint8_t units = 0;
    filer->readInt32(&version_);
    filer->readVector2d(&size_);
    filer->readString(file_);
    filer->readBool(&loaded_);
    filer->readUInt8(&units);
    units_ = units;
    return filer->readVector2d(&pixelSize_);
}

Acad::ErrorStatus AcDbRasterImageDef::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbRasterImageDef");
    filer->writeInt32(90, version_);
    filer->writeString(1, file_);
    filer->writePoint2d(10, {size_.x, size_.y});
    filer->writePoint2d(11, {pixelSize_.x, pixelSize_.y});
    filer->writeInt16(280, loaded_ ? 1 : 0);
    return filer->writeInt16(281, units_);
}

Acad::ErrorStatus AcDbRasterImageDef::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbRasterImageDef")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 90:
                version_ = fields.integer();
                break;
            case 1:
                file_ = fields.text();
                break;
            case 10:
                size_ = fields.point2d().asVector();
                break;
            case 11:
                pixelSize_ = fields.point2d().asVector();
                break;
            case 280:
                loaded_ = fields.flag();
                break;
            case 281:
                units_ = static_cast<int16_t>(fields.integer());
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}

AcDbRasterImageDefReactor::AcDbRasterImageDefReactor() = default;
AcDbRasterImageDefReactor::AcDbRasterImageDefReactor(AcDbObjectId image) : image_(image) {}
AcDbRasterImageDefReactor::~AcDbRasterImageDefReactor() = default;

Acad::ErrorStatus AcDbRasterImageDefReactor::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeInt32(version_);
    // In files the image is the reactor's owner.
    if (filer->dwgForm() != nullptr) return filer->filerStatus();
    return filer->writeSoftPointerId(image_);
}

Acad::ErrorStatus AcDbRasterImageDefReactor::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    filer->readInt32(&version_);
    if (filer->dwgForm() == nullptr) return filer->readSoftPointerId(&image_);
    image_ = ownerId();
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbRasterImageDefReactor::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbRasterImageDefReactor");
    filer->writeInt32(90, version_);
    return filer->writeObjectId(330, image_);
}

Acad::ErrorStatus AcDbRasterImageDefReactor::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbRasterImageDefReactor")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 90) version_ = fields.integer();
        if (fields.code() == 330) image_ = fields.objectId();
    }
    return filer->filerStatus();
}

// ---- Variables ----------------------------------------------------------------------------------

namespace {

// What the dictionary of a drawing has under this name; null when it is not there.
template <class Variables>
const Variables* variablesOf(const AcDbDatabase& database, const wchar_t* name) {
    AcDbDictionary* objects = nullptr;
    if (acdbOpenObject(objects, database.namedObjectsDictionaryId()) != Acad::eOk) return nullptr;
    AcDbObjectId id;
    objects->getAt(name, id);
    objects->close();
    return sg::model::peek<Variables>(id);
}

}  // namespace

bool AcDbRasterVariables::showsFrames(const AcDbDatabase& database) {
    const auto* const variables = variablesOf<AcDbRasterVariables>(database, L"ACAD_IMAGE_VARS");
    return variables == nullptr || variables->frame_ != 0;
}

bool AcDbWipeoutVariables::showsFrames(const AcDbDatabase& database) {
    const auto* const variables = variablesOf<AcDbWipeoutVariables>(database, L"ACAD_WIPEOUT_VARS");
    return variables == nullptr || variables->frame_ != 0;
}

AcDbRasterVariables::AcDbRasterVariables() = default;
AcDbRasterVariables::~AcDbRasterVariables() = default;

Acad::ErrorStatus AcDbRasterVariables::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeInt32(version_);
    filer->writeInt16(frame_);
    filer->writeInt16(quality_);
    return filer->writeInt16(units_);
}

Acad::ErrorStatus AcDbRasterVariables::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    filer->readInt32(&version_);
    filer->readInt16(&frame_);
    filer->readInt16(&quality_);
    return filer->readInt16(&units_);
}

Acad::ErrorStatus AcDbRasterVariables::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbRasterVariables");
    filer->writeInt32(90, version_);
    filer->writeInt16(70, frame_);
    filer->writeInt16(71, quality_);
    return filer->writeInt16(72, units_);
}

Acad::ErrorStatus AcDbRasterVariables::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbRasterVariables")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 90) version_ = fields.integer();
        if (fields.code() == 70) frame_ = static_cast<int16_t>(fields.integer());
        if (fields.code() == 71) quality_ = static_cast<int16_t>(fields.integer());
        if (fields.code() == 72) units_ = static_cast<int16_t>(fields.integer());
    }
    return filer->filerStatus();
}

AcDbWipeoutVariables::AcDbWipeoutVariables() = default;
AcDbWipeoutVariables::~AcDbWipeoutVariables() = default;

Acad::ErrorStatus AcDbWipeoutVariables::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    return filer->writeInt16(frame_);
}

Acad::ErrorStatus AcDbWipeoutVariables::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    return filer->readInt16(&frame_);
}

Acad::ErrorStatus AcDbWipeoutVariables::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeString(100, L"AcDbWipeoutVariables");
    return filer->writeInt16(70, frame_);
}

Acad::ErrorStatus AcDbWipeoutVariables::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbWipeoutVariables")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 70) frame_ = static_cast<int16_t>(fields.integer());
    }
    return filer->filerStatus();
}
