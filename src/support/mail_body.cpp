#include "support/mail_body.h"

#include <fmt/format.h>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr size_t kLineLength = 76;

// Builds the lines; what does not fit goes on behind a soft line end.
class QuotedPrintableLines {
  public:
    // `isLast` in its line: a blank there would be lost on the way.
    void add(char c, bool isLast) {
        const bool blank = c == ' ' || c == '\t';
        const bool plain = (c > ' ' && c <= '~' && c != '=') || (blank && !isLast);
        const std::string piece =
            plain ? std::string(1, c) : fmt::format("={:02X}", static_cast<uint8_t>(c));
        // A line that goes on needs room for the sign that says so.
        if (length_ + piece.size() > kLineLength - (isLast ? 0 : 1)) {
            out_ += "=\r\n";
            length_ = 0;
        }
        out_ += piece;
        length_ += piece.size();
    }
    void endLine() {
        out_ += "\r\n";
        length_ = 0;
    }
    std::string take() { return std::move(out_); }

  private:
    std::string out_;
    size_t length_ = 0;
};

bool endsLine(char c) {
    return c == '\r' || c == '\n';
}

}  // namespace

std::string quotedPrintable(std::wstring_view text) {
    const std::string bytes = toUtf8(text);
    QuotedPrintableLines lines;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (!endsLine(bytes[i])) {
            lines.add(bytes[i], i + 1 == bytes.size() || endsLine(bytes[i + 1]));
            continue;
        }
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
        lines.endLine();
    }
    return lines.take();
}

}  // namespace sg
