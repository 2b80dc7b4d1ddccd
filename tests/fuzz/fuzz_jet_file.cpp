// Any bytes as a whole database file: opening and reading all of it ends, and in nothing worse than
// an engine error.

#include <cstddef>
#include <cstdint>

#include "host/jet/format/error.h"
#include "jet_read_everything.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    try {
        sg::jet::test::readEverything({data, size}, 20000);
    } catch (const sg::jet::Error&) {
    }
    return 0;
}
