#include "host/jet/compact/compact_source.h"

#include <algorithm>
#include <set>

#include "base/text.h"
#include "host/jet/pages/long_value.h"
#include "host/jet/pages/usage_map.h"

namespace sg::jet::compaction {
namespace {

constexpr std::wstring_view catalogName = L"MSysObjects";

int32_t numberOf(const Value& value) {
    if (const auto* held = std::get_if<int32_t>(&value)) return *held;
    if (const auto* held = std::get_if<int16_t>(&value)) return *held;
    return 0;
}

std::wstring textOf(const Value& value) {
    const auto* held = std::get_if<std::wstring>(&value);
    return held == nullptr ? std::wstring() : *held;
}

Date dateOf(const Value& value) {
    const auto* held = std::get_if<Date>(&value);
    return held == nullptr ? Date() : *held;
}

// What was read with a made-up layout may be anything.
bool isName(const std::wstring& name) {
    return !name.empty() &&
           std::none_of(name.begin(), name.end(), [](wchar_t c) { return c >= 0 && c < L' '; });
}

}  // namespace

// --- rows ---

SourceRows::SourceRows(const Source& source, const Table& table)
    : source_(source), table_(table), cursor_(table) {}

bool SourceRows::next() {
    Run& run = source_.run();
    while (!isWalked_) {
        try {
            if (cursor_.next()) return true;
            isWalked_ = true;
            if (run.repairs()) lost_ = source_.lostPages(table_);
        } catch (const Error& error) {
            if (!run.forgives(error)) throw;
            run.lose({}, error);
        }
    }
    while (lostPage_ < lost_.size()) {
        try {
            if (nextLost()) return true;
        } catch (const Error& error) {
            if (!run.forgives(error)) throw;
            run.lose({}, error);
        }
    }
    return false;
}

// Goes on behind a row that can't be read.
bool SourceRows::nextLost() {
    const uint32_t number = lost_[lostPage_];
    uint16_t count = 0;
    try {
        count = DataPage(table_.store(), number).rowCount();
    } catch (const Error&) {
        ++lostPage_;
        throw;
    }
    while (lostRow_ < std::min<size_t>(count, rows::maxRows)) {
        if (cursor_.seek({number, static_cast<uint16_t>(lostRow_++)})) return true;
    }
    ++lostPage_;
    lostRow_ = 0;
    return false;
}

void SourceRows::seek(RowId id) {
    if (!cursor_.seek(id)) throwDamaged(L"a row of " + table_.name() + L" has gone", id.page);
}

void SourceRows::value(size_t column, Value& into) {
    try {
        if (table_.definition().columns[column].isLongValue() && !cursor_.isNull(column)) {
            const ByteView bytes = cursor_.row().bytes(column);
            if (!bytes.empty()) source_.spend(longValueHeader(bytes).length);
        }
        cursor_.value(column, into);
    } catch (Error& error) {
        if (!source_.run().forgives(error)) throw;
        error.addTable(table_.name());
        error.addPage(cursor_.id().page);
        source_.run().lose(L"a value of column " + table_.definition().columns[column].name, error);
        into = Value();
    }
}

Value SourceRows::value(size_t column) {
    Value result;
    value(column, result);
    return result;
}

Value SourceRows::value(std::wstring_view column) {
    const auto place = table_.definition().columnByName(column);
    return place ? value(*place) : Value();
}

// --- the file ---

Source::Source(const PageStore& pages, const Database& made, Run& run)
    : pages_(pages), run_(run), header_(readDatabaseHeader(pages)) {
    requireReadable(header_, pages_);
    if (run_.repairs()) scan();
    readCatalog(made);
    readObjects();
}

void Source::unmaskAccount(Bytes& account) const {
    if (format().isJet3()) return;
    const PageRef page = pages_.read(0);
    std::vector<uint8_t> plain(page->begin(), page->end());
    maskDatabasePage(plain, format());
    maskAccount(account, ByteView(plain.data(), plain.size()), format());
}

// Who has the data pages, and where definitions are. What is free may look like anything.
void Source::scan() {
    std::optional<UsageMap> free;
    run_.guard(L"the map of free pages", [&] {
        free = UsageMap::read(pages_, {pages::globalMap, 0});
    });
    knowsFreePages_ = free.has_value();
    for (uint32_t number = pages::globalMap + 1; number < pages_.pageCount(); ++number) {
        const PageRef page = pages_.read(number);
        const auto kind = static_cast<PageKind>(page->get8(0));
        if (kind != PageKind::Data && kind != PageKind::TableDefinition) continue;
        try {
            if (free && free->contains(number)) continue;
        } catch (const Error& error) {
            if (!run_.forgives(error)) throw;
            run_.lose(L"the map of free pages", error);
            free.reset();
            knowsFreePages_ = false;
        }
        if (kind == PageKind::TableDefinition) {
            definitionPages_.push_back(number);
        } else {
            const uint32_t owner = page->get32(format().dataPage.owner);
            if (owner != pages::longValueOwner) dataPages_[owner].push_back(number);
        }
        run_.advance(0);
    }
}

// A repair that has lost the catalog's definition takes the columns that every catalog has, and
// finds the rows by the pages' owner.
void Source::readCatalog(const Database& made) {
    try {
        auto definition =
            std::make_shared<TableDefinition>(TableDefinition::read(pages_, pages::catalog));
        definition->name = catalogName;
        catalog_.emplace(pages_, std::move(definition));
        return;
    } catch (const Error& error) {
        if (error.code() != Damaged) throw;
        if (!run_.repairs()) {
            ErrorPlace place = error.place();
            place.file = pages_.name();
            throw Error(CannotOpenDatabase, {pages_.name()}, std::move(place));
        }
        run_.lose(L"the catalog's definition", error);
    }
    isCatalogWhole_ = false;
    auto usual = std::make_shared<TableDefinition>(made.tableAt(pages::catalog).definition());
    usual->ownedPages = usual->freePages = RowId();
    catalog_.emplace(pages_, std::move(usual));
}

void Source::readObjects() {
    const size_t losses = run_.report().losses.size();
    const bool isKnown = isCatalogWhole_;
    SourceRows rows(*this, *catalog_);
    while (rows.next()) {
        CatalogObject object;
        object.row = rows.id();
        object.id = numberOf(rows.value(L"Id"));
        object.parent = numberOf(rows.value(L"ParentId"));
        object.name = textOf(rows.value(L"Name"));
        object.type = static_cast<ObjectType>(numberOf(rows.value(L"Type")));
        object.flags = static_cast<uint32_t>(numberOf(rows.value(L"Flags")));
        object.created = dateOf(rows.value(L"DateCreate"));
        object.updated = dateOf(rows.value(L"DateUpdate"));
        if (isKnown ? !object.name.empty() : isName(object.name)) {
            objects_.push_back(std::move(object));
        }
    }
    isCatalogWhole_ = isCatalogWhole_ && losses == run_.report().losses.size();
    if (objects_.empty() && !run_.repairs()) {
        throw Error(CannotOpenDatabase, {pages_.name()},
                    {.file = pages_.name(),
                     .page = pages::catalog,
                     .detail = L"the catalog has no objects"});
    }
}

Table Source::tableAt(uint32_t page, std::wstring_view name) const {
    try {
        auto definition = std::make_shared<TableDefinition>(TableDefinition::read(pages_, page));
        definition->name = name;
        return {pages_, std::move(definition)};
    } catch (Error& error) {
        error.addTable(name);
        error.addFile(pages_.name());
        throw;
    }
}

std::optional<Table> Source::systemTable(std::wstring_view name) const {
    for (const CatalogObject& object : objects_) {
        if (object.isTable() && equalIgnoringCase(object.name, name)) {
            return tableAt(object.definitionPage(), object.name);
        }
    }
    return std::nullopt;
}

uint64_t Source::tableRows(const TableDefinition& table) const {
    return std::min<uint64_t>(table.rowCount, uint64_t(pages_.pageCount()) * rows::maxRows);
}

void Source::spend(uint64_t bytes) const {
    longBytes_ += bytes;
    // The catalog's are read twice.
    if (longBytes_ > 2 * uint64_t(pages_.pageCount()) * pages_.pageSize()) {
        throwDamaged(L"the long values are together longer than the file");
    }
}

// --- what a repair looks for ---

std::vector<uint32_t> Source::unnamedTables() const {
    // Where neither the catalog tells what is there nor the map what has gone, nothing is known.
    if (isCatalogWhole_ && !knowsFreePages_) return {};
    std::set<uint32_t> named = {pages::catalog};
    const auto addChain = [&](uint32_t page) {
        try {
            const TableDefinition definition = TableDefinition::read(pages_, page);
            named.insert(definition.pages.begin(), definition.pages.end());
        } catch (const Error& error) {
            if (!run_.forgives(error)) throw;
        }
    };
    for (const CatalogObject& object : objects_) {
        if (!object.isTable()) continue;
        named.insert(object.definitionPage());
        addChain(object.definitionPage());
    }
    std::map<uint32_t, std::vector<uint32_t>> found;  // chains by their first pages
    for (const uint32_t page : definitionPages_) {
        if (named.contains(page)) continue;
        try {
            const TableDefinition definition = TableDefinition::read(pages_, page);
            const auto data = dataPages_.find(page);
            if (!definition.isSystem && !definition.columns.empty() && data != dataPages_.end()) {
                found[page] = definition.pages;
            }
        } catch (const Error& error) {
            if (!run_.forgives(error)) throw;
        }
    }
    for (const auto& [first, chain] : std::map(found)) {
        for (const uint32_t page : chain) {
            if (page != first) found.erase(page);
        }
    }
    std::vector<uint32_t> list;
    for (const auto& [first, chain] : found)
        list.push_back(first);
    return list;
}

std::vector<uint32_t> Source::lostPages(const Table& table) const {
    std::optional<UsageMap> map;
    try {
        map = UsageMap::read(pages_, table.definition().ownedPages);
        tellForeignPages(table, *map);
    } catch (const Error& error) {
        // The walk over the rows tells it.
        if (!run_.forgives(error)) throw;
    }
    std::vector<uint32_t> lost;
    const auto own = dataPages_.find(table.definition().page);
    if (own == dataPages_.end()) return lost;
    for (const uint32_t page : own->second) {
        bool isKnown = false;
        try {
            isKnown = map && map->contains(page);
        } catch (const Error& error) {
            if (!run_.forgives(error)) throw;
        }
        // With a sound map, a page out of it that nothing tells to be in use was given back.
        if (!isKnown && (knowsFreePages_ || !map)) lost.push_back(page);
    }
    return lost;
}

// A walk passes over pages of the map that name somebody else as their owner, which long values on
// a table's own pages do rightly.
void Source::tellForeignPages(const Table& table, const UsageMap& map) const {
    for (auto page = map.next(0); page && *page < pages_.pageCount(); page = map.next(*page + 1)) {
        const PageRef bytes = pages_.read(*page);
        if (bytes->get8(0) != static_cast<uint8_t>(PageKind::Data)) continue;
        const uint32_t owner = bytes->get32(format().dataPage.owner);
        if (owner == table.definition().page || owner == pages::longValueOwner) continue;
        run_.lose(L"table " + table.name() + L": page " + std::to_wstring(*page) +
                  L": the page names another owner");
    }
}

}  // namespace sg::jet::compaction
