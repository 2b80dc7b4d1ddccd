#include <algorithm>
#include <unordered_map>

#include "base/encoding.h"
#include "host/dwg/compression.h"
#include "host/dwg/file_content.h"

// Files of release 2007. Everything lies in blocks with Reed-Solomon codes behind it, the blocks of
// a page interleaved. The codes are not used: what they could mend is found by the packing and the
// check numbers of objects.

namespace sg::dwg {
namespace {

constexpr size_t kHeaderAt = 0x80;
constexpr size_t kHeaderCoded = 0x3D8;
constexpr size_t kFirstPage = 0x480;
constexpr size_t kBlock = 255;        // bytes of a block with its code
constexpr size_t kSystemData = 239;   // of them data, in system pages
constexpr size_t kSectionData = 251;  // and in those of sections

// Places in the header, each of eight bytes.
constexpr size_t kPageMapCopies = 0x18;
constexpr size_t kPageMapAt = 0x38;
constexpr size_t kPageMapPacked = 0x50;
constexpr size_t kPageMapSize = 0x58;
constexpr size_t kSectionMapPacked = 0xB0;
constexpr size_t kSectionMapNumber = 0xC0;
constexpr size_t kSectionMapSize = 0xC8;
constexpr size_t kSectionMapCopies = 0xD8;
constexpr size_t kHeaderSize = 0x110;

constexpr size_t kDescriptionSize = 64;
constexpr size_t kPageRecordSize = 56;

// The data of interleaved blocks. Empty when there are not so many.
Bytes withoutCodes(ByteSpan coded, size_t blocks, size_t dataSize) {
    Bytes data;
    if (blocks == 0 || blocks * kBlock > coded.size()) return data;
    data.reserve(blocks * dataSize);
    for (size_t block = 0; block < blocks; ++block) {
        for (size_t i = 0; i < dataSize; ++i)
            data.push_back(coded[i * blocks + block]);
    }
    return data;
}

size_t blocksFor(size_t size, size_t dataSize) {
    return (size + dataSize - 1) / dataSize;
}

size_t roundedUp(size_t size, size_t step) {
    return (size + step - 1) / step * step;
}

class Container {
  public:
    Container(ByteSpan bytes, const std::wstring& file, FileContent& content)
        : bytes_(bytes), file_(file), content_(content) {}

    void read() {
        readHeader();
        readPageMap();
        readSectionMap();
    }

  private:
    struct Page {
        size_t address = 0;
        size_t size = 0;
    };

    [[noreturn]] void fail(const std::wstring& what) const { throw Error(file_ + L": " + what); }
    void warn(const std::wstring& what) { content_.warnings.push_back(file_ + L": " + what); }

    uint64_t header(size_t at) const { return numberAt(header_, at, 8); }

    void readHeader() {
        if (bytes_.size() < kFirstPage) fail(L"the drawing file ends in its header");
        const Bytes data = withoutCodes(bytes_.subspan(kHeaderAt, kHeaderCoded), 3, kSystemData);
        const size_t packed = longAt(data, 24);
        const ByteSpan rest = ByteSpan(data).subspan(32);
        if (packed == 0) {
            header_.assign(rest.begin(), rest.begin() + kHeaderSize);
            return;
        }
        auto plain =
            packed > rest.size() ? std::nullopt : unpack2007(rest.first(packed), kHeaderSize);
        if (!plain) fail(L"the drawing file's header is damaged");
        header_ = std::move(*plain);
    }

    // What a system page holds, as many times as it stands there.
    Bytes systemPage(size_t address, uint64_t packed, uint64_t size, uint64_t copies,
                     const wchar_t* name) {
        const size_t most = bytes_.size();
        const bool isLikely =
            packed <= most && copies != 0 && copies <= most && size / 256 <= most && address < most;
        const size_t coded = isLikely ? roundedUp(packed, 8) * copies : 0;
        const size_t blocks = blocksFor(coded, kSystemData);
        if (!isLikely || blocks > (most - address) / kBlock) {
            fail(std::wstring(L"the ") + name + L" is not in the file");
        }
        Bytes data = withoutCodes(bytes_.subspan(address), blocks, kSystemData);
        if (packed >= size) {
            data.resize(size);
            return data;
        }
        auto plain = unpack2007(ByteSpan(data).first(packed), size);
        if (!plain) fail(std::wstring(L"the ") + name + L" cannot be unpacked");
        plain->resize(size);
        return std::move(*plain);
    }

    void readPageMap() {
        const Bytes map = systemPage(kFirstPage + header(kPageMapAt), header(kPageMapPacked),
                                     header(kPageMapSize), header(kPageMapCopies), L"page map");
        size_t address = kFirstPage;
        for (size_t at = 0; at + 16 <= map.size(); at += 16) {
            const uint64_t size = numberAt(map, at, 8);
            const auto number = static_cast<int64_t>(numberAt(map, at + 8, 8));
            if (size > bytes_.size()) break;
            pages_.emplace(number, Page{address, size});
            address += size;
        }
    }

    void readSectionMap() {
        const auto page = pages_.find(static_cast<int64_t>(header(kSectionMapNumber)));
        if (page == pages_.end()) fail(L"the section map is not in the page map");
        const Bytes map =
            systemPage(page->second.address, header(kSectionMapPacked), header(kSectionMapSize),
                       header(kSectionMapCopies), L"section map");
        for (size_t at = 0; at + kDescriptionSize <= map.size();) {
            const uint64_t size = numberAt(map, at, 8);
            const uint64_t nameSize = numberAt(map, at + 32, 8);
            const uint64_t encoding = numberAt(map, at + 48, 8);
            const uint64_t pages = numberAt(map, at + 56, 8);
            at += kDescriptionSize;
            if (nameSize > map.size() - at) break;
            const std::string name = nameAt(ByteSpan(map).subspan(at, nameSize));
            at += nameSize;
            if (pages > (map.size() - at) / kPageRecordSize) break;
            const ByteSpan records = ByteSpan(map).subspan(at, pages * kPageRecordSize);
            at += records.size();
            if (!name.empty()) readSection(name, size, encoding, records);
        }
    }

    static std::string nameAt(ByteSpan units) {
        std::u16string name;
        for (size_t i = 0; i + 2 <= units.size(); i += 2) {
            if (const uint16_t unit = shortAt(units, i))
                name.push_back(static_cast<char16_t>(unit));
        }
        return toUtf8(fromUtf16(name));
    }

    void readSection(const std::string& name, uint64_t size, uint64_t, ByteSpan records) {
        if (size / 256 > bytes_.size()) {
            return warn(L"the section " + fromUtf8(name) + L" cannot be so long and is left out");
        }
        Bytes whole;
        for (size_t at = 0; at < records.size(); at += kPageRecordSize) {
            const uint64_t start = numberAt(records, at, 8);
            const auto number = static_cast<int64_t>(numberAt(records, at + 16, 8));
            const uint64_t plain = numberAt(records, at + 24, 8);
            const uint64_t packed = numberAt(records, at + 32, 8);
            const auto page = pages_.find(number);
            const bool isLikely = page != pages_.end() && start <= size && plain <= size - start &&
                                  packed <= bytes_.size();
            if (!isLikely || !readPage(page->second, start, plain, packed, whole)) {
                warn(L"page " + std::to_wstring(number) + L" of the section " + fromUtf8(name) +
                     L" is damaged");
            }
        }
        content_.add(name, std::move(whole));
    }

    // A page without codes is shorter than one with them would be; nothing else tells them apart.
    bool readPage(const Page& page, uint64_t start, uint64_t size, uint64_t packed, Bytes& whole) {
        if (page.address > bytes_.size() || page.size > bytes_.size() - page.address) return false;
        taken_ += page.size;
        if (taken_ > bytes_.size()) return false;
        const ByteSpan there = bytes_.subspan(page.address, page.size);
        const size_t blocks = blocksFor(roundedUp(packed, 8), kSectionData);
        const bool isCoded = packed != size || page.size == roundedUp(blocks * kBlock, 0x20);
        Bytes data =
            isCoded ? withoutCodes(there, blocks, kSectionData) : Bytes(there.begin(), there.end());
        if (packed > data.size()) return false;
        if (packed < size) {
            auto plain = unpack2007(ByteSpan(data).first(packed), size);
            if (!plain) return false;
            data = std::move(*plain);
        }
        data.resize(size);
        if (whole.size() < start + size) whole.resize(start + size);
        std::copy(data.begin(), data.end(), whole.begin() + static_cast<ptrdiff_t>(start));
        return true;
    }

    ByteSpan bytes_;
    const std::wstring& file_;
    FileContent& content_;
    Bytes header_;
    std::unordered_map<int64_t, Page> pages_;
    uint64_t taken_ = 0;
};

}  // namespace

void readContainer2007(ByteSpan bytes, const std::wstring& file, FileContent& content) {
    Container(bytes, file, content).read();
}

}  // namespace sg::dwg
