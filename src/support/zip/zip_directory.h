#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sg {

// One entry of a ZIP file as its central directory declares it.
struct ZipEntry {
    std::string name;  // the bytes as they are stored
    uint16_t flags = 0;
    uint16_t method = 0;
    uint8_t system = 0;                 // of its maker: 0 FAT, 3 Unix, 6 HPFS, 10 NTFS, ...
    uint32_t attributes = 0;            // as that system writes them
    uint64_t packedSize = 0, size = 0;  // bytes
    uint64_t headerOffset = 0;

    bool hasUtf8Name() const { return (flags & 0x800) != 0; }
    bool isEncrypted() const { return (flags & 1) != 0; }
};

// A ZIP file's central directory, read ahead of the library that unpacks it. It finds what the
// library does not look for or takes at a cost far beyond the file's size: entries that share
// bytes, several directories in one file, directories that overlap what they describe, names with a
// zero byte, and entries with very many extra fields.
class ZipDirectory {
  public:
    // Reads it from an open file, whose position does not matter. False when the file is no ZIP
    // file or a damaged one; reason() then says why.
    bool read(int descriptor);

    const std::vector<ZipEntry>& entries() const { return entries_; }
    const std::wstring& reason() const { return reason_; }

  private:
    struct Place {
        uint64_t offset = 0, size = 0, entries = 0;
        uint64_t end = 0;  // where the directory must have ended: at the record that tells of it
        uint64_t entriesMask = 0xFFFF;  // some programs write just 16 bits of a larger number
    };

    bool fail(const wchar_t* reason);
    bool findEnd();
    bool isOnlyDirectory(const std::string& tail, uint64_t tailOffset, size_t end);
    bool readEndRecord(const std::string& tail, uint64_t tailOffset, size_t end);
    bool readZip64Record(uint64_t locatorOffset);
    bool readEntries();
    bool readEntry(const std::string& bytes, size_t& at);
    bool readExtraFields(const std::string& bytes, size_t at, size_t end, ZipEntry& entry);
    bool entriesStandApart();
    bool endOfEntry(const ZipEntry& entry, uint64_t& end);
    bool readBytes(uint64_t offset, size_t size, std::string& bytes);

    int descriptor_ = -1;
    uint64_t fileSize_ = 0;
    Place place_;
    std::vector<ZipEntry> entries_;
    std::wstring reason_;
};

}  // namespace sg
