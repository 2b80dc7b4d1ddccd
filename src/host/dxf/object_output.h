#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/dxf/group_output.h"
#include "host/dxf/releases.h"
#include "platform/db/object.h"

namespace sg::dxf {

// Writes objects as their classes do, or as their file had them while they are unchanged.
class ObjectOutput {
  public:
    ObjectOutput(GroupOutput& output, const Release& release)
        : output_(output), release_(release) {}

    void write(const AcDbObject& object);
    // A symbol table's own groups.
    void writeTable(const AcDbObject& table, std::string_view name);

  private:
    bool writeAsRead(const AcDbObject& object, std::string_view tableName);
    void writeAnew(const AcDbObject& object, std::string_view tableName);

    GroupOutput& output_;
    const Release& release_;
};

}  // namespace sg::dxf
