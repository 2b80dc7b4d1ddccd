// Any result-buffer list, however malformed, through every reader and conversion: a reader that
// answers false leaves the position where it was, one that answers true never goes back, lists that
// are built out of it are well formed, and every node is released.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "bridge/marshal_results.h"
#include "bridge/marshal_variants.h"
#include "host/lisp/interpreter.h"
#include "host/lisp/marshal.h"
#include "platform/lisp/resbuf.h"

namespace {

using namespace sg;

#define REQUIRE(condition)                                      \
    do {                                                        \
        if (!(condition)) {                                     \
            std::fprintf(stderr, "violated: %s\n", #condition); \
            std::abort();                                       \
        }                                                       \
    } while (false)

// Takes values off the input; zeros when it has ended.
class Bytes {
  public:
    Bytes(const uint8_t* data, size_t size) : at_(data), end_(data + size) {}
    bool empty() const { return at_ == end_; }
    uint8_t byte() { return empty() ? 0 : *at_++; }
    int32_t number() {
        int32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = static_cast<int32_t>(uint32_t(value) << 8 | byte());
        return value;
    }

  private:
    const uint8_t* at_;
    const uint8_t* end_;
};

std::wstring textFrom(Bytes& bytes) {
    static const wchar_t* const known[] = {L"*NewRecord*", L"*RTLB*", L"*RTLE*", L"s_x",
                                           L"name",        L" ",      L"",       L"blanks  "};
    const uint8_t kind = bytes.byte();
    if (kind < 160) return known[kind % std::size(known)];
    std::wstring text;
    for (int i = kind % 20; i > 0; --i)
        text += static_cast<wchar_t>(1 + bytes.byte());
    return text;
}

resbuf* nodeFrom(Bytes& bytes) {
    static const int16_t types[] = {RTNONE,  RTREAL,  RTPOINT,   RTSHORT, RTANG,  RTSTR,
                                    RTENAME, RTPICKS, RT3DPOINT, RTLONG,  RTVOID, RTLB,
                                    RTLE,    RTDOTE,  RTNIL,     RTT};
    const uint8_t kind = bytes.byte();
    int type = types[kind % std::size(types)];
    if (kind >= 200) type = bytes.number() % 1100;
    resbuf* node = acutNewRb(type);
    int16_t held = node->restype;
    if (held < 1000) held = acdbGroupCodeToType(held);
    switch (held) {
        case RTSTR:
            node->resval.rstring = acutNewString(textFrom(bytes).c_str());
            break;
        case RTSHORT:
            node->resval.rint = static_cast<int16_t>(bytes.number());
            break;
        case RTLONG:
            node->resval.rlong = bytes.number();
            break;
        case RTREAL:
        case RTANG:
            node->resval.rreal = bytes.number() * 1e5;
            break;
        case RTPOINT:
        case RT3DPOINT:
            for (double& c : node->resval.rpoint)
                c = bytes.number();
            break;
        case RTENAME:
        case RTPICKS:
            node->resval.rlname[0] = bytes.number();
            node->resval.rlname[1] = bytes.byte();
            break;
        default:
            break;
    }
    return node;
}

resbuf* listFrom(Bytes& bytes) {
    resbuf* head = nullptr;
    resbuf** next = &head;
    for (int count = 0; !bytes.empty() && count < 4000; ++count) {
        *next = nodeFrom(bytes);
        next = &(*next)->rbnext;
    }
    return head;
}

bool isAfter(const resbuf* from, const resbuf* to) {
    for (; from != nullptr; from = from->rbnext) {
        if (from == to) return true;
    }
    return to == nullptr;
}

template <class Read>
void tryReader(const resbuf* start, const Read& read) {
    const resbuf* position = start;
    const bool taken = read(position);
    if (taken) {
        REQUIRE(isAfter(start, position));
    } else {
        REQUIRE(position == start);
    }
}

void tryReaders(const resbuf* at) {
    std::wstring text;
    int32_t i = 0;
    double d = 0;
    bool b = false;
    int16_t w = 0;
    AcGePoint2d p2;
    AcGePoint3d p3;
    ads_name name;
    AcDbObjectId id;
    std::unique_ptr<char[]> chars;
    tryReader(at, [&](const resbuf*& p) { return nextString(p, text); });
    tryReader(at, [&](const resbuf*& p) { return nextInt(p, i); });
    tryReader(at, [&](const resbuf*& p) { return nextReal(p, d); });
    tryReader(at, [&](const resbuf*& p) { return nextNumber(p, d); });
    tryReader(at, [&](const resbuf*& p) { return nextBool(p, b); });
    tryReader(at, [&](const resbuf*& p) { return nextBoolWord(p, w); });
    tryReader(at, [&](const resbuf*& p) { return nextPoint2d(p, p2); });
    tryReader(at, [&](const resbuf*& p) { return nextPoint3d(p, p3); });
    tryReader(at, [&](const resbuf*& p) { return nextEntityName(p, name); });
    tryReader(at, [&](const resbuf*& p) { return nextSelectionSet(p, name); });
    tryReader(at, [&](const resbuf*& p) { return nextObjectId(p, id); });
    tryReader(at, [&](const resbuf*& p) { return nextBytes(p, chars); });
    tryReader(at, [&](const resbuf*& p) { return nextListBegin(p); });
    tryReader(at, [&](const resbuf*& p) { return nextListEnd(p); });
    tryReader(at, [&](const resbuf*& p) { return nextKeyedInt(p, text, i); });
    tryReader(at, [&](const resbuf*& p) { return skipNext(p); });
    const bool pair = isKeyedIntNext(at);
    const resbuf* position = at;
    REQUIRE(nextKeyedInt(position, text, i) == pair);
}

// A list that the bridge built is one list and becomes a LISP value, which crosses back.
void tryResult(lisp::Interpreter& in, resbuf* built) {
    in.runProtected([&] {
        lisp::Value value;
        REQUIRE(lisp::listToValue(in, built, value));
        in.push(value);
        REQUIRE(value.isList());
        const lisp::ResbufList back = lisp::valueToResbuf(in, value);
        lisp::Value again;
        REQUIRE(lisp::chainToValue(in, back.get(), again));
        REQUIRE(in.toQuotedText(again) == in.toQuotedText(value));
        return value;
    });
    acutRelRb(built);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static lisp::Interpreter in;
    const size_t before = acutLiveNodeCount();
    Bytes bytes(data, size);
    resbuf* list = listFrom(bytes);
    int readers = 0;
    for (const resbuf* at = list; at != nullptr && readers < 200; at = at->rbnext, ++readers) {
        tryReaders(at);
    }
    COleSafeArray flat, pairs;
    if (listToVariantArray(list, flat)) {
        tryResult(in, buildValueList(flat));
        tryResult(in, buildPairList(flat));
        tryResult(in, buildRecordList(flat));
    }
    if (pairsToVariantArray(list, pairs)) {
        tryResult(in, buildPairList(pairs));
        tryResult(in, buildRecordList(pairs));
    }
    in.runProtected([&] {
        lisp::Value value;
        if (lisp::listToValue(in, list, value)) in.push(value);
        lisp::pushItems(in, list);
        return lisp::Value::nil();
    });
    acutRelRb(list);
    REQUIRE(acutLiveNodeCount() == before);
    static int runs = 0;
    if (++runs % 64 == 0) in.heap().collectFully();
    return 0;
}
