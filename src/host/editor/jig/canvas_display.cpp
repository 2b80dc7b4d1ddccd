#include "host/editor/jig/canvas_display.h"

#include "platform/gi/draw.h"

namespace sg {

CanvasDisplay::CanvasDisplay(render::Canvas& canvas, uint32_t ground)
    : canvas_(canvas), ground_(ground) {}

CanvasDisplay::~CanvasDisplay() = default;

void CanvasDisplay::begin(AcDbDatabase& database) {
    database_ = &database;
    render::DisplaySettings settings = render::DisplaySettings::of(database);
    settings.ground = ground_;
    settings.isDragging = true;
    looks_ = std::make_unique<render::Looks>(database, ground_, render::LayerChoice());
    draw_ = std::make_unique<render::EntityDraw>(canvas_, *looks_, settings);
}

void CanvasDisplay::show(AcDbDatabase& database, AcGiDrawable& dragged) {
    if (database_ != &database) begin(database);
    draw_->geometry().draw(&dragged);
}

void CanvasDisplay::clear() {
    draw_.reset();
    looks_.reset();
    database_ = nullptr;
}

void CountingCanvas::line(const render::Look&, std::span<const AcGePoint3d> given, bool,
                          render::PatternRun) {
    ++lines;
    points += given.size();
}

void CountingCanvas::area(const render::Look&, std::span<const AcGePoint3d> given,
                          std::span<const uint32_t>, Rule) {
    ++areas;
    points += given.size();
}

void CountingCanvas::endless(const render::Look&, const AcGePoint3d&, const AcGeVector3d&, bool) {
    ++lines;
    points += 2;
}

}  // namespace sg
