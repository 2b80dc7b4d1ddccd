#include "host/jet/catalog/query.h"

#include <algorithm>

#include "host/jet/catalog/query_sql.h"

namespace sg::jet {
namespace {

struct KindNumber {
    QueryKind kind;
    uint32_t flags;
};

constexpr KindNumber kindNumbers[] = {
    {QueryKind::Select, 0x00},         {QueryKind::Crosstab, 0x10},    {QueryKind::Delete, 0x20},
    {QueryKind::Update, 0x30},         {QueryKind::Append, 0x40},      {QueryKind::MakeTable, 0x50},
    {QueryKind::DataDefinition, 0x60}, {QueryKind::PassThrough, 0x70}, {QueryKind::Union, 0x80},
};

}  // namespace

uint32_t catalogFlags(QueryKind kind) {
    for (const KindNumber& each : kindNumbers) {
        if (each.kind == kind) {
            return each.flags;
        }
    }
    return 0;
}

QueryKind Query::kind() const {
    for (const QueryRow& row : rows) {
        if (row.attribute == queryAttributes::kind && row.flag && *row.flag > 0) {
            return *row.flag <= static_cast<int>(QueryKind::Union)
                       ? static_cast<QueryKind>(*row.flag)
                       : QueryKind::Unknown;
        }
    }
    const uint32_t number = flags & queryKindFlags;
    for (const KindNumber& each : kindNumbers) {
        if (each.flags == number) {
            return each.kind;
        }
    }
    return QueryKind::Unknown;
}

std::wstring Query::connect() const {
    if (kind() != QueryKind::PassThrough) {
        return {};
    }
    for (const QueryRow& row : rows) {
        if (row.attribute == queryAttributes::kind) {
            return row.name1.value_or(L"");
        }
    }
    return {};
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
