#include "host/model/core/group_data.h"

#include <cstring>
#include <string>

#include "host/model/tables/pointers.h"
#include "platform/db/handle.h"

namespace sg::model {
namespace {

enum class Kind { none, text, real, point, int16, int32, handle, name };

Kind kindOf(int code) {
    if (code == 1005 || (code >= 320 && code <= 329)) return Kind::handle;
    switch (acdbGroupCodeToType(code)) {
        case RTSTR:
            return Kind::text;
        case RTREAL:
            return Kind::real;
        case RT3DPOINT:
            return Kind::point;
        case RTSHORT:
            return Kind::int16;
        case RTLONG:
            return Kind::int32;
        case RTENAME:
            return Kind::name;
        default:
            return Kind::none;
    }
}

template <class Value>
void put(std::vector<uint8_t>& bytes, const Value& value) {
    const auto* const start = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), start, start + sizeof(Value));
}

// Walks the groups in a row of bytes that append() has made.
class Walk {
  public:
    explicit Walk(const std::vector<uint8_t>& bytes)
        : at_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    bool next() {
        if (at_ == end_) return false;
        code = take<int16_t>();
        kind = kindOf(code);
        return true;
    }
    template <class Value>
    Value take() {
        Value value;
        std::memcpy(&value, at_, sizeof(Value));
        at_ += sizeof(Value);
        return value;
    }
    std::wstring text() {
        const auto length = take<uint32_t>();
        std::wstring value(length, L'\0');
        std::memcpy(value.data(), at_, length * sizeof(wchar_t));
        at_ += length * sizeof(wchar_t);
        return value;
    }
    AcGePoint3d point() {
        const double x = take<double>();
        const double y = take<double>();
        return {x, y, take<double>()};
    }
    // The value as a node holds it; `node` has its code.
    void value(resbuf& node);

    int16_t code = 0;
    Kind kind = Kind::none;

  private:
    const uint8_t* at_;
    const uint8_t* end_;
};

void setPoint(resbuf& node, const AcGePoint3d& point) {
    node.resval.rpoint[0] = point.x;
    node.resval.rpoint[1] = point.y;
    node.resval.rpoint[2] = point.z;
}

void setText(resbuf& node, const std::wstring& text) {
    node.resval.rstring = acutNewString(text.c_str(), text.size());
}

void Walk::value(resbuf& node) {
    switch (kind) {
        case Kind::text:
            setText(node, text());
            break;
        case Kind::handle:
            setText(node, AcDbHandle(take<uint64_t>()).text());
            break;
        case Kind::real:
            node.resval.rreal = take<double>();
            break;
        case Kind::point:
            setPoint(node, point());
            break;
        case Kind::int16:
            node.resval.rint = take<int16_t>();
            break;
        case Kind::int32:
            node.resval.rlong = take<int32_t>();
            break;
        case Kind::name:
            acdbGetAdsName(node.resval.rlname, AcDbObjectId(take<uint64_t>()));
            break;
        case Kind::none:
            break;
    }
}

Acad::ErrorStatus writeValue(AcDbDwgFiler& filer, Walk& walk) {
    switch (walk.kind) {
        case Kind::text:
            return filer.writeString(walk.text());
        case Kind::handle:
            return filer.writeAcDbHandle(AcDbHandle(walk.take<uint64_t>()));
        case Kind::real:
            return filer.writeDouble(walk.take<double>());
        case Kind::point:
            return filer.writePoint3d(walk.point());
        case Kind::int16:
            return filer.writeInt16(walk.take<int16_t>());
        case Kind::int32:
            return filer.writeInt32(walk.take<int32_t>());
        case Kind::name:
            return writePointer(&filer, pointerKind(walk.code),
                                AcDbObjectId(walk.take<uint64_t>()));
        case Kind::none:
            break;
    }
    return Acad::eInvalidDxfCode;
}

Acad::ErrorStatus readValue(AcDbDwgFiler& filer, Kind kind, resbuf& node) {
    switch (kind) {
        case Kind::text: {
            std::wstring text;
            const Acad::ErrorStatus status = filer.readString(text);
            setText(node, text);
            return status;
        }
        case Kind::handle: {
            AcDbHandle handle;
            const Acad::ErrorStatus status = filer.readAcDbHandle(&handle);
            setText(node, handle.text());
            return status;
        }
        case Kind::real:
            return filer.readDouble(&node.resval.rreal);
        case Kind::point: {
            AcGePoint3d point;
            const Acad::ErrorStatus status = filer.readPoint3d(&point);
            setPoint(node, point);
            return status;
        }
        case Kind::int16:
            return filer.readInt16(&node.resval.rint);
        case Kind::int32:
            return filer.readInt32(&node.resval.rlong);
        case Kind::name: {
            const AcDbObjectId id = readPointer(&filer, pointerKind(node.restype));
            acdbGetAdsName(node.resval.rlname, id);
            return filer.filerStatus();
        }
        case Kind::none:
            break;
    }
    return Acad::eInvalidDxfCode;
}

}  // namespace

bool GroupData::append(const resbuf& group) {
    const Kind kind = kindOf(group.restype);
    if (kind == Kind::none) return false;
    put(bytes_, group.restype);
    switch (kind) {
        case Kind::text: {
            const wchar_t* const text =
                group.resval.rstring != nullptr ? group.resval.rstring : L"";
            const size_t length = std::wcslen(text);
            put(bytes_, static_cast<uint32_t>(length));
            const auto* const start = reinterpret_cast<const uint8_t*>(text);
            bytes_.insert(bytes_.end(), start, start + length * sizeof(wchar_t));
            break;
        }
        case Kind::handle:
            put(bytes_, static_cast<uint64_t>(AcDbHandle(group.resval.rstring)));
            break;
        case Kind::real:
            put(bytes_, group.resval.rreal);
            break;
        case Kind::point:
            for (const double coordinate : group.resval.rpoint)
                put(bytes_, coordinate);
            break;
        case Kind::int16:
            put(bytes_, group.resval.rint);
            break;
        case Kind::int32:
            put(bytes_, group.resval.rlong);
            break;
        case Kind::name: {
            AcDbObjectId id;
            acdbGetObjectId(id, group.resval.rlname);
            put(bytes_, id.asOldId());
            break;
        }
        case Kind::none:
            break;
    }
    return true;
}

resbuf* GroupData::toList() const {
    resbuf* head = nullptr;
    resbuf** tail = &head;
    Walk walk(bytes_);
    while (walk.next()) {
        *tail = acutNewRb(walk.code);
        if (*tail == nullptr) break;
        walk.value(**tail);
        tail = &(*tail)->rbnext;
    }
    return head;
}

// Texts are UTF-16 with a length in front, binary data two digits a byte here; each group has its
// code in one byte.
size_t GroupData::fileBytes() const {
    size_t total = 0;
    Walk walk(bytes_);
    while (walk.next()) {
        resbuf node{};
        node.restype = walk.code;
        walk.value(node);
        const bool isText = acdbGroupCodeToType(walk.code) == RTSTR;
        const size_t length = isText ? std::wcslen(node.resval.rstring) : 0;
        if (isText) acutDelString(node.resval.rstring);
        switch (walk.code) {
            case 1002:
                total += 2;
                break;
            case 1003:
            case 1005:
                total += 9;
                break;
            case 1004:
                total += 2 + length / 2;
                break;
            case 1070:
                total += 3;
                break;
            case 1071:
                total += 5;
                break;
            default:
                total += isText ? 3 + 2 * length : walk.kind == Kind::point ? 25 : 9;
        }
    }
    return total;
}

Acad::ErrorStatus GroupData::dwgOut(AcDbDwgFiler& filer) const {
    Walk walk(bytes_);
    while (walk.next()) {
        filer.writeInt16(walk.code);
        writeValue(filer, walk);
    }
    return filer.writeInt16(-1);
}

Acad::ErrorStatus GroupData::dwgIn(AcDbDwgFiler& filer) {
    bytes_.clear();
    while (true) {
        resbuf node{};
        Acad::ErrorStatus status = filer.readInt16(&node.restype);
        if (status != Acad::eOk || node.restype == -1) return status;
        status = readValue(filer, kindOf(node.restype), node);
        if (status == Acad::eOk) append(node);
        if (acdbGroupCodeToType(node.restype) == RTSTR) acutDelString(node.resval.rstring);
        if (status != Acad::eOk) return status;
    }
}

Acad::ErrorStatus GroupData::dxfOut(AcDbDxfFiler& filer) const {
    resbuf* const list = toList();
    for (const resbuf* node = list; node != nullptr; node = node->rbnext)
        filer.writeItem(*node);
    acutRelRb(list);
    return filer.filerStatus();
}

resbuf* joinLists(resbuf* head, resbuf* tail) {
    if (head == nullptr) return tail;
    resbuf* last = head;
    while (last->rbnext != nullptr)
        last = last->rbnext;
    last->rbnext = tail;
    return head;
}

}  // namespace sg::model
