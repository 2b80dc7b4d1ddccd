#pragma once

#include <QLineEdit>

#include "grid/in_place_editor.h"

namespace sg::grid {

// Ends the edit in an editor's window, with its text or without telling anybody.
void endEditorOf(QWidget& window);
void abandonEditorOf(QWidget& window);

// A line of text over its cell. It grows to the right with its text.
class SG_API CInPlaceEdit final : public QLineEdit, public InPlaceEditor {
  public:
    // Over the rectangle of the grid's viewport, with the focus. `character` is what began the edit
    // (constants.h).
    static CInPlaceEdit* Open(CGridCellBase& cell, CCellID id, const QRect& rect, int controlId,
                              uint32_t character);

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

    QWidget& Window() override { return *this; }
    bool TakeText(std::wstring& text) override;
    void RestoreText() override;

  private:
    CInPlaceEdit(CGridCellBase& cell, CCellID id, uint32_t character);

    void BeginWith(uint32_t character);
    void Grow();

    QString shown_;  // at the start
    const bool isByMouse_;
};

// What the keys that a character stands for do to an editor's text.
void beginEditorWith(QLineEdit& editor, uint32_t character);
QString toQString(const std::wstring& text);

}  // namespace sg::grid
