#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/dxf/error.h"
#include "host/dxf/releases.h"
#include "platform/db/database.h"

// Drawing files in the product's own format, DWG.
namespace sg::dwg {

// True for what begins like one, whether its release is read or not.
SG_API bool isDrawing(std::string_view start);

// Fills an empty database with what a file's content holds; `file` names it in messages. Answers
// the warnings, a line a place. Throws dxf::Error for what is no drawing, and what it cannot go on
// from.
SG_API std::vector<std::wstring> read(AcDbDatabase& database, std::string_view content,
                                      const std::wstring& file);

// True for a release in which drawings can be written as DWG.
SG_API bool isWritten(const dxf::Release& release);
// The release in which a drawing is written unless asked for another: its file's own where that can
// be written, else the next one that can; of drawings without a file the last.
SG_API const dxf::Release& ownRelease(const AcDbDatabase& database);

struct Written {
    std::vector<uint8_t> bytes;        // the whole file
    std::vector<std::wstring> losses;  // what the file does not keep of the drawing, a line each
};
// `release` is one that can be written.
SG_API Written write(const AcDbDatabase& database, const dxf::Release& release);

}  // namespace sg::dwg
