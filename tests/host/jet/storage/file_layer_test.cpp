#include "host/jet/storage/file_layer.h"

#include <gtest/gtest.h>

#include "host/jet/storage_files.h"
#include "host/system/temporary_folder.h"

namespace sg::jet {
namespace {

class FileLayerTest : public FolderTest {};

TEST_F(FileLayerTest, OpeningTellsWhatIsWrong) {
    write("there");
    struct Case {
        const char* name;
        FileAccess access;
        int code;
    };
    for (const Case& c :
         {Case{"there", FileAccess::Read, 0}, Case{"there", FileAccess::CreateNew, DatabaseExists},
          Case{"missing", FileAccess::Read, FileNotFound},
          Case{"missing", FileAccess::ReadWrite, FileNotFound},
          Case{"no/folder", FileAccess::Read, InvalidPath},
          Case{"no/folder", FileAccess::CreateNew, InvalidPath},
          Case{"there/below", FileAccess::Read, InvalidPath},
          Case{".", FileAccess::Read, CannotOpenFile},
          Case{".", FileAccess::ReadWrite, CannotOpenFile}}) {
        EXPECT_EQ(codeOf([&] { posixFiles().open(path(c.name), c.access); }), c.code)
            << c.name << int(c.access);
    }
}

TEST_F(FileLayerTest, ReadsAndWrites) {
    const auto file = posixFiles().open(path("file"), FileAccess::ReadWriteOrCreate);
    file->write(3, Bytes{1, 2, 3});
    Bytes into(10, 9);
    EXPECT_EQ(file->read(2, into), 4u);
    EXPECT_EQ(into, (Bytes{0, 1, 2, 3, 9, 9, 9, 9, 9, 9}));
    EXPECT_EQ(file->read(6, into), 0u);
    EXPECT_EQ(file->read(UINT64_MAX - 3, into), 0u);
    file->truncate(4);
    EXPECT_EQ(file->size(), 4u);
    file->sync();
    posixFiles().syncFolder(path("file"));
    const auto again = posixFiles().open(path("file"), FileAccess::ReadWrite);
    EXPECT_EQ(file->map(4)[3], 1);
    again->map(4)[3] = 8;
    EXPECT_EQ(file->map(4)[3], 8);

    EXPECT_EQ(posixFiles().identityOf(path("file")), file->identity());
    posixFiles().rename(path("file"), path("other"));
    EXPECT_EQ(posixFiles().identityOf(path("file")), FileIdentity{});
    EXPECT_EQ(posixFiles().identityOf(path("other")), again->identity());
    posixFiles().remove(path("other"));
    posixFiles().remove(path("other"));
    EXPECT_EQ(posixFiles().identityOf(path("other")), FileIdentity{});
    EXPECT_EQ(codeOf([&] { posixFiles().rename(path("other"), path("file")); }), DiskOrNetwork);
}

TEST_F(FileLayerTest, LocksBelongToTheObject) {
    const uint64_t far = uint64_t(1) << 41;
    auto one = posixFiles().open(path("file"), FileAccess::ReadWriteOrCreate);
    const auto two = posixFiles().open(path("file"), FileAccess::ReadWrite);
    EXPECT_TRUE(one->tryLock(LockKind::Shared, far));
    EXPECT_TRUE(two->tryLock(LockKind::Shared, far));
    EXPECT_FALSE(two->tryLock(LockKind::Exclusive, far));
    EXPECT_TRUE(one->isLockedByOther(LockKind::Exclusive, far));
    EXPECT_FALSE(one->isLockedByOther(LockKind::Shared, far));
    two->unlock(far);
    EXPECT_TRUE(one->tryLock(LockKind::Exclusive, far));
    EXPECT_FALSE(one->isLockedByOther(LockKind::Exclusive, far));
    EXPECT_TRUE(two->isLockedByOther(LockKind::Shared, far - 5, 10));
    EXPECT_FALSE(two->isLockedByOther(LockKind::Exclusive, far + 1));
    one.reset();
    EXPECT_TRUE(two->tryLock(LockKind::Exclusive, far));
}

}  // namespace
}  // namespace sg::jet
