#pragma once

#include <string>

#include "platform/db/block_reference.h"
#include "platform/db/curve.h"

// A leader of two straight segments with a symbol at its end.
//
// The first segment goes from the start point to the middle point, the second one from there
// towards the end point, where the symbol's block is inserted: scaled by the offset, turned the way
// from the middle to the end point. The second segment stops short of the end point by the offset.
// The symbol is a block reference that the leader holds itself, in no database; the pointer to its
// block keeps that from being purged.
//
// Every operation that changes points, offset or block brings the symbol along.
class QNLeader : public AcDbCurve {
  public:
    QNLeader();  // all points at the origin, no block, offset 0
    // The offset is a length of the drawing: the plotted size times the dimension scale.
    QNLeader(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end,
             double offset, AcDbObjectId block, AcDbObjectId layer);
    ~QNLeader() override;

    static void* operator new(size_t size) { return acHeapAlloc(nullptr, size); }
    static void operator delete(void* memory) { acHeapFree(nullptr, memory); }

    // --- The class

    static AcRxClass* desc();
    AcRxClass* isA() const override { return desc(); }
    static QNLeader* cast(const AcRxObject* object);
    // Registers the class. Stops with acrx_abort when another module has registered its name.
    static void rxInit();
    static void rxInit(AppNameChangeFuncPtr changeAppName);

    // --- Its parts

    Acad::ErrorStatus setPoints(const AcGePoint3d& start, const AcGePoint3d& middle,
                                const AcGePoint3d& end);
    Acad::ErrorStatus setStartPoint(const AcGePoint3d& point);
    Acad::ErrorStatus setMiddlePoint(const AcGePoint3d& point);
    Acad::ErrorStatus setEndPoint(const AcGePoint3d& point);
    void getPoints(AcGePoint3d& start, AcGePoint3d& middle, AcGePoint3d& end) const;
    // Where the second segment stops. Its z is that of the end point.
    AcGePoint3d shortenedEndPoint() const;

    double offset() const;
    void setOffset(double offset);
    // The block of this name, from the drawing or from a file (see findOrLoadBlock). False, and
    // nothing is changed, when there is none.
    bool setBlock(const std::wstring& name);
    const AcDbBlockReference& symbol() const;

    // The symbol follows if `doSubents`.
    Acad::ErrorStatus setLayer(AcDbObjectId layer, bool doSubents = true,
                               bool allowHiddenLayer = false) override;
    using AcDbCurve::setLayer;

    // --- As a curve it is the chord from the start point to the end point. No operation checks
    // that what it is given lies on the leader.

    Acad::ErrorStatus getStartParam(double& parameter) const override;
    Acad::ErrorStatus getEndParam(double& parameter) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;
    Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& point, double& distance) const override;
    Acad::ErrorStatus getPointAtDist(double distance, AcGePoint3d& point) const override;
    bool isPlanar() const override;
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;

    // --- Filing. Groups of a DXF file hold no block: a leader read from one has no symbol.

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus audit(AcDbAuditInfo* info) override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    uint32_t subViewportDrawLogicalFlags(AcGiViewportDraw* draw) override;
    void subList() const override;
    // Grips and stretch points: start, middle, end.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
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
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;

  private:
    // Puts the symbol at the end point, turned the way from the middle point.
    Acad::ErrorStatus updateBlockPosition();
    AcGeVector3d chordDirection() const;
    Acad::ErrorStatus readVersion1(AcDbDwgFiler* filer);
    Acad::ErrorStatus readVersion2(AcDbDwgFiler* filer);
    Acad::ErrorStatus readParts(AcDbDwgFiler* filer);
    Acad::ErrorStatus readBlock(AcDbDwgFiler* filer);
    bool hasBlockToFile(const AcDbDwgFiler& filer) const;
    // Makes a call on both segments and the symbol, and ends with the first status other than eOk.
    template <class Call>
    Acad::ErrorStatus onEachPart(const Call& call) const;

    AcGePoint3d startPoint_;
    AcGePoint3d middlePoint_;
    AcGePoint3d endPoint_;
    AcDbObjectId blockId_;
    AcDbBlockReference blockReference_;
    double offset_ = 0;
};
