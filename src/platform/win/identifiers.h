#pragma once

#include <cstdint>

#include "base/export.h"
#include "platform/win/hresult.h"

// An identifier that is unique in the world. Its text form writes the three numbers and then the
// bytes, each number with its highest byte first.
struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
};

// A new identifier. On failure, when the system has no random numbers, all zeros.
SG_API HRESULT CoCreateGuid(GUID* guid);
