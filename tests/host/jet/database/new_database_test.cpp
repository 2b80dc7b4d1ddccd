#include "host/jet/database/new_database.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>

#include "base/encoding.h"
#include "host/jet/check/check.h"
#include "host/jet/database/database.h"
#include "host/jet/index_test_files.h"
#include "host/jet/recording_files.h"
#include "host/jet/storage_files.h"
#include "host/system/temporary_folder.h"
#include "real_data.h"

namespace sg::jet {
namespace {

const std::wstring fileName = L"plan.mdb";

class NewDatabaseOnDiskTest : public FolderTest {};

std::unique_ptr<Storage> create(RecordingFiles& files, const Locale& locale = {}) {
    return createDatabaseFile(fileName, locale,
                              {.checkpointDelay = std::chrono::milliseconds(0), .files = &files});
}

Database createAndReopen(RecordingFiles& files, const Locale& locale = {}) {
    create(files, locale)->close();
    return Database::open(fileName, OpenMode::Shared, {.files = &files});
}

std::vector<uint8_t> plainDatabasePage(const PageStore& store) {
    const PageRef page = store.read(0);
    std::vector<uint8_t> bytes(page->begin(), page->end());
    maskDatabasePage(bytes, store.format());
    return bytes;
}

// An account's identifier without this file's mask, as a number whose first byte is the high one.
int accountOf(const PageStore& store, const Value& value) {
    Bytes bytes = std::get<Bytes>(value);
    maskAccount(bytes, ByteView(plainDatabasePage(store)), store.format());
    return bytes.size() == 2 ? bytes[0] << 8 | bytes[1] : -1;
}

TEST(NewDatabaseTest, LocalesAreReadInAnyOrder) {
    struct Case {
        const wchar_t* text;
        uint16_t sortOrder;
        uint16_t codePage;
    };
    const Case cases[] = {
        {L"", 0x0409, 1252},
        {L";LANGID=0x0409;CP=1252;COUNTRY=0", 0x0409, 1252},
        {L"LANGID=0x0407;CP=1250;COUNTRY=49", 0x0407, 1250},
        {L"CP=65001;LANGID=1033", 1033, 65001},
        {L" ; country = 0 ;; cp = 932 ; langid = 0X0411 ;", 0x0411, 932},
        {L"LANGID=0xffff;CP=65535", 0xffff, 65535},
    };
    for (const Case& c : cases) {
        const Locale locale = parseLocale(c.text);
        EXPECT_EQ(locale.sortOrder, (SortOrder{c.sortOrder, 0})) << toUtf8(c.text);
        EXPECT_EQ(locale.codePage, c.codePage) << toUtf8(c.text);
    }
    for (const wchar_t* text :
         {L"LANGID", L"LANGID=", L"LANGID=0x", L"LANGID=0x10000", L"CP=65536", L"CP=12a", L"CP=-1",
          L"COUNTRY=x", L"VERSION=4", L"=5", L"CP=1252 COUNTRY=0", L"CP==1", L"0x0409"}) {
        EXPECT_EQ(codeOf([&] { parseLocale(text); }), InvalidArgument) << toUtf8(text);
    }
}

TEST(NewDatabaseTest, HasAHeaderACatalogAndNothingElse) {
    RecordingFiles files({});
    const Database db = createAndReopen(files, {{0, 0}, 1250});
    EXPECT_EQ(db.header().version, Version::Jet4);
    EXPECT_EQ(db.header().sortOrder, (SortOrder{0, 0}));
    EXPECT_EQ(db.header().codePage, 1250);
    EXPECT_FALSE(db.header().hasPassword);
    EXPECT_FALSE(db.header().isEncoded);
    EXPECT_EQ(db.header().created, db.objects().at(0).created);
    EXPECT_TRUE(db.tables().empty());
    EXPECT_EQ(db.tables(true), (std::vector<std::wstring>{L"MSysObjects", L"MSysACEs",
                                                          L"MSysQueries", L"MSysRelationships"}));
    EXPECT_TRUE(db.catalogDamage().empty());
    EXPECT_TRUE(db.relations().empty());
    EXPECT_TRUE(db.queries().empty());
    for (const CheckFinding& finding : checkDatabase(db)) {
        ADD_FAILURE() << toUtf8(finding.table) << ": " << toUtf8(finding.what);
    }
    EXPECT_EQ(db.store().pageCount(), 16u);
    EXPECT_EQ(files.content(fileName).size(), 16u * 4096);
    for (const Column& column : db.table(L"MSysObjects").definition().columns) {
        EXPECT_TRUE(!column.isText() || column.sortOrder == (SortOrder{0, 0}));
    }
}

TEST(NewDatabaseTest, ItsMapsNameThePagesThatAreUsed) {
    RecordingFiles files({});
    const Database db = createAndReopen(files);
    const UsageMap free = UsageMap::read(db.store(), {pages::globalMap, 0});
    for (uint32_t page = 0; page < 512; ++page) {
        EXPECT_EQ(free.contains(page), page >= db.store().pageCount()) << page;
    }
    EXPECT_FALSE(UsageMap::read(db.store(), {pages::globalMap, 1}).next(0).has_value());
    std::set<RowId> maps;
    size_t count = 0;
    for (uint32_t page = 2; page < 6; ++page) {
        const TableDefinition table = TableDefinition::read(db.store(), page);
        std::vector<RowId> records{table.ownedPages, table.freePages};
        for (const Column& column : table.columns) {
            if (!column.isLongValue()) continue;
            records.push_back(column.ownedPages.value());
            records.push_back(column.freePages.value());
        }
        for (const RealIndex& index : table.realIndexes) {
            records.push_back(index.ownedPages);
            EXPECT_EQ(UsageMap::read(db.store(), index.ownedPages).pages(),
                      std::vector<uint32_t>{index.rootPage});
        }
        count += records.size();
        maps.insert(records.begin(), records.end());
    }
    EXPECT_EQ(maps.size(), count) << "no two share a map";
}

// What the definitions of the system tables say, but for pages, counts and what is left over from
// other uses.
std::wstring design(const PageStore& store, uint32_t page) {
    const TableDefinition table = TableDefinition::read(store, page);
    std::wstring text;
    const auto add = [&](auto... numbers) { ((text += std::to_wstring(numbers) + L" "), ...); };
    add(table.isSystem, table.maxColumns, table.variableColumns);
    for (const Column& c : table.columns) {
        text += L"\n" + c.name + L" ";
        add(int(c.type), c.number, c.ordinal, c.variableIndex, c.isFixed() ? c.fixedOffset : 0,
            c.length, c.flags, c.extraFlags, c.sortOrder.id, c.sortOrder.version);
    }
    for (const RealIndex& index : table.realIndexes) {
        text += L"\n";
        add(index.flags);
        for (const IndexColumn& column : index.columns) {
            add(column.column, column.ascending);
        }
    }
    for (const LogicalIndex& index : table.indexes) {
        text += L"\n" + index.name + L" ";
        add(index.number, index.realIndex, int(index.kind));
    }
    return text;
}

std::vector<std::string> objectsOf(const Database& db) {
    std::vector<std::string> lines;
    const Table table = db.table(L"MSysObjects");
    const size_t owner = table.definition().columnByName(L"Owner").value();
    RowCursor rows(table);
    for (const CatalogObject& object : db.objects()) {
        if (!object.isSystem() || (object.flags & objectFlags::system) == 0) continue;
        rows.seek(object.row);
        lines.push_back(toUtf8(object.name) + " " + std::to_string(object.id) + " " +
                        std::to_string(object.parent) + " " +
                        std::to_string(static_cast<int>(object.type)) + " " +
                        std::to_string(accountOf(db.store(), rows.value(owner))));
    }
    return lines;
}

// Who may do what with the system's objects. Programs that make their own give the user of all
// containers more rights.
std::set<std::string> accessOf(const Database& db) {
    std::set<std::string> lines;
    RowCursor rows(db.table(L"MSysACEs"));
    while (rows.next()) {
        const int account = accountOf(db.store(), rows.value(1));
        if (account < 0) continue;
        const bool given = account == 0x0301 || account == 0x0201;
        const std::string rights = std::to_string(std::get<int32_t>(rows.value(2)));
        lines.insert(std::to_string(std::get<int32_t>(rows.value(0))) + " " +
                     std::to_string(account) + " " + (given ? "" : rights));
    }
    return lines;
}

TEST(NewDatabaseTest, TheCatalogIsThatOfFilesOfOtherPrograms) {
    RecordingFiles files({});
    const Database db = createAndReopen(files);
    const std::vector<std::string> objects = objectsOf(db);
    const std::set<std::string> access = accessOf(db);
    EXPECT_EQ(objects.size(), 8u);
    EXPECT_EQ(access.size(), 16u);
    size_t compared = 0;
    for (const auto& path : sg::test::realDatabases()) {
        const Database other = Database::openReadOnly(path.wstring());
        if (other.header().version != Version::Jet4) continue;
        for (uint32_t page = 2; page < 6; ++page) {
            EXPECT_EQ(design(db.store(), page), design(other.store(), page)) << path;
        }
        EXPECT_EQ(objects, objectsOf(other)) << path;
        const std::set<std::string> there = accessOf(other);
        for (const std::string& line : access) {
            EXPECT_TRUE(there.contains(line)) << path << " " << line;
        }
        ++compared;
    }
    if (compared == 0) GTEST_SKIP() << "no real files in " << sg::test::realData();
}

TEST_F(NewDatabaseOnDiskTest, WhatIsThereIsNotTouched) {
    const std::vector<uint8_t> content{1, 2, 3};
    RecordingFiles files({{fileName, content}});
    EXPECT_EQ(codeOf([&] { create(files); }), DatabaseExists);
    EXPECT_EQ(files.content(fileName), content);
    EXPECT_EQ(files.disk().size(), 1u);
    const std::wstring missing = path("missing/plan.mdb");
    EXPECT_EQ(codeOf([&] { createDatabaseFile(missing, {}); }), InvalidPath);
}

TEST(NewDatabaseTest, WhatFailsLeavesNoFile) {
    RecordingFiles unknownOrder({});
    EXPECT_EQ(codeOf([&] { create(unknownOrder, {{0x0411, 0}, 932}); }), OperationNotSupported);
    EXPECT_TRUE(unknownOrder.disk().empty());

    // Every change of a file, one after the other, is one that fails.
    bool finished = false;
    for (int failing = 1; !finished; ++failing) {
        RecordingFiles files({});
        int count = 0;
        bool failed = false;
        files.onOperation = [&](const RecordingFiles::Operation&) {
            if (++count == failing) {
                failed = true;
                throw Error(DiskFull);
            }
        };
        const int code = codeOf([&] { create(files)->snapshot(); });
        finished = !failed;
        if (code != 0) {
            EXPECT_EQ(code, DiskFull) << failing;
            EXPECT_FALSE(files.has(fileName)) << failing;
            EXPECT_FALSE(files.has(Storage::logPath(fileName))) << failing;
        }
        ASSERT_LT(failing, 1000);
    }
}

TEST(NewDatabaseTest, AProcessThatIsKilledLeavesAllOrNothing) {
    RecordingFiles files({});
    create(files)->close();
    for (size_t count = 0; count <= files.operations().size(); ++count) {
        RecordingFiles after(files.diskAfter(count, nullptr));
        const int code = codeOf([&] {
            const Database db = Database::open(fileName, OpenMode::Shared, {.files = &after});
            EXPECT_EQ(checkDatabase(db).size(), 0u) << count;
        });
        EXPECT_TRUE(code == 0 || code == FileNotFound || code == CannotOpenDatabase ||
                    code == UnrecognizedFormat)
            << count << ": " << code;
    }
}

std::string outputOf(const std::string& command) {
    std::string output;
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return output;
    std::array<char, 4096> buffer;
    for (size_t got; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        output.append(buffer.data(), got);
    }
    ::pclose(pipe);
    return output;
}

TEST_F(NewDatabaseOnDiskTest, OtherProgramsReadIt) {
    if (outputOf("command -v mdb-tables").empty()) GTEST_SKIP() << "mdb-tables is not installed";
    createDatabaseFile(path("plan.mdb"), parseLocale(L";LANGID=0x0409;CP=1252;COUNTRY=0"))->close();
    const std::string file = "'" + toUtf8(path("plan.mdb")) + "'";
    EXPECT_EQ(outputOf("mdb-ver " + file), "JET4\n");
    EXPECT_EQ(outputOf("mdb-tables -1 " + file), "");
    EXPECT_EQ(outputOf("mdb-tables -1 -S " + file),
              "MSysObjects\nMSysACEs\nMSysQueries\nMSysRelationships\n");
    const std::string schema = outputOf("mdb-schema -T MSysObjects --indexes " + file + " access");
    EXPECT_NE(schema.find("[DateUpdate]"), std::string::npos) << schema;
    EXPECT_EQ(outputOf("mdb-count " + file + " MSysACEs"), "16\n");
    EXPECT_NE(
        outputOf("mdb-export " + file + " MSysObjects").find("268435456,251658242,\"MSysDb\",2,"),
        std::string::npos);
}

}  // namespace
}  // namespace sg::jet
