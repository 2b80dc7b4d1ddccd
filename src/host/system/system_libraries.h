#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "base/encoding.h"
#include "base/text.h"
#include "host/system/companion_library.h"
#include "platform/win/libraries.h"

// What HMODULE points to.
struct SgLibrary {
    std::map<std::string, FARPROC, std::less<>> functions;
    std::string companion;  // the file's name, of a library of ours; else empty
};

namespace sg {

// The system's libraries that modules look functions up in by name, for what not every version of
// the system has. Here there is one, without such functions: the registry knows no transactions.
class SystemLibraries {
  public:
    SystemLibraries() { library(L"Advapi32.dll"); }

    // Adds a function, and the library when there is none of that name yet.
    void provide(std::wstring_view name, const std::string& function, FARPROC address) {
        library(name).functions[function] = address;
    }

    // Null when there is no such library.
    SgLibrary* find(std::wstring_view name) const {
        const auto found = libraries_.find(lowerCased(name));
        return found != libraries_.end() ? found->second.get() : nullptr;
    }

    // A library of ours that stands with the host's; null when it cannot be opened.
    SgLibrary* open(std::wstring_view name) {
        const std::string file = toUtf8(name);
        if (openCompanion(file.c_str()) == nullptr) return nullptr;
        SgLibrary& opened = library(name);
        opened.companion = file;
        return &opened;
    }

  private:
    SgLibrary& library(std::wstring_view name) {
        auto& place = libraries_[lowerCased(name)];
        if (place == nullptr) place = std::make_unique<SgLibrary>();
        return *place;
    }

    std::map<std::wstring, std::unique_ptr<SgLibrary>> libraries_;  // by name in lower case
};

}  // namespace sg
