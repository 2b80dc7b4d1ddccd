#include <sys/random.h>

#include <algorithm>

#include "host/editor/command_line_output.h"
#include "host/editor/input_source.h"
#include "host/lisp/interpreter.h"
#include "host/seam/host.h"
#include "host/system/download.h"
#include "host/system/folders.h"
#include "host/system/mutexes.h"
#include "host/system/random.h"
#include "platform/win/download.h"
#include "platform/win/identifiers.h"
#include "platform/win/message_box.h"
#include "platform/win/sound.h"
#include "platform/win/system.h"

// platform/win on the Host: boxes, sounds, errors, mutexes, names and numbers.

using sg::Host;

int MessageBoxW(HWND, const wchar_t* text, const wchar_t* title, unsigned flags) {
    return Host::the().input().messageBox(
        {title != nullptr ? title : L"Error", text != nullptr ? text : L"", flags});
}

int AfxMessageBox(const wchar_t* text, unsigned flags) {
    constexpr unsigned kIcons = 0xF0;
    return MessageBoxW(nullptr, text, L"AutoCAD",
                       (flags & kIcons) == 0 ? flags | MB_ICONWARNING : flags);
}

// A terminal has one sound for all kinds.
bool MessageBeep(unsigned) {
    Host::the().output().bell();
    return true;
}

uint32_t GetLastError() {
    return Host::the().lastError;
}
void SetLastError(uint32_t code) {
    Host::the().lastError = code;
}

SgMutex* CreateMutexW(const void*, bool, const wchar_t* name) {
    const auto created = Host::the().mutexes().create(name);
    Host::the().lastError = created.error;
    return created.mutex;
}

void Sleep(uint32_t milliseconds) {
    Host::the().sleep(milliseconds);
}

bool GetComputerNameW(wchar_t* name, uint32_t* size) {
    constexpr size_t kLongestName = 15;
    const std::wstring machine =
        sg::environmentVariable(L"COMPUTERNAME").value_or(L"").substr(0, kLongestName);
    const auto length = static_cast<uint32_t>(machine.size());
    if (name == nullptr || size == nullptr || *size <= length) {
        if (size != nullptr) *size = length + 1;
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return false;
    }
    std::copy_n(machine.c_str(), length + 1, name);
    *size = length;
    return true;
}

// A random identifier (RFC 9562, version 4).
HRESULT CoCreateGuid(GUID* guid) {
    constexpr auto kFailed = static_cast<HRESULT>(0x80004005);
    if (guid == nullptr) return kFailed;
    *guid = {};
    if (::getrandom(guid, sizeof(*guid), 0) != static_cast<ssize_t>(sizeof(*guid))) {
        *guid = {};
        return kFailed;
    }
    guid->Data3 = static_cast<uint16_t>((guid->Data3 & 0x0FFF) | 0x4000);
    guid->Data4[0] = static_cast<uint8_t>((guid->Data4[0] & 0x3F) | 0x80);
    return S_OK;
}

int sgRandom() {
    return Host::the().random().next();
}
void sgSeedRandom(uint32_t seed) {
    Host::the().random().seed(seed);
}

bool DeleteUrlCacheEntryW(const wchar_t*) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return false;
}

int32_t URLDownloadToFileW(void*, const wchar_t* url, const wchar_t* file, uint32_t, void*) {
    if (url == nullptr || file == nullptr) return INET_E_INVALID_URL;
    sg::DownloadOptions options;
    options.cancel = [] { return Host::the().interpreter().interruptPending(); };
    return sg::download(url, file, options);
}
