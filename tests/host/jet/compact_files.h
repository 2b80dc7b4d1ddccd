#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "base/encoding.h"
#include "base/text.h"
#include "host/jet/check/check.h"
#include "host/jet/compact/compact.h"
#include "host/jet/database/database.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/pages/database_header.h"
#include "host/jet/schema_files.h"

// What two databases hold, in a form that can be compared whatever pages and masks they have.
namespace sg::jet::test {

// Tables that no Jet 4 file can have, and the system tables themselves.
inline bool isCompared(const CatalogObject& object) {
    const std::wstring& name = object.name;
    if (name.rfind(L"MSysComplex", 0) == 0 || name.rfind(L"f_", 0) == 0) return false;
    return name != L"MSysObjects" && name != L"MSysACEs" && name != L"MSysQueries" &&
           name != L"MSysRelationships";
}

inline std::vector<size_t> keptColumns(const TableDefinition& table) {
    std::vector<size_t> list;
    for (size_t i = 0; i < table.columns.size(); ++i) {
        if (table.columns[i].type != ColumnType::Complex) list.push_back(i);
    }
    return list;
}

using IndexPicture = std::tuple<std::vector<std::pair<std::wstring, bool>>, int, int>;

struct TablePicture {
    std::vector<std::tuple<std::wstring, int, int, int, int>> columns;  // name, type, flags, ...
    std::vector<std::vector<Value>> rows;
    std::map<std::wstring, IndexPicture> indexes;
    uint32_t lastNumber = 0;
};

inline TablePicture pictureOf(const Table& table) {
    TablePicture picture;
    const TableDefinition& definition = table.definition();
    const std::vector<size_t> kept = keptColumns(definition);
    std::set<uint16_t> numbers;
    for (const size_t i : kept) {
        const Column& column = definition.columns[i];
        numbers.insert(column.number);
        picture.columns.emplace_back(column.name, static_cast<int>(column.type), column.flags,
                                     column.ordinal, column.precision * 256 + column.scale);
    }
    for (RowCursor rows(table); rows.next();) {
        auto& row = picture.rows.emplace_back();
        for (const size_t i : kept)
            row.push_back(rows.value(i));
    }
    for (const LogicalIndex& index : definition.indexes) {
        const RealIndex& real = definition.realOf(index);
        if (index.isForeign() || !numbers.contains(real.columns.front().column)) continue;
        IndexPicture& one = picture.indexes[index.name];
        for (const IndexColumn& column : real.columns) {
            std::get<0>(one).emplace_back(
                definition.columns[*definition.columnByNumber(column.column)].name,
                column.ascending);
        }
        std::get<1>(one) = real.flags & 0x0b;
        std::get<2>(one) = static_cast<int>(index.kind);
    }
    picture.lastNumber = definition.lastAutoNumber;
    return picture;
}

inline Bytes unmasked(const Database& db, Bytes account) {
    if (db.store().format().isJet3()) return account;
    const PageRef page = db.store().read(0);
    Bytes plain(page->begin(), page->end());
    maskDatabasePage(plain, db.store().format());
    maskAccount(account, ByteView(plain.data(), plain.size()), db.store().format());
    return account;
}

using ObjectName = std::pair<std::wstring, int>;

// Name and type, flags, dates, container, owner.
using ObjectPicture = std::tuple<ObjectName, uint32_t, double, double, std::wstring, Bytes>;

inline std::wstring nameOf(const Database& db, int32_t id) {
    for (const CatalogObject& object : db.objects()) {
        if (object.id == id) return object.name;
    }
    return {};
}

inline std::set<ObjectPicture> objectsOf(const Database& db) {
    std::set<ObjectPicture> list;
    const Table catalog = db.table(L"MSysObjects");
    const size_t owner = catalog.definition().columnByName(L"Owner").value();
    for (const CatalogObject& object : db.objects()) {
        RowCursor row(catalog);
        if ((object.isTable() && !isCompared(object)) || !row.seek(object.row)) continue;
        list.emplace(ObjectName{object.name, static_cast<int>(object.type)}, object.flags,
                     object.created.days, object.updated.days, nameOf(db, object.parent),
                     unmasked(db, std::get<Bytes>(row.value(owner))));
    }
    return list;
}

// Object, account, rights, inheritable; objects that have gone have none.
inline std::multiset<std::tuple<std::wstring, Bytes, int32_t, bool>> rightsOf(const Database& db) {
    std::multiset<std::tuple<std::wstring, Bytes, int32_t, bool>> list;
    const Table table = db.table(L"MSysACEs");
    const auto at = [&](const wchar_t* name) { return *table.definition().columnByName(name); };
    for (RowCursor rows(table); rows.next();) {
        const int32_t id = std::get<int32_t>(rows.value(at(L"ObjectId")));
        for (const CatalogObject& object : db.objects()) {
            if (object.id != id) continue;
            if (object.isTable() && !isCompared(object) && object.id > 5) continue;
            list.emplace(object.name, unmasked(db, std::get<Bytes>(rows.value(at(L"SID")))),
                         std::get<int32_t>(rows.value(at(L"ACM"))),
                         std::get<bool>(rows.value(at(L"FInheritable"))));
        }
    }
    return list;
}

using PropertyPicture = std::tuple<std::wstring, int, std::wstring, int, bool, Value>;

inline std::vector<PropertyPicture> propertiesOf(const Database& db, const CatalogObject& object) {
    std::vector<PropertyPicture> list;
    const Properties properties = db.properties(object);
    for (const PropertyBlock& block : properties.blocks()) {
        for (const Property& one : block.properties) {
            list.emplace_back(block.owner, block.kind, one.name, static_cast<int>(one.type),
                              one.needsDesignRights, one.value);
        }
    }
    return list;
}

using RelationPicture = std::tuple<std::wstring, std::wstring, std::wstring, uint32_t,
                                   std::vector<std::pair<std::wstring, std::wstring>>>;

inline std::set<RelationPicture> relationsOf(const Database& db) {
    std::set<RelationPicture> list;
    for (const Relation& relation : db.relations()) {
        std::vector<std::pair<std::wstring, std::wstring>> columns;
        for (const RelationColumns& pair : relation.columns)
            columns.emplace_back(pair.column, pair.foreignColumn);
        list.emplace(relation.name, relation.table, relation.foreignTable, relation.flags, columns);
    }
    return list;
}

// Enforced relations: table, columns' names, other table, which end, cascades.
using EndPicture =
    std::tuple<std::wstring, std::vector<std::wstring>, std::wstring, int, bool, bool>;

inline std::multiset<EndPicture> relationEndsOf(const Database& db) {
    std::multiset<EndPicture> list;
    for (const CatalogObject& object : db.objects()) {
        if (!object.isTable() || !isCompared(object)) continue;
        const TableDefinition& table = db.tableAt(object.definitionPage()).definition();
        for (const LogicalIndex& index : table.indexes) {
            if (!index.isForeign()) continue;
            const std::wstring other = db.tableAt(index.relatedTablePage).name();
            if (other.rfind(L"f_", 0) == 0) continue;
            std::vector<std::wstring> columns;
            for (const IndexColumn& column : table.realOf(index).columns)
                columns.push_back(table.columns[*table.columnByNumber(column.column)].name);
            list.emplace(object.name, columns, other, index.relatedType, index.cascadeUpdates,
                         index.cascadeDeletes);
        }
    }
    return list;
}

// Everything that a compaction keeps is the same in both.
inline void expectSame(const Database& from, const Database& to, const std::string& file) {
    SCOPED_TRACE(file);
    std::vector<std::wstring> names;
    std::vector<std::wstring> madeNames;
    for (const auto& [db, list] : {std::pair(&from, &names), std::pair(&to, &madeNames)}) {
        for (const CatalogObject& object : db->objects()) {
            if (object.isTable() && isCompared(object)) list->push_back(object.name);
        }
    }
    EXPECT_EQ(names, madeNames);
    const bool isJet3 = from.store().format().isJet3();
    for (const std::wstring& name : names) {
        SCOPED_TRACE(toUtf8(name));
        const TablePicture a = pictureOf(from.table(name));
        const TablePicture b = pictureOf(to.table(name));
        EXPECT_EQ(a.columns, b.columns);
        EXPECT_EQ(a.rows.size(), b.rows.size());
        EXPECT_TRUE(a.rows == b.rows);
        EXPECT_EQ(a.indexes, b.indexes);
        EXPECT_EQ(a.lastNumber, b.lastNumber);
        EXPECT_EQ(from.table(name).definition().isSystem, to.table(name).definition().isSystem);
        for (const Column& column : to.table(name).definition().columns) {
            const TableDefinition& source = from.table(name).definition();
            const Column& old = source.columns[*source.columnByName(column.name)];
            const int factor = isJet3 && column.type == ColumnType::Text ? 2 : 1;
            if (!old.isLongValue()) {
                EXPECT_EQ(old.length * factor, column.length);
            }
            if (!isJet3) {
                EXPECT_EQ(old.isCompressed(), column.isCompressed());
            }
        }
    }
    EXPECT_EQ(objectsOf(from), objectsOf(to));
    EXPECT_EQ(rightsOf(from), rightsOf(to));
    EXPECT_EQ(relationsOf(from), relationsOf(to));
    EXPECT_EQ(relationEndsOf(from), relationEndsOf(to));
    const std::vector<Query> queries = from.queries();
    const std::vector<Query> made = to.queries();
    ASSERT_EQ(queries.size(), made.size());
    for (size_t i = 0; i < queries.size(); ++i) {
        EXPECT_EQ(queries[i].name, made[i].name);
        EXPECT_EQ(queries[i].id, made[i].id);
        EXPECT_EQ(queries[i].sql(), made[i].sql()) << toUtf8(queries[i].name);
    }
    for (const CatalogObject& object : from.objects()) {
        const CatalogObject* other = to.object(object.name, object.type);
        if (object.isTable() && !isCompared(object)) continue;
        ASSERT_NE(other, nullptr) << toUtf8(object.name);
        EXPECT_EQ(propertiesOf(from, object), propertiesOf(to, *other)) << toUtf8(object.name);
    }
}

inline void expectNothingFound(const Database& db, const std::string& what) {
    for (const CheckFinding& finding : checkDatabase(db)) {
        ADD_FAILURE() << what << ": " << toUtf8(finding.table) << ": " << toUtf8(finding.what)
                      << ", page " << finding.page.value_or(0);
    }
}

inline std::string listing(const std::vector<std::wstring>& lines) {
    std::string text;
    for (const std::wstring& line : lines)
        text += toUtf8(line) + "\n";
    return text;
}

inline bool tells(const CompactReport& report, std::wstring_view words) {
    return std::any_of(report.losses.begin(), report.losses.end(), [&](const std::wstring& line) {
        return line.find(words) != std::wstring::npos;
    });
}

class CompactTest : public SchemaTest {
  protected:
    // A copy that may be written, in the test's folder.
    std::wstring copied(const std::filesystem::path& file, const std::string& name) {
        std::filesystem::copy_file(file, folder_ / name,
                                   std::filesystem::copy_options::overwrite_existing);
        std::filesystem::permissions(folder_ / name, std::filesystem::perms::owner_read |
                                                         std::filesystem::perms::owner_write);
        return path(name);
    }
    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            names.insert(entry.path().filename().string());
        return names;
    }
    static std::string output(const std::string& command) {
        std::string text;
        if (FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r"); pipe != nullptr) {
            char buffer[65536];
            for (size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
                text.append(buffer, got);
            ::pclose(pipe);
        }
        return text;
    }
};

}  // namespace sg::jet::test
