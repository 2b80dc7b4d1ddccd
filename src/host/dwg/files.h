#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/dxf/error.h"
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

}  // namespace sg::dwg
