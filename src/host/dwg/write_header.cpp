#include "base/numbers.h"
#include "host/dwg/file_time.h"
#include "host/dwg/header_fields.h"
#include "host/dwg/header_flags.h"
#include "host/dwg/header_roots.h"
#include "host/dwg/header_section.h"
#include "host/dwg/section_streams.h"
#include "host/model/core/object_access.h"
#include "platform/db/dictionary.h"

namespace sg::dwg {
namespace {

using model::VariableValue;

// The dictionaries of the header that are no roots, by their entries among the named objects.
struct NamedDictionary {
    std::wstring_view field;
    const wchar_t* entry;
};
constexpr NamedDictionary kDictionaries[] = {
    {L"*MLINESTYLES", L"ACAD_MLINESTYLE"},   {L"*PLOTSETTINGS", L"ACAD_PLOTSETTINGS"},
    {L"*MATERIALS", L"ACAD_MATERIAL"},       {L"*COLORS", L"ACAD_COLOR"},
    {L"*VISUALSTYLES", L"ACAD_VISUALSTYLE"},
};

AcDbObjectId entryOf(AcDbObjectId dictionary, const wchar_t* name) {
    AcDbDictionary* opened = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(opened, dictionary) != Acad::eOk) return id;
    if (opened->getAt(name, id) != Acad::eOk) id.setNull();
    opened->close();
    return id;
}

class HeaderWriter {
  public:
    HeaderWriter(const model::DatabaseState& state, const WriteContext& context, uint64_t seed,
                 uint64_t viewportHeaders)
        : state_(state), context_(context), seed_(seed), viewportHeaders_(viewportHeaders) {
        if (state.origin != nullptr && state.origin->dwg != nullptr) {
            kept_ = &state.origin->dwg->header;
        }
    }

    Bytes write() {
        size_t place = 0;
        for (const HeaderField& field : headerFields()) {
            ++place;
            if (context_.release < field.since || context_.release > field.until) continue;
            writeField(field, place);
        }
        return closeSection(context_.release, kHeaderStart, streams_.data, streams_.texts,
                            streams_.handles);
    }

  private:
    bool isSplit() const { return context_.release >= AcDb::kDHL_1021; }

    void writePointer(Coding coding, uint64_t handle) {
        BitWriter& to = isSplit() ? streams_.handles : streams_.data;
        to.handle(coding == Coding::owner ? kHardOwner : kHardPointer, handle);
    }

    const VariableValue* keptValue(const std::wstring& name) const {
        if (kept_ == nullptr) return nullptr;
        const auto found = kept_->find(name);
        return found == kept_->end() ? nullptr : &found->second;
    }

    // What the drawing has for a field; null when it has nothing.
    const VariableValue* valueOf(const HeaderField& field, size_t place) const {
        const std::wstring_view name(field.name);
        if (name.empty()) return keptValue(L"#" + std::to_wstring(place));
        const auto variable = model::HeaderVariables::find(name);
        return variable ? &state_.header().at(*variable) : keptValue(std::wstring(name));
    }

    void writeField(const HeaderField& field, size_t place) {
        switch (field.coding) {
            case Coding::weights:
                return streams_.data.bitLong(flags());
            case Coding::plotStyle:
                return writePlotStyle();
            case Coding::seed:
                return streams_.data.handle(0, seed_);
            case Coding::pointer:
            case Coding::owner:
                return writePointer(field.coding, handleOf(field, place));
            default:
                return writeValue(field, valueOf(field, place));
        }
    }

    uint64_t handleOf(const HeaderField& field, size_t place) const {
        const std::wstring_view name(field.name);
        if (name == L"*VIEWPORT_HEADERS") return viewportHeaders_;
        if (const HeaderRoot* const root = headerRoot(name)) {
            return context_.handleOf(state_.roots.*(root->root));
        }
        if (name == L"*CMLSTYLE") return context_.handleOf(multilineStyle());
        for (const NamedDictionary& known : kDictionaries) {
            if (known.field != name) continue;
            return context_.handleOf(entryOf(state_.roots.namedObjects, known.entry));
        }
        const VariableValue* const value = valueOf(field, place);
        const auto* const id = value == nullptr ? nullptr : std::get_if<AcDbObjectId>(value);
        return id == nullptr ? 0 : context_.handleOf(*id);
    }

    AcDbObjectId multilineStyle() const {
        const AcDbObjectId styles = entryOf(state_.roots.namedObjects, L"ACAD_MLINESTYLE");
        return entryOf(styles, state_.header().get<std::wstring>(L"CMLSTYLE").c_str());
    }

    // The number that stands for a value of any kind.
    static double numberOf(const VariableValue* value, double standard) {
        if (value == nullptr) return standard;
        if (const auto* whole = std::get_if<int32_t>(value)) return *whole;
        if (const auto* real = std::get_if<double>(value)) return *real;
        return standard;
    }

    void writeValue(const HeaderField& field, const VariableValue* value) {
        BitWriter& data = streams_.data;
        const double number = numberOf(value, field.standard);
        const auto whole = wholeOf<int32_t>(number);
        switch (field.coding) {
            case Coding::flag:
                return data.bit(number != 0);
            case Coding::byte:
                return data.rawChar(static_cast<uint8_t>(whole));
            case Coding::whole:
                return data.bitShort(static_cast<int16_t>(whole));
            case Coding::wholeLong:
                return data.bitLong(whole);
            case Coding::longLong:
                return data.bitLongLong(static_cast<uint64_t>(whole));
            case Coding::real:
                return data.bitDouble(number);
            case Coding::time:
                return writeTime(number);
            case Coding::color: {
                const auto* const color =
                    value == nullptr ? nullptr : std::get_if<AcCmColor>(value);
                return writeColor(data, context_, color == nullptr ? AcCmColor() : *color);
            }
            case Coding::text: {
                const auto* const text =
                    value == nullptr ? nullptr : std::get_if<std::wstring>(value);
                BitWriter& to = isSplit() ? streams_.texts : data;
                return writeText(to, context_, text == nullptr ? std::wstring() : *text);
            }
            default:
                return writePoint(field.coding, value);
        }
    }

    void writePoint(Coding coding, const VariableValue* value) {
        const auto* const found = value == nullptr ? nullptr : std::get_if<AcGePoint3d>(value);
        const AcGePoint3d point = found == nullptr ? AcGePoint3d() : *found;
        if (coding == Coding::point) return streams_.data.point3d(point);
        streams_.data.rawPoint2d({point.x, point.y});
    }

    void writeTime(double days) {
        const FileTime time = FileTime::of(days);
        streams_.data.bitLong(time.days);
        streams_.data.bitLong(time.milliseconds);
    }

    int32_t flags() const {
        const VariableValue* const kept = keptValue(L"*FLAGS");
        int32_t flags = kept == nullptr ? 0 : std::get<int32_t>(*kept);
        for (const HeaderFlag& flag : kHeaderFlags) {
            int32_t value = state_.header().get<int32_t>(flag.name);
            if (flag.isTurned) value = value == 0 ? 1 : 0;
            flags &= ~(flag.mask << flag.shift);
            flags |= (value & flag.mask) << flag.shift;
        }
        const auto weight =
            static_cast<AcDb::LineWeight>(state_.header().get<int32_t>(kHeaderWeight));
        return (flags & ~kHeaderWeightMask) | model::lineWeightCode(weight);
    }

    // A style that is not there is that of the layer.
    void writePlotStyle() {
        constexpr int32_t kById = 3;
        int32_t type = state_.header().get<int32_t>(L"CEPSNTYPE");
        const VariableValue* const style = keptValue(L"CPSNID");
        const uint64_t handle =
            style == nullptr ? 0 : context_.handleOf(std::get<AcDbObjectId>(*style));
        if (type == kById && handle == 0) type = 0;
        streams_.data.bitShort(static_cast<int16_t>(type));
        if (type == kById) writePointer(Coding::pointer, handle);
    }

    const model::DatabaseState& state_;
    const WriteContext& context_;
    uint64_t seed_;
    uint64_t viewportHeaders_;
    const std::map<std::wstring, VariableValue>* kept_ = nullptr;
    WriteStreams streams_;
};

}  // namespace

Bytes writeHeader(const model::DatabaseState& state, const WriteContext& context, uint64_t seed,
                  uint64_t viewportHeaders) {
    return HeaderWriter(state, context, seed, viewportHeaders).write();
}

}  // namespace sg::dwg
