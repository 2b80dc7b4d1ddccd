#include "host/jet/storage/page_store.h"
#include "host/jet/storage/storage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "base/encoding.h"
#include "host/jet/file_builder.h"
#include "host/jet/format/error.h"

namespace sg::jet {
namespace {

template <class Work>
int codeOf(Work work) {
    try {
        work();
    } catch (const Error& error) {
        return error.code();
    }
    return 0;
}

class PageStoreTest : public testing::Test {
  protected:
    ~PageStoreTest() override { std::filesystem::remove(path_); }

    std::wstring write(const Bytes& bytes) {
        std::ofstream(path_, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return fromUtf8(path_);
    }

    std::string path_ = testing::TempDir() + "page_store_test_" +
                        testing::UnitTest::GetInstance()->current_test_info()->name() + ".mdb";
};

TEST(JetFormatTest, TheFirstBytesTellTheVersion) {
    const Bytes jet = test::sampleFile(Version::Jet4);
    struct Case {
        const char* what;
        size_t size;
        size_t at;
        uint8_t byte;
        int code;
    };
    const Case cases[] = {
        {"whole", 21, 0, 0, 0},
        {"cut before the version", 20, 0, 0, CannotOpenDatabase},
        {"cut in the signature", 7, 0, 0, CannotOpenDatabase},
        {"empty", 0, 0, 0, UnrecognizedFormat},
        {"another first byte", 21, 0, 'P', UnrecognizedFormat},
        {"another engine", 21, 13, 'X', UnrecognizedFormat},
        {"the newest version", 21, 0x14, 6, 0},
        {"a version too new", 21, 0x14, 7, UnrecognizedFormat},
    };
    for (const Case& c : cases) {
        Bytes start(jet.begin(), jet.begin() + static_cast<ptrdiff_t>(c.size));
        if (c.at < start.size()) {
            start[c.at] = c.byte;
        }
        EXPECT_EQ(codeOf([&] {
                      identifyFormat({start.data(), start.size()}, L"f");
                  }),
                  c.code)
            << c.what;
    }
}

TEST_F(PageStoreTest, CountsWholePagesAndReadsNoOther) {
    Bytes bytes = test::sampleFile(Version::Jet4);
    const auto pages = static_cast<uint32_t>(bytes.size() / 4096);
    bytes.resize(bytes.size() + 100);
    const auto file = Storage::open(write(bytes), OpenMode::ReadOnly);
    const MemoryPageStore memory(bytes, L"memory");
    for (const PageStore* store :
         {static_cast<const PageStore*>(file.get()), static_cast<const PageStore*>(&memory)}) {
        EXPECT_EQ(store->pageCount(), pages);
        EXPECT_EQ(store->read(2)->get8(0), 2);
        EXPECT_EQ(codeOf([&] { store->read(pages); }), Damaged);
        EXPECT_EQ(codeOf([&] { store->read(2, PageKind::Data); }), Damaged);
    }
}

TEST_F(PageStoreTest, TooFewPagesAreNoDatabase) {
    Bytes bytes = test::sampleFile(Version::Jet3);
    bytes.resize(3 * 2048 - 1);
    const std::wstring path = write(bytes);
    EXPECT_EQ(codeOf([&] { Storage::open(path, OpenMode::ReadOnly); }), CannotOpenDatabase);
    EXPECT_EQ(codeOf([&] { Storage::open(path + L"x", OpenMode::ReadOnly); }), FileNotFound);
    EXPECT_EQ(codeOf([&] { Storage::open(fromUtf8(testing::TempDir()), OpenMode::ReadOnly); }),
              CannotOpenFile);
    EXPECT_EQ(codeOf([&] { Storage::open(std::wstring(5000, L'x'), OpenMode::ReadOnly); }),
              InvalidPath);
}

TEST_F(PageStoreTest, TheCacheStaysWithinItsLimitAndHeldPagesKeepTheirBytes) {
    test::FileBuilder builder(Version::Jet3);
    for (uint8_t i = 0; i < 60; ++i) {
        builder.page(builder.addDataPage(0))[100] = i;
    }
    StorageOptions options;
    options.cacheBytes = 20 * 2048;
    const auto store = Storage::open(write(builder.bytes()), OpenMode::ReadOnly, options);
    const PageRef held = store->read(4);
    PageRef copy = held;
    for (int round = 0; round < 3; ++round) {
        for (uint32_t page = 4; page < store->pageCount(); ++page) {
            EXPECT_EQ(store->read(page)->get8(100), page - 4);
            EXPECT_LE(store->cachedPages(), 20u);
        }
    }
    EXPECT_EQ(held->get8(100), 0);
    copy = store->read(5);
    EXPECT_EQ(copy->get8(100), 1);
}

TEST_F(PageStoreTest, AFileThatShrinksIsADiskError) {
    const auto store = Storage::open(write(test::sampleFile(Version::Jet4)), OpenMode::ReadOnly);
    std::filesystem::resize_file(path_, 2 * 4096);
    EXPECT_EQ(codeOf([&] { store->read(3); }), DiskOrNetwork);
}

TEST(ByteViewTest, NothingIsReadBeyondTheEnd) {
    const uint8_t bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const ByteView view(bytes, sizeof bytes);
    EXPECT_EQ(view.get16(6), 0x0807);
    EXPECT_EQ(view.get24(5), 0x080706u);
    EXPECT_EQ(view.get32(4), 0x08070605u);
    EXPECT_EQ(view.get24Big(0), 0x010203u);
    EXPECT_EQ(view.get32Big(4), 0x05060708u);
    EXPECT_EQ(view.from(8).size(), 0u);
    EXPECT_EQ(view.sub(8, 0).size(), 0u);
    const std::function<void()> reads[] = {
        [&] { view.get8(8); },          [&] { view.get16(7); },
        [&] { view.get24(6); },         [&] { view.get32(5); },
        [&] { view.get64(1); },         [&] { view.get32Big(5); },
        [&] { view.get8(SIZE_MAX); },   [&] { view.get32(SIZE_MAX - 1); },
        [&] { view.sub(4, SIZE_MAX); }, [&] { view.from(9); },
    };
    for (const auto& read : reads) {
        EXPECT_EQ(codeOf(read), Damaged);
    }
}

}  // namespace
}  // namespace sg::jet
