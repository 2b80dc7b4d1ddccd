#pragma once

#include <QComboBox>

#include <string>
#include <vector>

#include "grid/in_place_editor.h"

namespace sg::grid {

// How a drop list takes text; the numbers are those of dialogs.
enum GridListStyle { kListSimple = 1, kListEditable = 2, kListOnly = 3 };

// A drop list over its cell. The editable styles take any text, kListOnly its options alone; the
// text that the cell had is shown whatever it is.
class SG_API CInPlaceList final : public QComboBox, public InPlaceEditor {
  public:
    // `isOpen`: with the list dropped.
    static CInPlaceList* Open(CGridCellBase& cell, CCellID id, const QRect& rect, int controlId,
                              uint32_t character, const std::vector<std::wstring>& options,
                              int style, bool isOpen);

    void hidePopup() override;

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

    QWidget& Window() override { return *this; }
    bool TakeText(std::wstring& text) override;
    void RestoreText() override;

  private:
    CInPlaceList(CGridCellBase& cell, CCellID id, const std::vector<std::wstring>& options,
                 int style);

    bool IsOpen() const;
    QString Shown() const;
    bool TakeListKey(const QKeyEvent& event);

    QString shown_;              // at the start
    bool isListChoice_ = false;  // what is chosen next is chosen in the list, which has just closed
};

// The same list serves plain and button cells.
using CInPlaceListForGridCell = CInPlaceList;

}  // namespace sg::grid
