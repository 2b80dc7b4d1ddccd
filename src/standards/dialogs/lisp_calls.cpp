#include "standards/dialogs/lisp_calls.h"

#include "bridge/marshal_readers.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

resbuf* nodeOf(const LispArgument& argument) {
    if (argument.type == RTSTR) return acutBuildList(RTSTR, argument.text.c_str(), 0);
    if (argument.type == RTNIL) return acutBuildList(RTNIL, 0);
    return acutBuildList(argument.type, argument.number, 0);
}

}  // namespace

LispAnswer::LispAnswer(bool isGiven, resbuf* list) : isGiven_(isGiven), list_(list) {}

bool LispAnswer::isTrue() const {
    return isGiven_ && (list_ == nullptr || list_->restype != RTNIL);
}

std::optional<std::wstring> LispAnswer::text() const {
    const resbuf* position = list_.get();
    std::wstring text;
    return nextString(position, text) ? std::optional(text) : std::nullopt;
}

std::optional<int32_t> LispAnswer::number() const {
    const resbuf* position = list_.get();
    int32_t number = 0;
    const bool isWhole =
        position != nullptr && (position->restype == RTSHORT || position->restype == RTLONG);
    return isWhole && nextInt(position, number) ? std::optional(number) : std::nullopt;
}

std::vector<std::wstring> LispAnswer::texts() const {
    std::vector<std::wstring> texts;
    const resbuf* position = list_.get();
    if (!nextListBegin(position)) return texts;
    for (std::wstring text; position != nullptr;) {
        if (nextString(position, text)) {
            texts.push_back(text);
        } else {
            skipNext(position);
        }
    }
    return texts;
}

LispAnswer callLisp(const wchar_t* function, std::initializer_list<LispArgument> arguments) {
    resbuf* const call = acutBuildList(RTSTR, function, 0);
    resbuf* last = call;
    for (const LispArgument& argument : arguments) {
        if (last == nullptr) break;
        last->rbnext = nodeOf(argument);
        last = last->rbnext;
    }
    resbuf* result = nullptr;
    const bool isGiven = last != nullptr && acedInvoke(call, &result) == RTNORM;
    acutRelRb(call);
    return {isGiven, result};
}

}  // namespace sg
