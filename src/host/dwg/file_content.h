#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/dxf/error.h"
#include "platform/db/filers.h"

namespace sg::dwg {

using dxf::Error;

using Bytes = std::vector<uint8_t>;
using ByteSpan = std::span<const uint8_t>;

// The names of sections, as files from release 2004 on have them; those of older files have them
// here too.
namespace section {
constexpr std::string_view kHeader = "AcDb:Header";
constexpr std::string_view kClasses = "AcDb:Classes";
constexpr std::string_view kObjectMap = "AcDb:Handles";
constexpr std::string_view kObjects = "AcDb:AcDbObjects";
constexpr std::string_view kFreeSpace = "AcDb:ObjFreeSpace";
constexpr std::string_view kTemplate = "AcDb:Template";
constexpr std::string_view kAuxiliaryHeader = "AcDb:AuxHeader";
constexpr std::string_view kPreview = "AcDb:Preview";
constexpr std::string_view kSummary = "AcDb:SummaryInfo";
constexpr std::string_view kRevisions = "AcDb:RevHistory";
constexpr std::string_view kApplication = "AcDb:AppInfo";
constexpr std::string_view kDependencies = "AcDb:FileDepList";
constexpr std::string_view kStoredData = "AcDb:AcDsPrototype_1b";
}  // namespace section

// What is in a file's container: its sections, unpacked, and what the first bytes tell.
struct FileContent {
    AcDb::AcDbDwgVersion release = AcDb::kDHL_CURRENT;
    std::string version;  // such as AC1032
    uint8_t maintenance = 0;
    uint16_t codePage = 0;

    struct Section {
        std::string name;
        ByteSpan data;
    };
    std::vector<Section> sections;
    std::vector<Bytes> storage;  // of those that are not as they are in the file
    std::vector<std::wstring> warnings;

    // Empty when the file has no such section.
    ByteSpan find(std::string_view name) const {
        for (const Section& section : sections) {
            if (section.name == name) return section.data;
        }
        return {};
    }
    void add(std::string_view name, Bytes bytes) {
        storage.push_back(std::move(bytes));
        sections.push_back({std::string(name), storage.back()});
    }
};

// Numbers in sections that are rows of bytes. All answer zero behind the end.
inline uint64_t numberAt(ByteSpan bytes, size_t at, size_t size) {
    uint64_t number = 0;
    for (size_t i = 0; i < size; ++i) {
        if (at + i < bytes.size()) number |= static_cast<uint64_t>(bytes[at + i]) << (8 * i);
    }
    return number;
}
inline uint32_t longAt(ByteSpan bytes, size_t at) {
    return static_cast<uint32_t>(numberAt(bytes, at, 4));
}
inline uint16_t shortAt(ByteSpan bytes, size_t at) {
    return static_cast<uint16_t>(numberAt(bytes, at, 2));
}

// The release of a file's first six bytes; null when they are of no release that is read.
const AcDb::AcDbDwgVersion* releaseOfVersion(std::string_view version);

// Takes a file's container apart. `file` names it in messages. The spans of the result lead into
// `bytes` too. Throws Error when the container cannot be found through.
FileContent readContainer(ByteSpan bytes, const std::wstring& file);

// The containers by family; each fills the sections of `content`.
void readContainer2000(ByteSpan bytes, const std::wstring& file, FileContent& content);
void readContainer2004(ByteSpan bytes, const std::wstring& file, FileContent& content);
void readContainer2007(ByteSpan bytes, const std::wstring& file, FileContent& content);

}  // namespace sg::dwg
