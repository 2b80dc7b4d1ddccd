#include "app/db_sql.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "app/csv_values.h"
#include "app/csv_writer.h"
#include "app/db_files.h"
#include "app/exit_codes.h"
#include "app/field_values.h"
#include "app/interruption.h"
#include "app/process.h"
#include "app/shown_value.h"
#include "app/text_table.h"
#include "base/encoding.h"
#include "host/jet/format/error.h"
#include "host/jet/recordset/recordset.h"
#include "host/seam/file_error.h"
#include "host/sql/parser.h"
#include "host/sql/run/session.h"

namespace sg::app {
namespace {

// ---- What is asked for

std::wstring textOf(const DatabaseArguments& arguments) {
    return arguments.sql == L"-" ? decodeTextFile(readStandardInput()) : arguments.sql;
}

// A quoted value is a text; others have the type that an import would find for them.
jet::Value parameterValue(const std::wstring& text) {
    const bool isQuoted = text.size() >= 2 && (text.front() == L'\'' || text.front() == L'"') &&
                          text.front() == text.back();
    if (isQuoted) return text.substr(1, text.size() - 2);
    const std::string bytes = toUtf8(text);
    ColumnGuess guess;
    guess.add(bytes, bytes.empty());
    jet::Column column;
    column.type = guess.column({}).type;
    if (column.type == jet::ColumnType::Text || column.type == jet::ColumnType::Memo) {
        return text.empty() ? jet::Value() : jet::Value(text);
    }
    jet::Value value;
    readField(bytes, false, column, value);
    return value;
}

sql::Parameters parametersOf(const DatabaseArguments& arguments) {
    sql::Parameters parameters;
    for (const std::wstring& given : arguments.parameters) {
        const size_t sign = given.find(L'=');
        parameters.push_back({given.substr(0, sign), parameterValue(given.substr(sign + 1))});
    }
    return parameters;
}

const sql::Query* queryOf(const sql::Statement& statement) {
    const auto* query = std::get_if<sql::QueryPtr>(&statement.body);
    return query == nullptr ? nullptr : query->get();
}

// False for a query whose rows go into a new table.
bool givesRows(const sql::Statement& statement) {
    const sql::Query* const query = queryOf(statement);
    if (query == nullptr) return false;
    const auto* select = std::get_if<sql::Select>(&query->body);
    return select == nullptr || !select->into;
}

bool countsRecords(const sql::Statement& statement) {
    return std::holds_alternative<sql::QueryPtr>(statement.body) ||
           std::holds_alternative<sql::Insert>(statement.body) ||
           std::holds_alternative<sql::Update>(statement.body) ||
           std::holds_alternative<sql::Delete>(statement.body) ||
           std::holds_alternative<sql::Execute>(statement.body);
}

// ---- Printing

std::wstring counted(int64_t count, const std::wstring& one, const std::wstring& many) {
    return std::to_wstring(count) + L" " + (count == 1 ? one : many);
}

// Whether the terminal knows how to print faintly, and its user wants such things.
bool hasStyles() {
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb" &&
           std::getenv("NO_COLOR") == nullptr;
}

void throwIfWanted(const Interruption& interruption) {
    if (interruption.isWanted()) throw jet::Error(jet::Canceled);
}

// What statements give, on standard output. Rows that are being printed are given up when that is
// wanted, with Canceled.
class Output {
  public:
    explicit Output(const Interruption& interruption) : interruption_(interruption) {}
    virtual ~Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    virtual void rows(jet::Recordset& rows) = 0;
    // Of a statement that changes records.
    virtual void affected(int64_t count) = 0;

    void steps(const std::vector<std::wstring>& lines) {
        jet::SnapshotRecordset rows({{L"Step", jet::ColumnType::Text, 0}});
        for (const std::wstring& line : lines)
            rows.append(std::vector<jet::Value>{line});
        this->rows(rows);
    }

  protected:
    // An empty line between two results.
    bool isFirst() { return std::exchange(first_, false); }
    void passRow() const { throwIfWanted(interruption_); }

  private:
    const Interruption& interruption_;
    bool first_ = true;
};

class TerminalOutput final : public Output {
  public:
    using Output::Output;

    void rows(jet::Recordset& rows) override {
        separate();
        TextTable table;
        for (const jet::RecordColumn& column : rows.columns())
            table.columns.push_back({onOneLine(column.name), isNumber(column.type)});
        table.rows = [&](const auto& reader) {
            TextTable::Row row(rows.columns().size());
            for (rows.moveFirst(); !rows.isEof(); rows.move(1)) {
                passRow();
                for (size_t i = 0; i < row.size(); ++i) {
                    rows.value(i, value_);
                    row[i] = {onOneLine(shownValue(value_)), jet::isNull(value_)};
                }
                reader(row);
            }
        };
        table.print(terminalColumns(), hasStyles(), printOut);
        printOut(counted(rows.recordCount(), L"row", L"rows") + L"\n");
    }

    void affected(int64_t count) override {
        separate();
        printOut(counted(count, L"record", L"records") + L" affected\n");
    }

  private:
    void separate() {
        if (!isFirst()) printOut(L"\n");
    }

    jet::Value value_;
};

// Counts go to standard error, so that what is printed is all values.
class CsvOutput final : public Output {
  public:
    using Output::Output;

    void rows(jet::Recordset& rows) override {
        if (!isFirst()) csv_.endRow();
        for (const jet::RecordColumn& column : rows.columns())
            csv_.text(column.name);
        csv_.endRow();
        jet::Value value;
        for (rows.moveFirst(); !rows.isEof() && !csv_.failed(); rows.move(1)) {
            passRow();
            for (size_t i = 0; i < rows.columns().size(); ++i) {
                rows.value(i, value);
                std::visit(CsvValueWriter{csv_}, value);
            }
            csv_.endRow();
        }
        if (!csv_.flush()) throw FileError(L"standard output cannot be written");
    }

    void affected(int64_t count) override {
        complain(counted(count, L"record", L"records") + L" affected");
    }

  private:
    CsvWriter csv_{STDOUT_FILENO};
};

std::unique_ptr<Output> outputFor(const DatabaseArguments& arguments,
                                  const Interruption& interruption) {
    if (!arguments.csv && isatty(STDOUT_FILENO)) {
        return std::make_unique<TerminalOutput>(interruption);
    }
    return std::make_unique<CsvOutput>(interruption);
}

// ---- Running

// True for what is wrong with a statement whatever rows there are.
bool isOfTheText(int code) {
    constexpr int codes[] = {3061, 3062, 3063, 3065, 3070, 3073, 3075, 3078, 3079, 3085,
                             3093, 3095, 3096, 3098, 3099, 3102, 3103, 3104, 3121, 3122,
                             3123, 3125, 3127, 3128, 3138, 3191, 3192, 3219, 3306, 3307,
                             3346, 3351, 3360, 3371, 3372, 3376, 3381, 3409, 3615};
    return std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

// `number` counts from 1; 0 leaves it out.
void report(const jet::Error& error, size_t number) {
    const std::wstring which =
        number == 0 ? std::wstring() : L"statement " + std::to_wstring(number) + L": ";
    complain(onOneLine(which + described(error)));
}

// All statements, before any of them runs: one that is wrong leaves the database as it is. False
// when it was reported that there is none, or one is wrong.
bool parse(const std::wstring& text, std::vector<sql::ScriptEntry>& script) {
    try {
        sql::parseScript(text, script);
    } catch (const jet::Error& error) {
        report(error, script.empty() ? 0 : script.size() + 1);
        return false;
    }
    if (script.empty()) complain(L"there is no statement to run");
    return !script.empty();
}

void run(sql::Session& session, const sql::ScriptEntry& entry, const sql::Parameters& parameters,
         Output& output) {
    if (entry.explain) {
        output.steps(session.explain(entry.statement, parameters));
    } else if (session.givesRows(entry.statement)) {
        output.rows(*session.select(entry.statement, parameters));
    } else {
        const int64_t count = session.execute(entry.statement, parameters);
        if (countsRecords(entry.statement)) output.affected(count);
    }
}

jet::OpenMode modeFor(const std::vector<sql::ScriptEntry>& script) {
    const bool onlyReads = std::all_of(script.begin(), script.end(), [](const auto& entry) {
        return entry.explain || givesRows(entry.statement);
    });
    return onlyReads ? jet::OpenMode::ReadOnly : jet::OpenMode::Shared;
}

}  // namespace

int runStatements(const DatabaseArguments& arguments) {
    const sql::Parameters parameters = parametersOf(arguments);
    std::vector<sql::ScriptEntry> script;
    if (!parse(textOf(arguments), script)) return kWrongUsage;

    jet::Database database = openDatabase(arguments.file, modeFor(script));
    const Interruption interruption;
    sql::Session session(database);
    session.limit({.isCanceled = [&] { return interruption.isWanted(); }});
    const std::unique_ptr<Output> output = outputFor(arguments, interruption);
    for (size_t i = 0; i < script.size(); ++i) {
        try {
            throwIfWanted(interruption);
            run(session, script[i], parameters, *output);
        } catch (const jet::Error& error) {
            flushOutput();
            report(error, script.size() == 1 ? 0 : i + 1);
            return isOfTheText(error.code()) ? kWrongUsage : kFileError;
        }
    }
    if (!flushOutput()) throw FileError(L"standard output cannot be written");
    return kDone;
}

}  // namespace sg::app
