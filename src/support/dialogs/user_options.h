#pragma once

#include <string>

#include "grid/grid_ctrl.h"
#include "platform/ui/adui_dialog.h"

namespace sg {

struct OptionRow;

// "Quillon User Settings": a grid with a row a setting, each with its address in the registry in
// hidden columns.
class CUserOptions final : public CAcUiDialog, private grid::GridListener {
  public:
    static constexpr int kGrid = 1048;

    CUserOptions(QWidget* parent, std::wstring discipline, std::wstring edition);

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    enum Column { kName, kValue, kSubKey, kValueName, kIsYesNo, kColumns };

    void BuildRows();
    void AddGroup(const wchar_t* text);
    void AddSetting(const OptionRow& setting);
    int InsertRow(uint8_t level);
    void SetPlain(int row);
    void LoadValues();
    void SaveValues();

    bool OnBeginEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;

    const std::wstring discipline_, edition_;
    grid::CGridCtrl* grid_;
};

}  // namespace sg
