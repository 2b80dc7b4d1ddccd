#pragma once

#include <string>

#include "grid/grid_ctrl.h"
#include "platform/ui/adui_dialog.h"

namespace sg {

// "Select Linetype": one of the current drawing's linetypes.
class CAcadLinetypeDialog final : public CAcUiDialog, private grid::GridListener {
  public:
    // `name` is the current one.
    CAcadLinetypeDialog(QWidget* parent, std::wstring name);

    // The choice, after OK.
    const std::wstring& name() const { return name_; }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    void Fill();
    void OnDoubleClick(grid::CGridCtrl& grid, grid::CCellID cell) override;

    std::wstring name_;
    grid::CGridCtrl* grid_;
};

}  // namespace sg
