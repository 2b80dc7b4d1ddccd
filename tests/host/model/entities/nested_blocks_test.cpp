#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "host/model/model_fixture.h"
#include "platform/db/block_reference.h"
#include "platform/db/line.h"

namespace sg::test {
namespace {

class NestedBlocksTest : public ModelTest {
  protected:
    void put(AcDbObjectId block, AcDbEntity* entity) {
        append(entity, block);
        entity->close();
    }

    // Blocks of which each shows the one before it twice, the second time moved by its width.
    AcDbObjectId doubled(int levels) {
        AcDbObjectId inner = addBlock(L"LEVEL0");
        put(inner, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 2, 0)));
        double width = 1;
        for (int level = 1; level <= levels; ++level, width *= 2) {
            const AcDbObjectId outer = addBlock((L"LEVEL" + std::to_wstring(level)).c_str());
            for (const double x : {0.0, width})
                put(outer, new AcDbBlockReference(AcGePoint3d(x, 0, 0), inner));
            inner = outer;
        }
        return inner;
    }
};

// Beyond a number of objects that can be drawn, the boxes of blocks are put together.
TEST_F(NestedBlocksTest, ExtentsOfBlocksWithinBlocksComeWithoutDrawingAll) {
    for (const int levels : {3, 17, 31}) {
        AcDbBlockReference reference(AcGePoint3d(10, 0, 0), doubled(levels));
        AcDbExtents extents;
        ASSERT_EQ(reference.getGeomExtents(extents), Acad::eOk) << levels;
        EXPECT_DOUBLE_EQ(extents.minPoint().x, 10) << levels;
        EXPECT_DOUBLE_EQ(extents.maxPoint().x, 10 + std::pow(2.0, levels)) << levels;
        EXPECT_DOUBLE_EQ(extents.maxPoint().y, 2) << levels;
        database = std::make_unique<AcDbDatabase>();
    }
}

}  // namespace
}  // namespace sg::test
