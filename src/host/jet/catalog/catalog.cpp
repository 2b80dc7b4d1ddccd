#include "host/jet/catalog/catalog.h"

#include <algorithm>
#include <initializer_list>
#include <map>

#include "base/text.h"

namespace sg::jet {
namespace {

// Further places of damage are left untold.
constexpr size_t mostDamage = 1000;

// Not in the files of Jet 3: Null in all their rows.
constexpr std::wstring_view laterColumn = L"LvExtra";

// A walk over a system table with its columns found by name.
class SystemRows {
  public:
    SystemRows(const Table& table, std::initializer_list<std::wstring_view> names,
               std::vector<Error>& damage)
        : cursor_(table), damage_(damage) {
        for (const std::wstring_view name : names) {
            const auto place = table.definition().columnByName(name);
            if (!place && name != laterColumn) {
                throw Error(Damaged, {},
                            {.file = table.store().name(),
                             .table = table.name(),
                             .detail = L"there is no column " + std::wstring(name)});
            }
            places_.push_back(place);
        }
        values_.resize(places_.size());
    }

    // The next row of which every column can be read.
    bool next() {
        while (true) {
            try {
                if (!cursor_.next()) {
                    return false;
                }
                for (size_t i = 0; i < places_.size(); ++i) {
                    if (places_[i]) {
                        cursor_.value(*places_[i], values_[i]);
                    }
                }
                return true;
            } catch (const Error& error) {
                if (damage_.size() < mostDamage) {
                    damage_.push_back(error);
                }
            }
        }
    }

    RowId id() const { return cursor_.id(); }

    // Columns by their place in the constructor's list; the empty value of the type for Null and
    // for a value of another kind.
    std::wstring text(size_t i) const { return optionalText(i).value_or(L""); }
    std::optional<std::wstring> optionalText(size_t i) const {
        const auto* held = std::get_if<std::wstring>(&values_[i]);
        return held ? std::optional(*held) : std::nullopt;
    }
    std::optional<int32_t> optionalNumber(size_t i) const {
        if (const auto* held = std::get_if<int32_t>(&values_[i])) {
            return *held;
        }
        if (const auto* held = std::get_if<int16_t>(&values_[i])) {
            return *held;
        }
        if (const auto* held = std::get_if<uint8_t>(&values_[i])) {
            return *held;
        }
        return std::nullopt;
    }
    int32_t number(size_t i) const { return optionalNumber(i).value_or(0); }
    Date date(size_t i) const {
        const auto* held = std::get_if<Date>(&values_[i]);
        return held ? *held : Date();
    }
    Bytes bytes(size_t i) const {
        const auto* held = std::get_if<Bytes>(&values_[i]);
        return held ? *held : Bytes();
    }

  private:
    RowCursor cursor_;
    std::vector<Error>& damage_;
    std::vector<std::optional<size_t>> places_;
    std::vector<Value> values_;
};

}  // namespace

std::vector<CatalogObject> readObjects(const Table& objects, std::vector<Error>& damage) {
    SystemRows rows(objects,
                    {L"Id", L"ParentId", L"Name", L"Type", L"Flags", L"DateCreate", L"DateUpdate",
                     L"Database", L"Connect", L"ForeignName"},
                    damage);
    std::vector<CatalogObject> list;
    while (rows.next()) {
        CatalogObject object;
        object.row = rows.id();
        object.id = rows.number(0);
        object.parent = rows.number(1);
        object.name = rows.text(2);
        object.type = static_cast<ObjectType>(rows.number(3));
        object.flags = static_cast<uint32_t>(rows.number(4));
        object.created = rows.date(5);
        object.updated = rows.date(6);
        object.database = rows.text(7);
        object.connect = rows.text(8);
        object.foreignName = rows.text(9);
        if (!object.name.empty()) {
            list.push_back(std::move(object));
        }
    }
    return list;
}

std::vector<Relation> readRelations(const Table& relationships, std::vector<Error>& damage) {
    SystemRows rows(relationships,
                    {L"szRelationship", L"grbit", L"icolumn", L"szObject", L"szColumn",
                     L"szReferencedObject", L"szReferencedColumn"},
                    damage);
    struct Pending {
        Relation relation;
        std::vector<std::pair<int32_t, RelationColumns>> columns;
    };
    std::vector<Pending> pending;
    std::map<std::wstring, size_t> byName;
    while (rows.next()) {
        const auto [at, isNew] = byName.try_emplace(lowerCased(rows.text(0)), pending.size());
        if (isNew) {
            pending.push_back({{.name = rows.text(0),
                                .table = rows.text(5),
                                .foreignTable = rows.text(3),
                                .flags = static_cast<uint32_t>(rows.number(1)),
                                .columns = {}},
                               {}});
        }
        pending[at->second].columns.push_back({rows.number(2), {rows.text(6), rows.text(4)}});
    }
    std::vector<Relation> list;
    for (Pending& one : pending) {
        std::stable_sort(one.columns.begin(), one.columns.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        for (auto& [place, columns] : one.columns) {
            one.relation.columns.push_back(std::move(columns));
        }
        list.push_back(std::move(one.relation));
    }
    return list;
}

std::vector<QueryRow> readQueryRows(const Table& queries, std::vector<Error>& damage) {
    SystemRows rows(queries,
                    {L"ObjectId", L"Attribute", L"Flag", L"LvExtra", L"Expression", L"Name1",
                     L"Name2", L"Order"},
                    damage);
    std::vector<QueryRow> list;
    while (rows.next()) {
        QueryRow row;
        row.row = rows.id();
        row.object = rows.number(0);
        row.attribute = static_cast<uint8_t>(rows.number(1));
        if (const auto flag = rows.optionalNumber(2)) {
            row.flag = static_cast<int16_t>(*flag);
        }
        row.extra = rows.optionalNumber(3);
        row.expression = rows.optionalText(4);
        row.name1 = rows.optionalText(5);
        row.name2 = rows.optionalText(6);
        row.order = rows.bytes(7);
        list.push_back(std::move(row));
    }
    return list;
}

}  // namespace sg::jet
