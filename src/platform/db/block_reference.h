#pragma once

#include <memory>
#include <vector>

#include "platform/db/attribute.h"
#include "platform/db/entity.h"
#include "platform/db/object_iterator.h"
#include "platform/ge/scale3d.h"

// Shows a block at a place: scaled, turned about its normal, and moved there. The scales may differ
// and be negative.
class SG_API AcDbBlockReference : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockReference)
    AcDbBlockReference();
    AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block);
    ~AcDbBlockReference() override;

    AcDbObjectId blockTableRecord() const { return block_; }
    Acad::ErrorStatus setBlockTableRecord(AcDbObjectId block);
    AcGePoint3d position() const { return position_; }  // in world coordinates
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    AcGeScale3d scaleFactors() const { return scale_; }
    Acad::ErrorStatus setScaleFactors(const AcGeScale3d& scale);  // factors of 0 are taken
    double rotation() const { return rotation_; }                 // from the object's x axis
    Acad::ErrorStatus setRotation(double rotation);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    // From the block's coordinates to the world's: the block's base point goes to the position.
    AcGeMatrix3d blockTransform() const;
    // eCannotScaleNonUniformly for one that is no scaling, turning and moving along the axes.
    Acad::ErrorStatus setBlockTransform(const AcGeMatrix3d& transform);

    // Gives a new attribute to the reference, which must be in a database; it stays open.
    Acad::ErrorStatus appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute);
    Acad::ErrorStatus appendAttribute(AcDbAttribute* attribute);
    std::unique_ptr<AcDbObjectIterator> attributeIterator() const;
    const std::vector<AcDbHardOwnershipId>& attributeIds() const { return attributes_; }
    AcDbObjectId sequenceEndId() const { return sequenceEnd_; }  // null without attributes

    // The block's entities, moved to where they show, appended to the owner of this reference.
    Acad::ErrorStatus explodeToOwnerSpace() const;

    Acad::ErrorStatus setLayer(AcDbObjectId layer, bool doSubents = true,
                               bool allowHiddenLayer = false) override;
    using AcDbEntity::setLayer;
    bool isPlanar() const override { return false; }
    void getEcs(AcGeMatrix3d& matrix) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    Acad::ErrorStatus subErase(bool erasing) override;  // its attributes too
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       AcGePoint3dArray& points, int64_t thisMarker,
                                       int64_t otherMarker) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       const AcGePlane& projection, AcGePoint3dArray& points,
                                       int64_t thisMarker, int64_t otherMarker) const override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;
    void subList() const override;

    // Where each copy of the block stands, from the first one; one that is not moved unless the
    // reference is an array. In the block's directions, before turning. The outermost of them reach
    // as far as all.
    enum class Copies : uint8_t { all, outermost };
    virtual std::vector<AcGeVector3d> copies(Copies) const { return {AcGeVector3d()}; }
    virtual const wchar_t* marker() const { return L"AcDbBlockReference"; }
    virtual void dxfOutArray(AcDbDxfFiler* filer) const;
    virtual void dxfInArray(AcDbDxfFiler*, const resbuf&) {}

  private:
    friend struct sg::model::ObjectAccess;
    class Attributes;

    AcGeMatrix3d placement() const;
    Acad::ErrorStatus place(const AcGeMatrix3d& placement);
    Acad::ErrorStatus needSequenceEnd();
    // From the block to the world, of each copy.
    std::vector<AcGeMatrix3d> shownAt(Copies which = Copies::all) const;
    // Asks a copy of each entity of the block, as it shows, until one answers other than eOk.
    template <class Ask>
    Acad::ErrorStatus askShown(const Ask& ask) const;

    AcDbHardPointerId block_;
    AcGePoint3d position_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcGeScale3d scale_;
    double rotation_ = 0;
    std::vector<AcDbHardOwnershipId> attributes_;
    AcDbHardOwnershipId sequenceEnd_;
};

// A block reference in rows and columns.
class SG_API AcDbMInsertBlock : public AcDbBlockReference {
  public:
    ACRX_DECLARE_MEMBERS(AcDbMInsertBlock)
    AcDbMInsertBlock();
    ~AcDbMInsertBlock() override;

    uint16_t columns() const { return columns_; }
    Acad::ErrorStatus setColumns(uint16_t columns);  // eInvalidInput for 0
    uint16_t rows() const { return rows_; }
    Acad::ErrorStatus setRows(uint16_t rows);
    double columnSpacing() const { return columnSpacing_; }
    Acad::ErrorStatus setColumnSpacing(double spacing);
    double rowSpacing() const { return rowSpacing_; }
    Acad::ErrorStatus setRowSpacing(double spacing);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

  protected:
    std::vector<AcGeVector3d> copies(Copies which) const override;
    const wchar_t* marker() const override { return L"AcDbMInsertBlock"; }
    void dxfOutArray(AcDbDxfFiler* filer) const override;
    void dxfInArray(AcDbDxfFiler* filer, const resbuf& group) override;

  private:
    uint16_t columns_ = 1;
    uint16_t rows_ = 1;
    double columnSpacing_ = 0;
    double rowSpacing_ = 0;
};
