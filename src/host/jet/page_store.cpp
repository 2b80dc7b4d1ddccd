#include "host/jet/page_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/encoding.h"
#include "host/jet/error.h"

namespace sg::jet {
namespace {

// The database page, the page of the free page map and the catalog's definition.
constexpr uint32_t fewestPages = 3;

uint32_t countPages(uint64_t size, const Format& format, const std::wstring& name) {
    const uint64_t count = size / format.pageSize;
    if (count < fewestPages) {
        throw Error(CannotOpenDatabase, {name}, {.file = name, .detail = L"the file is cut off"});
    }
    // Row ids have three bytes for the page.
    if (count > 0x1000000) {
        throw Error(CannotOpenDatabase, {name},
                    {.file = name, .detail = L"the file is larger than a database can be"});
    }
    return static_cast<uint32_t>(count);
}

[[noreturn]] void throwBeyondEnd(uint32_t page, uint32_t pageCount, const std::wstring& name) {
    throw Error(Damaged, {},
                {.file = name,
                 .page = page,
                 .detail = L"the file has only " + std::to_wstring(pageCount) + L" pages"});
}

// Reads up to `size` bytes; fewer only at the end of the file. Answers -1 with errno on failure.
ssize_t readFully(int file, uint8_t* into, size_t size, uint64_t offset) {
    size_t done = 0;
    while (done < size) {
        const ssize_t got =
            ::pread(file, into + done, size - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return -1;
        }
        if (got == 0) {
            break;
        }
        done += static_cast<size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

int openForReading(const std::wstring& path) {
    const int file = ::open(toUtf8(path).c_str(), O_RDONLY | O_CLOEXEC);
    if (file >= 0) {
        return file;
    }
    switch (errno) {
        case ENOENT:
        case ENOTDIR:
            throw Error(FileNotFound, {path}, {.file = path});
        case ENAMETOOLONG:
            throw Error(InvalidPath, {path}, {.file = path});
        case EIO:
            throw Error(DiskOrNetwork, {}, {.file = path});
        default:
            throw Error(CannotOpenFile, {path}, {.file = path});
    }
}

}  // namespace

PageRef PageStore::read(uint32_t page, PageKind kind) const {
    PageRef ref = read(page);
    const uint8_t found = ref->get8(0);
    if (found != static_cast<uint8_t>(kind)) {
        throw Error(Damaged, {},
                    {.file = name(),
                     .page = page,
                     .detail = L"a page of kind " + std::to_wstring(static_cast<int>(kind)) +
                               L" belongs here, not one of kind " + std::to_wstring(found)});
    }
    return ref;
}

FilePageStore::FilePageStore(const std::wstring& path, size_t cacheBytes) : name_(path) {
    file_ = openForReading(path);
    try {
        struct stat status {};
        if (::fstat(file_, &status) != 0) {
            throw Error(DiskOrNetwork, {}, {.file = name_});
        }
        if (!S_ISREG(status.st_mode)) {
            throw Error(CannotOpenFile, {name_}, {.file = name_, .detail = L"it is not a file"});
        }
        uint8_t start[pages::versionOffset + 1];
        const ssize_t got = readFully(file_, start, sizeof start, 0);
        if (got < 0) {
            throw Error(DiskOrNetwork, {}, {.file = name_});
        }
        format_ = &identifyFormat({start, static_cast<size_t>(got)}, name_);
        pageCount_ = countPages(static_cast<uint64_t>(status.st_size), *format_, name_);
    } catch (...) {
        ::close(file_);
        throw;
    }
    capacity_ = std::max<size_t>(cacheBytes / format_->pageSize, 16);
    byPage_.resize(pageCount_, nullptr);
}

FilePageStore::~FilePageStore() {
    for (PageFrame* frame : ring_) {
        if (--frame->holders == 0) {
            delete frame;
        }
    }
    ::close(file_);
}

PageRef FilePageStore::read(uint32_t page) const {
    if (page >= pageCount_) {
        throwBeyondEnd(page, pageCount_, name_);
    }
    PageFrame* frame = byPage_[page];
    if (frame == nullptr) {
        frame = load(page);
        admit(frame);
    }
    frame->recentlyUsed = true;
    return {frame, format_->pageSize};
}

PageFrame* FilePageStore::load(uint32_t page) const {
    auto frame = std::make_unique<PageFrame>();
    frame->page = page;
    frame->bytes = std::make_unique_for_overwrite<uint8_t[]>(format_->pageSize);
    const uint64_t offset = uint64_t(page) * format_->pageSize;
    const ssize_t got = readFully(file_, frame->bytes.get(), format_->pageSize, offset);
    if (got < 0) {
        throw Error(DiskOrNetwork, {},
                    {.file = name_, .page = page, .detail = fromUtf8(std::strerror(errno))});
    }
    if (static_cast<size_t>(got) < format_->pageSize) {
        throw Error(DiskOrNetwork, {},
                    {.file = name_, .page = page, .detail = L"the file became shorter"});
    }
    return frame.release();
}

void FilePageStore::admit(PageFrame* frame) const {
    ++frame->holders;
    byPage_[frame->page] = frame;
    if (ring_.size() < capacity_) {
        ring_.push_back(frame);
        return;
    }
    // A second chance for what was used since the hand last passed; the walk ends after one round
    // because it takes every chance away.
    while (ring_[hand_]->recentlyUsed) {
        ring_[hand_]->recentlyUsed = false;
        hand_ = (hand_ + 1) % ring_.size();
    }
    PageFrame* old = ring_[hand_];
    byPage_[old->page] = nullptr;
    if (--old->holders == 0) {
        delete old;
    }
    ring_[hand_] = frame;
    hand_ = (hand_ + 1) % ring_.size();
}

MemoryPageStore::MemoryPageStore(std::span<const uint8_t> bytes, std::wstring name)
    : bytes_(bytes), name_(std::move(name)) {
    format_ = &identifyFormat(bytes_, name_);
    pageCount_ = countPages(bytes_.size(), *format_, name_);
}

PageRef MemoryPageStore::read(uint32_t page) const {
    if (page >= pageCount_) {
        throwBeyondEnd(page, pageCount_, name_);
    }
    return {page, bytes_.sub(size_t(page) * format_->pageSize, format_->pageSize)};
}

}  // namespace sg::jet
