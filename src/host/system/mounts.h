#pragma once

#include <string>
#include <string_view>

#include "base/export.h"

namespace sg {

// The type of the file system that holds `path` (absolute, without links), "ext4", by a table in
// the form of /proc/self/mountinfo; empty when the table has none.
SG_API std::string fileSystemType(std::string_view mounts, std::string_view path);

// True for types whose files are on another machine: "nfs4", "cifs", "fuse.sshfs".
SG_API bool isNetworkFileSystem(std::string_view type);

// True for a path in a file system of another machine. A path that does not exist belongs to where
// its nearest folder is. "//server/share" is on another machine unless it exists here.
SG_API bool isNetworkPath(std::wstring_view path);

}  // namespace sg
