#include <gmock/gmock.h>

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/header_variables.h"
#include "host/seam/host_fixture.h"
#include "platform/db/database.h"
#include "platform/db/line.h"
#include "platform/db/transactions.h"

// LISP's functions on entities while others have objects open, in transactions, and in a user
// coordinate system.
namespace sg {
namespace {

class LispEntitiesTest : public test::HostTest {
  protected:
    LispEntitiesTest() {
        start();
        eval("(setq line (entmakex '((0 . \"LINE\") (10 0 0 0) (11 1 0 0))))");
    }

    AcDbDatabase& database() { return *active().database(); }
    AcDbObjectId lineId() {
        return model::peek<AcDbBlockTableRecord>(database().modelSpaceId())->entityIds().front();
    }
    size_t entityCount() {
        return model::peek<AcDbBlockTableRecord>(database().modelSpaceId())->entityIds().size();
    }
    std::string endOfLine() { return eval("(cdr (assoc 11 (entget line)))"); }
};

TEST_F(LispEntitiesTest, WhatIsOpenForWriteIsNeitherReadNorChanged) {
    eval("(setq before (entget line))");
    AcDbLine* line = nullptr;
    ASSERT_EQ(acdbOpenObject(line, lineId(), AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(eval("(entget line)"), "nil");
    EXPECT_EQ(eval("(entmod (list (cons -1 line) '(62 . 1)))"), "nil");
    EXPECT_EQ(eval("(entdel line)"), "nil");
    EXPECT_EQ(eval("(eq (entlast) line)"), "T") << "walking opens nothing";
    line->close();
    EXPECT_EQ(eval("(equal before (entget line))"), "T");
}

TEST_F(LispEntitiesTest, WhatIsOpenForReadIsReadOnly) {
    AcDbLine* line = nullptr;
    ASSERT_EQ(acdbOpenObject(line, lineId()), Acad::eOk);
    EXPECT_EQ(endOfLine(), "(1.0 0.0 0.0)");
    EXPECT_EQ(eval("(entmod (list (cons -1 line) '(62 . 1)))"), "nil");
    EXPECT_EQ(eval("(entdel line)"), "nil");
    line->close();
}

TEST_F(LispEntitiesTest, NothingIsMadeInASpaceThatIsOpen) {
    AcDbBlockTableRecord* space = nullptr;
    ASSERT_EQ(acdbOpenObject(space, database().modelSpaceId(), AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(eval("(entmake '((0 . \"LINE\") (10 0 0 0) (11 1 0 0)))"), "nil");
    EXPECT_EQ(eval("(entmake '((0 . \"POLYLINE\")))"), "((0 . \"POLYLINE\"))");
    EXPECT_EQ(eval("(entmake '((0 . \"VERTEX\") (10 0 0 0)))"), "((0 . \"VERTEX\") (10 0 0 0))");
    EXPECT_EQ(eval("(entmake '((0 . \"SEQEND\")))"), "nil");
    space->close();
    EXPECT_EQ(entityCount(), 1u);
    EXPECT_EQ(eval("(entnext line)"), "nil");
}

TEST_F(LispEntitiesTest, NoRecordIsMadeInATableThatIsOpen) {
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(database().getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
    EXPECT_EQ(eval("(entmake '((0 . \"LAYER\") (2 . \"New\") (70 . 0)))"), "nil");
    EXPECT_EQ(eval("(entmake '((0 . \"LINE\") (8 . \"New\") (10 0 0 0) (11 1 0 0)))"), "nil");
    layers->close();
    EXPECT_EQ(eval("(tblsearch \"LAYER\" \"New\")"), "nil");
    EXPECT_EQ(entityCount(), 1u);
}

TEST_F(LispEntitiesTest, AnAbortedTransactionTakesBackWhatProgramsDid) {
    eval("(setq before (entget line '(\"*\")) polyline nil)");
    AcTransactionManager& transactions = *active().transactionManager();
    transactions.startTransaction();
    eval(R"((entmod (list (cons -1 line) '(8 . "New") '(11 5.0 5.0 5.0)))
            (entmake '((0 . "POLYLINE")))
            (entmake '((0 . "VERTEX") (10 0 0 0)))
            (setq polyline (entmakex '((0 . "SEQEND"))))
            (entmake '((0 . "BLOCK") (2 . "Damper") (10 0 0 0) (70 . 0)))
            (entmake '((0 . "ENDBLK")))
            (dictadd (namedobjdict) "MINE" (entmakex '((0 . "XRECORD") (1 . "a"))))
            (entdel line))");
    EXPECT_EQ(eval("(entget line)"), "nil");
    transactions.abortTransaction();
    EXPECT_EQ(eval("(equal before (entget line '(\"*\")))"), "T");
    EXPECT_EQ(eval("(list (entget polyline) (entnext line) (tblsearch \"LAYER\" \"New\")"
                   " (tblsearch \"BLOCK\" \"Damper\") (dictsearch (namedobjdict) \"MINE\"))"),
              "(nil nil nil nil nil)");
}

TEST_F(LispEntitiesTest, PointsOfTheUserCoordinateSystem) {
    model::HeaderVariables& header = model::DatabaseState::of(database()).changeHeader();
    header.set(L"UCSORG", AcGePoint3d(10, 20, 30));
    header.set(L"UCSXDIR", AcGePoint3d(0, 1, 0));
    header.set(L"UCSYDIR", AcGePoint3d(-1, 0, 0));
    EXPECT_EQ(eval("(trans '(1 2 3) 1 0)"), "(8.0 21.0 33.0)");
    EXPECT_EQ(eval("(trans '(8 21 33) 0 1)"), "(1.0 2.0 3.0)");
    EXPECT_EQ(eval("(trans '(1 2 3) 1 0 T)"), "(-2.0 1.0 3.0)");
    EXPECT_EQ(eval("(trans '(1 2 3) 1 '(1 0 0))"), "(21.0 33.0 8.0)");
    EXPECT_EQ(eval("(trans '(1 2 3) 1 line)"), "(8.0 21.0 33.0)");
}

// A walk visits each entity once, however long the polylines among them are.
TEST_F(LispEntitiesTest, LongPolylinesAreWalked) {
    EXPECT_EQ(eval(R"((entmake '((0 . "POLYLINE")))
                      (setq i 0)
                      (repeat 2000
                        (entmake (list '(0 . "VERTEX") (list 10 i 0.0 0.0)))
                        (setq i (1+ i)))
                      (setq end (entmakex '((0 . "SEQEND"))) e (entnext) count 0)
                      (while e (setq count (1+ count) e (entnext e)))
                      (list count (- (cadr (assoc 10 (entget (entnext end)))) 0.0)))"),
              "(2003 0.0)");
}

}  // namespace
}  // namespace sg
