#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "host/dxf/files.h"
#include "host/model/core/database_state.h"
#include "leader/qn_leader.h"
#include "module/module_fixture.h"
#include "platform/db/database.h"

namespace sg {
namespace {

// Leaders in drawing files of text, as lines of a code, a blank and a value.
class LeaderFilesTest : public test::ModuleTest {
  protected:
    void SetUp() override {
        start();
        eval(R"((entmake '((0 . "BLOCK") (2 . "SYM") (70 . 0) (10 0.0 0.0 0.0)))
                (entmake '((0 . "CIRCLE") (10 0.0 0.0 0.0) (40 . 1.0)))
                (entmake '((0 . "ENDBLK")))
                (qn_qn-leader-insert (list '(0.0 0.0 0.0) '(10.0 10.0 0.0) '(30.0 10.0 0.0))
                                     "0" "SYM" 2.5))");
    }
    static std::string written(const AcDbDatabase& database, const char* release) {
        std::string content;
        EXPECT_TRUE(
            dxf::write(database, {dxf::releaseNamed(release), false}, [&](std::string_view bytes) {
                content += bytes;
                return true;
            }));
        return content;
    }
    // The groups of the leader in the section of entities.
    static std::vector<std::string> leaderOf(const AcDbDatabase& database, const char* release) {
        const std::string content = written(database, release);
        std::istringstream stream(content);
        std::vector<std::string> lines;
        bool isInSection = false, isLeader = false;
        for (std::string code, value; std::getline(stream, code) && std::getline(stream, value);) {
            const std::string line =
                std::to_string(std::stoi(code)) + " " + value.substr(0, value.find('\r'));
            if (line == "2 ENTITIES") isInSection = true;
            if (line.starts_with("0 ")) isLeader = isInSection && line == "0 QNLEADER";
            if (isLeader) lines.push_back(line);
        }
        return lines;
    }
    static size_t count(const std::vector<std::string>& lines, const std::string& start) {
        return static_cast<size_t>(
            std::count_if(lines.begin(), lines.end(),
                          [&](const std::string& line) { return line.starts_with(start); }));
    }
    AcDbDatabase& database() { return *active().database(); }
};

TEST_F(LeaderFilesTest, EveryReleaseHasHowItLooks) {
    for (const auto& [release, sizeCode] :
         {std::pair("2000", "92 "), {"2007", "92 "}, {"2013", "160 "}, {"2018", "160 "}}) {
        const auto lines = leaderOf(database(), release);
        EXPECT_EQ(count(lines, sizeCode), 1u) << release;
        EXPECT_GE(count(lines, "310 "), 2u) << release;
        EXPECT_EQ(count(lines, "92 ") + count(lines, "160 "), 1u) << release;
    }
}

TEST_F(LeaderFilesTest, AnUnchangedOneKeepsWhatItsFileHas) {
    const std::string content = written(database(), "2018");
    AcDbDatabase copy(false, true);
    EXPECT_TRUE(dxf::read(copy, content, L"plan.dxf").empty());
    EXPECT_EQ(leaderOf(copy, "2018"), leaderOf(database(), "2018"))
        << "though the leader that was read has no symbol to draw";
    const auto whole = leaderOf(database(), "2007");
    EXPECT_EQ(count(leaderOf(copy, "2007"), "310 "), count(whole, "310 "))
        << "in other releases too";
    EXPECT_EQ(count(leaderOf(copy, "2007"), "92 "), 1u);
}

TEST_F(LeaderFilesTest, AChangedOneHasOnlyItsNewLooks) {
    const std::string content = written(database(), "2018");
    AcDbDatabase copy(false, true);
    dxf::read(copy, content, L"plan.dxf");
    model::DatabaseState::of(copy).forEach([](const AcDbObject& object) {
        QNLeader* leader = nullptr;
        if (object.isA() != QNLeader::desc()) return;
        ASSERT_EQ(acdbOpenObject(leader, object.objectId(), AcDb::kForWrite), Acad::eOk);
        leader->setEndPoint({40, 10, 0});
        leader->close();
    });
    const auto lines = leaderOf(copy, "2018");
    EXPECT_EQ(count(lines, "160 "), 1u);
    EXPECT_EQ(count(lines, "310 "), 2u) << "two lines";
    EXPECT_NE(lines, leaderOf(database(), "2018"));
}

}  // namespace
}  // namespace sg
