#include "host/dwg/pages_2004.h"

namespace sg::dwg::pages {

void scrambleHeader(uint8_t* bytes, size_t size) {
    uint32_t seed = 1;
    for (size_t i = 0; i < size; ++i) {
        seed = seed * 0x343FD + 0x269EC3;
        bytes[i] = static_cast<uint8_t>(bytes[i] ^ seed >> 16);
    }
}

}  // namespace sg::dwg::pages
