#include "host/jet/compact/compact.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>

#include "host/jet/compact_files.h"
#include "host/jet/file_builder.h"
#include "host/jet/pages/definition_writer.h"
#include "host/jet/recording_files.h"
#include "host/jet/storage/storage.h"
#include "real_data.h"

namespace sg::jet::test {
namespace {

constexpr int cancelled = 3059;

TEST_F(CompactTest, FilesOfOtherProgramsAreWholeAfterIt) {
    const auto all = sg::test::realDatabases();
    if (all.empty()) GTEST_SKIP() << "no real files";
    for (const auto& file : all) {
        const std::wstring source = copied(file, "source");
        std::filesystem::remove(folder_ / "made.mdb");
        const CompactReport report = compactDatabase(source, path("made.mdb"));
        EXPECT_EQ(files(), (std::set<std::string>{"source", "made.mdb"})) << file;
        const Database from = Database::openReadOnly(source);
        const Database to = Database::openReadOnly(path("made.mdb"));
        expectSame(from, to, file.string());
        expectNothingFound(to, file.string());
        EXPECT_EQ(to.header().version, Version::Jet4);
        EXPECT_EQ(report.tables, from.tables().size()) << file;
        // Only what a Jet 4 file has no place for is lost.
        const bool isAce = from.store().format().isAce();
        EXPECT_EQ(report.losses.size(), isAce ? 2u : 0u) << listing(report.losses);
        EXPECT_EQ(tells(report, L"table MSysResources: column Data"), isAce);
    }
}

TEST_F(CompactTest, TheOtherReaderPrintsTheSame) {
    if (!hasTools() || sg::test::realDatabases().empty())
        GTEST_SKIP() << "mdb-export is not installed";
    for (const auto& file : sg::test::realDatabases()) {
        const std::wstring source = copied(file, "source");
        std::filesystem::remove(folder_ / "made.mdb");
        compactDatabase(source, path("made.mdb"));
        const std::string before = (folder_ / "source").string();
        const std::string after = (folder_ / "made.mdb").string();
        EXPECT_EQ(output("mdb-tables -1 " + before + " | sort"),
                  output("mdb-tables -1 " + after + " | sort"));
        for (const std::wstring& name : Database::openReadOnly(source).tables()) {
            const std::string arguments = " '" + toUtf8(name) + "' | sort";
            const std::string printed = output("mdb-export -b hex " + before + arguments);
            EXPECT_FALSE(printed.empty());
            EXPECT_EQ(printed, output("mdb-export -b hex " + after + arguments))
                << file << " " << toUtf8(name);
        }
    }
}

TEST_F(CompactTest, CompactingTwiceGivesAFileOfTheSameSize) {
    create();
    makeRooms();
    db().beginTransaction();
    for (int i = 0; i < 5000; ++i)
        insert(L"Rooms", {Value(), L"Room " + std::to_wstring(i), double(i), Value()});
    db().commitTransaction();
    std::vector<RowId> ids;
    for (RowCursor rows(db().table(L"Rooms")); rows.next();)
        ids.push_back(rows.id());
    db().beginTransaction();
    for (size_t i = 0; i < ids.size(); ++i) {
        if (i % 10 != 0) db().writer(L"Rooms").erase(ids[i]);
    }
    db().commitTransaction();
    close();
    compactDatabase(path("test.mdb"), path("once.mdb"));
    const CompactReport report = compactDatabase(path("once.mdb"), path("twice.mdb"));
    EXPECT_EQ(report.rows, (ids.size() + 9) / 10);
    EXPECT_EQ(report.tables, 1u);
    EXPECT_LT(std::filesystem::file_size(folder_ / "once.mdb") * 3,
              std::filesystem::file_size(folder_ / "test.mdb"));
    EXPECT_EQ(std::filesystem::file_size(folder_ / "once.mdb"),
              std::filesystem::file_size(folder_ / "twice.mdb"));
    expectSame(Database::openReadOnly(path("test.mdb")), Database::openReadOnly(path("twice.mdb")),
               "twice");
}

TEST_F(CompactTest, DesignsComeOverWithColumnsThatWentAndLinksAndQueries) {
    create();
    makeRooms();
    ColumnDesign code = textColumn(L"Code", 5);
    code.fixedLength = true;
    ColumnDesign page = columnOfType(L"Page", ColumnType::Memo);
    page.hyperlink = true;
    ColumnDesign price = columnOfType(L"Price", ColumnType::Numeric);
    price.precision = 12;
    price.scale = 3;
    ColumnDesign plain = textColumn(L"Plain");
    plain.compressed = false;
    plain.defaultValue = L"\"x\"";
    createTable(db(), tableOf(L"Doors",
                              {longColumn(L"Room"), code, page, price, plain,
                               columnOfType(L"Open", ColumnType::Boolean),
                               columnOfType(L"Key", ColumnType::Guid)},
                              {indexOver(L"ByCode", {L"Code", L"Room"}, true)}));
    dropColumn(db(), L"Doors", L"Page");
    addColumn(db(), L"Doors", page);
    Relation relation;
    relation.name = L"RoomDoors";
    relation.table = L"Rooms";
    relation.foreignTable = L"Doors";
    relation.flags = relationFlags::cascadeUpdates | relationFlags::leftJoin;
    relation.columns = {{L"Id", L"Room"}};
    createRelation(db(), relation);
    linkTable(db(), L"Far", L";DATABASE=c:\\far.mdb", L"There");
    QueryRow start;
    QueryRow kind{{}, 0, queryAttributes::kind, int16_t(1), {}, {}, {}, {}, {}};
    QueryRow table{{}, 0, queryAttributes::table, {}, {}, {}, L"Rooms", {}, {}};
    QueryRow column{{}, 0, queryAttributes::column, {}, {}, L"Rooms.Name", {}, {}, {}};
    putQuery(db(), L"All", 0, {start, kind, table, column});
    setProperty(db(), L"All", {}, {L"Description", ColumnType::Text, false, std::wstring(L"?")});
    insert(L"Doors", {int32_t(2), std::wstring(L"A"), Value(), std::wstring(L"p"), true,
                      Guid{{1, 2}}, Value()});
    close();

    const CompactReport report = compactDatabase(path("test.mdb"), path("made.mdb"));
    EXPECT_EQ(listing(report.losses), "");
    const Database from = Database::openReadOnly(path("test.mdb"));
    Database to = Database::open(path("made.mdb"), OpenMode::Exclusive);
    expectSame(from, to, "made.mdb");
    expectNothingFound(to, "made.mdb");
    EXPECT_EQ(to.table(L"Doors").definition().maxColumns, 7);
    EXPECT_EQ(from.table(L"Doors").definition().maxColumns, 8);
    ASSERT_EQ(to.linkedTables().size(), 1u);
    EXPECT_EQ(to.linkedTables()[0].database, L"c:\\far.mdb");
    EXPECT_EQ(to.linkedTables()[0].foreignName, L"There");
    // What the design asks for is asked for, and counters go on.
    std::vector<Value> orphan(7);
    orphan[0] = int32_t(77);
    orphan[4] = false;
    EXPECT_EQ(thrownBy([&] { to.writer(L"Doors").insert(orphan); }).code, RelatedRecordRequired);
    std::vector<Value> room{Value(), std::wstring(L"New"), Value(), Value()};
    to.writer(L"Rooms").insert(room);
    EXPECT_EQ(room[0], Value(int32_t(4)));
}

TEST_F(CompactTest, CountersKeepTheirSteps) {
    create();
    ColumnDesign number = longColumn(L"Number", true);
    number.firstNumber = 3;
    number.numberStep = -2;
    createTable(db(), tableOf(L"Down", {number, textColumn(L"Name")}));
    insert(L"Down", {Value(), Value()});
    insert(L"Down", {Value(), Value()});
    close();

    compactDatabase(path("test.mdb"), path("made.mdb"));
    Database to = Database::open(path("made.mdb"), OpenMode::Exclusive);
    std::vector<Value> row(2);
    to.writer(L"Down").insert(row);
    EXPECT_EQ(row[0], Value(int32_t(-1)));
}

// A table with every kind of column that a Jet 4 file does not have.
TEST_F(CompactTest, NewerKindsOfColumnsBecomeWhatThereIs) {
    FileBuilder file(Version::Ace17);
    const std::vector<ColumnSpec> columns = {
        {L"Id", ColumnType::Long, 4},
        {L"Big", ColumnType::BigInteger, 8},
        {L"When", ColumnType::DateTimeExtended, 42},
        {L"Files", ColumnType::Complex, 4},
        {L"Total", ColumnType::Text, 533, 0xC0},
    };
    const uint32_t table = file.addTable(L"New", columns);
    const auto date = [](const std::string& text) {
        return Cell{Bytes(text.begin(), text.end()), false};
    };
    Cell total = text(Version::Ace17, L"sum");
    Bytes head(20);
    head[16] = static_cast<uint8_t>(total.bytes.size());
    total.bytes.insert(total.bytes.begin(), head.begin(), head.end());
    // 2000-01-01 is day 730119 of the calendar that begins with the year 1.
    file.addRow(table + 1, file.encodeRow(columns, {number(1, 4), number(INT64_MIN, 8),
                                                    date("0000000000000730119:000000043200"
                                                         "0000000:7" +
                                                         std::string(1, '\0')),
                                                    number(9, 4), total}));
    file.addRow(table + 1, file.encodeRow(columns, {number(2, 4), null(), null(), null(), null()}));
    std::ofstream(folder_ / "new.accdb", std::ios::binary)
        .write(reinterpret_cast<const char*>(file.bytes().data()),
               static_cast<std::streamsize>(file.bytes().size()));

    const CompactReport report = compactDatabase(path("new.accdb"), path("made.mdb"));
    for (const wchar_t* name : {L"Big", L"When", L"Files", L"Total"})
        EXPECT_TRUE(tells(report, L"table New: column " + std::wstring(name))) << toUtf8(name);
    EXPECT_EQ(report.losses.size(), 4u) << listing(report.losses);
    const Database to = Database::openReadOnly(path("made.mdb"));
    expectNothingFound(to, "made.mdb");
    const TablePicture made = pictureOf(to.table(L"New"));
    ASSERT_EQ(made.columns.size(), 4u);
    ASSERT_EQ(made.rows.size(), 2u);
    EXPECT_EQ(toText(std::get<Decimal>(made.rows[0][1])), L"-9223372036854775808");
    EXPECT_EQ(toText(std::get<Date>(made.rows[0][2])), L"2000-01-01 12:00:00");
    EXPECT_EQ(made.rows[0][3], Value(std::wstring(L"sum")));
    EXPECT_EQ(made.rows[1], (std::vector<Value>{int32_t(2), Value(), Value(), Value()}));
}

TEST_F(CompactTest, SmallFilesOfEveryVersion) {
    for (const Version version : {Version::Jet3, Version::Jet4, Version::Ace12, Version::Ace17}) {
        const Bytes bytes = sampleFile(version);
        write("sample", std::string(bytes.begin(), bytes.end()));
        std::filesystem::remove(folder_ / "made.mdb");
        const CompactReport report = compactDatabase(path("sample"), path("made.mdb"));
        EXPECT_EQ(report.rows, 3u);
        const Database from = Database::openReadOnly(path("sample"));
        const Database to = Database::openReadOnly(path("made.mdb"));
        EXPECT_TRUE(pictureOf(from.table(L"Rooms")).rows == pictureOf(to.table(L"Rooms")).rows);
        expectNothingFound(to, "sample");
        // What such a file does not tell is as for new objects.
        EXPECT_NE(to.object(L"All rooms", ObjectType::Query), nullptr);
        const CatalogObject* tables = to.object(L"Tables", ObjectType::Container);
        EXPECT_EQ(to.object(L"Far rooms", ObjectType::LinkedTable)->parent, tables->id);
        EXPECT_GT(rightsOf(to).count({L"Rooms", {2, 1}, 0xFFEFF, false}), 0u);
    }
}

TEST_F(CompactTest, WhatIsThereStays) {
    create();
    makeRooms();
    close();
    write("made.mdb", "mine");
    EXPECT_EQ(thrownBy([&] { compactDatabase(path("test.mdb"), path("made.mdb")); }).code,
              DatabaseExists);
    EXPECT_EQ(read("made.mdb"), "mine");
    EXPECT_EQ(thrownBy([&] { compactInPlace(path("test.mdb"), path("made.mdb")); }).code,
              DatabaseExists);
    EXPECT_EQ(thrownBy([&] { compactDatabase(path("test.mdb"), path("test.mdb")); }).code,
              DatabaseExists);
    EXPECT_EQ(thrownBy([&] { compactDatabase(path("none.mdb"), path("new.mdb")); }).code,
              FileNotFound);
    const Thrown noFolder =
        thrownBy([&] { compactDatabase(path("test.mdb"), path("no/new.mdb")); });
    EXPECT_EQ(noFolder.code, InvalidPath);
    EXPECT_EQ(noFolder.names, std::vector{path("no/new.mdb")});
    EXPECT_EQ(thrownBy([&] { compactDatabase(path("made.mdb"), path("new.mdb")); }).code,
              UnrecognizedFormat);
    CompactOptions options;
    options.locale.sortOrder = {0x0411, 0};
    EXPECT_EQ(thrownBy([&] { compactDatabase(path("test.mdb"), path("new.mdb"), options); }).code,
              OperationNotSupported);
    EXPECT_EQ(files(), (std::set<std::string>{"test.mdb", "made.mdb"}));
}

TEST_F(CompactTest, AnOpenDatabaseIsLeftAlone) {
    create();
    makeRooms();
    for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::Shared, OpenMode::Exclusive}) {
        close();
        const Database open = Database::open(path("test.mdb"), mode);
        EXPECT_EQ(thrownBy([&] { compactDatabase(path("test.mdb"), path("new.mdb")); }).code,
                  FileInUse);
        EXPECT_EQ(thrownBy([&] { compactInPlace(path("test.mdb"), {}); }).code, FileInUse);
    }
    EXPECT_EQ(files(), std::set<std::string>{"test.mdb"});
}

TEST_F(CompactTest, NobodyOpensItMeanwhile) {
    create();
    makeRooms();
    close();
    CompactOptions options;
    int calls = 0;
    options.progress = [&](uint64_t, uint64_t) {
        ++calls;
        for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::Shared}) {
            EXPECT_EQ(thrownBy([&] { Database::open(path("test.mdb"), mode); }).code, FileInUse);
        }
        return true;
    };
    compactInPlace(path("test.mdb"), {}, options);
    EXPECT_GE(calls, 2);
    EXPECT_EQ(reopen().table(L"Rooms").rowCount(), 3u);
}

TEST_F(CompactTest, ALogThatWasLeftCounts) {
    StorageOptions options;
    options.checkpointDelay = std::chrono::milliseconds(0);
    {
        create();
        makeRooms();
        close();
        db_.reset(new Database(Database::open(path("test.mdb"), OpenMode::Shared, options)));
        insert(L"Rooms", {Value(), std::wstring(L"Cellar"), Value(), Value()});
        // As a killed program leaves it.
        std::filesystem::copy_file(folder_ / "test.mdb", folder_ / "killed.mdb");
        std::filesystem::copy_file(folder_ / "test.mdb-log", folder_ / "killed.mdb-log");
        close();
    }
    const CompactReport report = compactDatabase(path("killed.mdb"), path("made.mdb"));
    EXPECT_EQ(report.rows, 4u);
    EXPECT_EQ(files(), (std::set<std::string>{"test.mdb", "killed.mdb", "made.mdb"}));
}

TEST_F(CompactTest, AReadOnlyFileIsCopiedButNotReplaced) {
    if (::geteuid() == 0) GTEST_SKIP() << "root may write everything";
    create();
    makeRooms();
    close();
    std::filesystem::permissions(folder_ / "test.mdb", std::filesystem::perms::owner_read);
    EXPECT_EQ(compactDatabase(path("test.mdb"), path("made.mdb")).rows, 3u);
    EXPECT_EQ(thrownBy([&] { compactInPlace(path("test.mdb"), {}); }).code, CannotOpenFile);
}

TEST_F(CompactTest, WhoStopsItFindsNothing) {
    create();
    makeRooms();
    db().beginTransaction();
    for (int i = 0; i < 30000; ++i)
        insert(L"Rooms", {Value(), L"Room " + std::to_wstring(i), double(i), Value()});
    db().commitTransaction();
    close();
    const std::string before = read("test.mdb");
    uint64_t last = 0;
    int calls = 0;
    CompactOptions options;
    options.progress = [&](uint64_t done, uint64_t total) {
        EXPECT_LE(last, done);
        EXPECT_LE(done, total);
        last = done;
        ++calls;
        return true;
    };
    const auto start = std::chrono::steady_clock::now();
    compactDatabase(path("test.mdb"), path("made.mdb"), options);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(last, 30003u);
    EXPECT_LE(calls, 2 + taken.count() * 100);
    std::filesystem::remove(folder_ / "made.mdb");
    for (int stop = 1; stop <= calls; stop += 1 + calls / 8) {
        int left = stop;
        options.progress = [&](uint64_t, uint64_t) { return --left > 0; };
        // A machine that is fast this time may not ask as often.
        const int code =
            thrownBy([&] { compactDatabase(path("test.mdb"), path("made.mdb"), options); }).code;
        if (left <= 0) {
            EXPECT_EQ(code, cancelled);
        }
        std::filesystem::remove(folder_ / "made.mdb");
        EXPECT_EQ(files(), std::set<std::string>{"test.mdb"});
    }
    EXPECT_EQ(read("test.mdb"), before);
}

TEST_F(CompactTest, InPlaceKeepsModeLinksAndTheOldFile) {
    create();
    makeRooms();
    close();
    std::filesystem::create_directory(folder_ / "sub");
    std::filesystem::rename(folder_ / "test.mdb", folder_ / "sub/real.mdb");
    std::filesystem::create_symlink("sub/real.mdb", folder_ / "test.mdb");
    ::chmod((folder_ / "sub/real.mdb").c_str(), 0640);
    const std::string before = read("sub/real.mdb");
    const CompactReport report = compactInPlace(path("test.mdb"), path("old.mdb"));
    EXPECT_EQ(report.rows, 3u);
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "test.mdb"));
    struct stat status {};
    ASSERT_EQ(::stat((folder_ / "sub/real.mdb").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(read("old.mdb"), before);
    EXPECT_NE(read("sub/real.mdb"), before);
    expectSame(Database::openReadOnly(path("old.mdb")), reopen(), "in place");
    close();
    compactInPlace(path("test.mdb"), {});
    EXPECT_EQ(files(), (std::set<std::string>{"test.mdb", "old.mdb", "sub"}));
}

TEST_F(CompactTest, InPlaceMakesAJet4FileOfOthers) {
    for (const auto& file : sg::test::realDatabases()) {
        const std::wstring copy = copied(file, "plan");
        if (Database::openReadOnly(copy).header().version == Version::Jet4) continue;
        compactInPlace(copy, path("old"));
        expectSame(Database::openReadOnly(path("old")), Database::open(copy, OpenMode::Exclusive),
                   file.string());
        std::filesystem::remove(folder_ / "old");
    }
}

TEST_F(CompactTest, WhatADeadProgramLeftIsTakenAway) {
    create();
    makeRooms();
    close();
    write("made.mdb-compact", "half of it");
    write("made.mdb-compact-log", "its log");
    EXPECT_EQ(compactDatabase(path("test.mdb"), path("made.mdb")).rows, 3u);
    EXPECT_EQ(files(), (std::set<std::string>{"test.mdb", "made.mdb"}));
    // One that is at work keeps its own.
    std::filesystem::remove(folder_ / "made.mdb");
    const Database other = Database::create(path("made.mdb-compact"));
    EXPECT_EQ(compactDatabase(path("test.mdb"), path("made.mdb")).rows, 3u);
    EXPECT_TRUE(exists("made.mdb-compact"));
    EXPECT_FALSE(exists("made.mdb-compact2"));
}

// --- failures and losses of power ---

class CompactFailureTest : public CompactTest {
  protected:
    void SetUp() override {
        create();
        makeRooms();
        close();
        const std::string bytes = read("test.mdb");
        source_ = {{L"plan.mdb", {bytes.begin(), bytes.end()}}};
    }
    static CompactOptions optionsWith(RecordingFiles& files) {
        CompactOptions options;
        options.storage.files = &files;
        options.storage.checkpointDelay = std::chrono::milliseconds(0);
        return options;
    }

    RecordingFiles::Disk source_;
};

TEST_F(CompactFailureTest, AFailureAtAnyMomentLeavesTheSourceAndNothingElse) {
    size_t count = 0;
    for (size_t failing = 0; failing == 0 || failing <= count; ++failing) {
        RecordingFiles files(source_);
        size_t at = 0;
        bool hasItsName = false;
        files.onOperation = [&](const RecordingFiles::Operation& operation) {
            if (++at == failing) throw Error(DiskFull);
            if (at < failing && operation.newName == L"made.mdb") hasItsName = true;
        };
        const int code =
            thrownBy([&] { compactDatabase(L"plan.mdb", L"made.mdb", optionsWith(files)); }).code;
        if (failing == 0) {
            count = at;
            EXPECT_EQ(code, 0);
            continue;
        }
        const RecordingFiles::Disk disk = files.disk();
        EXPECT_EQ(disk.at(L"plan.mdb"), source_.at(L"plan.mdb")) << failing;
        if (code == 0 || hasItsName) {
            EXPECT_EQ(disk.size(), 2u) << failing;
        } else {
            EXPECT_EQ(disk.size(), 1u) << failing << " of " << count;
        }
    }
    EXPECT_GT(count, 20u);
}

TEST_F(CompactFailureTest, InPlaceTheNameAlwaysLeadsToAWholeDatabase) {
    RecordingFiles files(source_);
    compactInPlace(L"plan.mdb", L"old.mdb", optionsWith(files));
    const RecordingFiles::Disk done = files.disk();
    ASSERT_EQ(done.size(), 2u);
    EXPECT_EQ(done.at(L"old.mdb"), source_.at(L"plan.mdb"));
    EXPECT_NE(done.at(L"plan.mdb"), source_.at(L"plan.mdb"));
    std::mt19937 random(7);
    for (size_t count = 0; count <= files.operations().size(); ++count) {
        for (std::mt19937* luck : {static_cast<std::mt19937*>(nullptr), &random, &random}) {
            const RecordingFiles::Disk disk = files.diskAfter(count, luck);
            ASSERT_TRUE(disk.contains(L"plan.mdb")) << count;
            const auto& bytes = disk.at(L"plan.mdb");
            const bool isNew = bytes == done.at(L"plan.mdb");
            ASSERT_TRUE(isNew || bytes == source_.at(L"plan.mdb")) << count;
            if (isNew) {
                ASSERT_TRUE(disk.contains(L"old.mdb")) << count;
            }
            if (disk.contains(L"old.mdb")) {
                ASSERT_EQ(disk.at(L"old.mdb"), source_.at(L"plan.mdb")) << count;
            }
        }
    }
}

TEST_F(CompactFailureTest, InPlaceAFailureTakesTheBackupAwayAgain) {
    using Kind = RecordingFiles::Kind;
    for (const Kind kind : {Kind::AddName, Kind::Rename}) {
        RecordingFiles files(source_);
        files.onOperation = [&](const RecordingFiles::Operation& operation) {
            if (operation.kind == kind) throw Error(DiskOrNetwork);
        };
        EXPECT_EQ(
            thrownBy([&] { compactInPlace(L"plan.mdb", L"old.mdb", optionsWith(files)); }).code,
            DiskOrNetwork);
        EXPECT_EQ(files.disk(), source_);
    }
}

}  // namespace
}  // namespace sg::jet::test
