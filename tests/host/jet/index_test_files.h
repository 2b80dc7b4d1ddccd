#pragma once

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <vector>

#include "base/encoding.h"
#include "host/jet/pages/data_page.h"
#include "host/jet/pages/row.h"
#include "host/jet/pages/usage_map.h"
#include "host/jet/storage/page_store.h"
#include "host/jet/values/table_definition.h"
#include "real_data.h"

// The tables of databases that other programs made, for tests of indexes.
namespace sg::jet::real {

// Every row of the table that is not deleted, with its bytes, which may be on another page.
inline void forEachRow(const PageStore& store, const TableDefinition& table,
                       const std::function<void(RowId, ByteView)>& visit) {
    for (uint32_t number : UsageMap::read(store, table.ownedPages).pages()) {
        const DataPage page(store, number);
        // A page that the map has may have gone to the table's long values.
        if (page.owner() != table.page) continue;
        for (uint16_t row = 0; row < page.rowCount(); ++row) {
            if (page.isDeleted(row)) continue;
            DataPage at = page;
            uint16_t place = row;
            if (page.isLookup(row)) followOverflow(store, at, place);
            visit({number, row}, at.rowBytes(place));
        }
    }
}

inline ByteView rowBytes(const PageStore& store, RowId id, DataPage& page) {
    page = DataPage(store, id.page);
    uint16_t row = id.row;
    if (page.isLookup(row)) followOverflow(store, page, row);
    return page.rowBytes(row);
}

// The catalog's tables that are in this file, system ones too.
inline std::vector<TableDefinition> tablesOf(const PageStore& store) {
    constexpr uint32_t pageMask = 0xffffff;  // of an object's id
    std::vector<TableDefinition> tables;
    const TableDefinition catalog = TableDefinition::read(store, pages::catalog);
    const size_t id = catalog.columnByName(L"Id").value();
    const size_t type = catalog.columnByName(L"Type").value();
    const size_t name = catalog.columnByName(L"Name").value();
    RowReader reader(store, catalog);
    forEachRow(store, catalog, [&](RowId, ByteView row) {
        Value value;
        reader.reset(row);
        reader.decode(type, value);
        if (std::get<int16_t>(value) != 1) return;
        reader.decode(id, value);
        const auto page = static_cast<uint32_t>(std::get<int32_t>(value)) & pageMask;
        tables.push_back(TableDefinition::read(store, page));
        reader.decode(name, value);
        tables.back().name = std::get<std::wstring>(value);
    });
    return tables;
}

}  // namespace sg::jet::real
