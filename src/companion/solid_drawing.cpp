#include <map>

#include "companion/hvac_solid.h"
#include "companion/prism_facets.h"
#include "companion/shape/reach.h"
#include "platform/db/face.h"
#include "platform/ed/command_line.h"
#include "platform/gi/draw.h"

namespace sg::companion {
namespace {

// What the body option asks for; other parts of it have no meaning.
enum BodyOption { kWithoutEdges = 2, kWithoutFaces = 4 };

bool isShaded(const AcGiWorldDraw& draw) {
    switch (draw.regenType()) {
        case kAcGiHideOrShadeCommand:
        case kAcGiShadedDisplay:
        case kAcGiSaveWorldDrawForProxy:
            return true;
        default:
            return false;
    }
}

using Edge = std::pair<int32_t, int32_t>;

Edge edgeOf(int32_t a, int32_t b) {
    return a < b ? Edge(a, b) : Edge(b, a);
}

// Visits the triangles and quadrilaterals from one place of a face list up to another.
template <class Visit>
void visitFacets(const std::vector<int32_t>& faces, size_t from, size_t to, const Visit& visit) {
    while (from < to) {
        const auto count = static_cast<size_t>(faces[from]);
        visit(faces.data() + from + 1, count);
        from += count + 1;
    }
}

}  // namespace

const Facets* HvacSolid::facets() const {
    assertReadEnabled();
    if (facets_ == nullptr) facets_ = prismFacets(steps_);
    if (facets_ != nullptr) return facets_.get();
    const ShapePtr bodies = shape();
    if (bodies == nullptr) return nullptr;
    auto made = std::make_unique<Facets>();
    if (!solidKernel()->facets(*bodies, Polygons::whole, *made)) return nullptr;
    facets_ = std::move(made);
    return facets_.get();
}

// ---- Drawing ------------------------------------------------------------------------------------

bool HvacSolid::subWorldDraw(AcGiWorldDraw* draw) {
    const Facets* const drawn = facets();
    if (drawn == nullptr) return true;
    const bool shaded = isShaded(*draw);
    const bool hasFaces = shaded && (bodyOption_ & kWithoutFaces) == 0;
    if (hasFaces) drawFaces(*draw, *drawn);
    if (!hasFaces || (bodyOption_ & kWithoutEdges) == 0) drawEdges(*draw, *drawn, !hasFaces);
    return true;
}

void HvacSolid::subViewportDraw(AcGiViewportDraw*) {}

void HvacSolid::drawFaces(AcGiWorldDraw& draw, const Facets& facets) const {
    draw.subEntityTraits().setFillType(kAcGiFillAlways);
    draw.geometry().shell(static_cast<uint32_t>(facets.points.size()), facets.points.data(),
                          static_cast<uint32_t>(facets.faces.size()), facets.faces.data());
}

void HvacSolid::drawEdges(AcGiWorldDraw& draw, const Facets& facets, bool withSmooth) const {
    const auto drawChains = [&](const std::vector<std::vector<AcGePoint3d>>& chains) {
        for (const std::vector<AcGePoint3d>& chain : chains) {
            if (draw.regenAbort()) return;
            draw.geometry().polyline(static_cast<uint32_t>(chain.size()), chain.data());
        }
    };
    drawChains(facets.edges);
    if (withSmooth) drawChains(facets.smoothEdges);
}

// Saving a drawing measures all of it, which is no reason to make all bodies.
Acad::ErrorStatus HvacSolid::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    if (const std::optional<AcDbExtents> reach = reachOf(steps_)) {
        extents.addExt(*reach);
        return Acad::eOk;
    }
    const Facets* const drawn = facets();
    if (drawn == nullptr) return Acad::eInvalidExtents;
    extents.addExt(drawn->extents);
    return Acad::eOk;
}

// ---- Taking apart -------------------------------------------------------------------------------

// An edge shows when it bounds a boundary face, and not between facets of the same one.
Acad::ErrorStatus HvacSolid::subExplode(AcDbVoidPtrArray& entities) const {
    const ShapePtr bodies = shape();
    Facets parts;
    if (bodies == nullptr || !solidKernel()->facets(*bodies, Polygons::upToFour, parts)) {
        return steps_.empty() ? Acad::eOk : Acad::eCannotExplodeEntity;
    }
    for (size_t i = 0; i < parts.starts.size(); ++i) {
        const size_t from = parts.starts[i];
        const size_t to = i + 1 < parts.starts.size() ? parts.starts[i + 1] : parts.faces.size();
        std::map<Edge, int> uses;
        visitFacets(parts.faces, from, to, [&](const int32_t* corners, size_t count) {
            for (size_t k = 0; k < count; ++k)
                ++uses[edgeOf(corners[k], corners[(k + 1) % count])];
        });
        visitFacets(parts.faces, from, to, [&](const int32_t* corners, size_t count) {
            AcGePoint3d points[4];
            bool shows[4] = {};
            for (size_t k = 0; k < 4; ++k) {
                const size_t at = k < count ? k : count - 1;
                points[k] = parts.points[static_cast<size_t>(corners[at])];
                const int32_t next = corners[(at + 1) % count];
                shows[k] = uses[edgeOf(corners[at], next)] == 1;
            }
            auto* const face = new AcDbFace(points[0], points[1], points[2], points[3], shows[0],
                                            shows[1], shows[2], shows[3]);
            face->setPropertiesFrom(this);
            entities.append(face);
        });
    }
    return Acad::eOk;
}

void HvacSolid::subList() const {
    AcDbEntity::subList();
    Measures measures;
    const ShapePtr bodies = shape();
    if (bodies == nullptr || !solidKernel()->measure(*bodies, measures)) return;
    acutPrintf(L"\n  Bodies: %d\n  Volume: %.4f\n  Surface area: %.4f\n",
               static_cast<int>(measures.bodies), measures.volume, measures.area);
}

}  // namespace sg::companion
