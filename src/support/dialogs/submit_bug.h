#pragma once

#include <memory>
#include <string>

#include "platform/ui/adui_dialog.h"
#include "support/dialogs/support_dialogs.h"

class QBoxLayout;
class QCheckBox;
class QLabel;

namespace sg {

class LinesEdit;

// The dialog that writes to the support desk. What it sends, and how, is its report's.
class CSubmitBug final : public CAcUiDialog, private ReportDialog {
  public:
    static constexpr int kToGroup = 1060, kStatus = 1061, kFromGroup = 1042;
    static constexpr int kAttachments = 1010, kCount = 1066, kToDesktop = 1023;

    CSubmitBug(QWidget* parent, const SupportServices& services, const ReportRequest& request);

  protected:
    bool OnInitDialog() override;
    void OnPlace() override;
    void OnOK() override;

  private:
    void MakeControls();
    QWidget* NewToGroup();
    QWidget* NewFromGroup();
    void LayOut(QWidget* to, QWidget* from);
    void ShowSender(const ReportSender& sender);
    void ShowAttachmentCount();
    void EditAttachments();

    std::wstring fieldText(ReportField field) override;
    void focusField(ReportField field) override;
    bool isSaveToDesktopChecked() override;
    void showStatus(const std::wstring& text) override;
    int showBox(const std::wstring& text, const std::wstring& caption, unsigned flags) override;

    QLineEdit& Edit(ReportField field) const;

    const SupportServices& services_;
    const int32_t mode_;
    const std::unique_ptr<Report> report_;
    LinesEdit* text_ = nullptr;
    QLabel *status_ = nullptr, *count_ = nullptr;
    QPushButton* attachments_ = nullptr;
    QCheckBox* toDesktop_ = nullptr;
};

}  // namespace sg
