#include "support/report.h"

#include <utility>

#include "base/text.h"
#include "platform/win/exceptions.h"
#include "platform/win/message_box.h"
#include "support/deployment.h"
#include "support/report_rules.h"
#include "support/scramble.h"
#include "support/settings.h"

namespace sg {
namespace {

constexpr const wchar_t* kSection = L"Shared";
constexpr const wchar_t* kSavesToDesktop = L"bSendToDesktop2";
constexpr const wchar_t* kCaption = L"Quillon";
constexpr const wchar_t* kErrorFile = L"qn_submiterror.xml";
constexpr int32_t kSubmissionPort = 587;
constexpr size_t kSubjectLimit = 100;

std::wstring supportAddress() {
    return UnscrambleText(deployment::kSupportAddress);
}

// At most 255 characters.
std::wstring explanation(const CException& exception) {
    wchar_t text[256] = L"";
    exception.GetErrorMessage(text, 256);
    return text;
}

}  // namespace

SupportReport::SupportReport(ReportDialog& dialog, int32_t mode, std::wstring archiveSuffix,
                             std::wstring logFolder, std::wstring systemInfo)
    : dialog_(dialog),
      archiveSuffix_(std::move(archiveSuffix)),
      systemInfo_(std::move(systemInfo)),
      logPath_(std::move(logFolder) + L"qn_submit.log"),
      mode_(mode) {}

SupportReport::~SupportReport() {
    if (logFile_ != nullptr) std::fclose(logFile_);
}

std::wstring SupportReport::trimmedField(ReportField field) const {
    return std::wstring(trimmed(dialog_.fieldText(field)));
}

std::wstring SupportReport::BuildArchiveName() const {
    return sg::BuildArchiveName(dialog_.fieldText(ReportField::name), archiveSuffix_);
}

std::wstring SupportReport::BuildSubject(size_t limit) const {
    return sg::BuildSubject(reportMode(mode_).subjectPrefix, dialog_.fieldText(ReportField::text),
                            limit);
}

std::wstring SupportReport::BuildBody() const {
    return sg::BuildBody(dialog_.fieldText(ReportField::phone),
                         dialog_.fieldText(ReportField::text), systemInfo_);
}

bool SupportReport::submit() {
    LogOpen();
    const std::wstring phone = trimmedField(ReportField::phone);
    const std::wstring name = trimmedField(ReportField::name);
    LogStep(L"Set user registry...\n");
    SetRegistryText(name, L"Name", kSection);
    SetRegistryText(phone, L"Phone", kSection);
    LogStep(L"Done\n");

    const bool toDesktop = dialog_.isSaveToDesktopChecked();
    SetRegistryText(toDesktop ? L"1" : L"0", kSavesToDesktop, kSection);
    if (!toDesktop) return submitGuarded();
    SaveReportToDesktop();
    return true;
}

bool SupportReport::submitGuarded() {
    try {
        return SendReport();
    } catch (CException* exception) {
        const std::wstring text = explanation(*exception);
        exception->Delete();
        mailSession_.SaveLastError(kErrorFile);
        endUnexpectedly(L"Message could not be sent.\n" + text);
    } catch (...) {
        endUnexpectedly(L"Message could not be sent due to an unexpected error.");
    }
    return false;
}

void SupportReport::endUnexpectedly(const std::wstring& text) {
    mailSession_.CloseSmtpConnection();
    dialog_.showBox(text, kCaption, MB_OK);
}

bool SupportReport::SendReport() {
    Fields fields;
    fields.phone = trimmedField(ReportField::phone);
    fields.name = trimmedField(ReportField::name);
    fields.email = trimmedField(ReportField::email);
    fields.repeatedEmail = trimmedField(ReportField::repeatedEmail);
    if (!acceptAddresses(fields)) return false;

    LogStep(L"Set email registry...\n");
    SetRegistryText(fields.email, L"Email", kSection);
    LogStep(L"Done\n");

    const std::wstring error = deliver(fields);
    LogStep(L"Cleanup...\n");
    mailSession_.CloseSmtpConnection();
    LogStep(L"Done\n");
    LogClose();
    return finish(error);
}

bool SupportReport::acceptAddresses(const Fields& fields) {
    const int code = ValidateAddresses(fields.email, fields.repeatedEmail,
                                       UnscrambleText(deployment::kSupportDomain));
    if (code == kAddressGood) return true;
    dialog_.showBox(addressRefusal(code), kCaption, MB_OK | MB_ICONWARNING);
    dialog_.focusField(ReportField::email);
    return false;
}

std::wstring SupportReport::deliver(const Fields& fields) {
    if (!connect()) return L"Could not connect to the SMTP server.";
    composeMessage(fields);
    if (!attachments.empty()) {
        if (std::wstring error = attachFiles(); !error.empty()) return error;
        if (std::wstring error = compressAttachments(); !error.empty()) return error;
    }
    LogStep(L"Done\n");
    if (send()) return {};
    // Deliberately without an error file, unlike all failures before it.
    return L"An error occurred while sending the email and was unable to finish.";
}

bool SupportReport::connect() {
    LogStep(L"Setup SMTP...\n");
    mailSession_.SetSmtpHost(UnscrambleText(deployment::kSmtpHost));
    mailSession_.SetSmtpUserName(UnscrambleText(deployment::kSmtpUser));
    mailSession_.SetSmtpPassword(UnscrambleText(deployment::kSmtpPassword));
    mailSession_.SetSmtpPort(kSubmissionPort);
    LogStep(L"Done\n");

    LogStep(L"Verify connection...\n");
    if (!mailSession_.VerifySmtpConnection()) {
        mailSession_.SaveLastError(kErrorFile);
        return false;
    }
    LogStep(L"Done\n");
    dialog_.showStatus(L"Connection Successful");
    return true;
}

void SupportReport::composeMessage(const Fields& fields) {
    LogStep(L"Create email text...\n");
    mailMessage_.SetSubject(BuildSubject(kSubjectLimit));
    mailMessage_.SetBody(BuildBody());
    if (!fields.name.empty()) mailMessage_.SetFromName(fields.name);
    mailMessage_.SetFromAddress(fields.email);
    mailMessage_.AddRecipient(L"", supportAddress());
    LogStep(L"Done\n");
}

std::wstring SupportReport::attachFiles() {
    LogStep(L"Add attachments...\n");
    dialog_.showStatus(L"Adding attachments...");
    for (const std::wstring& path : attachments) {
        std::wstring contentType;
        if (path.empty() || mailMessage_.AddFileAttachment(path, contentType)) continue;
        mailMessage_.SaveLastError(kErrorFile);
        return L"There was an error creating the mail attachments.";
    }
    return {};
}

std::wstring SupportReport::compressAttachments() {
    LogStep(L"Done\n");
    LogStep(L"Compress attachments...\n");
    dialog_.showStatus(L"Zipping attachments...");
    if (mailMessage_.ZipAttachments(BuildArchiveName())) return {};
    mailMessage_.SaveLastError(kErrorFile);
    return L"There was an error compressing one or more of the file attachments.";
}

bool SupportReport::send() {
    LogStep(L"Sending...\n");
    mailSession_.SetProgressSink(this);
    return mailSession_.SendMessage(mailMessage_);
}

bool SupportReport::finish(const std::wstring& error) {
    const std::wstring quotedAddress = L"\"" + supportAddress() + L"\"";
    if (error.empty()) {
        dialog_.showBox(L"Message sent successfully.", kCaption, MB_OK);
        return true;
    }
    if (attachments.empty()) {
        // The two texts are joined as they stand.
        dialog_.showBox(
            error + L"You will need to send an email manually to " + quotedAddress + L".", kCaption,
            MB_OK | MB_ICONWARNING);
        return false;
    }
    const std::wstring question =
        error + L"\nWould you like to save the report to the Desktop and manually send it to " +
        quotedAddress + L"?";
    if (dialog_.showBox(question, kCaption, MB_YESNO | MB_ICONWARNING) == IDYES) {
        SetRegistryText(L"1", kSavesToDesktop, kSection);
        SaveReportToDesktop();
    }
    return false;
}

}  // namespace sg
