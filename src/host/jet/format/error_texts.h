#pragma once

// The engine's public error texts, for error.cpp alone.
namespace sg::jet {

// The template of a number, nullptr for one that is not in the table.
const wchar_t* errorTemplate(int code);

}  // namespace sg::jet
