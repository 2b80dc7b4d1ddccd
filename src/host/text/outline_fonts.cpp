#include "host/text/outline_fonts.h"

#include "host/system/companion_library.h"

namespace sg::text {

OutlineFonts* outlineFonts() {
    static const auto kEntry =
        reinterpret_cast<OutlineFontsEntry>(companionSymbol(kGraphicsLibrary, kOutlineFontsEntry));
    return kEntry == nullptr ? nullptr : kEntry();
}

}  // namespace sg::text
