#include <map>

#include "host/dwg/dwg_fixture.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "platform/db/block_table.h"

// Objects of classes that have no form in DWG files, and those that have one without a class here.
namespace sg {
namespace {

using test::kWrittenReleases;

class DwgKeptObjectsTest : public test::DwgTest {
  protected:
    static const AcDbEntity& firstOf(const AcDbDatabase& database) {
        const auto* const space = model::peek<AcDbBlockTableRecord>(database.modelSpaceId());
        return *model::peek<AcDbEntity>(*space->entityIds().begin());
    }
    // The groups of the only entity.
    static std::string entityIn(const AcDbDatabase& database) {
        const std::string groups = groupsOf(database);
        const size_t start = groups.find("ENTITIES");
        return groups.substr(start, groups.find("ENDSEC", start) - start);
    }
    // How many objects there are of each kind, but for tables that only old files have.
    static std::map<std::wstring, size_t> namesIn(const AcDbDatabase& database) {
        std::map<std::wstring, size_t> names;
        model::DatabaseState::of(const_cast<AcDbDatabase&>(database))
            .forEach([&](const AcDbObject& object) {
                const model::ProxyData* const data = model::proxyData(object);
                const bool isOld = data != nullptr && data->className.starts_with(L"AcDbVX");
                if (!isOld) ++names[model::dxfNameOf(object)];
            });
        return names;
    }
};

// A line from 1,2,3 to 4,5,6 as drawing calls.
constexpr const char* kGraphics =
    "160\n68\n310\n4400000001000000"
    "3C0000000600000002000000"
    "000000000000F03F00000000000000400000000000000840"
    "000000000000104000000000000014400000000000001840\n";

// A file of release 2018, since older ones do not have all of it.
std::string gadgetFile() {
    return std::string(
               "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n"
               "0\nSECTION\n2\nTABLES\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n"
               "0\nGADGET\n100\nAcDbEntity\n8\n0\n62\n1\n") +
           kGraphics +
           "100\nAcDbGadget\n70\n5\n40\n2.5\n10\n1\n20\n2\n30\n3\n1\ngr\xC3\xB6\xC3\x9F"
           "er\n290\n1\n160\n-7\n310\n00FF\n330\n0\n0\nENDSEC\n0\nEOF\n";
}

TEST_F(DwgKeptObjectsTest, GroupsWithoutAFormComeBack) {
    AcDbDatabase& database = empty();
    dxf::read(database, gadgetFile(), L"plan.dxf");
    for (const char* const release : kWrittenReleases) {
        AcDbDatabase& again = load(written(database, release));
        EXPECT_EQ(losses, std::vector<std::wstring>{L"kept in a form that other programs show only "
                                                    L"by its graphics: 1 GADGET"})
            << release;
        EXPECT_TRUE(warnings.empty()) << release;
        EXPECT_STREQ(model::dxfNameOf(firstOf(again)), L"GADGET") << release;
        EXPECT_EQ(entityIn(again), entityIn(database)) << release;
    }
}

TEST_F(DwgKeptObjectsTest, BitsOfAnotherReleaseComeBack) {
    for (const auto& file : realFiles()) {
        AcDbDatabase& database = load(contentOf(file));
        const auto before = namesIn(database);
        for (const char* const release : {"2000", "2004", "2018"}) {
            AcDbDatabase& there = load(written(database, release));
            EXPECT_EQ(namesIn(there), before) << file << release;
            for (const char* const back : {"2000", "2018"}) {
                EXPECT_EQ(namesIn(load(written(there, back))), before) << file << release << back;
            }
        }
    }
}

struct Fixed {
    const char* groups;
    const wchar_t* className;
};

TEST_F(DwgKeptObjectsTest, WhatEveryFormatHasIsNoClassOfTheFile) {
    const Fixed cases[] = {
        {"0\nTOLERANCE\n100\nAcDbEntity\n8\n0\n100\nAcDbFcf\n3\nStandard\n10\n1\n20\n2\n30\n0\n1\nx"
         "\n",
         L"AcDbFcf"},
        {"0\nPOLYLINE\n100\nAcDbEntity\n8\n0\n100\nAcDbPolygonMesh\n66\n1\n10\n0\n20\n0\n30\n0\n70"
         "\n"
         "16\n71\n2\n72\n2\n"
         "0\nVERTEX\n100\nAcDbEntity\n8\n0\n100\nAcDbVertex\n100\nAcDbPolygonMeshVertex\n10\n0\n20"
         "\n"
         "0\n30\n0\n70\n64\n"
         "0\nSEQEND\n100\nAcDbEntity\n8\n0\n",
         L"AcDbPolygonMesh"},
        {"0\nPOLYLINE\n100\nAcDbEntity\n8\n0\n100\nAcDbPolyFaceMesh\n66\n1\n10\n0\n20\n0\n30\n0\n"
         "70\n64\n0\nSEQEND\n100\nAcDbEntity\n8\n0\n",
         L"AcDbPolyFaceMesh"},
        {"0\nREGION\n100\nAcDbEntity\n8\n0\n100\nAcDbModelerGeometry\n70\n1\n1\nnoo\n",
         L"AcDbRegion"},
    };
    for (const Fixed& each : cases) {
        AcDbDatabase& database = drawingOf(each.groups);
        for (const char* const release : kWrittenReleases) {
            AcDbDatabase& again = load(written(database, release));
            EXPECT_TRUE(losses.empty()) << release;
            const model::ProxyData* const data = model::proxyData(firstOf(again));
            const std::wstring name =
                data != nullptr ? data->className : firstOf(again).isA()->name();
            EXPECT_EQ(name, each.className) << release;
            EXPECT_EQ(groupsOf(again), groupsOf(database)) << release;
        }
    }
}

}  // namespace
}  // namespace sg
