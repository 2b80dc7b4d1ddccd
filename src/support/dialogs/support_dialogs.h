#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/report_dialog.h"

// What the module and the library of its dialogs have in common. The library is opened when a
// dialog is first asked for, since what it links would cost time at every start.
namespace sg {

struct ReportRequest {
    int32_t mode = 1;  // support/report_rules.h
    std::wstring archiveSuffix;
    std::wstring logFolder;  // with its own separator at the end
    std::wstring systemInfo;
    std::vector<std::wstring> attachments;  // none is empty
};

// What the dialogs need of the module they belong to.
struct SupportServices {
    // The report that a dialog's OK button sends; the dialog outlives it.
    std::unique_ptr<Report> (*newReport)(ReportDialog& dialog, const ReportRequest& request);
    std::wstring (*supportAddress)();
};

// Each runs a dialog until it is closed and answers how, as CDialog::DoModal does.
class SupportDialogs {
  public:
    virtual intptr_t submitBug(const ReportRequest& request) = 0;
    virtual intptr_t editUserOptions(const std::wstring& discipline,
                                     const std::wstring& edition) = 0;
    // Line ends of the text are "\n" on both ways; it is changed by OK alone. An empty title stands
    // for the dialog's own.
    virtual intptr_t editMultilineText(std::wstring& text, const std::wstring& title) = 0;
    // `expected` is in upper case. `isTyped` is told by OK alone.
    virtual intptr_t safeContinue(const std::wstring& caption, const std::wstring& prompt,
                                  const std::wstring& expected, bool& isTyped) = 0;

  protected:
    ~SupportDialogs() = default;
};

}  // namespace sg
