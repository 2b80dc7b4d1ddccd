#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/editor/editor.h"
#include "host/seam/file_error.h"
#include "host/seam/host_fixture.h"
#include "platform/db/database.h"
#include "platform/win/exceptions.h"

// Drawings as files: Host::openDrawing and Host::saveDrawing.
namespace sg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DrawingsTest : public test::HostTest {
  protected:
    DrawingsTest() {
        write("plan.dwg", kEmptyDrawing);
        write("plan.dxf", kEmptyDrawing);
        start();
        host().editor().addReactor(&saves_);
    }

    std::string save(Document& document, const std::wstring& to = L"") {
        try {
            host().saveDrawing(document, to);
            return "saved";
        } catch (const FileError& error) {
            return toUtf8(error.text());
        }
    }
    std::string open(const std::wstring& file) {
        try {
            return toUtf8(host().openDrawing(file).fileName());
        } catch (const FileError& error) {
            return toUtf8(error.text());
        }
    }

    class Saves : public AcEditorReactor {
      public:
        void beginSave(AcDbDatabase*, const wchar_t* name) override {
            log.push_back("begin " + toUtf8(name));
        }
        void saveComplete(AcDbDatabase* database, const wchar_t* name) override {
            std::wstring file;
            database->getFilename(file);
            log.push_back("complete " + toUtf8(name) + (file == name ? "" : " as another file"));
        }
        std::vector<std::string> log;
    };
    Saves saves_;
};

TEST_F(DrawingsTest, OpeningMakesActiveAndOpensOnce) {
    EXPECT_EQ(open(path("PLAN.dwg")), toUtf8(path("plan.dwg"))) << "found ignoring case";
    EXPECT_EQ(documents().all().size(), 2u);
    EXPECT_TRUE(active().isTitled());
    EXPECT_STREQ(active().docTitle(), L"plan.dwg");
    EXPECT_EQ(eval("(list (getvar \"DWGNAME\") (getvar \"DWGTITLED\"))"), "(\"plan.dwg\" 1)");
    EXPECT_EQ(eval("(= (getvar \"DWGPREFIX\") \"" + folder_.string() + "/\")"), "T");
    documents().activateDocument(&documentAt(0));
    EXPECT_EQ(open(path("plan.dwg")), toUtf8(path("plan.dwg")));
    EXPECT_EQ(documents().all().size(), 2u);
    EXPECT_EQ(&active(), &documentAt(1));
}

TEST_F(DrawingsTest, WhatIsNoDrawingIsNotOpened) {
    std::filesystem::create_directory(folder_ / "folder");
    EXPECT_THAT(open(path("none.dwg")), HasSubstr("no such drawing: " + toUtf8(path("none.dwg"))));
    EXPECT_THAT(open(path("folder")), HasSubstr("but a folder"));
    EXPECT_EQ(documents().all().size(), 1u);
    EXPECT_EQ(eval("(host-open-drawing \"/no/such/plan.dwg\")"),
              "; error: no such drawing: /no/such/plan.dwg");
}

TEST_F(DrawingsTest, SavingWritesTheDrawingAndKeepsTheOldFile) {
    open(path("plan.dxf"));
    eval("(entmake '((0 . \"LINE\") (10 0 0 0) (11 3 4 0)))");
    const std::string file = toUtf8(path("plan.dxf"));
    EXPECT_EQ(save(active()), "saved");
    const std::string first = read("plan.dxf");
    EXPECT_THAT(first, HasSubstr("AcDbLine"));
    EXPECT_EQ(read("plan.bak"), kEmptyDrawing);
    EXPECT_EQ(save(active(), path("plan.dxf")), "saved");
    EXPECT_EQ(read("plan.bak"), first);
    EXPECT_THAT(saves_.log, ElementsAre("begin " + file, "complete " + file, "begin " + file,
                                        "complete " + file));
}

TEST_F(DrawingsTest, ANewNameIsTheDrawingsNameFromThenOn) {
    open(path("plan.dxf"));
    write("old.dxf", "something else");
    for (const char* name : {"copy.dxf", "old.dxf"}) {
        EXPECT_EQ(save(active(), path(name)), "saved");
        EXPECT_THAT(read(name), HasSubstr("EOF"));
        EXPECT_EQ(active().fileName(), path(name));
    }
    EXPECT_EQ(read("old.bak"), "something else");
    EXPECT_FALSE(exists("copy.bak"));
    EXPECT_EQ(read("plan.dxf"), kEmptyDrawing);
    EXPECT_EQ(documents().all().size(), 2u);
    EXPECT_EQ(saves_.log.back(), "complete " + toUtf8(path("old.dxf")));
    EXPECT_EQ(open(path("plan.dxf")), toUtf8(path("plan.dxf")));
    EXPECT_EQ(documents().all().size(), 3u) << "the old name is another drawing now";
}

TEST_F(DrawingsTest, ANewDrawingNeedsANameWithAnEndingThatIsWritten) {
    EXPECT_EQ(save(active()), "Drawing1.dwg has no file yet: name one");
    EXPECT_THAT(save(active(), path("new.dwt")), HasSubstr("as .dwg and .dxf"));
    EXPECT_THAT(save(active(), path("new")), HasSubstr("the name has no ending"));
    EXPECT_FALSE(exists("new.dwt"));
    EXPECT_FALSE(active().isTitled());
    EXPECT_EQ(save(active(), path("new.DXF")), "saved");
    EXPECT_THAT(read("new.DXF"), HasSubstr("AC1032"));
    EXPECT_EQ(save(active()), "saved");
    open(path("plan.dwg"));
    EXPECT_EQ(save(active()), "saved");
    EXPECT_THAT(read("plan.dwg"), HasSubstr("AC1015")) << "the name tells the format now";
    EXPECT_EQ(read("plan.bak"), kEmptyDrawing);
}

TEST_F(DrawingsTest, AFailedSaveLeavesEverything) {
    open(path("plan.dxf"));
    write("other.dxf", kEmptyDrawing);
    Document& plan = active();
    open(path("other.dxf"));
    std::filesystem::create_directory(folder_ / "taken.dxf");
    const std::wstring targets[] = {path("no-such-folder/plan.dxf"), path("taken.dxf"),
                                    path("other.dxf")};
    for (const std::wstring& target : targets) {
        saves_.log.clear();
        EXPECT_THAT(save(plan, target), HasSubstr(toUtf8(target)));
        EXPECT_THAT(saves_.log, testing::Not(testing::Contains(testing::StartsWith("complete"))));
        EXPECT_EQ(plan.fileName(), path("plan.dxf"));
    }
    EXPECT_EQ(read("plan.dxf"), kEmptyDrawing);
    EXPECT_EQ(read("other.dxf"), kEmptyDrawing) << "an open drawing's file is no target";
}

TEST_F(DrawingsTest, WhatAFileHadToBeForgivenIsReported) {
    write("bad.dxf",
          "  0\nSECTION\n  2\nENTITIES\n  0\nCIRCLE\n 10\n1.0\n 40\nabc\n  0\nENDSEC\n  0\nEOF\n");
    errors();
    open(path("bad.dxf"));
    EXPECT_EQ(errors(), toUtf8(path("bad.dxf")) +
                            ":10: group 40 of CIRCLE is not a number: \"abc\"; the entity is left "
                            "out\n");
}

TEST_F(DrawingsTest, AReactorThatFailsStopsNothing) {
    class Failing : public AcEditorReactor {
      public:
        void beginSave(AcDbDatabase*, const wchar_t*) override { throw 1; }
        void saveComplete(AcDbDatabase*, const wchar_t*) override { AfxThrowMemoryException(); }
    } failing;
    host().editor().removeReactor(&saves_);
    host().editor().addReactor(&failing);
    host().editor().addReactor(&saves_);
    open(path("plan.dxf"));
    errors();
    EXPECT_EQ(save(active(), path("copy.dxf")), "saved");
    EXPECT_EQ(errors(),
              "an editor reactor failed: an unknown exception\n"
              "an editor reactor failed: Out of memory.\n");
    EXPECT_EQ(saves_.log.size(), 2u);
}

TEST_F(DrawingsTest, AMissingFirstDrawingEndsTheStart) {
    stop();
    options.drawing = path("none.dwg");
    make();
    EXPECT_THROW(host().start(), FileError);
    EXPECT_THAT(documents().all(), IsEmpty());
    stop();
    options.drawing = path("plan.dwg");
    start();
    EXPECT_EQ(active().fileName(), path("plan.dwg"));
}

// The header's groups of a file, as the numbers behind a variable's name.
std::string headerOf(const std::string& content, const std::string& name) {
    std::string numbers;
    const size_t at = content.find(name + "\r\n");
    if (at == std::string::npos) return "none";
    std::istringstream lines(content.substr(at + name.size() + 2));
    for (std::string code, value; std::getline(lines, code) && std::getline(lines, value);) {
        if (std::stoi(code) == 9) break;
        numbers += (numbers.empty() ? "" : " ") + value.substr(0, value.find('\r'));
    }
    return numbers;
}

TEST_F(DrawingsTest, ASaveBringsTheHeaderUpToDate) {
    eval(
        "(entmake '((0 . \"POINT\") (10 -1.0 2.0 6.0)))"
        "(entmake '((0 . \"POINT\") (10 4.0 -5.0 3.0)))");
    EXPECT_EQ(eval("(getvar \"EXTMIN\")"), "(-1.0 -5.0 3.0)");
    EXPECT_EQ(eval("(< 2457000 (getvar \"TDCREATE\") (1+ (getvar \"DATE\")))"), "T");
    EXPECT_EQ(eval("(= (getvar \"TDCREATE\") (getvar \"TDUPDATE\"))"), "T");
    ASSERT_EQ(save(active(), path("a.dxf")), "saved");
    const std::string first = read("a.dxf");
    EXPECT_EQ(headerOf(first, "$EXTMIN"), "-1.0 -5.0 3.0");
    EXPECT_EQ(headerOf(first, "$EXTMAX"), "4.0 2.0 6.0");
    const double open = std::stod(headerOf(first, "$TDINDWG"));
    EXPECT_GT(open, 0);
    EXPECT_LT(open, 1);

    ASSERT_EQ(save(active(), path("a.dxf")), "saved");
    const std::string second = read("a.dxf");
    EXPECT_EQ(headerOf(second, "$TDCREATE"), headerOf(first, "$TDCREATE"));
    EXPECT_GE(std::stod(headerOf(second, "$TDUPDATE")), std::stod(headerOf(first, "$TDUPDATE")));
    EXPECT_GT(std::stod(headerOf(second, "$TDINDWG")), open);
    EXPECT_LT(std::stod(headerOf(second, "$TDINDWG")), 10 * open + 1e-3) << "counted once";

    eval("(repeat 2 (entdel (entlast)))");
    ASSERT_EQ(save(active(), path("a.dxf")), "saved");
    EXPECT_EQ(headerOf(read("a.dxf"), "$EXTMIN"), "1e+20 1e+20 1e+20");
}

TEST_F(DrawingsTest, TimesOfAFileGoOn) {
    write("old.dxf",
          "  0\nSECTION\n  2\nHEADER\n  9\n$TDCREATE\n 40\n2450000.5\n  9\n$TDINDWG\n 40\n2.0\n"
          "  9\n$TDUSRTIMER\n 40\n1.0\n  9\n$USRTIMER\n 70\n0\n  0\nENDSEC\n  0\nEOF\n");
    open(path("old.dxf"));
    EXPECT_EQ(eval("(= (getvar \"TDCREATE\") 2450000.5)"), "T");
    EXPECT_EQ(eval("(< 2.0 (getvar \"TDINDWG\") 3.0)"), "T");
    EXPECT_EQ(eval("(getvar \"TDUSRTIMER\")"), "1.0") << "it is stopped";
    ASSERT_EQ(save(active()), "saved");
    EXPECT_EQ(headerOf(read("old.dxf"), "$TDCREATE"), "2450000.5");
    EXPECT_EQ(headerOf(read("old.dxf"), "$TDUSRTIMER"), "1.0");
}

}  // namespace
}  // namespace sg
