#include "standards/records.h"

#include <gmock/gmock.h>

#include "database/database_fixture.h"

namespace sg::test {
namespace {

using testing::HasSubstr;

// A connection that counts what reaches it, to a file with the standards tables.
class CountingConnection : public CDBConnection {
  public:
    bool Append(const COleSafeArray& record, int16_t fill, COleSafeArray& written) override {
        note("append", record);
        return CDBConnection::Append(record, fill, written);
    }
    bool Replace(const COleSafeArray& record, COleSafeArray& written) override {
        note("replace", record);
        return CDBConnection::Replace(record, written);
    }
    bool SeekOne(const COleVariant& key, COleSafeArray& record) override {
        log += "seek " + toUtf8(shown(key)) + "; ";
        return CDBConnection::SeekOne(key, record);
    }

    std::string take() { return std::exchange(log, {}); }
    std::string log;

  private:
    void note(const char* what, const COleSafeArray& record) {
        log += what;
        for (const COleVariant& item : record.Variants())
            log += " " + toUtf8(shown(item));
        log += "; ";
    }
};

class RecordTest : public DatabaseTest {
  protected:
    RecordTest() {
        CDaoDatabase db;
        db.Create(path("standards.qn"), englishLocale);
        const auto id = [](const wchar_t* name) { return field(name, dbLong, 4, dbAutoIncrField); };
        const auto primary = [](const wchar_t* name) {
            return indexOver(name, {{name, false}}, true, true);
        };
        makeTable(db, L"tblGlobal",
                  {id(L"ixGlobal"), field(L"sKey", dbText, 50), field(L"bNumeric", dbBoolean),
                   field(L"sText", dbText, 50), field(L"dNumber", dbDouble)},
                  {primary(L"ixGlobal"), indexOver(L"sKey", {{L"sKey", false}})});
        // In another order than the record has, with a column that it does not know, and without
        // the master columns.
        makeTable(
            db, L"tblLayer",
            {field(L"sExtra", dbText, 10), field(L"sName", dbText, 50), id(L"ixLayer"),
             field(L"bRGBColor", dbBoolean), field(L"iColor", dbInteger), field(L"iRed", dbInteger),
             field(L"iGreen", dbInteger), field(L"iBlue", dbInteger),
             field(L"sLinetype", dbText, 50), field(L"bPlot", dbBoolean),
             field(L"sLineweight", dbText, 10), field(L"sPlotstyle", dbText, 50)},
            {primary(L"ixLayer"), indexOver(L"sName", {{L"sName", false}})});
        makeTable(db, L"tblLayerKey",
                  {id(L"ixLayerKey"), field(L"ixLayerSystem", dbLong), field(L"ixLayer", dbLong),
                   field(L"sKey", dbText, 50), field(L"ixMasterDatabase", dbLong),
                   field(L"iMasterDatabaseIndex", dbLong)},
                  {primary(L"ixLayerKey"), indexOver(L"sKey", {{L"sKey", false}}),
                   indexOver(L"isxLayerSystemKey", {{L"ixLayerSystem", false}, {L"sKey", false}})});
        db.Close();
        connection.Open(path("standards.qn"), false, 0);
        run("");
    }

    // A layer that is in the table.
    int32_t addLayer(const wchar_t* name) {
        LayerRecord layer(true, &connection);
        layer.addNew();
        layer.sName.set(name);
        layer.save();
        connection.take();
        return layer.ixLayer.get();
    }
    std::string rows(const std::wstring& sql) {
        COleSafeArray array;
        EXPECT_TRUE(connection.ExecuteSelect(sql, array)) << toUtf8(sql);
        std::wstring text;
        for (const COleVariant& item : array.Variants())
            text += shown(item) + L" ";
        return toUtf8(text);
    }

    CountingConnection connection;
};

TEST_F(RecordTest, ANewRecordIsEmpty) {
    const LayerRecord layer(true, nullptr);
    EXPECT_TRUE(layer.flag());
    EXPECT_EQ(layer.ixLayer.get(), 0);
    EXPECT_EQ(layer.sName.get(), L"");
    EXPECT_FALSE(layer.bPlot.get());
    int16_t color = 5;
    EXPECT_FALSE(layer.iColor.get(color));
    EXPECT_EQ(color, 0);
    EXPECT_FALSE(layer.sName.isChanged() || layer.isNew() || layer.isEdited());
}

TEST_F(RecordTest, WithoutAConnectionNothingIsDone) {
    LayerRecord layer(true, nullptr);
    LayerKeyRecord key(true, nullptr);
    layer.addNew();
    layer.sName.set(L"A");
    EXPECT_FALSE(layer.save());
    EXPECT_TRUE(layer.isNew() && layer.sName.isChanged());
    layer.edit();
    layer.forgetTable();
    EXPECT_FALSE(layer.seekId(1) || layer.seekKey(L"A") || layer.moveFirst() || layer.moveNext() ||
                 layer.moveLast() || layer.deleteCurrent() || layer.setIndex(L"sName") ||
                 layer.setFilter(L"", L"") || key.seekSystemKey(std::nullopt, L"A"));
    EXPECT_TRUE(layer.isBof());
    EXPECT_TRUE(layer.isEof());
}

TEST_F(RecordTest, ANewRowIsWrittenInTheTablesOrderAndReadBack) {
    LayerRecord layer(true, &connection);
    layer.addNew();
    layer.sLineweight.setNull();
    layer.iColor.set(3);
    layer.ixLayer.set(77);  // left to the database
    layer.bPlot.set(true);
    layer.sName.set(L"WALL");
    EXPECT_TRUE(layer.save());
    EXPECT_EQ(connection.take(), "append sName WALL iColor I2 3 bPlot true sLineweight Null; ");
    EXPECT_EQ(layer.ixLayer.get(), 1);
    EXPECT_FALSE(layer.isNew() || layer.iColor.isChanged() || layer.ixLayer.isChanged());
    std::wstring weight = L"x";
    EXPECT_FALSE(layer.sLineweight.get(weight));
    EXPECT_EQ(rows(L"select sName, iColor, bPlot, sExtra from tblLayer"),
              "*NewRecord* sName WALL iColor I2 3 bPlot true sExtra Null ");
}

TEST_F(RecordTest, OnlyWhatWasChangedIsWritten) {
    addLayer(L"WALL");
    const int32_t door = addLayer(L"DOOR");
    connection.ExecuteAction(L"update tblLayer set sExtra = 'kept', sLineweight = '25'");
    LayerRecord layer(true, &connection);
    ASSERT_TRUE(layer.seekKey(L"door"));
    EXPECT_EQ(layer.ixLayer.get(), door);
    connection.take();
    layer.edit();
    EXPECT_TRUE(layer.save()) << "nothing to write";
    EXPECT_EQ(connection.take(), "");
    EXPECT_TRUE(layer.isEdited());
    layer.sLinetype.set(L"HIDDEN");
    EXPECT_TRUE(layer.save());
    EXPECT_EQ(connection.take(), "seek I4 2; replace sLinetype HIDDEN; ");
    EXPECT_FALSE(layer.isEdited() || layer.sLinetype.isChanged());
    EXPECT_EQ(rows(L"select sName, sExtra, sLineweight, sLinetype from tblLayer where ixLayer = 2"),
              "*NewRecord* sName DOOR sExtra kept sLineweight 25 sLinetype HIDDEN ");
    layer.sLinetype.set(L"DASHED");
    EXPECT_FALSE(layer.save()) << "neither new nor edited";
    EXPECT_EQ(connection.take(), "");
}

TEST_F(RecordTest, NullFlagsAndMastersAreKept) {
    LayerKeyRecord key(true, &connection);
    key.addNew();
    key.sKey.set(L"duct");
    key.ixMasterDatabase.set(4);
    ASSERT_TRUE(key.save());
    key.edit();
    key.ixLayer.set(9);
    ASSERT_TRUE(key.save());
    int32_t master = 0;
    EXPECT_TRUE(key.ixMasterDatabase.get(master));
    EXPECT_EQ(master, 4);
    EXPECT_TRUE(key.ixLayerSystem.isNull() && key.iMasterDatabaseIndex.isNull());
    key.edit();
    key.ixMasterDatabase.setNull();
    ASSERT_TRUE(key.save());
    EXPECT_TRUE(key.ixMasterDatabase.isNull());
}

TEST_F(RecordTest, KeysOfASystemAndOfTheGeneralOne) {
    for (const auto& [system, layer] : {std::pair(0, 1), std::pair(5, 2), std::pair(6, 3)}) {
        LayerKeyRecord key(true, &connection);
        key.addNew();
        if (system != 0) key.ixLayerSystem.set(system);
        key.ixLayer.set(layer);
        key.sKey.set(L"duct");
        ASSERT_TRUE(key.save());
    }
    LayerKeyRecord key(true, &connection);
    EXPECT_TRUE(key.seekSystemKey(5, L"duct"));
    EXPECT_EQ(key.ixLayer.get(), 2);
    EXPECT_TRUE(key.seekSystemKey(std::nullopt, L"duct"));
    EXPECT_EQ(key.ixLayer.get(), 1);
    EXPECT_FALSE(key.seekSystemKey(7, L"duct") || key.seekSystemKey(5, L"pipe"));
    EXPECT_EQ(key.ixLayer.get(), 1) << "a failed seek leaves the record";
}

TEST_F(RecordTest, WalkingAndDeleting) {
    for (const wchar_t* name : {L"B", L"C", L"A"})
        addLayer(name);
    LayerRecord layer(true, &connection);
    std::wstring order;
    for (bool found = layer.setIndex(L"sName") && layer.moveFirst(); found;
         found = layer.moveNext())
        order += layer.sName.get();
    EXPECT_EQ(order, L"ABC");
    EXPECT_TRUE(layer.isEof());
    EXPECT_TRUE(layer.moveLast());
    EXPECT_FALSE(layer.isEof() || layer.isBof());
    EXPECT_EQ(layer.sName.get(), L"C");
    EXPECT_TRUE(layer.deleteCurrent());
    EXPECT_FALSE(layer.deleteCurrent()) << "it is gone";
    EXPECT_EQ(rows(L"select sName from tblLayer order by sName"), "A B ");
    layer.forgetTable();
    EXPECT_EQ(connection.GetCurrentTableName(), L"");
}

TEST_F(RecordTest, AFilterChoosesAndOrders) {
    for (const wchar_t* name : {L"B1", L"C", L"B3", L"B2"})
        addLayer(name);
    LayerRecord layer(true, &connection);
    ASSERT_TRUE(layer.setFilter(L"sName like 'B*'", L"sName desc"));
    connection.ExecuteAction(L"delete from tblLayer where sName = 'B2'");
    std::wstring order;
    for (bool found = layer.moveFirst(); found; found = layer.moveNext())
        order += layer.sName.get();
    EXPECT_EQ(order, L"B3B1");
    EXPECT_TRUE(layer.isEof());
    EXPECT_TRUE(layer.moveLast());
    EXPECT_EQ(layer.sName.get(), L"B1");
    ASSERT_TRUE(layer.setFilter(L"sName = 'none'", L""));
    EXPECT_TRUE(layer.isBof() && layer.isEof());
    EXPECT_FALSE(layer.moveFirst());
    ASSERT_TRUE(layer.setFilter(L"", L""));
    EXPECT_TRUE(layer.moveFirst());
    EXPECT_FALSE(layer.setFilter(L"sName =", L""));
    EXPECT_TRUE(layer.moveFirst());
}

TEST_F(RecordTest, MissingTablesAndBrokenRulesAreReportedWhereAsked) {
    for (const bool flag : {false, true}) {
        TextStyleRecord style(flag, &connection);
        EXPECT_FALSE(style.seekKey(L"Default"));
        style.addNew();
        style.sKey.set(L"x");
        EXPECT_FALSE(style.save());
        EXPECT_FALSE(style.isNew()) << "the attempt is over";
        LayerRecord layer(flag, &connection);
        EXPECT_FALSE(layer.setIndex(L"none"));
        if (flag) {
            EXPECT_THAT(printed(), HasSubstr("\nDatabase Error: "));
        } else {
            EXPECT_EQ(printed(), "");
        }
    }
}

TEST_F(RecordTest, ValuesOfOtherTypesAreTakenAsTheColumnsAre) {
    connection.ExecuteAction(
        L"create table tblLayerSystem (ixLayerSystem counter constraint ixLayerSystem primary key, "
        L"sDescription text(20), iSortOrder double, bSolid long, sPrefix long, "
        L"supplyHatchAngle long, ixMasterDatabase double)");
    connection.ExecuteAction(
        L"insert into tblLayerSystem (sDescription, iSortOrder, bSolid, sPrefix, supplyHatchAngle, "
        L"ixMasterDatabase) values ('Supply', 70000, 1, 5, 45, 3)");
    LayerSystemRecord system(true, &connection);
    ASSERT_TRUE(system.seekId(1));
    EXPECT_EQ(system.sDescription.get(), L"Supply");
    EXPECT_EQ(system.iSortOrder.get(), 0) << "more than the column holds";
    EXPECT_FALSE(system.bSolid.get()) << "only -1 is true";
    EXPECT_EQ(system.sPrefix.get(), L"");
    EXPECT_EQ(system.supplyHatchAngle.get(), 45);
    int32_t master = 0;
    EXPECT_TRUE(system.ixMasterDatabase.get(master));
    EXPECT_EQ(master, 3);
    connection.ExecuteAction(L"update tblLayerSystem set bSolid = -1, ixMasterDatabase = null");
    ASSERT_TRUE(system.moveFirst());
    EXPECT_TRUE(system.bSolid.get());
    EXPECT_TRUE(system.ixMasterDatabase.isNull());
}

}  // namespace
}  // namespace sg::test
