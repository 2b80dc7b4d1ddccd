#include "host/dwg/read_filer.h"

#include "base/encoding.h"

namespace sg::dwg {
namespace {

void readWideText(BitReader& from, size_t count, std::wstring& text) {
    bool hasSurrogates = false;
    for (size_t i = 0; i < count; ++i) {
        const auto unit = static_cast<wchar_t>(from.rawShort());
        hasSurrogates = hasSurrogates || (unit >= 0xD800 && unit < 0xE000);
        text.push_back(unit);
    }
    if (hasSurrogates) text = fromUtf16(std::u16string(text.begin(), text.end()));
}

// A row of bits of its own, beginning at a byte.
std::vector<uint8_t> copyOf(BitReader from, uint32_t& count) {
    count = static_cast<uint32_t>(from.left());
    BitWriter bits;
    while (from.left() >= 8)
        bits.rawChar(from.rawChar());
    const auto rest = static_cast<unsigned>(from.left());
    if (rest != 0) bits.bits(from.bits(rest), rest);
    return bits.bytes();
}

model::Reference referenceOf(uint8_t code) {
    switch (code) {
        case 2:
            return model::Reference::softOwnership;
        case 3:
            return model::Reference::hardOwnership;
        case 5:
            return model::Reference::hardPointer;
        default:
            return model::Reference::softPointer;
    }
}

}  // namespace

// Some programs count the zero behind a text.
void readText(BitReader& from, const ReadContext& context, std::wstring& text) {
    text.clear();
    const auto count = static_cast<size_t>(static_cast<uint16_t>(from.bitShort()));
    if (context.release >= AcDb::kDHL_1021) {
        if (count * 16 > from.left()) return from.skip(from.left() + 1);
        readWideText(from, count, text);
    } else {
        context.codec.decode(from.rawBytes(count), text);
    }
    while (!text.empty() && text.back() == L'\0')
        text.pop_back();
}

AcCmColor readColor(ReadStreams& from, const ReadContext& context) {
    AcCmColor color;
    const int16_t index = from.data.bitShort();
    if (context.release < AcDb::kDHL_1018) {
        color.setColorIndex(static_cast<uint16_t>(index));
        return color;
    }
    const auto value = static_cast<uint32_t>(from.data.bitLong());
    const uint8_t names = from.data.rawChar();
    BitReader& texts = context.release >= AcDb::kDHL_1021 ? from.texts : from.data;
    std::wstring name;
    if ((names & 1) != 0) readText(texts, context, name);
    if ((names & 2) != 0) readText(texts, context, name);
    switch (value >> 24) {
        case AcCmColor::kByLayer:
            break;
        case AcCmColor::kByColor:
            color.setRGB(static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8),
                         static_cast<uint8_t>(value));
            break;
        case AcCmColor::kByACI:
            color.setColorIndex(static_cast<uint16_t>(value & 0x1FF));
            break;
        default:
            color.setColorIndex(0);
    }
    return color;
}

void ReadFiler::begin(const ReadStreams& streams, uint64_t handle) {
    streams_ = streams;
    start_ = streams;
    own_ = handle;
    status_ = Acad::eOk;
}

Acad::ErrorStatus ReadFiler::failed() {
    status_ = Acad::eEndOfFile;
    return status_;
}

Acad::ErrorStatus ReadFiler::readPoint2d(AcGePoint2d* value) {
    return put(value, data().rawPoint2d());
}

Acad::ErrorStatus ReadFiler::readPoint3d(AcGePoint3d* value) {
    return put(value, data().point3d());
}

Acad::ErrorStatus ReadFiler::readVector2d(AcGeVector2d* value) {
    const AcGePoint2d point = data().rawPoint2d();
    return put(value, AcGeVector2d(point.x, point.y));
}

Acad::ErrorStatus ReadFiler::readVector3d(AcGeVector3d* value) {
    const AcGePoint3d point = data().point3d();
    return put(value, AcGeVector3d(point.x, point.y, point.z));
}

Acad::ErrorStatus ReadFiler::readScale3d(AcGeScale3d* value) {
    const AcGePoint3d point = data().point3d();
    return put(value, AcGeScale3d(point.x, point.y, point.z));
}

Acad::ErrorStatus ReadFiler::readString(std::wstring& value) {
    if (status_ != Acad::eOk) return status_;
    BitReader& from = hasTextStream() ? streams_.texts : streams_.data;
    readText(from, context_, value);
    return from.hasFailed() ? failed() : status_;
}

Acad::ErrorStatus ReadFiler::readAcDbHandle(AcDbHandle* value) {
    const FileHandle handle = data().handle();
    return put(value, AcDbHandle(handle.resolved(own_)));
}

Acad::ErrorStatus ReadFiler::readBytes(void* bytes, size_t count) {
    if (status_ != Acad::eOk) return status_;
    data().rawBytes(bytes, count);
    return data().hasFailed() ? failed() : status_;
}

Acad::ErrorStatus ReadFiler::readThickness(double* value) {
    const bool isZero = release_ >= AcDb::kDHL_1015 && data().bit();
    return put(value, isZero ? 0.0 : data().bitDouble());
}

Acad::ErrorStatus ReadFiler::readExtrusion(AcGeVector3d* value) {
    if (release_ >= AcDb::kDHL_1015 && data().bit()) return put(value, AcGeVector3d(0, 0, 1));
    return readVector3d(value);
}

Acad::ErrorStatus ReadFiler::readColor(AcCmColor* value) {
    return put(value, dwg::readColor(streams_, context_));
}

Acad::ErrorStatus ReadFiler::keep(model::KeptBits& bits) {
    bits.release = static_cast<int16_t>(release_);
    bits.data = copyOf(start_.data, bits.dataBits);
    if (hasTextStream()) bits.texts = copyOf(start_.texts, bits.textBits);
    BitReader handles = start_.handles;
    while (handles.left() >= 8) {
        const FileHandle handle = handles.handle();
        if (handles.hasFailed()) break;
        // Zeros fill the last byte.
        if (handle.code == 0 && handle.value == 0) continue;
        bits.ids.push_back({referenceOf(handle.code), context_.refer(handle, own_)});
    }
    bits.graphics = std::move(graphics_);
    graphics_.clear();
    return status_;
}

}  // namespace sg::dwg
