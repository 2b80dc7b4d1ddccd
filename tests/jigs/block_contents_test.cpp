#include "jigs/block_contents.h"

#include <cmath>

#include "host/render/entity_draw.h"
#include "host/render/looks.h"
#include "host/render/painter.h"
#include "host/render/picture_canvas.h"
#include "jigs/entity_list.h"
#include "jigs/jig_fixture.h"
#include "platform/db/attribute.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"

namespace sg {
namespace {

using namespace test;

// A stroke as it comes to a canvas.
struct Stroke {
    uint32_t color;
    std::vector<AcGePoint3d> points;
};

class RecordingCanvas final : public render::Canvas {
  public:
    std::vector<Stroke> strokes;

    bool isMeasuring() const override { return false; }
    double unitsPerPixel() const override { return 0.01; }
    double shownLength(const AcGeVector3d& vector) const override { return vector.length() * 100; }
    void line(const render::Look& look, std::span<const AcGePoint3d> points, bool,
              render::PatternRun) override {
        strokes.push_back({look.color, {points.begin(), points.end()}});
    }
    void area(const render::Look& look, std::span<const AcGePoint3d> points,
              std::span<const uint32_t>, Rule) override {
        strokes.push_back({look.color, {points.begin(), points.end()}});
    }
    void endless(const render::Look&, const AcGePoint3d&, const AcGeVector3d&, bool) override {}
};

class BlockContentsTest : public JigTest {
  protected:
    AcDbDatabase& database() { return *active().database(); }

    // Draws entities of the drawing as they stand there, or clones of them as they are dragged.
    enum class Road { ordinary, dragged };
    void draw(Road road, render::Canvas& canvas, bool isDragging) {
        render::Looks looks(database(), 0xFFFFFF, {});
        render::DisplaySettings settings = render::DisplaySettings::of(database());
        settings.isDragging = isDragging;
        render::EntityDraw target(canvas, looks, settings);
        if (road == Road::ordinary) {
            target.drawSpace(database().modelSpaceId());
            return;
        }
        AcDbBlockTableRecord* space = nullptr;
        ASSERT_EQ(acdbOpenObject(space, database().modelSpaceId()), Acad::eOk);
        std::vector<std::unique_ptr<AcDbEntity>> clones;
        AcDbVoidPtrArray pointers;
        for (auto each = space->newIterator(); !each->done(); each->step()) {
            AcDbEntity* entity = nullptr;
            each->getEntity(entity);
            clones.emplace_back(AcDbEntity::cast(entity->clone()));
            pointers.append(clones.back().get());
            entity->close();
        }
        space->close();
        entityList list;
        list.setEntityList(pointers);
        target.geometry().draw(&list);
    }
    std::vector<Stroke> strokes(Road road, bool isDragging = true) {
        RecordingCanvas canvas;
        draw(road, canvas, isDragging);
        return canvas.strokes;
    }
    // As a PNG file.
    std::string picture(Road road) {
        render::Picture made;
        made.width = 200;
        made.height = 150;
        render::PictureBuilder builder(made);
        render::Looks looks(database(), 0xFFFFFF, {});
        render::PictureView view;
        view.projection = render::Projection(AcGeMatrix3d(), 1, {100, 75}, {100, 75});
        view.box = {0, 0, made.width, made.height};
        render::PictureCanvas canvas(builder, looks, {}, view);
        draw(road, canvas, true);
        render::Painter* const painter = render::painter();
        return painter == nullptr ? std::string() : painter->png(made);
    }
    static void expectAlike(const std::vector<Stroke>& some, const std::vector<Stroke>& others,
                            const std::string& name) {
        ASSERT_EQ(some.size(), others.size()) << name;
        for (size_t i = 0; i < some.size(); ++i) {
            EXPECT_EQ(some[i].color, others[i].color) << name << ", stroke " << i;
            ASSERT_EQ(some[i].points.size(), others[i].points.size()) << name << ", stroke " << i;
            for (size_t j = 0; j < some[i].points.size(); ++j) {
                const AcGeVector3d off = some[i].points[j] - others[i].points[j];
                ASSERT_LT(off.length(), 1e-9)
                    << name << ", stroke " << i << ", point " << j << ": " << off.x << " " << off.y;
            }
        }
    }
    void expectAlike(const std::string& name) {
        const std::vector<Stroke> ordinary = strokes(Road::ordinary);
        EXPECT_FALSE(ordinary.empty()) << name;
        expectAlike(ordinary, strokes(Road::dragged), name);
    }
    void block(const std::string& name, const std::string& entities) {
        eval("(progn (entmake '((0 . \"BLOCK\") (2 . \"" + name +
             "\") (70 . 2) (10 1.0 2.0 0.0))) " + entities + " (entmake '((0 . \"ENDBLK\"))))");
    }
    void layer(const std::string& name, int color) {
        eval(
            "(entmake '((0 . \"LAYER\") (100 . \"AcDbSymbolTableRecord\") (100 . "
            "\"AcDbLayerTableRecord\") (2 . \"" +
            name + "\") (70 . 0) (6 . \"Continuous\") (62 . " + std::to_string(color) + ")))");
    }
    // Leaves nothing in the drawing but this.
    void only(const std::string& entity) {
        eval(
            "(progn (setq all (ssget \"X\") i 0) (if all (repeat (sslength all) (entdel (ssname "
            "all i)) (setq i (1+ i)))) " +
            entity + ")");
    }
};

constexpr const char* kPlaced =
    "(entmake '((0 . \"INSERT\") (8 . \"GREEN\") (2 . \"OUTER\") (10 20.0 30.0 0.0) (41 . 2.0) (42 "
    ". 1.5) (50 . 0.5)))";

TEST_F(BlockContentsTest, NestedBlocksLookAsTheyDoOtherwise) {
    layer("GREEN", 3);
    layer("BLUE", 5);
    block("INNER",
          "(entmake '((0 . \"LINE\") (8 . \"BLUE\") (10 0.0 0.0 0.0) (11 5.0 1.0 0.0)))"
          "(entmake '((0 . \"CIRCLE\") (8 . \"0\") (62 . 1) (10 3.0 3.0 0.0) (40 . 2.0)))"
          "(entmake '((0 . \"SOLID\") (39 . 2.0) (10 0.0 0.0 0.0) (11 1.0 0.0 0.0) (12 0.0 1.0 "
          "0.0) (13 1.0 1.0 0.0)))"
          "(entmake '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 5.0 1.0 0.0)))");
    block("OUTER",
          "(entmake '((0 . \"INSERT\") (8 . \"GREEN\") (2 . \"INNER\") (10 4.0 4.0 0.0) (50 . "
          "1.0)))"
          "(entmake '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 5.0 1.0 0.0)))"
          "(entmake '((0 . \"INSERT\") (2 . \"INNER\") (10 9.0 4.0 0.0) (41 . -1.0)))");
    only(kPlaced);
    expectAlike("nested");
}

TEST_F(BlockContentsTest, ConstantAttributesLookAsTheyDoOtherwise) {
    layer("GREEN", 3);
    struct Case {
        const char* name;
        const char* groups;
    };
    const Case cases[] = {
        {"plain", "(10 3.0 4.0 0.0)"},
        {"turned", "(10 3.0 4.0 0.0) (50 . 0.7)"},
        {"coloured", "(10 3.0 4.0 0.0) (62 . 1)"},
        {"right", "(10 0.0 0.0 0.0) (11 3.0 4.0 0.0) (72 . 2)"},
        {"centre", "(10 0.0 0.0 0.0) (11 3.0 4.0 0.0) (72 . 1) (50 . 0.7)"},
        {"top", "(10 0.0 0.0 0.0) (11 3.0 4.0 0.0) (72 . 0) (74 . 3)"},
        {"top right", "(10 0.0 0.0 0.0) (11 3.0 4.0 0.0) (72 . 2) (74 . 3)"},
        {"middle", "(10 0.0 0.0 0.0) (11 3.0 4.0 0.0) (72 . 1) (74 . 2)"},
        {"bottom", "(10 0.0 0.0 0.0) (11 3.0 4.0 0.0) (72 . 1) (74 . 1) (50 . 0.7)"},
        {"in the middle", "(10 0.0 0.0 0.0) (11 3.0 4.0 0.0) (72 . 4) (50 . 0.7)"},
        {"aligned", "(10 3.0 4.0 0.0) (11 9.0 6.0 0.0) (72 . 3)"},
        {"fitted", "(10 3.0 4.0 0.0) (11 9.0 6.0 0.0) (72 . 5)"},
        {"narrow", "(10 3.0 4.0 0.0) (41 . 0.5)"},
        {"slanted", "(10 3.0 4.0 0.0) (51 . 0.2)"},
        {"from below", "(10 3.0 4.0 0.0) (50 . 0.7) (210 0.0 0.0 -1.0)"},
    };
    for (const char* text : {"HEX 12", "a{b}\\\\c", "50%%d"}) {
        for (const Case& each : cases) {
            const std::string name = std::string("OUTER") + each.name;
            eval("(setq name \"" + name + std::to_string(text[0]) + "\")");
            eval("(entmake (list '(0 . \"BLOCK\") (cons 2 name) '(70 . 2) '(10 1.0 2.0 0.0)))");
            eval(std::string("(entmake '((0 . \"ATTDEF\") (40 . 2.5) (1 . \"") + text +
                 "\") (2 . \"TAG\") (3 . \"\") (70 . 2) " + each.groups + "))");
            eval("(entmake '((0 . \"ENDBLK\")))");
            only(
                "(entmake (list '(0 . \"INSERT\") '(8 . \"GREEN\") (cons 2 name) '(10 20.0 30.0 "
                "0.0) '(41 . 2.0) '(42 . 2.0) '(50 . 0.5)))");
            expectAlike(name + " " + text);
        }
    }
}

// A leader's arrow shows when nothing is dragged.
TEST_F(BlockContentsTest, LeadersLookAsTheyDoOtherwise) {
    layer("RED", 1);
    const auto leaderBlock = [&](const char* name, int arrow) {
        block(name,
              "(entmake '((0 . \"LEADER\") (100 . \"AcDbEntity\") (8 . \"RED\") (100 . "
              "\"AcDbLeader\") (3 . \"Standard\") (71 . " +
                  std::to_string(arrow) +
                  ") (72 . 0) (73 . 3) (74 . 0) (75 . 0) (40 . 1.0) (41 . 1.0) (76 . 3) (10 0.0 "
                  "0.0 0.0) (10 9.0 9.0 0.0) (10 20.0 9.0 0.0)))");
        only(std::string("(entmake '((0 . \"INSERT\") (2 . \"") + name +
             "\") (10 20.0 30.0 0.0) (50 . 0.5)))");
    };
    leaderBlock("ARROW", 1);
    expectAlike(strokes(Road::ordinary, false), strokes(Road::dragged, false), "at rest");
    const std::vector<Stroke> dragged = strokes(Road::dragged);
    ASSERT_EQ(dragged.size(), 2u) << "its segments alone";
    EXPECT_EQ(dragged[0].points.size(), 2u);
    EXPECT_EQ(dragged[1].points.size(), 2u);
    leaderBlock("PLAIN", 0);
    const std::vector<Stroke> whole = strokes(Road::ordinary);
    const std::vector<Stroke> parts = strokes(Road::dragged);
    ASSERT_EQ(whole.size(), 1u);
    ASSERT_EQ(parts.size() + 1, whole[0].points.size());
    for (size_t i = 0; i < parts.size(); ++i) {
        EXPECT_EQ(parts[i].color, whole[0].color);
        EXPECT_EQ(parts[i].points.front(), whole[0].points[i]);
        EXPECT_EQ(parts[i].points.back(), whole[0].points[i + 1]);
    }
}

TEST_F(BlockContentsTest, WhatShowsOnlyInReferencesIsLeftOut) {
    block(
        "OUTER",
        "(entmake '((0 . \"ATTDEF\") (40 . 2.5) (1 . \"A\") (2 . \"TAG\") (3 . \"\") (70 . 0) (10 "
        "0.0 0.0 0.0)))"
        "(entmake '((0 . \"ATTDEF\") (40 . 2.5) (1 . \"A\") (2 . \"HID\") (3 . \"\") (70 . 3) (10 "
        "0.0 0.0 0.0)))");
    only(kPlaced);
    EXPECT_TRUE(strokes(Road::dragged).empty());
}

TEST_F(BlockContentsTest, ABlockThatContainsItselfIsDrawnOnce) {
    block("OUTER", "(entmake '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 5.0 1.0 0.0)))");
    AcDbBlockTable* blocks = nullptr;
    ASSERT_EQ(database().getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
    AcDbBlockTableRecord* outer = nullptr;
    ASSERT_EQ(blocks->getAt(L"OUTER", outer, AcDb::kForWrite), Acad::eOk);
    for (int i = 0; i < 3; ++i) {
        auto* const self = new AcDbBlockReference({1, 1, 0}, outer->objectId());
        outer->appendAcDbEntity(self);
        self->close();
    }
    outer->close();
    blocks->close();
    only(kPlaced);
    EXPECT_EQ(strokes(Road::dragged).size(), 1u);
}

TEST_F(BlockContentsTest, ThePictureIsTheSame) {
    layer("GREEN", 3);
    block(
        "INNER",
        "(entmake '((0 . \"CIRCLE\") (62 . 1) (10 3.0 3.0 0.0) (40 . 12.0)))"
        "(entmake '((0 . \"ATTDEF\") (40 . 9.0) (1 . \"HEX 12\") (2 . \"TAG\") (3 . \"\") (70 . 2) "
        "(10 3.0 4.0 0.0) (11 3.0 4.0 0.0) (72 . 1)))");
    block("OUTER",
          "(entmake '((0 . \"INSERT\") (2 . \"INNER\") (10 9.0 40.0 0.0) (50 . 1.0)))"
          "(entmake '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 50.0 1.0 0.0)))");
    only(kPlaced);
    const std::string ordinary = picture(Road::ordinary);
    EXPECT_EQ(picture(Road::dragged), ordinary);
    only("(entmake '((0 . \"INSERT\") (2 . \"INNER\") (10 20.0 30.0 0.0)))");
    EXPECT_NE(picture(Road::ordinary), ordinary);
}

}  // namespace
}  // namespace sg
