#include "host/sql/run/transient_index.h"

#include <bit>

#include "host/sql/run/column_reader.h"

namespace sg::sql {

TransientIndex::TransientIndex(const jet::Table& table, std::span<const size_t> columns,
                               const std::function<void()>& passRow) {
    std::vector<uint32_t> hashes;
    std::vector<uint32_t> ids;
    ColumnReader reader;
    jet::RowCursor rows(table);
    while (rows.next()) {
        passRow();
        HashOfValues hash;
        bool hasNull = false;
        for (const size_t column : columns) {
            const std::optional<uint64_t> part = reader.hash(rows, column);
            hash.add(part.value_or(0));
            hasNull = hasNull || !part;
        }
        if (!hasNull) {
            hashes.push_back(static_cast<uint32_t>(hash.value()));
            ids.push_back(rows.id().packed());
        }
    }
    // Twice as many places as rows, so that few values share theirs.
    const size_t places = std::bit_ceil(2 * ids.size() + 1);
    mask_ = static_cast<uint32_t>(places - 1);
    starts_.assign(places + 1, 0);
    for (const uint32_t hash : hashes) {
        ++starts_[(hash & mask_) + 1];
    }
    for (size_t i = 1; i < starts_.size(); ++i) {
        starts_[i] += starts_[i - 1];
    }
    rows_.resize(ids.size());
    std::vector<uint32_t> next(starts_);
    for (size_t i = 0; i < ids.size(); ++i) {
        rows_[next[hashes[i] & mask_]++] = ids[i];
    }
}

std::span<const uint32_t> TransientIndex::find(uint64_t hash) const {
    const size_t place = static_cast<uint32_t>(hash) & mask_;
    return std::span(rows_).subspan(starts_[place], starts_[place + 1] - starts_[place]);
}

}  // namespace sg::sql
