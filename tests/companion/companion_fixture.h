#pragma once

#include <memory>
#include <vector>

#include "companion/hvac_solid.h"
#include "companion/read_shape.h"
#include "host/model/core/memory_filers.h"
#include "host/seam/host_fixture.h"
#include "platform/db/exact_shape.h"
#include "platform/rx/rxclass.h"

namespace sg::test {

inline AcGeMatrix3d turnAndMove(double angle, const AcGeVector3d& axis, const AcGeVector3d& move) {
    return AcGeMatrix3d::translation(move) * AcGeMatrix3d::rotation(angle, axis);
}

// A frame as operations take it.
struct TestFrame {
    AcGeVector3d axes[3];

    TestFrame() : axes{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}} {}
    explicit TestFrame(const AcGeMatrix3d& matrix) : TestFrame() {
        for (AcGeVector3d& axis : axes)
            axis = matrix * axis;
    }
    const AcGeVector3d* get() const { return axes; }
    const AcGeVector3d& x() const { return axes[0]; }
    const AcGeVector3d& y() const { return axes[1]; }
    const AcGeVector3d& z() const { return axes[2]; }
};

// Directions in the world's plane.
inline TestFrame flatFrame(double degrees) {
    return TestFrame(AcGeMatrix3d::rotation(degrees * M_PI / 180, AcGeVector3d::kZAxis));
}

// A test with a host and the class of solids.
class CompanionTest : public HostTest {
  protected:
    using HvacSolid = companion::HvacSolid;

    CompanionTest() {
        make();
        HvacSolid::rxInit();
        acrxBuildClassHierarchy();
    }
    ~CompanionTest() override {
        HvacSolid::rxTerm();
        stop();
    }

    static std::unique_ptr<HvacSolid> newSolid() { return std::make_unique<HvacSolid>(); }

    // The solid as it is when it has been filed out and in.
    static std::unique_ptr<HvacSolid> reopened(const HvacSolid& solid) {
        std::vector<uint8_t> bytes;
        model::MemoryWriter writer(bytes, AcDb::kFileFiler, nullptr);
        EXPECT_EQ(solid.dwgOutFields(&writer), Acad::eOk);
        auto opened = newSolid();
        model::MemoryReader reader(bytes, AcDb::kFileFiler, nullptr);
        EXPECT_EQ(opened->dwgInFields(&reader), Acad::eOk);
        EXPECT_TRUE(reader.rest().empty());
        return opened;
    }
    // What there is of it in the exact shape of the reopened solid.
    static ReadShape shapeOf(const HvacSolid& solid) {
        const auto opened = reopened(solid);
        auto* const shapes =
            static_cast<sgExactShapePE*>(opened->isA()->queryX(sgExactShapePE::desc()));
        std::string bytes;
        if (shapes == nullptr || !shapes->exactShape(opened.get(), bytes)) return {};
        return readShape(bytes);
    }
};

}  // namespace sg::test
