#include <climits>
#include <string>

#include "host/editor/selection/select_entities.h"
#include "host/lisp/marshal.h"
#include "host/seam/entity_lists.h"
#include "host/seam/prompting.h"
#include "platform/ed/selection.h"

// platform/ed/selection.h on the Host.

using namespace sg;

namespace {

AcGePoint3d pointAt(const void* point) {
    const auto* const numbers = static_cast<const double*>(point);
    return {numbers[0], numbers[1], numbers[2]};
}

// The points of a chain, or of the one list in it. Empty for a chain that holds anything else.
std::vector<AcGePoint3d> pointsOf(const resbuf* chain) {
    std::vector<AcGePoint3d> points;
    for (; chain != nullptr; chain = chain->rbnext) {
        const double* const p = chain->resval.rpoint;
        const int kind =
            chain->restype < RTNONE ? acdbGroupCodeToType(chain->restype) : chain->restype;
        if (kind == RTLB || kind == RTLE) continue;
        if (kind != RTPOINT && kind != RT3DPOINT) return {};
        points.emplace_back(p[0], p[1], kind == RTPOINT ? 0 : p[2]);
    }
    return points;
}

// A filter as groups: a list that a LISP call has brought is made to them. False for one that makes
// none.
bool groupsOf(const resbuf* filter, lisp::ResbufList& made, const resbuf*& groups) {
    groups = filter;
    if (filter == nullptr || filter->restype < RTNONE) return true;
    lisp::Interpreter& in = Host::the().interpreter();
    const auto outcome = in.runProtected([&] {
        lisp::Value list;
        if (!lisp::chainToValue(in, filter, list)) in.fail(L"malformed list");
        in.push(list);
        made = listToGroups(in, list);
        return lisp::Value::nil();
    });
    groups = made.get();
    return !outcome.failed;
}

bool isPolygon(const SelectionMode& mode) {
    return mode.method == L"WP" || mode.method == L"CP" || mode.method == L"F";
}

// What the two pointers stand for follows from the mode. False when one is missing.
bool readArguments(const void* first, const void* second, EntitySelector::Request& request) {
    const SelectionMode& mode = request.mode;
    if (mode.hasPrompts || mode.hasKeywords) {
        const auto* const prompts = static_cast<const wchar_t* const*>(first);
        if (mode.hasPrompts && prompts != nullptr) {
            if (prompts[0] != nullptr) request.addPrompt = prompts[0];
            if (prompts[1] != nullptr) request.removePrompt = prompts[1];
        }
        if (mode.hasKeywords && second != nullptr) {
            request.keywords = Keywords(static_cast<const wchar_t*>(second));
        }
        return true;
    }
    if (mode.method == L"G") {
        if (first != nullptr) request.group = static_cast<const wchar_t*>(first);
        return first != nullptr;
    }
    if (isPolygon(mode)) {
        request.points = pointsOf(static_cast<const resbuf*>(first));
        return !request.points.empty();
    }
    if (first != nullptr) request.points.push_back(pointAt(first));
    if (second != nullptr) request.points.push_back(pointAt(second));
    return true;
}

int codeOf(SelectionOutcome outcome) {
    switch (outcome) {
        case SelectionOutcome::found:
            return RTNORM;
        case SelectionOutcome::cancelled:
            return RTCAN;
        case SelectionOutcome::keyword:
            return RTKWORD;
        default:
            return RTERROR;
    }
}

SelectionSet* setOf(const ads_name name) {
    return name == nullptr ? nullptr : Host::the().selectionSets().find(lisp::nameToPayload(name));
}

bool isNoName(const ads_name name) {
    return name == nullptr || (name[0] == 0 && name[1] == 0);
}

bool idOf(const ads_name entity, AcDbObjectId& id) {
    return entity != nullptr && acdbGetObjectId(id, entity) == Acad::eOk;
}

}  // namespace

int acedSSGet(const wchar_t* mode, const void* first, const void* second, const resbuf* filter,
              ads_name set) {
    if (set == nullptr) return RTERROR;
    set[0] = set[1] = 0;
    Host& host = Host::the();
    Document* const document = host.documents().current();
    const auto parsed = SelectionMode::parse(mode == nullptr ? L"" : mode);
    EntitySelector::Request request;
    lisp::ResbufList made;
    const resbuf* groups = nullptr;
    if (document == nullptr || !parsed || !groupsOf(filter, made, groups)) return RTERROR;
    request.mode = *parsed;
    if (!readArguments(first, second, request)) return RTERROR;
    auto condition = SelectionFilter::parse(groups);
    if (!condition) return RTERROR;

    const Prompter::Place place = promptPlace(host, *document);
    Prompter prompter(place, host.prompts().allowed);
    SelectionSet found;
    const SelectionOutcome outcome =
        EntitySelector(place, prompter, *condition).select(request, found);
    if (outcome == SelectionOutcome::keyword) host.prompts().keyword = prompter.keyword();
    if (outcome == SelectionOutcome::found) {
        lisp::payloadToName(host.selectionSets().add(std::move(found)), set);
    }
    return codeOf(outcome);
}

int acedSSName(const ads_name set, int index, ads_name entity) {
    const SelectionSet* const found = setOf(set);
    if (found == nullptr || entity == nullptr || index < 0 ||
        static_cast<size_t>(index) >= found->size()) {
        return RTERROR;
    }
    const AcDbObjectId id = found->at(static_cast<size_t>(index));
    return acdbGetAdsName(entity, id) == Acad::eOk ? RTNORM : RTERROR;
}

int acedSSLength(const ads_name set, int* length) {
    const SelectionSet* const found = setOf(set);
    if (found == nullptr || length == nullptr) return RTERROR;
    *length = static_cast<int>(std::min<size_t>(found->size(), INT_MAX));
    return RTNORM;
}

int acedSSAdd(const ads_name entity, const ads_name set, ads_name result) {
    if (result == nullptr) return RTERROR;
    AcDbObjectId id;
    const bool hasEntity = !isNoName(entity);
    if (hasEntity && !idOf(entity, id)) return RTERROR;
    uint64_t name = 0;
    if (isNoName(set)) {
        name = Host::the().selectionSets().add({});
    } else if (setOf(set) != nullptr) {
        name = lisp::nameToPayload(set);
    } else {
        return RTERROR;
    }
    if (hasEntity) Host::the().selectionSets().find(name)->add(id);
    lisp::payloadToName(name, result);
    return RTNORM;
}

int acedSSDel(const ads_name entity, const ads_name set) {
    AcDbObjectId id;
    SelectionSet* const found = setOf(set);
    return found != nullptr && idOf(entity, id) && found->remove(id) ? RTNORM : RTERROR;
}

int acedSSFree(const ads_name set) {
    if (set == nullptr) return RTERROR;
    return Host::the().selectionSets().free(lisp::nameToPayload(set)) ? RTNORM : RTERROR;
}

int acedSSMemb(const ads_name entity, const ads_name set) {
    AcDbObjectId id;
    const SelectionSet* const found = setOf(set);
    return found != nullptr && idOf(entity, id) && found->has(id) ? RTNORM : RTERROR;
}
