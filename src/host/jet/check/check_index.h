#pragma once

#include <string>
#include <vector>

#include "host/jet/check/check.h"
#include "host/jet/index/index_key.h"
#include "host/jet/index/index_page.h"
#include "host/jet/pages/table.h"

// The parts that the check of a database is made of.
namespace sg::jet {

// Collects findings up to a limit.
class Findings {
  public:
    explicit Findings(size_t limit) : limit_(limit) {}

    void add(std::wstring what, std::wstring_view table, std::optional<uint32_t> page = {});
    void add(const Error& error, std::wstring_view table);
    std::vector<CheckFinding> take() { return std::move(findings_); }

    // Runs `action`; a damage that it throws becomes a finding, and the answer is false then.
    template <class Action>
    bool guard(std::wstring_view table, Action action) {
        try {
            action();
            return true;
        } catch (const Error& error) {
            if (error.code() == DiskOrNetwork) throw;
            add(error, table);
            return false;
        }
    }

  private:
    size_t limit_;
    std::vector<CheckFinding> findings_;
};

// Who has which page.
class PageClaims {
  public:
    explicit PageClaims(uint32_t pageCount) : taken_(pageCount) {}

    // False, with a finding, when the page is not in the file or somebody has it already.
    bool claim(uint32_t page, std::wstring_view table, Findings& findings);
    bool isTaken(uint32_t page) const { return page < taken_.size() && taken_[page]; }

  private:
    std::vector<bool> taken_;
};

// What may be read of long values. In a sound file no two of them share a page, so that all of them
// together are not longer than the file; where many rows point at the same bytes, reading them all
// would take for ever.
class LongValueBudget {
  public:
    explicit LongValueBudget(const PageStore& store)
        : left_(kReadings * store.pageCount() * store.pageSize()) {}

    // Reads the value; Null, with one finding for the whole file, when the budget is spent. Throws
    // what RowCursor::value() throws.
    void value(const Table& table, const RowCursor& rows, size_t column, Value& into,
               Findings& findings);

  private:
    static constexpr uint64_t kReadings = 16;  // of all values: by rows, indexes and relations
    uint64_t left_;
    bool spent_ = false;
};

// One B-tree from its root down: each page once, entries in order, nodes above their children,
// leaves chained, each entry at a row whose key it has.
class IndexChecker {
  public:
    IndexChecker(const Table& table, const RealIndex& index, Findings& findings, PageClaims& claims,
                 LongValueBudget& budget);

    const KeyEncoder& encoder() const { return encoder_; }
    // `rows` is the number of the table's rows that the index should have entries for.
    void run(size_t rows);

  private:
    void walk(uint32_t page, int depth);
    void checkPage(const IndexPage& page);
    void checkLeaf(const IndexPage& leaf);
    void checkNode(const IndexPage& node, int depth);
    void checkEntry(const IndexPage& leaf);
    void checkPages();
    void report(const wchar_t* what, uint32_t page);

    Table table_;
    const RealIndex& index_;
    Findings& findings_;
    PageClaims& claims_;
    LongValueBudget& budget_;
    KeyEncoder encoder_;
    RowCursor rows_;
    std::wstring label_;
    std::vector<uint32_t> pages_;  // of the tree, in the order of the walk
    std::vector<uint8_t> entry_;   // the current one
    std::vector<uint8_t> last_;    // the one before it: key and row
    uint32_t lastLeaf_ = 0;
    uint32_t expectedLeaf_ = 0;  // the neighbour that the last leaf names
    size_t entries_ = 0;
    bool whole_ = true;  // every page of the tree could be read
    std::vector<Value> values_;
    KeyBytes key_;
};

}  // namespace sg::jet
