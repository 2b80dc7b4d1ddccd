#include "host/jet/database/relation_rules.h"

#include <algorithm>

#include "host/jet/database/database.h"
#include "host/jet/database/table_indexes.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/format/error.h"
#include "host/jet/index/index_tree.h"

namespace sg::jet {
namespace {

bool isComparable(const KeyColumn& a, const KeyColumn& b) {
    const auto isText = [](ColumnType type) {
        return type == ColumnType::Text || type == ColumnType::Memo;
    };
    return a.type == b.type || (isText(a.type) && isText(b.type));
}

[[noreturn]] void throwBroken(const TableDefinition& table, const LogicalIndex& index,
                              const wchar_t* what) {
    throwDamaged(L"relation '" + index.name + L"' " + what, table.page);
}

RelationEnd resolve(Database& database, TableWriter& writer, const LogicalIndex& index) {
    const TableDefinition& table = writer.definition();
    TableWriter& other =
        index.relatedTablePage == table.page ? writer : database.writerAt(index.relatedTablePage);
    const std::vector<LogicalIndex>& candidates = other.definition().indexes;
    const auto found = std::find_if(candidates.begin(), candidates.end(), [&](const auto& there) {
        return there.isForeign() && there.number == index.relatedIndex &&
               there.relatedTablePage == table.page;
    });
    if (found == candidates.end()) throwBroken(table, index, L"has no other end");
    other.indexes().requireUsable(found->realIndex);
    const std::vector<KeyColumn>& columns = writer.encoder(index.realIndex).columns();
    const std::vector<KeyColumn>& related = other.encoder(found->realIndex).columns();
    if (!std::equal(columns.begin(), columns.end(), related.begin(), related.end(), isComparable))
        throwBroken(table, index, L"is between columns of different types");
    return {index.name,         index.realIndex,      &other,
            found->realIndex,   index.cascadeUpdates, index.cascadeDeletes,
            index.nullsOnDelete};
}

}  // namespace

RelationRules::RelationRules(Database& database, TableWriter& writer) {
    const TableDefinition& table = writer.definition();
    for (const LogicalIndex& index : table.indexes) {
        if (!index.isForeign()) continue;
        if (index.relatedType != LogicalIndex::refers &&
            index.relatedType != LogicalIndex::referredTo)
            throwBroken(table, index, L"has no direction");
        RelationEnd end = resolve(database, writer, index);
        (index.relatedType == LogicalIndex::refers ? parents_ : children_)
            .push_back(std::move(end));
    }
}

bool keyAcross(const TableIndexes& own, const RelationEnd& end, std::span<const Value> row,
               KeyBytes& key) {
    const std::vector<size_t>& places = own.encoder(end.index).places();
    const std::vector<KeyColumn>& columns = end.other->encoder(end.otherIndex).columns();
    key.clear();
    for (size_t i = 0; i < columns.size(); ++i) {
        const Value& value = row[places[i]];
        if (isNull(value)) return false;
        appendKey(columns[i], value, key);
    }
    return true;
}

void forEachEntry(const PageStore& store, const RealIndex& index, ByteView key,
                  const std::function<bool(RowId)>& visit) {
    IndexCursor cursor(store, index.rootPage);
    for (bool more = cursor.seek(key); more; more = cursor.next()) {
        const ByteView found = cursor.key();
        if (!std::equal(found.begin(), found.end(), key.begin(), key.end())) return;
        if (!visit(cursor.row())) return;
    }
}

}  // namespace sg::jet
