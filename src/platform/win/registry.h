#pragma once

#include <cstdint>

#include "base/export.h"

// The registry: settings in a tree of keys. Sizes are in bytes; texts are stored as 16-bit units,
// the lower byte first, whatever wchar_t is here.

// An open key, or one of the roots below.
struct SgOpenKey;
using HKEY = SgOpenKey*;

inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(uintptr_t{0x80000000});
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(uintptr_t{0x80000001});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(uintptr_t{0x80000002});
inline const HKEY HKEY_USERS = reinterpret_cast<HKEY>(uintptr_t{0x80000003});
inline const HKEY HKEY_CURRENT_CONFIG = reinterpret_cast<HKEY>(uintptr_t{0x80000005});
// These have no keys here: opening one fails.
inline const HKEY HKEY_DYN_DATA = reinterpret_cast<HKEY>(uintptr_t{0x80000006});
inline const HKEY HKEY_PERFORMANCE_TEXT = reinterpret_cast<HKEY>(uintptr_t{0x80000050});
inline const HKEY HKEY_PERFORMANCE_NLSTEXT = reinterpret_cast<HKEY>(uintptr_t{0x80000060});

// What a key is opened for. The last two choose between the views that the system of origin keeps
// for its two kinds of programs; here there is one view, and they change nothing.
enum : uint32_t {
    KEY_QUERY_VALUE = 0x1,
    KEY_SET_VALUE = 0x2,
    KEY_ENUMERATE_SUB_KEYS = 0x8,
    KEY_READ = 0x20019,
    KEY_WRITE = 0x20006,
    KEY_WOW64_64KEY = 0x100,
    KEY_WOW64_32KEY = 0x200,
};

// Types of values.
enum : uint32_t {
    REG_NONE = 0,
    REG_SZ = 1,         // a text that ends with a zero unit
    REG_EXPAND_SZ = 2,  // the same, with parts such as %TEMP%
    REG_BINARY = 3,
    REG_DWORD = 4,
    REG_MULTI_SZ = 7,  // texts that each end with a zero unit, and one zero unit more
};

// Opens a key that exists. `key` is released with RegCloseKey and is unchanged on failure. This and
// the functions below answer 0 or one of the codes of platform/win/system.h.
SG_API int32_t RegOpenKeyExW(HKEY parent, const wchar_t* subkey, uint32_t options, uint32_t access,
                             HKEY* key);

// A value's type and bytes; `type` and `data` may be null. `size` has the bytes that `data` has
// room for, and afterwards those that the value has. ERROR_MORE_DATA when the room does not do.
SG_API int32_t RegQueryValueExW(HKEY key, const wchar_t* name, uint32_t* reserved, uint32_t* type,
                                uint8_t* data, uint32_t* size);

// Sets a value to these bytes, which are kept as they are, also when they do not make the type.
SG_API int32_t RegSetValueExW(HKEY key, const wchar_t* name, uint32_t reserved, uint32_t type,
                              const uint8_t* data, uint32_t size);

// The name of the key's `index`-th subkey, from 0, in the order of the alphabet, and the number of
// its characters. `size` has the room in `name` with the final zero. ERROR_MORE_DATA when that does
// not do, ERROR_NO_MORE_ITEMS behind the last one; the other arguments are not used.
SG_API int32_t RegEnumKeyExW(HKEY key, uint32_t index, wchar_t* name, uint32_t* size,
                             uint32_t* reserved, wchar_t* className, uint32_t* classSize,
                             void* lastWriteTime);

// Closing a root is a success and changes nothing.
SG_API int32_t RegCloseKey(HKEY key);
