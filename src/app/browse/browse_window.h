#pragma once

#include <QComboBox>
#include <QLabel>
#include <QMainWindow>

#include <memory>
#include <vector>

#include "app/browse/browse.h"
#include "app/browse/table_rows.h"
#include "grid/grid_ctrl.h"

namespace sg::app {

// A window with a table of a database in a grid. What is edited goes through the engine; what that
// refuses is taken back, and the status line says why.
class BrowseWindow final : public QMainWindow, private grid::GridListener {
  public:
    // The database outlives the window. Throws jet::Error for a table that cannot be read.
    BrowseWindow(jet::Database& database, const BrowseRequest& request);
    ~BrowseWindow() override;

    grid::CGridCtrl& Grid() { return grid_; }
    std::wstring StatusText() const { return status_.text().toStdWString(); }
    void ShowTable(const std::wstring& table);
    // The second time in a row in the other direction.
    void SortBy(int column);

  private:
    void MakeMenus();
    void ChooseTable(const std::wstring& table);
    void FillGrid();
    int FillRows(std::vector<std::wstring>& texts);
    void SaveAsText();
    void Say(const std::wstring& message, bool isError = false);

    bool OnBeginEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;
    bool OnEndEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;
    void OnClick(grid::CGridCtrl& grid, grid::CCellID cell) override;

    jet::Database& database_;
    std::unique_ptr<TableRows> rows_;  // null while no table is shown
    QComboBox tables_;
    QLabel status_;
    grid::CGridCtrl grid_;
};

}  // namespace sg::app
