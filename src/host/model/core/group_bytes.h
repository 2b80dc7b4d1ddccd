#pragma once

#include <string>
#include <string_view>

#include "host/model/core/dwg_form.h"
#include "host/model/core/group_data.h"

namespace sg::model {

// Groups as the bytes that a record of groups has in a DWG file: each its code in 16 bits and its
// value, as its code says, whole numbers and handles with their lowest byte first.
std::string toFileBytes(const GroupData& groups, DwgForm& form, AcDb::AcDbDwgVersion release);

// Appends the groups. An object that is still to come is given its id. False when the bytes end in
// a group, or have a code that is none; the groups ahead of it are there then.
bool fromFileBytes(std::string_view bytes, DwgForm& form, AcDb::AcDbDwgVersion release,
                   AcDbDatabase& database, GroupData& groups);

}  // namespace sg::model
