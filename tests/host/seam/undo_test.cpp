#include "host/editor/undo_history.h"

#include <gmock/gmock.h>

#include "host/model/core/database_state.h"
#include "host/seam/host_fixture.h"
#include "platform/db/dictionary.h"

// Undo and redo of what programs and commands do to a drawing.
namespace sg {
namespace {

using testing::ElementsAre;

class UndoTest : public test::HostTest {
  protected:
    UndoTest() {
        start();
        type("(setvar \"CMDECHO\" 0)");
        type(R"((defun line (x) (entmakex (list '(0 . "LINE") (list 10 x 0 0) (list 11 x 9 0))))
                (defun count (/ s) (if (setq s (ssget "_X")) (sslength s) 0)))");
        history().undo(9);
    }
    UndoHistory& history() { return active().undo(); }
    std::string count() { return eval("(count)"); }
    std::vector<std::wstring> undo(size_t steps = 1) { return history().undo(steps).names; }
    std::vector<std::wstring> redo() { return history().redo().names; }
};

TEST_F(UndoTest, AProgramIsOneStep) {
    type("(repeat 5 (line 1.))");
    type("(progn (setq e (line 2.)) (entdel (entlast)) (line 3.))");
    EXPECT_EQ(count(), "6");
    EXPECT_THAT(undo(), ElementsAre(L"LISP"));
    EXPECT_EQ(count(), "5");
    undo();
    EXPECT_EQ(count(), "0");
    EXPECT_THAT(undo(), ElementsAre());
    redo();
    redo();
    EXPECT_EQ(count(), "6");
    EXPECT_THAT(redo(), ElementsAre());
}

TEST_F(UndoTest, ACommandWithinAProgramIsAStepOfItsOwn) {
    type(R"((progn (line 1.) (command "_.LINE" '(0 0) '(1 0) "") (line 2.)))");
    EXPECT_THAT(undo(3), ElementsAre(L"LISP", L"LINE", L"LISP"));
    type("line 0,0 1,0 2,0\n\nline 3,0 4,0\n\n");
    EXPECT_EQ(count(), "3");
    EXPECT_THAT(undo(), ElementsAre(L"LINE"));
    EXPECT_EQ(count(), "2");
}

TEST_F(UndoTest, WhatChangesNothingLeavesNoStep) {
    type("(line 1.)");
    type("(+ 1 2)");
    type("(setq x 1)");
    type("zoom");
    EXPECT_THAT(undo(2), ElementsAre(L"LISP"));
    type("(setq x 2)");
    EXPECT_THAT(redo(), ElementsAre(L"LISP")) << "nothing has changed in between";
    undo();
    type("(line 5.)");
    EXPECT_THAT(redo(), ElementsAre()) << "something has";
}

TEST_F(UndoTest, EveryKindOfStateFollows) {
    const struct {
        const char *change, *shown, *before, *after;
    } cases[] = {
        {"(command \"_.LAYER\" \"M\" \"Duct\" \"C\" 1 \"\" \"\")",
         "(list (getvar \"CLAYER\") (cdr (assoc 62 (tblsearch \"LAYER\" \"Duct\"))))",
         "(\"0\" nil)", "(\"Duct\" 1)"},
        {"(entmod (subst '(62 . 3) '(62 . 7) (entget (tblobjname \"LAYER\" \"0\"))))",
         "(cdr (assoc 62 (tblsearch \"LAYER\" \"0\")))", "7", "3"},
        {"(setvar \"TEXTSIZE\" 5.0)", "(getvar \"TEXTSIZE\")", "0.2", "5.0"},
        {"(setvar \"OSMODE\" 1)", "(getvar \"OSMODE\")", "4133", "1"},
        {"(dictadd (namedobjdict) \"A\" (entmakex '((0 . \"XRECORD\") (100 . \"AcDbXrecord\") (1 . "
         "\"x\"))))",
         "(cdr (assoc 1 (dictsearch (namedobjdict) \"A\")))", "nil", "\"x\""},
        {"(command \"_.UCS\" \"O\" '(3 4))", "(trans '(0 0) 1 0)", "(0.0 0.0 0.0)",
         "(3.0 4.0 0.0)"},
        {"(command \"_.ZOOM\" \"W\" '(0 0) '(4 3))", "(getvar \"VIEWSIZE\")", "9.0", "3.0"},
        {"(command \"_.BLOCK\" \"B\" '(0 0) (line 1.) \"\")",
         "(list (count) (type (tblobjname \"BLOCK\" \"B\")))", "(0 nil)", "(0 ENAME)"},
        {"(command \"_.STYLE\" \"S\" \"txt\" 1 1 0 \"N\" \"N\" \"N\")",
         "(list (getvar \"TEXTSTYLE\") (null (tblsearch \"STYLE\" \"S\")))", "(\"Standard\" T)",
         "(\"S\" nil)"},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(eval(c.shown), c.before) << c.change;
        type(c.change);
        EXPECT_EQ(eval(c.shown), c.after) << c.change;
        while (!undo().empty()) {
        }
        EXPECT_EQ(eval(c.shown), c.before) << c.change;
        while (!redo().empty()) {
        }
        EXPECT_EQ(eval(c.shown), c.after) << c.change;
        while (!undo().empty()) {
        }
    }
}

TEST_F(UndoTest, SelectionsFollow) {
    type("(setq a (line 0.))");
    type("(setq b (line 1.) both (ssget \"_C\" '(-1 -1) '(2 2)))");
    EXPECT_EQ(eval("(sslength both)"), "2");
    undo();
    EXPECT_EQ(eval("(sslength (ssget \"_C\" '(-1 -1) '(2 2)))"), "1");
    EXPECT_EQ(eval("(equal (ssname (ssget \"_L\") 0) a)"), "T");
    EXPECT_EQ(eval("(list (sslength both) (ssname both 0))"), "(2 nil)");
    redo();
    EXPECT_EQ(eval("(sslength (ssget \"_C\" '(-1 -1) '(2 2)))"), "2");
    EXPECT_EQ(eval("(cdr (assoc 0 (entget (ssname both 0))))"), "\"LINE\"");
    type("(command \"_.MOVE\" b \"\" '(0 0) '(50 0))");
    EXPECT_EQ(eval("(sslength (ssget \"_C\" '(-1 -1) '(2 2)))"), "1");
    undo();
    EXPECT_EQ(eval("(sslength (ssget \"_C\" '(-1 -1) '(2 2)))"), "2");
    type("(command \"_.ERASE\" \"_ALL\" \"\")");
    EXPECT_EQ(eval("(ssget \"_P\")"), "nil");
    undo();
    EXPECT_EQ(eval("(sslength (ssget \"_P\"))"), "2");
}

TEST_F(UndoTest, MarksAndGroups) {
    type("(line 1.)");
    history().setMark();
    type("(line 2.)");
    type("(line 3.)");
    EXPECT_EQ(eval("(getvar \"UNDOMARKS\")"), "1");
    const UndoHistory::Outcome back = history().undoToMark();
    EXPECT_EQ(back.names.size(), 2u);
    EXPECT_TRUE(back.reachedMark);
    EXPECT_EQ(count(), "1");
    EXPECT_EQ(history().markCount(), 0u);
    EXPECT_EQ(redo().size(), 2u) << "what one UNDO took back comes again at once";
    EXPECT_EQ(count(), "3");

    type("(command \"_.UNDO\" \"_BE\")");
    type("(line 4.)");
    type("(command \"_.CIRCLE\" '(0 0) 1)");
    EXPECT_EQ(eval("(logand 8 (getvar \"UNDOCTL\"))"), "8");
    type("(command \"_.UNDO\" \"_E\")");
    EXPECT_EQ(count(), "5");
    EXPECT_THAT(undo(), ElementsAre(L"GROUP"));
    EXPECT_EQ(count(), "3");
    EXPECT_THAT(redo(), ElementsAre(L"GROUP"));
    EXPECT_EQ(count(), "5");
    EXPECT_FALSE(history().endGroup());
}

TEST_F(UndoTest, AMarkEndsAStepByStepUndo) {
    type("(line 1.)");
    history().setMark();
    type("(line 2.)");
    const UndoHistory::Outcome outcome = history().undo(5);
    EXPECT_EQ(outcome.names.size(), 1u);
    EXPECT_TRUE(outcome.reachedMark);
    EXPECT_THAT(undo(5), ElementsAre(L"LISP"));
}

TEST_F(UndoTest, Control) {
    type("(line 1.)");
    history().setMode(UndoHistory::Mode::none);
    EXPECT_THAT(undo(), ElementsAre());
    type("(line 2.)");
    EXPECT_THAT(undo(), ElementsAre());
    history().setMode(UndoHistory::Mode::one);
    for (const char* each : {"(line 3.)", "(line 4.)", "(line 5.)"})
        type(each);
    EXPECT_EQ(undo(9).size(), 1u);
    EXPECT_EQ(count(), "4");
    history().setMode(UndoHistory::Mode::all);
    type("(line 6.)");
    EXPECT_EQ(undo(9).size(), 1u);
}

TEST_F(UndoTest, TheOldestIsForgottenWhenThereIsTooMuch) {
    history().mostBytes = 4000;
    for (int i = 0; i < 100; ++i)
        type("(line 1.)");
    const size_t kept = undo(1000).size();
    EXPECT_GT(kept, 5u);
    EXPECT_LT(kept, 100u);
    EXPECT_EQ(count(), std::to_string(100 - kept));
    redo();
    EXPECT_EQ(count(), "100");
}

TEST_F(UndoTest, ManyChangesOfOneObjectTakeTheRoomOfOne) {
    type("(setq e (line 1.))");
    const auto change = [&](const char* times) {
        const size_t before = history().log().byteCount();
        type(std::string("(repeat ") + times +
             " (entmod (subst '(10 7.0 0.0 0.0) (assoc 10 (entget e)) (entget e)))"
             " (entmod (subst '(10 1.0 0.0 0.0) (assoc 10 (entget e)) (entget e))))");
        return history().log().byteCount() - before;
    };
    const size_t once = change("1");
    EXPECT_EQ(change("500"), once);
    undo(2);
    EXPECT_EQ(eval("(cdr (assoc 10 (entget e)))"), "(1.0 0.0 0.0)");
}

TEST_F(UndoTest, ATransactionOfAProgramIsNotTakenBackHalfway) {
    type("(line 1.)");
    active().transactionManager()->startTransaction();
    EXPECT_TRUE(history().undo(1).refused);
    EXPECT_EQ(count(), "1");
    active().transactionManager()->abortTransaction();
    EXPECT_THAT(undo(), ElementsAre(L"LISP"));
}

// ---- Dictionaries -------------------------------------------------------------------------------

class DictionaryUndoTest : public UndoTest {
  protected:
    DictionaryUndoTest() {
        type(
            R"((defun record (x) (entmakex (list '(0 . "XRECORD") '(100 . "AcDbXrecord") (cons 1 x))))
                (defun add (n) (dictadd (namedobjdict) n (record n)))
                (defun names (/ out) (foreach p (entget (namedobjdict))
                  (if (and (= 3 (car p)) (< (strlen (cdr p)) 3)) (setq out (cons (cdr p) out))))
                  (reverse out)))");
    }
};

TEST_F(DictionaryUndoTest, EntriesComeBackToTheirPlaces) {
    type("(mapcar 'add '(\"a\" \"b\" \"c\" \"d\"))");
    type("(progn (dictremove (namedobjdict) \"b\") (dictremove (namedobjdict) \"C\") (add \"e\"))");
    EXPECT_EQ(eval("(names)"), "(\"a\" \"d\" \"e\")");
    undo();
    EXPECT_EQ(eval("(names)"), "(\"a\" \"b\" \"c\" \"d\")");
    redo();
    EXPECT_EQ(eval("(names)"), "(\"a\" \"d\" \"e\")");
    undo(2);
    EXPECT_EQ(eval("(names)"), "nil");
    redo();
    EXPECT_EQ(eval("(names)"), "(\"a\" \"d\" \"e\")") << "both steps come back";
}

TEST_F(DictionaryUndoTest, SweptPlacesToo) {
    type("(mapcar 'add '(\"a\" \"b\" \"c\" \"d\" \"e\" \"f\"))");
    type("(foreach n '(\"a\" \"b\" \"c\" \"e\" \"f\") (dictremove (namedobjdict) n))");
    type("(foreach n (list \"g\" \"h\") (add n))");
    undo(2);
    EXPECT_EQ(eval("(names)"), "(\"a\" \"b\" \"c\" \"d\" \"e\" \"f\")");
}

TEST_F(DictionaryUndoTest, CancelTakesBackWhatOneOpenHasDone) {
    type("(mapcar 'add '(\"a\" \"b\"))");
    AcDbDictionary* dictionary = nullptr;
    ASSERT_EQ(active().database()->getNamedObjectsDictionary(dictionary, AcDb::kForWrite),
              Acad::eOk);
    AcDbObjectId a;
    dictionary->getAt(L"a", a);
    EXPECT_EQ(dictionary->remove(L"a"), Acad::eOk);
    EXPECT_EQ(dictionary->remove(L"b"), Acad::eOk);
    EXPECT_FALSE(dictionary->has(L"a"));
    EXPECT_EQ(dictionary->cancel(), Acad::eOk);
    EXPECT_EQ(eval("(names)"), "(\"a\" \"b\")");
}

TEST_F(DictionaryUndoTest, AFullStateBetweenThemKeepsTheOrder) {
    type("(mapcar 'add '(\"a\" \"b\" \"c\"))");
    type(
        "(progn (dictremove (namedobjdict) \"a\") (dictrename (namedobjdict) \"b\" \"x\")"
        " (dictremove (namedobjdict) \"c\"))");
    EXPECT_EQ(eval("(names)"), "(\"x\")");
    undo();
    EXPECT_EQ(eval("(names)"), "(\"a\" \"b\" \"c\")");
    redo();
    EXPECT_EQ(eval("(names)"), "(\"x\")");
}

TEST_F(DictionaryUndoTest, AnEntryTakesTheSameRoomInALargeDictionary) {
    const auto roomOfOne = [&](const char* name) {
        const size_t before = history().log().byteCount();
        type(std::string("(add \"") + name + "\")");
        return history().log().byteCount() - before;
    };
    const size_t small = roomOfOne("s");
    type("(repeat 2000 (setq n (strcat \"entry \" (itoa (setq i (if i (1+ i) 0))))) (add n))");
    EXPECT_EQ(roomOfOne("t"), small);
}

}  // namespace
}  // namespace sg
