#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/tables.h"

// The functions that take functions. What they walk over lies in their arguments, on the value
// stack, so that it stays alive while LISP code runs.
namespace sg::lisp {
namespace {

// Goes over several lists at once, to the end of the shortest, and calls a function with the items
// that stand side by side.
class Walk {
  public:
    // The walk moves along in `lists` itself, so that what lies behind can be collected.
    Walk(Interpreter& in, Value& function, Args lists) : in_(in), lists_(lists) {
        // In the place of the argument the function stays alive.
        function = function_ = in.resolveFunction(function);
        for (const Value list : lists)
            in.checkList(list);
    }

    bool more() const {
        for (const Value list : lists_) {
            if (list.isCons()) continue;
            in_.checkList(list);
            return false;
        }
        return true;
    }
    Value callNext() {
        in_.safepoint();
        Value* const base = in_.sp;
        for (Value& list : lists_) {
            in_.push(list.asCons()->car);
            list = list.asCons()->cdr;
        }
        return in_.call(function_, base, lists_.size(), nullptr);
    }

  private:
    Interpreter& in_;
    Args lists_;
    Value function_;
};

Value fnMapcar(Interpreter& in, Args a) {
    Walk walk(in, a[0], a.from(1));
    ListBuilder out(in);
    while (walk.more())
        out.add(walk.callNext());
    return out.list();
}

Value fnEvery(Interpreter& in, Args a) {
    Walk walk(in, a[0], a.from(1));
    while (walk.more()) {
        if (!walk.callNext()) return Value::nil();
    }
    return in.t();
}

Value fnSome(Interpreter& in, Args a) {
    Walk walk(in, a[0], a.from(1));
    while (walk.more()) {
        if (const Value value = walk.callNext()) return value;
    }
    return Value::nil();
}

// The list from the first item on for which the predicate answers as wanted.
template <bool Wanted>
Value fnMemberIf(Interpreter& in, Args a) {
    Walk walk(in, a[0], a.from(1));
    while (walk.more()) {
        in.push(a[1]);
        Value* const here = in.sp - 1;
        if (bool(walk.callNext()) == Wanted) return *here;
        in.sp = here;
    }
    return Value::nil();
}

template <bool Removed>
Value fnRemoveIf(Interpreter& in, Args a) {
    Walk walk(in, a[0], a.from(1));
    ListBuilder out(in);
    while (walk.more()) {
        // The item outlives the call only where the list is held by somebody else.
        in.push(a[1].asCons()->car);
        Value* const item = in.sp - 1;
        if (bool(walk.callNext()) != Removed) out.add(*item);
        in.sp = item;
    }
    return out.list();
}

// ---- Sorting ------------------------------------------------------------------------------------

struct Item {
    Value value;
    int32_t index;
};

// Calls a LISP function that tells whether its first argument comes before the second. Its answers
// need not fit together.
class Comparison {
  public:
    Comparison(Interpreter& in, Value function) : in_(in), function_(function) {}
    bool before(const Item& x, const Item& y) const {
        in_.safepoint();
        Value* const base = in_.sp;
        in_.push(x.value);
        in_.push(y.value);
        return bool(in_.call(function_, base, 2, nullptr));
    }

  private:
    Interpreter& in_;
    Value function_;
};

// Merges the sorted runs [first, middle) and [middle, last) of `from` into `to`. An item of the
// second run goes first only where it must, which keeps the order of equal ones.
void merge(const Comparison& comparison, const std::vector<Item>& from, std::vector<Item>& to,
           size_t first, size_t middle, size_t last) {
    size_t left = first;
    size_t right = middle;
    size_t at = first;
    while (left < middle && right < last) {
        to[at++] = comparison.before(from[right], from[left]) ? from[right++] : from[left++];
    }
    while (left < middle)
        to[at++] = from[left++];
    while (right < last)
        to[at++] = from[right++];
}

// The items of (list function) in order. The list stays in the arguments and keeps them alive.
std::vector<Item> sorted(Interpreter& in, Args a) {
    std::vector<Item> items;
    Value rest = in.checkList(a[0]);
    for (; rest.isCons(); rest = rest.asCons()->cdr) {
        items.push_back({rest.asCons()->car, static_cast<int32_t>(items.size())});
    }
    in.checkList(rest);
    a[1] = in.resolveFunction(a[1]);
    const Comparison comparison(in, a[1]);
    std::vector<Item> other(items.size());
    for (size_t run = 1; run < items.size(); run *= 2) {
        for (size_t first = 0; first < items.size(); first += 2 * run) {
            const size_t middle = std::min(first + run, items.size());
            const size_t last = std::min(first + 2 * run, items.size());
            merge(comparison, items, other, first, middle, last);
        }
        std::swap(items, other);
    }
    return items;
}

// Of neighbours that are the same integer or the same symbol one is left. Reals, strings and lists
// all stay.
Value fnSort(Interpreter& in, Args a) {
    ListBuilder out(in);
    Value previous;
    for (const Item& item : sorted(in, a)) {
        const bool unique = item.value.isInt() || item.value.isSymbol();
        if (unique && item.value == previous) continue;
        out.add(previous = item.value);
    }
    return out.list();
}

// The places of the items in the order that vl-sort would give them; all of them.
Value fnSortIndices(Interpreter& in, Args a) {
    ListBuilder out(in);
    for (const Item& item : sorted(in, a))
        out.add(Value::integer(item.index));
    return out.list();
}

constexpr FunctionRow kRows[] = {
    {L"mapcar", fnMapcar, 2, kAnyCount},
    {L"vl-every", fnEvery, 2, kAnyCount},
    {L"vl-some", fnSome, 2, kAnyCount},
    {L"vl-member-if", fnMemberIf<true>, 2, 2},
    {L"vl-member-if-not", fnMemberIf<false>, 2, 2},
    {L"vl-remove-if", fnRemoveIf<true>, 2, 2},
    {L"vl-remove-if-not", fnRemoveIf<false>, 2, 2},
    {L"vl-sort", fnSort, 2, 2},
    {L"vl-sort-i", fnSortIndices, 2, 2},
};

}  // namespace

std::span<const FunctionRow> sequenceFunctions() {
    return kRows;
}

}  // namespace sg::lisp
