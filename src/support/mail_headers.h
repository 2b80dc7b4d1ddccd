#pragma once

#include <chrono>
#include <string>
#include <string_view>

// Header lines of mail messages (RFC 5322) from texts in any language. Whatever a text holds, it
// stays inside its header: control characters become blanks. The results are folded, so that no
// line is longer than 76 characters where the text allows it and never longer than 998, with CR LF
// between two lines and none at the end.
namespace sg {

// "Subject: ...", as it stands where it is plain, in encoded words (RFC 2047) otherwise.
std::string mailTextHeader(std::string_view name, std::wstring_view text);

// "From: name <address>", or the address alone when there is no name.
std::string mailAddressHeader(std::string_view name, std::wstring_view displayName,
                              std::wstring_view address);

// "Date: ...", in universal time.
std::string mailDateHeader(std::chrono::system_clock::time_point time);

// "Content-Disposition: attachment; ..." with a file's name, by RFC 2231 where it is not plain.
std::string mailAttachmentHeader(std::wstring_view fileName);

// True for an address that can stand in a header and in a mail transaction without quotes: one "@"
// with a name and a domain, and nothing that separates addresses, quotes, or ends a line.
bool isMailAddress(std::wstring_view address);

}  // namespace sg
