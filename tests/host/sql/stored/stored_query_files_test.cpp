// Stored queries of other programs' files, and ours as another program reads them.

#include <algorithm>
#include <array>
#include <cstdlib>

#include "base/text.h"
#include "host/sql/parse_cases.h"
#include "host/sql/run/session_fixture.h"
#include "host/sql/stored/query_form.h"
#include "host/sql/stored/stored_query.h"
#include "real_data.h"

namespace sg::sql {
namespace {

namespace attr = jet::queryAttributes;

std::filesystem::path realFile(const char* name) {
    return sg::test::realData() / "mdb" / name;
}

// What `command` prints; empty when it cannot be run.
std::string outputOf(const std::string& command) {
    std::string output;
    FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) {
        return output;
    }
    std::array<char, 4096> buffer;
    for (size_t got; (got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
        output.append(buffer.data(), got);
    }
    ::pclose(pipe);
    return output;
}

// The rows of an attribute as far as they mean something: blanks at the ends of expressions and a
// flag that is 0 or missing make no difference, nor the name of a crosstab's pivot, which is in no
// text.
std::vector<std::wstring> meaningOf(const std::vector<jet::QueryRow>& rows, uint8_t attribute,
                                    bool isCrosstab) {
    std::vector<std::wstring> all;
    for (const jet::QueryRow& row : rows) {
        if (row.attribute == attribute) {
            std::wstring expression(trimmed(row.expression.value_or(L"")));
            std::erase(expression, L'\0');  // which ends definitions
            const int flag = row.flag.value_or(0);
            const bool isPivot = attribute == attr::column && flag == jet::queryColumns::pivot;
            all.push_back((isPivot ? L"" : row.name1.value_or(L"")) + L"|" +
                          row.name2.value_or(L"") + L"|" + expression + L"|" +
                          std::to_wstring(flag));
        }
    }
    // Some queries have no row of options. Tables stand in the order in which a program's user
    // chose them, ours in that of the text; likewise the columns of crosstabs, which their flags
    // tell apart.
    if (attribute == attr::options && all.empty()) {
        all.push_back(L"|||0");
    }
    if (attribute == attr::table || isCrosstab) {
        std::sort(all.begin(), all.end());
    }
    return all;
}

class StoredQueryFilesTest : public SessionTest {
  protected:
    // What is different between a query's rows and those that its own text makes.
    static std::string differences(const jet::Query& query) {
        const std::wstring text = query.sql();
        const QueryForm form = queryForm(parseStatement(text), text);
        std::string all = form.kind == query.kind() ? "" : "kind ";
        for (int attribute = attr::kind; attribute < attr::end; ++attribute) {
            const bool isCrosstab = query.kind() == jet::QueryKind::Crosstab;
            const auto own = meaningOf(query.rows, static_cast<uint8_t>(attribute), isCrosstab);
            const auto made = meaningOf(form.rows, static_cast<uint8_t>(attribute), isCrosstab);
            if (own != made) {
                all += std::to_string(attribute) + ": ";
                for (const std::wstring& row : own) {
                    all += toUtf8(row) + "; ";
                }
                all += "are now ";
                for (const std::wstring& row : made) {
                    all += toUtf8(row) + "; ";
                }
            }
        }
        return all;
    }
};

TEST_F(StoredQueryFilesTest, RealQueriesKeepTheirRows) {
    size_t count = 0;
    for (const char* name : {"queryTestV2000.mdb", "nwind.mdb"}) {
        if (!std::filesystem::exists(realFile(name))) {
            GTEST_SKIP() << "no real files";
        }
        const jet::Database file = jet::Database::openReadOnly(realFile(name).wstring());
        for (const jet::Query& query : file.queries()) {
            if (query.kind() == jet::QueryKind::PassThrough) {
                continue;  // its text is for another program
            }
            ++count;
            EXPECT_EQ(differences(query), "") << toUtf8(query.name);
        }
    }
    EXPECT_EQ(count, 30u);
}

TEST_F(StoredQueryFilesTest, RealQueriesAreTheSameWhenWrittenAgain) {
    const std::filesystem::path original = realFile("queryTestV2000.mdb");
    if (!std::filesystem::exists(original)) {
        GTEST_SKIP() << "no real files";
    }
    session_.reset();
    database_->close();
    std::filesystem::copy_file(original, file(), std::filesystem::copy_options::overwrite_existing);
    std::filesystem::permissions(file(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    const auto printed = [&](const std::wstring& name) {
        return outputOf("mdb-queries '" + file() + "' " + toUtf8(name));
    };
    database_.reset(new jet::Database(
        jet::Database::open(std::filesystem::path(file()).wstring(), jet::OpenMode::Shared)));
    const std::vector<jet::Query> before = database_->queries();
    std::vector<std::string> shownBefore;
    for (const jet::Query& query : before) {
        shownBefore.push_back(printed(query.name));
        // Tables are listed as the joins name them.
        const size_t tables = shownBefore.back().find("[Table2],[Table3]");
        if (query.name == L"SelectQuery" && tables != std::string::npos) {
            shownBefore.back().replace(tables, 17, "[Table3],[Table2]");
        }
        storeQuery(*database_, query.name, query.sql());
    }
    const std::vector<jet::Query> after = database_->queries();
    ASSERT_EQ(after.size(), before.size());
    database_->close();
    for (size_t i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].sql(), before[i].sql());
        EXPECT_EQ(after[i].flags, before[i].flags);
        EXPECT_EQ(printed(after[i].name), shownBefore[i]);
    }
}

TEST_F(StoredQueryFilesTest, AnotherProgramReadsOurs) {
    if (outputOf("mdb-queries --version").empty() && outputOf("mdb-ver --version").empty()) {
        GTEST_SKIP() << "no mdb-queries";
    }
    // It knows neither joins' conditions nor aliases, kinds nor unions, and prints what it finds as
    // one SELECT.
    struct Case {
        const wchar_t* name;
        const wchar_t* text;
        const char* printed;
    };
    const Case cases[] = {
        {L"Joined",
         L"SELECT DISTINCT Rooms.Code, Levels.Name AS n FROM (Rooms LEFT JOIN Levels ON "
         L"Rooms.Level "
         L"= Levels.Id) INNER JOIN Doors ON Rooms.Id = Doors.Room WHERE Area > 10 ORDER BY Name",
         "SELECT DISTINCT Rooms.Code,Levels.Name FROM [Rooms],[Levels],[Doors] WHERE Area > 10 "
         "ORDER BY Name"},
        {L"Raised", L"UPDATE Rooms SET Area = Area + 1 WHERE Level = 2",
         "SELECT Area + 1 FROM [Rooms] WHERE Level = 2"},
        {L"Both", L"SELECT Code FROM Rooms UNION SELECT Name FROM Levels ORDER BY Code",
         "SELECT DISTINCT  FROM [],[]  ORDER BY Code"},
    };
    for (const Case& c : cases) {
        storeQuery(*database_, c.name, c.text);
    }
    session_.reset();
    database_->close();
    const auto words = [](std::string text) {  // its blanks are as they come
        std::string all;
        for (const char c : text) {
            if (c == '\n' || c == ' ') {
                all += all.empty() || all.back() == ' ' ? "" : " ";
            } else {
                all += c;
            }
        }
        while (!all.empty() && all.back() == ' ') {
            all.pop_back();
        }
        return all;
    };
    std::string all = outputOf("mdb-queries -1 '" + file() + "'");
    for (const Case& c : cases) {
        EXPECT_NE(all.find(toUtf8(c.name) + "\n"), std::string::npos) << all;
        EXPECT_EQ(words(outputOf("mdb-queries '" + file() + "' " + toUtf8(c.name))),
                  words(c.printed));
    }
}

}  // namespace
}  // namespace sg::sql
