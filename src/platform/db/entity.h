#pragma once

#include <cstdint>
#include <string>

#include "base/export.h"
#include "platform/db/color.h"
#include "platform/db/extents.h"
#include "platform/db/object.h"
#include "platform/ge/arrays.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/plane.h"

namespace AcDb {

enum Intersect { kOnBothOperands = 0, kExtendThis = 1, kExtendArg = 2, kExtendBoth = 3 };

enum OsnapMode {
    kOsModeEnd = 1,
    kOsModeMid = 2,
    kOsModeCen = 3,
    kOsModeNode = 4,
    kOsModeQuad = 5,
    kOsModeIns = 7,
    kOsModePerp = 8,
    kOsModeTan = 9,
    kOsModeNear = 10,
};

enum Visibility { kInvisible = 1, kVisible = 0 };

// In hundredths of a millimetre; those below 0 take it from elsewhere.
enum LineWeight {
    kLnWtByLayer = -1,
    kLnWtByBlock = -2,
    kLnWtByLwDefault = -3,
    kLnWt000 = 0,
    kLnWt025 = 25,
    kLnWt211 = 211,
};

enum Planarity { kNonPlanar = 0, kPlanar = 1, kLinear = 2 };

enum PlotStyleNameType {
    kPlotStyleNameByLayer = 0,
    kPlotStyleNameByBlock = 1,
    kPlotStyleNameIsDictDefault = 2,
    kPlotStyleNameById = 3,
};

}  // namespace AcDb

// What is drawn: an object of a block with layer, colour and linetype. Coordinates are the world's
// unless a class says otherwise, lengths drawing units, angles radians.
class SG_API AcDbEntity : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbEntity)
    ~AcDbEntity() override;

    AcDbObjectId blockId() const { return ownerId(); }  // of the block it stands in

    // --- Properties. The setters that can fail change nothing then. `doSubents` carries the change
    // on to what belongs to the entity, such as the vertices of a polyline.

    AcCmColor color() const;
    uint16_t colorIndex() const { return color().colorIndex(); }
    virtual Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents = true);
    Acad::ErrorStatus setColorIndex(uint16_t index, bool doSubents = true);

    // A null id of a new entity stands for layer "0", and ByLayer, of the database it comes into.
    AcDbObjectId layerId() const { return layer_; }
    std::wstring layer() const;
    virtual Acad::ErrorStatus setLayer(AcDbObjectId layer, bool doSubents = true,
                                       bool allowHiddenLayer = false);
    // eKeyNotFound.
    virtual Acad::ErrorStatus setLayer(const wchar_t* name, bool doSubents = true,
                                       bool allowHiddenLayer = false);

    AcDbObjectId linetypeId() const { return linetype_; }
    std::wstring linetype() const;
    virtual Acad::ErrorStatus setLinetype(AcDbObjectId linetype, bool doSubents = true);
    virtual Acad::ErrorStatus setLinetype(const wchar_t* name, bool doSubents = true);
    double linetypeScale() const;
    virtual Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents = true);

    AcDb::LineWeight lineWeight() const;
    virtual Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, bool doSubents = true);
    AcDb::Visibility visibility() const;
    virtual Acad::ErrorStatus setVisibility(AcDb::Visibility visibility, bool doSubents = true);

    AcDb::PlotStyleNameType plotStyleNameType() const;
    AcDbObjectId plotStyleNameId() const;  // null unless the type is kPlotStyleNameById
    virtual Acad::ErrorStatus setPlotStyleName(AcDb::PlotStyleNameType type,
                                               AcDbObjectId style = AcDbObjectId(),
                                               bool doSubents = true);
    // Transparency as drawing files keep it: 0 by layer, 0x01000000 by block, 0x02000000 plus an
    // alpha from 0 to 255.
    uint32_t transparency() const;
    virtual Acad::ErrorStatus setTransparency(uint32_t transparency, bool doSubents = true);
    AcDbObjectId materialId() const;  // null: by layer
    virtual Acad::ErrorStatus setMaterial(AcDbObjectId material, bool doSubents = true);

    // The properties of another entity.
    Acad::ErrorStatus setPropertiesFrom(const AcDbEntity* other, bool doSubents = true);
    // The current layer, colour, linetype and so on of a database: null is the working one.
    void setDatabaseDefaults(AcDbDatabase* database = nullptr);
    virtual void subSetDatabaseDefaults(AcDbDatabase* database);

    // --- Geometry

    virtual bool isPlanar() const { return false; }
    // eNonPlanarEntity, eNotApplicable.
    virtual Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const;

    // The identity, or what takes object coordinates to the world.
    virtual void getEcs(AcGeMatrix3d& matrix) const;

    // eCannotScaleNonUniformly and its kin change nothing.
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& transform) {
        return subTransformBy(transform);
    }
    // A new entity, which the caller owns.
    Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const {
        return subGetTransformedCopy(transform, copy);
    }
    // Adds to `extents`. eInvalidExtents for what has none (a ray, an empty text).
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const {
        return subGetGeomExtents(extents);
    }

    // These append. A point's index is its place among them.
    Acad::ErrorStatus getGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                    AcDbIntArray& geomIds) const {
        return subGetGripPoints(points, osnapModes, geomIds);
    }
    Acad::ErrorStatus moveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
        return subMoveGripPointsAt(indices, offset);
    }
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const {
        return subGetStretchPoints(points);
    }
    Acad::ErrorStatus moveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
        return subMoveStretchPointsAt(indices, offset);
    }
    // The points that an object snap near `pick` can find; `last` is the point before in the same
    // command.
    Acad::ErrorStatus getOsnapPoints(AcDb::OsnapMode mode, int64_t marker, const AcGePoint3d& pick,
                                     const AcGePoint3d& last, const AcGeMatrix3d& view,
                                     AcGePoint3dArray& points, AcDbIntArray& geomIds) const {
        return subGetOsnapPoints(mode, marker, pick, last, view, points, geomIds);
    }
    // Appends the points in which this entity and another meet. Extended, lines go on without end,
    // arcs to whole circles; an entity that extends no way stays as it is. The second form projects
    // both along the plane's normal first, and its points are on this entity.
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                    AcGePoint3dArray& points, int64_t thisMarker = 0,
                                    int64_t otherMarker = 0) const {
        return subIntersectWith(other, mode, points, thisMarker, otherMarker);
    }
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                    const AcGePlane& projection, AcGePoint3dArray& points,
                                    int64_t thisMarker = 0, int64_t otherMarker = 0) const {
        return subIntersectWith(other, mode, projection, points, thisMarker, otherMarker);
    }
    // Appends new entities that draw the same, which the caller owns; they get this entity's
    // properties where they have none of their own. eNotApplicable for what cannot be taken apart.
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entities) const { return subExplode(entities); }
    // Prints what the entity is, as the LIST command shows it.
    void list() const { subList(); }

    // --- Filing

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    AcDbEntity();

    Acad::ErrorStatus subOpen(AcDb::OpenMode mode) override;  // eOnLockedLayer

    virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform);
    virtual Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& transform,
                                                    AcDbEntity*& copy) const;
    // The base version measures what worldDraw() draws.
    virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const;
    virtual Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                               AcDbIntArray& geomIds) const;
    virtual Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset);
    virtual Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const;
    virtual Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset);
    virtual Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                                const AcGePoint3d& pick, const AcGePoint3d& last,
                                                const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                AcDbIntArray& geomIds) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                               AcGePoint3dArray& points, int64_t thisMarker,
                                               int64_t otherMarker) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                               const AcGePlane& projection,
                                               AcGePoint3dArray& points, int64_t thisMarker,
                                               int64_t otherMarker) const;
    virtual Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const;
    virtual void subList() const;

    uint32_t subSetAttributes(AcGiDrawableTraits* traits) override;

  private:
    friend struct sg::model::ObjectAccess;

    // Line weight, visibility and plot style type are in small_.
    AcDbObjectId layer_;
    AcDbObjectId linetype_;
    AcCmColor color_;
    double linetypeScale_ = 1;
};

// Opens an entity; eNotThatKindOfClass for another object.
inline Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id,
                                            AcDb::OpenMode mode, bool openErased = false) {
    return acdbOpenObject(entity, id, mode, openErased);
}
