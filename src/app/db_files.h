#pragma once

#include <string>
#include <vector>

#include "app/progress_bar.h"
#include "host/jet/database/database.h"

// What the db commands share: a database that is opened, its tables, and what is wrong with it.
namespace sg::app {

// An error's line: the file, what is wrong, and the engine's number.
std::wstring described(const jet::Error& error);

// `text` with a blank for every control character, so that nothing out of a file ends a line or
// reaches the terminal's controls.
std::wstring onOneLine(std::wstring_view text);

// Reports damage that a command meets and goes on after, each on a line of standard error, and past
// a hundred lines only how many more there were.
class DamageReport {
  public:
    // Lines take the place of the bar for a moment.
    explicit DamageReport(ProgressBar* bar = nullptr) : bar_(bar) {}
    DamageReport(const DamageReport&) = delete;
    DamageReport& operator=(const DamageReport&) = delete;
    ~DamageReport();

    void add(const jet::Error& error) { add(described(error)); }
    void add(const std::vector<jet::Error>& errors);
    void add(const std::wstring& line);
    // kFileError when anything was reported, else kDone.
    int exitCode() const;

  private:
    ProgressBar* const bar_;
    size_t count_ = 0;
};

// A table that the command line names and the file does not have.
struct UnknownTable {
    std::wstring message;  // with the names that may be meant
};

// Opens FILE, found as every file name of the program is, and as links in it are. Throws
// jet::Error.
jet::Database openDatabase(const std::wstring& file, jet::OpenMode mode = jet::OpenMode::ReadOnly);

// The tables that users see, in the catalog's order: those of the file and linked ones.
std::vector<jet::CatalogObject> userTables(const jet::Database& database);

// The table or linked table `name`, ignoring case; system tables count too. Throws UnknownTable.
jet::CatalogObject findTable(const jet::Database& database, const std::wstring& name);

// Places of the columns in the order in which programs show them.
std::vector<size_t> shownOrder(const jet::TableDefinition& table);

// Where the table is: this database, or that which a link leads to; `name` becomes its name there.
// Throws jet::Error with the table's name: what cannot be read, or a link to something that is not
// a database file.
jet::Database& homeOf(jet::Database& database, const jet::CatalogObject& object,
                      std::wstring& name);

}  // namespace sg::app
