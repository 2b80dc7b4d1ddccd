#include <array>

#include "host/dwg/file_content.h"

namespace sg::dwg {
namespace {

struct Version {
    std::string_view text;
    AcDb::AcDbDwgVersion release;
};
constexpr std::array kVersions = {
    Version{"AC1012", AcDb::kDHL_1012}, Version{"AC1014", AcDb::kDHL_1014},
    Version{"AC1015", AcDb::kDHL_1015}, Version{"AC1018", AcDb::kDHL_1018},
    Version{"AC1021", AcDb::kDHL_1021}, Version{"AC1024", AcDb::kDHL_1024},
    Version{"AC1027", AcDb::kDHL_1027}, Version{"AC1032", AcDb::kDHL_1032},
};

}  // namespace

const AcDb::AcDbDwgVersion* releaseOfVersion(std::string_view version) {
    for (const Version& one : kVersions) {
        if (one.text == version) return &one.release;
    }
    return nullptr;
}

FileContent readContainer(ByteSpan bytes, const std::wstring& file) {
    FileContent content;
    constexpr size_t kVersionSize = 6;
    if (bytes.size() < 0x19) throw Error(file + L": the drawing file ends in its first bytes");
    content.version.assign(reinterpret_cast<const char*>(bytes.data()), kVersionSize);
    const AcDb::AcDbDwgVersion* const release = releaseOfVersion(content.version);
    if (release == nullptr) {
        throw Error(file + L": drawing files of the version " + fromUtf8(content.version) +
                    L" are not read");
    }
    content.release = *release;
    content.maintenance = bytes[0x0B];
    content.codePage = shortAt(bytes, 0x13);
    if (content.release < AcDb::kDHL_1018) {
        readContainer2000(bytes, file, content);
    } else if (content.release == AcDb::kDHL_1021) {
        readContainer2007(bytes, file, content);
    } else {
        readContainer2004(bytes, file, content);
    }
    return content;
}

}  // namespace sg::dwg
