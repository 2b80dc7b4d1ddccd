#pragma once

#include <string>

namespace sg {

// What the exception that is being handled says of itself; to be called in a handler only. One of
// the application framework, which is thrown by pointer, is deleted. Never empty.
std::wstring currentExceptionText();

}  // namespace sg
