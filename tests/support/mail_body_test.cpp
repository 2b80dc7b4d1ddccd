#include "support/mail_body.h"

#include <gtest/gtest.h>

#include "base/encoding.h"

namespace sg {
namespace {

TEST(MailBodyTest, QuotedPrintable) {
    const std::wstring x75(75, L'x');
    const std::pair<std::wstring, std::string> cases[] = {
        {L"", ""},
        {L"a\nb\rc\r\nd\n\r\n\r\re", "a\r\nb\r\nc\r\nd\r\n\r\n\r\n\r\ne"},
        {L"a = \u00e9", "a =3D =C3=A9"},
        {L" a \n\t\n ", " a=20\r\n=09\r\n=20"},
        {L"\x01.\n.", "=01.\r\n."},
        {x75 + L"y", toUtf8(x75) + "y"},
        {x75 + L"\u00e9", toUtf8(x75) + "=\r\n=C3=A9"},
        {x75 + L"yz", toUtf8(x75) + "=\r\nyz"},
        {x75 + L" \n", toUtf8(x75) + "=\r\n=20\r\n"},
    };
    for (const auto& [text, encoded] : cases)
        EXPECT_EQ(quotedPrintable(text), encoded);
}

}  // namespace
}  // namespace sg
