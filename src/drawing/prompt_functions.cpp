#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/lisp_functions.h"
#include "platform/ed/prompts.h"

namespace sg {
namespace {

// A text that may be missing; false when something else stands in its place.
bool nextOptionalString(const resbuf*& position, std::wstring& text) {
    return position == nullptr || nextString(position, text);
}

}  // namespace

int promptPoint() {
    CallArguments arguments;
    std::wstring prompt;
    if (!nextOptionalString(arguments.next, prompt)) return kLispWrongType;
    ads_point point;
    acedRetNil();
    if (acedGetPoint(nullptr, prompt.c_str(), point) == RTNORM) acedRetPoint(point);
    return kLispOk;
}

int promptPointOrKeyword() {
    constexpr size_t kLongestKeyword = 20;
    CallArguments arguments;
    std::wstring prompt, keywords;
    if (!nextOptionalString(arguments.next, prompt) ||
        !nextOptionalString(arguments.next, keywords)) {
        return kLispWrongType;
    }
    acedInitGet(RSG_NONULL, keywords.c_str());
    ads_point point;
    acedRetNil();
    const int status = acedGetPoint(nullptr, prompt.c_str(), point);
    wchar_t keyword[kLongestKeyword];
    if (status == RTNORM) {
        acedRetPoint(point);
    } else if (status == RTKWORD && acedGetInput(keyword, kLongestKeyword) == RTNORM) {
        acedRetStr(keyword);
    }
    return kLispOk;
}

int promptCorner() {
    CallArguments arguments;
    AcGePoint3d first;
    std::wstring prompt;
    if (!nextPoint3d(arguments.next, first) || !nextOptionalString(arguments.next, prompt)) {
        return kLispWrongType;
    }
    const ads_point base = {first.x, first.y, first.z};
    ads_point corner;
    acedRetNil();
    if (acedGetCorner(base, prompt.c_str(), corner) == RTNORM) acedRetPoint(corner);
    return kLispOk;
}

}  // namespace sg
