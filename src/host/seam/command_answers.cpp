#include "host/seam/command_answers.h"

#include <charconv>
#include <memory>

#include "base/encoding.h"
#include "host/editor/selection/selection_sets.h"
#include "host/lisp/marshal.h"
#include "host/seam/entity_lists.h"
#include "host/seam/host.h"
#include "host/seam/lisp_points.h"

namespace sg {
namespace {

using lisp::Interpreter;
using lisp::Value;

// With all its digits and without an exponent, as one may type it.
std::wstring numberText(double number) {
    char digits[400];
    const auto [end, error] =
        std::to_chars(digits, digits + sizeof(digits), number, std::chars_format::fixed);
    return fromUtf8({digits, static_cast<size_t>(end - digits)});
}

PromptAnswer typedAnswer(std::wstring text) {
    PromptAnswer answer;
    answer.text = std::move(text);
    return answer;
}

PromptAnswer pointAnswer(const AcGePoint3d& point, bool isText) {
    PromptAnswer answer;
    answer.kind = PromptAnswer::Kind::point;
    answer.point = point;
    if (isText) {
        answer.text = numberText(point.x) + L"," + numberText(point.y) + L"," + numberText(point.z);
    }
    return answer;
}

PromptAnswer setAnswer(const lisp::PickSet& given) {
    const SelectionSet* const set = Host::the().selectionSets().find(given.name);
    PromptAnswer answer;
    answer.kind = PromptAnswer::Kind::set;
    answer.set = std::make_shared<SelectionSet>(set == nullptr ? SelectionSet() : *set);
    return answer;
}

// An entity may come with the place where it is picked, as entsel answers it.
PromptAnswer entityAnswer(Interpreter& in, Value value) {
    const bool hasPlace = value.isCons() && value.asCons()->cdr.isCons() &&
                          isPoint(value.asCons()->cdr.asCons()->car);
    const AcDbObjectId id = entityArgument(in, hasPlace ? value.asCons()->car : value);
    PromptAnswer answer;
    answer.kind = PromptAnswer::Kind::entity;
    answer.handle = static_cast<uint64_t>(id.handle());
    answer.hasPoint = hasPlace;
    if (hasPlace) answer.point = pointArgument(in, value.asCons()->cdr.asCons()->car);
    return answer;
}

}  // namespace

PromptAnswer answerFromLisp(Interpreter& in, Value value, bool isText) {
    if (value.isString()) return typedAnswer(in.str(value));
    if (value.isInt()) return typedAnswer(std::to_wstring(value.asInt()));
    if (value.isNumber()) return typedAnswer(numberText(value.asNumber()));
    if (isPoint(value)) return pointAnswer(pointArgument(in, value), isText);
    const lisp::PickSet* const set = lisp::asPickSet(value);
    return set != nullptr ? setAnswer(*set) : entityAnswer(in, value);
}

}  // namespace sg
