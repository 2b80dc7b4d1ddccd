#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "grid/combo_cell.h"
#include "grid/grid_ctrl.h"
#include "standards/records.h"

class CDialog;

namespace sg {

// The grid of all layers of a database, and the writing of what is edited in it. Rows are those of
// the grid; the heading is row 0.
class LayersGrid {
  public:
    enum Column { kId, kName, kColor, kLinetype, kPlot, kLineweight, kPlotstyle };

    // `grid` is a control of `dialog`; both outlive this.
    LayersGrid(CDialog& dialog, grid::CGridCtrl& grid);

    // Null: nothing is read and written any more.
    void attach(LayerRecord* layers) { layers_ = layers; }

    void fill();
    // The names of the layers that the database has, with their ids.
    std::shared_ptr<const grid::GridOptions> names();

    // Brings the row of a layer into view and selects it. Nobody is told.
    void showId(int32_t id);
    // Answers the layer's id; 0 when no row has the name.
    int32_t showName(const std::wstring& name);

    // Adds a layer that is like the last one; false when it could not be written.
    bool addLayer();
    // The selected layer, when no key uses it and the user agrees; false when it stays.
    bool deleteLayer(CDBConnection& connection);
    // Writes every row, as OK does.
    void save();

    bool beginEdit(grid::CCellID cell);
    // `renamed` is set when a layer got a new name.
    bool endEdit(grid::CCellID cell, bool& renamed);

    int32_t idAt(int row) const;
    std::wstring nameAt(int row) const { return grid_.GetItemText(row, kName); }

  private:
    void fillRow(int row);
    void dressRow(int row);
    void takeRow(int row);
    bool isDuplicate(const std::wstring& name, int32_t id);
    void restoreName(int row);
    bool refuseName(int row, const wchar_t* why);
    bool rename(int row, bool& renamed);
    void chooseColor(int row);
    void chooseLinetype(int row);

    CDialog& dialog_;
    grid::CGridCtrl& grid_;
    LayerRecord* layers_ = nullptr;
    std::shared_ptr<const grid::GridOptions> colors_, linetypes_, lineweights_;
    std::wstring kept_;  // the text of the cell whose edit began last
};

}  // namespace sg
