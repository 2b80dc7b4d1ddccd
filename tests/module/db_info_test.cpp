#include "database/db_info.h"

#include <gmock/gmock.h>

#include "module/module_fixture.h"

namespace sg {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class DbInfoTest : public ModuleTest {
  protected:
    DbInfoTest() {
        start();
        documents().create();
        documents().create();  // the entries: 3 2 1
    }
    ~DbInfoTest() override {
        // What a test gave the entries lives on its stack.
        setCurrentDatabase(nullptr, L"", 0);
        for (const auto& entry : dbInfoList())
            entry->pConnection = nullptr;
    }
    static constexpr const wchar_t* kFirst = L"Drawing1.dwg";
    static constexpr const wchar_t* kSecond = L"Drawing2.dwg";
    static constexpr const wchar_t* kThird = L"Drawing3.dwg";
};

TEST_F(DbInfoTest, SwitchingDrawingsSwapsTheHeadAndReconnectsNothing) {
    FakeConnection one("one", log), two("two", log);
    connect(kFirst, &one, L"one.mdb");
    connect(kSecond, &two, L"two.mdb", true);
    const struct {
        const wchar_t* active;
        Log entries;
        CDBConnection* connection;
        const char* current;
    } steps[] = {
        {kThird, {"Drawing3.dwg", "Drawing2.dwg", "Drawing1.dwg"}, nullptr, " 0"},
        {kFirst, {"Drawing1.dwg", "Drawing2.dwg", "Drawing3.dwg"}, &one, "one.mdb 0"},
        {kSecond, {"Drawing2.dwg", "Drawing1.dwg", "Drawing3.dwg"}, &two, "two.mdb -1"},
        {kSecond, {"Drawing2.dwg", "Drawing1.dwg", "Drawing3.dwg"}, &two, "two.mdb -1"},
        {kThird, {"Drawing3.dwg", "Drawing1.dwg", "Drawing2.dwg"}, nullptr, " 0"},
        {kSecond, {"Drawing2.dwg", "Drawing1.dwg", "Drawing3.dwg"}, &two, "two.mdb -1"},
        {kFirst, {"Drawing1.dwg", "Drawing2.dwg", "Drawing3.dwg"}, &one, "one.mdb 0"},
    };
    for (const auto& step : steps) {
        activate(step.active);
        const DB_INFO* const entry = &entryOf(step.active);
        selectDocumentDatabase();
        EXPECT_EQ(entries(), step.entries);
        EXPECT_EQ(dbInfoList().front().get(), entry) << "the entry itself moved";
        EXPECT_EQ(currentConnection(), step.connection);
        EXPECT_EQ(current(), step.current);
    }
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(DbInfoTest, TheHeadIsTakenOverOnlyWhenItsConnectionIsNotTheCurrentOne) {
    FakeConnection one("one", log), other("other", log);
    connect(kThird, &one, L"one.mdb", true);
    setCurrentDatabase(&other, L"other.mdb", 0);
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), &one);
    EXPECT_EQ(current(), "one.mdb -1");
    setCurrentDatabase(&one, L"still here", 5);
    selectDocumentDatabase();
    EXPECT_EQ(current(), "still here 5");
}

TEST_F(DbInfoTest, ADrawingWithoutAnEntryHasNoDatabase) {
    FakeConnection one("one", log);
    connect(kThird, &one, L"one.mdb");
    selectDocumentDatabase();
    ASSERT_EQ(currentConnection(), &one);
    entryOf(kThird).strDocument = L"drawing3.DWG";  // names compare exactly
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), nullptr);
    EXPECT_EQ(current(), " 0");
    EXPECT_THAT(entries(), ElementsAre("drawing3.DWG", "Drawing2.dwg", "Drawing1.dwg"));
    EXPECT_EQ(dbInfoList().front()->pConnection, &one) << "the entries are left alone";

    setCurrentDatabase(&one, L"one.mdb", -1);
    const DbInfoList kept = std::exchange(dbInfoList(), {});
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), nullptr);
    EXPECT_EQ(current(), " 0");
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(DbInfoTest, TheFirstOfSeveralEntriesCounts) {
    FakeConnection one("one", log), two("two", log);
    connect(kFirst, &one, L"one.mdb");
    connect(kSecond, &two, L"two.mdb");
    entryOf(kSecond).strDocument = kFirst;
    activate(kFirst);
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), &two);
    EXPECT_THAT(entries(), ElementsAre("Drawing1.dwg", "Drawing3.dwg", "Drawing1.dwg"));
}

TEST_F(DbInfoTest, ADestroyedDatabaseIsForgottenEverywhere) {
    for (const int32_t status : {-1, 2, 1000}) {
        log.clear();
        FakeConnection lost("lost", log), alsoLost("also", log), good("good", log);
        connect(kThird, &lost, L"lost.mdb");
        connect(kSecond, &alsoLost, L"also.mdb");
        connect(kFirst, &good, L"good.mdb");
        setCurrentDatabase(&lost, L"lost.mdb", -1);
        lost.setStatus(status);
        alsoLost.setStatus(status);
        selectDocumentDatabase();
        EXPECT_EQ(currentConnection(), nullptr);
        EXPECT_EQ(current(), " 0");
        for (const wchar_t* name : {kThird, kSecond}) {
            EXPECT_EQ(entryOf(name).pConnection, nullptr);
            EXPECT_EQ(entryOf(name).strDatabase, L"");
        }
        EXPECT_EQ(entryOf(kFirst).pConnection, &good);
        EXPECT_EQ(entryOf(kFirst).strDatabase, L"good.mdb");
        EXPECT_THAT(log, IsEmpty()) << "nothing is closed, opened or deleted";
    }
}

TEST_F(DbInfoTest, StatusZeroAndOneAreValid) {
    FakeConnection one("one", log);
    connect(kThird, &one, L"one.mdb");
    for (const int32_t status : {0, 1}) {
        one.setStatus(status);
        selectDocumentDatabase();
        EXPECT_EQ(currentConnection(), &one) << status;
    }
}

TEST_F(DbInfoTest, AClosedDatabaseLosesItsNameAndIsNotOpenedAgain) {
    FakeConnection one("one", log);
    connect(kThird, &one, L"one.mdb", true);
    one.setOpen(false);
    selectDocumentDatabase();
    EXPECT_THAT(log, ElementsAre("close one"));
    EXPECT_EQ(currentConnection(), &one);
    EXPECT_EQ(current(), " -1");
    EXPECT_EQ(entryOf(kThird).pConnection, &one);
    EXPECT_EQ(entryOf(kThird).strDatabase, L"");
}

TEST_F(DbInfoTest, Reopening) {
    const struct {
        const wchar_t* answer;
        bool opened;
    } cases[] = {
        {L"", false}, {L"*REPAIR*", false}, {L"one.mdb", true}, {L"*repair*", true}, {L" ", true},
    };
    for (const auto& c : cases) {
        log.clear();
        FakeConnection one("one", log);
        one.openAnswers = c.answer;
        connect(kThird, nullptr, L"");
        setCurrentDatabase(&one, L"wanted.mdb", -1);
        reopenCurrentDatabase();
        EXPECT_THAT(log, ElementsAre("open one wanted.mdb -1"));
        EXPECT_EQ(currentConnection(), c.opened ? &one : nullptr) << toUtf8(c.answer);
        EXPECT_EQ(current(), c.opened ? "wanted.mdb -1" : " 0");
        EXPECT_EQ(entryOf(kThird).pConnection, c.opened ? &one : nullptr);
        EXPECT_EQ(entryOf(kThird).strDatabase, c.opened ? L"wanted.mdb" : L"");
        entryOf(kThird).pConnection = nullptr;
    }
    log.clear();
    FakeConnection one("one", log);
    setCurrentDatabase(&one, L"", 0);
    reopenCurrentDatabase();
    setCurrentDatabase(nullptr, L"one.mdb", 0);
    reopenCurrentDatabase();
    EXPECT_THAT(log, IsEmpty()) << "without a name or a connection there is nothing to do";
}

TEST_F(DbInfoTest, ClosingADrawingClosesAndDeletesItsConnection) {
    auto* const one = new FakeConnection("one", log);
    auto* const two = new FakeConnection("two", log);
    connect(kFirst, one, L"one.mdb");
    connect(kSecond, two, L"two.mdb");
    activate(kSecond);
    selectDocumentDatabase();
    documents().close(documentAt(0));
    EXPECT_THAT(log, ElementsAre("close one", "delete one"));
    EXPECT_EQ(currentConnection(), nullptr);
    EXPECT_THAT(entries(), ElementsAre("Drawing3.dwg", "Drawing2.dwg"));
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), two) << "the other drawing has its database still";
    log.clear();
    documents().close(documentAt(1));
    EXPECT_THAT(entries(), ElementsAre("Drawing2.dwg"));
    EXPECT_THAT(log, IsEmpty()) << "that drawing had none";
    documents().close(documentAt(0));
    EXPECT_THAT(log, ElementsAre("close two", "delete two"));
}

TEST_F(DbInfoTest, AClosedConnectionIsDeletedWithItsDrawing) {
    auto* const one = new FakeConnection("one", log);
    one->setOpen(false);
    connect(kThird, one, L"one.mdb");
    documents().close(active());
    EXPECT_THAT(log, ElementsAre("close one", "close one", "delete one"));
}

TEST_F(DbInfoTest, TheHeadEntryGoesWhicheverDrawingItStandsFor) {
    FakeConnection two("two", log);
    connect(kSecond, &two, L"two.mdb");
    dbInfoList().pop_front();  // the third drawing has no entry
    documents().close(active());
    EXPECT_THAT(entries(), ElementsAre("Drawing1.dwg"));
    EXPECT_THAT(log, IsEmpty()) << "a connection that only this entry held is not closed";
}

TEST_F(DbInfoTest, ADeletedConnectionIsTakenFromEveryEntry) {
    auto* const shared = new FakeConnection("shared", log);
    connect(kThird, shared, L"a.mdb");
    connect(kFirst, shared, L"a.mdb");
    documents().close(active());
    EXPECT_THAT(log, ElementsAre("close shared", "delete shared"));
    EXPECT_EQ(entryOf(kFirst).pConnection, nullptr);
    activate(kFirst);
    selectDocumentDatabase();
    EXPECT_EQ(currentConnection(), nullptr);
}

TEST_F(DbInfoTest, TheLastDrawingTakesWhatIsLeftWithoutDeletingIt) {
    FakeConnection spare("spare", log), other("other", log);
    dbInfoList().push_back(std::make_unique<DB_INFO>());  // a connection that no drawing owns
    dbInfoList().back()->pConnection = &spare;
    documents().close(active());
    EXPECT_THAT(log, IsEmpty());
    documents().close(active());
    EXPECT_THAT(entries(), ElementsAre("Drawing1.dwg", ""));
    dbInfoList().push_back(std::make_unique<DB_INFO>());
    dbInfoList().back()->pConnection = &other;
    documents().close(active());
    EXPECT_THAT(log, ElementsAre("close spare", "close other"));
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(DbInfoTest, ClosingTheCurrentDatabaseKeepsTheConnection) {
    FakeConnection one("one", log);
    closeCurrentDatabase();
    connect(kThird, &one, L"one.mdb");
    selectDocumentDatabase();
    closeCurrentDatabase();
    EXPECT_THAT(log, ElementsAre("close one"));
    EXPECT_EQ(currentConnection(), &one);
    EXPECT_EQ(currentDatabaseName(), L"");
    EXPECT_EQ(entryOf(kThird).strDatabase, L"");
}

}  // namespace
}  // namespace sg
