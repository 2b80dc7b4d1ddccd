// Any bytes as a ZIP file: opening and unpacking it end, write nothing outside the target folder,
// leave no unfinished file, and write no more than the archive declares.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "base/encoding.h"
#include "support/zip/archive_reader.h"

namespace {

namespace fs = std::filesystem;

// The folder of all runs: the archive, the target and a file that links in the target lead to.
const fs::path& workFolder() {
    static const fs::path folder = [] {
        std::string name = (fs::temp_directory_path() / "swiftgate-fuzz-XXXXXX").string();
        const fs::path made = mkdtemp(name.data());
        std::atexit([] { fs::remove_all(workFolder()); });
        return made;
    }();
    return folder;
}

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "violated: %s\n", what);
    std::abort();
}

// A target with a link out of it, as an earlier archive or a user may have left it. Most inputs
// leave it as it is.
void prepare(const fs::path& target, const fs::path& outside) {
    if (fs::exists(target) && std::distance(fs::directory_iterator(target), {}) == 1 &&
        fs::is_symlink(target / "link")) {
        return;
    }
    fs::remove_all(target);
    fs::remove_all(outside);
    fs::create_directory(target);
    fs::create_directory(outside);
    fs::create_directory_symlink(outside, target / "link");
}

void check(const fs::path& target, const fs::path& outside) {
    require(fs::is_empty(outside), "nothing is written outside");
    size_t others = 0;
    for (const auto& entry : fs::directory_iterator(workFolder())) {
        others += entry.path() != target && entry.path() != outside;
    }
    require(others == 1, "nothing is written beside the target");
    for (const auto& entry : fs::recursive_directory_iterator(target)) {
        const std::string name = entry.path().filename().string();
        require(!name.starts_with(".swiftgate-"), "no unfinished file stays");
        require(entry.path() == target / "link" || !entry.is_symlink(), "no link is made");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const fs::path file = workFolder() / "input.zip";
    const fs::path target = workFolder() / "target", outside = workFolder() / "outside";
    prepare(target, outside);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    sg::ArchiveReader archive;
    const bool extracted = archive.open(sg::fromUtf8(file.string())) &&
                           archive.extractAll(sg::fromUtf8(target.string()));
    require(extracted == archive.reason().empty(), "a failure has a reason");
    check(target, outside);
    return 0;
}
