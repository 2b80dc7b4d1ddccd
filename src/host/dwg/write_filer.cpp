#include "host/dwg/write_filer.h"

#include <algorithm>

#include "base/encoding.h"

namespace sg::dwg {
namespace {

constexpr size_t kLongestText = 0xFFFF;

unsigned kindOf(model::Reference reference) {
    switch (reference) {
        case model::Reference::hardOwnership:
            return kHardOwner;
        case model::Reference::softOwnership:
            return kSoftOwner;
        case model::Reference::hardPointer:
            return kHardPointer;
        case model::Reference::softPointer:
            break;
    }
    return kSoftPointer;
}

}  // namespace

void writeText(BitWriter& to, const WriteContext& context, std::wstring_view text) {
    if (context.release >= AcDb::kDHL_1021) {
        const std::u16string units = toUtf16(text);
        const size_t count = std::min(units.size(), kLongestText);
        to.bitShort(static_cast<int16_t>(count));
        for (size_t i = 0; i < count; ++i)
            to.rawShort(units[i]);
        return;
    }
    std::string bytes;
    context.codec.encode(text, bytes);
    if (bytes.size() > kLongestText) bytes.resize(kLongestText);
    to.bitShort(static_cast<int16_t>(bytes.size()));
    to.rawBytes(bytes);
}

void writeColor(BitWriter& to, const WriteContext& context, const AcCmColor& color) {
    if (context.release < AcDb::kDHL_1018) {
        return to.bitShort(static_cast<int16_t>(color.colorIndex()));
    }
    uint32_t value = static_cast<uint32_t>(color.colorMethod()) << 24;
    if (color.isByColor()) value |= color.rgb();
    if (color.isByACI()) value |= color.colorIndex();
    to.bitShort(0);
    to.bitLong(static_cast<int32_t>(value));
    to.rawChar(0);  // without names
}

Acad::ErrorStatus WriteFiler::writeString(const std::wstring& value) {
    writeText(hasTextStream() ? streams_.texts : data(), context_, value);
    return status_;
}

Acad::ErrorStatus WriteFiler::writeAcDbHandle(const AcDbHandle& value) {
    data().handle(0, value);
    return status_;
}

Acad::ErrorStatus WriteFiler::writeBytes(const void* bytes, size_t count) {
    data().rawBytes(bytes, count);
    return status_;
}

Acad::ErrorStatus WriteFiler::writeThickness(double value) {
    const bool isZero = value == 0;
    if (release_ >= AcDb::kDHL_1015) data().bit(isZero);
    if (release_ < AcDb::kDHL_1015 || !isZero) data().bitDouble(value);
    return status_;
}

Acad::ErrorStatus WriteFiler::writeExtrusion(const AcGeVector3d& value) {
    const bool isUp = value.x == 0 && value.y == 0 && value.z == 1;
    if (release_ >= AcDb::kDHL_1015) data().bit(isUp);
    if (release_ >= AcDb::kDHL_1015 && isUp) return status_;
    return writeVector3d(value);
}

Acad::ErrorStatus WriteFiler::writeColor(const AcCmColor& value) {
    dwg::writeColor(data(), context_, value);
    return status_;
}

std::span<const AcDbObjectId> WriteFiler::referencesTo(AcDbObjectId block) const {
    const auto found = context_.references.find(block);
    if (found == context_.references.end()) return {};
    return found->second;
}

Acad::ErrorStatus WriteFiler::writeKept(const model::KeptBits& bits) {
    data().bitsOf(bits.data, bits.dataBits);
    streams_.texts.bitsOf(bits.texts, bits.textBits);
    for (const model::KeptBits::Id& item : bits.ids)
        reference(kindOf(item.kind), item.id);
    return status_;
}

}  // namespace sg::dwg
