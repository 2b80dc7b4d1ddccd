#include <benchmark/benchmark.h>

#include "host/seam/host.h"
#include "leader/qn_leader.h"
#include "platform/ap/documents.h"
#include "platform/db/block_table.h"
#include "platform/db/database.h"

// Leaders in a drawing.
namespace {

constexpr int kLeaders = 100'000;

std::vector<AcDbObjectId> addLeaders(AcDbDatabase& database) {
    AcDbBlockTableRecord* space = nullptr;
    acdbOpenObject(space, database.modelSpaceId(), AcDb::kForWrite);
    std::vector<AcDbObjectId> ids;
    for (int i = 0; i < kLeaders; ++i) {
        const double x = i;
        auto* const leader = new QNLeader({x, 0, 0}, {x + 1, 1, 0}, {x + 3, 1, 0}, 0.5,
                                          AcDbObjectId(), AcDbObjectId());
        space->appendAcDbEntity(leader);
        ids.push_back(leader->objectId());
        leader->close();
    }
    space->close();
    return ids;
}

// One turn moves the end points of all leaders.
void moveByGrips(benchmark::State& state) {
    sg::Host host{sg::HostOptions{}};
    host.start();
    QNLeader::rxInit();
    acrxBuildClassHierarchy();
    const auto ids = addLeaders(*acDocManagerPtr()->curDocument()->database());
    AcDbIntArray grips;
    grips.append(2);
    for (auto _ : state) {
        for (const AcDbObjectId id : ids) {
            QNLeader* leader = nullptr;
            if (acdbOpenObject(leader, id, AcDb::kForWrite) != Acad::eOk) continue;
            leader->moveGripPointsAt(grips, {1, 2, 0});
            leader->close();
        }
    }
    state.SetItemsProcessed(state.iterations() * kLeaders);
}
BENCHMARK(moveByGrips)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
