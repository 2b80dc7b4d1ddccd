#include "host/editor/selection/select_entities.h"

#include <algorithm>
#include <set>

#include "base/text.h"
#include "host/editor/command_line_output.h"
#include "host/editor/system_variables.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/coordinate_systems.h"

namespace sg {
namespace {

struct RegionRow {
    const wchar_t* method;
    RegionMethod region;
    SelectedBy::Method how;
};
constexpr RegionRow kRegions[] = {
    {L"W", RegionMethod::window, SelectedBy::window},
    {L"C", RegionMethod::crossing, SelectedBy::crossing},
    {L"WP", RegionMethod::windowPolygon, SelectedBy::window},
    {L"CP", RegionMethod::crossingPolygon, SelectedBy::crossing},
    {L"F", RegionMethod::fence, SelectedBy::fence},
};

const RegionRow* regionNamed(std::wstring_view method) {
    for (const RegionRow& row : kRegions) {
        if (method == row.method) return &row;
    }
    return nullptr;
}

SelectedBy::Method howOf(RegionMethod region) {
    for (const RegionRow& row : kRegions) {
        if (row.region == region) return row.how;
    }
    return SelectedBy::other;
}

constexpr const wchar_t* kMethods[] = {L"",  L"W", L"C", L"WP", L"CP", L"F",  L"L",
                                       L"P", L"X", L"A", L"I",  L"G",  L"BOX"};

// The options at the prompt, by what must be typed of each.
const Keywords& options() {
    static const Keywords keywords(
        L"Window Crossing WPolygon CPolygon Fence Last Previous ALL Group Add Remove BOX SIngle "
        L"Multiple AUto");
    return keywords;
}

constexpr const wchar_t* kInvalid =
    L"*Invalid selection*\nExpects a point or Window/Last/Crossing/BOX/ALL/Fence/WPolygon/"
    L"CPolygon/Group/Add/Remove/Multiple/Previous/AUto/SIngle\n";

bool picksGroups(const SystemVariables& variables) {
    const auto style = variables.get(L"PICKSTYLE");
    const auto* const number = style ? std::get_if<int16_t>(&*style) : nullptr;
    return number != nullptr && (*number & 1) != 0;
}

// A box from left to right takes what is inside, one from right to left what it touches.
RegionMethod boxMethod(const AcDbDatabase& database, const AcGePoint3d& first,
                       const AcGePoint3d& second) {
    const AcGeMatrix3d toDisplay =
        model::displayToWorld(database).inverse() * model::userToWorld(database);
    return (toDisplay * (second - first)).x < 0 ? RegionMethod::crossing : RegionMethod::window;
}

}  // namespace

std::optional<SelectionMode> SelectionMode::parse(std::wstring_view text) {
    SelectionMode mode;
    const std::wstring upper = upperCased(text);
    for (size_t at = 0; at < upper.size(); ++at) {
        const wchar_t c = upper[at];
        if (c == L'_' || c == L'+' || isBlank(c)) continue;
        if (c == L'.') {
            mode.onlyPoints = true;
        } else if (c == L':') {
            if (++at == upper.size()) return std::nullopt;
            mode.single = mode.single || upper[at] == L'S';
            mode.everything = mode.everything || upper[at] == L'E';
            mode.unlockedOnly = mode.unlockedOnly || upper[at] == L'L';
            mode.hasPrompts = mode.hasPrompts || upper[at] == L'$';
            mode.hasKeywords = mode.hasKeywords || upper[at] == L'K';
        } else {
            mode.method += c;
        }
    }
    if (mode.method == L"ALL") mode.method = L"A";
    const bool known =
        std::find(std::begin(kMethods), std::end(kMethods), mode.method) != std::end(kMethods);
    return known ? std::optional(mode) : std::nullopt;
}

std::vector<AcGePoint3d> EntitySelector::inWorld(const std::vector<AcGePoint3d>& points) const {
    const AcGeMatrix3d matrix = model::userToWorld(place_.database);
    std::vector<AcGePoint3d> moved;
    for (const AcGePoint3d& point : points)
        moved.push_back(matrix * point);
    return moved;
}

DrawingSelection::Ids EntitySelector::kept(const Request& request, const Ids& found) {
    Ids ids;
    for (const AcDbObjectId id : found) {
        const auto* const entity = model::peek<AcDbEntity>(id);
        if (entity == nullptr || entity->isErased()) continue;
        if (request.mode.unlockedOnly && DrawingSelection::isOnLockedLayer(id)) continue;
        if (filter_.isEmpty() || filter_.takes(*entity)) ids.push_back(id);
    }
    return ids;
}

SelectionOutcome EntitySelector::select(const Request& request, SelectionSet& set) {
    const bool asks = request.mode.method.empty() && request.points.empty();
    const SelectionOutcome outcome = !asks                       ? selectDirectly(request, set)
                                     : takeImplied(request, set) ? SelectionOutcome::found
                                                                 : ask(request, set);
    if (outcome != SelectionOutcome::found && outcome != SelectionOutcome::nothing) return outcome;
    if (set.size() == 0) return SelectionOutcome::nothing;
    if (request.mode.method != L"X") place_.selection.setPrevious(set.ids());
    return SelectionOutcome::found;
}

bool EntitySelector::takeImplied(const Request& request, SelectionSet& set) {
    const auto picksFirst = place_.variables.get(L"PICKFIRST");
    const auto* const number = picksFirst ? std::get_if<int16_t>(&*picksFirst) : nullptr;
    const Ids ids = place_.selection.implied();
    if (ids.empty() || (number != nullptr && *number == 0)) return false;
    place_.selection.setImplied({});
    change(request, ids, {}, set, true);
    return true;
}

// ---- Without asking -----------------------------------------------------------------------------

SelectionOutcome EntitySelector::selectDirectly(const Request& request, SelectionSet& set) {
    const std::wstring& method = request.mode.method;
    DrawingSelection& selection = place_.selection;
    const std::vector<AcGePoint3d>& points = request.points;
    SelectedBy how;
    Ids found;
    const RegionRow* row = regionNamed(method);
    if (method == L"BOX" && points.size() == 2) {
        const bool crosses =
            boxMethod(place_.database, points[0], points[1]) == RegionMethod::crossing;
        row = regionNamed(crosses ? L"C" : L"W");
    }
    if (row != nullptr) {
        const bool isBox =
            row->region == RegionMethod::window || row->region == RegionMethod::crossing;
        if (isBox ? points.size() != 2 : points.size() < (method == L"F" ? 2u : 3u)) {
            return SelectionOutcome::malformed;
        }
        found = selection.inRegion(row->region, points);
        how = {row->how, inWorld(points)};
    } else if (method.empty()) {
        found = selection.atPoint(points.front(), prompter_.pickReach());
        if (!request.mode.everything) found = kept(request, found);
        if (!request.mode.everything && found.size() > 1) found.resize(1);
        how = {SelectedBy::pick, inWorld({points.front()})};
    } else if (method == L"L") {
        if (const AcDbObjectId id = selection.last(); !id.isNull()) found.push_back(id);
    } else if (method == L"P") {
        found = selection.previous();
    } else if (method == L"X") {
        found = selection.everything();
    } else if (method == L"A") {
        found = selection.all();
    } else if (method == L"G") {
        selection.group(request.group, found);
    } else if (method == L"I") {
        found = selection.implied();
    } else {
        return SelectionOutcome::malformed;
    }
    set.add(kept(request, found), std::move(how));
    return SelectionOutcome::found;
}

// ---- Asking -------------------------------------------------------------------------------------

SelectionOutcome EntitySelector::ask(const Request& request, SelectionSet& set) {
    bool adding = true;
    for (;;) {
        switch (askOnce(request, set, adding)) {
            case Step::next:
                if (request.mode.single) return SelectionOutcome::found;
                break;
            case Step::end:
                return SelectionOutcome::found;
            case Step::cancelled:
                return SelectionOutcome::cancelled;
            case Step::keyword:
                return SelectionOutcome::keyword;
        }
    }
}

EntitySelector::Step EntitySelector::askOnce(const Request& request, SelectionSet& set,
                                             bool& adding) {
    Prompter::Pick pick;
    switch (
        prompter_.pick(adding ? request.addPrompt : request.removePrompt, request.keywords, pick)) {
        case PromptResult::null:
            return Step::end;
        case PromptResult::keyword:
            return pick.word.empty() ? Step::keyword : takeOption(request, pick.word, set, adding);
        case PromptResult::missed:
            place_.output.print(L"0 found\n");
            return Step::next;
        case PromptResult::value:
            break;
        default:
            return Step::cancelled;
    }
    if (pick.set != nullptr) {
        takeSet(request, *pick.set, set, adding);
        return Step::next;
    }
    if (pick.isPoint) {
        const bool isWindow = !request.mode.onlyPoints;
        return isWindow ? windowFrom(request, pick.at, set, adding) : Step::next;
    }
    Ids found;
    if (request.mode.everything && !pick.isNamed) {
        found = place_.selection.atPoint(pick.at, prompter_.pickReach());
    } else if (picksGroups(place_.variables)) {
        found = place_.selection.withGroups(pick.id);
    } else {
        found.push_back(pick.id);
    }
    change(request, found, {SelectedBy::pick, inWorld({pick.at})}, set, adding);
    return Step::next;
}

void EntitySelector::change(const Request& request, const Ids& found, SelectedBy how,
                            SelectionSet& set, bool adding) {
    const Ids ids = kept(request, found);
    const size_t before = set.size();
    size_t changed = 0;
    if (adding) {
        changed = set.add(ids, std::move(how));
    } else {
        for (const AcDbObjectId id : ids)
            changed += set.remove(id) ? 1 : 0;
    }
    tell(ids.size(), changed, before, set, adding);
}

// What another set holds, each found as it was found there.
void EntitySelector::takeSet(const Request& request, const SelectionSet& given, SelectionSet& set,
                             bool adding) {
    const size_t before = set.size();
    size_t found = 0, changed = 0;
    for (size_t at = 0; at < given.size();) {
        const size_t method = given.methodAt(at);
        Ids ids;
        for (; at < given.size() && given.methodAt(at) == method; ++at)
            ids.push_back(given.at(at));
        ids = kept(request, ids);
        found += ids.size();
        if (adding) {
            changed += set.add(ids, given.methods()[method]);
        } else {
            for (const AcDbObjectId id : ids)
                changed += set.remove(id) ? 1 : 0;
        }
    }
    tell(found, changed, before, set, adding);
}

void EntitySelector::tell(size_t found, size_t changed, size_t before, const SelectionSet& set,
                          bool adding) {
    std::wstring text = std::to_wstring(found) + L" found";
    if (!adding) text += L", " + std::to_wstring(changed) + L" removed";
    const size_t again = adding ? found - changed : 0;
    if (again > 0) text += L" (" + std::to_wstring(again) + L" duplicate)";
    if (before > 0) text += L", " + std::to_wstring(set.size()) + L" total";
    place_.output.print(text + L"\n");
}

EntitySelector::Step EntitySelector::windowFrom(const Request& request, const AcGePoint3d& first,
                                                SelectionSet& set, bool adding) {
    AcGePoint3d second;
    const PromptResult result = prompter_.corner(L"Specify opposite corner: ", first, second);
    if (result == PromptResult::cancelled) return Step::cancelled;
    if (result != PromptResult::value) return Step::next;
    const RegionMethod method = boxMethod(place_.database, first, second);
    const std::vector<AcGePoint3d> points{first, second};
    change(request, place_.selection.inRegion(method, points), {howOf(method), inWorld(points)},
           set, adding);
    return Step::next;
}

// False: cancelled.
bool EntitySelector::askPolygon(std::vector<AcGePoint3d>& points) {
    for (;;) {
        const bool isFirst = points.empty();
        AcGePoint3d point;
        const PromptResult result =
            prompter_.point(isFirst ? L"Specify first point: " : L"Specify endpoint of line: ",
                            isFirst ? Prompter::Point() : Prompter::Point(points.back()), point);
        if (result == PromptResult::cancelled) return false;
        if (result != PromptResult::value) return true;
        points.push_back(point);
    }
}

EntitySelector::Step EntitySelector::takeRegion(const Request& request, RegionMethod method,
                                                SelectionSet& set, bool adding) {
    std::vector<AcGePoint3d> points;
    if (method == RegionMethod::window || method == RegionMethod::crossing) {
        points.resize(2);
        if (prompter_.point(L"Specify first corner: ", {}, points[0]) != PromptResult::value ||
            prompter_.corner(L"Specify opposite corner: ", points[0], points[1]) !=
                PromptResult::value) {
            return Step::cancelled;
        }
    } else if (!askPolygon(points)) {
        return Step::cancelled;
    }
    change(request, place_.selection.inRegion(method, points), {howOf(method), inWorld(points)},
           set, adding);
    return Step::next;
}

EntitySelector::Step EntitySelector::takeOption(const Request& request, const std::wstring& word,
                                                SelectionSet& set, bool& adding) {
    struct Row {
        const wchar_t* option;
        RegionMethod method;
    };
    static constexpr Row kRows[] = {{L"Window", RegionMethod::window},
                                    {L"Crossing", RegionMethod::crossing},
                                    {L"WPolygon", RegionMethod::windowPolygon},
                                    {L"CPolygon", RegionMethod::crossingPolygon},
                                    {L"Fence", RegionMethod::fence}};
    const std::wstring option = options().find(word).value_or(L"");
    for (const Row& row : kRows) {
        if (option == row.option) return takeRegion(request, row.method, set, adding);
    }
    Ids found;
    if (option == L"Last") {
        if (const AcDbObjectId id = place_.selection.last(); !id.isNull()) found.push_back(id);
    } else if (option == L"Previous") {
        found = place_.selection.previous();
    } else if (option == L"ALL") {
        found = place_.selection.all();
    } else if (option == L"Group") {
        std::wstring name;
        if (prompter_.string(L"Enter group name: ", true, name) != PromptResult::value) {
            return Step::cancelled;
        }
        place_.selection.group(name, found);
    } else if (option == L"Add" || option == L"Remove") {
        adding = option == L"Add";
        return Step::next;
    } else if (option == L"BOX") {
        AcGePoint3d first;
        if (prompter_.point(L"Specify first corner: ", {}, first) != PromptResult::value) {
            return Step::cancelled;
        }
        return windowFrom(request, first, set, adding);
    } else if (option.empty()) {
        place_.output.print(kInvalid);
        return Step::next;
    } else {
        return Step::next;  // the ways of picking, which are all there is here
    }
    change(request, found, {}, set, adding);
    return Step::next;
}

}  // namespace sg
