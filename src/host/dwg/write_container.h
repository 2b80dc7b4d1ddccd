#pragma once

#include <functional>

#include "host/dwg/file_content.h"
#include "host/dwg/object_map.h"

namespace sg::dwg {

// What a file is made of, whatever its container.
struct FileParts {
    AcDb::AcDbDwgVersion release = AcDb::kDHL_CURRENT;
    std::string_view version;
    uint16_t codePage = 0;
    Bytes header, classes, objects;
    std::vector<ObjectPlace> places;  // in rising order of handles; addresses in `objects`
    int32_t measurement = 0;
    Bytes auxiliaryHeader, preview, summary, application, storedData;  // empty: none
    // Sections that are kept, by their names; files up to release 2000 have no room for them.
    struct Kept {
        std::string name;
        ByteSpan data;
    };
    std::vector<Kept> kept;
    std::vector<uint64_t> secondHeaderHandles;  // of release 2000: the next handle, then the roots
};

// The whole file.
Bytes writeContainer2000(FileParts& parts);
Bytes writeContainer2004(FileParts& parts);

// A preview lists where its pictures are in the file: sets that for a preview that lies at
// `address`. One that is damaged becomes empty.
void placePreview(Bytes& preview, size_t address);

// What units are measured in, behind a text that is always empty.
Bytes templateSection(const FileParts& parts);

}  // namespace sg::dwg
