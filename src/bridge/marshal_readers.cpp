#include "bridge/marshal_readers.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr int16_t kFirstNonDxfType = 1000;

bool isDxfNode(const resbuf& node) {
    return node.restype < kFirstNonDxfType;
}

bool isDxfPoint(const resbuf& node) {
    return node.restype >= 10 && node.restype <= 17;
}

bool stepPast(const resbuf*& position, int16_t type) {
    if (position == nullptr || position->restype != type) return false;
    position = position->rbnext;
    return true;
}

int32_t truncated(double value) {
    // Written so that a NaN fails it too.
    if (!(value > -2147483649.0 && value < 2147483648.0)) {
        return std::numeric_limits<int32_t>::min();
    }
    return static_cast<int32_t>(value);
}

// The value of a node whose type says that it holds an integer or a real, as an integer.
int32_t integerOfType(const resbuf& node, int16_t type) {
    switch (type) {
        case RTSHORT:
            return node.resval.rint;
        case RTLONG:
            return node.resval.rlong;
        case RTREAL:
            return truncated(node.resval.rreal);
        default:
            return 0;
    }
}

int32_t integerOf(const resbuf& node) {
    const bool dxf = isDxfNode(node);
    return integerOfType(node, dxf ? acdbGroupCodeToType(node.restype) : node.restype);
}

const wchar_t* textOf(const resbuf& node) {
    return node.resval.rstring == nullptr ? L"" : node.resval.rstring;
}

bool nextName(const resbuf*& position, int16_t type, ads_name& name) {
    if (position == nullptr || position->restype != type) return false;
    std::copy_n(position->resval.rlname, 2, name);
    position = position->rbnext;
    return true;
}

// The first two numbers of a point given as numbers. Which types the second may have depends on the
// first; the asymmetry is part of the interface that LISP programs know.
bool nextTwoNumbers(const resbuf*& position, double& x, double& y) {
    const resbuf& first = *position;
    const resbuf* second = first.rbnext;
    if (second == nullptr) return false;
    switch (first.restype) {
        case RTREAL:
        case RTLONG:
            if (second->restype != RTREAL && second->restype != RTLONG) return false;
            x = first.restype == RTREAL ? first.resval.rreal : first.resval.rlong;
            y = second->restype == RTREAL ? second->resval.rreal : second->resval.rlong;
            break;
        case RTSHORT:
            x = first.resval.rint;
            y = integerOf(*second);
            break;
        default:
            return false;
    }
    position = second->rbnext;
    return true;
}

double optionalThirdNumber(const resbuf*& position) {
    if (position == nullptr) return 0.0;
    double z = 0.0;
    switch (position->restype) {
        case RTREAL:
            z = position->resval.rreal;
            break;
        case RTLONG:
            z = position->resval.rlong;
            break;
        case RTSHORT:
            z = position->resval.rint;
            break;
        default:
            return 0.0;
    }
    position = position->rbnext;
    return z;
}

// The five nodes of a pair; null in place of the nodes when they are no such pair.
struct KeyedIntNodes {
    const resbuf* key = nullptr;
    const resbuf* value = nullptr;
    const resbuf* after = nullptr;
};

KeyedIntNodes keyedIntAt(const resbuf* position) {
    KeyedIntNodes nodes;
    if (!stepPast(position, RTLB)) return {};
    nodes.key = position;
    if (!stepPast(position, RTSTR) || !stepPast(position, RTDOTE)) return {};
    nodes.value = position;
    if (!stepPast(position, RTSHORT) && !stepPast(position, RTLONG)) return {};
    if (!stepPast(position, RTLE)) return {};
    nodes.after = position;
    return nodes;
}

}  // namespace

bool nextString(const resbuf*& position, std::wstring& text) {
    if (position == nullptr || position->restype != RTSTR) return false;
    text = textOf(*position);
    position = position->rbnext;
    return true;
}

bool nextInt(const resbuf*& position, int32_t& value) {
    if (position == nullptr) return false;
    if (isDxfNode(*position)) {
        value = position->restype;
        return true;
    }
    switch (position->restype) {
        case RTSHORT:
        case RTLONG:
        case RTREAL:
            value = integerOfType(*position, position->restype);
            position = position->rbnext;
            return true;
        default:
            return false;
    }
}

bool nextReal(const resbuf*& position, double& value) {
    if (position == nullptr || position->restype != RTREAL) return false;
    value = position->resval.rreal;
    position = position->rbnext;
    return true;
}

bool nextNumber(const resbuf*& position, double& value) {
    if (nextReal(position, value)) return true;
    int32_t integer = 0;
    if (!nextInt(position, integer)) return false;
    value = integer;
    return true;
}

bool nextBool(const resbuf*& position, bool& value) {
    if (position == nullptr || position->restype == RTLB) return false;
    if (position->restype == RTLE) {
        value = false;
        return true;
    }
    value = position->restype != RTNIL;
    position = position->rbnext;
    return true;
}

bool nextBoolWord(const resbuf*& position, int16_t& value) {
    bool truth = false;
    if (!nextBool(position, truth)) return false;
    value = truth ? -1 : 0;
    return true;
}

bool nextPoint2d(const resbuf*& position, AcGePoint2d& point) {
    if (position == nullptr) return false;
    const resbuf& node = *position;
    if (node.restype == RTPOINT || node.restype == RT3DPOINT || isDxfPoint(node)) {
        point.x = node.resval.rpoint[0];
        point.y = node.resval.rpoint[1];
        position = node.rbnext;
        return true;
    }
    const resbuf* second = node.rbnext;
    if (node.restype != RTREAL || second == nullptr || second->restype != RTREAL) return false;
    point.x = node.resval.rreal;
    point.y = second->resval.rreal;
    position = second->rbnext;
    return true;
}

bool nextPoint3d(const resbuf*& position, AcGePoint3d& point) {
    if (position == nullptr) return false;
    const resbuf& node = *position;
    if (node.restype == RTPOINT || node.restype == RT3DPOINT || isDxfPoint(node)) {
        point.x = node.resval.rpoint[0];
        point.y = node.resval.rpoint[1];
        point.z = node.restype == RTPOINT ? 0.0 : node.resval.rpoint[2];
        position = node.rbnext;
        return true;
    }
    double x = 0.0, y = 0.0;
    if (!nextTwoNumbers(position, x, y)) return false;
    point.x = x;
    point.y = y;
    point.z = optionalThirdNumber(position);
    return true;
}

bool nextEntityName(const resbuf*& position, ads_name& name) {
    return nextName(position, RTENAME, name);
}

bool nextSelectionSet(const resbuf*& position, ads_name& name) {
    return nextName(position, RTPICKS, name);
}

bool nextObjectId(const resbuf*& position, AcDbObjectId& id) {
    if (position == nullptr || position->restype != RTENAME) return false;
    AcDbObjectId found;
    if (acdbGetObjectId(found, position->resval.rlname) != Acad::eOk) return false;
    id = found;
    position = position->rbnext;
    return true;
}

bool nextBytes(const resbuf*& position, std::unique_ptr<char[]>& bytes) {
    if (position == nullptr || position->restype != RTSTR) return false;
    const std::string narrow = toCp1252(textOf(*position));
    bytes = std::make_unique<char[]>(narrow.size() + 1);
    std::copy(narrow.begin(), narrow.end(), bytes.get());
    position = position->rbnext;
    return true;
}

bool nextListBegin(const resbuf*& position) {
    return stepPast(position, RTLB);
}

bool nextListEnd(const resbuf*& position) {
    return stepPast(position, RTLE);
}

bool nextKeyedInt(const resbuf*& position, std::wstring& key, int32_t& value) {
    const KeyedIntNodes nodes = keyedIntAt(position);
    if (nodes.key == nullptr) return false;
    key = textOf(*nodes.key);
    value = integerOfType(*nodes.value, nodes.value->restype);
    position = nodes.after;
    return true;
}

bool isKeyedIntNext(const resbuf* position) {
    return keyedIntAt(position).key != nullptr;
}

bool skipNext(const resbuf*& position) {
    if (position == nullptr) return false;
    position = position->rbnext;
    return true;
}

}  // namespace sg
