#pragma once

#include <array>
#include <span>
#include <unordered_set>
#include <vector>

#include "host/model/core/measuring_draw.h"
#include "host/render/entity_traits.h"
#include "host/render/text_shapes.h"

class AcDbEntity;
class AcDbPoint;
class AcDbRasterImage;

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
    image,
    reference,
    proxy
};

// Makes world coordinates of shapes and gives them to the canvas with the look that they have.
class EntityDraw::Geometry final : public AcGiGeometry {
  public:
    Geometry(EntityDraw& draw, Canvas& canvas, const DisplaySettings& settings);

    Undrawn undrawn;
    size_t boxed = 0;

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
    // False when only the frame can be drawn.
    bool drawPixels(const AcDbRasterImage& image);
    void measureBox(const AcDbEntity& entity);
    void measureBox(const AcDbExtents& box);
    void drawBox(const AcDbExtents& box);
    // Draws a block reference as a dot or a box; false when it is to be drawn as it is.
    bool drawRoughly(AcDbEntity& reference);
    bool isNewPlace(AcDbEntity& reference, const std::array<AcGePoint3d, 4>& corners);

    // Where a block has been drawn, and how it looks.
    struct Place {
        AcDbObjectId block, layer;
        std::array<int64_t, 13> numbers;  // of the place and the colour
        friend bool operator==(const Place&, const Place&) = default;
    };
    struct PlaceHash {
        size_t operator()(const Place& place) const;
    };

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
    size_t inBlocks_ = 0;  // entities of blocks that have been drawn
    std::unordered_set<Place, PlaceHash> places_;
    const std::shared_ptr<model::MeasuringDraw::BlockBoxes> boxes_ =
        std::make_shared<model::MeasuringDraw::BlockBoxes>();
    std::vector<AcGePoint3d> world_;  // of the shape that is being drawn
};

}  // namespace sg::render
