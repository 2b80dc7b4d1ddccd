#include "host/system/registry.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "base/encoding.h"
#include "host/system/files.h"
#include "host/system/folders.h"
#include "host/system/paths.h"

namespace sg {
namespace {

// Holds the lock that writers take, on a file beside the registry: the registry itself is replaced
// by each write.
class WriterLock {
  public:
    explicit WriterLock(const std::wstring& file)
        : descriptor_(::open(toUtf8(file + L".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        if (descriptor_ < 0) return;
        int answer = 0;
        do {
            answer = ::flock(descriptor_, LOCK_EX);
        } while (answer != 0 && errno == EINTR);
        held_ = answer == 0;
    }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;
    ~WriterLock() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    bool held() const { return held_; }

  private:
    const int descriptor_;
    bool held_ = false;
};

RegistryError errorOf(int code) {
    const bool denied = code == EACCES || code == EPERM || code == EROFS;
    return denied ? RegistryError::accessDenied : RegistryError::readWriteFailed;
}

}  // namespace

// The file as it was read. It is kept open, so that the number of its inode is not given to a later
// file and a replaced registry is always noticed.
class RegistryStore::Snapshot {
  public:
    explicit Snapshot(const std::string& file)
        : descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)), error_(errno) {
        if (descriptor_ >= 0) ::fstat(descriptor_, &info_);
    }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;
    ~Snapshot() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }

    bool isCurrent(const std::string& file) const {
        struct stat now;
        if (::stat(file.c_str(), &now) != 0) return descriptor_ < 0 && error_ == ENOENT;
        return descriptor_ >= 0 && now.st_dev == info_.st_dev && now.st_ino == info_.st_ino &&
               now.st_size == info_.st_size && now.st_mtim.tv_sec == info_.st_mtim.tv_sec &&
               now.st_mtim.tv_nsec == info_.st_mtim.tv_nsec;
    }

    // False, with errno's number in `error`, when the file is there and cannot be read.
    bool read(std::string& content, int& error) const {
        content.clear();
        error = error_;
        if (descriptor_ < 0) return error_ == ENOENT || error_ == ENOTDIR;
        char buffer[1 << 14];
        for (;;) {
            const ssize_t got =
                ::pread(descriptor_, buffer, sizeof(buffer), static_cast<off_t>(content.size()));
            if (got < 0 && errno == EINTR) continue;
            error = errno;
            if (got <= 0) return got == 0;
            content.append(buffer, static_cast<size_t>(got));
        }
    }

  private:
    const int descriptor_;
    const int error_;
    struct stat info_ {};
};

RegistryStore::RegistryStore(std::wstring file, std::function<void(const std::wstring&)> report)
    : file_(std::move(file)), report_(std::move(report)) {}

RegistryStore::~RegistryStore() = default;

std::wstring RegistryStore::defaultFile() {
    const auto named = environmentVariable(L"SWIFTGATE_REGISTRY");
    if (named && !named->empty()) return *named;
    return joinPath(knownFolder(KnownFolder::configuration), L"swiftgate/registry");
}

// Reads the file when it is another one than last time. On failure the tree is empty, and the next
// call tries again.
RegistryError RegistryStore::refresh() {
    const std::string file = toUtf8(file_);
    if (snapshot_ != nullptr && snapshot_->isCurrent(file)) return RegistryError::none;
    snapshot_ = std::make_unique<Snapshot>(file);
    std::string content;
    int error = 0;
    const bool read = snapshot_->read(content, error);
    tree_.parse(content);
    if (read) {
        reportDamage();
        return RegistryError::none;
    }
    snapshot_.reset();
    const std::wstring message =
        L"cannot read the registry \"" + file_ + L"\": " + fromUtf8(std::strerror(error));
    if (report_ && reported_.insert(message).second) report_(message);
    return errorOf(error);
}

void RegistryStore::reportDamage() {
    for (const auto& [line, what] : tree_.damage()) {
        const std::wstring message = file_ + L":" + std::to_wstring(line) + L": " + what +
                                     L"; the line is kept and has no effect";
        if (report_ && reported_.insert(message).second) report_(message);
    }
}

RegistryTree& RegistryStore::tree() {
    refresh();
    return tree_;
}

RegistryError RegistryStore::change(const std::function<RegistryError(RegistryTree&)>& edit) {
    std::error_code ignored;
    const std::wstring_view folder = parentFolder(file_);
    if (!folder.empty()) std::filesystem::create_directories(toUtf8(folder), ignored);
    const WriterLock lock(file_);
    if (!lock.held()) return errorOf(errno);
    // A file that cannot be read must not be replaced by an empty one.
    if (const RegistryError error = refresh(); error != RegistryError::none) return error;
    const std::string before = tree_.format();
    if (const RegistryError error = edit(tree_); error != RegistryError::none) return error;
    const std::string after = tree_.format();
    if (after == before) return RegistryError::none;
    const FileResult written = writeFileAtomically(file_, after);
    snapshot_.reset();  // the next call reads what is there now, also after a failed write
    if (written) return RegistryError::none;
    if (report_ && reported_.insert(written.error).second) report_(written.error);
    return RegistryError::readWriteFailed;
}

bool RegistryStore::keyExists(std::wstring_view key) {
    return tree().find(key) != nullptr;
}

std::optional<RegistryData> RegistryStore::read(std::wstring_view key, std::wstring_view name) {
    RegistryKey* const found = tree().find(key);
    const RegistryValue* const value = found != nullptr ? found->findValue(name) : nullptr;
    return value != nullptr ? std::optional(value->data) : std::nullopt;
}

std::optional<std::vector<std::wstring>> RegistryStore::subkeys(std::wstring_view key) {
    const RegistryKey* const found = tree().find(key);
    if (found == nullptr) return std::nullopt;
    std::vector<std::wstring> names;
    for (const auto& [folded, each] : found->subkeys)
        names.push_back(each->name);
    return names;
}

std::optional<std::vector<std::wstring>> RegistryStore::valueNames(std::wstring_view key) {
    const RegistryKey* const found = tree().find(key);
    if (found == nullptr) return std::nullopt;
    std::vector<std::wstring> names;
    for (const RegistryValue& value : found->values)
        names.push_back(value.name);
    return names;
}

RegistryError RegistryStore::createKey(std::wstring_view key) {
    return createKeys({std::wstring(key)});
}

RegistryError RegistryStore::createKeys(const std::vector<std::wstring>& keys) {
    if (!std::all_of(keys.begin(), keys.end(), RegistryTree::isValidPath)) {
        return RegistryError::invalidParameter;
    }
    if (std::all_of(keys.begin(), keys.end(), [&](const auto& key) { return keyExists(key); })) {
        return RegistryError::none;
    }
    return change([&](RegistryTree& tree) {
        for (const std::wstring& key : keys)
            tree.create(key);
        return RegistryError::none;
    });
}

RegistryError RegistryStore::write(std::wstring_view key, std::wstring_view name, RegistryData data,
                                   bool create) {
    if (!RegistryTree::isValidPath(key)) return RegistryError::invalidParameter;
    if (!create && !keyExists(key)) return RegistryError::notFound;  // without touching the file
    return change([&](RegistryTree& tree) {
        RegistryKey* const found = create ? tree.create(key) : tree.find(key);
        if (found == nullptr) return RegistryError::notFound;
        if (RegistryValue* const value = found->findValue(name)) {
            value->data = std::move(data);
        } else {
            found->values.push_back({std::wstring(name), std::move(data)});
        }
        return RegistryError::none;
    });
}

RegistryError RegistryStore::deleteValue(std::wstring_view key, std::wstring_view name) {
    if (!read(key, name)) return RegistryError::notFound;
    return change([&](RegistryTree& tree) {
        RegistryKey* const found = tree.find(key);
        RegistryValue* const value = found != nullptr ? found->findValue(name) : nullptr;
        if (value == nullptr) return RegistryError::notFound;
        found->values.erase(found->values.begin() + (value - found->values.data()));
        return RegistryError::none;
    });
}

RegistryError RegistryStore::deleteKey(std::wstring_view key) {
    if (!keyExists(key)) return RegistryError::notFound;
    return change([&](RegistryTree& tree) {
        RegistryKey* const found = tree.find(key);
        if (found == nullptr) return RegistryError::notFound;
        const bool isRoot = RegistryTree::split(key).size() < 2;
        if (isRoot || !found->subkeys.empty()) return RegistryError::accessDenied;
        tree.remove(key);
        return RegistryError::none;
    });
}

}  // namespace sg
