#pragma once

#include <vector>

#include "host/dxf/group_reader.h"
#include "host/dxf/report.h"

namespace sg::dxf {

// What stands between one group 0 and the next: that group first. The groups view the file.
struct ScannedObject {
    std::vector<Group> groups;
    size_t position = 0;  // of the group 0

    std::string_view name() const { return groups.front().text; }
    bool is(std::string_view wanted) const { return name() == wanted; }
    // The first group with the code ahead of the extended data; null when there is none.
    const Group* find(int code) const;
    // The first one ahead of the subclass data and outside of lists in braces, such as the handle
    // and the owner.
    const Group* findIdentity(int code) const;
    // In dimension styles of old releases 5 is the name of a block.
    bool hasNameFor(const Group& group) const { return group.code == 5 && is("DIMSTYLE"); }
};

// Takes a file's groups object by object. Damage is reported, and with it goes the object in which
// it stands.
class ObjectScanner {
  public:
    ObjectScanner(GroupReader& reader, Report& report) : reader_(reader), report_(report) {}

    void seek(size_t position) { reader_.seek(position); }
    size_t position() const { return reader_.position(); }
    // False at the end of the file.
    bool next(ScannedObject& object);

  private:
    bool skipDamage(const ScannedObject& object);

    GroupReader& reader_;
    Report& report_;
};

}  // namespace sg::dxf
