#include "platform/db/database.h"

#include <stdexcept>

#include "host/model/core/database_table.h"
#include "host/model/model_fixture.h"
#include "host/system/files.h"

namespace sg::model {
namespace {

using test::Opened;
using DatabaseTest = test::ModelTest;

TEST_F(DatabaseTest, FilesAreReadByWhoKnowsThem) {
    std::wstring name;
    EXPECT_EQ(database->readDwgFile(path("none.dwg").c_str()), Acad::eFileNotFound);
    ASSERT_TRUE(writeFileAtomically(path("a.txt"), "some text"));
    EXPECT_EQ(database->readDwgFile(path("a.txt").c_str(), 3, false, L"secret"),
              Acad::eInvalidInput);
    EXPECT_EQ(database->readDwgFile(nullptr), Acad::eInvalidInput);
    EXPECT_EQ(database->readDwgFile(path("").c_str()), Acad::eFileAccessErr) << "a folder";
    const AcDbObjectId before = database->layerZero();
    EXPECT_EQ(database->readDwgFile(path("a.txt").c_str()), Acad::eUnknownFileType);
    EXPECT_FALSE(before.isValid()) << "it is as a new one without objects";
    EXPECT_EQ(database->approxNumObjects(), 0);

    host().databases().readers().add(
        [](std::string_view start) { return start.starts_with("some"); },
        [](AcDbDatabase& target, const std::wstring&) {
            return target.addAcDbObject(new SampleEntity);
        });
    EXPECT_EQ(database->readDwgFile(path("a.txt").c_str()), Acad::eOk);
    EXPECT_EQ(database->approxNumObjects(), 1);
    EXPECT_EQ(database->getFilename(name), Acad::eOk);
    EXPECT_EQ(name, path("a.txt"));
}

TEST_F(DatabaseTest, HeaderVariablesKeepToTheirDrawing) {
    AcDbDatabase other;
    EXPECT_EQ(database->setClayer(other.layerZero()), Acad::eInvalidInput);
    EXPECT_EQ(database->setTextstyle(other.textstyle()), Acad::eInvalidInput);
    const AcDbObjectId frozen = addLayer(L"Frozen");
    Opened<AcDbLayerTableRecord>(frozen, AcDb::kForWrite)->setIsFrozen(true);
    EXPECT_EQ(database->setClayer(frozen), Acad::eInvalidLayer);
    EXPECT_EQ(database->clayer(), database->layerZero());
    EXPECT_EQ(database->setDimscale(-1), Acad::eOutOfRange);
    EXPECT_EQ(database->setDimscale(96), Acad::eOk);
    EXPECT_EQ(database->dimscale(), 96);
    EXPECT_EQ(other.dimscale(), 1);
}

TEST_F(DatabaseTest, HandlesGoUp) {
    const AcDbHandle next = database->handseed();
    const AcDbObjectId id = add();
    EXPECT_EQ(id.handle(), next);
    EXPECT_EQ(static_cast<uint64_t>(database->handseed()), next + 1);
    AcDbObjectId found;
    EXPECT_EQ(database->getAcDbObjectId(found, false, next), Acad::eOk);
    EXPECT_EQ(found, id);
}

TEST_F(DatabaseTest, ADocumentHasTheTransactionsOfItsDrawing) {
    documents().create();
    AcApDocument* const document = acDocManagerPtr()->curDocument();
    EXPECT_EQ(document->transactionManager(), document->database()->transactionManager());
    std::wstring found;
    EXPECT_EQ(acdbHostApplicationServices()->findFile(found, L"no such file"), Acad::eFileNotFound);
    EXPECT_EQ(acdbHostApplicationServices()->findFile(found, nullptr), Acad::eFileNotFound);
    ASSERT_TRUE(writeFileAtomically(path("here.lin"), "x"));
    EXPECT_EQ(acdbHostApplicationServices()->findFile(found, path("here.lin").c_str()), Acad::eOk);
    EXPECT_EQ(found, path("here.lin"));
}

}  // namespace
}  // namespace sg::model
