#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// The layout of files of release 2004 and later but 2007 (docs/formats/dwg.md).
namespace sg::dwg::pages {

// The first bytes, which are plain; then the file's header, scrambled.
constexpr size_t kHeaderAt = 0x80;
constexpr size_t kHeaderSize = 0x6C;
constexpr size_t kFirstPage = 0x100;
constexpr char kHeaderName[] = "AcFssFcAJMB";  // with its zero, the header's first twelve bytes

// Places in the header.
constexpr size_t kLastPageAt = 0x28;  // the number of the last page
constexpr size_t kEndAt = 0x2C;       // where the last page ends, from the first page on
constexpr size_t kCopyAt = 0x34;      // where the header's copy is, likewise
constexpr size_t kGapsAt = 0x3C;      // how many gaps, then how many pages
constexpr size_t kPageMapNumberAt = 0x50;
constexpr size_t kPageMapAt = 0x54;  // where the page map is, from the first page on
constexpr size_t kSectionMapNumberAt = 0x5C;
constexpr size_t kGreatestAt = 0x60;  // the greatest page number
constexpr size_t kChecksumAt = 0x68;

// A system page begins with five numbers: its type, the size of what it holds unpacked and packed,
// how it is packed, and its check number.
constexpr uint32_t kPageMapType = 0x41630E3B;
constexpr uint32_t kSectionMapType = 0x4163003B;
constexpr size_t kSystemHeaderSize = 20;

// A page of a section begins with eight numbers, scrambled with its address.
constexpr uint32_t kDataType = 0x4163043B;
constexpr uint32_t kDataMask = 0x4164536B;
constexpr size_t kDataHeaderSize = 32;

constexpr size_t kAlignment = 0x20;

// The section map: five numbers, then for each section a description and its pages' records.
constexpr size_t kMapHeadSize = 20;
constexpr size_t kDescriptionSize = 96;
constexpr size_t kNameSize = 64;
constexpr size_t kPageRecordSize = 16;

constexpr uint32_t kIsPlain = 1, kIsPacked = 2;  // how sections and pages are packed

// Scrambles the file's header, and what is scrambled back.
void scrambleHeader(uint8_t* bytes, size_t size);

}  // namespace sg::dwg::pages
