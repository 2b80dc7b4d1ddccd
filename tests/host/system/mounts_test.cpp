#include "host/system/mounts.h"

#include <gtest/gtest.h>

namespace sg {
namespace {

constexpr std::string_view kMounts =
    "22 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
    "23 22 0:21 / /proc rw - proc proc rw\n"
    "40 22 0:40 / /home/joe/jobs rw shared:9 master:2 - nfs4 server:/jobs rw,vers=4.2\n"
    "41 22 0:41 / /mnt/my\\040disk rw - cifs //server/disk rw\n"
    "42 22 0:42 / /mnt/twice rw - ext4 /dev/sdb1 rw\n"
    "43 22 0:43 / /mnt/twice rw - fuse.sshfs joe@server: rw\n"
    "garbage\n"
    "44 22 0:44 / /mnt/open rw shared:3 -\n"
    "45 40 0:45 / /home/joe/jobs/local rw - tmpfs tmpfs rw";

TEST(MountsTest, ThePathBelongsToItsNearestMountPoint) {
    const struct {
        const char* path;
        const char* type;
    } cases[] = {
        {"/", "ext4"},
        {"/home/joe", "ext4"},
        {"/home/joe/jobs", "nfs4"},
        {"/home/joe/jobs/12/plan.dxf", "nfs4"},
        {"/home/joe/jobs-old", "ext4"},
        {"/home/joe/jobs/local/x", "tmpfs"},
        {"/mnt/my disk/x", "cifs"},
        {"/mnt/my", "ext4"},
        {"/mnt/twice/x", "fuse.sshfs"},
        {"/mnt/open", "ext4"},
        {"relative", ""},
    };
    for (const auto& [path, type] : cases)
        EXPECT_EQ(fileSystemType(kMounts, path), type) << path;
    EXPECT_EQ(fileSystemType("", "/"), "");
}

TEST(MountsTest, TypesOfOtherMachines) {
    for (const char* const type : {"nfs", "nfs4", "cifs", "fuse.sshfs", "9p"})
        EXPECT_TRUE(isNetworkFileSystem(type)) << type;
    for (const char* const type : {"", "ext4", "fuse", "fuseblk", "fuse.ntfs-3g", "nf", "NFS"})
        EXPECT_FALSE(isNetworkFileSystem(type)) << type;
}

TEST(MountsTest, ServersThatAreNotHere) {
    for (const wchar_t* const path : {L"\\\\server\\jobs", L"//server/jobs/12", L"\\/server"})
        EXPECT_TRUE(isNetworkPath(path)) << path;
    for (const wchar_t* const path : {L"", L"/", L"//", L"///x", L"//proc", L"none/at/all"})
        EXPECT_FALSE(isNetworkPath(path)) << path;
}

}  // namespace
}  // namespace sg
