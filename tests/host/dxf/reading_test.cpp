#include <gmock/gmock.h>

#include "base/encoding.h"
#include "host/dxf/dxf_fixture.h"
#include "host/exchange/summary.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "platform/db/block_reference.h"
#include "platform/db/circle.h"
#include "platform/db/line.h"
#include "platform/db/polyline_2d.h"
#include "platform/db/text.h"
#include "platform/rx/rxclass.h"

namespace {

class DxfWobble : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(DxfWobble)
    int32_t number = 0;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override {
        AcDbEntity::dxfInFields(filer);
        if (!filer->atSubclassData(L"AcDbWobble")) return Acad::eBadDxfSequence;
        resbuf group{};
        while (filer->readItem(&group) == Acad::eOk) {
            if (group.restype == 90) number = group.resval.rlong;
        }
        return filer->filerStatus();
    }
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override {
        AcDbEntity::dxfOutFields(filer);
        filer->writeString(100, L"AcDbWobble");
        return filer->writeInt32(90, number);
    }
};

}  // namespace

ACRX_DXF_DEFINE_MEMBERS(DxfWobble, AcDbEntity, 0, 1, L"WOBBLE", L"Wobbler")

namespace sg {
namespace {

using model::peek;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DxfReadingTest : public test::DxfTest {
  protected:
    // A section of groups, each "code|value".
    static std::string section(const std::string& name, std::initializer_list<const char*> groups) {
        std::string content = "0\nSECTION\n2\n" + name + "\n";
        for (const std::string group : groups) {
            const size_t bar = group.find('|');
            content += group.substr(0, bar) + "\n" + group.substr(bar + 1) + "\n";
        }
        return content + "0\nENDSEC\n";
    }
    static std::string release(const char* version) {
        return section("HEADER", {"9|$ACADVER", (std::string("1|") + version).c_str()});
    }
    static std::vector<AcDbObjectId> modelSpace(const AcDbDatabase& database) {
        return peek<AcDbBlockTableRecord>(database.modelSpaceId())->entityIds();
    }
    template <class Class>
    static const Class* first(const AcDbDatabase& database) {
        for (const AcDbObjectId id : modelSpace(database)) {
            if (const auto* const found = peek<Class>(id)) return found;
        }
        return nullptr;
    }
    std::vector<std::string> said() const {
        std::vector<std::string> lines;
        for (const std::wstring& warning : warnings)
            lines.push_back(toUtf8(warning));
        return lines;
    }
};

TEST_F(DxfReadingTest, AFileOfEntitiesAloneIsAWholeDrawing) {
    AcDbDatabase& database =
        load(section("ENTITIES", {"0|LINE", "8|Walls", "10|1", "20|2", "11|4", "21|6", "30|9"}) +
             "0\nEOF\n");
    const auto* const line = first<AcDbLine>(database);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->endPoint(), AcGePoint3d(4, 6, 0));
    EXPECT_EQ(line->layer(), L"Walls");
    EXPECT_FALSE(line->objectId().handle().isNull());
    EXPECT_TRUE(database.layoutDictionaryId().isValid());
    EXPECT_THAT(said(),
                ElementsAre("plan.dxf:5: \"Walls\" is in no table of the file and is added"));
}

TEST_F(DxfReadingTest, PolylinesAndBlocksOfRelease12AreWholeAgain) {
    AcDbDatabase& database =
        load(section("BLOCKS", {"0|BLOCK", "2|A", "10|0", "20|0", "0|INSERT", "2|LATER", "10|0",
                                "20|0", "0|ENDBLK", "0|BLOCK", "2|LATER", "10|0", "20|0", "0|LINE",
                                "10|0", "20|0", "11|1", "21|0", "0|ENDBLK"}) +
             section("ENTITIES",
                     {"0|POLYLINE", "66|1",     "70|1", "0|VERTEX", "10|0",     "20|0",
                      "42|0.5",     "0|VERTEX", "10|3", "20|0",     "0|SEQEND", "0|INSERT",
                      "2|A",        "66|1",     "10|5", "20|5",     "0|ATTRIB", "10|5",
                      "20|5",       "40|1",     "1|17", "2|NR",     "70|0",     "0|SEQEND"}));
    EXPECT_THAT(said(), IsEmpty());
    const auto* const polyline = first<AcDb2dPolyline>(database);
    ASSERT_NE(polyline, nullptr);
    EXPECT_TRUE(polyline->isClosed());
    EXPECT_EQ(model::ObjectAccess::partsOf(*polyline).size(), 3u);
    const auto* const insert = first<AcDbBlockReference>(database);
    ASSERT_NE(insert, nullptr);
    EXPECT_EQ(model::ObjectAccess::partsOf(*insert).size(), 2u);
    const auto* const block = peek<AcDbBlockTableRecord>(insert->blockTableRecord());
    const auto* const inner = peek<AcDbBlockReference>(block->entityIds().at(0));
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(peek<AcDbBlockTableRecord>(inner->blockTableRecord())->name(), L"LATER");
    const std::string content = written(database);
    EXPECT_THAT(content, HasSubstr("AcDb2dVertex"));
    load(content);
    EXPECT_THAT(said(), IsEmpty());
}

TEST_F(DxfReadingTest, MeshesOfRelease12AreKeptWithTheirVertices) {
    AcDbDatabase& database =
        load(section("ENTITIES", {"0|POLYLINE", "66|1", "70|64", "71|1", "72|1", "0|VERTEX", "10|1",
                                  "20|2", "30|3", "70|192", "0|VERTEX", "10|0", "20|0", "30|0",
                                  "70|128", "71|1", "0|SEQEND"}));
    const std::string content = written(database);
    for (const char* marker : {"AcDbPolyFaceMesh\r", "AcDbPolyFaceMeshVertex", "AcDbFaceRecord"})
        EXPECT_THAT(content, HasSubstr(marker));
    EXPECT_THAT(exchange::summaryOf(database).unreadEntities, IsEmpty());
}

// The vertices of meshes are often flagged as those of the other kind.
TEST_F(DxfReadingTest, MeshesTakeVerticesOfEitherKind) {
    AcDbDatabase& database = load(section(
        "ENTITIES", {"0|POLYLINE", "66|1", "70|64", "0|VERTEX", "10|1", "20|2", "30|3", "70|64",
                     "0|VERTEX", "10|0", "20|0", "30|0", "70|128", "71|1", "0|SEQEND"}));
    EXPECT_THAT(said(), IsEmpty());
    EXPECT_THAT(written(database), HasSubstr("AcDbFaceRecord"));
}

TEST_F(DxfReadingTest, DamageIsSurvivedWithAWarningAPlace) {
    struct Case {
        std::string content;
        size_t entities;
        std::vector<std::string> said;
    };
    const std::string line = "0\nLINE\n8\n0\n10\n1\n20\n1\n11\n2\n21\n2\n";
    const std::string start = "0\nSECTION\n2\nENTITIES\n";
    const std::string end = "0\nENDSEC\n0\nEOF\n";
    const Case cases[] = {
        {start + "0\nCIRCLE\n8\n0\n10\n1\n20\n1\n40\nabc\n" + line + end,
         1,
         {"plan.dxf:14: group 40 of CIRCLE is not a number: \"abc\"; the entity is left out"}},
        {start + line + "rubbish\n" + line + end,
         1,
         {"plan.dxf:17: this is no group of a drawing file; LINE up to the next object is left "
          "out"}},
        {start + line, 1, {"plan.dxf:17: the section of entities has no end"}},
        {start + line + end + "trailing rubbish", 1, {}},
        {start + "0\nVERTEX\n8\n0\n10\n1\n20\n1\n" + line + end,
         1,
         {"plan.dxf:5: VERTEX without what it belongs to is left out"}},
        {start + "0\nPOLYLINE\n8\n0\n0\nVERTEX\n8\n0\n10\n1\n20\n1\n" + line + end,
         2,
         {"plan.dxf:17: a SEQEND is missing"}},
        {start + "0\nLINE\n5\nA\n8\n0\n10\n1\n20\n1\n0\nLINE\n5\nA\n8\n0\n10\n1\n20\n1\n" + end,
         2,
         {"plan.dxf:15: LINE A has the handle of another object and gets a new one"}},
        {start + "0\nINSERT\n5\nB\n8\n0\n2\nNONE\n10\n1\n20\n1\n" + end,
         1,
         {"plan.dxf:5: INSERT B is kept as it is: block NONE"}},
        {"0\nSECTION\n2\nBLOCKS\n0\nENDSEC\n0\nEOF\n",
         0,
         {"plan.dxf: the section of entities is missing"}},
    };
    for (const Case& c : cases) {
        AcDbDatabase& database = load(c.content);
        EXPECT_EQ(modelSpace(database).size(), c.entities) << c.content;
        EXPECT_EQ(said(), c.said) << c.content;
    }
    for (const char* content : {"", "0\nEOF\n", "no drawing"})
        EXPECT_THROW(load(content), dxf::Error) << content;
}

TEST_F(DxfReadingTest, WhatIsUnknownComesOutAsItWas) {
    const std::string wobble =
        "  0\r\nWOBBLE\r\n  5\r\nAB\r\n330\r\n1F\r\n100\r\nAcDbEntity\r\n  8\r\n0\r\n100\r\n"
        "AcDbWobble\r\n 90\r\n        3\r\n 50\r\n45.0\r\n 10\r\n1.0\r\n "
        "20\r\n2.0\r\n310\r\n01FF\r\n"
        "160\r\n      123456789012\r\n340\r\nAC\r\n";
    const std::string content =
        section("HEADER", {"9|$ACADVER", "1|AC1032", "9|$WOBBLING", "70|7"}) +
        section("CLASSES", {"0|CLASS", "1|WOBBLE", "2|AcDbWobble", "3|Wobbler", "90|1", "91|1",
                            "280|0", "281|1"}) +
        section("TABLES", {"0|TABLE",
                           "2|WOBBLES",
                           "70|1",
                           "0|WOBBLES",
                           "2|x",
                           "0|ENDTAB",
                           "0|TABLE",
                           "2|BLOCK_RECORD",
                           "5|1",
                           "330|0",
                           "100|AcDbSymbolTable",
                           "70|1",
                           "0|BLOCK_RECORD",
                           "5|1F",
                           "330|1",
                           "100|AcDbSymbolTableRecord",
                           "100|AcDbBlockTableRecord",
                           "2|*Model_Space",
                           "340|0",
                           "0|ENDTAB"}) +
        "  0\nSECTION\n  2\nENTITIES\n" + wobble +
        "0\nLINE\n5\nAC\n330\n1F\n100\nAcDbEntity\n8\n0\n" +
        "100\nAcDbLine\n10\n0\n20\n0\n30\n0\n11\n1\n21\n1\n31\n0\n470\nmine\n0\nENDSEC\n" +
        section("WOBBLEDATA", {"0|RECORD", "1|text"});
    AcDbDatabase& database = load(content);
    EXPECT_THAT(said(), IsEmpty());
    for (const bool isBinary : {false, true}) {
        const std::string first = written(database, nullptr, isBinary);
        const std::string again = isBinary ? written(load(first)) : first;
        for (const char* kept : {"$WOBBLING", "WOBBLES", "WOBBLEDATA", "RECORD", "mine", "Wobbler"})
            EXPECT_THAT(again, HasSubstr(kept)) << isBinary;
        EXPECT_THAT(again, HasSubstr(wobble)) << isBinary;
    }
    // A changed object keeps the group that its class does not know.
    AcDbLine* line = nullptr;
    ASSERT_EQ(acdbOpenObject(line, modelSpace(database).at(1), AcDb::kForWrite), Acad::eOk);
    line->setColorIndex(3);
    line->close();
    EXPECT_THAT(written(database), HasSubstr("31\r\n0.0\r\n470\r\nmine\r\n"));
    EXPECT_THAT(written(database), HasSubstr("AcDbEntity\r\n  8\r\n0\r\n 62\r\n     3\r\n"));
    EXPECT_THAT(written(database, "2013"), HasSubstr("mine"));
    EXPECT_EQ(written(database, "2000").find("mine"), std::string::npos);
}

// What a block holds that nobody knows goes with it into another drawing, with what it refers to.
TEST_F(DxfReadingTest, UnknownEntitiesAreCopiedWithTheirReferences) {
    AcDbDatabase& source = load(section(
        "ENTITIES", {"0|LINE", "5|AC", "8|0", "10|0", "20|0", "11|1", "21|1", "0|WOBBLE", "5|AB",
                     "100|AcDbEntity", "8|0", "100|AcDbWobble", "340|AC", "320|AC"}));
    AcDbDatabase& target = newDrawing();
    AcDbObjectId id;
    ASSERT_EQ(target.insert(id, L"Wobbling", &source, true), Acad::eOk);
    const auto& entities = peek<AcDbBlockTableRecord>(id)->entityIds();
    ASSERT_EQ(entities.size(), 2u);
    const std::string line = toUtf8(entities[0].handle().text());
    EXPECT_THAT(written(target), HasSubstr("AcDbWobble\r\n340\r\n" + line + "\r\n"));
}

// A class that comes when the drawing is open brings its objects to life, and leaves their groups
// when it goes.
TEST_F(DxfReadingTest, ProxiesComeToLifeWithTheirClass) {
    AcDbDatabase& database =
        load(release("AC1032") +
             section("CLASSES", {"0|CLASS", "1|WOBBLE", "2|DxfWobble", "3|Wobbler", "90|1", "91|1",
                                 "280|0", "281|1"}) +
             section("ENTITIES", {"0|WOBBLE", "5|AB", "100|AcDbEntity", "8|0", "62|3",
                                  "100|AcDbWobble", "90|17"}));
    const AcDbObjectId id = modelSpace(database).at(0);
    ASSERT_NE(peek<AcDbProxyEntity>(id), nullptr);
    DxfWobble::rxInit();
    acrxBuildClassHierarchy();
    const auto* const alive = peek<DxfWobble>(id);
    ASSERT_NE(alive, nullptr);
    EXPECT_EQ(alive->number, 17);
    EXPECT_EQ(alive->colorIndex(), 3);
    model::turnIntoProxies(*DxfWobble::desc());
    EXPECT_THAT(written(database), HasSubstr("AcDbWobble\r\n 90\r\n       17\r\n"));
    EXPECT_THAT(written(database), HasSubstr("Wobbler"));
}

}  // namespace
}  // namespace sg
