#include "host/render/kept_mesh.h"

#include <algorithm>

#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"

namespace sg::render {
namespace {

// Flags of meshes (70), and of their vertices.
constexpr int64_t kClosedAcross = 1;
constexpr int64_t kIsMesh = 16;
constexpr int64_t kClosedAlong = 32;
constexpr int64_t kIsPolyface = 64;
constexpr int64_t kIsControlPoint = 16;
constexpr int64_t kHasPlace = 64;

int64_t wholeIn(const std::vector<KeptGroup>& groups, int code) {
    for (const KeptGroup& group : groups) {
        if (group.code == code) return group.whole;
    }
    return 0;
}

struct Mesh {
    std::vector<AcGePoint3d> points;
    std::vector<std::vector<int64_t>> faces;  // of numbers of points from 1 on
};

// A face's edges from points with a negative number are not shown.
Mesh meshOf(const model::ProxyData& whole) {
    Mesh mesh;
    for (const AcDbObjectId id : whole.parts) {
        const auto* const part = model::peek<AcDbEntity>(id);
        if (part == nullptr) continue;
        const std::vector<KeptGroup> groups = keptGroups(*part);
        const int64_t flags = wholeIn(groups, 70);
        if ((flags & kHasPlace) != 0 && (flags & kIsControlPoint) == 0) {
            for (const KeptGroup& group : groups) {
                if (group.code == 10) mesh.points.push_back(pointOf(group));
            }
            continue;
        }
        std::vector<int64_t> face;
        for (const KeptGroup& group : groups) {
            if (group.code >= 71 && group.code <= 74 && group.whole != 0) {
                face.push_back(group.whole);
            }
        }
        if (!face.empty()) mesh.faces.push_back(std::move(face));
    }
    return mesh;
}

void drawFaces(AcGiWorldDraw& draw, const Mesh& mesh) {
    const auto count = static_cast<int64_t>(mesh.points.size());
    for (const std::vector<int64_t>& face : mesh.faces) {
        for (size_t i = 0; i < face.size(); ++i) {
            const int64_t from = std::abs(face[i]);
            const int64_t to = std::abs(face[(i + 1) % face.size()]);
            if (face[i] < 0 || from > count || to > count) continue;
            const AcGePoint3d edge[] = {mesh.points[static_cast<size_t>(from - 1)],
                                        mesh.points[static_cast<size_t>(to - 1)]};
            draw.geometry().polyline(2, edge);
        }
    }
}

void drawNet(AcGiWorldDraw& draw, const Mesh& mesh, size_t rows, size_t columns, int64_t flags) {
    std::vector<AcGePoint3d> line;
    const auto drawLine = [&](size_t first, size_t count, size_t step, bool isClosed) {
        line.clear();
        for (size_t i = 0; i < count; ++i)
            line.push_back(mesh.points[first + i * step]);
        if (isClosed && !line.empty()) line.push_back(line.front());
        draw.geometry().polyline(static_cast<uint32_t>(line.size()), line.data());
    };
    for (size_t row = 0; row < rows; ++row)
        drawLine(row * columns, columns, 1, (flags & kClosedAlong) != 0);
    for (size_t column = 0; column < columns; ++column)
        drawLine(column, rows, columns, (flags & kClosedAcross) != 0);
}

}  // namespace

bool drawKeptMesh(AcGiWorldDraw& draw, const AcDbEntity& entity,
                  const std::vector<KeptGroup>& groups) {
    const model::ProxyData* const data = model::proxyData(entity);
    if (data == nullptr || data->dxfName != L"POLYLINE") return false;
    const int64_t flags = wholeIn(groups, 70);
    if ((flags & (kIsMesh | kIsPolyface)) == 0) return false;
    const Mesh mesh = meshOf(*data);
    if ((flags & kIsPolyface) != 0) {
        drawFaces(draw, mesh);
        return true;
    }
    // A smoothed mesh has other numbers of points.
    const bool isSmooth = wholeIn(groups, 75) != 0;
    const auto rows =
        static_cast<size_t>(std::max<int64_t>(wholeIn(groups, isSmooth ? 73 : 71), 0));
    const auto columns =
        static_cast<size_t>(std::max<int64_t>(wholeIn(groups, isSmooth ? 74 : 72), 0));
    if (rows == 0 || columns == 0 || columns > mesh.points.size() / rows) return false;
    drawNet(draw, mesh, rows, columns, flags);
    return true;
}

}  // namespace sg::render
