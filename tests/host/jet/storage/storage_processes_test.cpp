#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/jet/child_process.h"
#include "host/jet/file_content.h"
#include "host/jet/storage/storage.h"
#include "host/jet/storage/write_transaction.h"
#include "host/jet/storage_files.h"
#include "host/system/temporary_folder.h"

// Several processes on one file.
namespace sg::jet {
namespace {

using Parent = ChildProcess::Parent;

StorageOptions manual() {
    return {.checkpointDelay = std::chrono::milliseconds(0),
            .writerPatience = std::chrono::milliseconds(20)};
}

void writePages(Storage& storage, std::initializer_list<uint32_t> pages, uint32_t number) {
    const auto transaction = storage.beginWrite();
    for (const uint32_t page : pages) {
        const Bytes content = filledPage(page, number);
        std::copy(content.begin(), content.end(), transaction->write(page).begin());
    }
    transaction->commit();
}

class StorageProcesses : public FolderTest {
  protected:
    StorageProcesses() {
        posixFiles().open(path("plan.mdb"), FileAccess::CreateNew)->write(0, testDatabase(6));
    }
    std::wstring plan() const { return path("plan.mdb"); }
    bool exists(const char* name) const { return std::filesystem::exists(folder_ / name); }
};

// A file of the same name is not the one that the log beside it is about.
TEST_F(StorageProcesses, AnotherFileUnderTheNameIsNotOpened) {
    auto storage = Storage::open(plan(), OpenMode::Shared, manual());
    writePages(*storage, {1}, 5);
    std::filesystem::rename(folder_ / "plan.mdb", folder_ / "away.mdb");
    posixFiles().open(plan(), FileAccess::CreateNew)->write(0, testDatabase(6));
    for (const OpenMode mode : {OpenMode::Shared, OpenMode::ReadOnly, OpenMode::Exclusive}) {
        try {
            Storage::open(plan(), mode, manual());
            ADD_FAILURE();
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), FileInUse);
        }
    }
    EXPECT_EQ(numberIn(storage->read(1)), 5);
    storage->close();
    EXPECT_EQ(numberIn(Storage::open(plan(), OpenMode::Shared, manual())->read(1)), 0);
    EXPECT_EQ(numberIn(Storage::open(path("away.mdb"), OpenMode::Shared, manual())->read(1)), 5);
}

TEST_F(StorageProcesses, ASettledFileKeepsItsState) {
    auto storage = Storage::open(plan(), OpenMode::Shared, manual());
    writePages(*storage, {1}, 5);
    auto other = Storage::open(plan(), OpenMode::Shared, manual());
    const auto inFile = [&] {
        Bytes page(storage->pageSize());
        posixFiles().open(plan(), FileAccess::Read)->read(page.size(), page);
        return numberIn({1, {page.data(), page.size()}});
    };
    EXPECT_EQ(inFile(), 0);
    {
        const Storage::ReadScope scope(*other);
        EXPECT_TRUE(other->settle());
        EXPECT_EQ(inFile(), 5);
        writePages(*storage, {1}, 6);
        EXPECT_FALSE(storage->checkpoint());
        EXPECT_EQ(inFile(), 5);
    }
    EXPECT_TRUE(storage->checkpoint());
    EXPECT_EQ(inFile(), 6);
}

TEST_F(StorageProcesses, CommitsAreSeenAndTheLastOneTakesTheFilesAway) {
    ChildProcess child([&](const Parent& parent) {
        const auto storage = Storage::open(plan(), OpenMode::Shared, manual());
        parent.tell(0);
        for (int64_t command; (command = parent.hear()) != 0;) {
            const uint64_t before = storage->changeCounter();
            if (command > 0) writePages(*storage, {2}, uint32_t(command));
            parent.tell(command > 0 ? int64_t(storage->changeCounter() - before)
                                    : numberIn(storage->read(1)));
        }
        storage->close();
        parent.tell(9);
        parent.hear();
    });
    child.hear();
    auto storage = Storage::open(plan(), OpenMode::Shared, manual());
    EXPECT_EQ(child.ask(-1), 0);
    writePages(*storage, {1}, 5);
    EXPECT_EQ(child.ask(-1), 5);
    EXPECT_EQ(numberIn(storage->read(2)), 0);
    EXPECT_EQ(child.ask(7), 1);
    EXPECT_EQ(numberIn(storage->read(2)), 7);
    EXPECT_TRUE(storage->checkpoint());  // the log begins anew under the child
    EXPECT_EQ(child.ask(-1), 5);
    EXPECT_EQ(child.ask(8), 1);
    EXPECT_EQ(numberIn(storage->read(2)), 8);
    EXPECT_EQ(child.ask(0), 9);
    EXPECT_TRUE(exists("plan.mdb-log"));
    storage->close();
    EXPECT_FALSE(exists("plan.mdb-log"));
    EXPECT_FALSE(exists("plan.mdb-share"));
    EXPECT_EQ(numberIn(test::FileContent(plan()).read(2)), 8);
}

// A reader's state stays while others commit and bring pages over; its end, also by a kill, lets
// them through.
TEST_F(StorageProcesses, AReaderHoldsItsState) {
    for (const bool dies : {false, true}) {
        ChildProcess child([&](const Parent& parent) {
            const auto storage = Storage::open(plan(), OpenMode::ReadOnly, manual());
            const int64_t old = numberIn(storage->read(1));
            {
                const Storage::ReadScope scope(*storage);
                parent.tell(old);
                parent.hear();
                parent.tell(numberIn(storage->read(1)) + numberIn(storage->read(4)));
                parent.hear();
            }
            parent.tell(numberIn(storage->read(1)));
            parent.hear();
        });
        const auto old = uint32_t(child.hear());
        const auto storage = Storage::open(plan(), OpenMode::Shared, manual());
        writePages(*storage, {1, 4}, old + 1);
        EXPECT_FALSE(storage->checkpoint());
        EXPECT_EQ(numberIn(test::FileContent(plan()).read(1)), old);
        EXPECT_EQ(child.ask(0), 2 * old);
        if (dies) {
            child.kill();
        } else {
            EXPECT_EQ(child.ask(0), old + 1);
        }
        EXPECT_TRUE(storage->checkpoint());
        EXPECT_EQ(numberIn(test::FileContent(plan()).read(1)), old + 1);
    }
}

TEST_F(StorageProcesses, AWriterWaitsAndOutlivesAnother) {
    StorageOptions named = manual();
    named.name = {L"Åse", L"desk"};
    named.transactionBytes = testPageSize;
    ChildProcess child([&](const Parent& parent) {
        const auto storage = Storage::open(plan(), OpenMode::Shared, named);
        const auto transaction = storage->beginWrite();
        for (const uint32_t page : {1u, 2u, 3u}) {
            const Bytes content = filledPage(page, 99);
            std::copy(content.begin(), content.end(), transaction->write(page).begin());
            transaction->release(transaction->savepoint());
        }
        parent.tell(1);
        parent.hear();
    });
    ASSERT_EQ(child.hear(), 1);
    const auto storage = Storage::open(plan(), OpenMode::Shared, manual());
    try {
        storage->beginWrite();
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), Storage::savingLocked);
        EXPECT_EQ(error.names(), (std::vector<std::wstring>{L"Åse", L"desk"}));
    }
    EXPECT_EQ(numberIn(storage->read(1)), 0);
    child.kill();
    writePages(*storage, {2}, 5);
    EXPECT_EQ(numberIn(storage->read(1)), 0);
    EXPECT_EQ(numberIn(storage->read(2)), 5);
}

TEST_F(StorageProcesses, RecordLocks) {
    StorageOptions named = manual();
    named.name = {L"Bo", L"shop"};
    ChildProcess child([&](const Parent& parent) {
        const auto storage = Storage::open(plan(), OpenMode::Shared, named);
        storage->lockRecord({5, 200});
        storage->lockRecord({0xffffff, 255});
        parent.tell(1);
        parent.hear();
        storage->unlockRecord({5, 200});
        parent.tell(1);
        parent.hear();
    });
    ASSERT_EQ(child.hear(), 1);
    const auto storage = Storage::open(plan(), OpenMode::Shared, manual());
    const auto lock = [&](uint32_t page, uint16_t row) {
        return codeOf([&] { storage->lockRecord({page, row}); });
    };
    EXPECT_EQ(lock(5, 201), 0);
    EXPECT_EQ(lock(5, 201), Storage::lockedBySession);
    storage->unlockRecord({5, 201});
    EXPECT_EQ(lock(5, 201), 0);
    try {
        storage->lockRecord({5, 200});
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), LockedByUser);
        EXPECT_EQ(error.names(), (std::vector<std::wstring>{L"Bo", L"shop"}));
    }
    child.ask(0);
    EXPECT_EQ(lock(5, 200), 0);
    EXPECT_EQ(lock(0xffffff, 255), LockedByUser);
    child.kill();
    EXPECT_EQ(lock(0xffffff, 255), 0);
}

TEST_F(StorageProcesses, OpenModes) {
    struct Case {
        OpenMode first, second;
        int code;
    };
    for (const Case& c : {Case{OpenMode::Exclusive, OpenMode::Exclusive, FileInUse},
                          Case{OpenMode::Exclusive, OpenMode::Shared, FileInUse},
                          Case{OpenMode::Exclusive, OpenMode::ReadOnly, FileInUse},
                          Case{OpenMode::Shared, OpenMode::Exclusive, FileInUse},
                          Case{OpenMode::Shared, OpenMode::Shared, 0},
                          Case{OpenMode::Shared, OpenMode::ReadOnly, 0},
                          Case{OpenMode::ReadOnly, OpenMode::Exclusive, FileInUse},
                          Case{OpenMode::ReadOnly, OpenMode::Shared, 0}}) {
        ChildProcess child([&](const Parent& parent) {
            const auto storage = Storage::open(plan(), c.first, manual());
            parent.tell(1);
            parent.hear();
        });
        ASSERT_EQ(child.hear(), 1);
        const auto open = [&] { Storage::open(plan(), c.second, manual()); };
        EXPECT_EQ(codeOf(open), c.code) << int(c.first) << int(c.second);
        child.kill();
        EXPECT_EQ(codeOf(open), 0) << int(c.first) << int(c.second);
    }
}

// The shared file's removal by hand while somebody uses it must not part the users into two groups
// that do not see each other.
TEST_F(StorageProcesses, ARemovedSharedFileKeepsOthersOut) {
    const auto storage = Storage::open(plan(), OpenMode::Shared, manual());
    std::filesystem::remove(folder_ / "plan.mdb-share");
    EXPECT_EQ(codeOf([&] { Storage::open(plan(), OpenMode::Shared, manual()); }), FileInUse);
    writePages(*storage, {1}, 3);
    storage->close();
    EXPECT_EQ(numberIn(Storage::open(plan(), OpenMode::Shared, manual())->read(1)), 3);
}

// Runs in a process that file permissions apply to.
template <class F>
int64_t asNobody(F function) {
    ChildProcess child([&](const Parent& parent) {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(4);
        parent.tell(function());
    });
    return child.hear();
}

TEST_F(StorageProcesses, WithoutPermissionToWrite) {
    {
        ChildProcess child([&](const Parent& parent) {
            const auto storage = Storage::open(plan(), OpenMode::Shared, manual());
            writePages(*storage, {1}, 3);
            parent.tell(1);
            parent.hear();
        });
        ASSERT_EQ(child.hear(), 1);
    }
    ASSERT_TRUE(exists("plan.mdb-log"));
    ::chmod(folder_.c_str(), 0555);
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        ::chmod(entry.path().c_str(), 0444);
    }
    const auto readFirst = [&] {
        return numberIn(Storage::open(plan(), OpenMode::ReadOnly, manual())->read(1));
    };
    EXPECT_EQ(asNobody([&] {
                  return codeOf([&] { Storage::open(plan(), OpenMode::Shared, manual()); });
              }),
              CannotOpenFile);
    EXPECT_EQ(asNobody(readFirst), 3);
    EXPECT_TRUE(exists("plan.mdb-log"));
    // A file that may not be written in a folder that may: read through the log, which stays.
    ::chmod(folder_.c_str(), 0777);
    ::chmod((folder_ / "plan.mdb-log").c_str(), 0666);
    ::chmod((folder_ / "plan.mdb-share").c_str(), 0666);
    EXPECT_EQ(asNobody(readFirst), 3);
    EXPECT_EQ(numberIn(test::FileContent(plan()).read(1)), 0);
    ::chmod((folder_ / "plan.mdb").c_str(), 0666);
    EXPECT_EQ(asNobody(readFirst), 3);
    EXPECT_EQ(numberIn(test::FileContent(plan()).read(1)), 3);
    EXPECT_FALSE(exists("plan.mdb-log"));
}

// Readers check that pages written together are seen together, while one writes and checkpoints as
// fast as it can.
TEST_F(StorageProcesses, NoReaderSeesHalfACommit) {
    StorageOptions busy;
    busy.checkpointDelay = std::chrono::milliseconds(1);
    busy.cacheBytes = 0;
    const auto read = [&](const Parent& parent) {
        const auto storage = Storage::open(plan(), OpenMode::ReadOnly, busy);
        parent.tell(0);
        int64_t states = 0;
        for (int64_t last = -1; last < 3000;) {
            const Storage::ReadScope scope(*storage);
            const int64_t number = numberIn(storage->read(1));
            for (const uint32_t page : {2u, 3u, 4u, 5u}) {
                if (numberIn(storage->read(page)) != number || number < last) parent.tell(-1);
            }
            states += number != last;
            last = number;
        }
        parent.tell(states);
    };
    ChildProcess one(read), two(read);
    one.hear();
    two.hear();
    const auto storage = Storage::open(plan(), OpenMode::Shared, busy);
    for (uint32_t i = 1; i <= 3000; ++i) {
        const auto old = i % 100 == 0 ? storage->snapshot() : nullptr;
        writePages(*storage, {1, 2, 3, 4, 5}, i);
        if (old != nullptr) {
            EXPECT_EQ(numberIn(old->read(5)), i - 1);
        }
    }
    EXPECT_GT(one.hear(), 0);
    EXPECT_GT(two.hear(), 0);
}

}  // namespace
}  // namespace sg::jet
