#pragma once

#include <Qt>

#include <string>

#include "base/export.h"
#include "grid/cell_watch.h"

class QKeyEvent;
class QWidget;

namespace sg::grid {

// What the windows have in common in which a cell is edited. Such a window belongs to itself: it is
// there until the edit ends, and deletes itself then.
class SG_API InPlaceEditor {
  public:
    virtual ~InPlaceEditor();
    InPlaceEditor(const InPlaceEditor&) = delete;
    InPlaceEditor& operator=(const InPlaceEditor&) = delete;

    // Ends the edit with the text of the editor. Only the first call counts.
    void End();
    // Ends it without telling anybody: the cell or the grid goes.
    void Abandon();

  protected:
    InPlaceEditor(CGridCellBase& cell, CCellID id);

    virtual QWidget& Window() = 0;
    // What the user has made of it; false when that is what was there at the start.
    virtual bool TakeText(std::wstring& text) = 0;
    virtual void RestoreText() = 0;

    // Ends the edit by a key, which the grid then may take as its own. Esc brings the text back
    // from the start.
    void EndByKey(const QKeyEvent& event);
    bool HasEnded() const { return hasEnded_; }
    CGridCtrl* Grid() const { return watch_.Grid(); }
    const std::wstring& StartText() const { return startText_; }

  private:
    void Leave();

    CellWatch watch_;
    const std::wstring startText_;
    int lastKey_ = 0;  // Qt::Key; 0: none ended it
    Qt::KeyboardModifiers modifiers_;
    bool hasEnded_ = false;
};

}  // namespace sg::grid
