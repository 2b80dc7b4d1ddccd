#include "host/text/mtext_layout.h"

#include <algorithm>
#include <cmath>

#include "host/text/face.h"
#include "host/text/line.h"
#include "host/text/mtext_parser.h"

namespace sg::text {
namespace {

constexpr double kLineStep = 5.0 / 3;  // text heights between baselines
constexpr double kTabStep = 4;         // text heights between tabs that nobody set
constexpr double kStackHeight = 0.7;   // of the parts of a stack, in text heights
constexpr double kStackGap = 0.15;     // between a part and the line, in text heights
constexpr double kUnderline = -0.2;    // in text heights over the baseline
constexpr double kOverline = 1.2;
constexpr double kThroughline = 0.45;

double advanceOf(std::wstring_view text, const Format& format) {
    return measureLine(text, format.style).advance * format.tracking;
}

// Grows the lines of a layout piece by piece.
class Setter {
  public:
    explicit Setter(const LayoutOptions& options) : options_(options) {}

    TextLayout set(const std::vector<TextPiece>& pieces) {
        startLine(Paragraph(), true);
        for (size_t i = 0; i < pieces.size();)
            i = place(pieces, i);
        finishLine();
        placeLines();
        return std::move(layout_);
    }

  private:
    // ---- Lines

    TextLine& line() { return layout_.lines.back(); }

    void startLine(const Paragraph& paragraph, bool startsParagraph) {
        TextLine& made = layout_.lines.emplace_back();
        made.indent = paragraph.leftIndent + (startsParagraph ? paragraph.firstIndent : 0);
        made.alignment = paragraph.alignment;
        x_ = 0;
        hasWord_ = false;
        pristine_ = startsParagraph;
    }

    // What shows decides how wide and high the line is; an empty one is as high as its text would
    // be.
    void finishLine() {
        TextLine& done = line();
        for (const TextRun& run : done.runs) {
            const LineBox box = measureLine(run.text, run.style);
            if (box.isEmpty()) continue;
            done.width = std::max(done.width, run.x + run.width);
            done.descent = std::max(done.descent, -(run.y + box.bottom));
            done.height = std::max(done.height, run.y + run.style.height);
        }
        for (const TextRule& rule : done.rules)
            done.width = std::max(done.width, rule.x2);
        if (done.height == 0) done.height = options_.style.height;
        done.ascent = done.height;
    }

    void placeLines() {
        double baseline = 0;
        for (size_t i = 0; i < layout_.lines.size(); ++i) {
            TextLine& each = layout_.lines[i];
            const double height = options_.exactSpacing ? options_.style.height : each.height;
            baseline += i == 0 ? each.height : height * kLineStep * options_.lineSpacing;
            each.baseline = baseline;
            layout_.width = std::max(layout_.width, each.indent + each.width);
        }
        layout_.height = baseline;
    }

    double room(const Paragraph& paragraph) const {
        return options_.width - layout_.lines.back().indent - paragraph.rightIndent;
    }

    // ---- Pieces

    // Places the piece at `i`, a word with the pieces that go on with it; answers the place behind.
    size_t place(const std::vector<TextPiece>& pieces, size_t i) {
        const TextPiece& piece = pieces[i];
        if (pristine_) {
            line().indent = piece.paragraph.leftIndent + piece.paragraph.firstIndent;
            line().alignment = piece.paragraph.alignment;
            pristine_ = false;
        }
        switch (piece.kind) {
            case TextPiece::Kind::paragraphEnd:
                endParagraph(piece);
                return i + 1;
            case TextPiece::Kind::blank:
                addRun(L" ", piece.format, 0);
                return i + 1;
            case TextPiece::Kind::tab:
                addTab(piece);
                return i + 1;
            case TextPiece::Kind::word:
            case TextPiece::Kind::stack:
                break;
        }
        size_t end = i;
        double width = 0;
        while (end < pieces.size() && (pieces[end].kind == TextPiece::Kind::word ||
                                       pieces[end].kind == TextPiece::Kind::stack)) {
            width += widthOf(pieces[end++]);
        }
        wrapBefore(piece, width);
        for (; i < end; ++i) {
            if (pieces[i].kind == TextPiece::Kind::word) {
                addRun(pieces[i].text, pieces[i].format, 0);
            } else {
                addStack(pieces[i]);
            }
        }
        hasWord_ = true;
        return end;
    }

    void endParagraph(const TextPiece& piece) {
        // An empty line is as high as what would stand in it.
        if (line().runs.empty()) line().height = piece.format.style.height;
        finishLine();
        startLine(piece.paragraph, true);
    }

    void wrapBefore(const TextPiece& piece, double width) {
        constexpr double kSlack = 1e-9;
        if (options_.width <= 0 || !hasWord_) return;
        if (x_ + width <= room(piece.paragraph) * (1 + kSlack)) return;
        finishLine();
        startLine(piece.paragraph, false);
    }

    void addTab(const TextPiece& piece) {
        const double from = line().indent + x_;
        double stop = 0;
        for (const double each : piece.paragraph.tabs) {
            if (stop == 0 && each > from) stop = each;
        }
        const double step = kTabStep * options_.style.height;
        if (stop == 0) stop = (std::floor(from / step + 1e-9) + 1) * step;
        x_ = stop - line().indent;
    }

    double widthOf(const TextPiece& piece) const {
        if (piece.kind == TextPiece::Kind::word) return advanceOf(piece.text, piece.format);
        return stackOf(piece).width;
    }

    // ---- Runs

    void addRun(const std::wstring& text, const Format& format, double y) {
        const double width = advanceOf(text, format);
        addRule(format.under, kUnderline, format, width, y);
        addRule(format.over, kOverline, format, width, y);
        addRule(format.through, kThroughline, format, width, y);
        line().runs.push_back({text, format.style, format.color, x_, y + raise(format), width});
        x_ += width;
    }

    void addRule(bool wanted, double height, const Format& format, double width, double y) {
        if (!wanted) return;
        const double at = y + raise(format) + height * format.style.height;
        line().rules.push_back({x_, at, x_ + width, at, format.color});
    }

    // Smaller characters may stand in the line's middle or at its top.
    double raise(const Format& format) const {
        const double spare = options_.style.height - format.style.height;
        if (spare <= 0 || format.alignment == 0) return 0;
        return format.alignment == 1 ? spare / 2 : spare;
    }

    struct Stack {
        Format format;
        double above = 0;  // widths of the parts
        double below = 0;
        double width = 0;
    };

    Stack stackOf(const TextPiece& piece) const {
        Stack stack;
        stack.format = piece.format;
        stack.format.style.height *= kStackHeight;
        stack.above = advanceOf(piece.text, stack.format);
        stack.below = advanceOf(piece.below, stack.format);
        const double height = piece.format.style.height;
        stack.width = piece.sign == L'#' ? stack.above + stack.below + kStackGap * height
                                         : std::max(stack.above, stack.below);
        return stack;
    }

    void addPart(const std::wstring& text, const Stack& stack, double x, double y, double width) {
        line().runs.push_back({text, stack.format.style, stack.format.color, x, y, width});
    }

    // Over each other with a line between ('/'), without one ('^'), or beside each other with a
    // slanting line ('#').
    void addStack(const TextPiece& piece) {
        const Stack stack = stackOf(piece);
        const double height = piece.format.style.height;
        const double part = stack.format.style.height;
        if (piece.sign == L'#') {
            const double second = x_ + stack.width - stack.below;
            addPart(piece.text, stack, x_, height - part + kStackGap * height, stack.above);
            addPart(piece.below, stack, second, -kStackGap * height, stack.below);
            line().rules.push_back({x_ + stack.above - part / 4, -kStackGap * height,
                                    second + part / 4, height + kStackGap * height,
                                    piece.format.color});
        } else {
            const double middle = height / 2 + stackRaise(piece.format, height, part);
            const double gap = kStackGap * height;
            addPart(piece.text, stack, x_ + (stack.width - stack.above) / 2, middle + gap,
                    stack.above);
            addPart(piece.below, stack, x_ + (stack.width - stack.below) / 2, middle - gap - part,
                    stack.below);
            if (piece.sign == L'/') {
                line().rules.push_back({x_, middle, x_ + stack.width, middle, piece.format.color});
            }
        }
        x_ += stack.width;
    }

    // From the middle of the line: the lower part's foot at the baseline, or the upper part's head
    // at the capitals' height.
    static double stackRaise(const Format& format, double height, double part) {
        const double reach = part + kStackGap * height - height / 2;
        if (format.alignment == 1) return 0;
        return format.alignment == 0 ? reach : -reach;
    }

    const LayoutOptions& options_;
    TextLayout layout_;
    double x_ = 0;
    bool hasWord_ = false;  // on the line that is being set
    bool pristine_ = true;  // nothing of its paragraph has been met
};

}  // namespace

TextLayout layOut(const std::wstring& contents, const LayoutOptions& options) {
    if (contents.empty()) return {};
    return Setter(options).set(readPieces(contents, options.style));
}

std::wstring plainText(const std::wstring& contents) {
    std::wstring plain;
    for (const TextPiece& piece : readPieces(contents, AcGiTextStyle())) {
        switch (piece.kind) {
            case TextPiece::Kind::word:
                plain += piece.text;
                break;
            case TextPiece::Kind::blank:
                plain += L' ';
                break;
            case TextPiece::Kind::tab:
                plain += L'\t';
                break;
            case TextPiece::Kind::paragraphEnd:
                plain += L'\n';
                break;
            case TextPiece::Kind::stack:
                plain += piece.text + piece.sign + piece.below;
                break;
        }
    }
    return plain;
}

}  // namespace sg::text
