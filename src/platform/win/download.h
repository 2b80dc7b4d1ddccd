#pragma once

#include <cstdint>

#include "base/export.h"

// What a download answers besides 0, which is success.
enum : int32_t {
    E_ABORT = int32_t(0x80004004),  // the user cancelled
    E_ACCESSDENIED = int32_t(0x80070005),
    INET_E_INVALID_URL = int32_t(0x800C0002),
    INET_E_CANNOT_CONNECT = int32_t(0x800C0004),
    INET_E_RESOURCE_NOT_FOUND = int32_t(0x800C0005),  // there is no such server
    INET_E_OBJECT_NOT_FOUND = int32_t(0x800C0006),    // the server has no such thing
    INET_E_DOWNLOAD_FAILURE = int32_t(0x800C0008),
    INET_E_AUTHENTICATION_REQUIRED = int32_t(0x800C0009),
    INET_E_CONNECTION_TIMEOUT = int32_t(0x800C000B),
    INET_E_UNKNOWN_PROTOCOL = int32_t(0x800C000D),
    INET_E_SECURITY_PROBLEM = int32_t(0x800C000E),
    INET_E_REDIRECT_FAILED = int32_t(0x800C0014),
};

// Forgets what the system's cache has for an address. This host has no cache and asks those on the
// way for a fresh copy with every download, so the answer is false, with ERROR_FILE_NOT_FOUND.
SG_API bool DeleteUrlCacheEntryW(const wchar_t* url);

// Fetches `url` (http, https or file) into `file` and waits for it. `caller` and `callback` are
// null, `reserved` is 0. The file gets its name when all has arrived; after a failure what had the
// name is as it was.
SG_API int32_t URLDownloadToFileW(void* caller, const wchar_t* url, const wchar_t* file,
                                  uint32_t reserved, void* callback);
