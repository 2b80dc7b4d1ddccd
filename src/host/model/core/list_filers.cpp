#include "host/model/core/list_filers.h"

#include <algorithm>
#include <utility>

#include "host/model/core/group_data.h"
#include "host/system/paths.h"

namespace sg::model {
namespace {

constexpr int kMarker = 100;
constexpr const wchar_t* kEntityMarker = L"AcDbEntity";
constexpr int kListStart = 102;
constexpr int kExtendedDataStart = -3;
constexpr int kApplicationName = 1001;

std::wstring_view textOf(const resbuf& group) {
    return group.resval.rstring != nullptr ? group.resval.rstring : L"";
}

bool isAttachedList(const resbuf& group) {
    return textOf(group) == L"{ACAD_XDICTIONARY" || textOf(group) == L"{ACAD_REACTORS";
}

bool isMarker(const resbuf& group, std::wstring_view name) {
    return group.restype == kMarker && textOf(group) == name;
}

}  // namespace

// ---- ListFiler ----------------------------------------------------------------------------------

Acad::ErrorStatus ListFiler::setError(Acad::ErrorStatus status, const std::wstring& text) {
    message_ = text;
    return status_ = status;
}

AcDbObjectId ListFiler::objectId(const ads_name name) const {
    AcDbObjectId id;
    acdbGetObjectId(id, name);
    return id;
}

// ---- ListWriter ---------------------------------------------------------------------------------

ListWriter::~ListWriter() {
    acutRelRb(head_);
}

resbuf* ListWriter::take() {
    last_ = nullptr;
    return std::exchange(head_, nullptr);
}

Acad::ErrorStatus ListWriter::readItem(resbuf*) {
    setFilerStatus(Acad::eInvalidInput);
    return Acad::eInvalidInput;
}
Acad::ErrorStatus ListWriter::pushBackItem() {
    return readItem(nullptr);
}
bool ListWriter::atSubclassData(const wchar_t*) {
    return false;
}

resbuf* ListWriter::append(int code) {
    if (filerStatus() != Acad::eOk) return nullptr;
    resbuf* const node = acutNewRb(code);
    if (node == nullptr) {
        setFilerStatus(Acad::eOutOfMemory);
        return nullptr;
    }
    (last_ == nullptr ? head_ : last_->rbnext) = node;
    return last_ = node;
}

bool ListWriter::isLeftOut(const resbuf& group) {
    if (group.restype < 1000) return false;
    if (group.restype == kApplicationName) {
        isApplicationLeftOut_ = std::none_of(
            applications_.begin(), applications_.end(),
            [&](const auto& wanted) { return matchesFilePattern(textOf(group), wanted); });
        if (!isApplicationLeftOut_ && !inExtendedData_) {
            inExtendedData_ = true;
            append(kExtendedDataStart);
        }
    }
    return isApplicationLeftOut_;
}

Acad::ErrorStatus ListWriter::writeItem(const resbuf& group) {
    if (isLeftOut(group)) return filerStatus();
    resbuf* const node = append(group.restype);
    if (node == nullptr) return filerStatus();
    if (acdbGroupCodeToType(group.restype) == RTSTR) {
        node->resval.rstring = acutNewString(std::wstring(textOf(group)).c_str());
    } else {
        node->resval = group.resval;
    }
    return filerStatus();
}

Acad::ErrorStatus ListWriter::writeObjectId(int code, AcDbObjectId id) {
    if (resbuf* const node = append(code)) acdbGetAdsName(node->resval.rlname, id);
    return filerStatus();
}

// The group decides how a number is kept.
Acad::ErrorStatus ListWriter::writeNumber(int code, int64_t value) {
    resbuf* const node = append(code);
    if (node == nullptr) return filerStatus();
    switch (acdbGroupCodeToType(code)) {
        case RTREAL:
            node->resval.rreal = static_cast<double>(value);
            break;
        case RTLONG:
            node->resval.rlong = static_cast<int32_t>(value);
            break;
        default:
            node->resval.rint = static_cast<int16_t>(value);
            break;
    }
    return filerStatus();
}

Acad::ErrorStatus ListWriter::writeInt8(int code, int8_t value) {
    return writeNumber(code, value);
}
Acad::ErrorStatus ListWriter::writeInt16(int code, int16_t value) {
    return writeNumber(code, value);
}
Acad::ErrorStatus ListWriter::writeInt32(int code, int32_t value) {
    return writeNumber(code, value);
}
Acad::ErrorStatus ListWriter::writeInt64(int code, int64_t value) {
    return writeNumber(code, value);
}
Acad::ErrorStatus ListWriter::writeUInt8(int code, uint8_t value) {
    return writeNumber(code, value);
}
Acad::ErrorStatus ListWriter::writeUInt16(int code, uint16_t value) {
    return writeNumber(code, value);
}
Acad::ErrorStatus ListWriter::writeUInt32(int code, uint32_t value) {
    return writeNumber(code, value);
}
Acad::ErrorStatus ListWriter::writeBool(int code, bool value) {
    return writeNumber(code, value ? 1 : 0);
}

Acad::ErrorStatus ListWriter::writeDouble(int code, double value, int) {
    if (resbuf* const node = append(code)) node->resval.rreal = value;
    return filerStatus();
}

// Groups of points have no kind of their own for 2D points.
Acad::ErrorStatus ListWriter::writePoint2d(int code, const AcGePoint2d& value, int precision) {
    writePoint3d(code, {value.x, value.y, 0}, precision);
    if (last_ != nullptr) flatPoints_.push_back(last_);
    return filerStatus();
}
Acad::ErrorStatus ListWriter::writePoint3d(int code, const AcGePoint3d& value, int) {
    if (resbuf* const node = append(code)) {
        node->resval.rpoint[0] = value.x;
        node->resval.rpoint[1] = value.y;
        node->resval.rpoint[2] = value.z;
    }
    return filerStatus();
}
Acad::ErrorStatus ListWriter::writeVector3d(int code, const AcGeVector3d& value, int precision) {
    return writePoint3d(code, {value.x, value.y, value.z}, precision);
}

Acad::ErrorStatus ListWriter::writeString(int code, const wchar_t* value) {
    if (resbuf* const node = append(code)) {
        node->resval.rstring = acutNewString(value != nullptr ? value : L"");
    }
    return filerStatus();
}

Acad::ErrorStatus ListWriter::writeAcDbHandle(int code, const AcDbHandle& value) {
    return writeString(code, value.text().c_str());
}

Acad::ErrorStatus ListWriter::writeBChunk(int code, const void* bytes, size_t count) {
    std::wstring digits;
    const auto* const data = static_cast<const uint8_t*>(bytes);
    for (size_t i = 0; i < count; ++i) {
        digits += L"0123456789ABCDEF"[data[i] >> 4];
        digits += L"0123456789ABCDEF"[data[i] & 15];
    }
    return writeString(code, digits.c_str());
}

// ---- ListReader ---------------------------------------------------------------------------------

ListReader::ListReader(const resbuf* list, AcDbDatabase* database, AcDb::FilerType type)
    : ReadingFiler(type, database) {
    bool hasLists = false;
    for (const resbuf* node = list; node != nullptr; node = node->rbnext) {
        if (node->restype == kExtendedDataStart || node->restype >= 1000) {
            extendedData_ = node;
            break;
        }
        groups_.push_back(node);
        if (node->restype == kMarker && !isMarker(*node, kEntityMarker)) hasMarkers_ = true;
        if (node->restype == kListStart && isAttachedList(*node)) hasLists = true;
    }
    if (hasLists) liftLists();
    // With the marker of all entities alone, the groups stand as in a list without any.
    if (!hasMarkers_) std::erase_if(groups_, [](auto* group) { return group->restype == kMarker; });
}

// Puts the lists that every object may have to the front, where objects read them.
void ListReader::liftLists() {
    std::vector<const resbuf*> lifted, rest;
    bool inList = false;
    bool inRecord = false;
    for (const resbuf* group : groups_) {
        const bool isBrace = group->restype == kListStart;
        if (isMarker(*group, L"AcDbXrecord")) inRecord = true;
        if (isBrace && !inList && !inRecord && isAttachedList(*group)) {
            inList = true;
            lifted.push_back(group);
        } else {
            (inList ? lifted : rest).push_back(group);
            if (isBrace) inList = false;
        }
    }
    groups_ = std::move(lifted);
    groups_.insert(groups_.end(), rest.begin(), rest.end());
}

Acad::ErrorStatus ListReader::readItem(resbuf* group) {
    if (filerStatus() != Acad::eOk) return filerStatus();
    if (at_ == groups_.size()) return Acad::eEndOfFile;
    *group = *groups_[at_++];
    group->rbnext = nullptr;
    return Acad::eOk;
}

Acad::ErrorStatus ListReader::pushBackItem() {
    if (at_ > 0) --at_;
    return filerStatus();
}

bool ListReader::atSubclassData(const wchar_t* name) {
    if (filerStatus() != Acad::eOk) return false;
    if (!hasMarkers_) {
        // Each class takes its own of the groups.
        at_ = 0;
        return !groups_.empty();
    }
    const auto from = groups_.begin() + static_cast<ptrdiff_t>(at_);
    const auto isWanted = [&](const resbuf* group) { return isMarker(*group, name); };
    const auto found = std::find_if(from, groups_.end(), isWanted);
    if (found != groups_.end()) {
        at_ = static_cast<size_t>(found - groups_.begin()) + 1;
        return true;
    }
    // Lists of LISP programs leave out the entity's own marker.
    const bool isUnmarked = at_ < groups_.size() && groups_[at_]->restype != kMarker;
    return isUnmarked && name == std::wstring_view(kEntityMarker);
}

resbuf* ListReader::takeExtendedData() {
    resbuf* copy = nullptr;
    resbuf** tail = &copy;
    for (const resbuf* node = std::exchange(extendedData_, nullptr); node != nullptr;
         node = node->rbnext) {
        if (node->restype == kExtendedDataStart) continue;
        resbuf* const next = acutNewRb(node->restype);
        if (next == nullptr) break;
        if (acdbGroupCodeToType(node->restype) == RTSTR) {
            next->resval.rstring = acutNewString(std::wstring(textOf(*node)).c_str());
        } else {
            next->resval = node->resval;
        }
        *tail = next;
        tail = &next->rbnext;
    }
    return copy;
}

}  // namespace sg::model
