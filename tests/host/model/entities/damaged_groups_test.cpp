#include <limits>
#include <random>

#include "host/model/entities/entity_fixture.h"
#include "host/model/entities/sample_entities.h"

namespace sg::test {
namespace {

class DamagedGroupsTest : public EntityTest {
  protected:
    using Groups = std::vector<resbuf*>;

    double strange() {
        static constexpr double kValues[] = {0,
                                             -1,
                                             1e-300,
                                             1e300,
                                             -1e300,
                                             1e9,
                                             -1e9,
                                             1e-12,
                                             0.5,
                                             std::numeric_limits<double>::infinity(),
                                             std::numeric_limits<double>::quiet_NaN()};
        return kValues[std::uniform_int_distribution<size_t>(0, std::size(kValues) - 1)(engine_)];
    }
    size_t below(size_t count) {
        return std::uniform_int_distribution<size_t>(0, count - 1)(engine_);
    }

    void damage(Groups& groups) {
        const size_t at = below(groups.size());
        resbuf& group = *groups[at];
        switch (below(4)) {
            case 0:
                if (group.restype != 100) groups.erase(groups.begin() + static_cast<ptrdiff_t>(at));
                break;
            case 1:
                groups.insert(groups.begin() + static_cast<ptrdiff_t>(below(groups.size())),
                              &group);
                break;
            case 2:
                std::swap(groups[at], groups[below(groups.size())]);
                break;
            default:
                alter(group);
        }
    }

    void alter(resbuf& group) {
        switch (acdbGroupCodeToType(group.restype)) {
            case RTREAL:
                group.resval.rreal = strange();
                break;
            case RT3DPOINT:
                group.resval.rpoint[below(3)] = strange();
                break;
            case RTSHORT:
                group.resval.rint = static_cast<int16_t>(below(65536) - 32768);
                break;
            case RTLONG:
                group.resval.rlong = static_cast<int32_t>(below(1u << 31));
                break;
            default:
                break;
        }
    }

    // Reads the groups and asks for everything.
    static void use(AcDbEntity& entity) {
        AcDbExtents box;
        entity.getGeomExtents(box);
        AcGePoint3dArray points;
        AcDbIntArray modes, ids;
        entity.getGripPoints(points, modes, ids);
        entity.getOsnapPoints(AcDb::kOsModeEnd, 0, {}, {}, {}, points, ids);
        AcDbVoidPtrArray parts;
        entity.explode(parts);
        for (void* const part : parts)
            delete static_cast<AcDbEntity*>(part);
        entity.transformBy(AcGeMatrix3d::scaling(-2));
        entity.moveGripPointsAt({}, {1, 1, 1});
    }

    std::mt19937 engine_{17};
};

// Whatever a list holds, it is read or refused, and what came of it can be used.
TEST_F(DamagedGroupsTest, DoNoHarm) {
    size_t read = 0;
    for (const EntitySample& sample : sampleEntities(*database, false)) {
        // Text is laid out character by character in any size.
        SCOPED_TRACE(sample.name);
        for (int round = 0; round < 60; ++round) {
            model::ListWriter writer(database.get());
            ASSERT_EQ(sample.entity->dxfOutFields(&writer), Acad::eOk);
            resbuf* const list = writer.take();
            Groups groups;
            for (resbuf* group = list; group != nullptr; group = group->rbnext)
                groups.push_back(group);
            for (size_t i = below(4) + 1; i-- > 0;)
                damage(groups);
            std::vector<resbuf> damaged;
            for (const resbuf* const group : groups)
                damaged.push_back(*group);
            for (size_t i = 0; i + 1 < damaged.size(); ++i)
                damaged[i].rbnext = &damaged[i + 1];
            damaged.back().rbnext = nullptr;
            const EntityPtr copy = emptyLike(*sample.entity);
            model::ListReader reader(damaged.data(), database.get());
            if (copy->dxfInFields(&reader) == Acad::eOk) {
                ++read;
                use(*copy);
            }
            acutRelRb(list);
        }
    }
    EXPECT_GT(read, 500u);
}

}  // namespace
}  // namespace sg::test
