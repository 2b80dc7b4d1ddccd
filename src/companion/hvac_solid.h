#pragma once

#include <memory>
#include <optional>
#include <span>

#include "companion/kernel/kernel.h"
#include "companion/shape/section.h"
#include "platform/db/hvac_solid.h"

namespace sg::companion {

// The solid entity. It keeps the steps that make its bodies; the bodies themselves come from the
// kernel when they are asked for, and go again when others are. Facets stay as long as the bodies
// do not change.
//
// What each fitting looks like is in docs/solids.md.
class HvacSolid final : public qn_hvacSolid {
  public:
    HvacSolid();
    ~HvacSolid() override;

    // Registers the class and its exact shapes, and takes both away again.
    static void rxInit();
    static void rxTerm();
    AcRxClass* isA() const override;
    static HvacSolid* cast(const AcRxObject* object) {
        return static_cast<HvacSolid*>(qn_hvacSolid::cast(object));
    }

    bool addTransition(AcGePoint3d head, bool headRectangular, double headWidth, double headHeight,
                       AcGePoint3d tail, bool tailRectangular, double tailWidth, double tailHeight,
                       const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                       int bodyOption) override;
    bool subtractTransition(AcGePoint3d head, bool headRectangular, double headWidth,
                            double headHeight, AcGePoint3d tail, bool tailRectangular,
                            double tailWidth, double tailHeight, const AcGeVector3d* headFrame,
                            const AcGeVector3d* tailFrame, int bodyOption) override;
    bool addSkin(const AcGePoint3dArray& points, double thickness) override;
    bool doUnion(qn_hvacSolid* other) override;
    bool addSquareElbowPrep(AcGePoint3d& head, double headWidth, double headHeight,
                            AcGePoint3d& tail, double tailWidth, double tailHeight,
                            const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                            bool rectangular, AModeler::Point3d* a, AModeler::Point3d* b,
                            AcGePoint3d* c, bool withCollars, double collarLength) override;
    bool addSquareElbow(AcGePoint3d head, double headWidth, double headHeight, AcGePoint3d tail,
                        double tailWidth, double tailHeight, const AcGeVector3d* headFrame,
                        const AcGeVector3d* tailFrame, bool rectangular, AModeler::Point3d* a,
                        AModeler::Point3d* b, AcGePoint3d* c, int bodyOption) override;
    bool addRadiusElbow(AcGePoint3d& head, double headWidth, double headHeight, double wallA,
                        double wallB, AcGePoint3d& tail, double tailWidth, double tailHeight,
                        const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                        bool rectangular, double radiusRatio, bool movesEnds, int bodyOption,
                        bool standsAlone) override;
    bool addCableTraySquareRadiusElbow(AcGePoint3d& head, double width, double height,
                                       AcGePoint3d& tail, const AcGeVector3d* headFrame,
                                       const AcGeVector3d* tailFrame, double radiusRatio,
                                       int bodyOption) override;
    bool addWyePrep(AcGePoint3d& head, double headWidth, double headHeight, AcGePoint3d& tail1,
                    double tailWidth1, double tailHeight1, AcGePoint3d& tail2, double tailWidth2,
                    double tailHeight2, AcGeVector3d* headFrame, AcGeVector3d* tailFrame1,
                    AcGeVector3d* tailFrame2, bool rectangular, AModeler::Point3d* a1,
                    AModeler::Point3d* a2, AModeler::Point3d* a3, AcGePoint3d* c1, AcGePoint3d* c2,
                    AcGePoint3d* c3, bool withCollars, double collarLength) override;
    bool addWye(AcGePoint3d& head, double headWidth, double headHeight, AcGePoint3d& tail1,
                double tailWidth1, double tailHeight1, AcGePoint3d& tail2, double tailWidth2,
                double tailHeight2, AcGePoint3d& junction, const AcGeVector3d* headFrame,
                const AcGeVector3d* tailFrame1, const AcGeVector3d* tailFrame2, bool rectangular,
                AModeler::Point3d* a1, AModeler::Point3d* a2, AModeler::Point3d* a3,
                AcGePoint3d* c1, AcGePoint3d* c2, AcGePoint3d* c3, int bodyOption) override;
    void sliceLast(AcGePoint3d p1, AcGePoint3d p2, AcGePoint3d p3, AcGePoint3d keep) override;
    void clearBodies() override;

    const Steps& steps() const { return steps_; }
    // The bodies; null when there are none, or when they cannot be made.
    ShapePtr shape() const;
    // Null for a solid without bodies.
    const Facets* facets() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    void subViewportDraw(AcGiViewportDraw* draw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;
    void subList() const override;

  private:
    bool apply(Step step);
    bool add(std::optional<Body> body, int bodyOption);
    void forgetShape();
    Acad::ErrorStatus takeBytes(std::span<const uint8_t> bytes);
    void drawFaces(AcGiWorldDraw& draw, const Facets& facets) const;
    void drawEdges(AcGiWorldDraw& draw, const Facets& facets, bool withSmooth) const;

    Steps steps_;
    int32_t bodyOption_ = 0;
    mutable std::weak_ptr<const Shape> shape_;
    mutable std::unique_ptr<const Facets> facets_;
};

}  // namespace sg::companion
