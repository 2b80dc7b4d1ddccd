#pragma once

#include <string>
#include <vector>

namespace sg {

// The fields of the report's dialog, by their control numbers.
enum class ReportField : int {
    phone = 1028,
    email = 1029,
    name = 1030,
    text = 1031,
    repeatedEmail = 1032,
};

// What a report asks of the dialog that shows it.
class ReportDialog {
  public:
    virtual ~ReportDialog() = default;
    // As it is in the control, untrimmed; lines of the text end with CR LF.
    virtual std::wstring fieldText(ReportField field) = 0;
    virtual void focusField(ReportField field) = 0;
    virtual bool isSaveToDesktopChecked() = 0;
    // To be seen at once: what follows keeps the thread busy.
    virtual void showStatus(const std::wstring& text) = 0;
    // As MessageBoxW does.
    virtual int showBox(const std::wstring& text, const std::wstring& caption, unsigned flags) = 0;
};

// What the dialog starts with, from the user's settings.
struct ReportSender {
    std::wstring name, email, phone;
    bool savesToDesktop = false;
    ReportField firstFocus() const;
};
ReportSender storedSender();

// The report behind a dialog.
class Report {
  public:
    virtual ~Report() = default;

    // The OK button. True when the dialog is to close; false keeps it open with all its fields.
    virtual bool submit() = 0;

    // Full paths; empty ones are left out where the report is made.
    std::vector<std::wstring> attachments;
};

}  // namespace sg
