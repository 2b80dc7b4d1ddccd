#include <gtest/gtest.h>

#include "host/sql/parse_cases.h"

namespace sg::sql {
namespace {

struct Case {
    const wchar_t* text;
    int code;
};

int codeOf(std::wstring_view text) {
    try {
        parseStatement(text);
        return 0;
    } catch (const jet::Error& error) {
        return error.code();
    }
}

TEST(SqlErrors, EachClauseHasItsNumber) {
    const Case cases[] = {
        {L"", 3129},
        {L"HELLO", 3129},
        {L"123", 3129},
        {L"PARAMETERS x Long;", 3129},
        {L"SELECT", 3141},
        {L"SELECT FROM t", 3141},
        {L"SELECT a, FROM t", 3141},
        {L"SELECT a AS FROM t", 3141},
        {L"SELECT a AS 'x' FROM t", 3141},
        {L"SELECT a WHEN b", 3075},
        {L"SELECT TOP 0 a FROM t", 3308},
        {L"SELECT TOP 2.5 a FROM t", 3308},
        {L"SELECT TOP 101 PERCENT a FROM t", 3308},
        {L"SELECT a FROM", 3131},
        {L"SELECT a FROM WHERE b", 3131},
        {L"SELECT a FROM t x y", 3131},
        {L"SELECT a FROM t,", 3131},
        {L"SELECT a FROM 'x'", 3131},
        {L"SELECT a FROM t@x", 3131},
        {L"SELECT a FROM a.b.c", 3131},
        {L"SELECT a FROM (t", 3131},
        {L"SELECT a FROM t)", 3131},
        {L"SELECT a FROM t JOIN u ON t.a = u.a", 3131},
        {L"SELECT a FROM t IN x", 3131},
        {L"SELECT a FROM t INNER JOIN u", 3135},
        {L"SELECT a FROM t INNER OUTER JOIN u ON 1", 3135},
        {L"SELECT a FROM t LEFT JOIN u ON", 3135},
        {L"SELECT a FROM t WHERE", 3145},
        {L"SELECT a FROM t WHERE b = 1 c = 2", 3075},
        {L"SELECT a FROM t WHERE b = 1 FROM u", 3145},
        {L"SELECT a FROM t GROUP a", 3132},
        {L"SELECT a FROM t GROUP BY", 3132},
        {L"SELECT a FROM t GROUP BY a,", 3132},
        {L"SELECT a FROM t HAVING", 3133},
        {L"SELECT a FROM t ORDER a", 3138},
        {L"SELECT a FROM t ORDER BY", 3138},
        {L"SELECT a FROM t ORDER BY a DESC b", 3138},
        {L"SELECT a FROM t; SELECT b FROM t", 3142},
        {L"SELECT a FROM t; x", 3142},
        {L"SELECT a FROM t WITH OWNER OPTION", 3131},
        {L"SELECT a FROM t UNION", 3319},
        {L"SELECT a INTO u FROM t UNION SELECT b FROM u", 3319},
        {L"SELECT a FROM t WHERE b IN (SELECT c INTO d FROM u)", 3141},
        {L"SELECT a FROM t WHERE b IN (SELECT c FROM u v w)", 3131},
        {L"PARAMETERS; SELECT 1", 3139},
        {L"PARAMETERS x Blob; SELECT 1", 3139},
        {L"PARAMETERS x Long SELECT 1", 3139},
        {L"TRANSFORM Sum(a) SELECT b FROM t GROUP BY b", 3143},
        {L"TRANSFORM Sum(a) SELECT b FROM t GROUP BY b HAVING b > 1 PIVOT c", 3092},
        {L"TRANSFORM SELECT b FROM t PIVOT c", 3143},
        {L"TRANSFORM Sum(a) SELECT b FROM t PIVOT", 3143},
        {L"INSERT t VALUES (1)", 3134},
        {L"INSERT INTO t", 3134},
        {L"INSERT INTO t (a, ) VALUES (1)", 3134},
        {L"INSERT INTO t (a) VALUES 1", 3134},
        {L"INSERT INTO t (a) VALUES (1,)", 3134},
        {L"INSERT INTO t (a) VALUES (1", 3134},
        {L"INSERT INTO t (a) VALUES ('it's')", 3075},
        {L"INSERT INTO t SELECT a INTO u FROM v", 3141},
        {L"UPDATE t", 3144},
        {L"UPDATE SET a = 1", 3144},
        {L"UPDATE t SET", 3144},
        {L"UPDATE t SET a", 3144},
        {L"UPDATE t SET a =", 3144},
        {L"UPDATE t SET a = 1,", 3144},
        {L"UPDATE t SET a + 1 = 2", 3144},
        {L"UPDATE t SET a = 1 b = 2", 3075},
        {L"UPDATE t SET a = 1 WHERE", 3145},
        {L"DELETE", 3130},
        {L"DELETE *", 3128},
        {L"DELETE t", 3128},
        {L"DELETE FROM", 3131},
        {L"DELETE * WHERE a = 1", 3130},
        {L"EXECUTE", 3140},
        {L"EXECUTE p 1,", 3140},
        {L"CREATE", 3290},
        {L"CREATE TABLE", 3290},
        {L"CREATE TABLE t", 3290},
        {L"CREATE TABLE t (a LONG", 3290},
        {L"CREATE TABLE t (a LONG) x", 3290},
        {L"CREATE TABLE t ()", 3292},
        {L"CREATE TABLE t (a)", 3292},
        {L"CREATE TABLE t (a LONG NOT)", 3292},
        {L"CREATE TABLE t (a LONG CHECK (a > 1))", 3289},
        {L"CREATE TABLE t (a LONG, CHECK (a > 1))", 3289},
        {L"CREATE TABLE t (a LONG, CONSTRAINT c CHECK (a > 1))", 3289},
        {L"CREATE TABLE t (a LONG CONSTRAINT PRIMARY KEY)", 3289},
        {L"CREATE TABLE t (a LONG, PRIMARY KEY)", 3289},
        {L"CREATE TABLE t (a LONG, FOREIGN KEY (a))", 3289},
        {L"CREATE TABLE t (a LONG REFERENCES u ON UPDATE)", 3289},
        {L"CREATE INDEX ON t (a)", 3291},
        {L"CREATE INDEX i ON t", 3291},
        {L"CREATE INDEX i ON t (a) WITH NULL", 3291},
        {L"CREATE UNIQUE TABLE t (a LONG)", 3291},
        {L"CREATE VIEW v SELECT a FROM t", 3290},
        {L"CREATE PROCEDURE p AS CREATE TABLE t (a LONG)", 3129},
        {L"CREATE PROCEDURE p (a) AS SELECT a", 3140},
        {L"ALTER t ADD a LONG", 3293},
        {L"ALTER TABLE t", 3293},
        {L"ALTER TABLE t RENAME a", 3293},
        {L"ALTER TABLE t ADD COLUMN a", 3292},
        {L"ALTER TABLE t DROP", 3293},
        {L"DROP t", 3295},
        {L"DROP TABLE", 3295},
        {L"DROP INDEX i", 3295},
        {L"SELECT [a[b] FROM t", 3126},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(codeOf(c.text), c.code) << toUtf8(c.text);
    }
}

// An error of an expression quotes it as far as its clause goes.
TEST(SqlErrors, ExpressionsAreQuotedByTheirClause) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"SELECT a b, c FROM t", "(missing operator) in query expression 'a b'."},
        {L"SELECT x, a b AS c FROM t", "(missing operator) in query expression 'a b'."},
        {L"SELECT f(a, b c), d FROM t", "(missing operator) in query expression 'f(a, b c)'."},
        {L"SELECT a FROM t WHERE b = 1 c = 2 ORDER BY d",
         "(missing operator) in query expression 'b = 1 c = 2'."},
        {L"SELECT (a b), c FROM t", "(missing operator) in query expression '(a b)'."},
        {L"SELECT a FROM t WHERE b = ;", "(missing operator) in query expression 'b ='."},
        {L"SELECT a FROM t WHERE b = 'x ORDER BY c",
         "Syntax error in string in query expression 'b = 'x ORDER BY c'."},
        {L"SELECT a FROM t WHERE b = 1) AND c", "Extra ) in query expression 'b = 1)'."},
        {L"SELECT a FROM t INNER JOIN u ON t.a u.a LEFT JOIN v ON 1 = 1",
         "(missing operator) in query expression 't.a u.a'."},
        {L"SELECT a FROM t WHERE b IN 'x'",
         "In operator without () in query expression 'b IN 'x''."},
        {L"SELECT a FROM t WHERE b IN (SELECT c d FROM u)",
         "(missing operator) in query expression 'c d'."},
        {L"UPDATE t SET a = 1 +, b = 2", "(missing operator) in query expression '1 +'."},
        {L"SELECT t.* x FROM t", "(missing operator) in query expression 't.* x'."},
        {L"SELECT t.* + 1 FROM t", "(missing operator) in query expression 't.* + 1'."},
    };
    for (const auto& [text, ending] : cases) {
        const std::string message = parsed(text);
        EXPECT_EQ(message.substr(0, 11), "error 3075 ") << toUtf8(text);
        EXPECT_TRUE(message.ends_with(ending)) << message;
    }
}

TEST(SqlErrors, ClausesTellThePlace) {
    try {
        parseStatement(L"SELECT a FROM t x y");
        FAIL();
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.text(), L"Syntax error in FROM clause.");
        EXPECT_EQ(error.place().detail, L"at character 19: y");
    }
    try {
        parseStatement(L"SELECT a FROM");
        FAIL();
    } catch (const jet::Error& error) {
        EXPECT_EQ(error.place().detail, L"at the end");
    }
}

}  // namespace
}  // namespace sg::sql
