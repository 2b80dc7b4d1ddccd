// What ends statements that would go on too long, grow too large or reach too far.

#include "host/sql/run/session_fixture.h"

namespace sg::sql {
namespace {

class LimitsTest : public SessionTest {
  protected:
    void store(const std::wstring& name, const std::wstring& table) {
        jet::QueryRow from;
        from.attribute = jet::queryAttributes::table;
        from.name1 = table;
        jet::QueryRow all;
        all.attribute = jet::queryAttributes::column;
        all.expression = L"*";
        jet::putQuery(*database_, name, 0, {from, all});
    }
    // Ends a statement at its n-th look.
    void cancelAfter(int looks) {
        session_->limit({[looks]() mutable { return --looks < 0; }});
    }
    static std::wstring crossJoin(int tables) {
        std::wstring from;
        for (int i = 0; i < tables; ++i) {
            from += (i == 0 ? L" FROM Rooms AS r" : L", Rooms AS r") + std::to_wstring(i);
        }
        return from;
    }
    static std::wstring repeated(const wchar_t* text, int times, const wchar_t* between) {
        std::wstring all;
        for (int i = 0; i < times; ++i) {
            all += (i == 0 ? L"" : between) + std::wstring(text);
        }
        return all;
    }
};

TEST_F(LimitsTest, Cancels) {
    const std::wstring statements[] = {
        L"SELECT Count(*)" + crossJoin(16),
        L"SELECT r0.Id" + crossJoin(16) + L" ORDER BY r1.Code",
        L"SELECT Id FROM Rooms WHERE Id IN (SELECT r0.Level" + crossJoin(16) + L")",
        L"SELECT TOP 1 r0.Id" + crossJoin(16) + L" ORDER BY r1.Code",
    };
    for (const std::wstring& statement : statements) {
        cancelAfter(3);
        EXPECT_EQ(rows(statement), "error 3059") << toUtf8(statement);
    }
    for (const wchar_t* action :
         {L"INSERT INTO Levels (Id) SELECT r0.Id", L"SELECT r0.Id INTO Made"}) {
        cancelAfter(3);
        EXPECT_EQ(executed(action + crossJoin(16)), "error 3059");
    }
    cancelAfter(3);
    EXPECT_EQ(executed(L"DELETE FROM Rooms WHERE Id IN (SELECT r0.Id" + crossJoin(16) + L")"),
              "error 3059");
    // What was cancelled left nothing behind, and others go on.
    session_->limit({});
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Rooms"), "5");
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Levels"), "3");
    EXPECT_EQ(rows(L"SELECT * FROM Made"), "error 3078");
}

TEST_F(LimitsTest, WritingIsCancelledToo) {
    for (int i = 0; i < 10; ++i) {
        executed(L"INSERT INTO Rooms (Code) SELECT Code FROM Rooms");
    }
    int looks = 0;
    session_->limit({[&] { return ++looks, false; }});
    EXPECT_EQ(executed(L"SELECT Id INTO Made FROM Rooms"), "5120");
    const int all = looks;
    ASSERT_GT(all, 3);
    cancelAfter(all - 3);
    EXPECT_EQ(executed(L"SELECT Id INTO Other FROM Rooms"), "error 3059");
    EXPECT_EQ(rows(L"SELECT * FROM Other"), "error 3078");
    EXPECT_EQ(database_->transactionDepth(), 0);
}

TEST_F(LimitsTest, WhatTheCallableThrowsComesThrough) {
    session_->limit({[]() -> bool { throw std::runtime_error("enough"); }});
    EXPECT_THROW(session_->select(L"SELECT Count(*)" + crossJoin(16)), std::runtime_error);
}

TEST_F(LimitsTest, Results) {
    session_->limit({{}, 20'000});
    EXPECT_EQ(rows(L"SELECT r0.Code" + crossJoin(8)), "error 3183");
    EXPECT_EQ(executed(L"INSERT INTO Levels (Id) SELECT r0.Id" + crossJoin(8)), "error 3183");
    EXPECT_EQ(rows(L"SELECT Count(*)" + crossJoin(8)), "390625");
}

TEST_F(LimitsTest, QueriesThatAskEachOther) {
    store(L"Self", L"Self");
    store(L"Ping", L"Pong");
    store(L"Pong", L"Ping");
    EXPECT_EQ(rows(L"SELECT * FROM Self"), "error 3102");
    EXPECT_EQ(rows(L"SELECT * FROM Rooms INNER JOIN Ping ON Rooms.Id = Ping.Id"), "error 3102");
    // One that is asked twice asks nothing of itself.
    store(L"Once", L"Levels");
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Once AS a, Once AS b"), "9");
    store(L"Deep0", L"Levels");
    for (int i = 1; i < 60; ++i) {
        store(L"Deep" + std::to_wstring(i), L"Deep" + std::to_wstring(i - 1));
    }
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Deep30"), "3");
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Deep59").substr(0, 10), "error 3360");
}

TEST_F(LimitsTest, Sizes) {
    EXPECT_EQ(rows(L"SELECT " + repeated(L"Id", 2001, L",") + L" FROM Rooms").substr(0, 10),
              "error 3360");
    EXPECT_EQ(rows(L"SELECT " + repeated(L"1", 3000, L"+")).substr(0, 10), "error 3360");
    EXPECT_EQ(rows(repeated(L"SELECT Id FROM Rooms", 501, L" UNION ALL ")).substr(0, 10),
              "error 3360");
    EXPECT_EQ(rows(L"SELECT r0.Id" + crossJoin(65)).substr(0, 10), "error 3360");
    EXPECT_EQ(
        rows(L"SELECT Count(*) FROM Rooms WHERE Id IN (" + repeated(L"1", 20'000, L",") + L")"),
        "1");
}

// SQLite's parser would not take them nested.
TEST_F(LimitsTest, LongChains) {
    EXPECT_EQ(rows(L"SELECT " + repeated(L"'a'", 200, L" & ")), std::string(200, 'a'));
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Rooms WHERE " + repeated(L"Id = 3", 300, L" OR ")), "1");
    EXPECT_EQ(rows(L"SELECT Count(*) FROM Rooms WHERE " + repeated(L"Id = 3", 300, L" AND ")), "1");
    EXPECT_EQ(rows(L"SELECT " + repeated(L"1", 300, L" + ")), "300");
    EXPECT_EQ(rows(L"SELECT " + repeated(L"1", 300, L" - ")), "-298");
    EXPECT_EQ(rows(L"SELECT " + repeated(L"IIf(Id = 9, 1, ", 40, L"") + L"2" +
                   repeated(L")", 40, L"") + L" FROM Rooms WHERE Id = 1"),
              "2");
    EXPECT_EQ(rows(repeated(L"SELECT * FROM (", 30, L"") + L"SELECT Id FROM Levels" +
                   repeated(L") AS s", 30, L"")),
              "1; 2; 3");
}

// Texts are texts, whatever stands in them.
TEST_F(LimitsTest, TextsStayTexts) {
    check({{L"SELECT 'a''b', \"it's\", 'x'' OR 1=1 --'", "a'b it's x' OR 1=1 --"},
           {L"SELECT Id FROM Rooms WHERE Code = 'A1'' OR ''1''=''1'", ""},
           {L"SELECT Count(*) FROM Rooms WHERE Code = [p]", "0"}},
          {{L"p", std::wstring(L"A1' OR '1'='1")}});
    EXPECT_EQ(rows(L"SELECT Id FROM Rooms WHERE Code = [p]", {{L"p", std::wstring(L"A1\0x", 4)}}),
              "");
}

}  // namespace
}  // namespace sg::sql
