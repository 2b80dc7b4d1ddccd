#include <exception>

#include "host/jet/format/error.h"
#include "host/jet/storage/log_recovery.h"
#include "host/jet/storage/storage.h"
#include "host/jet/storage/write_transaction.h"

// Opening and closing: locks, recovery, and who begins and ends the shared file and the log.
namespace sg::jet {
namespace {

// Locks on bytes of the database file, far behind its end.
constexpr uint64_t lockBase = uint64_t(1) << 40;
constexpr uint64_t openByte = lockBase;          // shared by all, or exclusive
constexpr uint64_t attachedByte = lockBase + 1;  // held by all who take part in the shared file
constexpr uint64_t writerByte = lockBase + 2;    // held by all who may change the database file
constexpr uint64_t privateByte = lockBase + 3;   // held by readers who do not take part

constexpr uint64_t firstGeneration = 2;

// The database page, the page of the free page map and the catalog's definition.
constexpr uint32_t fewestPages = 3;

std::wstring unrelatedPath(const std::wstring& database) {
    return database + L"-log.unrelated";
}

}  // namespace

std::unique_ptr<Storage> Storage::open(const std::wstring& path, OpenMode mode,
                                       const StorageOptions& options) {
    std::unique_ptr<Storage> storage(new Storage(path, mode, options));
    storage->openFiles(nullptr);
    return storage;
}

std::unique_ptr<Storage> Storage::create(const std::wstring& path, const Format& format,
                                         const StorageOptions& options) {
    std::unique_ptr<Storage> storage(new Storage(path, OpenMode::Exclusive, options));
    try {
        storage->openFiles(&format);
    } catch (const Error&) {
        // The format is known once the file has been made.
        if (storage->format_ != nullptr) storage->files_->remove(path);
        throw;
    }
    return storage;
}

Storage::Storage(std::wstring path, OpenMode mode, const StorageOptions& options)
    : path_(std::move(path)),
      mode_(mode),
      options_(options),
      files_(options.files != nullptr ? options.files : &posixFiles()) {
    if (options_.name.user.empty()) options_.name.user = currentUserName();
    if (options_.name.machine.empty()) options_.name.machine = currentMachineName();
}

Storage::~Storage() {
    try {
        close();
    } catch (const std::exception&) {
        // The log is still there, and the next open has the same work to do.
    }
}

void Storage::openFiles(const Format* newFormat) {
    const FileAccess access = newFormat != nullptr          ? FileAccess::CreateNew
                              : mode_ == OpenMode::ReadOnly ? FileAccess::Read
                                                            : FileAccess::ReadWrite;
    // Another file may take the name between the opening and the lock.
    do {
        database_ = files_->open(path_, access);
        format_ = newFormat;
        lockDatabase();
    } while (newFormat == nullptr && files_->identityOf(path_) != database_->identity());
    if (newFormat == nullptr) checkStart();
    try {
        shared_ = std::make_unique<SharedState>(*files_, sharedPath(path_), path_);
    } catch (const Error& error) {
        if (error.code() == FileInUse) throw;
        if (mode_ != OpenMode::ReadOnly) throw Error(error.code(), {path_}, error.place());
        startPrivate();
        return;
    }
    try {
        attach(newFormat != nullptr);
    } catch (...) {
        abandon();
        throw;
    }
    shared_->unlockAttaching();
}

// Tells what is no database before anything is made beside it.
void Storage::checkStart() {
    if (database_->size() > 0) {
        findPageSize();
    } else if (files_->identityOf(logPath(path_)) == FileIdentity{}) {
        throw Error(CannotOpenDatabase, {path_}, {.file = path_, .detail = L"the file is empty"});
    }
}

// After a failed open: leaves no file that means nothing.
void Storage::abandon() {
    closed_ = true;
    try {
        if (checkpointer_ != nullptr) checkpointer_->stop();
        if (shared_->isAlone()) {
            if (log_ != nullptr && log_->size() <= log::recordsOffset) {
                files_->remove(logPath(path_));
            }
            shared_->remove();
        }
    } catch (const Error&) {
        // The error that made the open fail is the one to tell.
    }
    release();
}

void Storage::release() {
    cache_.reset();
    logView_.reset();
    checkpointer_.reset();
    shared_.reset();
    log_.reset();
    writable_.reset();
    database_.reset();
}

void Storage::lockDatabase() {
    const LockKind kind = mode_ == OpenMode::Exclusive ? LockKind::Exclusive : LockKind::Shared;
    bool isFree = database_->tryLock(kind, openByte);
    if (isFree && mode_ != OpenMode::ReadOnly) {
        isFree = database_->tryLock(LockKind::Shared, writerByte) &&
                 !database_->isLockedByOther(LockKind::Exclusive, privateByte);
    }
    if (!isFree) throw Error(FileInUse, {path_}, {.file = path_});
}

bool Storage::lockAlone(File& file) {
    return file.tryLock(LockKind::Exclusive, openByte);
}

void Storage::attach(bool isNew) {
    const bool isAlone = shared_->isAlone();
    requireSameFile(isAlone);
    log_ = files_->open(logPath(path_), FileAccess::ReadWriteOrCreate);
    pageSize_ = isNew ? format_->pageSize : findPageSize();
    if (isAlone) {
        shared_->clear();
        startAlone(isNew);
    } else {
        shared_->join(options_.name);
        startCheckpointer();
    }
    if (!database_->tryLock(LockKind::Shared, attachedByte)) {
        throw Error(FileInUse, {path_}, {.file = path_});
    }
    logView_ = std::make_unique<PageLog>(*log_, pageSize_);
    cache_ = std::make_unique<PageCache>(pageSize_, options_.cacheBytes);
    if (!isNew) adoptFormat();
}

// The shared file and the log go by the database's name, and names change hands. Those who take
// part in the shared file have the attached byte of their database file.
void Storage::requireSameFile(bool isAlone) const {
    const bool isAttached = database_->isLockedByOther(LockKind::Exclusive, attachedByte);
    if (isAttached != isAlone) return;
    throw Error(FileInUse, {path_},
                {.file = sharedPath(path_),
                 .detail = isAlone ? L"it was removed while others had the database open"
                                   : L"it belongs to another file, which had this name when it "
                                     L"was opened and is still open"});
}

// Of a log from before, completes what was committed and drops the rest.
void Storage::startAlone(bool isNew) {
    SharedBlock& block = shared_->block();
    shared_->join(options_.name);
    const std::optional<log::Header> header = readLogHeader(*log_);
    PageLog found(*log_, pageSize_);
    LogVerdict verdict = LogVerdict::Empty;
    if (header && header->pageSize == pageSize_) {
        verdict = readLog(found, *log_, *database_, *header, firstGeneration);
    }
    if (verdict == LogVerdict::Unrelated || (isNew && verdict == LogVerdict::Commits)) {
        setAsideLog();
        verdict = LogVerdict::Empty;
    }
    if (verdict == LogVerdict::Empty) {
        resetLog(*log_, *database_, block, pageSize_);
        startCheckpointer();
        return;
    }
    block.salt.store(header->salt);
    block.baseSequence.store(header->baseSequence);
    block.basePages.store(header->basePages);
    block.checkpointed.store(header->baseSequence);
    block.pageCount.store(found.pageCount());
    block.generation.store(firstGeneration);
    block.committed.store(found.sequence());
    if (mode_ == OpenMode::ReadOnly) {
        try {
            writable_ = files_->open(path_, FileAccess::ReadWrite);
            if (!writable_->tryLock(LockKind::Shared, writerByte) ||
                writable_->isLockedByOther(LockKind::Exclusive, privateByte)) {
                writable_.reset();
            }
        } catch (const Error&) {
            // Then it is read through the log.
        }
    }
    startCheckpointer();
    if (checkpointer_ != nullptr) {
        try {
            checkpointer_->run();
        } catch (const Error&) {
            if (mode_ != OpenMode::ReadOnly) throw;
        }
    }
}

void Storage::startCheckpointer() {
    File* database = mode_ == OpenMode::ReadOnly ? writable_.get() : database_.get();
    if (database == nullptr) return;
    checkpointer_ = std::make_unique<Checkpointer>(*files_, logPath(path_), *log_, *database,
                                                   *shared_, pageSize_, options_.checkpointDelay);
}

void Storage::setAsideLog() {
    unrelatedLog_ = unrelatedPath(path_);
    files_->rename(logPath(path_), unrelatedLog_);
    log_ = files_->open(logPath(path_), FileAccess::ReadWriteOrCreate);
}

// For a reader who may not write beside the database file. Nobody changes the file while such a
// reader has it open, and a log that was left is laid over it in memory.
void Storage::startPrivate() {
    if (!database_->tryLock(LockKind::Shared, privateByte) ||
        database_->isLockedByOther(LockKind::Exclusive, writerByte)) {
        throw Error(FileInUse, {path_}, {.file = path_});
    }
    shared_ = std::make_unique<SharedState>();
    shared_->join(options_.name);
    std::optional<log::Header> header;
    if (files_->identityOf(logPath(path_)) != FileIdentity{}) {
        log_ = files_->open(logPath(path_), FileAccess::Read);
        header = readLogHeader(*log_);
    }
    pageSize_ = findPageSize();
    logView_ = std::make_unique<PageLog>(log_ != nullptr ? *log_ : *database_, pageSize_);
    cache_ = std::make_unique<PageCache>(pageSize_, options_.cacheBytes);
    LogVerdict verdict = LogVerdict::Empty;
    if (header && header->pageSize == pageSize_) {
        verdict = readLog(*logView_, *log_, *database_, *header, firstGeneration);
    }
    if (verdict != LogVerdict::Commits) {
        const auto pages = static_cast<uint32_t>(database_->size() / pageSize_);
        logView_->restart(firstGeneration, 0, 0, pages);
    }
    shared_->block().generation.store(firstGeneration);
    shared_->block().committed.store(logView_->sequence());
    adoptFormat();
}

size_t Storage::findPageSize() const {
    std::vector<uint8_t> start(log::headerSize);
    start.resize(database_->read(0, start));
    std::optional<log::Header> header;
    if (start.empty() && log_ != nullptr) header = readLogHeader(*log_);
    if (header) return header->pageSize;
    const Format& format = identifyFormat({start.data(), start.size()}, path_);
    if (database_->size() / format.pageSize > log::maxPages) {
        throw Error(CannotOpenDatabase, {path_},
                    {.file = path_, .detail = L"the file is larger than a database can be"});
    }
    return format.pageSize;
}

void Storage::adoptFormat() {
    const ReadScope scope(*this);
    if (logView_->pageCount() < fewestPages) {
        throw Error(CannotOpenDatabase, {path_}, {.file = path_, .detail = L"the file is cut off"});
    }
    format_ = &identifyFormat(read(0).bytes(), path_);
    if (format_->pageSize != pageSize_) {
        throw Error(UnrecognizedFormat, {path_}, {.file = path_});
    }
    if (mode_ != OpenMode::ReadOnly && format_->version != Version::Jet4) {
        throw Error(CannotOpenFile, {path_},
                    {.file = path_, .detail = L"files of this version are only read"});
    }
}

void Storage::close() {
    if (closed_) return;
    if (transaction_ != nullptr) transaction_->rollback();
    closed_ = true;
    for (const uint64_t key : recordLocks_) {
        shared_->unlockRecord(key);
    }
    recordLocks_.clear();
    if (checkpointer_ != nullptr) checkpointer_->stop();
    try {
        if (shared_ != nullptr && !shared_->isPrivate()) {
            if (checkpointer_ != nullptr) checkpointer_->run();
            if (shared_->lockAttaching() && shared_->isInPlace() && shared_->isAlone()) detach();
        }
    } catch (...) {
        release();
        throw;
    }
    release();
}

// The last one takes the files away, the log only when nothing is left in it.
void Storage::detach() {
    // What another one committed before it died, and what a reader stood in the way of.
    if (checkpointer_ != nullptr) checkpointer_->run();
    const SharedBlock& block = shared_->block();
    if (block.failed.load() == 0 && block.generation.load() % 2 == 0 &&
        block.committed.load() == block.baseSequence.load()) {
        log_.reset();
        files_->remove(logPath(path_));
    }
    shared_->remove();
}

}  // namespace sg::jet
