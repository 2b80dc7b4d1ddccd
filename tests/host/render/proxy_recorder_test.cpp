#include <gtest/gtest.h>

#include <cstring>

#include "host/model/core/measuring_draw.h"
#include "host/model/core/object_access.h"
#include "host/render/entity_draw.h"
#include "host/render/proxy_graphics.h"
#include "host/render/render_fixture.h"
#include "platform/db/block_table.h"

namespace sg::test {
namespace {

// Writes down what is drawn, to a thousandth of a unit.
class Listing final : public render::Canvas {
  public:
    std::vector<std::string> shapes;

    bool isMeasuring() const override { return false; }
    double unitsPerPixel() const override { return 0.01; }
    double shownLength(const AcGeVector3d& vector) const override { return vector.length() * 100; }
    void line(const render::Look& look, std::span<const AcGePoint3d> points, bool isClosed,
              render::PatternRun) override {
        shapes.push_back((isClosed ? "loop " : "line ") + shown(look, points));
    }
    void area(const render::Look& look, std::span<const AcGePoint3d> points,
              std::span<const uint32_t> counts, Rule) override {
        std::string loops;
        for (const uint32_t count : counts)
            loops += std::to_string(count) + " ";
        shapes.push_back("area " + loops + shown(look, points));
    }
    void endless(const render::Look& look, const AcGePoint3d& base, const AcGeVector3d& direction,
                 bool isBoth) override {
        const AcGePoint3d points[] = {base, base + direction};
        shapes.push_back((isBoth ? "both ways " : "one way ") + shown(look, points));
    }

  private:
    static std::string shown(const render::Look& look, std::span<const AcGePoint3d> points) {
        char text[64];
        std::snprintf(text, sizeof(text), "%06X/%d:", static_cast<unsigned>(look.color),
                      look.lineWeight);
        std::string out = text;
        for (const AcGePoint3d& point : points) {
            // Zeros without a sign.
            std::snprintf(text, sizeof(text), " %.3f,%.3f,%.3f", point.x + 1e-9, point.y + 1e-9,
                          point.z + 1e-9);
            out += text;
        }
        return out;
    }
};

class ProxyRecorderTest : public RenderTest {
  protected:
    AcDbEntity& last() {
        AcDbBlockTableRecord* space = nullptr;
        AcDbBlockTable* table = nullptr;
        database().getBlockTable(table, AcDb::kForRead);
        table->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead);
        table->close();
        const AcDbObjectId id = space->entityIds().back();
        space->close();
        return *model::peek<AcDbEntity>(id);
    }
    std::string recorded(AcDbEntity& entity) {
        const model::Unguarded guard(entity);
        return render::recordProxyGraphics(entity);
    }
    // What an entity draws itself, and what its recorded graphics draw with its properties.
    std::vector<std::string> shapesOf(AcDbEntity& entity, bool isRecorded) {
        Listing canvas;
        render::Looks looks(database(), 0xFFFFFF, {});
        render::EntityDraw draw(canvas, looks, render::DisplaySettings::of(database()));
        const std::string graphics = recorded(entity);
        const model::Unguarded guard(entity);
        if (isRecorded) {
            AcGiSubEntityTraits& traits = draw.subEntityTraits();
            traits.setTrueColor(entity.color());
            traits.setLayer(entity.layerId());
            traits.setLineWeight(entity.lineWeight());
            EXPECT_TRUE(render::playProxyGraphics(draw, graphics));
        } else {
            draw.geometry().draw(&entity);
        }
        return canvas.shapes;
    }
    void block(const std::string& name, const std::string& entities) {
        draw("(entmake '((0 . \"BLOCK\") (2 . \"" + name + "\") (70 . 0) (10 0.0 0.0 0.0)))");
        draw("(progn " + entities + " T)");
        draw("(entmake '((0 . \"ENDBLK\")))");
    }
    void insert(const std::string& groups) {
        draw("(entmake '((0 . \"INSERT\") (8 . \"NOTES\") " + groups + "))");
    }
};

TEST_F(ProxyRecorderTest, WhatIsRecordedDrawsTheSame) {
    layer("NOTES", 3);
    layer("OTHER", 5);
    block("INNER", R"(
        (entmake '((0 . "CIRCLE") (62 . 0) (10 0.0 0.0 0.0) (40 . 1.0)))
        (entmake '((0 . "LINE") (8 . "OTHER") (10 0.0 0.0 0.0) (11 1.0 2.0 3.0)))
        (entmake '((0 . "LINE") (62 . 6) (370 . 50) (10 0.0 0.0 0.0) (11 1.0 0.0 0.0))))");
    block("SYM", R"(
        (entmake '((0 . "ARC") (10 0.0 0.0 0.0) (40 . 2.0) (50 . 0.5) (51 . 3.0)))
        (entmake '((0 . "INSERT") (2 . "INNER") (62 . 1) (10 5.0 5.0 0.0) (41 . 2.0) (42 . 3.0) (50 . 0.7)))
        (entmake '((0 . "INSERT") (2 . "INNER") (8 . "OTHER") (10 -5.0 5.0 0.0)))
        (entmake '((0 . "TEXT") (10 1.0 1.0 0.0) (40 . 1.5) (41 . 0.8) (51 . 0.2) (50 . 0.3) (1 . "%%c5 \U+00E9 %%u%%p")))
        (entmake '((0 . "MTEXT") (100 . "AcDbEntity") (100 . "AcDbMText") (10 0.0 -3.0 0.0) (40 . 1.0) (41 . 9.0) (1 . "Supply\\P{\\C1;air}")))
        (entmake '((0 . "SOLID") (420 . 1193046) (10 0.0 0.0 0.0) (11 1.0 0.0 0.0) (12 0.0 1.0 0.0) (13 1.0 1.0 0.0) (39 . 2.0)))
        (entmake '((0 . "LWPOLYLINE") (100 . "AcDbEntity") (100 . "AcDbPolyline") (90 . 2) (43 . 0.5) (10 0.0 0.0) (10 3.0 0.0)))
        (entmake '((0 . "LINE") (60 . 1) (10 0.0 0.0 0.0) (11 9.0 9.0 0.0)))
        (entmake '((0 . "RAY") (100 . "AcDbEntity") (100 . "AcDbRay") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))
        (entmake '((0 . "HATCH") (100 . "AcDbEntity") (8 . "0") (62 . 2) (100 . "AcDbHatch") (10 0.0 0.0 0.0)
                   (210 0.0 0.0 1.0) (2 . "SOLID") (70 . 1) (71 . 0) (91 . 2)
                   (92 . 3) (72 . 0) (73 . 1) (93 . 4) (10 0.0 0.0) (10 9.0 0.0) (10 9.0 9.0) (10 0.0 9.0) (97 . 0)
                   (92 . 2) (72 . 0) (73 . 1) (93 . 3) (10 1.0 1.0) (10 2.0 1.0) (10 1.0 2.0) (97 . 0)
                   (75 . 0) (76 . 1) (98 . 0))))");
    const char* const inserts[] = {
        "(2 . \"SYM\") (10 20.0 10.0 5.0) (41 . 2.0) (42 . 2.0) (43 . 2.0)",
        "(2 . \"SYM\") (62 . 4) (370 . 35) (10 20.0 10.0 5.0) (50 . 1.0)",
        "(2 . \"SYM\") (62 . 0) (10 0.0 0.0 0.0) (210 0.0 1.0 0.0)",
    };
    for (const char* const groups : inserts) {
        insert(groups);
        const std::vector<std::string> own = shapesOf(last(), false);
        EXPECT_GT(own.size(), 10u);
        EXPECT_EQ(shapesOf(last(), true), own) << groups;
    }
}

TEST_F(ProxyRecorderTest, TheHeadCountsBytesAndCalls) {
    block("ONE", "(entmake '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))");
    insert("(2 . \"ONE\") (10 0.0 0.0 0.0)");
    const std::string list = recorded(last());
    int32_t head[2];
    ASSERT_GE(list.size(), sizeof(head));
    std::memcpy(head, list.data(), sizeof(head));
    EXPECT_EQ(head[0], static_cast<int32_t>(list.size()));
    EXPECT_EQ(head[1], 3) << "a transform, a line and the end of the transform";
}

// Ten blocks, each of which shows the one before ten times.
TEST_F(ProxyRecorderTest, AListHasAnEnd) {
    block("B0", "(entmake '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0)))");
    for (int i = 1; i <= 10; ++i) {
        block("B" + std::to_string(i), "(repeat 10 (entmake '((0 . \"INSERT\") (2 . \"B" +
                                           std::to_string(i - 1) + "\") (10 1.0 0.0 0.0))))");
    }
    insert("(2 . \"B10\") (10 0.0 0.0 0.0)");
    const std::string list = recorded(last());
    EXPECT_GT(list.size(), size_t{1} << 20);
    EXPECT_LT(list.size(), size_t{1} << 21);
    model::MeasuringDraw draw;
    EXPECT_TRUE(render::playProxyGraphics(draw, list));
    EXPECT_EQ(draw.geometry().getModelToWorldTransform(), AcGeMatrix3d()) << "nothing stays pushed";
}

}  // namespace
}  // namespace sg::test
