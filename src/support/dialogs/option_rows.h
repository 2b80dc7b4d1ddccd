#pragma once

#include <string>
#include <vector>

namespace sg {

// A row of the settings: a group's heading, or a setting.
struct OptionRow {
    enum class Kind { group, text, yesNo };
    Kind kind;
    const wchar_t* text;
    const wchar_t* section;  // in which the value is stored; a heading has neither
    const wchar_t* valueName;
};

// Those that a discipline ("ELEC", "PHOTO", "HVAC", "PLUMB", or none of them) has in an edition.
std::vector<OptionRow> optionRows(const std::wstring& discipline, const std::wstring& edition);

}  // namespace sg
