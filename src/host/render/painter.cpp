#include "host/render/painter.h"

#include "host/system/companion_library.h"
#include "host/text/outline_fonts.h"

namespace sg::render {

Painter* painter() {
    static const auto kEntry =
        reinterpret_cast<PainterEntry>(companionSymbol(text::kGraphicsLibrary, kPainterEntry));
    return kEntry == nullptr ? nullptr : kEntry();
}

}  // namespace sg::render
