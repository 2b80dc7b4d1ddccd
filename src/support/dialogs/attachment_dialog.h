#pragma once

#include <string>
#include <vector>

#include "platform/ui/dialog.h"

class QListWidget;

namespace sg {

// "Quillon Attachments": the files that a report carries. The list is sorted.
class CAttachmentDialog final : public CDialog {
  public:
    static constexpr int kList = 1062, kAdd = 1063, kRemove = 4;

    // OK changes `attachments`, nothing else does.
    CAttachmentDialog(std::vector<std::wstring>& attachments, QWidget* parent);

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    void LayOut();
    void AddPath(const std::wstring& path);
    void OnAdd();
    void OnRemove();
    void UpdateListExtent();

    std::vector<std::wstring>& attachments_;
    QListWidget* list_;
    std::wstring initialFolder_;  // of the file chooser
};

}  // namespace sg
