#pragma once

#include <QFont>
#include <QRawFont>

#include <array>
#include <memory>
#include <string_view>
#include <vector>

#include "base/export.h"

class QPainter;

namespace sg::grid {

// Measures and draws the texts of one grid's cells. Text whose characters stand each for themselves
// (Latin, Greek, Cyrillic, Chinese...) is set glyph by glyph, without kerning or ligatures, which
// costs a third of laying it out; all other text is laid out.
class SG_API CellText {
  public:
    CellText();
    ~CellText();
    CellText(const CellText&) = delete;
    CellText& operator=(const CellText&) = delete;

    // The room that the text takes. Without the single-line flag lines end at line feeds, and with
    // the word-break flag also at `width` where that is above 0.
    QSize Extent(const QFont& font, std::wstring_view text, uint32_t format, int width = 0);

    // Draws with the painter's pen; never outside the rectangle.
    void Draw(QPainter& painter, const QFont& font, const QRect& rect, std::wstring_view text,
              uint32_t format);

    int Height(const QFont& font);

  private:
    struct Face;
    struct Run;

    Face& FaceOf(const QFont& font);
    bool SetRun(Face& face, std::wstring_view text, uint32_t format, Run& run) const;
    void DrawRun(QPainter& painter, Face& face, const QRect& rect, Run& run, uint32_t format) const;

    std::vector<std::unique_ptr<Face>> faces_;  // the last one used first
};

}  // namespace sg::grid
