#include "support/smtp_transcript.h"

#include <gmock/gmock.h>

namespace sg {
namespace {

using testing::ElementsAre;

TEST(SmtpTranscriptTest, PasswordsAreLeftOut) {
    SmtpTranscript transcript;
    transcript.addServer("220 there\r\n");
    transcript.addClient("AUTH PLAIN AGEAYg==\r\n");
    transcript.addServer("535 no\r\n");
    transcript.addClient("AUTH LOGIN\r\n");
    transcript.addServer("334 VXNlcm5hbWU6\r\n");
    transcript.addClient("dXNlcg==\r\n");
    transcript.addServer("334 UGFzc3dvcmQ6\r\n");
    transcript.addClient("c2VjcmV0\r\n");
    transcript.addServer("235-yes\r\n235 yes\r\n");
    transcript.addClient("MAIL FROM:<a@b>\r\n");
    EXPECT_THAT(transcript.lines(),
                ElementsAre(L"S: 220 there", L"C: AUTH PLAIN ...", L"S: 535 no", L"C: AUTH LOGIN",
                            L"S: 334 ...", L"C: ...", L"S: 334 ...", L"C: ...", L"S: 235-yes",
                            L"S: 235 yes", L"C: MAIL FROM:<a@b>"));
}

TEST(SmtpTranscriptTest, MessagesAreCountedAndTheStartIsForgotten) {
    SmtpTranscript transcript;
    for (int i = 0; i < 500; ++i)
        transcript.addServer(std::string(2000, 'x') + "\r\n");
    transcript.addMessageBytes(5);
    transcript.addMessageBytes(6);
    const auto lines = transcript.lines();
    ASSERT_EQ(lines.size(), 200u);
    EXPECT_EQ(lines[0].size(), 503u);
    EXPECT_EQ(lines[199], L"C: (11 bytes of the message)");
}

}  // namespace
}  // namespace sg
