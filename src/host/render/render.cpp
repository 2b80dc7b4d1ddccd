#include "host/render/render.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "host/lisp/text/wildcard.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/header_variables.h"
#include "host/model/tables/layout.h"
#include "host/render/measuring_canvas.h"
#include "host/render/picture_canvas.h"
#include "host/render/shaded_canvas.h"
#include "host/render/sheet.h"
#include "host/render/window_outline.h"

namespace sg::render {
namespace {

constexpr double kMargin = 0.02;  // around the model, of the picture's size
constexpr double kScreenPixelsPerMillimetre = 96 / 25.4;

AcGeVector3d towardsEye(View view) {
    switch (view) {
        case View::front:
            return {0, -1, 0};
        case View::isometric:
            return {-1, -1, 1};
        default:
            return AcGeVector3d::kZAxis;
    }
}

LayerChoice layersOf(const AcDbDatabase& database, const Options& options) {
    LayerChoice choice;
    AcDbLayerTable* table = nullptr;
    if (options.layers.empty() || database.getLayerTable(table, AcDb::kForRead) != Acad::eOk) {
        return choice;
    }
    std::vector<std::wstring> names;
    for (auto each = table->newIterator(); !each->done(); each->step()) {
        const auto* const layer = model::peek<AcDbLayerTableRecord>(each->getRecordId());
        if (layer != nullptr) names.push_back(lowerCased(layer->name()));
    }
    table->close();
    for (const std::wstring& asked : options.layers) {
        const std::wstring folded = lowerCased(asked);
        if (std::none_of(names.begin(), names.end(), [&](const std::wstring& name) {
                return name == folded || wildcardMatch(name, folded);
            })) {
            throw NotInDrawing(L"no such layer: " + asked);
        }
        choice.names.push_back(folded);
    }
    return choice;
}

// What a rendering has from one draw.
void takeShortcomings(Rendering& rendering, const EntityDraw& draw) {
    for (const auto& [name, count] : draw.undrawn())
        rendering.undrawn[name] += count;
    if (draw.boxed() == 0) return;
    rendering.complaints.push_back(
        L"blocks within blocks hold too much to be drawn; references that show as boxes: " +
        std::to_wstring(draw.boxed()));
}

void takeShortcomings(Rendering& rendering, const ImageFiles& images) {
    rendering.complaints.insert(rendering.complaints.end(), images.complaints().begin(),
                                images.complaints().end());
}

ViewBox measure(Looks& looks, const DisplaySettings& settings, const AcGeMatrix3d& toView,
                AcDbObjectId block, const std::vector<AcDbObjectId>& except = {}) {
    MeasuringCanvas canvas(toView);
    EntityDraw(canvas, looks, settings).drawSpace(block, except);
    return canvas.box();
}

// What makes the box fill this share of the pixels.
double fit(const ViewBox& box, double width, double height, double share) {
    const double across = box.width() > 0 ? width * share / box.width() : HUGE_VAL;
    const double up = box.height() > 0 ? height * share / box.height() : HUGE_VAL;
    const double scale = std::min(across, up);
    return std::isfinite(scale) && scale > 0 ? scale : 1;
}

// ---- The model ----------------------------------------------------------------------------------

Rendering renderModel(const AcDbDatabase& database, const Options& options) {
    Rendering rendering;
    Picture& picture = rendering.picture;
    picture.width = options.width;
    picture.height = options.height;
    picture.ground = options.ground;
    Looks looks(database, options.ground, layersOf(database, options));
    DisplaySettings settings = DisplaySettings::of(database);
    settings.ground = options.ground;
    ImageFiles images(options.findImage, options.ground);
    if (options.findImage) settings.images = &images;
    const AcGeMatrix3d toView = worldToView(towardsEye(options.view));
    ViewBox box = options.window ? *options.window
                                 : measure(looks, settings, toView, database.modelSpaceId());
    if (box.isEmpty()) box.add(0, 0);

    const double share = options.window ? 1 : 1 - 2 * kMargin;
    const double scale = fit(box, picture.width, picture.height, share);
    settings.viewHeight = picture.height / scale;
    PictureView view;
    view.projection =
        Projection(toView, scale, box.center(), {picture.width / 2, picture.height / 2});
    view.box = {0, 0, picture.width, picture.height};
    PictureBuilder builder(picture);
    PictureCanvas canvas(builder, looks, {kScreenPixelsPerMillimetre, options.lineWeights}, view);
    const auto drawModel = [&](Canvas& target) {
        EntityDraw draw(target, looks, settings);
        draw.drawSpace(database.modelSpaceId());
        takeShortcomings(rendering, draw);
    };
    if (options.view == View::top) {
        drawModel(canvas);
    } else {
        const AcGeMatrix3d toWorld = toView.inverse();
        ShadedCanvas shaded(canvas, toWorld * AcGeVector3d::kZAxis, toWorld * AcGeVector3d::kYAxis);
        drawModel(shaded);
        shaded.finish();
    }
    takeShortcomings(rendering, images);
    return rendering;
}

// ---- Sheets -------------------------------------------------------------------------------------

// Draws a sheet and its windows into a picture.
class SheetRenderer {
  public:
    SheetRenderer(const AcDbDatabase& database, const Options& options, const AcDbLayout& layout)
        : database_(database),
          options_(options),
          layout_(layout),
          sheet_(layout.getBlockTableRecordId()),
          looks_(database, options.ground, plottable(layersOf(database, options))),
          settings_(DisplaySettings::of(database)),
          images_(options.findImage, options.ground),
          builder_(rendering_.picture) {
        settings_.ground = options.ground;
        if (options.findImage) settings_.images = &images_;
        if (const AcDbObjectId own = ownWindowOf(sheet_); !own.isNull()) leftOut_.push_back(own);
    }

    Rendering render() {
        layOut();
        for (const AcDbViewport* window : windowsOf(sheet_))
            drawWindow(*window);
        drawPaper();
        takeShortcomings(rendering_, images_);
        return std::move(rendering_);
    }

  private:
    static LayerChoice plottable(LayerChoice choice) {
        choice.onlyPlottable = true;
        return choice;
    }

    // The paper; without one, or where all stands beside it, what is drawn on it.
    void layOut() {
        const ViewBox drawn =
            measure(looks_, settings_, worldToView(AcGeVector3d::kZAxis), sheet_, leftOut_);
        ViewBox box = drawn;
        double millimetres = 1;
        if (const auto paper = paperOf(layout_)) {
            millimetres = paper->millimetresPerUnit;
            const ViewBox& sheet = paper->box;
            const bool isBeside =
                !drawn.isEmpty() && (drawn.high.x < sheet.low.x || drawn.low.x > sheet.high.x ||
                                     drawn.high.y < sheet.low.y || drawn.low.y > sheet.high.y);
            if (!isBeside) box = sheet;
        }
        if (box.isEmpty() || !(box.width() > 0) || !(box.height() > 0)) {
            const AcGePoint2d center = box.isEmpty() ? AcGePoint2d() : box.center();
            box.add(center.x - 1, center.y - 1);
            box.add(center.x + 1, center.y + 1);
        }
        Picture& picture = rendering_.picture;
        picture.ground = options_.ground;
        scale_ = options_.pixelsPerMillimetre > 0 ? options_.pixelsPerMillimetre * millimetres
                                                  : fit(box, options_.width, options_.height, 1);
        picture.width = std::max(1.0, std::round(box.width() * scale_));
        picture.height = std::max(1.0, std::round(box.height() * scale_));
        picture.pixelsPerMillimetre = scale_ / millimetres;
        onPaper_ = Projection(AcGeMatrix3d(), scale_, box.center(),
                              {picture.width / 2, picture.height / 2});
    }

    WeightScale weights() const {
        return {rendering_.picture.pixelsPerMillimetre, options_.lineWeights};
    }
    PixelBox pictureBox() const {
        return {0, 0, rendering_.picture.width, rendering_.picture.height};
    }

    void drawWindow(const AcDbViewport& window) {
        std::vector<AcGePoint2d> outline;
        for (const AcGePoint3d& corner : windowOutline(window, looks_, settings_))
            outline.push_back(onPaper_.at(corner));
        if (!window.clipEntityId().isNull()) leftOut_.push_back(window.objectId());

        AcDbObjectIdArray frozen;
        {
            const model::Unguarded open(window);
            window.getFrozenLayerList(frozen);
        }
        looks_.freezeAlso({frozen.begin(), frozen.end()});
        const double scale = scale_ * window.customScale();
        PictureView view;
        view.projection = Projection(
            worldToView(window.viewDirection(), window.viewTarget(), window.twistAngle()), scale,
            window.viewCenter(), onPaper_.at(window.centerPoint()));
        const PixelBox reach = boxOf(outline);
        const PixelBox all = pictureBox();
        view.box = {std::max(reach.left, all.left), std::max(reach.top, all.top),
                    std::min(reach.right, all.right), std::min(reach.bottom, all.bottom)};
        std::vector<PicturePoint> clip;
        for (const AcGePoint2d& p : outline)
            clip.push_back({static_cast<float>(p.x), static_cast<float>(p.y)});
        view.clip = builder_.clip(std::move(clip));
        const bool onPaper =
            model::DatabaseState::of(database_).header().get<int32_t>(L"PSLTSCALE") != 0;
        if (onPaper) view.pixelsPerPatternUnit = scale_;
        DisplaySettings settings = settings_;
        settings.viewHeight = window.viewHeight();
        PictureCanvas canvas(builder_, looks_, weights(), view);
        EntityDraw draw(canvas, looks_, settings);
        draw.drawSpace(database_.modelSpaceId());
        takeShortcomings(rendering_, draw);
        looks_.freezeAlso({});
    }

    void drawPaper() {
        PictureView view;
        view.projection = onPaper_;
        view.box = pictureBox();
        settings_.viewHeight = rendering_.picture.height / scale_;
        PictureCanvas canvas(builder_, looks_, weights(), view);
        EntityDraw draw(canvas, looks_, settings_);
        draw.drawSpace(sheet_, leftOut_);
        takeShortcomings(rendering_, draw);
    }

    const AcDbDatabase& database_;
    const Options& options_;
    const AcDbLayout& layout_;
    const AcDbObjectId sheet_;
    Looks looks_;
    DisplaySettings settings_;
    ImageFiles images_;
    Rendering rendering_;
    PictureBuilder builder_;
    std::vector<AcDbObjectId> leftOut_;  // windows without a frame of their own
    Projection onPaper_;                 // from the sheet to pixels
    double scale_ = 1;                   // pixels a unit of the sheet
};

}  // namespace

std::vector<std::wstring> sheetNames(const AcDbDatabase& database) {
    std::vector<std::wstring> names;
    for (const AcDbLayout* layout : layoutsOf(database)) {
        if (layout->getBlockTableRecordId() != database.modelSpaceId()) {
            names.push_back(layout->getLayoutName());
        }
    }
    return names;
}

Rendering render(const AcDbDatabase& database, const Options& options) {
    if (options.layout.empty() || equalIgnoringCase(options.layout, L"Model")) {
        return renderModel(database, options);
    }
    for (const AcDbLayout* layout : layoutsOf(database)) {
        if (equalIgnoringCase(layout->getLayoutName(), options.layout)) {
            return SheetRenderer(database, options, *layout).render();
        }
    }
    std::wstring text = L"no such layout: " + options.layout + L"; there are: Model";
    for (const std::wstring& name : sheetNames(database))
        text += L", " + name;
    throw NotInDrawing(text);
}

}  // namespace sg::render
