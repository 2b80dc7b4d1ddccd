#include "support/report.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <functional>
#include <map>

#include "host/system/registry.h"
#include "platform/win/exceptions.h"
#include "platform/win/message_box.h"
#include "support/settings.h"
#include "support/smtp_fixture.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Log = std::vector<std::string>;

const std::string kAddress = "support@quillon.invalid";

// A dialog that is filled in, and writes down what it shows.
class FakeDialog : public ReportDialog {
  public:
    explicit FakeDialog(Log& log) : log_(log) {}
    std::wstring fieldText(ReportField field) override { return fields[field]; }
    void focusField(ReportField field) override {
        log_.push_back("focus " + std::to_string(static_cast<int>(field)));
    }
    bool isSaveToDesktopChecked() override { return toDesktop; }
    void showStatus(const std::wstring& text) override {
        log_.push_back("status " + toUtf8(text));
        if (onStatus) onStatus(text);
    }
    int showBox(const std::wstring& text, const std::wstring& caption, unsigned flags) override {
        log_.push_back("box " + std::to_string(flags) + " " + toUtf8(caption) + ": " +
                       toUtf8(text));
        return answer;
    }

    std::map<ReportField, std::wstring> fields = {
        {ReportField::name, L" Joe "},
        {ReportField::email, L" Joe@example.com"},
        {ReportField::repeatedEmail, L"Joe@example.com "},
        {ReportField::phone, L" 555 "},
        {ReportField::text, L"It stops. Always\r\nReally"},
    };
    bool toDesktop = false;
    int answer = IDNO;
    std::function<void(const std::wstring&)> onStatus;

  private:
    Log& log_;
};

// A report whose trace goes to the log.
class TracedReport : public SupportReport {
  public:
    TracedReport(FakeDialog& dialog, int32_t mode, std::wstring suffix, Log& log)
        : SupportReport(dialog, mode, std::move(suffix), L"logs/", L"the system"), log_(log) {}

  protected:
    void LogOpen() override { log_.push_back("open"); }
    void LogStep(const wchar_t* text) override {
        std::string step = toUtf8(text);
        EXPECT_TRUE(step.ends_with('\n'));
        step.pop_back();
        log_.push_back(step);
    }
    void LogClose() override { log_.push_back("close"); }

  private:
    Log& log_;
};

class ReportTest : public SmtpTest {
  protected:
    ReportTest() {
        host().registry().createKey(L"HKEY_CURRENT_USER\\Software\\Quillon Software\\Shared");
        host().start();
        write("shell", "#!/bin/sh\necho \"$@\" >> '" + (folder_ / "started").string() + "'\n");
        chmod((folder_ / "shell").c_str(), 0755);
        write("plan.qn", "a plan");
    }
    void make(const std::wstring& suffix = L"Job", int32_t mode = 1) {
        report.emplace(dialog, mode, suffix, log);
    }
    static std::string setting(const wchar_t* name) {
        return toUtf8(GetRegistryText(L"Shared", name));
    }
    std::string archive() { return (folder_ / "Desktop" / archiveName).string(); }
    std::string entries() { return outputOf({"unzip", "-Z1", archive()}); }
    // What was logged from an entry on.
    Log logFrom(const std::string& entry) const {
        return {std::find(log.begin(), log.end(), entry), log.end()};
    }

    const WithEnvironment home_{"HOME", folder_.string()};
    const WithEnvironment configuration_{"XDG_CONFIG_HOME", folder_.string()};
    const WithEnvironment shell_{"SWIFTGATE_SHELL", (folder_ / "shell").string()};
    const std::string archiveName = "Send to " + kAddress + "--Joe Job.zip";
    Log log;
    FakeDialog dialog{log};
    std::optional<TracedReport> report;
};

const std::string kFallback =
    "\nWould you like to save the report to the Desktop and manually "
    "send it to \"" +
    kAddress + "\"?";

TEST_F(ReportTest, SentWithAttachments) {
    startServer(authenticated("support-delivery@quillon.invalid:not-a-secret"));
    make();
    report->attachments = {path("plan.qn"), L"", path("PLAN.QN")};
    EXPECT_TRUE(report->submit());
    EXPECT_THAT(log, ElementsAre("open", "Set user registry...", "Done", "Set email registry...",
                                 "Done", "Setup SMTP...", "Done", "Verify connection...", "Done",
                                 "status Connection Successful", "Create email text...", "Done",
                                 "Add attachments...", "status Adding attachments...", "Done",
                                 "Compress attachments...", "status Zipping attachments...", "Done",
                                 "Sending...", "Cleanup...", "Done", "close",
                                 "box 0 Quillon: Message sent successfully."));
    EXPECT_THAT(delivered(), HasSubstr("From: Joe <Joe@example.com>\n"
                                       "To: support@quillon.invalid\n"
                                       "Subject: QN Bug: It stops\n"));
    EXPECT_THAT(delivered(), HasSubstr("text text/plain: '555\\n\\nIt stops. Always\\nReally\\n\\n"
                                       "the system\\n"));
    EXPECT_THAT(delivered(), HasSubstr("attachment application/zip: Joe Job.zip\n"
                                       "  entry plan.qn: b'a plan' of 6\n"));
    EXPECT_EQ(setting(L"Name"), "Joe");
    EXPECT_EQ(setting(L"Email"), "Joe@example.com");
    EXPECT_EQ(setting(L"Phone"), "555");
    EXPECT_EQ(setting(L"bSendToDesktop2"), "0");
    EXPECT_EQ(report->logPath(), L"logs/qn_submit.log");
}

TEST_F(ReportTest, SentWithoutAttachments) {
    startServer();
    dialog.fields[ReportField::name] = L" ";
    make(L"Job", 0);
    EXPECT_TRUE(report->submit());
    EXPECT_THAT(logFrom("Create email text..."),
                ElementsAre("Create email text...", "Done", "Done", "Sending...", "Cleanup...",
                            "Done", "close", "box 0 Quillon: Message sent successfully."));
    EXPECT_THAT(delivered(), HasSubstr("From: Joe@example.com\n"));
    EXPECT_THAT(delivered(), HasSubstr("Subject: QN Project: It stops\n"));
    EXPECT_THAT(delivered(), Not(HasSubstr("attachment")));
}

TEST_F(ReportTest, AddressesThatAreRefused) {
    struct Case {
        const wchar_t *address, *repetition;
        const char* text;
    };
    const Case cases[] = {
        {L" ", L"", "An e-mail address is needed."},
        {L"a+b@c.d", L"a+b@c.d", "Invalid e-mail address."},
        {L"a@c.d", L"A@c.d", "The e-mail addresses do not match."},
        {L"a@Quillon.INVALID", L"",
         "Enter your email address. We will use this email address to reply to you."},
    };
    make();
    for (const Case& each : cases) {
        log.clear();
        dialog.fields[ReportField::email] = each.address;
        dialog.fields[ReportField::repeatedEmail] = each.repetition;
        EXPECT_FALSE(report->submit());
        EXPECT_THAT(log, ElementsAre("open", "Set user registry...", "Done",
                                     "box 48 Quillon: " + std::string(each.text), "focus 1029"));
    }
    EXPECT_EQ(setting(L"Name"), "Joe");
    EXPECT_EQ(setting(L"bSendToDesktop2"), "0");
    EXPECT_EQ(setting(L"Email"), "");
}

TEST_F(ReportTest, NoConnectionAndTheFallbackDeclined) {
    startServer({"--close-at", "GREETING"});
    make();
    report->attachments = {path("plan.qn")};
    EXPECT_FALSE(report->submit());
    EXPECT_THAT(logFrom("Verify connection..."),
                ElementsAre("Verify connection...", "Cleanup...", "Done", "close",
                            "box 52 Quillon: Could not connect to the SMTP server." + kFallback));
    EXPECT_THAT(read("qn_submiterror.xml"), HasSubstr("VerifySmtpConnection"));
    EXPECT_EQ(setting(L"bSendToDesktop2"), "0");
    EXPECT_FALSE(exists("Desktop"));
}

TEST_F(ReportTest, TheFallbackAccepted) {
    startServer({"--refuse-sender", "Joe@example.com"});
    make();
    report->attachments = {path("plan.qn")};
    dialog.answer = IDYES;
    EXPECT_FALSE(report->submit());
    EXPECT_THAT(
        logFrom("Sending..."),
        ElementsAre("Sending...", "Cleanup...", "Done", "close",
                    "box 52 Quillon: An error occurred while sending the email and was unable to "
                    "finish." +
                        kFallback,
                    "box 48 EMAIL NOT SENT!: EMAIL NOT SENT!\n\nFile \"" + archiveName +
                        "\" was saved to the desktop but has not been sent.\n\nManually send the "
                        "file to \"" +
                        kAddress + "\"."));
    EXPECT_FALSE(exists("qn_submiterror.xml")) << "a failed sending leaves no error file";
    EXPECT_EQ(setting(L"bSendToDesktop2"), "1");
    EXPECT_EQ(entries(), "plan.qn\nqn_error.txt\n");
    EXPECT_EQ(read("started"), "open " + (folder_ / "Desktop").string() + "\n");
    EXPECT_TRUE(storedSender().savesToDesktop);
}

TEST_F(ReportTest, FailureWithoutAttachmentsOffersNothing) {
    startServer({"--close-at", "DATA"});
    make();
    dialog.answer = IDYES;
    EXPECT_FALSE(report->submit());
    EXPECT_EQ(log.back(),
              "box 48 Quillon: An error occurred while sending the email and was "
              "unable to finish.You will need to send an email manually to \"" +
                  kAddress + "\".");
    EXPECT_FALSE(exists("Desktop"));
}

TEST_F(ReportTest, AttachmentsThatCannotBeAdded) {
    startServer();
    make();
    report->attachments = {path("plan.qn"), path("none.qn"), path("plan.qn")};
    EXPECT_FALSE(report->submit());
    EXPECT_THAT(
        logFrom("Add attachments..."),
        ElementsAre(
            "Add attachments...", "status Adding attachments...", "Cleanup...", "Done", "close",
            "box 52 Quillon: There was an error creating the mail attachments." + kFallback));
    EXPECT_THAT(read("qn_submiterror.xml"), HasSubstr("none.qn"));

    // What was added stays in the message, and the next try adds to it.
    write("none.qn", "here now");
    EXPECT_TRUE(report->submit());
    EXPECT_THAT(delivered(), HasSubstr("  entry plan.qn: b'a plan' of 6\n"
                                       "  entry plan (2).qn: b'a plan' of 6\n"
                                       "  entry none.qn: b'here now' of 8\n"));
    EXPECT_THAT(envelope(), HasSubstr("\"to\": [\"" + kAddress + "\"]"));
}

TEST_F(ReportTest, AttachmentsThatCannotBeCompressed) {
    startServer();
    make();
    report->attachments = {path("plan.qn")};
    dialog.onStatus = [this](const std::wstring& text) {
        if (text == L"Zipping attachments...") std::filesystem::remove(folder_ / "plan.qn");
    };
    EXPECT_FALSE(report->submit());
    EXPECT_THAT(logFrom("Compress attachments..."),
                ElementsAre("Compress attachments...", "status Zipping attachments...",
                            "Cleanup...", "Done", "close",
                            "box 52 Quillon: There was an error compressing one or more of the "
                            "file attachments." +
                                kFallback));
    EXPECT_THAT(read("qn_submiterror.xml"), HasSubstr("ZipAttachments"));
}

TEST_F(ReportTest, ExceptionsEndTheSendingAndKeepTheDialog) {
    class LongException : public CException {
        std::wstring message() const override { return std::wstring(300, L'x'); }
    };
    startServer();
    make();
    dialog.onStatus = [](const std::wstring&) { throw new LongException; };
    EXPECT_FALSE(report->submit());
    EXPECT_EQ(log.back(), "box 0 Quillon: Message could not be sent.\n" + std::string(255, 'x'));
    EXPECT_TRUE(exists("qn_submiterror.xml"));
    EXPECT_THAT(read("commands"), HasSubstr("QUIT")) << "the connection is closed";
    std::filesystem::remove(folder_ / "qn_submiterror.xml");
    dialog.onStatus = [](const std::wstring&) { throw std::runtime_error("x"); };
    EXPECT_FALSE(report->submit());
    EXPECT_EQ(log.back(), "box 0 Quillon: Message could not be sent due to an unexpected error.");
    EXPECT_FALSE(exists("qn_submiterror.xml"));
}

TEST_F(ReportTest, SavedToTheDesktop) {
    dialog.toDesktop = true;
    dialog.fields[ReportField::email] = L"";
    dialog.fields[ReportField::text] = L"100%n %s\u00e9";
    write("user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n");
    make();
    report->attachments = {path("plan.qn")};
    EXPECT_TRUE(report->submit());
    EXPECT_TRUE(report->submit());
    EXPECT_EQ(report->attachments.size(), 3u) << "the error text is added each time";
    EXPECT_EQ(entries(), "plan.qn\nqn_error.txt\nqn_error (2).txt\n");
    EXPECT_EQ(read("QN_temp/qn_error.txt"), "555\n\n100 \xC3\xA9\n\nthe system\n");
    EXPECT_EQ(setting(L"bSendToDesktop2"), "1");
    EXPECT_EQ(setting(L"Email"), "");
}

TEST_F(ReportTest, ArchivesThatCannotBeSaved) {
    dialog.toDesktop = true;
    for (const wchar_t* const suffix : {L"a/b", L"a:b", L"../x", L"a?"}) {
        make(suffix);
        EXPECT_TRUE(report->submit()) << "the dialog closes in any case";
        EXPECT_EQ(log.back(), "box 16 Quillon: Failed to create new zip folder.");
        EXPECT_TRUE(exists("qn_ziperror.xml"));
    }
    make();
    report->attachments = {path("none.qn")};
    report->submit();
    EXPECT_EQ(log.back(), "box 16 Quillon: An error occurred while compressing attachments.");
    EXPECT_THAT(read("qn_ziperror.xml"), HasSubstr("none.qn"));
    EXPECT_FALSE(std::filesystem::exists(archive()));
    std::filesystem::remove_all(folder_ / "Desktop");
    write("Desktop", "a file in its place");
    make();
    report->submit();
    EXPECT_EQ(log.back(), "box 16 Quillon: Unable to locate desktop path.");
}

TEST_F(ReportTest, WithoutATemporaryFolderThereIsNoErrorText) {
    dialog.toDesktop = true;
    const WithEnvironment temporary("TMPDIR", "/nowhere");
    make();
    report->attachments = {path("plan.qn")};
    report->SaveReportToDesktop();
    EXPECT_EQ(entries(), "plan.qn\n");
}

TEST_F(ReportTest, WhatTheDialogStartsWith) {
    EXPECT_EQ(storedSender().firstFocus(), ReportField::name);
    SetRegistryText(L"Joe", L"Name", L"Shared");
    EXPECT_EQ(storedSender().firstFocus(), ReportField::email);
    SetRegistryText(L"a@b.c", L"Email", L"Shared");
    SetRegistryText(L"2", L"bSendToDesktop2", L"Shared");
    const ReportSender sender = storedSender();
    EXPECT_EQ(sender.firstFocus(), ReportField::text);
    EXPECT_EQ(sender.email, L"a@b.c");
    EXPECT_FALSE(sender.savesToDesktop) << "only \"1\" counts";
}

}  // namespace
}  // namespace sg
