#pragma once

#include "host/dwg/file_content.h"
#include "host/dwg/file_filer.h"
#include "host/dwg/sentinels.h"

namespace sg::dwg {

// The maintenance number that files of a release are written with. It tells how long some sizes
// are.
constexpr uint8_t maintenanceOf(AcDb::AcDbDwgVersion release) {
    if (release < AcDb::kDHL_1018) return 15;
    return release == AcDb::kDHL_1024 || release == AcDb::kDHL_1027 ? 8 : 0;
}

// The stream of texts lies at the end of data that end at `end`: their last bit tells whether there
// are any, and the size of the stream stands ahead of it. Takes the texts off the data.
void takeTexts(ReadStreams& streams, size_t end);

// The streams of the section of header variables or classes, which begins with its mark. Until
// release 2004 all three are one. Throws Error for a section without the mark, or that ends too
// early; a wrong check number is a warning.
ReadStreams openSection(FileContent& content, const std::wstring& file, std::string_view name,
                        const Sentinel& start);

// The section around these streams, which end.
Bytes closeSection(AcDb::AcDbDwgVersion release, const Sentinel& start, BitWriter& data,
                   BitWriter& texts, BitWriter& handles);

// Puts the stream of texts behind the data, with its size and the bit that tells of it.
void appendTexts(BitWriter& data, BitWriter& texts);

}  // namespace sg::dwg
