// Records that are added, changed and deleted, alone and beside others who do the same.

#include "host/dao/dao_fixture.h"
#include "platform/variant/safe_array.h"

namespace sg {
namespace {

class DaoEditTest : public DaoTest {
  protected:
    DaoEditTest() { makeRooms(); }

    // A table with a field of every type that tables can be given, open.
    void openEveryType() {
        makeTable(db_, L"All",
                  {field(L"Bool", dbBoolean), field(L"Byte", dbByte), field(L"Int", dbInteger),
                   field(L"Long", dbLong), field(L"Real", dbDouble), field(L"Single", dbSingle),
                   field(L"Money", dbCurrency), field(L"Date", dbDate), field(L"Text", dbText, 8),
                   field(L"Memo", dbMemo), field(L"Bytes", dbBinary, 4),
                   field(L"Long bytes", dbLongBinary), field(L"Guid", dbGUID)});
        rows_.Open(dbOpenTable, L"All");
    }

    CDaoRecordset rows_{&db_};
};

// Adds a record with the value in the field, and answers what can be read of it then.
std::wstring stored(CDaoRecordset& rows, const wchar_t* name, const COleVariant& value) {
    std::wstring read;
    const int32_t code = codeOf([&] {
        append(rows, {{name, value}});
        read = shown(rows.GetFieldValue(name));
    });
    if (code == 0) return read;
    if (rows.GetEditMode() != dbEditNone) rows.CancelUpdate();
    return std::to_wstring(code);
}

TEST_F(DaoEditTest, ValuesAreConvertedIntoTheFieldsType) {
    openEveryType();
    struct Case {
        const wchar_t* name;
        COleVariant value;
        const wchar_t* read;
    };
    const COleVariant null = COleVariant::null();
    const Case cases[] = {
        {L"Bool", COleVariant::fromBool(true), L"true"},
        {L"Bool", number(0), L"false"},
        {L"Bool", number(7), L"true"},
        {L"Bool", null, L"false"},
        {L"Byte", number(255), L"UI1 255"},
        {L"Byte", number(256), L"3421"},
        {L"Byte", number(-1), L"3421"},
        {L"Int", real(2.5), L"I2 2"},
        {L"Int", real(3.5), L"I2 4"},
        {L"Int", number(40000), L"3421"},
        {L"Int", COleVariant::fromBool(true), L"I2 -1"},
        {L"Long", text(L"77"), L"I4 77"},
        {L"Long", text(L"seven"), L"3421"},
        {L"Long", real(3e9), L"3421"},
        {L"Long", null, L"Null"},
        {L"Long", COleVariant(), L"Null"},
        {L"Real", number(3), L"R8 3.000000"},
        {L"Real", text(L"2.5"), L"R8 2.500000"},
        {L"Real", text(L""), L"3421"},
        {L"Single", real(0.5), L"R4 0.500000"},
        {L"Money", real(1.23456), L"CY 12346"},
        {L"Money", COleVariant::fromCurrency({5}), L"CY 5"},
        {L"Date", text(L"1/31/2017"), L"DATE 42766.000000"},
        {L"Date", text(L"2017-01-31 12:00"), L"DATE 42766.500000"},
        {L"Date", number(42766), L"DATE 42766.000000"},
        {L"Date", text(L"some day"), L"3421"},
        {L"Text", text(L"12345678"), L"12345678"},
        {L"Text", text(L"123456789"), L"3163"},
        {L"Text", text(L" "), L" "},
        {L"Text", text(L""), L""},
        {L"Text", number(-12), L"-12"},
        {L"Text", real(2.5), L"2.5"},
        {L"Text", null, L"Null"},
        {L"Memo", text(L"any length"), L"any length"},
        {L"Memo", number(5), L"5"},
        {L"Guid", text(L"{00112233-4455-6677-8899-AABBCCDDEEFF}"),
         L"{guid {00112233-4455-6677-8899-AABBCCDDEEFF}}"},
        {L"Guid", text(L"{guid {00112233-4455-6677-8899-aabbccddeeff}}"),
         L"{guid {00112233-4455-6677-8899-AABBCCDDEEFF}}"},
        {L"Guid", text(L"{guid }"), L"3421"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(stored(rows_, each.name, each.value), each.read)
            << each.name << L" " << shown(each.value);
    }
    COleVariant odd;
    odd.vt = VT_ERROR;
    EXPECT_EQ(stored(rows_, L"Long", odd), L"3421");
    COleSafeArray array;
    array.CreateFromVariants({number(1)});
    EXPECT_EQ(stored(rows_, L"Bytes", array.Detach()), L"3421");
}

TEST_F(DaoEditTest, BytesComeBackAsTheyWere) {
    openEveryType();
    const std::vector<uint8_t> few = {1, 0, 255}, many(20000, 7);
    const auto variant = [](std::vector<uint8_t> bytes) {
        COleSafeArray array;
        array.CreateFromBytes(std::move(bytes));
        return array.Detach();
    };
    append(rows_, {{L"Bytes", variant(few)}, {L"Long bytes", variant(many)}});
    EXPECT_EQ(rows_.GetFieldValue(L"Bytes").parray->bytes, few);
    EXPECT_EQ(rows_.GetFieldValue(L"Long bytes").parray->bytes, many);
    EXPECT_EQ(stored(rows_, L"Bytes", variant({1, 2, 3, 4, 5})), L"3163");
}

TEST_F(DaoEditTest, DecimalsComeBackAsTheyWere) {
    makeTable(db_, L"Exact", {field(L"D", dbDecimal)});
    rows_.Open(dbOpenTable, L"Exact");
    const auto decimal = [](uint32_t high, uint64_t low, uint8_t sign, uint8_t scale) {
        COleVariant value;
        value.vt = VT_DECIMAL;
        value.decHi32 = high;
        value.decLo64 = low;
        value.decSign = sign;
        value.decScale = scale;
        return value;
    };
    append(rows_, {{L"D", decimal(0, 0x1122334455, 0x80, 0)}});
    const COleVariant read = rows_.GetFieldValue(0);
    EXPECT_EQ(read.vt, VT_DECIMAL);
    EXPECT_EQ(read.decLo64, 0x1122334455u);
    EXPECT_EQ(read.decHi32, 0u);
    EXPECT_EQ(read.decSign, 0x80);
    EXPECT_EQ(stored(rows_, L"D", decimal(0, 1, 0, 29)), L"3421");
    EXPECT_EQ(stored(rows_, L"D", decimal(UINT32_MAX, UINT64_MAX, 0, 0)), L"3421");
}

// --- adding and changing ---

TEST_F(DaoEditTest, TheCursorGoesToTheNewRecordByItsBookmark) {
    addRooms({L"B", L"D"});
    rows_.Open(dbOpenTable, L"Rooms");
    rows_.SetCurrentIndex(L"Name");
    EXPECT_EQ(at(rows_), L"B");
    rows_.AddNew();
    EXPECT_EQ(rows_.GetEditMode(), dbEditAdd);
    rows_.SetFieldValue(L"Name", text(L"C"));
    EXPECT_EQ(shown(rows_.GetFieldValue(L"Name")), L"C") << "of the new record";
    rows_.Update();
    EXPECT_EQ(rows_.GetEditMode(), dbEditNone);
    EXPECT_EQ(at(rows_), L"B");
    rows_.SetBookmark(rows_.GetLastModifiedBookmark());
    EXPECT_EQ(at(rows_), L"C");
    EXPECT_EQ(shown(rows_.GetFieldValue(L"Id")), L"I4 3");
    rows_.Move(1);
    EXPECT_EQ(at(rows_), L"D");
    rows_.Edit();
    EXPECT_EQ(rows_.GetEditMode(), dbEditInProgress);
    rows_.SetFieldValue(1, text(L"A"));
    rows_.Update();
    EXPECT_EQ(at(rows_), L"A") << "still the same record";
    rows_.Move(1);
    EXPECT_EQ(at(rows_), L"B");
}

TEST_F(DaoEditTest, CountersGoOnAndAreNotWritten) {
    rows_.Open(dbOpenTable, L"Rooms");
    for (int32_t id = 1; id <= 5; ++id) {
        append(rows_, {{L"Name", text(L"x")}});
        EXPECT_EQ(rows_.GetFieldValue(0).lVal, id);
        rows_.Delete();
    }
    rows_.AddNew();
    EXPECT_EQ(codeOf([&] { rows_.SetFieldValue(L"Id", number(100)); }), 3251);
    rows_.Update();
    rows_.SetBookmark(rows_.GetLastModifiedBookmark());
    EXPECT_EQ(rows_.GetFieldValue(0).lVal, 6);
}

TEST_F(DaoEditTest, NothingIsWrittenWithoutAnEdit) {
    addRooms({L"A"});
    rows_.Open(dbOpenTable, L"Rooms");
    EXPECT_EQ(codeOf([&] { rows_.SetFieldValue(L"Name", text(L"x")); }), 3020);
    EXPECT_EQ(codeOf([&] { rows_.Update(); }), 3020);
    EXPECT_EQ(codeOf([&] { rows_.CancelUpdate(); }), 3020);
    rows_.Edit();
    rows_.SetFieldValue(L"Name", text(L"x"));
    rows_.CancelUpdate();
    EXPECT_EQ(at(rows_), L"A");
    rows_.Edit();
    EXPECT_EQ(codeOf([&] { rows_.SetFieldValue(L"None", text(L"x")); }), 3265);
    EXPECT_EQ(codeOf([&] { rows_.SetFieldValue(70, text(L"x")); }), 3265);
    rows_.SetFieldValue(L"Name", text(L"y"));
    rows_.MoveFirst();
    EXPECT_EQ(codeOf([&] { rows_.Update(); }), 3020) << "a move has dropped it";
    EXPECT_EQ(at(rows_), L"A");
}

TEST_F(DaoEditTest, RequiredFieldsDefaultsAndRulesAreLookedAt) {
    CDaoFieldInfo filled = requiredField(L"Filled", dbText, 10, L"");
    filled.m_bAllowZeroLength = false;
    CDaoFieldInfo checked = field(L"Checked", dbInteger);
    checked.m_strValidationRule = L">0";
    checked.m_strValidationText = L"More than nothing.";
    makeTable(db_, L"Strict",
              {requiredField(L"Kind", dbText, 10, L"\"flat\""),
               requiredField(L"Width", dbDouble, 8, L"0.9"), filled, checked},
              {indexOver(L"Kind", {{L"Kind", false}}, true)});
    rows_.Open(dbOpenTable, L"Strict");
    rows_.AddNew();
    EXPECT_EQ(shown(rows_.GetFieldValue(L"Kind")), L"flat");
    EXPECT_EQ(shown(rows_.GetFieldValue(L"Width")), L"R8 0.900000");
    const Thrown missing = thrownBy([&] { rows_.Update(); });
    EXPECT_EQ(missing.code, 3314);
    EXPECT_EQ(missing.text.find(L"The field 'Filled' cannot contain a Null value"), 0u);
    EXPECT_EQ(rows_.GetEditMode(), dbEditAdd) << "it goes on";
    rows_.SetFieldValue(L"Filled", text(L""));
    EXPECT_EQ(codeOf([&] { rows_.Update(); }), 3315);
    rows_.SetFieldValue(L"Filled", text(L" "));
    rows_.SetFieldValue(L"Checked", number(0));
    const Thrown rule = thrownBy([&] { rows_.Update(); });
    EXPECT_EQ(rule.code, 3316);
    EXPECT_EQ(rule.text, L"More than nothing.");
    rows_.SetFieldValue(L"Checked", number(1));
    rows_.Update();
    rows_.AddNew();
    rows_.SetFieldValue(L"Filled", text(L"x"));
    EXPECT_EQ(codeOf([&] { rows_.Update(); }), 3022);
    rows_.SetFieldValue(L"Kind", COleVariant::null());
    EXPECT_EQ(codeOf([&] { rows_.Update(); }), 3314);
    rows_.CancelUpdate();
    EXPECT_EQ(rows_.GetRecordCount(), 1);
}

// --- beside others ---

class DaoSharingTest : public DaoEditTest {
  protected:
    DaoSharingTest() {
        addRooms({L"A", L"B"});
        other_.Open(path("plan.mdb"));
        rows_.Open(dbOpenTable, L"Rooms");
        theirs_.Open(dbOpenTable, L"Rooms");
    }

    CDaoDatabase other_;
    CDaoRecordset theirs_{&other_};
};

TEST_F(DaoSharingTest, RowsOfOneDatabaseAreSeenInTheOtherAtOnce) {
    append(rows_, {{L"Name", text(L"C")}});
    EXPECT_EQ(theirs_.GetRecordCount(), 3);
    theirs_.MoveLast();
    EXPECT_EQ(at(theirs_), L"C");
    theirs_.Edit();
    theirs_.SetFieldValue(L"Name", text(L"D"));
    theirs_.Update();
    EXPECT_EQ(at(rows_), L"D");
    theirs_.Delete();
    EXPECT_TRUE(rows_.IsDeleted());
    EXPECT_EQ(at(rows_), L"3167");
    append(theirs_, {{L"Name", text(L"E")}});
    append(rows_, {{L"Name", text(L"F")}});
    EXPECT_EQ(shown(rows_.GetFieldValue(0)), L"I4 5") << "one counter for both";
}

TEST_F(DaoSharingTest, ARecordThatSomebodyElseEditsIsLocked) {
    theirs_.Edit();
    const Thrown locked = thrownBy([&] { rows_.Edit(); });
    EXPECT_EQ(locked.code, 3260);
    EXPECT_EQ(locked.text.find(L"Could not update; currently locked by user '"), 0u);
    EXPECT_EQ(locked.text.find(L"''"), std::wstring::npos) << "both names are told";
    EXPECT_EQ(codeOf([&] { rows_.Delete(); }), 3260);
    EXPECT_EQ(at(rows_), L"A") << "it can be read";
    rows_.Move(1);
    rows_.Edit();
    rows_.CancelUpdate();
    append(rows_, {{L"Name", text(L"C")}});
    rows_.MoveFirst();
    theirs_.Update();
    rows_.Edit();
    EXPECT_EQ(codeOf([&] { theirs_.Edit(); }), 3260);
    rows_.Close();
    theirs_.Edit();
}

TEST_F(DaoSharingTest, TwoRecordsetsOfOneDatabaseLockToo) {
    CDaoRecordset second(&db_);
    second.Open(dbOpenTable, L"Rooms");
    second.Edit();
    const Thrown locked = thrownBy([&] { rows_.Edit(); });
    EXPECT_EQ(locked.code, 3188);
    EXPECT_EQ(locked.text,
              L"Could not update; currently locked by another session on this machine.");
    EXPECT_EQ(codeOf([&] { rows_.Delete(); }), 3188);
    second.SetFieldValue(L"Name", text(L"Z"));
    second.Update();
    rows_.Edit();
    EXPECT_EQ(shown(rows_.GetFieldValue(L"Name")), L"Z");
}

TEST_F(DaoSharingTest, AClosedDatabaseLocksNothing) {
    theirs_.Edit();
    other_.Close();
    rows_.Edit();
    rows_.SetFieldValue(L"Name", text(L"Z"));
    rows_.Update();
    EXPECT_EQ(at(rows_), L"Z");
}

TEST_F(DaoSharingTest, ADesignThatSomebodyElseChangesIsFollowed) {
    CDaoTableDef table(&other_);
    table.Open(L"Rooms");
    table.CreateField(L"More", dbText, 10);
    CDaoIndexInfo index = indexOver(L"More", {{L"More", false}});
    table.CreateIndex(index);
    EXPECT_EQ(rows_.GetFieldCount(), 8);
    EXPECT_EQ(rows_.GetIndexCount(), 7);
    EXPECT_EQ(shown(rows_.GetFieldValue(7)), L"Null");
    EXPECT_EQ(at(rows_), L"A");
    rows_.Edit();
    rows_.SetFieldValue(L"More", text(L"x"));
    rows_.Update();
    rows_.SetCurrentIndex(L"More");
    const COleVariant key = text(L"x");
    EXPECT_TRUE(rows_.Seek(L"=", &key));
    theirs_.Close();
    table.DeleteIndex(L"More");
    table.DeleteField(L"More");
    EXPECT_EQ(rows_.GetFieldCount(), 7);
    EXPECT_EQ(rows_.GetCurrentIndex(), L"");
    EXPECT_EQ(at(rows_), L"A");
    other_.DeleteTableDef(L"Rooms");
    EXPECT_EQ(codeOf([&] { rows_.MoveFirst(); }), 3078);
    EXPECT_EQ(codeOf([&] { rows_.GetFieldCount(); }), 3078);
}

}  // namespace
}  // namespace sg
