#include "host/jet/compact/compact.h"

#include "host/jet/compact/compact_catalog.h"
#include "host/jet/compact/compact_file.h"
#include "host/jet/compact/compact_run.h"
#include "host/jet/compact/compact_source.h"

namespace sg::jet {
namespace {

using namespace compaction;

constexpr size_t copyBytes = size_t(1) << 20;

// Fills the new file and finishes it.
void fill(const SourceFile& from, NewFile& into, const CompactOptions& options,
          CompactReport& report) {
    Run run(options, report);
    const Source source(from.pages(), into.database(), run);
    copyDatabase(source, into.database(), run);
    into.finish();
    run.finish();
}

// Another program may be writing the source all the same.
void announce(const std::wstring& source, const CompactOptions& options) {
    if (options.storage.beforeWriting) options.storage.beforeWriting(source);
}

// Nobody else knows the new file.
StorageOptions ofNewFile(StorageOptions options) {
    options.beforeWriting = nullptr;
    return options;
}

void requireAbsent(FileLayer& files, const std::wstring& path) {
    if (exists(files, path)) throw Error(DatabaseExists, {}, {.file = path});
}

void copyFile(FileLayer& files, const std::wstring& from, const std::wstring& to) {
    const std::unique_ptr<File> source = files.open(from, FileAccess::Read);
    const std::unique_ptr<File> copy = files.open(to, FileAccess::CreateNew);
    try {
        std::vector<uint8_t> bytes(copyBytes);
        const uint64_t size = source->size();
        for (uint64_t at = 0; at < size;) {
            const size_t got = source->read(at, bytes);
            if (got == 0) break;
            copy->write(at, {bytes.data(), got});
            at += got;
        }
        copy->sync();
        files.copyPermissions(from, to);
    } catch (...) {
        files.remove(to);
        throw;
    }
}

// A second name for the old file while it has its own still.
class Backup {
  public:
    Backup(FileLayer& files, const std::wstring& original, const std::wstring& path)
        : files_(files), path_(path) {
        if (path.empty()) return;
        if (!files.addName(original, path)) copyFile(files, original, path);
    }
    ~Backup() {
        if (isKept_ || path_.empty()) return;
        try {
            files_.remove(path_);
        } catch (const Error&) {
            // What stopped the work is the thing to tell.
        }
    }
    Backup(const Backup&) = delete;
    Backup& operator=(const Backup&) = delete;

    void sync() {
        if (!path_.empty()) files_.syncFolder(path_);
    }
    void keep() { isKept_ = true; }

  private:
    FileLayer& files_;
    std::wstring path_;
    bool isKept_ = false;
};

}  // namespace

CompactReport compactDatabase(const std::wstring& source, const std::wstring& destination,
                              const CompactOptions& options) {
    FileLayer& files = filesOf(options.storage);
    requireAbsent(files, destination);
    const SourceFile from(source, options.storage, false);
    announce(source, options);
    NewFile into(destination, options.locale, ofNewFile(options.storage));
    CompactReport report;
    fill(from, into, options, report);
    requireAbsent(files, destination);
    into.putInPlace();
    files.syncFolder(destination);
    return report;
}

CompactReport compactInPlace(const std::wstring& path, const std::wstring& backup,
                             const CompactOptions& options) {
    FileLayer& files = filesOf(options.storage);
    const std::wstring real = files.followLinks(path);
    if (!backup.empty()) requireAbsent(files, backup);
    // Its lock stands until the new file has the name.
    const SourceFile from(real, options.storage, true);
    announce(path, options);
    NewFile into(real, options.locale, ofNewFile(options.storage));
    CompactReport report;
    fill(from, into, options, report);
    files.copyPermissions(real, into.name());
    Backup kept(files, real, backup);
    kept.sync();
    into.putInPlace();
    kept.keep();
    files.syncFolder(real);
    return report;
}

}  // namespace sg::jet
