#include "host/jet/database/table_indexes.h"

#include <algorithm>

#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

// The primary key's name comes before that of an index that shares the tree, and both before the
// name that a relation has made up for its end.
int rankOf(const LogicalIndex& index) {
    if (index.isPrimary()) return 2;
    return index.isForeign() ? 0 : 1;
}

}  // namespace

TableIndexes::TableIndexes(const Format& format, const TableDefinition& table)
    : table_(&table), names_(table.realIndexes.size()) {
    encoders_.reserve(table.realIndexes.size());
    for (const RealIndex& index : table.realIndexes) {
        encoders_.emplace_back(format, table, index);
        if (!unusable_ && !encoders_.back().usable()) unusable_ = encoders_.size() - 1;
    }
    for (const LogicalIndex& index : table.indexes) {
        const LogicalIndex*& named = names_[index.realIndex];
        if (named == nullptr || rankOf(index) > rankOf(*named)) named = &index;
    }
}

const std::wstring& TableIndexes::name(size_t index) const {
    static const std::wstring none;
    return names_[index] != nullptr ? names_[index]->name : none;
}

void TableIndexes::requireUsable() const {
    if (unusable_) requireUsable(*unusable_);
}

void TableIndexes::requireUsable(size_t index) const {
    if (encoders_[index].usable()) return;
    throw Error(OperationNotSupported, {name(index)},
                {.table = table_->name,
                 .detail = L"index '" + name(index) + L"': " + encoders_[index].problem()});
}

bool TableIndexes::hasColumn(size_t index, const std::vector<bool>& flags) const {
    const std::vector<size_t>& places = encoders_[index].places();
    return std::any_of(places.begin(), places.end(), [&](size_t place) { return flags[place]; });
}

void TableIndexes::makeKey(size_t index, std::span<const Value> row, IndexKey& key) const {
    const KeyEncoder& encoder = encoders_[index];
    const std::vector<KeyColumn>& columns = encoder.columns();
    const std::vector<size_t>& places = encoder.places();
    key.bytes.clear();
    size_t nulls = 0;
    for (size_t i = 0; i < columns.size(); ++i) {
        const Value& value = row[places[i]];
        nulls += isNull(value);
        appendKey(columns[i], value, key.bytes);
    }
    key.hasNull = nulls > 0;
    key.hasEntry = nulls < columns.size() || !table_->realIndexes[index].ignoresNulls();
}

void TableIndexes::begin(PageAllocator& allocator) {
    writers_.clear();
    writers_.reserve(encoders_.size());
    for (const RealIndex& index : table_->realIndexes)
        writers_.emplace_back(allocator, index, table_->page);
}

void TableIndexes::check(size_t index, const IndexKey& key, RowId own) const {
    const RealIndex& real = table_->realIndexes[index];
    if (key.bytes.size() > IndexWriter::maxKeySize)
        throw Error(RecordTooLarge, {}, {.detail = L"the key in index '" + name(index) + L"'"});
    if (key.hasNull) {
        const bool isPrimary = names_[index] != nullptr && names_[index]->isPrimary();
        if (isPrimary || real.isRequired())
            throw Error(NullInIndex, {name(index)}, {.table = table_->name});
        return;
    }
    if (real.isUnique() && writers_[index].contains(ByteView(key.bytes), own))
        throw Error(DuplicateKey, {name(index)}, {.table = table_->name});
}

bool TableIndexes::insert(size_t index, const IndexKey& key, RowId row) {
    return key.hasEntry && writers_[index].insert(ByteView(key.bytes), row);
}

void TableIndexes::erase(size_t index, const IndexKey& key, RowId row) {
    if (!key.hasEntry || writers_[index].erase(ByteView(key.bytes), row)) return;
    throwDamaged(L"index '" + name(index) + L"' has no entry for a row",
                 table_->realIndexes[index].rootPage);
}

}  // namespace sg::jet
