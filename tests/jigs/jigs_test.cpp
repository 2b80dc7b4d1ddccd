#include <cmath>

#include "jigs/jig_fixture.h"
#include "jigs/line_jig.h"
#include "jigs/multi_block_jig.h"
#include "jigs/multi_move_jig.h"
#include "jigs/multi_rotate_jig.h"
#include "jigs/rectangle_jig.h"
#include "jigs/rotate_jig.h"
#include "platform/db/block_table.h"
#include "platform/db/line.h"
#include "platform/db/mtext.h"
#include "platform/win/message_box.h"

namespace sg {
namespace {

using namespace test;

// What jigs show on the way, which no LISP function tells.
class JigsTest : public JigTest {
  protected:
    // Does these things; `look` is called with the number of each step before it is done.
    void steps(std::vector<std::string> steps, std::function<void(int step)> look) {
        hand->will(std::move(steps));
        hand->onDrag = [look, step = 0](const DragRequest&) mutable { look(step++); };
    }
    AcDbObjectId blockWithBase(const AcGePoint3d& base) {
        AcDbBlockTable* blocks = nullptr;
        active().database()->getBlockTable(blocks, AcDb::kForWrite);
        auto* const block = new AcDbBlockTableRecord;
        block->setName(L"B");
        block->setOrigin(base);
        AcDbObjectId id;
        blocks->add(id, block);
        block->close();
        blocks->close();
        return id;
    }
    AcDbObjectId last() {
        AcDbObjectId id;
        resbuf* name = nullptr;
        eval("(setq last (entlast))");
        acedGetSym(L"last", &name);
        acdbGetObjectId(id, name->resval.rlname);
        acutRelRb(name);
        return id;
    }
};

AcDbVoidPtrArray arrayOf(AcDbEntity* entity) {
    AcDbVoidPtrArray array;
    array.append(entity);
    return array;
}

TEST_F(JigsTest, ClonesMoveByTheSteps) {
    auto* const line = new AcDbLine(AcGePoint3d(1, 0, 0), AcGePoint3d(2, 0, 0));
    MultiMoveJig jig(L"", AcGePoint3d(10, 10, 0));
    jig.list().setEntityList(arrayOf(line));
    steps({"sample 11,10", "sample 11,10", "sample 15,12", "10,10"}, [&](int step) {
        const AcGePoint3d expected[] = {{1, 0, 0}, {2, 0, 0}, {2, 0, 0}, {6, 2, 0}};
        EXPECT_EQ(line->startPoint(), expected[step]) << step;
    });
    EXPECT_TRUE(jig.run());
    EXPECT_EQ(line->startPoint(), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(counts().samplers, 4u);
    EXPECT_EQ(counts().updates, 3u) << "the second sample brings nothing new";
}

TEST_F(JigsTest, ClonesTurnByTheSteps) {
    auto* const line = new AcDbLine(AcGePoint3d(2, 1, 0), AcGePoint3d(3, 1, 0));
    MultiRotateJig jig(L"", AcGePoint3d(1, 1, 0));
    jig.list().setEntityList(arrayOf(line));
    steps({"sample 1,5", "sample -5,1", "90"}, [&](int step) {
        const AcGePoint3d expected[] = {{2, 1, 0}, {1, 2, 0}, {0, 1, 0}};
        EXPECT_EQ(line->startPoint(), expected[step]) << step;
    });
    EXPECT_TRUE(jig.run());
    EXPECT_EQ(line->startPoint(), AcGePoint3d(1, 2, 0));
}

TEST_F(JigsTest, AListThatIsNotSetIsComplainedAbout) {
    Log boxes;
    host().setInput({std::make_shared<Buttons>(boxes, std::vector<int>{IDOK, IDOK})});
    MultiMoveJig move(L"", AcGePoint3d());
    EXPECT_EQ(move.entity(), &move.list());
    multiBlockJig blocks(false);
    EXPECT_EQ(blocks.entity(), &blocks.list());
    const std::string box =
        "box 48 AutoCAD: Error - You must call setEntityList before calling "
        "multiBlockJig::drag()";
    EXPECT_EQ(boxes, (Log{box, box}));
    EXPECT_EQ(move.list().setEntityList({}), Acad::eInvalidInput);
    move.entity();
    EXPECT_EQ(boxes.size(), 2u) << "it has been set, to nothing";
}

// With a base point of its own a block is off the pointer by that, turned and scaled as it is.
TEST_F(JigsTest, BlocksAreShownShiftedByTheirBasePoint) {
    auto* const reference = new AcDbBlockReference;
    reference->setBlockTableRecord(blockWithBase({2, 1, 0}));
    reference->setScaleFactors({3, 3, 3});
    multiBlockJig jig(true);
    jig.list().setEntityList(arrayOf(reference));
    steps({"sample 10,10", "20,20", "sample 20,30", "ESC"}, [&](int step) {
        const AcGePoint3d expected[] = {{0, 0, 0}, {4, 7, 0}, {14, 17, 0}, {23, 14, 0}};
        EXPECT_EQ(reference->position(), expected[step]) << step;
        EXPECT_NEAR(reference->rotation(), step == 3 ? std::acos(-1.0) / 2 : 0, 1e-12) << step;
    });
    EXPECT_FALSE(jig.run());
    EXPECT_FALSE(reference->isPersistent());
}

TEST_F(JigsTest, RectanglesAreTurnedFromWhereTheyWerePlaced) {
    AsdkRectangleJig jig(2, 4, 1, true);
    const auto corner = [&] {
        AcGePoint2d point;
        static_cast<AcDbPolyline*>(jig.entity())->getPointAt(2, point);
        return point;
    };
    steps({"sample 1,1", "10,10", "sample 10,20", "sample 0,10", "0"}, [&](int step) {
        // The first one is not placed yet, and its sizes are swapped.
        const AcGePoint2d expected[] = {{2, 4}, {5, 3}, {14, 12}, {8, 14}, {6, 8}};
        EXPECT_EQ(corner(), expected[step]) << step;
    });
    EXPECT_TRUE(jig.run());
    EXPECT_EQ(jig.entity(), nullptr);
    ASSERT_EQ(jig.vertices().length(), 4);
    EXPECT_EQ(jig.vertices()[2], AcGePoint2d(14, 12));
}

// The quarter turns of the centre are short ones, and so in what was drawn with them.
TEST_F(JigsTest, TheCentreHasTheShortQuarterTurn) {
    AsdkRectangleJig jig(2e6, 0, 1, false);
    hand->will({"0,0"});
    EXPECT_TRUE(jig.run());
    EXPECT_NEAR(jig.center().x, 1e6 * std::cos(1.570796325), 1e-9);
    EXPECT_GT(jig.center().x, 1e-3);
}

TEST_F(JigsTest, LinesAreOnTheirLayer) {
    eval(R"((entmake '((0 . "LAYER") (100 . "AcDbSymbolTableRecord")
                       (100 . "AcDbLayerTableRecord") (2 . "DUCT") (70 . 0))))");
    LineJig jig;
    steps({"1,1", "sample 5,5", "3,3", ""}, [&](int step) {
        const auto* const shown = static_cast<AcDbPolyline*>(jig.entity());
        EXPECT_EQ(shown->layer(), L"DUCT");
        EXPECT_EQ(shown->numVerts(), step == 0 ? 0u : step < 3 ? 1u : 2u);
    });
    EXPECT_TRUE(jig.run(L"duct"));
    EXPECT_EQ(jig.polyline()->numVerts(), 2u);
}

TEST_F(JigsTest, CopiesOfTextsAndBlocksTurn) {
    eval(R"((entmake '((0 . "BLOCK") (2 . "A") (70 . 0) (10 0.0 0.0 0.0)))
            (entmake '((0 . "LINE") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))
            (entmake '((0 . "ENDBLK"))))");
    struct Case {
        const char* entity;
        bool turns;
    };
    const Case cases[] = {
        {R"((entmake '((0 . "INSERT") (2 . "A") (10 5.0 5.0 0.0))))", true},
        {R"((entmake '((0 . "MTEXT") (100 . "AcDbEntity") (100 . "AcDbMText") (10 5.0 5.0 0.0)
                       (40 . 1.0) (1 . "text"))))",
         true},
        {R"((entmake '((0 . "INSERT") (2 . "A") (10 5.0 5.0 0.0) (70 . 2) (71 . 2) (44 . 3.0)
                       (45 . 3.0))))",
         false},
        {R"((entmake '((0 . "LINE") (10 5.0 5.0 0.0) (11 6.0 6.0 0.0))))", false},
    };
    for (const Case& each : cases) {
        ASSERT_NE(eval(each.entity), "nil") << each.entity;
        RotateJig jig(last(), L"");
        hand->onDrag = [](const DragRequest& request) {
            EXPECT_EQ(request.basePoint, AcGePoint3d(5, 5, 0));
        };
        hand->will({"90"});
        EXPECT_TRUE(jig.run());
        double rotation = 0;
        if (auto* const text = AcDbMText::cast(jig.entity())) rotation = text->rotation();
        if (auto* const block = AcDbBlockReference::cast(jig.entity())) {
            rotation = block->rotation();
        }
        EXPECT_NEAR(rotation, each.turns ? std::acos(-1.0) / 2 : 0, 1e-12) << each.entity;
    }
}

}  // namespace
}  // namespace sg
