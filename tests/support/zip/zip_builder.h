#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sg::test {

// One entry of a ZIP file as it is to be written, with whatever is to be false about it.
struct RawEntry {
    explicit RawEntry(std::string entryName, std::string bytes = "data")
        : name(std::move(entryName)), data(std::move(bytes)) {}

    std::string name;
    std::string data;  // as it stands in the file
    uint16_t flags = 0, method = 0;
    uint8_t system = 3;
    uint32_t attributes = 0;
    std::string extra;
    std::optional<uint32_t> size, packedSize, crc, headerOffset;
};

// A ZIP file put together byte by byte.
class ZipBuilder {
  public:
    ZipBuilder& add(const RawEntry& entry) {
        offsets_.push_back(static_cast<uint32_t>(bytes_.size()));
        bytes_ += "PK\3\4" + common(entry) + entry.name + entry.extra + entry.data;
        entries_.push_back(entry);
        return *this;
    }
    ZipBuilder& add(const std::string& name, const std::string& data = "data") {
        return add(RawEntry(name, data));
    }

    std::string bytes() const { return bytes_ + directory(bytes_.size()); }

    // What stands in front of the directory, and the directory with the record that ends the file,
    // for a directory that begins at `offset`.
    const std::string& entries() const { return bytes_; }
    std::string directory(size_t offset) const {
        std::string records;
        for (size_t i = 0; i < entries_.size(); ++i)
            records += record(entries_[i], offsets_[i]);
        return records + "PK\5\6" + number(0, 4) + number(entries_.size(), 2) +
               number(entries_.size(), 2) + number(records.size(), 4) + number(offset, 4) +
               number(0, 2);
    }

    static std::string number(uint64_t value, int length) {
        std::string bytes;
        for (; length > 0; --length, value >>= 8)
            bytes += static_cast<char>(value);
        return bytes;
    }

    // Bytes as deflate stores them that do not get smaller.
    static std::string storedBlock(const std::string& data) {
        return '\1' + number(data.size(), 2) + number(~data.size(), 2) + data;
    }

    static uint32_t crc32(const std::string& data) {
        uint32_t crc = ~0u;
        for (const char c : data) {
            crc ^= static_cast<unsigned char>(c);
            for (int bit = 0; bit < 8; ++bit)
                crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320u : 0);
        }
        return ~crc;
    }

  private:
    // What local and central headers share, from the version that is needed on to the lengths of
    // the name and the extra fields. The time is 2017-01-31 14:30:00.
    static std::string common(const RawEntry& entry) {
        return number(20, 2) + number(entry.flags, 2) + number(entry.method, 2) +
               number(14 << 11 | 30 << 5, 2) + number((2017 - 1980) << 9 | 1 << 5 | 31, 2) +
               number(entry.crc.value_or(crc32(entry.data)), 4) +
               number(entry.packedSize.value_or(static_cast<uint32_t>(entry.data.size())), 4) +
               number(entry.size.value_or(static_cast<uint32_t>(entry.data.size())), 4) +
               number(entry.name.size(), 2) + number(entry.extra.size(), 2);
    }
    static std::string record(const RawEntry& entry, uint32_t offset) {
        return "PK\1\2" + number(20, 1) + number(entry.system, 1) + common(entry) + number(0, 2) +
               number(0, 2) + number(0, 2) + number(entry.attributes, 4) +
               number(entry.headerOffset.value_or(offset), 4) + entry.name + entry.extra;
    }

    std::string bytes_;
    std::vector<RawEntry> entries_;
    std::vector<uint32_t> offsets_;
};

}  // namespace sg::test
