#include "host/jet/compact/compact_file.h"

#include <algorithm>

#include "host/jet/format/error.h"
#include "host/jet/storage/page_cache.h"

namespace sg::jet::compaction {
namespace {

// The database page, the page of the free page map and the catalog's definition.
constexpr uint32_t fewestPages = 3;
constexpr uint64_t mostPages = uint64_t(1) << 24;

// A log that comes back again and again is somebody's who is not bound by locks.
constexpr int mostAttempts = 4;
constexpr int mostNames = 100;

constexpr size_t headSize = 4096;

std::vector<uint8_t> headOf(const File& file) {
    std::vector<uint8_t> head(headSize);
    head.resize(file.read(0, head));
    return head;
}

// The pages of a file that stays as it is.
class FilePages final : public PageStore {
  public:
    FilePages(const File& file, std::wstring name, size_t cacheBytes)
        : file_(file),
          name_(std::move(name)),
          format_(identify(file, name_)),
          cache_(format_.pageSize, cacheBytes) {
        const uint64_t count = file.size() / format_.pageSize;
        if (count < fewestPages || count > mostPages) {
            throw Error(
                CannotOpenDatabase, {name_},
                {.file = name_,
                 .detail = count < fewestPages ? L"the file is cut off"
                                               : L"the file is larger than a database can be"});
        }
        pageCount_ = static_cast<uint32_t>(count);
    }

    const Format& format() const override { return format_; }
    uint32_t pageCount() const override { return pageCount_; }
    const std::wstring& name() const override { return name_; }
    PageRef read(uint32_t page) const override {
        if (page >= pageCount_) {
            throw Error(
                Damaged, {},
                {.file = name_,
                 .page = page,
                 .detail = L"the file has only " + std::to_wstring(pageCount_) + L" pages"});
        }
        if (PageFrame* frame = cache_.find(page)) return {frame, format_.pageSize};
        const FrameHandle frame = FrameHandle::make(page, format_.pageSize);
        const std::span<uint8_t> bytes(frame->bytes.get(), format_.pageSize);
        if (file_.read(uint64_t(page) * format_.pageSize, bytes) < bytes.size()) {
            throw Error(DiskOrNetwork, {},
                        {.file = name_, .page = page, .detail = L"the file became shorter"});
        }
        cache_.put(frame);
        return {frame.get(), format_.pageSize};
    }
    using PageStore::read;

  private:
    static const Format& identify(const File& file, const std::wstring& name) {
        const std::vector<uint8_t> head = headOf(file);
        return identifyFormat(ByteView(head.data(), head.size()), name);
    }

    const File& file_;
    std::wstring name_;
    const Format& format_;
    uint32_t pageCount_ = 0;
    mutable PageCache cache_;
};

// Only files that we write have logs. One without content may have everything in it.
bool mayHaveLog(const File& file, const std::wstring& path) {
    const std::vector<uint8_t> head = headOf(file);
    return head.empty() ||
           identifyFormat(ByteView(head.data(), head.size()), path).version == Version::Jet4;
}

void removeQuietly(FileLayer& files, const std::wstring& path) {
    for (const std::wstring& name : {Storage::logPath(path), Storage::sharedPath(path), path}) {
        try {
            files.remove(name);
        } catch (const Error&) {
            // What stopped the work is the thing to tell.
        }
    }
}

// Takes a file away that a program has left unfinished. False when one is at work on it.
bool reclaim(FileLayer& files, const std::wstring& path) {
    try {
        const std::unique_ptr<File> file = files.open(path, FileAccess::ReadWrite);
        if (!Storage::lockAlone(*file)) return false;
        removeQuietly(files, path);
        return !exists(files, path);
    } catch (const Error&) {
        return false;
    }
}

}  // namespace

FileLayer& filesOf(const StorageOptions& options) {
    return options.files != nullptr ? *options.files : posixFiles();
}

bool exists(FileLayer& files, const std::wstring& path) {
    return files.identityOf(path) != FileIdentity{};
}

// --- the source ---

SourceFile::SourceFile(const std::wstring& path, const StorageOptions& options, bool toReplace) {
    try {
        for (int attempt = 0; !lock(path, options); ++attempt) {
            if (attempt == mostAttempts) throw Error(FileInUse, {path}, {.file = path});
        }
        pages_ = std::make_unique<FilePages>(*file_, path, options.cacheBytes);
    } catch (const Error& error) {
        if (error.code() != CannotOpenFile || toReplace) throw;
        file_.reset();
        std::unique_ptr<Storage> storage = Storage::open(path, OpenMode::ReadOnly, options);
        scope_.emplace(*storage);
        pages_ = std::move(storage);
    }
}

// False when another program was at the file in between.
bool SourceFile::lock(const std::wstring& path, const StorageOptions& options) {
    FileLayer& files = filesOf(options);
    const std::wstring log = Storage::logPath(path);
    file_ = files.open(path, FileAccess::ReadWrite);
    if (exists(files, log) && mayHaveLog(*file_, path)) {
        file_.reset();
        Storage::open(path, OpenMode::Exclusive, options)->close();
        file_ = files.open(path, FileAccess::ReadWrite);
    }
    if (!Storage::lockAlone(*file_)) throw Error(FileInUse, {path}, {.file = path});
    return files.identityOf(path) == file_->identity() &&
           (!exists(files, log) || !mayHaveLog(*file_, path));
}

// --- the new file ---

NewFile::NewFile(const std::wstring& destination, const Locale& locale,
                 const StorageOptions& options)
    : files_(filesOf(options)), destination_(destination) {
    for (int number = 1; database_ == nullptr; ++number) {
        name_ = destination + L"-compact" + (number > 1 ? std::to_wstring(number) : L"");
        try {
            if (exists(files_, name_) && !reclaim(files_, name_)) {
                throw Error(DatabaseExists, {}, {.file = name_});
            }
            database_.reset(new Database(Database::create(name_, locale, options)));
        } catch (const Error& error) {
            // Otherwise somebody is at work under the name.
            if (error.code() != DatabaseExists && error.code() != FileInUse) {
                removeQuietly(files_, name_);
            }
            if (error.code() == DatabaseExists && number < mostNames) continue;
            if (error.code() != InvalidPath && error.code() != CannotOpenFile) throw;
            // The name that the caller knows.
            throw Error(error.code(), {destination}, {.file = destination});
        }
    }
}

NewFile::~NewFile() {
    if (name_.empty()) return;
    database_.reset();
    removeQuietly(files_, name_);
}

void NewFile::finish() {
    database_->close();
    database_.reset();
    lock_ = files_.open(name_, FileAccess::ReadWrite);
    if (!Storage::lockAlone(*lock_) || files_.identityOf(name_) != lock_->identity()) {
        throw Error(FileInUse, {name_}, {.file = name_});
    }
    if (exists(files_, Storage::logPath(name_))) {
        throw Error(DiskOrNetwork, {},
                    {.file = name_, .detail = L"not everything has come into the file"});
    }
}

void NewFile::putInPlace() {
    files_.rename(name_, destination_);
    name_.clear();
}

}  // namespace sg::jet::compaction
