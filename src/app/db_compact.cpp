#include "app/db_compact.h"

#include <cstdint>
#include <optional>
#include <string>

#include "app/db_files.h"
#include "app/db_schema.h"
#include "app/exit_codes.h"
#include "app/interruption.h"
#include "app/process.h"
#include "app/progress_bar.h"
#include "host/jet/compact/compact.h"
#include "host/seam/file_error.h"
#include "host/system/database_files.h"
#include "host/system/files.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

// Nothing when the file is too damaged to be opened, or locked: compaction tells why.
std::optional<jet::DatabaseHeader> headerOf(const std::wstring& path) {
    try {
        return jet::Database::openReadOnly(path).header();
    } catch (const jet::Error&) {
        return std::nullopt;
    }
}

// The first of PATH.bak, PATH.bak2, PATH.bak3 ... that nobody has: an older one may be all that is
// left of what an earlier repair lost.
std::wstring freeBackup(const std::wstring& path) {
    std::wstring backup = path + L".bak";
    for (int i = 2; fileSize(backup).has_value(); ++i)
        backup = path + L".bak" + std::to_wstring(i);
    return backup;
}

// Where the old file is kept; empty for nowhere.
std::wstring backupFor(const DatabaseArguments& arguments, const std::wstring& path) {
    if (arguments.backup.empty()) return arguments.repair ? freeBackup(path) : std::wstring();
    const std::wstring backup = resolvePath(arguments.backup).path;
    if (fileSize(backup)) throw FileError(L"cannot keep " + path + L": there is a " + backup);
    return backup;
}

// The file would change into one of another version under its old name, and lose what only its own
// version has.
void requireOwnVersion(const std::wstring& path, const jet::DatabaseHeader& header) {
    if (header.version == jet::Version::Jet4) return;
    throw FileError(path + L": a compacted file is of version " + versionName(jet::Version::Jet4) +
                    L", and this one is " + versionName(header.version) +
                    L"; name a new file to write it to");
}

std::wstring inBytes(std::optional<int64_t> size) {
    return std::to_wstring(size.value_or(0)) + L" bytes";
}

jet::CompactReport perform(const std::wstring& path, const std::wstring& output,
                           const std::wstring& backup, jet::CompactOptions& options) {
    ProgressBar bar(L"Compacting " + std::wstring(lastComponent(path)));
    const Interruption interruption;
    options.progress = [&](uint64_t done, uint64_t total) {
        bar.show(done, total);
        return !interruption.isWanted();
    };
    return output.empty() ? jet::compactInPlace(path, backup, options)
                          : jet::compactDatabase(path, output, options);
}

}  // namespace

int compact(const DatabaseArguments& arguments) {
    const std::wstring path = resolvePath(arguments.file).path;
    const bool isInPlace = arguments.output.empty();
    const std::wstring output = isInPlace ? std::wstring() : resolvePath(arguments.output).path;

    jet::CompactOptions options;
    options.repair = arguments.repair;
    options.storage = databaseOptions();
    if (const std::optional<jet::DatabaseHeader> header = headerOf(path)) {
        if (isInPlace) requireOwnVersion(path, *header);
        options.locale = {header->sortOrder, header->codePage};
    }
    const std::wstring backup = isInPlace ? backupFor(arguments, path) : std::wstring();
    const std::optional<int64_t> before = fileSize(path);
    const jet::CompactReport report = perform(path, output, backup, options);

    DamageReport losses;
    for (const std::wstring& loss : report.losses)
        losses.add(path + L": " + loss);
    printOut(onOneLine(isInPlace ? path : output) + L": " + inBytes(before) + L" before, " +
             inBytes(fileSize(isInPlace ? path : output)) + L" now\n");
    if (!backup.empty()) printOut(onOneLine(path) + L" as it was: " + onOneLine(backup) + L"\n");
    return report.losses.empty() ? kDone : kFindings;
}

}  // namespace sg::app
