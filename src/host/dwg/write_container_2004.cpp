#include <algorithm>
#include <cstring>

#include "host/dwg/bit_writer.h"
#include "host/dwg/checksums.h"
#include "host/dwg/compression.h"
#include "host/dwg/pages_2004.h"
#include "host/dwg/section_streams.h"
#include "host/dwg/write_container.h"

namespace sg::dwg {
namespace {

using namespace pages;

constexpr size_t kPageSize = 0x7400;     // of what is packed, unpacked
constexpr size_t kPlainPageStep = 0x80;  // plain sections are one page of such a size
constexpr uint32_t kMostPage = 0x7400;

// The numbers of sections in the map.
struct Number {
    std::string_view name;
    uint32_t number;
};
constexpr Number kNumbers[] = {
    {section::kHeader, 1},    {section::kAuxiliaryHeader, 2}, {section::kClasses, 3},
    {section::kObjectMap, 4}, {section::kTemplate, 5},        {section::kFreeSpace, 6},
    {section::kObjects, 7},   {section::kRevisions, 8},       {section::kSummary, 9},
    {section::kPreview, 10},  {section::kApplication, 11},    {section::kStoredData, 13},
};

size_t roundedUp(size_t size, size_t step) {
    return (size + step - 1) / step * step;
}

void put(uint8_t* to, uint64_t number, size_t size) {
    for (size_t i = 0; i < size; ++i)
        to[i] = static_cast<uint8_t>(number >> (8 * i));
}

class Writer {
  public:
    explicit Writer(FileParts& parts) : parts_(parts) {}

    Bytes write() {
        file_.assign(kFirstPage, 0);
        writeSections();
        const size_t sectionMap = writeSectionMap();
        const size_t pageMap = writePageMap();
        writeHeader(sectionMap, pageMap);
        writeFirstBytes();
        return std::move(file_);
    }

  private:
    struct Page {
        size_t number, size, start;  // the size packed; the start in the section
    };
    struct Written {
        std::string name;
        uint32_t number = 0;
        uint64_t size = 0;
        size_t pageSize = kPageSize;
        bool isPacked = true;
        size_t address = 0;  // of the first page
        std::vector<Page> pages;
    };

    // In the order in which other programs write them.
    void writeSections() {
        if (!parts_.summary.empty()) writePlain(section::kSummary, parts_.summary);
        placePreview(parts_.preview, file_.size() + kDataHeaderSize);
        writePlain(section::kPreview, parts_.preview);
        if (!parts_.application.empty()) writePlain(section::kApplication, parts_.application);
        if (!parts_.storedData.empty()) writePacked(section::kStoredData, parts_.storedData);
        for (const FileParts::Kept& kept : parts_.kept)
            writePacked(kept.name, kept.data);
        writePacked(section::kRevisions, revisions());
        writePacked(section::kObjects, parts_.objects);
        writePacked(section::kFreeSpace, freeSpace());
        writePacked(section::kTemplate, templateSection(parts_));
        writePacked(section::kObjectMap, writeObjectMap(parts_.places));
        writePacked(section::kClasses, parts_.classes);
        writePacked(section::kAuxiliaryHeader, parts_.auxiliaryHeader);
        writePacked(section::kHeader, parts_.header);
    }

    static Bytes revisions() {
        BitWriter writer;
        for (const uint32_t number : {0u, 0u, 1u, 0u})
            writer.rawLong(number);
        return writer.bytes();
    }

    Bytes freeSpace() const {
        BitWriter writer;
        const bool isLong = parts_.release >= AcDb::kDHL_1024;
        const auto count = static_cast<uint32_t>(parts_.places.size());
        const auto number = [&](uint32_t value) {
            writer.rawLong(value);
            if (isLong) writer.rawLong(0);
        };
        number(0);
        number(count);
        writer.rawLongLong(0);           // when the drawing was changed, which readers do without
        if (!isLong) writer.rawLong(0);  // where the objects are, which is in no file
        writer.rawChar(4);               // limits follow
        for (const uint64_t value : {0x32ull, 0x64ull, 0x200ull, 0xFFFFFFFFull}) {
            writer.rawLongLong(value);
            if (isLong) writer.rawLongLong(0);
        }
        return writer.bytes();
    }

    uint32_t numberOf(std::string_view name) {
        for (const Number& known : kNumbers) {
            if (known.name == name) return known.number;
        }
        return nextNumber_++;
    }

    Written& begin(std::string_view name, ByteSpan data) {
        Written& section = written_.emplace_back();
        section.name = name;
        section.number = numberOf(name);
        section.size = data.size();
        section.address = file_.size();
        return section;
    }

    void writePlain(std::string_view name, ByteSpan data) {
        Written& section = begin(name, data);
        section.isPacked = false;
        section.pageSize = roundedUp(std::max<size_t>(data.size(), 1), kPlainPageStep);
        Bytes page(data.begin(), data.end());
        page.resize(section.pageSize);
        writePage(section, 0, page);
    }

    void writePacked(std::string_view name, ByteSpan data) {
        Written& section = begin(name, data);
        for (size_t start = 0; start < data.size(); start += kPageSize) {
            const ByteSpan piece = data.subspan(start, std::min(kPageSize, data.size() - start));
            Bytes page(piece.begin(), piece.end());
            page.resize(kPageSize);
            writePage(section, start, pack2004(page));
        }
    }

    void writePage(Written& section, size_t start, const Bytes& data) {
        const size_t address = file_.size();
        const size_t whole = roundedUp(kDataHeaderSize + data.size(), kAlignment);
        uint8_t head[kDataHeaderSize] = {};
        put(head, kDataType, 4);
        put(head + 4, section.number, 4);
        put(head + 8, data.size(), 4);
        put(head + 12, whole, 4);
        put(head + 16, start, 4);
        const uint32_t sum = pageSum(0, data);
        put(head + 28, sum, 4);
        // The header is summed up without its own sum, and before that of the data is known.
        uint8_t summed[kDataHeaderSize];
        std::memcpy(summed, head, kDataHeaderSize);
        put(summed + 28, 0, 4);
        put(head + 24, pageSum(sum, summed), 4);
        const uint32_t mask = kDataMask ^ static_cast<uint32_t>(address);
        for (size_t i = 0; i < kDataHeaderSize; ++i)
            head[i] = static_cast<uint8_t>(head[i] ^ mask >> (8 * (i % 4)));
        file_.insert(file_.end(), head, head + kDataHeaderSize);
        file_.insert(file_.end(), data.begin(), data.end());
        fill(address + whole);
        section.pages.push_back({takePage(whole), data.size(), start});
    }

    // What lies between is what scrambling makes of zeros.
    void fill(size_t end) {
        const size_t from = file_.size();
        file_.resize(end);
        scrambleHeader(file_.data() + from, end - from);
    }

    size_t takePage(size_t size) {
        pageSizes_.push_back(size);
        return pageSizes_.size();
    }

    void systemHead(uint8_t* head, uint32_t type, size_t size, ByteSpan packed) {
        put(head, type, 4);
        put(head + 4, size, 4);
        put(head + 8, packed.size(), 4);
        put(head + 12, kIsPacked, 4);
        put(head + 16, 0, 4);
        put(head + 16, pageSum(pageSum(0, {head, kSystemHeaderSize}), packed), 4);
    }

    // Answers the address.
    size_t writeSystemPage(uint32_t type, ByteSpan plain, size_t room) {
        const Bytes packed = pack2004(plain);
        const size_t address = file_.size();
        uint8_t head[kSystemHeaderSize];
        systemHead(head, type, plain.size(), packed);
        file_.insert(file_.end(), head, head + kSystemHeaderSize);
        file_.insert(file_.end(), packed.begin(), packed.end());
        if (room != 0) fill(address + room);
        return address;
    }

    size_t writeSectionMap() {
        BitWriter map;
        const auto count = static_cast<uint32_t>(written_.size() + 1);
        for (const uint32_t number : {count, 2u, kMostPage, 0u, count})
            map.rawLong(number);
        describe(map, Written());
        for (auto section = written_.rbegin(); section != written_.rend(); ++section)
            describe(map, *section);
        const Bytes& plain = map.bytes();
        const size_t packed = pack2004(plain).size();
        const size_t room = roundedUp(kSystemHeaderSize + packed, kAlignment);
        const size_t address = writeSystemPage(kSectionMapType, plain, room);
        sectionMapNumber_ = takePage(room);
        return address;
    }

    static void describe(BitWriter& map, const Written& section) {
        map.rawLongLong(section.size);
        map.rawLong(static_cast<uint32_t>(section.pages.size()));
        map.rawLong(static_cast<uint32_t>(section.pageSize));
        map.rawLong(1);
        map.rawLong(section.isPacked ? kIsPacked : kIsPlain);
        map.rawLong(section.number);
        map.rawLong(0);  // no password
        char name[kNameSize] = {};
        section.name.copy(name, kNameSize - 1);
        map.rawBytes(name, kNameSize);
        for (const Page& page : section.pages) {
            map.rawLong(static_cast<uint32_t>(page.number));
            map.rawLong(static_cast<uint32_t>(page.size));
            map.rawLongLong(page.start);
        }
    }

    // The map's own page is in it. Behind it stands the copy of the header.
    size_t writePageMap() {
        const size_t plainSize = (pageSizes_.size() + 1) * 8;
        // Packing lengthens by less than this.
        const size_t room =
            roundedUp(kSystemHeaderSize + plainSize + plainSize / 64 + 64, kAlignment);
        pageMapNumber_ = takePage(room);
        BitWriter map;
        for (size_t i = 0; i < pageSizes_.size(); ++i) {
            map.rawLong(static_cast<uint32_t>(i + 1));
            map.rawLong(static_cast<uint32_t>(pageSizes_[i]));
        }
        return writeSystemPage(kPageMapType, map.bytes(), room);
    }

    void writeHeader(size_t, size_t pageMap) {
        uint8_t header[kFirstPage - kHeaderAt] = {};
        std::memcpy(header, kHeaderName, sizeof(kHeaderName));
        put(header + 0x10, kHeaderSize, 4);
        put(header + 0x14, 4, 4);
        put(header + 0x24, 1, 4);
        put(header + kLastPageAt, pageSizes_.size(), 4);
        put(header + kEndAt, file_.size() - kFirstPage, 8);
        put(header + kCopyAt, file_.size(), 8);
        put(header + kGapsAt, 0, 4);
        put(header + kGapsAt + 4, pageSizes_.size(), 4);
        put(header + 0x44, 0x20, 4);
        put(header + 0x48, 0x80, 4);
        put(header + 0x4C, 0x40, 4);
        put(header + kPageMapNumberAt, pageMapNumber_, 4);
        put(header + kPageMapAt, pageMap - kFirstPage, 8);
        put(header + kSectionMapNumberAt, sectionMapNumber_, 4);
        put(header + kGreatestAt, pageSizes_.size(), 4);
        put(header + kChecksumAt, crc32(0, {header, kHeaderSize}), 4);
        scrambleHeader(header, sizeof(header));
        std::memcpy(file_.data() + kHeaderAt, header, sizeof(header));
        file_.insert(file_.end(), header, header + kHeaderSize);
    }

    // Where the data of a section's first page begin; 0 without the section.
    size_t dataOf(std::string_view name) const {
        for (const Written& section : written_) {
            if (section.name == name) return section.address + kDataHeaderSize;
        }
        return 0;
    }

    void writeFirstBytes() {
        uint8_t* const first = file_.data();
        std::memcpy(first, parts_.version.data(), parts_.version.size());
        first[0x0B] = maintenanceOf(parts_.release);
        first[0x0C] = 3;
        put(first + 0x0D, dataOf(section::kPreview), 4);
        first[0x11] = static_cast<uint8_t>(parts_.release);
        first[0x12] = maintenanceOf(parts_.release);
        put(first + 0x13, parts_.codePage, 2);
        put(first + 0x20, dataOf(section::kSummary), 4);
        put(first + 0x28, kHeaderAt, 4);
        put(first + 0x2C, dataOf(section::kApplication), 4);
    }

    FileParts& parts_;
    Bytes file_;
    std::vector<Written> written_;
    std::vector<size_t> pageSizes_;  // by number, from 1 on
    size_t sectionMapNumber_ = 0, pageMapNumber_ = 0;
    uint32_t nextNumber_ = 14;
};

}  // namespace

Bytes writeContainer2004(FileParts& parts) {
    return Writer(parts).write();
}

}  // namespace sg::dwg
