// Writing to files whose bytes contradict themselves: an error, never more than that.

#include <gtest/gtest.h>

#include <random>

#include "host/jet/schema_files.h"

namespace sg::jet {
namespace {

using Row = std::vector<Value>;

class DamagedWriteTest : public test::SchemaTest {
  protected:
    // Two tables with a relation that cascades, indexes of some pages and long values.
    void makeFile() {
        create();
        createTable(db(), test::tableOf(L"Floors", {test::longColumn(L"Id")},
                                        {test::primaryOver({L"Id"})}));
        createTable(db(), test::tableOf(
                              L"Rooms",
                              {test::longColumn(L"Id", true), test::longColumn(L"Floor"),
                               test::textColumn(L"Name", 255),
                               test::columnOfType(L"Note", ColumnType::Memo)},
                              {test::primaryOver({L"Id"}), test::indexOver(L"ByName", {L"Name"})}));
        createRelation(db(), {L"R",
                              L"Floors",
                              L"Rooms",
                              relationFlags::cascadeDeletes | relationFlags::cascadeUpdates,
                              {{L"Id", L"Floor"}}});
        db().beginTransaction();
        for (int32_t id = 1; id <= 20; ++id)
            insert(L"Floors", {id});
        for (int32_t i = 0; i < 400; ++i) {
            insert(L"Rooms", {Value(), i % 20 + 1, std::wstring(i % 90, wchar_t(L'a' + i % 26)),
                              std::wstring(i % 10 == 0 ? 6000 : 10, L'n')});
        }
        db().commitTransaction();
        close();
    }

    // Errors are what is expected; anything else ends the test or the program.
    template <class F>
    static void attempt(F&& f) {
        try {
            f();
        } catch (const Error&) {
        }
    }

    void writeEverything() {
        attempt([&] {
            Database database = Database::open(path("damaged.mdb"), OpenMode::Exclusive);
            std::vector<RowId> rooms;
            attempt([&] {
                for (RowCursor rows = database.table(L"Rooms").scan(); rows.next();)
                    rooms.push_back(rows.id());
            });
            for (const bool isOpen : {true, false}) {
                attempt([&] {
                    if (isOpen) database.beginTransaction();
                });
                for (int32_t i = 0; i < 8; ++i) {
                    attempt([&] {
                        Row row{Value(), i + 1, std::wstring(80, L'q'), std::wstring(7000, L'm')};
                        database.writer(L"Rooms").insert(row);
                    });
                    attempt([&] {
                        Row row{100 + i};
                        database.writer(L"Floors").insert(row);
                    });
                }
                for (size_t i = isOpen ? 0 : 1; i < rooms.size(); i += 9) {
                    attempt([&] {
                        Row row{Value(), int32_t(3), std::wstring(200, L'z'), Value()};
                        database.writer(L"Rooms").update(rooms[i], row, {false, true, true, true});
                    });
                    if (i + 2 < rooms.size())
                        attempt([&] { database.writer(L"Rooms").erase(rooms[i + 2]); });
                }
                attempt([&] {
                    std::vector<RowId> floors;
                    for (RowCursor rows = database.table(L"Floors").scan(); rows.next();)
                        floors.push_back(rows.id());
                    for (size_t i = 0; i + 1 < floors.size(); i += 4) {
                        Row row{int32_t(5000 + i)};
                        attempt([&] { database.writer(L"Floors").update(floors[i], row, {true}); });
                        attempt([&] { database.writer(L"Floors").erase(floors[i + 1]); });
                    }
                });
                attempt([&] { database.commitTransaction(); });
            }
        });
    }
};

TEST_F(DamagedWriteTest, NoBytesAreMoreThanAnError) {
    makeFile();
    const std::string sound = read("test.mdb");
    std::mt19937 random(11);
    const auto pick = [&](size_t below) { return random() % below; };
    const size_t pageSize = 4096;
    const char* given = std::getenv("SWIFTGATE_DAMAGES");
    const int count = given != nullptr ? std::atoi(given) : 60;
    for (int i = 0; i < count; ++i) {
        std::string bytes = sound;
        // The tables' pages stand behind those of the catalog; now and then that is hit, too.
        const size_t first = pick(8) == 0 ? 1 : bytes.size() / pageSize / 2;
        for (size_t n = 1 + pick(4); n > 0; --n) {
            const size_t page = first + pick(bytes.size() / pageSize - first);
            const bool isHead = pick(2) == 0;
            const size_t at = page * pageSize + pick(isHead ? 64 : pageSize);
            if (pick(3) == 0) {
                // Another page's bytes.
                const size_t from = pick(bytes.size() / pageSize) * pageSize;
                bytes.replace(page * pageSize, pageSize, sound, from, pageSize);
            } else {
                bytes[at] = static_cast<char>(pick(2) == 0 ? random() : 0xff);
            }
        }
        write("damaged.mdb", bytes);
        writeEverything();
        std::filesystem::remove(folder_ / "damaged.mdb-log");
    }
}

}  // namespace
}  // namespace sg::jet
