#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

#include "host/jet/child_process.h"
#include "host/jet/engine_workload.h"
#include "host/jet/file_content.h"
#include "host/jet/recordset/recordset.h"
#include "host/jet/schema/schema.h"
#include "host/jet/schema_files.h"
#include "host/jet/storage/shared_state.h"

// Several programs at work on one database.
namespace sg::jet::test {
namespace {

constexpr int32_t sums = 2;
constexpr int workPerRound = 120;
constexpr const wchar_t* users[] = {L"one", L"two"};

StorageOptions optionsOf(const wchar_t* user) {
    StorageOptions options;
    options.checkpointDelay = std::chrono::milliseconds(2);
    options.writerPatience = std::chrono::milliseconds(20);
    options.name = {user, L"desk"};
    return options;
}

// What one writer has done: how often it counted each sum on, and the entries that it made.
struct Account {
    std::array<int32_t, sums> counted{};
    int32_t entries = 0;
    bool operator==(const Account&) const = default;
};

// A sum or two to count on, or an entry to make; two sums and an entry are one transaction.
struct Work {
    std::vector<int32_t> ids;
    bool makesEntry = false;

    explicit Work(std::mt19937& random) {
        const size_t kind = random() % 4;
        if (kind < 3) ids.push_back(1 + int32_t(random() % sums));
        if (kind == 2) ids.push_back(ids[0] % sums + 1);
        makesEntry = kind >= 2;
    }
    bool isTransaction() const { return ids.size() > 1; }
    void addTo(Account& account) const {
        for (const int32_t id : ids)
            ++account.counted[size_t(id) - 1];
        account.entries += makesEntry ? 1 : 0;
    }
};

Account accountAfter(Account account, unsigned seed, int64_t works) {
    std::mt19937 choices(seed);
    for (int64_t i = 0; i < works; ++i)
        Work(choices).addTo(account);
    return account;
}

// Tries again while somebody else is in the way.
template <class F>
void untilDone(F function) {
    while (true) {
        try {
            return function();
        } catch (const Error& error) {
            if (error.code() != LockedByUser && error.code() != Storage::savingLocked) throw;
            // Who comes again at once keeps the other from finishing.
            std::this_thread::sleep_for(std::chrono::microseconds(300));
        }
    }
}

class Writer {
  public:
    Writer(Database& database, int writer, unsigned seed, int32_t entries)
        : database_(&database), writer_(writer), choices_(seed), entries_(entries) {}

    void workOnce() {
        const Work work(choices_);
        if (work.makesEntry) ++entries_;
        if (!work.isTransaction()) return doIt(work);
        untilDone([&] {
            database_->beginTransaction();
            try {
                doIt(work);
            } catch (...) {
                database_->rollbackTransaction();
                throw;
            }
            database_->commitTransaction();
        });
    }

  private:
    void doIt(const Work& work) {
        for (const int32_t id : work.ids)
            count(id, work.isTransaction());
        if (!work.makesEntry) return;
        std::vector<Value> entry{Value(), writer_, entries_};
        const auto insert = [&] { database_->writer(L"Entries").insert(entry); };
        work.isTransaction() ? insert() : untilDone(insert);
    }

    void count(int32_t id, bool isInTransaction) {
        TableRecordset rows(*database_, L"Sums");
        rows.setIndex(L"PrimaryKey");
        if (!rows.seek(SeekOperator::Equal, {{Value(id)}})) throw std::logic_error("no such sum");
        const auto edit = [&] { rows.edit(); };
        const auto update = [&] { rows.update(); };
        isInTransaction ? edit() : untilDone(edit);
        // Somebody thinks about it; the other one comes in between.
        for (int i = 0; i < 3; ++i)
            std::this_thread::yield();
        for (const wchar_t* name : {L"Total", users[writer_]}) {
            const size_t column = rows.columnByName(name);
            rows.setValue(column, std::get<int32_t>(rows.value(column)) + 1);
        }
        rows.setValue(rows.columnByName(L"Tag"), std::wstring(texts_() % 200, wchar_t(L'a' + id)));
        isInTransaction ? update() : untilDone(update);
    }

    Database* database_;
    int writer_;
    std::mt19937 choices_;
    std::mt19937 texts_{7};
    int32_t entries_;  // that it has made
};

class EngineProcesses : public FolderTest {
  protected:
    void makeSums() {
        Database database = Database::create(path("sums.mdb"));
        createTable(database, tableOf(L"Sums",
                                      {longColumn(L"Id"), longColumn(L"Total"), longColumn(L"One"),
                                       longColumn(L"Two"), textColumn(L"Tag", 255)},
                                      {primaryOver({L"Id"}), indexOver(L"ByTag", {L"Tag"})}));
        createTable(
            database,
            tableOf(L"Entries",
                    {longColumn(L"Id", true), longColumn(L"Writer"), longColumn(L"Number")},
                    {primaryOver({L"Id"}), indexOver(L"ByWriter", {L"Writer", L"Number"}, true)}));
        for (int32_t id = 1; id <= sums; ++id) {
            std::vector<Value> row{id, int32_t(0), int32_t(0), int32_t(0), Value()};
            database.writer(L"Sums").insert(row);
        }
    }

    void write(int writer, unsigned seed, const ChildProcess::Parent& parent) {
        try {
            Database database =
                Database::open(path("sums.mdb"), OpenMode::Shared, optionsOf(users[writer]));
            Writer work(database, writer, seed, entriesOf(database, writer));
            parent.tell(0);
            parent.hear();
            for (int i = 1; i <= workPerRound; ++i) {
                work.workOnce();
                parent.tell(i);
            }
        } catch (const std::exception& error) {
            std::fprintf(stderr, "writer %d: %s\n", writer, error.what());
            parent.tell(-1);
        }
    }
    static int32_t entriesOf(const Database& database, int writer) {
        const Database::ReadScope scope(database);
        int32_t count = 0;
        for (RowCursor rows = database.table(L"Entries").scan(); rows.next();)
            count += rows.value(1) == Value(writer) ? 1 : 0;
        return count;
    }
    // Throws when the sums are not those of their parts.
    static Account accountOf(const Database& database, int writer) {
        const Database::ReadScope scope(database);
        Account account;
        for (RowCursor rows = database.table(L"Sums").scan(); rows.next();) {
            const auto number = [&](size_t column) {
                return std::get<int32_t>(rows.value(column));
            };
            account.counted[size_t(number(0)) - 1] = number(2 + size_t(writer));
            if (number(1) != number(2) + number(3)) throw std::logic_error("a count was lost");
        }
        account.entries = entriesOf(database, writer);
        return account;
    }
    // Every record can be had, but for those that the living one has.
    static void expectNoLockOf(Database& database, int dead) {
        TableRecordset rows(database, L"Sums");
        for (; !rows.isEof(); rows.move(1)) {
            std::wstring owner;
            // One who is just taking a lock or giving it up has no name yet or any more.
            for (int attempt = 0; attempt < 1000 && owner.empty(); ++attempt) {
                try {
                    rows.edit();
                    rows.cancelUpdate();
                    break;
                } catch (const Error& error) {
                    ASSERT_EQ(error.code(), LockedByUser);
                    owner = error.names().at(0);
                    ASSERT_TRUE(owner.empty() || owner == users[1 - dead]);
                }
                ASSERT_LT(attempt, 999);
            }
        }
    }

    std::mt19937 random_{5};
};

TEST_F(EngineProcesses, NoCountIsLost) {
    makeSums();
    const char* more = std::getenv("SWIFTGATE_CRASH_RUNS");
    const int rounds = more != nullptr ? std::max(1, std::atoi(more) / 4) : 6;
    Account accounts[2];
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        const unsigned seeds[2] = {unsigned(random_()), unsigned(random_())};
        const auto start = [&](int writer) {
            return [this, writer, seed = seeds[writer]](const ChildProcess::Parent& parent) {
                write(writer, seed, parent);
            };
        };
        ChildProcess one(start(0)), two(start(1));
        // Together.
        ASSERT_EQ(one.hear(), 0);
        ASSERT_EQ(two.hear(), 0);
        one.tell(0);
        two.tell(0);
        const int dead = int(random_() % 2);
        ChildProcess& dying = dead == 0 ? one : two;
        ChildProcess& living = dead == 0 ? two : one;

        int64_t told = 0;
        for (const int64_t heard = random_() % workPerRound; told < heard;)
            ASSERT_GT(told = dying.hear(), 0);
        dying.kill();
        for (int64_t next; (next = dying.hear()) != ChildProcess::none;)
            ASSERT_GT(told = next, 0);

        StorageOptions mine = optionsOf(L"me");
        mine.checkpointDelay = std::chrono::milliseconds(0);
        Database database = Database::open(path("sums.mdb"), OpenMode::Shared, mine);
        expectNoLockOf(database, dead);
        if (HasFatalFailure()) return;
        const Account found = accountOf(database, dead);
        const Account before = accountAfter(accounts[dead], seeds[dead], told);
        const Account after = accountAfter(accounts[dead], seeds[dead], told + 1);
        ASSERT_TRUE(found == before || found == after) << told;
        accounts[dead] = found;

        for (int64_t i = 1; i <= workPerRound; ++i)
            ASSERT_EQ(living.hear(), i);
        ASSERT_EQ(living.finish(), 0);
        accounts[1 - dead] = accountAfter(accounts[1 - dead], seeds[1 - dead], workPerRound);
        for (const int writer : {0, 1})
            ASSERT_TRUE(accountOf(database, writer) == accounts[writer]) << writer;
        ASSERT_EQ(findingsIn(database), "");
    }
}

// What a program that knows nothing of the log finds at any moment outside a checkpoint's writes.
TEST_F(EngineProcesses, TheFileAloneIsAWholeEarlierState) {
    Session session{path("plan.mdb")};
    session.options.checkpointDelay = std::chrono::milliseconds(1);
    session.options.transactionBytes = 64 * 1024;
    makeEngineFile(session);
    const DatabaseState start = stateOf(Database::openReadOnly(session.path));
    const unsigned seed = 1;
    ChildProcess child([&](const ChildProcess::Parent& parent) {
        EngineWorkload workload(seed, start);
        workload.stayOpen();
        session.open();
        parent.tell(0);
        for (int64_t count; (count = parent.hear()) > 0; parent.tell(0)) {
            for (; count > 0; --count) {
                workload.plan();
                workload.perform(session);
            }
        }
    });
    ASSERT_EQ(child.hear(), 0);
    EngineWorkload workload(seed, start);
    workload.stayOpen();
    SharedState shared(posixFiles(), Storage::sharedPath(session.path), session.path);
    shared.unlockAttaching();
    int64_t begun = 0, reached = 0;
    for (int round = 0; round < 12; ++round) {
        const int64_t count = 10;
        child.tell(count);
        begun += count;
        for (int copies = 0; copies < 4; ++copies) {
            while (!shared.tryLockCheckpoint())
                std::this_thread::yield();
            auto copy = std::make_unique<FileContent>(session.path);
            shared.unlockCheckpoint();
            const Database database(std::move(copy));
            ASSERT_EQ(findingsIn(database), "");
            const DatabaseState found = stateOf(database);
            for (; found != workload.state(); ++reached) {
                ASSERT_LT(reached, begun) << "no state that there was";
                workload.plan();
            }
        }
        ASSERT_EQ(child.hear(), 0);
    }
}

}  // namespace
}  // namespace sg::jet::test
