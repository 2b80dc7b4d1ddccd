#include "host/model/core/dwg_form.h"

#include <algorithm>
#include <array>

#include "host/model/core/line_weights.h"
#include "host/model/core/proxies.h"
#include "host/model/kept/kept_form.h"

namespace sg::model {
namespace {

void writeStream(AcDbDwgFiler& filer, const std::vector<uint8_t>& bytes, uint32_t bits) {
    filer.writeUInt32(bits);
    filer.writeUInt32(static_cast<uint32_t>(bytes.size()));
    filer.writeBytes(bytes.data(), bytes.size());
}

void readStream(AcDbDwgFiler& filer, std::vector<uint8_t>& bytes, uint32_t& bits) {
    filer.readUInt32(&bits);
    readBytes(&filer, bytes);
}

}  // namespace

void KeptBits::dwgOut(AcDbDwgFiler& filer) const {
    filer.writeInt16(release);
    writeStream(filer, data, dataBits);
    writeStream(filer, texts, textBits);
    writeStream(filer, graphics, 0);
    filer.writeUInt32(static_cast<uint32_t>(ids.size()));
    for (const Id& item : ids) {
        filer.writeUInt8(static_cast<uint8_t>(item.kind));
        writeReference(filer, item.kind, item.id);
    }
}

Acad::ErrorStatus KeptBits::dwgIn(AcDbDwgFiler& filer) {
    uint32_t none = 0;
    uint32_t count = 0;
    filer.readInt16(&release);
    readStream(filer, data, dataBits);
    readStream(filer, texts, textBits);
    readStream(filer, graphics, none);
    const bool isWhole = dataBits <= data.size() * 8 && textBits <= texts.size() * 8;
    const bool isKnown = release == 0 || (release >= AcDb::kDHL_1012 && release <= AcDb::kDHL_1032);
    if (!isWhole || !isKnown) return Acad::eInvalidInput;
    filer.readUInt32(&count);
    ids.clear();
    while (count-- > 0 && filer.filerStatus() == Acad::eOk) {
        uint8_t kind = 0;
        filer.readUInt8(&kind);
        const auto reference = static_cast<Reference>(kind);
        ids.push_back({reference, readReference(filer, reference)});
    }
    return filer.filerStatus();
}

// ---- Bytes --------------------------------------------------------------------------------------

Acad::ErrorStatus readBytes(AcDbDwgFiler* filer, std::vector<uint8_t>& bytes) {
    uint32_t size = 0;
    filer->readUInt32(&size);
    return readBytes(filer, size, bytes);
}

Acad::ErrorStatus readBytes(AcDbDwgFiler* filer, uint32_t size, std::vector<uint8_t>& bytes) {
    constexpr size_t kPart = 1 << 16;
    uint32_t rest = size;
    bytes.clear();
    while (rest > 0 && filer->filerStatus() == Acad::eOk) {
        const size_t part = std::min<size_t>(rest, kPart);
        bytes.resize(bytes.size() + part);
        filer->readBytes(bytes.data() + bytes.size() - part, part);
        rest -= static_cast<uint32_t>(part);
    }
    return filer->filerStatus();
}

// ---- Parts of a whole ---------------------------------------------------------------------------

Acad::ErrorStatus writePartCount(AcDbDwgFiler* filer, size_t count) {
    if (hasLinkedParts(filer)) return filer->filerStatus();
    return filer->writeUInt32(static_cast<uint32_t>(count));
}

Acad::ErrorStatus readPartCount(AcDbDwgFiler* filer, uint32_t& count) {
    count = 0;
    return hasLinkedParts(filer) ? filer->filerStatus() : filer->readUInt32(&count);
}

Acad::ErrorStatus writePartIds(AcDbDwgFiler* filer, const std::vector<AcDbHardOwnershipId>& parts) {
    if (hasLinkedParts(filer)) {
        const AcDbHardOwnershipId none;
        filer->writeSoftPointerId(AcDbObjectId(parts.empty() ? none : parts.front()));
        return filer->writeSoftPointerId(AcDbObjectId(parts.empty() ? none : parts.back()));
    }
    for (const AcDbHardOwnershipId& part : parts)
        filer->writeHardOwnershipId(part);
    return filer->filerStatus();
}

Acad::ErrorStatus readPartIds(AcDbDwgFiler* filer, uint32_t count,
                              std::vector<AcDbHardOwnershipId>& parts) {
    parts.clear();
    if (hasLinkedParts(filer)) {
        AcDbSoftPointerId first, last;
        filer->readSoftPointerId(&first);
        return filer->readSoftPointerId(&last);
    }
    while (count-- > 0 && filer->filerStatus() == Acad::eOk) {
        AcDbHardOwnershipId part;
        filer->readHardOwnershipId(&part);
        if (!part.isNull()) parts.push_back(part);
    }
    return filer->filerStatus();
}

// ---- Line weights -------------------------------------------------------------------------------

namespace {

constexpr uint8_t kByLayer = 29;
constexpr uint8_t kByBlock = 30;
constexpr uint8_t kDefault = 31;

}  // namespace

uint8_t lineWeightCode(AcDb::LineWeight weight) {
    if (weight == AcDb::kLnWtByLayer) return kByLayer;
    if (weight == AcDb::kLnWtByBlock) return kByBlock;
    const auto found = std::find(kLineWeights.begin(), kLineWeights.end(), weight);
    return found == kLineWeights.end() ? kDefault
                                       : static_cast<uint8_t>(found - kLineWeights.begin());
}

AcDb::LineWeight lineWeightOf(uint8_t code) {
    if (code == kByLayer) return AcDb::kLnWtByLayer;
    if (code == kByBlock) return AcDb::kLnWtByBlock;
    return code < kLineWeights.size() ? static_cast<AcDb::LineWeight>(kLineWeights[code])
                                      : AcDb::kLnWtByLwDefault;
}

bool hasDwgForm(const AcDbObject& object, AcDb::AcDbDwgVersion release) {
    const ProxyData* const data = proxyData(object);
    return data == nullptr || keepsBitsFor(*data, release) || canWriteKept(*data, release);
}

}  // namespace sg::model
