#include "host/system/companion_library.h"

#include <dlfcn.h>

#include <string>

namespace sg {
namespace {

// The folder of the library or program that this code is in, with its last slash; "" when unknown.
std::string ownFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&companionSymbol), &info) == 0) return {};
    const std::string path = info.dli_fname;
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace

void* openCompanion(const char* library) {
    const std::string folder = ownFolder();
    for (const char* place : {"", "lib/", "../lib/"}) {
        void* const opened = dlopen((folder + place + library).c_str(), RTLD_NOW | RTLD_LOCAL);
        if (opened != nullptr) return opened;
    }
    return nullptr;
}

void* companionSymbol(const char* library, const char* symbol) {
    void* const opened = openCompanion(library);
    return opened != nullptr ? dlsym(opened, symbol) : nullptr;
}

}  // namespace sg
