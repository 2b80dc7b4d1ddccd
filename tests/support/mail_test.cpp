#include <gmock/gmock.h>

#include "support/mail_message.h"
#include "support/mail_session.h"
#include "support/smtp_fixture.h"

namespace sg {
namespace {

using namespace test;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class MailTest : public SmtpTest {
  protected:
    MailTest() {
        session.SetSmtpHost(L"smtp.example.invalid");
        session.SetSmtpPort(587);
        message.SetSubject(L"QN Bug: it stops");
        message.SetBody(L"Hello\r\n.\r\n..two\n" + std::wstring(200, L'x') +
                        L"\nend = 3D \u00e9 \n");
        message.SetFromName(L"Joe");
        message.SetFromAddress(L"joe@example.com");
        message.AddRecipient(L"", L"support@example.org");
    }
    void setUser(const wchar_t* password) {
        session.SetSmtpUserName(L"user@example.org");
        session.SetSmtpPassword(password);
    }
    std::string lastError() {
        EXPECT_TRUE(session.SaveLastError(L"error.xml"));
        return read("error.xml");
    }
    std::string transcript() {
        std::string out;
        for (const std::wstring& line : session.transcript().lines())
            out += toUtf8(line) + "\n";
        return out;
    }

    MailSession session;
    MailMessage message;
};

TEST_F(MailTest, DeliveredAsItWasWritten) {
    startServer();
    EXPECT_TRUE(session.VerifySmtpConnection());
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_TRUE(session.CloseSmtpConnection());
    EXPECT_EQ(read("commands"), "EHLO\nNOOP\nMAIL\nRCPT\nDATA\nQUIT\n") << "on one connection";
    EXPECT_EQ(delivered(),
              "Content-Type: multipart/mixed\n"
              "Mime-Version: 1.0\n"
              "Date: present\n"
              "From: Joe <joe@example.com>\n"
              "To: support@example.org\n"
              "Subject: QN Bug: it stops\n"
              "Message-ID: present\n"
              "text text/plain: 'Hello\\n.\\n..two\\n" +
                  std::string(200, 'x') + "\\nend = 3D \xC3\xA9 \\n'\n");
    EXPECT_EQ(envelope(),
              R"({"from": "joe@example.com", "to": ["support@example.org"], "options": ["SIZE"], )"
              R"("encrypted": false, "user": null})");
}

TEST_F(MailTest, EncryptedAndAuthenticated) {
    startServer(authenticated("user@example.org:secret"));
    setUser(L"secret");
    EXPECT_TRUE(session.VerifySmtpConnection()) << lastError();
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    session.CloseSmtpConnection();
    EXPECT_THAT(envelope(), HasSubstr(R"("encrypted": true, "user": "user@example.org")"));
    EXPECT_EQ(read("commands"), "EHLO\nSTARTTLS\nEHLO\nAUTH\nNOOP\nMAIL\nRCPT\nDATA\nQUIT\n");
    EXPECT_THAT(transcript(), HasSubstr("C: AUTH"));
    EXPECT_THAT(transcript(), Not(HasSubstr("c2VjcmV0"))) << "the password in base64";
}

TEST_F(MailTest, EncryptedWithoutAuthentication) {
    startServer(encrypted());
    setUser(L"secret");  // of no use to a server that does not ask
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_THAT(envelope(), HasSubstr(R"("encrypted": true, "user": null)"));
}

TEST_F(MailTest, AuthenticatedInPlainAtARelayThatTheUserNames) {
    startServer({"--auth", "user@example.org:secret"});
    setUser(L"secret");
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_THAT(envelope(), HasSubstr(R"("encrypted": false, "user": "user@example.org")"));
}

TEST_F(MailTest, NoPasswordGoesUnencryptedToTheDeploymentsServer) {
    startServer({"--auth", "user@example.org:secret"});
    const WithEnvironment none("SWIFTGATE_SMTP_HOST", "");
    session.SetSmtpHost(L"localhost");
    setUser(L"secret");
    EXPECT_FALSE(session.VerifySmtpConnection());
    EXPECT_THAT(transcript(), Not(HasSubstr("AUTH PLAIN")));
    session.SetSmtpUserName(L"");
    EXPECT_TRUE(session.VerifySmtpConnection()) << "without a password nothing is at stake";
}

TEST_F(MailTest, InternationalTextAndAddresses) {
    startServer();
    message.SetSubject(L"L\u00fcftung \u65e5\u672c\u8a9e " + std::wstring(60, L'\u00e4'));
    message.SetFromName(L"Jo\u00eb \"X\"");
    message.SetFromAddress(L"jo\u00eb@example.com");
    message.AddRecipient(L"\u00c5sa", L"asa@example.org");
    message.AddRecipient(L"", L"support@example.org");
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    std::string subject =
        "Subject: L\xC3\xBC"
        "ftung \xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E ";
    for (int i = 0; i < 60; ++i)
        subject += "\xC3\xA4";
    EXPECT_THAT(delivered(), HasSubstr(subject + "\n"));
    EXPECT_THAT(delivered(), HasSubstr("jo\xC3\xAB@example.com"));
    EXPECT_THAT(delivered(), HasSubstr("To: support@example.org, \xC3\x85sa <asa@example.org>, "
                                       "support@example.org\n"));
    EXPECT_THAT(delivered(), Not(HasSubstr("fault")));
    EXPECT_THAT(envelope(), HasSubstr(R"("to": ["support@example.org", "asa@example.org"])"));
    EXPECT_THAT(envelope(), HasSubstr("SMTPUTF8"));
}

TEST_F(MailTest, InternationalTextNeedsNothingOfTheServer) {
    startServer({"--no-utf8"});
    message.SetSubject(L"L\u00fcftung");
    message.SetFromName(L"Jo\u00eb");
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_THAT(delivered(), HasSubstr("Subject: L\xC3\xBC"
                                       "ftung\n"));
    EXPECT_THAT(delivered(), Not(HasSubstr("note: headers are not ASCII")));
    message.SetFromAddress(L"jo\u00eb@example.com");
    EXPECT_FALSE(session.SendMessage(message));
}

TEST_F(MailTest, NothingIsInjected) {
    startServer();
    message.SetSubject(L"x\r\nBcc: evil@example.net\r\n\r\nbody");
    message.SetFromName(L"y\nTo: evil@example.net");
    EXPECT_FALSE(message.SetFromAddress(L"a@b>\r\nRCPT TO:<evil@example.net"));
    EXPECT_FALSE(session.SendMessage(message)) << "the address that was there is not used instead";
    message.SetFromAddress(L"joe@example.com");
    EXPECT_FALSE(message.AddRecipient(L"", L"a@b.c, evil@example.net"));
    message.AddRecipient(L"z\r\nCc: evil@example.net", L"other@example.org");
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    const std::string text = delivered();
    EXPECT_THAT(text, HasSubstr("Subject: x  Bcc: evil@example.net    body\n"));
    EXPECT_THAT(text, Not(HasSubstr("\nBcc:")));
    EXPECT_THAT(text, Not(HasSubstr("\nCc:")));
    EXPECT_THAT(envelope(), HasSubstr(R"("to": ["support@example.org", "other@example.org"])"));
}

TEST_F(MailTest, AttachmentsAreZipped) {
    startServer();
    write("a/plan.qn", std::string(200'000, 'q'));
    write("b/notes.txt", "some notes");
    std::wstring type;
    EXPECT_TRUE(message.AddFileAttachment(path("a") + L"\\plan.qn", type));
    EXPECT_EQ(type, L"application/octet-stream");
    EXPECT_TRUE(message.AddFileAttachment(path("b/notes.txt"), type));
    EXPECT_EQ(type, L"text/plain");
    EXPECT_FALSE(message.AddFileAttachment(path("none"), type));
    EXPECT_FALSE(message.AddFileAttachment(path("a"), type)) << "a folder";
    EXPECT_TRUE(message.ZipAttachments(L"J\u00f6 Job/12.zip"));
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_THAT(delivered(), HasSubstr("attachment application/zip: J\xC3\xB6 Job/12.zip\n"
                                       "  entry plan.qn: b'" +
                                       std::string(60, 'q') +
                                       "' of 200000\n"
                                       "  entry notes.txt: b'some notes' of 10\n"));
    EXPECT_THAT(delivered(), Not(HasSubstr("fault")));
}

TEST_F(MailTest, ASecondZipHoldsTheFirst) {
    startServer();
    write("notes.txt", "some notes");
    for (int i = 0; i < 2; ++i) {
        std::wstring type;
        EXPECT_TRUE(message.AddFileAttachment(path("notes.txt"), type));
        EXPECT_TRUE(message.ZipAttachments(L"x.zip"));
    }
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_THAT(delivered(), HasSubstr("    entry notes.txt: b'some notes' of 10\n"
                                       "  entry notes.txt: b'some notes' of 10\n"));
}

TEST_F(MailTest, UnzippedAttachments) {
    startServer();
    write("\xC3\xA4.txt", ".\r\n.\r\nbinary\x01\xFF");
    std::wstring type;
    EXPECT_TRUE(message.AddFileAttachment(path("\xC3\xA4.txt"), type));
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_THAT(delivered(), HasSubstr("attachment text/plain: \xC3\xA4.txt\n"
                                       "  b'.\\r\\n.\\r\\nbinary\\x01\\xff'\n"));
    std::filesystem::remove(folder_ / "\xC3\xA4.txt");
    EXPECT_FALSE(session.SendMessage(message));
    EXPECT_THAT(lastError(), HasSubstr("cannot read"));
}

TEST_F(MailTest, ZippingThatFailsKeepsTheAttachments) {
    write("notes.txt");
    std::wstring type;
    EXPECT_TRUE(message.ZipAttachments(L"x.zip"));
    EXPECT_TRUE(message.attachments().empty());
    EXPECT_TRUE(message.AddFileAttachment(path("notes.txt"), type));
    {
        const WithEnvironment temporary("TMPDIR", "/nowhere");
        EXPECT_FALSE(message.ZipAttachments(L"x.zip"));
    }
    std::filesystem::remove(folder_ / "notes.txt");
    EXPECT_FALSE(message.ZipAttachments(L"x.zip"));
    EXPECT_EQ(message.attachments().at(0).path, path("notes.txt"));
    EXPECT_TRUE(message.SaveLastError(L"error.xml"));
    EXPECT_THAT(read("error.xml"), HasSubstr("notes.txt"));
}

TEST_F(MailTest, WhatAServerRefuses) {
    struct Case {
        std::vector<std::string> options;
        const char* said;
    };
    const Case cases[] = {
        {{"--refuse-sender", "joe@example.com"}, "550 5.7.1 this sender is not welcome"},
        {{"--refuse-recipient", "other@example.org"}, "550 5.1.1 nobody has this mailbox"},
        {{"--after-data", "554 5.6.0 not like this"}, "554 5.6.0 not like this"},
    };
    message.AddRecipient(L"", L"other@example.org");
    for (const Case& each : cases) {
        startServer(each.options);
        EXPECT_TRUE(session.VerifySmtpConnection());
        EXPECT_FALSE(session.SendMessage(message));
        EXPECT_THAT(lastError(), HasSubstr("<line>S: " + std::string(each.said)));
        session.CloseSmtpConnection();
    }
}

TEST_F(MailTest, WrongPassword) {
    startServer(authenticated("user@example.org:secret"));
    setUser(L"wrong");
    EXPECT_FALSE(session.VerifySmtpConnection());
    EXPECT_THAT(lastError(), HasSubstr("<operation>VerifySmtpConnection</operation>"));
    EXPECT_THAT(lastError(), HasSubstr("S: 535"));
    EXPECT_FALSE(session.SendMessage(message));
    EXPECT_FALSE(isDelivered());
}

TEST_F(MailTest, CertificatesAreVerified) {
    startServer(encrypted());
    for (const std::string& authorities :
         {(folder_ / "other.pem").string(), std::string(), (folder_ / "none.pem").string()}) {
        const WithEnvironment other("SWIFTGATE_SMTP_CA", authorities);
        EXPECT_FALSE(session.VerifySmtpConnection()) << authorities;
        EXPECT_THAT(lastError(), HasSubstr("ertificate")) << authorities;
    }
    {
        const WithEnvironment name("SWIFTGATE_SMTP_HOST", "127.0.0.2");
        EXPECT_FALSE(session.VerifySmtpConnection()) << "the certificate is another host's";
    }
    EXPECT_TRUE(session.VerifySmtpConnection()) << lastError();
}

TEST_F(MailTest, ConnectionsThatBreak) {
    startServer({"--close-at", "GREETING EHLO NOOP"});
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(session.VerifySmtpConnection()) << i;
    write("big.txt", std::string(3'000'000, 'x'));
    std::wstring type;
    message.AddFileAttachment(path("big.txt"), type);
    startServer({"--close-at", "MAIL RCPT DATA MESSAGE END"});
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(session.SendMessage(message)) << i;
    stopServer();
    session.CloseSmtpConnection();
    EXPECT_FALSE(session.VerifySmtpConnection()) << "nobody listens";
    EXPECT_THAT(lastError(), HasSubstr("<reason>"));
}

TEST_F(MailTest, ServersThatNeverAnswer) {
    const WithEnvironment patience("SWIFTGATE_SMTP_TIMEOUT", "1");
    startServer({"--silent-at", "GREETING EHLO MAIL END"});
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(session.SendMessage(message)) << i;
        EXPECT_THAT(lastError(), ContainsRegex("[Tt]imeout|timed out")) << i;
    }
}

TEST_F(MailTest, AServerThatStopsReading) {
    const WithEnvironment patience("SWIFTGATE_SMTP_TIMEOUT", "1");
    write("big.txt", std::string(20'000'000, 'x'));
    std::wstring type;
    message.AddFileAttachment(path("big.txt"), type);
    startServer({"--silent-at", "MESSAGE"});
    EXPECT_FALSE(session.SendMessage(message));
}

TEST_F(MailTest, SendingCanBeEnded) {
    struct Sink : MailProgressSink {
        void PercentDone(int percent) override { last = percent; }
        bool AbortCheck() override { return abort; }
        int last = -1;
        bool abort = false;
    } sink;
    startServer();
    session.SetProgressSink(&sink);
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
    EXPECT_EQ(sink.last, 100);
    sink.abort = true;
    EXPECT_FALSE(session.SendMessage(message));
    session.SetProgressSink(nullptr);
    EXPECT_TRUE(session.SendMessage(message)) << lastError();
}

TEST_F(MailTest, WhatCannotBeSent) {
    startServer();
    MailMessage empty;
    EXPECT_FALSE(session.SendMessage(empty));
    EXPECT_THAT(lastError(), HasSubstr("no sender"));
    empty.SetFromAddress(L"a@b.c");
    EXPECT_FALSE(session.SendMessage(empty));
    EXPECT_THAT(lastError(), HasSubstr("no recipient"));
    EXPECT_FALSE(session.SetSmtpPort(0));
    for (const auto& [name, value] :
         {std::pair("SWIFTGATE_SMTP_PORT", "smtp"), std::pair("SWIFTGATE_SMTP_PORT", "65536"),
          std::pair("SWIFTGATE_SMTP_TIMEOUT", "0"), std::pair("SWIFTGATE_SMTP_HOST", "a b/c")}) {
        const WithEnvironment wrong(name, value);
        EXPECT_FALSE(session.VerifySmtpConnection()) << value;
        EXPECT_THAT(lastError(), HasSubstr(value));
    }
    EXPECT_FALSE(session.SaveLastError(L"none/error.xml"));
}

}  // namespace
}  // namespace sg
