#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "grid/grid_ctrl.h"
#include "platform/ui/adui_dialog.h"
#include "standards/records.h"

class QCheckBox;
class QGridLayout;
class QLineEdit;

// "Layer System Options": one dialog for each discipline.
namespace sg {

// What all of them have: the system's record and the edit of its name.
class LayerSystemName {
  public:
    static constexpr int kNameEdit = 1056, kSolidBox = 1057;

    // Makes the record. The connection outlives this.
    void AttachConnection(CDBConnection& connection, int32_t system);

    // Puts the system's name into the edit, and gives that the focus; false when there is no such
    // system, with an empty name then.
    bool Show(QLineEdit& edit);
    // Begins a change of the system, with the edit's text as its name; false, with nothing begun,
    // when there is none.
    bool Take(const QLineEdit& edit);

    LayerSystemRecord& record() { return *record_; }

  private:
    std::unique_ptr<LayerSystemRecord> record_;
    int32_t system_ = 0;
};

class CLayerSystemOptionsPlumb final : public CDialog {
  public:
    explicit CLayerSystemOptionsPlumb(QWidget* parent);
    void AttachConnection(CDBConnection& connection, int32_t system) {
        system_.AttachConnection(connection, system);
    }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    LayerSystemName system_;
    QLineEdit* name_;
};

class CLayerSystemOptionsElec final : public CDialog {
  public:
    // Without `showSolid` the check box is not shown, and keeps its state.
    CLayerSystemOptionsElec(QWidget* parent, bool showSolid);
    void AttachConnection(CDBConnection& connection, int32_t system) {
        system_.AttachConnection(connection, system);
    }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    LayerSystemName system_;
    const bool showSolid_;
    QLineEdit* name_;
    QCheckBox* solid_;
};

class CLayerSystemOptionsHVAC final : public CAcUiDialog, private grid::GridListener {
  public:
    explicit CLayerSystemOptionsHVAC(QWidget* parent);
    void AttachConnection(CDBConnection& connection, int32_t system) {
        system_.AttachConnection(connection, system);
    }

  protected:
    bool OnInitDialog() override;
    void OnOK() override;

  private:
    void MakeControls();
    void LayOut();
    void FillGrid();
    void SetPatternCell(int row, const std::wstring& type, std::wstring pattern);
    void TakeGrid();

    bool OnBeginEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;
    bool OnEndEdit(grid::CGridCtrl& grid, grid::CCellID cell) override;

    LayerSystemName system_;
    QLineEdit *name_, *prefix_, *suffix_, *overhang_;
    QCheckBox *solid_, *flex_;
    grid::CGridCtrl* grid_;
    std::vector<std::wstring> patterns_;  // the predefined ones
    std::wstring keptType_;               // of the type whose edit began last
};

}  // namespace sg
