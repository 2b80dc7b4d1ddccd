#include "host/text/stroke_font.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <numbers>

namespace sg::text {
namespace {

struct RawGlyph {
    int8_t left, right;
    int16_t first, end;  // of kPoints
};

// kPoints and kGlyphs: the characters from blank to "~" as Allen V. Hershey drew them. A point 127,
// 127 lifts the pen.
#include "generated/stroke_table.inc"

constexpr int kPenUp = 127;
constexpr double kBaseline = 9;
constexpr double kCapitalHeight = 21;

using Stroke = std::vector<AcGePoint2d>;

StrokeGlyph fromTable(const RawGlyph& raw) {
    StrokeGlyph glyph;
    glyph.advance = (raw.right - raw.left) / kCapitalHeight;
    bool down = false;
    for (int i = raw.first; i < raw.end; ++i) {
        if (kPoints[i][0] == kPenUp) {
            down = false;
            continue;
        }
        if (!down) glyph.strokes.emplace_back();
        down = true;
        glyph.strokes.back().emplace_back((kPoints[i][0] - raw.left) / kCapitalHeight,
                                          (kBaseline - kPoints[i][1]) / kCapitalHeight);
    }
    return glyph;
}

// ---- Composing ----------------------------------------------------------------------------------

// "x,y x,y ...; ..." as strokes.
std::vector<Stroke> path(const char* text) {
    std::vector<Stroke> strokes(1);
    while (*text != 0) {
        char* end = nullptr;
        const double x = std::strtod(text, &end);
        const double y = std::strtod(end + 1, &end);
        strokes.back().emplace_back(x, y);
        if (*end == ';') {
            strokes.emplace_back();
            ++end;
        }
        text = end;
    }
    return strokes;
}

void add(StrokeGlyph& glyph, const std::vector<Stroke>& strokes, double scale, double dx,
         double dy) {
    for (const Stroke& stroke : strokes) {
        Stroke& added = glyph.strokes.emplace_back();
        for (const AcGePoint2d& p : stroke)
            added.emplace_back(p.x * scale + dx, p.y * scale + dy);
    }
}

// Marks over or under a letter, around x = 0. Over small letters they sit at 0.72, over capital
// ones a capital's rest higher.
struct Mark {
    char name;
    const char* strokes;
};
constexpr Mark kMarks[] = {
    {'`', "-0.12,0.18 0.08,0"},
    {'\'', "0.12,0.18 -0.08,0"},
    {'^', "-0.15,0 0,0.16 0.15,0"},
    {'~', "-0.19,0.03 -0.14,0.11 -0.06,0.11 0.06,0.04 0.14,0.04 0.19,0.12"},
    {':',
     "-0.14,0.06 -0.11,0.09 -0.14,0.12 -0.17,0.09 -0.14,0.06;"
     "0.14,0.06 0.17,0.09 0.14,0.12 0.11,0.09 0.14,0.06"},
    {'o', "0,0.01 0.08,0.05 0.1,0.12 0.06,0.19 0,0.21 -0.06,0.19 -0.1,0.12 -0.08,0.05 0,0.01"},
    {',', "0,0 0.04,-0.08 0.08,-0.12 0.06,-0.2 -0.02,-0.24 -0.08,-0.22"},
};

struct Letter {
    wchar_t character;
    char base;
    char mark;
};
constexpr Letter kLetters[] = {
    {0xC0, 'A', '`'},  {0xC1, 'A', '\''}, {0xC2, 'A', '^'},  {0xC3, 'A', '~'},  {0xC4, 'A', ':'},
    {0xC5, 'A', 'o'},  {0xC7, 'C', ','},  {0xC8, 'E', '`'},  {0xC9, 'E', '\''}, {0xCA, 'E', '^'},
    {0xCB, 'E', ':'},  {0xCC, 'I', '`'},  {0xCD, 'I', '\''}, {0xCE, 'I', '^'},  {0xCF, 'I', ':'},
    {0xD1, 'N', '~'},  {0xD2, 'O', '`'},  {0xD3, 'O', '\''}, {0xD4, 'O', '^'},  {0xD5, 'O', '~'},
    {0xD6, 'O', ':'},  {0xD9, 'U', '`'},  {0xDA, 'U', '\''}, {0xDB, 'U', '^'},  {0xDC, 'U', ':'},
    {0xDD, 'Y', '\''}, {0xE0, 'a', '`'},  {0xE1, 'a', '\''}, {0xE2, 'a', '^'},  {0xE3, 'a', '~'},
    {0xE4, 'a', ':'},  {0xE5, 'a', 'o'},  {0xE7, 'c', ','},  {0xE8, 'e', '`'},  {0xE9, 'e', '\''},
    {0xEA, 'e', '^'},  {0xEB, 'e', ':'},  {0xEC, 'i', '`'},  {0xED, 'i', '\''}, {0xEE, 'i', '^'},
    {0xEF, 'i', ':'},  {0xF1, 'n', '~'},  {0xF2, 'o', '`'},  {0xF3, 'o', '\''}, {0xF4, 'o', '^'},
    {0xF5, 'o', '~'},  {0xF6, 'o', ':'},  {0xF9, 'u', '`'},  {0xFA, 'u', '\''}, {0xFB, 'u', '^'},
    {0xFC, 'u', ':'},  {0xFD, 'y', '\''}, {0xFF, 'y', ':'},
};

// Signs drawn by themselves: character, advance, strokes.
struct Sign {
    wchar_t character;
    double advance;
    const char* strokes;
};
constexpr Sign kSigns[] = {
    {0xA3, 0.95,
     "0.8,0.82 0.72,0.95 0.58,1 0.44,0.94 0.36,0.8 0.36,0.1 0.2,0 0.85,0;0.2,0.48 0.65,0.48"},
    {0xA4, 0.9,
     "0.45,0.25 0.6,0.31 0.68,0.45 0.6,0.59 0.45,0.65 0.3,0.59 0.22,0.45 0.3,0.31 "
     "0.45,0.25;0.15,0.15 0.28,0.28;0.75,0.15 0.62,0.28;0.15,0.75 0.28,0.62;0.75,0.75 "
     "0.62,0.62"},
    {0xA5, 0.9, "0.1,1 0.45,0.5 0.8,1;0.45,0.5 0.45,0;0.2,0.42 0.7,0.42;0.2,0.22 0.7,0.22"},
    {0xA6, 0.4, "0.2,1.2 0.2,0.6;0.2,0.3 0.2,-0.3"},
    {0xA7, 0.75,
     "0.6,0.9 0.5,1 0.28,1 0.18,0.9 0.2,0.78 0.55,0.55 0.6,0.43 0.5,0.33;0.25,0.72 0.15,"
     "0.6 0.2,0.48 0.52,0.26 0.58,0.14 0.5,0.02 0.28,-0.02 0.16,0.1"},
    {0xAC, 0.95, "0.15,0.55 0.8,0.55 0.8,0.25"},
    {0xAD, 0.7, "0.1,0.43 0.6,0.43"},
    {0xAF, 0.8, "0.1,1.12 0.7,1.12"},
    {0xB0, 0.55,
     "0.28,0.7 0.4,0.75 0.45,0.86 0.4,0.97 0.28,1.02 0.16,0.97 0.11,0.86 0.16,0.75 "
     "0.28,0.7"},
    {0xB1, 1.05, "0.5,0.95 0.5,0.25;0.15,0.6 0.85,0.6;0.15,0.05 0.85,0.05"},
    {0xB5, 0.9,
     "0.15,-0.33 0.2,0 0.3,0.67;0.22,0.1 0.35,0 0.5,0 0.65,0.15 0.75,0.67;0.65,0.15 0.68,"
     "0.03 0.78,0"},
    {0xB6, 0.85,
     "0.7,-0.2 0.7,1 0.35,1 0.2,0.92 0.14,0.76 0.2,0.6 0.35,0.52 0.5,0.52;0.5,-0.2 0.5,1"},
    {0xB7, 0.4, "0.2,0.4 0.16,0.45 0.2,0.5 0.24,0.45 0.2,0.4"},
    {0xD7, 0.95, "0.2,0.15 0.75,0.7;0.75,0.15 0.2,0.7"},
    {0xF7, 1.05,
     "0.15,0.45 0.85,0.45;0.5,0.72 0.46,0.76 0.5,0.8 0.54,0.76 0.5,0.72;0.5,0.1 0.46,"
     "0.14 0.5,0.18 0.54,0.14 0.5,0.1"},
    {0xDF, 0.95,
     "0.15,-0.2 0.15,0.8 0.25,0.95 0.42,1 0.6,0.93 0.65,0.78 0.58,0.63 0.42,0.55;0.42,"
     "0.55 0.65,0.48 0.78,0.3 0.7,0.1 0.52,0 0.35,0.02"},
    {0xDE, 0.95, "0.2,0 0.2,1;0.2,0.76 0.55,0.76 0.75,0.66 0.8,0.5 0.75,0.34 0.55,0.24 0.2,0.24"},
    {0xFE, 0.9,
     "0.2,-0.33 0.2,1;0.2,0.5 0.35,0.64 0.52,0.66 0.68,0.57 0.74,0.35 0.68,0.1 0.52,0 "
     "0.35,0.03 0.2,0.17"},
    {0xF0, 0.9,
     "0.3,1.02 0.5,0.9 0.68,0.65 0.74,0.38 0.66,0.1 0.45,0 0.26,0.08 0.16,0.3 0.24,0.54 "
     "0.45,0.63 0.62,0.54 0.7,0.4;0.3,0.78 0.66,0.98"},
    {0xC6, 1.25, "0.05,0 0.6,1 1.15,1;0.7,1 0.7,0 1.15,0;0.23,0.33 0.7,0.33;0.7,0.52 1.05,0.52"},
    {0xE6, 1.3,
     "0.6,0.67 0.6,0;0.6,0.5 0.45,0.64 0.32,0.67 0.18,0.57 0.12,0.33 0.18,0.1 0.32,0 0.45,"
     "0.03 0.6,0.17;0.6,0.38 1.15,0.38 1.12,0.55 1,0.66 0.85,0.66 0.68,0.56 0.6,0.33 0.68,"
     "0.08 0.85,0 1,0.03 1.13,0.14"},
    {0xAB, 0.85, "0.42,0.7 0.15,0.4 0.42,0.1;0.72,0.7 0.45,0.4 0.72,0.1"},
    {0xBB, 0.85, "0.15,0.7 0.42,0.4 0.15,0.1;0.45,0.7 0.72,0.4 0.45,0.1"},
    {0x2205, 1.05,
     "0.5,0.05 0.7,0.13 0.83,0.3 0.85,0.5 0.83,0.7 0.7,0.87 0.5,0.95 0.3,0.87 0.17,0.7 "
     "0.15,0.5 0.17,0.3 0.3,0.13 0.5,0.05;0.15,-0.05 0.85,1.05"},
};

// Characters of the table, smaller and raised: what, size, height over the baseline.
struct Small {
    wchar_t character;
    char base;
    double size;
    double raise;
};
constexpr Small kSmall[] = {
    {0xAA, 'a', 0.6, 0.6},  {0xB2, '2', 0.55, 0.5}, {0xB3, '3', 0.55, 0.5},
    {0xB9, '1', 0.55, 0.5}, {0xBA, 'o', 0.6, 0.6},  {0xB4, '\'', 1, 0},
};

class Font {
  public:
    Font() {
        wchar_t character = L' ';
        for (const RawGlyph& raw : kGlyphs) {
            if (character <= L'~') glyphs_[character++] = fromTable(raw);
        }
        glyphs_[0xA0] = glyphs_[L' '];
        for (const Letter& letter : kLetters)
            addLetter(letter);
        for (const Sign& sign : kSigns) {
            glyphs_[sign.character] = {sign.advance, path(sign.strokes)};
        }
        glyphs_[0x2300] = glyphs_[0x2205];
        for (const Small& small : kSmall)
            addSmall(small);
        addVariants();
    }

    const StrokeGlyph& find(wchar_t character) const {
        const auto found = glyphs_.find(character);
        return found != glyphs_.end() ? found->second : glyphs_.at(L'?');
    }

  private:
    const StrokeGlyph& base(char character) const {
        return glyphs_.at(static_cast<wchar_t>(character));
    }

    void addLetter(const Letter& letter) {
        StrokeGlyph glyph = base(letter.base);
        // A dot gives way to the mark.
        if (letter.base == 'i')
            glyph.strokes = {{{glyph.advance / 2, 0.67}, {glyph.advance / 2, 0}}};
        const bool capital = letter.base >= 'A' && letter.base <= 'Z';
        const double height = letter.mark == ',' ? 0 : capital ? 1.06 : 0.76;
        for (const Mark& mark : kMarks) {
            if (mark.name == letter.mark)
                add(glyph, path(mark.strokes), 1, glyph.advance / 2, height);
        }
        glyphs_[letter.character] = std::move(glyph);
    }

    void addSmall(const Small& small) {
        const StrokeGlyph& from = base(small.base);
        StrokeGlyph glyph;
        glyph.advance = from.advance * small.size;
        add(glyph, from.strokes, small.size, 0, small.raise);
        glyphs_[small.character] = std::move(glyph);
    }

    // A character of the table turned upside down, so that it hangs from the height of small
    // letters.
    void addTurned(wchar_t character, char from) {
        constexpr double kHeight = 0.67;
        StrokeGlyph glyph = base(from);
        for (Stroke& stroke : glyph.strokes) {
            for (AcGePoint2d& p : stroke)
                p = {glyph.advance - p.x, kHeight - p.y};
        }
        glyphs_[character] = std::move(glyph);
    }

    void addStruck(wchar_t character, char from, const char* strokes) {
        StrokeGlyph glyph = base(from);
        add(glyph, path(strokes), 1, 0, 0);
        glyphs_[character] = std::move(glyph);
    }

    void addMarkAlone(wchar_t character, char mark, double height) {
        StrokeGlyph glyph;
        glyph.advance = 0.5;
        for (const Mark& each : kMarks) {
            if (each.name == mark) add(glyph, path(each.strokes), 1, 0.25, height);
        }
        glyphs_[character] = std::move(glyph);
    }

    // A letter in a circle.
    void addCircled(wchar_t character, char from) {
        StrokeGlyph glyph;
        glyph.advance = 1.2;
        Stroke circle;
        constexpr int kSides = 24;
        for (int i = 0; i <= kSides; ++i) {
            const double angle = 2 * std::numbers::pi * i / kSides;
            circle.emplace_back(0.6 + 0.5 * std::cos(angle), 0.5 + 0.5 * std::sin(angle));
        }
        glyph.strokes.push_back(std::move(circle));
        add(glyph, base(from).strokes, 0.5, 0.6 - base(from).advance / 4, 0.25);
        glyphs_[character] = std::move(glyph);
    }

    void addFraction(wchar_t character, char above, char below) {
        StrokeGlyph glyph;
        add(glyph, base(above).strokes, 0.5, 0, 0.5);
        add(glyph, path("0.25,0 0.85,1"), 1, 0, 0);
        add(glyph, base(below).strokes, 0.5, 0.6, 0);
        glyph.advance = 0.6 + base(below).advance / 2;
        glyphs_[character] = std::move(glyph);
    }

    void addVariants() {
        addTurned(0xA1, '!');
        addTurned(0xBF, '?');
        addStruck(0xA2, 'c', "0.45,0.85 0.45,-0.18");
        addStruck(0xD0, 'D', "0.02,0.5 0.5,0.5");
        addStruck(0xD8, 'O', "0.15,-0.05 0.9,1.05");
        addStruck(0xF8, 'o', "0.12,-0.05 0.8,0.72");
        addMarkAlone(0xA8, ':', 0.85);
        addMarkAlone(0xB8, ',', 0);
        addCircled(0xA9, 'C');
        addCircled(0xAE, 'R');
        addFraction(0xBC, '1', '4');
        addFraction(0xBD, '1', '2');
        addFraction(0xBE, '3', '4');
    }

    std::map<wchar_t, StrokeGlyph> glyphs_;
};

}  // namespace

const StrokeGlyph& strokeGlyph(wchar_t character) {
    static const Font kFont;
    return kFont.find(character);
}

}  // namespace sg::text
