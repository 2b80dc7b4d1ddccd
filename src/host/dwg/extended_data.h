#pragma once

#include "host/dwg/file_content.h"
#include "host/dwg/read_filer.h"
#include "host/dwg/write_filer.h"
#include "host/model/core/group_data.h"

namespace sg::dwg {

// The extended data of an object, up to the length of zero that closes it. What cannot be read of
// an application's is left out; false then.
bool readExtendedData(BitReader& from, ReadContext& context, model::ExtendedData& data);

void writeExtendedData(BitWriter& to, const WriteContext& context, const model::ExtendedData& data);

}  // namespace sg::dwg
