#include "host/model/core/group_data.h"
#include "host/model/core/dwg_form.h"

#include <string>

#include "base/encoding.h"
#include "host/model/core/group_writer.h"
#include "platform/db/handle.h"

namespace sg::model {
namespace {

bool isHandleGroup(int code) {
    return code == 5 || code == 105 || code == 1005 || (code >= 320 && code <= 329);
}

bool isBinaryGroup(int code) {
    return code == 1004 || (code >= 310 && code <= 319);
}

std::string hexDigits(std::string_view data) {
    std::string digits;
    digits.reserve(data.size() * 2);
    for (const char byte : data) {
        digits += "0123456789ABCDEF"[static_cast<uint8_t>(byte) >> 4];
        digits += "0123456789ABCDEF"[static_cast<uint8_t>(byte) & 15];
    }
    return digits;
}

std::wstring textOf(const GroupData::Group& group) {
    if (group.kind == GroupData::Kind::binary) return fromUtf8(hexDigits(group.text));
    if (group.kind == GroupData::Kind::handle) return AcDbHandle(group.handle).text();
    return fromUtf8(group.text);
}

// Puts a group's value into a node of its code.
void setValue(resbuf& node, const GroupData::Group& group) {
    switch (acdbGroupCodeToType(node.restype)) {
        case RTSTR: {
            const std::wstring text = textOf(group);
            node.resval.rstring = acutNewString(text.c_str(), text.size());
            break;
        }
        case RTREAL:
            node.resval.rreal = isAngleGroup(group.code) ? fromFileDegrees(group.real) : group.real;
            break;
        case RT3DPOINT:
            node.resval.rpoint[0] = group.real;
            node.resval.rpoint[1] = group.y;
            node.resval.rpoint[2] = group.z;
            break;
        case RTSHORT:
            node.resval.rint = static_cast<int16_t>(group.whole);
            break;
        case RTLONG:
            node.resval.rlong = static_cast<int32_t>(group.whole);
            break;
        case RTENAME:
            acdbGetAdsName(node.resval.rlname, group.object);
            break;
        default:
            break;
    }
}

}  // namespace

AcDbObjectId idOfName(const ads_name name) {
    return AcDbObjectId(static_cast<uint64_t>(static_cast<uint32_t>(name[1])) << 32 |
                        static_cast<uint32_t>(name[0]));
}

Reference referenceOf(int code) {
    if ((code >= 340 && code <= 349) || (code >= 390 && code <= 399) || code >= 480) {
        return Reference::hardPointer;
    }
    if (code >= 350 && code <= 359) return Reference::softOwnership;
    if (code >= 360 && code <= 369) return Reference::hardOwnership;
    return Reference::softPointer;
}

// ---- Packing ------------------------------------------------------------------------------------

void GroupData::appendBytes(int code, Kind kind, std::string_view data) {
    putHead(code, kind);
    put(static_cast<uint32_t>(data.size()));
    bytes_.insert(bytes_.end(), data.begin(), data.end());
}

void GroupData::append(const Group& group) {
    switch (group.kind) {
        case Kind::text:
        case Kind::binary:
            return appendBytes(group.code, group.kind, group.text);
        case Kind::real:
            return appendReal(group.code, group.real);
        case Kind::point:
            appendValue(group.code, Kind::point, group.real);
            put(group.y);
            return put(group.z);
        case Kind::flatPoint:
            appendValue(group.code, Kind::flatPoint, group.real);
            return put(group.y);
        case Kind::whole:
            return appendWhole(group.code, group.whole);
        case Kind::handle:
            return appendHandle(group.code, group.handle);
        case Kind::object:
            return appendObject(group.code, group.object);
    }
}

bool GroupData::append(const resbuf& group) {
    const int code = group.restype;
    switch (acdbGroupCodeToType(code)) {
        case RTSTR: {
            const wchar_t* const text =
                group.resval.rstring != nullptr ? group.resval.rstring : L"";
            if (isBinaryGroup(code)) {
                appendBinary(code, fromHexDigits(text));
            } else if (isHandleGroup(code)) {
                appendHandle(code, AcDbHandle(text));
            } else {
                appendText(code, toUtf8(text));
            }
            return true;
        }
        case RTREAL:
            appendReal(code,
                       isAngleGroup(code) ? toFileDegrees(group.resval.rreal) : group.resval.rreal);
            return true;
        case RT3DPOINT:
            putHead(code, Kind::point);
            for (const double coordinate : group.resval.rpoint)
                put(coordinate);
            return true;
        case RTSHORT:
            appendWhole(code, group.resval.rint);
            return true;
        case RTLONG:
            appendWhole(code, group.resval.rlong);
            return true;
        case RTENAME:
            appendObject(code, idOfName(group.resval.rlname));
            return true;
        default:
            return false;
    }
}

bool GroupData::Walk::next() {
    if (at_ == end_) return false;
    group_ = Group();
    group_.code = take<int16_t>();
    group_.kind = take<Kind>();
    switch (group_.kind) {
        case Kind::text:
        case Kind::binary: {
            const auto length = take<uint32_t>();
            group_.text = {reinterpret_cast<const char*>(at_), length};
            at_ += length;
            break;
        }
        case Kind::real:
            group_.real = take<double>();
            break;
        case Kind::point:
        case Kind::flatPoint:
            group_.real = take<double>();
            group_.y = take<double>();
            if (group_.kind == Kind::point) group_.z = take<double>();
            break;
        case Kind::whole:
            group_.whole = take<int64_t>();
            break;
        case Kind::handle:
            group_.handle = take<uint64_t>();
            break;
        case Kind::object:
            group_.object = AcDbObjectId(take<uint64_t>());
            break;
    }
    return true;
}

// ---- Lists --------------------------------------------------------------------------------------

// Coordinates that stand one by one come together to points again.
resbuf* GroupData::toList() const {
    resbuf* head = nullptr;
    resbuf** tail = &head;
    resbuf* point = nullptr;  // whose next coordinates may follow
    Walk walk(*this);
    while (walk.next()) {
        const Group& group = walk.group();
        const int offset = point == nullptr ? 0 : group.code - point->restype;
        if (group.kind == Kind::real && (offset == 10 || offset == 20)) {
            point->resval.rpoint[offset / 10] = group.real;
            continue;
        }
        *tail = acutNewRb(group.code);
        if (*tail == nullptr) break;
        setValue(**tail, group);
        const bool starts =
            group.kind == Kind::real && acdbGroupCodeToType(group.code) == RT3DPOINT;
        point = starts ? *tail : nullptr;
        tail = &(*tail)->rbnext;
    }
    return head;
}

// Texts are UTF-16 with a length in front, binary data two digits a byte here; each group has its
// code in one byte.
size_t GroupData::fileBytes() const {
    size_t total = 0;
    Walk walk(*this);
    while (walk.next()) {
        const Group& group = walk.group();
        const bool isText = group.kind == Kind::text;
        const bool isPoint = group.kind == Kind::point || group.kind == Kind::flatPoint;
        const size_t length = isText ? fromUtf8(group.text).size() : 0;
        switch (group.code) {
            case 1002:
                total += 2;
                break;
            case 1003:
            case 1005:
                total += 9;
                break;
            case 1004:
                total += 2 + (isText ? length / 2 : group.text.size());
                break;
            case 1070:
                total += 3;
                break;
            case 1071:
                total += 5;
                break;
            default:
                total += isText ? 3 + 2 * length : isPoint ? 25 : 9;
        }
    }
    return total;
}

// ---- Filing -------------------------------------------------------------------------------------

Acad::ErrorStatus GroupData::dwgOut(AcDbDwgFiler& filer) const {
    Walk walk(*this);
    while (walk.next()) {
        const Group& group = walk.group();
        filer.writeInt16(static_cast<int16_t>(group.code));
        filer.writeUInt8(static_cast<uint8_t>(group.kind));
        switch (group.kind) {
            case Kind::text:
            case Kind::binary:
                filer.writeUInt32(static_cast<uint32_t>(group.text.size()));
                filer.writeBytes(group.text.data(), group.text.size());
                break;
            case Kind::real:
                filer.writeDouble(group.real);
                break;
            case Kind::point:
                filer.writePoint3d({group.real, group.y, group.z});
                break;
            case Kind::flatPoint:
                filer.writePoint2d({group.real, group.y});
                break;
            case Kind::whole:
                // In two parts, since whole numbers of 64 bits have only 56 in DWG files.
                filer.writeInt32(static_cast<int32_t>(group.whole));
                filer.writeInt32(static_cast<int32_t>(group.whole >> 32));
                break;
            case Kind::handle:
                filer.writeAcDbHandle(AcDbHandle(group.handle));
                break;
            case Kind::object:
                writeReference(filer, referenceOf(group.code), group.object);
                break;
        }
    }
    return filer.writeInt16(-1);
}

namespace {

// The value of a group whose code and kind are read; `data` holds its bytes.
Acad::ErrorStatus readValue(AcDbDwgFiler& filer, GroupData::Group& group, std::string& data) {
    using Kind = GroupData::Kind;
    switch (group.kind) {
        case Kind::text:
        case Kind::binary: {
            uint32_t length = 0;
            const Acad::ErrorStatus status = filer.readUInt32(&length);
            if (status != Acad::eOk) return status;
            std::vector<uint8_t> bytes;
            readBytes(&filer, length, bytes);
            data.assign(bytes.begin(), bytes.end());
            group.text = data;
            return filer.filerStatus();
        }
        case Kind::real:
            return filer.readDouble(&group.real);
        case Kind::point: {
            AcGePoint3d point;
            filer.readPoint3d(&point);
            group.real = point.x;
            group.y = point.y;
            group.z = point.z;
            return filer.filerStatus();
        }
        case Kind::flatPoint: {
            AcGePoint2d point;
            filer.readPoint2d(&point);
            group.real = point.x;
            group.y = point.y;
            return filer.filerStatus();
        }
        case Kind::whole: {
            int32_t low = 0;
            int32_t high = 0;
            filer.readInt32(&low);
            filer.readInt32(&high);
            group.whole = static_cast<int64_t>(high) << 32 | static_cast<uint32_t>(low);
            return filer.filerStatus();
        }
        case Kind::handle: {
            AcDbHandle handle;
            filer.readAcDbHandle(&handle);
            group.handle = handle;
            return filer.filerStatus();
        }
        case Kind::object:
            group.object = readReference(filer, referenceOf(group.code));
            return filer.filerStatus();
    }
    return Acad::eInvalidInput;
}

}  // namespace

Acad::ErrorStatus GroupData::dwgIn(AcDbDwgFiler& filer) {
    bytes_.clear();
    std::string data;
    while (true) {
        int16_t code = 0;
        Acad::ErrorStatus status = filer.readInt16(&code);
        if (status != Acad::eOk || code == -1) return status;
        uint8_t kind = 0;
        filer.readUInt8(&kind);
        Group group;
        group.code = code;
        group.kind = static_cast<Kind>(kind);
        status = readValue(filer, group, data);
        if (status != Acad::eOk) return status;
        append(group);
    }
}

Acad::ErrorStatus GroupData::dxfOut(AcDbDxfFiler& filer) const {
    if (auto* const file = dynamic_cast<FileGroupsAccess*>(&filer)) {
        file->writeGroups(*this);
        return filer.filerStatus();
    }
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
