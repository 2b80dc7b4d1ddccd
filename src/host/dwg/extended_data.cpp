#include "host/dwg/extended_data.h"

#include <algorithm>

#include "base/encoding.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "platform/db/database.h"

// Group codes are written without their thousand.

namespace sg::dwg {
namespace {

using model::GroupData;

constexpr int kThousand = 1000;
enum : int { kText = 0, kBrace = 2, kLayer = 3, kBinary = 4, kHandle = 5, kWhole = 70, kLong = 71 };

bool isPoint(int code) {
    return code >= 10 && code <= 18;
}
bool isReal(int code) {
    return code >= 40 && code <= 42;
}

constexpr uint16_t kCodePage1252 = 30;  // what texts until release 2004 say to be in

std::string textOf(BitReader& from, const ReadContext& context) {
    std::wstring text;
    if (context.release < AcDb::kDHL_1021) {
        const size_t size = from.rawChar();
        from.rawShort();
        context.codec.decode(from.rawBytes(size), text);
    } else {
        const size_t count = from.rawShort();
        std::u16string units;
        for (size_t i = 0; i < count && !from.hasFailed(); ++i)
            units.push_back(static_cast<char16_t>(from.rawShort()));
        text = fromUtf16(units);
    }
    while (!text.empty() && text.back() == L'\0')
        text.pop_back();
    return toUtf8(text);
}

uint64_t longHandle(BitReader& from) {
    return __builtin_bswap64(from.rawLongLong());
}

// Drawings have layers by their names here. Those of tables are read ahead of everything else.
std::string layerName(AcDbObjectId layer) {
    const auto* const record = model::peek<AcDbLayerTableRecord>(layer);
    return record == nullptr ? std::string() : toUtf8(record->name());
}

// A point is three groups, ten apart.
void takePoint(BitReader& from, int code, GroupData& groups) {
    for (const int step : {0, 10, 20})
        groups.appendReal(kThousand + code + step, from.rawDouble());
}

// False for a code that is none.
bool takeGroup(BitReader& from, ReadContext& context, GroupData& groups) {
    const int code = from.rawChar();
    const int full = kThousand + code;
    if (isPoint(code)) {
        takePoint(from, code, groups);
        return true;
    }
    if (isReal(code)) {
        groups.appendReal(full, from.rawDouble());
        return true;
    }
    switch (code) {
        case kText:
            groups.appendText(full, textOf(from, context));
            return true;
        case kBrace:
            groups.appendText(full, from.rawChar() == 0 ? "{" : "}");
            return true;
        case kLayer:
            groups.appendText(full, layerName(context.refer({kHardPointer, longHandle(from)})));
            return true;
        case kBinary:
            groups.appendBinary(full, from.rawBytes(from.rawChar()));
            return true;
        case kHandle:
            groups.appendHandle(full, longHandle(from));
            return true;
        case kWhole:
            groups.appendWhole(full, static_cast<int16_t>(from.rawShort()));
            return true;
        case kLong:
            groups.appendWhole(full, static_cast<int32_t>(from.rawLong()));
            return true;
        default:
            return false;
    }
}

}  // namespace

bool readExtendedData(BitReader& from, ReadContext& context, model::ExtendedData& data) {
    bool isWhole = true;
    while (const auto size = static_cast<size_t>(static_cast<uint16_t>(from.bitShort()))) {
        const FileHandle application = from.handle();
        const size_t end = from.position() + size * 8;
        if (from.hasFailed() || size * 8 > from.left()) return false;
        model::ExtendedData::Part part;
        part.application = context.refer(application);
        BitReader groups(from.bytes(), from.position(), end);
        bool isGood = !part.application.isNull();
        while (isGood && groups.left() >= 8)
            isGood = takeGroup(groups, context, part.groups) && !groups.hasFailed();
        if (isGood) data.replace(std::move(part));
        isWhole = isWhole && isGood;
        from.seek(end);
    }
    return isWhole;
}

namespace {

class PartWriter {
  public:
    PartWriter(BitWriter& to, const WriteContext& context) : to_(to), context_(context) {}

    void write(const GroupData& groups) {
        for (GroupData::Walk walk(groups); walk.next();)
            writeGroup(walk.group());
    }

  private:
    void writeGroup(const GroupData::Group& group) {
        const int code = group.code - kThousand;
        using Kind = GroupData::Kind;
        switch (group.kind) {
            case Kind::point:
            case Kind::flatPoint:
                begin(code);
                for (const double value : {group.real, group.y, group.z})
                    to_.rawDouble(value);
                return;
            case Kind::real:
                // The second and third of a point's numbers stand behind the first.
                if (code < 20 || isReal(code)) begin(code);
                to_.rawDouble(group.real);
                return;
            case Kind::whole:
                begin(code);
                if (code == kWhole) return to_.rawShort(static_cast<uint16_t>(group.whole));
                return to_.rawLong(static_cast<uint32_t>(group.whole));
            case Kind::text:
                return writeText(code, group.text);
            case Kind::binary:
                begin(code);
                to_.rawChar(static_cast<uint8_t>(std::min<size_t>(group.text.size(), 0xFF)));
                return to_.rawBytes(group.text.substr(0, 0xFF));
            case Kind::handle:
                begin(code);
                return to_.rawLongLong(__builtin_bswap64(group.handle));
            case Kind::object:
                begin(code);
                return to_.rawLongLong(__builtin_bswap64(context_.handleOf(group.object)));
        }
    }

    void begin(int code) { to_.rawChar(static_cast<uint8_t>(code)); }

    void writeText(int code, std::string_view utf8) {
        begin(code);
        if (code == kBrace) return to_.rawChar(utf8 == "{" ? 0 : 1);
        if (code == kLayer) {
            const AcDbObjectId layer =
                model::findRecord(context_.database.layerTableId(), fromUtf8(utf8));
            return to_.rawLongLong(__builtin_bswap64(context_.handleOf(layer)));
        }
        if (context_.release >= AcDb::kDHL_1021) {
            const std::u16string units = toUtf16(fromUtf8(utf8));
            to_.rawShort(static_cast<uint16_t>(units.size()));
            for (const char16_t unit : units)
                to_.rawShort(unit);
            return;
        }
        std::string bytes;
        context_.codec.encode(fromUtf8(utf8), bytes);
        bytes.resize(std::min<size_t>(bytes.size(), 0xFF));
        to_.rawChar(static_cast<uint8_t>(bytes.size()));
        to_.rawShort(__builtin_bswap16(kCodePage1252));
        to_.rawBytes(bytes);
    }

    BitWriter& to_;
    const WriteContext& context_;
};

}  // namespace

void writeExtendedData(BitWriter& to, const WriteContext& context,
                       const model::ExtendedData& data) {
    for (const model::ExtendedData::Part& part : data.parts()) {
        const uint64_t application = context.handleOf(part.application);
        if (application == 0) continue;
        BitWriter groups;
        PartWriter(groups, context).write(part.groups);
        const Bytes& bytes = groups.bytes();
        to.bitShort(static_cast<int16_t>(bytes.size()));
        to.handle(kHardPointer, application);
        to.rawBytes(bytes.data(), bytes.size());
    }
    to.bitShort(0);
}

}  // namespace sg::dwg
