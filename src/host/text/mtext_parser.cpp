#include "host/text/mtext_parser.h"

#include <cmath>
#include <cstdlib>
#include <cwchar>
#include <numbers>

#include "host/text/line.h"

namespace sg::text {
namespace {

constexpr wchar_t kNoBreakBlank = 0xA0;
constexpr size_t kMostNesting = 256;

class PieceReader {
  public:
    PieceReader(const std::wstring& contents, const AcGiTextStyle& style)
        : text_(contents), base_(style) {
        format_.style = style;
    }

    std::vector<TextPiece> read() {
        while (at_ < text_.size()) {
            const wchar_t c = text_[at_];
            if (c == L'{') {
                open();
            } else if (c == L'}') {
                close();
            } else if (c == L'\\') {
                readCode();
            } else if (c == L'%' && text_.compare(at_, 2, L"%%") == 0) {
                readPercent();
            } else if (c == L'^' && at_ + 1 < text_.size()) {
                readControl();
            } else {
                put(c);
                ++at_;
            }
        }
        flush();
        return std::move(pieces_);
    }

  private:
    // ---- Pieces

    void put(wchar_t c) {
        if (c == L' ') {
            flush();
            add(TextPiece::Kind::blank);
        } else if (c == L'\t') {
            flush();
            add(TextPiece::Kind::tab);
        } else if (c == L'\n') {
            endParagraph();
        } else if (c != L'\r') {
            word_ += c;
        }
    }

    TextPiece& add(TextPiece::Kind kind) {
        TextPiece& piece = pieces_.emplace_back();
        piece.kind = kind;
        piece.format = format_;
        piece.paragraph = paragraph_;
        return piece;
    }

    void flush() {
        if (word_.empty()) return;
        add(TextPiece::Kind::word).text = std::move(word_);
        word_.clear();
    }

    void endParagraph() {
        flush();
        add(TextPiece::Kind::paragraphEnd);
    }

    // ---- Codes

    void open() {
        flush();
        if (saved_.size() < kMostNesting) saved_.push_back(format_);
        ++at_;
    }

    void close() {
        flush();
        if (!saved_.empty()) {
            format_ = std::move(saved_.back());
            saved_.pop_back();
        }
        ++at_;
    }

    // The codes of single-line text; those for lines are shown as they stand.
    void readPercent() {
        const PlainLine line = decodeLine(std::wstring_view(text_).substr(at_, 5));
        const std::wstring_view code = std::wstring_view(text_).substr(at_, 3);
        const bool isNumber = text_.size() >= at_ + 5 && line.text.size() == 1;
        const bool isCode = code.size() == 3 && std::wcschr(L"cCdDpP%", code[2]) != nullptr;
        if (!isNumber && !isCode) {
            put(text_[at_++]);
            return;
        }
        word_ += line.text.front();
        at_ += isCode ? 3 : 5;
    }

    void readControl() {
        const wchar_t c = text_[at_ + 1];
        at_ += 2;
        switch (c) {
            case L'I':
                put(L'\t');
                break;
            case L'J':
                put(L'\n');
                break;
            case L'M':
                break;
            case L' ':
                word_ += L'^';
                break;
            default:
                word_ += L'^';
                --at_;
                break;
        }
    }

    void readCode() {
        if (at_ + 1 >= text_.size()) {
            word_ += text_[at_++];
            return;
        }
        const wchar_t code = text_[at_ + 1];
        switch (code) {
            case L'\\':
            case L'{':
            case L'}':
                take(2, code);
                return;
            case L'~':
                take(2, kNoBreakBlank);
                return;
            case L'P':
            case L'N':
                at_ += 2;
                endParagraph();
                return;
            case L'L':
                change(format_.under, true);
                return;
            case L'l':
                change(format_.under, false);
                return;
            case L'O':
                change(format_.over, true);
                return;
            case L'o':
                change(format_.over, false);
                return;
            case L'K':
                change(format_.through, true);
                return;
            case L'k':
                change(format_.through, false);
                return;
            case L'U':
                readUnicode();
                return;
            default:
                readValueCode(code);
                return;
        }
    }

    void take(size_t length, wchar_t c) {
        word_ += c;
        at_ += length;
    }

    void change(bool& flag, bool on) {
        flush();
        flag = on;
        at_ += 2;
    }

    void readUnicode() {
        const PlainLine line = decodeLine(std::wstring_view(text_).substr(at_, 7));
        if (line.text.size() == 1) {
            take(7, line.text.front());
        } else {
            take(1, L'\\');
        }
    }

    // Codes with a value that a semicolon ends. Without one, and for letters that are no code, the
    // backslash is shown.
    void readValueCode(wchar_t code) {
        const size_t end = text_.find(L';', at_);
        if (std::wcschr(L"HWQTACcfFSp", code) == nullptr || end == std::wstring::npos) {
            take(1, L'\\');
            return;
        }
        const std::wstring value = text_.substr(at_ + 2, end - at_ - 2);
        at_ = end + 1;
        flush();
        apply(code, value);
    }

    void apply(wchar_t code, const std::wstring& value) {
        switch (code) {
            case L'H':
                setHeight(value);
                break;
            case L'W':
                setFactor(format_.style.widthFactor, value, base_.widthFactor);
                break;
            case L'T':
                setFactor(format_.tracking, value, 1);
                break;
            case L'Q':
                format_.style.oblique =
                    std::wcstod(value.c_str(), nullptr) * std::numbers::pi / 180;
                break;
            case L'A':
                format_.alignment = static_cast<int>(std::wcstol(value.c_str(), nullptr, 10));
                break;
            case L'C':
                setColorIndex(value);
                break;
            case L'c':
                setTrueColor(value);
                break;
            case L'f':
            case L'F':
                setFont(value);
                break;
            case L'S':
                addStack(value);
                break;
            case L'p':
                setParagraph(value);
                break;
            default:
                break;
        }
    }

    void setHeight(const std::wstring& value) {
        wchar_t* end = nullptr;
        const double number = std::wcstod(value.c_str(), &end);
        const double height = *end == L'x' ? format_.style.height * number : number;
        if (height > 0 && std::isfinite(height)) format_.style.height = height;
    }

    void setFactor(double& factor, const std::wstring& value, double unit) {
        wchar_t* end = nullptr;
        const double number = std::wcstod(value.c_str(), &end);
        const double made = *end == L'x' ? unit * number : number;
        if (made > 0 && made < 100) factor = made;
    }

    void setColorIndex(const std::wstring& value) {
        const long index = std::wcstol(value.c_str(), nullptr, 10);
        AcCmColor color;
        if (index < 0 || index > 256 || !color.setColorIndex(static_cast<uint16_t>(index))) return;
        format_.color = color;
    }

    // The number has blue highest.
    void setTrueColor(const std::wstring& value) {
        const unsigned long number = std::wcstoul(value.c_str(), nullptr, 10);
        AcCmColor color;
        color.setRGB(static_cast<uint8_t>(number), static_cast<uint8_t>(number >> 8),
                     static_cast<uint8_t>(number >> 16));
        format_.color = color;
    }

    // A family, or a stroke font's file; then "b1", "i1" and others behind bars.
    void setFont(const std::wstring& value) {
        const size_t bar = value.find(L'|');
        const std::wstring name = value.substr(0, bar);
        const bool isFile = name.find(L'.') != std::wstring::npos;
        format_.style.typeface = isFile ? L"" : name;
        format_.style.fontFile = isFile ? name : L"";
        format_.style.bold = value.find(L"|b1") != std::wstring::npos;
        format_.style.italic = value.find(L"|i1") != std::wstring::npos;
    }

    void addStack(const std::wstring& value) {
        std::wstring parts[2];
        size_t part = 0;
        wchar_t sign = 0;
        for (size_t i = 0; i < value.size(); ++i) {
            wchar_t c = value[i];
            if (c == L'\\' && i + 1 < value.size()) {
                c = value[++i];
            } else if (sign == 0 && (c == L'/' || c == L'#' || c == L'^')) {
                sign = c;
                part = 1;
                continue;
            }
            parts[part] += c;
        }
        if (sign == 0) {
            word_ += parts[0];
            return;
        }
        TextPiece& piece = add(TextPiece::Kind::stack);
        piece.text = parts[0];
        piece.below = parts[1];
        piece.sign = sign;
    }

    // "i" first line's indent, "l" left, "r" right, each in text heights of the whole; "q" and a
    // letter for the alignment, "t" and stops. "x" and "*" say that something follows.
    void setParagraph(const std::wstring& value) {
        const wchar_t* at = value.c_str();
        while (*at != 0) {
            const wchar_t key = *at++;
            if (key == L'q') {
                setAlignment(*at);
                if (*at != 0) ++at;
            } else if (key == L'i' || key == L'l' || key == L'r' || key == L't') {
                at = setLengths(key, at);
            }
        }
    }

    void setAlignment(wchar_t letter) {
        switch (letter) {
            case L'l':
                paragraph_.alignment = LineAlignment::left;
                break;
            case L'c':
                paragraph_.alignment = LineAlignment::center;
                break;
            case L'r':
                paragraph_.alignment = LineAlignment::right;
                break;
            case L'j':
                paragraph_.alignment = LineAlignment::justified;
                break;
            case L'd':
                paragraph_.alignment = LineAlignment::distributed;
                break;
            default:
                paragraph_.alignment = LineAlignment::byEntity;
                break;
        }
    }

    const wchar_t* setLengths(wchar_t key, const wchar_t* at) {
        if (*at == L'*') {
            if (key == L'i') paragraph_.firstIndent = 0;
            if (key == L'l') paragraph_.leftIndent = 0;
            if (key == L'r') paragraph_.rightIndent = 0;
            return at + 1;
        }
        if (key == L't') paragraph_.tabs.clear();
        do {
            if (*at == L',') ++at;
            // A stop may say by a letter how text stands at it.
            if (key == L't' && (*at == L'c' || *at == L'r' || *at == L'd')) ++at;
            wchar_t* end = nullptr;
            const double length = std::wcstod(at, &end) * base_.height;
            if (end == at || !std::isfinite(length)) return at;
            at = end;
            if (key == L'i') paragraph_.firstIndent = length;
            if (key == L'l') paragraph_.leftIndent = length;
            if (key == L'r') paragraph_.rightIndent = length;
            if (key == L't') paragraph_.tabs.push_back(length);
        } while (key == L't' && *at == L',');
        return at;
    }

    const std::wstring& text_;
    const AcGiTextStyle& base_;
    size_t at_ = 0;
    Format format_;
    Paragraph paragraph_;
    std::vector<Format> saved_;
    std::wstring word_;
    std::vector<TextPiece> pieces_;
};

}  // namespace

std::vector<TextPiece> readPieces(const std::wstring& contents, const AcGiTextStyle& style) {
    return PieceReader(contents, style).read();
}

}  // namespace sg::text
