#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "companion/companion_fixture.h"
#include "companion/solid_bytes.h"
#include "host/exchange/drawing_files.h"
#include "host/model/core/measuring_draw.h"
#include "host/model/sample_entity.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/db/face.h"
#include "platform/db/transactions.h"

namespace sg {
namespace {

using namespace test;
constexpr double kPi = std::numbers::pi;

class SolidEntityTest : public CompanionTest {
  protected:
    SolidEntityTest() : database_(std::make_unique<AcDbDatabase>()) {}
    ~SolidEntityTest() override { database_.reset(); }

    static void addPiece(HvacSolid& solid, double from, double to, bool isRectangular = true,
                         double size = 4) {
        EXPECT_TRUE(solid.addTransition({from, 0, 0}, isRectangular, size, size, {to, 0, 0},
                                        isRectangular, size, size, TestFrame().get(),
                                        TestFrame().get(), 0));
    }
    static std::unique_ptr<HvacSolid> piece(bool isRectangular = true) {
        auto solid = newSolid();
        addPiece(*solid, 0, 10, isRectangular);
        return solid;
    }
    AcDbObjectId append(std::unique_ptr<HvacSolid> solid) {
        Opened<AcDbBlockTableRecord> space(database_->modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(space->appendAcDbEntity(id, solid.get()), Acad::eOk);
        solid.release()->close();
        return id;
    }
    static double volumeOf(AcDbObjectId id) {
        Opened<HvacSolid> solid(id);
        return shapeOf(*solid.get()).volume;
    }

    std::unique_ptr<AcDbDatabase> database_;
};

TEST_F(SolidEntityTest, IsMadeByItsName) {
    const std::unique_ptr<qn_hvacSolid> made(qn_hvacSolid::create());
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->isA(), qn_hvacSolid::desc());
    EXPECT_TRUE(made->isKindOf(AcDbEntity::desc()));
    EXPECT_STREQ(made->isA()->name(), L"qn_hvacSolid");
}

TEST_F(SolidEntityTest, FilesAreCompactAndExact) {
    const auto straight = piece();
    EXPECT_LT(toBytes(straight->steps()).size(), 200U);
    const auto again = reopened(*reopened(*straight));
    EXPECT_EQ(toBytes(again->steps()), toBytes(straight->steps()));
    EXPECT_EQ(shapeOf(*reopened(*newSolid())).solids, 0U);
}

// Every cut and every changed byte is refused or read as something else; none gets out of bounds.
TEST_F(SolidEntityTest, ReadsDamagedBytesWithoutHarm) {
    const auto solid = piece(false);
    solid->sliceLast({4, 0, 0}, {4, 1, 0}, {4, 0, 1}, {20, 0, 0});
    ASSERT_TRUE(solid->doUnion(piece().get()));
    const std::vector<uint8_t> bytes = toBytes(solid->steps());
    companion::Steps steps;
    for (size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(companion::fromBytes({bytes.data(), size}, steps)) << size;
    for (size_t at = 0; at < bytes.size(); at += 3) {
        std::vector<uint8_t> changed = bytes;
        changed[at] = static_cast<uint8_t>(changed[at] ^ (1 << at % 8));
        if (!companion::fromBytes(changed, steps)) continue;
        companion::ShapePtr shape;
        for (const companion::Step& step : steps)
            shape = companion::solidKernel()->apply(shape, step, at % 2 == 0);
    }
    EXPECT_TRUE(companion::fromBytes(bytes, steps));
}

TEST_F(SolidEntityTest, TransformsItsBodies) {
    const struct {
        const char* name;
        AcGeMatrix3d matrix;
        double factor;
    } cases[] = {
        {"moved", turnAndMove(1, {1, 2, 3}, {100, 50, -7}), 1},
        {"scaled", AcGeMatrix3d::scaling(2.5, {1, 2, 3}), 15.625},
        {"mirrored", AcGeMatrix3d::mirroring({5, 0, 0}, {1, 1, 0}), 1},
        {"turned inside out", AcGeMatrix3d::mirroring(AcGePoint3d(3, 3, 3)), 1},
    };
    // A patchwork, a revolution and a prism.
    for (const int kind : {0, 1, 2}) {
        for (const auto& each : cases) {
            SCOPED_TRACE(testing::Message() << each.name << " " << kind);
            const auto solid = newSolid();
            const double tailSize = kind == 2 ? 4 : 6;
            ASSERT_TRUE(solid->addTransition({0, 0, 0}, kind == 2, 4, 4, {10, 0, 0}, kind != 1,
                                             tailSize, tailSize, TestFrame().get(),
                                             TestFrame().get(), 0));
            const double before = shapeOf(*solid).volume;
            const companion::Facets drawn = *solid->facets();
            ASSERT_EQ(solid->transformBy(each.matrix), Acad::eOk);
            const ReadShape shape = shapeOf(*solid);
            EXPECT_TRUE(shape.isValid);
            EXPECT_NEAR(shape.volume, before * each.factor, 1e-5 * before * each.factor);
            // What was drawn goes along, and is what the new bodies are drawn as.
            AcDbExtents moved, made;
            ASSERT_EQ(solid->getGeomExtents(moved), Acad::eOk);
            ASSERT_EQ(reopened(*solid)->getGeomExtents(made), Acad::eOk);
            EXPECT_LT(moved.minPoint().distanceTo(made.minPoint()), 0.2 * each.factor);
            EXPECT_EQ(solid->facets()->points.size(), drawn.points.size());
        }
    }
    AcGeMatrix3d uneven;
    uneven(0, 0) = 2;
    const auto solid = piece();
    EXPECT_EQ(solid->transformBy(uneven), Acad::eCannotScaleNonUniformly);
    EXPECT_EQ(solid->transformBy(AcGeMatrix3d::scaling(0)), Acad::eCannotScaleNonUniformly);
    EXPECT_NEAR(shapeOf(*solid).volume, 160, 1e-6);
}

TEST_F(SolidEntityTest, UndoAndCopiesHaveTheirOwnBodies) {
    const AcDbObjectId id = append(piece());
    {
        auto& transactions = *database_->transactionManager();
        transactions.startTransaction();
        Opened<HvacSolid> solid(id, AcDb::kForWrite);
        addPiece(*solid.get(), 10, 20);
        EXPECT_NEAR(shapeOf(*solid.get()).volume, 320, 1e-6);
        transactions.abortTransaction();
    }
    EXPECT_NEAR(volumeOf(id), 160, 1e-6);
    Opened<HvacSolid> solid(id, AcDb::kForWrite);
    const std::unique_ptr<AcRxObject> copy(solid->clone());
    solid->clearBodies();
    EXPECT_EQ(solid->steps().size(), 0U);
    EXPECT_NEAR(shapeOf(*static_cast<HvacSolid*>(copy.get())).volume, 160, 1e-6);
}

TEST_F(SolidEntityTest, ExtentsAreThoseOfTheBodies) {
    AcDbExtents box;
    EXPECT_EQ(newSolid()->getGeomExtents(box), Acad::eInvalidExtents);
    ASSERT_EQ(piece(false)->getGeomExtents(box), Acad::eOk);
    EXPECT_LT(box.minPoint().distanceTo({0, -2, -2}), 1e-6);
    EXPECT_LT(box.maxPoint().distanceTo({10, 2, 2}), 1e-6);
}

// Measured without making the bodies, and by what is drawn of them.
TEST_F(SolidEntityTest, MeasuresWhatIsDrawn) {
    const TestFrame in = flatFrame(20);
    const TestFrame out = flatFrame(110);
    for (const int kind : {0, 1, 2, 3}) {
        const auto solid = newSolid();
        AcGePoint3d head = AcGePoint3d() - in.x() * 50;
        AcGePoint3d tail = AcGePoint3d() + out.x() * 50;
        const bool isElbow = kind < 2;
        ASSERT_TRUE(isElbow
                        ? solid->addRadiusElbow(head, 12, kind == 0 ? 8 : 12, 1, 0, tail, 12, 8,
                                                in.get(), out.get(), kind == 0, 1, true, 0, true)
                        : solid->addTransition(head, false, 12, 12, AcGePoint3d(), kind == 3, 12,
                                               kind == 3 ? 20 : 12, in.get(), in.get(), 0));
        AcDbExtents measured;
        ASSERT_EQ(solid->getGeomExtents(measured), Acad::eOk);
        const AcDbExtents& drawn = solid->facets()->extents;
        EXPECT_LT(measured.minPoint().distanceTo(drawn.minPoint()), 0.1) << kind;
        EXPECT_LT(measured.maxPoint().distanceTo(drawn.maxPoint()), 0.1) << kind;
    }
    const auto sliced = piece();
    sliced->sliceLast({4, 0, 0}, {4, 1, 0}, {4, 0, 1}, {0, 0, 0});
    AcDbExtents box;
    ASSERT_EQ(sliced->getGeomExtents(box), Acad::eOk);
    EXPECT_NEAR(box.maxPoint().x, 4, 1e-6);
}

// The faces of a box, and of a cylinder so many that they lie within a thousandth of it. Their
// edges show where they are edges of the body.
TEST_F(SolidEntityTest, IsTakenApartIntoFaces) {
    for (const bool isRectangular : {true, false}) {
        const auto solid = piece(isRectangular);
        solid->setColorIndex(3);
        AcDbVoidPtrArray parts;
        ASSERT_EQ(solid->explode(parts), Acad::eOk);
        if (isRectangular) {
            EXPECT_EQ(parts.length(), 6);
        }
        double volume = 0;  // of the pyramids from the origin
        int hidden = 0;
        for (void* const part : parts) {
            const std::unique_ptr<AcDbFace> face(static_cast<AcDbFace*>(part));
            EXPECT_EQ(face->colorIndex(), 3);
            AcGePoint3d p[4];
            for (uint16_t i = 0; i < 4; ++i) {
                bool isVisible = false;
                face->getVertexAt(i, p[i]);
                face->isEdgeVisibleAt(i, isVisible);
                if (!isVisible) ++hidden;
            }
            const AcGePoint3d o;
            volume += (p[0] - o).dotProduct((p[1] - o).crossProduct(p[2] - o)) / 6;
            volume += (p[0] - o).dotProduct((p[2] - o).crossProduct(p[3] - o)) / 6;
        }
        EXPECT_EQ(hidden == 0, isRectangular);
        EXPECT_NEAR(volume, isRectangular ? 160 : 40 * kPi, isRectangular ? 1e-6 : 1.5);
    }
    AcDbVoidPtrArray parts;
    EXPECT_EQ(newSolid()->explode(parts), Acad::eOk);
    EXPECT_EQ(parts.length(), 0);
}

TEST_F(SolidEntityTest, NeedsToBeOpenToBeChanged) {
    const AcDbObjectId id = append(piece());
    Opened<HvacSolid> solid(id, AcDb::kForRead);
    EXPECT_THROW(solid->clearBodies(), std::logic_error);
    EXPECT_NEAR(shapeOf(*solid.get()).volume, 160, 1e-6);
}

// Through drawing files; and through one that was saved while the class was absent.
TEST_F(SolidEntityTest, SurvivesDrawingFiles) {
    append(piece(false));
    for (const wchar_t* const ending : {L".dxf", L".dwg"}) {
        const std::wstring first = path("first") + ending;
        const std::wstring second = path("second") + ending;
        exchange::writeFile(*database_, first, {});
        HvacSolid::rxTerm();
        {
            AcDbDatabase without(false, true);
            exchange::readFile(without, first);
            exchange::writeFile(without, second, {});
        }
        HvacSolid::rxInit();
        acrxBuildClassHierarchy();
        for (const std::wstring& file : {first, second}) {
            AcDbDatabase read(false, true);
            exchange::readFile(read, file);
            Opened<AcDbBlockTableRecord> space(read.modelSpaceId());
            const auto walk = space->newIterator();
            ASSERT_FALSE(walk->done());
            AcDbObjectId id;
            walk->getEntityId(id);
            EXPECT_NEAR(volumeOf(id), 40 * kPi, 1e-6);
        }
    }
}

}  // namespace
}  // namespace sg
