#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/jet/database/new_database.h"

namespace sg::jet {

struct CompactOptions {
    Locale locale{};
    // Saves what can be read of a damaged file, where without it the first damage is thrown.
    bool repair = false;
    // Told how much is done of how much now and then; answers false to stop, which removes the
    // new file and throws 3059 (cancelled by user).
    std::function<bool(uint64_t done, uint64_t total)> progress{};
    StorageOptions storage{};
};

struct CompactReport {
    // Users' tables, and their rows.
    uint64_t tables = 0;
    uint64_t rows = 0;
    // One line for each thing that could not be kept, with its table, page or column. Without
    // `repair` only for what no Jet 4 file has a place for: columns that hold several values or
    // attachments, with the tables behind them, are left out, calculated columns become plain ones,
    // large integers decimals of 19 digits, and extended dates dates.
    std::vector<std::wstring> losses;
};

// Copies a database of any version into a new Jet 4 file: tables with their rows, counters and
// properties, indexes built anew, relations, links, stored queries, and whatever else programs keep
// in the catalog. Texts get the locale's order; one that it has no key for, in an index, throws
// OperationNotSupported with table and index. Objects keep dates, owners and rights, and their
// identifiers, but for tables'.
//
// Nobody else has the source open meanwhile (FileInUse); one that may not be written is read as it
// is at one moment. The new file stands under another name beside its own until it is whole and on
// the disk. Throws 3204 when the destination exists, FileNotFound, and what opening and creating
// throw; what fails leaves no new file.
//
// A repair leaves out damaged tables, pages, rows, relations, queries and property values; damaged
// values become Null. Indexes that rows contradict are left out, not the rows, and so are
// relations. Rows that their table's map has lost are found by their pages, and tables that the
// catalog has lost become "Recovered_1" and on.
SG_API CompactReport compactDatabase(const std::wstring& source, const std::wstring& destination,
                                     const CompactOptions& options = {});

// The same in place: the new file replaces the old one in one step, once it is whole and on disk,
// and gets its permissions. Until then nobody opens the old one. It is kept under `backup`, which
// must not exist (3204), unless that is empty. A symbolic link stays, and its target is replaced.
// Throws CannotOpenFile when the file may not be written.
SG_API CompactReport compactInPlace(const std::wstring& path, const std::wstring& backup,
                                    const CompactOptions& options = {});

}  // namespace sg::jet
