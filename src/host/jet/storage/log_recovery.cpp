#include "host/jet/storage/log_recovery.h"

#include <vector>

namespace sg::jet {
namespace {

bool hasMark(const File& file, uint64_t salt) {
    std::vector<uint8_t> bytes(log::markSize);
    bytes.resize(file.read(log::markOffset, bytes));
    return log::isMark({bytes.data(), bytes.size()}, salt);
}

// The checksum of a whole page of the database file; nothing when it has no such page.
std::optional<uint64_t> pageChecksum(const File& database, uint32_t page, size_t pageSize) {
    std::vector<uint8_t> bytes(pageSize);
    if (database.read(uint64_t(page) * pageSize, bytes) < pageSize) return std::nullopt;
    return log::checksum(0, bytes);
}

uint64_t pagesOf(const File& database, const log::Header& header) {
    return database.size() / header.pageSize;
}

bool fitsHeader(const log::Header& header, const File& database) {
    if (pagesOf(database, header) != header.basePages) return false;
    return header.basePages == 0 || pageChecksum(database, 0, header.pageSize) == header.basePage0;
}

bool fitsEntry(const log::Entry& entry, const log::Header& header, const File& database) {
    if (!entry.first || entry.page >= header.basePages) return true;
    return pageChecksum(database, entry.page, header.pageSize) == entry.base;
}

}  // namespace

std::optional<log::Header> readLogHeader(const File& file) {
    std::vector<uint8_t> bytes(log::headerSize);
    bytes.resize(file.read(0, bytes));
    return log::decodeHeader({bytes.data(), bytes.size()});
}

LogVerdict readLog(PageLog& log, const File& file, const File& database, const log::Header& header,
                   uint64_t generation) {
    log.restart(generation, header.salt, header.baseSequence, header.basePages);
    // Once pages were being brought over, the file may be anything between the states before and
    // after, but not shorter; until then it must be the state that the log began with.
    const bool marked = hasMark(file, header.salt);
    bool fits =
        marked ? pagesOf(database, header) >= header.basePages : fitsHeader(header, database);
    std::vector<log::Entry> entries;
    while (log.advance(UINT64_MAX, true, entries)) {
        for (const log::Entry& entry : entries) {
            fits = fits && (marked || fitsEntry(entry, header, database));
        }
        entries.clear();
    }
    if (log.sequence() == header.baseSequence) return LogVerdict::Empty;
    return fits ? LogVerdict::Commits : LogVerdict::Unrelated;
}

}  // namespace sg::jet
