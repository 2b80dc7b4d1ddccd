#include "grid/cell_text.h"

#include <QFontMetrics>
#include <QGlyphRun>
#include <QPaintEngine>
#include <QPainter>
#include <QString>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "grid/constants.h"

namespace sg::grid {
namespace {

constexpr size_t kMostFaces = 8;
constexpr size_t kLatin = 256;
// No line on a screen or a page shows more.
constexpr size_t kLongestLine = 4'000;
constexpr size_t kLongestText = 100'000;
constexpr int kMostPixels = 1 << 24;

bool isSingleLine(uint32_t format) {
    return (format & kTextSingleLine) != 0;
}

// The part of the text that can be seen.
std::wstring_view seen(std::wstring_view text, uint32_t format) {
    return text.substr(0, isSingleLine(format) ? kLongestLine : kLongestText);
}

QString toQString(std::wstring_view text, uint32_t format) {
    QString line = QString::fromWCharArray(text.data(), qsizetype(text.size()));
    for (QChar& c : line) {
        const bool isKept = c.unicode() >= 0x20 ||
                            (c == u'\t' && (format & kTextExpandTabs) != 0) ||
                            (c == u'\n' && !isSingleLine(format));
        if (!isKept) c = u' ';
    }
    return line;
}

int toQtFlags(uint32_t format) {
    int flags = (format & kTextCentre) != 0  ? Qt::AlignHCenter
                : (format & kTextRight) != 0 ? Qt::AlignRight
                                             : Qt::AlignLeft;
    flags |= (format & kTextVCentre) != 0  ? Qt::AlignVCenter
             : (format & kTextBottom) != 0 ? Qt::AlignBottom
                                           : Qt::AlignTop;
    if (isSingleLine(format)) {
        flags |= Qt::TextSingleLine;
    } else if ((format & kTextWordBreak) != 0) {
        flags |= Qt::TextWordWrap;
    }
    if ((format & kTextExpandTabs) != 0) flags |= Qt::TextExpandTabs;
    if ((format & kTextNoPrefix) == 0) flags |= Qt::TextShowMnemonic;
    return flags;
}

// Characters beyond Latin 1 that neither join nor combine nor run from right to left: letters of
// European scripts, punctuation and signs, kana, and those of Chinese and Korean.
bool standsAlone(wchar_t c) {
    constexpr std::pair<wchar_t, wchar_t> ranges[] = {
        {0x100, 0x24F},   {0x370, 0x482},   {0x48A, 0x52F},   {0x1E00, 0x1EFF}, {0x2010, 0x2027},
        {0x2030, 0x205E}, {0x20A0, 0x20BF}, {0x2100, 0x23FF}, {0x3001, 0x3020}, {0x3041, 0x3096},
        {0x30A1, 0x30FF}, {0x4E00, 0x9FFF}, {0xAC00, 0xD7A3}};
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [&](const auto& range) { return c >= range.first && c <= range.second; });
}

bool fits(const QRect& rect, const QSize& size) {
    return size.width() <= rect.width() && size.height() <= rect.height();
}

// Clips to a rectangle for as long as it lives.
class Clip {
  public:
    Clip(QPainter& painter, const QRect& rect, bool isNeeded)
        : painter_(isNeeded ? &painter : nullptr) {
        if (painter_ == nullptr) return;
        painter_->save();
        painter_->setClipRect(rect, Qt::IntersectClip);
    }
    ~Clip() {
        if (painter_ != nullptr) painter_->restore();
    }
    Clip(const Clip&) = delete;
    Clip& operator=(const Clip&) = delete;

  private:
    QPainter* const painter_;
};

}  // namespace

// A font with the glyphs of Latin text.
struct CellText::Face {
    explicit Face(const QFont& of) : font(of), metrics(of), raw(QRawFont::fromFont(of)) {
        std::array<QChar, kLatin> characters;
        for (size_t i = 0; i < kLatin; ++i)
            characters[i] = i < 0x20 ? u' ' : char16_t(i);
        glyphs.fill(0);
        int count = int(kLatin);
        if (!raw.glyphIndexesForChars(characters.data(), int(kLatin), glyphs.data(), &count)) {
            glyphs.fill(0);
            return;
        }
        QList<QPointF> placed(qsizetype{kLatin});
        if (raw.advancesForGlyphIndexes(glyphs.data(), placed.data(), int(kLatin))) {
            for (size_t i = 0; i < kLatin; ++i)
                advances[i] = placed[qsizetype(i)].x();
        } else {
            glyphs.fill(0);
        }
    }

    struct Glyph {
        quint32 index = 0;  // 0: the font has none
        double advance = 0;
    };

    // Of a character that is set by its glyph alone; index 0 for any other one.
    Glyph Find(wchar_t c) {
        if (uint32_t(c) < kLatin) return {glyphs[size_t(c)], advances[size_t(c)]};
        if (!standsAlone(c)) return {};
        const auto [place, isNew] = others.try_emplace(c);
        if (isNew) {
            const QChar character{char16_t(c)};
            quint32 index = 0;
            int count = 1;
            QPointF advance;
            if (raw.glyphIndexesForChars(&character, 1, &index, &count) && index != 0 &&
                raw.advancesForGlyphIndexes(&index, &advance, 1)) {
                place->second = {index, advance.x()};
            }
        }
        return place->second;
    }

    QFont font;
    QFontMetrics metrics;
    QRawFont raw;
    std::array<quint32, kLatin> glyphs{};
    std::array<double, kLatin> advances{};
    std::unordered_map<wchar_t, Glyph> others;  // those that were asked for
};

// Glyphs of one line.
struct CellText::Run {
    QList<quint32> glyphs;
    QList<QPointF> places;
    double width = 0;
};

CellText::CellText() = default;
CellText::~CellText() = default;

CellText::Face& CellText::FaceOf(const QFont& font) {
    const auto found = std::find_if(faces_.begin(), faces_.end(),
                                    [&](const auto& face) { return face->font == font; });
    if (found != faces_.end()) {
        std::rotate(faces_.begin(), found, found + 1);
    } else {
        if (faces_.size() == kMostFaces) faces_.pop_back();
        faces_.insert(faces_.begin(), std::make_unique<Face>(font));
    }
    return *faces_.front();
}

// False for text that has to be laid out.
bool CellText::SetRun(Face& face, std::wstring_view text, uint32_t format, Run& run) const {
    if (!isSingleLine(format)) return false;
    const bool hasPrefixes = (format & kTextNoPrefix) == 0;
    const bool expandsTabs = (format & kTextExpandTabs) != 0;
    run.glyphs.resize(qsizetype(text.size()));
    run.places.resize(qsizetype(text.size()));
    quint32* const glyphs = run.glyphs.data();
    QPointF* const places = run.places.data();
    for (size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i];
        const Face::Glyph glyph = face.Find(c);
        const bool isPlain = !(hasPrefixes && c == L'&') && !(expandsTabs && c == L'\t');
        if (glyph.index == 0 || !isPlain) return false;
        glyphs[i] = glyph.index;
        places[i] = QPointF(run.width, 0);
        run.width += glyph.advance;
    }
    return true;
}

int CellText::Height(const QFont& font) {
    return FaceOf(font).metrics.height();
}

QSize CellText::Extent(const QFont& font, std::wstring_view text, uint32_t format, int width) {
    Face& face = FaceOf(font);
    text = seen(text, format);
    const bool hasPrefixes = (format & kTextNoPrefix) == 0;
    if (isSingleLine(format) && (format & kTextExpandTabs) == 0) {
        double total = 0;
        bool isPlain = true;
        for (const wchar_t c : text) {
            const Face::Glyph glyph = face.Find(c);
            isPlain = glyph.index != 0 && !(hasPrefixes && c == L'&');
            if (!isPlain) break;
            total += glyph.advance;
        }
        if (isPlain) return {int(std::ceil(total)), face.metrics.height()};
    }
    const QRect room(0, 0, width > 0 ? width : kMostPixels, kMostPixels);
    return face.metrics
        .boundingRect(room, toQtFlags(format & ~uint32_t(kTextCentre | kTextRight)),
                      toQString(text, format))
        .size();
}

// Cuts a run that is too wide, and ends it with three dots.
void CellText::DrawRun(QPainter& painter, Face& face, const QRect& rect, Run& run,
                       uint32_t format) const {
    bool isWide = run.width > rect.width();
    if (isWide && (format & kTextEndEllipsis) != 0 && face.Find(L'.').index != 0) {
        const double dot = face.advances[L'.'];
        qsizetype kept = run.places.size();
        while (kept > 1 && run.places[kept - 1].x() + 3 * dot > rect.width())
            --kept;
        // The glyph at `kept - 1` is the first that is replaced, but one always stays.
        kept = std::max<qsizetype>(kept - 1, 1);
        double end = kept < run.places.size() ? run.places[kept].x() : run.width;
        run.glyphs.resize(kept);
        run.places.resize(kept);
        for (int i = 0; i < 3; ++i, end += dot) {
            run.glyphs.append(face.glyphs[L'.']);
            run.places.append(QPointF(end, 0));
        }
        run.width = end;
        isWide = run.width > rect.width();
    }
    double x = rect.left();
    if (!isWide && (format & kTextCentre) != 0) x += std::floor((rect.width() - run.width) / 2);
    if (!isWide && (format & kTextRight) != 0) x += rect.width() - std::ceil(run.width);
    const int height = face.metrics.height();
    int y = rect.top();
    if ((format & kTextVCentre) != 0) y += (rect.height() - height) / 2;
    if ((format & kTextVCentre) == 0 && (format & kTextBottom) != 0) y += rect.height() - height;

    QGlyphRun glyphs;
    glyphs.setRawFont(face.raw);
    glyphs.setGlyphIndexes(run.glyphs);
    glyphs.setPositions(run.places);
    const Clip clip(painter, rect, isWide || height > rect.height());
    painter.drawGlyphRun(QPointF(x, y + face.metrics.ascent()), glyphs);
}

void CellText::Draw(QPainter& painter, const QFont& font, const QRect& rect, std::wstring_view text,
                    uint32_t format) {
    if (text.empty() || rect.isEmpty()) return;
    Face& face = FaceOf(font);
    text = seen(text, format);
    Run run;
    // Files and printers are to have the text itself.
    const bool isScreen = painter.paintEngine()->type() == QPaintEngine::Raster;
    if (isScreen && SetRun(face, text, format, run)) {
        DrawRun(painter, face, rect, run, format);
        return;
    }
    painter.setFont(font);
    QString shown = toQString(text, format);
    if (isSingleLine(format) && (format & kTextEndEllipsis) != 0) {
        const int flags = (format & kTextNoPrefix) == 0 ? int(Qt::TextShowMnemonic) : 0;
        shown = face.metrics.elidedText(shown, Qt::ElideRight, rect.width(), flags);
    }
    const QSize size = face.metrics.boundingRect(rect, toQtFlags(format), shown).size();
    const Clip clip(painter, rect, !fits(rect, size));
    painter.drawText(rect, toQtFlags(format), shown);
}

}  // namespace sg::grid
