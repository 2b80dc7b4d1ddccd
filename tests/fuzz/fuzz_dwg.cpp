// Any bytes as a DWG file: reading them ends in a drawing or in an error, and what is written of
// that drawing is a drawing again. The first byte is not the file's: 0 takes the rest as a file,
// other numbers take it as the objects of a file of one of the releases, whose container is made
// here so that damage reaches the objects.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>

#include "host/dwg/drawing_reader.h"
#include "host/dwg/file_content.h"
#include "host/dwg/files.h"
#include "host/dwg/object_map.h"
#include "host/seam/host.h"

namespace {

sg::Host& host() {
    static sg::Host made([] {
        sg::HostOptions options;
        options.registryFile = L"/dev/null";
        options.locale = L"en-US";
        return options;
    }());
    return made;
}

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

std::string written(const AcDbDatabase& database, const char* release) {
    const auto made = sg::dwg::write(database, *sg::dxf::releaseNamed(release));
    return {made.bytes.begin(), made.bytes.end()};
}

constexpr const char* kReleases[] = {"2000", "2004", "2010", "2013", "2018"};

// A new drawing's file in the release, taken apart, with other objects.
void readObjects(AcDbDatabase& database, const char* release, std::string_view objects) {
    AcDbDatabase plain(true, true);
    const std::string file = written(plain, release);
    using namespace sg::dwg;
    const ByteSpan bytes(reinterpret_cast<const uint8_t*>(file.data()), file.size());
    FileContent content = readContainer(bytes, L"fuzz.dwg");
    std::vector<ObjectPlace> places = readObjectMap(content, L"fuzz.dwg");
    for (ObjectPlace& place : places)
        place.address = objects.empty() ? 0 : place.address % objects.size();
    const Bytes map = writeObjectMap(places);
    for (FileContent::Section& section : content.sections) {
        if (section.name == section::kObjectMap) section.data = map;
        if (section.name == section::kObjects) {
            section.data = {reinterpret_cast<const uint8_t*>(objects.data()), objects.size()};
        }
    }
    DrawingReader(database, content, L"fuzz.dwg").read();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sg;
    if (size == 0) return 0;
    host();
    AcDbDatabase database(false, true);
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    try {
        if (data[0] == 0) {
            dwg::read(database, rest, L"fuzz.dwg");
        } else {
            readObjects(database, kReleases[data[0] % std::size(kReleases)], rest);
        }
    } catch (const dxf::Error&) {
        return 0;
    }
    for (const char* const release : {"2000", "2018"}) {
        const std::string first = written(database, release);
        AcDbDatabase again(false, true);
        dwg::read(again, first, L"written.dwg");
        require(!written(again, release).empty(), "what was written is read");
    }
    return 0;
}
