#include "app/browse/browse_window.h"

#include <QFileDialog>
#include <QMenuBar>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>

#include "app/shown_value.h"

namespace sg::app {
namespace {

constexpr int64_t kMostCells = 4'000'000;  // half a gigabyte
constexpr int kWidestColumn = 300;         // pixels, as a table is first shown

std::wstring reason(const jet::Error& error) {
    return error.text() + L" (error " + std::to_wstring(error.code()) + L")";
}

// The keys are those of the rows' numbers, which the cells hold.
int compareKeys(const grid::CGridCellBase& a, const grid::CGridCellBase& b, intptr_t data) {
    const auto& keys = *reinterpret_cast<const std::vector<SortKey>*>(data);
    return compare(keys[size_t(a.GetData())], keys[size_t(b.GetData())]);
}

}  // namespace

BrowseWindow::BrowseWindow(jet::Database& database, const BrowseRequest& request)
    : database_(database) {
    setCentralWidget(&grid_);
    grid_.SetListener(this);
    grid_.SetHandleTabKey(true);
    grid_.SetFixedColumnSelection(false);
    statusBar()->addWidget(&status_, 1);
    MakeMenus();
    for (const std::wstring& table : request.tables)
        tables_.addItem(QString::fromStdWString(table));
    connect(&tables_, &QComboBox::activated, this,
            [this] { ChooseTable(tables_.currentText().toStdWString()); });
    resize(900, 600);
    if (!request.table.empty()) {
        ShowTable(request.table);
    } else {
        Say(L"There is no table in this database.");
    }
    grid_.setFocus();
}

BrowseWindow::~BrowseWindow() = default;

void BrowseWindow::MakeMenus() {
    const auto add = [this](QMenu& menu, const QString& text, const QKeySequence& keys,
                            auto&& action) {
        QAction* const made = menu.addAction(text);
        made->setShortcut(keys);
        connect(made, &QAction::triggered, this, action);
    };
    QMenu& file = *menuBar()->addMenu(QStringLiteral("&File"));
    add(file, QStringLiteral("&Save as Text..."), QKeySequence::Save, [this] { SaveAsText(); });
    add(file, QStringLiteral("&Print..."), QKeySequence::Print, [this] { grid_.Print(); });
    add(file, QStringLiteral("&Read Again"), QKeySequence::Refresh,
        [this] { ChooseTable(tables_.currentText().toStdWString()); });
    add(file, QStringLiteral("&Close"), QKeySequence::Quit, [this] { close(); });
    QMenu& edit = *menuBar()->addMenu(QStringLiteral("&Edit"));
    // The grid has the usual keys for these.
    for (const auto& [text, command] :
         {std::pair{"Cu&t", grid::GridCommand::Cut}, std::pair{"&Copy", grid::GridCommand::Copy},
          std::pair{"&Paste", grid::GridCommand::Paste},
          std::pair{"Select &All", grid::GridCommand::SelectAll}}) {
        const grid::GridCommand chosen = command;
        add(edit, QString::fromLatin1(text), {}, [this, chosen] { grid_.DoCommand(chosen); });
    }
    add(edit, QStringLiteral("&Sort by This Column"), QKeySequence(Qt::CTRL | Qt::Key_T),
        [this] { SortBy(grid_.GetFocusCell().col); });
    add(edit, QStringLiteral("Choose &Table"), QKeySequence(Qt::CTRL | Qt::Key_L),
        [this] { tables_.setFocus(Qt::ShortcutFocusReason); });
    QToolBar& bar = *addToolBar(QStringLiteral("Table"));
    bar.setMovable(false);
    bar.addWidget(&tables_);
}

void BrowseWindow::Say(const std::wstring& message, bool isError) {
    status_.setText(QString::fromStdWString(message));
    QPalette colours = statusBar()->palette();
    const bool isDark = colours.color(QPalette::Window).lightness() < 128;
    if (isError) {
        colours.setColor(QPalette::WindowText, isDark ? QColor(255, 130, 130) : QColor(190, 0, 0));
    }
    status_.setPalette(colours);
}

void BrowseWindow::ChooseTable(const std::wstring& table) {
    try {
        ShowTable(table);
        grid_.setFocus();
    } catch (const jet::Error& error) {
        rows_.reset();
        grid_.DeleteAllItems();
        Say(table + L": " + reason(error), true);
    }
}

void BrowseWindow::ShowTable(const std::wstring& table) {
    grid_.EndEditing();
    rows_ = std::make_unique<TableRows>(database_, table);
    const QString name = QString::fromStdWString(table);
    if (tables_.findText(name) < 0) tables_.addItem(name);
    tables_.setCurrentText(name);
    setWindowTitle(name + QStringLiteral(" - ") + QString::fromStdWString(database_.name()));
    FillGrid();
}

void BrowseWindow::FillGrid() {
    const std::vector<jet::RecordColumn>& columns = rows_->Columns();
    const int columnCount = int(columns.size());
    grid_.DeleteAllItems();
    grid_.SetSortColumn(-1);
    grid_.SetColumnCount(columnCount);
    grid_.SetRowCount(1);
    grid_.SetFixedRowCount(1);
    std::vector<std::wstring> texts;
    for (int column = 0; column < columnCount; ++column)
        grid_.SetItemText(0, column, columns[size_t(column)].name);
    const int read = FillRows(texts);
    for (int column = 0; column < columnCount; ++column)
        grid_.SetColumnWidth(column, std::min(grid_.GetColumnWidth(column), kWidestColumn));
    if (read > 0) grid_.SetFocusCell(1, 0);
    const std::wstring count = std::to_wstring(rows_->Count());
    if (uint32_t(read) < rows_->Count()) {
        Say(L"The first " + std::to_wstring(read) + L" of " + count + L" rows");
    } else {
        Say(count + (read == 1 ? L" row" : L" rows") +
            (database_.isReadOnly() ? L", read only" : L""));
    }
}

// Answers how many rows were read.
int BrowseWindow::FillRows(std::vector<std::wstring>& texts) {
    const std::vector<jet::RecordColumn>& columns = rows_->Columns();
    const int most = int(kMostCells / std::max<int64_t>(int64_t(columns.size()), 1));
    // Others may write meanwhile, so that the count need not hold.
    grid_.SetRowCount(int(std::min<int64_t>(rows_->Count(), most)) + 1);
    int row = 0;
    while (row < most && rows_->ReadNext(texts)) {
        if (++row >= grid_.GetRowCount()) grid_.SetRowCount(row + 1);
        for (size_t column = 0; column < texts.size(); ++column) {
            grid::CGridCellBase& cell = *grid_.GetCell(row, int(column));
            cell.SetText(texts[column]);
            cell.SetData(row - 1);
            if (isNumber(columns[column].type)) {
                cell.SetFormat(grid::kPlainFormat | grid::kTextRight);
            }
        }
    }
    grid_.SetRowCount(row + 1);
    grid_.AutoSizeColumns();
    return row;
}

void BrowseWindow::SortBy(int column) {
    if (!rows_ || column < 0 || column >= grid_.GetColumnCount()) return;
    const bool isAgain = grid_.GetSortColumn() == column;
    const bool ascending = !isAgain || !grid_.GetSortAscending();
    std::vector<SortKey> keys(size_t(grid_.GetRowCount()) - 1);
    const jet::ColumnType type = rows_->Columns()[size_t(column)].type;
    for (int row = 1; row < grid_.GetRowCount(); ++row) {
        const grid::CGridCellBase& cell = *grid_.GetCell(row, column);
        keys[size_t(cell.GetData())] = sortKey(cell.GetText(), type);
    }
    grid_.SortItems(compareKeys, column, ascending, reinterpret_cast<intptr_t>(&keys));
    grid_.SetSortAscending(ascending);
    grid_.SetSortColumn(column);
}

void BrowseWindow::SaveAsText() {
    const QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Save as Text"),
                                                      tables_.currentText() + ".txt");
    if (!path.isEmpty() && grid_.Save(path.toStdWString(), L'\t')) {
        Say(L"Saved as " + path.toStdWString());
    }
}

bool BrowseWindow::OnBeginEdit(grid::CGridCtrl&, grid::CCellID cell) {
    if (!rows_ || cell.row < 1) return false;
    if (rows_->CanWrite(size_t(cell.col))) return true;
    Say(rows_->Columns()[size_t(cell.col)].name + L" cannot be edited", true);
    return false;
}

bool BrowseWindow::OnEndEdit(grid::CGridCtrl&, grid::CCellID cell) {
    try {
        const std::wstring text = grid_.GetItemText(cell.row, cell.col);
        const auto row = size_t(grid_.GetItemData(cell.row, cell.col));
        // The engine may have made something else of it.
        grid_.SetItemText(cell.row, cell.col, rows_->Write(row, size_t(cell.col), text));
        Say(L"Written");
        return true;
    } catch (const jet::Error& error) {
        Say(reason(error), true);
        return false;
    }
}

void BrowseWindow::OnClick(grid::CGridCtrl&, grid::CCellID cell) {
    if (cell.row == 0) SortBy(cell.col);
}

}  // namespace sg::app
