#pragma once

#include "host/dxf/files.h"

namespace sg::exchange {

// Reads a drawing file into an empty database; the content tells what it is, not the ending.
// Answers the warnings. Throws dxf::Error.
SG_API std::vector<std::wstring> readFile(AcDbDatabase& database, const std::wstring& path);

// Throws dxf::Error, with the reason, for a file whose ending names a format that is not written.
SG_API void checkCanWrite(const std::wstring& path);

// Writes a drawing file, in the format that its ending names. The old file is kept under the same
// name with the ending .bak, and until the new one is whole and on the disk the name leads to the
// old one. Throws dxf::Error; the old file is then as it was.
SG_API void writeFile(const AcDbDatabase& database, const std::wstring& path,
                      const dxf::WriteOptions& options = {});

// For AcDbDatabase::readDwgFile: like readFile, with a status.
Acad::ErrorStatus readForDatabase(AcDbDatabase& database, const std::wstring& path);

}  // namespace sg::exchange
