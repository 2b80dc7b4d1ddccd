#pragma once

#include <string>
#include <vector>

#include "host/jet/database/database.h"

// What the program and the library with the window of `db browse` have in common.
namespace sg::app {

struct BrowseRequest {
    std::vector<std::wstring> tables{};  // to choose from
    std::wstring table{};                // shown first; empty: there is none
    // Files to write instead of waiting for a user; empty ones are not written.
    std::wstring picture{}, text{}, pdf{};
};

enum class BrowseResult {
    Done,
    NoDisplay,   // and no file was asked for
    NotWritten,  // a file; why is on standard error
};

// Throws jet::Error for a table that cannot be read.
using BrowseFunction = BrowseResult(jet::Database& database, const BrowseRequest& request);

}  // namespace sg::app
