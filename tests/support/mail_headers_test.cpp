#include "support/mail_headers.h"

#include <gmock/gmock.h>

#include "base/encoding.h"

namespace sg {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

size_t longestLine(const std::string& text) {
    size_t longest = 0;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find("\r\n", start), text.size());
        longest = std::max(longest, end - start);
        start = end + 2;
    }
    return longest;
}

TEST(MailHeadersTest, PlainTextStandsAsItIs) {
    EXPECT_EQ(mailTextHeader("Subject", L"QN Bug: it stops"), "Subject: QN Bug: it stops");
    EXPECT_EQ(mailTextHeader("Subject", L""), "Subject: ");
    EXPECT_EQ(mailAddressHeader("From", L"", L"a@b.c"), "From: a@b.c");
    EXPECT_EQ(mailAddressHeader("From", L"O'Neil, \"Joe\" \\", L"a@b.c"),
              "From: \"O'Neil, \\\"Joe\\\" \\\\\" <a@b.c>");
}

TEST(MailHeadersTest, OtherTextIsEncoded) {
    EXPECT_EQ(mailTextHeader("Subject", L"L\u00fcftung"), "Subject: =?UTF-8?B?TMO8ZnR1bmc=?=");
    EXPECT_THAT(mailTextHeader("Subject", L"=?UTF-8?B?QQ==?="), StartsWith("Subject: =?UTF-8?B?PT"))
        << "text that looks encoded";
    EXPECT_THAT(mailTextHeader("Subject", L" blank"), StartsWith("Subject: =?"));
    EXPECT_EQ(mailAddressHeader("To", L"\u00c9", L"a@b.c"), "To: =?UTF-8?B?w4k=?= <a@b.c>");
}

TEST(MailHeadersTest, LongTextIsFoldedBetweenCharacters) {
    for (const wchar_t c : {L'x', L'\u00e9', L'\u20ac', L'\U0001F600'}) {
        const std::string header = mailTextHeader("Subject", std::wstring(300, c));
        EXPECT_LE(longestLine(header), 76u);
        // Every word ends with a whole character: 39 bytes hold 39, 19, 13 or 9 of them.
        const std::string word = header.substr(9, header.find("\r\n") - 9);
        const size_t bytes = toUtf8({&c, 1}).size();
        const size_t characters = 39 / bytes;
        EXPECT_EQ(word.size(), 12 + (characters * bytes + 2) / 3 * 4);
    }
}

TEST(MailHeadersTest, ControlsCannotLeaveTheHeader) {
    const std::wstring attack = L"a\r\nBcc: x@y.z\n\r\u0085\u2028\u2029b\x01";
    for (const std::string& header :
         {mailTextHeader("Subject", attack), mailAddressHeader("From", attack, L"a@b.c"),
          mailAddressHeader("To", L"", attack), mailAttachmentHeader(attack)}) {
        for (size_t at = header.find('\n'); at != std::string::npos; at = header.find('\n', at + 1))
            EXPECT_EQ(header[at + 1], ' ') << header;
        EXPECT_THAT(header, Not(HasSubstr("\x01")));
        EXPECT_THAT(header, Not(HasSubstr("\nBcc")));
    }
}

TEST(MailHeadersTest, AttachmentNames) {
    const std::string start = "Content-Disposition: attachment;\r\n ";
    EXPECT_EQ(mailAttachmentHeader(L"Joe \"x\".zip"), start + "filename=\"Joe \\\"x\\\".zip\"");
    EXPECT_EQ(mailAttachmentHeader(L"\u00e4 b.zip"), start + "filename*=UTF-8''%C3%A4%20b.zip");
    const std::string parts = mailAttachmentHeader(std::wstring(20, L'\u00e4') + L".zip");
    EXPECT_THAT(parts, StartsWith(start + "filename*0*=UTF-8''%C3%A4"));
    EXPECT_THAT(parts, HasSubstr(";\r\n filename*1*=%C3%A4"));
    EXPECT_THAT(parts, HasSubstr(".zip"));
    EXPECT_LE(longestLine(parts), 78u);
}

TEST(MailHeadersTest, DatesAreEnglishAndUniversal) {
    using std::chrono::system_clock;
    EXPECT_EQ(mailDateHeader(system_clock::from_time_t(0)), "Date: Thu, 1 Jan 1970 00:00:00 +0000");
    EXPECT_EQ(mailDateHeader(system_clock::from_time_t(951827696)),
              "Date: Tue, 29 Feb 2000 12:34:56 +0000");
}

TEST(MailHeadersTest, Addresses) {
    for (const wchar_t* const good : {L"a@b", L"first.last@x-y.org", L"\u00fc@\u00fc.de"})
        EXPECT_TRUE(isMailAddress(good)) << toUtf8(good);
    for (const wchar_t* const bad :
         {L"", L"@", L"a@", L"@b", L"a", L"a@b@c", L"a b@c", L"a@b\r\nBcc:x", L"<a@b>", L"a@b,c@d",
          L"\"a\"@b", L"a@b;", L"a@b\u0085"})
        EXPECT_FALSE(isMailAddress(bad)) << toUtf8(bad);
    EXPECT_FALSE(isMailAddress(L"a@" + std::wstring(400, L'b')));
}

}  // namespace
}  // namespace sg
