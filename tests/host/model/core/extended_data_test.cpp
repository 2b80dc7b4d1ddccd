
#include "host/model/model_fixture.h"
#include "host/model/tables/references.h"

namespace sg::model {
namespace {

using test::Opened;

class ExtendedDataTest : public test::ModelTest {
  protected:
    ExtendedDataTest() {
        registerApplication(*database, L"ONE");
        registerApplication(*database, L"TWO");
        id = add();
    }

    Acad::ErrorStatus set(resbuf* list) {
        Opened<SampleEntity> entity(id, AcDb::kForWrite);
        const Acad::ErrorStatus status = entity->setXData(list);
        acutRelRb(list);
        return status;
    }
    // The codes of the nodes, and texts.
    std::string get(const wchar_t* application = nullptr) {
        std::string text;
        resbuf* const list = Opened<SampleEntity>(id)->xData(application);
        for (const resbuf* node = list; node != nullptr; node = node->rbnext) {
            text += std::to_string(node->restype);
            if (acdbGroupCodeToType(node->restype) == RTSTR) {
                text += "=" + toUtf8(node->resval.rstring);
            }
            text += " ";
        }
        acutRelRb(list);
        return text;
    }

    AcDbObjectId id;
};

TEST_F(ExtendedDataTest, EachApplicationHasItsPart) {
    EXPECT_EQ(get(), "");
    EXPECT_EQ(set(acutBuildList(1001, L"ONE", 1000, L"a", 1071, 5, 1001, L"TWO", 1040, 2.5, 0)),
              Acad::eOk);
    EXPECT_EQ(get(), "1001=ONE 1000=a 1071 1001=TWO 1040 ");
    EXPECT_EQ(get(L"two"), "1001=TWO 1040 ");
    EXPECT_EQ(get(L"THREE"), "");
    EXPECT_EQ(set(acutBuildList(1001, L"ONE", 1000, L"b", 0)), Acad::eOk);
    EXPECT_EQ(get(), "1001=ONE 1000=b 1001=TWO 1040 ") << "replaced where it stands";
    EXPECT_EQ(set(acutBuildList(1001, L"ONE", 0)), Acad::eOk);
    EXPECT_EQ(get(), "1001=TWO 1040 ") << "a name alone takes its data away";
    EXPECT_EQ(set(acutBuildList(-3, 1001, L"TWO", 0)), Acad::eOk);
    EXPECT_EQ(get(), "");
}

TEST_F(ExtendedDataTest, KindsOfValuesComeBack) {
    const ads_point point{1, 2, 3};
    const AcDbHandle handle = id.handle();
    EXPECT_EQ(set(acutBuildList(1001, L"ONE", 1002, L"{", 1010, point, 1002, L"}", 1070, -7, 1003,
                                L"0", 1004, L"0AFF", 1005, handle.text().c_str(), 0)),
              Acad::eOk);
    EXPECT_EQ(get(), "1001=ONE 1002={ 1010 1002=} 1070 1003=0 1004=0AFF 1005=" +
                         toUtf8(handle.text()) + " ");
    resbuf* const list = Opened<SampleEntity>(id)->xData(L"ONE");
    const resbuf* const at = list->rbnext->rbnext;
    EXPECT_EQ(at->resval.rpoint[2], 3);
    EXPECT_EQ(at->rbnext->rbnext->resval.rint, -7);
    acutRelRb(list);
}

TEST_F(ExtendedDataTest, WhatIsWrongChangesNothing) {
    set(acutBuildList(1001, L"ONE", 1000, L"a", 0));
    const struct {
        resbuf* list;
        Acad::ErrorStatus status;
    } cases[] = {
        {acutBuildList(1001, L"NOBODY", 1000, L"x", 0), Acad::eRegappIdNotFound},
        {acutBuildList(1000, L"x", 0), Acad::eBadDxfSequence},
        {acutBuildList(1001, L"ONE", 1002, L"{", 0), Acad::eBadDxfSequence},
        {acutBuildList(1001, L"ONE", 1002, L"}", 0), Acad::eBadDxfSequence},
        {acutBuildList(1001, L"ONE", 1002, L"{", 1001, L"TWO", 1002, L"}", 0),
         Acad::eBadDxfSequence},
        {acutBuildList(1001, L"ONE", 1002, L"[", 0), Acad::eBadDxfSequence},
        {acutBuildList(1001, L"ONE", 40, 1.0, 0), Acad::eBadDxfSequence},
        {acutBuildList(1001, L"ONE", RTREAL, 1.0, 0), Acad::eBadDxfSequence},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(set(c.list), c.status);
        EXPECT_EQ(get(), "1001=ONE 1000=a ");
    }
}

TEST_F(ExtendedDataTest, TheSizeIsThatOfAFile) {
    // A text costs its code, its length in two bytes, and two bytes a letter; an application ten.
    const auto fill = [&](size_t letters) {
        return set(acutBuildList(1001, L"ONE", 1000, std::wstring(letters, L'x').c_str(), 0));
    };
    EXPECT_EQ(fill((16383 - 13) / 2), Acad::eOk);
    EXPECT_EQ(fill((16383 - 13) / 2 + 1), Acad::eXdataSizeExceeded);
    EXPECT_EQ(set(acutBuildList(1001, L"TWO", 1070, 1, 0)), Acad::eXdataSizeExceeded);
    EXPECT_EQ(set(acutBuildList(1001, L"ONE", 1001, L"TWO", 1070, 1, 0)), Acad::eOk);
    EXPECT_EQ(get(), "1001=TWO 1070 ");
}

TEST_F(ExtendedDataTest, GoesWithTheNameOfItsApplication) {
    set(acutBuildList(1001, L"ONE", 1070, 1, 0));
    AcDbSymbolTable* table = nullptr;
    ASSERT_EQ(acdbOpenObject(table, database->regAppTableId()), Acad::eOk);
    AcDbSymbolTableRecord* record = nullptr;
    ASSERT_EQ(table->getAt(L"ONE", record, AcDb::kForWrite), Acad::eOk);
    record->setName(L"EINS");
    record->close();
    table->close();
    EXPECT_EQ(get(), "1001=EINS 1070 ");
}

TEST_F(ExtendedDataTest, CopiesHaveItToo) {
    set(acutBuildList(1001, L"ONE", 1000, L"a", 0));
    const std::unique_ptr<AcRxObject> copy(Opened<SampleEntity>(id)->clone());
    resbuf* const list = SampleEntity::cast(copy.get())->xData();
    ASSERT_NE(list, nullptr);
    EXPECT_STREQ(list->resval.rstring, L"ONE");
    acutRelRb(list);
}

}  // namespace
}  // namespace sg::model
