#include <gmock/gmock.h>

#include <memory>

#include "database/database_fixture.h"
#include "database/every_function_rows.h"
#include "host/system/random.h"
#include "module/function_tables.h"
#include "platform/dao/query_def.h"

// Every sg_ function with arguments that are wrong, and where there is nothing to work on.

namespace sg::test {
namespace {

// What a call comes to: "few", "type" and "bad" for the three failures of a call with nothing but
// their message printed; the number of the engine's error that was printed; else the answer, and
// behind " | " what was printed. "@" stands for the test's folder. A call leaves no result buffer
// behind and no lock of the drawing.
class EveryFunctionTest : public DatabaseTest {
  protected:
    EveryFunctionTest() : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder_);
        makeFile("plan.mdb", {L"Hall", L"Bath", L"Attic"});
        CDaoDatabase db;
        db.Open(path("plan.mdb"));
        CDaoQueryDef query(&db);
        query.Create(L"High", L"select Name from Rooms where Level > [lowest]");
        query.Append();
        db.Close();
        writable_ = read("plan.mdb");
        makeReadOnly("plan.mdb");
        readOnly_ = read("plan.mdb");
        run("(setq line (entmakex '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0))))");
        host().setInput({std::make_shared<Buttons>(log, std::vector<int>())});
    }
    ~EveryFunctionTest() override { std::filesystem::current_path(before_); }

    enum class State { None, Closed, NoTable, Ready, ReadOnly };

    // Those that a connect to another file left for others, too.
    void closeConnections() {
        deleteCurrentConnection();
        for (const auto& entry : dbInfoList()) {
            setCurrentDatabase(entry->pConnection, L"", 0);
            deleteCurrentConnection();
        }
    }

    // Gives the drawing the test's database as it was, in this state.
    void prepare(State state) {
        closeConnections();
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            std::filesystem::remove_all(entry.path());
        write("plan.mdb", state == State::ReadOnly ? readOnly_ : writable_);
        if (state == State::None) return;
        EXPECT_EQ(eval("(sg_connect (strcat folder \"plan.mdb\"))"), "T");
        if (state == State::Closed) eval("(sg_close_db)");
        if (state == State::Ready || state == State::ReadOnly) {
            EXPECT_EQ(eval("(sg_table \"Rooms\" \"PrimaryKey\")"), "\"Rooms\"");
        }
        eval("(sg_resetLastError)");
        printed();
    }

    std::string outcome(const std::string& call) {
        host().random().seed(1);
        std::string came = rawOutcome(call);
        const std::string here = toUtf8(path());
        for (size_t at; (at = came.find(here)) != std::string::npos;)
            came.replace(at, here.size(), "@");
        return came;
    }

    // Another user can edit every record; and nobody has the file open once the connections are
    // gone.
    void expectNothingLocked() {
        CDaoDatabase db;
        if (exists("plan.mdb") && codeOf([&] { db.Open(path("plan.mdb")); }) == 0) {
            CDaoRecordset rows(&db);
            EXPECT_THAT(codeOf([&] {
                            for (rows.Open(dbOpenTable, L"Rooms"); !rows.IsEOF(); rows.MoveNext()) {
                                rows.Edit();
                                rows.CancelUpdate();
                            }
                        }),
                        testing::AnyOf(0, kNoTable));
            db.Close();
        }
        closeConnections();
        EXPECT_THAT(codeOf([&] { db.Open(path("plan.mdb"), true); }),
                    testing::AnyOf(0, kFileReadOnly, kNoFile));
    }

  private:
    static constexpr int32_t kFileReadOnly = 3051;
    static constexpr int32_t kNoFile = 3024;
    static constexpr int32_t kNoTable = 3011;

    std::string rawOutcome(const std::string& call) {
        const size_t nodes = acutLiveNodeCount();
        const int locks = active().lockCount();
        const std::string answer = eval(call);
        const std::string text = printed();
        EXPECT_EQ(acutLiveNodeCount(), nodes) << call;
        EXPECT_EQ(active().lockCount(), locks) << call;
        errors();
        if (text.empty()) return answer;
        if (answer == "; error: ADS request error") {
            if (text == "\nToo few arguments passed.\n") return "few";
            if (text == "\nWrong type of arguments passed.\n") return "type";
            if (text == "\nBad data passed .\n") return "bad";
        }
        const std::string last = eval("(sg_lastError)");
        const std::string message = "\nSwift Gate Error: " + last.substr(last.find(") ") + 2);
        if (answer == "nil" && text + "\"" == message) return last.substr(2, last.find(')') - 2);
        return answer + " | " + text;
    }

    const std::filesystem::path before_;
    std::string writable_, readOnly_;
};

TEST_F(EveryFunctionTest, TheTableIsWhole) {
    std::vector<std::string> names, inTable;
    for (const CallRow& row : callRows())
        names.push_back(row.name);
    for (const FunctionRow& row : sgFunctions())
        inTable.push_back(toUtf8(row.name));
    EXPECT_EQ(names, inTable);
}

TEST_F(EveryFunctionTest, WrongArguments) {
    for (const CallRow& row : callRows()) {
        const std::string name = row.name;
        prepare(State::Ready);
        EXPECT_EQ(outcome("(" + name + ")"), row.none) << name;
        for (const auto& [arguments, wanted] : row.others) {
            prepare(State::Ready);
            const std::string call = "(" + name + " " + arguments + ")";
            EXPECT_EQ(outcome(call), wanted) << call;
        }
        expectNothingLocked();
    }
}

TEST_F(EveryFunctionTest, NothingToWorkOn) {
    for (const CallRow& row : callRows()) {
        const std::string call = std::string("(") + row.name + " " + row.arguments + ")";
        const struct {
            State state;
            const char* wanted;
        } cases[] = {{State::None, row.noConnection},
                     {State::Closed, row.closed},
                     {State::NoTable, row.noTable},
                     {State::ReadOnly, row.readOnly}};
        for (const auto& c : cases) {
            prepare(c.state);
            EXPECT_EQ(outcome(call), c.wanted) << call << " in state " << int(c.state);
            expectNothingLocked();
        }
    }
}

}  // namespace
}  // namespace sg::test
