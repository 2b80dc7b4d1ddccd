#include <QFont>
#include <QPainterPath>
#include <QPolygonF>
#include <QRawFont>
#include <unordered_map>

#include "host/graphics/application.h"
#include "host/text/outline_fonts.h"

namespace sg::graphics {
namespace {

using text::CharacterBox;
using text::Face;

using Chains = std::vector<std::vector<AcGePoint2d>>;

constexpr double kPixels = 1000;  // at which outlines are measured

// The toolkit's font, scaled so that capital letters are 1 high.
class OutlineFace final : public Face {
  public:
    explicit OutlineFace(const QFont& font) : font_(QRawFont::fromFont(font)) {
        const double capital = font_.boundingRect(glyphOf(L'H')).height();
        scale_ = capital > 0 ? 1 / capital : 1 / kPixels;
    }

    CharacterBox box(wchar_t character) const override {
        const auto found = boxes_.find(character);
        if (found != boxes_.end()) return found->second;
        const quint32 glyph = glyphOf(character);
        CharacterBox box;
        const QList<QPointF> advances = font_.advancesForGlyphIndexes({glyph});
        box.advance = advances.isEmpty() ? 0 : advances.front().x() * scale_;
        // The toolkit's y axis points downwards.
        const QRectF outline = font_.boundingRect(glyph);
        if (!outline.isEmpty()) {
            box.left = outline.left() * scale_;
            box.right = outline.right() * scale_;
            box.bottom = -outline.bottom() * scale_;
            box.top = -outline.top() * scale_;
        }
        boxes_.emplace(character, box);
        return box;
    }

    bool isOutline() const override { return true; }
    const Chains& chains(wchar_t character) const override {
        const auto [place, isNew] = chains_.try_emplace(character);
        if (!isNew) return place->second;
        const QPainterPath path = font_.pathForGlyph(glyphOf(character));
        for (const QPolygonF& polygon : path.toSubpathPolygons()) {
            auto& chain = place->second.emplace_back();
            for (const QPointF& point : polygon)
                chain.emplace_back(point.x() * scale_, -point.y() * scale_);
        }
        return place->second;
    }

  private:
    quint32 glyphOf(wchar_t character) const {
        const QList<quint32> glyphs =
            font_.glyphIndexesForString(QString::fromWCharArray(&character, 1));
        return glyphs.isEmpty() ? 0 : glyphs.front();
    }

    QRawFont font_;
    double scale_ = 1;
    mutable std::unordered_map<wchar_t, CharacterBox> boxes_;
    mutable std::unordered_map<wchar_t, Chains> chains_;
};

// A file's name without its ending is a fair guess at the family.
QString familyOfFile(const std::wstring& file) {
    const QString name = QString::fromStdWString(file);
    return name.section(QLatin1Char('.'), 0, -2);
}

class Fonts final : public text::OutlineFonts {
  public:
    std::unique_ptr<Face> face(const std::wstring& family, const std::wstring& file, bool bold,
                               bool italic) override {
        needApplication();
        QFont font(family.empty() ? familyOfFile(file) : QString::fromStdWString(family));
        font.setPixelSize(static_cast<int>(kPixels));
        font.setBold(bold);
        font.setItalic(italic);
        font.setHintingPreference(QFont::PreferNoHinting);
        return std::make_unique<OutlineFace>(font);
    }
};

}  // namespace
}  // namespace sg::graphics

extern "C" SG_API sg::text::OutlineFonts* swiftgateOutlineFonts() {
    static sg::graphics::Fonts fonts;
    return &fonts;
}
