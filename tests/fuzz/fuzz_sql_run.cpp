// Any text as a script that runs over a small database: it ends soon, in nothing worse than an
// engine error, and leaves a database without findings and without an open transaction.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "base/encoding.h"
#include "host/jet/check/check.h"
#include "host/jet/format/error.h"
#include "host/sql/parser.h"
#include "host/sql/run/session.h"
#include "jet_small_file.h"

namespace sg::sql {
namespace {

namespace attributes = jet::queryAttributes;

const wchar_t* const fileName = L"small.mdb";
constexpr int looksAllowed = 60;
constexpr uint64_t resultBytes = uint64_t(2) << 20;
constexpr size_t statementsRun = 12;

// The small file with queries that ask others.
const std::vector<uint8_t>& content() {
    static const std::vector<uint8_t> bytes = [] {
        jet::RecordingFiles files({{fileName, jet::test::smallFile()}});
        {
            jet::Database db = jet::Database::open(fileName, jet::OpenMode::Exclusive,
                                                   jet::test::memoryOptions(files));
            const auto ask = [&](const wchar_t* name, const wchar_t* table) {
                std::vector<jet::QueryRow> rows(2);
                rows[0].attribute = attributes::table;
                rows[0].name1 = table;
                rows[1].attribute = attributes::column;
                rows[1].expression = L"*";
                jet::putQuery(db, name, 0, rows);
            };
            ask(L"Few", L"Floors");
            ask(L"FewAgain", L"Few");
            ask(L"Round", L"AndRound");
            ask(L"AndRound", L"Round");
        }
        return files.content(fileName);
    }();
    return bytes;
}

// A database of its own until a statement has changed it.
class Bed {
  public:
    Bed()
        : files_({{fileName, content()}}),
          database_(jet::Database::open(fileName, jet::OpenMode::Exclusive,
                                        jet::test::memoryOptions(files_))) {}

    bool isChanged() const { return isChanged_; }

    void run(const Statement& statement) {
        Session session(database_);
        int looks = 0;
        session.limit({[&] { return ++looks > looksAllowed; }, resultBytes});
        const Parameters parameters = {{L"p", int32_t(3)}, {L"", std::wstring(L"Level 2")}};
        try {
            const auto* query = std::get_if<QueryPtr>(&statement.body);
            if (query != nullptr) {
                session.explain(statement, parameters);
                readAll(*session.select(statement, parameters));
            }
            isChanged_ = isChanged_ || query == nullptr;
            session.execute(statement, parameters);
            isChanged_ = true;
        } catch (const jet::Error&) {
        }
        if (database_.transactionDepth() != 0) {
            std::fprintf(stderr, "a transaction was left open\n");
            std::abort();
        }
    }

    void check() {
        for (const jet::CheckFinding& finding : checkDatabase(database_)) {
            std::fprintf(stderr, "left behind: %s: %s\n", toUtf8(finding.table).c_str(),
                         toUtf8(finding.what).c_str());
            std::abort();
        }
    }

  private:
    static void readAll(jet::SnapshotRecordset& rows) {
        jet::Value value;
        for (uint32_t row = 0; row < rows.recordCount(); ++row) {
            for (size_t column = 0; column < rows.columns().size(); ++column) {
                rows.value(column, value);
            }
            rows.move(1);
        }
    }

    jet::RecordingFiles files_;
    jet::Database database_;
    bool isChanged_ = false;
};

void run(std::wstring_view text) {
    static std::unique_ptr<Bed> bed;
    std::vector<ScriptEntry> script;
    try {
        parseScript(text, script);
    } catch (const jet::Error&) {
        return;
    }
    if (bed == nullptr) {
        bed = std::make_unique<Bed>();
    }
    for (size_t i = 0; i < script.size() && i < statementsRun; ++i) {
        bed->run(script[i].statement);
    }
    if (bed->isChanged()) {
        bed->check();
        bed.reset();
    }
}

}  // namespace
}  // namespace sg::sql

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    sg::sql::run(sg::fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size)));
    return 0;
}
