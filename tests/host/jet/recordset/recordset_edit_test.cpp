#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "host/jet/recordset_fixture.h"

namespace sg::jet {
namespace {

using Keys = std::vector<Value>;

TEST_F(RecordsetTest, ANewRecordHasDefaultsAndLeavesTheOldOneCurrent) {
    TableRecordset rows(*mine_, L"Rooms");
    EXPECT_EQ(codeOf([&] { rows.lastModified(); }), NoCurrentRecord);
    rows.setIndex(L"ByCode");
    for (const wchar_t* code : {L"M", L"A"}) {
        rows.addNew();
        EXPECT_EQ(rows.editMode(), EditMode::AddNew);
        EXPECT_EQ(rows.value(2), Value(int16_t(7)));
        EXPECT_TRUE(isNull(rows.value(1)));
        set(rows,
            {{L"Code", code}, {L"Area", rows.recordCount() == 0 ? Value(int32_t(4)) : Value()}});
        EXPECT_EQ(rows.value(1), Value(std::wstring(code)));
        rows.update();
        EXPECT_EQ(rows.editMode(), EditMode::None);
        rows.setBookmark(rows.lastModified());
        EXPECT_EQ(at(rows), code);
        EXPECT_EQ(rows.value(2), Value(int16_t(7)));
    }
    EXPECT_EQ(rows.value(0), Value(int32_t(2)));
    rows.move(1);
    EXPECT_EQ(at(rows), L"M");
    EXPECT_EQ(rows.value(3), Value(4.0)) << "converted on assignment";
    rows.addNew();
    set(rows, {{L"Code", L"Z"}});
    rows.update();
    EXPECT_EQ(at(rows), L"M");
    rows.addNew();
    rows.cancelUpdate();
    EXPECT_EQ(rows.recordCount(), 3u);
    EXPECT_EQ(at(rows), L"M");
}

TEST_F(RecordsetTest, AnUpdateThatFailsCanBeMended) {
    add(*mine_, {{L"Code", L"A"}, {L"Area", 1.0}});
    TableRecordset rows(*mine_, L"Rooms");
    rows.addNew();
    set(rows, {{L"Code", L"B"}, {L"Area", 1.0}});
    EXPECT_EQ(codeOf([&] { rows.update(); }), DuplicateKey);
    EXPECT_EQ(rows.editMode(), EditMode::AddNew);
    EXPECT_EQ(at(rows), L"B") << "the new record's value";
    set(rows, {{L"Area", 2.0}});
    rows.update();
    EXPECT_EQ(at(rows), L"A");
    EXPECT_EQ(rows.recordCount(), 2u);
    rows.edit();
    set(rows, {{L"Area", 2.0}});
    EXPECT_EQ(codeOf([&] { rows.update(); }), DuplicateKey);
    EXPECT_EQ(rows.editMode(), EditMode::Edit);
    EXPECT_EQ(rows.value(3), Value(2.0));
    rows.cancelUpdate();
    EXPECT_EQ(rows.value(3), Value(1.0));
}

TEST_F(RecordsetTest, OnlyOneEditsARecord) {
    addCodes({L"A", L"B"});
    TableRecordset mine(*mine_, L"Rooms");
    TableRecordset second(*mine_, L"Rooms");
    auto theirs = std::make_unique<TableRecordset>(*theirs_, L"Rooms");
    const auto theirCode = [&] { return codeOf([&] { theirs->edit(); }); };
    const std::function<void()> ends[] = {
        [&] { mine.update(); },      [&] { mine.cancelUpdate(); },
        [&] { mine.move(0); },       [&] { mine.moveFirst(); },
        [&] { mine.moveLast(); },    [&] { mine.setBookmark(second.bookmark()); },
        [&] { mine.setIndex(L""); }, [&] { mine.addNew(); },
        [&] { mine.erase(); },
    };
    for (const auto& end : ends) {
        mine.moveFirst();
        mine.edit();
        EXPECT_EQ(mine.editMode(), EditMode::Edit);
        EXPECT_EQ(theirCode(), LockedByUser);
        EXPECT_EQ(theirs->editMode(), EditMode::None);
        EXPECT_EQ(codeOf([&] { theirs->erase(); }), LockedByUser);
        EXPECT_EQ(codeOf([&] { second.edit(); }), Storage::lockedBySession);
        try {
            theirs->edit();
        } catch (const Error& error) {
            EXPECT_EQ(error.names(), (std::vector<std::wstring>{L"me", L"machine"}));
        }
        EXPECT_NO_THROW(mine.edit()) << "again: the lock is its own";
        end();
        theirs->moveFirst();
        EXPECT_EQ(theirCode(), 0);
        EXPECT_EQ(codeOf([&] { mine.moveFirst(), mine.edit(); }), LockedByUser);
        theirs->cancelUpdate();
    }
    theirs->edit();
    theirs.reset();
    mine.moveFirst();
    EXPECT_EQ(at(mine), L"B");
    EXPECT_NO_THROW(mine.edit());
}

TEST_F(RecordsetTest, AnEditReadsTheRecordUnderItsLock) {
    addCodes({L"A"});
    TableRecordset mine(*mine_, L"Rooms");
    EXPECT_EQ(at(mine), L"A");
    change(*theirs_, mine.bookmark(), {{L"Code", L"B"}, {L"Note", L"theirs"}});
    mine.edit();
    EXPECT_EQ(at(mine), L"B");
    set(mine, {{L"Level", L"3"}});
    mine.update();
    EXPECT_EQ(mine.value(4), Value(std::wstring(L"theirs"))) << "what was not set stays";
    EXPECT_EQ(mine.value(2), Value(int16_t(3)));
    EXPECT_EQ(mine.lastModified(), mine.bookmark());
    EXPECT_EQ(at(SnapshotRecordset(*theirs_, L"Rooms")), L"B");
}

TEST_F(RecordsetTest, ValuesThatDoNotFitNameTheirColumn) {
    TableRecordset rows(*mine_, L"Rooms");
    const struct {
        const wchar_t* column;
        Value value;
        int code;
    } cases[] = {{L"Code", std::wstring(11, L'x'), FieldTooSmall},
                 {L"Code", std::wstring(10, L'x'), 0},
                 {L"Level", std::wstring(L"many"), ConversionError},
                 {L"Level", std::wstring(L"12"), 0},
                 {L"Level", Value(), 0},
                 {L"Id", int32_t(5), OperationNotSupported}};
    EXPECT_EQ(codeOf([&] { rows.setValue(1, Value()); }), UpdateWithoutEdit);
    EXPECT_EQ(codeOf([&] { rows.update(); }), UpdateWithoutEdit);
    EXPECT_EQ(codeOf([&] { rows.cancelUpdate(); }), UpdateWithoutEdit);
    rows.addNew();
    for (const auto& c : cases) {
        try {
            set(rows, {{c.column, c.value}});
            EXPECT_EQ(c.code, 0) << toUtf8(c.column);
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), c.code);
            if (c.code != OperationNotSupported) {
                EXPECT_EQ(error.names().at(0), c.column);
            }
            EXPECT_NE(error.place().detail.find(c.column), std::wstring::npos);
        }
    }
    EXPECT_EQ(codeOf([&] { rows.setValue(5, Value()); }), ItemNotFound);
    EXPECT_EQ(codeOf([&] { rows.value(5); }), ItemNotFound);
    EXPECT_EQ(codeOf([&] { rows.columnByName(L"None"); }), ItemNotFound);
    rows.update();
    EXPECT_EQ(at(rows), L"BOF") << "where it was opened";
}

TEST_F(RecordsetTest, WhoOnlyReadsIsRefused) {
    addCodes({L"A"});
    const auto reader = open(L"reader", OpenMode::ReadOnly);
    TableRecordset byMode(*reader, L"Rooms");
    TableRecordset byWish(*mine_, L"Rooms", true);
    for (TableRecordset* rows : {&byMode, &byWish}) {
        EXPECT_TRUE(rows->isReadOnly());
        EXPECT_EQ(codeOf([&] { rows->addNew(); }), ReadOnlyDatabase);
        EXPECT_EQ(codeOf([&] { rows->edit(); }), ReadOnlyDatabase);
        EXPECT_EQ(codeOf([&] { rows->erase(); }), ReadOnlyDatabase);
        EXPECT_EQ(at(*rows), L"A");
    }
    EXPECT_FALSE(TableRecordset(*mine_, L"Rooms").isReadOnly());
}

// --- the design ---

TEST_F(RecordsetTest, ADesignThatChangesIsFollowed) {
    addCodes({L"B", L"A", L"C"});
    TableRecordset rows(*mine_, L"Rooms");
    rows.setIndex(L"ByCode");
    rows.move(1);
    rows.edit();
    createIndex(*theirs_, L"Rooms", index(L"ByNote", {{L"Level"}}));
    EXPECT_EQ(rows.editMode(), EditMode::Edit) << "nothing that it needs has changed";
    set(rows, {{L"Area", 5.0}});
    rows.update();
    EXPECT_EQ(rows.value(3), Value(5.0));
    rows.move(1);
    EXPECT_EQ(at(rows), L"C");
    rows.setIndex(L"ByNote");
    rows.setIndex(L"ByCode");
    rows.addNew();
    ColumnDesign more;
    more.name = L"More";
    more.type = ColumnType::Long;
    addColumn(*theirs_, L"Rooms", more);
    EXPECT_EQ(codeOf([&] { rows.update(); }), UpdateWithoutEdit);
    EXPECT_EQ(rows.columns().size(), 6u);
    EXPECT_TRUE(isNull(rows.value(rows.columnByName(L"More"))));
    rows.move(-1);
    EXPECT_EQ(at(rows), L"B");
    dropIndex(*theirs_, L"Rooms", L"ByCode");
    EXPECT_EQ(at(rows), L"B");
    EXPECT_EQ(rows.index(), L"") << "file order";
    EXPECT_EQ(codeOf([&] { rows.seek(SeekOperator::Equal, Keys{Value()}); }), NoCurrentIndex);
    rows.move(1);
    EXPECT_EQ(at(rows), L"A");
    renameTable(*theirs_, L"Rooms", L"Spaces");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(codeOf([&] { rows.move(1); }), InputTableNotFound);
        EXPECT_EQ(codeOf([&] { rows.value(0); }), InputTableNotFound);
    }
    renameTable(*theirs_, L"Spaces", L"Rooms");
    EXPECT_EQ(at(rows), L"A");
    dropTable(*theirs_, L"Rooms");
    EXPECT_EQ(codeOf([&] { rows.recordCount(); }), InputTableNotFound);
    createTable(*theirs_, rooms());
    EXPECT_EQ(rows.recordCount(), 0u);
    rows.moveFirst();
    EXPECT_EQ(at(rows), L"empty");
    EXPECT_EQ(codeOf([&] { TableRecordset(*mine_, L"No such"); }), InputTableNotFound);
}

TEST_F(RecordsetTest, AClosedDatabaseIsTold) {
    addCodes({L"A"});
    TableRecordset rows(*mine_, L"Rooms");
    rows.edit();
    mine_->close();
    EXPECT_EQ(codeOf([&] { rows.value(0); }), ObjectClosed);
    EXPECT_EQ(codeOf([&] { rows.move(1); }), ObjectClosed);
    EXPECT_EQ(codeOf([&] { rows.isEof(); }), ObjectClosed);
    EXPECT_EQ(codeOf([&] { rows.addNew(); }), ObjectClosed);
    EXPECT_EQ(codeOf([&] { rows.update(); }), ObjectClosed);
}

}  // namespace
}  // namespace sg::jet
