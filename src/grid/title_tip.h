#pragma once

#include <QWidget>

#include <string>

#include "grid/cell_id.h"

namespace sg::grid {

class CGridCtrl;

// The whole of a text that its cell cuts off, shown in its place. Clicks go through it to the cell;
// it goes when the pointer leaves it, and with any key or button.
class CTitleTip final : public QWidget {
  public:
    explicit CTitleTip(CGridCtrl& grid);
    ~CTitleTip() override;

    // `textRect` is where the cell shows its text, in the viewport.
    void Show(CCellID cell, const QRect& textRect, int textWidth);
    void Hide();

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    CGridCtrl& grid_;
    CCellID cell_;
    QPoint textPlace_;  // in the window
};

}  // namespace sg::grid
