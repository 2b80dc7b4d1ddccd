#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/db/filers.h"
#include "platform/db/object_id.h"
#include "platform/lisp/resbuf.h"

namespace sg::model {

// Reads group values of any kind out of a packed row of bytes, and packs them.
//
// A group is its code as 16 bits and its value: a text is its length in 32 bits and its units, a
// handle and an entity name are 64 bits, the others as they stand in a resbuf. Entity names are
// filed as the pointers that their codes stand for.
class GroupData {
  public:
    bool empty() const { return bytes_.empty(); }
    void clear() { bytes_.clear(); }

    // Appends a group. False, and nothing changes, for a code that is no group code.
    bool append(const resbuf& group);
    // The groups as a list, which the caller releases; null when there are none.
    resbuf* toList() const;
    // What the groups take in a drawing file as extended data.
    size_t fileBytes() const;

    Acad::ErrorStatus dwgOut(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler& filer);
    Acad::ErrorStatus dxfOut(AcDbDxfFiler& filer) const;

  private:
    std::vector<uint8_t> bytes_;
};

// Extended data: the groups of each registered application, in the order in which the applications
// came.
class ExtendedData {
  public:
    // The most that an object's extended data takes in a drawing file.
    static constexpr size_t kMaximumBytes = 16383;

    bool empty() const { return parts_.empty(); }
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
    struct Part {
        AcDbHardPointerId application;
        GroupData groups;
    };

    void replace(Part part);

    std::vector<Part> parts_;
};

// Appends `tail` to the list that starts at `head`; answers the whole list.
resbuf* joinLists(resbuf* head, resbuf* tail);

}  // namespace sg::model
