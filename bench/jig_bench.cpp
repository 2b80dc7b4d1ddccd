#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>

#include "host/editor/jig/canvas_display.h"
#include "host/editor/jig/drags.h"
#include "host/seam/host.h"
#include "jigs/multi_move_jig.h"
#include "jigs/multi_rotate_jig.h"
#include "platform/ap/documents.h"
#include "platform/db/block_reference.h"
#include "platform/db/block_table.h"
#include "platform/db/circle.h"
#include "platform/db/database.h"
#include "platform/db/line.h"
#include "platform/db/polyline.h"

// Steps of a drag of 1,000 entities: lines, circles, polylines, and references of a block of ten
// lines, as many of each.
namespace {

std::atomic<size_t> allocations{0};

}  // namespace

[[gnu::noinline]] void* operator new(size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}

namespace {

constexpr int kEntities = 1000;

AcDbObjectId addBlock(AcDbDatabase& database) {
    AcDbBlockTable* blocks = nullptr;
    database.getBlockTable(blocks, AcDb::kForWrite);
    auto* const block = new AcDbBlockTableRecord;
    block->setName(L"TAG");
    AcDbObjectId id;
    blocks->add(id, block);
    for (int i = 0; i < 10; ++i) {
        auto* const line = new AcDbLine(AcGePoint3d(0, i, 0), AcGePoint3d(10, i, 0));
        block->appendAcDbEntity(line);
        line->close();
    }
    block->close();
    blocks->close();
    return id;
}

AcDbEntity* makeEntity(int index, AcDbObjectId block) {
    const AcGePoint3d at(index % 40 * 20.0, index / 40 * 20.0, 0);
    switch (index % 4) {
        case 0:
            return new AcDbLine(at, at + AcGeVector3d(10, 5, 0));
        case 1:
            return new AcDbCircle(at, AcGeVector3d::kZAxis, 5);
        case 2: {
            auto* const polyline = new AcDbPolyline;
            for (unsigned int i = 0; i < 8; ++i)
                polyline->addVertexAt(i, {at.x + i, at.y + i % 2}, i % 2 * 0.5);
            return polyline;
        }
        default:
            return new AcDbBlockReference(at, block);
    }
}

AcDbVoidPtrArray makeEntities(AcDbObjectId block) {
    AcDbVoidPtrArray entities;
    for (int i = 0; i < kEntities; ++i)
        entities.append(makeEntity(i, block));
    return entities;
}

// A pointer that goes to and fro, and confirms after so many steps.
class Pointer : public sg::InputSource {
  public:
    int steps = 0;
    sg::Answer<sg::DragAnswer> drag(const sg::DragRequest&) override {
        const int left = steps--;
        sg::DragAnswer answer;
        answer.isConfirmed = left <= 1;
        answer.answer.kind = sg::PromptAnswer::Kind::point;
        answer.answer.point = AcGePoint3d(10 + left % 2 * 7, left % 3, 0);
        return sg::Answer<sg::DragAnswer>::of(std::move(answer));
    }
};

class Blank : public sg::DragDisplay {
  public:
    void show(AcDbDatabase&, AcGiDrawable&) override {}
    void clear() override {}
};

// One turn is one step. `allocations` are those of a step besides what a whole drag costs.
template <class Jig>
void step(benchmark::State& state, bool isDrawn) {
    sg::Host host{sg::HostOptions{}};
    host.start();
    const auto pointer = std::make_shared<Pointer>();
    host.setInput({pointer});
    Blank blank;
    sg::CountingCanvas canvas;
    canvas.setUnitsPerPixel(1);
    sg::CanvasDisplay drawn(canvas, 0);
    host.drags().setDisplay(isDrawn ? static_cast<sg::DragDisplay*>(&drawn) : &blank);
    Jig jig(L"", AcGePoint3d());
    jig.list().setEntityList(makeEntities(addBlock(*acDocManagerPtr()->curDocument()->database())));

    constexpr int kSteps = 100;
    int64_t made = 0;
    int64_t spent = 0;
    pointer->steps = 1;
    jig.run();
    while (state.KeepRunningBatch(kSteps)) {
        const size_t first = allocations;
        pointer->steps = 1;
        jig.run();
        const size_t second = allocations;
        pointer->steps = kSteps - 1;
        jig.run();
        spent += static_cast<int64_t>(allocations - second) - static_cast<int64_t>(second - first);
        made += kSteps - 2;
    }
    state.counters["allocations"] = static_cast<double>(spent) / static_cast<double>(made);
    state.SetItemsProcessed(state.iterations());
}

void moveStep(benchmark::State& state) {
    step<sg::MultiMoveJig>(state, false);
}
BENCHMARK(moveStep)->Unit(benchmark::kMicrosecond);

void rotateStep(benchmark::State& state) {
    step<sg::MultiRotateJig>(state, false);
}
BENCHMARK(rotateStep)->Unit(benchmark::kMicrosecond);

void moveStepDrawn(benchmark::State& state) {
    step<sg::MultiMoveJig>(state, true);
}
BENCHMARK(moveStepDrawn)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
