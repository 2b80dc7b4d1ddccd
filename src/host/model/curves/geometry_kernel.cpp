#include "host/model/curves/geometry_kernel.h"

#include "host/system/companion_library.h"

namespace sg::model {

const GeometryKernel* geometryKernel() {
    static const auto kEntry = reinterpret_cast<GeometryKernelEntry>(
        companionSymbol(kGeometryLibrary, kGeometryKernelEntry));
    return kEntry == nullptr ? nullptr : kEntry();
}

}  // namespace sg::model
