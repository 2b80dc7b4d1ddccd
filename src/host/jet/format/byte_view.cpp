#include "host/jet/format/byte_view.h"

#include <string>

#include "host/jet/format/error.h"

namespace sg::jet {

void throwOverrun(size_t offset, size_t size, size_t available) {
    throwDamaged(std::to_wstring(size) + L" bytes at offset " + std::to_wstring(offset) +
                 L" reach beyond the " + std::to_wstring(available) + L" that are there");
}

}  // namespace sg::jet
