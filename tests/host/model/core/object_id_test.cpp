#include "platform/db/object_id.h"

#include <gtest/gtest.h>

#include "host/seam/host_fixture.h"
#include "platform/db/database.h"

namespace sg::model {
namespace {

TEST(Handle, ReadsAndWritesHexadecimalDigits) {
    const struct {
        const wchar_t* text;
        uint64_t value;
        const wchar_t* written;
    } cases[] = {
        {L"0", 0, L"0"},        {L"1f", 0x1F, L"1F"},
        {L"00A0", 0xA0, L"A0"}, {L"FFFFFFFFFFFFFFFF", ~0ull, L"FFFFFFFFFFFFFFFF"},
        {L"", 0, L"0"},         {L"12G", 0, L"0"},
        {L" 1", 0, L"0"},       {L"10000000000000000", 0, L"0"},
    };
    for (const auto& c : cases) {
        const AcDbHandle handle(c.text);
        EXPECT_EQ(static_cast<uint64_t>(handle), c.value) << toUtf8(c.text);
        EXPECT_EQ(handle.text(), c.written) << toUtf8(c.text);
    }
    EXPECT_TRUE(AcDbHandle(static_cast<const wchar_t*>(nullptr)).isNull());
}

class ObjectIdTest : public test::HostTest {
  protected:
    ObjectIdTest() { make(); }
};

TEST_F(ObjectIdTest, IdsOutliveTheirDatabase) {
    AcDbObjectId id;
    ads_name name{};
    {
        AcDbDatabase database;
        id = database.modelSpaceId();
        EXPECT_TRUE(id.isValid());
        EXPECT_EQ(id.database(), &database);
        EXPECT_EQ(acdbGetAdsName(name, id), Acad::eOk);
    }
    EXPECT_FALSE(id.isValid());
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(id.database(), nullptr);
    EXPECT_TRUE(id.handle().isNull());
    EXPECT_EQ(id.objectClass(), nullptr);
    AcDbObject* object = nullptr;
    EXPECT_EQ(acdbOpenAcDbObject(object, id, AcDb::kForRead), Acad::eUnknownHandle);
    AcDbObjectId found;
    EXPECT_EQ(acdbGetObjectId(found, name), Acad::eUnknownHandle);
    AcDbDatabase later;
    EXPECT_FALSE(id.isValid()) << "a number is not used again";
    stop();
    EXPECT_FALSE(id.isValid()) << "without a host";
}

TEST_F(ObjectIdTest, NamesOfEntitiesAreTheirIds) {
    AcDbDatabase database;
    ads_name name{};
    ASSERT_EQ(acdbGetAdsName(name, database.blockTableId()), Acad::eOk);
    AcDbObjectId found;
    EXPECT_EQ(acdbGetObjectId(found, name), Acad::eOk);
    EXPECT_EQ(found, database.blockTableId());
    EXPECT_EQ(acdbGetAdsName(name, AcDbObjectId()), Acad::eNullObjectId);
    EXPECT_EQ(acdbGetAdsName(name, AcDbObjectId(found.asOldId() + 100000)), Acad::eUnknownHandle);
    const ads_name selectionSet{7, 0};
    EXPECT_EQ(acdbGetObjectId(found, selectionSet), Acad::eInvalidInput);
    EXPECT_TRUE(found.isNull());
    const ads_name none{};
    EXPECT_EQ(acdbGetObjectId(found, none), Acad::eUnknownHandle);
}

TEST_F(ObjectIdTest, AHandleGetsItsIdBeforeItsObject) {
    AcDbDatabase database;
    AcDbObjectId id, again;
    const AcDbHandle far(0x123456789A);
    EXPECT_EQ(database.getAcDbObjectId(id, false, far), Acad::eUnknownHandle);
    EXPECT_EQ(database.getAcDbObjectId(id, true, far), Acad::eOk);
    EXPECT_EQ(database.getAcDbObjectId(again, true, far), Acad::eOk);
    EXPECT_EQ(id, again);
    EXPECT_FALSE(id.isValid());
    EXPECT_EQ(id.handle(), far);
    EXPECT_EQ(database.getAcDbObjectId(again, false, far), Acad::eUnknownHandle);
    EXPECT_EQ(database.handseed(), AcDbHandle(0x123456789B));
    EXPECT_EQ(database.getAcDbObjectId(id, true, AcDbHandle()), Acad::eNullHandle);
}

}  // namespace
}  // namespace sg::model
