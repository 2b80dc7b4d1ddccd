#include <algorithm>
#include <string>
#include <utility>

#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/compressed_guid.h"
#include "drawing/lisp_functions.h"
#include "platform/win/folders.h"
#include "platform/win/identifiers.h"
#include "platform/win/registry.h"
#include "platform/win/system.h"
#include "platform/win/window.h"

namespace sg {
namespace {

// T or nil, as the system answers about a path.
template <class Question>
int ofPath(const Question& question) {
    CallArguments arguments;
    std::wstring path;
    if (!nextString(arguments.next, path)) return kLispWrongType;
    question(path.c_str()) ? acedRetT() : acedRetNil();
    return kLispOk;
}

// The root of that name, in exactly this case; null for any other.
HKEY registryRoot(std::wstring_view name) {
    const std::pair<std::wstring_view, HKEY> roots[] = {
        {L"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
        {L"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
        {L"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
        {L"HKEY_USERS", HKEY_USERS},
        {L"HKEY_PERFORMANCE_TEXT", HKEY_PERFORMANCE_TEXT},
        {L"HKEY_PERFORMANCE_NLSTEXT", HKEY_PERFORMANCE_NLSTEXT},
        {L"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG},
        {L"HKEY_DYN_DATA", HKEY_DYN_DATA},
    };
    for (const auto& [each, root] : roots) {
        if (each == name) return root;
    }
    return nullptr;
}

void returnSubkeys(HKEY key) {
    constexpr uint32_t kRoom = 256;
    resbuf *head, *tail;
    beginResultList(head, tail);
    wchar_t name[kRoom];
    for (uint32_t index = 0;; ++index) {
        uint32_t size = kRoom;
        if (RegEnumKeyExW(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            break;
        }
        appendString(tail, name);
    }
    finishResultList(head, tail);
}

}  // namespace

int screenWidth() {
    acedRetInt(GetSystemMetrics(SM_CXSCREEN));
    return kLispOk;
}

int screenHeight() {
    acedRetInt(GetSystemMetrics(SM_CYSCREEN));
    return kLispOk;
}

int computerName() {
    wchar_t name[MAX_PATH];
    uint32_t size = MAX_PATH;
    if (GetComputerNameW(name, &size)) acedRetStr(name);
    return kLispOk;
}

int pathIsNetworkPath() {
    return ofPath(PathIsNetworkPathW);
}

// All bits are set for a missing file, which is read-only so.
int isFileReadOnly() {
    return ofPath([](const wchar_t* path) {
        return (GetFileAttributesW(path) & FILE_ATTRIBUTE_READONLY) != 0;
    });
}

int temporaryFolder() {
    const uint32_t room = GetTempPathW(0, nullptr);
    std::wstring path(room, L'\0');
    const uint32_t length = room != 0 ? GetTempPathW(room, path.data()) : 0;
    if (length != 0 && length < room) acedRetStr(path.c_str());
    return kLispOk;
}

int registryKeys() {
    CallArguments arguments;
    std::wstring path;
    if (!nextString(arguments.next, path)) return kLispWrongType;
    const size_t separator = std::min(path.find(L'\\'), path.size());
    const HKEY root = registryRoot(path.substr(0, separator));
    std::wstring subkey = path.substr(std::min(separator + 1, path.size()));
    if (subkey.ends_with(L'\\')) subkey.pop_back();
    HKEY key = nullptr;
    if (root != nullptr && RegOpenKeyExW(root, subkey.c_str(), 0, KEY_READ, &key) == 0) {
        returnSubkeys(key);
        RegCloseKey(key);
    }
    return kLispOk;
}

int newCompressedGuid() {
    GUID guid = {};
    CoCreateGuid(&guid);
    const bool isNull = guid.Data1 == 0 && guid.Data2 == 0 && guid.Data3 == 0 &&
                        std::all_of(std::begin(guid.Data4), std::end(guid.Data4),
                                    [](uint8_t byte) { return byte == 0; });
    if (!isNull) acedRetStr(compressedGuid(guid).c_str());
    return kLispOk;
}

}  // namespace sg
