#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/jet/database/database.h"

// Looks for what contradicts itself in a database.
namespace sg::jet {

struct CheckFinding {
    std::wstring what;
    std::wstring table;  // empty where it concerns none
    std::optional<uint32_t> page;
};

// Walks the catalog, every table's definition, usage maps, pages, rows and values, every index with
// its pages, entries and keys, and every enforced relation. Answers what it found wrong, at most
// `limit` findings; a sound file has none. An index whose sort order is not known is walked, but
// its keys are not compared with the rows; that is no finding. Throws nothing for damage, only
// DiskOrNetwork when the file cannot be read.
//
// `progress` is told how much is done of how much now and then; in a damaged file that may be
// anything.
SG_API std::vector<CheckFinding> checkDatabase(
    const Database& database, size_t limit = 1000,
    const std::function<void(uint64_t done, uint64_t total)>& progress = {});

}  // namespace sg::jet
