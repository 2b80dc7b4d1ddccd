#include "grid/cell_selection.h"

#include <algorithm>
#include <utility>

namespace sg::grid {

bool CellSelection::Contains(CCellID cell) const {
    const auto row = rows_.find(cell.row);
    if (row == rows_.end()) return false;
    for (const Span& span : row->second) {
        if (cell.col >= span.first && cell.col <= span.last) return true;
    }
    return false;
}

int64_t CellSelection::Count() const {
    int64_t count = 0;
    ForEachSpan([&](int, int first, int last) { count += last - first + 1; });
    return count;
}

CCellRange CellSelection::Bounds() const {
    if (rows_.empty()) return {};
    CCellRange bounds{rows_.begin()->first, rows_.begin()->second.front().first,
                      rows_.rbegin()->first, -1};
    for (const auto& [row, spans] : rows_) {
        bounds.minCol = std::min(bounds.minCol, spans.front().first);
        bounds.maxCol = std::max(bounds.maxCol, spans.back().last);
    }
    return bounds;
}

void CellSelection::Add(const CCellRange& range) {
    auto place = rows_.lower_bound(range.minRow);
    for (int row = range.minRow; row <= range.maxRow; ++row) {
        if (place == rows_.end() || place->first != row) {
            place = rows_.emplace_hint(place, row, Spans{{range.minCol, range.maxCol}});
        } else {
            Span added{range.minCol, range.maxCol};
            Spans joined;
            for (const Span& span : place->second) {
                if (span.last + 1 < added.first || span.first > added.last + 1) {
                    joined.push_back(span);
                } else {
                    added = {std::min(span.first, added.first), std::max(span.last, added.last)};
                }
            }
            const auto behind = std::find_if(joined.begin(), joined.end(), [&](const Span& span) {
                return span.first > added.last;
            });
            joined.insert(behind, added);
            place->second = std::move(joined);
        }
        ++place;
    }
}

void CellSelection::Remove(const CCellRange& range) {
    for (auto place = rows_.lower_bound(range.minRow);
         place != rows_.end() && place->first <= range.maxRow;) {
        Spans left;
        for (const Span& span : place->second) {
            if (span.first < range.minCol) {
                left.push_back({span.first, std::min(span.last, range.minCol - 1)});
            }
            if (span.last > range.maxCol) {
                left.push_back({std::max(span.first, range.maxCol + 1), span.last});
            }
        }
        place->second = std::move(left);
        place = place->second.empty() ? rows_.erase(place) : std::next(place);
    }
}

void CellSelection::ForEachSpan(const std::function<void(int, int, int)>& reader) const {
    for (const auto& [row, spans] : rows_) {
        for (const Span& span : spans)
            reader(row, span.first, span.last);
    }
}

void CellSelection::InsertRows(int before, int count) {
    std::vector<std::pair<int, Spans>> moved;
    for (auto place = rows_.lower_bound(before); place != rows_.end(); place = rows_.erase(place))
        moved.emplace_back(place->first + count, std::move(place->second));
    for (auto& [row, spans] : moved)
        rows_.emplace_hint(rows_.end(), row, std::move(spans));
}

void CellSelection::EraseRows(int first, int count) {
    rows_.erase(rows_.lower_bound(first), rows_.lower_bound(first + count));
    InsertRows(first + count, -count);
}

void CellSelection::InsertColumn(int before) {
    for (auto& [row, spans] : rows_) {
        Spans moved;
        for (const Span& span : spans) {
            if (span.first < before) {
                moved.push_back({span.first, std::min(span.last, before - 1)});
            }
            if (span.last >= before) {
                moved.push_back({std::max(span.first, before) + 1, span.last + 1});
            }
        }
        spans = std::move(moved);
    }
}

void CellSelection::EraseColumn(int col) {
    const CCellRange all = Bounds();
    if (!all.IsValid()) return;
    Remove({all.minRow, col, all.maxRow, col});
    for (auto& [row, spans] : rows_) {
        for (Span& span : spans) {
            if (span.first > col) {
                --span.first;
                --span.last;
            }
        }
        // Those on both sides of it meet.
        for (size_t i = 1; i < spans.size();) {
            if (spans[i - 1].last + 1 < spans[i].first) {
                ++i;
                continue;
            }
            spans[i - 1].last = spans[i].last;
            spans.erase(spans.begin() + std::ptrdiff_t(i));
        }
    }
}

void CellSelection::PermuteRows(int first, const std::vector<int>& origin) {
    if (rows_.empty()) return;
    std::map<int, Spans> before;
    std::swap(before, rows_);
    for (size_t i = 0; i < origin.size(); ++i) {
        const auto row = before.find(origin[i]);
        if (row == before.end()) continue;
        rows_.emplace(first + int(i), std::move(row->second));
        before.erase(row);
    }
    rows_.merge(before);
}

}  // namespace sg::grid
