#include <gmock/gmock.h>

#include <memory>

#include "database/database_fixture.h"
#include "platform/dao/query_def.h"

namespace sg::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const kBoxLine =
    "box 276 Quillon: Database connection error.\nClose and reopen AutoCAD.\n\nIf you are getting "
    "this error frequently, press \"Yes\" to send an error report to Quillon Support.";

// A connection whose queries and openings end as a test says.
class ScriptedConnection : public FakeConnection {
  public:
    using FakeConnection::FakeConnection;

    std::vector<bool> queries;  // how each run in turn ends
    std::wstring name = L"/jobs/plan.mdb";
    int16_t updatable = -1;

    std::wstring GetDatabaseName() const override { return name; }
    int16_t GetUpdatable() const override { return updatable; }
    bool ExecuteSelect(const std::wstring& sql, COleSafeArray& rows) override {
        clearError();
        log->push_back("select " + toUtf8(sql));
        const bool succeeds = run_ < queries.size() && queries[run_];
        ++run_;
        if (succeeds) {
            rows.CreateFromVariants({number(7)});
        } else {
            recordError(CDaoException(3043, L"Disk or network error."));
        }
        return succeeds;
    }
    std::wstring Open(const std::wstring& file, bool exclusive, int16_t readOnly) override {
        const std::wstring answer = FakeConnection::Open(file, exclusive, readOnly);
        if (answer.empty() || answer == kRepairNeeded) {
            recordError(CDaoException(3024, L"It is gone."));
        } else {
            setOpen(true);
        }
        return answer;
    }

    Log* log = nullptr;

  private:
    size_t run_ = 0;
};

class SqlRoadTest : public ModuleTest {
  protected:
    struct Case {
        const char* about;
        std::vector<bool> queries;
        const wchar_t* name;     // empty: the connection does not know its file
        const wchar_t* reopens;  // what opening the file again answers
        int button;
    };

    SqlRoadTest() {
        start();
        printed();
    }

    // The answer of a call, and behind " | " what was printed; what was done is in `log`.
    std::string answerTo(const Case& c, const std::string& call) {
        auto* const connection = new ScriptedConnection("c", log);
        connection->log = &log;
        connection->queries = c.queries;
        connection->name = c.name;
        connection->openAnswers = c.reopens;
        connect(L"Drawing1.dwg", connection, L"");
        setCurrentDatabase(connection, L"", 0);
        host().setInput({std::make_shared<Buttons>(log, std::vector<int>{c.button})});
        log.clear();
        const std::string answer = eval(call);
        const std::string text = printed();
        const Log done = std::move(log);
        deleteCurrentConnection();
        log = done;
        return text.empty() ? answer : answer + " | " + text;
    }
};

const char* const kFails = "; error: ADS request error";

TEST_F(SqlRoadTest, EachPointOfFailureInEachMode) {
    const struct {
        Case c;
        const char *asks, *nil, *error;
        std::vector<std::string> done;  // without the box
        bool box;
    } cases[] = {
        {{"succeeds", {true}, L"a.mdb", L"", IDNO}, "(7)", "(7)", "(7)", {"select q"}, false},
        {{"no file to reopen, No", {false}, L"", L"", IDNO},
         "nil",
         "nil",
         "\"*ERROR*\"",
         {"select q"},
         true},
        {{"no file to reopen, Yes", {false}, L"", L"", IDYES},
         "; error: ADS request error | \nQuery 1: q\nA disk or network error occurred while trying "
         "to access the database.Try the command again. If it continues to not work, try "
         "restarting AutoCAD. If that does not fix the error, try restarting your computer.\nBad "
         "data passed .\n",
         "nil",
         "\"*ERROR*\"",
         {"select q"},
         true},
        {{"does not reopen", {false}, L"a.mdb", L"", IDYES},
         "; error: ADS request error | \nSwift Gate Error: It is gone.\nBad data passed .\n",
         "nil | \nSwift Gate Error: It is gone.",
         "\"*ERROR*\" | \nSwift Gate Error: It is gone.",
         {"select q", "close c", "open c a.mdb 0"},
         false},
        {{"needs repair", {false}, L"a.mdb", kRepairNeeded, IDYES},
         "; error: ADS request error | \nSwift Gate Error: It is gone.\nBad data passed .\n",
         "nil | \nSwift Gate Error: It is gone.",
         "\"*ERROR*\" | \nSwift Gate Error: It is gone.",
         {"select q", "close c", "open c a.mdb 0"},
         false},
        {{"the second run succeeds", {false, true}, L"a.mdb", L"a.mdb", IDNO},
         "(7)",
         "(7)",
         "(7)",
         {"select q", "close c", "open c a.mdb 0", "select q"},
         false},
        {{"the second run fails, No", {false, false}, L"a.mdb", L"a.mdb", IDNO},
         "nil",
         "nil",
         "\"*ERROR*\"",
         {"select q", "close c", "open c a.mdb 0", "select q"},
         true},
        {{"the second run fails, Yes", {false, false, true}, L"a.mdb", L"a.mdb", IDYES},
         "; error: ADS request error | \nQuery 2: q\nA disk or network error occurred while trying "
         "to access the database.Try the command again. If it continues to not work, try "
         "restarting AutoCAD. If that does not fix the error, try restarting your computer.\nBad "
         "data passed .\n",
         "nil",
         "\"*ERROR*\"",
         {"select q", "close c", "open c a.mdb 0", "select q"},
         true},
    };
    for (const auto& c : cases) {
        std::vector<std::string> withBox = c.done;
        if (c.box) withBox.push_back(kBoxLine);
        EXPECT_EQ(answerTo(c.c, "(sg_sql \"q\")"), c.asks) << c.c.about;
        EXPECT_EQ(log, withBox) << c.c.about;
        EXPECT_EQ(answerTo(c.c, "(sg_sql-nil \"q\")"), c.nil) << c.c.about;
        EXPECT_EQ(log, c.done) << c.c.about;
        EXPECT_EQ(answerTo(c.c, "(sg_sql-error \"q\")"), c.error) << c.c.about;
        EXPECT_EQ(log, c.done) << c.c.about;
        // The mode as an argument, and numbers that are none.
        EXPECT_EQ(answerTo(c.c, "(sg_sql \"q\" 1)"), c.nil) << c.c.about;
        EXPECT_EQ(answerTo(c.c, "(sg_sql \"q\" 2.9)"), c.error) << c.c.about;
        EXPECT_EQ(answerTo(c.c, "(sg_sql \"q\" 3)"), c.asks) << c.c.about;
        EXPECT_EQ(answerTo(c.c, "(sg_sql \"q\" \"2\")"), c.asks) << c.c.about;
    }
}

TEST_F(SqlRoadTest, ADatabaseIsReopenedAsItWas) {
    for (const int16_t updatable : {int16_t{0}, int16_t{-1}}) {
        auto* const connection = new ScriptedConnection("c", log);
        connection->log = &log;
        connection->updatable = updatable;
        connect(L"Drawing1.dwg", connection, L"", true);
        log.clear();
        eval("(sg_sql-nil \"q\")");
        EXPECT_THAT(log, ElementsAre("select q", "close c",
                                     std::string("open c /jobs/plan.mdb ") +
                                         (updatable == 0 ? "-1" : "0")));
        deleteCurrentConnection();
    }
}

class SqlTest : public DatabaseTest {
  protected:
    SqlTest() {
        makeFile("plan.mdb", {L"Hall", L"Bath  ", L"Attic"});
        connectTo("plan.mdb");
    }
};

TEST_F(SqlTest, RowsByHowManyColumnsThereAre) {
    const struct {
        const char *sql, *answer;
    } cases[] = {
        {"select Level from Rooms where Id < 0", "nil"},
        {"select Level, Name from Rooms where Id < 0", "nil"},
        {"select Level from Rooms order by Id", "(1 2 3)"},
        {"select Name from Rooms order by Id", "(\"Hall\" \"Bath\" \"Attic\")"},
        {"select Price from Rooms where Id = 1", "(nil)"},
        {"select Level, Area from Rooms where Id > 1 order by Id",
         "(((\"Level\" . 2) (\"Area\" . 5.0)) ((\"Level\" . 3) (\"Area\" . 7.5)))"},
        {"select Name as s_Name, Name from Rooms where Id = 2",
         "(((\"s_Name\" . \"Bath  \") (\"Name\" . \"Bath\")))"},
        {"select count(*) as n, sum(Area) as s from Rooms", "(((\"n\" . 3) (\"s\" . 15.0)))"},
        {"select '*NewRecord*' as a, Id from Rooms where Id = 1",
         "(((\"a\" . \"*NewRecord*\") (\"Id\" . 1)))"},
        {"select * from Empty", "nil"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run(std::string("(sg_sql \"") + c.sql + "\")"), c.answer) << c.sql;
    }
}

// So many that they reach LISP in parts.
TEST_F(SqlTest, ManyRows) {
    run("(sg_command \"create table Numbers (n long, t text(5))\") (sg_table \"Numbers\")"
        "(setq n 0) (repeat 1024 (sg_append (list (cons \"n\" n) '(\"t\" . \"x\")))"
        "(setq n (1+ n)))");
    for (const int count : {511, 512, 513, 1024}) {
        const std::string where =
            " from Numbers where n < " + std::to_string(count) + " order by n";
        EXPECT_EQ(run("(setq r (sg_sql \"select n, t" + where +
                      "\") i -1)"
                      "(list (length r) (vl-every '(lambda (x) (equal x (list (cons \"n\" (setq i "
                      "(1+ i))) '(\"t\" . \"x\")))) r))"),
                  "(" + std::to_string(count) + " T)");
        EXPECT_EQ(
            run("(setq r (sg_sql \"select n" + where + "\")) (list (length r) (apply '+ r))"),
            "(" + std::to_string(count) + " " + std::to_string(count * (count - 1) / 2) + ")");
    }
}

TEST_F(SqlTest, ABadQueryIsRunAgainOnAReopenedFile) {
    run("(sg_resetLastError) (sg_table \"Rooms\" \"Name\")");
    EXPECT_EQ(run("(sg_sql-error \"selec Name from Rooms\")"), "\"*ERROR*\"");
    EXPECT_EQ(run("(sg_lastError)"), "\"\"");
    EXPECT_EQ(run("(sg_current_table)"), "\"\"") << "the tables are closed";
    EXPECT_EQ(run("(list (sg_getrec) (sg_skip) (sg_count))"), "(nil nil nil)");
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("plan.mdb")) + "\"");
    EXPECT_EQ(nameAfter("(progn (sg_table \"Rooms\") (sg_top))"), "\"Hall\"");
}

// The file that is open goes away, and another one comes in its place, as after a restored backup.
TEST_F(SqlTest, AFileThatWasTakenAwayAndGivenBack) {
    makeFile("restored.mdb", {L"Hall"});
    run("(sg_connect (strcat folder \"restored.mdb\")) (sg_rename_table \"Rooms\" \"Halls\")"
        "(sg_close_db)");
    connectTo("plan.mdb");
    run("(sg_fmove (strcat folder \"plan.mdb\") (strcat folder \"away.mdb\"))"
        "(sg_fcopy (strcat folder \"restored.mdb\") (strcat folder \"plan.mdb\"))");
    EXPECT_EQ(run("(sg_sql \"select Name from Halls\")"), "(\"Hall\")");
    EXPECT_EQ(run("(sg_sql-nil \"select Name from Rooms\")"), "nil");
}

TEST_F(SqlTest, AFileThatStaysAway) {
    const std::string gone =
        "\nSwift Gate Error: Could not find file '" + toUtf8(path("plan.mdb")) + "'.";
    const struct {
        const char* call;
        std::string answer;
    } cases[] = {
        {"(sg_sql \"select None from Rooms\")", kFails + (" | " + gone) + "\nBad data passed .\n"},
        {"(sg_sql-nil \"select None from Rooms\")", "nil | " + gone},
        {"(sg_sql-error \"select None from Rooms\")", "\"*ERROR*\" | " + gone},
    };
    for (const auto& c : cases) {
        connectTo("plan.mdb");
        run("(sg_fmove (strcat folder \"plan.mdb\") (strcat folder \"away.mdb\"))");
        EXPECT_EQ(run(c.call), c.answer);
        EXPECT_EQ(run("(sg_mdb)"), "nil");
        EXPECT_EQ(run("(sg_sql-nil \"select Name from Rooms\")"), "nil") << "there is no file now";
        run("(sg_fmove (strcat folder \"away.mdb\") (strcat folder \"plan.mdb\"))");
    }
    connectTo("plan.mdb");
    EXPECT_EQ(run("(length (sg_sql \"select Name from Rooms\"))"), "3");
}

TEST_F(SqlTest, Commands) {
    EXPECT_EQ(run("(sg_command \"update Rooms set Level = Level + 1 where Id > 1\")"), "2");
    EXPECT_EQ(run("(sg_command \"delete from Rooms where Id > 100\")"), "0");
    EXPECT_EQ(run("(sg_command \"create table Doors (Id counter, Width double)\")"), "0");
    EXPECT_EQ(run("(sg_exist \"Doors\")"), "T");
    run("(sg_table \"Rooms\")");
    EXPECT_THAT(run("(sg_command \"delet from Rooms\")"), HasSubstr("nil | \nSwift Gate Error: "));
    EXPECT_THAT(run("(sg_command \"select * from Rooms\")"), HasSubstr("nil | "));
    EXPECT_EQ(run("(sg_current_table)"), "\"Rooms\"") << "the connection stays as it is";
    connectTo("plan.mdb", " \"r\"");
    EXPECT_EQ(run("(sg_command \"delete from Rooms\")"), "nil");
    EXPECT_EQ(run("(sg_sql \"select count(*) from Rooms\")"), "(3)");
}

TEST_F(SqlTest, StoredQueries) {
    {
        CDaoDatabase db;
        db.Open(path("plan.mdb"));
        CDaoQueryDef query(&db);
        query.Create(L"High", L"select Name from Rooms where Level >= [lowest] order by Id");
        query.Append();
        query.Create(L"Between",
                     L"parameters [from] long, [to] long; select Name, Level from Rooms where "
                     L"Level between [from] and [to] order by Id");
        query.Append();
    }
    const struct {
        const char *call, *answer;
    } cases[] = {
        {"(sg_query \"High\" \"lowest\" 2)", "(\"Bath\" \"Attic\")"},
        {"(sg_query \"High\" \"lowest\" 9)", "nil"},
        {"(sg_query \"Between\" \"from\" 2 \"to\" 2)", "(((\"Name\" . \"Bath\") (\"Level\" . 2)))"},
        // Parameters that do not alternate.
        {"(sg_query \"High\" \"lowest\")", "nil"},
        {"(sg_query \"High\" 2 \"lowest\")", "nil"},
        {"(sg_query \"High\" '(\"lowest\" 2))", "nil"},
        {"(sg_query \"High\" '((\"lowest\" . 2)))", "nil"},
        {"(sg_query \"High\" nil)", "nil"},
        {"(sg_query \"High\" \"lowest\" '(1.0 2.0))", "nil"},
        // Another text.
        {"(sg_create_query \"High\" \"select Id from Rooms where Id = 3\")", "T"},
        {"(sg_query \"High\")", "(3)"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(run(c.call), c.answer) << c.call;
    for (const char* call :
         {"(sg_query \"None\")", "(sg_query \"Between\" \"from\" 2)",
          "(sg_query \"Between\" \"none\" 2)", "(sg_query \"Between\" \"from\" \"x\" \"to\" 2)",
          "(sg_create_query \"None\" \"select Id from Rooms\")",
          "(sg_create_query \"High\" \"selec Id from Rooms\")"}) {
        EXPECT_THAT(run(call), HasSubstr("nil | \nSwift Gate Error: ")) << call;
    }
    EXPECT_EQ(run("(sg_query \"High\")"), "(3)");
}

}  // namespace
}  // namespace sg::test
