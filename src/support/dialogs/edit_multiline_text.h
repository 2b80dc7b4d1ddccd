#pragma once

#include <string>

#include "platform/ui/adui_dialog.h"

namespace sg {

class LinesEdit;

// "Edit Text": a text of several lines.
class CEditMultilineText final : public CAcUiDialog {
  public:
    static constexpr int kEdit = 1021;

    // An empty title leaves the dialog its own.
    CEditMultilineText(QWidget* parent, const std::wstring& text, const std::wstring& title);

    // After OK; lines end with "\n".
    const std::wstring& text() const { return text_; }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    std::wstring text_;
    LinesEdit* edit_;
};

}  // namespace sg
