#include <algorithm>
#include <cmath>
#include <cwchar>

#include "base/text.h"
#include "host/editor/commands/command.h"
#include "host/editor/commands/programs.h"
#include "host/editor/documents.h"
#include "host/editor/view/current_view.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/coordinate_systems.h"
#include "platform/db/block_table.h"

namespace sg::commands {
namespace {

using Reply = Command::Reply;
constexpr int kNoNull = Prompter::Allowed::noNull;
constexpr size_t kMostRemembered = 10;

void show(Command& c, const CurrentView& view) {
    auto& views = c.document().memory.views;
    views.push_back(currentView(c.database()));
    if (views.size() > kMostRemembered) views.erase(views.begin());
    setCurrentView(c.database(), view);
}

AcGePoint2d onDisplay(Command& c, const AcGePoint3d& user) {
    const AcGePoint3d at = model::displayToWorld(c.database()).inverse() * c.world(user);
    return {at.x, at.y};
}

// The view that just holds a box of the display plane.
CurrentView around(const CurrentView& before, AcGePoint2d low, AcGePoint2d high) {
    CurrentView view = before;
    view.center = {(low.x + high.x) / 2, (low.y + high.y) / 2};
    const double height = std::max(high.y - low.y, (high.x - low.x) / before.aspect);
    if (height > 0) view.height = height;
    return view;
}

// A box of the display plane that grows.
struct Reach {
    AcGePoint2d low{1e300, 1e300}, high{-1e300, -1e300};

    bool isEmpty() const { return low.x > high.x; }
    void add(const AcGePoint3d& at) {
        low = {std::min(low.x, at.x), std::min(low.y, at.y)};
        high = {std::max(high.x, at.x), std::max(high.y, at.y)};
    }
    void add(const AcDbExtents& extents, const AcGeMatrix3d& toDisplay) {
        const AcGePoint3d &a = extents.minPoint(), &b = extents.maxPoint();
        for (int corner = 0; corner < 8; ++corner) {
            add(toDisplay * AcGePoint3d((corner & 1) != 0 ? a.x : b.x,
                                        (corner & 2) != 0 ? a.y : b.y,
                                        (corner & 4) != 0 ? a.z : b.z));
        }
    }
};

void addEntity(Reach& reach, AcDbObjectId id, const AcGeMatrix3d& toDisplay) {
    const auto* const entity = model::peek<AcDbEntity>(id);
    if (entity == nullptr || entity->isErased()) return;
    const model::Unguarded guard(*entity);
    const auto* const layer = model::peek<AcDbLayerTableRecord>(entity->layerId());
    AcDbExtents extents;
    if (layer != nullptr && layer->isFrozen()) return;
    if (entity->getGeomExtents(extents) == Acad::eOk && !extents.isEmpty()) {
        reach.add(extents, toDisplay);
    }
}

Reach drawingReach(Command& c) {
    Reach reach;
    const AcGeMatrix3d toDisplay = model::displayToWorld(c.database()).inverse();
    const auto* const space = model::peek<AcDbBlockTableRecord>(c.database().currentSpaceId());
    if (space == nullptr) return reach;
    for (const AcDbObjectId id : space->entityIds())
        addEntity(reach, id, toDisplay);
    return reach;
}

void zoomExtents(Command& c, bool withLimits) {
    Reach reach = drawingReach(c);
    if (withLimits || reach.isEmpty()) {
        for (const wchar_t* const name : {L"LIMMIN", L"LIMMAX"}) {
            const auto value = c.variables().get(name);
            if (const auto* const at = std::get_if<std::array<double, 2>>(&*value)) {
                const AcGePoint3d world((*at)[0], (*at)[1], 0);
                reach.add(model::displayToWorld(c.database()).inverse() * world);
            }
        }
    }
    show(c, around(currentView(c.database()), reach.low, reach.high));
}

// "2x" is a factor of the view that is shown, "2xp" of the paper, "2" of the limits.
bool zoomByFactor(Command& c, std::wstring_view text) {
    const std::wstring typed(trimmed(text));
    wchar_t* end = nullptr;
    const double factor = std::wcstod(typed.c_str(), &end);
    const std::wstring unit = lowerCased(std::wstring_view(end));
    const bool isFactor = unit.empty() || unit == L"x" || unit == L"xp";
    if (end == typed.c_str() || !isFactor || !(factor > 0)) return false;
    CurrentView view = currentView(c.database());
    if (unit == L"x") {
        view.height /= factor;
    } else {
        const auto low = c.variables().get(L"LIMMIN"), high = c.variables().get(L"LIMMAX");
        using Point2 = std::array<double, 2>;
        const double height = std::get<Point2>(*high)[1] - std::get<Point2>(*low)[1];
        view.height = (height > 0 ? height : view.height) / factor;
    }
    show(c, view);
    return true;
}

void zoomCenter(Command& c) {
    CurrentView view = currentView(c.database());
    AcGePoint3d center;
    if (c.point({L"Specify center point: "}, center) == Reply::value) {
        view.center = onDisplay(c, center);
    }
    const std::wstring typed =
        c.word(L"Enter magnification or height <" + c.lengthText(view.height) + L">: ");
    wchar_t* end = nullptr;
    const double number = std::wcstod(typed.c_str(), &end);
    if (number > 0) view.height = lowerCased(end) == L"x" ? view.height / number : number;
    show(c, view);
}

void zoomObjects(Command& c) {
    Reach reach;
    const AcGeMatrix3d toDisplay = model::displayToWorld(c.database()).inverse();
    for (const AcDbObjectId id : c.select().ids())
        addEntity(reach, id, toDisplay);
    if (!reach.isEmpty()) show(c, around(currentView(c.database()), reach.low, reach.high));
}

void zoomWindow(Command& c, const AcGePoint3d& first) {
    AcGePoint3d second;
    c.corner({L"Specify opposite corner: ", first, kNoNull}, second);
    Reach reach;
    const AcGePoint2d a = onDisplay(c, first), b = onDisplay(c, second);
    reach.add({a.x, a.y, 0});
    reach.add({b.x, b.y, 0});
    show(c, around(currentView(c.database()), reach.low, reach.high));
}

void zoomPrevious(Command& c) {
    auto& views = c.document().memory.views;
    if (views.empty()) {
        c.print(L"No previous view saved.");
        return;
    }
    setCurrentView(c.database(), views.back());
    views.pop_back();
}

}  // namespace

void zoom(Command& c) {
    AcGePoint3d first;
    for (;;) {
        const Reply reply =
            c.point({L"Specify corner of window, enter a scale factor (nX or nXP), or "
                     L"[All/Center/Extents/Previous/Scale/Window/Object] <real time>: ",
                     std::nullopt, Prompter::Allowed::anyText},
                    first);
        if (reply == Reply::enter) return;
        if (reply == Reply::value) return zoomWindow(c, first);
        if (c.is(L"All")) return zoomExtents(c, true);
        if (c.is(L"Extents")) return zoomExtents(c, false);
        if (c.is(L"Center")) return zoomCenter(c);
        if (c.is(L"Previous")) return zoomPrevious(c);
        if (c.is(L"Object")) return zoomObjects(c);
        if (c.is(L"Window")) {
            return zoomWindow(c, c.needPoint({L"Specify first corner: "}));
        }
        const std::wstring factor =
            c.is(L"Scale") ? c.word(L"Enter a scale factor (nX or nXP): ") : c.keyword();
        if (zoomByFactor(c, factor)) return;
        c.print(L"Requires a scale factor, a point or an option keyword.");
    }
}

void regenerate(Command& c) {
    c.print(L"Regenerating model.");
}

void redraw(Command&) {}

}  // namespace sg::commands
