#include "host/model/core/list_filers.h"

#include "host/model/core/memory_filers.h"
#include "host/model/model_fixture.h"
#include "host/model/tables/references.h"

namespace sg::model {
namespace {

using test::Opened;
using FilersTest = test::ModelTest;

TEST_F(FilersTest, MemoryGivesBackWhatItTook) {
    std::vector<uint8_t> bytes;
    MemoryWriter writer(bytes, AcDb::kCopyFiler, database.get());
    const AcDbObjectId id = database->layerZero();
    writer.writeInt8(-1);
    writer.writeUInt16(65535);
    writer.writeInt64(-5);
    writer.writeBool(true);
    writer.writeString(L"a\u00e4\U0001F600");
    writer.writePoint2d({1, 2});
    writer.writeScale3d({1, 2, 3});
    writer.writeSoftPointerId(id);
    writer.writeAcDbHandle(AcDbHandle(77));
    EXPECT_EQ(writer.filerStatus(), Acad::eOk);

    MemoryReader reader(bytes, AcDb::kCopyFiler, database.get());
    int8_t small = 0;
    uint16_t word = 0;
    int64_t big = 0;
    bool flag = false;
    std::wstring text;
    AcGePoint2d point;
    AcGeScale3d scale;
    AcDbSoftPointerId pointer;
    AcDbHandle handle;
    reader.readInt8(&small);
    reader.readUInt16(&word);
    reader.readInt64(&big);
    reader.readBool(&flag);
    reader.readString(text);
    reader.readPoint2d(&point);
    reader.readScale3d(&scale);
    reader.readSoftPointerId(&pointer);
    EXPECT_EQ(reader.readAcDbHandle(&handle), Acad::eOk);
    EXPECT_EQ(small, -1);
    EXPECT_EQ(word, 65535);
    EXPECT_EQ(big, -5);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, L"a\u00e4\U0001F600");
    EXPECT_EQ(point, AcGePoint2d(1, 2));
    EXPECT_EQ(scale.sz, 3);
    EXPECT_EQ(pointer, id);
    EXPECT_EQ(static_cast<uint64_t>(handle), 77u);
    EXPECT_TRUE(reader.rest().empty());
    EXPECT_EQ(reader.readInt8(&small), Acad::eEndOfFile);
    EXPECT_EQ(reader.readBool(&flag), Acad::eEndOfFile) << "what has failed goes on failing";
    EXPECT_EQ(reader.writeInt8(1), Acad::eEndOfFile);
}

TEST_F(FilersTest, ReferencesAreCollectedByKind) {
    ReferenceCollector collector(AcDb::kIdFiler, database.get());
    const AcDbObjectId id = database->layerZero();
    collector.writeHardOwnershipId(id);
    collector.writeDouble(2);
    collector.writeHardPointerId(AcDbObjectId());
    collector.writeSoftPointerId(id);
    ASSERT_EQ(collector.items().size(), 2u);
    EXPECT_EQ(collector.items()[0].kind, Reference::hardOwnership);
    EXPECT_EQ(collector.items()[1].kind, Reference::softPointer);
}

TEST_F(FilersTest, ExtendedDataComesForTheApplicationsAskedFor) {
    const AcDbObjectId id = add();
    registerApplication(*database, L"QN_ONE");
    registerApplication(*database, L"OTHER");
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        resbuf* const data =
            acutBuildList(1001, L"QN_ONE", 1000, L"a", 1001, L"OTHER", 1000, L"b", 0);
        ASSERT_EQ(entity->setXData(data), Acad::eOk);
        acutRelRb(data);
    }
    const struct {
        std::vector<std::wstring> applications;
        std::string expected;
    } cases[] = {
        {{}, ""},
        {{L"*"}, "-3 1001 1000 1001 1000 "},
        {{L"qn_*"}, "-3 1001 1000 "},
        {{L"OTHER"}, "-3 1001 1000 "},
        {{L"NOBODY"}, ""},
    };
    for (const auto& c : cases) {
        ListWriter writer(database.get(), c.applications);
        Opened<SampleEntity>(id)->dxfOut(&writer);
        resbuf* const list = writer.take();
        std::string codes;
        for (const resbuf* node = list; node != nullptr; node = node->rbnext) {
            if (node->restype == -3 || node->restype >= 1000) {
                codes += std::to_string(node->restype) + " ";
            }
        }
        EXPECT_EQ(codes, c.expected);
        acutRelRb(list);
    }
}

TEST_F(FilersTest, WhatWasWrittenReadsBackAsTheSame) {
    const AcDbObjectId id = add({1, 2, 3});
    registerApplication(*database, L"ONE");
    {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        entity->setColorIndex(6);
        entity->setLinetype(L"ByBlock");
        entity->setHard(database->layerZero());
        resbuf* const data = acutBuildList(1001, L"ONE", 1000, L"a", 0);
        entity->setXData(data);
        acutRelRb(data);
    }
    ListWriter writer(database.get(), {L"*"});
    Opened<SampleEntity>(id)->dxfOut(&writer);
    resbuf* const list = writer.take();
    SampleEntity copy;
    ListReader reader(list, database.get());
    EXPECT_EQ(copy.dxfIn(&reader), Acad::eOk);
    acutRelRb(list);
    EXPECT_TRUE(copy.objectId().isNull());
    EXPECT_EQ(copy.at(), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(copy.colorIndex(), 6);
    EXPECT_EQ(copy.linetype(), L"ByBlock");
    EXPECT_EQ(copy.hard(), database->layerZero());
    resbuf* const data = copy.xData();
    ASSERT_NE(data, nullptr);
    EXPECT_STREQ(data->rbnext->resval.rstring, L"a");
    acutRelRb(data);
}

TEST_F(FilersTest, FlatPointsAreMarked) {
    ListWriter writer(database.get());
    AcDbDxfFiler& filer = writer;
    filer.writePoint3d(10, {1, 2, 3});
    filer.writePoint2d(10, {1, 2});
    ASSERT_EQ(writer.flatPoints().size(), 1u);
    resbuf* const list = writer.take();
    EXPECT_EQ(writer.flatPoints()[0], list->rbnext);
    acutRelRb(list);
}

}  // namespace
}  // namespace sg::model
