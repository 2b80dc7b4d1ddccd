#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <string_view>

#include "base/text.h"
#include "grid/grid_ctrl.h"

// The clipboard: plain text, with tabs between cells and an end of line between rows.
namespace sg::grid {
namespace {

// The next part of the text up to one of the separators; what is left of the text goes behind it.
std::wstring_view takePart(std::wstring_view& text, std::wstring_view separators) {
    const size_t end = text.find_first_of(separators);
    const std::wstring_view part = text.substr(0, end);
    text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
    return part;
}

}  // namespace

// Cells within the block that are not selected are left empty.
std::wstring CGridCtrl::CopyTextFromGrid() const {
    const CCellRange range = selection_.Bounds();
    std::wstring text;
    for (int row = range.minRow; row <= range.maxRow && range.IsValid(); ++row) {
        if (row > range.minRow) text += L"\r\n";
        for (int column = range.minCol; column <= range.maxCol; ++column) {
            if (column > range.minCol) text += L'\t';
            const CGridCellBase& cell = *GetCell(row, column);
            if (cell.IsSelected()) text += cell.GetText();
        }
    }
    return text;
}

void CGridCtrl::OnEditCopy() {
    if (!IsCommandEnabled(GridCommand::Copy)) return;
    QGuiApplication::clipboard()->setText(QString::fromStdWString(CopyTextFromGrid()));
}

void CGridCtrl::OnEditCut() {
    if (!IsCommandEnabled(GridCommand::Cut)) return;
    OnEditCopy();
    CutSelectedText();
}

// Of a larger selection only the focus cell is emptied.
void CGridCtrl::CutSelectedText() {
    if (isEditable_) SetItemTextWithNotify(focusCell_.row, focusCell_.col, {});
}

void CGridCtrl::OnEditPaste() {
    if (!IsCommandEnabled(GridCommand::Paste)) return;
    PasteTextToGrid(focusCell_, QGuiApplication::clipboard()->text().toStdWString());
}

bool CGridCtrl::PasteTextToGrid(CCellID at, const std::wstring& text) {
    if (!IsValid(at)) return false;
    const CellWatch watch(*this, nullptr);
    std::wstring_view rest = text;
    int row = rowHeights_.NextShown(at.row);
    while (!rest.empty() && row >= 0 && row < GetRowCount()) {
        std::wstring_view line = takePart(rest, L"\n");
        int column = columnWidths_.NextShown(at.col);
        for (bool isLast = false; !isLast && column >= 0;) {
            isLast = line.find_first_of(L"\t,") == std::wstring_view::npos;
            const std::wstring field(trimmed(takePart(line, L"\t,")));
            SetItemTextWithNotify(row, column, field);
            if (watch.Grid() == nullptr) return true;
            column = columnWidths_.NextShown(column + 1);
        }
        row = rowHeights_.NextShown(row + 1);
    }
    return true;
}

void CGridCtrl::OnEditSelectAll() {
    if (GetRowCount() <= fixedRows_ || GetColumnCount() <= fixedColumns_) return;
    TellChanging(focusCell_);
    SelectAllCells();
    TellChanged(focusCell_);
}

bool CGridCtrl::IsCommandEnabled(GridCommand command) const {
    switch (command) {
        case GridCommand::Copy:
            return !selection_.IsEmpty();
        case GridCommand::Cut:
            return !selection_.IsEmpty() && isEditable_;
        case GridCommand::Paste: {
            const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
            return IsValid(focusCell_) && data != nullptr && data->hasText();
        }
        case GridCommand::SelectAll:
            return GetRowCount() > fixedRows_ && GetColumnCount() > fixedColumns_;
    }
    return false;
}

bool CGridCtrl::DoCommand(GridCommand command) {
    if (!IsCommandEnabled(command)) return false;
    switch (command) {
        case GridCommand::Copy:
            OnEditCopy();
            break;
        case GridCommand::Cut:
            OnEditCut();
            break;
        case GridCommand::Paste:
            OnEditPaste();
            break;
        case GridCommand::SelectAll:
            OnEditSelectAll();
            break;
    }
    return true;
}

}  // namespace sg::grid
