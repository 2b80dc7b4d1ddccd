#include "host/jet/storage/page_log.h"

#include <gtest/gtest.h>

#include <random>

#include "host/jet/recording_files.h"
#include "host/jet/storage/page_cache.h"
#include "host/jet/storage_files.h"

namespace sg::jet {
namespace {

TEST(LogFormat, DeltasLeadFromOnePageToTheOther) {
    struct Case {
        const char* name;
        std::vector<size_t> changed;
        size_t size;  // of the delta
    };
    for (const Case& c : {Case{"nothing", {}, 0}, Case{"one byte", {77}, 4 + 8},
                          Case{"the ends", {0, 4095}, 2 * (4 + 8)},
                          Case{"words beside each other", {8, 16}, 4 + 16},
                          Case{"with a word between", {8, 24}, 4 + 24},
                          Case{"with two between", {8, 32}, 2 * (4 + 8)}}) {
        SCOPED_TRACE(c.name);
        const Bytes before = filledPage(9, 1);
        Bytes after = before;
        for (const size_t at : c.changed) {
            after[at] ^= 0xff;
        }
        Bytes delta{1, 2, 3};
        ASSERT_TRUE(log::appendDelta(delta, before, after, 100));
        EXPECT_EQ(delta.size(), 3 + c.size);
        Bytes page = before;
        ASSERT_TRUE(log::applyDelta(page, ByteView(delta).from(3)));
        EXPECT_EQ(page, after);
        if (c.size > 0) {
            EXPECT_FALSE(log::appendDelta(delta, before, after, c.size - 1));
            EXPECT_EQ(delta.size(), 3 + c.size);
        }
    }
}

TEST(LogFormat, DamagedDeltasAreRefused) {
    Bytes page(2048);
    for (const Bytes& delta : {Bytes{0}, Bytes{0, 0, 1}, Bytes{0, 0, 1, 0}, Bytes{0xff, 0xff, 0, 0},
                               Bytes{0xff, 7, 2, 0, 1, 1}, Bytes{0, 0, 0xff, 0xff, 1}}) {
        EXPECT_FALSE(log::applyDelta(page, {delta.data(), delta.size()}));
    }
}

TEST(LogFormat, ChecksumsTellBytesLengthsAndSeedsApart) {
    std::mt19937_64 random(3);
    Bytes bytes(100);
    for (uint8_t& byte : bytes) {
        byte = uint8_t(random());
    }
    std::vector<uint64_t> seen;
    for (size_t size = 0; size <= bytes.size(); ++size) {
        seen.push_back(log::checksum(0, {bytes.data(), size}));
        seen.push_back(log::checksum(1, {bytes.data(), size}));
    }
    Bytes zeros(200);
    for (size_t size = 1; size <= zeros.size(); ++size) {
        seen.push_back(log::checksum(0, {zeros.data(), size}));
    }
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        bytes[bit / 8] ^= uint8_t(1 << bit % 8);
        seen.push_back(log::checksum(0, bytes));
        bytes[bit / 8] ^= uint8_t(1 << bit % 8);
    }
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(std::adjacent_find(seen.begin(), seen.end()), seen.end());
}

class PageLogTest : public testing::Test {
  protected:
    PageLogTest() {
        writer_.restart(2, 5, 0, 10);
        reader_.restart(2, 5, 0, 10);
        block_.generation = 2;
    }
    void commit(uint32_t page, const Bytes& before, const Bytes& after) {
        LogAppender appender(*file_, writer_);
        appender.add(page, after, before, 0);
        appender.commit(10);
        writer_.adopt(appender, 10);
    }
    Bytes load(const PageLog& log, uint32_t page, uint64_t sequence) {
        Bytes bytes(testPageSize);
        if (!log.load(page, sequence, block_, bytes)) bytes.clear();
        return bytes;
    }

    RecordingFiles files_{{}};
    std::unique_ptr<File> file_ = files_.open(L"log", FileAccess::ReadWriteOrCreate);
    PageLog writer_{*file_, testPageSize}, reader_{*file_, testPageSize};
    SharedBlock block_{};
};

// Small changes become deltas, but never so many that a page is slow to put together.
TEST_F(PageLogTest, EveryVersionCanBeReadByTheWriterAndByOthers) {
    std::vector<Bytes> versions{filledPage(4, 0)};
    int mostDeltas = 0;
    for (int i = 1; i <= 50; ++i) {
        Bytes next = versions.back();
        next[size_t(i) * 50] ^= 1;
        commit(4, versions.back(), next);
        versions.push_back(next);
        mostDeltas = std::max(mostDeltas, writer_.deltasOf(4));
    }
    EXPECT_EQ(mostDeltas, int(log::maxDeltas));
    EXPECT_LT(file_->size(), 6 * testPageSize);
    std::vector<log::Entry> entries;
    while (reader_.advance(UINT64_MAX, true, entries)) {
    }
    EXPECT_EQ(reader_.sequence(), 50u);
    EXPECT_EQ(reader_.end(), writer_.end());
    EXPECT_EQ(reader_.chain(), writer_.chain());
    EXPECT_TRUE(load(reader_, 4, 0).empty());
    for (uint64_t sequence = 1; sequence <= 50; ++sequence) {
        EXPECT_EQ(load(reader_, 4, sequence), versions[sequence]);
        EXPECT_EQ(load(writer_, 4, sequence), versions[sequence]);
    }
    EXPECT_EQ(reader_.pagesChanged(49, 50), std::vector<uint32_t>{4});
    EXPECT_TRUE(reader_.pagesChanged(50, 60).empty());
    EXPECT_TRUE(load(reader_, 3, 50).empty());
}

// Nobody needs the versions before a state, so they do not pile up.
TEST_F(PageLogTest, VersionsThatNobodyNeedsGo) {
    const Bytes one = filledPage(4, 1), two = filledPage(4, 2);
    for (int i = 0; i < 200; ++i) {
        writer_.setNeeded(writer_.sequence());
        commit(4, {}, i % 2 == 0 ? one : two);
    }
    EXPECT_TRUE(load(writer_, 4, 100).empty());
    EXPECT_EQ(load(writer_, 4, 200), two);
    EXPECT_EQ(load(writer_, 4, 199), one);
}

// The remains of a transaction that was given up never become part of the next one.
TEST_F(PageLogTest, RemainsDoNotCount) {
    {
        LogAppender appender(*file_, writer_);
        for (uint32_t page = 1; page <= 3; ++page) {
            appender.add(page, filledPage(page, 66), {}, 0);
            appender.flush();
        }
    }
    commit(1, {}, filledPage(1, 5));
    std::vector<log::Entry> entries;
    EXPECT_TRUE(reader_.advance(UINT64_MAX, true, entries));
    EXPECT_FALSE(reader_.advance(UINT64_MAX, true, entries));
    EXPECT_EQ(load(reader_, 1, 9), filledPage(1, 5));
    EXPECT_TRUE(load(reader_, 2, 9).empty());
}

TEST_F(PageLogTest, AResetEndsItsVersions) {
    commit(1, {}, filledPage(1, 5));
    EXPECT_EQ(load(writer_, 1, 1), filledPage(1, 5));
    block_.generation = 3;
    block_.committed = 1;
    block_.pageCount = 10;
    EXPECT_TRUE(load(writer_, 1, 1).empty());
    LogChanges changes;
    reader_.refresh(block_, changes);  // it had not seen the commit
    EXPECT_TRUE(changes.everything);
    writer_.refresh(block_, changes = {});
    EXPECT_FALSE(changes.everything);
    block_.generation = 4;
    block_.committed = 2;  // of which the log has nothing
    block_.salt = 6;
    block_.baseSequence = 1;
    block_.basePages = 10;
    EXPECT_EQ(codeOf([&] { reader_.refresh(block_, changes); }), Damaged);
}

TEST(PageCacheTest, KeepsWhatIsUsed) {
    PageCache cache(testPageSize, 20 * testPageSize);
    EXPECT_EQ(cache.find(5), nullptr);
    for (uint32_t page = 0; page < 1000; ++page) {
        cache.put(FrameHandle::make(page * 7, testPageSize));
        if (page > 0) {
            ASSERT_NE(cache.find(0), nullptr) << page;
        }
        ASSERT_LE(cache.size(), 20u);
    }
    const FrameHandle other = FrameHandle::make(0, testPageSize);
    cache.put(other);
    EXPECT_EQ(cache.find(0), other.get());
    EXPECT_TRUE(other.isShared());
    cache.drop(0);
    cache.drop(123456);
    EXPECT_EQ(cache.find(0), nullptr);
    EXPECT_FALSE(other.isShared());
    EXPECT_EQ(cache.size(), 19u);
    cache.clear();
    EXPECT_EQ(cache.size(), 0u);
    EXPECT_EQ(cache.find(7 * 999), nullptr);
}

}  // namespace
}  // namespace sg::jet
