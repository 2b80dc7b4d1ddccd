#include "support/smtp_server.h"

#include <charconv>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "base/encoding.h"

namespace sg {
namespace {

std::optional<std::string> variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != 0 ? std::optional<std::string>(value) : std::nullopt;
}

// The whole of `text` as a number from 1 to `most`.
std::optional<int32_t> numberUpTo(int32_t most, std::string_view text) {
    int32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool good = error == std::errc() && end == text.data() + text.size();
    return good && value >= 1 && value <= most ? std::optional(value) : std::nullopt;
}

}  // namespace

bool applySmtpEnvironment(SmtpServer& server, std::wstring& wrong) {
    if (const auto host = variable("SWIFTGATE_SMTP_HOST")) {
        server.host = fromUtf8(*host);
        server.passwordNeedsTls = false;
    }
    if (const auto text = variable("SWIFTGATE_SMTP_PORT")) {
        const auto port = numberUpTo(65535, *text);
        if (!port) wrong = L"SWIFTGATE_SMTP_PORT is no port: \"" + fromUtf8(*text) + L"\"";
        server.port = port.value_or(0);
    }
    if (const auto file = variable("SWIFTGATE_SMTP_CA")) server.authorities = fromUtf8(*file);
    if (const auto text = variable("SWIFTGATE_SMTP_TIMEOUT")) {
        const auto seconds = numberUpTo(86400, *text);
        if (!seconds) {
            wrong = L"SWIFTGATE_SMTP_TIMEOUT is no number of seconds: \"" + fromUtf8(*text) + L"\"";
        }
        server.patience = std::chrono::seconds(seconds.value_or(0));
    }
    return wrong.empty();
}

}  // namespace sg
