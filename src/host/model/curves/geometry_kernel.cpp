#include "host/model/curves/geometry_kernel.h"

#include <dlfcn.h>

#include <string>

namespace sg::model {

namespace {

// The folder of the library or program that this code is in, with its last slash; "" when unknown.
std::string ownFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&geometryKernel), &info) == 0) return {};
    const std::string path = info.dli_fname;
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// Beside the host library; for a program that holds the host itself, in lib/ beside or above its
// own folder.
const GeometryKernel* load() {
    const std::string folder = ownFolder();
    for (const char* place : {"", "lib/", "../lib/"}) {
        const std::string path = folder + place + kGeometryLibrary;
        void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) continue;
        const auto entry =
            reinterpret_cast<GeometryKernelEntry>(dlsym(library, kGeometryKernelEntry));
        return entry == nullptr ? nullptr : entry();
    }
    return nullptr;
}

}  // namespace

const GeometryKernel* geometryKernel() {
    static const GeometryKernel* const kernel = load();
    return kernel;
}

}  // namespace sg::model
