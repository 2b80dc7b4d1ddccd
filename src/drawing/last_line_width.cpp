#include "drawing/last_line_width.h"

#include <string>
#include <string_view>

namespace sg {
namespace {

constexpr std::wstring_view kParagraphEnd = L"\\P";

std::wstring lastParagraph(const std::wstring& contents) {
    const size_t end = contents.rfind(kParagraphEnd);
    return end == std::wstring::npos ? contents : contents.substr(end + kParagraphEnd.size());
}

// Takes words from a paragraph's end until what is left of it is a line shorter.
class LineCutter {
  public:
    LineCutter(AcDbMText& text, std::wstring paragraph)
        : text_(text),
          paragraph_(std::move(paragraph)),
          wholeHeight_(text.actualHeight()),
          at_(static_cast<ptrdiff_t>(paragraph_.size()) - 1) {}

    std::wstring cut() {
        while (at_ >= 0) {
            if (paragraph_[static_cast<size_t>(at_)] == L' ') {
                moveLast();
            } else if (moveWord()) {
                break;
            }
            text_.setContents(paragraph_.c_str());
            if (wholeHeight_ >= text_.actualHeight() + text_.textHeight()) break;
        }
        return line_;
    }

  private:
    // From the paragraph's end to the line's start.
    void moveLast() {
        line_.insert(line_.begin(), paragraph_.back());
        paragraph_.pop_back();
        --at_;
    }

    // Up to a blank; true when the line is done with it. The paragraph's first character goes with
    // the rest, a blank too.
    bool moveWord() {
        while (at_ >= 1 && paragraph_[static_cast<size_t>(at_)] != L' ') {
            const bool endsParagraph =
                std::wstring_view(paragraph_).substr(static_cast<size_t>(at_) - 1) == kParagraphEnd;
            if (endsParagraph) return true;
            moveLast();
        }
        if (at_ >= 1) return false;
        moveLast();
        return true;
    }

    AcDbMText& text_;
    std::wstring paragraph_;
    std::wstring line_;
    const double wholeHeight_;
    ptrdiff_t at_;
};

}  // namespace

double lastLineWidth(AcDbMText& text) {
    const std::wstring kept = text.contents();
    std::wstring line = lastParagraph(kept);
    text.setContents(line.c_str());
    const bool isOneLine = 2.0 * text.textHeight() > text.actualHeight();
    if (!isOneLine) line = LineCutter(text, line).cut();
    text.setContents(line.c_str());
    const double width = text.actualWidth();
    text.setContents(kept.c_str());
    return width;
}

}  // namespace sg
