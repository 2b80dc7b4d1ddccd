#include "host/dxf/releases.h"

#include <algorithm>
#include <array>

namespace sg::dxf {
namespace {

// Releases between those that classes know have numbers of their own.
constexpr auto kRelease13 = static_cast<AcDb::AcDbDwgVersion>(19);
constexpr auto kRelease14 = static_cast<AcDb::AcDbDwgVersion>(21);

constexpr std::array kReleases = {
    Release{AcDb::kDHL_1009, "12", "AC1009", false},
    Release{kRelease13, "13", "AC1012", false},
    Release{kRelease14, "14", "AC1014", false},
    Release{AcDb::kDHL_1015, "2000", "AC1015", true},
    Release{AcDb::kDHL_1018, "2004", "AC1018", false},
    Release{AcDb::kDHL_1021, "2007", "AC1021", true},
    Release{AcDb::kDHL_1024, "2010", "AC1024", false},
    Release{AcDb::kDHL_1027, "2013", "AC1027", true},
    Release{AcDb::kDHL_1032, "2018", "AC1032", true},
};

}  // namespace

const Release& releaseOf(AcDb::AcDbDwgVersion number) {
    for (const Release& release : kReleases) {
        if (release.number >= number) return release;
    }
    return kReleases.back();
}

const Release* releaseNamed(std::string_view name) {
    const auto found = std::find_if(kReleases.begin(), kReleases.end(),
                                    [&](const Release& one) { return one.name == name; });
    return found == kReleases.end() ? nullptr : &*found;
}

const Release* releaseOfVersion(std::string_view version) {
    const auto found = std::find_if(kReleases.begin(), kReleases.end(),
                                    [&](const Release& one) { return one.version == version; });
    return found == kReleases.end() ? nullptr : &*found;
}

const Release& writtenFor(AcDb::AcDbDwgVersion number) {
    const auto found = std::find_if(kReleases.begin(), kReleases.end(), [&](const Release& one) {
        return one.isWritten && one.number >= number;
    });
    return found == kReleases.end() ? kReleases.back() : *found;
}

}  // namespace sg::dxf
