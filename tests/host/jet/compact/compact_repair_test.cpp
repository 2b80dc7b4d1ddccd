// What a compaction saves of damaged files, and what it says of the rest.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>

#include "host/jet/compact/compact.h"
#include "host/jet/compact_files.h"
#include "host/jet/file_builder.h"
#include "host/jet/file_content.h"
#include "host/jet/values/text_codec.h"
#include "real_data.h"

namespace sg::jet::test {
namespace {

constexpr size_t pageSize = 4096;
constexpr int roomCount = 300;
constexpr int doorCount = 40;

void put32(Bytes& bytes, size_t at, uint32_t value) {
    std::memcpy(&bytes[at], &value, sizeof value);
}

Bytes wide(const std::wstring& text) {
    Bytes bytes;
    encodeText(text, false, bytes);
    return bytes;
}

class CompactRepairTest : public CompactTest {
  protected:
    // Rooms on several pages, doors that refer to them, a query and a description.
    void SetUp() override {
        create();
        ColumnDesign name = textColumn(L"Name", 50);
        name.compressed = false;
        createTable(
            db(), tableOf(L"Rooms",
                          {longColumn(L"Id", true), name, columnOfType(L"Notes", ColumnType::Memo)},
                          {primaryOver({L"Id"}), indexOver(L"ByName", {L"Name"}, true)}));
        createTable(db(), tableOf(L"Doors", {longColumn(L"Room"), textColumn(L"Kind")}));
        createTable(db(), tableOf(L"Halls", {longColumn(L"Id"), textColumn(L"Name")}));
        createRelation(db(), {L"RoomDoors", L"Rooms", L"Doors", 0, {{L"Id", L"Room"}}});
        putQuery(db(), L"All", 0, {});
        setProperty(db(), L"Rooms", {},
                    {L"Description", ColumnType::Text, false, std::wstring(L"where one lives")});
        db().beginTransaction();
        for (int i = 1; i <= roomCount; ++i) {
            insert(L"Rooms",
                   {int32_t(i), roomName(i), std::wstring(i % 50 == 0 ? 5000 : 10, L'n')});
        }
        for (int i = 1; i <= doorCount; ++i)
            insert(L"Doors", {int32_t(i), std::wstring(L"oak")});
        insert(L"Halls", {int32_t(1), std::wstring(L"Great")});
        db().commitTransaction();
        close();
        reload();
    }
    void reload() {
        bytes_ = readFile(path("test.mdb"));
        const Database db = Database::openReadOnly(path("test.mdb"));
        rooms_ = db.table(L"Rooms").definition();
        doors_ = db.table(L"Doors").definition();
        roomPages_ = UsageMap::read(db.store(), rooms_.ownedPages).pages();
    }
    static std::wstring roomName(int i) { return L"Room number " + std::to_wstring(i); }

    size_t at(uint32_t page, size_t offset = 0) const { return page * pageSize + offset; }
    // The bytes of a row that a usage map is.
    size_t mapAt(RowId map) const {
        const Database db = Database::openReadOnly(path("test.mdb"));
        const DataPage page(db.store(), map.page);
        return at(map.page,
                  static_cast<size_t>(page.rowBytes(map.row).data() - page.bytes().data()));
    }
    void replace(const Bytes& from, const Bytes& to) {
        const auto found = std::search(bytes_.begin(), bytes_.end(), from.begin(), from.end());
        ASSERT_NE(found, bytes_.end());
        std::copy(to.begin(), to.end(), found);
    }

    // The damaged file, repaired; what came of it is sound and in made_.
    CompactReport repair() {
        made_.reset();
        std::filesystem::remove(folder_ / "made.mdb");
        write("bad.mdb", std::string(bytes_.begin(), bytes_.end()));
        CompactOptions options;
        options.repair = true;
        const CompactReport report = compactDatabase(path("bad.mdb"), path("made.mdb"), options);
        made_.reset(new Database(Database::openReadOnly(path("made.mdb"))));
        expectNothingFound(*made_, "made.mdb");
        return report;
    }
    // What stops a compaction that is no repair; it leaves no file.
    int refusal() {
        write("bad.mdb", std::string(bytes_.begin(), bytes_.end()));
        const int code =
            thrownBy([&] { compactDatabase(path("bad.mdb"), path("refused.mdb")); }).code;
        EXPECT_EQ(files().count("refused.mdb") + files().count("refused.mdb-compact"), 0u);
        return code;
    }
    size_t rowsOf(std::wstring_view table) const {
        return made_->object(table, ObjectType::Table) ? made_->table(table).rowCount() : 0;
    }

    Bytes bytes_;
    TableDefinition rooms_, doors_;
    std::vector<uint32_t> roomPages_;
    std::unique_ptr<Database> made_;
};

TEST_F(CompactRepairTest, ASoundFileLosesNothing) {
    EXPECT_EQ(listing(repair().losses), "");
    expectSame(Database::openReadOnly(path("test.mdb")), *made_, "sound");
    made_.reset();
    for (const auto& file : sg::test::realDatabases()) {
        const std::wstring source = copied(file, "source");
        std::filesystem::remove(folder_ / "made.mdb");
        CompactOptions options;
        options.repair = true;
        const CompactReport report = compactDatabase(source, path("made.mdb"), options);
        const bool isAce = Database::openReadOnly(source).store().format().isAce();
        EXPECT_EQ(report.losses.size(), isAce ? 2u : 0u) << listing(report.losses);
        expectSame(Database::openReadOnly(source), Database::openReadOnly(path("made.mdb")),
                   file.string());
    }
}

TEST_F(CompactRepairTest, ADefinitionThatIsDamagedCostsItsTable) {
    bytes_[at(doors_.page)] = 0xee;
    EXPECT_EQ(refusal(), Damaged);
    const CompactReport report = repair();
    EXPECT_TRUE(tells(report, L"table Doors")) << listing(report.losses);
    EXPECT_TRUE(tells(report, L"relation RoomDoors")) << listing(report.losses);
    EXPECT_EQ(rowsOf(L"Rooms"), size_t(roomCount));
    EXPECT_EQ(made_->object(L"Doors", ObjectType::Table), nullptr);
    EXPECT_TRUE(made_->relations().empty());
    EXPECT_EQ(made_->object(L"RoomDoors", ObjectType::Relation), nullptr);
    EXPECT_EQ(made_->tableProperties(L"Rooms").text({}, L"Description"), L"where one lives");
}

TEST_F(CompactRepairTest, PagesAndRowsThatAreDamagedAreLeftOut) {
    ASSERT_GT(roomPages_.size(), 3u);
    bytes_[at(roomPages_[1])] = 0xff;
    EXPECT_EQ(refusal(), Damaged);
    CompactReport report = repair();
    EXPECT_TRUE(tells(report, L"page " + std::to_wstring(roomPages_[1]))) << listing(report.losses);
    const size_t left = rowsOf(L"Rooms");
    EXPECT_LT(left, size_t(roomCount));
    EXPECT_GT(left, size_t(roomCount) / 2);

    reload();
    bytes_[at(roomPages_[1], 14 + 2 * 2)] = 0xff;  // where a row begins, and the next one ends
    bytes_[at(roomPages_[1], 14 + 2 * 2 + 1)] = 0x1f;
    EXPECT_EQ(refusal(), Damaged);
    report = repair();
    EXPECT_EQ(rowsOf(L"Rooms"), size_t(roomCount) - 2) << listing(report.losses);

    reload();
    put32(bytes_, at(roomPages_[1], 4), 0x123456);  // the owner
    report = repair();
    EXPECT_TRUE(tells(
        report, L"page " + std::to_wstring(roomPages_[1]) + L": the page names another owner"))
        << listing(report.losses);
    EXPECT_EQ(rowsOf(L"Rooms"), left);
}

TEST_F(CompactRepairTest, RowsThatTheMapHasLostAreFound) {
    const size_t map = mapAt(rooms_.ownedPages);
    bytes_[map] = 0x77;  // its kind
    EXPECT_EQ(refusal(), Damaged);
    CompactReport report = repair();
    EXPECT_EQ(rowsOf(L"Rooms"), size_t(roomCount));
    EXPECT_EQ(report.losses.size(), 1u) << listing(report.losses);

    reload();
    std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(map + maps::inlineBits), 64, 0);
    report = repair();
    EXPECT_EQ(rowsOf(L"Rooms"), size_t(roomCount));

    // Where it is not known what is free, a sound map is believed.
    reload();
    std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at(pages::globalMap, 14)), 2, 0xff);
    report = repair();
    EXPECT_TRUE(tells(report, L"the map of free pages")) << listing(report.losses);
    EXPECT_EQ(rowsOf(L"Rooms"), size_t(roomCount));
    EXPECT_EQ(rowsOf(L"Doors"), size_t(doorCount));
}

TEST_F(CompactRepairTest, WithoutTheCatalogsDefinitionItsRowsAreFound) {
    bytes_[at(pages::catalog)] = 0;
    EXPECT_EQ(refusal(), CannotOpenDatabase);
    const CompactReport report = repair();
    EXPECT_TRUE(tells(report, L"the catalog's definition")) << listing(report.losses);
    expectSame(Database::openReadOnly(path("test.mdb")), *made_, "by the pages' owner");
}

TEST_F(CompactRepairTest, TablesThatTheCatalogHasLostGetNames) {
    const Database source = Database::openReadOnly(path("test.mdb"));
    for (RowCursor rows(source.table(L"MSysObjects")); rows.next();) {
        if (rows.id().page != 0) bytes_[at(rows.id().page)] = 0;
    }
    EXPECT_EQ(refusal(), Damaged);
    const CompactReport report = repair();
    EXPECT_TRUE(tells(report, L"is kept as Recovered_1")) << listing(report.losses);
    ASSERT_EQ(made_->tables().size(), 3u) << listing(report.losses);
    std::multiset<size_t> sizes;
    for (const std::wstring& name : made_->tables()) {
        EXPECT_EQ(name.rfind(L"Recovered_", 0), 0u);
        sizes.insert(rowsOf(name));
    }
    EXPECT_EQ(sizes, (std::multiset<size_t>{1, doorCount, roomCount}));
}

TEST_F(CompactRepairTest, AValueThatIsDamagedIsNull) {
    const Database source = Database::openReadOnly(path("test.mdb"));
    const Table rooms = source.table(L"Rooms");
    for (RowCursor rows(rooms); rows.next();) {
        if (rows.value(0) != Value(int32_t(50))) continue;
        const ByteView header = rows.row().bytes(2);
        const PageRef page = source.store().read(rows.id().page);
        const auto offset = static_cast<size_t>(header.data() - page.bytes().data());
        ASSERT_LT(offset, pageSize);
        put32(bytes_, at(rows.id().page, offset + longValues::pointer), 0xffffff00);
    }
    EXPECT_EQ(refusal(), Damaged);
    const CompactReport report = repair();
    ASSERT_EQ(report.losses.size(), 1u) << listing(report.losses);
    EXPECT_TRUE(tells(report, L"a value of column Notes: table Rooms: page "));
    const TablePicture made = pictureOf(made_->table(L"Rooms"));
    ASSERT_EQ(made.rows.size(), size_t(roomCount));
    EXPECT_EQ(made.rows[49][1], Value(roomName(50)));
    EXPECT_TRUE(isNull(made.rows[49][2]));
}

TEST_F(CompactRepairTest, EqualRowsStayAndTheirIndexGoes) {
    replace(wide(roomName(123)), wide(roomName(124)));
    EXPECT_EQ(refusal(), DuplicateKey);
    const CompactReport report = repair();
    ASSERT_EQ(report.losses.size(), 1u) << listing(report.losses);
    EXPECT_TRUE(tells(report, L"table Rooms: index ByName"));
    EXPECT_EQ(rowsOf(L"Rooms"), size_t(roomCount));
    EXPECT_EQ(made_->table(L"Rooms").definition().indexByName(L"ByName"), nullptr);
    EXPECT_NE(made_->table(L"Rooms").definition().primaryKey(), nullptr);
    EXPECT_EQ(made_->relations().size(), 1u);
}

TEST_F(CompactRepairTest, ATextWithoutAKeyIsToldWithItsIndex) {
    const Bytes before = wide(roomName(200));
    Bytes after = before;
    const Bytes pair{0x3d, 0xd8, 0x00, 0xde};
    std::copy(pair.begin(), pair.end(), after.end() - 4);
    replace(before, after);
    write("bad.mdb", std::string(bytes_.begin(), bytes_.end()));
    try {
        compactDatabase(path("bad.mdb"), path("refused.mdb"));
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), OperationNotSupported);
        EXPECT_EQ(error.place().table, L"Rooms");
        EXPECT_NE(error.place().detail.find(L"index ByName"), std::wstring::npos);
    }
    const CompactReport report = repair();
    ASSERT_EQ(report.losses.size(), 1u) << listing(report.losses);
    EXPECT_TRUE(tells(report, L"table Rooms: index ByName"));
    EXPECT_EQ(rowsOf(L"Rooms"), size_t(roomCount));
}

TEST_F(CompactRepairTest, RowsThatBreakARelationStayAndItGoes) {
    const Database source = Database::openReadOnly(path("test.mdb"));
    for (RowCursor rows(source.table(L"Doors")); rows.next();) {
        if (rows.value(0) != Value(int32_t(40))) continue;
        const PageRef page = source.store().read(rows.id().page);
        const auto offset = static_cast<size_t>(rows.row().bytes(0).data() - page.bytes().data());
        put32(bytes_, at(rows.id().page, offset), 4711);
    }
    EXPECT_EQ(refusal(), RelatedRecordRequired);
    const CompactReport report = repair();
    ASSERT_EQ(report.losses.size(), 1u) << listing(report.losses);
    EXPECT_TRUE(tells(report, L"relation RoomDoors"));
    EXPECT_EQ(rowsOf(L"Doors"), size_t(doorCount));
}

TEST_F(CompactRepairTest, PropertiesAndIndexesThatAreDamaged) {
    replace({'M', 'R', '2', 0}, {'X', 'R', '2', 0});
    EXPECT_EQ(refusal(), Damaged);
    CompactReport report = repair();
    ASSERT_EQ(report.losses.size(), 1u) << listing(report.losses);
    EXPECT_TRUE(tells(report, L"the properties of "));

    // Indexes are built anew: what theirs was like is all the same.
    reload();
    for (const RealIndex& index : rooms_.realIndexes)
        bytes_[at(index.rootPage)] = 0;
    report = repair();
    EXPECT_EQ(listing(report.losses), "");
    expectSame(Database::openReadOnly(path("test.mdb")), *made_, "indexes");
}

TEST_F(CompactRepairTest, WhateverIsDamagedTheResultIsSound) {
    std::vector<Bytes> all{bytes_, sampleFile(Version::Jet3), sampleFile(Version::Ace17)};
    for (const auto& file : sg::test::realDatabases()) {
        if (std::filesystem::file_size(file) < 300000) all.push_back(readFile(file.wstring()));
    }
    uint32_t random = 4711;
    const auto next = [&] { return (random = random * 1664525 + 1013904223) >> 8; };
    for (const Bytes& sound : all) {
        for (int round = 0; round < 12; ++round) {
            bytes_ = sound;
            // Page 0 is let be: it tells the version.
            for (int change = 0; change < 1 << round; ++change) {
                const size_t place = pageSize + next() % (bytes_.size() - pageSize);
                bytes_[place] = static_cast<uint8_t>(next());
            }
            EXPECT_NO_THROW(repair()) << round;
        }
    }
}

}  // namespace
}  // namespace sg::jet::test
