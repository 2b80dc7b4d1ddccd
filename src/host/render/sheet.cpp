#include "host/render/sheet.h"

#include <algorithm>

#include "host/model/core/object_access.h"
#include "host/model/tables/layout.h"
#include "platform/db/block_table.h"
#include "platform/db/dictionary.h"

namespace sg::render {
namespace {

constexpr double kInch = 25.4;
constexpr int32_t kInches = 0;

std::vector<const AcDbViewport*> viewportsOf(AcDbObjectId sheet) {
    std::vector<const AcDbViewport*> found;
    const auto* const block = model::peek<AcDbBlockTableRecord>(sheet);
    if (block == nullptr) return found;
    for (const AcDbObjectId id : block->entityIds()) {
        const auto* const viewport = model::peek<AcDbViewport>(id);
        if (viewport != nullptr && !viewport->isErased()) found.push_back(viewport);
    }
    return found;
}

}  // namespace

std::vector<const AcDbLayout*> layoutsOf(const AcDbDatabase& database) {
    std::vector<const AcDbLayout*> layouts;
    const auto* const dictionary = model::peek<AcDbDictionary>(database.layoutDictionaryId());
    if (dictionary == nullptr) return layouts;
    const model::Unguarded open(*dictionary);
    for (auto each = dictionary->newIterator(); !each->done(); each->next()) {
        const auto* const layout = model::peek<AcDbLayout>(each->objectId());
        if (layout != nullptr && !layout->isErased()) layouts.push_back(layout);
    }
    std::stable_sort(layouts.begin(), layouts.end(), [](const auto* a, const auto* b) {
        return a->getTabOrder() < b->getTabOrder();
    });
    return layouts;
}

// Paper that lies across has its sides changed over. The corner of what can be printed is the
// origin.
std::optional<Paper> paperOf(const AcDbLayout& layout) {
    const model::RecordFields& plot = layout.plotFields();
    double width = plot.get<double>(44);
    double height = plot.get<double>(45);
    if (!(width > 1) || !(height > 1)) return std::nullopt;
    double left = plot.get<double>(40);
    double bottom = plot.get<double>(41);
    if (plot.get<int32_t>(73) % 2 != 0) {
        std::swap(width, height);
        std::swap(left, bottom);
    }
    const double onPaper = plot.get<double>(142);
    const double drawn = plot.get<double>(143);
    Paper paper;
    paper.millimetresPerUnit = plot.get<int32_t>(72) == kInches ? kInch : 1;
    if (onPaper > 0 && drawn > 0) paper.millimetresPerUnit *= onPaper / drawn;
    const double x = -(left + plot.get<double>(46)) / paper.millimetresPerUnit;
    const double y = -(bottom + plot.get<double>(47)) / paper.millimetresPerUnit;
    paper.box.add(x, y);
    paper.box.add(x + width / paper.millimetresPerUnit, y + height / paper.millimetresPerUnit);
    return paper;
}

AcDbObjectId ownWindowOf(AcDbObjectId sheet) {
    for (const AcDbViewport* viewport : viewportsOf(sheet)) {
        if (viewport->sheetNumber() == 1) return viewport->objectId();
    }
    return {};
}

std::vector<const AcDbViewport*> windowsOf(AcDbObjectId sheet) {
    std::vector<const AcDbViewport*> windows = viewportsOf(sheet);
    const AcDbObjectId own = ownWindowOf(sheet);
    std::erase_if(windows, [&](const AcDbViewport* window) {
        return window->objectId() == own || !window->isOn() || !(window->width() > 0) ||
               !(window->height() > 0) || !(window->viewHeight() > 0);
    });
    return windows;
}

}  // namespace sg::render
