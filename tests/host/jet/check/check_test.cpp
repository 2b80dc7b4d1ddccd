#include "host/jet/check/check.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>

#include "host/jet/file_builder.h"
#include "host/jet/index/index_page.h"
#include "host/jet/index_test_files.h"
#include "real_data.h"

namespace sg::jet {
namespace {

std::vector<CheckFinding> check(const Bytes& bytes, size_t limit = 1000) {
    return checkDatabase(Database(std::make_unique<MemoryPageStore>(bytes, L"plan.mdb")), limit);
}

std::string listing(const std::vector<CheckFinding>& findings) {
    std::string text;
    for (const CheckFinding& finding : findings) {
        text += toUtf8(finding.table + L": " + finding.what);
        if (finding.page) text += " (page " + std::to_string(*finding.page) + ")";
        text += "\n";
    }
    return text;
}

bool has(const std::vector<CheckFinding>& findings, std::wstring_view words) {
    for (const CheckFinding& finding : findings) {
        if (finding.what.find(words) != std::wstring::npos) return true;
    }
    return false;
}

void put32(Bytes& bytes, size_t at, uint32_t value) {
    std::memcpy(&bytes[at], &value, sizeof value);
}

class CheckOf : public ::testing::TestWithParam<Version> {
  protected:
    size_t at(uint32_t page, size_t offset) const { return page * format_.pageSize + offset; }
    uint32_t definitionPage() const {
        return Database(std::make_unique<MemoryPageStore>(file_, L"plan.mdb"))
            .table(L"Rooms")
            .definition()
            .page;
    }

    Bytes file_ = test::sampleFile(GetParam());
    const Format& format_ = formatOf(GetParam());
};
INSTANTIATE_TEST_SUITE_P(Versions, CheckOf,
                         ::testing::Values(Version::Jet3, Version::Jet4, Version::Ace12));

// In the files that the builder lays out nothing counts rows, and the first map, which should have
// the free pages, is the catalog's own with its one page.
TEST_P(CheckOf, NothingElseIsFound) {
    Bytes counted = file_;
    put32(counted, at(pages::catalog, format_.table.rowCount), 4);
    put32(counted, at(definitionPage(), format_.table.rowCount), 3);
    EXPECT_EQ(listing(check(counted)), ": a page in use is marked as free (page 3)\n");
}

TEST_P(CheckOf, RowCountsAndOwners) {
    const uint32_t page = definitionPage();
    Bytes counted = file_;
    put32(counted, at(page, format_.table.rowCount), 7);
    EXPECT_TRUE(has(check(counted), L"3 rows and counts 7"));

    Bytes owned = file_;
    put32(owned, at(page + 1, format_.dataPage.owner), 2);
    EXPECT_TRUE(has(check(owned), L"belongs to another table"));

    Bytes notData = file_;
    notData[at(page + 1, 0)] = static_cast<uint8_t>(PageKind::UsageMap);
    EXPECT_FALSE(check(notData).empty());
}

TEST_P(CheckOf, FindingsEndAtTheLimit) {
    Bytes spoiled = file_;
    const uint32_t page = definitionPage();
    put32(spoiled, at(page, format_.table.rowCount), 7);
    put32(spoiled, at(page + 1, format_.dataPage.owner), 2);
    EXPECT_GE(check(spoiled).size(), 2u);
    EXPECT_EQ(check(spoiled, 1).size(), 1u);
    EXPECT_EQ(check(spoiled, 0).size(), 0u);
}

// --- files that other programs made, and one of them spoiled ---

Bytes contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

TEST(Check, RealFilesHaveNoFindings) {
    const auto files = sg::test::realDatabases();
    if (files.empty()) GTEST_SKIP() << "no real databases";
    for (const auto& file : files)
        EXPECT_EQ(listing(check(contentOf(file))), "") << file.filename();
}

TEST(Check, DamagedIndexesAreFound) {
    const auto path = sg::test::realData() / "mdb" / "indexTestV2000.mdb";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "no real databases";
    const Bytes sound = contentOf(path);
    const Database db(std::make_unique<MemoryPageStore>(sound, L"plan.mdb"));
    const Format& format = db.store().format();
    const TableDefinition& table = db.table(L"Table1").definition();
    const uint32_t root = table.realIndexes.at(0).rootPage;
    const IndexPage page = IndexPage::read(db.store(), root);
    ASSERT_TRUE(page.isLeaf() && !page.empty());
    const size_t start = root * format.pageSize;
    const size_t entry = start + format.indexPage.entries;
    const size_t entryEnd = entry + page.after(0);

    struct Case {
        const char* name;
        std::function<void(Bytes&)> spoil;
        std::wstring_view finding;
    };
    const Case cases[] = {
        {"key", [&](Bytes& b) { b[entry + 1] ^= 1; }, L"key is not that of its row"},
        {"row", [&](Bytes& b) { b[entryEnd - 1] = 0xFA; }, L"points at no row"},
        {"page of the row", [&](Bytes& b) { b[entryEnd - 4] = 0xFA; }, L"points at no row"},
        {"owner", [&](Bytes& b) { put32(b, start + format.indexPage.owner, 2); },
         L"a page of another table"},
        {"next", [&](Bytes& b) { put32(b, start + format.indexPage.next, root); },
         L"neighbour behind it"},
        {"previous", [&](Bytes& b) { put32(b, start + format.indexPage.previous, root); },
         L"does not follow the tree"},
        {"kind", [&](Bytes& b) { b[start] = static_cast<uint8_t>(PageKind::IndexNode); }, L""},
        {"last entry lost",
         [&](Bytes& b) {
             const size_t bit = page.end();
             b[start + format.indexPage.entryMask + bit / 8] &= uint8_t(~(1u << bit % 8));
         },
         L"entries for"},
    };
    for (const Case& c : cases) {
        Bytes spoiled = sound;
        c.spoil(spoiled);
        const auto findings = check(spoiled);
        EXPECT_FALSE(findings.empty()) << c.name;
        EXPECT_TRUE(has(findings, c.finding)) << c.name << "\n" << listing(findings);
    }
}

}  // namespace
}  // namespace sg::jet
