#include "host/editor/undo_history.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "host/model/core/database_state.h"

namespace sg {

UndoHistory::UndoHistory(AcDbDatabase& database) : log_(model::DatabaseState::of(database).undo) {}

UndoHistory::Running::Running(UndoHistory& history, std::wstring name) : history_(history) {
    history_.close();
    history_.open(name);
    history_.running_.push_back(std::move(name));
}

UndoHistory::Running::~Running() {
    history_.close();
    history_.running_.pop_back();
    if (!history_.running_.empty()) history_.open(history_.running_.back());
}

void UndoHistory::open(const std::wstring& name) {
    if (mode_ == Mode::none) return;
    log_.startUndoRecord();
    records_.push_back(name);
    isOpen_ = true;
}

void UndoHistory::close() {
    if (!isOpen_) return;
    isOpen_ = false;
    if (log_.dropEmptyRecord()) {
        records_.pop_back();
        return;
    }
    if (!log_.canRedo()) undone_.clear();
    if (mode_ == Mode::one) {
        forgetOldest(records_.size() - 1);
    } else if (log_.byteCount() > mostBytes) {
        forgetOldest(records_.size() / 2);
    }
}

void UndoHistory::forgetOldest(size_t count) {
    if (count == 0 || count >= records_.size()) return;
    if (!log_.forgetBefore(count)) return;
    records_.erase(records_.begin(), records_.begin() + static_cast<std::ptrdiff_t>(count));
    std::erase_if(marks_, [count](size_t mark) { return mark < count; });
    for (size_t& mark : marks_)
        mark -= count;
    for (size_t& group : groups_)
        group -= std::min(group, count);
}

// ---- Taking back --------------------------------------------------------------------------------

void UndoHistory::takeBack(size_t count, Outcome& outcome) {
    const bool wasOpen = isOpen_;
    close();
    while (outcome.names.size() < count && !records_.empty()) {
        if (!marks_.empty() && marks_.back() >= records_.size()) {
            marks_.pop_back();
            outcome.reachedMark = true;
            break;
        }
        if (!log_.undo()) {
            outcome.refused = true;
            break;
        }
        outcome.names.push_back(std::move(records_.back()));
        records_.pop_back();
        // A group that is taken back to before its beginning has not begun.
        std::erase_if(groups_, [this](size_t group) { return group > records_.size(); });
    }
    if (!outcome.names.empty()) undone_.push_back(outcome.names);
    if (wasOpen) open(running_.back());
}

UndoHistory::Outcome UndoHistory::undo(size_t count) {
    Outcome outcome;
    takeBack(count, outcome);
    return outcome;
}

UndoHistory::Outcome UndoHistory::undoToMark() {
    Outcome outcome;
    takeBack(std::numeric_limits<size_t>::max(), outcome);
    if (records_.empty()) outcome.reachedMark = !std::exchange(marks_, {}).empty();
    return outcome;
}

UndoHistory::Outcome UndoHistory::redo(size_t count) {
    Outcome outcome;
    const bool wasOpen = isOpen_;
    close();
    if (!log_.canRedo()) undone_.clear();
    for (size_t i = 0; i < count && !undone_.empty(); ++i) {
        std::vector<std::wstring> names = std::move(undone_.back());
        undone_.pop_back();
        for (auto name = names.rbegin(); name != names.rend(); ++name) {
            if (!log_.redo()) {
                outcome.refused = true;
                break;
            }
            records_.push_back(*name);
            outcome.names.push_back(std::move(*name));
        }
    }
    if (wasOpen) open(running_.back());
    return outcome;
}

// ---- Marks and groups ---------------------------------------------------------------------------

void UndoHistory::setMark() {
    const bool wasOpen = isOpen_;
    close();
    marks_.push_back(records_.size());
    if (wasOpen) open(running_.back());
}

void UndoHistory::beginGroup() {
    const bool wasOpen = isOpen_;
    close();
    groups_.push_back(records_.size());
    if (wasOpen) open(running_.back());
}

bool UndoHistory::endGroup() {
    if (groups_.empty()) return false;
    const bool wasOpen = isOpen_;
    close();
    const size_t first = groups_.back();
    groups_.pop_back();
    if (records_.size() > first + 1) {
        log_.keepMarks(first + 1);
        records_.resize(first + 1);
        std::erase_if(marks_, [first](size_t mark) { return mark > first; });
    }
    if (records_.size() > first) records_[first] = L"GROUP";
    if (wasOpen) open(running_.back());
    return true;
}

void UndoHistory::setMode(Mode mode) {
    const bool wasOpen = isOpen_;
    close();
    mode_ = mode;
    if (mode == Mode::none) {
        records_.clear();
        marks_.clear();
        groups_.clear();
        undone_.clear();
    }
    log_.disableUndoRecording(mode == Mode::none);
    if (mode == Mode::one && !records_.empty()) forgetOldest(records_.size() - 1);
    if (wasOpen || (mode != Mode::none && !running_.empty())) open(running_.back());
}

}  // namespace sg
