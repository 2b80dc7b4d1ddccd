#include <gmock/gmock.h>

#include <functional>

#include "database/database_fixture.h"
#include "database/lisp_functions.h"
#include "host/jet/child_process.h"

namespace sg::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;
using testing::StartsWith;

class WritingTest : public DatabaseTest {
  protected:
    WritingTest() {
        makeFile("plan.mdb", {L"Hall", L"Bath", L"Attic"});
        host().sleep = [this](uint32_t milliseconds) {
            rests_.push_back(milliseconds);
            if (onRest) onRest();
        };
        connectTo("plan.mdb");
        run("(sg_table \"Rooms\")");
    }
    // The value of one field of what a call answers.
    std::string fieldAfter(const std::string& field, const std::string& program) {
        return run("(cdr (assoc \"" + field + "\" " + program + "))");
    }

    std::vector<uint32_t> rests_;
    std::function<void()> onRest;
};

TEST_F(WritingTest, AppendAnswersTheNewRecordAndStandsOnIt) {
    run("(sg_table \"Rooms\" \"Name\")");
    EXPECT_EQ(nameAfter("(sg_append '((\"Name\" . \"Cellar\") (\"Level\" . -1)))"), "\"Cellar\"");
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Cellar\"");
    EXPECT_EQ(nameAfter("(sg_skip)"), "\"Hall\"");
    EXPECT_EQ(run("(sg_count)"), "4");
}

TEST_F(WritingTest, RecordsComeInThreeForms) {
    const char* const forms[] = {"'((\"Name\" . \"x\") (\"Level\" . 7))",
                                 "'((\"Name\" \"x\") (\"Level\" 7))",
                                 "'(\"Name\" \"x\" \"Level\" 7)", "\"Name\" \"x\" \"Level\" 7",
                                 "7 '((\"Name\" . \"x\")) '((\"Level\" . 7))"};
    for (const char* form : forms) {
        const std::string call = std::string("(sg_append ") + form + ")";
        EXPECT_EQ(run("(setq r " + call +
                      ") (mapcar 'cdr (list (assoc \"Name\" r) "
                      "(assoc \"Level\" r)))"),
                  "(\"x\" 7)")
            << form;
    }
}

TEST_F(WritingTest, WhatIsNoRecordWritesNothing) {
    for (const char* form : {"", "nil", "5", "'(5)", "'((5 . \"x\"))", "\"Name\"", "5 nil",
                             "'((\"Name\" . (1.0 2.0)))", "'((\"Name\" . \"x\") 5)"}) {
        EXPECT_EQ(run(std::string("(sg_append ") + form + ")"), "nil") << form;
        EXPECT_EQ(run(std::string("(sg_replace ") + form + ")"), "nil") << form;
        EXPECT_EQ(run(std::string("(sg_append_withindex 9 ") + form + ")"), "nil") << form;
    }
    EXPECT_EQ(run("(sg_count)"), "3");
    for (const char* call : {"(sg_append_withindex)", "(sg_append_withindex nil)",
                             "(sg_append_withindex \"5\" '((\"Name\" . \"x\")))"}) {
        EXPECT_THAT(run(call), HasSubstr("\nWrong type of arguments passed.\n")) << call;
    }
}

TEST_F(WritingTest, ValuesAreMadeToFitTheirFields) {
    const struct {
        const char* field;
        const char* value;
        const char* read;
    } cases[] = {
        {"Name", "\"123456789012345678901234567890\"", "\"12345678901234567890\""},
        {"Name", "\"\"", "\"\""},
        {"Name", "12", "\"12\""},
        {"Name", "nil", "nil"},
        {"Level", "2.6", "3"},
        {"Level", "\"12\"", "12"},
        {"Area", "3", "3.0"},
        {"Open", "T", "-1"},
        {"Open", "nil", "0"},
        {"Built", "\"2/1/2017\"", "\"2/1/2017\""},
        {"s_Note", "\"\"", "\"\""},
        {"s_Note", "\"two  \"", "\"two  \""},
        {"Id", "77", "1"},
    };
    for (const auto& each : cases) {
        run("(sg_top)");
        const std::string call =
            std::string("(sg_replace '((\"") + each.field + "\" . " + each.value + ")))";
        EXPECT_EQ(fieldAfter(each.field, call), each.read) << call;
    }
    // The text without a character is a blank in the file.
    run("(sg_replace '((\"Name\" . \"\")))");
    COleVariant value;
    currentConnection()->GetFieldValueByName(L"Name", value);
    EXPECT_EQ(shown(value), L" ");
}

// Characters outside the basic plane take two of a field's units.
TEST_F(WritingTest, TextsAreCutBetweenCharacters) {
    run("(sg_replace (list (cons \"Name\" \"123456789012345678\\U+00E9\\U+00E9\\U+00E9\")))");
    EXPECT_EQ(fieldAfter("Level", "(sg_getrec)"), "1");
    COleSafeArray record, written;
    std::wstring wide(19, L'x');
    wide += L"\x1F600y";
    record.CreateFromVariants({text(L"Name"), COleVariant::fromString(wide)});
    ASSERT_TRUE(currentConnection()->Replace(record, written));
    EXPECT_EQ(shown(written.GetElement(3)), std::wstring(19, L'x'));
}

TEST_F(WritingTest, AFieldThatCannotBeSetIsNamedAndTheRecordDropped) {
    const struct {
        const char* pairs;
        const char* field;
    } cases[] = {
        {"(\"Name\" . \"x\") (\"None\" . 1)", "None"},
        {"(\"Level\" . 99999)", "Level"},
        {"(\"Level\" . \"many\") (\"None\" . 1)", "Level"},
        {"(\"Built\" . \"someday\")", "Built"},
        {"(\"Area\" . \"\")", "Area"},
    };
    run("(sg_resetLastError)");
    for (const auto& each : cases) {
        const std::string expected = std::string("nil | \nAppend error: ") + each.field;
        EXPECT_EQ(run(std::string("(sg_append '(") + each.pairs + "))"), expected);
        EXPECT_EQ(run(std::string("(sg_replace '(") + each.pairs + "))"), expected);
        EXPECT_FALSE(currentConnection()->HasError());
    }
    EXPECT_EQ(run("(sg_lastError)"), "\"\"");
    EXPECT_EQ(run("(sg_count)"), "3");
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Hall\"");
}

TEST_F(WritingTest, AnErrorOfTheUpdateIsTheEngines) {
    run("(sg_table \"Empty\" \"A\")");
    EXPECT_EQ(run("(sg_append '((\"A\" . 1)))"), "((\"A\" . 1))");
    EXPECT_EQ(run("(sg_append '((\"A\" . 2)))"), "((\"A\" . 2))");
    for (const char* call : {"(sg_append '((\"A\" . 1)))", "(sg_replace '((\"A\" . 1)))"}) {
        EXPECT_THAT(run(call), StartsWith("nil | \nSwift Gate Error: ")) << call;
        EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3022) "));
        EXPECT_EQ(run("(sg_getrec)"), "((\"A\" . 2))");
    }
    EXPECT_TRUE(rests_.empty());
    EXPECT_EQ(run("(sg_count)"), "2");
    EXPECT_EQ(run("(sg_delete)"), "T");
    EXPECT_EQ(run("(sg_count)"), "1");
}

TEST_F(WritingTest, RequiredTextsAreFilledWhenTheFlagIsThere) {
    run("(sg_close_db)");
    {
        CDaoDatabase db;
        db.Open(path("plan.mdb"));
        CDaoFieldInfo empty = requiredField(L"Empty", dbText, 10, L"");
        CDaoFieldInfo blank = requiredField(L"Blank", dbText, 10, L"");
        blank.m_bAllowZeroLength = false;
        makeTable(
            db, L"Filled",
            {field(L"A", dbLong), empty, blank, requiredField(L"Given", dbText, 10, L"\"none\""),
             requiredField(L"Memo", dbMemo, 0, L""), field(L"Free", dbText, 10)});
    }
    connectTo("plan.mdb");
    run("(sg_table \"Filled\")");
    EXPECT_THAT(run("(sg_append '((\"A\" . 1)))"), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3314) "));
    EXPECT_THAT(run("(sg_append 0 '((\"A\" . 1) (\"Blank\" . \"mine\")))"),
                StartsWith("((\"A\" . 1) (\"Empty\" . \"\") (\"Blank\" . \"mine\") (\"Given\" . "));
    COleVariant value;
    currentConnection()->GetFieldValueByName(L"Empty", value);
    EXPECT_EQ(shown(value), L"");
    run("(sg_append 0 '((\"A\" . 2)))");
    currentConnection()->GetFieldValueByName(L"Blank", value);
    EXPECT_EQ(shown(value), L" ");
    currentConnection()->GetFieldValueByName(L"Free", value);
    EXPECT_EQ(shown(value), L"Null");
}

// --- running numbers ---

TEST_F(WritingTest, ACounterIsDrivenUpToItsNumber) {
    const std::string more = " '((\"Name\" . \"x\")))";
    EXPECT_EQ(fieldAfter("Id", "(sg_append_withindex 10" + more), "10");
    EXPECT_EQ(run("(sg_count)"), "4");
    EXPECT_EQ(run("(sg_append_withindex 9" + more), "\"error - unable to match index\"");
    EXPECT_EQ(run("(sg_count)"), "4") << "nothing was appended";
    EXPECT_EQ(run("(sg_append_withindex 10" + more), "\"error - unable to match index\"");
    EXPECT_EQ(run("(sg_count)"), "4") << "the one past it was deleted again";
    EXPECT_EQ(fieldAfter("Id", "(sg_append_withindex 12" + more), "12");
    EXPECT_THAT(run("(sg_append_withindex 20 '((\"None\" . 1)))"),
                StartsWith("nil | \nAppend error: None"));
}

TEST_F(WritingTest, AFieldThatDoesNotCountUpEnds) {
    run("(sg_table \"Empty\")");
    EXPECT_EQ(run("(sg_append_withindex 5 '((\"A\" . 5)))"), "((\"A\" . 5))");
    EXPECT_EQ(run("(sg_append_withindex 9 '((\"A\" . 7)))"), "\"error - unable to match index\"");
    EXPECT_EQ(run("(sg_append_withindex 9 '((\"A\")))"), "\"error - unable to match index\"");
    EXPECT_EQ(run("(sg_count)"), "1");
}

TEST_F(WritingTest, TheUserMayBreakTheCounting) {
    guarded = [this] {
        host().interpreter().interrupt();
        return appendRecordWithIndex();
    };
    eval("(guarded 1000000000 '((\"Name\" . \"x\")))");
    host().interpreter().clearInterrupt();
    EXPECT_EQ(run("(sg_count)"), "3");
}

// --- deleting ---

TEST_F(WritingTest, ADeletedRecordStaysUnderTheCursor) {
    EXPECT_EQ(nameAfter("(sg_skip)"), "\"Bath\"");
    EXPECT_EQ(run("(sg_delete)"), "T");
    EXPECT_THAT(run("(sg_getrec)"), StartsWith("nil | \nSwift Gate Error: "));
    EXPECT_THAT(run("(sg_lastError)"), StartsWith("\"(3167) "));
    EXPECT_EQ(run("(sg_delete)"), "nil") << "without a word";
    EXPECT_EQ(nameAfter("(sg_skip)"), "\"Attic\"");
    EXPECT_EQ(run("(sg_count)"), "2");
}

// --- locks ---

// Another process that holds the first record of "Rooms" from tell(1) to tell(0).
class OtherUser {
  public:
    explicit OtherUser(const std::wstring& file)
        : process_([file](const jet::ChildProcess::Parent& parent) {
              CDaoDatabase db;
              db.Open(file);
              CDaoRecordset rows(&db);
              rows.Open(dbOpenTable, L"Rooms");
              parent.tell(1);
              while (true) {
                  if (parent.hear() == 1) {
                      rows.Edit();
                  } else {
                      rows.CancelUpdate();
                  }
                  parent.tell(1);
              }
          }) {
        process_.hear();
    }
    void lock() { process_.ask(1); }
    void unlock() { process_.ask(0); }

  private:
    jet::ChildProcess process_;
};

const char* const kReplace = "(sg_replace '((\"Name\" . \"mine\")))";

TEST_F(WritingTest, AWriteWaitsForAnotherProcess) {
    for (const char* call : {kReplace, "(sg_delete)"}) {
        SCOPED_TRACE(call);
        run("(sg_top)");
        OtherUser other(path("plan.mdb"));
        other.lock();
        rests_.clear();
        onRest = [&] {
            if (rests_.size() == 3) other.unlock();
        };
        EXPECT_NE(run(call), "nil");
        EXPECT_EQ(rests_.size(), 3U);
        EXPECT_THAT(rests_, Each(AllOf(Ge(10U), Le(499U))));
        onRest = nullptr;
    }
    EXPECT_EQ(run("(sg_count)"), "2");
}

TEST_F(WritingTest, AReplaceGivesUpAndADeleteIsTrueAllTheSame) {
    OtherUser other(path("plan.mdb"));
    other.lock();
    run("(sg_resetLastError)");
    EXPECT_EQ(run(kReplace), "nil");
    EXPECT_EQ(rests_.size(), 20U);
    rests_.clear();
    EXPECT_EQ(run("(sg_delete)"), "T");
    EXPECT_EQ(rests_.size(), 20U);
    EXPECT_EQ(run("(sg_lastError)"), "\"\"");
    EXPECT_FALSE(currentConnection()->HasError());
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Hall\"");
    rests_.clear();
    EXPECT_EQ(nameAfter("(sg_append '((\"Name\" . \"new\")))"), "\"new\"") << "nobody holds it";
    EXPECT_TRUE(rests_.empty());
    EXPECT_EQ(nameAfter("(sg_replace '((\"Name\" . \"newer\")))"), "\"newer\"");
}

TEST_F(WritingTest, AFailedWriteLeavesNoLock) {
    run("(sg_table \"Rooms\")");
    run("(sg_replace '((\"Level\" . 99999)))");
    CDaoDatabase db;
    db.Open(path("plan.mdb"));
    CDaoRecordset rows(&db);
    rows.Open(dbOpenTable, L"Rooms");
    EXPECT_EQ(codeOf([&] {
                  rows.Edit();
                  rows.CancelUpdate();
              }),
              0);
    rows.Close();
    run("(sg_table \"Empty\")");
    run("(sg_append '((\"A\" . 1)))");
    run("(sg_append '((\"A\" . 2)))");
    EXPECT_THAT(run("(sg_replace '((\"A\" . 1)))"), HasSubstr("Swift Gate Error"));
    rows.Open(dbOpenTable, L"Empty");
    rows.MoveLast();
    EXPECT_EQ(codeOf([&] { rows.Edit(); }), 0);
}

// A drawing's own second connection is another user of the file.
TEST_F(WritingTest, TwoDrawingsLockEachOther) {
    documents().create();
    setFolder();
    connectTo("plan.mdb");
    run("(sg_table \"Rooms\")");
    CDaoDatabase db;
    db.Open(path("plan.mdb"));
    CDaoRecordset rows(&db);
    rows.Open(dbOpenTable, L"Rooms");
    rows.Edit();
    onRest = [&] {
        if (rests_.size() == 1) rows.CancelUpdate();
    };
    EXPECT_EQ(nameAfter(kReplace), "\"mine\"");
    EXPECT_EQ(rests_.size(), 1U);
    activate(L"Drawing1.dwg");
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"mine\"");
}

}  // namespace
}  // namespace sg::test
