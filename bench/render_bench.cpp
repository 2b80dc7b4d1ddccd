#include <benchmark/benchmark.h>

#include <memory>

#include "host/render/painter.h"
#include "host/render/pdf_writer.h"
#include "host/render/render.h"
#include "host/render/svg_writer.h"
#include "host/seam/host.h"
#include "platform/db/circle.h"
#include "platform/db/line.h"
#include "platform/db/text.h"

// Pictures of a drawing of 300,000 lines, circles and texts in seven colours.

namespace {

std::unique_ptr<AcDbDatabase> makeDrawing() {
    auto database = std::make_unique<AcDbDatabase>(true, true);
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, database->modelSpaceId(), AcDb::kForWrite) != Acad::eOk) return {};
    for (int64_t i = 0; i < 300000; ++i) {
        const AcGePoint3d at(static_cast<double>(i * 7919 % 10000),
                             static_cast<double>(i * 104729 % 7000), 0);
        std::unique_ptr<AcDbEntity> entity;
        if (i % 10 == 0) {
            entity = std::make_unique<AcDbText>(at, L"Text", AcDbObjectId(), 20);
        } else if (i % 3 == 0) {
            entity = std::make_unique<AcDbCircle>(at, AcGeVector3d::kZAxis,
                                                  static_cast<double>(5 + i % 30));
        } else {
            entity = std::make_unique<AcDbLine>(
                at, at + AcGeVector3d(static_cast<double>(i % 50), static_cast<double>(i % 31), 0));
        }
        entity->setColorIndex(static_cast<uint16_t>(1 + i % 7));
        if (space->appendAcDbEntity(entity.get()) == Acad::eOk) entity.release()->close();
    }
    space->close();
    return database;
}

sg::Host& host() {
    static sg::Host made([] {
        sg::HostOptions options;
        options.registryFile = L"/dev/null";
        options.locale = L"en-US";
        return options;
    }());
    return made;
}

const AcDbDatabase& drawing() {
    host();
    static const std::unique_ptr<AcDbDatabase> made = makeDrawing();
    return *made;
}

void shapes(benchmark::State& state) {
    const AcDbDatabase& database = drawing();
    for (auto _ : state)
        benchmark::DoNotOptimize(sg::render::render(database, {}));
}

template <class Write>
void writing(benchmark::State& state, const Write& write) {
    const sg::render::Rendering rendering = sg::render::render(drawing(), {});
    for (auto _ : state)
        benchmark::DoNotOptimize(write(rendering.picture));
}

void png(benchmark::State& state) {
    sg::render::Painter* const painter = sg::render::painter();
    if (painter == nullptr) {
        state.SkipWithError("the graphics library is not there");
        return;
    }
    writing(state, [&](const sg::render::Picture& picture) { return painter->png(picture); });
}
void svg(benchmark::State& state) {
    writing(state, sg::render::toSvg);
}
void pdf(benchmark::State& state) {
    writing(state, sg::render::toPdf);
}

}  // namespace

BENCHMARK(shapes)->Unit(benchmark::kMillisecond);
BENCHMARK(png)->Unit(benchmark::kMillisecond);
BENCHMARK(svg)->Unit(benchmark::kMillisecond);
BENCHMARK(pdf)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
