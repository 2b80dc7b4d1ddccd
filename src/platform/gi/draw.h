#pragma once

#include <cstdint>
#include <string>

#include "base/export.h"
#include "platform/db/color.h"
#include "platform/db/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

class AcGiDrawable;

// What a drawing is being made for.
enum AcGiRegenType {
    eAcGiRegenTypeInvalid = 0,
    kAcGiStandardDisplay = 2,
    kAcGiHideOrShadeCommand = 3,
    kAcGiShadedDisplay = 4,
    kAcGiForExplode = 5,
    kAcGiSaveWorldDrawForProxy = 6,
    kAcGiForExtents = 7,
};

enum AcGiFillType { kAcGiFillAlways = 1, kAcGiFillNever = 2 };
enum AcGiArcType { kAcGiArcSimple = 0, kAcGiArcSector = 1, kAcGiArcChord = 2 };

// How what is drawn next looks. A drawable starts with its own properties.
class SG_API AcGiSubEntityTraits {
  public:
    virtual ~AcGiSubEntityTraits() = default;

    virtual void setColor(uint16_t index) = 0;  // 0 by block, 256 by layer
    virtual void setTrueColor(const AcCmColor& color) = 0;
    virtual void setLayer(AcDbObjectId layer) = 0;
    virtual void setLineType(AcDbObjectId linetype) = 0;
    virtual void setLineTypeScale(double scale) = 0;
    virtual void setLineWeight(
        int hundredthsOfMillimetre) = 0;  // -1 by layer, -2 by block, -3 default
    virtual void setFillType(AcGiFillType type) = 0;
    virtual void setSelectionMarker(int64_t marker) = 0;
    virtual void setThickness(double thickness) = 0;

    virtual uint16_t color() const = 0;
    virtual AcCmColor trueColor() const = 0;
    virtual AcDbObjectId layerId() const = 0;
    virtual AcDbObjectId lineTypeId() const = 0;
    virtual double lineTypeScale() const = 0;
    virtual int lineWeight() const = 0;
    virtual AcGiFillType fillType() const = 0;
    virtual double thickness() const = 0;
};

// The shape of letters, and how they are set.
struct AcGiTextStyle {
    std::wstring fontFile;     // a stroke font's file, or an outline font's
    std::wstring bigFontFile;  // empty: none
    std::wstring typeface;     // of an outline font; goes before fontFile
    bool bold = false;
    bool italic = false;
    double height = 1;  // of capital letters, in drawing units
    double widthFactor = 1;
    double oblique = 0;  // from upright, in radians
    bool backward = false;
    bool upsideDown = false;
    bool vertical = false;
};

// Takes shapes. Coordinates are the model's, seen through the transforms that were pushed. Every
// operation answers true to ask that drawing be stopped.
class SG_API AcGiGeometry {
  public:
    virtual ~AcGiGeometry() = default;

    virtual AcGeMatrix3d getModelToWorldTransform() const = 0;
    // What follows is transformed by `transform` first. Each push needs its pop.
    virtual bool pushModelTransform(const AcGeMatrix3d& transform) = 0;
    virtual bool popModelTransform() = 0;

    virtual bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) = 0;
    // From `start` by `sweep` radians, counter-clockwise seen against the normal.
    virtual bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                             const AcGeVector3d& start, double sweep,
                             AcGiArcType type = kAcGiArcSimple) = 0;
    // An open chain. The normal, when given, is that of the plane in which thickness is raised.
    virtual bool polyline(uint32_t count, const AcGePoint3d* points,
                          const AcGeVector3d* normal = nullptr, int64_t marker = -1) = 0;
    // Filled or outlined as the traits say.
    virtual bool polygon(uint32_t count, const AcGePoint3d* points) = 0;
    // Areas with holes, filled by the even-odd rule; `counts` are the points of each loop.
    virtual bool polyPolygon(uint32_t loops, const uint32_t* counts, const AcGePoint3d* points,
                             const AcGeVector3d& normal) = 0;
    // Faces as runs of a count and as many indexes; a count below 0 is a hole in the face before.
    virtual bool shell(uint32_t points, const AcGePoint3d* vertices, uint32_t faceListSize,
                       const int32_t* faceList) = 0;
    // One line of text from its baseline's start.
    virtual bool text(const AcGePoint3d& position, const AcGeVector3d& normal,
                      const AcGeVector3d& direction, const std::wstring& text,
                      const AcGiTextStyle& style) = 0;
    // A line without ends on one side, and on both.
    virtual bool ray(const AcGePoint3d& first, const AcGePoint3d& second) = 0;
    virtual bool xline(const AcGePoint3d& first, const AcGePoint3d& second) = 0;
    // Draws another drawable with its own properties.
    virtual bool draw(AcGiDrawable* drawable) = 0;
};

// Where a drawable draws itself.
class SG_API AcGiWorldDraw {
  public:
    virtual ~AcGiWorldDraw() = default;

    virtual AcGiRegenType regenType() const = 0;
    virtual bool regenAbort() const = 0;
    virtual bool isDragging() const = 0;
    // How far a chord may stand off a curve near this point, in drawing units.
    virtual double deviation(const AcGePoint3d& near) const = 0;
    virtual AcGiGeometry& geometry() const = 0;
    virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
};
