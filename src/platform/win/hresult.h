#pragma once

#include <cstdint>

// What many calls of the system answer: negative numbers are failures.
using HRESULT = int32_t;
inline constexpr HRESULT S_OK = 0;
