#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/dxf/error.h"
#include "host/dxf/group_output.h"
#include "host/dxf/releases.h"
#include "platform/db/database.h"

// Drawing interchange files, as text and as binary.
namespace sg::dxf {

// True for what begins like one.
SG_API bool isDrawing(std::string_view start);

// Fills an empty database with what a file's content holds; `file` names it in messages. Answers
// the warnings, a line a place. Throws Error for what is no drawing, and what it cannot go on from.
SG_API std::vector<std::wstring> read(AcDbDatabase& database, std::string_view content,
                                      const std::wstring& file);

struct WriteOptions {
    const Release* release = nullptr;  // null: that of the drawing's file, or the next one that can
    bool isBinary = false;
    // Told of what the file does not keep of the drawing, a line each, before the file is there.
    std::function<void(const std::wstring&)> report = {};
};
// Writes a drawing piece by piece; false when `write` answered false.
SG_API bool write(const AcDbDatabase& database, const WriteOptions& options,
                  const GroupOutput::Write& write);

// The release in which a drawing is written unless asked for another.
SG_API const Release& ownRelease(const AcDbDatabase& database);

}  // namespace sg::dxf
