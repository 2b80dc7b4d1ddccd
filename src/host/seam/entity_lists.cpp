#include "host/seam/entity_lists.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <new>

#include "host/lisp/functions/list_builder.h"

namespace sg {
namespace {

using lisp::Interpreter;
using lisp::ListBuilder;
using lisp::ResbufList;
using lisp::Value;

constexpr int kExtendedData = -3;
constexpr int kApplication = 1001;
constexpr int kBinary = 1004;
constexpr int kHandle = 1005;

Value car(Value list) {
    return list.asCons()->car;
}
Value cdr(Value list) {
    return list.asCons()->cdr;
}

// Grows a chain of groups from LISP values.
class GroupBuilder {
  public:
    explicit GroupBuilder(Interpreter& in) : in_(in) {}

    // One item of an object's list.
    void add(Value item) {
        if (!item.isCons() || !car(item).isInt()) bad(item);
        const int32_t code = car(item).asInt();
        if (code == kExtendedData) {
            append(kExtendedData);
            Value rest = cdr(item);
            for (; rest.isCons(); rest = cdr(rest))
                addApplication(car(rest));
            if (!rest.isNil()) bad(item);
        } else {
            addGroup(item);
        }
    }

    ResbufList take() { return std::move(head_); }

  private:
    [[noreturn]] void bad(Value item) { in_.fail(L"bad DXF group: " + in_.toQuotedText(item)); }

    resbuf* append(int code) {
        resbuf* const node = acutNewRb(code);
        if (node == nullptr) throw std::bad_alloc();
        if (tail_ == nullptr) {
            head_.reset(node);
        } else {
            tail_->rbnext = node;
        }
        return tail_ = node;
    }

    void addApplication(Value application) {
        if (!application.isCons() || !car(application).isString()) bad(application);
        appendText(kApplication, car(application));
        Value rest = cdr(application);
        for (; rest.isCons(); rest = cdr(rest)) {
            if (!car(rest).isCons() || !car(car(rest)).isInt()) bad(car(rest));
            addGroup(car(rest));
        }
        if (!rest.isNil()) bad(application);
    }

    void appendText(int code, Value text) {
        const lisp::String* const s = text.asString();
        wchar_t* const copy = acutNewString(s->chars(), s->length);
        if (copy == nullptr) throw std::bad_alloc();
        append(code)->resval.rstring = copy;
    }

    void addGroup(Value item) {
        const int32_t code = car(item).asInt();
        const Value value = cdr(item);
        const bool isCode = code >= INT16_MIN && code <= INT16_MAX;
        switch (isCode ? acdbGroupCodeToType(code) : int16_t{RTNONE}) {
            case RTSTR:
                if (!value.isString() || !isText(code, value)) bad(item);
                appendText(code, value);
                break;
            case RTREAL:
                if (!value.isNumber()) bad(item);
                append(code)->resval.rreal = value.asNumber();
                break;
            case RTSHORT:
                append(code)->resval.rint = shortWhole(item, value);
                break;
            case RTLONG:
                append(code)->resval.rlong = whole(item, value);
                break;
            case RT3DPOINT:
                addPoint(code, item);
                break;
            case RTENAME:
                if (!value.isEntityName()) bad(item);
                lisp::payloadToName(value.asEntityName(), append(code)->resval.rlname);
                break;
            default:
                bad(item);
        }
    }

    // Bytes are pairs of hexadecimal digits, and a handle is at most 16 digits.
    static bool isText(int32_t code, Value value) {
        if (code != kBinary && code != kHandle) return true;
        const lisp::String* const s = value.asString();
        const bool isWrongLength =
            code == kBinary ? s->length % 2 != 0 : s->length == 0 || s->length > 16;
        return !isWrongLength && std::all_of(s->chars(), s->chars() + s->length,
                                             [](wchar_t c) { return std::iswxdigit(c) != 0; });
    }

    // 16 bits, with or without a sign.
    int16_t shortWhole(Value item, Value value) {
        const int32_t number = whole(item, value);
        if (number < INT16_MIN || number > UINT16_MAX) bad(item);
        return static_cast<int16_t>(number);
    }

    int32_t whole(Value item, Value value) {
        if (value.isInt()) return value.asInt();
        if (!value.isReal() || std::abs(value.asReal()) > INT32_MAX) bad(item);
        return static_cast<int32_t>(value.asReal());
    }

    // (code x y [z]).
    void addPoint(int code, Value item) {
        resbuf* const node = append(code);
        int count = 0;
        for (Value rest = cdr(item); rest.isCons(); rest = cdr(rest)) {
            if (count == 3 || !car(rest).isNumber()) bad(item);
            node->resval.rpoint[count++] = car(rest).asNumber();
        }
        if (count < 2) bad(item);
        if (count == 2) node->resval.rpoint[2] = 0;
    }

    Interpreter& in_;
    ResbufList head_;
    resbuf* tail_ = nullptr;
};

// One group as LISP has it.
Value groupToValue(Interpreter& in, const resbuf& group, bool flat) {
    const Value code = Value::integer(group.restype);
    switch (acdbGroupCodeToType(group.restype)) {
        case RTSTR:
            return in.cons(code, in.string(group.resval.rstring));
        case RTREAL:
            return in.cons(code, Value::real(group.resval.rreal));
        case RTSHORT:
            return in.cons(code, Value::integer(group.resval.rint));
        case RTLONG:
            return in.cons(code, Value::integer(group.resval.rlong));
        case RTENAME:
            return in.cons(code, Value::entityName(lisp::nameToPayload(group.resval.rlname)));
        case RT3DPOINT:
            break;
        default:
            return in.cons(code, Value::nil());
    }
    const double* const p = group.resval.rpoint;
    const Value z = flat ? Value::nil() : in.cons(Value::real(p[2]), Value::nil());
    return in.cons(code, in.cons(Value::real(p[0]), in.cons(Value::real(p[1]), z)));
}

// ("application" group ...), and the node behind it.
Value applicationToValue(Interpreter& in, const resbuf*& node) {
    ListBuilder groups(in);
    groups.add(in.string(node->resval.rstring));
    for (node = node->rbnext; node != nullptr && node->restype != kApplication;
         node = node->rbnext) {
        groups.add(groupToValue(in, *node, false));
    }
    return groups.list();
}

}  // namespace

ResbufList listToGroups(Interpreter& in, Value list) {
    GroupBuilder builder(in);
    for (Value rest = in.checkList(list); rest.isCons(); rest = cdr(rest))
        builder.add(car(rest));
    return builder.take();
}

Value groupsToList(Interpreter& in, model::ListWriter& writer) {
    const ResbufList groups(writer.take());
    auto flat = writer.flatPoints().begin();
    ListBuilder list(in);
    const resbuf* node = groups.get();
    while (node != nullptr && node->restype != kExtendedData) {
        const bool isFlat = flat != writer.flatPoints().end() && *flat == node;
        if (isFlat) ++flat;
        list.add(groupToValue(in, *node, isFlat));
        node = node->rbnext;
    }
    if (node == nullptr) return list.list();
    ListBuilder applications(in);
    applications.add(Value::integer(kExtendedData));
    for (node = node->rbnext; node != nullptr;)
        applications.add(applicationToValue(in, node));
    list.add(applications.list());
    return list.list();
}

AcDbObjectId entityArgument(Interpreter& in, Value name) {
    if (!name.isEntityName()) in.badArgument(L"lentityp", name);
    ads_name words;
    lisp::payloadToName(name.asEntityName(), words);
    AcDbObjectId id;
    acdbGetObjectId(id, words);
    return id;
}

Value entityName(AcDbObjectId id) {
    ads_name words;
    if (id.isNull() || acdbGetAdsName(words, id) != Acad::eOk) return Value::nil();
    return Value::entityName(lisp::nameToPayload(words));
}

}  // namespace sg
