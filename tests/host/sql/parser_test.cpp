#include "host/sql/parser.h"

#include <gtest/gtest.h>

#include "host/sql/parse_cases.h"

namespace sg::sql {
namespace {

TEST(SqlParser, Select) {
    checkStatements({
        {L"SELECT 1", ""},
        {L"select a, b as c, t.*, * from t;", "SELECT a, b AS c, t.*, * FROM t"},
        {L"SELECT ALL [first name], [a b].[c d] FROM [a b]",
         "SELECT [first name], [a b].[c d] FROM [a b]"},
        {L"SELECT DISTINCT a FROM t", ""},
        {L"SELECT DISTINCTROW TOP 10 PERCENT a FROM t", ""},
        {L"SELECT TOP 5 * FROM t ORDER BY a DESC, b ASC, 3, a + b",
         "SELECT TOP 5 * FROM t ORDER BY a DESC, b, 3, a + b"},
        {L"SELECT top, [top] FROM t", "SELECT [top], [top] FROM t"},
        {L"SELECT [top], [percent] FROM t", ""},
        {L"SELECT a FROM t WHERE a = 1 GROUP BY a, b + 1 HAVING Count(*) > 1 ORDER BY Sum(c)", ""},
        {L"SELECT a INTO u IN \"x.mdb\" FROM t WITH OWNERACCESS OPTION", ""},
        {L"SELECT a INTO [x.mdb].u FROM t", ""},
        {L"TABLE [my table]", ""},
        {L"SELECT date, name, value, level, index, key, password FROM [table]",
         "SELECT date, name, value, level, [index], key, password FROM [table]"},
        {L"SELECT (a + b) AS c, -(d) FROM t", "SELECT a + b AS c, -d FROM t"},
        {L"PARAMETERS [from] DateTime, n Long, v Value, s Text ( 50 ); SELECT [from]",
         "PARAMETERS [from] DATETIME, n LONG, v VALUE, s TEXT(50); SELECT [from]"},
        {L"PARAMETERS [Forms]![Main]![No] IEEEDouble; SELECT 1;\r\n",
         "PARAMETERS Forms.Main.[No] DOUBLE; SELECT 1"},
    });
}

TEST(SqlParser, Sources) {
    checkStatements({
        {L"SELECT * FROM a, b AS c, d e", "SELECT * FROM a, b AS c, d AS e"},
        {L"SELECT * FROM a INNER JOIN b ON a.x = b.x", ""},
        {L"SELECT * FROM a LEFT OUTER JOIN b ON a.x = b.x AND a.y = b.y, c",
         "SELECT * FROM a LEFT JOIN b ON a.x = b.x And a.y = b.y, c"},
        {L"SELECT * FROM (a AS x RIGHT JOIN b ON x.i = b.i) INNER JOIN c ON (b.i = c.i)",
         "SELECT * FROM (a AS x RIGHT JOIN b ON x.i = b.i) INNER JOIN c ON b.i = c.i"},
        {L"SELECT * FROM a INNER JOIN b ON a.x = b.x LEFT JOIN c ON c.x = LEFT(b.x, 2)",
         "SELECT * FROM (a INNER JOIN b ON a.x = b.x) LEFT JOIN c ON c.x = LEFT(b.x, 2)"},
        {L"SELECT * FROM a INNER JOIN (b INNER JOIN c ON b.x = c.x) ON a.x = b.x", ""},
        {L"SELECT * FROM a INNER JOIN b LEFT JOIN c ON b.x = c.x ON a.x = b.x",
         "SELECT * FROM a INNER JOIN (b LEFT JOIN c ON b.x = c.x) ON a.x = b.x"},
        {L"SELECT * FROM ((a) x INNER JOIN (b) ON x.i = b.i)",
         "SELECT * FROM a AS x INNER JOIN b ON x.i = b.i"},
        {L"SELECT * FROM (SELECT a FROM t) AS d INNER JOIN u ON d.a = u.a", ""},
        {L"SELECT * FROM [SELECT a FROM t WHERE b = 'x' & [c d]]. AS d WHERE a = 1",
         "SELECT * FROM (SELECT a FROM t WHERE b = \"x\" & [c d]) AS d WHERE a = 1"},
        {L"SELECT * FROM [(SELECT a FROM [SELECT b FROM t]. AS x)] AS d, [select]",
         "SELECT * FROM (SELECT a FROM (SELECT b FROM t) AS x) AS d, [select]"},
        {L"SELECT * FROM (SELECT a FROM t UNION ALL SELECT b FROM u ORDER BY 1) d",
         "SELECT * FROM (SELECT a FROM t UNION ALL SELECT b FROM u ORDER BY 1) AS d"},
        {L"SELECT * FROM ((SELECT a FROM t) UNION (SELECT b FROM u)) AS d",
         "SELECT * FROM (SELECT a FROM t UNION SELECT b FROM u) AS d"},
        {L"SELECT * FROM ((SELECT a FROM t)) d", "SELECT * FROM (SELECT a FROM t) AS d"},
        {L"SELECT * FROM t IN 'C:\\x.mdb' WHERE a = 1",
         "SELECT * FROM t IN \"C:\\x.mdb\" WHERE a = 1"},
        {L"SELECT * FROM t IN \"\" [;DATABASE=x.mdb;PWD=y]", ""},
        {L"SELECT * FROM t IN '' ';DATABASE=[x].mdb'",
         "SELECT * FROM t IN \"\" \";DATABASE=[x].mdb\""},
        {L"SELECT * FROM a INNER JOIN b ON a.x = b.x IN 'f.mdb'",
         "SELECT * FROM a INNER JOIN b ON a.x = b.x IN \"f.mdb\""},
        {L"SELECT * FROM [C:\\x y.mdb].t, [;DATABASE=x.mdb].[u v] w",
         "SELECT * FROM [C:\\x y.mdb].t, [;DATABASE=x.mdb].[u v] AS w"},
    });
}

TEST(SqlParser, Unions) {
    checkStatements({
        {L"SELECT a FROM t UNION SELECT b FROM u UNION ALL TABLE v ORDER BY a", ""},
        {L"(SELECT a FROM t) UNION ALL (SELECT b FROM u) ORDER BY 1",
         "SELECT a FROM t UNION ALL SELECT b FROM u ORDER BY 1"},
        {L"SELECT a FROM t UNION (SELECT b FROM u UNION ALL SELECT c FROM v)", ""},
        {L"(SELECT TOP 1 a FROM t ORDER BY a) UNION (SELECT TOP 1 b FROM u ORDER BY b)", ""},
        {L"SELECT TOP 1 a FROM t ORDER BY a UNION SELECT b FROM u ORDER BY 1",
         "(SELECT TOP 1 a FROM t ORDER BY a) UNION SELECT b FROM u ORDER BY 1"},
        {L"((SELECT a FROM t UNION SELECT b FROM u) UNION ALL SELECT c FROM v)",
         "(SELECT a FROM t UNION SELECT b FROM u) UNION ALL SELECT c FROM v"},
    });
}

TEST(SqlParser, Crosstabs) {
    checkStatements({
        {L"TRANSFORM Sum(a) AS s SELECT b FROM t GROUP BY b PIVOT c", ""},
        {L"TRANSFORM Sum(a) SELECT b FROM t GROUP BY b ORDER BY b PIVOT Format(d, 'mmm') "
         L"In ('Jan', 'Feb', -1)",
         "TRANSFORM Sum(a) SELECT b FROM t GROUP BY b ORDER BY b PIVOT Format(d, \"mmm\") IN "
         "(\"Jan\", \"Feb\", -1)"},
        {L"TRANSFORM Sum(a) SELECT b FROM t GROUP BY b PIVOT (c In (1))", ""},
        {L"TRANSFORM Sum(a) SELECT b FROM t GROUP BY b PIVOT (c Or d) In (1, 2)",
         "TRANSFORM Sum(a) SELECT b FROM t GROUP BY b PIVOT (c Or d) IN (1, 2)"},
    });
}

TEST(SqlParser, Actions) {
    checkStatements({
        {L"insert into t(a, [b c]) values (1, 'x')", "INSERT INTO t (a, [b c]) VALUES (1, \"x\")"},
        {L"INSERT INTO t VALUES (Null, Now())", ""},
        {L"INSERT INTO t (t.a) SELECT b FROM u", ""},
        {L"INSERT INTO t IN 'f.mdb' (a) VALUES (1)", "INSERT INTO t (a) IN \"f.mdb\" VALUES (1)"},
        {L"INSERT INTO t (a) IN 'f.mdb' SELECT 1", "INSERT INTO t (a) IN \"f.mdb\" SELECT 1"},
        {L"INSERT INTO t (SELECT a FROM u)", "INSERT INTO t SELECT a FROM u"},
        {L"insert into tblLayerKey(ixLayerSystem, ixLayer, sKey) select 7, ixLayer, sKey from "
         L"tblLayerKey where ixLayerSystem = 3",
         "INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) SELECT 7, ixLayer, sKey FROM "
         "tblLayerKey WHERE ixLayerSystem = 3"},
        {L"UPDATE t SET a = 1, t.b = b & 'x', [c d]=NULL WHERE e IN (1)",
         "UPDATE t SET a = 1, t.b = b & \"x\", [c d] = Null WHERE e In (1)"},
        {L"UPDATE a INNER JOIN b ON a.x = b.x SET a.y = b.y, a.z = (SELECT Max(c) FROM t)", ""},
        {L"UPDATE t IN 'f.mdb' SET a = b = c", "UPDATE t IN \"f.mdb\" SET a = b = c"},
        {L"DELETE FROM t", ""},
        {L"DELETE * FROM t WHERE a = 1", ""},
        {L"DELETE DISTINCTROW t.* FROM t INNER JOIN u ON t.a = u.a", ""},
        {L"DELETE t.a, b FROM t WHERE Exists (SELECT 1 FROM u WHERE u.a = t.a)", ""},
        {L"delete from tblLayer where ixLayer not in (select ixLayer from tblLayerKey)",
         "DELETE FROM tblLayer WHERE ixLayer Not In (SELECT ixLayer FROM tblLayerKey)"},
        {L"EXEC p", "EXECUTE p"},
        {L"EXECUTE [my query] 1, 'x', -2 + 3", "EXECUTE [my query] 1, \"x\", -2 + 3"},
    });
}

TEST(SqlParser, TypesAndTheirSynonyms) {
    struct Case {
        const wchar_t* words;
        const char* type;
    };
    const Case cases[] = {
        {L"BIT YESNO LOGICAL BOOLEAN", "BIT"},
        {L"BYTE TINYINT INTEGER1", "BYTE"},
        {L"SHORT SMALLINT INTEGER2", "SHORT"},
        {L"LONG INTEGER INT INTEGER4", "LONG"},
        {L"COUNTER AUTOINCREMENT IDENTITY COUNTER(1) IDENTITY(1,1)", "COUNTER"},
        {L"IDENTITY(-5,10)", "COUNTER(-5, 10)"},
        {L"SINGLE REAL FLOAT4 IEEESingle", "SINGLE"},
        {L"DOUBLE FLOAT NUMBER FLOAT8 IEEEDouble", "DOUBLE"},
        {L"CURRENCY MONEY", "CURRENCY"},
        {L"DECIMAL NUMERIC DEC", "DECIMAL"},
        {L"NUMERIC(10,2)", "DECIMAL(10, 2)"},
        {L"DECIMAL(10)", "DECIMAL(10)"},
        {L"DATETIME DATE TIME TIMESTAMP", "DATETIME"},
        {L"TEXT VARCHAR STRING ALPHANUMERIC", "TEXT"},
        {L"TEXT(20) VARCHAR(20)", "TEXT(20)"},
        {L"CHAR(3) CHARACTER(3) NCHAR(3)", "CHAR(3)"},
        {L"MEMO LONGTEXT NOTE LONGCHAR", "MEMO"},
        {L"BINARY(16)", "BINARY(16)"},
        {L"VARBINARY(16)", "VARBINARY(16)"},
        {L"LONGBINARY OLEOBJECT IMAGE GENERAL", "LONGBINARY"},
        {L"GUID UNIQUEIDENTIFIER", "GUID"},
    };
    for (const Case& c : cases) {
        std::wstring words = c.words;
        while (!words.empty()) {
            const size_t end = std::min(words.find(L' '), words.size());
            EXPECT_EQ(parsed(L"CREATE TABLE t (a " + words.substr(0, end) + L")"),
                      std::string("CREATE TABLE t (a ") + c.type + ")");
            words.erase(0, end + 1);
        }
    }
    EXPECT_EQ(parsed(L"CREATE TABLE t (a NATIONAL CHARACTER VARYING(9), b BIT VARYING, c DOUBLE "
                     L"PRECISION)"),
              "CREATE TABLE t (a TEXT(9), b VARBINARY, c DOUBLE)");
    for (const wchar_t* wrong :
         {L"", L"BLOB", L"[TEXT]", L"LONG(5)", L"TEXT(0)", L"TEXT('x')", L"TEXT(5, 5)", L"TEXT()",
          L"DECIMAL(5, -1)", L"COUNTER(&H80000000)", L"NATIONAL TEXT"}) {
        EXPECT_EQ(parsed(std::wstring(L"CREATE TABLE t (a ") + wrong + L")"),
                  "error 3292 Syntax error in field definition.")
            << toUtf8(wrong);
    }
}

TEST(SqlParser, Definitions) {
    checkStatements({
        {L"CREATE TABLE t (id COUNTER CONSTRAINT pk PRIMARY KEY, a TEXT(50) NOT NULL DEFAULT 'x', "
         L"b MEMO WITH COMPRESSION, c LONG UNIQUE, Level LONG NULL)",
         "CREATE TABLE t (id COUNTER CONSTRAINT pk PRIMARY KEY, a TEXT(50) NOT NULL DEFAULT \"x\", "
         "b MEMO WITH COMPRESSION, c LONG UNIQUE, Level LONG)"},
        {L"CREATE TABLE t (a LONG DEFAULT -1 NOT NULL, b DATETIME DEFAULT Now() PRIMARY KEY)",
         "CREATE TABLE t (a LONG NOT NULL DEFAULT -1, b DATETIME DEFAULT Now() PRIMARY KEY)"},
        {L"CREATE TABLE t (a LONG REFERENCES u ON DELETE CASCADE ON UPDATE CASCADE, b LONG "
         L"CONSTRAINT r REFERENCES v (c) ON DELETE SET NULL)",
         "CREATE TABLE t (a LONG REFERENCES u ON UPDATE CASCADE ON DELETE CASCADE, b LONG "
         "CONSTRAINT r REFERENCES v (c) ON DELETE SET NULL)"},
        {L"CREATE TABLE t (a LONG, b LONG, PRIMARY KEY (a, b), CONSTRAINT u UNIQUE (b), FOREIGN "
         L"KEY NO INDEX (a) REFERENCES v (x), CONSTRAINT n NOT NULL (a))",
         "CREATE TABLE t (a LONG, b LONG, PRIMARY KEY (a, b), CONSTRAINT u UNIQUE (b), FOREIGN KEY "
         "NO INDEX (a) REFERENCES v (x), CONSTRAINT n NOT NULL (a))"},
        {L"ALTER TABLE t ADD a LONG", "ALTER TABLE t ADD COLUMN a LONG"},
        {L"ALTER TABLE t ADD COLUMN a TEXT(5) NOT NULL, b LONG", ""},
        {L"ALTER TABLE t ADD CONSTRAINT f FOREIGN KEY (a) REFERENCES u (b) ON DELETE CASCADE", ""},
        {L"ALTER TABLE t ALTER COLUMN a DOUBLE DEFAULT 5", ""},
        {L"ALTER TABLE t ALTER COLUMN a SET DEFAULT 'x'",
         "ALTER TABLE t ALTER COLUMN a SET DEFAULT \"x\""},
        {L"ALTER TABLE t ALTER a DROP DEFAULT", "ALTER TABLE t ALTER COLUMN a DROP DEFAULT"},
        {L"ALTER TABLE t DROP COLUMN [a b], c", ""},
        {L"ALTER TABLE t DROP CONSTRAINT f", ""},
        {L"CREATE INDEX i ON t (a, b DESC, c ASC)", "CREATE INDEX i ON t (a, b DESC, c)"},
        {L"CREATE UNIQUE INDEX i ON t (a) WITH DISALLOW NULL", ""},
        {L"CREATE INDEX [i j] ON t (a) WITH PRIMARY", ""},
        {L"CREATE INDEX i ON t (a) WITH IGNORE NULL", ""},
        {L"DROP TABLE t", ""},
        {L"DROP INDEX i ON t", ""},
        {L"DROP VIEW v", ""},
        {L"DROP PROC p", "DROP PROCEDURE p"},
        {L"CREATE VIEW v (x, y) AS SELECT a, b FROM t", ""},
        {L"CREATE PROCEDURE p (a LONG, b TEXT(5)) AS UPDATE t SET c = a WHERE d = b", ""},
        {L"CREATE PROC p a LONG AS SELECT a", "CREATE PROCEDURE p (a LONG) AS SELECT a"},
        {L"CREATE PROCEDURE p AS DELETE FROM t", ""},
    });
}

TEST(SqlParser, Scripts) {
    const std::wstring text = L";SELECT ?; explain PARAMETERS x Long; SELECT ?, x;;DELETE FROM t;";
    std::vector<ScriptEntry> script;
    parseScript(text, script);
    ASSERT_EQ(script.size(), 3u);
    EXPECT_EQ(script[0].statement.range.of(text), L"SELECT ?");
    EXPECT_EQ(script[0].statement.positionalParameters, 1u);
    EXPECT_FALSE(script[0].explain);
    EXPECT_TRUE(script[1].explain);
    EXPECT_EQ(script[1].statement.range.of(text), L"PARAMETERS x Long; SELECT ?, x");
    EXPECT_EQ(script[1].statement.positionalParameters, 1u);
    EXPECT_EQ(script[2].statement.range.of(text), L"DELETE FROM t");
    std::vector<ScriptEntry> others;
    parseScript(L" ;; ", others);
    EXPECT_TRUE(others.empty());
    EXPECT_THROW(parseScript(L"SELECT 1; SELECT", others), jet::Error);
    EXPECT_EQ(others.size(), 1u);
}

// "--" begins a comment at the start of a line alone; else it is a difference and a sign.
TEST(SqlParser, CommentsInScripts) {
    const std::wstring text = L"-- first\r\nSELECT 1--2\n  -- a ' and a #\n , 3;\n--\n-- last";
    std::vector<ScriptEntry> script;
    parseScript(text, script);
    ASSERT_EQ(script.size(), 1u);
    EXPECT_EQ(toText(script[0].statement), L"SELECT 1 - -2, 3");
    EXPECT_EQ(toText(parseStatement(L"SELECT 1\n-- 2")), L"SELECT 1 - -2");
}

// Each statement by itself may be as long as one can be, and the script longer.
TEST(SqlParser, LongScripts) {
    const std::wstring half = L"SELECT '" + std::wstring(maxTextLength / 2, L'x') + L"'";
    std::vector<ScriptEntry> script;
    parseScript(half + L";" + half + L";" + half, script);
    EXPECT_EQ(script.size(), 3u);
    const std::wstring whole = L"SELECT '" + std::wstring(maxTextLength, L'x') + L"'";
    EXPECT_THROW(parseScript(whole, script), jet::Error);
    EXPECT_THROW(parseScript(std::wstring(maxScriptLength + 1, L' '), script), jet::Error);
}

TEST(SqlParser, RangesOfClauses) {
    const std::wstring text =
        L"SELECT (a+b) AS c, t.* FROM [x.mdb].t AS y INNER JOIN u ON y.i = u.i ORDER BY  a DESC";
    const Statement statement = parseStatement(text);
    const Query& query = *std::get<QueryPtr>(statement.body);
    const auto& select = std::get<Select>(query.body);
    EXPECT_EQ(query.range.of(text), text);
    EXPECT_EQ(select.items[0].range.of(text), L"(a+b) AS c");
    EXPECT_EQ(select.items[0].expression->range.of(text), L"(a+b)");
    EXPECT_EQ(select.items[1].expression->range.of(text), L"t.*");
    EXPECT_EQ(query.orderBy[0].range.of(text), L"a DESC");
    const Source& source = *select.from->sources[0];
    EXPECT_EQ(source.range.of(text), L"[x.mdb].t AS y INNER JOIN u ON y.i = u.i");
    const auto& join = std::get<Join>(source.node);
    EXPECT_EQ(join.left->range.of(text), L"[x.mdb].t AS y");
    EXPECT_EQ(std::get<TableReference>(join.left->node).table.range.of(text), L"[x.mdb].t");
    EXPECT_EQ(join.condition->range.of(text), L"y.i = u.i");
}

// A query in brackets is read in its place.
TEST(SqlParser, RangesInBracketedQueries) {
    const std::wstring text = L"SELECT * FROM [SELECT a FROM t]. AS d, u";
    const Statement statement = parseStatement(text);
    const From& from = *std::get<Select>(std::get<QueryPtr>(statement.body)->body).from;
    EXPECT_EQ(from.sources[0]->range.of(text), L"[SELECT a FROM t]. AS d");
    EXPECT_EQ(std::get<DerivedTable>(from.sources[0]->node).query->range.of(text),
              L"SELECT a FROM t");
    EXPECT_EQ(from.sources[1]->range.of(text), L"u");
}

TEST(SqlParser, LongTextsTakeTimeInProportion) {
    const std::wstring list = L"SELECT a FROM t WHERE a IN (0" + repeated(L",1", 400000) + L")";
    EXPECT_EQ(parsed(list).find("error"), std::string::npos);
    EXPECT_EQ(parsed(L"SELECT 1" + repeated(L" UNION SELECT 1", 60000)).find("error"),
              std::string::npos);
    const std::string tooComplex = "error 3360 Query is too complex.";
    EXPECT_EQ(parsed(L"SELECT a" + std::wstring(maxTextLength, L' ')), tooComplex);
    EXPECT_EQ(parsed(L"SELECT * FROM a" + repeated(L" INNER JOIN a ON b", 50000)), tooComplex);
    EXPECT_EQ(parsed(L"SELECT * FROM " + repeated(L"(", 500000)), tooComplex);
    EXPECT_EQ(parsed(L"SELECT * FROM " + repeated(L"(SELECT a FROM ", 50000)), tooComplex);
    EXPECT_EQ(parsed(L"SELECT * FROM " + repeated(L"[SELECT a FROM ", 2000) + repeated(L"]", 2000)),
              tooComplex);
    EXPECT_EQ(parsed(L"SELECT * FROM a" + repeated(L" INNER JOIN a", 50000)), tooComplex);
    EXPECT_EQ(parsed(repeated(L"(", 500000)), tooComplex);
}

}  // namespace
}  // namespace sg::sql
