#include <cmath>

#include "host/model/curves/ray.h"
#include "host/model/curves/xline.h"
#include "host/model/entities/entity_fixture.h"
#include "host/model/entities/ole_frame.h"
#include "host/model/entities/sample_entities.h"
#include "platform/db/curve.h"
#include "platform/db/line.h"

// What holds for entities of all classes.

namespace sg::test {
namespace {

class EntityClassesTest : public EntityTest {
  protected:
    // The samples as they are, and turned out of the plane of the world.
    std::vector<EntitySample> samples(bool vertices = true) {
        std::vector<EntitySample> all = sampleEntities(*database, vertices);
        const AcGeMatrix3d turn = AcGeMatrix3d::rotation(0.7, {1, 2, 0.5}, {1, 1, 1});
        for (size_t i = all.size(); i-- > 0;) {
            AcDbEntity* turned = nullptr;
            if (AcDbOle2Frame::cast(all[i].entity.get()) != nullptr) continue;
            EXPECT_EQ(all[i].entity->getTransformedCopy(turn, turned), Acad::eOk) << all[i].name;
            if (turned != nullptr) all.push_back({all[i].name + ", turned", EntityPtr(turned)});
        }
        return all;
    }
    static EntityPtr copyOf(const AcDbEntity& entity) {
        return EntityPtr(AcDbEntity::cast(entity.clone()));
    }
    static bool isEndless(const AcDbEntity& entity) {
        return AcDbRay::cast(&entity) != nullptr || AcDbXline::cast(&entity) != nullptr;
    }
    static void expectSameBox(const AcDbExtents& a, const AcDbExtents& b, double tolerance = 1e-6) {
        expectNear(a.minPoint(), b.minPoint(), tolerance);
        expectNear(a.maxPoint(), b.maxPoint(), tolerance);
    }
    static AcDbIntArray allOf(const AcGePoint3dArray& points) {
        AcDbIntArray indices;
        for (int i = 0; i < points.length(); ++i)
            indices.append(i);
        return indices;
    }
};

TEST_F(EntityClassesTest, MemoryBringsThemBack) {
    for (const EntitySample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        const EntityPtr copy = throughMemory(*sample.entity);
        EXPECT_EQ(described(*copy), described(*sample.entity));
    }
}

TEST_F(EntityClassesTest, GroupsBringThemBack) {
    for (const EntitySample& sample : samples(false)) {
        SCOPED_TRACE(sample.name);
        for (const AcDb::FilerType type : {AcDb::kFileFiler, AcDb::kBagFiler}) {
            const EntityPtr copy = throughGroups(*sample.entity, type);
            EXPECT_EQ(described(*copy, type), described(*sample.entity, type));
            const EntityPtr again = throughGroups(*copy, type);
            EXPECT_EQ(described(*again, type), described(*copy, type));
        }
    }
}

// Programs leave the markers out.
TEST_F(EntityClassesTest, GroupsWithoutMarkersDo) {
    for (const EntitySample& sample : samples(false)) {
        // One code stands for several things in it.
        if (sample.name.starts_with("arc dimension")) continue;
        SCOPED_TRACE(sample.name);
        const EntityPtr copy = throughGroups(*sample.entity, AcDb::kBagFiler, false);
        EXPECT_EQ(described(*copy), described(*sample.entity));
    }
}

TEST_F(EntityClassesTest, BoxesAddToWhatIsThere) {
    for (const EntitySample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        AcDbExtents box({-99, -98, -97}, {-96, -95, -94});
        const Acad::ErrorStatus status = sample.entity->getGeomExtents(box);
        EXPECT_EQ(status, isEndless(*sample.entity) ? Acad::eInvalidExtents : Acad::eOk);
        expectNear(box.minPoint(), {-99, -98, -97});
        if (status == Acad::eOk) {
            AcDbExtents own = extentsOf(*sample.entity);
            expectNear(box.maxPoint(), own.maxPoint());
        }
    }
}

TEST_F(EntityClassesTest, MovingMovesTheBox) {
    const AcGeVector3d offset(10, -20, 5);
    for (const EntitySample& sample : samples()) {
        if (isEndless(*sample.entity)) continue;
        SCOPED_TRACE(sample.name);
        const EntityPtr moved = copyOf(*sample.entity);
        ASSERT_EQ(moved->transformBy(AcGeMatrix3d::translation(offset)), Acad::eOk);
        const AcDbExtents before = extentsOf(*sample.entity);
        expectSameBox(extentsOf(*moved), {before.minPoint() + offset, before.maxPoint() + offset});
    }
}

// All grips at once, and all stretch points, move the whole.
TEST_F(EntityClassesTest, AllGripsMoveTheWhole) {
    const AcGeVector3d offset(3, 4, 0);
    for (const EntitySample& sample : sampleEntities(*database, true)) {
        if (isEndless(*sample.entity)) continue;
        SCOPED_TRACE(sample.name);
        const AcDbExtents before = extentsOf(*sample.entity);
        const AcDbExtents after(before.minPoint() + offset, before.maxPoint() + offset);
        const AcGePoint3dArray grips = gripsOf(*sample.entity);
        ASSERT_FALSE(grips.isEmpty());
        const EntityPtr gripped = copyOf(*sample.entity);
        ASSERT_EQ(gripped->moveGripPointsAt(allOf(grips), offset), Acad::eOk);
        expectSameBox(extentsOf(*gripped), after);
        AcGePoint3dArray points;
        ASSERT_EQ(sample.entity->getStretchPoints(points), Acad::eOk);
        ASSERT_FALSE(points.isEmpty());
        const EntityPtr stretched = copyOf(*sample.entity);
        ASSERT_EQ(stretched->moveStretchPointsAt(allOf(points), offset), Acad::eOk);
        expectSameBox(extentsOf(*stretched), after);
    }
}

TEST_F(EntityClassesTest, NoGripMovesNothing) {
    AcDbIntArray beyond;
    beyond.append(1000);
    for (const EntitySample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        const std::string before = described(*sample.entity);
        sample.entity->moveGripPointsAt({}, {1, 2, 3});
        sample.entity->moveStretchPointsAt({}, {1, 2, 3});
        EXPECT_EQ(described(*sample.entity), before);
        sample.entity->moveGripPointsAt(beyond, {1, 2, 3});  // no more than that it ends
    }
}

TEST_F(EntityClassesTest, MirroredTwiceTheyAreAsBefore) {
    const AcGeMatrix3d mirror = AcGeMatrix3d::mirroring({1, 0, 0}, {1, 0.5, 0});
    for (const EntitySample& sample : samples()) {
        if (AcDbOle2Frame::cast(sample.entity.get()) != nullptr) continue;
        SCOPED_TRACE(sample.name);
        const EntityPtr copy = copyOf(*sample.entity);
        ASSERT_EQ(copy->transformBy(mirror), Acad::eOk);
        ASSERT_EQ(copy->transformBy(mirror), Acad::eOk);
        if (isEndless(*copy)) continue;
        expectSameBox(extentsOf(*copy), extentsOf(*sample.entity), 1e-5);
    }
}

// An entity either takes a transform or stays as it is.
TEST_F(EntityClassesTest, UnevenScalesAreTakenOrRefused) {
    AcGeMatrix3d uneven;
    uneven.entry[0][0] = 2;
    uneven.entry[1][0] = 0.5;
    AcGeMatrix3d flat;
    flat.entry[0][0] = 0;
    for (const EntitySample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        for (const AcGeMatrix3d& matrix : {uneven, flat}) {
            const EntityPtr copy = copyOf(*sample.entity);
            const std::string before = described(*copy);
            if (copy->transformBy(matrix) == Acad::eOk) continue;
            EXPECT_EQ(described(*copy), before);
        }
    }
}

TEST_F(EntityClassesTest, SnapsLieInTheBox) {
    const AcGeMatrix3d view;
    for (const EntitySample& sample : samples()) {
        if (isEndless(*sample.entity)) continue;
        SCOPED_TRACE(sample.name);
        const AcDbExtents box = extentsOf(*sample.entity);
        for (const AcDb::OsnapMode mode : {AcDb::kOsModeEnd, AcDb::kOsModeMid, AcDb::kOsModeQuad,
                                           AcDb::kOsModeNode, AcDb::kOsModeNear}) {
            AcGePoint3dArray points;
            AcDbIntArray ids;
            EXPECT_EQ(sample.entity->getOsnapPoints(mode, 0, box.minPoint(), box.maxPoint(), view,
                                                    points, ids),
                      Acad::eOk);
            for (const AcGePoint3d& point : points) {
                AcDbExtents grown = box;
                grown.addPoint(point);
                // Quadrants may lie on the rest of an arc, text points beside what shows.
                if (AcDbCurve::cast(sample.entity.get()) == nullptr) continue;
                if (mode == AcDb::kOsModeQuad) continue;
                expectSameBox(grown, box);
            }
        }
    }
}

// What they are taken apart into reaches as far as they do.
TEST_F(EntityClassesTest, PartsCoverTheWhole) {
    int taken = 0;
    for (const EntitySample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        AcDbVoidPtrArray parts;
        if (sample.entity->explode(parts) != Acad::eOk) {
            EXPECT_TRUE(parts.isEmpty());
            continue;
        }
        ++taken;
        AcDbExtents whole;
        for (void* const each : parts) {
            const EntityPtr part(static_cast<AcDbEntity*>(each));
            part->getGeomExtents(whole);
        }
        // Lines of a hatch end at its boundary; polylines lose their widths.
        if (sample.name.starts_with("hatch") || sample.name.starts_with("polyline")) continue;
        // The box of a text is that of its lines, which its letters need not fill.
        const bool hasText = sample.name.find("text") != std::string::npos ||
                             sample.name.find("dimension") != std::string::npos;
        expectSameBox(whole, extentsOf(*sample.entity), hasText ? 0.4 : 1e-5);
    }
    EXPECT_GT(taken, 20);
}

// Lines through a curve meet it on both.
TEST_F(EntityClassesTest, MeetingsLieOnBoth) {
    int meetings = 0;
    for (const EntitySample& sample : samples()) {
        const auto* const curve = AcDbCurve::cast(sample.entity.get());
        if (curve == nullptr || isEndless(*curve)) continue;
        SCOPED_TRACE(sample.name);
        AcGePoint3d point;
        double end = 0;
        ASSERT_EQ(curve->getEndParam(end), Acad::eOk);
        double start = 0;
        curve->getStartParam(start);
        ASSERT_EQ(curve->getPointAtParam(start + (end - start) * 0.37, point), Acad::eOk);
        const AcDbLine line(point - AcGeVector3d(3, 5, 1), point + AcGeVector3d(3, 5, 1));
        AcGePoint3dArray points;
        ASSERT_EQ(curve->intersectWith(&line, AcDb::kOnBothOperands, points), Acad::eOk);
        EXPECT_FALSE(points.isEmpty());
        for (const AcGePoint3d& meeting : points) {
            ++meetings;
            for (const AcDbCurve* const each : {curve, static_cast<const AcDbCurve*>(&line)}) {
                AcGePoint3d nearest;
                ASSERT_EQ(each->getClosestPointTo(meeting, nearest), Acad::eOk);
                expectNear(nearest, meeting, 1e-6);
            }
        }
    }
    EXPECT_GT(meetings, 15);
}

// In the drawing a change is taken back whole, and a copy is the same but for its names.
TEST_F(EntityClassesTest, TransactionsTakeChangesBack) {
    for (EntitySample& sample : sampleEntities(*database, true)) {
        SCOPED_TRACE(sample.name);
        AcDbEntity* const entity = sample.entity.release();
        const AcDbObjectId id = append(entity);
        entity->close();
        const auto state = [&] {
            Opened<AcDbEntity> opened(id);
            AcDbExtents box;
            opened->getGeomExtents(box);
            return described(*opened.get()) + number(box.minPoint().x) + number(box.maxPoint().y);
        };
        const std::string before = state();
        transactions().startTransaction();
        Opened<AcDbEntity>(id, AcDb::kForWrite)
            ->transformBy(AcGeMatrix3d::scaling(2, {-7, -7, -7}));
        EXPECT_NE(state(), before);
        transactions().abortTransaction();
        EXPECT_EQ(state(), before);
    }
}

TEST_F(EntityClassesTest, CopiesGoToAnotherDrawing) {
    AcDbDatabase other;
    for (EntitySample& sample : sampleEntities(*database, true)) {
        SCOPED_TRACE(sample.name);
        AcDbEntity* const entity = sample.entity.release();
        const AcDbObjectId id = append(entity);
        entity->close();
        AcDbObjectIdArray ids;
        ids.append(id);
        AcDbIdMapping mapping;
        ASSERT_EQ(other.wblockCloneObjects(ids, other.modelSpaceId(), mapping, AcDb::kDrcIgnore),
                  Acad::eOk);
        const AcDbIdMapping::Pair* const pair = mapping.find(id);
        ASSERT_NE(pair, nullptr);
        Opened<AcDbEntity> copy(pair->value);
        ASSERT_TRUE(copy);
        EXPECT_EQ(copy->database(), &other);
        if (isEndless(*copy.get())) continue;
        expectSameBox(extentsOf(*copy.get()), extentsOf(*Opened<AcDbEntity>(id).get()), 1e-6);
    }
}

}  // namespace
}  // namespace sg::test
