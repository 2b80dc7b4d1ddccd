#pragma once

#include <cstdint>

namespace sg::dwg {

// The variables that share one number of the header, with the bits of each. Bits that are `turned`
// are set for a variable that is 0.
struct HeaderFlag {
    const wchar_t* name;
    int shift;
    int32_t mask;
    bool isTurned;
};
constexpr HeaderFlag kHeaderFlags[] = {
    {L"ENDCAPS", 5, 3, false},     {L"JOINSTYLE", 7, 3, false}, {L"LWDISPLAY", 9, 1, true},
    {L"XEDIT", 10, 1, true},       {L"EXTNAMES", 11, 1, false}, {L"PSTYLEMODE", 13, 1, false},
    {L"OLESTARTUP", 14, 1, false},
};
constexpr int32_t kHeaderWeightMask = 0x1F;  // CELWEIGHT
constexpr const wchar_t* kHeaderWeight = L"CELWEIGHT";

}  // namespace sg::dwg
