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
        write("plan.dwg", kContent);
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
    static constexpr const char* kContent = "AC1032 \x01\xff and more";
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
    EXPECT_THAT(open(path("folder")), HasSubstr("not a drawing file: "));
    EXPECT_EQ(documents().all().size(), 1u);
    EXPECT_EQ(eval("(host-open-drawing \"/no/such/plan.dwg\")"),
              "; error: no such drawing: /no/such/plan.dwg");
}

TEST_F(DrawingsTest, TheOwnFileIsLeftAsItIs) {
    open(path("plan.dwg"));
    chmod((folder_ / "plan.dwg").c_str(), 0444);
    const auto before = std::filesystem::last_write_time(folder_ / "plan.dwg");
    EXPECT_EQ(save(active()), "saved");
    EXPECT_EQ(save(active(), path("plan.dwg")), "saved");
    EXPECT_EQ(read("plan.dwg"), kContent);
    EXPECT_EQ(std::filesystem::last_write_time(folder_ / "plan.dwg"), before);
    const std::string file = toUtf8(path("plan.dwg"));
    EXPECT_THAT(saves_.log, ElementsAre("begin " + file, "complete " + file, "begin " + file,
                                        "complete " + file));
}

TEST_F(DrawingsTest, ANewNameMakesAnExactCopyAndIsTheDrawingsNameFromThenOn) {
    open(path("plan.dwg"));
    write("old.dwg", "something else");
    for (const char* name : {"copy.dwg", "old.dwg"}) {
        EXPECT_EQ(save(active(), path(name)), "saved");
        EXPECT_EQ(read(name), kContent);
        EXPECT_EQ(active().fileName(), path(name));
    }
    EXPECT_EQ(read("plan.dwg"), kContent);
    EXPECT_EQ(documents().all().size(), 2u);
    EXPECT_EQ(saves_.log.back(), "complete " + toUtf8(path("old.dwg")));
    EXPECT_EQ(open(path("plan.dwg")), toUtf8(path("plan.dwg")));
    EXPECT_EQ(documents().all().size(), 3u) << "the old name is another drawing now";
}

TEST_F(DrawingsTest, ANewDrawingNeedsANameAndAnInterchangeFile) {
    EXPECT_EQ(save(active()), "Drawing1.dwg has no file yet: name one");
    EXPECT_THAT(save(active(), path("new.dwg")), HasSubstr("as .dxf only"));
    EXPECT_FALSE(exists("new.dwg"));
    EXPECT_FALSE(active().isTitled());
    EXPECT_EQ(save(active(), path("new.DXF")), "saved");
    EXPECT_THAT(read("new.DXF"), HasSubstr("EOF"));
    EXPECT_EQ(save(active()), "saved");
}

TEST_F(DrawingsTest, AFailedSaveLeavesEverything) {
    open(path("plan.dwg"));
    open(path("plan.dwg"));
    write("other.dwg", "other");
    Document& plan = active();
    open(path("other.dwg"));
    std::filesystem::create_directory(folder_ / "taken");
    const std::wstring targets[] = {path("no-such-folder/plan.dwg"), path("taken"),
                                    path("other.dwg")};
    for (const std::wstring& target : targets) {
        saves_.log.clear();
        EXPECT_THAT(save(plan, target), HasSubstr(toUtf8(target)));
        EXPECT_THAT(saves_.log, testing::Not(testing::Contains(testing::StartsWith("complete"))));
        EXPECT_EQ(plan.fileName(), path("plan.dwg"));
    }
    EXPECT_EQ(read("plan.dwg"), kContent);
    EXPECT_EQ(read("other.dwg"), "other") << "an open drawing's file is no target";
    std::filesystem::remove(folder_ / "plan.dwg");
    EXPECT_THAT(save(plan, path("copy.dwg")), HasSubstr("the drawing cannot be read"));
    EXPECT_THAT(save(plan), HasSubstr("the drawing cannot be read"));
    EXPECT_FALSE(exists("copy.dwg"));
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
    open(path("plan.dwg"));
    errors();
    EXPECT_EQ(save(active(), path("copy.dwg")), "saved");
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

}  // namespace
}  // namespace sg
