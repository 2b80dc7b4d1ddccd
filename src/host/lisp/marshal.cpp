#include "host/lisp/marshal.h"

#include <array>
#include <new>
#include <vector>

namespace sg::lisp {
namespace {

// Grows a chain of nodes at its end; owns it until it is taken.
class ChainBuilder {
  public:
    explicit ChainBuilder(Interpreter& in) : in_(in) {}

    void add(Value value) {
        if (value.isNil()) {
            append(RTNIL);
        } else if (value.isInt()) {
            const int32_t i = value.asInt();
            if (i >= INT16_MIN && i <= INT16_MAX) {
                append(RTSHORT)->resval.rint = static_cast<int16_t>(i);
            } else {
                append(RTLONG)->resval.rlong = i;
            }
        } else if (value.isReal()) {
            append(RTREAL)->resval.rreal = value.asReal();
        } else if (value.isString()) {
            const String* s = value.asString();
            wchar_t* copy = acutNewString(s->chars(), s->length);
            if (copy == nullptr) throw std::bad_alloc();
            append(RTSTR)->resval.rstring = copy;
        } else if (value.isCons()) {
            addList(value);
        } else if (value.isEntityName()) {
            payloadToName(value.asEntityName(), append(RTENAME)->resval.rlname);
        } else if (value == in_.t()) {
            append(RTT);
        } else if (const PickSet* set = asPickSet(value)) {
            payloadToName(set->name, append(RTPICKS)->resval.rlname);
        } else {
            in_.fail(L"bad argument type: " + in_.toQuotedText(value));
        }
    }

    ResbufList take() {
        tail_ = nullptr;
        return std::move(head_);
    }

  private:
    resbuf* append(int type) {
        resbuf* node = acutNewRb(type);
        if (node == nullptr) throw std::bad_alloc();
        if (tail_ == nullptr) {
            head_.reset(node);
        } else {
            tail_->rbnext = node;
        }
        return tail_ = node;
    }

    // A proper list of two or three reals crosses as a point.
    bool addPoint(Value list) {
        double xyz[3];
        int count = 0;
        for (; list.isCons(); list = list.asCons()->cdr) {
            if (count == 3 || !list.asCons()->car.isReal()) return false;
            xyz[count++] = list.asCons()->car.asReal();
        }
        if (!list.isNil() || count < 2) return false;
        resbuf* node = append(count == 2 ? RTPOINT : RT3DPOINT);
        for (int i = 0; i < count; ++i)
            node->resval.rpoint[i] = xyz[i];
        return true;
    }

    void addList(Value list) {
        if (addPoint(list)) return;
        in_.checkStack();
        append(RTLB);
        for (; list.isCons(); list = list.asCons()->cdr)
            add(list.asCons()->car);
        if (!list.isNil()) {
            append(RTDOTE);
            add(list);
        }
        append(RTLE);
    }

    Interpreter& in_;
    ResbufList head_;
    resbuf* tail_ = nullptr;
};

// Remembers the short strings of one conversion: the records of a query repeat their field names,
// and strings are immutable, so one copy serves them all.
class StringShare {
  public:
    explicit StringShare(Interpreter& in) : in_(in) {}

    Value string(const wchar_t* text) {
        if (text == nullptr) return in_.string(L"");
        // Nodes may share a text, which stays where it is while they are read.
        Seen& seen = seen_[reinterpret_cast<uintptr_t>(text) / kAlignment % seen_.size()];
        if (seen.text != text) seen = {text, byContent(text)};
        return seen.value;
    }

  private:
    struct Seen {
        const wchar_t* text = nullptr;
        Value value;
    };

    Value byContent(const wchar_t* text) {
        uint32_t hash = 2166136261u;
        size_t length = 0;
        for (; text[length] != 0; ++length) {
            if (length < kLongest) hash = (hash ^ static_cast<uint32_t>(text[length])) * 16777619u;
        }
        const std::wstring_view view(text, length);
        if (length >= kLongest) return in_.string(view);
        Value& known = known_[(hash ^ hash >> 15) % known_.size()];
        if (!known.isString() || known.asString()->view() != view) known = in_.string(view);
        return known;
    }

    static constexpr size_t kLongest = 24;
    static constexpr size_t kAlignment = 16;
    Interpreter& in_;
    std::array<Seen, 64> seen_;
    std::array<Value, 64> known_;
};

class Parser {
  public:
    Parser(Interpreter& in) : in_(in), strings_(in) {}

    // Takes one item from `at` on; false when the chain is malformed there.
    bool item(const resbuf*& at, Value& value) {
        if (at->restype != RTLB) {
            if (at->restype == RTLE || at->restype == RTDOTE) return false;
            value = atom(*at);
            at = at->rbnext;
            return true;
        }
        return list(at, value);
    }

  private:
    struct Open {
        Value head;
        Cons* last = nullptr;
        bool dot = false;   // the next item is the tail
        bool tail = false;  // the tail has been read
    };

    // Nesting goes to a vector, so that no depth of it endangers the native stack.
    bool list(const resbuf*& at, Value& value) {
        open_.clear();
        for (; at != nullptr; at = at->rbnext) {
            if (at->restype == RTLB) {
                open_.emplace_back();
            } else if (at->restype == RTDOTE) {
                Open& open = open_.back();
                if (open.last == nullptr || open.dot) return false;
                open.dot = true;
            } else if (at->restype == RTLE) {
                const Open done = open_.back();
                if (done.dot && !done.tail) return false;
                open_.pop_back();
                if (open_.empty()) {
                    at = at->rbnext;
                    value = done.head;
                    return true;
                }
                if (!append(done.head)) return false;
            } else if (!append(atom(*at))) {
                return false;
            }
        }
        return false;
    }

    bool append(Value item) {
        Open& open = open_.back();
        if (open.dot) {
            if (open.tail) return false;
            open.tail = true;
            open.last->cdr = item;
            return true;
        }
        const Value cell = in_.cons(item, Value::nil());
        if (open.last == nullptr) {
            open.head = cell;
        } else {
            open.last->cdr = cell;
        }
        open.last = cell.asCons();
        return true;
    }

    Value point(const ads_real* xyz, size_t count) {
        Value list;
        for (size_t i = count; i-- > 0;)
            list = in_.cons(Value::real(xyz[i]), list);
        return list;
    }

    Value atom(const resbuf& node) {
        if (node.restype < 1000 && node.restype > -10) {
            resbuf typed = node;
            typed.restype = acdbGroupCodeToType(node.restype);
            return in_.cons(Value::integer(node.restype), plain(typed));
        }
        return plain(node);
    }

    Value plain(const resbuf& node) {
        switch (node.restype) {
            case RTREAL:
            case RTANG:
            case RTORINT:
                return Value::real(node.resval.rreal);
            case RTSHORT:
                return Value::integer(node.resval.rint);
            case RTLONG:
                return Value::integer(node.resval.rlong);
            case RTSTR:
                return strings_.string(node.resval.rstring);
            case RTPOINT:
                return point(node.resval.rpoint, 2);
            case RT3DPOINT:
                return point(node.resval.rpoint, 3);
            case RTENAME:
                return Value::entityName(nameToPayload(node.resval.rlname));
            case RTPICKS:
                return pickSetValue(in_, nameToPayload(node.resval.rlname));
            case RTT:
                return in_.t();
            case RTVOID:
                return Value::voidValue();
            default:
                return Value::nil();
        }
    }

    Interpreter& in_;
    StringShare strings_;
    std::vector<Open> open_;
};

}  // namespace

Value pickSetValue(Interpreter& in, uint64_t name) {
    if (in.hooks().retainPickSet) in.hooks().retainPickSet(name);
    return Value::object(in.heap().adopt(new PickSet(name, in.hooks().releasePickSet)));
}

uint64_t nameToPayload(const ads_name name) {
    return static_cast<uint64_t>(static_cast<uint32_t>(name[1])) << 32 |
           static_cast<uint32_t>(name[0]);
}

void payloadToName(uint64_t payload, ads_name name) {
    name[0] = static_cast<int32_t>(static_cast<uint32_t>(payload));
    name[1] = static_cast<int32_t>(static_cast<uint32_t>(payload >> 32));
}

ResbufList argumentsToResbuf(Interpreter& in, Args arguments) {
    ChainBuilder chain(in);
    for (const Value value : arguments)
        chain.add(value);
    return chain.take();
}

ResbufList valueToResbuf(Interpreter& in, Value value) {
    ChainBuilder chain(in);
    chain.add(value);
    return chain.take();
}

Value nodeToValue(Interpreter& in, const resbuf& node) {
    resbuf single = node;
    single.rbnext = nullptr;
    const resbuf* at = &single;
    Value value;
    return Parser(in).item(at, value) ? value : Value::nil();
}

bool listToValue(Interpreter& in, const resbuf* chain, Value& value) {
    if (chain == nullptr) {
        value = Value::nil();
        return true;
    }
    Parser parser(in);
    const resbuf* at = chain;
    Value first;
    if (!parser.item(at, first)) return false;
    const bool isList = chain->restype == RTLB;
    if (at == nullptr) {
        value = isList ? first : in.cons(first, Value::nil());
        return true;
    }
    // Items one after the other, perhaps with a dot before the last.
    const Value head = in.cons(first, Value::nil());
    Cons* last = head.asCons();
    while (at != nullptr) {
        const bool dot = at->restype == RTDOTE;
        if (dot && (at = at->rbnext) == nullptr) return false;
        Value item;
        if (!parser.item(at, item)) return false;
        if (dot) {
            if (at != nullptr) return false;
            last->cdr = item;
        } else {
            const Value cell = in.cons(item, Value::nil());
            last->cdr = cell;
            last = cell.asCons();
        }
    }
    value = head;
    return true;
}

bool appendItems(Interpreter& in, const resbuf* chain, Value& head, Value& last) {
    Parser parser(in);
    while (chain != nullptr) {
        Value item;
        if (!parser.item(chain, item)) return false;
        const Value cell = in.cons(item, Value::nil());
        if (last.isCons()) {
            last.asCons()->cdr = cell;
        } else {
            head = cell;
        }
        last = cell;
    }
    return true;
}

bool chainToValue(Interpreter& in, const resbuf* chain, Value& value) {
    if (chain != nullptr && chain->rbnext == nullptr && chain->restype != RTLB &&
        chain->restype != RTLE && chain->restype != RTDOTE) {
        value = nodeToValue(in, *chain);
        return true;
    }
    return listToValue(in, chain, value);
}

int pushItems(Interpreter& in, const resbuf* chain) {
    Parser parser(in);
    int count = 0;
    while (chain != nullptr) {
        Value item;
        if (!parser.item(chain, item)) return -1;
        in.push(item);
        ++count;
    }
    return count;
}

}  // namespace sg::lisp
