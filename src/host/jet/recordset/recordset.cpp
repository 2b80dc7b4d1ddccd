#include "host/jet/recordset/recordset.h"

#include <algorithm>
#include <numeric>

#include "base/text.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/record_columns.h"

namespace sg::jet {

size_t Recordset::columnByName(std::wstring_view name) const {
    const std::vector<RecordColumn>& all = columns();
    const auto found = std::find_if(all.begin(), all.end(), [&](const RecordColumn& column) {
        return equalIgnoringCase(column.name, name);
    });
    if (found == all.end()) throw Error(ItemNotFound, {std::wstring(name)});
    return static_cast<size_t>(found - all.begin());
}

std::vector<size_t> placesInOrder(const TableDefinition& table) {
    std::vector<size_t> places(table.columns.size());
    std::iota(places.begin(), places.end(), size_t(0));
    std::stable_sort(places.begin(), places.end(), [&](size_t a, size_t b) {
        return table.columns[a].ordinal < table.columns[b].ordinal;
    });
    return places;
}

std::vector<RecordColumn> recordColumns(const TableDefinition& table,
                                        const std::vector<size_t>& places, const Format& format) {
    std::vector<RecordColumn> described;
    for (const size_t place : places) {
        const Column& column = table.columns[place];
        uint32_t size = column.isLongValue() ? 0 : column.length;
        if (column.type == ColumnType::Text && format.wideText) size /= 2;
        described.push_back({column.name, column.type, size});
    }
    return described;
}

}  // namespace sg::jet
