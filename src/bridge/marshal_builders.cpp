#include "bridge/marshal_builders.h"

#include <algorithm>
#include <limits>
#include <new>

#include "bridge/marshal_variants.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

// A query's result is millions of nodes, so they are made and linked one by one here rather than
// through a list of arguments that acutBuildList would have to interpret.

resbuf* link(resbuf*& tail, int type) {
    resbuf* node = acutNewRb(type);
    if (node == nullptr) throw std::bad_alloc();
    tail->rbnext = node;
    tail = node;
    return node;
}

void put(resbuf*& tail, int32_t value) {
    link(tail, RTLONG)->resval.rlong = value;
}

void put(resbuf*& tail, double value) {
    link(tail, RTREAL)->resval.rreal = value;
}

void put(resbuf*& tail, std::wstring_view value) {
    resbuf* node = link(tail, RTSTR);
    node->resval.rstring = acutNewString(value.data(), value.size());
    if (node->resval.rstring == nullptr) throw std::bad_alloc();
}

void put(resbuf*& tail, const AcGePoint3d& value) {
    resbuf* node = link(tail, RT3DPOINT);
    node->resval.rpoint[0] = value.x;
    node->resval.rpoint[1] = value.y;
    node->resval.rpoint[2] = value.z;
}

void put(resbuf*& tail, const ads_name& value) {
    std::copy_n(value, 2, link(tail, RTENAME)->resval.rlname);
}

template <typename Key>
void openPair(resbuf*& tail, const Key& key) {
    link(tail, RTLB);
    put(tail, key);
    link(tail, RTDOTE);
}

template <typename Key, typename Value>
void putPair(resbuf*& tail, const Key& key, const Value& value) {
    openPair(tail, key);
    put(tail, value);
    link(tail, RTLE);
}

void putTypedPair(resbuf*& tail, std::wstring_view key, int valueType) {
    openPair(tail, key);
    link(tail, valueType);
    link(tail, RTLE);
}

void putShared(resbuf*& tail, const resbuf& text) {
    resbuf* node = link(tail, RTSTR);
    node->resval.rstring = sgShareNodeString(text.resval.rstring);
    if (node->resval.rstring == nullptr) throw std::bad_alloc();
}

void putVariant(resbuf*& tail, const VARIANT& value, bool trim) {
    tail->rbnext = variantToResbuf(value, trim);
    tail = tail->rbnext;
}

}  // namespace

void beginResultList(resbuf*& head, resbuf*& tail) {
    head = acutNewRb(RTLB);
    if (head == nullptr) throw std::bad_alloc();
    tail = head;
}

void finishResultList(resbuf*& head, resbuf*& tail) {
    appendListEnd(tail);
    acedRetList(head);
    acutRelRb(head);
    head = nullptr;
    tail = nullptr;
}

void appendListBegin(resbuf*& tail) {
    link(tail, RTLB);
}

void appendListEnd(resbuf*& tail) {
    link(tail, RTLE);
}

void appendInt(resbuf*& tail, int32_t value) {
    put(tail, value);
}

void appendReal(resbuf*& tail, double value) {
    put(tail, value);
}

void appendString(resbuf*& tail, std::wstring_view value) {
    put(tail, value);
}

void appendPoint(resbuf*& tail, const AcGePoint3d& value) {
    put(tail, value);
}

void appendBool(resbuf*& tail, bool value) {
    link(tail, value ? RTT : RTNIL);
}

void appendObjectId(resbuf*& tail, AcDbObjectId value) {
    ads_name name;
    if (!value.isNull() && acdbGetAdsName(name, value) == Acad::eOk) {
        put(tail, name);
    } else {
        link(tail, RTNIL);
    }
}

void appendVariant(resbuf*& tail, const VARIANT& value) {
    putVariant(tail, value, true);
}

void appendPair(resbuf*& tail, int32_t key, int32_t value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, int32_t key, double value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, int32_t key, std::wstring_view value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, int32_t key, const AcGePoint3d& value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, double key, int32_t value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, const AcGePoint3d& key, double value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, std::wstring_view key, std::wstring_view value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, std::wstring_view key, int32_t value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, std::wstring_view key, double value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, std::wstring_view key, const AcGePoint3d& value) {
    putPair(tail, key, value);
}

void appendPair(resbuf*& tail, std::wstring_view key, AcDbObjectId value) {
    if (value.isNull()) {
        appendNilPair(tail, key);
        return;
    }
    ads_name name;
    if (acdbGetAdsName(name, value) == Acad::eOk) putPair(tail, key, name);
}

void appendPair(resbuf*& tail, std::wstring_view key, const AcDbObject* value) {
    appendPair(tail, key, value == nullptr ? AcDbObjectId() : value->objectId());
}

void appendPair(resbuf*& tail, std::wstring_view key, const VARIANT& value) {
    openPair(tail, key);
    putVariant(tail, value, trimsValueOf(key));
    link(tail, RTLE);
}

void appendPair(resbuf*& tail, const resbuf& key, const VARIANT& value) {
    link(tail, RTLB);
    putShared(tail, key);
    link(tail, RTDOTE);
    putVariant(tail, value, trimsValueOf(key.resval.rstring));
    link(tail, RTLE);
}

void appendNilPair(resbuf*& tail, std::wstring_view key) {
    putTypedPair(tail, key, RTNIL);
}

void appendTPair(resbuf*& tail, std::wstring_view key) {
    putTypedPair(tail, key, RTT);
}

void appendBoolPair(resbuf*& tail, std::wstring_view key, bool value) {
    putTypedPair(tail, key, value ? RTT : RTNIL);
}

int retIntOrReal(int32_t value) {
    using Short = std::numeric_limits<int16_t>;
    const bool fits = value >= Short::min() && value <= Short::max();
    return fits ? acedRetInt(value) : acedRetReal(value);
}

int retEntity(AcDbObjectId id) {
    ads_name name;
    if (acdbGetAdsName(name, id) != Acad::eOk) return acedRetNil();
    return acedRetName(name, RTENAME);
}

}  // namespace sg
