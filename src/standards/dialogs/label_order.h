#pragma once

#include <string>

#include "grid/grid_ctrl.h"
#include "platform/ui/adui_dialog.h"
#include "platform/variant/variant.h"
#include "standards/dialogs/standards_dialogs.h"

namespace sg {

class CDBConnection;
class QueryRows;

// "... Label Display and Order": the labels of one group of tblLabelGroup, and their order.
class LabelOrderCustomization final : public CAcUiDialog, private grid::GridListener {
  public:
    // The connection outlives the dialog.
    LabelOrderCustomization(QWidget* parent, CDBConnection& connection, LabelGroupRequest request);

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    bool ShowsWidth() const { return !request_.option.empty(); }
    bool IsOneWidth() const { return request_.option == L"SAME"; }
    bool ShowsJustification() const { return ShowsWidth() && !IsOneWidth(); }
    bool IsScheduleTitle(int row) const;

    void Fill();
    void AddRow(const QueryRows& rows, size_t from);
    void RemoveHidden();
    void Move(int step);
    void SpreadWidth(const std::wstring& width);
    std::wstring UpdateOf(int row) const;

    bool OnBeginEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;
    bool OnEndEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;

    CDBConnection& connection_;
    const LabelGroupRequest request_;
    grid::CGridCtrl* grid_;
};

}  // namespace sg
