#pragma once

#include <string>

#include "platform/ui/dialog.h"

class QLabel;

namespace sg {

// Asks for a word before something dangerous is done: OK can be pressed while the word stands in
// the edit, which shows everything in upper case.
class CSafeContinue final : public CDialog {
  public:
    static constexpr int kAnswer = 1036, kPrompt = 65534;

    // The prompt is wrapped. `expected` is in upper case.
    CSafeContinue(const std::wstring& caption, const std::wstring& prompt, std::wstring expected);

    // After OK: the word stood there.
    bool isTyped() const { return isTyped_; }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    void OnChange();
    void GrowLabel(int lines);

    const std::wstring expected_;
    std::wstring prompt_;
    QLabel* label_;
    QLineEdit* answer_;
    QPushButton* ok_;
    bool filterOn_ = true;  // false while the dialog itself writes to the edit
    bool isTyped_ = false;
};

}  // namespace sg
