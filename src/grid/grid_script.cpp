#include "grid/grid_script.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>

#include "base/text.h"
#include "grid/check_cell.h"
#include "grid/grid_ctrl.h"
#include "grid/in_place_edit.h"

namespace sg::grid {
namespace {

void press(QWidget& widget, int key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

void sendMouse(QWidget& widget, QEvent::Type type, QPoint point) {
    const bool isUp = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, point, widget.mapToGlobal(QPointF(point)), Qt::LeftButton,
                      isUp ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

// Exactly, or else ignoring case; -1: there is none.
int optionOf(const QComboBox& list, const QString& text) {
    const int exact = list.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    return exact >= 0 ? exact : list.findText(text, Qt::MatchFixedString);
}

}  // namespace

bool GridScript::IsEnabled() const {
    return grid_.isEnabled();
}

bool GridScript::IsShown() const {
    return !grid_.isHidden();
}

std::wstring GridScript::State() const {
    const CCellID focus = grid_.GetFocusCell();
    std::wstring state = std::to_wstring(grid_.GetRowCount()) + L" rows";
    if (focus.IsValid()) {
        state += L", at " + std::to_wstring(focus.row) + L" " + std::to_wstring(focus.col);
    }
    return state;
}

std::vector<std::wstring> GridScript::Contents() const {
    std::vector<std::wstring> lines;
    for (int row = 0; row < grid_.GetRowCount(); ++row) {
        const bool isMarked = row == grid_.GetFocusCell().row;
        std::wstring line = (isMarked ? L"> " : L"  ") + std::to_wstring(row) + L":";
        for (int column = 0; column < grid_.GetColumnCount(); ++column) {
            const std::wstring text = grid_.GetItemText(row, column);
            const bool isHidden = grid_.GetColumnWidth(column) == 0;
            line += (column == 0 ? L" " : L" | ") + (isHidden ? L"(" + text + L")" : text);
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::wstring> GridScript::Columns() const {
    std::vector<std::wstring> headings;
    for (int column = 0; column < grid_.GetColumnCount(); ++column)
        headings.push_back(grid_.GetItemText(0, column));
    return headings;
}

ui::Refusal GridScript::Unusable(int row, int column) const {
    if (!IsShown()) return L"is hidden";
    if (!IsEnabled()) return L"is disabled";
    if (row < 0 || row >= grid_.GetRowCount()) return L"has no row " + std::to_wstring(row);
    if (column < 0 || column >= grid_.GetColumnCount()) {
        return L"has no column " + std::to_wstring(column);
    }
    if (row < grid_.GetFixedRowCount()) return L"has headings in row " + std::to_wstring(row);
    if (grid_.GetColumnWidth(column) == 0) {
        return L"does not show column " + std::to_wstring(column);
    }
    return {};
}

void GridScript::GoTo(CCellID cell) {
    grid_.EndEditing();
    grid_.setFocus(Qt::MouseFocusReason);
    if (grid_.GetFocusCell() != cell) grid_.MoveFocus(cell, Qt::NoModifier);
    const CCellID now = grid_.GetFocusCell();
    if (now.IsValid()) grid_.EnsureVisible(now.row, now.col);
}

ui::Refusal GridScript::SelectRow(int row) {
    int column = grid_.GetFocusCell().col;
    if (column < grid_.GetFixedColumnCount() || grid_.GetColumnWidth(column) <= 0) {
        column = grid_.GetFixedColumnCount();
        while (column + 1 < grid_.GetColumnCount() && grid_.GetColumnWidth(column) == 0)
            ++column;
    }
    if (const ui::Refusal refusal = Unusable(row, column); !refusal.empty()) return refusal;
    GoTo({row, column});
    return {};
}

ui::Refusal GridScript::EditCell(int row, int column, const std::wstring& text) {
    if (const ui::Refusal refusal = Unusable(row, column); !refusal.empty()) return refusal;
    GoTo({row, column});
    const CCellID cell{row, column};
    CGridCellBase* const edited = grid_.GetCell(row, column);
    if (edited == nullptr || grid_.GetFocusCell() != cell) return L"has changed";
    if (dynamic_cast<CGridCheckCell*>(edited) != nullptr) return SwitchCheckBox(cell, text);
    if (!grid_.BeginEdit(row, column)) {
        return L"refuses to edit row " + std::to_wstring(row) + L" column " +
               std::to_wstring(column);
    }
    return TypeInto(*grid_.editor_, text);
}

ui::Refusal GridScript::SwitchCheckBox(CCellID cell, const std::wstring& text) {
    const bool on = equalIgnoringCase(text, L"on");
    if (!on && !equalIgnoringCase(text, L"off")) return L"takes on or off there";
    if (grid_.SetItemTextWithNotify(cell.row, cell.col, CGridCheckCell::TextFor(on))) return {};
    return L"refuses to edit row " + std::to_wstring(cell.row) + L" column " +
           std::to_wstring(cell.col);
}

ui::Refusal GridScript::TypeInto(QWidget& editor, const std::wstring& text) {
    ui::Refusal refusal;
    if (auto* const list = qobject_cast<QComboBox*>(&editor)) {
        refusal = ChooseIn(*list, text);
    } else if (auto* const edit = qobject_cast<QLineEdit*>(&editor)) {
        edit->selectAll();
        edit->insert(toQString(text));
    }
    press(editor, refusal.empty() ? Qt::Key_Return : Qt::Key_Escape);
    return refusal;
}

ui::Refusal GridScript::ChooseIn(QComboBox& list, const std::wstring& text) {
    const int option = optionOf(list, toQString(text));
    if (option >= 0) {
        list.setCurrentIndex(option);
    } else if (list.isEditable()) {
        list.setEditText(toQString(text));
    } else {
        return L"has no item \"" + text + L"\" there";
    }
    return {};
}

ui::Refusal GridScript::DoubleClick(int row, int column) {
    if (const ui::Refusal refusal = Unusable(row, column); !refusal.empty()) return refusal;
    grid_.EnsureVisible(row, column);
    QRect rect;
    if (!grid_.GetCellRect(row, column, rect)) return L"does not show the cell";
    QWidget& viewport = *grid_.viewport();
    const QPoint middle = rect.center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                    QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        sendMouse(viewport, type, middle);
    }
    return {};
}

}  // namespace sg::grid
