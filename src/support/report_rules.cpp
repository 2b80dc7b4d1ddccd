#include "support/report_rules.h"

#include <algorithm>
#include <cstddef>

#include "base/encoding.h"
#include "base/text.h"

namespace sg {
namespace {

constexpr std::wstring_view kForbiddenInNames = L"\\/?:*\"<>|";

bool isForbidden(wchar_t c) {
    return kForbiddenInNames.find(c) != std::wstring_view::npos;
}

bool isAddressCharacter(wchar_t c) {
    return (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') || c == L'_' || c == L'.' ||
           c == L'@' || c == L'-';
}

// How many units of the text go into the subject; -1 for a text that starts with a line feed.
std::ptrdiff_t subjectCount(std::u16string_view text, size_t limit) {
    auto count = static_cast<std::ptrdiff_t>(std::min(limit, text.size()));
    const auto cutAt = [&](size_t found, std::ptrdiff_t back) {
        const auto place = static_cast<std::ptrdiff_t>(found);
        if (found != std::u16string_view::npos && place < count) count = place - back;
    };
    cutAt(text.find(u'\n'), 1);  // the carriage return in front of it stays out
    cutAt(text.find_first_of(u"?!."), 0);
    return count;
}

// The length of the directive that follows a percent sign; 0 when none does.
size_t directiveLength(std::wstring_view text) {
    size_t at = 0;
    const auto passAny = [&](std::wstring_view characters) {
        at = std::min(text.find_first_not_of(characters, at), text.size());
    };
    passAny(L"-+ #0");        // flags
    passAny(L"0123456789*");  // width
    if (at < text.size() && text[at] == L'.') {
        ++at;
        passAny(L"0123456789*");  // precision
    }
    if (text.substr(at).starts_with(L"I64") || text.substr(at).starts_with(L"I32")) {
        at += 3;
    } else {
        passAny(L"hlLqjztwI");  // size
    }
    const bool typed =
        at < text.size() &&
        std::wstring_view(L"diouxXcCsSeEfFgGaApnZ").find(text[at]) != std::wstring_view::npos;
    return typed ? at + 1 : 0;
}

}  // namespace

ReportMode reportMode(int32_t mode) {
    switch (mode) {
        case kReportProject:
            return {L"Send Project to Quillon Support", true, L"QN Project"};
        case kReportBug:
            return {L"Send Bug to Quillon Support", false, L"QN Bug"};
        case kReportMasterDatabases:
            return {L"Send Master and Standards Databases to Quillon Support", false, L"QN Email"};
        case kReportStandardsDatabases:
            return {L"Send Standards Databases to Quillon Support", false, L"QN Email"};
        default:
            return {L"Send to Quillon Support", false, L"QN Email"};
    }
}

std::wstring attachmentCountText(size_t count) {
    if (count == 0) return {};
    return L"(" + std::to_wstring(count) + (count == 1 ? L" file)" : L" files)");
}

std::wstring BuildSubject(std::wstring_view prefix, std::wstring_view text, size_t limit) {
    std::wstring subject(prefix);
    if (text.empty()) return subject;
    const std::u16string units = toUtf16(text);
    const std::ptrdiff_t count = std::max<std::ptrdiff_t>(0, subjectCount(units, limit));
    return subject + L": " + fromUtf16(units.substr(0, static_cast<size_t>(count)));
}

std::wstring BuildBody(std::wstring_view phone, std::wstring_view text,
                       std::wstring_view systemInfo) {
    std::wstring body(trimmed(phone));
    if (!body.empty()) body += L'\n';
    body += L'\n';
    body += text;
    body += L"\n\n";
    body += systemInfo;
    body += L'\n';
    return body;
}

int ValidateAddresses(std::wstring_view address, std::wstring_view repetition,
                      std::wstring_view supportDomain) {
    if (address.empty()) return kAddressMissing;
    if (const int code = CheckAddress(address, supportDomain); code != kAddressGood) return code;
    return address == repetition ? kAddressGood : kAddressesDiffer;
}

int CheckAddress(std::wstring_view address, std::wstring_view supportDomain) {
    const std::wstring upper = upperCased(address);
    const size_t at = upper.find(L'@');
    if (at == std::wstring::npos || upper.find(L'@', at + 1) != std::wstring::npos)
        return kAddressInvalid;
    if (upper.substr(at) == L'@' + upperCased(supportDomain)) return kAddressOfSupport;
    const size_t point = upper.rfind(L'.');
    if (point == std::wstring::npos || point < at) return kAddressInvalid;
    const bool good = std::all_of(upper.begin(), upper.end(), isAddressCharacter);
    return good ? kAddressGood : kAddressInvalid;
}

const wchar_t* addressRefusal(int code) {
    switch (code) {
        case kAddressInvalid:
            return L"Invalid e-mail address.";
        case kAddressMissing:
            return L"An e-mail address is needed.";
        case kAddressesDiffer:
            return L"The e-mail addresses do not match.";
        case kAddressOfSupport:
            return L"Enter your email address. We will use this email address to reply to you.";
        default:
            return L"";
    }
}

std::wstring CleanFileName(std::wstring_view name) {
    std::wstring out(trimmed(name));
    std::erase_if(out, isForbidden);
    return out;
}

bool isFileName(std::wstring_view name) {
    return !name.empty() && std::none_of(name.begin(), name.end(),
                                         [](wchar_t c) { return c < 0x20 || isForbidden(c); });
}

std::wstring BuildArchiveName(std::wstring_view name, std::wstring_view suffix) {
    std::wstring out = CleanFileName(name);
    if (out.empty()) out = L"QN Attachment";
    if (!suffix.empty()) out += L' ' + std::wstring(suffix);
    return out + L".zip";
}

std::wstring printedWithoutArguments(std::wstring_view format) {
    std::wstring out;
    for (size_t at = 0; at < format.size(); ++at) {
        if (format[at] != L'%') {
            out += format[at];
            continue;
        }
        const std::wstring_view behind = format.substr(at + 1);
        if (const size_t length = directiveLength(behind); length > 0) {
            at += length;
            continue;
        }
        out += L'%';
        if (behind.starts_with(L'%')) ++at;
    }
    return out;
}

}  // namespace sg
