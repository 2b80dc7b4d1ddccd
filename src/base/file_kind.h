#pragma once

#include <string>
#include <string_view>

#include "base/export.h"

// What a file is that is not what was asked for, for messages.
namespace sg {

enum class FileKind { Unknown, Empty, Drawing, Database, Program, Picture, Archive };

// Told by a file's first bytes, at least 32 of them where it has so many; where these tell nothing,
// by the ending of its name.
SG_API FileKind fileKind(std::string_view bytes, std::wstring_view name);

// "a drawing", "a database"...; empty for Unknown and Empty.
SG_API std::wstring_view nameOf(FileKind kind);

// Continues a message about a file that is of none of the kinds that were wanted, such as "this is
// no drawing file": ": it is empty", ", but a database", or nothing when its kind is not known.
SG_API std::wstring butWhatItIs(FileKind kind);

}  // namespace sg
