#include <algorithm>

#include "companion/hvac_solid.h"
#include "companion/solid_bytes.h"

namespace sg::companion {
namespace {

constexpr const wchar_t* kMarker = L"qn_hvacSolid";
constexpr int32_t kVersion = 1;
constexpr int32_t kMostBytes = 1 << 28;
constexpr size_t kChunk = 127;  // bytes in a group of binary data
constexpr size_t kStretch = 1 << 16;

enum Group { kVersionGroup = 90, kOptionGroup = 91, kBytesGroup = 310 };

int digitOf(wchar_t digit) {
    if (digit >= L'0' && digit <= L'9') return digit - L'0';
    if (digit >= L'A' && digit <= L'F') return digit - L'A' + 10;
    if (digit >= L'a' && digit <= L'f') return digit - L'a' + 10;
    return -1;
}

// Binary data is read as the text of its digits. False for one that is none.
bool appendBytes(const wchar_t* digits, std::vector<uint8_t>& bytes) {
    for (; *digits != L'\0'; digits += 2) {
        const int high = digitOf(digits[0]);
        const int low = digitOf(digits[1]);
        if (high < 0 || low < 0) return false;
        bytes.push_back(static_cast<uint8_t>(high * 16 + low));
    }
    return true;
}

}  // namespace

Acad::ErrorStatus HvacSolid::takeBytes(std::span<const uint8_t> bytes) {
    Steps steps;
    if (!fromBytes(bytes, steps)) return Acad::eInvalidInput;
    steps_ = std::move(steps);
    forgetShape();
    return Acad::eOk;
}

Acad::ErrorStatus HvacSolid::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    AcDbEntity::dwgOutFields(filer);
    const std::vector<uint8_t> bytes = toBytes(steps_);
    filer->writeInt32(kVersion);
    filer->writeInt32(bodyOption_);
    filer->writeInt32(static_cast<int32_t>(bytes.size()));
    filer->writeBytes(bytes.data(), bytes.size());
    return filer->filerStatus();
}

Acad::ErrorStatus HvacSolid::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    AcDbEntity::dwgInFields(filer);
    int32_t version = 0;
    int32_t option = 0;
    int32_t size = 0;
    if (const auto status = filer->readInt32(&version); status != Acad::eOk) return status;
    if (version > kVersion) return Acad::eMakeMeProxy;
    filer->readInt32(&option);
    if (const auto status = filer->readInt32(&size); status != Acad::eOk) return status;
    if (size < 0 || size > kMostBytes) return Acad::eInvalidInput;
    // In stretches, so that a wrong size takes no memory that the file does not fill.
    std::vector<uint8_t> bytes;
    for (size_t left = static_cast<size_t>(size); left > 0;) {
        const size_t stretch = std::min(left, kStretch);
        const size_t at = bytes.size();
        bytes.resize(at + stretch);
        const auto status = filer->readBytes(bytes.data() + at, stretch);
        if (status != Acad::eOk) return status;
        left -= stretch;
    }
    if (const auto status = takeBytes(bytes); status != Acad::eOk) return status;
    bodyOption_ = option;
    return filer->filerStatus();
}

Acad::ErrorStatus HvacSolid::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    AcDbEntity::dxfOutFields(filer);
    filer->writeString(100, kMarker);
    filer->writeInt32(kVersionGroup, kVersion);
    filer->writeInt32(kOptionGroup, bodyOption_);
    const std::vector<uint8_t> bytes = toBytes(steps_);
    for (size_t at = 0; at < bytes.size(); at += kChunk)
        filer->writeBChunk(kBytesGroup, bytes.data() + at, std::min(kChunk, bytes.size() - at));
    return filer->filerStatus();
}

Acad::ErrorStatus HvacSolid::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(kMarker)) return Acad::eBadDxfSequence;
    std::vector<uint8_t> bytes;
    bool isWhole = true;
    resbuf group{};
    while (filer->readItem(&group) == Acad::eOk) {
        if (group.restype == kVersionGroup && group.resval.rlong > kVersion) {
            return Acad::eMakeMeProxy;
        }
        if (group.restype == kOptionGroup) bodyOption_ = group.resval.rlong;
        if (group.restype == kBytesGroup && group.resval.rstring != nullptr) {
            isWhole = appendBytes(group.resval.rstring, bytes) && isWhole;
        }
    }
    if (!isWhole || (!bytes.empty() && takeBytes(bytes) != Acad::eOk)) {
        return filer->setError(Acad::eInvalidInput, L"the bodies of a duct solid are damaged");
    }
    return filer->filerStatus();
}

}  // namespace sg::companion
