#include <fmt/xchar.h>

#include "base/text.h"
#include "host/editor/selection/select_entities.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/marshal.h"
#include "host/seam/entity_lists.h"
#include "host/seam/lisp_drawing.h"
#include "host/seam/lisp_functions.h"
#include "host/seam/lisp_points.h"
#include "host/seam/prompting.h"

// AutoLISP's functions on selection sets.

namespace sg {
namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ListBuilder;
using lisp::Value;

Value car(Value list) {
    return list.asCons()->car;
}
Value cdr(Value list) {
    return list.asCons()->cdr;
}

// ---- ssget --------------------------------------------------------------------------------------

bool isPointList(Value value) {
    return value.isCons() && isPoint(car(value));
}

[[noreturn]] void badList(Interpreter& in, const wchar_t* what) {
    in.fail(fmt::format(L"bad SSGET {}", what));
}

// What of (ssget [method] [point [point]] [points] [filter]) stands from `at` on. Answers the
// filter, or nil.
Value readPlaces(Interpreter& in, Args a, size_t at, EntitySelector::Request& request) {
    SelectionMode& mode = request.mode;
    if (mode.hasPrompts && at < a.size() && a[at].isCons() && car(a[at]).isString()) {
        request.addPrompt = in.str(car(a[at]));
        const Value rest = cdr(a[at++]);
        request.removePrompt = rest.isCons() ? in.str(car(rest)) : std::wstring();
    }
    if (mode.method == L"G" && at < a.size()) request.group = in.str(a[at++]);
    if (mode.hasKeywords && at < a.size() && a[at].isString()) {
        request.keywords = Keywords(in.str(a[at++]));
    }
    while (at < a.size() && isPoint(a[at]))
        request.points.push_back(pointArgument(in, a[at++]));
    if (at < a.size() && isPointList(a[at])) {
        for (Value rest = a[at++]; rest.isCons(); rest = cdr(rest))
            request.points.push_back(pointArgument(in, car(rest)));
    }
    if (at == a.size()) return Value::nil();
    if (at + 1 < a.size() || !a[at].isList()) in.badArgument(L"listp", a[at]);
    return a[at];
}

// (ssget [method] [point [point]] [points] [filter])
Value fnSsGet(Interpreter& in, Args a) {
    Document& document = requireDocument(in);
    Host& host = Host::the();
    EntitySelector::Request request;
    size_t at = 0;
    if (a.get(0).isString()) {
        const auto mode = SelectionMode::parse(in.text(a[at++]));
        if (!mode) badList(in, L"mode string");
        request.mode = *mode;
    } else if (a.size() > 0 && a[0].isNil()) {
        ++at;
    }
    const Value list = readPlaces(in, a, at, request);
    const lisp::ResbufList groups = list ? listToGroups(in, list) : nullptr;
    auto filter = SelectionFilter::parse(groups.get());
    if (!filter) badList(in, L"list");

    const Prompter::Place place = promptPlace(host, document);
    Prompter prompter(place, host.prompts().allowed);
    SelectionSet set;
    switch (EntitySelector(place, prompter, *filter).select(request, set)) {
        case SelectionOutcome::found:
            return lisp::pickSetValue(in, host.selectionSets().add(std::move(set)));
        case SelectionOutcome::nothing:
            return Value::nil();
        case SelectionOutcome::keyword:
            host.prompts().keyword = prompter.keyword();
            return in.string(prompter.keyword());
        case SelectionOutcome::cancelled:
            in.cancel();
        case SelectionOutcome::malformed:
            break;
    }
    badList(in, L"mode string");
}

// ---- Sets ---------------------------------------------------------------------------------------

uint64_t setName(Interpreter& in, Value value) {
    const lisp::PickSet* const set = lisp::asPickSet(value);
    if (set == nullptr) in.badArgument(L"lselsetp", value);
    return set->name;
}

// The set of a value. One that a module has freed is empty.
SelectionSet& setArgument(Interpreter& in, Value value) {
    static SelectionSet freed;
    SelectionSet* const set = Host::the().selectionSets().find(setName(in, value));
    if (set != nullptr) return *set;
    freed = {};
    return freed;
}

// (ssadd [name [set]])
Value fnSsAdd(Interpreter& in, Args a) {
    SelectionSets& sets = Host::the().selectionSets();
    AcDbObjectId id;
    if (a.get(0)) {
        id = entityArgument(in, a[0]);
        if (!id.isValid()) return Value::nil();
    }
    if (!a.get(1)) {
        SelectionSet made;
        if (!id.isNull()) made.add(id);
        return lisp::pickSetValue(in, sets.add(std::move(made)));
    }
    SelectionSet& set = setArgument(in, a[1]);
    if (!id.isNull()) set.add(id);
    return a[1];
}

// (ssdel name set): the set, or nil when the entity is not in it.
Value fnSsDel(Interpreter& in, Args a) {
    const AcDbObjectId id = entityArgument(in, a[0]);
    return setArgument(in, a[1]).remove(id) ? a[1] : Value::nil();
}

Value fnSsLength(Interpreter& in, Args a) {
    return Value::integer(static_cast<int32_t>(setArgument(in, a[0]).size()));
}

// (ssname set index): nil outside the set.
Value fnSsName(Interpreter& in, Args a) {
    const SelectionSet& set = setArgument(in, a[0]);
    const double index = in.number(a[1]);
    if (!(index >= 0 && index < static_cast<double>(set.size()))) return Value::nil();
    return entityName(set.at(static_cast<size_t>(index)));
}

// (ssmemb name set)
Value fnSsMemb(Interpreter& in, Args a) {
    const AcDbObjectId id = entityArgument(in, a[0]);
    return setArgument(in, a[1]).has(id) ? a[0] : Value::nil();
}

// ---- What is selected before a command asks ---

// A set of entities, or nil for none.
Value setOrNil(Interpreter& in, const DrawingSelection::Ids& ids) {
    if (ids.empty()) return Value::nil();
    SelectionSet set;
    set.add(ids, {});
    return lisp::pickSetValue(in, Host::the().selectionSets().add(std::move(set)));
}

// (sssetfirst grips [set]): (grips set). Grips show nowhere, and select nothing.
Value fnSsSetFirst(Interpreter& in, Args a) {
    DrawingSelection& selection = requireDocument(in).selection();
    const Value set = a.get(1);
    selection.setImplied(set ? setArgument(in, set).ids() : DrawingSelection::Ids());
    return in.list({Value::nil(), set});
}

// (ssgetfirst): (grips set)
Value fnSsGetFirst(Interpreter& in, Args) {
    const Value set = setOrNil(in, requireDocument(in).selection().implied());
    in.push(set);
    return in.list({Value::nil(), set});
}

// ---- ssnamex ------------------------------------------------------------------------------------

// (0 point): a point that the display's line of sight goes through.
Value sightValue(Interpreter& in, const AcGePoint3d& point) {
    ListBuilder items(in);
    items.add(Value::integer(0));
    items.add(pointValue(in, point));
    return items.list();
}

// (method name 0 ...); a window or polygon is named by its number below 0, a pick and a fence by
// their points.
Value memberValue(Interpreter& in, const SelectionSet& set, size_t index) {
    const SelectedBy& how = set.methods()[set.methodAt(index)];
    ListBuilder items(in);
    items.add(Value::integer(how.method));
    items.add(entityName(set.at(index)));
    items.add(Value::integer(0));
    if (how.method == SelectedBy::window || how.method == SelectedBy::crossing) {
        items.add(Value::integer(-static_cast<int32_t>(set.methodAt(index))));
    } else {
        for (const AcGePoint3d& point : how.points)
            items.add(sightValue(in, point));
    }
    return items.list();
}

Value regionValue(Interpreter& in, const SelectionSet& set, size_t method) {
    ListBuilder items(in);
    items.add(Value::integer(-static_cast<int32_t>(method)));
    for (const AcGePoint3d& point : set.methods()[method].points)
        items.add(sightValue(in, point));
    return items.list();
}

// (ssnamex set [index])
Value fnSsNameX(Interpreter& in, Args a) {
    const SelectionSet& set = setArgument(in, a[0]);
    size_t first = 0, end = set.size();
    if (a.get(1)) {
        const double index = in.number(a[1]);
        if (!(index >= 0 && index < static_cast<double>(end))) return Value::nil();
        first = static_cast<size_t>(index);
        end = first + 1;
    }
    ListBuilder items(in);
    std::vector<bool> isUsed(set.methods().size());
    for (size_t i = first; i < end; ++i) {
        items.add(memberValue(in, set, i));
        isUsed[set.methodAt(i)] = true;
    }
    for (size_t method = 0; method < isUsed.size(); ++method) {
        const SelectedBy::Method kind = set.methods()[method].method;
        const bool isRegion = kind == SelectedBy::window || kind == SelectedBy::crossing;
        if (isUsed[method] && isRegion) items.add(regionValue(in, set, method));
    }
    return items.list();
}

constexpr FunctionRow kRows[] = {
    {L"ssget", fnSsGet, 0, 5},           {L"ssadd", fnSsAdd, 0, 2},
    {L"ssdel", fnSsDel, 2, 2},           {L"sslength", fnSsLength, 1, 1},
    {L"ssname", fnSsName, 2, 2},         {L"ssmemb", fnSsMemb, 2, 2},
    {L"ssnamex", fnSsNameX, 1, 2},       {L"sssetfirst", fnSsSetFirst, 1, 2},
    {L"ssgetfirst", fnSsGetFirst, 0, 0},
};

}  // namespace

std::span<const FunctionRow> selectionFunctions() {
    return kRows;
}

}  // namespace sg
