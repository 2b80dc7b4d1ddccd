#include "support/zip/zip_directory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

namespace sg {
namespace {

constexpr size_t kEndRecordBytes = 22;
constexpr size_t kZip64LocatorBytes = 20;
constexpr size_t kZip64RecordBytes = 56;
constexpr size_t kEntryBytes = 46;
constexpr size_t kLocalHeaderBytes = 30;
constexpr size_t kLongestComment = 0xFFFF;
constexpr size_t kMostExtraFields = 32;
constexpr uint16_t kZip64Field = 1;

constexpr std::string_view kEndSignature("PK\5\6", 4);
constexpr std::string_view kZip64LocatorSignature("PK\6\7", 4);
constexpr std::string_view kZip64RecordSignature("PK\6\6", 4);
constexpr std::string_view kEntrySignature("PK\1\2", 4);
constexpr std::string_view kLocalSignature("PK\3\4", 4);

uint64_t numberAt(std::string_view bytes, size_t at, int length) {
    uint64_t number = 0;
    for (int i = length - 1; i >= 0; --i)
        number = number << 8 | static_cast<unsigned char>(bytes[at + static_cast<size_t>(i)]);
    return number;
}
uint16_t shortAt(std::string_view bytes, size_t at) {
    return static_cast<uint16_t>(numberAt(bytes, at, 2));
}
uint32_t wordAt(std::string_view bytes, size_t at) {
    return static_cast<uint32_t>(numberAt(bytes, at, 4));
}
uint64_t longAt(std::string_view bytes, size_t at) {
    return numberAt(bytes, at, 8);
}

bool standsAt(std::string_view bytes, size_t at, std::string_view signature) {
    return at <= bytes.size() && bytes.substr(at).starts_with(signature);
}

bool followsZip64Locator(std::string_view tail, size_t end) {
    return end >= kZip64LocatorBytes &&
           standsAt(tail, end - kZip64LocatorBytes, kZip64LocatorSignature);
}

// Where the last end record begins whose comment fits behind it.
size_t lastEndRecord(std::string_view tail) {
    size_t at = tail.rfind(kEndSignature);
    while (at != std::string_view::npos) {
        const size_t left = tail.size() - at;
        if (left >= kEndRecordBytes && left - kEndRecordBytes >= shortAt(tail, at + 20)) return at;
        if (at == 0) break;
        at = tail.rfind(kEndSignature, at - 1);
    }
    return std::string_view::npos;
}

}  // namespace

bool ZipDirectory::fail(const wchar_t* reason) {
    reason_ = reason;
    entries_.clear();
    return false;
}

bool ZipDirectory::readBytes(uint64_t offset, size_t size, std::string& bytes) {
    if (offset > fileSize_ || size > fileSize_ - offset) return false;
    bytes.resize(size);
    size_t done = 0;
    while (done < size) {
        const ssize_t got = ::pread(descriptor_, bytes.data() + done, size - done,
                                    static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        done += static_cast<size_t>(got);
    }
    return true;
}

bool ZipDirectory::read(int descriptor) {
    struct stat info;
    descriptor_ = descriptor;
    entries_.clear();
    place_ = {};
    if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode)) return fail(L"it is no file");
    fileSize_ = static_cast<uint64_t>(info.st_size);
    return findEnd() && readEntries() && entriesStandApart();
}

bool ZipDirectory::findEnd() {
    const size_t length = static_cast<size_t>(
        std::min<uint64_t>(fileSize_, kZip64LocatorBytes + kEndRecordBytes + kLongestComment));
    const uint64_t offset = fileSize_ - length;
    std::string tail;
    if (!readBytes(offset, length, tail)) return fail(L"it cannot be read");
    const size_t end = lastEndRecord(tail);
    if (end == std::string::npos) return fail(L"it is not a ZIP file");
    return readEndRecord(tail, offset, end) && isOnlyDirectory(tail, offset, end);
}

// Another end record leads to no directory, unless somebody has made it to: one of an archive in
// the archive counts from that archive's own start.
bool ZipDirectory::isOnlyDirectory(const std::string& tail, uint64_t tailOffset, size_t end) {
    for (size_t at = tail.find(kEndSignature); at != std::string::npos;
         at = tail.find(kEndSignature, at + 1)) {
        if (at == end || tail.size() - at < kEndRecordBytes) continue;
        std::string start;
        const uint64_t size = wordAt(tail, at + 12), offset = wordAt(tail, at + 16);
        const bool leadsToDirectory = size != 0 && offset + size <= tailOffset + at &&
                                      readBytes(offset, kEntrySignature.size(), start) &&
                                      start == kEntrySignature;
        if (leadsToDirectory || followsZip64Locator(tail, at)) {
            return fail(L"it has more than one directory");
        }
    }
    return true;
}

bool ZipDirectory::readEndRecord(const std::string& tail, uint64_t tailOffset, size_t end) {
    if (followsZip64Locator(tail, end)) {
        return readZip64Record(tailOffset + end - kZip64LocatorBytes);
    }
    if (shortAt(tail, end + 4) != 0 || shortAt(tail, end + 6) != 0) {
        return fail(L"it is a part of an archive in several parts");
    }
    place_.entries = shortAt(tail, end + 10);
    place_.size = wordAt(tail, end + 12);
    place_.offset = wordAt(tail, end + 16);
    place_.end = tailOffset + end;
    return true;
}

bool ZipDirectory::readZip64Record(uint64_t locatorOffset) {
    std::string locator, record;
    if (!readBytes(locatorOffset, kZip64LocatorBytes, locator)) return fail(L"it cannot be read");
    place_.end = longAt(locator, 8);
    if (place_.end > locatorOffset || !readBytes(place_.end, kZip64RecordBytes, record) ||
        !standsAt(record, 0, kZip64RecordSignature)) {
        return fail(L"its directory is damaged");
    }
    place_.entries = longAt(record, 32);
    place_.entriesMask = ~uint64_t(0);
    place_.size = longAt(record, 40);
    place_.offset = longAt(record, 48);
    return true;
}

bool ZipDirectory::readEntries() {
    if (place_.offset > place_.end || place_.size > place_.end - place_.offset ||
        place_.entries > place_.size / kEntryBytes) {
        return fail(L"its directory is damaged");
    }
    std::string bytes;
    if (!readBytes(place_.offset, static_cast<size_t>(place_.size), bytes)) {
        return fail(L"it cannot be read");
    }
    entries_.reserve(static_cast<size_t>(place_.entries));
    for (size_t at = 0; at < bytes.size();) {
        if (!readEntry(bytes, at)) return false;
    }
    const bool isWhole = (entries_.size() & place_.entriesMask) == place_.entries;
    return isWhole || fail(L"its directory is damaged");
}

bool ZipDirectory::readEntry(const std::string& bytes, size_t& at) {
    if (bytes.size() - at < kEntryBytes || !standsAt(bytes, at, kEntrySignature)) {
        return fail(L"its directory is damaged");
    }
    ZipEntry entry;
    entry.system = static_cast<uint8_t>(bytes[at + 5]);
    entry.flags = shortAt(bytes, at + 8);
    entry.method = shortAt(bytes, at + 10);
    entry.packedSize = wordAt(bytes, at + 20);
    entry.size = wordAt(bytes, at + 24);
    const size_t nameEnd = at + kEntryBytes + shortAt(bytes, at + 28);
    const size_t extraEnd = nameEnd + shortAt(bytes, at + 30);
    const size_t end = extraEnd + shortAt(bytes, at + 32);
    entry.attributes = wordAt(bytes, at + 38);
    entry.headerOffset = wordAt(bytes, at + 42);
    if (end > bytes.size()) return fail(L"its directory is damaged");
    entry.name = bytes.substr(at + kEntryBytes, nameEnd - at - kEntryBytes);
    if (entry.name.find('\0') != std::string::npos) {
        return fail(L"a name in it has a zero byte");
    }
    if (!readExtraFields(bytes, nameEnd, extraEnd, entry)) return false;
    entries_.push_back(std::move(entry));
    at = end;
    return true;
}

bool ZipDirectory::readExtraFields(const std::string& bytes, size_t at, size_t end,
                                   ZipEntry& entry) {
    for (size_t count = 0; end - at >= 4; ++count) {
        const size_t next = at + 4 + shortAt(bytes, at + 2);
        if (next > end || count == kMostExtraFields) return fail(L"its directory is damaged");
        if (shortAt(bytes, at) == kZip64Field) {
            // The field has only those of the numbers that their short forms have no room for.
            size_t number = at + 4;
            for (uint64_t* value : {&entry.size, &entry.packedSize, &entry.headerOffset}) {
                if (*value != 0xFFFFFFFF) continue;
                if (next - number < 8) return fail(L"its directory is damaged");
                *value = longAt(bytes, number);
                number += 8;
            }
        }
        at = next;
    }
    return true;
}

// Where the entry's bytes end, its header included.
bool ZipDirectory::endOfEntry(const ZipEntry& entry, uint64_t& end) {
    std::string header;
    if (!readBytes(entry.headerOffset, kLocalHeaderBytes, header) ||
        !standsAt(header, 0, kLocalSignature)) {
        return fail(L"an entry's header is damaged");
    }
    end = entry.headerOffset + kLocalHeaderBytes + shortAt(header, 26) + shortAt(header, 28);
    if (end > place_.offset || entry.packedSize > place_.offset - end) {
        return fail(L"an entry does not fit into the file");
    }
    end += entry.packedSize;
    return true;
}

bool ZipDirectory::entriesStandApart() {
    std::vector<std::pair<uint64_t, uint64_t>> ranges;
    ranges.reserve(entries_.size());
    for (const ZipEntry& entry : entries_) {
        uint64_t end = 0;
        if (!endOfEntry(entry, end)) return false;
        ranges.emplace_back(entry.headerOffset, end);
    }
    std::sort(ranges.begin(), ranges.end());
    for (size_t i = 1; i < ranges.size(); ++i) {
        if (ranges[i].first < ranges[i - 1].second) return fail(L"entries in it share bytes");
    }
    return true;
}

}  // namespace sg
