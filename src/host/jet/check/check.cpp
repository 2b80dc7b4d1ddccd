#include "host/jet/check/check.h"

#include <algorithm>

#include "host/jet/check/check_index.h"
#include "host/jet/index/index_tree.h"
#include "host/jet/pages/data_page.h"
#include "host/jet/pages/usage_map.h"

namespace sg::jet {

namespace {

// Counts rows, once for themselves and once for each index that they are in.
class CheckProgress {
  public:
    CheckProgress(const Database& database, const std::function<void(uint64_t, uint64_t)>& listener)
        : listener_(listener) {
        if (!listener_) return;
        for (const CatalogObject& object : database.objects()) {
            if (!object.isTable()) continue;
            try {
                const Table table = database.tableAt(object.definitionPage());
                total_ += table.rowCount() * (1 + uint64_t(table.definition().realIndexes.size()));
            } catch (const Error& error) {
                // Looking into the table tells what is wrong with it.
                if (error.code() == DiskOrNetwork) throw;
            }
        }
    }

    void add(uint64_t rows) {
        constexpr uint64_t between = 1024;
        done_ += rows;
        if (!listener_ || done_ < told_ + between) return;
        told_ = done_;
        listener_(std::min(done_, total_), total_);
    }

  private:
    const std::function<void(uint64_t, uint64_t)>& listener_;
    uint64_t total_ = 0;
    uint64_t done_ = 0;
    uint64_t told_ = 0;
};

// One table: its definition's pages, its maps with the pages in them, its rows, its indexes.
class TableChecker {
  public:
    TableChecker(const Database& database, const Table& table, Findings& findings,
                 PageClaims& claims, LongValueBudget& budget, CheckProgress& progress)
        : database_(database),
          table_(table),
          definition_(table.definition()),
          findings_(findings),
          claims_(claims),
          budget_(budget),
          progress_(progress) {}

    void run() {
        for (uint32_t page : definition_.pages)
            claims_.claim(page, name(), findings_);
        checkMap(definition_.ownedPages, definition_.freePages);
        for (const Column& column : definition_.columns) {
            if (column.ownedPages && column.freePages && column.ownedPages->page != 0)
                checkMap(*column.ownedPages, *column.freePages);
        }
        std::vector<std::unique_ptr<IndexChecker>> indexes;
        for (const RealIndex& index : definition_.realIndexes) {
            findings_.guard(name(), [&] {
                indexes.push_back(
                    std::make_unique<IndexChecker>(table_, index, findings_, claims_, budget_));
            });
        }
        std::vector<size_t> counts(indexes.size());
        checkRows(indexes, counts);
        for (size_t i = 0; i < indexes.size(); ++i) {
            indexes[i]->run(counts[i]);
            progress_.add(counts[i]);
        }
        for (const LogicalIndex& index : definition_.indexes) {
            if (index.isForeign()) findings_.guard(name(), [&] { checkRelation(index); });
        }
    }

  private:
    const std::wstring& name() const { return table_.name(); }

    // The pages that a map has are data pages of this table or of long values, and those with
    // room are among them.
    void checkMap(RowId owned, RowId free) {
        findings_.guard(name(), [&] {
            const UsageMap pages = UsageMap::read(table_.store(), owned);
            for (uint32_t map : pages.mapPages()) {
                if (map != 0) claims_.claim(map, name(), findings_);
            }
            for (uint32_t page : pages.pages()) {
                if (claims_.claim(page, name(), findings_)) checkOwner(page);
            }
            if (free.page == 0) return;  // there is no such map
            for (uint32_t page : UsageMap::read(table_.store(), free).pages()) {
                if (!pages.contains(page))
                    findings_.add(L"a page with room is not among the table's pages", name(), page);
            }
        });
    }

    void checkOwner(uint32_t number) {
        findings_.guard(name(), [&] {
            const uint32_t owner = DataPage(table_.store(), number).owner();
            if (owner != definition_.page && owner != pages::longValueOwner)
                findings_.add(L"the page belongs to another table", name(), number);
        });
    }

    // Every value of every row can be read. Counts the rows that each index should have.
    void checkRows(const std::vector<std::unique_ptr<IndexChecker>>& indexes,
                   std::vector<size_t>& counts) {
        RowCursor rows = table_.scan();
        size_t count = 0;
        bool isWhole = true;
        for (bool more = true; more;) {
            const bool sound = findings_.guard(name(), [&] {
                more = rows.next();
                if (!more) return;
                ++count;
                progress_.add(1);
                readValues(rows);
                for (size_t i = 0; i < indexes.size(); ++i)
                    counts[i] += belongsIn(indexes[i]->encoder());
            });
            isWhole = isWhole && sound;
        }
        // The engine's own count of a system table may be behind.
        const uint32_t counted = table_.rowCount();
        if (isWhole && !definition_.isSystem && count != counted) {
            findings_.add(L"the table has " + std::to_wstring(count) + L" rows and counts " +
                              std::to_wstring(counted),
                          name(), definition_.page);
        }
    }

    void readValues(const RowCursor& rows) {
        values_.resize(definition_.columns.size());
        for (size_t i = 0; i < values_.size(); ++i) {
            if (!findings_.guard(name(),
                                 [&] { budget_.value(table_, rows, i, values_[i], findings_); }))
                values_[i] = Value();
        }
    }

    bool belongsIn(const KeyEncoder& encoder) {
        gather(encoder);
        return encoder.hasEntry(indexed_);
    }

    void gather(const KeyEncoder& encoder) {
        indexed_.clear();
        for (size_t place : encoder.places())
            indexed_.push_back(values_[place]);
    }

    // One end of an enforced relation: the other end is there, and where this end refers, each row
    // that has no Null in its columns refers to a row.
    void checkRelation(const LogicalIndex& index) {
        constexpr uint8_t thisRefers = 2;
        const Table other = database_.tableAt(index.relatedTablePage);
        const auto& indexes = other.definition().indexes;
        const auto found = std::find_if(
            indexes.begin(), indexes.end(),
            [&](const LogicalIndex& candidate) { return candidate.number == index.relatedIndex; });
        if (found == indexes.end()) {
            findings_.add(L"relation '" + index.name + L"' has no other end", name(),
                          definition_.page);
            return;
        }
        if (index.relatedType == thisRefers) checkReferences(index, other, *found);
    }

    void checkReferences(const LogicalIndex& index, const Table& other,
                         const LogicalIndex& otherIndex) {
        const Format& format = table_.store().format();
        const RealIndex& primary = other.definition().realOf(otherIndex);
        const KeyEncoder columns(format, definition_, definition_.realOf(index));
        const KeyEncoder keys(format, other.definition(), primary);
        if (!keys.usable() || columns.places().size() != keys.places().size()) return;
        IndexCursor cursor(table_.store(), primary.rootPage);
        KeyBytes key;
        for (RowCursor rows = table_.scan(); rows.next();) {
            indexed_.resize(columns.places().size());
            for (size_t i = 0; i < indexed_.size(); ++i)
                budget_.value(table_, rows, columns.places()[i], indexed_[i], findings_);
            if (std::any_of(indexed_.begin(), indexed_.end(), isNull)) continue;
            keys.encode(indexed_, key);
            if (!cursor.seek(ByteView(key)))
                findings_.add(L"relation '" + index.name + L"': a row refers to none", name(),
                              rows.id().page);
        }
    }

    const Database& database_;
    const Table& table_;
    const TableDefinition& definition_;
    Findings& findings_;
    PageClaims& claims_;
    LongValueBudget& budget_;
    CheckProgress& progress_;
    std::vector<Value> values_;   // of the current row
    std::vector<Value> indexed_;  // those of one index's columns
};

// No page that somebody has is among the free ones.
void checkFreePages(const PageStore& store, const PageClaims& claims, Findings& findings) {
    findings.guard({}, [&] {
        const UsageMap free = UsageMap::read(store, {pages::globalMap, 0});
        for (std::optional<uint32_t> page = free.next(0); page && *page < store.pageCount();
             page = free.next(*page + 1)) {
            if (claims.isTaken(*page)) findings.add(L"a page in use is marked as free", {}, *page);
        }
    });
}

// Data pages name their table: each is in a map of it.
void checkLostPages(const PageStore& store, const std::vector<uint32_t>& definitions,
                    const PageClaims& claims, Findings& findings) {
    const UsageMap free = UsageMap::read(store, {pages::globalMap, 0});
    for (uint32_t number = 1; number < store.pageCount(); ++number) {
        if (claims.isTaken(number) || free.contains(number)) continue;
        const PageRef page = store.read(number);
        if (page->get8(0) != static_cast<uint8_t>(PageKind::Data)) continue;
        const uint32_t owner = page->get32(store.format().dataPage.owner);
        if (std::binary_search(definitions.begin(), definitions.end(), owner))
            findings.add(L"a page of a table is not in the table's map", {}, number);
    }
}

}  // namespace

std::vector<CheckFinding> checkDatabase(const Database& database, size_t limit,
                                        const std::function<void(uint64_t, uint64_t)>& listener) {
    const PageStore& store = database.store();
    Findings findings(limit);
    PageClaims claims(store.pageCount());
    LongValueBudget budget(store);
    claims.claim(0, {}, findings);
    claims.claim(pages::globalMap, {}, findings);
    for (const Error& error : database.catalogDamage())
        findings.add(error, L"MSysObjects");
    CheckProgress progress(database, listener);

    std::vector<uint32_t> definitions;
    for (const CatalogObject& object : database.objects()) {
        if (!object.isTable()) continue;
        findings.guard(object.name, [&] {
            const Table table = database.tableAt(object.definitionPage());
            definitions.push_back(object.definitionPage());
            TableChecker(database, table, findings, claims, budget, progress).run();
        });
    }
    std::sort(definitions.begin(), definitions.end());
    checkFreePages(store, claims, findings);
    findings.guard({}, [&] { checkLostPages(store, definitions, claims, findings); });

    std::vector<Error> damage;
    findings.guard(L"MSysRelationships", [&] { database.relations(&damage); });
    findings.guard(L"MSysQueries", [&] { database.queries(&damage); });
    for (const Error& error : damage)
        findings.add(error, {});
    return findings.take();
}

}  // namespace sg::jet
