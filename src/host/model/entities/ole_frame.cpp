#include "host/model/entities/ole_frame.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/listing.h"
#include "host/model/tables/filing.h"
#include "platform/gi/draw.h"

using sg::model::FieldReader;

ACRX_DXF_DEFINE_MEMBERS(AcDbOle2Frame, AcDbEntity, 0, 0, L"OLE2FRAME", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbOleFrame, AcDbEntity, 0, 0, L"OLEFRAME", nullptr)

namespace {

constexpr const wchar_t* kDataEnd = L"OLE";
constexpr const wchar_t* kDescription = L"OLE";
constexpr uint8_t kLocksAspect = 0;

// ---- Data ---------------------------------------------------------------------------------------

void writeData(AcDbDwgFiler* filer, const std::vector<uint8_t>& data) {
    filer->writeUInt32(static_cast<uint32_t>(data.size()));
    filer->writeBytes(data.data(), data.size());
}

// Programs do not see the data.
void writeData(AcDbDxfFiler* filer, const std::vector<uint8_t>& data) {
    constexpr size_t kChunk = 127;
    if (filer->filerType() == AcDb::kBagFiler) return;
    filer->writeInt32(90, static_cast<int32_t>(data.size()));
    for (size_t at = 0; at < data.size(); at += kChunk)
        filer->writeBChunk(310, data.data() + at, std::min(kChunk, data.size() - at));
    filer->writeString(1, kDataEnd);
}

int digitOf(wchar_t c) {
    if (c >= L'0' && c <= L'9') return c - L'0';
    if (c >= L'A' && c <= L'F') return c - L'A' + 10;
    return c >= L'a' && c <= L'f' ? c - L'a' + 10 : -1;
}

// Two digits a byte; what is none ends the chunk.
void appendChunk(const std::wstring& digits, std::vector<uint8_t>& data) {
    for (size_t i = 0; i + 1 < digits.size(); i += 2) {
        const int high = digitOf(digits[i]);
        const int low = digitOf(digits[i + 1]);
        if (high < 0 || low < 0) return;
        data.push_back(static_cast<uint8_t>(high << 4 | low));
    }
}

}  // namespace

AcDbOle2Frame::AcDbOle2Frame() = default;
AcDbOle2Frame::~AcDbOle2Frame() = default;
AcDbOleFrame::AcDbOleFrame() = default;
AcDbOleFrame::~AcDbOleFrame() = default;

Acad::ErrorStatus AcDbOle2Frame::setPosition(const AcGePoint3d& upperLeft,
                                             const AcGePoint3d& lowerRight) {
    assertWriteEnabled();
    upperLeft_ = upperLeft;
    lowerRight_ = lowerRight;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbOle2Frame::setData(Type type, std::vector<uint8_t> data) {
    assertWriteEnabled();
    type_ = type;
    data_ = std::move(data);
    return Acad::eOk;
}

// ---- Geometry -----------------------------------------------------------------------------------

std::array<AcGePoint3d, 4> AcDbOle2Frame::corners() const {
    return {upperLeft_, AcGePoint3d(upperLeft_.x, lowerRight_.y, lowerRight_.z), lowerRight_,
            AcGePoint3d(lowerRight_.x, upperLeft_.y, upperLeft_.z)};
}

bool AcDbOle2Frame::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const std::array<AcGePoint3d, 4> all = corners();
    const AcGePoint3d outline[] = {all[0], all[1], all[2], all[3], all[0]};
    draw->geometry().polyline(5, outline);
    return true;
}

Acad::ErrorStatus AcDbOle2Frame::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    const AcGePoint3d a = transform * upperLeft_;
    const AcGePoint3d b = transform * lowerRight_;
    upperLeft_.set(std::min(a.x, b.x), std::max(a.y, b.y), a.z);
    lowerRight_.set(std::max(a.x, b.x), std::min(a.y, b.y), b.z);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbOle2Frame::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                  AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& corner : corners())
        points.append(corner);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbOle2Frame::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    assertWriteEnabled();
    const auto has = [&](int a, int b) { return indices.contains(a) || indices.contains(b); };
    if (has(0, 1)) upperLeft_.x += offset.x;
    if (has(0, 3)) upperLeft_.y += offset.y;
    if (has(2, 3)) lowerRight_.x += offset.x;
    if (has(1, 2)) lowerRight_.y += offset.y;
    if (has(0, 3)) upperLeft_.z += offset.z;
    if (has(1, 2)) lowerRight_.z += offset.z;
    return Acad::eOk;
}

void AcDbOle2Frame::subList() const {
    AcDbEntity::subList();
    sg::model::listText(L"from", description_.c_str());
    sg::model::listPoint(L"upper left", upperLeft_);
    sg::model::listPoint(L"lower right", lowerRight_);
}

// ---- Filing -------------------------------------------------------------------------------------

namespace {

// The data starts with a mark and the four corners, from the upper left one on clockwise.
constexpr std::array<uint8_t, 2> kMark = {0x80, 0x55};
constexpr size_t kCornerSize = 3 * sizeof(double);

AcGePoint3d cornerAt(const std::vector<uint8_t>& data, size_t index) {
    std::array<double, 3> values{};
    std::memcpy(values.data(), data.data() + kMark.size() + index * kCornerSize, kCornerSize);
    return {values[0], values[1], values[2]};
}

}  // namespace

Acad::ErrorStatus AcDbOle2Frame::readFrame(AcDbDwgFiler& filer) {
    uint8_t locksAspect = 0;
    filer.readUInt8(&locksAspect);
    description_ = kDescription;
    const bool hasCorners = data_.size() >= kMark.size() + 4 * kCornerSize &&
                            std::equal(kMark.begin(), kMark.end(), data_.begin());
    if (!hasCorners) return filer.filerStatus();
    upperLeft_ = cornerAt(data_, 0);
    lowerRight_ = cornerAt(data_, 2);
    return filer.filerStatus();
}

Acad::ErrorStatus AcDbOle2Frame::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    filer->writeInt16(static_cast<int16_t>(type_));
    filer->writeInt16(tileMode_);
    writeData(filer, data_);
    if (filer->dwgForm() != nullptr) return filer->writeUInt8(kLocksAspect);
    filer->writeInt16(version_);
    filer->writeString(description_);
    filer->writePoint3d(upperLeft_);
    return filer->writePoint3d(lowerRight_);
}

Acad::ErrorStatus AcDbOle2Frame::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    int16_t type = 0;
    filer->readInt16(&type);
    type_ = static_cast<Type>(std::clamp<int16_t>(type, 1, 3));
    if (!sg::model::isBefore(filer, AcDb::kDHL_1015)) filer->readInt16(&tileMode_);
    sg::model::readBytes(filer, data_);
    if (filer->dwgForm() != nullptr) return readFrame(*filer);
    filer->readInt16(&version_);
    filer->readString(description_);
    filer->readPoint3d(&upperLeft_);
    return filer->readPoint3d(&lowerRight_);
}

Acad::ErrorStatus AcDbOle2Frame::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbOle2Frame");
    filer->writeInt16(70, version_);
    filer->writeString(3, description_);
    filer->writePoint3d(10, upperLeft_);
    filer->writePoint3d(11, lowerRight_);
    filer->writeInt16(71, static_cast<int16_t>(type_));
    filer->writeInt16(72, tileMode_);
    writeData(filer, data_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbOle2Frame::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbOle2Frame")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        switch (fields.code()) {
            case 3:
                description_ = fields.text();
                break;
            case 10:
                upperLeft_ = fields.point();
                break;
            case 11:
                lowerRight_ = fields.point();
                break;
            case 70:
                version_ = static_cast<int16_t>(fields.integer());
                break;
            case 71:
                type_ = static_cast<Type>(std::clamp<int32_t>(fields.integer(), 1, 3));
                break;
            case 72:
                tileMode_ = static_cast<int16_t>(fields.integer());
                break;
            case 90:
                data_.clear();
                break;
            case 310:
                appendChunk(fields.text(), data_);
                break;
            default:
                break;
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbOleFrame::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    filer->writeInt16(version_);
    writeData(filer, data_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbOleFrame::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    filer->readInt16(&version_);
    sg::model::readBytes(filer, data_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbOleFrame::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, L"AcDbOleFrame");
    filer->writeInt16(70, version_);
    writeData(filer, data_);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbOleFrame::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbOleFrame")) return Acad::eBadDxfSequence;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 70) version_ = static_cast<int16_t>(fields.integer());
        if (fields.code() == 90) data_.clear();
        if (fields.code() == 310) appendChunk(fields.text(), data_);
    }
    return filer->filerStatus();
}
