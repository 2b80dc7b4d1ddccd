#pragma once

#include <unordered_map>

#include "host/dwg/class_section.h"
#include "host/model/core/file_origin.h"
#include "platform/db/object.h"

namespace sg::dwg {

// The classes of a file that is written: those of the drawing's own file, and those that its
// objects need besides. It tells the type of each object.
class ClassList {
  public:
    ClassList(const model::FileOrigin* origin, AcDb::AcDbDwgVersion release);

    // The object's type; its class is counted.
    uint16_t typeOf(const AcDbObject& object);
    const std::vector<ClassEntry>& entries() const { return entries_; }

  private:
    // A type, and which of the entries counts its objects.
    struct Known {
        uint16_t type = 0;
        size_t entry = kNoEntry;
    };
    static constexpr size_t kNoEntry = static_cast<size_t>(-1);

    Known find(const std::wstring& className, const std::wstring& dxfName) const;
    Known add(const AcDbObject& object, const std::wstring& className, const std::wstring& dxfName);
    void describe(ClassEntry& entry, const AcDbObject& object) const;

    AcDb::AcDbDwgVersion release_;
    std::vector<ClassEntry> entries_;                    // the first one is number kFirstClass
    std::unordered_map<const AcRxClass*, Known> types_;  // of objects that are no proxies
};

}  // namespace sg::dwg
