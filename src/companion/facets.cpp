#include "companion/facets.h"

#include <algorithm>
#include <cstdlib>

namespace sg::companion {
namespace {

// A mirror image turns faces round.
void turnRound(std::vector<int32_t>& faces) {
    for (size_t at = 0; at < faces.size();) {
        const auto count = static_cast<std::ptrdiff_t>(std::abs(faces[at]));
        const auto first = faces.begin() + static_cast<std::ptrdiff_t>(at) + 1;
        std::reverse(first, first + count);
        at += static_cast<size_t>(count) + 1;
    }
}

}  // namespace

std::unique_ptr<const Facets> transformed(const Facets* facets, const AcGeMatrix3d& matrix) {
    if (facets == nullptr) return nullptr;
    auto result = std::make_unique<Facets>(*facets);
    result->extents = {};
    for (AcGePoint3d& point : result->points) {
        point = matrix * point;
        result->extents.addPoint(point);
    }
    for (auto* chains : {&result->edges, &result->smoothEdges}) {
        for (std::vector<AcGePoint3d>& chain : *chains) {
            for (AcGePoint3d& point : chain)
                point = matrix * point;
        }
    }
    if (matrix.det() < 0) turnRound(result->faces);
    return result;
}

}  // namespace sg::companion
