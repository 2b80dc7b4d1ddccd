#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <tuple>

#include "host/jet/recordset_fixture.h"

namespace sg::jet {
namespace {

TEST_F(RecordsetTest, ARecordThatOthersDeleteLeavesItsPlace) {
    addCodes({L"A", L"B", L"C"});
    for (const wchar_t* order : orders) {
        TableRecordset rows(*mine_, L"Rooms");
        rows.setIndex(order);
        rows.move(1);
        const Bytes mark = rows.bookmark();
        erase(*theirs_, mark);
        EXPECT_FALSE(rows.isBof() || rows.isEof());
        EXPECT_EQ(codeOf([&] { rows.value(0); }), RecordDeleted);
        EXPECT_EQ(codeOf([&] { rows.value(4); }), RecordDeleted);
        EXPECT_EQ(codeOf([&] { rows.move(0); }), RecordDeleted);
        EXPECT_EQ(codeOf([&] { rows.bookmark(); }), RecordDeleted);
        EXPECT_EQ(codeOf([&] { rows.edit(); }), RecordDeleted);
        EXPECT_EQ(codeOf([&] { rows.erase(); }), RecordDeleted);
        EXPECT_EQ(codeOf([&] { rows.setBookmark(mark); }), RecordDeleted);
        EXPECT_EQ(rows.recordCount(), 2u);
        rows.move(1);
        EXPECT_EQ(at(rows), L"C");
        rows.move(-1);
        EXPECT_EQ(at(rows), L"A");
        rows.moveLast();
        erase(*theirs_, rows.bookmark());
        rows.move(1);
        EXPECT_EQ(at(rows), L"EOF");
        rows.move(-1);
        EXPECT_EQ(at(rows), L"A");
        erase(*mine_, rows.bookmark());
        EXPECT_EQ(at(rows), L"3167") << "until it is moved";
        rows.move(-1);
        EXPECT_EQ(at(rows), L"empty");
        addCodes({L"A", L"B", L"C"});
    }
}

TEST_F(RecordsetTest, ItsOwnDeletionLeavesItsPlaceToo) {
    addCodes({L"A", L"B", L"C"});
    for (const wchar_t* order : {L"", L"ByCode"}) {
        TableRecordset rows(*mine_, L"Rooms");
        rows.setIndex(order);
        rows.move(1);
        rows.erase();
        EXPECT_EQ(at(rows), L"3167");
        EXPECT_EQ(codeOf([&] { rows.erase(); }), RecordDeleted);
        rows.move(-1);
        EXPECT_EQ(at(rows), L"A");
        rows.move(1);
        EXPECT_EQ(at(rows), L"C");
        add(*theirs_, {{L"Code", L"B"}});
    }
}

TEST_F(RecordsetTest, AChangedKeyMovesTheRecordInTheOrder) {
    addCodes({L"A", L"B", L"C", L"D"});
    TableRecordset rows(*mine_, L"Rooms");
    rows.setIndex(L"ByCode");
    rows.move(1);
    change(*theirs_, rows.bookmark(), {{L"Code", L"CC"}});
    EXPECT_EQ(at(rows), L"CC");
    rows.move(1);
    EXPECT_EQ(at(rows), L"D");
    rows.edit();
    set(rows, {{L"Code", L"0"}});
    rows.update();
    EXPECT_EQ(at(rows), L"0");
    rows.move(-1);
    EXPECT_EQ(at(rows), L"BOF");
    rows.move(2);
    EXPECT_EQ(at(rows), L"A");
}

// Everybody writes at random; what a move meets is what the order of the rows says. The model
// knows a row by its place in the file, as bookmarks do: a new row that is put where the current
// one was is the current one.
TEST_F(RecordsetTest, AnyWritesBetweenMovesKeepThePlace) {
    using Place = std::tuple<int, std::wstring, uint32_t>;
    struct Row {
        int level;
        std::wstring code;
        int32_t id;
    };
    for (const std::wstring order : orders) {
        SCOPED_TRACE(testing::PrintToString(order));
        std::mt19937 random(11);
        std::map<uint32_t, Row> model;  // by packed row id
        const auto packed = [](const Bytes& mark) { return ByteView(mark).get32(0); };
        const auto markOf = [&](uint32_t id, Bytes mark) {
            for (int i = 0; i < 4; ++i)
                mark[static_cast<size_t>(i)] = static_cast<uint8_t>(id >> (8 * i));
            return mark;
        };
        const auto placeOf = [&](uint32_t id) {
            const Row& row = model.at(id);
            if (order == L"ByCode") return Place{0, row.code, id};
            if (order == L"ByLevel") return Place{-row.level, row.code, id};
            return Place{order.empty() ? 0 : row.id, L"", id};
        };
        Bytes someMark;
        const auto write = [&](Database& database) {
            const unsigned what = random() % 8;
            const auto some =
                model.empty()
                    ? model.end()
                    : std::next(model.begin(), static_cast<ptrdiff_t>(random() % model.size()));
            const Row row{static_cast<int>(random() % 5),
                          std::wstring(1 + random() % 6, static_cast<wchar_t>(L'A' + random() % 9)),
                          0};
            const std::map<std::wstring, Value> values = {
                {L"Code", row.code},
                {L"Level", int16_t(row.level)},
                {L"Note", std::wstring(random() % 400, L'n')}};
            if (what < 4 || some == model.end()) {
                someMark = add(database, values);
                TableRecordset added(database, L"Rooms");
                added.setBookmark(someMark);
                model[packed(someMark)] = {row.level, row.code, std::get<int32_t>(added.value(0))};
            } else if (what < 6) {
                erase(database, markOf(some->first, someMark));
                model.erase(some);
            } else {
                change(database, markOf(some->first, someMark), values);
                some->second.level = row.level;
                some->second.code = row.code;
            }
        };
        for (int i = 0; i < 60; ++i)
            write(*mine_);
        TableRecordset rows(*mine_, L"Rooms");
        rows.setIndex(order);
        Place place;
        const auto current = [&] { return std::get<2>(place); };
        const auto arrive = [&] {
            place = placeOf(packed(rows.bookmark()));
            ASSERT_EQ(at(rows), model.at(current()).code);
        };
        arrive();
        for (int round = 0; round < 400; ++round) {
            for (unsigned i = random() % 4; i > 0; --i)
                write(random() % 2 ? *mine_ : *theirs_);
            if (random() % 3 == 0) {
                ASSERT_EQ(at(rows), model.contains(current()) ? model.at(current()).code : L"3167");
            }
            ASSERT_EQ(rows.recordCount(), model.size());
            if (model.contains(current())) place = placeOf(current());
            std::vector<Place> all;
            for (const auto& [id, row] : model)
                all.push_back(placeOf(id));
            std::sort(all.begin(), all.end());
            const int64_t step = static_cast<int64_t>(random() % 7) - 3;
            if (step == 0) continue;
            const auto low = std::lower_bound(all.begin(), all.end(), place) - all.begin();
            const auto high = std::upper_bound(all.begin(), all.end(), place) - all.begin();
            const int64_t target = step > 0 ? high + step - 1 : low + step;
            rows.move(step);
            if (target >= 0 && target < static_cast<int64_t>(all.size())) {
                arrive();
                ASSERT_EQ(place, all[static_cast<size_t>(target)]);
            } else {
                ASSERT_EQ(at(rows), target < 0 ? L"BOF" : L"EOF");
                rows.move(target < 0 ? 1 : -1);
                arrive();
                ASSERT_EQ(place, target < 0 ? all.front() : all.back());
            }
        }
        for (const auto& [id, row] : model)
            erase(*mine_, markOf(id, someMark));
    }
}

TEST_F(RecordsetTest, AnOpenTransactionIsSeenAndItsRollbackToo) {
    addCodes({L"A", L"B", L"C"});
    for (const wchar_t* order : {L"", L"ByCode"}) {
        TableRecordset mine(*mine_, L"Rooms");
        TableRecordset theirs(*theirs_, L"Rooms");
        mine.setIndex(order);
        theirs.setIndex(order);
        mine.move(1);
        theirs.move(1);
        mine_->beginTransaction();
        change(*mine_, mine.bookmark(), {{L"Note", L"new"}});
        EXPECT_EQ(mine.value(4), Value(std::wstring(L"new")));
        EXPECT_TRUE(isNull(theirs.value(4)));
        mine.erase();
        EXPECT_EQ(at(mine), L"3167");
        EXPECT_EQ(at(theirs), L"B");
        for (const wchar_t* code : {L"BB", L"D"})
            add(*mine_, {{L"Code", code}});
        mine.move(-1);
        EXPECT_EQ(at(mine), L"A");
        mine.moveLast();
        EXPECT_EQ(mine.recordCount(), 4u);
        EXPECT_EQ(theirs.recordCount(), 3u);
        const Bytes last = mine.bookmark();
        mine_->rollbackTransaction();
        EXPECT_EQ(mine.recordCount(), 3u);
        EXPECT_EQ(at(mine), L"3167");
        mine.move(-1);
        EXPECT_EQ(at(mine), L"C");
        mine.move(-1);
        EXPECT_EQ(at(mine), L"B");
        EXPECT_TRUE(isNull(mine.value(4)));
        EXPECT_EQ(codeOf([&] { mine.setBookmark(last); }), RecordDeleted);
    }
}

TEST_F(RecordsetTest, AScopeAroundItHoldsTheStateAndNoLonger) {
    addCodes({L"A"});
    TableRecordset rows(*mine_, L"Rooms");
    const Bytes mark = rows.bookmark();
    {
        const Database::ReadScope scope(*mine_);
        change(*theirs_, mark, {{L"Code", L"B"}});
        EXPECT_EQ(at(rows), L"A");
        EXPECT_EQ(rows.recordCount(), 1u);
        EXPECT_EQ(at(rows), L"A");
    }
    EXPECT_EQ(at(rows), L"B");
}

}  // namespace
}  // namespace sg::jet
