#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/model/core/undo_log.h"

class AcDbDatabase;

namespace sg {

// The undo of one drawing as its user sees it: a list of records, each with what one command or
// one program has changed. What changes nothing leaves no record.
class SG_API UndoHistory {
  public:
    explicit UndoHistory(AcDbDatabase& database);

    // While one lives, changes belong to a record of this name. They nest: what happens around an
    // inner one stands in records of its own, before and behind it.
    class SG_API Running {
      public:
        Running(UndoHistory& history, std::wstring name);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

      private:
        UndoHistory& history_;
    };

    // What was taken back, or done again: the names in that order.
    struct Outcome {
        std::vector<std::wstring> names;
        bool reachedMark = false;  // a mark stopped it
        bool refused = false;      // a transaction is active
    };
    // Takes back the latest records, up to this many; a mark that it comes to goes, and ends it.
    Outcome undo(size_t count);
    // To the latest mark, which goes; without one, everything.
    Outcome undoToMark();
    // Does again what the latest undo() took back, as long as nothing has changed since.
    Outcome redo(size_t count = 1);

    void setMark();
    size_t markCount() const { return marks_.size(); }

    // The records from the beginning to the end of a group become one, named "GROUP". Groups nest.
    void beginGroup();
    bool endGroup();  // false without a group
    bool isInGroup() const { return !groups_.empty(); }

    enum class Mode {
        all,   // every record is kept
        one,   // the latest
        none,  // nothing is
    };
    void setMode(Mode mode);  // forgets what the mode does not keep
    Mode mode() const { return mode_; }

    size_t recordCount() const { return records_.size() - (isOpen_ ? 1 : 0); }
    model::UndoLog& log() { return log_; }

    // How much may be kept; beyond it the oldest records are forgotten.
    size_t mostBytes = size_t{512} << 20;

  private:
    void open(const std::wstring& name);
    void close();
    void forgetOldest(size_t count);
    void takeBack(size_t count, Outcome& outcome);

    model::UndoLog& log_;
    Mode mode_ = Mode::all;
    std::vector<std::wstring> records_;  // as many as the log has marks
    bool isOpen_ = false;                // the last record still grows
    std::vector<std::wstring> running_;  // the names of those that live, the innermost last
    std::vector<size_t> marks_;          // how many records stand before each
    std::vector<size_t> groups_;         // the same of each open group
    std::vector<std::vector<std::wstring>> undone_;  // one list an undo()
};

}  // namespace sg
