#include "host/jet/storage/storage.h"
#include "host/jet/file_content.h"

#include <gtest/gtest.h>

#include <random>

#include "host/jet/recording_files.h"
#include "host/jet/storage/log_recovery.h"
#include "host/jet/storage/write_transaction.h"
#include "host/jet/storage_files.h"
#include "host/system/temporary_folder.h"

namespace sg::jet {
namespace {

const std::wstring database = L"plan.mdb";
const std::wstring logFile = L"plan.mdb-log";

void fill(WriteTransaction& transaction, uint32_t page, uint32_t number) {
    const Bytes content = filledPage(page, number);
    std::copy(content.begin(), content.end(), transaction.write(page).begin());
}

class StorageTest : public testing::Test {
  protected:
    StorageOptions options() {
        return {.cacheBytes = 0,
                .checkpointDelay = std::chrono::milliseconds(0),
                .writerPatience = std::chrono::milliseconds(0),
                .name = {L"tester", L"machine"},
                .files = &files_};
    }
    std::unique_ptr<Storage> open(OpenMode mode = OpenMode::Shared) {
        return Storage::open(database, mode, options());
    }
    void commit(Storage& storage, std::initializer_list<uint32_t> pages, uint32_t number) {
        const auto transaction = storage.beginWrite();
        for (const uint32_t page : pages) {
            fill(*transaction, page, number);
        }
        transaction->commit();
    }

    RecordingFiles files_{{{database, testDatabase(40)}}};
};

TEST_F(StorageTest, ChangesAreSeenByTheTransactionAndAfterTheCommit) {
    const auto storage = open();
    const PageRef held = storage->read(3);
    auto transaction = storage->beginWrite();
    fill(*transaction, 3, 7);
    EXPECT_EQ(numberIn(transaction->read(3)), 7);
    EXPECT_EQ(numberIn(storage->view().read(3)), 7);
    EXPECT_EQ(numberIn(storage->read(3)), 0);
    const PageRef inside = transaction->read(3);
    fill(*transaction, 3, 8);
    EXPECT_EQ(numberIn(inside), 7);
    EXPECT_EQ(codeOf([&] { storage->beginWrite(); }), InvalidOperation);
    transaction->commit();
    EXPECT_EQ(numberIn(storage->read(3)), 8);
    EXPECT_EQ(numberIn(storage->view().read(3)), 8);
    EXPECT_EQ(numberIn(held), 0);
    EXPECT_EQ(codeOf([&] { transaction->write(3); }), InvalidOperation);
    EXPECT_EQ(codeOf([&] { transaction->commit(); }), InvalidOperation);

    const uint64_t before = storage->changeCounter();
    transaction = storage->beginWrite();
    fill(*transaction, 3, 9);
    EXPECT_EQ(transaction->grow(2), 40u);
    transaction->rollback();
    transaction = storage->beginWrite();
    fill(*transaction, 3, 8);  // what it is already
    transaction->commit();
    EXPECT_EQ(storage->changeCounter(), before);
    EXPECT_EQ(numberIn(storage->read(3)), 8);
    EXPECT_EQ(storage->pageCount(), 40u);
    EXPECT_EQ(codeOf([&] { storage->read(40); }), Damaged);
}

TEST_F(StorageTest, Savepoints) {
    const auto storage = open();
    const auto transaction = storage->beginWrite();
    fill(*transaction, 1, 1);
    const auto outer = transaction->savepoint();
    fill(*transaction, 1, 2);
    fill(*transaction, 2, 2);
    const auto inner = transaction->savepoint();
    fill(*transaction, 1, 3);
    EXPECT_EQ(transaction->grow(), 40u);
    fill(*transaction, 40, 3);
    transaction->rollbackTo(inner);
    EXPECT_EQ(numberIn(transaction->read(1)), 2);
    EXPECT_EQ(transaction->pageCount(), 40u);
    const auto released = transaction->savepoint();
    fill(*transaction, 1, 4);
    fill(*transaction, 5, 4);
    transaction->grow(3);
    transaction->savepoint();  // ends with the one around it
    fill(*transaction, 1, 5);
    transaction->release(released);
    EXPECT_EQ(numberIn(transaction->read(1)), 5);
    EXPECT_EQ(codeOf([&] { transaction->release(inner); }), InvalidOperation);
    transaction->rollbackTo(outer);
    EXPECT_EQ(numberIn(transaction->read(1)), 1);
    EXPECT_EQ(numberIn(transaction->read(2)), 0);
    EXPECT_EQ(numberIn(transaction->read(5)), 0);
    EXPECT_EQ(transaction->pageCount(), 40u);
    EXPECT_EQ(transaction->memoryBytes(), testPageSize);
    transaction->commit();
    EXPECT_EQ(numberIn(storage->read(1)), 1);
}

// Random operations against a plain copy, with little memory, so that pages leave early.
TEST_F(StorageTest, TransactionsAgreeWithAModel) {
    std::mt19937 random(11);
    StorageOptions small = options();
    small.transactionBytes = 3 * testPageSize;
    small.logLimit = 300'000;
    const auto storage = Storage::open(database, OpenMode::Shared, small);
    Bytes committed = contentOf(*storage);
    for (int round = 0; round < 60; ++round) {
        const auto old = storage->snapshot();
        const auto transaction = storage->beginWrite();
        std::vector<std::pair<WriteTransaction::SavepointId, Bytes>> stack;
        Bytes model = committed;
        for (int i = 0; i < 40; ++i) {
            const unsigned what = random() % 10;
            if (what == 0) {
                stack.emplace_back(transaction->savepoint(), model);
            } else if (what == 1 && !stack.empty()) {
                transaction->release(stack.back().first);
                stack.pop_back();
            } else if (what == 2 && !stack.empty()) {
                transaction->rollbackTo(stack.back().first);
                model = stack.back().second;
                stack.pop_back();
            } else if (what == 3) {
                transaction->grow();
                model.resize(model.size() + testPageSize);
            } else {
                const uint32_t page = random() % transaction->pageCount();
                const size_t at = 64 + random() % (testPageSize - 64);
                model[page * testPageSize + at] = transaction->write(page)[at] = uint8_t(random());
            }
        }
        ASSERT_EQ(contentOf(*transaction), model);
        if (random() % 3 == 0) {
            transaction->rollback();
        } else {
            transaction->commit();
            ASSERT_EQ(contentOf(*old), committed);
            committed = model;
        }
        ASSERT_EQ(contentOf(*storage), committed);
        if (random() % 4 == 0) storage->checkpoint();
    }
    storage->close();
    EXPECT_EQ(files_.content(database), committed);
}

TEST_F(StorageTest, SnapshotsKeepTheirStateAcrossCheckpoints) {
    const auto storage = open();
    commit(*storage, {1, 2}, 1);
    auto first = storage->snapshot();
    commit(*storage, {2, 3}, 2);
    auto second = storage->snapshot();
    commit(*storage, {3}, 3);
    EXPECT_FALSE(storage->checkpoint());
    const auto numbers = [](const PageStore& store) {
        std::vector<int64_t> numbers;
        for (const uint32_t page : {1u, 2u, 3u}) {
            numbers.push_back(numberIn(store.read(page)));
        }
        return numbers;
    };
    EXPECT_EQ(numbers(*first), (std::vector<int64_t>{1, 1, 0}));
    EXPECT_EQ(numbers(*second), (std::vector<int64_t>{1, 2, 2}));
    EXPECT_EQ(numbers(*storage), (std::vector<int64_t>{1, 2, 3}));
    first.reset();
    EXPECT_FALSE(storage->checkpoint());
    EXPECT_EQ(numbers(*second), (std::vector<int64_t>{1, 2, 2}));
    second.reset();
    EXPECT_TRUE(storage->checkpoint());
    EXPECT_EQ(numbers(*storage), (std::vector<int64_t>{1, 2, 3}));
    EXPECT_EQ(files_.content(logFile).size(), log::headerSize);
}

TEST_F(StorageTest, AScopeHoldsAgainstOthersButNotAgainstItself) {
    const auto one = open(), two = open();
    const Storage::ReadScope scope(*one);
    EXPECT_EQ(numberIn(one->read(1)), 0);
    commit(*two, {1, 2}, 4);
    EXPECT_EQ(numberIn(one->read(2)), 0);
    commit(*one, {3}, 5);
    EXPECT_EQ(numberIn(one->read(2)), 4);
    EXPECT_EQ(numberIn(one->read(3)), 5);
}

TEST_F(StorageTest, TheCacheKeepsItsLimit) {
    const auto storage = open();
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(contentOf(*storage), testDatabase(40));
    }
    EXPECT_LE(storage->cachedPages(), 16u);
}

TEST_F(StorageTest, GrowthEndsWhereTheFormatDoes) {
    const auto storage = open();
    const auto transaction = storage->beginWrite();
    EXPECT_EQ(codeOf([&] { transaction->grow(0x80000); }), DiskFull);
    EXPECT_EQ(codeOf([&] { transaction->grow(UINT32_MAX); }), DiskFull);
    EXPECT_EQ(transaction->pageCount(), 40u);
    EXPECT_EQ(transaction->grow(), 40u);
}

TEST_F(StorageTest, CreatesAFileFromNothing) {
    const std::wstring fresh = L"new.mdb";
    auto storage = Storage::create(fresh, formatOf(Version::Jet4), options());
    EXPECT_EQ(storage->pageCount(), 0u);
    auto transaction = storage->beginWrite();
    transaction->grow(3);
    for (const uint32_t page : {0u, 1u, 2u}) {
        fill(*transaction, page, 6);
    }
    transaction->commit();
    EXPECT_EQ(codeOf([&] { Storage::open(fresh, OpenMode::Shared, options()); }), FileInUse);
    // What a kill here leaves is a database, and a file of that name can be made again.
    RecordingFiles killed(files_.disk());
    StorageOptions others = options();
    others.files = &killed;
    EXPECT_EQ(numberIn(Storage::open(fresh, OpenMode::Shared, others)->read(2)), 6);
    RecordingFiles::Disk disk = files_.disk();
    disk.erase(fresh);
    RecordingFiles removed(disk);
    others.files = &removed;
    EXPECT_EQ(Storage::create(fresh, formatOf(Version::Jet4), others)->pageCount(), 0u);

    storage->close();
    EXPECT_EQ(numberIn(Storage::open(fresh, OpenMode::ReadOnly, options())->read(2)), 6);
    EXPECT_EQ(codeOf([&] { Storage::create(fresh, formatOf(Version::Jet4), options()); }),
              DatabaseExists);
}

TEST_F(StorageTest, ReadOnlyDoesNotWrite) {
    const auto storage = open(OpenMode::ReadOnly);
    EXPECT_EQ(codeOf([&] { storage->beginWrite(); }), ReadOnlyDatabase);
    EXPECT_EQ(contentOf(*storage), testDatabase(40));
}

TEST_F(StorageTest, ClosingRollsBackAndEndsReading) {
    auto storage = open();
    commit(*storage, {1}, 1);
    const auto transaction = storage->beginWrite();
    fill(*transaction, 1, 2);
    storage->lockRecord({1, 1});
    storage->close();
    EXPECT_FALSE(transaction->isOpen());
    EXPECT_EQ(codeOf([&] { storage->read(1); }), InvalidOperation);
    EXPECT_EQ(codeOf([&] { storage->beginWrite(); }), InvalidOperation);
    EXPECT_EQ(numberIn(open(OpenMode::Exclusive)->read(1)), 1);
}

// Who gets the lock before the commit would read what the record was.
TEST_F(StorageTest, RecordLocksHoldToTheTransactionsEnd) {
    StorageOptions named = options();
    named.name = {L"Åse", L"desk"};
    const auto mine = Storage::open(database, OpenMode::Shared, named);
    const auto theirs = open();
    const RowId row{1, 1};
    const auto lock = [&](Storage& storage, RowId which) {
        return codeOf([&] { storage.lockRecord(which); });
    };
    for (const bool commits : {true, false}) {
        mine->lockRecord({2, 2});
        const auto transaction = mine->beginWrite();
        for (int again = 0; again < 2; ++again) {
            EXPECT_EQ(lock(*mine, row), 0);
            EXPECT_EQ(lock(*mine, row), Storage::lockedBySession);
            mine->unlockRecord(row);
            EXPECT_EQ(lock(*theirs, row), LockedByUser);
        }
        EXPECT_EQ(lock(*theirs, {1, 2}), 0);
        theirs->unlockRecord({1, 2});
        commits ? transaction->commit() : transaction->rollback();
        EXPECT_EQ(lock(*theirs, row), 0);
        theirs->unlockRecord(row);
        // Locks that nobody has given up go on.
        EXPECT_EQ(lock(*theirs, {2, 2}), LockedByUser);
        mine->unlockRecord({2, 2});
    }
}

TEST_F(StorageTest, ATransactionWithVeryManyLocksHasAll) {
    StorageOptions named = options();
    named.name = {L"Åse", L"desk"};
    const auto mine = Storage::open(database, OpenMode::Shared, named);
    const auto theirs = open();
    theirs->lockRecord({9, 9});
    const auto transaction = mine->beginWrite();
    for (uint32_t page = 10; page < 2000; ++page) {
        mine->lockRecord({page, 0});
        mine->unlockRecord({page, 0});
    }
    EXPECT_EQ(codeOf([&] { mine->lockRecord({9, 9}); }), LockedByUser);
    for (const uint32_t page : {10u, 1999u, 5000u}) {
        try {
            theirs->lockRecord({page, 0});
            FAIL() << page;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), LockedByUser);
            EXPECT_EQ(error.names(), (std::vector<std::wstring>{L"Åse", L"desk"}));
        }
    }
    transaction->commit();
    for (const uint32_t page : {10u, 1999u, 5000u})
        EXPECT_EQ(codeOf([&] { theirs->lockRecord({page, 0}); }), 0);
}

TEST_F(StorageTest, WhatIsNoDatabase) {
    Bytes jet3 = testDatabase(4);
    jet3[0x14] = 0;
    Bytes unknown = testDatabase(4);
    unknown[0x14] = 99;
    struct Case {
        Bytes content;
        OpenMode mode;
        int code;
    };
    for (const Case& c :
         {Case{{}, OpenMode::Shared, CannotOpenDatabase},
          Case{{'h', 'i'}, OpenMode::Shared, UnrecognizedFormat},
          Case{Bytes(5000), OpenMode::ReadOnly, UnrecognizedFormat},
          Case{testDatabase(2), OpenMode::Shared, CannotOpenDatabase},
          Case{unknown, OpenMode::ReadOnly, UnrecognizedFormat},
          Case{jet3, OpenMode::Shared, CannotOpenFile},
          Case{jet3, OpenMode::Exclusive, CannotOpenFile}, Case{jet3, OpenMode::ReadOnly, 0}}) {
        RecordingFiles files({{database, c.content}});
        StorageOptions others = options();
        others.files = &files;
        EXPECT_EQ(codeOf([&] { Storage::open(database, c.mode, others); }), c.code);
        EXPECT_EQ(files.disk(), (RecordingFiles::Disk{{database, c.content}}));
        EXPECT_FALSE(files.has(Storage::sharedPath(database)));
    }
}

// --- logs that were left ---

class LeftLog : public StorageTest {
  protected:
    // What a kill leaves behind two commits.
    LeftLog() {
        const auto storage = open();
        commit(*storage, {1, 2}, 1);
        {
            const auto transaction = storage->beginWrite();
            transaction->write(2)[200] ^= 1;
            transaction->write(3)[300] ^= 1;
            transaction->grow();
            transaction->commit();
        }
        last_ = contentOf(*storage);
        disk_ = files_.disk();
        states_ = {testDatabase(40), testDatabase(40), last_};
        for (const uint32_t page : {1u, 2u}) {
            const Bytes content = filledPage(page, 1);
            std::copy(content.begin(), content.end(), states_[1].begin() + page * testPageSize);
        }
    }
    Bytes openedWith(const RecordingFiles::Disk& disk, std::wstring* unrelated = nullptr) {
        RecordingFiles files(disk);
        StorageOptions others = options();
        others.files = &files;
        const auto storage = Storage::open(database, OpenMode::Shared, others);
        if (unrelated != nullptr) *unrelated = storage->unrelatedLog();
        return contentOf(*storage);
    }

    Bytes last_;
    RecordingFiles::Disk disk_;
    std::vector<Bytes> states_;
};

// Another program changed the file, or it is another file: its content stands, and the log is kept
// under another name.
TEST_F(LeftLog, OfAFileThatHasChanged) {
    struct Case {
        const char* name;
        size_t byte;  // of the database; 0: another page at its end
        bool applies;
    };
    for (const Case& c : {Case{"the database page", 1000, false},
                          Case{"a page in the log", 3 * testPageSize + 5, false},
                          Case{"another page", 9 * testPageSize, true}, Case{"longer", 0, false}}) {
        SCOPED_TRACE(c.name);
        RecordingFiles::Disk disk = disk_;
        Bytes& content = disk[database];
        if (c.byte != 0) {
            content[c.byte] ^= 1;
        } else {
            content.resize(content.size() + testPageSize);
        }
        std::wstring unrelated;
        const Bytes opened = openedWith(disk, &unrelated);
        EXPECT_EQ(unrelated.empty(), c.applies);
        if (!c.applies) {
            EXPECT_EQ(opened, content);
        }
    }
}

// Pages were on their way into the file: it may have become anything but shorter.
TEST_F(LeftLog, WithTheMark) {
    Bytes& left = disk_[logFile];
    const std::optional<log::Header> header = log::decodeHeader({left.data(), left.size()});
    ASSERT_TRUE(header);
    const auto mark = log::encodeMark(header->salt);
    std::copy(mark.begin(), mark.end(), left.begin() + log::markOffset);
    disk_[database][3 * testPageSize + 5] ^= 1;
    EXPECT_EQ(openedWith(disk_), last_);
    disk_[database] = testDatabase(30);
    std::wstring unrelated;
    EXPECT_EQ(openedWith(disk_, &unrelated), testDatabase(30));
    EXPECT_FALSE(unrelated.empty());
}

TEST_F(LeftLog, IsKeptWhenItIsUnrelated) {
    disk_[database][1000] ^= 1;
    RecordingFiles files(disk_);
    StorageOptions others = options();
    others.files = &files;
    const auto storage = Storage::open(database, OpenMode::Shared, others);
    EXPECT_EQ(files.content(storage->unrelatedLog()), disk_[logFile]);
}

// Whatever is in the log: the file opens in a committed state.
TEST_F(LeftLog, DamagedAnywhere) {
    EXPECT_EQ(openedWith(disk_), last_);
    const auto isState = [&](const Bytes& content) {
        return std::find(states_.begin(), states_.end(), content) != states_.end();
    };
    const Bytes& whole = disk_[logFile];
    for (size_t size = 0; size < whole.size(); size += size < 1400 ? 1 : 97) {
        RecordingFiles::Disk disk = disk_;
        disk[logFile].resize(size);
        ASSERT_TRUE(isState(openedWith(disk))) << "cut at " << size;
    }
    for (size_t at = 0; at < whole.size(); at += at < 1400 ? 1 : 61) {
        RecordingFiles::Disk disk = disk_;
        disk[logFile][at] ^= uint8_t(1 << at % 8);
        ASSERT_TRUE(isState(openedWith(disk))) << "flipped at " << at;
    }
}

// Logs with right checksums that break the rules.
TEST_F(LeftLog, Forged) {
    const log::Header header =
        *readLogHeader(*RecordingFiles(disk_).open(logFile, FileAccess::Read));
    const Bytes image = filledPage(1, 77);
    const Bytes delta{0, 0, 4, 0, 1, 2, 3, 4};
    const Bytes overrun{0xfe, 0x0f, 4, 0, 1, 2, 3, 4};
    struct Body {
        uint32_t page;
        bool isDelta;
        Bytes bytes;
    };
    struct Case {
        const char* name;
        uint64_t sequence;
        uint32_t pageCount;
        std::vector<Body> bodies;
        bool counts;
    };
    const std::vector<Case> cases = {
        {"right", 1, 40, {{1, false, image}, {1, true, delta}}, true},
        {"a delta without image", 1, 40, {{1, true, delta}}, false},
        {"a delta beyond the page", 1, 40, {{1, false, image}, {1, true, overrun}}, false},
        {"too many deltas", 1, 40,
         [&] {
             std::vector<Body> bodies{{1, false, image}};
             bodies.resize(2 + log::maxDeltas, {1, true, delta});
             return bodies;
         }(),
         false},
        {"a page beyond the end", 1, 40, {{40, false, image}}, false},
        {"more pages than it brings", 1, 0x1000000, {{1, false, image}}, false},
        {"fewer pages", 1, 39, {{1, false, image}}, false},
        {"a short image", 1, 40, {{1, false, delta}}, false},
        {"a wrong number", 2, 40, {{1, false, image}}, false},
        {"nothing", 1, 40, {}, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes record(log::recordHeadSize + c.bodies.size() * log::entrySize);
        std::vector<log::Entry> entries;
        for (const Body& body : c.bodies) {
            const Bytes base = filledPage(body.page, 0);
            entries.push_back({.page = body.page,
                               .size = uint32_t(body.bytes.size()),
                               .delta = body.isDelta,
                               .first = !body.isDelta && body.page < 40,
                               .checksum = log::checksum(0, body.bytes),
                               .base = log::checksum(0, base)});
        }
        log::encodeRecord(record,
                          {.commit = true, .sequence = c.sequence, .pageCount = c.pageCount},
                          entries, header.salt);
        for (const Body& body : c.bodies) {
            record.insert(record.end(), body.bytes.begin(), body.bytes.end());
        }
        RecordingFiles::Disk disk = disk_;
        disk[logFile].resize(log::recordsOffset);
        disk[logFile].insert(disk[logFile].end(), record.begin(), record.end());
        const Bytes opened = openedWith(disk);
        EXPECT_EQ(opened.size(), 40 * testPageSize);
        EXPECT_EQ(opened != states_[0], c.counts && !c.bodies.empty());
    }
}

// --- the thread ---

class StorageThread : public FolderTest {};

TEST_F(StorageThread, BringsPagesOverWithoutBeingAsked) {
    const std::wstring plan = path("plan.mdb");
    posixFiles().open(plan, FileAccess::CreateNew)->write(0, testDatabase(5));
    StorageOptions options;
    options.checkpointDelay = std::chrono::milliseconds(1);
    const auto storage = Storage::open(plan, OpenMode::Shared, options);
    for (uint32_t number = 1; number <= 3; ++number) {
        {
            const auto transaction = storage->beginWrite();
            fill(*transaction, 4, number);
            transaction->commit();
        }
        // The test's time limit is the limit.
        while (numberIn(test::FileContent(plan).read(4)) != number) {
        }
    }
}

}  // namespace
}  // namespace sg::jet
