#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/win/system.h"

// What CreateMutexW answers a pointer to.
struct SgMutex {
    std::wstring name;  // empty for one without a name
};

namespace sg {

// The named mutexes of one host. Names compare exactly.
class NamedMutexes {
  public:
    struct Created {
        SgMutex* mutex;
        uint32_t error;  // ERROR_ALREADY_EXISTS when one of that name was there, else 0
    };

    // A null or empty name makes a mutex that nobody else can find.
    Created create(const wchar_t* name) {
        const std::wstring key = name != nullptr ? name : L"";
        const auto found = key.empty() ? mutexes_.end() : mutexes_.find(key);
        if (found != mutexes_.end()) return {found->second.get(), ERROR_ALREADY_EXISTS};
        auto mutex = std::make_unique<SgMutex>(SgMutex{key});
        return {mutexes_.emplace(key, std::move(mutex))->second.get(), 0};
    }

  private:
    std::multimap<std::wstring, std::unique_ptr<SgMutex>> mutexes_;  // named ones are unique
};

}  // namespace sg
