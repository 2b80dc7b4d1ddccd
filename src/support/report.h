#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "support/mail_message.h"
#include "support/mail_session.h"
#include "support/report_dialog.h"

namespace sg {

// A report to the support desk: what it carries, and what the dialog's OK button does with it. It
// is mailed with its attachments in one archive, or saved as an archive on the desktop for the user
// to send. Everything is told through the dialog.
class SupportReport : public Report, private MailProgressSink {
  public:
    // `logFolder` ends with its own separator.
    SupportReport(ReportDialog& dialog, int32_t mode, std::wstring archiveSuffix,
                  std::wstring logFolder, std::wstring systemInfo);
    SupportReport(const SupportReport&) = delete;
    SupportReport& operator=(const SupportReport&) = delete;
    ~SupportReport() override;

    bool submit() override;

    void SaveReportToDesktop();

    // The name of the archive that the mail carries.
    std::wstring BuildArchiveName() const;
    std::wstring BuildSubject(size_t limit) const;
    std::wstring BuildBody() const;
    // Writes the body to a file in the product's temporary folder; its path, empty on failure. The
    // body passes through the C library's formatted print and loses its percent directives there.
    std::wstring WriteErrorText() const;

    const std::wstring& logPath() const { return logPath_; }
    int32_t mode() const { return mode_; }

  protected:
    // Tracing, of which nothing is kept.
    virtual void LogOpen() {}
    virtual void LogStep(const wchar_t*) {}
    virtual void LogClose() {}

  private:
    struct Fields {
        std::wstring phone, name, email, repeatedEmail;
    };

    void PercentDone(int) override {}
    bool AbortCheck() override { return false; }

    std::wstring trimmedField(ReportField field) const;
    bool submitGuarded();
    bool SendReport();
    bool acceptAddresses(const Fields& fields);
    std::wstring deliver(const Fields& fields);  // the error text; empty when the mail is out
    bool connect();
    void composeMessage(const Fields& fields);
    std::wstring attachFiles();
    std::wstring compressAttachments();
    bool send();
    bool finish(const std::wstring& error);
    void endUnexpectedly(const std::wstring& text);
    std::wstring writeDesktopArchive(const std::wstring& fileName, std::wstring& path);
    void announceDesktopArchive(const std::wstring& fileName, const std::wstring& path);

    ReportDialog& dialog_;
    const std::wstring archiveSuffix_, systemInfo_;
    const std::wstring logPath_;
    const int32_t mode_;
    std::FILE* logFile_ = nullptr;
    MailSession mailSession_;
    MailMessage mailMessage_;
};

}  // namespace sg
