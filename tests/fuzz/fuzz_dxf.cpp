// Any bytes as a drawing file: reading them ends in a drawing or in an error, and what is written of
// that drawing, as text and as binary, is a drawing again.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/dxf/files.h"
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

std::string written(const AcDbDatabase& database, const sg::dxf::WriteOptions& options) {
    std::string content;
    sg::dxf::write(database, options, [&](std::string_view bytes) {
        content += bytes;
        return true;
    });
    return content;
}

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace sg;
    host();
    AcDbDatabase database(false, true);
    try {
        dxf::read(database, {reinterpret_cast<const char*>(data), size}, L"fuzz.dxf");
    } catch (const dxf::Error&) {
        return 0;
    }
    for (const bool isBinary : {false, true}) {
        const dxf::WriteOptions options{nullptr, isBinary};
        const std::string first = written(database, options);
        AcDbDatabase again(false, true);
        dxf::read(again, first, L"written.dxf");
        require(!written(again, options).empty(), "what was written is read");
    }
    return 0;
}
