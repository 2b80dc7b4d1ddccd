#include <QFontMetrics>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>

#include <algorithm>
#include <utility>

#include "grid/grid_ctrl.h"
#include "grid/print_layout.h"

// Printing. Headings and fixed columns are repeated on every page.
namespace sg::grid {
namespace {

// What an average character is measured by; the capitals are meant to be as they are.
constexpr char kSample[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSATUVWXYZ";

double averageWidth(const QFontMetrics& metrics) {
    return metrics.horizontalAdvance(QString::fromLatin1(kSample)) / double(sizeof(kSample) - 1);
}

// Parts of the shown items from `first` on that fit into the room; each has one at least.
std::vector<std::vector<int>> pagesOf(const AxisSizes& sizes, int first, int room) {
    std::vector<std::vector<int>> pages;
    int left = 0;
    for (int item = sizes.NextShown(first); item >= 0; item = sizes.NextShown(item + 1)) {
        if (pages.empty() || sizes[item] > left) {
            pages.emplace_back();
            left = room;
        }
        pages.back().push_back(item);
        left -= sizes[item];
    }
    if (pages.empty()) pages.emplace_back();
    return pages;
}

std::vector<int> shownUpTo(const AxisSizes& sizes, int count) {
    std::vector<int> items;
    for (int item = sizes.NextShown(0); item >= 0 && item < count; item = sizes.NextShown(item + 1))
        items.push_back(item);
    return items;
}

int extentOf(const AxisSizes& sizes, const std::vector<int>& items) {
    int extent = 0;
    for (const int item : items)
        extent += sizes[item];
    return extent;
}

}  // namespace

void CGridCtrl::Print() {
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, this);
    if (dialog.exec() == QDialog::Accepted && !PrintTo(printer)) {
        ReportError(L"cannot print to " + printer.printerName().toStdWString());
    }
}

bool CGridCtrl::PrintTo(QPrinter& printer) {
    EndEditing();
    printer.setFullPage(false);
    QPainter painter;
    if (!painter.begin(&printer)) return false;
    PrintLayout layout;
    layout.page = painter.viewport();
    layout.dotsPerInchX = printer.logicalDpiX();
    layout.dotsPerInchY = printer.logicalDpiY();
    OnBeginPrinting(layout);
    printFont_ = &layout.font;
    bool isPrinted = true;
    const int first = std::max(printer.fromPage(), 1);
    const int last =
        printer.toPage() > 0 ? std::min(printer.toPage(), layout.PageCount()) : layout.PageCount();
    for (int page = first; page <= last && isPrinted; ++page) {
        if (page > first) isPrinted = printer.newPage();
        painter.save();
        painter.scale(layout.scale, layout.scale);
        OnPrint(painter, layout, page - 1);
        painter.restore();
    }
    printFont_ = nullptr;
    OnEndPrinting();
    return painter.end() && isPrinted;
}

// The printer's characters are to be as wide on paper as those of the grid are in its pixels.
void CGridCtrl::OnBeginPrinting(PrintLayout& layout) {
    constexpr double points = 8;
    QFont font(QStringLiteral("Arial"));
    font.setWeight(QFont::Normal);
    const CGridDefaultCell& plain = GetDefaultCell(false, false);
    const double screenWidth = averageWidth(QFontMetrics(plain.GetFont()));
    font.setPixelSize(1000);
    const double printed = averageWidth(QFontMetrics(font)) / 1000;  // of a font one dot high
    const double dots = points * layout.dotsPerInchY / 72;
    layout.scale = printed * dots / screenWidth;
    font.setPixelSize(std::max(int(dots / layout.scale), 1));
    layout.font = font;

    const int line = QFontMetrics(font).height();
    const int character = std::max(int(screenWidth), 1);
    const int width = int(layout.page.width() / layout.scale);
    const int height = int(layout.page.height() / layout.scale);
    const int left = margins_.left * character, right = width - margins_.right * character;
    const int across = std::max(right - left, 1);
    layout.header = {left, margins_.top * line, across, margins_.header * line};
    const int footerTop = height - (margins_.bottom + margins_.footer) * line;
    layout.footer = {left, footerTop, across, margins_.footer * line};
    const int top = layout.header.bottom() + 1 + margins_.gap * line;
    layout.cells = {left, top, across, std::max(footerTop - margins_.gap * line - top, 1)};
    layout.rowPages = pagesOf(rowHeights_, fixedRows_, layout.cells.height() - FixedHeight());
    layout.columnPages = pagesOf(columnWidths_, fixedColumns_, layout.cells.width() - FixedWidth());
}

void CGridCtrl::OnPrint(QPainter& painter, const PrintLayout& layout, int page) {
    PrintHeader(painter, layout);
    PrintColumnHeadings(painter, layout, page);
    PrintRowButtons(painter, layout, page);
    const std::vector<int>& rows = layout.RowsOf(page);
    PrintCells(painter, layout, rows, layout.ColumnsOf(page),
               layout.cells.topLeft() + QPoint(FixedWidth(), FixedHeight()));
    PrintFooter(painter, layout, page);
}

void CGridCtrl::PrintColumnHeadings(QPainter& painter, const PrintLayout& layout, int page) {
    const std::vector<int> headings = shownUpTo(rowHeights_, fixedRows_);
    const QPoint origin = layout.cells.topLeft();
    PrintCells(painter, layout, headings, shownUpTo(columnWidths_, fixedColumns_), origin);
    PrintCells(painter, layout, headings, layout.ColumnsOf(page), origin + QPoint(FixedWidth(), 0));
}

void CGridCtrl::PrintRowButtons(QPainter& painter, const PrintLayout& layout, int page) {
    PrintCells(painter, layout, layout.RowsOf(page), shownUpTo(columnWidths_, fixedColumns_),
               layout.cells.topLeft() + QPoint(0, FixedHeight()));
}

// Neighbours on the page need not be neighbours in the grid: a block is printed as far as its rows
// and columns are on it.
void CGridCtrl::PrintCells(QPainter& painter, const PrintLayout& layout,
                           const std::vector<int>& rows, const std::vector<int>& columns,
                           QPoint origin) {
    if (rows.empty() || columns.empty()) return;
    const QRect area(origin, QSize(extentOf(columnWidths_, columns), extentOf(rowHeights_, rows)));
    painter.save();
    painter.setClipRect((area & layout.cells).adjusted(-1, -1, 1, 1));
    int y = origin.y();
    for (const int row : rows) {
        int x = origin.x();
        for (const int column : columns) {
            CGridCellBase& cell = *GetCell(row, column);
            QRect rect(x, y, columnWidths_[column] - 1, rowHeights_[row] - 1);
            if (cell.IsMerged()) {
                const QRect block = RangeRect(cell.GetMergeRange());
                rect.setSize(block.size());
            }
            if (cell.IsShown()) {
                if (cell.HasOwnBackClr() || cell.IsFixed()) {
                    painter.fillRect(rect, toQColor(cell.GetBackClr()));
                }
                painter.setPen(QPen(toQColor(gridLineColour_), 0));
                if (gridLines_ != kNoLines) painter.drawRect(rect.adjusted(-1, -1, 0, 0));
                cell.PrintCell(painter, row, column, rect);
            }
            x += columnWidths_[column];
        }
        y += rowHeights_[row];
    }
    painter.restore();
}

void CGridCtrl::PrintHeaderPart(QPainter& painter, const QRect& rect, const std::wstring& text,
                                Qt::Alignment alignment) {
    painter.drawText(rect, int(alignment) | Qt::TextSingleLine, QString::fromStdWString(text));
}

void CGridCtrl::PrintHeader(QPainter& painter, const PrintLayout& layout) {
    painter.setFont(layout.font);
    painter.setPen(Qt::black);
    PrintHeaderPart(painter, layout.header, window()->windowTitle().toStdWString(),
                    Qt::AlignHCenter | Qt::AlignTop);
}

void CGridCtrl::PrintFooter(QPainter& painter, const PrintLayout& layout, int page) {
    painter.setFont(layout.font);
    painter.setPen(Qt::black);
    const std::wstring text =
        L"Page " + std::to_wstring(page + 1) + L" of " + std::to_wstring(layout.PageCount());
    PrintHeaderPart(painter, layout.footer, text, Qt::AlignHCenter | Qt::AlignBottom);
}

}  // namespace sg::grid
