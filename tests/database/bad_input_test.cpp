// Every sg_ function with every kind of argument, from every state of a connection on.

#include <gmock/gmock.h>

#include <filesystem>

#include "database/database_fixture.h"
#include "module/function_tables.h"

namespace sg::test {
namespace {

class BadInputTest : public DatabaseTest {
  protected:
    BadInputTest() : before_(std::filesystem::current_path()) {
        // Names without a folder lie in the test's own.
        std::filesystem::current_path(folder_);
        makeFile("plan.mdb", {L"Hall", L"Bath"});
    }
    ~BadInputTest() override { std::filesystem::current_path(before_); }

    // Calls every function with every argument list.
    void callAll(const std::string& state) {
        static const char* const arguments[] = {
            "",
            "nil",
            "T",
            "5",
            "-70000",
            "2.5",
            "\"x\"",
            "'(1.0 2.0)",
            "'(1.0 2.0 3.0)",
            "'(1 . 2)",
            "'(\"x\" (nil (T)))",
            "'((\"x\"))",
            "'((5))",
            "\"x\" nil",
            "\"x\" 5",
            "\"x\" \"y\"",
            "\"x\" '(\"y\")",
            "\"x\" '((\"y\" \"TEXT\"))",
            "5 \"x\"",
            "5 '(\"x\" 5)",
            "nil nil nil nil",
            "\"x\" \"y\" nil nil",
            "\"x\" \"y\" 5 '(5)",
            "\"\" \"\" \"\" \"\"",
            "\"Rooms\"",
            "\"Rooms\" \"None\"",
            "\"Empty\" \"A\"",
        };
        for (const FunctionRow& row : sgFunctions()) {
            restoreFile();
            prepare();
            for (const char* list : arguments)
                call(state, toUtf8(row.name), list);
            SCOPED_TRACE(toUtf8(row.name));
            expectNoLock();
        }
    }

    virtual void prepare() = 0;

  private:
    void call(const std::string& state, const std::string& name, const char* arguments) {
        SCOPED_TRACE(state + ": (" + name + " " + arguments + ")");
        const size_t nodes = acutLiveNodeCount();
        const std::string answer = run("(" + name + " " + arguments + ")");
        EXPECT_FALSE(answer.empty());
        if (answer.starts_with("; error")) {
            EXPECT_TRUE(answer.starts_with("; error: ADS request error | \n")) << answer;
        }
        EXPECT_EQ(acutLiveNodeCount(), nodes);
        EXPECT_EQ(active().lockCount(), 0);
    }
    // Another user can change every record.
    void expectNoLock() {
        CDaoDatabase db;
        db.Open(path("plan.mdb"));
        for (const wchar_t* name : {L"Rooms", L"Empty"}) {
            if (!hasTable(db, name)) continue;
            CDaoRecordset rows(&db);
            rows.Open(dbOpenTable, name);
            EXPECT_EQ(codeOf([&] {
                          for (; !rows.IsEOF(); rows.MoveNext()) {
                              rows.Edit();
                              rows.CancelUpdate();
                          }
                      }),
                      0);
        }
    }
    static bool hasTable(CDaoDatabase& db, const wchar_t* name) {
        CDaoTableDefInfo info;
        return codeOf([&] { db.GetTableDefInfo(name, info); }) == 0;
    }
    // A call may have renamed or deleted what the next one needs.
    void restoreFile() {
        CDaoDatabase db;
        db.Open(path("plan.mdb"));
        if (hasTable(db, L"Rooms") && hasTable(db, L"Empty")) return;
        db.Close();
        run("(sg_close_db)");
        std::filesystem::remove(folder_ / "plan.mdb");
        makeFile("plan.mdb", {L"Hall", L"Bath"});
    }

    const std::filesystem::path before_;
};

class WithoutConnection : public BadInputTest {
    void prepare() override {
        if (currentConnection() != nullptr) run("(sg_close_db) (sg_mdb)");
    }
};
TEST_F(WithoutConnection, NothingBreaks) {
    callAll("no connection");
}

class WithClosedConnection : public BadInputTest {
    void prepare() override {
        connectTo("plan.mdb");
        run("(sg_close_db)");
    }
};
TEST_F(WithClosedConnection, NothingBreaks) {
    callAll("closed");
}

class WithoutTable : public BadInputTest {
    void prepare() override {
        connectTo("plan.mdb");
        run("(sg_closeall_tables)");
    }
};
TEST_F(WithoutTable, NothingBreaks) {
    callAll("no table");
}

class WithTable : public BadInputTest {
  protected:
    void prepare() override {
        connectTo("plan.mdb");
        run("(sg_table \"Rooms\" \"Name\")");
        run("(sg_top)");
    }
};
TEST_F(WithTable, NothingBreaks) {
    callAll("a table");
}

// Another user has deleted the table that is current.
class WithDroppedTable : public WithTable {
    void prepare() override {
        WithTable::prepare();
        CDaoDatabase db;
        db.Open(path("plan.mdb"));
        makeTable(db, L"Gone", {field(L"A", dbLong)});
        run("(sg_table \"Gone\")");
        db.DeleteTableDef(L"Gone");
    }
};
TEST_F(WithDroppedTable, NothingBreaks) {
    callAll("a table that is gone");
}

class ReadOnly : public BadInputTest {
  protected:
    ReadOnly() { bytes_ = read("plan.mdb"); }
    ~ReadOnly() override {
        run("(sg_close_db)");
        EXPECT_EQ(read("plan.mdb"), bytes_);
    }

  private:
    void prepare() override {
        connectTo("plan.mdb", " \"r\"");
        run("(sg_table \"Rooms\" \"Name\")");
    }
    std::string bytes_;
};
TEST_F(ReadOnly, NothingBreaksAndNothingIsWritten) {
    callAll("read-only");
}

}  // namespace
}  // namespace sg::test
