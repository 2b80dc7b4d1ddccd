#include <numbers>

#include "host/model/access/entity_maker.h"
#include "host/model/entities/dimension/kinds.h"
#include "host/model/entities/entity_fixture.h"
#include "platform/db/line.h"

namespace sg::test {
namespace {

constexpr double kPi = std::numbers::pi;

class DimensionTest : public EntityTest {
  protected:
    // One of each kind, with what it measures.
    struct Sample {
        std::unique_ptr<AcDbDimension> dimension;
        double measurement;
        const char* text;
    };
    std::vector<Sample> samples() {
        std::vector<Sample> made;
        const auto add = [&](AcDbDimension* dimension, double measurement, const char* text) {
            dimension->setDatabaseDefaults(database.get());
            made.push_back({std::unique_ptr<AcDbDimension>(dimension), measurement, text});
        };
        add(new AcDbRotatedDimension(0, {0, 0, 0}, {3, 4, 0}, {1, 6, 0}), 3, "3.0000");
        add(new AcDbAlignedDimension({0, 0, 0}, {3, 4, 0}, {-1, 6, 0}), 5, "5.0000");
        add(new AcDb2LineAngularDimension({1, 0, 0}, {4, 0, 0}, {1, 1, 0}, {3, 3, 0}, {5, 2, 0}),
            kPi / 4, "45%%d");
        add(new AcDb2LineAngularDimension({1, 0, 0}, {4, 0, 0}, {1, 1, 0}, {3, 3, 0}, {-1, 5, 0}),
            3 * kPi / 4, "135%%d");
        add(new AcDb3PointAngularDimension({0, 0, 0}, {3, 0, 0}, {0, 2, 0}, {5, 5, 0}), kPi / 2,
            "90%%d");
        add(new AcDb3PointAngularDimension({0, 0, 0}, {3, 0, 0}, {0, 2, 0}, {-5, -5, 0}),
            3 * kPi / 2, "270%%d");
        add(new AcDbRadialDimension({1, 1, 0}, {4, 5, 0}, 2), 5, "R5.0000");
        add(new AcDbDiametricDimension({4, 5, 0}, {-2, -3, 0}, 2), 10, "%%c10.0000");
        add(new AcDbOrdinateDimension(true, {7, 2, 0}, {8, 6, 0}, {1, 1, 0}), 6, "6.0000");
        add(new AcDbOrdinateDimension(false, {7, 2, 0}, {12, 2, 0}, {1, 1, 0}), 1, "1.0000");
        add(new AcDbArcDimension({0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {2, 2, 0}), kPi, "?3.1416");
        return made;
    }
    static AcDbObjectId blockOf(AcDbObjectId dimension) {
        return Opened<AcDbDimension>(dimension)->dimBlockId();
    }
};

TEST_F(DimensionTest, MeasureWhatTheyAreOf) {
    for (const Sample& sample : samples()) {
        const AcDbDimension& dimension = *sample.dimension;
        EXPECT_NEAR(dimension.measurement(), sample.measurement, 1e-12);
        std::string text;
        for (const wchar_t c : dimension.shownText())
            text += c < 128 ? static_cast<char>(c) : '?';
        EXPECT_EQ(text, sample.text);
    }
    // Without anything between its points.
    EXPECT_EQ(AcDbRotatedDimension().measurement(), 0);
    EXPECT_EQ(AcDb2LineAngularDimension().measurement(), 0);
    EXPECT_EQ(AcDb3PointAngularDimension().measurement(), 0);
}

TEST_F(DimensionTest, TextsStandInForTheMeasurement) {
    auto* const dimension = new AcDbAlignedDimension({0, 0, 0}, {3, 4, 0}, {0, 5, 0});
    dimension->setDatabaseDefaults(database.get());
    dimension->setDimensionText(L"about <> or <>");
    EXPECT_EQ(dimension->shownText(), L"about 5.0000 or 5.0000");
    dimension->setDimensionText(L"none");
    EXPECT_EQ(dimension->shownText(), L"none");
    // Values of its own go before those of the style.
    resbuf* const own =
        acutBuildList(1001, L"ACAD", 1000, L"DSTYLE", 1002, L"{", 1070, 271, 1070, 1, 1070, 144,
                      1040, 2.5, 1070, 3, 1000, L"<> mm", 1002, L"}", 0);
    append(dimension);
    ASSERT_EQ(dimension->setXData(own), Acad::eOk);
    acutRelRb(own);
    dimension->setDimensionText(L"");
    EXPECT_EQ(dimension->shownText(), L"12.5 mm");
    dimension->close();
}

// Closing one that shows nothing yet gives it a block of its own.
TEST_F(DimensionTest, HaveABlockWhenTheyAreClosed) {
    for (Sample& sample : samples()) {
        AcDbDimension* const dimension = sample.dimension.release();
        const AcDbObjectId id = append(dimension);
        const size_t parts = dimension->sketch().size();
        const AcDbExtents drawn = extentsOf(*dimension);
        dimension->close();
        const AcDbObjectId block = blockOf(id);
        ASSERT_FALSE(block.isNull());
        EXPECT_GE(parts, 2u);
        EXPECT_EQ(entitiesIn(block).size(), parts);
        EXPECT_EQ((Opened<AcDbBlockTableRecord>(block)->name().substr(0, 2)), L"*D");
        Opened<AcDbDimension> opened(id);
        const AcDbExtents shown = extentsOf(*opened.get());
        expectNear(drawn.minPoint(), shown.minPoint());
        expectNear(drawn.maxPoint(), shown.maxPoint());
        AcDbVoidPtrArray exploded;
        EXPECT_EQ(opened->explode(exploded), Acad::eOk);
        EXPECT_EQ(static_cast<size_t>(exploded.length()), parts);
        for (void* const part : exploded)
            delete static_cast<AcDbEntity*>(part);
    }
}

TEST_F(DimensionTest, GripsMovePointsAndRenewTheBlock) {
    auto* const dimension = new AcDbRotatedDimension(0, {0, 0, 0}, {10, 4, 0}, {10, 8, 0});
    dimension->setDatabaseDefaults(database.get());
    const AcDbObjectId id = append(dimension);
    dimension->close();
    const AcDbObjectId before = blockOf(id);
    {
        Opened<AcDbRotatedDimension> opened(id, AcDb::kForWrite);
        const AcGePoint3dArray grips = gripsOf(*opened.get());
        ASSERT_EQ(grips.length(), 5);
        expectNear(grips[2], {0, 8, 0});
        expectNear(grips[3], {10, 8, 0});
        expectNear(grips[4], {5, 8, 0});  // where the block has its text
        AcDbIntArray both;
        both.append(2);
        both.append(3);
        opened->moveGripPointsAt(both, {0, 1, 0});  // one point, moved once
        expectNear(opened->dimLinePoint(), {10, 9, 0});
        AcDbIntArray second;
        second.append(1);
        opened->moveGripPointsAt(second, {2, 0, 0});
        EXPECT_DOUBLE_EQ(opened->measurement(), 12);
    }
    EXPECT_NE(blockOf(id), before);
    Opened<AcDbRotatedDimension> opened(id);
    expectNear(opened->textPosition(), {6, 9, 0});
    EXPECT_GT(extentsOf(*opened.get()).maxPoint().x, 11.99);
}

// Moved and turned, what the block shows goes along, however it came about; mirrored or scaled, it
// is drawn anew with text that reads as before.
TEST_F(DimensionTest, TransformsTakeTheBlockAlong) {
    const AcDbObjectId block = addBlock(L"*D7");
    auto* const line = new AcDbLine({0, 0, 0}, {1, 2, 0});
    append(line, block);
    line->close();
    auto* const dimension = new AcDbAlignedDimension({0, 0, 0}, {3, 4, 0}, {-1, 6, 0});
    dimension->setDatabaseDefaults(database.get());
    dimension->setDimBlockId(block);
    const AcDbObjectId id = append(dimension);
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis, {1, 0, 0});
    dimension->transformBy(turn);
    dimension->close();
    EXPECT_NE(blockOf(id), block);  // another dimension may show the old one
    Opened<AcDbAlignedDimension> opened(id, AcDb::kForWrite);
    const AcDbExtents box = extentsOf(*opened.get());
    expectNear(box.minPoint(), {-1, -1, 0});
    expectNear(box.maxPoint(), {1, 0, 0});
    expectNear(opened->xLine2Point(), {-3, 2, 0});
    EXPECT_DOUBLE_EQ(opened->measurement(), 5);
    opened->transformBy(AcGeMatrix3d::scaling(2));
    EXPECT_DOUBLE_EQ(opened->measurement(), 10);
    EXPECT_GT(opened->sketch().size(), 4u);
}

TEST_F(DimensionTest, ListsWithoutBlockMakeDimensions) {
    model::EntityMaker maker(*database);
    const ads_point origin = {0, 0, 0};
    const ads_point end = {9, 0, 0};
    const ads_point through = {9, 5, 0};
    resbuf* const groups =
        acutBuildList(RTDXF0, L"DIMENSION", 10, through, 70, 1, 13, origin, 14, end, 0);
    const auto made = maker.make(groups, false);
    acutRelRb(groups);
    ASSERT_TRUE(made.made);
    Opened<AcDbAlignedDimension> dimension(made.id);
    ASSERT_TRUE(dimension);
    EXPECT_EQ(dimension->isA(), AcDbAlignedDimension::desc());
    EXPECT_DOUBLE_EQ(dimension->measurement(), 9);
    EXPECT_FALSE(dimension->dimBlockId().isNull());
    expectNear(dimension->textPosition(), {4.5, 5, 0});
}

}  // namespace
}  // namespace sg::test
