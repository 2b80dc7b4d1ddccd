#include "host/jet/check/check_index.h"

#include <algorithm>

#include "host/jet/pages/long_value.h"
#include "host/jet/pages/usage_map.h"

namespace sg::jet {

namespace {

constexpr int kMaxDepth = 24;
constexpr size_t kRowSize = 4;

std::wstring labelOf(const TableDefinition& table, const RealIndex& index) {
    const auto real = static_cast<size_t>(&index - table.realIndexes.data());
    for (const LogicalIndex& logical : table.indexes) {
        if (logical.realIndex == real) return L"index '" + logical.name + L"'";
    }
    return L"index number " + std::to_wstring(real);
}

}  // namespace

void Findings::add(std::wstring what, std::wstring_view table, std::optional<uint32_t> page) {
    if (findings_.size() < limit_)
        findings_.push_back({std::move(what), std::wstring(table), page});
}

void Findings::add(const Error& error, std::wstring_view table) {
    const ErrorPlace& place = error.place();
    add(place.detail.empty() ? error.text() : place.detail, table, place.page);
}

bool PageClaims::claim(uint32_t page, std::wstring_view table, Findings& findings) {
    if (page >= taken_.size()) {
        findings.add(L"a page beyond the end of the file is used", table, page);
        return false;
    }
    if (taken_[page]) {
        findings.add(L"the page is used twice", table, page);
        return false;
    }
    taken_[page] = true;
    return true;
}

void LongValueBudget::value(const Table& table, const RowCursor& rows, size_t column, Value& into,
                            Findings& findings) {
    if (!table.definition().columns[column].isLongValue() || rows.isNull(column))
        return rows.value(column, into);
    const uint64_t length =
        rows.row().bytes(column).empty() ? 0 : longValueHeader(rows.row().bytes(column)).length;
    if (length <= left_) {
        left_ -= length;
        return rows.value(column, into);
    }
    into = Value();
    if (!spent_) findings.add(L"the long values are together longer than the file", table.name());
    spent_ = true;
}

IndexChecker::IndexChecker(const Table& table, const RealIndex& index, Findings& findings,
                           PageClaims& claims, LongValueBudget& budget)
    : table_(table),
      index_(index),
      findings_(findings),
      claims_(claims),
      budget_(budget),
      encoder_(table.store().format(), table.definition(), index),
      rows_(table),
      label_(labelOf(table.definition(), index)) {}

void IndexChecker::report(const wchar_t* what, uint32_t page) {
    findings_.add(label_ + L": " + what, table_.name(), page);
}

void IndexChecker::run(size_t rows) {
    walk(index_.rootPage, 0);
    if (!whole_) return;
    if (expectedLeaf_ != 0) report(L"the last leaf has a neighbour behind it", lastLeaf_);
    if (encoder_.usable() && entries_ != rows) {
        findings_.add(label_ + L" has " + std::to_wstring(entries_) + L" entries for " +
                          std::to_wstring(rows) + L" rows",
                      table_.name(), index_.rootPage);
    }
    checkPages();
}

void IndexChecker::walk(uint32_t number, int depth) {
    const bool sound = findings_.guard(table_.name(), [&] {
        if (depth >= kMaxDepth) throwDamaged(L"an index is too deep", number);
        if (!claims_.claim(number, table_.name(), findings_)) {
            whole_ = false;
            return;
        }
        const IndexPage page = IndexPage::read(table_.store(), number);
        pages_.push_back(number);
        checkPage(page);
        if (page.isLeaf()) {
            checkLeaf(page);
        } else {
            checkNode(page, depth);
        }
    });
    if (!sound) whole_ = false;
}

void IndexChecker::checkPage(const IndexPage& page) {
    if (page.owner() != table_.definition().page) report(L"a page of another table", page.page());
}

void IndexChecker::checkNode(const IndexPage& node, int depth) {
    std::vector<uint8_t> entry;
    for (size_t at = 0; at < node.end(); at = node.after(at)) {
        walk(node.child(at), depth + 1);
        node.copyEntry(at, entry);
        entry.resize(entry.size() - kRowSize);  // the child, whose number has that size too
        if (entry < last_) report(L"a node's entry is less than one below it", node.page());
    }
    if (node.tail() != 0) walk(node.tail(), depth + 1);
}

void IndexChecker::checkLeaf(const IndexPage& leaf) {
    if (leaf.previous() != lastLeaf_ || (lastLeaf_ != 0 && expectedLeaf_ != leaf.page()))
        report(L"the chain of leaves does not follow the tree", leaf.page());
    lastLeaf_ = leaf.page();
    expectedLeaf_ = leaf.next();
    for (size_t at = 0; at < leaf.end(); at = leaf.after(at)) {
        leaf.copyEntry(at, entry_);
        if (!last_.empty() && !(last_ < entry_)) report(L"entries are out of order", leaf.page());
        checkEntry(leaf);
        last_.swap(entry_);
        ++entries_;
    }
}

void IndexChecker::checkEntry(const IndexPage& leaf) {
    const ByteView key = entryKey(ByteView(entry_), true);
    if (!rows_.seek(entryRow(ByteView(entry_), true)))
        return report(L"an entry points at no row", leaf.page());
    if (!encoder_.usable()) return;
    findings_.guard(table_.name(), [&] {
        values_.resize(encoder_.places().size());
        for (size_t i = 0; i < values_.size(); ++i)
            budget_.value(table_, rows_, encoder_.places()[i], values_[i], findings_);
        encoder_.encode(values_, key_);
        if (!std::equal(key_.begin(), key_.end(), key.begin(), key.end()))
            report(L"an entry's key is not that of its row", leaf.page());
        const bool repeats =
            last_.size() == entry_.size() && std::equal(key.begin(), key.end(), last_.begin());
        if (repeats && index_.isUnique() && std::none_of(values_.begin(), values_.end(), isNull))
            report(L"two rows have the same key", leaf.page());
    });
}

// The index's usage map has the pages of its tree.
void IndexChecker::checkPages() {
    findings_.guard(table_.name(), [&] {
        const UsageMap owned = UsageMap::read(table_.store(), index_.ownedPages);
        for (uint32_t page : pages_) {
            if (!owned.contains(page)) report(L"a page that its map does not have", page);
        }
    });
}

}  // namespace sg::jet
