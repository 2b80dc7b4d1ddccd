#include <string>
#include <vector>

#include "app/commands.h"
#include "app/db_browse.h"
#include "app/db_compact.h"
#include "app/db_export.h"
#include "app/db_files.h"
#include "app/db_import.h"
#include "app/db_schema.h"
#include "app/db_sql.h"
#include "app/exit_codes.h"
#include "app/process.h"
#include "app/progress_bar.h"
#include "base/text.h"
#include "host/jet/check/check.h"
#include "host/seam/file_error.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

constexpr size_t kMostFindings = 1000;

// Writes out what is still gathered and answers `code`. Throws FileError when output is lost.
int finished(int code) {
    if (!flushOutput()) throw FileError(L"standard output cannot be written");
    return code;
}

int listTables(const DatabaseArguments& arguments) {
    const jet::Database database = openDatabase(arguments.file);
    const jet::Database::ReadScope scope(database);
    DamageReport damage;
    damage.add(database.catalogDamage());
    for (const jet::CatalogObject& table : userTables(database))
        printOut(onOneLine(table.name) + L"\n");
    return finished(damage.exitCode());
}

// No properties when they are damaged.
jet::Properties propertiesOf(const jet::Database& database, const jet::CatalogObject& object,
                             DamageReport& damage) {
    try {
        return database.properties(object);
    } catch (const jet::Error& error) {
        damage.add(error);
        return {};
    }
}

void printTable(const jet::Database& database, const jet::CatalogObject& object,
                DamageReport& damage) {
    try {
        const jet::Properties properties = propertiesOf(database, object, damage);
        if (object.isLinked()) {
            printOut(L"\n" + linkSchema(object, properties));
            return;
        }
        const jet::Table table = database.tableAt(object.definitionPage());
        printOut(L"\n" + tableSchema(table.definition(), properties, database.store().format()));
    } catch (const jet::Error& error) {
        damage.add(error);
    }
}

// The relations that join two of the tables, or with one table given all that it is part of.
void printRelations(const jet::Database& database, const std::vector<jet::CatalogObject>& tables,
                    bool one, DamageReport& damage) {
    const auto isShown = [&](const std::wstring& name) {
        for (const jet::CatalogObject& table : tables) {
            if (equalIgnoringCase(table.name, name)) return true;
        }
        return false;
    };
    std::vector<jet::Error> errors;
    std::wstring text;
    for (const jet::Relation& relation : database.relations(&errors)) {
        const bool primary = isShown(relation.table);
        const bool foreign = isShown(relation.foreignTable);
        if (one ? primary || foreign : primary && foreign) text += relationSchema(relation);
    }
    damage.add(errors);
    if (!text.empty()) printOut(L"\n" + text);
}

int printSchema(const DatabaseArguments& arguments) {
    const jet::Database database = openDatabase(arguments.file);
    const jet::Database::ReadScope scope(database);
    const bool one = !arguments.table.empty();
    const std::vector<jet::CatalogObject> tables =
        one ? std::vector{findTable(database, arguments.table)} : userTables(database);
    ProgressBar bar(L"Reading definitions", ProgressBar::Beside::Output);
    DamageReport damage(&bar);
    damage.add(database.catalogDamage());
    printOut(L"-- " + onOneLine(database.store().name()) + L" (" +
             versionName(database.header().version) + L")\n");
    for (size_t i = 0; i < tables.size(); ++i) {
        printTable(database, tables[i], damage);
        bar.show(i + 1, tables.size());
    }
    printRelations(database, tables, one, damage);
    return finished(damage.exitCode());
}

// The lines of a statement end with CR LF, or are whatever somebody typed.
std::wstring withLineFeeds(std::wstring text) {
    std::erase(text, L'\r');
    while (text.ends_with(L'\n'))
        text.pop_back();
    return text;
}

// The statements with their names in comments. Programs keep queries of their own under names that
// begin with "~"; those are not shown.
int printQueries(const DatabaseArguments& arguments) {
    const jet::Database database = openDatabase(arguments.file);
    const jet::Database::ReadScope scope(database);
    DamageReport damage;
    damage.add(database.catalogDamage());
    std::vector<jet::Error> errors;
    bool first = true;
    for (const jet::Query& query : database.queries(&errors)) {
        if (query.name.starts_with(L"~")) continue;
        try {
            const std::wstring sql = withLineFeeds(query.sql());
            printOut((first ? L"-- " : L"\n-- ") + onOneLine(query.name) + L"\n" + sql + L"\n");
            first = false;
        } catch (jet::Error& error) {
            error.addFile(database.store().name());
            damage.add(error);
        }
    }
    damage.add(errors);
    return finished(damage.exitCode());
}

std::vector<jet::CheckFinding> findingsIn(const jet::Database& database) {
    // What others write meanwhile would contradict what was read before.
    const jet::Database::ReadScope scope(database);
    ProgressBar bar(L"Checking " + std::wstring(lastComponent(database.name())));
    return jet::checkDatabase(database, kMostFindings,
                              [&](uint64_t done, uint64_t total) { bar.show(done, total); });
}

int check(const DatabaseArguments& arguments) {
    const jet::Database database = openDatabase(arguments.file);
    const std::vector<jet::CheckFinding> findings = findingsIn(database);
    for (const jet::CheckFinding& finding : findings) {
        std::wstring line;
        if (!finding.table.empty()) line += L"table " + finding.table + L": ";
        if (finding.page) line += L"page " + std::to_wstring(*finding.page) + L": ";
        printOut(onOneLine(line + finding.what) + L"\n");
    }
    if (findings.size() >= kMostFindings) {
        complain(L"there may be more; the check ended after " + std::to_wstring(findings.size()) +
                 L" findings");
    }
    return finished(findings.empty() ? kDone : kFindings);
}

int perform(const DatabaseArguments& arguments) {
    switch (arguments.action) {
        case DatabaseArguments::Action::Tables:
            return listTables(arguments);
        case DatabaseArguments::Action::Schema:
            return printSchema(arguments);
        case DatabaseArguments::Action::Export:
            return exportTables(arguments);
        case DatabaseArguments::Action::Sql:
            return runStatements(arguments);
        case DatabaseArguments::Action::Import:
            return finished(importTable(arguments));
        case DatabaseArguments::Action::Queries:
            return printQueries(arguments);
        case DatabaseArguments::Action::Browse:
            return browse(arguments);
        case DatabaseArguments::Action::Check:
            return check(arguments);
        case DatabaseArguments::Action::Compact:
            return finished(compact(arguments));
    }
    return kWrongUsage;
}

}  // namespace

int db(const Arguments& arguments) {
    try {
        return perform(arguments.database);
    } catch (const UnknownTable& unknown) {
        complain(onOneLine(unknown.message));
        return kWrongUsage;
    } catch (const jet::Error& error) {
        complain(onOneLine(described(error)));
        return kFileError;
    }
}

}  // namespace sg::app
