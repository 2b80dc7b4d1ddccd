#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "host/jet/recording_files.h"
#include "host/jet/storage/storage.h"
#include "host/jet/storage/write_transaction.h"
#include "host/jet/storage_files.h"

// Loss of power and kills at every moment of a run.
namespace sg::jet {
namespace {

using Kind = RecordingFiles::Kind;
using Disk = RecordingFiles::Disk;

const std::wstring database = L"plan.mdb";

StorageOptions optionsFor(FileLayer& files) {
    return {.cacheBytes = 0,
            .checkpointDelay = std::chrono::milliseconds(0),
            .transactionBytes = 4 * testPageSize,
            .name = {L"tester", L"machine"},
            .files = &files};
}

// A run of transactions with all that happens to them, and the states that were committed.
class RecordedRun {
  public:
    explicit RecordedRun(unsigned seed) : random_(seed), files_({{database, testDatabase(5)}}) {
        states_.push_back(testDatabase(5));
        for (int session = 0; session < 3; ++session) {
            const auto storage = Storage::open(database, OpenMode::Shared, optionsFor(files_));
            const size_t transactions = 6 + random_() % 8;
            for (size_t i = 0; i < transactions; ++i) {
                oneTransaction(*storage);
                if (random_() % 4 == 0) storage->checkpoint();
            }
            storage->close();
        }
    }

    const RecordingFiles& files() const { return files_; }
    const std::vector<Bytes>& states() const { return states_; }

  private:
    void oneTransaction(Storage& storage) {
        const auto transaction = storage.beginWrite();
        const size_t operations = 1 + random_() % (random_() % 4 == 0 ? 12 : 3);
        for (size_t i = 0; i < operations; ++i) {
            const auto savepoint = transaction->savepoint();
            change(*transaction);
            if (random_() % 4 == 0) {
                transaction->rollbackTo(savepoint);
            } else {
                transaction->release(savepoint);
            }
        }
        if (random_() % 5 == 0) {
            transaction->rollback();
            return;
        }
        Bytes state = contentOf(*transaction);
        if (state == states_.back()) return;
        states_.push_back(std::move(state));
        transaction->commit();
        files_.mark(states_.size() - 1);
    }

    void change(WriteTransaction& transaction) {
        if (random_() % 6 == 0) transaction.grow(1 + random_() % 3);
        const size_t pages = 1 + random_() % 4;
        for (size_t i = 0; i < pages; ++i) {
            const uint32_t page = random_() % transaction.pageCount();
            const std::span<uint8_t> bytes = transaction.write(page);
            if (random_() % 3 == 0) {
                const Bytes content = filledPage(page, random_());
                std::copy(content.begin(), content.end(), bytes.begin());
            } else {
                // A small change, behind the part of page 0 that tells the version.
                bytes[100 + random_() % (testPageSize - 100)] ^= uint8_t(1 + random_() % 255);
            }
        }
    }

    std::mt19937 random_;
    RecordingFiles files_;
    std::vector<Bytes> states_;
};

// What must have survived after `count` operations.
struct Promise {
    size_t returned = 0;  // the last commit that returned: survives a kill
    size_t synced = 0;    // the last commit that was synced: survives a loss of power
};

Promise promiseAfter(const std::vector<RecordingFiles::Operation>& operations, size_t count) {
    Promise promise;
    for (size_t i = 0; i < count; ++i) {
        const auto& operation = operations[i];
        if (operation.kind == Kind::Mark) promise.returned = operation.file;
        // The database file is synced behind the log and the log's name: all is safe then.
        if (operation.kind == Kind::Sync && operation.file == 1) promise.synced = promise.returned;
    }
    return promise;
}

// Opens what a crash left; answers which committed state it is, or -1.
int recover(RecordingFiles& files, const std::vector<Bytes>& states) {
    const auto storage = Storage::open(database, OpenMode::Shared, optionsFor(files));
    EXPECT_EQ(storage->unrelatedLog(), L"");
    const Bytes content = contentOf(*storage);
    storage->close();
    EXPECT_EQ(files.content(database), content);
    EXPECT_FALSE(files.has(Storage::logPath(database)));
    // Equal states may have come twice: the later one counts.
    const auto found = std::find(states.rbegin(), states.rend(), content);
    return found == states.rend() ? -1 : int(states.rend() - found) - 1;
}

class StorageReplay : public testing::TestWithParam<unsigned> {};

TEST_P(StorageReplay, EveryCrashLeavesACommittedState) {
    const RecordedRun run(GetParam());
    const auto& operations = run.files().operations();
    std::mt19937 random(GetParam());
    for (size_t count = 0; count <= operations.size(); ++count) {
        const Promise promise = promiseAfter(operations, count);
        for (int variant = 0; variant < 6; ++variant) {
            SCOPED_TRACE(testing::Message() << "after " << count << ", variant " << variant);
            const bool isKill = variant == 0;
            const Disk disk = run.files().diskAfter(count, isKill ? nullptr : &random);
            RecordingFiles files(disk);
            const int found = recover(files, run.states());
            ASSERT_GE(found, int(isKill ? promise.returned : promise.synced));
            ASSERT_LE(found, int(promise.returned) + 1);
            if (HasFailure()) return;
            if (random() % 24 != 0) continue;
            // Power is lost again while the storage recovers.
            for (size_t again = 0; again <= files.operations().size(); ++again) {
                RecordingFiles second(files.diskAfter(again, &random));
                const int then = recover(second, run.states());
                ASSERT_GE(then, int(promise.synced)) << "again after " << again;
                ASSERT_LE(then, int(promise.returned) + 1) << "again after " << again;
                if (HasFailure()) return;
            }
        }
    }
}

// Outside the moment in which pages are being brought over, who knows nothing of the log finds a
// committed state in the file.
TEST_P(StorageReplay, TheFileAloneIsAWholeEarlierState) {
    const RecordedRun run(GetParam());
    const auto& operations = run.files().operations();
    const auto writesDatabase = [&](size_t i) {
        return i < operations.size() && operations[i].kind == Kind::Write &&
               operations[i].file == 1;
    };
    size_t states = 0;
    for (size_t count = 0; count <= operations.size(); ++count) {
        if (count > 0 && writesDatabase(count - 1) && writesDatabase(count)) continue;
        const Disk disk = run.files().diskAfter(count, nullptr);
        const auto& found = run.states();
        ASSERT_NE(std::find(found.begin(), found.end(), disk.at(database)), found.end()) << count;
        ++states;
    }
    EXPECT_GT(states, operations.size() / 2);
}

std::vector<unsigned> seeds() {
    const char* more = std::getenv("SWIFTGATE_REPLAY_RUNS");
    std::vector<unsigned> seeds(more != nullptr ? std::max(1, std::atoi(more)) : 4);
    for (size_t i = 0; i < seeds.size(); ++i) {
        seeds[i] = unsigned(i + 1);
    }
    return seeds;
}

INSTANTIATE_TEST_SUITE_P(Runs, StorageReplay, testing::ValuesIn(seeds()));

// Each write and sync of a run fails once: the state stays a committed one, and the next open has
// everything that returned.
TEST(StorageFailures, AFailingDiskNeverMixesStates) {
    for (size_t failing = 0;; ++failing) {
        RecordingFiles files({{database, testDatabase(5)}});
        size_t count = 0;
        bool failed = false;
        files.onOperation = [&](const RecordingFiles::Operation& operation) {
            const bool canFail = operation.kind == Kind::Write || operation.kind == Kind::Sync ||
                                 operation.kind == Kind::Truncate;
            if (canFail && count++ == failing) {
                failed = true;
                throw Error(operation.kind == Kind::Sync ? DiskOrNetwork : DiskFull);
            }
        };
        uint32_t returned = 0;
        try {
            const auto storage = Storage::open(database, OpenMode::Shared, optionsFor(files));
            for (uint32_t i = 1; i <= 4; ++i) {
                const auto transaction = storage->beginWrite();
                for (const uint32_t page : {1u, 3u}) {
                    const Bytes content = filledPage(page, i);
                    std::copy(content.begin(), content.end(), transaction->write(page).begin());
                }
                transaction->commit();
                returned = i;
                if (i % 2 == 0) storage->checkpoint();
            }
            storage->close();
        } catch (const Error& error) {
            EXPECT_TRUE(error.code() == DiskOrNetwork || error.code() == DiskFull);
        }
        files.onOperation = nullptr;
        const auto storage = Storage::open(database, OpenMode::Shared, optionsFor(files));
        const int64_t found = numberIn(storage->read(1));
        EXPECT_EQ(found, numberIn(storage->read(3))) << failing;
        EXPECT_EQ(found, returned) << failing;
        if (!failed) return;
    }
}

}  // namespace
}  // namespace sg::jet
