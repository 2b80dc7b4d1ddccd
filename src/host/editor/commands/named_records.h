#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/editor/commands/command.h"
#include "platform/db/object_id.h"

// Records of symbol tables, as users name them.
namespace sg::commands {

struct NamedRecord {
    std::wstring name;
    AcDbObjectId id;
};

// Those of a table that no "*" and no external reference keeps to itself, by name.
std::vector<NamedRecord> recordsOf(AcDbObjectId table);

// Those that a list of names stands for: names with commas between them, each a pattern. Words that
// stand for none go to `unknown`.
std::vector<NamedRecord> recordsMatching(AcDbObjectId table, std::wstring_view list,
                                         std::vector<std::wstring>* unknown = nullptr);

// Asks which, and prints their names under the title.
void listRecords(Command& c, AcDbObjectId table, const std::wstring& title);

// The names in a list with commas between them.
std::vector<std::wstring> namesIn(std::wstring_view list);

}  // namespace sg::commands
