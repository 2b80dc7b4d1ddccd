#pragma once

#include <string>

#include "grid/grid_ctrl.h"
#include "platform/ui/dialog.h"

class QListWidget;

namespace sg {

// Asks for the name of a new layer system, and for the one whose keys it gets.
class CNewLayerSystem final : public CDialog {
  public:
    // The row of the systems grid that the list's first entry stands for: the general system is not
    // offered.
    static constexpr int kFirstOffered = 2;

    CNewLayerSystem(QWidget* parent, const grid::CGridCtrl& systems);

    // After OK. The index is that of the list's entry; -1 when there is none.
    const std::wstring& name() const { return name_; }
    int chosenIndex() const { return chosenIndex_; }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    void Refuse(const wchar_t* why);

    const grid::CGridCtrl& systems_;
    QLineEdit* edit_;
    QListWidget* list_;
    std::wstring name_;
    int chosenIndex_ = -1;
};

}  // namespace sg
