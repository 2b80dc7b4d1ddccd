// Databases of several drawings.

#include <gmock/gmock.h>

#include "database/database_fixture.h"

namespace sg::test {
namespace {

using testing::ElementsAre;

class DocumentsTest : public DatabaseTest {
  protected:
    DocumentsTest() {
        for (const char* name : {"a.mdb", "b.mdb"})
            makeFile(name, {L"One", L"Two", L"Three"});
    }
    void newDrawing() {
        documents().create();
        printed();
        setFolder();
    }
    // The entries' documents and files without folders, head first, "-" for no connection and
    // "closed" for one that is not open.
    Log table() {
        Log rows;
        for (const auto& entry : dbInfoList()) {
            std::string file = "-";
            if (entry->pConnection != nullptr) {
                const std::wstring name = entry->pConnection->GetDatabaseName();
                file = name.empty() ? "closed" : toUtf8(name.substr(name.rfind(L'/') + 1));
            }
            rows.push_back(toUtf8(entry->strDocument) + " " + file);
        }
        return rows;
    }
    static constexpr const wchar_t* kFirst = L"Drawing1.dwg";
    static constexpr const wchar_t* kSecond = L"Drawing2.dwg";
    static constexpr const wchar_t* kThird = L"Drawing3.dwg";
};

TEST_F(DocumentsTest, EachDrawingHasAConnectionOfItsOwnToTheSameFile) {
    connectTo("a.mdb");
    EXPECT_THAT(table(), ElementsAre("Drawing1.dwg a.mdb", " -"));
    CDBConnection* const first = currentConnection();
    run("(sg_table \"Rooms\")");
    newDrawing();
    EXPECT_EQ(run("(sg_mdb)"), "nil");
    connectTo("a.mdb");
    EXPECT_NE(currentConnection(), first);
    EXPECT_THAT(table(), ElementsAre("Drawing2.dwg a.mdb", " -", "Drawing1.dwg a.mdb"));
    run("(sg_table \"Rooms\")");
    EXPECT_EQ(nameAfter("(sg_bottom)"), "\"Three\"");
    activate(kFirst);
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"One\"");
    EXPECT_EQ(currentConnection(), first);
    activate(kSecond);
    EXPECT_EQ(nameAfter("(sg_getrec)"), "\"Three\"");
}

TEST_F(DocumentsTest, ADrawingGivesUpItsConnectionAndTakesItUpAgain) {
    connectTo("a.mdb");
    CDBConnection* const first = currentConnection();
    connectTo("b.mdb");
    CDBConnection* const second = currentConnection();
    EXPECT_NE(second, first);
    EXPECT_TRUE(first->IsOpen());
    EXPECT_THAT(table(), ElementsAre("Drawing1.dwg b.mdb", " a.mdb"));
    bindConnectionToDocument(L"b.mdb");
    EXPECT_EQ(currentConnection(), second);
    bindConnectionToDocument(L"A.MDB");
    EXPECT_EQ(currentConnection(), first);
    EXPECT_EQ(current(), toUtf8(path("a.mdb")) + " 0");
    EXPECT_THAT(table(), ElementsAre("Drawing1.dwg a.mdb", " b.mdb"));
    bindConnectionToDocument(L"none.mdb");
    EXPECT_EQ(currentConnection(), nullptr);
    EXPECT_THAT(table(), ElementsAre(" a.mdb", " b.mdb"));
}

TEST_F(DocumentsTest, AnotherDrawingAdoptsOnlyWhatIsFree) {
    connectTo("a.mdb");
    CDBConnection* const first = currentConnection();
    newDrawing();
    bindConnectionToDocument(L"a.mdb");
    EXPECT_EQ(currentConnection(), nullptr) << "it is the first drawing's";
    activate(kFirst);
    connectTo("b.mdb");
    activate(kSecond);
    bindConnectionToDocument(L"a.mdb");
    EXPECT_EQ(currentConnection(), first);
    EXPECT_EQ(table().front(), "Drawing2.dwg a.mdb");
}

// It was decided ahead of the adoption whether the current connection is on the file, so that a
// connect opens what it has adopted anew.
TEST_F(DocumentsTest, AConnectOpensAnAdoptedConnectionAnew) {
    connectTo("a.mdb");
    run("(sg_table \"Rooms\")");
    connectTo("b.mdb");
    newDrawing();
    connectTo("a.mdb");
    EXPECT_EQ(run("(sg_current_table)"), "\"\"");
    EXPECT_THAT(table(),
                ElementsAre("Drawing2.dwg a.mdb", "Drawing2.dwg -", "Drawing1.dwg b.mdb", " -"));
    newDrawing();
    connectTo("b.mdb");
    EXPECT_EQ(table().front(), "Drawing3.dwg b.mdb");
    activate(kFirst);
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("b.mdb")) + "\"");
}

TEST_F(DocumentsTest, ADrawingThatIsClosedTakesItsConnectionWithIt) {
    connectTo("a.mdb");
    newDrawing();
    connectTo("b.mdb");
    newDrawing();
    connectTo("b.mdb");
    activate(kSecond);
    documents().close(active());
    EXPECT_EQ(currentConnection(), nullptr);
    activate(kThird);
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("b.mdb")) + "\"");
    activate(kFirst);
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("a.mdb")) + "\"");
    CDaoDatabase db;
    db.Open(path("a.mdb"), false);
    db.Close();
}

TEST_F(DocumentsTest, TheLastDrawingLeavesNoFileOpen) {
    connectTo("a.mdb");
    connectTo("b.mdb");  // a.mdb belongs to nobody
    newDrawing();
    connectTo("b.mdb");
    documents().close(active());
    documents().close(active());
    EXPECT_TRUE(dbInfoList().empty());
    for (const char* name : {"a.mdb", "b.mdb"}) {
        CDaoDatabase db;
        EXPECT_EQ(codeOf([&] { db.Open(path(name), true); }), 0) << name;
    }
    newDrawing();
    EXPECT_EQ(connectTo("a.mdb"), "T");
}

TEST_F(DocumentsTest, ADrawingThatIsSavedUnderANewNameLosesItsDatabase) {
    write("plan.dxf", kEmptyDrawing);
    stop();
    options.drawing = path("plan.dxf");
    start();
    setFolder();
    connectTo("a.mdb");
    run("(host-save-drawing)");
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("a.mdb")) + "\"");
    EXPECT_EQ(eval("(host-save-drawing (strcat folder \"copy.dxf\"))"),
              "\"" + toUtf8(path("copy.dxf")) + "\"");
    CDaoDatabase alone;
    EXPECT_EQ(codeOf([&] { alone.Open(path("a.mdb"), true); }), 0) << "it is closed";
    alone.Close();
    EXPECT_EQ(run("(sg_mdb)"), "nil");
    EXPECT_EQ(connectTo("a.mdb"), "T");
    EXPECT_EQ(run("(sg_mdb)"), "\"" + toUtf8(path("a.mdb")) + "\"");
}

}  // namespace
}  // namespace sg::test
