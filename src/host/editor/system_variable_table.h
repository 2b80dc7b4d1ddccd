#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace sg {

enum class SystemVariableType { shortInteger, longInteger, real, text, point2d, point3d };

// An application's variable has one value for all drawings, a document's one for each.
enum class SystemVariableScope { application, document };

// What is known of one system variable.
struct SystemVariableRow {
    const wchar_t* name;
    SystemVariableType type;
    SystemVariableScope scope;
    double initial[3];  // numbers use the first, points two or three
    const wchar_t* initialText = L"";
    double low = -std::numeric_limits<double>::max();  // of numbers, inclusive
    double high = std::numeric_limits<double>::max();
    std::span<const int> allowed = {};  // when not empty, the only numbers that may be set
    bool isReadOnly = false;

    constexpr SystemVariableRow readOnly() const {
        SystemVariableRow row = *this;
        row.isReadOnly = true;
        return row;
    }
    constexpr SystemVariableRow only(std::span<const int> numbers) const {
        SystemVariableRow row = *this;
        row.allowed = numbers;
        return row;
    }
};

// All of them, sorted by name; names are in upper case.
std::span<const SystemVariableRow> systemVariableTable();

// The row of `name`, found ignoring case; null for an unknown one.
const SystemVariableRow* findSystemVariable(std::wstring_view name);

}  // namespace sg
