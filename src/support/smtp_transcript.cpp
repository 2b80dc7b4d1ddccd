#include "support/smtp_transcript.h"

#include <algorithm>
#include <utility>

#include "base/encoding.h"

namespace sg {
namespace {

constexpr size_t kMostLines = 200;
constexpr size_t kMostCharacters = 500;  // the length of a reply line by RFC 5321 is 512

template <class Use>
void forEachLine(std::string_view text, Use&& use) {
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        use(line.substr(0, kMostCharacters));
    }
}

}  // namespace

void SmtpTranscript::addClient(std::string_view lines) {
    forEachLine(lines, [this](std::string_view line) {
        endMessage();
        if (line.starts_with("AUTH ")) {
            const size_t mechanismEnd = line.find(' ', 5);
            const bool more = mechanismEnd != std::string_view::npos;
            add("C: " + std::string(line.substr(0, mechanismEnd)) + (more ? " ..." : ""));
            authenticating_ = true;
        } else {
            add("C: " + (authenticating_ ? "..." : std::string(line)));
        }
    });
}

void SmtpTranscript::addServer(std::string_view lines) {
    forEachLine(lines, [this](std::string_view line) {
        endMessage();
        // 334 asks for more of the authentication; its text can have parts of the user's name.
        if (authenticating_ && line.starts_with("334")) {
            add("S: 334 ...");
            return;
        }
        authenticating_ = false;
        add("S: " + std::string(line));
    });
}

void SmtpTranscript::addMessageBytes(size_t count) {
    messageBytes_ += count;
}

void SmtpTranscript::endMessage() {
    const size_t count = std::exchange(messageBytes_, 0);
    if (count > 0) add("C: (" + std::to_string(count) + " bytes of the message)");
}

void SmtpTranscript::add(std::string line) {
    lines_.push_back(std::move(line));
    if (lines_.size() > kMostLines) lines_.pop_front();
}

std::vector<std::wstring> SmtpTranscript::lines() const {
    SmtpTranscript whole = *this;
    whole.endMessage();
    std::vector<std::wstring> out;
    for (const std::string& line : whole.lines_)
        out.push_back(fromUtf8(line));
    return out;
}

}  // namespace sg
