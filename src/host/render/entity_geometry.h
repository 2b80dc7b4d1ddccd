#pragma once

#include <span>
#include <vector>

#include "host/render/entity_traits.h"
#include "host/render/text_shapes.h"

class AcDbEntity;
class AcDbPoint;

namespace sg::render {

// What is drawn in a way of its own.
enum class EntityKind : uint8_t {
    other,
    polyline,
    polyline2d,
    text,
    attribute,
    hatch,
    point,
    wipeout,
    proxy
};

// Makes world coordinates of shapes and gives them to the canvas with the look that they have.
class EntityDraw::Geometry final : public AcGiGeometry {
  public:
    Geometry(EntityDraw& draw, Canvas& canvas, const DisplaySettings& settings);

    Undrawn undrawn;

    void drawSpace(AcDbObjectId block, const std::vector<AcDbObjectId>& except);
    // In the coordinates of what is being drawn.
    double deviation() const;

    AcGeMatrix3d getModelToWorldTransform() const override;
    bool pushModelTransform(const AcGeMatrix3d& transform) override;
    bool popModelTransform() override;
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override;
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& start, double sweep, AcGiArcType type) override;
    bool polyline(uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  int64_t marker) override;
    bool polygon(uint32_t count, const AcGePoint3d* points) override;
    bool polyPolygon(uint32_t loops, const uint32_t* counts, const AcGePoint3d* points,
                     const AcGeVector3d& normal) override;
    bool shell(uint32_t points, const AcGePoint3d* vertices, uint32_t faceListSize,
               const int32_t* faceList) override;
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
              const AcGeVector3d& direction, const std::wstring& text,
              const AcGiTextStyle& style) override;
    bool ray(const AcGePoint3d& first, const AcGePoint3d& second) override;
    bool xline(const AcGePoint3d& first, const AcGePoint3d& second) override;
    bool draw(AcGiDrawable* drawable) override;

  private:
    // An entity that is being drawn, and what it hands on to what it draws.
    struct Level {
        PlainProperties plain;
        Level* outer = nullptr;
    };

    void drawEntity(AcDbEntity& entity);
    void drawItself(AcDbEntity& entity, EntityKind kind);
    void drawPoint(const AcDbPoint& point);
    void cover(const std::vector<AcGePoint3d>& corners);
    void measureBox(const AcDbEntity& entity);

    bool isShown() { return traits().isShown(); }
    Traits& traits() { return *draw_.traits_; }
    std::span<const AcGePoint3d> toWorld(uint32_t count, const AcGePoint3d* points);
    std::vector<AcGePoint3d> arcPoints(const AcGePoint3d& center, double radius,
                                       const AcGeVector3d& normal, const AcGeVector3d& start,
                                       double sweep) const;
    void stroke(std::span<const AcGePoint3d> points, bool isClosed, const AcGeVector3d* normal,
                bool hasCorners);
    void fillOrOutline(std::span<const AcGePoint3d> points, std::span<const uint32_t> counts);
    void areaWithThickness(std::span<const AcGePoint3d> points, std::span<const uint32_t> counts,
                           const AcGeVector3d& normal);
    void measureText(const AcGeMatrix3d& toWorld, const std::wstring& text,
                     const AcGiTextStyle& style);

    EntityDraw& draw_;
    Canvas& canvas_;
    const DisplaySettings settings_;
    std::vector<AcGeMatrix3d> transforms_;  // each with those below it
    Level* level_ = nullptr;
    int depth_ = 0;
    std::vector<AcGePoint3d> world_;  // of the shape that is being drawn
};

}  // namespace sg::render
