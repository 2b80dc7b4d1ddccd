#include "host/text/face.h"

#include <algorithm>
#include <map>
#include <memory>
#include <tuple>

#include "base/text.h"
#include "host/text/outline_fonts.h"
#include "host/text/stroke_font.h"

namespace sg::text {
namespace {

class StrokeFace final : public Face {
  public:
    CharacterBox box(wchar_t character) const override {
        const StrokeGlyph& glyph = strokeGlyph(character);
        CharacterBox box;
        box.advance = glyph.advance;
        bool first = true;
        for (const auto& stroke : glyph.strokes) {
            for (const AcGePoint2d& p : stroke) {
                box.left = first ? p.x : std::min(box.left, p.x);
                box.right = first ? p.x : std::max(box.right, p.x);
                box.bottom = first ? p.y : std::min(box.bottom, p.y);
                box.top = first ? p.y : std::max(box.top, p.y);
                first = false;
            }
        }
        return box;
    }
    bool isOutline() const override { return false; }
    const std::vector<std::vector<AcGePoint2d>>& chains(wchar_t character) const override {
        return strokeGlyph(character).strokes;
    }
};

bool endsIn(std::wstring_view text, std::wstring_view end) {
    return text.size() >= end.size() &&
           equalIgnoringCase(text.substr(text.size() - end.size()), end);
}

bool isOutlineFile(std::wstring_view file) {
    return endsIn(file, L".ttf") || endsIn(file, L".ttc") || endsIn(file, L".otf");
}

}  // namespace

const Face& faceOf(const AcGiTextStyle& style) {
    static const StrokeFace kStrokes;
    if (style.typeface.empty() && !isOutlineFile(style.fontFile)) return kStrokes;
    using Key = std::tuple<std::wstring, std::wstring, bool, bool>;
    static std::map<Key, std::unique_ptr<Face>> faces;
    const Key key(style.typeface, style.typeface.empty() ? style.fontFile : L"", style.bold,
                  style.italic);
    const auto found = faces.find(key);
    if (found != faces.end()) return *found->second;
    OutlineFonts* const fonts = outlineFonts();
    if (fonts == nullptr) return kStrokes;
    return *faces
                .emplace(key, fonts->face(style.typeface, style.fontFile, style.bold, style.italic))
                .first->second;
}

}  // namespace sg::text
