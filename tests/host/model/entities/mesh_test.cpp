#include "host/model/entities/mesh/mesh.h"

#include "host/model/core/list_filers.h"
#include "host/model/entities/entity_fixture.h"
#include "platform/db/face.h"

namespace sg::test {
namespace {

class MeshTest : public ObjectTest {
  protected:
    static std::unique_ptr<AcDbPolyFaceMesh> pyramid() {
        auto mesh = std::make_unique<AcDbPolyFaceMesh>();
        for (const AcGePoint3d& point : {AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 0),
                                         AcGePoint3d(0, 4, 0), AcGePoint3d(0, 0, 3)})
            mesh->appendVertex(new AcDbPolyFaceMeshVertex(point));
        mesh->appendFaceRecord(new AcDbFaceRecord(1, 2, -3, 0));
        mesh->appendFaceRecord(new AcDbFaceRecord(1, 2, 4, 0));
        return mesh;
    }
};

TEST_F(MeshTest, FacesNameVerticesThatAreThere) {
    auto mesh = pyramid();
    mesh->appendFaceRecord(new AcDbFaceRecord(1, 2, 5, 0));
    mesh->appendFaceRecord(new AcDbFaceRecord(1, 2, 0, 0));
    mesh->appendFaceRecord(new AcDbFaceRecord(INT16_MIN, 2, 3, 4));
    const auto faces = mesh->faces();
    ASSERT_EQ(faces.size(), 2u);
    EXPECT_EQ(faces[1].corners[3], AcGePoint3d(0, 0, 3));
    EXPECT_EQ(faces[0].isHidden, (std::array{false, false, false, true}));
}

// Numbers below 0 whose product is that of the vertices make no mesh.
TEST_F(MeshTest, NetsHaveAsManyVerticesAsRowsAndColumns) {
    struct Case {
        int16_t rows, columns;
        bool isComplete;
    };
    for (const Case& each : {Case{2, 3, true}, Case{3, 2, true}, Case{-2, -3, false},
                             Case{6, 1, false}, Case{2, 2, false}, Case{0, 0, false}}) {
        AcDbPolygonMesh net;
        for (int i = 0; i < 6; ++i)
            net.appendVertex(new AcDbPolygonMeshVertex(AcGePoint3d(i, i % 2, 0)));
        resbuf* const groups =
            acutBuildList(100, L"AcDbPolygonMesh", 70, 16, 71, each.rows, 72, each.columns, 0);
        model::ListReader reader(groups, database.get());
        EXPECT_EQ(net.dxfIn(&reader), Acad::eOk);
        acutRelRb(groups);
        EXPECT_EQ(net.isComplete(), each.isComplete);
        EXPECT_EQ(net.faces().size(), each.isComplete ? 2u : 0u);
    }
}

// Outside a database a copy owns vertices and faces of its own, each of its kind.
TEST_F(MeshTest, CopiesKeepTheirKindsOfParts) {
    const auto mesh = pyramid();
    std::unique_ptr<AcRxObject> made(mesh->clone());
    auto* const copy = AcDbPolyFaceMesh::cast(made.get());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->transformBy(AcGeMatrix3d::translation({10, 0, 0})), Acad::eOk);
    ASSERT_EQ(copy->faces().size(), 2u);
    EXPECT_EQ(copy->faces()[1].corners[1], AcGePoint3d(14, 0, 0));
    EXPECT_EQ(mesh->faces()[1].corners[1], AcGePoint3d(4, 0, 0));
}

TEST_F(MeshTest, PartsFollowIntoTheDatabaseAndBackOutOfAnUndoneChange) {
    auto* const mesh = pyramid().release();
    const AcDbObjectId id = append(mesh);
    mesh->close();
    AcDbTransactionManager* const transactions = database->transactionManager();
    AcDbObject* object = nullptr;
    AcTransaction* const transaction = transactions->startTransaction();
    ASSERT_EQ(transaction->getObject(object, id, AcDb::kForWrite, false), Acad::eOk);
    AcDbEntity::cast(object)->transformBy(AcGeMatrix3d::translation({0, 0, 5}));
    transactions->abortTransaction();
    AcDbExtents extents;
    EXPECT_EQ(Opened<AcDbEntity>(id)->getGeomExtents(extents), Acad::eOk);
    EXPECT_EQ(extents.maxPoint(), AcGePoint3d(4, 4, 3));
}

TEST_F(MeshTest, ExplodesIntoFacesWithItsHiddenEdges) {
    AcDbVoidPtrArray parts;
    ASSERT_EQ(pyramid()->explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 2);
    bool isVisible = true;
    static_cast<AcDbFace*>(parts[0])->isEdgeVisibleAt(3, isVisible);
    EXPECT_FALSE(isVisible);
    for (int i = 0; i < parts.length(); ++i)
        delete static_cast<AcDbFace*>(parts[i]);
    EXPECT_EQ(AcDbPolygonMesh().explode(parts), Acad::eCannotExplodeEntity);
}

}  // namespace
}  // namespace sg::test
