#include <algorithm>
#include <array>
#include <vector>

#include "host/lisp/functions/equality.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/tables.h"

// Lists and association lists.
namespace sg::lisp {
namespace {

// What follows the last cell of a list; nil for a proper one.
Value tailOf(Value list) {
    while (list.isCons())
        list = list.asCons()->cdr;
    return list;
}

// ---- Making -------------------------------------------------------------------------------------

Value fnCons(Interpreter& in, Args a) {
    return in.cons(a[0], a[1]);
}

Value fnList(Interpreter& in, Args a) {
    return in.list(std::span<const Value>(a.begin(), a.size()));
}

// (vl-list* item ... tail)
Value fnListStar(Interpreter& in, Args a) {
    const size_t items = a.size() - 1;
    return in.list(std::span<const Value>(a.begin(), items), a[items]);
}

// All but the last are copied. The last may be anything: it becomes the tail as it is.
Value fnAppend(Interpreter& in, Args a) {
    if (a.size() == 0) return Value::nil();
    ListBuilder out(in);
    for (const Value list : Args(a.begin(), a.size() - 1)) {
        Value rest = in.checkList(list);
        for (; rest.isCons(); rest = rest.asCons()->cdr)
            out.add(rest.asCons()->car);
        in.checkList(rest);
    }
    out.end(a[a.size() - 1]);
    return out.list();
}

Value fnReverse(Interpreter& in, Args a) {
    Value result;
    Value rest = in.checkList(a[0]);
    for (; rest.isCons(); rest = rest.asCons()->cdr)
        result = in.cons(rest.asCons()->car, result);
    in.checkList(rest);
    return result;
}

// (subst new old list): in the list itself, not in lists within it.
Value fnSubst(Interpreter& in, Args a) {
    ListBuilder out(in);
    Value rest = in.checkList(a[2]);
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        const Value item = rest.asCons()->car;
        out.add(isEqual(in, item, a[1]) ? a[0] : item);
    }
    out.end(rest);
    return out.list();
}

Value fnRemove(Interpreter& in, Args a) {
    ListBuilder out(in);
    Value rest = in.checkList(a[1]);
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        const Value item = rest.asCons()->car;
        if (!isEqual(in, item, a[0])) out.add(item);
    }
    in.checkList(rest);
    return out.list();
}

// By character codes.
Value fnSortStrings(Interpreter& in, Args a) {
    std::vector<Value> strings;
    Value rest = in.checkList(a[0]);
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        in.text(rest.asCons()->car);
        strings.push_back(rest.asCons()->car);
    }
    in.checkList(rest);
    std::stable_sort(strings.begin(), strings.end(),
                     [](Value x, Value y) { return x.asString()->view() < y.asString()->view(); });
    return in.list(strings);
}

// ---- Parts --------------------------------------------------------------------------------------

// The letters between c and r of a function such as caddr.
template <size_t Size>
struct Letters {
    consteval Letters(const char (&text)[Size]) { std::copy_n(text, Size, letters.begin()); }
    std::array<char, Size> letters{};
};

template <Letters Path>
Value fnPart(Interpreter& in, Args a) {
    Value v = a[0];
    for (size_t i = Path.letters.size() - 1; i-- > 0;) {
        if (v.isNil()) return v;
        if (!v.isCons()) in.badArgument(L"consp", v);
        v = Path.letters[i] == 'a' ? v.asCons()->car : v.asCons()->cdr;
    }
    return v;
}

Value fnLast(Interpreter& in, Args a) {
    Value rest = in.checkList(a[0]);
    if (rest.isNil()) return rest;
    while (rest.asCons()->cdr.isCons())
        rest = rest.asCons()->cdr;
    return rest.asCons()->car;
}

Value fnNth(Interpreter& in, Args a) {
    int32_t index = in.integer(a[0]);
    if (index < 0) in.badValue(L"non-negative: " + in.toQuotedText(a[0]));
    Value rest = in.checkList(a[1]);
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        if (index-- == 0) return rest.asCons()->car;
    }
    return in.checkList(rest);
}

// ---- Looking for --------------------------------------------------------------------------------

Value fnMember(Interpreter& in, Args a) {
    Value rest = in.checkList(a[1]);
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        if (isEqual(in, rest.asCons()->car, a[0])) return rest;
    }
    return in.checkList(rest);
}

Value fnPosition(Interpreter& in, Args a) {
    Value rest = in.checkList(a[1]);
    for (int32_t index = 0; rest.isCons(); rest = rest.asCons()->cdr, ++index) {
        if (isEqual(in, rest.asCons()->car, a[0])) return Value::integer(index);
    }
    return in.checkList(rest);
}

Value fnAssoc(Interpreter& in, Args a) {
    Value rest = in.checkList(a[1]);
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        const Value item = rest.asCons()->car;
        if (item.isCons()) {
            if (isEqual(in, item.asCons()->car, a[0])) return item;
        } else if (!item.isNil()) {
            in.fail(L"bad association list: " + in.toQuotedText(a[1]));
        }
    }
    return in.checkList(rest);
}

// ---- Asking about -------------------------------------------------------------------------------

int32_t count(Value list) {
    int32_t cells = 0;
    for (; list.isCons(); list = list.asCons()->cdr)
        ++cells;
    return cells;
}

Value fnLength(Interpreter& in, Args a) {
    in.checkList(a[0]);
    if (!tailOf(a[0]).isNil()) in.badArgument(L"listp", a[0]);
    return Value::integer(count(a[0]));
}

// As length, with nil for a dotted list.
Value fnListLength(Interpreter& in, Args a) {
    in.checkList(a[0]);
    return tailOf(a[0]).isNil() ? Value::integer(count(a[0])) : Value::nil();
}

Value fnListp(Interpreter& in, Args a) {
    return in.boolean(a[0].isList());
}
Value fnAtom(Interpreter& in, Args a) {
    return in.boolean(!a[0].isCons());
}
Value fnConsp(Interpreter& in, Args a) {
    return in.boolean(a[0].isCons());
}

constexpr FunctionRow kRows[] = {
    {L"cons", fnCons, 2, 2},
    {L"list", fnList, 0, kAnyCount},
    {L"vl-list*", fnListStar, 1, kAnyCount},
    {L"append", fnAppend, 0, kAnyCount},
    {L"reverse", fnReverse, 1, 1},
    {L"subst", fnSubst, 3, 3},
    {L"vl-remove", fnRemove, 2, 2},
    {L"acad_strlsort", fnSortStrings, 1, 1},
    {L"last", fnLast, 1, 1},
    {L"nth", fnNth, 2, 2},
    {L"member", fnMember, 2, 2},
    {L"vl-position", fnPosition, 2, 2},
    {L"assoc", fnAssoc, 2, 2},
    {L"length", fnLength, 1, 1},
    {L"vl-list-length", fnListLength, 1, 1},
    {L"listp", fnListp, 1, 1},
    {L"atom", fnAtom, 1, 1},
    {L"vl-consp", fnConsp, 1, 1},
    {L"car", fnPart<"a">, 1, 1},
    {L"cdr", fnPart<"d">, 1, 1},
    {L"caar", fnPart<"aa">, 1, 1},
    {L"cadr", fnPart<"ad">, 1, 1},
    {L"cdar", fnPart<"da">, 1, 1},
    {L"cddr", fnPart<"dd">, 1, 1},
    {L"caaar", fnPart<"aaa">, 1, 1},
    {L"caadr", fnPart<"aad">, 1, 1},
    {L"cadar", fnPart<"ada">, 1, 1},
    {L"caddr", fnPart<"add">, 1, 1},
    {L"cdaar", fnPart<"daa">, 1, 1},
    {L"cdadr", fnPart<"dad">, 1, 1},
    {L"cddar", fnPart<"dda">, 1, 1},
    {L"cdddr", fnPart<"ddd">, 1, 1},
    {L"caaaar", fnPart<"aaaa">, 1, 1},
    {L"caaadr", fnPart<"aaad">, 1, 1},
    {L"caadar", fnPart<"aada">, 1, 1},
    {L"caaddr", fnPart<"aadd">, 1, 1},
    {L"cadaar", fnPart<"adaa">, 1, 1},
    {L"cadadr", fnPart<"adad">, 1, 1},
    {L"caddar", fnPart<"adda">, 1, 1},
    {L"cadddr", fnPart<"addd">, 1, 1},
    {L"cdaaar", fnPart<"daaa">, 1, 1},
    {L"cdaadr", fnPart<"daad">, 1, 1},
    {L"cdadar", fnPart<"dada">, 1, 1},
    {L"cdaddr", fnPart<"dadd">, 1, 1},
    {L"cddaar", fnPart<"ddaa">, 1, 1},
    {L"cddadr", fnPart<"ddad">, 1, 1},
    {L"cdddar", fnPart<"ddda">, 1, 1},
    {L"cddddr", fnPart<"dddd">, 1, 1},
};

}  // namespace

std::span<const FunctionRow> listFunctions() {
    return kRows;
}

}  // namespace sg::lisp
