#include "drawing/current_drawing.h"

#include <gmock/gmock.h>

#include <numbers>

#include "host/model/core/block_contents.h"
#include "host/model/core/database_state.h"
#include "host/model/core/drawing_readers.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/default_drawing.h"
#include "host/model/tables/header_variables.h"
#include "module/module_fixture.h"
#include "platform/db/database.h"
#include "platform/db/line.h"
#include "source_folder.h"

namespace sg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr double kPi = std::numbers::pi;

// A host with a drawing; its message boxes are written down.
class CurrentDrawingTest : public test::ModuleTest {
  protected:
    CurrentDrawingTest() {
        options.supportPath = {path(""),
                               fromUtf8((test::testSources() / "../share/support").string())};
        start();
        host().setInput({std::make_shared<test::Buttons>(log, std::vector<int>(10, IDOK))});
        printed();
    }

    size_t entityCount() {
        return model::peek<AcDbBlockTableRecord>(currentDatabase()->modelSpaceId())
            ->entityIds()
            .size();
    }
    // What the boxes have shown since the last call.
    test::Log shown() { return std::exchange(log, {}); }

    test::Log log;
};

TEST_F(CurrentDrawingTest, AppendedEntitiesStayOpenUntilTheyAreClosed) {
    auto* const line = new AcDbLine({0, 0, 0}, {1, 0, 0});
    ASSERT_TRUE(addToModelSpace(line));
    EXPECT_EQ(line->ownerId(), currentDatabase()->modelSpaceId());
    EXPECT_TRUE(line->isWriteEnabled());
    EXPECT_EQ(line->close(), Acad::eOk);
    auto* const other = new AcDbLine({0, 0, 0}, {1, 0, 0});
    ASSERT_TRUE(addToModelSpaceAndClose(other));
    EXPECT_FALSE(other->isWriteEnabled());
    EXPECT_EQ(entityCount(), 2u);
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(CurrentDrawingTest, WhatCannotBeAppendedIsTold) {
    EXPECT_FALSE(addToModelSpace(nullptr));
    EXPECT_THAT(shown(), ElementsAre(HasSubstr(": Failed to append entity!")));

    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, currentDatabase()->modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    AcDbLine line({0, 0, 0}, {1, 0, 0});
    EXPECT_FALSE(addToModelSpaceAndClose(&line));
    space->close();
    EXPECT_THAT(shown(), ElementsAre(HasSubstr(": Failed to get block table record!")));
    EXPECT_EQ(printed(), "\n" + std::to_string(Acad::eWasOpenForWrite));
    EXPECT_EQ(entityCount(), 0u);
}

TEST_F(CurrentDrawingTest, WithoutADrawingThereIsNothingToAppendTo) {
    documents().close(active());
    AcDbLine line({0, 0, 0}, {1, 0, 0});
    EXPECT_EQ(currentDatabase(), nullptr);
    EXPECT_FALSE(addToModelSpace(&line));
    EXPECT_THAT(shown(), ElementsAre(HasSubstr(": Failed to get block table!")));
    AcDbObjectId id;
    EXPECT_FALSE(findOrLoadBlock(L"Damper", id));
    EXPECT_FALSE(getLayerId(L"0", id));
}

TEST_F(CurrentDrawingTest, LayersAreFoundByName) {
    AcDbObjectId id;
    EXPECT_TRUE(getLayerId(L"0", id));
    EXPECT_EQ(id, currentDatabase()->layerZero());
    EXPECT_FALSE(getLayerId(L"Ducts", id));
}

TEST_F(CurrentDrawingTest, ABlockOfTheDrawingNeedsNoFile) {
    eval(
        "(entmake '((0 . \"BLOCK\") (2 . \"Damper\") (10 0 0 0) (70 . 0)))"
        "(entmake '((0 . \"ENDBLK\")))"
        "(defun qnBlock-alertMissing (name) (setq missing (cons name missing)))");
    write("Damper.dwg", "no drawing at all");
    AcDbObjectId id;
    ASSERT_TRUE(findOrLoadBlock(L"damper", id));
    EXPECT_STREQ(model::peek<AcDbBlockTableRecord>(id)->name().c_str(), L"Damper");
    EXPECT_EQ(eval("missing"), "nil");
}

TEST_F(CurrentDrawingTest, AMissingBlockIsToldOnce) {
    AcDbObjectId id;
    EXPECT_FALSE(findOrLoadBlock(L"Damper", id));
    EXPECT_THAT(shown(), ElementsAre(HasSubstr("The block \"Damper\" is missing")));
    EXPECT_FALSE(findOrLoadBlock(L"", id));
    EXPECT_THAT(shown(), ElementsAre(HasSubstr("The block \"\" is missing")));
}

TEST_F(CurrentDrawingTest, EveryDrawingHasTheAlert) {
    documents().create();
    AcDbObjectId id;
    EXPECT_FALSE(findOrLoadBlock(L"Valve", id));
    EXPECT_THAT(shown(), ElementsAre(HasSubstr("\"Valve\"")));
}

TEST_F(CurrentDrawingTest, AProgramMayHaveItsOwnAlert) {
    eval("(defun qnBlock-alertMissing (name) (setq missing (cons name missing)))");
    AcDbObjectId id;
    EXPECT_FALSE(findOrLoadBlock(L"Damper", id));
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_EQ(eval("missing"), "(\"Damper\")");
    // One that fails takes nothing with it.
    eval("(defun qnBlock-alertMissing (name) (car name))");
    EXPECT_FALSE(findOrLoadBlock(L"Damper", id));
}

// A reader of files that begin with "LINE": each holds one line, in model space.
Acad::ErrorStatus readLine(AcDbDatabase& database, const std::wstring&) {
    model::buildDefaultDrawing(database);
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, database.modelSpaceId(), AcDb::kForWrite);
    auto* const line = new AcDbLine({0, 0, 0}, {7, 0, 0});
    space->appendAcDbEntity(line);
    line->close();
    space->close();
    return Acad::eOk;
}

TEST_F(CurrentDrawingTest, AFileOnTheSupportPathBecomesABlock) {
    host().databases().readers().add(
        [](std::string_view start) { return start.starts_with("LINE"); }, readLine);
    write("Damper.dwg", "LINE");
    AcDbObjectId id;
    ASSERT_TRUE(findOrLoadBlock(L"Damper", id));
    EXPECT_EQ(eval("(cdr (assoc 11 (entget (cdr (assoc -2 (tblsearch \"BLOCK\" \"Damper\"))))))"),
              "(7.0 0.0 0.0)");
    EXPECT_EQ(entityCount(), 0u);
    AcDbObjectId again;
    ASSERT_TRUE(findOrLoadBlock(L"DAMPER", again));
    EXPECT_EQ(again, id);
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(CurrentDrawingTest, AFileThatIsNoDrawingMakesNoBlock) {
    write("Damper.dwg", "no drawing at all");
    AcDbObjectId id;
    EXPECT_FALSE(findOrLoadBlock(L"Damper", id));
    EXPECT_EQ(eval("(tblsearch \"BLOCK\" \"Damper\")"), "nil");
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(CurrentDrawingTest, PointsComeFromTheUserCoordinateSystem) {
    EXPECT_EQ(convertToWCS({1, 2, 3}), AcGePoint3d(1, 2, 3));
    model::HeaderVariables& header = model::DatabaseState::of(*currentDatabase()).changeHeader();
    header.set(L"UCSORG", AcGePoint3d(10, 20, 30));
    header.set(L"UCSXDIR", AcGePoint3d(0, 1, 0));
    header.set(L"UCSYDIR", AcGePoint3d(-1, 0, 0));
    EXPECT_EQ(convertToWCS({1, 2, 3}), AcGePoint3d(8, 21, 33));
}

TEST_F(CurrentDrawingTest, PlaneHelpers) {
    const AcGePoint3d moved = polar({1, 2, 5}, kPi / 6, 2);
    EXPECT_NEAR(moved.x, 1 + std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(moved.y, 3, 1e-12);
    EXPECT_EQ(moved.z, 5);
    const struct {
        AcGePoint3d to;
        double angle;
    } ways[] = {{{1, 0, 9}, 0},    {{1, 1, -3}, kPi / 4},     {{0, 2, 0}, kPi / 2},
                {{-1, 0, 0}, kPi}, {{0, -1, 0}, 3 * kPi / 2}, {{1, -1, 7}, 7 * kPi / 4},
                {{0, 0, 100}, 0}};
    for (const auto& way : ways)
        EXPECT_NEAR(xyAngle({0, 0, 0}, way.to), way.angle, 1e-12) << way.to.x << " " << way.to.y;
    EXPECT_EQ(kQuarterTurn, 1.570796325);
}

}  // namespace
}  // namespace sg
