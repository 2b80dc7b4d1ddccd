#include "host/text/line.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <optional>

#include "host/text/face.h"

namespace sg::text {
namespace {

constexpr wchar_t kDiameter = 0x2205;
constexpr wchar_t kDegree = 0xB0;
constexpr wchar_t kPlusMinus = 0xB1;

bool isDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

class Decoder {
  public:
    explicit Decoder(std::wstring_view text) : rest_(text) {}

    PlainLine decode() {
        while (!rest_.empty()) {
            if (!takePercent() && !takeUnicode()) {
                line_.text += rest_.front();
                rest_.remove_prefix(1);
            }
        }
        for (std::optional<size_t>& start : open_)
            close(start, &start - open_);
        return std::move(line_);
    }

  private:
    void emit(wchar_t c, size_t codeLength) {
        line_.text += c;
        rest_.remove_prefix(codeLength);
    }

    void close(std::optional<size_t>& start, ptrdiff_t kind) {
        if (start && *start < line_.text.size()) {
            line_.decorations.push_back(
                {static_cast<Decoration::Kind>(kind), *start, line_.text.size()});
        }
        start.reset();
    }

    void toggle(Decoration::Kind kind) {
        std::optional<size_t>& start = open_[static_cast<size_t>(kind)];
        if (start) {
            close(start, static_cast<ptrdiff_t>(kind));
        } else {
            start = line_.text.size();
        }
        rest_.remove_prefix(3);
    }

    bool takePercent() {
        if (rest_.size() < 3 || rest_[0] != L'%' || rest_[1] != L'%') return false;
        const wchar_t code = rest_[2];
        switch (std::towlower(static_cast<wint_t>(code))) {
            case L'c':
                emit(kDiameter, 3);
                return true;
            case L'd':
                emit(kDegree, 3);
                return true;
            case L'p':
                emit(kPlusMinus, 3);
                return true;
            case L'%':
                emit(L'%', 3);
                return true;
            case L'u':
                toggle(Decoration::Kind::under);
                return true;
            case L'o':
                toggle(Decoration::Kind::over);
                return true;
            case L'k':
                toggle(Decoration::Kind::through);
                return true;
            default:
                return takeNumber();
        }
    }

    bool takeNumber() {
        if (rest_.size() < 5 || !std::all_of(rest_.begin() + 2, rest_.begin() + 5, isDigit)) {
            return false;
        }
        const int number = (rest_[2] - L'0') * 100 + (rest_[3] - L'0') * 10 + (rest_[4] - L'0');
        emit(static_cast<wchar_t>(number), 5);
        return true;
    }

    bool takeUnicode() {
        if (rest_.size() < 7 || rest_.substr(0, 3) != L"\\U+") return false;
        unsigned value = 0;
        for (size_t i = 3; i < 7; ++i) {
            if (!std::iswxdigit(static_cast<wint_t>(rest_[i]))) return false;
            const wchar_t c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(rest_[i])));
            value = value * 16 + static_cast<unsigned>(isDigit(c) ? c - L'0' : c - L'a' + 10);
        }
        emit(static_cast<wchar_t>(value), 7);
        return true;
    }

    std::wstring_view rest_;
    PlainLine line_;
    std::optional<size_t> open_[3];  // where each kind of decoration started
};

void include(LineBox& box, double x, double y) {
    const bool first = box.isEmpty();
    box.left = first ? x : std::min(box.left, x);
    box.right = first ? x : std::max(box.right, x);
    box.bottom = first ? y : std::min(box.bottom, y);
    box.top = first ? y : std::max(box.top, y);
}

// The characters stand under each other, the first one's top at the origin's height.
LineBox measureColumn(std::wstring_view plain, const AcGiTextStyle& style) {
    constexpr double kStep = 5.0 / 3;
    const Face& face = faceOf(style);
    LineBox box;
    double y = -style.height;
    for (const wchar_t c : plain) {
        const CharacterBox character = face.box(c);
        const double half = character.advance / 2;
        const double x = style.height * style.widthFactor;
        if (character.left <= character.right) {
            include(box, (character.left - half) * x, y + character.bottom * style.height);
            include(box, (character.right - half) * x, y + character.top * style.height);
        }
        y -= style.height * kStep;
    }
    return box;
}

}  // namespace

PlainLine decodeLine(std::wstring_view text) {
    return Decoder(text).decode();
}

LineBox measureLine(std::wstring_view plain, const AcGiTextStyle& style) {
    if (style.vertical) return measureColumn(plain, style);
    const Face& face = faceOf(style);
    const double slant = std::tan(style.oblique);
    LineBox box;
    for (const wchar_t c : plain) {
        const CharacterBox character = face.box(c);
        if (character.left <= character.right) {
            const double bottom = character.bottom * style.height;
            const double top = character.top * style.height;
            const double left = box.advance + character.left * style.height * style.widthFactor;
            const double right = box.advance + character.right * style.height * style.widthFactor;
            include(box, left + std::min(bottom * slant, top * slant), bottom);
            include(box, right + std::max(bottom * slant, top * slant), top);
        }
        box.advance += character.advance * style.height * style.widthFactor;
    }
    return box;
}

}  // namespace sg::text
