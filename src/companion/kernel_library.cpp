#include "companion/kernel/kernel.h"
#include "platform/win/libraries.h"

namespace sg::companion {

const SolidKernel* solidKernel() {
    static const auto kEntry = reinterpret_cast<SolidKernelEntry>(
        sgOwnLibrarySymbol(kSolidKernelLibrary, kSolidKernelEntry));
    return kEntry == nullptr ? nullptr : kEntry();
}

}  // namespace sg::companion
