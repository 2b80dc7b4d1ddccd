#include "base/text.h"
#include "host/editor/selection/drawing_selection.h"
#include "host/lisp/functions/list_builder.h"
#include "host/seam/entity_lists.h"
#include "host/seam/lisp_drawing.h"
#include "host/seam/lisp_functions.h"
#include "host/seam/lisp_points.h"
#include "host/seam/prompting.h"
#include "platform/ed/prompts.h"

// AutoLISP's functions that ask the user.

namespace sg {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ListBuilder;
using lisp::Value;

bool isPoint(Value value) {
    int count = 0;
    for (; value.isCons(); value = value.asCons()->cdr) {
        if (!value.asCons()->car.isNumber() || ++count > 3) return false;
    }
    return value.isNil() && count >= 2;
}

AcGePoint3d pointArgument(Interpreter& in, Value value) {
    if (!isPoint(value)) in.badArgument(L"point", value);
    AcGePoint3d point;
    for (unsigned i = 0; value.isCons(); value = value.asCons()->cdr)
        point[i++] = value.asCons()->car.asNumber();
    return point;
}

Value pointValue(Interpreter& in, const AcGePoint3d& point) {
    return in.list({Value::real(point.x), Value::real(point.y), Value::real(point.z)});
}

namespace {

// The arguments ([base] [message]) in any combination.
struct BaseAndMessage {
    Prompter::Point base;
    std::wstring message;
};

BaseAndMessage baseAndMessage(Interpreter& in, Args a) {
    BaseAndMessage given;
    size_t at = 0;
    if (a.has(0) && !a[0].isString()) {
        if (a[0]) given.base = pointArgument(in, a[0]);
        ++at;
    }
    if (a.get(at)) given.message = in.str(a[at]);
    return given;
}

// Runs a prompt; what it answers but for a value becomes a LISP value here, a value by `answer`.
template <class Ask, class Answer>
Value ask(Interpreter& in, const Ask& run, const Answer& answer) {
    Document& document = requireDocument(in);
    Host& host = Host::the();
    Prompter prompter(promptPlace(host, document), host.prompts().allowed);
    switch (run(prompter)) {
        case PromptResult::value:
            return answer();
        case PromptResult::keyword:
            host.prompts().keyword = prompter.keyword();
            return in.string(prompter.keyword());
        case PromptResult::cancelled:
            in.cancel();
        default:
            return Value::nil();
    }
}

// (initget [bits] [keywords])
Value fnInitGet(Interpreter& in, Args a) {
    size_t at = 0;
    int32_t bits = 0;
    if (a.has(0) && !a[0].isString()) {
        if (a[0]) bits = in.integer(a[0]);
        ++at;
    }
    acedInitGet(bits, a.get(at) ? in.str(a[at]).c_str() : nullptr);
    return Value::nil();
}

Value fnGetPoint(Interpreter& in, Args a) {
    const BaseAndMessage given = baseAndMessage(in, a);
    AcGePoint3d point;
    return ask(
        in, [&](Prompter& p) { return p.point(given.message, given.base, point); },
        [&] { return pointValue(in, point); });
}

Value fnGetCorner(Interpreter& in, Args a) {
    const AcGePoint3d base = pointArgument(in, a[0]);
    const std::wstring message = a.get(1) ? in.str(a[1]) : std::wstring();
    AcGePoint3d point;
    return ask(
        in, [&](Prompter& p) { return p.corner(message, base, point); },
        [&] { return pointValue(in, point); });
}

Value fnGetDist(Interpreter& in, Args a) {
    const BaseAndMessage given = baseAndMessage(in, a);
    double value = 0;
    return ask(
        in, [&](Prompter& p) { return p.distance(given.message, given.base, value); },
        [&] { return Value::real(value); });
}

Value angleFrom(Interpreter& in, Args a, bool fromXAxis) {
    const BaseAndMessage given = baseAndMessage(in, a);
    double value = 0;
    return ask(
        in, [&](Prompter& p) { return p.angle(given.message, given.base, fromXAxis, value); },
        [&] { return Value::real(value); });
}
Value fnGetAngle(Interpreter& in, Args a) {
    return angleFrom(in, a, false);
}
Value fnGetOrient(Interpreter& in, Args a) {
    return angleFrom(in, a, true);
}

std::wstring messageArgument(Interpreter& in, Args a) {
    return a.get(0) ? in.str(a[0]) : std::wstring();
}

Value fnGetReal(Interpreter& in, Args a) {
    const std::wstring message = messageArgument(in, a);
    double value = 0;
    return ask(
        in, [&](Prompter& p) { return p.real(message, value); },
        [&] { return Value::real(value); });
}

Value fnGetInt(Interpreter& in, Args a) {
    const std::wstring message = messageArgument(in, a);
    int32_t value = 0;
    return ask(
        in, [&](Prompter& p) { return p.integer(message, value); },
        [&] { return Value::integer(value); });
}

// (getstring [cr] [message]): with a true cr the answer may hold blanks.
Value fnGetString(Interpreter& in, Args a) {
    const bool hasFlag = a.size() == 2 || (a.size() == 1 && !a[0].isString());
    const Value message = a.get(hasFlag ? 1 : 0);
    const std::wstring prompt = message ? in.str(message) : std::wstring();
    std::wstring text;
    return ask(
        in, [&](Prompter& p) { return p.string(prompt, hasFlag && a[0], text); },
        [&] { return in.string(text); });
}

Value fnGetKword(Interpreter& in, Args a) {
    const std::wstring message = messageArgument(in, a);
    std::wstring keyword;
    return ask(
        in,
        [&](Prompter& p) {
            const PromptResult result = p.choice(message);
            keyword = p.keyword();
            if (result == PromptResult::refused) in.fail(L"getkword: no keywords, see initget");
            return result;
        },
        [&] { return in.string(keyword); });
}

std::wstring selectMessage(Interpreter& in, Args a) {
    return a.get(0) ? in.str(a[0]) : std::wstring(L"Select object: ");
}

// (entsel [message]): (name point)
Value fnEntSel(Interpreter& in, Args a) {
    const std::wstring message = selectMessage(in, a);
    AcDbObjectId id;
    AcGePoint3d at;
    return ask(
        in, [&](Prompter& p) { return p.entity(message, id, at); },
        [&] {
            ListBuilder items(in);
            items.add(entityName(id));
            items.add(pointValue(in, at));
            return items.list();
        });
}

// The rows of a matrix, a list each.
Value rowsValue(Interpreter& in, const AcGeMatrix3d& matrix) {
    ListBuilder rows(in);
    for (unsigned row = 0; row < 4; ++row) {
        rows.add(in.list({Value::real(matrix(row, 0)), Value::real(matrix(row, 1)),
                          Value::real(matrix(row, 2)), Value::real(matrix(row, 3))}));
    }
    return rows.list();
}

// The axes and the origin of a matrix, a list each.
Value matrixValue(Interpreter& in, const AcGeMatrix3d& matrix) {
    ListBuilder columns(in);
    for (unsigned column = 0; column < 4; ++column) {
        columns.add(in.list({Value::real(matrix(0, column)), Value::real(matrix(1, column)),
                             Value::real(matrix(2, column))}));
    }
    return columns.list();
}

// What is picked inside an entity: (name point), for an entity inside a block with its matrix, made
// by `matrix`, and the containers, the innermost first.
template <class Matrix>
Value nestedValue(Interpreter& in, AcDbObjectId id, const AcGePoint3d& at, double reach,
                  const Matrix& matrix) {
    DrawingSelection::Nested nested;
    DrawingSelection& selection = requireDocument(in).selection();
    const bool isNested = selection.nestedAt(id, at, reach, nested);
    ListBuilder items(in);
    items.add(entityName(isNested ? nested.id : id));
    items.add(pointValue(in, at));
    if (!isNested || nested.containers.empty()) return items.list();
    items.add(matrix(in, nested.toWorld));
    ListBuilder containers(in);
    for (const AcDbObjectId container : nested.containers)
        containers.add(entityName(container));
    items.add(containers.list());
    return items.list();
}

template <class Matrix>
Value askNested(Interpreter& in, const std::wstring& message, const Matrix& matrix) {
    AcDbObjectId id;
    AcGePoint3d at;
    double reach = 0;
    return ask(
        in,
        [&](Prompter& p) {
            reach = p.pickReach();
            return p.entity(message, id, at);
        },
        [&] { return nestedValue(in, id, at, reach, matrix); });
}

// (nentsel [message]): as entsel, with axes and origin of an entity inside a block.
Value fnNEntSel(Interpreter& in, Args a) {
    return askNested(in, selectMessage(in, a), matrixValue);
}

// (nentselp [message] [point]): the same with the rows of the matrix; at a point nobody is asked.
Value fnNEntSelP(Interpreter& in, Args a) {
    const bool hasMessage = a.get(0).isString();
    const Value place = a.get(hasMessage ? 1 : 0);
    if (!place) {
        return askNested(in, hasMessage ? in.str(a[0]) : std::wstring(L"Select object: "),
                         rowsValue);
    }
    const AcGePoint3d at = pointArgument(in, place);
    Document& document = requireDocument(in);
    Host& host = Host::the();
    const double reach = Prompter(promptPlace(host, document), host.prompts().allowed).pickReach();
    const DrawingSelection::Ids found = document.selection().atPoint(at, reach);
    return found.empty() ? Value::nil() : nestedValue(in, found.front(), at, reach, rowsValue);
}

constexpr FunctionRow kRows[] = {
    {L"initget", fnInitGet, 0, 2},     {L"getpoint", fnGetPoint, 0, 2},
    {L"getcorner", fnGetCorner, 1, 2}, {L"getdist", fnGetDist, 0, 2},
    {L"getangle", fnGetAngle, 0, 2},   {L"getorient", fnGetOrient, 0, 2},
    {L"getreal", fnGetReal, 0, 1},     {L"getint", fnGetInt, 0, 1},
    {L"getstring", fnGetString, 0, 2}, {L"getkword", fnGetKword, 0, 1},
    {L"entsel", fnEntSel, 0, 1},       {L"nentsel", fnNEntSel, 0, 1},
    {L"nentselp", fnNEntSelP, 0, 2},
};

}  // namespace

std::span<const FunctionRow> promptFunctions() {
    return kRows;
}

}  // namespace sg
