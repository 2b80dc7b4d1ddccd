#pragma once

#include <filesystem>

namespace sg::test {

// The folder of the tests' sources: the build that this program belongs to lies in its repository.
inline std::filesystem::path testSources() {
    std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    while (!std::filesystem::exists(folder / "CMakePresets.json") && folder.has_relative_path())
        folder = folder.parent_path();
    return folder / "tests";
}

}  // namespace sg::test
