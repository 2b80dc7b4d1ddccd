#pragma once

#include "grid/cell_id.h"
#include "platform/ui/scripted.h"

class QComboBox;
class QWidget;

namespace sg::grid {

class CGridCtrl;

// The grid as a script sees it. What a script does is done as by a user: the owner is told, and may
// refuse it.
class GridScript final : public ui::ScriptedControl {
  public:
    explicit GridScript(CGridCtrl& grid) : grid_(grid) {}

    std::wstring Kind() const override { return L"grid"; }
    bool IsEnabled() const override;
    bool IsShown() const override;
    // How many rows there are, and where the focus is.
    std::wstring State() const override;
    // A line a row, with the focus row marked and hidden columns in parentheses.
    std::vector<std::wstring> Contents() const override;
    std::vector<std::wstring> Columns() const override;

    ui::Refusal SelectRow(int row) override;
    ui::Refusal EditCell(int row, int column, const std::wstring& text) override;
    ui::Refusal DoubleClick(int row, int column) override;

  private:
    ui::Refusal Unusable(int row, int column) const;
    void GoTo(CCellID cell);
    ui::Refusal SwitchCheckBox(CCellID cell, const std::wstring& text);
    ui::Refusal TypeInto(QWidget& editor, const std::wstring& text);
    ui::Refusal ChooseIn(QComboBox& list, const std::wstring& text);

    CGridCtrl& grid_;
};

}  // namespace sg::grid
