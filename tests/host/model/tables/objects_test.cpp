#include "host/model/entities/entity_fixture.h"
#include "host/model/entities/image.h"
#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/layout.h"
#include "host/model/tables/reg_app_table.h"
#include "host/model/tables/styles.h"
#include "host/model/tables/view_tables.h"
#include "host/model/tables/xrecord.h"
#include "platform/db/group.h"
#include "platform/db/sortents.h"

// What holds for the objects of all tables and dictionaries.

namespace sg::test {
namespace {

class TableObjectsTest : public ObjectTest {
  protected:
    struct Sample {
        std::string name;
        std::unique_ptr<AcDbObject> object;
    };

    std::vector<Sample> samples() {
        std::vector<Sample> all;
        const auto add = [&](const char* name, auto* object) -> auto& {
            all.push_back({name, std::unique_ptr<AcDbObject>(object)});
            return *object;
        };
        auto& layer = add("layer", new AcDbLayerTableRecord);
        layer.setName(L"Walls");
        layer.setIsLocked(true);
        layer.setIsOff(true);
        AcCmColor color;
        color.setColorIndex(3);
        layer.setColor(color);
        layer.setLineWeight(AcDb::kLnWt025);
        layer.setLinetypeObjectId(database->continuousLinetype());
        auto& dashed = add("linetype", new AcDbLinetypeTableRecord);
        dashed.setName(L"Dashed");
        dashed.setComments(L"- - -");
        std::vector<AcDbLinetypeTableRecord::Dash> dashes(3);
        dashes[0].length = 0.5;
        dashes[1].length = -0.25;
        dashes[2].length = 0;
        dashed.setDashes(dashes);
        auto& style = add("text style", new AcDbTextStyleTableRecord);
        style.setName(L"Narrow");
        style.setFileName(L"simplex.shx");
        style.setXScale(0.7);
        style.setObliquingAngle(0.2);
        style.setTextSize(2.5);
        style.setFlagBits(2);
        auto& dims = add("dimension style", new AcDbDimStyleTableRecord);
        dims.setName(L"Metric");
        dims.setValue(*model::findDimVariable(L"DIMASZ"), 2.5);
        dims.setValue(*model::findDimVariable(L"DIMPOST"), std::wstring(L"<> mm"));
        dims.setValue(*model::findDimVariable(L"DIMTXSTY"), database->textstyle());
        add("application", new AcDbRegAppTableRecord).setName(L"SOME_APPLICATION");
        auto& view = add("view", new AcDbViewTableRecord);
        view.setName(L"Detail");
        view.fields().set(40, 7.5);
        auto& viewport = add("viewport", new AcDbViewportTableRecord);
        viewport.setName(L"*Active");
        viewport.fields().set(51, 0.5);
        auto& ucs = add("coordinate system", new AcDbUCSTableRecord);
        ucs.setName(L"Front");
        ucs.fields().set(10, AcGePoint3d(1, 2, 3));
        auto& layout = add("layout", new AcDbLayout);
        layout.setLayout(L"Sheet", 2, database->paperSpaceId());
        auto& record = add("extension record", new AcDbXrecord);
        ads_name layerName;
        acdbGetAdsName(layerName, database->layerZero());
        const ads_point point = {1, 2, 3};
        resbuf* const groups = acutBuildList(1, L"text", 10, point, 40, 2.5, 70, 3, 90, 70000, 290,
                                             1, 340, layerName, 310, L"0A0B", 320, L"1F", 0);
        record.setFromRbChain(*groups);
        acutRelRb(groups);
        add("dictionary variable", new AcDbDictionaryVar).setValue(L"1");
        add("place holder", new AcDbPlaceHolder);
        auto& lines = add("multiline style", new AcDbMlineStyle);
        lines.setName(L"Double");
        std::vector<AcDbMlineStyle::Element> elements(2);
        elements[0].offset = 0.5;
        elements[1].offset = -0.5;
        for (AcDbMlineStyle::Element& element : elements)
            element.linetype = database->byLayerLinetype();
        lines.setElements(elements);
        add("group", new AcDbGroup(L"Some entities")).append(addPlain());
        auto& image = add("image definition", new AcDbRasterImageDef);
        image.setSourceFileName(L"plan.png");
        image.setSize({640, 480});
        add("image reactor", new AcDbRasterImageDefReactor(addPlain()));
        add("image variables", new AcDbRasterVariables);
        add("wipeout variables", new AcDbWipeoutVariables);
        return all;
    }
    AcDbObjectId addPlain() { return add(); }
};

TEST_F(TableObjectsTest, MemoryBringsThemBack) {
    for (const Sample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        EXPECT_EQ(described(*throughMemory(*sample.object)), described(*sample.object));
    }
}

TEST_F(TableObjectsTest, GroupsBringThemBack) {
    for (const Sample& sample : samples()) {
        SCOPED_TRACE(sample.name);
        for (const AcDb::FilerType type : {AcDb::kFileFiler, AcDb::kBagFiler}) {
            const auto copy = throughGroups(*sample.object, type);
            EXPECT_EQ(described(*copy, type), described(*sample.object, type));
        }
    }
}

TEST_F(TableObjectsTest, ExtensionRecordsPointAtCopies) {
    Opened<AcDbDictionary> names(database->namedObjectsDictionaryId(), AcDb::kForWrite);
    auto* const record = new AcDbXrecord;
    const AcDbObjectId layer = addLayer(L"Walls");
    ads_name name;
    acdbGetAdsName(name, layer);
    resbuf* const groups = acutBuildList(340, name, 0);
    record->setFromRbChain(*groups);
    acutRelRb(groups);
    AcDbObjectId id;
    ASSERT_EQ(names->setAt(L"MINE", record, id), Acad::eOk);
    record->close();
    // What a hard pointer names is not purged, and comes along.
    AcDbObjectIdArray candidates;
    candidates.append(layer);
    database->purge(candidates);
    EXPECT_TRUE(candidates.isEmpty());
    AcDbDatabase other;
    AcDbObjectIdArray ids;
    ids.append(id);
    AcDbIdMapping mapping;
    ASSERT_EQ(
        other.wblockCloneObjects(ids, other.namedObjectsDictionaryId(), mapping, AcDb::kDrcIgnore),
        Acad::eOk);
    AcDbObjectId there;
    EXPECT_EQ(Opened<AcDbLayerTable>(other.layerTableId())->getAt(L"Walls", there), Acad::eOk);
    resbuf* copied = nullptr;
    ASSERT_EQ(Opened<AcDbXrecord>(mapping.find(id)->value)->rbChain(&copied), Acad::eOk);
    AcDbObjectId pointed;
    acdbGetObjectId(pointed, copied->resval.rlname);
    EXPECT_EQ(pointed, there);
    acutRelRb(copied);
}

TEST_F(TableObjectsTest, ExtensionRecordsRefuseForeignCodes) {
    AcDbXrecord record;
    for (const int code : {-1, 5, 105, 370, 1000}) {
        resbuf* const group = acutNewRb(code);
        EXPECT_EQ(record.setFromRbChain(*group), Acad::eInvalidDxfCode) << code;
        group->restype = RTNONE;
        acutRelRb(group);
    }
    resbuf* groups = nullptr;
    EXPECT_EQ(record.rbChain(&groups), Acad::eOk);
    EXPECT_EQ(groups, nullptr);
}

TEST_F(TableObjectsTest, DictionariesKnowNamesWhateverTheirCase) {
    Opened<AcDbDictionary> names(database->namedObjectsDictionaryId(), AcDb::kForWrite);
    auto* const inner = new AcDbDictionary;
    AcDbObjectId id;
    ASSERT_EQ(names->setAt(L"M\xFCller", inner, id), Acad::eOk);
    inner->close();
    EXPECT_TRUE(names->has(L"M\xDCLLER"));
    std::wstring name;
    EXPECT_EQ(names->nameAt(id, name), Acad::eOk);
    EXPECT_EQ(name, L"M\xFCller");
    EXPECT_TRUE(names->setName(L"m\xFCller", L"M\xDCLLER"));  // its own name in another case
    EXPECT_FALSE(names->setName(L"nobody", L"somebody"));
    AcDbObjectId none;
    EXPECT_EQ(names->setAt(L"", inner, none), Acad::eInvalidKey);
    EXPECT_EQ(names->remove(L"nobody"), Acad::eKeyNotFound);
    EXPECT_EQ(names->remove(L"m\xFCller"), Acad::eOk);
    EXPECT_FALSE(names->has(id));
}

TEST_F(TableObjectsTest, GroupsAndTheirEntitiesKnowEachOther) {
    const AcDbObjectId first = add();
    const AcDbObjectId second = add();
    auto* const group = new AcDbGroup;
    AcDbObjectId id;
    ASSERT_EQ((Opened<AcDbDictionary>(database->groupDictionaryId(), AcDb::kForWrite)
                   ->setAt(L"PAIR", group, id)),
              Acad::eOk);
    EXPECT_EQ(group->append(first), Acad::eOk);
    EXPECT_EQ(group->append(first), Acad::eDuplicateKey);
    EXPECT_EQ(group->append(AcDbObjectId()), Acad::eNullObjectId);
    EXPECT_EQ(group->insertAt(0, second), Acad::eOk);
    EXPECT_EQ(group->name(), L"PAIR");
    group->close();
    EXPECT_TRUE(Opened<AcDbEntity>(first)->hasPersistentReactor(id));
    erase(second);
    EXPECT_EQ(Opened<AcDbGroup>(id)->numEntities(), 1u);
    erase(second, false);
    uint32_t index = 9;
    EXPECT_EQ(Opened<AcDbGroup>(id)->getIndex(first, index), Acad::eOk);
    EXPECT_EQ(index, 1u);
    EXPECT_EQ(Opened<AcDbGroup>(id, AcDb::kForWrite)->remove(first), Acad::eOk);
    EXPECT_FALSE(Opened<AcDbEntity>(first)->hasPersistentReactor(id));
    EXPECT_EQ(Opened<AcDbGroup>(id, AcDb::kForWrite)->remove(first), Acad::eInvalidInput);
}

// ---- Draw order ---------------------------------------------------------------------------------

class DrawOrderTest : public ModelTest {
  protected:
    static std::string orderOf(AcDbObjectId block, const std::vector<AcDbObjectId>& names) {
        Opened<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
        AcDbSortentsTable* table = nullptr;
        EXPECT_EQ(record->getSortentsTable(table, AcDb::kForRead, true), Acad::eOk);
        AcDbObjectIdArray order;
        EXPECT_EQ(table->getFullDrawOrder(order), Acad::eOk);
        table->close();
        std::string text;
        for (const AcDbObjectId id : order) {
            const auto at = std::find(names.begin(), names.end(), id);
            text += at == names.end() ? '?' : static_cast<char>('a' + (at - names.begin()));
        }
        return text;
    }
    static AcDbObjectIdArray listOf(std::initializer_list<AcDbObjectId> ids) {
        AcDbObjectIdArray list;
        for (const AcDbObjectId id : ids)
            list.append(id);
        return list;
    }
    template <class Change>
    static void change(AcDbObjectId block, const Change& change) {
        Opened<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
        AcDbSortentsTable* table = nullptr;
        ASSERT_EQ(record->getSortentsTable(table, AcDb::kForWrite, true), Acad::eOk);
        change(*table);
        table->close();
    }
};

TEST_F(DrawOrderTest, EntitiesChangePlaces) {
    const AcDbObjectId space = database->modelSpaceId();
    const std::vector<AcDbObjectId> ids = {add(), add(), add(), add(), add()};
    change(space, [&](AcDbSortentsTable& table) {
        EXPECT_EQ(table.moveToTop(listOf({ids[1], ids[0]})), Acad::eOk);
    });
    EXPECT_EQ(orderOf(space, ids), "cdeab");
    change(space, [&](AcDbSortentsTable& table) {
        EXPECT_EQ(table.moveBelow(listOf({ids[4]}), ids[2]), Acad::eOk);
        EXPECT_TRUE(table.firstEntityIsDrawnBeforeSecond(ids[4], ids[2]));
        EXPECT_EQ(table.moveBelow(listOf({ids[4]}), ids[4]), Acad::eInvalidInput);
    });
    EXPECT_EQ(orderOf(space, ids), "ecdab");
    change(space, [&](AcDbSortentsTable& table) {
        // Only the places that they have among all.
        EXPECT_EQ(table.setRelativeDrawOrder(listOf({ids[1], ids[2], ids[4]})), Acad::eOk);
        EXPECT_EQ(table.setRelativeDrawOrder(listOf({ids[1], ids[1]})), Acad::eInvalidInput);
        EXPECT_EQ(table.setRelativeDrawOrder(listOf({AcDbObjectId()})), Acad::eInvalidInput);
    });
    EXPECT_EQ(orderOf(space, ids), "bcdae");
}

TEST_F(DrawOrderTest, InsertsKeepTheOrderOfTheSource) {
    AcDbDatabase source;
    AcDbObjectIdArray theirs;
    for (int i = 0; i < 4; ++i) {
        Opened<AcDbBlockTableRecord> space(source.modelSpaceId(), AcDb::kForWrite);
        auto* const entity = new SampleEntity;
        AcDbObjectId id;
        space->appendAcDbEntity(id, entity);
        entity->close();
        theirs.append(id);
    }
    change(source.modelSpaceId(), [&](AcDbSortentsTable& table) {
        table.moveToBottom(listOf({theirs[3], theirs[2]}));
    });
    AcDbObjectId block;
    ASSERT_EQ(database->insert(block, L"Door", &source), Acad::eOk);
    EXPECT_EQ(orderOf(block, entitiesIn(block)), "cdab");
    add();
    ASSERT_EQ(database->insert(AcGeMatrix3d(), &source), Acad::eOk);
    EXPECT_EQ(orderOf(database->modelSpaceId(), entities()), "adebc");
    AcDbDatabase* made = nullptr;
    ASSERT_EQ(source.wblock(made, source.modelSpaceId()), Acad::eOk);
    const std::unique_ptr<AcDbDatabase> output(made);
    EXPECT_EQ(orderOf(output->modelSpaceId(), entitiesIn(output->modelSpaceId())), "cdab");
}

}  // namespace
}  // namespace sg::test
