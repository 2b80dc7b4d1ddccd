#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "host/model/tables/header_variables.h"

namespace sg::model {

// The variables that a dimension style holds, in the order in which drawing files write them in its
// record; the code is that of the record. `headerCode` is the header's.
struct DimVariableRow {
    VariableRow variable;
    int16_t headerCode;
};
SG_API std::span<const DimVariableRow> dimVariableRows();

// The place of a variable by its name, ignoring case, or by its code in a record.
SG_API std::optional<size_t> findDimVariable(std::wstring_view name);
SG_API std::optional<size_t> findDimVariable(int code);

}  // namespace sg::model
