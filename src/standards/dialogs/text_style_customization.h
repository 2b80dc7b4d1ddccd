#pragma once

#include <functional>
#include <string>
#include <vector>

#include "grid/grid_ctrl.h"
#include "platform/ui/adui_dialog.h"

namespace sg {

class CDBConnection;

// "Text Styles": the style, height and scale factor of each key of tblTextStyle.
class CTextStyleCustomization final : public CAcUiDialog {
  public:
    // `isThere` tells whether the connection still is, which LISP may have ended. A key that is not
    // empty is where the focus goes, and is edited.
    CTextStyleCustomization(QWidget* parent, CDBConnection& connection,
                            std::function<bool()> isThere, std::wstring key);

  protected:
    bool OnInitDialog() override;
    void OnShown() override;
    void OnOK() override;

  private:
    struct Style {
        std::wstring id, key, name, height, scaleFactor;
    };
    std::vector<Style> ReadStyles();
    void Fill();
    bool IsDefaultWhole();
    std::wstring UpdateOf(int row) const;

    CDBConnection& connection_;
    const std::function<bool()> isThere_;
    const std::wstring key_;
    grid::CGridCtrl* grid_;
    int editedRow_ = -1;  // where an edit begins once the dialog has come up
};

}  // namespace sg
