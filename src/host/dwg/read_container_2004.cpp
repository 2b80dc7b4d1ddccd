#include <algorithm>
#include <cstring>
#include <unordered_map>

#include "host/dwg/checksums.h"
#include "host/dwg/compression.h"
#include "host/dwg/file_content.h"
#include "host/dwg/pages_2004.h"

namespace sg::dwg {
namespace {

using namespace pages;

class Container {
  public:
    Container(ByteSpan bytes, const std::wstring& file, FileContent& content)
        : bytes_(bytes), file_(file), content_(content) {}

    void read() {
        readHeader();
        readPageMap();
        readSections();
    }

  private:
    // A section of the map.
    struct Description {
        std::string name;
        uint64_t size = 0;
        uint32_t pages = 0;
        uint32_t pageSize = 0;
        bool isPacked = false;
        uint32_t encryption = 0;
    };

    [[noreturn]] void fail(const std::wstring& what) const { throw Error(file_ + L": " + what); }
    void warn(const std::wstring& what) { content_.warnings.push_back(file_ + L": " + what); }

    void readHeader() {
        if (bytes_.size() < kFirstPage) fail(L"the drawing file ends in its header");
        std::memcpy(header_, bytes_.data() + kHeaderAt, kHeaderSize);
        scrambleHeader(header_, kHeaderSize);
        if (std::memcmp(header_, kHeaderName, sizeof(kHeaderName)) != 0) {
            fail(L"the drawing file's header is damaged");
        }
        uint8_t checked[kHeaderSize];
        std::memcpy(checked, header_, kHeaderSize);
        std::memset(checked + kChecksumAt, 0, 4);
        if (crc32(0, checked) != longAt(header_, kChecksumAt)) {
            warn(L"the check number of the file's header is wrong");
        }
    }

    // What a system page holds. `type` is which one it has to be.
    Bytes systemPage(uint64_t address, uint32_t type, const wchar_t* name) {
        if (address + kSystemHeaderSize > bytes_.size()) {
            fail(std::wstring(L"the ") + name + L" is not in the file");
        }
        const ByteSpan head = bytes_.subspan(address, kSystemHeaderSize);
        const uint32_t size = longAt(head, 4);
        const uint32_t packed = longAt(head, 8);
        const ByteSpan rest = bytes_.subspan(address + kSystemHeaderSize);
        if (longAt(head, 0) != type || packed > rest.size()) {
            fail(std::wstring(L"the ") + name + L" is damaged");
        }
        const ByteSpan data = rest.first(packed);
        if (longAt(head, 16) != systemSum(head, data)) {
            warn(std::wstring(L"the check number of the ") + name + L" is wrong");
        }
        auto plain = unpack2004(data, size);
        if (!plain) fail(std::wstring(L"the ") + name + L" cannot be unpacked");
        return std::move(*plain);
    }

    static uint32_t systemSum(ByteSpan head, ByteSpan data) {
        uint8_t checked[kSystemHeaderSize];
        std::copy(head.begin(), head.end(), checked);
        std::memset(checked + 16, 0, 4);
        return pageSum(pageSum(0, checked), data);
    }

    // Pages stand one behind another in the order of the map; negative numbers are gaps.
    void readPageMap() {
        const uint64_t at = numberAt(header_, kPageMapAt, 8);
        if (at > bytes_.size()) fail(L"the page map is not in the file");
        const Bytes map = systemPage(at + kFirstPage, kPageMapType, L"page map");
        uint64_t address = kFirstPage;
        for (size_t i = 0; i + 8 <= map.size();) {
            const auto number = static_cast<int32_t>(longAt(map, i));
            addresses_.emplace(number, address);
            address += longAt(map, i + 4);
            i += number < 0 ? 24 : 8;
        }
    }

    void readSections() {
        const auto number = static_cast<int32_t>(longAt(header_, kSectionMapNumberAt));
        const auto page = addresses_.find(number);
        if (page == addresses_.end()) fail(L"the section map is not in the page map");
        const Bytes map = systemPage(page->second, kSectionMapType, L"section map");
        const uint32_t count = longAt(map, 0);
        size_t at = kMapHeadSize;
        for (uint32_t i = 0; i < count && at + kDescriptionSize <= map.size(); ++i) {
            const Description section = describe(ByteSpan(map).subspan(at));
            at += kDescriptionSize;
            const size_t records = section.pages * kPageRecordSize;
            if (records > map.size() - at) fail(L"the section map ends too early");
            if (!section.name.empty()) readSection(section, ByteSpan(map).subspan(at, records));
            at += records;
        }
    }

    static Description describe(ByteSpan map) {
        Description section;
        section.size = numberAt(map, 0, 8);
        section.pages = longAt(map, 8);
        section.pageSize = longAt(map, 12);
        section.isPacked = longAt(map, 20) == kIsPacked;
        section.encryption = longAt(map, 28);
        const auto* const name = reinterpret_cast<const char*>(map.data()) + 32;
        section.name.assign(name, strnlen(name, kNameSize));
        return section;
    }

    // Pages that are not there leave zeros in what is read.
    void readSection(const Description& section, ByteSpan records) {
        const std::wstring name = fromUtf8(section.name);
        const uint64_t most = static_cast<uint64_t>(section.pages) * section.pageSize;
        if (section.encryption == 1) {
            return warn(L"the section " + name + L" has a password and is not read");
        }
        Bytes whole;
        for (size_t at = 0; at + kPageRecordSize <= records.size(); at += kPageRecordSize) {
            const auto number = static_cast<int32_t>(longAt(records, at));
            const uint64_t start = numberAt(records, at + 8, 8);
            const auto page = addresses_.find(number);
            if (page == addresses_.end() || start > most ||
                !readPage(section, page->second, start, whole)) {
                warn(L"page " + std::to_wstring(number) + L" of the section " + name +
                     L" is damaged");
            }
        }
        whole.resize(std::min<uint64_t>(section.size, whole.size()));
        content_.add(section.name, std::move(whole));
    }

    bool readPage(const Description& section, uint64_t address, uint64_t start, Bytes& whole) {
        if (address + kDataHeaderSize > bytes_.size()) return false;
        uint8_t head[kDataHeaderSize];
        const uint32_t mask = kDataMask ^ static_cast<uint32_t>(address);
        for (size_t i = 0; i < kDataHeaderSize; ++i) {
            head[i] = static_cast<uint8_t>(bytes_[address + i] ^ mask >> (8 * (i % 4)));
        }
        const ByteSpan rest = bytes_.subspan(address + kDataHeaderSize);
        const size_t size = longAt(head, 8);
        if (longAt(head, 0) != kDataType || size > rest.size()) return false;
        const ByteSpan data = rest.first(size);
        if (longAt(head, 28) != pageSum(0, data)) {
            warn(L"the check number of a page of the section " + fromUtf8(section.name) +
                 L" is wrong");
        }
        // A page takes part in one section only, so that files cannot grow without bound here.
        taken_ += size;
        if (taken_ > bytes_.size()) return false;
        const uint64_t room = section.pageSize;
        if (!section.isPacked) {
            place(whole, start, data.first(std::min<uint64_t>(size, room)));
            return true;
        }
        const auto plain = unpack2004(data, room);
        if (!plain) return false;
        place(whole, start, *plain);
        return true;
    }

    void place(Bytes& whole, uint64_t start, ByteSpan data) {
        // What lies between pages is zero; no page lies far behind what the others fill.
        if (start > whole.size() + bytes_.size()) return;
        if (whole.size() < start + data.size()) whole.resize(start + data.size());
        std::copy(data.begin(), data.end(), whole.begin() + static_cast<ptrdiff_t>(start));
    }

    ByteSpan bytes_;
    const std::wstring& file_;
    FileContent& content_;
    uint8_t header_[kHeaderSize] = {};
    std::unordered_map<int32_t, uint64_t> addresses_;
    uint64_t taken_ = 0;  // bytes of pages that were read
};

}  // namespace

void readContainer2004(ByteSpan bytes, const std::wstring& file, FileContent& content) {
    Container(bytes, file, content).read();
}

}  // namespace sg::dwg
