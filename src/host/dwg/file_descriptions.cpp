#include "host/dwg/file_descriptions.h"

#include "base/encoding.h"
#include "host/dwg/bit_writer.h"
#include "host/dwg/file_time.h"
#include "host/model/tables/header_variables.h"

namespace sg::dwg {
namespace {

void writeTime(BitWriter& to, const model::DatabaseState& state, const wchar_t* variable) {
    const FileTime time = FileTime::of(state.header().get<double>(variable));
    to.rawLong(static_cast<uint32_t>(time.days));
    to.rawLong(static_cast<uint32_t>(time.milliseconds));
}

// A text behind the number of its characters, the closing zero among them.
void writeCounted(BitWriter& to, AcDb::AcDbDwgVersion release, std::string_view text) {
    to.rawShort(static_cast<uint16_t>(text.size() + 1));
    for (const char c : text) {
        if (release >= AcDb::kDHL_1021) {
            to.rawShort(static_cast<uint8_t>(c));
        } else {
            to.rawChar(static_cast<uint8_t>(c));
        }
    }
    if (release >= AcDb::kDHL_1021) return to.rawShort(0);
    to.rawChar(0);
}

}  // namespace

Bytes auxiliaryHeader(const model::DatabaseState& state, AcDb::AcDbDwgVersion release,
                      uint64_t seed) {
    BitWriter to;
    // From release 2018 on maintenance numbers are longer.
    const auto maintenance = [&](uint16_t number) {
        to.rawShort(number);
        if (release >= AcDb::kDHL_1032) to.rawShort(0);
    };
    const auto version = static_cast<uint16_t>(release);
    for (const uint8_t byte : {0xFF, 0x77, 0x01})
        to.rawChar(byte);
    to.rawShort(version);
    maintenance(0);
    to.rawLong(1);  // saved once
    to.rawLong(0xFFFFFFFF);
    to.rawShort(1);
    to.rawShort(0);
    to.rawLong(0);
    to.rawShort(version);
    maintenance(0);
    to.rawShort(version);
    maintenance(0);
    for (const uint16_t number : {0x0005, 0x0893, 0x0005, 0x0893, 0x0000, 0x0001})
        to.rawShort(number);
    for (int i = 0; i < 5; ++i)
        to.rawLong(0);
    writeTime(to, state, L"TDUCREATE");
    writeTime(to, state, L"TDUUPDATE");
    to.rawLong(seed <= 0x7FFFFFFF ? static_cast<uint32_t>(seed) : 0xFFFFFFFF);
    to.rawLong(0);
    to.rawShort(0);
    to.rawShort(1);
    for (int i = 0; i < 3; ++i)
        to.rawLong(0);
    to.rawLong(1);
    for (int i = 0; i < 4; ++i)
        to.rawLong(0);
    return to.bytes();
}

Bytes emptySummary(const model::DatabaseState& state, AcDb::AcDbDwgVersion release) {
    BitWriter to;
    constexpr int kTexts = 8;
    for (int i = 0; i < kTexts; ++i)
        writeCounted(to, release, "");
    writeTime(to, state, L"TDINDWG");
    writeTime(to, state, L"TDUCREATE");
    writeTime(to, state, L"TDUUPDATE");
    to.rawShort(0);  // no properties of users
    to.rawLong(0);
    to.rawLong(0);
    return to.bytes();
}

Bytes applicationInfo(AcDb::AcDbDwgVersion release) {
    constexpr std::string_view kName = "Swift Gate";
    BitWriter to;
    to.rawLong(release >= AcDb::kDHL_1021 ? 3 : 2);
    writeCounted(to, release, "AppInfoDataList");
    to.rawLong(3);
    for (const std::string_view text : {kName, kName, kName}) {
        for (int i = 0; i < 4; ++i)
            to.rawLong(0);
        writeCounted(to, release, text);
    }
    return to.bytes();
}

}  // namespace sg::dwg
