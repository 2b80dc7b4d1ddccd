#include "app/text_table.h"

#include <algorithm>

#include "app/text_ruler.h"

namespace sg::app {
namespace {

constexpr int kGap = 2;         // cells between columns
constexpr int kLeastText = 10;  // cells of a text that is cut; with less, rows become blocks

using Widths = std::vector<int>;

class Layout {
  public:
    Layout(const TextTable& table, int width, bool isStyled)
        : table_(table), width_(width), isStyled_(isStyled) {}

    void print(const std::function<void(const std::wstring&)>& out) const;

  private:
    Widths naturalWidths() const;
    bool fit(Widths& widths) const;
    int total(const Widths& widths, int mostText) const;
    int narrowed(size_t column, int width, int mostText) const {
        return table_.columns[column].isNumber ? width : std::min(width, mostText);
    }

    std::wstring cellText(const TextTable::Cell& cell) const {
        return !cell.isNull ? cell.text : isStyled_ ? L"Null" : L"<Null>";
    }
    std::wstring styled(const TextTable::Cell& cell, const std::wstring& text) const {
        return cell.isNull && isStyled_ ? L"\x1b[2m" + text + L"\x1b[22m" : text;
    }
    std::wstring line(const TextTable::Row& row, const Widths& widths) const;
    std::wstring header(const Widths& widths) const;
    std::wstring block(const TextTable::Row& row, int names) const;

    const TextTable& table_;
    const int width_;
    const bool isStyled_;
    const TextRuler ruler_;
};

// What each column needs to show everything.
Widths Layout::naturalWidths() const {
    Widths widths;
    for (const TextTable::Column& column : table_.columns)
        widths.push_back(ruler_.width(column.name));
    table_.rows([&](const TextTable::Row& row) {
        for (size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], ruler_.width(cellText(row[i])));
    });
    return widths;
}

int Layout::total(const Widths& widths, int mostText) const {
    int cells = kGap * (static_cast<int>(widths.size()) - 1);
    for (size_t i = 0; i < widths.size(); ++i)
        cells += narrowed(i, std::min(widths[i], width_ + 1), mostText);
    return cells;
}

// Cuts the widest columns of texts until the line is short enough. False when it can't be.
bool Layout::fit(Widths& widths) const {
    int mostText = width_;
    while (total(widths, mostText) > width_) {
        if (mostText == kLeastText) return false;
        --mostText;
    }
    for (size_t i = 0; i < widths.size(); ++i)
        widths[i] = narrowed(i, widths[i], mostText);
    return true;
}

std::wstring Layout::line(const TextTable::Row& row, const Widths& widths) const {
    std::wstring line;
    for (size_t i = 0; i < row.size(); ++i) {
        const std::wstring text = ruler_.cut(cellText(row[i]), widths[i]);
        const auto blanks = static_cast<size_t>(widths[i] - ruler_.width(text));
        const bool isLast = i + 1 == row.size();
        if (table_.columns[i].isNumber) line.append(blanks, L' ');
        line += styled(row[i], text);
        if (!table_.columns[i].isNumber && !isLast) line.append(blanks, L' ');
        if (!isLast) line.append(kGap, L' ');
    }
    return line + L"\n";
}

std::wstring Layout::header(const Widths& widths) const {
    TextTable::Row names;
    TextTable::Row rules;
    for (size_t i = 0; i < widths.size(); ++i) {
        names.push_back({table_.columns[i].name});
        rules.push_back({std::wstring(static_cast<size_t>(widths[i]), L'-')});
    }
    return line(names, widths) + line(rules, widths);
}

std::wstring Layout::block(const TextTable::Row& row, int names) const {
    std::wstring lines;
    for (size_t i = 0; i < row.size(); ++i) {
        const std::wstring name = ruler_.cut(table_.columns[i].name, names);
        const auto blanks = static_cast<size_t>(names - ruler_.width(name) + kGap);
        lines += name + std::wstring(blanks, L' ') +
                 styled(row[i], ruler_.cut(cellText(row[i]), width_ - names - kGap)) + L"\n";
    }
    return lines;
}

void Layout::print(const std::function<void(const std::wstring&)>& out) const {
    Widths widths = naturalWidths();
    if (fit(widths)) {
        out(header(widths));
        table_.rows([&](const TextTable::Row& row) { out(line(row, widths)); });
        return;
    }
    int names = 1;
    for (const TextTable::Column& column : table_.columns)
        names = std::max(names, ruler_.width(column.name));
    names = std::min(names, width_ / 2);
    size_t number = 0;
    table_.rows([&](const TextTable::Row& row) {
        out(L"-- " + std::to_wstring(++number) + L"\n" + block(row, names));
    });
}

}  // namespace

void TextTable::print(int width, bool isStyled,
                      const std::function<void(const std::wstring&)>& out) const {
    Layout(*this, width, isStyled).print(out);
}

}  // namespace sg::app
