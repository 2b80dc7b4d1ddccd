// Databases that other programs made: all is read, and agrees with what another reader prints.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/encoding.h"
#include "fuzz/jet_read_everything.h"
#include "host/jet/database/database.h"
#include "real_data.h"

namespace sg::jet {
namespace {

class RealFilesTest : public testing::Test {
  protected:
    void SetUp() override {
        for (const auto& file : sg::test::realDatabases())
            files_.push_back(file.string());
        if (files_.empty()) {
            GTEST_SKIP() << "no real files in " << sg::test::realData();
        }
    }

    static Database open(const std::string& file) { return Database::openReadOnly(fromUtf8(file)); }
    static Database openNamed(const char* name) {
        return open((sg::test::realData() / "mdb" / name).string());
    }

    std::vector<std::string> files_;
};

// What `command` prints; empty when it cannot be run.
std::string outputOf(const std::string& command) {
    std::string output;
    FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) {
        return output;
    }
    std::array<char, 65536> buffer;
    for (size_t got; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        output.append(buffer.data(), got);
    }
    ::pclose(pipe);
    return output;
}

std::string shellQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

std::string hex(std::string_view bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        text += digits[static_cast<uint8_t>(c) >> 4];
        text += digits[c & 15];
    }
    return text;
}

using Line = std::vector<std::string>;

// Lines of comma-separated fields, quoted ones with quotes doubled inside.
std::vector<Line> parseCsv(const std::string& text) {
    std::vector<Line> lines;
    Line line(1);
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted && c == '"' && i + 1 < text.size() && text[i + 1] == '"') {
            line.back() += text[++i];
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && c == ',') {
            line.emplace_back();
        } else if (!quoted && c == '\n') {
            lines.push_back(std::exchange(line, Line(1)));
        } else {
            line.back() += c;
        }
    }
    return lines;
}

// What the other reader prints in full; it ends short binaries at a zero, and knows no type 17.
bool isCompared(const Column& column) {
    return column.type != ColumnType::Binary && static_cast<int>(column.type) != 17;
}

// As the other reader prints a value: texts end at a zero, and identifiers lack the last of their
// hyphens.
struct Printer {
    const Column& column;

    std::string operator()(std::monostate) const { return ""; }
    std::string operator()(bool v) const { return v ? "1" : "0"; }
    template <std::integral T>
    std::string operator()(T v) const {
        return std::to_string(v);
    }
    std::string operator()(const std::wstring& v) const {
        return toUtf8(v.substr(0, v.find(L'\0')));
    }
    std::string operator()(const Bytes& v) const {
        return isCompared(column) ? hex({reinterpret_cast<const char*>(v.data()), v.size()}) : "";
    }
    std::string operator()(const Guid& v) const { return hex(toUtf8(toText(v).erase(24, 1))); }
    std::string operator()(float v) const { return formatted("%.8g", double(v)); }
    std::string operator()(double v) const { return formatted("%.16g", v); }
    std::string operator()(Currency v) const { return toUtf8(toText(v)); }
    std::string operator()(Date v) const { return toUtf8(toText(v)); }
    std::string operator()(const Decimal& v) const { return toUtf8(toText(v)); }

    static std::string formatted(const char* form, double v) {
        char text[64];
        std::snprintf(text, sizeof text, form, v);
        return text;
    }
};

std::string printed(const Column& column, const Value& value) {
    return std::visit(Printer{column}, value);
}

std::vector<Line> ownExport(const Table& table) {
    const auto& columns = table.definition().columns;
    std::vector<Line> lines(1);
    for (const Column& column : columns) {
        lines[0].push_back(toUtf8(column.name));
    }
    RowCursor rows(table);
    while (rows.next()) {
        Line line;
        for (size_t i = 0; i < columns.size(); ++i) {
            line.push_back(printed(columns[i], rows.value(i)));
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

TEST_F(RealFilesTest, EveryTableAgreesWithTheOtherReader) {
    if (outputOf("command -v mdb-export").empty()) {
        GTEST_SKIP() << "mdb-export is not installed";
    }
    for (const std::string& file : files_) {
        const Database db = open(file);
        for (const std::wstring& name : db.tables(true)) {
            const Table table = db.table(name);
            std::vector<Line> ours = ownExport(table);
            std::vector<Line> theirs =
                parseCsv(outputOf("mdb-export -D '%Y-%m-%d' -T '%Y-%m-%d %H:%M:%S' -b hex " +
                                  shellQuoted(file) + " " + shellQuoted(toUtf8(name))));
            const auto& columns = table.definition().columns;
            for (Line& line : theirs) {
                for (size_t i = 0; i < line.size() && &line != &theirs[0]; ++i) {
                    line[i] = isCompared(columns[i]) ? line[i] : "";
                }
            }
            // The other reader gives a row that overflowed where its bytes are.
            std::sort(ours.begin() + 1, ours.end());
            std::sort(theirs.begin() + 1, theirs.end());
            EXPECT_EQ(ours, theirs) << file << " " << toUtf8(name);
        }
    }
}

TEST_F(RealFilesTest, NothingIsDamagedAndRowsAreAsManyAsTheDefinitionsSay) {
    for (const std::string& file : files_) {
        const Database db = open(file);
        EXPECT_TRUE(db.catalogDamage().empty()) << file;
        std::vector<Error> damage;
        for (const Relation& relation : db.relations(&damage)) {
            EXPECT_NO_THROW(db.table(relation.table)) << file;
            EXPECT_FALSE(relation.columns.empty()) << file;
        }
        EXPECT_TRUE(damage.empty()) << file;
        for (const std::wstring& name : db.tables()) {
            const Table table = db.table(name);
            RowCursor rows(table);
            uint32_t count = 0;
            while (rows.next()) {
                ++count;
            }
            EXPECT_EQ(count, table.rowCount()) << file << " " << toUtf8(name);
        }
        for (const CatalogObject& object : db.objects()) {
            EXPECT_NO_THROW(db.properties(object)) << file << " " << toUtf8(object.name);
        }
    }
}

TEST_F(RealFilesTest, StoredQueriesAreWrittenAsTheirProgramShowsThem) {
    const std::pair<const wchar_t*, const wchar_t*> expected[] = {
        {L"SelectQuery",
         L"SELECT DISTINCT Table1.*, Table2.col1, Table2.col2, Table3.col3\r\n"
         L"FROM (Table1 LEFT JOIN Table3 ON Table1.col1 = Table3.col1) INNER JOIN Table2 ON "
         L"(Table3.col1 = Table2.col2) AND (Table3.col1 = Table2.col1)\r\n"
         L"WHERE (((Table2.col2)=\"foo\" Or (Table2.col2) In (\"buzz\",\"bazz\")))\r\n"
         L"ORDER BY Table2.col1;"},
        {L"UpdateQuery",
         L"PARAMETERS [User Name] Text;\r\nUPDATE Table1\r\nSET Table1.col1 = \"foo\", Table1.col2 "
         L"= [Table2].[col3], [Table2].[col1] = [User Name]\r\n"
         L"WHERE ((([Table2].[col1]) Is Not Null));"},
        {L"AppendQuery",
         L"INSERT INTO Table3 (col2, col2, col3)\r\nSELECT [Table1].[col2], [Table2].[col2], "
         L"[Table2].[col3]\r\nFROM Table3, Table1 INNER JOIN Table2 ON "
         L"[Table1].[col1]=[Table2].[col1];"},
        {L"DeleteQuery",
         L"DELETE Table1.col1, Table1.col2, Table1.col3\r\nFROM Table1\r\n"
         L"WHERE (((Table1.col1)>\"blah\"));"},
        {L"MakeTableQuery",
         L"SELECT Max(Table2.col1) AS MaxOfcol1, Table2.col2, Table3.col2 INTO Table4\r\n"
         L"FROM (Table2 INNER JOIN Table1 ON Table2.col1 = Table1.col2) RIGHT JOIN Table3 ON "
         L"Table1.col2 = Table3.col3\r\nGROUP BY Table2.col2, Table3.col2\r\n"
         L"HAVING (((Max(Table2.col1))=\"buzz\") AND ((Table2.col2)<>\"blah\"));"},
        {L"CrosstabQuery",
         L"TRANSFORM Count([Table2].[col2]) AS CountOfcol2\r\n"
         L"SELECT Table2_1.col1, [Table2].[col3], Avg(Table2_1.col2) AS AvgOfcol2\r\n"
         L"FROM (Table1 INNER JOIN Table2 ON [Table1].[col1]=[Table2].[col1]) INNER JOIN Table2 "
         L"AS Table2_1 ON [Table2].[col1]=Table2_1.col3\r\n"
         L"WHERE ((([Table1].[col1])>\"10\") And ((Table2_1.col1) Is Not Null) And "
         L"((Avg(Table2_1.col2))>\"10\"))\r\nGROUP BY Table2_1.col1, [Table2].[col3]\r\n"
         L"ORDER BY [Table2].[col3]\r\nPIVOT [Table1].[col1];"},
        {L"UnionQuery",
         L"Select Table1.col1, Table1.col2\r\nwhere Table1.col1 = \"foo\"\r\nUNION\r\n"
         L"Select Table2.col1, Table2.col2\r\nUNION ALL Select Table3.col1, Table3.col2\r\n"
         L"where Table3.col3 > \"blah\";"},
        {L"PassthroughQuery", L"ALTER TABLE Table4 DROP COLUMN col5;"},
        {L"DataDefinitionQuery", L"CREATE TABLE Table5 (col1 CHAR, col2 CHAR);"},
    };
    const auto queries = openNamed("queryTestV2000.mdb").queries();
    ASSERT_EQ(queries.size(), std::size(expected));
    for (size_t i = 0; i < queries.size(); ++i) {
        EXPECT_EQ(queries[i].name, expected[i].first);
        EXPECT_EQ(queries[i].sql(), expected[i].second);
    }
    for (const std::string& file : files_) {
        for (const Query& query : open(file).queries()) {
            EXPECT_NO_THROW(static_cast<void>(query.sql())) << file << " " << toUtf8(query.name);
        }
    }
}

TEST_F(RealFilesTest, IndexesAndRelationsOfTheTwins) {
    for (const char* name : {"indexTestV1997.mdb", "indexTestV2000.mdb", "indexTestV2007.accdb"}) {
        const Database db = openNamed(name);
        const TableDefinition& table = db.table(L"Table1").definition();
        ASSERT_EQ(table.indexes.size(), 4u) << name;
        ASSERT_NE(table.primaryKey(), nullptr) << name;
        EXPECT_TRUE(table.realOf(*table.primaryKey()).isUnique());
        const LogicalIndex* toTable2 = table.indexByName(L"table2TABLE1");
        ASSERT_NE(toTable2, nullptr) << name;
        EXPECT_TRUE(toTable2->isForeign());
        EXPECT_TRUE(toTable2->cascadeDeletes);
        EXPECT_FALSE(toTable2->cascadeUpdates);
        const TableDefinition& other = db.tableAt(toTable2->relatedTablePage).definition();
        EXPECT_EQ(other.name, L"Table2") << name;
        const auto end = std::find_if(
            other.indexes.begin(), other.indexes.end(),
            [&](const LogicalIndex& index) { return index.number == toTable2->relatedIndex; });
        ASSERT_NE(end, other.indexes.end()) << name;
        EXPECT_EQ(end->relatedTablePage, table.page);
        EXPECT_EQ(end->relatedIndex, toTable2->number);
        EXPECT_EQ(end->relatedType, 1);
        EXPECT_EQ(toTable2->relatedType, 2);
        EXPECT_EQ(other.realOf(*end).rootPage, other.realOf(*other.primaryKey()).rootPage);
        const auto relations = db.relations();
        const auto relation = std::find_if(relations.begin(), relations.end(),
                                           [](const auto& r) { return r.name == L"Table2Table1"; });
        ASSERT_NE(relation, relations.end()) << name;
        EXPECT_EQ(relation->table, L"Table2");
        EXPECT_EQ(relation->foreignTable, L"Table1");
        EXPECT_EQ(relation->flags, relationFlags::cascadeDeletes);
    }
}

TEST_F(RealFilesTest, PropertiesOfTheSampleCompany) {
    const Properties p = openNamed("nwind.mdb").tableProperties(L"Customers");
    EXPECT_EQ(p.text(L"", L"Description"), L"Customers' names, addresses, and phone numbers.");
    EXPECT_EQ(p.text(L"CustomerID", L"Caption"), L"Customer ID");
    EXPECT_TRUE(p.flag(L"CompanyName", L"Required"));
    EXPECT_FALSE(p.flag(L"CompanyName", L"AllowZeroLength"));
}

TEST_F(RealFilesTest, HeadersTellOrderCodePageAndDate) {
    for (const std::string& file : files_) {
        const DatabaseHeader header = open(file).header();
        EXPECT_EQ(header.sortOrder, (SortOrder{0x0409, 0})) << file;
        EXPECT_EQ(header.codePage, 1252) << file;
        EXPECT_EQ(header.created.has_value(), header.version != Version::Jet3) << file;
    }
    EXPECT_EQ(toText(*openNamed("indexTestV2000.mdb").header().created), L"2006-07-29 22:25:51");
}

// Each file with bytes changed at places spread over it; what is thrown is always an Error.
TEST_F(RealFilesTest, SpoiledCopiesAreReadAsFarAsTheyGo) {
    for (const std::string& file : files_) {
        std::ifstream stream(file, std::ios::binary);
        Bytes bytes((std::istreambuf_iterator<char>(stream)), {});
        if (bytes.size() > 300000) {
            continue;
        }
        uint32_t random = 12345;
        for (int round = 0; round < 40; ++round) {
            Bytes spoiled = bytes;
            for (int change = 0; change < 200; ++change) {
                random = random * 1664525 + 1013904223;
                spoiled[random % spoiled.size()] = static_cast<uint8_t>(random >> 24);
            }
            try {
                test::readEverything(spoiled, 20000);
            } catch (const Error&) {
            }
        }
    }
}

}  // namespace
}  // namespace sg::jet
