#include "host/jet/catalog/query.h"

#include <gtest/gtest.h>

namespace sg::jet {
namespace {

namespace attr = queryAttributes;

QueryRow row(uint8_t attribute, std::optional<int> flag = {},
             std::optional<std::wstring> expression = {}, std::optional<std::wstring> name1 = {},
             std::optional<std::wstring> name2 = {}) {
    QueryRow row;
    row.attribute = attribute;
    if (flag) {
        row.flag = static_cast<int16_t>(*flag);
    }
    row.expression = std::move(expression);
    row.name1 = std::move(name1);
    row.name2 = std::move(name2);
    return row;
}

QueryRow table(const wchar_t* name, std::optional<std::wstring> alias = {}) {
    return row(attr::table, {}, {}, name, std::move(alias));
}

QueryRow column(const wchar_t* expression, std::optional<std::wstring> alias = {}, int flag = 0) {
    return row(attr::column, flag, expression, std::move(alias));
}

QueryRow kind(QueryKind kind) {
    return row(attr::kind, static_cast<int>(kind));
}

TEST(QuerySqlTest, StatementsOfEveryKind) {
    const auto remoteTarget = [](QueryKind k) {
        return row(attr::kind, static_cast<int>(k), L"dBASE IV;", L"Out put", L"c:\\x");
    };
    QueryRow parameter = row(attr::parameter, 10, {}, L"From day");
    parameter.extra = 40;
    struct Case {
        std::vector<QueryRow> rows;
        std::wstring sql;
    };
    const Case cases[] = {
        {{kind(QueryKind::Select), row(attr::options, 1), table(L"Rooms")},
         L"SELECT *\r\nFROM Rooms;"},
        {{kind(QueryKind::Select), row(attr::options, 2 | 16 | 32, {}, L"5"), table(L"Rooms"),
          column(L"A"), column(L"B+1", L"the sum")},
         L"SELECT DISTINCT TOP 5 PERCENT A, B+1 AS [the sum]\r\nFROM Rooms;"},
        {{kind(QueryKind::Select), row(attr::options, 8 | 4), parameter,
          row(attr::parameter, 8, {}, L"Till"), column(L"1")},
         L"PARAMETERS [From day] Text (40), Till DateTime;\r\nSELECT DISTINCTROW 1\r\n"
         L"WITH OWNERACCESS OPTION;"},
        {{kind(QueryKind::Select), table(L"A"), table(L"B c", L"x"), column(L"*"),
          row(attr::where, {}, L"A.i=1"), row(attr::groupBy, {}, L"A.i"),
          row(attr::having, {}, L"Count(*)>1"), row(attr::orderBy, {}, L"A.i", L"D"),
          row(attr::orderBy, {}, L"A.j")},
         L"SELECT *\r\nFROM A, [B c] AS x\r\nWHERE A.i=1\r\nGROUP BY A.i\r\nHAVING "
         L"Count(*)>1\r\nORDER BY A.i DESC, A.j;"},
        {{kind(QueryKind::Select), table(L"Order", L"2nd"), table(L"Orders"), column(L"*")},
         L"SELECT *\r\nFROM [Order] AS [2nd], Orders;"},
        {{kind(QueryKind::Select), row(attr::remote, {}, L"dBASE IV;", L"d:\\"), table(L"A"),
          column(L"*")},
         L"SELECT *\r\nFROM A IN 'd:\\' [dBASE IV;];"},
        {{kind(QueryKind::Select), row(attr::parameter, 0, {}, L"Forms!My form!Day"),
          row(attr::remote, {}, {}, L"it's"), table(L"A"), column(L"*")},
         L"PARAMETERS Forms![My form]!Day Value;\r\nSELECT *\r\nFROM A IN 'it''s';"},
        {{kind(QueryKind::Select), row(attr::table, {}, L"SELECT [a b] FROM A", {}, L"x y"),
          column(L"*")},
         L"SELECT *\r\nFROM (SELECT [a b] FROM A) AS [x y];"},
        {{row(attr::kind, 3, {}, L"T"), table(L"A"), row(attr::column, 0, L"*", {}, L"a"),
          row(attr::column, 0, {}, {}, L"b")},
         L"INSERT INTO T (a, b)\r\nSELECT *\r\nFROM A;"},
        {{kind(QueryKind::Select), row(attr::table, {}, L"c:\\far.mdb", L"A"), column(L"*")},
         L"SELECT *\r\nFROM [c:\\far.mdb].A;"},
        {{remoteTarget(QueryKind::MakeTable), table(L"A"), column(L"i")},
         L"SELECT i INTO [Out put] IN 'c:\\x' [dBASE IV;]\r\nFROM A;"},
        {{row(attr::kind, 3, {}, L"T"), row(attr::column, 0x8000, L"1", {}, L"a"),
          row(attr::column, 0x8000, L"\"x\"", {}, L"b b")},
         L"INSERT INTO T (a, [b b])\r\nVALUES (1, \"x\");"},
        {{kind(QueryKind::Update), table(L"A"), row(attr::column, 0, L"i+1", {}, L"A.i"),
          row(attr::where, {}, L"i<3")},
         L"UPDATE A\r\nSET A.i = i+1\r\nWHERE i<3;"},
        {{kind(QueryKind::Delete), table(L"A"), column(L"A.*"), row(attr::where, {}, L"i<3")},
         L"DELETE A.*\r\nFROM A\r\nWHERE i<3;"},
        {{kind(QueryKind::DataDefinition), row(attr::kind, 7)}, L""},
        {{row(attr::kind, 8, std::wstring(L"exec it;\r\n\0", 11))}, L"exec it;"},
        {{kind(QueryKind::Union), row(attr::options, 3),
          row(attr::table, {}, L"SELECT a FROM A\r\n", {}, L"X1"),
          row(attr::table, {}, L"SELECT b FROM B", {}, L"X2"), row(attr::orderBy, {}, L"a")},
         L"SELECT a FROM A\r\nUNION SELECT b FROM B\r\nORDER BY a;"},
    };
    for (const Case& c : cases) {
        const Query query{L"Q", 1, 0, c.rows};
        EXPECT_EQ(query.sql(), c.sql);
    }
}

TEST(QuerySqlTest, JoinsNestAndShareTheirConditions) {
    const auto join = [](const wchar_t* a, const wchar_t* b, int flag, const wchar_t* on) {
        return row(attr::join, flag, on, a, b);
    };
    struct Case {
        std::vector<QueryRow> joins;
        std::wstring from;
    };
    const Case cases[] = {
        {{join(L"A", L"B", 1, L"x")}, L"A INNER JOIN B ON x, C, D"},
        {{join(L"A", L"B", 2, L"x"), join(L"C", L"D", 3, L"y")},
         L"A LEFT JOIN B ON x, C RIGHT JOIN D ON y"},
        {{join(L"A", L"B", 1, L"x"), join(L"A", L"B", 1, L"y"), join(L"a", L"b", 1, L"z")},
         L"A INNER JOIN B ON (z) AND (y) AND (x), C, D"},
        {{join(L"A", L"B", 1, L"x"), join(L"C", L"D", 1, L"y"), join(L"D", L"A", 2, L"z"),
          join(L"A", L"B", 1, L"w")},
         L"(C INNER JOIN D ON y) LEFT JOIN (A INNER JOIN B ON (w) AND (x)) ON z"},
        {{join(L"Other one", L"A", 1, L"x")}, L"[Other one] INNER JOIN A ON x, B, C, D"},
    };
    for (const Case& c : cases) {
        Query query{L"Q", 1, 0, {table(L"A"), table(L"B"), table(L"C"), table(L"D"), column(L"*")}};
        query.rows.insert(query.rows.end(), c.joins.begin(), c.joins.end());
        EXPECT_EQ(query.sql(), L"SELECT *\r\nFROM " + c.from + L";");
    }
    for (const auto& wrong :
         {std::vector{join(L"A", L"B", 4, L"x")}, std::vector{join(L"A", L"A", 1, L"x")},
          std::vector{join(L"A", L"B", 1, L"x"), join(L"A", L"B", 2, L"y")},
          std::vector(101, join(L"A", L"B", 1, L"x"))}) {
        Query query{L"Q", 1, 0, {table(L"A"), table(L"B"), column(L"*")}};
        query.rows.insert(query.rows.end(), wrong.begin(), wrong.end());
        EXPECT_THROW(query.sql(), Error);
    }
}

TEST(QuerySqlTest, WhatDescribesNoStatementIsDamaged) {
    const std::vector<QueryRow> damaged[] = {
        {row(attr::kind, 10)},
        {kind(QueryKind::MakeTable), column(L"a")},
        {kind(QueryKind::Append), column(L"a")},
        {kind(QueryKind::Select), row(attr::parameter, 99, {}, L"p")},
    };
    for (const auto& rows : damaged) {
        try {
            static_cast<void>(Query{L"My query", 1, 0, rows}.sql());
            ADD_FAILURE();
        } catch (const Error& error) {
            EXPECT_EQ(error.text(), L"Query 'My query' is corrupt.");
        }
    }
}

TEST(QuerySqlTest, TheCatalogTellsTheKindWhereNoRowDoes) {
    const std::pair<uint32_t, QueryKind> kinds[] = {
        {0, QueryKind::Select},     {8, QueryKind::Select},          {16, QueryKind::Crosstab},
        {32, QueryKind::Delete},    {48, QueryKind::Update},         {64, QueryKind::Append},
        {80, QueryKind::MakeTable}, {96, QueryKind::DataDefinition}, {112, QueryKind::PassThrough},
        {128, QueryKind::Union},    {240, QueryKind::Unknown},
    };
    for (const auto& [flags, expected] : kinds) {
        EXPECT_EQ((Query{L"Q", 1, flags, {}}.kind()), expected) << flags;
    }
    EXPECT_EQ((Query{L"Q", 1, 48, {kind(QueryKind::Delete)}}.kind()), QueryKind::Delete);
}

TEST(QuerySqlTest, RowsAreSortedByAttributeAndOrder) {
    std::vector<QueryRow> rows = {column(L"b"), kind(QueryKind::Select), column(L"a"),
                                  column(L"c")};
    rows[0].order = {0, 0, 0, 2};
    rows[2].order = {0, 0, 0, 1};
    rows[3].order = {0, 0, 1};
    sortQueryRows(rows);
    EXPECT_EQ(rows[0].attribute, attr::kind);
    EXPECT_EQ(rows[1].expression, L"a");
    EXPECT_EQ(rows[2].expression, L"b");
    EXPECT_EQ(rows[3].expression, L"c");
}

}  // namespace
}  // namespace sg::jet
