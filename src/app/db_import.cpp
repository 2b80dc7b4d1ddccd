#include "app/db_import.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/csv_reader.h"
#include "app/db_files.h"
#include "app/db_schema.h"
#include "app/exit_codes.h"
#include "app/field_values.h"
#include "app/input_file.h"
#include "app/interruption.h"
#include "app/process.h"
#include "app/progress_bar.h"
#include "base/encoding.h"
#include "base/nearest_names.h"
#include "base/text.h"
#include "host/jet/database/table_writer.h"
#include "host/jet/schema/schema.h"
#include "host/seam/file_error.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

constexpr int kCancelled = 3059;            // the engine's number
constexpr uint64_t kRecordsBetween = 1024;  // two looks at how far the import is
constexpr size_t kMostSuggestions = 5;
constexpr size_t kAnyCount = 0;  // of fields

class Importer {
  public:
    Importer(const DatabaseArguments& arguments, InputFile& input)
        : arguments_(arguments),
          input_(input),
          bar_(L"Importing " + std::wstring(lastComponent(input.name()))) {}

    // Makes the table `name`, with columns for what is in the file.
    void create(jet::Database& database, const std::wstring& name);
    // Deletes every row of the table.
    void empty(jet::Database& database, const std::wstring& name);
    // Adds the rows; answers how many.
    uint64_t insertAll(jet::Database& database, const std::wstring& name);

  private:
    // The column's place in the table for each field of a record.
    using Places = std::vector<size_t>;

    std::vector<std::wstring> readHeader(CsvReader& csv) const;
    Places placesOf(const std::vector<std::wstring>& names,
                    const jet::TableDefinition& table) const;
    bool nextRecord(CsvReader& csv, size_t fields);
    void insert(const CsvReader& csv, const Places& places, jet::TableWriter& writer);
    [[noreturn]] void failColumn(const CsvReader& csv, const Places& places,
                                 const jet::TableDefinition& table, const jet::Error& error) const;

    const DatabaseArguments& arguments_;
    InputFile& input_;
    ProgressBar bar_;
    const Interruption interruption_;
    uint64_t looked_ = 0;      // records
    uint64_t doneBefore_ = 0;  // bytes, in an earlier reading
    uint64_t total_ = 0;       // bytes
    std::vector<jet::Value> row_;
};

std::vector<std::wstring> Importer::readHeader(CsvReader& csv) const {
    if (!csv.next()) throw CsvError{1, L"there is no line with the names of columns"};
    std::vector<std::wstring> names;
    for (size_t i = 0; i < csv.size(); ++i) {
        names.push_back(fromUtf8(csv.text(i)));
        const auto isSame = [&](const std::wstring& name) {
            return equalIgnoringCase(name, names.back());
        };
        if (names.back().empty()) {
            throw CsvError{csv.line(i), L"column " + std::to_wstring(i + 1) + L" has no name"};
        }
        if (std::any_of(names.begin(), names.end() - 1, isSame)) {
            throw CsvError{csv.line(i), L"column " + names.back() + L" is named twice"};
        }
    }
    return names;
}

Importer::Places Importer::placesOf(const std::vector<std::wstring>& names,
                                    const jet::TableDefinition& table) const {
    Places places;
    for (const std::wstring& name : names) {
        const std::optional<size_t> place = table.columnByName(name);
        if (!place) {
            std::vector<std::wstring> known;
            for (const jet::Column& column : table.columns)
                known.push_back(column.name);
            throw CsvError{1, L"table " + table.name + L" has no column \"" + name + L"\"" +
                                  suggestion(nearestNames(known, name, kMostSuggestions))};
        }
        places.push_back(*place);
    }
    return places;
}

// Goes to the next record, which must have so many fields. Empty lines are passed over where they
// can't be a record.
bool Importer::nextRecord(CsvReader& csv, size_t fields) {
    if (++looked_ % kRecordsBetween == 0) {
        bar_.show(doneBefore_ + csv.bytesRead(), total_);
        if (interruption_.isWanted()) throw jet::Error(kCancelled);
    }
    do {
        if (!csv.next()) return false;
    } while (csv.isEmptyLine() && fields != 1);
    if (csv.size() == fields || fields == kAnyCount) return true;
    throw CsvError{csv.line(), L"the number of fields is " + std::to_wstring(csv.size()) +
                                   L" where " + std::to_wstring(fields) + L" are expected"};
}

void Importer::create(jet::Database& database, const std::wstring& name) {
    input_.keepAll();
    total_ = 2 * input_.size();
    CsvReader csv(input_.descriptor());
    std::vector<std::wstring> names;
    if (!arguments_.noHeader) names = readHeader(csv);
    bool isRecord = nextRecord(csv, arguments_.noHeader ? kAnyCount : names.size());
    for (size_t i = 0; arguments_.noHeader && isRecord && i < csv.size(); ++i)
        names.push_back(L"Field" + std::to_wstring(i + 1));

    std::vector<ColumnGuess> guesses(names.size());
    for (; isRecord; isRecord = nextRecord(csv, guesses.size())) {
        for (size_t i = 0; i < guesses.size(); ++i)
            guesses[i].add(csv.text(i), csv.isNull(i));
    }
    jet::TableDesign design;
    design.name = name;
    for (size_t i = 0; i < guesses.size(); ++i)
        design.columns.push_back(guesses[i].column(names[i]));
    jet::createTable(database, design);
    doneBefore_ = input_.size();
    input_.rewind();
}

void Importer::empty(jet::Database& database, const std::wstring& name) {
    jet::TableWriter& writer = database.writer(name);
    for (const jet::LogicalIndex& index : writer.definition().indexes) {
        const bool isReferredTo =
            index.isForeign() && index.relatedType == jet::LogicalIndex::referredTo;
        if (!isReferredTo || !index.cascadeDeletes) continue;
        const jet::Table other = database.tableAt(index.relatedTablePage);
        if (other.definition().page == writer.definition().page || other.rowCount() == 0) continue;
        throw FileError(database.name() + L": deleting the rows of table " + name +
                        L" would delete those of table " + other.name() +
                        L" too, which refer to them");
    }
    std::vector<jet::RowId> rows;
    for (jet::RowCursor cursor(writer.table()); cursor.next();)
        rows.push_back(cursor.id());
    for (const jet::RowId row : rows) {
        try {
            writer.erase(row);
        } catch (const jet::Error& error) {
            // The table's relation to itself has taken it away already.
            if (error.code() != jet::RecordDeleted) throw;
        }
    }
}

// Throws the error with the line and, where a single column is at fault, that.
void Importer::failColumn(const CsvReader& csv, const Places& places,
                          const jet::TableDefinition& table, const jet::Error& error) const {
    for (size_t i = 0; i < places.size(); ++i) {
        const std::wstring& column = table.columns[places[i]].name;
        switch (error.code()) {
            case jet::ConversionError:
            case jet::FieldTooSmall:
            case jet::NullInRequiredField:
            case jet::ZeroLengthField:
            case jet::ValidationRule:
                if (!error.names().empty() && equalIgnoringCase(error.names()[0], column)) {
                    throw CsvError{csv.line(i), L"column " + column + L": " + described(error)};
                }
                break;
            default:
                break;
        }
    }
    throw CsvError{csv.line(), described(error)};
}

void Importer::insert(const CsvReader& csv, const Places& places, jet::TableWriter& writer) {
    try {
        // Where every column has a field, no default is asked for.
        if (places.size() < row_.size()) writer.rules().defaults(row_);
        for (size_t i = 0; i < places.size(); ++i) {
            readField(csv.text(i), csv.isNull(i), writer.definition().columns[places[i]],
                      row_[places[i]]);
        }
        writer.insert(row_);
    } catch (const jet::Error& error) {
        failColumn(csv, places, writer.definition(), error);
    }
}

uint64_t Importer::insertAll(jet::Database& database, const std::wstring& name) {
    if (total_ == 0) total_ = input_.size();
    jet::TableWriter& writer = database.writer(name);
    CsvReader csv(input_.descriptor());
    const Places places = arguments_.noHeader ? shownOrder(writer.definition())
                                              : placesOf(readHeader(csv), writer.definition());
    row_.resize(writer.definition().columns.size());
    uint64_t count = 0;
    for (; nextRecord(csv, places.size()); ++count)
        insert(csv, places, writer);
    return count;
}

std::wstring tableNameOf(const DatabaseArguments& arguments) {
    if (!arguments.table.empty()) return arguments.table;
    const std::wstring name(lastComponent(arguments.input));
    const size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos || dot == 0 ? name : name.substr(0, dot);
}

// The database in which the table is, or is to be, with its name there.
jet::Database& goHome(jet::Database& database, const DatabaseArguments& arguments,
                      std::wstring& name) {
    if (arguments.create) return database;
    const jet::CatalogObject object = findTable(database, name);
    if (object.isSystem()) {
        throw FileError(database.name() + L": table " + object.name +
                        L" is the engine's own; nothing can be added to it");
    }
    return homeOf(database, object, name);
}

}  // namespace

int importTable(const DatabaseArguments& arguments) {
    InputFile input(arguments.input);
    std::wstring name = tableNameOf(arguments);
    jet::Database database = openDatabase(arguments.file, jet::OpenMode::Shared);
    jet::Database& home = goHome(database, arguments, name);
    std::wstring created;
    uint64_t count = 0;
    try {
        // Without a commit, the end of the database rolls everything back.
        home.beginTransaction();
        Importer importer(arguments, input);
        if (arguments.create) {
            importer.create(home, name);
            created = tableSchema(home.table(name).definition(), {}, home.store().format());
        }
        if (arguments.replace) importer.empty(home, name);
        count = importer.insertAll(home, name);
        if (!arguments.dryRun) home.commitTransaction();
    } catch (const CsvError& error) {
        throw FileError(
            onOneLine(input.name() + L":" + std::to_wstring(error.line) + L": " + error.what));
    }
    printOut(created + std::to_wstring(count) + (count == 1 ? L" row " : L" rows ") +
             (arguments.dryRun ? L"can be imported into " : L"imported into ") + onOneLine(name) +
             L"\n");
    return kDone;
}

}  // namespace sg::app
