#include "host/jet/catalog/query.h"

#include <algorithm>

#include "host/jet/catalog/query_sql.h"

namespace sg::jet {

QueryKind Query::kind() const {
    for (const QueryRow& row : rows) {
        if (row.attribute == queryAttributes::kind && row.flag && *row.flag > 0) {
            return *row.flag <= static_cast<int>(QueryKind::Union)
                       ? static_cast<QueryKind>(*row.flag)
                       : QueryKind::Unknown;
        }
    }
    // The catalog has its own numbers for the same kinds.
    switch (flags & 0xf0) {
        case 0x00:
            return QueryKind::Select;
        case 0x10:
            return QueryKind::Crosstab;
        case 0x20:
            return QueryKind::Delete;
        case 0x30:
            return QueryKind::Update;
        case 0x40:
            return QueryKind::Append;
        case 0x50:
            return QueryKind::MakeTable;
        case 0x60:
            return QueryKind::DataDefinition;
        case 0x70:
            return QueryKind::PassThrough;
        case 0x80:
            return QueryKind::Union;
        default:
            return QueryKind::Unknown;
    }
}

std::wstring Query::sql() const {
    return QueryWriter(*this).write();
}

void sortQueryRows(std::vector<QueryRow>& rows) {
    std::stable_sort(rows.begin(), rows.end(), [](const QueryRow& a, const QueryRow& b) {
        return a.attribute != b.attribute ? a.attribute < b.attribute : a.order < b.order;
    });
}

}  // namespace sg::jet
