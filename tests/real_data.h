#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// Files that other programs made. SWIFTGATE_REAL_DATA names their folder; without it that is the
// folder shared/data beside the project. Where it is missing, tests that need it are skipped.
namespace sg::test {

inline std::filesystem::path realData() {
    const char* const given = std::getenv("SWIFTGATE_REAL_DATA");
    if (given != nullptr) return given;
    return std::filesystem::path(__FILE__).parent_path() / "../../shared/data";
}

// The files in a folder of it that have one of these endings, by name. Another program that has one
// open keeps further files beside it.
inline std::vector<std::filesystem::path> realFiles(
    const char* folder, std::initializer_list<std::string_view> endings) {
    std::vector<std::filesystem::path> files;
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator(realData() / folder, missing)) {
        const std::string ending = entry.path().extension().string();
        if (std::find(endings.begin(), endings.end(), ending) != endings.end()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The databases, of all versions.
inline std::vector<std::filesystem::path> realDatabases() {
    return realFiles("mdb", {".mdb", ".accdb"});
}

}  // namespace sg::test
