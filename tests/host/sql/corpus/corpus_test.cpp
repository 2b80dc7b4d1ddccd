// Runs the statements of the files beside this one, and compares what each gives.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "base/encoding.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/jet/schema/schema.h"
#include "host/sql/corpus/corpus_file.h"
#include "host/sql/parser.h"
#include "host/system/temporary_folder.h"
#include "real_data.h"

namespace sg::sql::corpus {
namespace {

const std::filesystem::path corpusFolder = SWIFTGATE_SQL_CORPUS;

std::vector<std::filesystem::path> corpusFiles() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(corpusFolder)) {
        if (entry.path().extension() == ".txt") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string joined(const Cells& cells) {
    std::string line;
    for (const std::string& cell : cells)
        line += (line.empty() ? "" : ", ") + cell;
    return line;
}

// A result as a file has it. Rows without an order of their own are sorted.
std::string shown(ExpectedRows rows) {
    if (!rows.inOrder) std::sort(rows.rows.begin(), rows.rows.end());
    std::string text = joined(rows.columns) + "\n";
    for (const Cells& row : rows.rows)
        text += "  " + joined(row) + "\n";
    return text;
}

ExpectedRows resultOf(jet::Recordset& recordset, bool inOrder) {
    ExpectedRows result{inOrder, {}, {}};
    for (const jet::RecordColumn& column : recordset.columns())
        result.columns.push_back(toUtf8(column.name) + " " + written(column.type));
    for (recordset.moveFirst(); !recordset.isEof(); recordset.move(1)) {
        Cells row;
        for (size_t i = 0; i < recordset.columns().size(); ++i)
            row.push_back(written(recordset.value(i)));
        result.rows.push_back(std::move(row));
    }
    return result;
}

// Takes the types that may be any out of a result.
void leaveOpen(const Cells& expected, Cells& columns) {
    constexpr std::string_view any = " any";
    for (size_t i = 0; i < expected.size() && i < columns.size(); ++i) {
        if (expected[i].ends_with(any))
            columns[i].replace(columns[i].rfind(' '), columns[i].npos, any);
    }
}

class CorpusTest : public FolderTest, public testing::WithParamInterface<std::filesystem::path> {
  protected:
    CorpusTest() { turnTo("main"); }

    void run(const Entry& entry) {
        if (!entry.directive.empty()) return follow(entry.directive);
        const std::wstring text = placed(entry.statement);
        try {
            compare(entry, text);
        } catch (const jet::Error& error) {
            if (entry.error != anyError) {
                EXPECT_EQ(error.code(), entry.error) << error.what();
            }
        }
    }

  private:
    struct Opened {
        std::unique_ptr<jet::Database> database;
        std::unique_ptr<Session> session;
    };

    void compare(const Entry& entry, const std::wstring& text) {
        const Statement statement = parseStatement(text);
        if (entry.rows || (entry.error && session_->givesRows(statement))) {
            const auto rows = session_->select(statement, entry.parameters);
            ASSERT_TRUE(entry.rows) << "there are " << rows->recordCount() << " rows";
            ExpectedRows result = resultOf(*rows, entry.rows->inOrder);
            leaveOpen(entry.rows->columns, result.columns);
            EXPECT_EQ(shown(std::move(result)), shown(*entry.rows));
            return;
        }
        const int64_t changed = session_->execute(statement, entry.parameters);
        if (entry.changed) {
            EXPECT_EQ(changed, *entry.changed);
        } else {
            EXPECT_TRUE(entry.isDone) << "there is no error";
        }
    }

    void follow(const std::vector<std::string>& words) {
        if (words.size() == 2 && words[0] == "use") return use(words[1]);
        if (words.size() == 2 && words[0] == "database") return turnTo(words[1]);
        if (words.size() == 2 && words[0] == "read") return openReal(words[1]);
        if (words.size() == 2 && words[0] == "copy") return openCopy(words[1]);
        if (words.size() == 6 && words[0] == "link" && words[2] == "to" && words[4] == "in") {
            return jet::linkTable(*database_, fromUtf8(words[1]),
                                  L";DATABASE=" + pathOf(words[5]).wstring(), fromUtf8(words[3]));
        }
        throw std::runtime_error("no directive: " + joined(words));
    }

    void use(const std::string& name) {
        const std::filesystem::path path = corpusFolder / "tables" / (name + ".sql");
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        std::vector<ScriptEntry> script;
        parseScript(fromUtf8(text.str()), script);
        ASSERT_FALSE(script.empty()) << path;
        for (const ScriptEntry& entry : script)
            session_->execute(entry.statement);
    }

    // Makes the database when there is none of that name.
    void turnTo(const std::string& name) {
        if (databases_[name].database == nullptr) {
            jet::Database::create(pathOf(name).wstring());
            open(name, pathOf(name), jet::OpenMode::Shared);
        }
        database_ = databases_[name].database.get();
        session_ = databases_[name].session.get();
    }

    void open(const std::string& name, const std::filesystem::path& file, jet::OpenMode mode) {
        Opened& opened = databases_[name];
        opened.database.reset(new jet::Database(jet::Database::open(file.wstring(), mode)));
        opened.session = std::make_unique<Session>(*opened.database);
    }

    void openReal(const std::string& file) {
        open(file, sg::test::realData() / "mdb" / file, jet::OpenMode::ReadOnly);
        turnTo(file);
    }

    void openCopy(const std::string& file) {
        std::filesystem::copy_file(sg::test::realData() / "mdb" / file, pathOf(file));
        std::filesystem::permissions(pathOf(file), std::filesystem::perms::owner_all);
        open(file, pathOf(file), jet::OpenMode::Shared);
        turnTo(file);
    }

    std::filesystem::path pathOf(const std::string& name) const {
        return folder_ / (name + ".mdb");
    }

    // With the files' folder for "{folder}".
    std::wstring placed(std::wstring text) const {
        constexpr std::wstring_view place = L"{folder}";
        for (size_t at = 0; (at = text.find(place, at)) != text.npos;)
            text.replace(at, place.size(), path());
        return text;
    }

    std::map<std::string, Opened> databases_;
    jet::Database* database_ = nullptr;
    Session* session_ = nullptr;
};

// False where a directive takes a real file that is not there.
bool hasFiles(const std::vector<Entry>& entries) {
    return std::all_of(entries.begin(), entries.end(), [](const Entry& entry) {
        const bool takesOne = entry.directive.size() == 2 &&
                              (entry.directive[0] == "read" || entry.directive[0] == "copy");
        return !takesOne ||
               std::filesystem::exists(sg::test::realData() / "mdb" / entry.directive[1]);
    });
}

TEST_P(CorpusTest, GivesWhatIsWritten) {
    const std::vector<Entry> entries = entriesOf(GetParam());
    if (!hasFiles(entries)) GTEST_SKIP() << "no real files in " << (sg::test::realData() / "mdb");
    for (const Entry& entry : entries) {
        SCOPED_TRACE(GetParam().filename().string() + ":" + std::to_string(entry.line) + ": " +
                     toUtf8(entry.statement));
        run(entry);
    }
}

std::string testName(const testing::TestParamInfo<std::filesystem::path>& info) {
    std::string name = info.param.stem().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Sql, CorpusTest, testing::ValuesIn(corpusFiles()), testName);

}  // namespace
}  // namespace sg::sql::corpus
