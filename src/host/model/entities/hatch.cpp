#include "host/model/entities/hatch.h"

#include <cmath>

#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/curves/chords.h"
#include "host/model/curves/listing.h"
#include "host/model/curves/planar.h"
#include "host/model/curves/point.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/database.h"
#include "platform/db/line.h"
#include "platform/gi/draw.h"

using namespace sg::model;

ACRX_DXF_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, 0, 0, L"HATCH", nullptr)

namespace {

constexpr const wchar_t* kSolid = L"SOLID";

bool isMetric(const AcDbDatabase* database) {
    if (database == nullptr) return false;
    return DatabaseState::of(*database).header().get<int32_t>(L"MEASUREMENT") != 0;
}

}  // namespace

AcDbHatch::AcDbHatch() = default;
AcDbHatch::~AcDbHatch() = default;

// ---- Properties ---------------------------------------------------------------------------------

Acad::ErrorStatus AcDbHatch::setPattern(PatternType type, const wchar_t* name, double angle,
                                        double scale, bool doubled) {
    if (name == nullptr || !(scale > 0)) return Acad::eInvalidInput;
    const bool solid = sg::equalIgnoringCase(name, kSolid);
    std::vector<HatchLine> lines;
    if (type == kUserDefined) {
        lines = plainPattern(angle, scale, doubled);
    } else if (!solid) {
        auto found = predefinedPattern(name, angle, scale, isMetric(database()));
        if (!found) return Acad::eInvalidInput;
        lines = std::move(*found);
    }
    assertWriteEnabled();
    pattern_ = name;
    patternType_ = type;
    angle_ = angle;
    scale_ = scale;
    doubled_ = doubled;
    solid_ = solid && type != kUserDefined;
    lines_ = std::move(lines);
    return Acad::eOk;
}

// The lines of a pattern that came without them.
void AcDbHatch::completePattern(const AcDbDatabase* database) {
    if (solid_ || !lines_.empty()) return;
    if (patternType_ == kUserDefined) {
        if (scale_ > 0) lines_ = plainPattern(angle_, scale_, doubled_);
    } else if (auto found = predefinedPattern(pattern_, angle_, scale_, isMetric(database))) {
        lines_ = std::move(*found);
    }
}

Acad::ErrorStatus AcDbHatch::setHatchStyle(HatchStyle style) {
    assertWriteEnabled();
    style_ = style;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::appendLoop(HatchLoop loop) {
    if (loop.pieces().empty()) return Acad::eDegenerateGeometry;
    assertWriteEnabled();
    loops_.push_back(std::move(loop));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setElevation(double elevation) {
    assertWriteEnabled();
    elevation_ = elevation;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    return setUnit(normal_, normal) ? Acad::eOk : Acad::eInvalidInput;
}

AcGeMatrix3d AcDbHatch::toWorld() const {
    return AcGeMatrix3d::planeToWorld(normal_) * AcGeMatrix3d::translation({0, 0, elevation_});
}

Acad::ErrorStatus AcDbHatch::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    plane = AcGePlane(toWorld() * AcGePoint3d(), normal_);
    type = AcDb::kPlanar;
    return Acad::eOk;
}

void AcDbHatch::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

// ---- Drawing ------------------------------------------------------------------------------------

std::optional<std::vector<std::pair<AcGePoint3d, AcGePoint3d>>> AcDbHatch::shownLines() const {
    assertReadEnabled();
    if (solid_) return std::nullopt;
    const HatchArea area(loops_, style_);
    const AcGeMatrix3d matrix = toWorld();
    std::vector<std::pair<AcGePoint3d, AcGePoint3d>> shown;
    for (const HatchLine& line : lines_) {
        const auto dashes = area.dashes(line, kMostDashes - shown.size());
        if (!dashes) return std::nullopt;
        for (const Dash& dash : *dashes) {
            shown.emplace_back(matrix * AcGePoint3d(dash.from.x, dash.from.y, 0),
                               matrix * AcGePoint3d(dash.to.x, dash.to.y, 0));
        }
    }
    return shown;
}

bool AcDbHatch::subWorldDraw(AcGiWorldDraw* draw) {
    const auto lines = shownLines();
    if (!lines) {
        fill(draw);
        return true;
    }
    for (const auto& [from, to] : *lines) {
        const AcGePoint3d ends[] = {from, to};
        if (draw->geometry().polyline(2, ends, &normal_)) break;
    }
    return true;
}

// Colours that run into each other show as the first of them.
void AcDbHatch::fill(AcGiWorldDraw* draw) const {
    const AcGeMatrix3d matrix = toWorld();
    std::vector<uint32_t> counts;
    std::vector<AcGePoint3d> points;
    const HatchArea area(loops_, style_);
    for (const std::vector<Piece>& chain : area.chains()) {
        const size_t before = points.size();
        for (const Piece& piece : chain) {
            const Piece placed = piece.transformed(matrix);
            const double deviation = draw->deviation(placed.start());
            const auto chords = chordsOf(placed, deviation > 0 ? deviation : 1e-3);
            points.insert(points.end(), chords.begin(), chords.end() - 1);
        }
        counts.push_back(static_cast<uint32_t>(points.size() - before));
    }
    if (points.empty()) return;
    AcGiSubEntityTraits& traits = draw->subEntityTraits();
    if (isGradient() && !gradient_.stops.empty()) {
        traits.setTrueColor(gradient_.stops.front().color);
    }
    const AcGiFillType before = traits.fillType();
    traits.setFillType(kAcGiFillAlways);
    draw->geometry().polyPolygon(static_cast<uint32_t>(counts.size()), counts.data(), points.data(),
                                 normal_);
    traits.setFillType(before);
}

// ---- Geometry -----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbHatch::subTransformBy(const AcGeMatrix3d& transform) {
    const PlanarTransform change(normal_, transform);
    if (change.flattens) return Acad::eInvalidInput;
    assertWriteEnabled();
    for (HatchLoop& loop : loops_)
        loop.transform(change, elevation_);
    for (HatchLine& line : lines_)
        line.transform(change, elevation_);
    for (AcGePoint2d& seed : seeds_) {
        const AcGePoint3d moved = change.ocs * AcGePoint3d(seed.x, seed.y, elevation_);
        seed.set(moved.x, moved.y);
    }
    elevation_ = (change.ocs * AcGePoint3d(0, 0, elevation_)).z;
    normal_ = change.normal;
    angle_ = change.angle(angle_);
    gradient_.angle = change.angle(gradient_.angle);
    scale_ *= change.scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const AcGeMatrix3d matrix = toWorld();
    AcDbExtents box;
    for (const HatchLoop& loop : loops_) {
        for (const Piece& piece : loop.pieces())
            piece.transformed(matrix).addExtents(box);
    }
    if (box.isEmpty()) return Acad::eInvalidExtents;
    extents.addExt(box);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                              AcDbIntArray&) const {
    AcDbExtents box;
    if (subGetGeomExtents(box) == Acad::eOk) {
        points.append(box.minPoint() + (box.maxPoint() - box.minPoint()) / 2);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subExplode(AcDbVoidPtrArray& entities) const {
    const auto lines = shownLines();
    if (!lines) return Acad::eCannotExplodeEntity;
    for (const auto& [from, to] : *lines) {
        AcDbEntity* made = nullptr;
        if (from == to) {
            made = new AcDbPoint(from);
        } else {
            auto* const line = new AcDbLine(from, to);
            line->setNormal(normal_);
            made = line;
        }
        made->setPropertiesFrom(this);
        entities.append(made);
    }
    return Acad::eOk;
}

void AcDbHatch::subList() const {
    AcDbEntity::subList();
    listText(L"Hatch pattern:", pattern_.c_str());
    if (solid_) return;
    listNumber(L"Hatch scale:", scale_);
    listAngle(L"Hatch angle:", angle_);
    listText(L"Associative:", associative_ ? L"Yes" : L"No");
}
