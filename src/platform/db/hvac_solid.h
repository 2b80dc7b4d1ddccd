#pragma once

#include <cstddef>

#include "platform/db/entity.h"
#include "platform/rx/rxdictionary.h"

namespace AModeler {

// A point of the modelling library.
class Point3d {
  public:
    double x = 0;
    double y = 0;
    double z = 0;
};

}  // namespace AModeler

// An entity of solid bodies: straight pieces of duct, pipe and cable tray, and their fittings. The
// companion module implements it, and registers what implements it under the name "qn_hvacSolid";
// everybody else reaches it through desc() and create().
//
// Points and vectors are the world's, lengths drawing units. A frame is the first of three unit
// vectors: along the run, across it (the way of widths), up from it (the way of heights). A section
// is given by its centre, its width and height, and whether it is rectangular; the others are
// round, or oval when width and height differ.
//
// Operations on bodies need the solid new or open for write. They answer false when there is no
// such body, and leave the bodies as they were then. `bodyOption` is what the LISP call was given.
class SG_API qn_hvacSolid : public AcDbEntity {
  public:
    static void* operator new(size_t size) { return acHeapAlloc(nullptr, size); }
    static void operator delete(void* memory) { acHeapFree(nullptr, memory); }

    static constexpr const wchar_t* kClassName = L"qn_hvacSolid";

    // Null while no module has registered the class.
    static AcRxClass* desc() {
        return static_cast<AcRxClass*>(acrxClassDictionary()->at(kClassName));
    }
    AcRxClass* isA() const override { return desc(); }
    static qn_hvacSolid* cast(const AcRxObject* object) {
        return object != nullptr && object->isKindOf(desc())
                   ? const_cast<qn_hvacSolid*>(static_cast<const qn_hvacSolid*>(object))
                   : nullptr;
    }
    // A new solid without bodies, which the caller owns; null while the class is not registered.
    static qn_hvacSolid* create() {
        const AcRxClass* const descriptor = desc();
        return descriptor == nullptr ? nullptr : cast(descriptor->create());
    }

    // Adds a body that goes over from the head section into the tail section.
    virtual bool addTransition(AcGePoint3d head, bool headRectangular, double headWidth,
                               double headHeight, AcGePoint3d tail, bool tailRectangular,
                               double tailWidth, double tailHeight, const AcGeVector3d* headFrame,
                               const AcGeVector3d* tailFrame, int bodyOption) = 0;
    // Cuts what addTransition would add out of what stands.
    virtual bool subtractTransition(AcGePoint3d head, bool headRectangular, double headWidth,
                                    double headHeight, AcGePoint3d tail, bool tailRectangular,
                                    double tailWidth, double tailHeight,
                                    const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                                    int bodyOption) = 0;

    // Adds a skin through the points; `amount` is the number that the LISP call was given.
    virtual bool addSkin(const AcGePoint3dArray& points, double amount) = 0;

    // Takes the other solid's bodies into this one; the other stays for its owner to erase.
    virtual bool doUnion(qn_hvacSolid* other) = 0;

    // Whether a mitred elbow from head to tail can be made with these sizes; what it takes to build
    // it is left in the arrays of eight points each. Head and tail may be moved to its connection
    // points. The module asks with collars of 3.0 drawing units.
    virtual bool addSquareElbowPrep(AcGePoint3d& head, double headWidth, double headHeight,
                                    AcGePoint3d& tail, double tailWidth, double tailHeight,
                                    const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                                    bool rectangular, AModeler::Point3d* a, AModeler::Point3d* b,
                                    AcGePoint3d* c, bool withCollars, double collarLength) = 0;
    // Builds it, from the arrays as the preparation left them.
    virtual bool addSquareElbow(AcGePoint3d head, double headWidth, double headHeight,
                                AcGePoint3d tail, double tailWidth, double tailHeight,
                                const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame,
                                bool rectangular, AModeler::Point3d* a, AModeler::Point3d* b,
                                AcGePoint3d* c, int bodyOption) = 0;

    // Adds an elbow swept about a radius of `radiusRatio` widths, and moves head and tail to its
    // connection points. The module passes true for `movesEnds`; `standsAlone` is false when it
    // wants the connection points only, and clears the bodies.
    virtual bool addRadiusElbow(AcGePoint3d& head, double headWidth, double headHeight,
                                double wallA, double wallB, AcGePoint3d& tail, double tailWidth,
                                double tailHeight, const AcGeVector3d* headFrame,
                                const AcGeVector3d* tailFrame, bool rectangular, double radiusRatio,
                                bool movesEnds, int bodyOption, bool standsAlone) = 0;
    // Adds the flat elbow of a cable tray between two connection points of addRadiusElbow.
    virtual bool addCableTraySquareRadiusElbow(AcGePoint3d& head, double width, double height,
                                               AcGePoint3d& tail, const AcGeVector3d* headFrame,
                                               const AcGeVector3d* tailFrame, double radiusRatio,
                                               int bodyOption) = 0;

    // As addSquareElbowPrep, for a fitting with one head and two tails. It may change the frames.
    virtual bool addWyePrep(AcGePoint3d& head, double headWidth, double headHeight,
                            AcGePoint3d& tail1, double tailWidth1, double tailHeight1,
                            AcGePoint3d& tail2, double tailWidth2, double tailHeight2,
                            AcGeVector3d* headFrame, AcGeVector3d* tailFrame1,
                            AcGeVector3d* tailFrame2, bool rectangular, AModeler::Point3d* a1,
                            AModeler::Point3d* a2, AModeler::Point3d* a3, AcGePoint3d* c1,
                            AcGePoint3d* c2, AcGePoint3d* c3, bool withCollars,
                            double collarLength) = 0;
    // Builds it. The junction is where the head's run ends.
    virtual bool addWye(AcGePoint3d& head, double headWidth, double headHeight, AcGePoint3d& tail1,
                        double tailWidth1, double tailHeight1, AcGePoint3d& tail2,
                        double tailWidth2, double tailHeight2, AcGePoint3d& junction,
                        const AcGeVector3d* headFrame, const AcGeVector3d* tailFrame1,
                        const AcGeVector3d* tailFrame2, bool rectangular, AModeler::Point3d* a1,
                        AModeler::Point3d* a2, AModeler::Point3d* a3, AcGePoint3d* c1,
                        AcGePoint3d* c2, AcGePoint3d* c3, int bodyOption) = 0;

    // Cuts the body that was added last by the plane through three points, and keeps the part on
    // the side of `keep`.
    virtual void sliceLast(AcGePoint3d p1, AcGePoint3d p2, AcGePoint3d p3, AcGePoint3d keep) = 0;

    virtual void clearBodies() = 0;
};
