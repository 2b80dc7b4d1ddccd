#include "host/sql/stored/query_form.h"

#include "host/sql/parse_cases.h"

namespace sg::sql {
namespace {

namespace attr = jet::queryAttributes;

jet::Query kept(std::wstring_view text) {
    const QueryForm form = queryForm(parseStatement(text), text);
    return {L"Q", 1, jet::catalogFlags(form.kind), form.rows};
}

int codeOf(std::wstring_view text) {
    try {
        kept(text);
        return 0;
    } catch (const jet::Error& error) {
        return error.code();
    }
}

// The rows of an attribute as "name1|name2|expression|flag; ...".
std::string rowsOf(const jet::Query& query, uint8_t attribute) {
    std::wstring all;
    for (const jet::QueryRow& row : query.rows) {
        if (row.attribute == attribute) {
            all += (all.empty() ? L"" : L"; ") + row.name1.value_or(L"") + L"|" +
                   row.name2.value_or(L"") + L"|" + row.expression.value_or(L"") + L"|" +
                   (row.flag ? std::to_wstring(*row.flag) : L"");
        }
    }
    return toUtf8(all);
}

TEST(QueryForm, MeansTheSame) {
    const wchar_t* const same[] = {
        L"SELECT * FROM Rooms",
        L"SELECT *, Rooms.* FROM Rooms",
        L"SELECT a, *, b FROM Rooms",
        L"SELECT DISTINCT TOP 5 PERCENT a AS [the a], b + 1 FROM [My rooms] AS r ORDER BY a DESC, "
        L"2",
        L"SELECT DISTINCTROW a FROM t WITH OWNERACCESS OPTION",
        L"SELECT 1",
        L"SELECT a FROM t WHERE (a > 1 AND b) OR c Like \"x*\" GROUP BY a, b + 1 HAVING Count(*) > "
        L"2",
        L"SELECT a FROM [c:\\x.mdb].t AS u, [;DATABASE=c:\\y.mdb].v",
        L"SELECT a FROM t IN 'it''s here' [dBASE IV;]",
        L"SELECT a FROM t IN '' [dBASE IV;]",
        L"SELECT a FROM t IN 'c:\\x.mdb'",
        L"SELECT a FROM [Select]",
        L"PARAMETERS p Long, [from day] DateTime, w Text(30), v Value; SELECT p FROM t",
        // joins
        L"SELECT * FROM a INNER JOIN b ON a.i = b.i",
        L"SELECT * FROM a LEFT JOIN b ON (a.i = b.i) AND (a.j = b.j) AND a.k > b.k",
        L"SELECT * FROM a RIGHT JOIN b ON a.i = b.i Or a.j = b.j",
        L"SELECT * FROM a INNER JOIN b ON (a.i = b.i AND a.j = 3) AND (b.k = 1 OR b.k Is Null)",
        L"SELECT * FROM a INNER JOIN b ON a.i = b.i AND (a.j = b.j AND a.k = b.k)",
        L"SELECT * FROM (a LEFT JOIN b ON a.i = b.i) INNER JOIN c ON b.i = c.i AND a.j = c.j",
        L"SELECT * FROM a INNER JOIN (b INNER JOIN c ON b.i = c.i) ON a.i = c.i",
        L"SELECT * FROM (a INNER JOIN b ON a.i = b.i) LEFT JOIN (c RIGHT JOIN d ON c.i = d.i) ON "
        L"d.j = b.j",
        L"SELECT * FROM x, a AS [x y] INNER JOIN a ON a.i = [x y].up, z",
        L"SELECT * FROM a INNER JOIN b ON i = j",
        // queries in place of tables
        L"SELECT * FROM (SELECT [a b] FROM t WHERE a = ']') AS d INNER JOIN u ON d.i = u.i",
        L"SELECT * FROM (SELECT a FROM t UNION SELECT b FROM u) AS d, (TABLE t) AS e",
        L"SELECT a FROM t WHERE a IN (SELECT b FROM u ORDER BY b) AND EXISTS (SELECT * FROM v)",
        // unions
        L"SELECT a FROM t UNION SELECT b FROM u",
        L"SELECT a FROM t UNION ALL SELECT b FROM u UNION SELECT c FROM v UNION ALL TABLE w",
        L"(SELECT a FROM t ORDER BY a) UNION (SELECT b FROM u UNION ALL SELECT c FROM v) ORDER BY "
        L"1",
        L"SELECT a FROM t UNION SELECT b FROM u ORDER BY a, b DESC",
        L"PARAMETERS p Long; TABLE t UNION ALL TABLE u ORDER BY 1 DESC",
        // crosstabs
        L"TRANSFORM Sum(a) AS s SELECT b, c AS d FROM t INNER JOIN u ON t.i = u.i WHERE e GROUP BY "
        L"b, c ORDER BY b PIVOT f",
        L"TRANSFORM First(a) SELECT b FROM t GROUP BY b PIVOT \"Q\" & f IN ('Q1', \"Q2\", 3)",
        L"TRANSFORM First(a) SELECT b FROM t GROUP BY b PIVOT (f IN (1, 2))",
        // actions
        L"INSERT INTO t VALUES (1, 'x', Null)",
        L"INSERT INTO [My table] (a, [b c]) VALUES (1, [which?])",
        L"INSERT INTO t (a, b) IN 'c:\\x' [dBASE IV;] SELECT x, y AS z FROM u WHERE x > 1",
        L"INSERT INTO t SELECT DISTINCT TOP 3 * FROM u, v ORDER BY 1",
        L"INSERT INTO t (a, b) SELECT * FROM u",
        L"INSERT INTO t (a, b, c) SELECT x, u.* FROM u",
        L"UPDATE t SET a = 1, [t].[b c] = [b c] & 'x', u.d = Null WHERE a < 2",
        L"UPDATE t INNER JOIN u ON t.i = u.i SET t.a = u.a",
        L"PARAMETERS p Text; UPDATE t SET a = p",
        L"DELETE FROM t",
        L"DELETE * FROM t WHERE a",
        L"DELETE DISTINCTROW t.* FROM t INNER JOIN u ON t.i = u.i WHERE u.a = 1",
        L"SELECT a, Max(b) AS m INTO [New one] IN 'c:\\x.mdb' FROM t GROUP BY a",
        // what is kept whole
        L"CREATE TABLE t (a LONG, b TEXT(20) NOT NULL)",
        L"PARAMETERS p Long; EXECUTE q p, 2",
        L"DROP INDEX i ON t",
    };
    for (const wchar_t* text : same) {
        const jet::Query query = kept(text);
        EXPECT_EQ(parsed(query.sql(), Parentheses::All), parsed(text, Parentheses::All))
            << toUtf8(text) << "\n"
            << toUtf8(query.sql());
        // And once more, from the text that was made: the same rows.
        const jet::Query again = kept(query.sql());
        EXPECT_EQ(query.kind(), again.kind());
        for (int attribute = 0; attribute < 256; ++attribute) {
            if (attribute != attr::kind) {
                EXPECT_EQ(rowsOf(again, static_cast<uint8_t>(attribute)),
                          rowsOf(query, static_cast<uint8_t>(attribute)))
                    << toUtf8(text);
            }
        }
    }
}

// What the form has no place for.
TEST(QueryForm, MeansTheSameInOtherWords) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"TABLE t", "SELECT * FROM t"},
        {L"SELECT * FROM (SELECT a FROM t), [SELECT b FROM u].",
         "SELECT * FROM (SELECT a FROM t) AS [%$##@_Alias], (SELECT b FROM u) AS [%$##@_Alias2]"},
        {L"INSERT INTO [c:\\x.mdb].t VALUES (1)", "INSERT INTO t IN \"c:\\x.mdb\" VALUES (1)"},
        {L"SELECT a INTO [;DATABASE=c:\\x.mdb].t FROM u",
         "SELECT a INTO t IN \"\" [;DATABASE=c:\\x.mdb] FROM u"},
        {L"INSERT INTO t (a, b) SELECT x, y FROM u UNION SELECT z, 1 FROM v",
         "INSERT INTO t (a, b) SELECT * FROM (SELECT x, y FROM u UNION SELECT z, 1 FROM v) AS "
         "[%$##@_Alias]"},
        {L"INSERT INTO t TABLE u", "INSERT INTO t SELECT * FROM (TABLE u) AS [%$##@_Alias]"},
        {L"PARAMETERS a Counter, b Char(3), c VarBinary(9), d Decimal(5, 2); SELECT a",
         "PARAMETERS a LONG, b TEXT(3), c BINARY(9), d DECIMAL; SELECT a"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(parsed(kept(text).sql()), expected);
    }
}

TEST(QueryForm, Rows) {
    const jet::Query select = kept(
        L"PARAMETERS [Forms]![Main]![the day] DateTime; SELECT a.*, (b.j+1) AS k, * FROM (a LEFT "
        L"JOIN b AS [b b] ON ((a.i = [b b].i)) AND (a.k=3)) RIGHT JOIN c ON c.i=a.i WHERE (a.i > "
        L"0)");
    EXPECT_EQ(rowsOf(select, attr::start), "|||0");
    EXPECT_EQ(rowsOf(select, attr::kind), "|||1");
    EXPECT_EQ(rowsOf(select, attr::parameter), "Forms!Main!the day|||8");
    EXPECT_EQ(rowsOf(select, attr::options), "|||1");
    EXPECT_EQ(rowsOf(select, attr::table), "a|||; b|b b||; c|||");
    EXPECT_EQ(rowsOf(select, attr::column), "||a.*|0; k||(b.j+1)|0");
    EXPECT_EQ(rowsOf(select, attr::join), "a|b b|a.k=3|2; a|b b|a.i = [b b].i|2; a|c|c.i=a.i|3");
    EXPECT_EQ(rowsOf(select, attr::where), "||(a.i > 0)|");
    EXPECT_EQ(rowsOf(select, attr::end), "|||");

    const jet::Query cross = kept(
        L"TRANSFORM Sum(v) AS s SELECT a FROM t GROUP BY a ORDER BY a DESC PIVOT b IN ( 1,2 )");
    EXPECT_EQ(rowsOf(cross, attr::column), "s||Sum(v)|0; ||a|2; ||b In (1,2)|1");
    EXPECT_EQ(rowsOf(cross, attr::groupBy), "||a|2; ||b|1");
    EXPECT_EQ(rowsOf(cross, attr::orderBy), "D||a|");

    const jet::Query append = kept(L"INSERT INTO [My t] (a, t.[b c]) IN 'x.mdb' VALUES (1, \"y\")");
    EXPECT_EQ(rowsOf(append, attr::kind), "My t|x.mdb||3");
    EXPECT_EQ(rowsOf(append, attr::column), "|a|1|-32768; |t.[b c]|\"y\"|-32768");

    const jet::Query united =
        kept(L"SELECT a FROM t UNION ALL SELECT b FROM u UNION TABLE v ORDER BY a");
    EXPECT_EQ(rowsOf(united, attr::options), "|||3");
    EXPECT_EQ(rowsOf(united, attr::table),
              "|X7YZ_____1|SELECT a FROM t UNION ALL SELECT b FROM u|; |X7YZ_____2|TABLE v|");
    EXPECT_EQ(rowsOf(united, attr::orderBy), "||a|");
}

TEST(QueryForm, WhatCannotBeKept) {
    EXPECT_EQ(codeOf(L"SELECT * FROM a INNER JOIN A ON i = j"), jet::ObjectExists);
    const std::wstring many = L"SELECT * FROM a INNER JOIN b ON a.i = b.i";
    EXPECT_EQ(codeOf(many + repeated(L" AND a.i = b.i", 99)), 0);
    EXPECT_EQ(codeOf(many + repeated(L" AND a.i = b.i", 100)), 3360);
}

}  // namespace
}  // namespace sg::sql
