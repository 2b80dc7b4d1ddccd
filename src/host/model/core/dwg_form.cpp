#include "host/model/core/dwg_form.h"

#include "host/model/core/proxies.h"

namespace sg::model {
namespace {

void writeStream(AcDbDwgFiler& filer, const std::vector<uint8_t>& bytes, uint32_t bits) {
    filer.writeUInt32(bits);
    filer.writeUInt32(static_cast<uint32_t>(bytes.size()));
    filer.writeBytes(bytes.data(), bytes.size());
}

void readStream(AcDbDwgFiler& filer, std::vector<uint8_t>& bytes, uint32_t& bits) {
    uint32_t size = 0;
    filer.readUInt32(&bits);
    filer.readUInt32(&size);
    bytes.resize(filer.filerStatus() == Acad::eOk ? size : 0);
    filer.readBytes(bytes.data(), bytes.size());
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

bool hasDwgForm(const AcDbObject& object, AcDb::AcDbDwgVersion release) {
    const ProxyData* const data = proxyData(object);
    return data == nullptr || (data->bits != nullptr && data->bits->release == release);
}

}  // namespace sg::model
