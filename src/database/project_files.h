#pragma once

#include <string>

// Project databases are found by the beginning of their name.
namespace sg {

// The full path of the one project file in a folder whose name has `prefix` anywhere in it and
// ends with "." + `extension`; empty when there is none, or more than one. Files of the product's
// own, whose names begin "52-QN" or have "_MASTER" or "_STANDARDS" in them, in any case, don't
// count.
std::wstring findProjectFile(const std::wstring& directory, const std::wstring& prefix,
                             const std::wstring& extension);

// The same, of the extension "qn", or where that gives none of "mdb".
std::wstring findProjectDatabase(const std::wstring& directory, const std::wstring& prefix);

}  // namespace sg
