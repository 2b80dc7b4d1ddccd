#include "support/failure_file.h"

#include <string_view>

#include "base/encoding.h"
#include "base/replacement_file.h"
#include "platform/win/files.h"

namespace sg {
namespace {

// XML has no way to write most control characters, so that they become question marks.
std::wstring escaped(std::wstring_view text) {
    std::wstring out;
    for (const wchar_t c : text) {
        const bool control = c < 0x20 && c != L'\t' && c != L'\n';
        if (c == L'&') {
            out += L"&amp;";
        } else if (c == L'<') {
            out += L"&lt;";
        } else if (c == L'>') {
            out += L"&gt;";
        } else if (c == L'\r') {
            out += L"&#13;";
        } else {
            out += control || c == 0xFFFE || c == 0xFFFF ? L'?' : c;
        }
    }
    return out;
}

std::wstring element(const wchar_t* indent, const std::wstring& name, const std::wstring& text) {
    return indent + (L'<' + name + L'>') + escaped(text) + L"</" + name + L">\n";
}

std::wstring document(const FailureAccount& account) {
    std::wstring out = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<failure>\n";
    out += element(L"  ", L"operation", account.operation);
    out += element(L"  ", L"reason", account.reason);
    if (!account.transcript.empty()) {
        out += L"  <transcript>\n";
        for (const std::wstring& line : account.transcript)
            out += element(L"    ", L"line", line);
        out += L"  </transcript>\n";
    }
    return out + L"</failure>\n";
}

}  // namespace

bool saveFailureAccount(const std::wstring& file, const FailureAccount& account) {
    ReplacementFile out(sgResolvePath(file));
    return out.write(toUtf8(document(account))) && out.commit();
}

}  // namespace sg
