#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/export.h"
#include "host/jet/storage/storage.h"
#include "host/jet/values/table_definition.h"

// Databases from nothing.
namespace sg::jet {

// ";LANGID=0x0409;CP=1252;COUNTRY=0": sort order and code page of a database's texts.
struct Locale {
    SortOrder sortOrder{0x0409, 0};
    uint16_t codePage = 1252;
};

// Reads a locale string, in any order of its parts and with or without the first ";"; parts that
// are not there have the values above. Throws InvalidArgument for a part that is not understood.
SG_API Locale parseLocale(std::wstring_view text);

// Makes a Jet 4 file with the complete system catalog and answers it opened exclusively. Throws
// what Storage::create() throws: DatabaseExists, InvalidPath, CannotOpenFile; and
// OperationNotSupported for a sort order whose keys are not known. What fails halfway leaves no
// file.
SG_API std::unique_ptr<Storage> createDatabaseFile(const std::wstring& path, const Locale& locale,
                                                   const StorageOptions& options = {});

}  // namespace sg::jet
