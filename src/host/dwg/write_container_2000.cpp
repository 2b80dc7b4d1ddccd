#include "host/dwg/bit_writer.h"
#include "host/dwg/checksums.h"
#include "host/dwg/section_streams.h"
#include "host/dwg/sentinels.h"
#include "host/dwg/write_container.h"

namespace sg::dwg {
namespace {

constexpr size_t kSections = 6;
constexpr size_t kLocatorSize = 0x15 + 4 + kSections * 9 + 2 + 16;
// What wrote the file, as files have it; release 2000 itself.
constexpr uint8_t kWriterVersion = 23;

struct Place {
    size_t address = 0, size = 0;
};

class Writer {
  public:
    explicit Writer(FileParts& parts) : parts_(parts) {}

    Bytes write() {
        file_.assign(kLocatorSize, 0);
        places_[5] = append(parts_.auxiliaryHeader);
        placePreview(parts_.preview, file_.size());
        preview_ = append(parts_.preview);
        places_[0] = append(parts_.header);
        places_[1] = append(parts_.classes);
        const size_t base = append(parts_.objects).address;
        for (ObjectPlace& place : parts_.places)
            place.address += base;
        places_[2] = append(writeObjectMap(parts_.places));
        append(secondHeader(file_.size()));
        places_[4] = append(templateSection(parts_));
        const Bytes locator = locatorBytes();
        std::copy(locator.begin(), locator.end(), file_.begin());
        return std::move(file_);
    }

  private:
    Place append(const Bytes& bytes) {
        const Place place{file_.size(), bytes.size()};
        file_.insert(file_.end(), bytes.begin(), bytes.end());
        return place;
    }

    Bytes locatorBytes() const {
        BitWriter writer;
        writer.rawBytes(parts_.version);
        for (int i = 0; i < 5; ++i)
            writer.rawChar(0);
        writer.rawChar(maintenanceOf(AcDb::kDHL_1015));
        writer.rawChar(1);
        writer.rawLong(static_cast<uint32_t>(preview_.address));
        writer.rawChar(kWriterVersion);
        writer.rawChar(0);
        writer.rawShort(parts_.codePage);
        writer.rawLong(kSections);
        for (size_t i = 0; i < kSections; ++i) {
            writer.rawChar(static_cast<uint8_t>(i));
            writer.rawLong(static_cast<uint32_t>(places_[i].address));
            writer.rawLong(static_cast<uint32_t>(places_[i].size));
        }
        writer.rawShort(crc16(kSectionSeed, writer.bytes()));
        writer.rawBytes(kLocatorEnd.data(), kLocatorEnd.size());
        return writer.bytes();
    }

    // Repeats what the first bytes tell, with the handles of the roots.
    Bytes secondHeader(size_t address) const {
        BitWriter body;
        body.bitLong(static_cast<int32_t>(address));
        body.rawBytes(parts_.version);
        for (int i = 0; i < 5; ++i)
            body.rawChar(0);
        body.rawChar(maintenanceOf(AcDb::kDHL_1015));
        body.rawChar(1);
        body.bitShort(kWriterVersion);
        body.rawShort(parts_.codePage);
        body.bitShort(kSections);
        for (size_t i = 0; i < kSections; ++i) {
            body.rawChar(static_cast<uint8_t>(i));
            body.bitLong(static_cast<int32_t>(places_[i].address));
            body.bitLong(static_cast<int32_t>(places_[i].size));
        }
        body.bitShort(static_cast<int16_t>(parts_.secondHeaderHandles.size()));
        uint8_t number = 0;
        for (const uint64_t handle : parts_.secondHeaderHandles)
            putHandle(body, number++, handle);
        const Bytes& bytes = body.bytes();

        constexpr size_t kTail = 2 + 8;  // the check number and eight bytes of no known meaning
        BitWriter writer;
        writer.rawBytes(kSecondHeaderStart.data(), kSecondHeaderStart.size());
        writer.rawLong(static_cast<uint32_t>(bytes.size() + kTail));
        writer.rawBytes(bytes.data(), bytes.size());
        writer.rawShort(
            crc16(kSectionSeed, ByteSpan(writer.bytes()).subspan(kSecondHeaderStart.size())));
        writer.rawLongLong(0);
        const Sentinel end = endOf(kSecondHeaderStart);
        writer.rawBytes(end.data(), end.size());
        return writer.bytes();
    }

    static void putHandle(BitWriter& body, uint8_t number, uint64_t handle) {
        unsigned count = 0;
        while (count < 8 && handle >> (8 * count) != 0)
            ++count;
        body.rawChar(static_cast<uint8_t>(count));
        body.rawChar(number);
        while (count-- > 0)
            body.rawChar(static_cast<uint8_t>(handle >> (8 * count)));
    }

    FileParts& parts_;
    Bytes file_;
    Place places_[kSections];
    Place preview_;
};

}  // namespace

Bytes writeContainer2000(FileParts& parts) {
    return Writer(parts).write();
}

}  // namespace sg::dwg
