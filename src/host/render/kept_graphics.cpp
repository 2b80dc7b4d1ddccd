#include "host/render/kept_graphics.h"

#include <numbers>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/entities/shown_block.h"
#include "host/model/tables/styles.h"
#include "host/render/kept_groups.h"
#include "host/render/proxy_graphics.h"
#include "platform/db/block_reference.h"
#include "platform/db/database.h"

namespace sg::render {
namespace {

// Binary data as drawing files have it: a group with its length, then pieces of it.
std::string graphicsIn(const std::vector<KeptGroup>& groups) {
    constexpr int kPiece = 310;
    std::string bytes;
    int64_t size = 0;
    for (const KeptGroup& group : groups) {
        if (group.code == 92 || group.code == 160) {
            if (!bytes.empty()) break;
            size = group.whole;
        } else if (group.code == kPiece && size > 0) {
            bytes += group.text;
            if (static_cast<int64_t>(bytes.size()) >= size) break;
        } else if (!bytes.empty()) {
            break;
        }
    }
    return bytes;
}

AcDbObjectId blockNamed(const AcDbDatabase& database, std::string_view name) {
    AcDbObjectId id;
    AcDbBlockTable* table = nullptr;
    if (database.getBlockTable(table, AcDb::kForRead) != Acad::eOk) return id;
    table->getAt(fromUtf8(name).c_str(), id);
    table->close();
    return id;
}

// ---- Blocks -------------------------------------------------------------------------------------

// Tables and the like stand where their block is inserted; the blocks of dimensions are drawn in
// the world.
bool drawItsBlock(AcGiWorldDraw& draw, const AcDbEntity& entity,
                  const std::vector<KeptGroup>& groups) {
    std::string_view part;
    AcDbObjectId block;
    AcGePoint3d position;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    AcGeScale3d scale;
    double rotation = 0;
    bool isReference = false;
    for (const KeptGroup& group : groups) {
        if (group.code == 100) part = group.text;
        const bool inReference = part == "AcDbBlockReference";
        if ((inReference || part == "AcDbDimension") && group.code == 2 && block.isNull()) {
            block = blockNamed(*entity.database(), group.text);
            isReference = inReference;
        }
        if (!inReference) continue;
        if (group.code == 10) position = pointOf(group);
        if (group.code == 41) scale.sx = group.real;
        if (group.code == 42) scale.sy = group.real;
        if (group.code == 43) scale.sz = group.real;
        if (group.code == 50) rotation = group.real * std::numbers::pi / 180;
        if (group.code == 210) normal = pointOf(group).asVector();
    }
    if (block.isNull()) return false;
    AcGeMatrix3d placed;
    if (isReference && !normal.isZeroLength()) {
        AcDbBlockReference reference(position, block);
        reference.setNormal(normal.normal());
        reference.setScaleFactors(scale);
        reference.setRotation(rotation);
        reference.setPosition(AcGeMatrix3d::planeToWorld(normal) * position);
        placed = reference.blockTransform();
    }
    model::drawBlock(&draw, block, placed);
    return true;
}

// ---- Multi-lines --------------------------------------------------------------------------------

struct MultiLine {
    struct Corner {
        AcGePoint3d at;
        AcGeVector3d miter;
        std::vector<double> distances;  // of the elements, along the miter
    };
    std::vector<Corner> corners;
    bool isClosed = false;
    AcDbObjectId style;
};

MultiLine multiLineIn(const std::vector<KeptGroup>& groups) {
    constexpr int kClosed = 2;
    MultiLine line;
    bool isFirst = false;  // of an element's parameters
    for (const KeptGroup& group : groups) {
        if (group.code == 71) line.isClosed = (group.whole & kClosed) != 0;
        if (group.code == 340) line.style = group.object;
        if (group.code == 11) line.corners.push_back({pointOf(group), {}, {}});
        if (line.corners.empty()) continue;
        MultiLine::Corner& corner = line.corners.back();
        if (group.code == 13) corner.miter = pointOf(group).asVector();
        if (group.code == 74) isFirst = group.whole > 0;
        if (group.code == 41 && isFirst) {
            corner.distances.push_back(group.real);
            isFirst = false;
        }
    }
    return line;
}

bool drawMultiLine(AcGiWorldDraw& draw, const std::vector<KeptGroup>& groups) {
    const MultiLine line = multiLineIn(groups);
    if (line.corners.size() < 2) return false;
    const auto* const style = model::peek<AcDbMlineStyle>(line.style);
    const AcCmColor own = draw.subEntityTraits().trueColor();
    for (size_t element = 0; element < line.corners.front().distances.size(); ++element) {
        std::vector<AcGePoint3d> points;
        for (const MultiLine::Corner& corner : line.corners) {
            if (element < corner.distances.size()) {
                points.push_back(corner.at + corner.miter * corner.distances[element]);
            }
        }
        if (line.isClosed && !points.empty()) points.push_back(points.front());
        if (style != nullptr && element < style->elements().size() && own.isByLayer()) {
            draw.subEntityTraits().setTrueColor(style->elements()[element].color);
        }
        draw.geometry().polyline(static_cast<uint32_t>(points.size()), points.data());
    }
    draw.subEntityTraits().setTrueColor(own);
    return true;
}

}  // namespace

std::string keptGraphics(const AcDbEntity& entity) {
    const model::ProxyData* const data = model::proxyData(entity);
    if (data == nullptr) return {};
    if (data->bits != nullptr && !data->bits->graphics.empty()) {
        return {data->bits->graphics.begin(), data->bits->graphics.end()};
    }
    return graphicsIn(keptGroups(entity));
}

bool drawKeptGraphics(AcGiWorldDraw& draw, const AcDbEntity& entity) {
    const model::ProxyData* const data = model::proxyData(entity);
    if (data == nullptr || entity.database() == nullptr) return false;
    if (playProxyGraphics(draw, keptGraphics(entity))) return true;
    const std::vector<KeptGroup> groups = keptGroups(entity);
    if (drawItsBlock(draw, entity, groups)) return true;
    return data->dxfName == L"MLINE" && drawMultiLine(draw, groups);
}

}  // namespace sg::render
