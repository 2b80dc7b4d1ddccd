#pragma once

#include <string>

#include "grid/grid_ctrl.h"
#include "platform/ui/adui_dialog.h"

namespace sg {

class CDBConnection;

// "Text Styles": the style, height and scale factor of each key of tblTextStyle.
class CTextStyleCustomization final : public CAcUiDialog {
  public:
    // The connection outlives the dialog. A key that is not empty is where the focus goes, and is
    // edited.
    CTextStyleCustomization(QWidget* parent, CDBConnection& connection, std::wstring key);

  protected:
    bool OnInitDialog() override;
    void OnShown() override;
    void OnOK() override;

  private:
    void Fill();
    bool IsDefaultWhole();
    std::wstring UpdateOf(int row) const;

    CDBConnection& connection_;
    const std::wstring key_;
    grid::CGridCtrl* grid_;
    int editedRow_ = -1;  // where an edit begins once the dialog has come up
};

}  // namespace sg
