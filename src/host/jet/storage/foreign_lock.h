#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/export.h"

// The lock files of other programs. Our own locks do not bind them, nor theirs us.
namespace sg::jet {

struct ForeignLock {
    std::wstring file;                   // the lock file's path
    std::vector<std::wstring> machines;  // who is entered in it, without repeats
};

// The lock file beside a database, when there is one: its name with .ldb or .laccdb, all of it in
// any case; of several the one that the database's kind (.mdb or .accdb) has. One that cannot be
// read has no machines. Programs that were killed leave theirs behind, and entries stay in it after
// their owner has left.
SG_API std::optional<ForeignLock> findForeignLock(const std::wstring& database);

}  // namespace sg::jet
