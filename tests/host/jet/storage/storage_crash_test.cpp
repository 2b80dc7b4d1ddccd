#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>

#include "host/jet/child_process.h"
#include "host/jet/file_content.h"
#include "host/jet/storage/storage.h"
#include "host/jet/storage/write_transaction.h"
#include "host/jet/storage_files.h"
#include "host/system/temporary_folder.h"

// Writers that are killed at random points. Each writes its numbers into a group of pages, all in
// one transaction, and reports a number when commit() has returned.
namespace sg::jet {
namespace {

constexpr uint32_t groupPages = 4;
constexpr uint32_t firstGroup = 3;

void putNumber(std::span<uint8_t> page, uint32_t number) {
    for (const size_t at : {size_t(32), size_t(1000), size_t(2040), size_t(4000)}) {
        std::memcpy(page.data() + at, &number, sizeof number);
    }
}

// -1 when the places of the page have different numbers.
int64_t numberOn(const PageRef& page) {
    const uint32_t number = page->get32(32);
    for (const size_t at : {size_t(1000), size_t(2040), size_t(4000)}) {
        if (page->get32(at) != number) return -1;
    }
    return number;
}

int64_t groupNumber(const PageStore& store, uint32_t group) {
    const uint32_t first = firstGroup + group * groupPages;
    const int64_t number = numberOn(store.read(first));
    for (uint32_t page = first; page < first + groupPages; ++page) {
        if (numberOn(store.read(page)) != number) return -1;
    }
    return number;
}

void writeNumbers(const std::wstring& path, uint32_t group, const ChildProcess::Parent& parent) {
    StorageOptions options;
    // Checkpoints come all the time, so that kills meet them.
    options.checkpointDelay = std::chrono::milliseconds(1);
    options.logLimit = 200'000;
    options.transactionBytes = 2 * testPageSize;
    options.writerPatience = std::chrono::seconds(60);
    const auto storage = Storage::open(path, OpenMode::Shared, options);
    for (auto number = uint32_t(groupNumber(*storage, group)) + 1;; ++number) {
        const auto transaction = storage->beginWrite();
        const uint32_t first = firstGroup + group * groupPages;
        for (uint32_t page = first; page < first + groupPages; ++page) {
            const auto savepoint = transaction->savepoint();
            putNumber(transaction->write(page), number);
            transaction->release(savepoint);
        }
        if (number % 16 == 0) {
            const uint32_t grown = transaction->grow();
            const Bytes content = filledPage(grown, number);
            std::copy(content.begin(), content.end(), transaction->write(grown).begin());
        }
        transaction->commit();
        parent.tell(number);
    }
}

void checkGrownPages(const Storage& storage, uint32_t groups) {
    for (uint32_t page = firstGroup + groups * groupPages; page < storage.pageCount(); ++page) {
        ASSERT_GE(numberIn(storage.read(page)), 0) << page;
    }
}

int crashRuns() {
    const char* more = std::getenv("SWIFTGATE_CRASH_RUNS");
    return more != nullptr ? std::max(1, std::atoi(more)) : 40;
}

// Some processor time, for the kill to come anywhere between two reports.
void idle(unsigned steps) {
    for (unsigned i = 0; i < steps; ++i) {
        std::atomic_signal_fence(std::memory_order_seq_cst);
    }
}

class StorageCrash : public FolderTest {
  protected:
    void makeDatabase(uint32_t groups) {
        Bytes bytes = testDatabase(firstGroup + groups * groupPages);
        for (uint32_t page = firstGroup; page < firstGroup + groups * groupPages; ++page) {
            putNumber({bytes.data() + page * testPageSize, testPageSize}, 0);
        }
        posixFiles().open(path("plan.mdb"), FileAccess::CreateNew)->write(0, bytes);
    }
    // Reads reports until the child's end.
    static int64_t lastReport(const ChildProcess& child, int64_t last) {
        for (int64_t heard; (heard = child.hear()) != ChildProcess::none;) {
            last = heard;
        }
        return last;
    }

    std::mt19937 random_{7};
};

TEST_F(StorageCrash, WhatWasReportedIsThereWhole) {
    makeDatabase(1);
    int64_t last = 0;
    for (int run = 0; run < crashRuns(); ++run) {
        SCOPED_TRACE(run);
        {
            ChildProcess writer([&](const ChildProcess::Parent& parent) {
                writeNumbers(path("plan.mdb"), 0, parent);
            });
            const size_t reports = random_() % 400;
            for (size_t i = 0; i < reports; ++i) {
                const int64_t heard = writer.hear();
                ASSERT_NE(heard, ChildProcess::none);
                last = heard;
            }
            idle(random_() % 100'000);
            writer.kill();
            last = lastReport(writer, last);
        }
        // Every other time somebody only reads at first, or writes at once.
        const OpenMode mode = run % 2 == 0 ? OpenMode::Shared : OpenMode::ReadOnly;
        const auto storage = Storage::open(path("plan.mdb"), mode);
        ASSERT_EQ(storage->unrelatedLog(), L"");
        const int64_t found = groupNumber(*storage, 0);
        ASSERT_GE(found, last);
        ASSERT_LE(found, last + 1);
        last = found;
        checkGrownPages(*storage, 1);
        storage->close();
        ASSERT_FALSE(std::filesystem::exists(folder_ / "plan.mdb-log"));
        ASSERT_FALSE(std::filesystem::exists(folder_ / "plan.mdb-share"));
        const auto alone = std::make_unique<test::FileContent>(path("plan.mdb"));
        ASSERT_EQ(groupNumber(*alone, 0), found);
    }
}

TEST_F(StorageCrash, TheOthersGoOn) {
    makeDatabase(2);
    const auto storage = Storage::open(path("plan.mdb"), OpenMode::Shared,
                                       {.checkpointDelay = std::chrono::milliseconds(0)});
    int64_t last[2] = {0, 0};
    for (int run = 0; run < crashRuns() / 4 + 1; ++run) {
        SCOPED_TRACE(run);
        ChildProcess one(
            [&](const ChildProcess::Parent& parent) { writeNumbers(path("plan.mdb"), 0, parent); });
        ChildProcess two(
            [&](const ChildProcess::Parent& parent) { writeNumbers(path("plan.mdb"), 1, parent); });
        const size_t reports = 1 + random_() % 50;
        for (size_t i = 0; i < reports; ++i) {
            ASSERT_NE(last[0] = one.hear(), ChildProcess::none);
        }
        one.kill();
        last[0] = lastReport(one, last[0]);
        const int64_t found = groupNumber(*storage, 0);
        ASSERT_GE(found, last[0]);
        ASSERT_LE(found, last[0] + 1);
        for (size_t i = 0; i < reports; ++i) {
            ASSERT_NE(last[1] = two.hear(), ChildProcess::none);
        }
        two.kill();
        last[1] = lastReport(two, last[1]);
        ASSERT_EQ(groupNumber(*storage, 0), found);
        ASSERT_GE(groupNumber(*storage, 1), last[1]);
        ASSERT_LE(groupNumber(*storage, 1), last[1] + 1);
        checkGrownPages(*storage, 2);
    }
    EXPECT_TRUE(storage->checkpoint());
}

}  // namespace
}  // namespace sg::jet
