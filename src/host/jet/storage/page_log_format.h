#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/export.h"
#include "host/jet/format/byte_view.h"

// The bytes of the log beside a database file: sizes, offsets, checksums. docs/formats/jet_log.md
// explains them. All numbers are little-endian.
namespace sg::jet::log {

inline constexpr uint32_t fileMagic = 0x474C4753;    // "SGLG"
inline constexpr uint32_t markMagic = 0x4D4C4753;    // "SGLM"
inline constexpr uint32_t recordMagic = 0x524C4753;  // "SGLR"
inline constexpr uint32_t formatVersion = 1;

inline constexpr size_t headerSize = 64;
inline constexpr uint64_t markOffset = 512;  // a sector of its own
inline constexpr size_t markSize = 24;
inline constexpr uint64_t recordsOffset = 1024;

inline constexpr size_t recordHeadSize = 40;
inline constexpr size_t entrySize = 24;
inline constexpr uint32_t maxEntries = 256;  // in one record
inline constexpr size_t maxDeltas = 16;      // behind one image of a page
inline constexpr uint32_t maxPages = 0x1000000;

inline constexpr uint32_t commitFlag = 1;         // record: the transaction ends here
inline constexpr uint32_t deltaFlag = 1u << 31;   // entry: the body changes the page's last version
inline constexpr uint32_t firstFlag = 1u << 30;   // entry: `base` is valid
inline constexpr uint32_t sizeMask = 0x00ffffff;  // entry: bytes of the body

// A hash of `bytes` for the detection of damage; equal input and seed give equal hashes everywhere.
SG_API uint64_t checksum(uint64_t seed, std::span<const uint8_t> bytes);

// The log's first bytes: which database state its records stand on.
struct Header {
    uint32_t pageSize = 0;
    uint32_t basePages = 0;     // the database's pages when this generation began
    uint64_t salt = 0;          // random, new for every generation; seeds the records' chain
    uint64_t baseSequence = 0;  // of the last commit before this generation
    uint64_t basePage0 = 0;     // checksum of the database's page 0 then; 0 when it had no pages
};
SG_API std::vector<uint8_t> encode(const Header& header);
// Nothing when the bytes are no header.
SG_API std::optional<Header> decodeHeader(ByteView bytes);

// The mark that says that pages of this generation may stand in the database file already.
SG_API std::vector<uint8_t> encodeMark(uint64_t salt);
SG_API bool isMark(ByteView bytes, uint64_t salt);

struct Entry {
    uint32_t page = 0;
    uint32_t size = 0;  // of the body
    bool delta = false;
    bool first = false;     // of this page in this generation
    uint64_t checksum = 0;  // of the body
    uint64_t base = 0;      // when `first`: of the page in the database file; 0 for a new page
};

struct RecordHead {
    bool commit = false;
    uint64_t sequence = 0;   // the number of the commit it belongs to
    uint32_t pageCount = 0;  // the database's pages after that commit
    uint32_t entries = 0;
    uint64_t chain = 0;  // checksum over the previous record's chain, this head and the directory

    size_t directorySize() const { return size_t(entries) * entrySize; }
};

// The fields of a record's head; nothing when magic or counts cannot be right. The chain has not
// been checked.
SG_API std::optional<RecordHead> decodeRecordHead(ByteView bytes);
// The chain value of the record whose head and directory stand in `bytes` behind `previousChain`
// (of the first record: the salt).
SG_API uint64_t chainOf(uint64_t previousChain, ByteView headAndDirectory);
SG_API Entry decodeEntry(ByteView directory, size_t index);
// Writes head and directory to the start of `into` and answers the chain value.
SG_API uint64_t encodeRecord(std::span<uint8_t> into, const RecordHead& head,
                             std::span<const Entry> entries, uint64_t previousChain);

// The changes from `before` to `after`, appended to `into`; false, with `into` as it was, when they
// would need more than `limit` bytes.
SG_API bool appendDelta(std::vector<uint8_t>& into, std::span<const uint8_t> before,
                        std::span<const uint8_t> after, size_t limit);
// Applies a delta's body; false when it is not one for a page of this size.
SG_API bool applyDelta(std::span<uint8_t> page, ByteView delta);

}  // namespace sg::jet::log
