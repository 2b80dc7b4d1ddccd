#include "host/model/curves/point.h"
#include "host/model/dwg_trace.h"
#include "host/model/entities/entity_fixture.h"
#include "host/model/entities/sample_entities.h"
#include "platform/db/block_reference.h"
#include "platform/db/line.h"
#include "platform/db/polyline.h"
#include "platform/db/text.h"

namespace sg::test {
namespace {

constexpr AcDb::AcDbDwgVersion kReleases[] = {AcDb::kDHL_1015, AcDb::kDHL_1018, AcDb::kDHL_1021,
                                              AcDb::kDHL_1024, AcDb::kDHL_1027, AcDb::kDHL_1032};

class DwgFormTest : public EntityTest {
  protected:
    DwgTrace filed(const AcDbObject& object, AcDb::AcDbDwgVersion release = AcDb::kDHL_1015) {
        DwgTrace trace(release, database.get());
        EXPECT_EQ(object.dwgOutFields(&trace), Acad::eOk);
        return trace;
    }
    using Lines = std::vector<std::string>;
};

TEST_F(DwgFormTest, LinesGoWithoutWhatIsMostlyZero) {
    AcDbLine flat({1, 2, 0}, {1, 5, 0});
    EXPECT_EQ(filed(flat).text(),
              (Lines{"B 1", "RD 1", "DD 1 1", "RD 2", "DD 5 2", "BT 0", "BE 0 0 1"}));
    AcDbLine raised({1, 2, 3}, {4, 5, 0});
    raised.setThickness(2);
    EXPECT_EQ(filed(raised).text(), (Lines{"B 0", "RD 1", "DD 4 1", "RD 2", "DD 5 2", "RD 3",
                                           "DD 0 3", "BT 2", "BE 0 0 1"}));
}

// A text's points are in the plane's coordinates, and its usual values are flags.
TEST_F(DwgFormTest, TextsGoWithoutWhatIsUsual) {
    AcDbText plain({1, 2, 0}, L"a", {}, 3);
    EXPECT_EQ(filed(plain).text(), (Lines{"RC 255", "2RD 1 2", "BE 0 0 1", "BT 0", "RD 3", "T a"}));
    AcDbText turned({5, 1, 2}, L"b", {}, 3, 0.5);
    turned.setNormal(AcGeVector3d::kXAxis);
    EXPECT_EQ(filed(turned).text(),
              (Lines{"RC 246", "RD 5", "2RD 1 2", "BE 1 0 0", "BT 0", "RD 0.5", "RD 3", "T b"}));
}

TEST_F(DwgFormTest, ScalesAreToldAsShortlyAsTheyCan) {
    const struct {
        AcGeScale3d scale;
        Lines lines;
    } cases[] = {
        {{1, 1, 1}, {"bits 3"}},
        {{2, 2, 2}, {"bits 2", "RD 2"}},
        {{1, -1, 1}, {"bits 1", "DD -1 1", "DD 1 1"}},
        {{2, 3, 2}, {"bits 0", "RD 2", "DD 3 2", "DD 2 2"}},
    };
    for (const auto& each : cases) {
        AcDbBlockReference reference({0, 0, 0}, database->modelSpaceId());
        reference.setScaleFactors(each.scale);
        const Lines lines = filed(reference).text();
        EXPECT_EQ(
            Lines(lines.begin() + 1, lines.begin() + 1 + static_cast<ptrdiff_t>(each.lines.size())),
            each.lines);
        EXPECT_EQ(lines.back(), "B 0");  // without attributes there is neither number nor end
    }
}

TEST_F(DwgFormTest, PolylinesHaveTheListsThatTheyNeed) {
    AcDbPolyline line;
    line.addVertexAt(0, {0, 0});
    line.addVertexAt(1, {4, 1});
    EXPECT_EQ(filed(line).text(), (Lines{"BS 0", "BL 2", "2RD 0 0", "DD 4 0", "DD 1 0"}));
    line.setConstantWidth(0.5);
    line.setClosed(true);
    EXPECT_EQ(filed(line).text(),
              (Lines{"BS 516", "BD 0.5", "BL 2", "2RD 0 0", "DD 4 0", "DD 1 0"}));
    line.setBulgeAt(1, 2);
    line.setWidthsAt(1, 0.5, 3);
    EXPECT_EQ(filed(line).text(),
              (Lines{"BS 560", "BL 2", "BL 2", "BL 2", "2RD 0 0", "DD 4 0", "DD 1 0", "BD 0",
                     "BD 2", "BD 0.5", "BD 0.5", "BD 0.5", "BD 3"}));
}

// Every entity comes back whole from a file of every release, but for what the release has no place
// for; and nothing of it is left unread.
TEST_F(DwgFormTest, EntitiesComeBackFromEveryRelease) {
    for (const EntitySample& sample : sampleEntities(*database, false)) {
        if (sample.name == "OLE frame") continue;  // its place is in its data
        for (const AcDb::AcDbDwgVersion release : kReleases) {
            SCOPED_TRACE(sample.name + " " + std::to_string(release));
            DwgTrace trace = filed(*sample.entity, release);
            const EntityPtr copy = emptyLike(*sample.entity);
            ASSERT_EQ(copy->dwgInFields(&trace), Acad::eOk);
            EXPECT_TRUE(trace.isDone());
            EXPECT_EQ(described(*copy, AcDb::kFileFiler),
                      described(*sample.entity, AcDb::kFileFiler));
        }
    }
}

// An object that ends too early fails, wherever that is.
TEST_F(DwgFormTest, WhatEndsTooEarlyFails) {
    for (const EntitySample& sample : sampleEntities(*database, false)) {
        SCOPED_TRACE(sample.name);
        const DwgTrace whole = filed(*sample.entity, AcDb::kDHL_1032);
        for (size_t kept = 0; kept < whole.data.size(); ++kept) {
            DwgTrace cut = whole;
            cut.data.resize(kept);
            EXPECT_NE(emptyLike(*sample.entity)->dwgInFields(&cut), Acad::eOk) << kept;
        }
    }
}

}  // namespace
}  // namespace sg::test
