#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "host/dxf/dxf_fixture.h"
#include "host/exchange/drawing_files.h"
#include "host/system/file_lock.h"
#include "platform/db/line.h"

// Drawings as files on a disk that others look at too, and on which a save may end at any moment.
namespace sg {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

class SavingTest : public test::DxfTest {
  protected:
    AcDbDatabase& drawingOf(int lines) {
        AcDbDatabase& database = newDrawing();
        AcDbBlockTableRecord* space = nullptr;
        acdbOpenObject(space, database.modelSpaceId(), AcDb::kForWrite);
        for (int i = 0; i < lines; ++i) {
            auto* const line = new AcDbLine({0, 0, 0}, {double(i), 1, 0});
            space->appendAcDbEntity(line);
            line->close();
        }
        space->close();
        return database;
    }
    std::string save(const AcDbDatabase& database, const std::string& name) {
        try {
            exchange::writeFile(database, path(name));
            return "saved";
        } catch (const dxf::Error& error) {
            return toUtf8(error.text());
        }
    }
    // A process of its own, which does this and ends.
    static pid_t inChild(const std::function<void()>& body) {
        const pid_t child = fork();
        if (child != 0) return child;
        body();
        _exit(0);
    }
    static int endOf(pid_t child) {
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }
    // Apart from the files of this test nothing may be left.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            found.push_back(entry.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }
};

TEST_F(SavingTest, TheOldFileStaysBesideTheNewOne) {
    const AcDbDatabase& one = drawingOf(1);
    const AcDbDatabase& two = drawingOf(2);
    EXPECT_EQ(save(one, "plan.dxf"), "saved");
    EXPECT_FALSE(exists("plan.bak"));
    EXPECT_EQ(save(two, "plan.dxf"), "saved");
    EXPECT_EQ(read("plan.dxf"), written(two));
    EXPECT_EQ(read("plan.bak"), written(one));
    EXPECT_EQ(save(one, "plan.dxf"), "saved");
    EXPECT_EQ(read("plan.bak"), written(two));
    EXPECT_EQ(names(), (std::vector<std::string>{"plan.bak", "plan.dxf"}));
}

TEST_F(SavingTest, WhatCannotBeWrittenIsRefusedBeforeAnythingHappens) {
    const AcDbDatabase& one = drawingOf(1);
    write("plan.dwt", "old");
    EXPECT_THAT(save(one, "plan.dwt"),
                HasSubstr("plan.dwt: drawings are written as .dwg and .dxf"));
    EXPECT_THAT(save(one, "plan"), HasSubstr("the name has no ending"));
    EXPECT_THAT(save(one, "none/plan.dxf"), HasSubstr("No such file or directory"));
    EXPECT_EQ(read("plan.dwt"), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"plan.dwt"});
}

// DWG files take their names in the same way.
TEST_F(SavingTest, ADwgFileThatIsCutOffLeavesTheOldFile) {
    const AcDbDatabase& one = drawingOf(1);
    const AcDbDatabase& many = drawingOf(5000);
    ASSERT_EQ(save(one, "plan.dwg"), "saved");
    const std::string before = read("plan.dwg");
    for (const size_t limit : {size_t{0}, size_t{100}, size_t{50'000}}) {
        const int status = endOf(inChild([&] {
            const rlimit most{limit, limit};
            setrlimit(RLIMIT_FSIZE, &most);
            exchange::writeFile(many, path("plan.dwg"));
        }));
        EXPECT_TRUE(WIFSIGNALED(status)) << limit;
        EXPECT_EQ(read("plan.dwg"), before) << limit;
    }
    ASSERT_EQ(save(many, "plan.dwg"), "saved");
    EXPECT_EQ(read("plan.bak"), before);
}

// The system ends the process when a file grows beyond a limit: so a save ends at any byte.
TEST_F(SavingTest, ASaveThatIsCutOffLeavesTheOldFile) {
    const AcDbDatabase& one = drawingOf(1);
    const AcDbDatabase& many = drawingOf(5000);
    ASSERT_EQ(save(one, "plan.dxf"), "saved");
    const std::string before = read("plan.dxf");
    const std::string after = written(many);
    for (const size_t limit : {size_t{0}, size_t{1}, size_t{100'000}, after.size() - 1}) {
        const int status = endOf(inChild([&] {
            const rlimit most{limit, limit};
            setrlimit(RLIMIT_FSIZE, &most);
            exchange::writeFile(many, path("plan.dxf"));
        }));
        EXPECT_TRUE(WIFSIGNALED(status)) << limit;
        EXPECT_EQ(read("plan.dxf"), before) << limit;
    }
}

TEST_F(SavingTest, WhoeverLooksSeesAWholeFileAlsoWhenTheProcessIsKilled) {
    const AcDbDatabase& one = drawingOf(300);
    const AcDbDatabase& two = drawingOf(400);
    const std::string first = written(one);
    const std::string second = written(two);
    ASSERT_EQ(save(one, "plan.dxf"), "saved");
    for (int round = 0; round < 5; ++round) {
        const pid_t child = inChild([&] {
            while (true) {
                exchange::writeFile(two, path("plan.dxf"));
                exchange::writeFile(one, path("plan.dxf"));
            }
        });
        for (int look = 0; look < 40 + round; ++look)
            ASSERT_THAT(read("plan.dxf"), AnyOf(first, second));
        kill(child, SIGKILL);
        endOf(child);
        EXPECT_THAT(read("plan.dxf"), AnyOf(first, second));
        if (exists("plan.bak")) {
            EXPECT_THAT(read("plan.bak"), AnyOf(first, second));
        }
    }
}

TEST_F(SavingTest, TheLockTellsWhoHasADrawingAndGoesWithTheProcess) {
    write("plan.dxf");
    int told[2];
    ASSERT_EQ(pipe(told), 0);
    const pid_t child = inChild([&] {
        const FileLock lock(path("plan.dxf"));
        if (::write(told[1], "x", 1) == 1) pause();
    });
    char byte = 0;
    ASSERT_EQ(::read(told[0], &byte, 1), 1);
    {
        const FileLock second(path("plan.dxf"));
        EXPECT_FALSE(second.isFree());
        EXPECT_THAT(toUtf8(second.holder()),
                    HasSubstr("process " + std::to_string(child) + " of "));
    }
    EXPECT_TRUE(exists("plan.dxf.lock")) << "it is the other one's";
    kill(child, SIGKILL);
    endOf(child);
    {
        FileLock third(path("plan.dxf"));
        EXPECT_TRUE(third.isFree()) << "the one who had it is gone";
        const FileLock moved = std::move(third);
        EXPECT_TRUE(exists("plan.dxf.lock"));
    }
    EXPECT_FALSE(exists("plan.dxf.lock"));
    EXPECT_TRUE(FileLock(path("no such folder/plan.dxf")).isFree());
    close(told[0]);
    close(told[1]);
}

TEST_F(SavingTest, ABlockIsLoadedFromTheInterchangeFileBesideItsName) {
    ASSERT_EQ(save(drawingOf(2), "Damper.dxf"), "saved");
    for (const char* drawing : {"", "AC1032 no file that anybody reads here"}) {
        if (*drawing != '\0') write("Damper.dwg", drawing);
        AcDbDatabase database(false, true);
        ASSERT_EQ(database.readDwgFile(path("Damper.dwg").c_str()), Acad::eOk) << drawing;
        EXPECT_GT(database.approxNumObjects(), 2);
    }
    std::filesystem::rename(folder_ / "Damper.dxf", folder_ / "Valve.dwg");
    AcDbDatabase database(false, true);
    EXPECT_EQ(database.readDwgFile(path("Valve.dwg").c_str()), Acad::eOk);
    write("Valve.dwg", "  0\nEOF\n");
    AcDbDatabase empty(false, true);
    EXPECT_EQ(empty.readDwgFile(path("Valve.dwg").c_str()), Acad::eBadDxfFile);
}

}  // namespace
}  // namespace sg
