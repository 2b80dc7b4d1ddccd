#include <gmock/gmock.h>

#include "database/database_fixture.h"
#include "source_folder.h"

namespace sg::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using ConnectTest = DatabaseTest;

TEST_F(ConnectTest, WithoutADatabaseNothingIsDoneAndNothingPrinted) {
    const char* const calls[] = {
        "(sg_close_db)",
        "(sg_closeall_tables)",
        "(sg_close_table)",
        "(sg_exist \"T\")",
        "(sg_exist 5)",
        "(sg_mdb)",
        "(sg_table 5)",
        "(sg_table)",
        "(sg_top)",
        "(sg_bottom)",
        "(sg_skip 5)",
        "(sg_seek)",
        "(sg_getrec)",
        "(sg_count)",
        "(sg_append 5)",
        "(sg_replace nil)",
        "(sg_append_withindex)",
        "(sg_delete)",
        "(sg_current_table)",
        "(sg_current_index)",
    };
    for (const char* call : calls)
        EXPECT_EQ(run(call), "nil") << call;
    EXPECT_EQ(run("(sg_readonly)"), "T");
}

TEST_F(ConnectTest, ArgumentsOfTheWrongTypeEndTheCall) {
    makeFile("plan.mdb");
    connectTo("plan.mdb");
    for (const char* call :
         {"(sg_connect)", "(sg_connect nil)", "(sg_connect 5 \"w\")", "(sg_create_db)",
          "(sg_create_db '(\"x.mdb\"))", "(sg_exist)", "(sg_exist T)"}) {
        EXPECT_EQ(run(call), "; error: ADS request error | \nWrong type of arguments passed.\n")
            << call;
    }
}

TEST_F(ConnectTest, AMissingFileIsAnOrdinaryAnswer) {
    errors();
    EXPECT_EQ(connectTo("none.mdb"), "nil");
    EXPECT_EQ(connectTo("none/none.mdb", " \"w\" T"), "nil");
    EXPECT_EQ(run("(sg_connect \"\")"), "nil");
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(currentConnection(), nullptr);
}

TEST_F(ConnectTest, ARepeatedConnectKeepsTheConnection) {
    makeFile("plan.mdb", {L"A", L"B"});
    ASSERT_EQ(connectTo("plan.mdb"), "T");
    run("(sg_table \"Rooms\")");
    run("(sg_bottom)");
    CDBConnection* const connection = currentConnection();
    for (const char* name : {"(strcat folder \"plan.mdb\")", "\"plan.mdb\"", "\"PLAN.MDB\"",
                             "(strcat (vl-string-translate \"/\" \"\\\\\" folder) \"plan.mdb\")"}) {
        EXPECT_EQ(run(std::string("(sg_connect ") + name + ")"), "T");
        EXPECT_EQ(currentConnection(), connection) << name;
        EXPECT_EQ(nameAfter("(sg_getrec)"), "\"B\"");
    }
    EXPECT_EQ(dbInfoList().size(), 1U) << "entries that nobody uses have gone";
}

TEST_F(ConnectTest, TheModeDecidesWhetherItIsOpenedAgain) {
    makeFile("plan.mdb");
    const struct {
        const char* mode;
        const char* readOnly;
        bool kept;
    } steps[] = {
        {"", "nil", false},       {" \"w\"", "nil", true}, {" \"r\"", "T", false},
        {" \"W\"", "T", true},    {" \"\"", "T", true},    {" nil", "nil", false},
        {" \"r\" T", "T", false}, {" 5", "nil", false},    {" \"w\" nil", "nil", true},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.mode);
        run("(sg_table \"Rooms\")");
        ASSERT_EQ(connectTo("plan.mdb", step.mode), "T");
        EXPECT_EQ(run("(sg_readonly)"), step.readOnly);
        EXPECT_EQ(run("(sg_current_table)"), step.kept ? "\"Rooms\"" : "\"\"");
        EXPECT_EQ(dbInfoList().front()->bReadOnly, std::string(step.readOnly) == "T");
    }
}

TEST_F(ConnectTest, AFileThatMayNotBeWrittenIsOpenedToBeRead) {
    makeFile("plan.mdb", {L"A"});
    makeReadOnly("plan.mdb");
    EXPECT_EQ(connectTo("plan.mdb", " \"w\""), "T");
    EXPECT_EQ(run("(sg_readonly)"), "T");
    EXPECT_FALSE(dbInfoList().front()->bReadOnly) << "what was asked for";
    EXPECT_EQ(currentReadOnly(), 0);
    run("(sg_table \"Rooms\")");
    EXPECT_EQ(nameAfter("(sg_top)"), "\"A\"");
    for (const char* write : {"(sg_append '((\"Name\" . \"B\")))", "(sg_delete)",
                              "(sg_replace '((\"Name\" . \"B\")))"}) {
        EXPECT_EQ(run(write), "nil");
    }
    EXPECT_EQ(connectTo("plan.mdb", " \"w\""), "T");
    EXPECT_EQ(run("(sg_current_table)"), "\"\"") << "asked for writing, it is opened again";
}

TEST_F(ConnectTest, AFileOfTheSupportPathHasItsFullName) {
    stop();
    options.supportPath = {path("first"), path("second")};
    start();
    setFolder();
    std::filesystem::create_directories(folder_ / "first");
    std::filesystem::create_directories(folder_ / "second");
    makeFile("second/standards.mdb");
    EXPECT_EQ(run("(sg_connect \"standards.mdb\")"), "T");
    const std::string name = toUtf8(path("second/standards.mdb"));
    EXPECT_EQ(run("(sg_mdb)"), "\"" + name + "\"");
    makeFile("first/standards.mdb");
    EXPECT_EQ(run("(sg_connect \"standards.mdb\")"), "T");
    EXPECT_EQ(run("(sg_mdb)"), "\"" + name + "\"") << "it is open already";
    run("(sg_close_db)");
    EXPECT_EQ(run("(sg_connect \"standards.mdb\")"), "T");
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("first/standards.mdb")) + "\"");
}

TEST_F(ConnectTest, ACloseKeepsTheConnectionUntilTheNextCall) {
    makeFile("plan.mdb");
    connectTo("plan.mdb");
    run("(sg_table \"Rooms\")");
    CDBConnection* const connection = currentConnection();
    EXPECT_EQ(run("(sg_close_db)"), "nil");
    EXPECT_EQ(currentConnection(), connection);
    EXPECT_FALSE(connection->IsOpen());
    EXPECT_TRUE(connection->NoTablesOpen());
    EXPECT_EQ(run("(sg_mdb)"), "nil");
    EXPECT_EQ(run("(sg_readonly)"), "T");
    EXPECT_EQ(run("(sg_close_db)"), "nil");
    EXPECT_EQ(connectTo("plan.mdb"), "T");
    EXPECT_EQ(run("(sg_readonly)"), "nil");
}

TEST_F(ConnectTest, TablesAreClosedOneByOneAndAllAtOnce) {
    makeFile("plan.mdb");
    connectTo("plan.mdb");
    run("(sg_table \"Rooms\")");
    run("(sg_table \"Empty\")");
    EXPECT_EQ(run("(sg_close_table)"), "nil");
    EXPECT_EQ(run("(sg_current_table)"), "\"Rooms\"");
    EXPECT_EQ(run("(sg_close_table)"), "nil");
    EXPECT_EQ(run("(sg_close_table)"), "nil");
    EXPECT_EQ(run("(sg_current_table)"), "\"\"");
    run("(sg_table \"Rooms\")");
    run("(sg_table \"Empty\")");
    EXPECT_EQ(run("(sg_closeall_tables)"), "nil");
    EXPECT_TRUE(currentConnection()->NoTablesOpen());
    EXPECT_EQ(run("(sg_getrec)"), "nil");
}

TEST_F(ConnectTest, TablesExistUnderTheirExactName) {
    makeFile("plan.mdb");
    connectTo("plan.mdb");
    EXPECT_EQ(run("(sg_exist \"Rooms\")"), "T");
    EXPECT_EQ(run("(sg_exist \"rooms\")"), "nil");
    EXPECT_EQ(run("(sg_exist \"MSysObjects\")"), "T");
    EXPECT_EQ(run("(sg_exist \"\")"), "nil");
}

TEST_F(ConnectTest, AFileIsMadeAndNeverOverAnother) {
    EXPECT_EQ(run("(sg_create_db (strcat folder \"new.mdb\"))"), "T");
    EXPECT_EQ(connectTo("new.mdb"), "T");
    EXPECT_EQ(run("(sg_create_db (strcat folder \"new.mdb\"))"), "nil");
    EXPECT_EQ(run("(sg_create_db (strcat folder \"none/new.mdb\"))"), "nil");
    EXPECT_EQ(run("(sg_lastError)"), "\"\"") << "the report looks at the current connection";
    EXPECT_EQ(run("(sg_readonly)"), "nil") << "which is as it was";
}

TEST_F(ConnectTest, NamesMayHaveAnyCharactersAndEitherSeparator) {
    std::filesystem::create_directories(folder_ / "Büro 7");
    for (const char* name : {"Büro 7/Plan \xE2\x98\x83.qn", "a b.c.mdb", "PROJECT.QN"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(run("(sg_create_db (strcat folder \"" + std::string(name) + "\"))"), "T");
        run("(setq name (vl-string-translate \"/\" \"\\\\\" (strcat folder \"" + std::string(name) +
            "\")))");
        EXPECT_EQ(run("(sg_connect name)"), "T");
        EXPECT_EQ(run("(= (sg_mdb) (strcat folder \"" + std::string(name) + "\"))"), "T");
    }
}

// --- repair ---

class RepairTest : public DatabaseTest {
  protected:
    RepairTest() { write("bad.mdb", "no database"); }
    // Defines compactDatabase, which keeps its arguments in `asked`.
    void define(const std::string& body) {
        eval("(defun compactDatabase (a b c) (setq asked (list a b c)) " + body + ")");
    }
};

TEST_F(RepairTest, LispIsAskedOnceAndTheFileOpenedAgain) {
    makeFile("good.mdb", {L"A"});
    define(
        "(vl-file-delete a) (vl-file-rename (strcat folder \"good.mdb\") a)"
        "(setq times (1+ (cond (times) (0))))");
    EXPECT_EQ(connectTo("bad.mdb"), "T");
    EXPECT_EQ(run("asked"), "(\"" + toUtf8(path("bad.mdb")) + "\" nil \"Repair\")");
    EXPECT_EQ(run("times"), "1");
    run("(sg_table \"Rooms\")");
    EXPECT_EQ(nameAfter("(sg_top)"), "\"A\"");
}

TEST_F(RepairTest, AFailedOpenAnswersTAndLeavesAClosedConnection) {
    const char* const bodies[] = {"nil", "T", "(car 5)", "(exit)"};
    for (const char* body : bodies) {
        SCOPED_TRACE(body);
        define(body);
        for (const char* more : {"", " \"w\" T"}) {
            EXPECT_EQ(connectTo("bad.mdb", more), "T") << "nothing is current to be reported";
            EXPECT_EQ(run("asked").substr(0, 2), "(\"");
            ASSERT_NE(currentConnection(), nullptr);
            EXPECT_FALSE(currentConnection()->IsOpen());
            EXPECT_EQ(run("(sg_table \"Rooms\")"), "\"Rooms\"");
            EXPECT_EQ(run("(sg_top)"), "nil");
            EXPECT_EQ(run("(sg_exist \"Rooms\")"), "nil");
            EXPECT_EQ(run("(sg_mdb)"), "nil");
        }
    }
}

TEST_F(RepairTest, AMissingFunctionIsAFailedOpen) {
    EXPECT_EQ(connectTo("bad.mdb"), "T");
    EXPECT_THAT(errors(), HasSubstr("COMPACTDATABASE"));
    EXPECT_EQ(run("(sg_mdb)"), "nil");
}

TEST_F(RepairTest, ARepairMayUseDatabasesItself) {
    makeFile("good.mdb", {L"A"});
    define(
        "(vl-file-delete a) (sg_compact (strcat folder \"good.mdb\") a)"
        "(sg_connect (strcat folder \"good.mdb\"))");
    EXPECT_EQ(connectTo("bad.mdb"), "T");
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("bad.mdb")) + "\"");
}

// The program that is shipped on the support path.
TEST_F(RepairTest, ADamagedFileIsCompactedAndKeptBesideTheNewOne) {
    stop();
    options.supportPath = {fromUtf8((testSources().parent_path() / "share" / "support").string())};
    start();
    setFolder();
    constexpr size_t kPageSize = 4096, kDamagedPage = 2;  // the catalog's definition
    for (const char* kept : {"plan.mdb.bak", "plan.mdb.bak2"}) {
        SCOPED_TRACE(kept);
        std::filesystem::remove(folder_ / "plan.mdb");
        makeFile("plan.mdb", {L"A", L"B"});
        std::string bytes = read("plan.mdb");
        bytes.replace(kDamagedPage * kPageSize, 4, "junk");
        write("plan.mdb", bytes);
        EXPECT_THAT(connectTo("plan.mdb"), HasSubstr(" has been compacted. "));
        EXPECT_EQ(read(kept), bytes);
        EXPECT_EQ(run("(sg_readonly)"), "nil");
        run("(sg_table \"Rooms\")");
        EXPECT_EQ(nameAfter("(sg_bottom)"), "\"B\"");
        run("(sg_close_db)");
    }
    EXPECT_THAT(connectTo("bad.mdb"),
                AllOf(HasSubstr("T | "), HasSubstr(" could not be compacted: ")));
    EXPECT_EQ(read("bad.mdb"), "no database");
    EXPECT_FALSE(exists("bad.mdb.bak"));
    EXPECT_THAT(errors(), Not(HasSubstr("error")));
}

// Each failed open has the connection of the call inside it to report, down to where the stack
// ends.
TEST_F(RepairTest, ARepairThatConnectsForEverEnds) {
    define("(sg_connect a)");
    run("(sg_connect (strcat folder \"bad.mdb\"))");
    EXPECT_THAT(errors(), HasSubstr("error"));
    EXPECT_THAT(run("(sg_lastError)"), HasSubstr("(3343) "));
}

}  // namespace
}  // namespace sg::test
