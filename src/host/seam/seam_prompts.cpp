#include <algorithm>
#include <cwchar>
#include <string>

#include "host/seam/prompting.h"
#include "platform/db/object_id.h"
#include "platform/ed/prompts.h"

// platform/ed/prompts.h on the Host.

using namespace sg;

namespace {

int codeOf(PromptResult result) {
    switch (result) {
        case PromptResult::value:
            return RTNORM;
        case PromptResult::null:
            return RTNONE;
        case PromptResult::keyword:
            return RTKWORD;
        case PromptResult::cancelled:
            return RTCAN;
        default:
            return RTERROR;
    }
}

std::wstring textOf(const wchar_t* prompt) {
    return prompt == nullptr ? std::wstring() : std::wstring(prompt);
}

Prompter::Point pointOf(const double* point) {
    if (point == nullptr) return std::nullopt;
    return AcGePoint3d(point[0], point[1], point[2]);
}

void store(const AcGePoint3d& point, ads_point result) {
    result[0] = point.x;
    result[1] = point.y;
    result[2] = point.z;
}

int storeText(const std::wstring& text, wchar_t* result, size_t size) {
    if (result == nullptr || size == 0) return RTERROR;
    const size_t length = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), length, result);
    result[length] = L'\0';
    return RTNORM;
}

// Runs a prompt of the current drawing, and keeps the keyword that it answers.
template <class Ask>
int ask(const Ask& run) {
    Host& host = Host::the();
    Document* const document = host.documents().current();
    if (document == nullptr) return RTERROR;
    Prompter prompter(promptPlace(host, *document), host.prompts().allowed);
    const PromptResult result = run(prompter);
    if (result == PromptResult::keyword) host.prompts().keyword = prompter.keyword();
    return codeOf(result);
}

template <class Ask>
int askPoint(ads_point result, const Ask& run) {
    if (result == nullptr) return RTERROR;
    AcGePoint3d point;
    const int code = ask([&](Prompter& prompter) { return run(prompter, point); });
    if (code == RTNORM) store(point, result);
    return code;
}

template <class Value, class Ask>
int askValue(Value* result, const Ask& run) {
    if (result == nullptr) return RTERROR;
    Value value{};
    const int code = ask([&](Prompter& prompter) { return run(prompter, value); });
    if (code == RTNORM) *result = value;
    return code;
}

}  // namespace

int acedInitGet(int bits, const wchar_t* keywords) {
    Host::the().prompts().allowed = {bits, Keywords(textOf(keywords))};
    return RTNORM;
}

int acedGetPoint(const ads_point base, const wchar_t* prompt, ads_point result) {
    return askPoint(result, [&](Prompter& prompter, AcGePoint3d& point) {
        return prompter.point(textOf(prompt), pointOf(base), point);
    });
}

int acedGetCorner(const ads_point base, const wchar_t* prompt, ads_point result) {
    if (base == nullptr) return RTERROR;
    return askPoint(result, [&](Prompter& prompter, AcGePoint3d& point) {
        return prompter.corner(textOf(prompt), *pointOf(base), point);
    });
}

int acedGetDist(const ads_point base, const wchar_t* prompt, ads_real* result) {
    return askValue(result, [&](Prompter& prompter, double& value) {
        return prompter.distance(textOf(prompt), pointOf(base), value);
    });
}

int acedGetAngle(const ads_point base, const wchar_t* prompt, ads_real* result) {
    return askValue(result, [&](Prompter& prompter, double& value) {
        return prompter.angle(textOf(prompt), pointOf(base), false, value);
    });
}

int acedGetOrient(const ads_point base, const wchar_t* prompt, ads_real* result) {
    return askValue(result, [&](Prompter& prompter, double& value) {
        return prompter.angle(textOf(prompt), pointOf(base), true, value);
    });
}

int acedGetReal(const wchar_t* prompt, ads_real* result) {
    return askValue(result, [&](Prompter& prompter, double& value) {
        return prompter.real(textOf(prompt), value);
    });
}

int acedGetInt(const wchar_t* prompt, int* result) {
    return askValue(result, [&](Prompter& prompter, int& value) {
        return prompter.integer(textOf(prompt), value);
    });
}

int acedGetString(int blanks, const wchar_t* prompt, wchar_t* result, size_t size) {
    if (result == nullptr || size == 0) return RTERROR;
    std::wstring text;
    const int code =
        ask([&](Prompter& prompter) { return prompter.string(textOf(prompt), blanks != 0, text); });
    return code == RTNORM ? storeText(text, result, size) : code;
}

int acedGetKword(const wchar_t* prompt, wchar_t* result, size_t size) {
    if (result == nullptr || size == 0) return RTERROR;
    std::wstring keyword;
    const int code = ask([&](Prompter& prompter) {
        const PromptResult answer = prompter.choice(textOf(prompt));
        keyword = prompter.keyword();
        return answer;
    });
    return code == RTNORM ? storeText(keyword, result, size) : code;
}

int acedGetInput(wchar_t* result, size_t size) {
    const std::wstring& keyword = Host::the().prompts().keyword;
    return keyword.empty() ? RTERROR : storeText(keyword, result, size);
}

int acedEntSel(const wchar_t* prompt, ads_name entity, ads_point point) {
    if (entity == nullptr || point == nullptr) return RTERROR;
    AcDbObjectId id;
    AcGePoint3d at;
    const std::wstring text = prompt == nullptr ? L"Select object: " : prompt;
    const int code = ask([&](Prompter& prompter) { return prompter.entity(text, id, at); });
    if (code == RTNONE) return RTERROR;
    if (code != RTNORM) return code;
    store(at, point);
    return acdbGetAdsName(entity, id) == Acad::eOk ? RTNORM : RTERROR;
}
