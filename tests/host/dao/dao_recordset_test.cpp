// Moving, seeking and reading through a CDaoRecordset on a table.

#include <functional>

#include "host/dao/dao_fixture.h"

namespace sg {
namespace {

class DaoRecordsetTest : public DaoTest {
  protected:
    DaoRecordsetTest() { makeRooms(); }

    void open() { rows_.Open(dbOpenTable, L"Rooms"); }
    void openWith(std::initializer_list<const wchar_t*> names) {
        addRooms(names);
        open();
    }
    bool seek(const COleVariant& key) { return rows_.Seek(L"=", &key); }

    CDaoRecordset rows_{&db_};
};

// --- moving ---

TEST_F(DaoRecordsetTest, AnEmptyTable) {
    open();
    EXPECT_TRUE(rows_.IsBOF() && rows_.IsEOF());
    EXPECT_EQ(rows_.GetRecordCount(), 0);
    rows_.MoveFirst();
    rows_.MoveLast();
    EXPECT_TRUE(rows_.IsBOF() && rows_.IsEOF());
    EXPECT_EQ(codeOf([&] { rows_.Move(1); }), 3021);
    EXPECT_EQ(codeOf([&] { rows_.MovePrev(); }), 3021);
    EXPECT_EQ(codeOf([&] { rows_.GetFieldValue(0); }), 3021);
    EXPECT_EQ(codeOf([&] { rows_.Edit(); }), 3021);
    EXPECT_EQ(codeOf([&] { rows_.Delete(); }), 3021);
    EXPECT_EQ(codeOf([&] { rows_.GetBookmark(); }), 3021);
    EXPECT_EQ(codeOf([&] { rows_.GetLastModifiedBookmark(); }), 3021);
}

TEST_F(DaoRecordsetTest, MovesStopAtTheEndsAndComeBack) {
    openWith({L"A", L"B", L"C", L"D"});
    struct Step {
        int32_t rows;
        const wchar_t* reached;
    };
    static constexpr Step steps[] = {
        {1, L"B"}, {5, L"EOF"},  {-1, L"D"},   {1, L"EOF"}, {-2, L"C"},  {-9, L"BOF"},
        {1, L"A"}, {-1, L"BOF"}, {3, L"C"},    {1, L"D"},   {1, L"EOF"}, {-4, L"A"},
        {0, L"A"}, {4, L"EOF"},  {-5, L"BOF"}, {5, L"EOF"},
    };
    EXPECT_EQ(at(rows_), L"A");
    for (const Step& step : steps) {
        rows_.Move(step.rows);
        EXPECT_EQ(at(rows_), step.reached) << step.rows;
    }
    EXPECT_EQ(codeOf([&] { rows_.Move(1); }), 3021);
    EXPECT_EQ(at(rows_), L"EOF");
    rows_.MoveFirst();
    rows_.MovePrev();
    EXPECT_EQ(codeOf([&] { rows_.Move(-1); }), 3021);
    EXPECT_EQ(at(rows_), L"BOF");
    rows_.MoveLast();
    EXPECT_EQ(at(rows_), L"D");
    rows_.MoveNext();
    EXPECT_EQ(codeOf([&] { rows_.GetFieldValue(0); }), 3021);
}

TEST_F(DaoRecordsetTest, ADeletedRecordStaysUnderTheCursor) {
    openWith({L"A", L"B", L"C"});
    rows_.Move(1);
    EXPECT_FALSE(rows_.IsDeleted());
    rows_.Delete();
    EXPECT_TRUE(rows_.IsDeleted());
    EXPECT_EQ(at(rows_), L"3167");
    EXPECT_EQ(rows_.GetRecordCount(), 2);
    EXPECT_EQ(codeOf([&] { rows_.Delete(); }), 3167);
    rows_.Move(1);
    EXPECT_EQ(at(rows_), L"C");
    rows_.Delete();
    rows_.MovePrev();
    EXPECT_EQ(at(rows_), L"A");
    rows_.Delete();
    rows_.MoveFirst();
    EXPECT_TRUE(rows_.IsBOF() && rows_.IsEOF());
}

TEST_F(DaoRecordsetTest, NamesTypesAndOptions) {
    EXPECT_EQ(codeOf([&] { rows_.Open(dbOpenTable, L"None"); }), 3011);
    EXPECT_EQ(codeOf([&] { rows_.Open(dbOpenSnapshot, L"None"); }), 3078);
    EXPECT_EQ(codeOf([&] { rows_.Open(99, L"Rooms"); }), 3001);
    EXPECT_FALSE(rows_.IsOpen());
    rows_.Open(dbOpenTable, L"ROOMS", dbReadOnly);
    EXPECT_EQ(rows_.GetName(), L"ROOMS") << "as the program knows it";
    EXPECT_EQ(rows_.GetType(), dbOpenTable);
    EXPECT_FALSE(rows_.CanUpdate());
    EXPECT_EQ(codeOf([&] { rows_.AddNew(); }), 3027);
    open();
    EXPECT_TRUE(rows_.CanUpdate());
    rows_.SetLockingMode(false);
    EXPECT_TRUE(rows_.GetLockingMode());
    EXPECT_EQ(rows_.GetEditMode(), dbEditNone);
    EXPECT_EQ(rows_.m_pDatabase, &db_);
}

// --- indexes ---

TEST_F(DaoRecordsetTest, AnIndexOrdersTheRecordsAndKeepsThePlace) {
    openWith({L"C", L"A", L"B"});
    EXPECT_EQ(rows_.GetCurrentIndex(), L"");
    rows_.SetCurrentIndex(L"name");
    EXPECT_EQ(rows_.GetCurrentIndex(), L"Name");
    EXPECT_EQ(at(rows_), L"A") << "never moved: the first of the order";
    rows_.Move(1);
    rows_.SetCurrentIndex(L"PrimaryKey");
    EXPECT_EQ(at(rows_), L"B");
    rows_.MoveFirst();
    EXPECT_EQ(at(rows_), L"C");
    const Thrown unknown = thrownBy([&] { rows_.SetCurrentIndex(L"None"); });
    EXPECT_EQ(unknown.code, 3015);
    EXPECT_EQ(unknown.text.find(L"'None' is not an index in this table."), 0u);
    EXPECT_EQ(rows_.GetCurrentIndex(), L"PrimaryKey");
}

TEST_F(DaoRecordsetTest, SeekNeedsAnIndexAndKeysThatFit) {
    openWith({L"A"});
    const COleVariant key = text(L"A");
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", &key); }), 3019);
    rows_.SetCurrentIndex(L"Name");
    EXPECT_TRUE(rows_.Seek(L"=", &key));
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"==", &key); }), 3001);
    EXPECT_EQ(codeOf([&] { rows_.Seek(nullptr, &key); }), 3001);
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", nullptr); }), 3001);
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", &key, &key); }), 3001);
    rows_.SetCurrentIndex(L"PrimaryKey");
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", &key); }), 3421);
    COleVariant odd;
    odd.vt = VT_ERROR;
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", &odd); }), 3421);
}

TEST_F(DaoRecordsetTest, KeysOfEveryType) {
    open();
    append(rows_, {{L"Name", text(L"Hall")},
                   {L"Level", number(2)},
                   {L"Area", real(12.5)},
                   {L"Built", COleVariant::fromDate(42000.5)},
                   {L"Open", COleVariant::fromBool(true)}});
    append(rows_, {{L"Name", text(L"Nowhere")}});
    struct Case {
        const wchar_t* index;
        COleVariant key;
        bool found;
    };
    const Case cases[] = {
        {L"PrimaryKey", number(1), true},
        {L"PrimaryKey", COleVariant::fromInt16(1), true},
        {L"PrimaryKey", real(1), true},
        {L"PrimaryKey", COleVariant::fromFloat(1), true},
        {L"PrimaryKey", COleVariant::fromByte(1), true},
        {L"PrimaryKey", COleVariant::fromCurrency({10000}), true},
        {L"PrimaryKey", text(L" 1 "), true},
        {L"PrimaryKey", number(99), false},
        {L"PrimaryKey", COleVariant::null(), false},
        {L"Name", text(L"HALL"), true},
        {L"Name", text(L"hall  "), true},
        {L"Name", text(L"hal"), false},
        {L"Name", text(L"Hall and very much more than that"), false},
        {L"Name", number(5), false},
        {L"Place", number(2), true},
        {L"Area", real(12.5), true},
        {L"Area", text(L"12.5"), true},
        {L"Area", number(12), false},
        {L"Built", COleVariant::fromDate(42000.5), true},
        {L"Built", real(42000.5), true},
        {L"Built", text(L"12/27/2014 12:00:00 PM"), true},
        {L"Built", text(L"2014-12-27"), false},
        {L"Open", COleVariant::fromBool(true), true},
        {L"Open", number(-1), true},
    };
    for (const Case& each : cases) {
        rows_.SetCurrentIndex(each.index);
        EXPECT_EQ(seek(each.key), each.found) << each.index << L" " << shown(each.key);
        EXPECT_EQ(at(rows_), each.found ? L"Hall" : L"3021");
    }
    // A Null key finds what has Null.
    for (const wchar_t* index : {L"Place", L"Area", L"Built"}) {
        rows_.SetCurrentIndex(index);
        EXPECT_TRUE(seek(COleVariant::null()));
        EXPECT_EQ(at(rows_), L"Nowhere");
        EXPECT_TRUE(seek(COleVariant()));
    }
}

TEST_F(DaoRecordsetTest, KeysStandForTheLeadingFields) {
    open();
    const auto room = [&](const wchar_t* name, COleVariant level) {
        append(rows_, {{L"Name", text(name)}, {L"Level", level}});
    };
    room(L"C", number(1));
    room(L"A", number(2));
    room(L"B", number(1));
    room(L"General", COleVariant::null());
    rows_.SetCurrentIndex(L"Place");
    const COleVariant level = number(1), name = text(L"c"), null = COleVariant::null(),
                      general = text(L"general"), none = text(L"x");
    EXPECT_TRUE(rows_.Seek(L"=", &level));
    EXPECT_EQ(at(rows_), L"B") << "the first of them";
    EXPECT_TRUE(rows_.Seek(L"=", &level, &name));
    EXPECT_EQ(at(rows_), L"C");
    EXPECT_TRUE(rows_.Seek(L"=", &null, &general));
    EXPECT_EQ(at(rows_), L"General");
    EXPECT_FALSE(rows_.Seek(L"=", &null, &none));
    const COleVariant keys[] = {level, name, level};
    EXPECT_TRUE(rows_.Seek(L"=", keys, 2));
    EXPECT_EQ(at(rows_), L"C");
    EXPECT_TRUE(rows_.Seek(L"=", keys, 1));
    EXPECT_EQ(at(rows_), L"B");
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", keys, 3); }), 3001);
    EXPECT_EQ(codeOf([&] { rows_.Seek(L"=", keys, uint16_t(0)); }), 3001);
    EXPECT_TRUE(rows_.Seek(L">", &level));
    EXPECT_EQ(at(rows_), L"A");
    EXPECT_TRUE(rows_.Seek(L"<=", &level));
    EXPECT_EQ(at(rows_), L"C");
    EXPECT_TRUE(rows_.Seek(L">=", &level, &name));
    EXPECT_EQ(at(rows_), L"C");
    EXPECT_TRUE(rows_.Seek(L"<", &level));
    EXPECT_EQ(at(rows_), L"General");
}

TEST_F(DaoRecordsetTest, AFailedSeekLeavesNoRecord) {
    openWith({L"A", L"B"});
    rows_.SetCurrentIndex(L"Name");
    EXPECT_FALSE(seek(text(L"x")));
    EXPECT_FALSE(rows_.IsBOF() || rows_.IsEOF());
    EXPECT_EQ(codeOf([&] { rows_.GetFieldValue(0); }), 3021);
    EXPECT_EQ(codeOf([&] { rows_.Move(1); }), 3021);
    rows_.MoveFirst();
    EXPECT_EQ(at(rows_), L"A");
}

TEST_F(DaoRecordsetTest, IndexesAreToldInTheOrderOfTheirNames) {
    open();
    ASSERT_EQ(rows_.GetIndexCount(), 6);
    CDaoIndexInfo info;
    std::vector<std::wstring> names;
    for (int i = 0; i < rows_.GetIndexCount(); ++i) {
        rows_.GetIndexInfo(i, info);
        names.push_back(info.m_strName);
        EXPECT_FALSE(info.m_bPrimary) << "is of the next level";
    }
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Area", L"Built", L"Name", L"Open", L"Place",
                                                L"PrimaryKey"}));
    rows_.GetIndexInfo(L"primarykey", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_TRUE(info.m_bPrimary && info.m_bUnique && info.m_bRequired);
    EXPECT_FALSE(info.m_bForeign || info.m_bIgnoreNulls || info.m_bClustered);
    rows_.GetIndexInfo(L"Place", info, AFX_DAO_SECONDARY_INFO);
    EXPECT_FALSE(info.m_bPrimary || info.m_bUnique || info.m_bRequired);
    ASSERT_EQ(info.m_nFields, 2);
    EXPECT_EQ(info.m_pFieldInfos[0].m_strName, L"Level");
    EXPECT_EQ(info.m_pFieldInfos[1].m_strName, L"Name");
    rows_.GetIndexInfo(L"Area", info);
    EXPECT_TRUE(info.m_pFieldInfos.at(0).m_bDescending);
    EXPECT_EQ(codeOf([&] { rows_.GetIndexInfo(6, info); }), 3265);
    EXPECT_EQ(codeOf([&] { rows_.GetIndexInfo(-1, info); }), 3265);
    EXPECT_EQ(codeOf([&] { rows_.GetIndexInfo(L"None", info); }), 3265);
}

// --- fields ---

TEST_F(DaoRecordsetTest, FieldsHaveTheirTypesSizesAndAttributes) {
    open();
    struct Case {
        const wchar_t* name;
        int16_t type;
        int32_t size;
        int32_t attributes;
    };
    static constexpr Case cases[] = {
        {L"Id", dbLong, 4, dbFixedField | dbAutoIncrField},
        {L"Name", dbText, 20, dbVariableField | dbUpdatableField},
        {L"Level", dbInteger, 2, dbFixedField | dbUpdatableField},
        {L"Area", dbDouble, 8, dbFixedField | dbUpdatableField},
        {L"Built", dbDate, 8, dbFixedField | dbUpdatableField},
        {L"Open", dbBoolean, 1, dbFixedField | dbUpdatableField},
        {L"Notes", dbMemo, 0, dbVariableField | dbUpdatableField},
    };
    ASSERT_EQ(rows_.GetFieldCount(), 7);
    CDaoFieldInfo info;
    for (int i = 0; i < 7; ++i) {
        rows_.GetFieldInfo(i, info, AFX_DAO_SECONDARY_INFO);
        EXPECT_EQ(info.m_strName, cases[i].name);
        EXPECT_EQ(info.m_nType, cases[i].type) << info.m_strName;
        EXPECT_EQ(info.m_lSize, cases[i].size) << info.m_strName;
        EXPECT_EQ(info.m_lAttributes, cases[i].attributes) << info.m_strName;
        EXPECT_EQ(info.m_nOrdinalPosition, i);
        EXPECT_EQ(info.m_strSourceTable, L"Rooms");
        EXPECT_EQ(info.m_strSourceField, cases[i].name);
        EXPECT_EQ(info.m_lCollatingOrder, i == 1 || i == 6 ? 0x409 : 0);
    }
    rows_.GetFieldInfo(L"NAME", info);
    EXPECT_EQ(info.m_strName, L"Name");
    EXPECT_EQ(info.m_strSourceTable, L"") << "is of the next level";
    for (const int index : {-1, 7}) {
        EXPECT_EQ(codeOf([&] { rows_.GetFieldInfo(index, info); }), 3265);
        EXPECT_EQ(codeOf([&] { rows_.GetFieldValue(index); }), 3265);
    }
    EXPECT_EQ(codeOf([&] { rows_.GetFieldInfo(L"None", info); }), 3265);
    EXPECT_EQ(codeOf([&] { rows_.GetFieldValue(L"None"); }), 3265);
    rows_.Open(dbOpenTable, L"Rooms", dbReadOnly);
    rows_.GetFieldInfo(L"Name", info);
    EXPECT_EQ(info.m_lAttributes, dbVariableField);
}

TEST_F(DaoRecordsetTest, TheFullLevelHasRulesAndDefaults) {
    CDaoFieldInfo info = requiredField(L"Kind", dbText, 12, L"\"flat\"");
    info.m_strValidationRule = L"<>\"none\"";
    info.m_strValidationText = L"Say what kind.";
    info.m_bAllowZeroLength = false;
    makeTable(db_, L"Doors", {info, field(L"Free", dbText, 5)});
    rows_.Open(dbOpenTable, L"Doors");
    CDaoFieldInfo told;
    rows_.GetFieldInfo(0, told);
    EXPECT_FALSE(told.m_bRequired);
    rows_.GetFieldInfo(0, told, AFX_DAO_SECONDARY_INFO);
    EXPECT_TRUE(told.m_bRequired);
    EXPECT_FALSE(told.m_bAllowZeroLength);
    EXPECT_EQ(told.m_strDefaultValue, L"");
    rows_.GetFieldInfo(L"kind", told, AFX_DAO_ALL_INFO);
    EXPECT_EQ(told.m_strDefaultValue, L"\"flat\"");
    EXPECT_EQ(told.m_strValidationRule, L"<>\"none\"");
    EXPECT_EQ(told.m_strValidationText, L"Say what kind.");
    rows_.GetFieldInfo(1, told, AFX_DAO_ALL_INFO);
    EXPECT_TRUE(told.m_bAllowZeroLength);
    EXPECT_FALSE(told.m_bRequired);
    EXPECT_EQ(told.m_strDefaultValue, L"");
    rows_.GetFieldInfo(0, told, AFX_DAO_ALL_INFO);
    rows_.GetFieldInfo(0, told);
    EXPECT_EQ(told.m_strDefaultValue, L"") << "nothing stays of an earlier call";
}

// --- bookmarks ---

TEST_F(DaoRecordsetTest, BookmarksComeBackToTheirRecord) {
    openWith({L"A", L"B", L"C"});
    rows_.Move(1);
    const COleVariant bookmark = rows_.GetBookmark();
    EXPECT_EQ(bookmark.vt, VT_ARRAY | VT_UI1);
    rows_.MoveLast();
    rows_.SetBookmark(bookmark);
    EXPECT_EQ(at(rows_), L"B");
    EXPECT_EQ(codeOf([&] { rows_.SetBookmark(number(1)); }), 3159);
    EXPECT_EQ(codeOf([&] { rows_.SetBookmark(COleVariant()); }), 3159);
    EXPECT_EQ(at(rows_), L"B");
    rows_.Delete();
    rows_.MoveFirst();
    EXPECT_EQ(codeOf([&] { rows_.SetBookmark(bookmark); }), 3167);
    makeTable(db_, L"Doors", {field(L"Name", dbText, 5)});
    CDaoRecordset doors(&db_);
    doors.Open(dbOpenTable, L"Doors");
    append(doors, {{L"Name", text(L"D")}});
    EXPECT_EQ(codeOf([&] { doors.SetBookmark(rows_.GetBookmark()); }), 3159);
}

// --- snapshots ---

TEST_F(DaoRecordsetTest, ASnapshotStaysAsItWas) {
    addRooms({L"A", L"B", L"C"});
    CDaoRecordset list(&db_);
    list.Open(dbOpenSnapshot, L"rooms");
    EXPECT_EQ(list.GetType(), dbOpenSnapshot);
    open();
    rows_.Delete();
    CDaoTableDef table(&db_);
    table.Open(L"Rooms");
    table.CreateField(L"More", dbLong, 4);
    EXPECT_EQ(list.GetRecordCount(), 3);
    EXPECT_EQ(list.GetFieldCount(), 7);
    EXPECT_EQ(at(list), L"A");
    EXPECT_FALSE(list.IsDeleted());
    list.Move(5);
    EXPECT_EQ(at(list), L"EOF");
    list.Move(-1);
    EXPECT_EQ(at(list), L"C");
    EXPECT_FALSE(list.CanUpdate());
    EXPECT_EQ(list.GetEditMode(), dbEditNone);
    const COleVariant bookmark = list.GetBookmark();
    list.MoveFirst();
    list.SetBookmark(bookmark);
    EXPECT_EQ(at(list), L"C");
    CDaoFieldInfo info;
    list.GetFieldInfo(1, info, AFX_DAO_ALL_INFO);
    EXPECT_EQ(info.m_nType, dbText);
    EXPECT_EQ(info.m_lSize, 20);
    EXPECT_EQ(info.m_lAttributes, dbVariableField);
    EXPECT_TRUE(info.m_bAllowZeroLength);
    for (const auto& work : std::vector<std::function<void()>>{
             [&] { list.AddNew(); }, [&] { list.Edit(); }, [&] { list.Delete(); },
             [&] { list.SetFieldValue(1, text(L"x")); }, [&] { list.GetCurrentIndex(); },
             [&] { list.GetIndexCount(); }, [&] { list.Seek(L"=", &bookmark); },
             [&] { list.GetLastModifiedBookmark(); }}) {
        EXPECT_EQ(codeOf(work), 3251);
    }
}

TEST_F(DaoRecordsetTest, AWholeRecordIsWhatItsFieldsAreOneByOne) {
    addRooms({L"Hall", L"Bath"});
    for (const int32_t type : {dbOpenTable, dbOpenDynaset, dbOpenSnapshot}) {
        CDaoRecordset rows(&db_);
        rows.Open(type, L"Rooms");
        std::vector<COleVariant> items = {number(5)};
        for (; !rows.IsEOF(); rows.MoveNext()) {
            rows.sgGetRecord(items);
            ASSERT_EQ(items.size(), 2U * static_cast<size_t>(rows.GetFieldCount()));
            for (int i = 0; i < rows.GetFieldCount(); ++i) {
                CDaoFieldInfo info;
                rows.GetFieldInfo(i, info);
                EXPECT_EQ(shown(items[2 * static_cast<size_t>(i)]), info.m_strName);
                EXPECT_EQ(shown(items[2 * static_cast<size_t>(i) + 1]),
                          shown(rows.GetFieldValue(i)));
            }
        }
        EXPECT_EQ(codeOf([&] { rows.sgGetRecord(items); }), 3021);
    }
    CDaoRecordset rows(&db_);
    rows.Open(dbOpenTable, L"Rooms");
    std::vector<COleVariant> items;
    rows.sgGetRecord(items);
    CDaoDatabase other;
    other.Open(path("plan.mdb"));
    CDaoTableDef table(&other);
    table.Open(L"Rooms");
    table.CreateField(L"More", dbText, 10);
    rows.sgGetRecord(items);
    EXPECT_EQ(shown(items[items.size() - 2]), L"More");
}

}  // namespace
}  // namespace sg
