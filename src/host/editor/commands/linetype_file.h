#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"

// Simple linetypes as text files describe them: a line "*NAME,description", and one "A," with the
// lengths of dashes (above 0), gaps (below 0) and dots (0). ";" starts a comment.
namespace sg {

struct LinetypeDescription {
    std::wstring name, comments;
    std::vector<double> dashes;
};

// Those of a file's content; what is not simple (shapes, texts) or has a mistake is left out, and
// told in `problems`, a line each.
SG_API std::vector<LinetypeDescription> parseLinetypes(std::wstring_view content,
                                                       std::vector<std::wstring>& problems);

// The file that stands in for "acad.lin" where there is none.
SG_API std::wstring_view standardLinetypes();

}  // namespace sg
