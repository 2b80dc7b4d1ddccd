#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <random>
#include <span>

#include "host/jet/engine_workload.h"
#include "host/jet/recording_files.h"

// Losses of power, kills and failing disks at every moment of a program's work on a database.
namespace sg::jet::test {
namespace {

using Kind = RecordingFiles::Kind;
using Disk = RecordingFiles::Disk;
using Operation = RecordingFiles::Operation;

const std::wstring database = L"plan.mdb";

StorageOptions optionsFor(FileLayer& files) {
    StorageOptions options;
    options.checkpointDelay = std::chrono::milliseconds(0);
    options.transactionBytes = 48 * 1024;
    options.name = {L"tester", L"machine"};
    options.files = &files;
    return options;
}

const Disk& startingDisk() {
    static const Disk disk = [] {
        RecordingFiles files({});
        makeEngineFile({database, optionsFor(files)});
        return files.disk();
    }();
    return disk;
}

DatabaseState startingState() {
    return stateOf(
        Database(std::make_unique<MemoryPageStore>(startingDisk().at(database), database)));
}

// A program's work, and the states that the database has had.
class RecordedWork {
  public:
    RecordedWork(unsigned seed, size_t operations) : files_(startingDisk()) {
        EngineWorkload workload(seed, startingState());
        states_.push_back(workload.state());
        Session session{database, optionsFor(files_)};
        session.open();
        for (size_t i = 0; i < operations; ++i) {
            workload.plan();
            states_.push_back(workload.state());
            workload.perform(session);
            files_.mark(states_.size() - 1);
            if (i % 4 == 3) session.database->storage()->checkpoint();
        }
        session.close();
    }

    const RecordingFiles& files() const { return files_; }
    const std::vector<DatabaseState>& states() const { return states_; }

  private:
    RecordingFiles files_;
    std::vector<DatabaseState> states_;
};

// For each change whether it was one to the file that was the database then.
std::vector<bool> changesOfDatabase(const std::vector<Operation>& operations) {
    std::vector<bool> changes;
    std::map<std::wstring, uint64_t> names{{database, 1}};
    for (const Operation& operation : operations) {
        if (operation.kind == Kind::Create) names[operation.name] = operation.file;
        if (operation.kind == Kind::Rename) names[operation.newName] = names[operation.name];
        changes.push_back(operation.kind != Kind::Mark && operation.file == names[database]);
    }
    return changes;
}

// The last operation that had returned after `count` changes to the disk, and the last one that was
// safe: the database file is synced behind the log.
struct Promise {
    size_t returned = 0;
    size_t synced = 0;
};

Promise promiseAfter(const std::vector<Operation>& operations, size_t count) {
    const std::vector<bool> isDatabase = changesOfDatabase(operations);
    Promise promise;
    for (size_t i = 0; i < count; ++i) {
        if (operations[i].kind == Kind::Mark) promise.returned = operations[i].file;
        if (operations[i].kind == Kind::Sync && isDatabase[i]) promise.synced = promise.returned;
    }
    return promise;
}

// Opens what a crash left, which must be one of the states from `first` to `last`.
void expectRecovery(RecordingFiles& files, std::span<const DatabaseState> states, size_t first,
                    size_t last) {
    Session session{database, optionsFor(files)};
    session.open();
    ASSERT_EQ(session.database->storage()->unrelatedLog(), L"");
    ASSERT_EQ(findingsIn(*session.database), "");
    const DatabaseState found = stateOf(*session.database);
    ASSERT_EQ(missingInIndexes(*session.database, found), "");
    session.close();
    ASSERT_FALSE(files.has(Storage::logPath(database)));
    const auto may = states.subspan(first, std::min(last + 1, states.size()) - first);
    ASSERT_NE(std::find(may.begin(), may.end(), found), may.end())
        << first << " to " << last << ": " << differenceOf(found, may.front());
}

// So many runs, and every moment of each; without it a part of the moments of two.
const char* const moreRuns = std::getenv("SWIFTGATE_REPLAY_RUNS");

class EngineReplay : public testing::TestWithParam<unsigned> {
  protected:
    RecordedWork work_{GetParam(), 40};
};

TEST_P(EngineReplay, EveryCrashLeavesAWholeState) {
    const std::vector<Operation>& operations = work_.files().operations();
    std::mt19937 random(GetParam());
    for (size_t count = 0; count <= operations.size(); ++count) {
        if (moreRuns == nullptr && random() % 4 != 0) continue;
        const Promise promise = promiseAfter(operations, count);
        for (const bool isKill : {true, false, false}) {
            SCOPED_TRACE(testing::Message() << "after " << count << (isKill ? ", kill" : ""));
            const Disk disk = work_.files().diskAfter(count, isKill ? nullptr : &random);
            RecordingFiles files(disk);
            const size_t least = isKill ? promise.returned : promise.synced;
            expectRecovery(files, work_.states(), least, promise.returned + 1);
            if (HasFatalFailure()) return;
            if (random() % 30 != 0) continue;
            // Power is lost again while the file is recovered.
            for (size_t again = 0; again <= files.operations().size(); ++again) {
                RecordingFiles second(files.diskAfter(again, &random));
                expectRecovery(second, work_.states(), promise.synced, promise.returned + 1);
                if (HasFatalFailure()) return;
            }
        }
    }
}

// Outside the moment in which pages are being brought over, who knows nothing of the log finds an
// earlier state in the file.
TEST_P(EngineReplay, TheFileAloneIsAWholeEarlierState) {
    const std::vector<Operation>& operations = work_.files().operations();
    const std::vector<bool> isDatabase = changesOfDatabase(operations);
    const auto writesDatabase = [&](size_t i) {
        return i < operations.size() && operations[i].kind == Kind::Write && isDatabase[i];
    };
    RecordingFiles::Bytes last;
    size_t reached = 0, states = 0;
    for (size_t count = 0; count <= operations.size(); ++count) {
        if (count > 0 && writesDatabase(count - 1) && writesDatabase(count)) continue;
        const Disk disk = work_.files().diskAfter(count, nullptr);
        if (disk.at(database) == last) continue;
        last = disk.at(database);
        const Database alone(std::make_unique<MemoryPageStore>(last, database));
        ASSERT_EQ(findingsIn(alone), "") << count;
        const DatabaseState found = stateOf(alone);
        while (reached < work_.states().size() && work_.states()[reached] != found)
            ++reached;
        ASSERT_LT(reached, work_.states().size()) << "no state that there was: " << count;
        ++states;
    }
    EXPECT_GT(states, 3u);
}

std::vector<unsigned> seeds() {
    std::vector<unsigned> seeds(moreRuns != nullptr ? size_t(std::max(1, std::atoi(moreRuns))) : 2);
    for (size_t i = 0; i < seeds.size(); ++i)
        seeds[i] = unsigned(i + 1);
    return seeds;
}

INSTANTIATE_TEST_SUITE_P(Runs, EngineReplay, testing::ValuesIn(seeds()));

class EngineFailures : public testing::TestWithParam<unsigned> {};

INSTANTIATE_TEST_SUITE_P(Runs, EngineFailures, testing::ValuesIn(seeds()));

// In a program's own eyes and in another's.
void expectState(const Session& session, const DatabaseState& expected) {
    ASSERT_EQ(findingsIn(*session.database), "");
    // A definition that has been read has the counter as it was then.
    DatabaseState own = stateOf(*session.database);
    for (auto& [name, table] : own.tables) {
        const auto found = expected.tables.find(name);
        if (found != expected.tables.end()) table.lastNumber = found->second.lastNumber;
    }
    ASSERT_EQ(differenceOf(own, expected), "");
    const Database other = Database::open(database, OpenMode::ReadOnly, session.options);
    ASSERT_EQ(differenceOf(stateOf(other), expected), "");
}

// Each change to the disk fails once. What could not be done has left no trace, and the same
// program tries again; after a sync that failed once it has opened the file anew.
TEST_P(EngineFailures, AFailingDiskNeverMixesStates) {
    bool failed = true;
    for (size_t failing = 0; failed; ++failing) {
        SCOPED_TRACE(failing);
        RecordingFiles files(startingDisk());
        Session session{database, optionsFor(files)};
        session.open();
        failed = false;
        size_t count = 0;
        files.onOperation = [&](const Operation& operation) {
            const bool canFail = operation.kind == Kind::Write || operation.kind == Kind::Sync ||
                                 operation.kind == Kind::Truncate;
            if (!canFail || count++ != failing) return;
            failed = true;
            throw Error(operation.kind == Kind::Sync ? DiskOrNetwork : DiskFull);
        };
        EngineWorkload workload(GetParam(), startingState());
        workload.stayOpen();
        for (int i = 0; i < 25; ++i) {
            const EngineWorkload before = workload;
            workload.plan();
            try {
                workload.perform(session);
            } catch (const Error& error) {
                ASSERT_TRUE(error.code() == DiskFull || error.code() == DiskOrNetwork)
                    << workload.planned() << error.what();
                while (session.database->transactionDepth() > 0)
                    session.database->rollbackTransaction();
                workload = before;
                expectState(session, workload.state());
                if (error.code() == DiskOrNetwork) session.open();
            }
        }
        expectState(session, workload.state());
        if (HasFatalFailure()) return;
    }
}

}  // namespace
}  // namespace sg::jet::test
