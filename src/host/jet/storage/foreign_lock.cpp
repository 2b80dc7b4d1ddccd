#include "host/jet/storage/foreign_lock.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/encoding.h"
#include "base/text.h"

namespace sg::jet {
namespace {

namespace fs = std::filesystem;

// An entry: the machine's name, then the user's, both padded with zeros.
constexpr size_t entrySize = 64;
constexpr size_t machineSize = 32;
constexpr size_t maxEntries = 255;

std::wstring widened(const fs::path& path) {
    return fromUtf8(path.native());
}

// How well a file fits as the lock of `database`: 0 not at all.
int fitness(const fs::path& file, const fs::path& database) {
    const std::wstring extension = widened(file.extension());
    const bool isOld = equalIgnoringCase(extension, L".ldb");
    const bool isNew = equalIgnoringCase(extension, L".laccdb");
    if ((!isOld && !isNew) || !equalIgnoringCase(widened(file.stem()), widened(database.stem()))) {
        return 0;
    }
    const bool isKind = isNew == equalIgnoringCase(widened(database.extension()), L".accdb");
    return 1 + (isKind ? 2 : 0) + (file.stem() == database.stem() ? 1 : 0);
}

// Empty when there is none.
fs::path lockFileOf(const fs::path& database) {
    fs::path best;
    int bestFitness = 0;
    std::error_code error;
    const fs::path folder = database.has_parent_path() ? database.parent_path() : fs::path(".");
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        const fs::path name = at->path().filename();
        const int found = fitness(name, database);
        std::error_code unknown;
        // Anything but a file could keep a reader waiting.
        if (found > bestFitness && at->is_regular_file(unknown)) {
            bestFitness = found;
            best = database.parent_path() / name;
        }
    }
    return best;
}

std::vector<std::wstring> readMachines(const fs::path& file) {
    std::vector<std::wstring> machines;
    std::ifstream in(file, std::ios::binary);
    std::array<char, entrySize> entry{};
    for (size_t i = 0; i < maxEntries; ++i) {
        in.read(entry.data(), entrySize);
        if (static_cast<size_t>(in.gcount()) < machineSize) {
            break;
        }
        const auto end = std::find(entry.begin(), entry.begin() + machineSize, '\0');
        const std::wstring text =
            fromCp1252({entry.data(), static_cast<size_t>(end - entry.begin())});
        const std::wstring machine(trimmed(text));
        const bool isKnown =
            std::any_of(machines.begin(), machines.end(),
                        [&](const std::wstring& m) { return equalIgnoringCase(m, machine); });
        if (!machine.empty() && !isKnown) {
            machines.push_back(machine);
        }
    }
    return machines;
}

}  // namespace

std::optional<ForeignLock> findForeignLock(const std::wstring& database) {
    const fs::path file = lockFileOf(fs::path(toUtf8(database)));
    if (file.empty()) {
        return std::nullopt;
    }
    return ForeignLock{widened(file), readMachines(file)};
}

}  // namespace sg::jet
