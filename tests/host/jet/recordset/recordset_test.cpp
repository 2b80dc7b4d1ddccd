#include "host/jet/recordset/recordset.h"

#include <gtest/gtest.h>

#include "host/jet/recordset_fixture.h"

namespace sg::jet {
namespace {

using Keys = std::vector<Value>;

TEST_F(RecordsetTest, AnEmptyTableIsBothEnds) {
    for (const wchar_t* order : orders) {
        TableRecordset rows(*mine_, L"ROOMS");
        rows.setIndex(order);
        for (const int end : {0, 1}) {
            end == 0 ? rows.moveFirst() : rows.moveLast();
            EXPECT_EQ(at(rows), L"empty");
            EXPECT_NO_THROW(rows.move(0));
            for (const int64_t count : {-2, -1, 1, 2})
                EXPECT_EQ(codeOf([&] { rows.move(count); }), NoCurrentRecord) << count;
            EXPECT_EQ(codeOf([&] { rows.value(0); }), NoCurrentRecord);
            EXPECT_EQ(codeOf([&] { rows.bookmark(); }), NoCurrentRecord);
            EXPECT_EQ(codeOf([&] { rows.erase(); }), NoCurrentRecord);
            EXPECT_EQ(codeOf([&] { rows.edit(); }), NoCurrentRecord);
        }
        EXPECT_EQ(rows.recordCount(), 0u);
        // It stands before and behind what comes.
        TableRecordset behind(*mine_, L"Rooms");
        behind.setIndex(order);
        behind.moveLast();
        rows.moveFirst();
        const Bytes added = add(*theirs_, {{L"Code", L"A"}});
        EXPECT_EQ(at(rows), L"BOF");
        EXPECT_EQ(at(behind), L"EOF");
        rows.move(1);
        behind.move(-1);
        EXPECT_EQ(at(rows), L"A");
        EXPECT_EQ(at(behind), L"A");
        erase(*theirs_, added);
    }
}

TEST_F(RecordsetTest, MovesStopAtTheEndsAndComeBack) {
    addCodes({L"A", L"B", L"C", L"D"});
    struct Step {
        int64_t count;
        const wchar_t* expected;  // nullptr: NoCurrentRecord, and stays
    };
    const Step steps[] = {{3, L"D"},          {1, L"EOF"},         {1, nullptr},  {5, nullptr},
                          {-1, L"D"},         {-3, L"A"},          {-1, L"BOF"},  {-1, nullptr},
                          {1, L"A"},          {2, L"C"},           {0, L"C"},     {2, L"EOF"},
                          {0, L"EOF"},        {-4, L"A"},          {100, L"EOF"}, {-5, L"BOF"},
                          {4, L"D"},          {INT64_MIN, L"BOF"}, {5, L"EOF"},   {-100, L"BOF"},
                          {INT64_MAX, L"EOF"}};
    SnapshotRecordset snapshot(*mine_, L"Rooms");
    std::vector<std::unique_ptr<TableRecordset>> tables;
    std::vector<Recordset*> all = {&snapshot};
    for (const wchar_t* order : orders) {
        tables.push_back(std::make_unique<TableRecordset>(*mine_, L"Rooms"));
        tables.back()->setIndex(order);
        all.push_back(tables.back().get());
    }
    for (Recordset* rows : all) {
        std::wstring before = at(*rows);
        EXPECT_EQ(before, L"A");
        for (const Step& step : steps) {
            if (step.expected == nullptr) {
                EXPECT_EQ(codeOf([&] { rows->move(step.count); }), NoCurrentRecord);
            } else {
                rows->move(step.count);
                before = step.expected;
            }
            ASSERT_EQ(at(*rows), before) << step.count;
        }
        rows->moveLast();
        EXPECT_EQ(at(*rows), L"D");
        rows->moveFirst();
        EXPECT_EQ(at(*rows), L"A");
        EXPECT_EQ(rows->recordCount(), 4u);
    }
}

TEST_F(RecordsetTest, AnotherOrderKeepsTheRecord) {
    addCodes({L"B", L"C", L"A"});
    TableRecordset rows(*mine_, L"Rooms");
    EXPECT_EQ(rows.index(), L"");
    rows.setIndex(L"bycode");
    EXPECT_EQ(rows.index(), L"ByCode");
    EXPECT_EQ(at(rows), L"A") << "not moved yet: the first of the order";
    rows.move(1);
    rows.setIndex(L"PrimaryKey");
    EXPECT_EQ(at(rows), L"B");
    rows.move(1);
    EXPECT_EQ(at(rows), L"C");
    rows.setIndex(L"ByCode");
    rows.move(1);
    EXPECT_EQ(at(rows), L"EOF");
    rows.setIndex(L"");
    EXPECT_EQ(at(rows), L"EOF");
    rows.move(-1);
    EXPECT_EQ(at(rows), L"A");
    EXPECT_EQ(codeOf([&] { rows.setIndex(L"No such"); }), NotAnIndex);
    EXPECT_EQ(at(rows), L"A");
    // A record that the index leaves out is current, and its neighbours are where it would be.
    add(*mine_, {{L"Code", L"D"}, {L"Area", 1.5}});
    rows.setIndex(L"ByArea");
    EXPECT_EQ(at(rows), L"A");
    rows.move(1);
    EXPECT_EQ(at(rows), L"D");
    rows.move(-1);
    EXPECT_EQ(at(rows), L"BOF");
}

// --- seeks ---

TEST_F(RecordsetTest, SeeksCompareTheLeadingColumns) {
    using Op = SeekOperator;
    const struct {
        const wchar_t* code;
        Value level;
        Value area;
    } rooms[] = {{L"a1", int16_t(1), 1.0},  {L"A2", int16_t(1), 2.5}, {L"b1", int16_t(2), -3.0},
                 {L"B2 ", int16_t(2), {}},  {L"c", Value(), {}},      {nullptr, int16_t(2), 1e9},
                 {L"dup", int16_t(3), 7.0}, {L"DUP", int16_t(3), {}}};
    for (const auto& room : rooms) {
        add(*mine_, {{L"Code", room.code == nullptr ? Value() : Value(std::wstring(room.code))},
                     {L"Level", room.level},
                     {L"Area", room.area}});
    }
    const auto text = [](const wchar_t* t) { return Value(std::wstring(t)); };
    // Of ByLevel the levels descend: 3 3 2(Null b1 B2) 1(a1 A2) Null.
    const struct {
        const wchar_t* index;
        Op op;
        Keys keys;
        const wchar_t* expected;
    } cases[] = {
        {L"ByCode", Op::Equal, {text(L"A1")}, L"a1"},
        {L"ByCode", Op::Equal, {text(L"a2   ")}, L"A2"},
        {L"ByCode", Op::Equal, {text(L"b2")}, L"B2 "},
        {L"ByCode", Op::Equal, {text(L"b")}, L"none"},
        {L"ByCode", Op::Equal, {text(L"longer than the column is")}, L"none"},
        {L"ByCode", Op::Equal, {Value()}, L"Null"},
        {L"ByCode", Op::Equal, {text(L"dup")}, L"dup"},
        {L"ByCode", Op::GreaterOrEqual, {text(L"b")}, L"b1"},
        {L"ByCode", Op::GreaterOrEqual, {text(L"B1")}, L"b1"},
        {L"ByCode", Op::Greater, {text(L"B1")}, L"B2 "},
        {L"ByCode", Op::Greater, {text(L"DUP")}, L"none"},
        {L"ByCode", Op::LessOrEqual, {text(L"b1")}, L"b1"},
        {L"ByCode", Op::LessOrEqual, {text(L"dup")}, L"DUP"},
        {L"ByCode", Op::Less, {text(L"b1")}, L"A2"},
        {L"ByCode", Op::Less, {text(L"a")}, L"Null"},
        {L"ByCode", Op::Less, {Value()}, L"none"},
        {L"ByCode", Op::Equal, {int32_t(5)}, L"none"},
        {L"ByLevel", Op::Equal, {int32_t(2)}, L"Null"},
        {L"ByLevel", Op::Equal, {2.0, text(L"B1")}, L"b1"},
        {L"ByLevel", Op::Equal, {text(L"1")}, L"a1"},
        {L"ByLevel", Op::Equal, {Value()}, L"c"},
        {L"ByLevel", Op::Equal, {Value(), text(L"C")}, L"c"},
        {L"ByLevel", Op::Equal, {Value(), text(L"D")}, L"none"},
        {L"ByLevel", Op::Greater, {int16_t(2)}, L"a1"},
        {L"ByLevel", Op::Less, {int16_t(2)}, L"DUP"},
        {L"ByLevel", Op::LessOrEqual, {int16_t(2)}, L"B2 "},
        {L"ByLevel", Op::GreaterOrEqual, {int16_t(2), text(L"b1a")}, L"B2 "},
        {L"ByLevel", Op::Equal, {int16_t(9)}, L"none"},
        {L"ByArea", Op::Equal, {int16_t(-3)}, L"b1"},
        {L"ByArea", Op::Equal, {text(L"2.5")}, L"A2"},
        {L"ByArea", Op::Equal, {Value()}, L"none"},
        {L"ByArea", Op::GreaterOrEqual, {2.0}, L"A2"},
        {L"PrimaryKey", Op::Equal, {int32_t(3)}, L"b1"},
        {L"PrimaryKey", Op::Equal, {3.0}, L"b1"},
        {L"PrimaryKey", Op::Equal, {int32_t(99)}, L"none"},
    };
    TableRecordset rows(*mine_, L"Rooms");
    EXPECT_EQ(codeOf([&] { rows.seek(Op::Equal, Keys{int32_t(1)}); }), NoCurrentIndex);
    for (const auto& c : cases) {
        rows.setIndex(c.index);
        const bool found = rows.seek(c.op, c.keys);
        EXPECT_EQ(found ? at(rows) : L"none", c.expected) << toUtf8(c.index) << " " << &c - cases;
        if (found) continue;
        EXPECT_FALSE(rows.isBof() || rows.isEof());
        EXPECT_EQ(codeOf([&] { rows.value(0); }), NoCurrentRecord);
        EXPECT_EQ(codeOf([&] { rows.move(1); }), NoCurrentRecord);
        EXPECT_EQ(codeOf([&] { rows.move(0); }), NoCurrentRecord);
    }
    rows.setIndex(L"ByLevel");
    rows.moveFirst();
    const std::wstring first = at(rows);
    EXPECT_EQ(codeOf([&] { rows.seek(Op::Equal, {}); }), InvalidArgument);
    EXPECT_EQ(codeOf([&] { rows.seek(Op::Equal, Keys(3)); }), InvalidArgument);
    EXPECT_EQ(codeOf([&] { rows.seek(Op::Equal, Keys{text(L"x")}); }), ConversionError);
    EXPECT_EQ(at(rows), first) << "a seek that is refused does not move";
    // From a hit the moves go on in the index, into rows that came meanwhile.
    ASSERT_TRUE(rows.seek(Op::Equal, Keys{int16_t(1), text(L"a1")}));
    add(*theirs_, {{L"Code", L"a1a"}, {L"Level", int16_t(1)}});
    rows.move(1);
    EXPECT_EQ(at(rows), L"a1a");
}

// --- bookmarks ---

TEST_F(RecordsetTest, BookmarksAreOfTheirTable) {
    addCodes({L"A", L"B"});
    TableDesign other = rooms();
    other.name = L"Other";
    createTable(*mine_, other);
    TableRecordset rows(*mine_, L"Rooms");
    TableRecordset others(*mine_, L"Other");
    const Bytes a = rows.bookmark();
    rows.move(1);
    const Bytes b = rows.bookmark();
    rows.setIndex(L"ByCode");
    rows.setBookmark(a);
    EXPECT_EQ(at(rows), L"A");
    rows.setBookmark(b);
    EXPECT_EQ(at(rows), L"B");
    rows.move(-1);
    EXPECT_EQ(at(rows), L"A");
    EXPECT_EQ(codeOf([&] { others.setBookmark(a); }), InvalidBookmark);
    const Bytes cut(b.begin(), b.end() - 1);
    Bytes far = b;
    far[3] = 0xff;
    Bytes gone = b;
    gone[0] = 200;
    EXPECT_EQ(codeOf([&] { rows.setBookmark(cut); }), InvalidBookmark);
    EXPECT_EQ(codeOf([&] { rows.setBookmark({}); }), InvalidBookmark);
    EXPECT_EQ(codeOf([&] { rows.setBookmark(far); }), InvalidBookmark);
    EXPECT_EQ(codeOf([&] { rows.setBookmark(gone); }), RecordDeleted);
    EXPECT_EQ(at(rows), L"A") << "stays where it was";
    rows.move(1);
    EXPECT_EQ(at(rows), L"B");
}

}  // namespace
}  // namespace sg::jet
