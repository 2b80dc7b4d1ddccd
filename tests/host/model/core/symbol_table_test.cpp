#include "platform/db/symbol_table.h"

#include "host/model/model_fixture.h"

namespace sg::model {
namespace {

using test::Opened;
using SymbolTableTest = test::ModelTest;

TEST_F(SymbolTableTest, NamesDifferByMoreThanCase) {
    const AcDbObjectId walls = addLayer(L"Wände");
    Opened<AcDbLayerTable> table(database->layerTableId(), AcDb::kForWrite);
    AcDbObjectId found;
    EXPECT_EQ(table->getAt(L"WÄNDE", found), Acad::eOk);
    EXPECT_EQ(found, walls);
    EXPECT_TRUE(table->has(walls));
    AcDbLayerTableRecord second;
    EXPECT_EQ(second.setName(L"wäNDE"), Acad::eOk);
    EXPECT_EQ(table->add(&second), Acad::eDuplicateRecordName);
    EXPECT_TRUE(second.objectId().isNull());
    EXPECT_EQ(table->numRecords(), 2);
    AcDbTextStyleTableRecord style;
    EXPECT_EQ(style.setName(L"X"), Acad::eOk);
    EXPECT_EQ(table->add(&style), Acad::eWrongObjectType);
    AcDbLayerTableRecord nameless;
    EXPECT_EQ(table->add(&nameless), Acad::eInvalidSymbolTableName);
}

TEST_F(SymbolTableTest, RefusesNamesThatFilesCannotHave) {
    AcDbLayerTableRecord record;
    const std::wstring longest(255, L'x');
    const struct {
        std::wstring name;
        Acad::ErrorStatus status;
    } cases[] = {
        {L"A-1 (b) $#_.&", Acad::eOk},
        {longest, Acad::eOk},
        {longest + L"x", Acad::eInvalidSymbolTableName},
        {L"", Acad::eInvalidSymbolTableName},
        {L"*", Acad::eInvalidSymbolTableName},
        {L"*U", Acad::eOk},
        {L"a*", Acad::eInvalidSymbolTableName},
        {L"a|b", Acad::eInvalidSymbolTableName},
        {L"a,b", Acad::eInvalidSymbolTableName},
        {L"a=b", Acad::eInvalidSymbolTableName},
        {L"a/b", Acad::eInvalidSymbolTableName},
        {L"a`b", Acad::eInvalidSymbolTableName},
    };
    for (const auto& c : cases)
        EXPECT_EQ(record.setName(c.name.c_str()), c.status) << toUtf8(c.name);
}

TEST_F(SymbolTableTest, RenamingMovesTheName) {
    const AcDbObjectId a = addLayer(L"A");
    const AcDbObjectId b = addLayer(L"B");
    {
        Opened<AcDbLayerTableRecord> record(a, AcDb::kForWrite);
        EXPECT_EQ(record->setName(L"b"), Acad::eDuplicateRecordName);
        EXPECT_EQ(record->setName(L"a"), Acad::eOk) << "its own, in another case";
        EXPECT_EQ(record->setName(L"C"), Acad::eOk);
    }
    Opened<AcDbLayerTable> table(database->layerTableId());
    AcDbObjectId found;
    EXPECT_EQ(table->getAt(L"A", found), Acad::eKeyNotFound);
    EXPECT_TRUE(found.isNull());
    EXPECT_EQ(table->getAt(L"C", found), Acad::eOk);
    EXPECT_EQ(found, a);
    EXPECT_EQ(table->getAt(L"B", found), Acad::eOk);
    EXPECT_EQ(found, b);
}

TEST_F(SymbolTableTest, AnErasedRecordLeavesItsName) {
    const AcDbObjectId first = addLayer(L"A");
    erase(first);
    AcDbObjectId found;
    {
        Opened<AcDbLayerTable> table(database->layerTableId());
        EXPECT_FALSE(table->has(L"A"));
        EXPECT_FALSE(table->has(first));
        EXPECT_EQ(table->getAt(L"A", found, true), Acad::eOk);
        EXPECT_EQ(found, first);
    }
    const AcDbObjectId second = addLayer(L"A");
    {
        Opened<AcDbLayerTable> table(database->layerTableId());
        EXPECT_EQ(table->getAt(L"A", found, true), Acad::eOk);
        EXPECT_EQ(found, second) << "one that is there goes before";
    }
    {
        Opened<AcDbObject> record(first, AcDb::kForWrite, true);
        EXPECT_EQ(record->erase(false), Acad::eDuplicateRecordName);
    }
    erase(second);
    erase(first, false);
    EXPECT_TRUE(Opened<AcDbLayerTable>(database->layerTableId())->has(L"A"));
}

TEST_F(SymbolTableTest, IteratorsFollowChanges) {
    const AcDbObjectId a = addLayer(L"A"), b = addLayer(L"B"), c = addLayer(L"C");
    const auto walk = Opened<AcDbLayerTable>(database->layerTableId())->newIterator();
    EXPECT_EQ(walk->getRecordId(), database->layerZero());
    walk->step();
    EXPECT_EQ(walk->getRecordId(), a);
    erase(b);
    const AcDbObjectId d = addLayer(L"D");
    walk->step();
    EXPECT_EQ(walk->getRecordId(), c);
    walk->step(false, false);
    EXPECT_EQ(walk->getRecordId(), b) << "erased ones are not skipped";
    EXPECT_EQ(walk->seek(d), Acad::eOk);
    AcDbSymbolTableRecord* record = nullptr;
    EXPECT_EQ(walk->getRecord(record), Acad::eOk);
    EXPECT_EQ(record->name(), L"D");
    record->close();
    walk->step();
    EXPECT_TRUE(walk->done());
    AcDbObjectId id;
    EXPECT_EQ(walk->getRecordId(id), Acad::eNullObjectId);
    EXPECT_EQ(walk->seek(database->modelSpaceId()), Acad::eKeyNotFound);
    walk->start(false);
    EXPECT_EQ(walk->getRecordId(), d);
}

TEST_F(SymbolTableTest, AnonymousBlocksAreNumbered) {
    const auto nameOf = [](AcDbObjectId id) { return Opened<AcDbBlockTableRecord>(id)->name(); };
    const AcDbObjectId first = addBlock(L"*U");
    EXPECT_EQ(nameOf(first), L"*U1");
    EXPECT_EQ(nameOf(addBlock(L"*U")), L"*U2");
    EXPECT_EQ(nameOf(addBlock(L"*D")), L"*D1");
    erase(first);
    EXPECT_EQ(nameOf(addBlock(L"*U")), L"*U1") << "an erased one may have the name too";
    EXPECT_TRUE(Opened<AcDbBlockTableRecord>(first, AcDb::kForRead, true)->isAnonymous());
    EXPECT_FALSE(Opened<AcDbBlockTableRecord>(database->modelSpaceId())->isAnonymous());
}

}  // namespace
}  // namespace sg::model
