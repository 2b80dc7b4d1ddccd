#include "base/replacement_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/system/temporary_folder.h"

namespace sg {
namespace {

namespace fs = std::filesystem;

class ReplacementFileTest : public FolderTest {
  protected:
    size_t files() const {
        return static_cast<size_t>(std::distance(fs::directory_iterator(folder_), {}));
    }
};

TEST_F(ReplacementFileTest, TakesTheNameWhenItIsWhole) {
    write("a", "before");
    chmod((folder_ / "a").c_str(), 0640);
    {
        ReplacementFile file(path("a"));
        EXPECT_TRUE(file.write("some ") && file.write("text"));
        EXPECT_EQ(read("a"), "before");
        EXPECT_EQ(files(), 2u);
        EXPECT_TRUE(file.commit());
        EXPECT_FALSE(file.write("more"));
        EXPECT_FALSE(file.commit());
    }
    EXPECT_EQ(read("a"), "some text");
    EXPECT_EQ(files(), 1u);
    struct stat info;
    ASSERT_EQ(stat((folder_ / "a").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
}

TEST_F(ReplacementFileTest, LeavesNothingWhenItIsNot) {
    write("a", "before");
    {
        ReplacementFile first(path("a")), second(path("b"));
        EXPECT_TRUE(first.write("x") && second.write("x"));
        EXPECT_EQ(files(), 3u);
    }
    EXPECT_EQ(read("a"), "before");
    EXPECT_EQ(files(), 1u);
}

TEST_F(ReplacementFileTest, WhatCannotBeReplaced) {
    const struct {
        std::wstring target;
        int error;
    } cases[] = {{path(), EISDIR}, {path("none/a"), ENOENT}, {L"/dev/null", EINVAL}, {L"", ENOENT}};
    for (const auto& c : cases) {
        ReplacementFile file(c.target);
        EXPECT_FALSE(file.isOpen());
        EXPECT_FALSE(file.write("x"));
        EXPECT_FALSE(file.commit());
        EXPECT_EQ(file.error(), c.error) << toUtf8(c.target);
    }
    EXPECT_EQ(files(), 0u);
}

TEST_F(ReplacementFileTest, ALinkStaysALink) {
    write("sub/real", "before");
    fs::create_symlink("sub/real", folder_ / "link");
    ReplacementFile file(path("link"));
    EXPECT_TRUE(file.write("new") && file.commit());
    EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
    EXPECT_EQ(read("sub/real"), "new");
    const std::string longest(255, 'n');  // leaves no room for a longer name beside it
    ReplacementFile other(path(longest));
    EXPECT_TRUE(other.commit());
}

}  // namespace
}  // namespace sg
