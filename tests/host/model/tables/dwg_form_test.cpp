#include "host/model/core/group_bytes.h"
#include "host/model/core/object_access.h"
#include "host/model/dwg_trace.h"
#include "host/model/model_fixture.h"
#include "host/model/tables/filing.h"

#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"

namespace sg::test {
namespace {

using Lines = std::vector<std::string>;

class TablesDwgFormTest : public ModelTest {
  protected:
    DwgTrace filed(const AcDbObject& object, AcDb::AcDbDwgVersion release) {
        DwgTrace trace(release, database.get());
        const model::Unguarded guard(object);
        EXPECT_EQ(object.dwgOutFields(&trace), Acad::eOk);
        return trace;
    }
    template <class Class>
    void expectWhole(Class& copy, DwgTrace trace) {
        EXPECT_EQ(copy.dwgInFields(&trace), Acad::eOk);
        EXPECT_TRUE(trace.isDone());
    }
};

// Settings and line weight are one number; what a release has not is not there.
TEST_F(TablesDwgFormTest, LayersPackTheirSettings) {
    AcDbLayerTableRecord layer;
    layer.setName(L"A");
    layer.setIsOff(true);
    layer.setIsLocked(true);
    layer.setLineWeight(AcDb::kLnWt025);
    const DwgTrace old = filed(layer, AcDb::kDHL_1015);
    EXPECT_EQ(old.text(), (Lines{"T A", "B 1", "BS 0", "B 0", "BS 250", "CMC 195 7"}));
    EXPECT_EQ(old.ids.size(), 3u);
    const DwgTrace now = filed(layer, AcDb::kDHL_1032);
    EXPECT_EQ(now.text(), (Lines{"T A", "BS 0", "BS 250", "CMC 195 7"}));
    EXPECT_EQ(now.ids.size(), 5u);
    for (const DwgTrace& trace : {old, now}) {
        AcDbLayerTableRecord copy;
        expectWhole(copy, trace);
        EXPECT_TRUE(copy.isOff() && copy.isLocked() && !copy.isFrozen() && copy.isPlottable());
        EXPECT_EQ(copy.lineWeight(), AcDb::kLnWt025);
    }
}

TEST_F(TablesDwgFormTest, FixedRecordsStandApart) {
    const DwgTrace blocks =
        filed(*model::peek<AcDbBlockTable>(database->blockTableId()), AcDb::kDHL_1032);
    ASSERT_GE(blocks.ids.size(), 2u);
    EXPECT_EQ(blocks.data[0].numbers[0], double(blocks.ids.size() - 2));
    EXPECT_EQ(blocks.ids[blocks.ids.size() - 2].id, database->modelSpaceId());
    EXPECT_EQ(blocks.ids[blocks.ids.size() - 2].coding, "H3");
}

// A block's entities are a list, and before release 2004 the first and the last of them.
TEST_F(TablesDwgFormTest, BlocksListWhatIsNotErased) {
    const AcDbObjectId first = add();
    const AcDbObjectId erased = add();
    const AcDbObjectId last = add();
    model::eraseObject(erased);
    const auto* const space = model::peek<AcDbBlockTableRecord>(database->modelSpaceId());
    const DwgTrace old = filed(*space, AcDb::kDHL_1015);
    EXPECT_EQ(old.ids[2].id, first);
    EXPECT_EQ(old.ids[3].id, last);
    const DwgTrace now = filed(*space, AcDb::kDHL_1018);
    EXPECT_EQ(now.ids[2].id, first);
    EXPECT_EQ(now.ids[3].id, last);
    EXPECT_EQ(now.ids[2].coding, "H3");
    EXPECT_EQ(now.data.size(), old.data.size() + 1);
}

TEST_F(TablesDwgFormTest, TextsOfLinetypesStandInAnArea) {
    AcDbLinetypeTableRecord line;
    line.setName(L"GAS");
    std::vector<AcDbLinetypeTableRecord::Dash> dashes(3);
    dashes[0].length = 1;
    dashes[1].flags = dashes[2].flags = 2;
    dashes[1].text = L"GAS";
    dashes[2].text = L"H\x2082O";
    line.setDashes(dashes);
    for (const AcDb::AcDbDwgVersion release : {AcDb::kDHL_1021, AcDb::kDHL_1032}) {
        const DwgTrace trace = filed(line, release);
        EXPECT_EQ(trace.data.back().bytes.size(), 512u);
        AcDbLinetypeTableRecord copy;
        expectWhole(copy, trace);
        ASSERT_EQ(copy.dashes().size(), 3u);
        EXPECT_EQ(copy.dashes()[1].text, L"GAS");
        EXPECT_EQ(copy.dashes()[2].text, L"H\x2082O");
    }
}

// Of a record of groups every piece is safe to read, and a whole one comes back.
TEST_F(TablesDwgFormTest, RecordsOfGroupsAreBytes) {
    model::GroupData groups;
    groups.appendText(1, "text");
    groups.appendReal(40, 2.5);
    groups.appendReal(50, 90);  // degrees
    for (const int code : {10, 20, 30})
        groups.appendReal(code, code);
    groups.appendWhole(70, -3);
    groups.appendWhole(90, 100000);
    groups.appendWhole(290, 1);
    groups.appendBinary(310, std::string_view("\0\1\2", 3));
    groups.appendObject(330, database->clayer());
    groups.appendWhole(1071, 7);
    for (const AcDb::AcDbDwgVersion release : {AcDb::kDHL_1015, AcDb::kDHL_1032}) {
        DwgTrace form(release, database.get());
        const std::string bytes = model::toFileBytes(groups, form, release);
        for (size_t size = 0; size <= bytes.size(); ++size) {
            model::GroupData copy;
            const bool isWhole = model::fromFileBytes(std::string_view(bytes).substr(0, size), form,
                                                      release, *database, copy);
            if (size == bytes.size()) {
                EXPECT_TRUE(isWhole);
                EXPECT_EQ(model::toFileBytes(copy, form, release), bytes);
            }
        }
        model::GroupData none;
        EXPECT_FALSE(model::fromFileBytes("\xFF\x7F", form, release, *database, none));
    }
}

}  // namespace
}  // namespace sg::test
