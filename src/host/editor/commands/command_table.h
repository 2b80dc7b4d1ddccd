#pragma once

#include <string_view>

#include "base/export.h"

namespace sg {

class Command;

// A built-in command.
struct CommandRow {
    const wchar_t* name;  // in upper case
    void (*run)(Command& command);
    bool isRecorded = true;  // what it changes can be undone
};

// The command of a name as users and programs write it: ignoring case, with "_" (the language of
// programs), "." (the built-in one, whatever has been defined over it), "'" or "-" in front. Null
// for an unknown one.
SG_API const CommandRow* findCommand(std::wstring_view name);

// What a short name at the command line stands for ("L", "CO"); empty for none.
SG_API std::wstring_view commandOfAlias(std::wstring_view alias);

}  // namespace sg
