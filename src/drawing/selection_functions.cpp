#include <map>
#include <string>

#include "base/text.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/entity_list.h"
#include "drawing/lisp_functions.h"
#include "platform/db/block_reference.h"
#include "platform/db/circle.h"
#include "platform/db/database.h"
#include "platform/db/polyline.h"
#include "platform/ed/command_line.h"
#include "platform/ed/prompts.h"
#include "platform/ed/selection.h"

namespace sg {
namespace {

// ---- Through the host's selection ---------------------------------------------------------------

// The entities of a selection as the call's result, and the set freed; nil for an empty one and
// when nothing was selected.
void returnSelection(int status, const ads_name set) {
    if (status != RTNORM) {
        acedRetNil();
        return;
    }
    int length = 0;
    acedSSLength(set, &length);
    if (length <= 0) {
        acedRetNil();
    } else {
        EntityList entities;
        for (int index = 0; index < length; ++index) {
            ads_name entity;
            if (acedSSName(set, index, entity) == RTNORM) entities.add(entity);
        }
        entities.giveAsResult();
    }
    acedSSFree(set);
}

// A text, or nothing where anything else stands.
std::wstring textOrNothing(const resbuf*& position, bool& isGiven) {
    std::wstring text;
    isGiven = nextString(position, text);
    if (!isGiven) skipNext(position);
    return text;
}

// What remains of the arguments, unless it is nil.
const resbuf* filterAt(const resbuf* position) {
    return position != nullptr && position->restype != RTNIL ? position : nullptr;
}

// ---- Walking over model space -------------------------------------------------------------------

// The entities of model space for which `takes` answers true, an empty list too; no result when the
// space cannot be opened.
template <class Takes>
int returnModelSpace(const Takes& takes) {
    AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
    AcDbBlockTable* table = nullptr;
    if (database == nullptr || database->getBlockTable(table, AcDb::kForRead) != Acad::eOk) {
        return kLispOk;
    }
    AcDbBlockTableRecord* space = nullptr;
    const Acad::ErrorStatus opened = table->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead);
    table->close();
    if (opened != Acad::eOk) return kLispOk;
    EntityList entities;
    for (auto each = space->newIterator(); !each->done(); each->step()) {
        AcDbEntity* entity = nullptr;
        if (each->getEntity(entity, AcDb::kForRead) != Acad::eOk) continue;
        if (takes(*entity)) entities.add(entity->objectId());
        entity->close();
    }
    space->close();
    entities.giveAsResult();
    return kLispOk;
}

template <class Class>
int returnOfClass() {
    return returnModelSpace(
        [](const AcDbEntity& entity) { return entity.isKindOf(Class::desc()); });
}

std::wstring blockName(AcDbObjectId block) {
    const Opened<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    std::wstring name;
    if (record) record->getName(name);
    return name;
}

// Whether references show the block of a name; each block is asked once.
class ShowsBlock {
  public:
    explicit ShowsBlock(std::wstring_view name) : name_(upperCased(name)) {}

    bool operator()(const AcDbEntity& entity) {
        const auto* const reference = AcDbBlockReference::cast(&entity);
        if (reference == nullptr) return false;
        const auto [found, isNew] = known_.try_emplace(reference->blockTableRecord(), false);
        if (isNew) found->second = upperCased(blockName(found->first)) == name_;
        return found->second;
    }

  private:
    const std::wstring name_;
    std::map<AcDbObjectId, bool> known_;
};

}  // namespace

int selectCrossing() {
    CallArguments arguments;
    AcGePoint3d first, second;
    if (!nextPoint3d(arguments.next, first) || !nextPoint3d(arguments.next, second)) {
        return kLispWrongType;
    }
    const ads_point corners[] = {{first.x, first.y, first.z}, {second.x, second.y, second.z}};
    ads_name set;
    const int status = acedSSGet(L"_C", corners[0], corners[1], arguments.next, set);
    returnSelection(status, set);
    return kLispOk;
}

int selectCrossingPolygon() {
    CallArguments arguments;
    const resbuf* position = arguments.next;
    AcGePoint3d first;
    if (!nextPoint3d(position, first)) return kLispWrongType;
    ads_name set;
    const int status = acedSSGet(L"_CP", arguments.next, nullptr, nullptr, set);
    returnSelection(status, set);
    return kLispOk;
}

int selectPrompted() {
    CallArguments arguments;
    std::wstring mode;
    bool isGiven = false;
    const std::wstring prompt = textOrNothing(arguments.next, isGiven);
    if (isGiven) mode += L":$";
    const std::wstring removalPrompt = textOrNothing(arguments.next, isGiven);
    const std::wstring keywords = textOrNothing(arguments.next, isGiven);
    if (isGiven) mode += L":K";
    const wchar_t* const prompts[] = {prompt.c_str(), removalPrompt.c_str()};
    ads_name set;
    const int status =
        acedSSGet(mode.c_str(), prompt.empty() ? nullptr : prompts,
                  keywords.empty() ? nullptr : keywords.c_str(), filterAt(arguments.next), set);
    returnSelection(status, set);
    return kLispOk;
}

int selectAll() {
    return returnModelSpace([](const AcDbEntity&) { return true; });
}

int selectBlocks() {
    CallArguments arguments;
    std::wstring name;
    if (!nextString(arguments.next, name)) return returnOfClass<AcDbBlockReference>();
    ShowsBlock showsBlock(name);
    return returnModelSpace([&](const AcDbEntity& entity) { return showsBlock(entity); });
}

int selectCircles() {
    return returnOfClass<AcDbCircle>();
}

int selectPolylines() {
    return returnOfClass<AcDbPolyline>();
}

// A pick in the void is asked again.
int selectEntity() {
    constexpr int kPickFailed = 7;
    constexpr size_t kLongestKeyword = 132;
    CallArguments arguments;
    std::wstring prompt, keywords;
    if (!nextString(arguments.next, prompt)) return kLispWrongType;
    nextString(arguments.next, keywords);
    for (;;) {
        if (!keywords.empty()) acedInitGet(0, keywords.c_str());
        ads_name entity;
        ads_point point;
        const int status = acedEntSel(prompt.c_str(), entity, point);
        wchar_t keyword[kLongestKeyword];
        if (status == RTKWORD && acedGetInput(keyword, kLongestKeyword) == RTNORM) {
            acedRetStr(keyword);
            return kLispOk;
        }
        if (status == RTCAN) {
            acedRetNil();
            return kLispOk;
        }
        if (status == RTNORM) {
            resbuf* const list =
                acutBuildList(RTLB, RTENAME, entity, RT3DPOINT, point, RTLE, RTNONE);
            acedRetList(list);
            acutRelRb(list);
            return kLispOk;
        }
        resbuf number{};
        if (acedGetVar(L"ERRNO", &number) != RTNORM || number.resval.rint != kPickFailed) {
            acedRetT();
            return kLispOk;
        }
    }
}

}  // namespace sg
