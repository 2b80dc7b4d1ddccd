#pragma once

#include "host/dxf/group_output.h"
#include "host/dxf/releases.h"
#include "host/model/core/database_state.h"
#include "host/model/core/file_origin.h"

namespace sg::dxf {

// The header variables. In the release of the drawing's own file they stand as they stood there; a
// variable that is as it was read has the groups that it had.
void writeHeader(GroupOutput& output, const model::DatabaseState& state,
                 const model::FileOrigin& origin, const Release& release,
                 std::string_view codePage);

}  // namespace sg::dxf
