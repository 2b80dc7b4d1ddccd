#include <algorithm>
#include <cwchar>
#include <string>
#include <vector>

#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "database/lisp_functions.h"
#include "platform/db/database.h"
#include "platform/lisp/external_functions.h"

// Extended data of the product: under its registered application an entity holds keys and values
// that alternate, keys and text values as 1000, reals as 1040, integers as 1071.

namespace sg {
namespace {

constexpr const wchar_t* kApplication = L"QUILLON";
constexpr int kApplicationCode = 1001;
constexpr int kTextCode = 1000;
constexpr int kRealCode = 1040;
constexpr int kIntegerCode = 1071;

// A list of nodes that is released in the end.
class Nodes {
  public:
    explicit Nodes(resbuf* head = nullptr) : head_(head), tail_(head) {}
    ~Nodes() { acutRelRb(head_); }
    Nodes(const Nodes&) = delete;
    Nodes& operator=(const Nodes&) = delete;

    const resbuf* head() const { return head_; }
    void append(resbuf* node) {
        (tail_ == nullptr ? head_ : tail_->rbnext) = node;
        tail_ = node;
    }

  private:
    resbuf* head_;
    resbuf* tail_;
};

// The value that stands next as a node; null, and the position stays, when it is none of the three
// kinds.
resbuf* nextValue(const resbuf*& position) {
    std::wstring text;
    double real = 0;
    int32_t whole = 0;
    if (nextString(position, text)) return acutBuildList(kTextCode, text.c_str(), 0);
    if (nextReal(position, real)) return acutBuildList(kRealCode, real, 0);
    if (nextInt(position, whole)) return acutBuildList(kIntegerCode, whole, 0);
    return nullptr;
}

// Keys and values into nodes. False for a value that is true and for one that nothing can read; a
// nil value drops its key.
bool appendPairs(const resbuf*& position, Nodes& nodes) {
    std::wstring key;
    while (nextString(position, key)) {
        if (resbuf* const value = nextValue(position)) {
            nodes.append(acutBuildList(kTextCode, key.c_str(), 0));
            nodes.append(value);
            continue;
        }
        bool flag = false;
        if (!nextBool(position, flag) || flag) return false;
    }
    return true;
}

// What kind of value a node holds, whether its type is that or a group code.
int16_t kindOf(const resbuf& node) {
    return node.restype < RTNONE ? acdbGroupCodeToType(node.restype) : node.restype;
}

bool isString(const resbuf& node) {
    return kindOf(node) == RTSTR;
}

// The product's block of an entity, without its first node; null when there is none. The walk over
// it goes key, value, key, value; a node that is no string is passed over alone.
class Block {
  public:
    explicit Block(AcDbObjectId entity) {
        AcDbObject* object = nullptr;
        if (acdbOpenAcDbObject(object, entity, AcDb::kForRead) != Acad::eOk) return;
        list_ = object->xData(kApplication);
        object->close();
    }
    ~Block() { acutRelRb(list_); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    // Calls `visit` with each key and its value, null at the block's end, until it answers false.
    template <class Visit>
    void walk(const Visit& visit) const {
        const resbuf* node = list_ == nullptr ? nullptr : list_->rbnext;
        while (node != nullptr) {
            if (!isString(*node)) {
                node = node->rbnext;
                continue;
            }
            const resbuf* const value = node->rbnext;
            if (!visit(node->resval.rstring, value)) return;
            node = value == nullptr ? nullptr : value->rbnext;
        }
    }

  private:
    resbuf* list_ = nullptr;
};

// A value as LISP gets it: a text, or the same value in a node of its own kind.
int retValue(const resbuf& value) {
    if (isString(value)) return acedRetStr(value.resval.rstring);
    const resbuf fresh{nullptr, kindOf(value), value.resval};
    return acedRetVal(&fresh);
}

void appendValue(resbuf*& tail, const wchar_t* key, const resbuf& value) {
    if (isString(value)) {
        appendPair(tail, key, std::wstring_view(value.resval.rstring));
        return;
    }
    switch (kindOf(value)) {
        case RTREAL:
            appendPair(tail, key, value.resval.rreal);
            break;
        case RTSHORT:
            appendPair(tail, key, static_cast<int32_t>(value.resval.rint));
            break;
        case RTLONG:
            appendPair(tail, key, value.resval.rlong);
            break;
        case RTPOINT:
            appendPair(tail, key, AcGePoint3d(value.resval.rpoint[0], value.resval.rpoint[1], 0));
            break;
        case RT3DPOINT:
            appendPair(tail, key,
                       AcGePoint3d(value.resval.rpoint[0], value.resval.rpoint[1],
                                   value.resval.rpoint[2]));
            break;
        default:
            break;
    }
}

// The block, or those of its keys that `wanted` lets through, as an association list.
template <class Wanted>
void retPairs(AcDbObjectId entity, const Wanted& wanted) {
    resbuf* head = nullptr;
    resbuf* tail = nullptr;
    beginResultList(head, tail);
    bool any = false;
    Block(entity).walk([&](const wchar_t* key, const resbuf* value) {
        if (*key != 0 && value != nullptr && wanted(key)) {
            appendValue(tail, key, *value);
            any = true;
        }
        return true;
    });
    finishResultList(head, tail);
    if (!any) acedRetNil();
}

}  // namespace

int xdPutList() {
    const Nodes arguments(acedGetArgs());
    const resbuf* position = arguments.head();
    AcDbObjectId id;
    if (!nextObjectId(position, id)) return kLispWrongType;
    acedRetNil();
    Nodes data(acutBuildList(kApplicationCode, kApplication, 0));
    if (nextListBegin(position) && !appendPairs(position, data)) return kLispOk;
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite) != Acad::eOk) return kLispOk;
    acdbRegApp(kApplication);
    object->setXData(data.head());
    acedRetT();
    object->close();
    return kLispOk;
}

int xdGet() {
    const Nodes arguments(acedGetArgs());
    const resbuf* position = arguments.head();
    AcDbObjectId id;
    std::wstring wanted;
    if (!nextObjectId(position, id) || !nextString(position, wanted)) return kLispWrongType;
    acedRetNil();
    Block(id).walk([&](const wchar_t* key, const resbuf* value) {
        if (std::wcscmp(key, wanted.c_str()) != 0) return true;
        if (value != nullptr) retValue(*value);
        return false;
    });
    return kLispOk;
}

int xdGetList() {
    const Nodes arguments(acedGetArgs());
    const resbuf* position = arguments.head();
    AcDbObjectId id;
    if (!nextObjectId(position, id)) return kLispWrongType;
    acedRetNil();
    if (!nextListBegin(position)) return kLispOk;
    std::vector<std::wstring> keys;
    for (std::wstring key; nextString(position, key);)
        keys.push_back(key);
    retPairs(id, [&](const wchar_t* key) {
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    });
    return kLispOk;
}

int xdGetAll() {
    const Nodes arguments(acedGetArgs());
    const resbuf* position = arguments.head();
    AcDbObjectId id;
    if (!nextObjectId(position, id)) return kLispWrongType;
    acedRetNil();
    retPairs(id, [](const wchar_t*) { return true; });
    return kLispOk;
}

}  // namespace sg
