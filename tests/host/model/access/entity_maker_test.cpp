#include "host/model/access/entity_maker.h"

#include "host/model/access/class_names.h"
#include "host/model/entities/dimension/kinds.h"
#include "host/model/entities/entity_fixture.h"
#include "host/model/entities/mesh/mesh.h"
#include "platform/db/block_reference.h"
#include "platform/db/line.h"
#include "platform/db/polyline_2d.h"

namespace sg::test {
namespace {

class EntityMakerTest : public ObjectTest {
  protected:
    model::EntityMaker::Result make(resbuf* groups) {
        const auto result = maker().make(groups, true);
        acutRelRb(groups);
        return result;
    }
    model::EntityMaker& maker() {
        if (!maker_) maker_ = std::make_unique<model::EntityMaker>(*database);
        return *maker_;
    }
    static const AcRxClass* classOf(resbuf* groups) {
        const AcRxClass* const found = model::classOfGroups(groups);
        acutRelRb(groups);
        return found;
    }
    model::EntityMaker::Result makeLine() {
        return make(acutBuildList(RTDXF0, L"LINE", 10, kStart, 11, kEnd, 0));
    }

    static constexpr ads_point kStart = {1, 2, 3};
    static constexpr ads_point kEnd = {4, 5, 6};

  private:
    std::unique_ptr<model::EntityMaker> maker_;
};

TEST_F(EntityMakerTest, ListsTellTheirClass) {
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"line", 0)), AcDbLine::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"INSERT", 2, L"A", 0)), AcDbBlockReference::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"INSERT", 70, 2, 71, 1, 0)), AcDbMInsertBlock::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"DIMENSION", 70, 33, 0)),
              AcDbAlignedDimension::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"DIMENSION", 70, 166, 0)),
              AcDbOrdinateDimension::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"DIMENSION", 100, L"AcDbDimension", 70, 0, 100,
                                    L"AcDbRadialDimension", 0)),
              AcDbRadialDimension::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"POLYLINE", 70, 1, 0)), AcDb2dPolyline::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"POLYLINE", 70, 17, 0)), AcDbPolygonMesh::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"POLYLINE", 70, 64, 0)), AcDbPolyFaceMesh::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"VERTEX", 70, 64, 0)), AcDbPolygonMeshVertex::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"VERTEX", 70, 192, 0)),
              AcDbPolyFaceMeshVertex::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"VERTEX", 70, 128, 0)), AcDbFaceRecord::desc());
    EXPECT_EQ(classOf(acutBuildList(RTDXF0, L"NO_SUCH_THING", 0)), nullptr);
    EXPECT_EQ(classOf(acutBuildList(8, L"0", 0)), nullptr);
}

TEST_F(EntityMakerTest, EntitiesComeIntoTheirSpace) {
    const auto line = makeLine();
    ASSERT_TRUE(line.made);
    EXPECT_EQ(entities(), std::vector{line.id});
    EXPECT_EQ(Opened<AcDbLine>(line.id)->endPoint(), AcGePoint3d(4, 5, 6));
    const auto paper =
        make(acutBuildList(RTDXF0, L"LINE", 67, 1, 10, kStart, 11, kEnd, 8, L"A new layer", 0));
    ASSERT_TRUE(paper.made);
    EXPECT_EQ(entitiesIn(database->paperSpaceId()), std::vector{paper.id});
    EXPECT_EQ(Opened<AcDbLine>(paper.id)->layer(), L"A new layer");
    EXPECT_FALSE(make(acutBuildList(RTDXF0, L"NO_SUCH_THING", 0)).made);
    EXPECT_FALSE(make(acutBuildList(RTDXF0, L"INSERT", 2, L"no such block", 10, kStart, 0)).made);
}

TEST_F(EntityMakerTest, BlocksAreOpenUntilTheyEnd) {
    EXPECT_TRUE(make(acutBuildList(RTDXF0, L"BLOCK", 2, L"Door", 70, 0, 10, kStart, 0)).made);
    EXPECT_TRUE(makeLine().made);
    EXPECT_TRUE(entities().empty());
    const auto block = make(acutBuildList(RTDXF0, L"ENDBLK", 0));
    ASSERT_TRUE(block.made);
    EXPECT_EQ(block.blockName, L"Door");
    EXPECT_EQ(entitiesIn(block.id).size(), 1u);
    EXPECT_EQ(Opened<AcDbBlockTableRecord>(block.id)->origin(), AcGePoint3d(1, 2, 3));
    // A second one of the name has the block hold what it holds.
    make(acutBuildList(RTDXF0, L"BLOCK", 2, L"DOOR", 70, 0, 10, kEnd, 0));
    makeLine();
    makeLine();
    EXPECT_EQ(make(acutBuildList(RTDXF0, L"ENDBLK", 0)).id, block.id);
    EXPECT_EQ(entitiesIn(block.id).size(), 2u);
    EXPECT_FALSE(make(acutBuildList(RTDXF0, L"ENDBLK", 0)).made);
}

TEST_F(EntityMakerTest, AnonymousBlocksGetTheNextNumber) {
    std::vector<std::wstring> names;
    for (int i = 0; i < 3; ++i) {
        make(acutBuildList(RTDXF0, L"BLOCK", 2, L"*U77", 70, 1, 10, kStart, 0));
        names.push_back(make(acutBuildList(RTDXF0, L"ENDBLK", 0)).blockName);
    }
    EXPECT_EQ(names, (std::vector<std::wstring>{L"*U1", L"*U2", L"*U3"}));
}

// A list that fails gives up what is open.
TEST_F(EntityMakerTest, FailuresLeaveNothingBehind) {
    make(acutBuildList(RTDXF0, L"BLOCK", 2, L"Door", 70, 0, 10, kStart, 0));
    makeLine();
    EXPECT_FALSE(make(acutBuildList(RTDXF0, L"NO_SUCH_THING", 0)).made);
    EXPECT_FALSE((Opened<AcDbBlockTable>(database->blockTableId())->has(L"Door")));
    EXPECT_TRUE(makeLine().made);
    EXPECT_EQ(entities().size(), 1u);
    make(acutBuildList(RTDXF0, L"POLYLINE", 66, 1, 70, 0, 10, kStart, 0));
    EXPECT_FALSE(makeLine().made);  // no vertex
    EXPECT_EQ(entities().size(), 1u);
}

TEST_F(EntityMakerTest, PolylinesComeWithTheirVertices) {
    make(acutBuildList(RTDXF0, L"POLYLINE", 66, 1, 70, 1, 10, kStart, 0));
    make(acutBuildList(RTDXF0, L"VERTEX", 10, kStart, 0));
    make(acutBuildList(RTDXF0, L"VERTEX", 10, kEnd, 42, 0.5, 0));
    const auto made = make(acutBuildList(RTDXF0, L"SEQEND", 0));
    ASSERT_TRUE(made.made);
    Opened<AcDb2dPolyline> polyline(made.id);
    ASSERT_TRUE(polyline);
    EXPECT_TRUE(polyline->isClosed());
    double end = 0;
    EXPECT_EQ(polyline->getEndParam(end), Acad::eOk);
    EXPECT_DOUBLE_EQ(end, 2);
}

TEST_F(EntityMakerTest, VerticesHaveThePolylinesWidthsUnlessTheyHaveTheirOwn) {
    make(acutBuildList(RTDXF0, L"POLYLINE", 66, 1, 70, 0, 10, kStart, 40, 2.0, 41, 3.0, 0));
    make(acutBuildList(RTDXF0, L"VERTEX", 10, kStart, 0));
    make(acutBuildList(RTDXF0, L"VERTEX", 10, kEnd, 40, 0.0, 0));
    Opened<AcDb2dPolyline> polyline(make(acutBuildList(RTDXF0, L"SEQEND", 0)).id);
    ASSERT_TRUE(polyline);
    std::vector<std::pair<double, double>> widths;
    for (auto each = polyline->vertexIterator(); !each->done(); each->step()) {
        const Opened<AcDb2dVertex> vertex(each->objectId());
        widths.emplace_back(vertex->startWidth(), vertex->endWidth());
    }
    EXPECT_EQ(widths, (std::vector<std::pair<double, double>>{{2, 3}, {0, 3}}));
}

// References of blocks within blocks, to any depth, are found where they stand.
TEST_F(EntityMakerTest, BlocksKnowTheirReferences) {
    const AcDbObjectId inner = addBlock(L"Inner");
    const AcDbObjectId outer = addBlock(L"Outer");
    std::vector<AcDbObjectId> references;
    for (const AcDbObjectId place : {outer, database->modelSpaceId()}) {
        auto* const reference = new AcDbBlockReference(AcGePoint3d(), inner);
        references.push_back(append(reference, place));
        reference->close();
    }
    auto* const whole = new AcDbBlockReference(AcGePoint3d(), outer);
    const AcDbObjectId outside = append(whole);
    whole->close();
    AcDbObjectIdArray found;
    EXPECT_EQ(Opened<AcDbBlockTableRecord>(inner)->getBlockReferenceIds(found), Acad::eOk);
    ASSERT_EQ(found.length(), 2);
    EXPECT_TRUE(found.contains(references[0]) && found.contains(references[1]));
    found.removeAll();
    EXPECT_EQ(Opened<AcDbBlockTableRecord>(outer)->getBlockReferenceIds(found), Acad::eOk);
    ASSERT_EQ(found.length(), 1);
    EXPECT_EQ(found[0], outside);
    erase(references[1]);
    found.removeAll();
    EXPECT_EQ(Opened<AcDbBlockTableRecord>(inner)->getBlockReferenceIds(found), Acad::eOk);
    EXPECT_EQ(found.length(), 1);
    EXPECT_EQ((Opened<AcDbBlockTableRecord>(inner, AcDb::kForWrite)->erase()),
              Acad::eCannotBeErasedByCaller);
    // Of the block's own entities the drawing shows nothing when the outer block goes.
    erase(outside);
    EXPECT_EQ((Opened<AcDbBlockTableRecord>(outer, AcDb::kForWrite)->erase()), Acad::eOk);
    found.removeAll();
    EXPECT_EQ(Opened<AcDbBlockTableRecord>(inner)->getBlockReferenceIds(found), Acad::eOk);
    EXPECT_TRUE(found.isEmpty());
}

}  // namespace
}  // namespace sg::test
