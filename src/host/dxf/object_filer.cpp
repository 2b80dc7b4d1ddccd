#include "host/dxf/object_filer.h"

#include <algorithm>

#include "base/encoding.h"
#include "host/model/core/group_writer.h"

namespace sg::dxf {
namespace {

constexpr int kMarker = 100;
constexpr int kEmbeddedObject = 101;
constexpr int kApplicationName = 1001;
constexpr int kListMark = 102;

// The bytes themselves, whichever way the file has them.
std::string bytesOf(const Group& group) {
    return group.isHex ? model::fromHexDigits(fromUtf8(group.text)) : std::string(group.text);
}

bool equals(std::string_view narrow, std::wstring_view wide) {
    return std::ranges::equal(narrow, wide, {},
                              [](char c) -> wchar_t { return static_cast<unsigned char>(c); });
}

}  // namespace

void appendGroup(model::GroupData& data, const Group& group, const TextCodec& codec,
                 Handles& handles) {
    switch (group.kind) {
        case ValueKind::text:
        case ValueKind::unknown:
            data.appendText(group.code, toUtf8(codec.decoded(group.text)));
            break;
        case ValueKind::binary:
            data.appendBinary(group.code, bytesOf(group));
            break;
        case ValueKind::real:
            data.appendReal(group.code, group.real);
            break;
        case ValueKind::handle:
            data.appendHandle(group.code, group.handle);
            break;
        case ValueKind::object:
            data.appendObject(group.code, handles.refer(group));
            break;
        default:
            data.appendWhole(group.code, group.whole);
            break;
    }
}

ObjectFiler::ObjectFiler(std::span<const Group> groups, const TextCodec& codec, Handles& handles,
                         AcDbDatabase* database, AcDb::AcDbDwgVersion release)
    : all_(groups),
      classData_(groups),
      codec_(codec),
      handles_(handles),
      database_(database),
      release_(release) {
    bool isEmbedded = false;
    for (size_t i = 0; i < groups.size(); ++i) {
        const int code = groups[i].code;
        if (code == kMarker) {
            hasMarkers_ = true;
        } else if (code == kEmbeddedObject && !isEmbedded) {
            classData_ = groups.first(i);
            isEmbedded = true;
        } else if (code == kApplicationName) {
            extendedData_ = groups.subspan(i);
            all_ = groups.first(i);
            if (!isEmbedded) classData_ = all_;
            break;
        }
    }
}

// ---- Groups -------------------------------------------------------------------------------------

void ObjectFiler::setText(resbuf& node, const Group& group) {
    text_.clear();
    if (group.kind == ValueKind::handle) {
        text_ = AcDbHandle(group.handle).text();
    } else if (group.kind == ValueKind::binary && !group.isHex) {
        model::GroupData data;
        data.appendBinary(group.code, group.text);
        resbuf* const list = data.toList();
        text_ = list->resval.rstring;
        acutRelRb(list);
    } else {
        codec_.decode(group.text, text_);
    }
    node.resval.rstring = text_.data();
}

// Answers the place behind what belongs to the value: a point's coordinates are groups of their
// own.
size_t ObjectFiler::setValue(resbuf& node, size_t at, std::span<const Group> groups) {
    const Group& group = groups[at++];
    node.restype = group.code;
    node.rbnext = nullptr;
    switch (acdbGroupCodeToType(group.code)) {
        case RT3DPOINT: {
            ads_real* const point = node.resval.rpoint;
            point[0] = group.real;
            point[1] = point[2] = 0;
            for (const int axis : {1, 2}) {
                if (at == groups.size() || groups[at].code != group.code + 10 * axis) break;
                point[axis] = groups[at++].real;
            }
            break;
        }
        case RTREAL:
            node.resval.rreal =
                model::isAngleGroup(group.code) ? model::fromFileDegrees(group.real) : group.real;
            break;
        case RTSHORT:
            node.resval.rint = static_cast<int16_t>(group.whole);
            break;
        case RTLONG:
            node.resval.rlong = static_cast<int32_t>(group.whole);
            break;
        case RTENAME: {
            const uint64_t id = handles_.refer(group).asOldId();
            node.resval.rlname[0] = static_cast<int32_t>(static_cast<uint32_t>(id));
            node.resval.rlname[1] = static_cast<int32_t>(static_cast<uint32_t>(id >> 32));
            break;
        }
        case RTSTR:
            setText(node, group);
            break;
        default:
            // No filer knows such a code, and no class asks for it.
            node.resval.rreal = 0;
            break;
    }
    return at;
}

Acad::ErrorStatus ObjectFiler::readItem(resbuf* group) {
    if (status_ != Acad::eOk) return status_;
    if (at_ == classData_.size()) return Acad::eEndOfFile;
    before_ = at_;
    at_ = setValue(*group, at_, classData_);
    return Acad::eOk;
}

Acad::ErrorStatus ObjectFiler::pushBackItem() {
    at_ = before_;
    return status_;
}

bool ObjectFiler::atSubclassData(const wchar_t* name) {
    if (status_ != Acad::eOk) return false;
    if (!hasMarkers_) {
        at_ = 0;
        return !classData_.empty();
    }
    for (size_t i = at_; i < classData_.size(); ++i) {
        if (classData_[i].code != kMarker || !equals(classData_[i].text, name)) continue;
        at_ = i + 1;
        return true;
    }
    return false;
}

resbuf* ObjectFiler::takeExtendedData() {
    resbuf* head = nullptr;
    resbuf** tail = &head;
    for (size_t at = 0; at < extendedData_.size();) {
        resbuf* const node = acutNewRb(extendedData_[at].code);
        if (node == nullptr) break;
        at = setValue(*node, at, extendedData_);
        if (acdbGroupCodeToType(node->restype) == RTSTR) {
            node->resval.rstring = acutNewString(text_.c_str(), text_.size());
        }
        *tail = node;
        tail = &node->rbnext;
    }
    extendedData_ = {};
    return head;
}

namespace {

// What AcDbObject and AcDbEntity read of an object without markers.
bool isCommon(int code) {
    switch (code) {
        case 5:
        case 6:
        case 8:
        case 48:
        case 60:
        case 62:
        case 67:
        case 105:
        case 330:
        case 410:
            return true;
        default:
            return false;
    }
}

}  // namespace

void ObjectFiler::readRest(model::GroupData& groups) {
    const size_t from = hasMarkers_ ? at_ : 0;
    bool inList = false;
    for (const Group& group : all_.subspan(from)) {
        if (!hasMarkers_) {
            if (group.code == kListMark) {
                inList = group.text.starts_with('{');
                continue;
            }
            if (inList || isCommon(group.code)) continue;
        }
        appendGroup(groups, group, codec_, handles_);
    }
    at_ = classData_.size();
}

}  // namespace sg::dxf
