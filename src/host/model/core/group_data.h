#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "host/model/core/memory_filers.h"
#include "platform/db/filers.h"
#include "platform/db/object_id.h"
#include "platform/lisp/resbuf.h"

namespace sg::model {

// Groups of any kind in a packed row of bytes, with the values that a drawing file has for them:
// angles (50 to 58) are degrees, coordinates may be groups of their own or whole points.
//
// A group is its code in 16 bits, its kind in 8 and its value: a text or binary data its length in
// 32 bits and its bytes (UTF-8), a handle or an object 64 bits, numbers as they are in memory.
class SG_API GroupData {
  public:
    enum class Kind : uint8_t { text, binary, real, point, flatPoint, whole, handle, object };

    bool empty() const { return bytes_.empty(); }
    void clear() { bytes_.clear(); }
    void reserve(size_t bytes) { bytes_.reserve(bytes); }

    // Appends a group that a filer has given. False, and nothing changes, for a code that is no
    // group code.
    bool append(const resbuf& group);
    void appendText(int code, std::string_view utf8) { appendBytes(code, Kind::text, utf8); }
    void appendBinary(int code, std::string_view data) { appendBytes(code, Kind::binary, data); }
    void appendReal(int code, double value) { appendValue(code, Kind::real, value); }
    void appendWhole(int code, int64_t value) { appendValue(code, Kind::whole, value); }
    void appendHandle(int code, uint64_t value) { appendValue(code, Kind::handle, value); }
    void appendObject(int code, AcDbObjectId id) { appendValue(code, Kind::object, id.asOldId()); }
    void append(const GroupData& more) {
        bytes_.insert(bytes_.end(), more.bytes_.begin(), more.bytes_.end());
    }

    // One group on a walk. The views live as long as the data.
    struct Group {
        int code = 0;
        Kind kind = Kind::text;
        std::string_view text;  // of text and binary
        double real = 0;        // of real, and the first coordinate
        double y = 0, z = 0;    // of points
        int64_t whole = 0;
        uint64_t handle = 0;
        AcDbObjectId object;
    };
    void append(const Group& group);
    class Walk {
      public:
        explicit Walk(const GroupData& data)
            : at_(data.bytes_.data()), end_(at_ + data.bytes_.size()) {}
        bool next();  // false behind the last one
        const Group& group() const { return group_; }

      private:
        template <class Value>
        Value take() {
            Value value;
            std::memcpy(&value, at_, sizeof(Value));
            at_ += sizeof(Value);
            return value;
        }
        const uint8_t* at_;
        const uint8_t* end_;
        Group group_;
    };

    // The groups as a list such as filers give, which the caller releases; null when there are
    // none.
    resbuf* toList() const;
    // What the groups take in a drawing file as extended data.
    size_t fileBytes() const;

    Acad::ErrorStatus dwgOut(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler& filer);
    Acad::ErrorStatus dxfOut(AcDbDxfFiler& filer) const;

  private:
    template <class Value>
    void put(const Value& value) {
        const auto* const start = reinterpret_cast<const uint8_t*>(&value);
        bytes_.insert(bytes_.end(), start, start + sizeof(Value));
    }
    void putHead(int code, Kind kind) {
        put(static_cast<int16_t>(code));
        put(kind);
    }
    template <class Value>
    void appendValue(int code, Kind kind, Value value) {
        putHead(code, kind);
        put(value);
    }
    void appendBytes(int code, Kind kind, std::string_view data);

    std::vector<uint8_t> bytes_;
};

// How an object in a group with this code is referred to; in other groups softly.
Reference referenceOf(int code);

// The id in an entity name, whether an object of it is there or still to come.
AcDbObjectId idOfName(const ads_name name);

// True for groups that are radians at a filer and degrees in a drawing file.
constexpr bool isAngleGroup(int code) {
    return code >= 50 && code <= 58;
}

// What a filer of drawing files has besides: whole groups as they stand in the file.
class FileGroupsAccess {
  public:
    virtual ~FileGroupsAccess() = default;
    // Appends what is left of the object's class data.
    virtual void readRest(GroupData& groups) = 0;
    virtual void writeGroups(const GroupData& groups) = 0;
};

// Extended data: the groups of each registered application, in the order in which the applications
// came.
class ExtendedData {
  public:
    // The most that an object's extended data takes in a drawing file.
    static constexpr size_t kMaximumBytes = 16383;

    // The groups of one application, behind its name.
    struct Part {
        AcDbHardPointerId application;
        GroupData groups;
    };

    bool empty() const { return parts_.empty(); }
    const std::vector<Part>& parts() const { return parts_; }
    // Puts an application's part behind the others, or in place of the one that it had.
    void replace(Part part);
    // What `list` stands for, in place of what the applications in it had. Names are looked up in
    // `database`. eRegappIdNotFound, eBadDxfSequence, eXdataSizeExceeded change nothing.
    Acad::ErrorStatus set(const resbuf* list, const AcDbDatabase* database);
    // The caller releases the list; null when there is no data (of that application).
    resbuf* toList(const wchar_t* application) const;

    Acad::ErrorStatus dwgOut(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler& filer);
    Acad::ErrorStatus dxfOut(AcDbDxfFiler& filer) const;

    size_t fileBytes() const;  // what it takes in a drawing file

  private:
    std::vector<Part> parts_;
};

// Appends `tail` to the list that starts at `head`; answers the whole list.
resbuf* joinLists(resbuf* head, resbuf* tail);

}  // namespace sg::model
