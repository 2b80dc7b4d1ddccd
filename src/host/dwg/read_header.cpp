#include <ctime>

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

class HeaderReader {
  public:
    explicit HeaderReader(Reading& reading)
        : reading_(reading),
          streams_(openSection(reading.content, reading.file, section::kHeader, kHeaderStart)),
          header_(reading.state.changeHeader()) {}

    void read() {
        size_t place = 0;
        for (const HeaderField& field : headerFields()) {
            ++place;
            if (release() < field.since || release() > field.until) continue;
            readField(field, place);
        }
        if (streams_.data.hasFailed()) {
            reading_.warn(L"the section of header variables ends too early");
        }
    }

  private:
    AcDb::AcDbDwgVersion release() const { return reading_.context.release; }
    bool isSplit() const { return release() >= AcDb::kDHL_1021; }

    AcDbObjectId pointer() {
        BitReader& from = isSplit() ? streams_.handles : streams_.data;
        return reading_.context.refer(from.handle());
    }

    void readField(const HeaderField& field, size_t place) {
        switch (field.coding) {
            case Coding::weights:
                return takeFlags(streams_.data.bitLong());
            case Coding::plotStyle:
                return takePlotStyle();
            case Coding::seed:
                reading_.seed = streams_.data.handle().value;
                return;
            default:
                break;
        }
        const VariableValue value = valueOf(field.coding);
        const auto* const id = std::get_if<AcDbObjectId>(&value);
        if (id != nullptr) {
            if (const HeaderRoot* const root = headerRoot(field.name)) {
                reading_.state.roots.*(root->root) = *id;
                return;
            }
        }
        const std::wstring_view name(field.name);
        if (!name.empty() && take(name, value)) return;
        keep(name.empty() ? L"#" + std::to_wstring(place) : std::wstring(name), value);
    }

    VariableValue valueOf(Coding coding) {
        BitReader& data = streams_.data;
        switch (coding) {
            case Coding::flag:
                return static_cast<int32_t>(data.bit());
            case Coding::byte:
                return static_cast<int32_t>(data.rawChar());
            case Coding::whole:
                return static_cast<int32_t>(data.bitShort());
            case Coding::wholeLong:
                return data.bitLong();
            case Coding::longLong:
                return static_cast<int32_t>(data.bitLongLong());
            case Coding::real:
                return data.bitDouble();
            case Coding::point:
                return data.point3d();
            case Coding::flatPoint: {
                const AcGePoint2d point = data.rawPoint2d();
                return AcGePoint3d(point.x, point.y, 0);
            }
            case Coding::text: {
                std::wstring text;
                readText(isSplit() ? streams_.texts : data, reading_.context, text);
                return text;
            }
            case Coding::color:
                return readColor(streams_, reading_.context);
            case Coding::time: {
                const int32_t days = data.bitLong();
                return FileTime{days, data.bitLong()}.inDays();
            }
            default:
                return pointer();
        }
    }

    // False for what is no variable, or of another kind.
    bool take(std::wstring_view name, const VariableValue& value) {
        const auto place = model::HeaderVariables::find(name);
        if (!place || header_.at(*place).index() != value.index()) return false;
        header_.set(*place, value);
        return true;
    }

    void keep(const std::wstring& name, const VariableValue& value) {
        reading_.own->header.insert_or_assign(name, value);
    }

    void takeFlags(int32_t flags) {
        for (const HeaderFlag& flag : kHeaderFlags) {
            const int32_t bits = flags >> flag.shift & flag.mask;
            take(flag.name, static_cast<int32_t>(flag.isTurned ? bits == 0 : bits));
        }
        const auto weight = static_cast<uint8_t>(flags & kHeaderWeightMask);
        take(kHeaderWeight, static_cast<int32_t>(model::lineWeightOf(weight)));
        keep(L"*FLAGS", flags);
    }

    void takePlotStyle() {
        constexpr int32_t kById = 3;
        const int32_t type = streams_.data.bitShort();
        take(L"CEPSNTYPE", type);
        if (type == kById) keep(L"CPSNID", pointer());
    }

    Reading& reading_;
    ReadStreams streams_;
    model::HeaderVariables& header_;
};

}  // namespace

namespace {

// What a time of the world is on this machine's clock.
double localTime(double days) {
    constexpr double kEpoch = 2440587.5;  // the Julian day on which the clock begins
    constexpr double kSecondsADay = 86'400;
    const auto seconds = static_cast<std::time_t>((days - kEpoch) * kSecondsADay);
    std::tm local{};
    if (days <= kEpoch || localtime_r(&seconds, &local) == nullptr) return days;
    return days + static_cast<double>(local.tm_gmtoff) / kSecondsADay;
}

}  // namespace

void readHeader(Reading& reading) {
    HeaderReader(reading).read();
    model::HeaderVariables& header = reading.state.changeHeader();
    header.set(L"TDCREATE", localTime(header.get<double>(L"TDUCREATE")));
    header.set(L"TDUPDATE", localTime(header.get<double>(L"TDUUPDATE")));
}

// A multiline style is known by the name that it has in its dictionary.
void nameStyles(Reading& reading) {
    const auto& header = reading.own->header;
    const auto style = header.find(L"*CMLSTYLE");
    const auto styles = header.find(L"*MLINESTYLES");
    if (style == header.end() || styles == header.end()) return;
    AcDbDictionary* dictionary = nullptr;
    const AcDbObjectId id = std::get<AcDbObjectId>(styles->second);
    if (acdbOpenObject(dictionary, id) != Acad::eOk) return;
    std::wstring name;
    dictionary->nameAt(std::get<AcDbObjectId>(style->second), name);
    dictionary->close();
    if (!name.empty()) reading.state.changeHeader().set(L"CMLSTYLE", name);
}

}  // namespace sg::dwg
