#include "host/jet/storage/foreign_lock.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "base/encoding.h"

namespace sg::jet {
namespace {

class ForeignLockTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "sg-lock-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    void put(const std::string& name, const std::string& content = "") const {
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }
    // The name of the lock file, "" without one.
    std::string found(const std::string& database) const {
        const auto lock = findForeignLock(path(database));
        return lock ? std::filesystem::path(toUtf8(lock->file)).filename().string() : "";
    }
    std::wstring path(const std::string& name) const { return fromUtf8((folder_ / name).string()); }

    std::filesystem::path folder_;
};

std::string entry(std::string machine, std::string user) {
    machine.resize(32);
    user.resize(32);
    return machine + user;
}

TEST_F(ForeignLockTest, TheFileIsFoundInAnyCase) {
    EXPECT_EQ(found("plan.mdb"), "");
    put("plan2.ldb");
    put("plan.ldb.txt");
    put("other.laccdb");
    std::filesystem::create_directory(folder_ / "PLAN.ldb");
    EXPECT_EQ(found("plan.mdb"), "");
    put("Plan.LACCDB");
    EXPECT_EQ(found("plan.mdb"), "Plan.LACCDB");
    put("PLAN.LDB");
    EXPECT_EQ(found("plan.mdb"), "PLAN.LDB");
    EXPECT_EQ(found("plan.accdb"), "Plan.LACCDB");
    put("plan.ldb");
    EXPECT_EQ(found("plan.mdb"), "plan.ldb");
    EXPECT_EQ(found("no-such-folder/plan.mdb"), "");
}

TEST_F(ForeignLockTest, AnythingButAFileIsPassedOver) {
    ASSERT_EQ(::mkfifo((folder_ / "plan.ldb").c_str(), 0600), 0);
    EXPECT_EQ(found("plan.mdb"), "");
}

TEST_F(ForeignLockTest, MachinesAreNamedOnce) {
    const std::string spaced = std::string("DESK\0          ", 15);
    put("plan.ldb", entry("STUDIO-7", "Admin") + entry("", "") + entry(spaced, "Admin") +
                        entry("Studio-7", "Guest") +
                        entry("B\xDC"
                              "RO",
                              "Admin") +
                        entry(std::string(32, 'X'), "Admin") + std::string(31, 'Y'));
    const auto lock = findForeignLock(path("plan.mdb"));
    ASSERT_TRUE(lock);
    EXPECT_EQ(lock->file, path("plan.ldb"));
    EXPECT_EQ(lock->machines, (std::vector<std::wstring>{L"STUDIO-7", L"DESK", L"B\u00dcRO",
                                                         std::wstring(32, L'X')}));
}

TEST_F(ForeignLockTest, OneThatCannotBeReadHasNoMachines) {
    if (::geteuid() != 0) {
        put("plan.ldb", entry("STUDIO-7", "Admin"));
        ASSERT_EQ(::chmod((folder_ / "plan.ldb").c_str(), 0), 0);
    } else {
        put("plan.ldb");
    }
    const auto lock = findForeignLock(path("plan.mdb"));
    ASSERT_TRUE(lock);
    EXPECT_TRUE(lock->machines.empty());
}

TEST_F(ForeignLockTest, ItEndsInAFileOfAnyLength) {
    std::string content;
    for (int i = 0; i < 1000; ++i) {
        content += entry("M" + std::to_string(i), "Admin");
    }
    put("plan.ldb", content);
    EXPECT_EQ(findForeignLock(path("plan.mdb"))->machines.size(), 255u);
}

}  // namespace
}  // namespace sg::jet
