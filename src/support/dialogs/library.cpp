#include <QApplication>

#include "base/export.h"
#include "platform/win/message_box.h"
#include "support/dialogs/edit_multiline_text.h"
#include "support/dialogs/safe_continue.h"
#include "support/dialogs/submit_bug.h"
#include "support/dialogs/support_dialogs.h"
#include "support/dialogs/user_options.h"

namespace sg {
namespace {

SupportServices services;

// A dialog that LISP was called from, or else the main window.
QWidget* activeWindow() {
    QWidget* const open =
        QApplication::instance() != nullptr ? QApplication::activeModalWidget() : nullptr;
    return open != nullptr ? open : sgMainWindow();
}

class Dialogs final : public SupportDialogs {
  public:
    intptr_t submitBug(const ReportRequest& request) override {
        CSubmitBug dialog(sgMainWindow(), services, request);
        return dialog.DoModal();
    }

    intptr_t editUserOptions(const std::wstring& discipline, const std::wstring& edition) override {
        CUserOptions dialog(sgMainWindow(), discipline, edition);
        return dialog.DoModal();
    }

    intptr_t editMultilineText(std::wstring& text, const std::wstring& title) override {
        CEditMultilineText dialog(activeWindow(), text, title);
        const intptr_t result = dialog.DoModal();
        if (result == IDOK) text = dialog.text();
        return result;
    }

    intptr_t safeContinue(const std::wstring& caption, const std::wstring& prompt,
                          const std::wstring& expected, bool& isTyped) override {
        CSafeContinue dialog(caption, prompt, expected);
        const intptr_t result = dialog.DoModal();
        isTyped = result == IDOK && dialog.isTyped();
        return result;
    }
};

}  // namespace
}  // namespace sg

extern "C" SG_API sg::SupportDialogs* swiftgateSupportDialogs(const sg::SupportServices& services) {
    static sg::Dialogs dialogs;
    sg::services = services;
    return &dialogs;
}
