#include <map>

#include "host/model/core/list_filers.h"
#include "host/model/curves/curve_fixture.h"
#include "host/model/curves/sequence_end.h"
#include "host/model/model_fixture.h"
#include "platform/db/id_mapping.h"

// Polylines whose vertices are entities: fitting, and life in a database.

namespace sg::test {
namespace {

class VertexPolylineTest : public ModelTest {
  protected:
    static std::unique_ptr<AcDb2dPolyline> zigzag(bool closed = false) {
        AcGePoint3dArray points;
        points.append({0, 0, 0});
        points.append({4, 4, 0});
        points.append({8, 0, 0});
        points.append({12, 4, 0});
        return std::make_unique<AcDb2dPolyline>(AcDb::k2dSimplePoly, points, 0, closed);
    }
    // How many vertices of each kind there are, by kind.
    static std::map<int, int> kinds(const AcDb2dPolyline& polyline) {
        std::map<int, int> counts;
        for (auto walk = polyline.vertexIterator(); !walk->done(); walk->step()) {
            if (walk->entity() != nullptr) {
                ++counts[AcDb2dVertex::cast(walk->entity())->vertexType()];
            } else {
                ++counts[Opened<AcDb2dVertex>(walk->objectId())->vertexType()];
            }
        }
        return counts;
    }
    static std::vector<AcDbObjectId> vertexIds(const AcDb2dPolyline& polyline) {
        std::vector<AcDbObjectId> ids;
        for (auto walk = polyline.vertexIterator(); !walk->done(); walk->step()) {
            ids.push_back(walk->objectId());
        }
        return ids;
    }
    AcDbObjectId addZigzag() {
        AcDb2dPolyline* const polyline = zigzag().release();
        const AcDbObjectId id = append(polyline);
        polyline->close();
        return id;
    }
};

using Kinds = std::map<int, int>;

TEST_F(VertexPolylineTest, CurveFittingPutsSmoothArcPairsBetweenVertices) {
    for (const bool closed : {false, true}) {
        const auto polyline = zigzag(closed);
        EXPECT_EQ(polyline->curveFit(), Acad::eOk);
        EXPECT_EQ(polyline->polyType(), AcDb::k2dFitCurvePoly);
        const int pairs = closed ? 4 : 3;
        EXPECT_EQ(kinds(*polyline),
                  (Kinds{{AcDb::k2dVertex, 4}, {AcDb::k2dCurveFitVertex, pairs}}));
        double unused = 0;
        for (const AcGePoint3d& corner :
             {AcGePoint3d(0, 0, 0), AcGePoint3d(4, 4, 0), AcGePoint3d(12, 4, 0)}) {
            EXPECT_EQ(polyline->getParamAtPoint(corner, unused), Acad::eOk);
        }
        for (int i = 1; i < 2 * pairs; ++i) {
            AcGeVector3d before;
            AcGeVector3d after;
            polyline->getFirstDeriv(i - 1e-9, before);
            polyline->getFirstDeriv(static_cast<double>(i), after);
            EXPECT_LT(before.angleTo(after), 1e-6) << i;
        }
    }
}

TEST_F(VertexPolylineTest, CurveFittingFollowsTheTangentsThatAreUsed) {
    AcDb2dPolyline polyline;
    auto* const first = new AcDb2dVertex({0, 0, 0});
    first->setTangent(kPi / 2);
    first->useTangent();
    polyline.appendVertex(first);
    polyline.appendVertex(new AcDb2dVertex({4, 0, 0}));
    EXPECT_EQ(polyline.curveFit(), Acad::eOk);
    AcGeVector3d direction;
    polyline.getFirstDeriv(0.0, direction);
    EXPECT_NEAR(direction.normal().y, 1, 1e-9);
}

TEST_F(VertexPolylineTest, SplineFittingKeepsTheVerticesAsAFrame) {
    for (const auto type : {AcDb::k2dQuadSplinePoly, AcDb::k2dCubicSplinePoly}) {
        const auto polyline = zigzag();
        EXPECT_EQ(polyline->splineFit(type, 8), Acad::eOk);
        EXPECT_EQ(kinds(*polyline),
                  (Kinds{{AcDb::k2dSplineCtlVertex, 4}, {AcDb::k2dSplineFitVertex, 25}}));
        // The frame is not drawn: the spline leaves its corners aside.
        AcDbExtents extents;
        polyline->getGeomExtents(extents);
        EXPECT_LT(extents.maxPoint().y, 4.0001);
        double unused = 0;
        EXPECT_NE(polyline->getParamAtPoint({4, 4, 0}, unused), Acad::eOk);
        EXPECT_EQ(polyline->getParamAtPoint({0, 0, 0}, unused), Acad::eOk);
        EXPECT_EQ(polyline->getParamAtPoint({12, 4, 0}, unused), Acad::eOk);
    }
    // The middle of a cubic curve over four points is (a + 3 b + 3 c + d) / 8.
    const auto cubic = zigzag();
    cubic->splineFit(AcDb::k2dCubicSplinePoly, 8);
    const AcGePoint3d middle = pointAt(*cubic, 12);
    EXPECT_NEAR(middle.x, 6, 1e-12);
    EXPECT_NEAR(middle.y, 2, 1e-12);
    const auto round = zigzag(true);
    round->splineFit(AcDb::k2dCubicSplinePoly, 8);
    EXPECT_EQ(kinds(*round)[AcDb::k2dSplineFitVertex], 32);
    EXPECT_EQ(zigzag()->splineFit(AcDb::k2dSimplePoly, 8), Acad::eInvalidInput);
    AcDb2dPolyline single;
    single.appendVertex(new AcDb2dVertex({1, 1, 0}));
    EXPECT_EQ(single.splineFit(), Acad::eDegenerateGeometry);
    EXPECT_EQ(single.curveFit(), Acad::eDegenerateGeometry);
}

TEST_F(VertexPolylineTest, StraighteningTakesBackWhatFittingMade) {
    const auto polyline = zigzag();
    const double length = lengthOf(*polyline);
    for (const auto type :
         {AcDb::k2dFitCurvePoly, AcDb::k2dCubicSplinePoly, AcDb::k2dQuadSplinePoly}) {
        EXPECT_EQ(polyline->convertToPolyType(type), Acad::eOk);
        EXPECT_NE(lengthOf(*polyline), length);
    }
    EXPECT_EQ(polyline->straighten(), Acad::eOk);
    EXPECT_EQ(polyline->polyType(), AcDb::k2dSimplePoly);
    EXPECT_EQ(kinds(*polyline), (Kinds{{AcDb::k2dVertex, 4}}));
    EXPECT_EQ(lengthOf(*polyline), length);
}

TEST_F(VertexPolylineTest, VerticesFollowIntoTheDatabase) {
    const AcDbObjectId id = addZigzag();
    Opened<AcDb2dPolyline> polyline(id);
    const std::vector<AcDbObjectId> ids = vertexIds(*polyline.get());
    ASSERT_EQ(ids.size(), 4U);
    uint64_t handle = id.handle();
    for (const AcDbObjectId vertex : ids) {
        EXPECT_EQ(vertex.handle(), ++handle);
        EXPECT_EQ(Opened<AcDb2dVertex>(vertex)->ownerId(), id);
    }
    EXPECT_EQ(polyline->sequenceEndId().handle(), ++handle);
    EXPECT_EQ(Opened<AcDbSequenceEnd>(polyline->sequenceEndId())->ownerId(), id);
    EXPECT_NEAR(lengthOf(*polyline.get()), 12 * std::sqrt(2), 1e-12);
    EXPECT_EQ(entities(), std::vector<AcDbObjectId>{id});
}

TEST_F(VertexPolylineTest, VerticesAreAppendedInTheDatabase) {
    auto* const polyline = new AcDb2dPolyline;
    const AcDbObjectId id = append(polyline);
    for (int i = 0; i < 3; ++i) {
        AcDbObjectId vertexId;
        auto* const vertex = new AcDb2dVertex({3.0 * i, 0, 7});
        EXPECT_EQ(polyline->appendVertex(vertexId, vertex), Acad::eOk);
        EXPECT_EQ(vertex->ownerId(), id);
        EXPECT_EQ(vertex->position().z, 0);
        EXPECT_EQ(vertex->close(), Acad::eOk);
    }
    AcDbObjectId between;
    auto* const inserted = new AcDb2dVertex({1, 1, 0});
    EXPECT_EQ(polyline->insertVertexAt(between, vertexIds(*polyline)[0], inserted), Acad::eOk);
    inserted->close();
    EXPECT_EQ(vertexIds(*polyline)[1], between);
    AcDb2dVertex lost;
    EXPECT_EQ(polyline->insertVertexAt(between, id, &lost), Acad::eKeyNotFound);
    polyline->close();
    // A change of a vertex is one of the polyline.
    {
        Opened<AcDb2dVertex>(vertexIds(*Opened<AcDb2dPolyline>(id).get())[3], AcDb::kForWrite)
            ->setPosition({6, 8, 0});
    }
    AcGePoint3d end;
    Opened<AcDb2dPolyline>(id)->getEndPoint(end);
    EXPECT_EQ(end.y, 8);
}

TEST_F(VertexPolylineTest, ErasedVerticesAreLeftOutAndErasingTakesAllAlong) {
    const AcDbObjectId id = addZigzag();
    const std::vector<AcDbObjectId> ids = vertexIds(*Opened<AcDb2dPolyline>(id).get());
    erase(ids[1]);
    EXPECT_EQ(vertexIds(*Opened<AcDb2dPolyline>(id).get()).size(), 3U);
    erase(ids[1], false);
    erase(id);
    for (const AcDbObjectId vertex : ids)
        EXPECT_TRUE(vertex.isErased());
    erase(id, false);
    for (const AcDbObjectId vertex : ids)
        EXPECT_FALSE(vertex.isErased());
    EXPECT_EQ(vertexIds(*Opened<AcDb2dPolyline>(id).get()), ids);
}

TEST_F(VertexPolylineTest, FittingInADatabaseCanBeTakenBack) {
    const AcDbObjectId id = addZigzag();
    const std::vector<AcDbObjectId> ids = vertexIds(*Opened<AcDb2dPolyline>(id).get());
    const double length = lengthOf(*Opened<AcDb2dPolyline>(id).get());
    for (const bool spline : {false, true}) {
        transactions().startTransaction();
        AcDbObject* object = nullptr;
        ASSERT_EQ(transactions().getObject(object, id, AcDb::kForWrite), Acad::eOk);
        AcDb2dPolyline* const polyline = AcDb2dPolyline::cast(object);
        EXPECT_EQ(spline ? polyline->splineFit() : polyline->curveFit(), Acad::eOk);
        EXPECT_EQ(kinds(*polyline).size(), 2U);
        EXPECT_EQ(vertexIds(*polyline)[0], ids[0]);
        transactions().abortTransaction();
        Opened<AcDb2dPolyline> after(id);
        EXPECT_EQ(vertexIds(*after.get()), ids);
        EXPECT_EQ(lengthOf(*after.get()), length);
        EXPECT_EQ(after->polyType(), AcDb::k2dSimplePoly);
    }
    {
        Opened<AcDb2dPolyline> polyline(id, AcDb::kForWrite);
        polyline->curveFit();
        polyline->splineFit(AcDb::k2dQuadSplinePoly, 4);
        EXPECT_EQ(kinds(*polyline.get())[AcDb::k2dSplineFitVertex], 13);
        polyline->straighten();
        EXPECT_EQ(vertexIds(*polyline.get()), ids);
    }
}

TEST_F(VertexPolylineTest, CopiesHaveVerticesOfTheirOwn) {
    const AcDbObjectId id = addZigzag();
    Opened<AcDb2dPolyline> polyline(id);
    const std::unique_ptr<AcRxObject> clone(polyline->clone());
    AcDb2dPolyline* const loose = AcDb2dPolyline::cast(clone.get());
    ASSERT_NE(loose, nullptr);
    EXPECT_EQ(lengthOf(*loose), lengthOf(*polyline.get()));
    EXPECT_EQ(loose->transformBy(AcGeMatrix3d::scaling(2)), Acad::eOk);
    EXPECT_NEAR(lengthOf(*loose), 2 * lengthOf(*polyline.get()), 1e-9);

    AcDbObjectIdArray originals;
    originals.append(id);
    AcDbIdMapping mapping;
    ASSERT_EQ(database->deepCloneObjects(originals, database->modelSpaceId(), mapping), Acad::eOk);
    const AcDbObjectId copyId = mapping.find(id)->value;
    Opened<AcDb2dPolyline> copy(copyId);
    const std::vector<AcDbObjectId> ids = vertexIds(*copy.get());
    ASSERT_EQ(ids.size(), 4U);
    for (const AcDbObjectId vertex : ids) {
        EXPECT_EQ(Opened<AcDb2dVertex>(vertex)->ownerId(), copyId);
    }
    EXPECT_EQ(Opened<AcDbSequenceEnd>(copy->sequenceEndId())->ownerId(), copyId);
    EXPECT_EQ(lengthOf(*copy.get()), lengthOf(*polyline.get()));
}

TEST_F(VertexPolylineTest, PropertiesAreCarriedOn) {
    const AcDbObjectId layer = addLayer(L"Ducts");
    const AcDbObjectId id = addZigzag();
    {
        Opened<AcDb2dPolyline> polyline(id, AcDb::kForWrite);
        EXPECT_EQ(polyline->setLayer(layer), Acad::eOk);
        EXPECT_EQ(polyline->setColorIndex(3), Acad::eOk);
        EXPECT_EQ(polyline->setColorIndex(4, false), Acad::eOk);
    }
    for (const AcDbObjectId vertex : vertexIds(*Opened<AcDb2dPolyline>(id).get())) {
        EXPECT_EQ(Opened<AcDb2dVertex>(vertex)->layerId(), layer);
        EXPECT_EQ(Opened<AcDb2dVertex>(vertex)->colorIndex(), 3);
    }
}

TEST_F(VertexPolylineTest, SplineSettingsAreTheDrawings) {
    const AcDbObjectId id = addZigzag();
    Opened<AcDb2dPolyline> polyline(id, AcDb::kForWrite);
    EXPECT_EQ(polyline->splineFit(), Acad::eOk);
    EXPECT_EQ(polyline->polyType(), AcDb::k2dCubicSplinePoly);
    EXPECT_EQ(kinds(*polyline.get())[AcDb::k2dSplineFitVertex], 25);
}

TEST_F(VertexPolylineTest, SpacePolylinesFitTooAndKeepTheirHeights) {
    AcGePoint3dArray points;
    points.append({0, 0, 0});
    points.append({4, 0, 4});
    points.append({8, 0, 0});
    AcDb3dPolyline polyline(AcDb::k3dSimplePoly, points);
    EXPECT_EQ(endParam(polyline), 2);
    EXPECT_EQ(polyline.splineFit(AcDb::k3dQuadSplinePoly, 4), Acad::eOk);
    EXPECT_EQ(endParam(polyline), 8);
    EXPECT_NEAR(pointAt(polyline, 4).z, 2, 1e-12);
    EXPECT_EQ(polyline.straighten(), Acad::eOk);
    EXPECT_NEAR(pointAt(polyline, 1).z, 4, 1e-12);
    AcGePlane plane;
    AcDb::Planarity type = AcDb::kNonPlanar;
    EXPECT_EQ(polyline.getPlane(plane, type), Acad::eOk);
    EXPECT_EQ(type, AcDb::kPlanar);
    EXPECT_NEAR(std::abs(plane.normal().y), 1, 1e-12);
}

}  // namespace
}  // namespace sg::test
