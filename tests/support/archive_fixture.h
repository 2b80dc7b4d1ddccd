#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/encoding.h"
#include "host/seam/host_fixture.h"
#include "support/archive.h"

namespace sg::test {

class ArchiveTest : public HostTest {
  protected:
    ArchiveTest() { make(); }

    // Everything below a folder, sorted; folders have "/" at their end.
    std::vector<std::string> below(const std::string& folder = {}) const {
        std::vector<std::string> names;
        const std::filesystem::path root = folder.empty() ? folder_ : folder_ / folder;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
            const bool isFolder = entry.is_directory() && !entry.is_symlink();
            names.push_back(std::filesystem::relative(entry.path(), root).string() +
                            (isFolder ? "/" : ""));
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    // What an archive holds, by unpacking it into a new folder.
    std::vector<std::string> contents(const std::string& archive) {
        const std::string folder = "contents" + std::to_string(++unpacked_);
        Archive reader;
        EXPECT_TRUE(reader.OpenArchive(path(archive)) && reader.ExtractAll(path(folder)))
            << reason(reader);
        std::vector<std::string> names = below(folder);
        std::filesystem::remove_all(folder_ / folder);
        return names;
    }

    static std::string reason(const Archive& archive) { return toUtf8(archive.lastError().reason); }

  private:
    int unpacked_ = 0;
};

}  // namespace sg::test
