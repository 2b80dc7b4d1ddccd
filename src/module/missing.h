#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "bridge/function_table.h"
#include "module/handlers.h"

// Rows of functions that this build has no implementation of. They are registered like every other;
// calling one says so and fails.
namespace sg {

// A function's name as a template argument.
template <size_t Length>
struct FunctionName {
    wchar_t text[Length] = {};
    consteval FunctionName(const wchar_t (&name)[Length]) { std::copy_n(name, Length, text); }
};

// Prints "\n<name> is not part of this build.\n" and answers kLispBadData.
int reportMissing(const wchar_t* name);

template <FunctionName Name>
int missingImplementation() {
    return reportMissing(Name.text);
}

template <FunctionName Name>
consteval FunctionRow missingSgRow() {
    return {Name.text, sgHandler<missingImplementation<Name>>, true};
}

template <FunctionName Name>
consteval FunctionRow missingQnRow() {
    return {Name.text, qnHandler<missingImplementation<Name>>, true};
}

// Tells the host which of the rows are missing.
void declareMissing(std::span<const FunctionRow> rows);

}  // namespace sg
