#pragma once

#include <zip.h>

namespace sg {

// The ZIP library's view of an open, empty file that an archive is written into. The file stays its
// owner's, who also decides what becomes of one that could not be written. Null, with the reason in
// `error`, when memory is exhausted.
zip_source_t* zipTarget(int descriptor, zip_error_t* error);

}  // namespace sg
