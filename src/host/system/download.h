#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/export.h"

namespace sg {

struct DownloadOptions {
    int connectSeconds = 30;       // until a server must have answered the call
    int stallSeconds = 30;         // after which a transfer that makes no progress is given up
    int redirects = 10;            // that are followed, to http and https only
    std::wstring certificates;     // a file of trusted authorities; empty: the system's
    std::function<bool()> cancel;  // asked now and then; true ends the download
};

// Fetches an http, https or file address into `file`, whose folder must exist, and answers what
// URLDownloadToFileW does. Names in file addresses and `file` are resolved by resolvePath(). The
// file gets its name when everything that was announced has arrived; otherwise nothing is left and
// what had the name is as it was. Caches on the way are told to fetch anew.
SG_API int32_t download(std::wstring_view url, std::wstring_view file,
                        const DownloadOptions& options = {});

}  // namespace sg
