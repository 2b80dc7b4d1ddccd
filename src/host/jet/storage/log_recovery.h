#pragma once

#include <cstddef>
#include <optional>

#include "base/export.h"
#include "host/jet/storage/file_layer.h"
#include "host/jet/storage/page_log.h"
#include "host/jet/storage/page_log_format.h"

// What a log that nobody has open means for its database file. docs/formats/jet_log.md, "Recovery".
namespace sg::jet {

enum class LogVerdict {
    Empty,     // nothing was committed to it
    Commits,   // it has commits that belong to this database file
    Unrelated  // it has commits, but the database file is not the one that they were made on
};

// The log's header, if it has one.
SG_API std::optional<log::Header> readLogHeader(const File& file);

// Reads the log from its start as far as it is whole, checking every byte, and leaves `log` behind
// its last commit.
SG_API LogVerdict readLog(PageLog& log, const File& file, const File& database,
                          const log::Header& header, uint64_t generation);

}  // namespace sg::jet
