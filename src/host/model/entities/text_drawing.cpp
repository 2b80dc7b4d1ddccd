#include "host/model/entities/text_drawing.h"

#include <array>

#include "host/text/line.h"

namespace sg::model {
namespace {

// In text heights over the baseline.
double heightOf(text::Decoration::Kind kind) {
    switch (kind) {
        case text::Decoration::Kind::under:
            return -0.2;
        case text::Decoration::Kind::over:
            return 1.2;
        case text::Decoration::Kind::through:
            return 0.45;
    }
    return 0;
}

}  // namespace

void drawLine(AcGiWorldDraw& draw, const std::wstring& text, const Frame& frame,
              const AcGiTextStyle& style) {
    const text::PlainLine line = text::decodeLine(text);
    if (line.text.empty()) return;
    draw.geometry().text(frame.origin, frame.normal, frame.direction(), line.text, style);
    const AcGeMatrix3d toWorld = frame.toWorld();
    const std::wstring_view all = line.text;
    for (const text::Decoration& decoration : line.decorations) {
        const double y = heightOf(decoration.kind) * style.height;
        const double from = text::measureLine(all.substr(0, decoration.first), style).advance;
        const double to = text::measureLine(all.substr(0, decoration.end), style).advance;
        const std::array<AcGePoint3d, 2> ends = {toWorld * AcGePoint3d(from, y, 0),
                                                 toWorld * AcGePoint3d(to, y, 0)};
        draw.geometry().polyline(2, ends.data());
    }
}

}  // namespace sg::model
