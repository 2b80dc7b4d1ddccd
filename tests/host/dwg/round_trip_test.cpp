#include "base/encoding.h"
#include "host/dwg/dwg_fixture.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/header_variables.h"
#include "platform/db/line.h"

// Drawings as DWG files and back: the groups of both are the same.
namespace sg {
namespace {

using test::kWrittenReleases;

class DwgRoundTripTest : public test::DwgTest {
  protected:
    // Entities of model space in their order, by their names in files.
    static std::vector<std::wstring> entitiesOf(const AcDbDatabase& database) {
        std::vector<std::wstring> names;
        const auto* const space = model::peek<AcDbBlockTableRecord>(database.modelSpaceId());
        for (const AcDbObjectId id : space->entityIds())
            names.push_back(model::peek<AcDbEntity>(id)->isA()->dxfName());
        return names;
    }
};

constexpr const char* kEntities =
    "0\nLINE\n8\nWalls\n62\n3\n10\n1\n20\n2\n30\n3\n11\n4\n21\n5\n31\n6\n"
    "0\nCIRCLE\n8\nWalls\n6\nBYBLOCK\n48\n2.5\n10\n1\n20\n2\n30\n0\n40\n7.5\n"
    "1001\nACAD\n1000\nnote "
    "\xC3\xA4\n1040\n2.5\n1070\n-7\n1071\n70000\n1002\n{\n1010\n1\n1020\n2\n1030\n3"
    "\n1002\n}\n1003\nWalls\n1005\n2F\n1004\n00FF7F\n"
    "0\nTEXT\n8\n0\n60\n1\n370\n35\n10\n0\n20\n0\n30\n0\n40\n2.5\n1\ngr\xC3\xB6\xC3\x9F"
    "er \xE2\x89\xA4 5\n"
    "0\nPOLYLINE\n8\n0\n66\n1\n70\n1\n10\n0\n20\n0\n30\n0\n"
    "0\nVERTEX\n8\n0\n10\n0\n20\n0\n30\n0\n42\n0.5\n0\nVERTEX\n8\n0\n10\n5\n20\n0\n30\n0\n"
    "0\nVERTEX\n8\n0\n10\n5\n20\n5\n30\n0\n0\nSEQEND\n8\n0\n"
    "0\nARC\n8\nDoors\n420\n1193046\n440\n33554661\n10\n1\n20\n2\n30\n0\n40\n7."
    "5\n50\n30\n51\n120\n210\n0\n220\n1\n230\n0\n"
    "0\nPOINT\n8\n0\n10\n1\n20\n2\n30\n0\n39\n4\n";

TEST_F(DwgRoundTripTest, EveryReleaseKeepsTheDrawing) {
    AcDbDatabase& database = drawingOf(kEntities);
    const std::string before = groupsOf(database);
    for (const char* const release : kWrittenReleases) {
        const std::string file = written(database, release);
        EXPECT_TRUE(losses.empty()) << release;
        AcDbDatabase& again = load(file);
        EXPECT_TRUE(warnings.empty()) << release << ": " << toUtf8(warnings.front());
        const bool hasTrueColors = std::string(release) != "2000";
        if (hasTrueColors) {
            EXPECT_EQ(groupsOf(again), before) << release;
        }
        EXPECT_EQ(entitiesOf(again), entitiesOf(database)) << release;
        // The second time nothing is left to change.
        EXPECT_EQ(written(again, release).size(), file.size()) << release;
    }
}

TEST_F(DwgRoundTripTest, ANewDrawingIsWhole) {
    AcDbDatabase& database = newDrawing();
    for (const char* const release : kWrittenReleases) {
        AcDbDatabase& again = load(written(database, release));
        EXPECT_TRUE(warnings.empty()) << release;
        EXPECT_EQ(groupsOf(again), groupsOf(database)) << release;
        EXPECT_EQ(&dwg::ownRelease(again), dxf::releaseNamed(release));
    }
}

// Neighbours tell the order until release 2000, lists later; both survive handles out of order.
TEST_F(DwgRoundTripTest, EntitiesKeepTheirOrder) {
    AcDbDatabase& database = drawingOf(kEntities);
    auto* const space = model::peek<AcDbBlockTableRecord>(database.modelSpaceId());
    std::vector<AcDbObjectId> ids;
    for (const AcDbObjectId id : space->entityIds())
        ids.push_back(id);
    std::swap(ids[0], ids[4]);
    std::swap(ids[1], ids[2]);
    model::ObjectAccess::contents(*space).assign(ids);
    for (const char* const release : kWrittenReleases) {
        AcDbDatabase& again = load(written(database, release));
        EXPECT_EQ(entitiesOf(again), entitiesOf(database)) << release;
    }
}

TEST_F(DwgRoundTripTest, ErasedObjectsAreNotInTheFile) {
    AcDbDatabase& database = drawingOf(kEntities);
    const auto* const space = model::peek<AcDbBlockTableRecord>(database.modelSpaceId());
    const AcDbObjectId first = *space->entityIds().begin();
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenObject(entity, first, AcDb::kForWrite), Acad::eOk);
    entity->erase();
    entity->close();
    for (const char* const release : kWrittenReleases) {
        AcDbDatabase& again = load(written(database, release));
        EXPECT_TRUE(warnings.empty()) << release;
        EXPECT_EQ(entitiesOf(again).size(), 5u) << release;
    }
}

// Header variables of every kind: a number, a point, a layer, a text, a time, bits of one number.
TEST_F(DwgRoundTripTest, HeaderVariablesKeepTheirValues) {
    AcDbDatabase& database = drawingOf(kEntities);
    model::HeaderVariables& header = model::DatabaseState::of(database).changeHeader();
    const AcDbObjectId layer = model::findRecord(database.layerTableId(), L"Doors");
    header.set(L"LTSCALE", 2.25);
    header.set(L"INSBASE", AcGePoint3d(1, 2, 3));
    header.set(L"LIMMAX", AcGePoint3d(420, 297, 0));
    header.set(L"CLAYER", layer);
    header.set(L"PROJECTNAME", std::wstring(L"Haus \u00E4"));
    header.set(L"TDUCREATE", 2454762.75);
    header.set(L"CELWEIGHT", int32_t{50});
    header.set(L"LWDISPLAY", int32_t{1});
    header.set(L"XEDIT", int32_t{0});
    header.set(L"MEASUREMENT", int32_t{1});
    header.set(L"DIMSCALE", 48.0);
    for (const char* const release : kWrittenReleases) {
        AcDbDatabase& again = load(written(database, release));
        const model::HeaderVariables& read = model::DatabaseState::of(again).header();
        for (const wchar_t* const name :
             {L"LTSCALE", L"INSBASE", L"LIMMAX", L"TDUCREATE", L"CELWEIGHT", L"LWDISPLAY", L"XEDIT",
              L"MEASUREMENT", L"DIMSCALE"}) {
            const size_t place = *model::HeaderVariables::find(name);
            EXPECT_EQ(read.at(place), header.at(place)) << release << " " << toUtf8(name);
        }
        EXPECT_EQ(model::peek<AcDbLayerTableRecord>(read.get<AcDbObjectId>(L"CLAYER"))->name(),
                  L"Doors");
        if (std::string(release) != "2000") {
            EXPECT_EQ(read.get<std::wstring>(L"PROJECTNAME"), L"Haus \u00E4") << release;
        }
    }
}

// Files of other programs: what we write of one is read to the same drawing.
TEST_F(DwgRoundTripTest, RealFilesComeOutAsTheyWere) {
    const auto files = realFiles();
    if (files.empty()) GTEST_SKIP() << "the files of other programs are not here";
    for (const auto& file : files) {
        AcDbDatabase& database = load(contentOf(file));
        EXPECT_TRUE(warnings.empty()) << file << toUtf8(warnings.front());
        const std::string release(dwg::ownRelease(database).name);
        AcDbDatabase& again = load(written(database, release.c_str()));
        EXPECT_TRUE(losses.empty()) << file;
        EXPECT_TRUE(warnings.empty()) << file;
        EXPECT_EQ(groupsOf(again), groupsOf(database)) << file;
    }
}

}  // namespace
}  // namespace sg
