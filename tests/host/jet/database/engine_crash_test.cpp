#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "host/jet/child_process.h"
#include "host/jet/deadly_files.h"
#include "host/jet/engine_workload.h"
#include "host/jet/file_content.h"
#include "host/system/temporary_folder.h"

// Programs that work on a database and are killed at random points. Each tells of every operation
// that has returned.
namespace sg::jet::test {
namespace {

constexpr int64_t failed = -1;

int crashRuns() {
    const char* more = std::getenv("SWIFTGATE_CRASH_RUNS");
    return more != nullptr ? std::max(1, std::atoi(more)) : 20;
}

// Some processor time, for the kill to come anywhere between two reports.
void idle(unsigned steps) {
    for (unsigned i = 0; i < steps; ++i) {
        std::atomic_signal_fence(std::memory_order_seq_cst);
    }
}

StorageOptions busyOptions() {
    StorageOptions options;
    // Transactions go to the log early.
    options.transactionBytes = 64 * 1024;
    options.writerPatience = std::chrono::seconds(60);
    return options;
}

class EngineCrash : public FolderTest {
  protected:
    EngineCrash() {
        makeEngineFile(session_);
        state_ = stateOf(Database::openReadOnly(session_.path));
    }

    // So many operations, the closing, and the end.
    void work(unsigned seed, int operations, const ChildProcess::Parent& parent) {
        EngineWorkload workload(seed, state_);
        try {
            session_.open();
            for (int i = 1; i <= operations; ++i) {
                workload.plan();
                workload.perform(session_);
                parent.tell(i);
            }
            session_.close();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s: %s\n", workload.planned().c_str(), error.what());
            parent.tell(failed);
        }
    }

    // Hears all up to the child's end.
    static int64_t lastTold(const ChildProcess& child, int64_t told) {
        for (int64_t next; (next = child.hear()) != ChildProcess::none;) {
            EXPECT_NE(next, failed);
            told = next;
        }
        return told;
    }

    // Kills a program that only opens the file, which completes what the last one left.
    void killRecovery() {
        ChildProcess child([&](const ChildProcess::Parent&) {
            session_.open();
            session_.close();
        });
        idle(random_() % 3'000'000);
        child.kill();
    }

    // All of the operations that were told of, and the next one or not. Takes what was found.
    void expectStates(unsigned seed, int64_t told, int operations) {
        EngineWorkload workload(seed, state_);
        for (int64_t i = 0; i < told; ++i)
            workload.plan();
        const DatabaseState before = workload.state();
        if (told < operations) workload.plan();

        Session session{path("plan.mdb")};
        // Every other time somebody only reads at first.
        session.mode = seed % 2 == 0 ? OpenMode::Shared : OpenMode::ReadOnly;
        session.open();
        ASSERT_EQ(session.database->storage()->unrelatedLog(), L"");
        ASSERT_EQ(findingsIn(*session.database), "");
        state_ = stateOf(*session.database);
        if (state_ != workload.state()) {
            ASSERT_EQ(differenceOf(state_, before), "")
                << "or: " << workload.planned() << ": " << differenceOf(state_, workload.state());
        }
        ASSERT_EQ(missingInIndexes(*session.database, state_), "");
        session.close();
        ASSERT_FALSE(exists("plan.mdb-log"));
        ASSERT_FALSE(exists("plan.mdb-share"));
        const Database alone(std::make_unique<FileContent>(session.path));
        ASSERT_EQ(differenceOf(stateOf(alone), state_), "");
    }

    Session session_{path("plan.mdb"), busyOptions()};
    DatabaseState state_;
    std::mt19937 random_{3};
};

TEST_F(EngineCrash, WhatWasToldIsThereWhole) {
    for (int run = 0; run < crashRuns(); ++run) {
        SCOPED_TRACE(run);
        const auto seed = unsigned(run);
        // Checkpoints come all the time, so that kills meet them, or hardly, so that there is
        // something to recover.
        const bool isHasty = run % 3 != 1;
        session_.options.checkpointDelay = std::chrono::milliseconds(isHasty ? 1 : 100);
        session_.options.logLimit = isHasty ? 200'000 : uint64_t(256) << 20;
        // Some end by themselves, so that kills meet the closing, and some hardly begin.
        const int operations = run % 3 == 0 ? int(random_() % 12) : 1000;
        const int64_t heard = std::min<int64_t>(operations, random_() % 30);
        int64_t told = 0;
        {
            ChildProcess child(
                [&](const ChildProcess::Parent& parent) { work(seed, operations, parent); });
            while (told < heard) {
                told = child.hear();
                ASSERT_GT(told, 0);
            }
            idle(random_() % (run % 2 == 0 ? 200'000 : 4'000'000));
            child.kill();
            told = lastTold(child, told);
        }
        for (size_t again = random_() % 3; again > 0; --again)
            killRecovery();
        expectStates(seed, told, operations);
        if (HasFailure()) return;
    }
}

// The kill comes at a change to one of the files, a checkpoint's writes among them.
TEST_F(EngineCrash, AtAnyChangeToAFile) {
    for (int run = 0; run < crashRuns(); ++run) {
        SCOPED_TRACE(run);
        const auto seed = unsigned(1000 + run);
        const int operations = 1 + int(random_() % 20);
        int64_t told = 0;
        {
            const int moments = int(random_() % unsigned(operations * 12));
            ChildProcess child([&](const ChildProcess::Parent& parent) {
                DeadlyFiles files(moments);
                session_.options.files = &files;
                work(seed, operations, parent);
            });
            told = lastTold(child, 0);
        }
        for (size_t again = random_() % 3; again > 0; --again) {
            const int moments = int(random_() % 24);
            ChildProcess child([&](const ChildProcess::Parent&) {
                DeadlyFiles files(moments);
                session_.options.files = &files;
                session_.open();
                session_.close();
            });
            child.finish();
        }
        expectStates(seed, told, operations);
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace sg::jet::test
