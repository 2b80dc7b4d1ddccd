#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "companion/hvac_solid.h"
#include "host/render/render.h"
#include "host/seam/host.h"
#include "platform/ap/documents.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"
#include "platform/rx/rxclass.h"

// Fittings from the first operation to the entity in the drawing, and drawings full of them.
namespace {

using sg::companion::HvacSolid;

struct Frame {
    AcGeVector3d axes[3];
    explicit Frame(double degrees) {
        const double angle = degrees * M_PI / 180;
        axes[0] = {std::cos(angle), std::sin(angle), 0};
        axes[1] = {-std::sin(angle), std::cos(angle), 0};
        axes[2] = {0, 0, 1};
    }
};

class Drawing {
  public:
    Drawing() {
        host_.start();
        HvacSolid::rxInit();
        acrxBuildClassHierarchy();
    }

    AcDbDatabase& database() { return *acDocManagerPtr()->curDocument()->database(); }
    void append(std::unique_ptr<HvacSolid> solid) {
        AcDbBlockTableRecord* space = nullptr;
        acdbOpenObject(space, database().modelSpaceId(), AcDb::kForWrite);
        space->appendAcDbEntity(solid.get());
        solid.release()->close();
        space->close();
    }

  private:
    sg::Host host_{sg::HostOptions{}};
};

bool addStraight(HvacSolid& solid, const AcGePoint3d& head, bool isRectangular) {
    static const Frame along(0);
    return solid.addTransition(head, isRectangular, 12, isRectangular ? 8 : 12,
                               head + along.axes[0] * 40, isRectangular, 12, isRectangular ? 8 : 12,
                               along.axes, along.axes, 0);
}

bool addElbow(HvacSolid& solid, bool isSquare, bool isRectangular) {
    static const Frame in(0), out(90);
    const double height = isRectangular ? 8 : 12;
    AcGePoint3d head(-40, 0, 0), tail(0, 40, 0);
    if (!isSquare) {
        return solid.addRadiusElbow(head, 12, height, 0.5, 0.5, tail, 12, height, in.axes, out.axes,
                                    isRectangular, 1.5, true, 0, true);
    }
    AModeler::Point3d a[8], b[8];
    AcGePoint3d c[8];
    return solid.addSquareElbowPrep(head, 12, height, tail, 12, height, in.axes, out.axes,
                                    isRectangular, a, b, c, true, 3) &&
           solid.addSquareElbow(head, 12, height, tail, 12, height, in.axes, out.axes,
                                isRectangular, a, b, c, 0);
}

bool addTakeoff(HvacSolid& solid, bool isRectangular) {
    static const Frame main(0), branch(45);
    const double height = isRectangular ? 8 : 12;
    if (!solid.addTransition({-20, 0, 0}, isRectangular, 12, height, {20, 0, 0}, isRectangular, 12,
                             height, main.axes, main.axes, 0) ||
        !solid.addTransition({0, 0, 0}, isRectangular, 7.99, 7.999, {15, 15, 0}, isRectangular,
                             7.99, 7.999, branch.axes, branch.axes, 0)) {
        return false;
    }
    solid.sliceLast({-20, 0, 0}, {-20, 1, 0}, {-20, 0, 1}, {20, 0, 0});
    solid.sliceLast({20, 0, 0}, {20, 1, 0}, {20, 0, 1}, {-20, 0, 0});
    return true;
}

bool addWye(HvacSolid& solid, bool isRectangular) {
    static Frame head(0), right(-45), left(45);
    const double height = isRectangular ? 8 : 12;
    AcGePoint3d ends[] = {{-50, 0, 0}, {30, -30, 0}, {30, 30, 0}};
    AcGePoint3d junction;
    AModeler::Point3d a[3][8];
    AcGePoint3d c[3][8];
    return solid.addWyePrep(ends[0], 12, height, ends[1], 12, height, ends[2], 12, height,
                            head.axes, right.axes, left.axes, isRectangular, a[0], a[1], a[2], c[0],
                            c[1], c[2], true, 3) &&
           solid.addWye(ends[0], 12, height, ends[1], 12, height, ends[2], 12, height, junction,
                        head.axes, right.axes, left.axes, isRectangular, a[0], a[1], a[2], c[0],
                        c[1], c[2], 0);
}

template <class Add>
void build(benchmark::State& state, const Add& add) {
    Drawing drawing;
    for (auto _ : state) {
        auto solid = std::make_unique<HvacSolid>();
        if (!add(*solid, state.range(0) != 0)) state.SkipWithError("not built");
        drawing.append(std::move(solid));
    }
}
// Their argument: 1 for rectangles, 0 for circles.
void straight(benchmark::State& state) {
    build(state, [](HvacSolid& solid, bool is) { return addStraight(solid, {}, is); });
}
void radiusElbow(benchmark::State& state) {
    build(state, [](HvacSolid& solid, bool is) { return addElbow(solid, false, is); });
}
void squareElbow(benchmark::State& state) {
    build(state, [](HvacSolid& solid, bool is) { return addElbow(solid, true, is); });
}
void takeoff(benchmark::State& state) {
    build(state, addTakeoff);
}
void wye(benchmark::State& state) {
    build(state, addWye);
}
BENCHMARK(straight)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(radiusElbow)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(squareElbow)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(takeoff)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(wye)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

constexpr int kPieces = 10'000;

std::unique_ptr<Drawing> withPieces() {
    auto drawing = std::make_unique<Drawing>();
    for (int i = 0; i < kPieces; ++i) {
        auto solid = std::make_unique<HvacSolid>();
        addStraight(*solid, {i % 100 * 50.0, i / 100 * 20.0, 0}, i % 2 == 0);
        drawing->append(std::move(solid));
    }
    return drawing;
}

std::unique_ptr<Drawing> pieces;  // kept for those that draw them

void tenThousandPieces(benchmark::State& state) {
    for (auto _ : state)
        pieces = withPieces();
}
BENCHMARK(tenThousandPieces)->Unit(benchmark::kMillisecond)->Iterations(1);

// The first picture makes the facets, the next ones have them: so the order is of weight. The
// argument: 0 from above, 2 isometric.
void drawPieces(benchmark::State& state) {
    if (!pieces) pieces = withPieces();
    sg::render::Options options;
    options.view = static_cast<sg::render::View>(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(sg::render::render(pieces->database(), options));
}
BENCHMARK(drawPieces)
    ->Name("drawPiecesFirst")
    ->Arg(0)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(drawPieces)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    pieces.reset();  // before what it stands on
    return 0;
}
