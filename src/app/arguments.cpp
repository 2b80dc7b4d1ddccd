#include "app/arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>

#include "app/exit_codes.h"
#include "app/help_format.h"
#include "app/usage_error.h"
#include "base/encoding.h"
#include "platform/variant/date_text.h"

namespace sg::app {
namespace {

// What the parser fills in; it knows only narrow text.
struct Narrow {
    std::string program, saveAs, drawing, script, locale, memoryLimit, function;
    std::vector<std::string> expressions, folders, parameters, layers;
    std::string drawingFile, converted, release, view, size, layout, ground;
    std::string databaseFile, table, output, folder, sql, input, backup;
    std::string picture, text, pdf;
};

std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items)
        text += (text.empty() ? "" : ", ") + item;
    return text;
}

// Languages and regions have two letters, so that all of them can be asked for.
std::vector<std::string> knownLocales(const std::string& prefix, char first) {
    std::vector<std::string> known;
    for (int i = 0; i < 26 * 26; ++i) {
        const std::string name =
            prefix + static_cast<char>(first + i / 26) + static_cast<char>(first + i % 26);
        if (isKnownLocale(fromUtf8(name))) known.push_back(name);
    }
    return known;
}

// Each check answers what is wrong with a value, or an empty text.
std::string checkLocale(const std::string& name) {
    if (isKnownLocale(fromUtf8(name))) return {};
    const std::string language = name.substr(0, name.find_first_of("-_.@"));
    if (isKnownLocale(fromUtf8(language))) {
        return "unknown locale \"" + name + "\"; known for \"" + language +
               "\" are: " + joined(knownLocales(language + "-", 'A'));
    }
    return "unknown locale \"" + name + "\"; known languages are: " + joined(knownLocales("", 'a'));
}

std::string checkSize(const std::string& text) {
    if (parseSize(text)) return {};
    return "\"" + text + "\" is no size; write a number of megabytes, or one with K, M or G";
}

void addHostOptions(CLI::App& command, Narrow& narrow, Arguments& arguments) {
    command.add_option("--path", narrow.folders, "A folder to look for files in; may be repeated")
        ->type_name("DIR")
        ->allow_extra_args(false);
    command.add_flag("--no-module", arguments.noModule, "Leave the product's module out");
    command
        .add_option("--memory-limit", narrow.memoryLimit,
                    "How much LISP data a program may hold, as 512M or 2G; a number alone "
                    "counts megabytes [half of the machine's memory]")
        ->type_name("SIZE")
        ->check(CLI::Validator(checkSize, ""));
    command
        .add_option("--locale", narrow.locale,
                    "The format of dates, as de-DE [that of the environment]")
        ->type_name("NAME")
        ->check(CLI::Validator(checkLocale, ""));
    command.add_flag("--fail-engine", arguments.failEngine,
                     "Make the database engine refuse to start");
}

void addDrawingOptions(CLI::App& command, Narrow& narrow) {
    command.add_option("--drawing", narrow.drawing, "The drawing to open [a new one]")
        ->type_name("IN");
    command.add_option("--input", narrow.script, "A script that answers prompts and boxes")
        ->type_name("SCRIPT");
}

void addDrawingFile(CLI::App& command, Narrow& narrow) {
    command.add_option("FILE", narrow.drawingFile, "The drawing: a .dwg or .dxf file")
        ->type_name("")
        ->required();
}

CLI::App* addConvert(CLI::App& app, Narrow& narrow, Arguments& arguments) {
    CLI::App* const command = app.add_subcommand("convert", "Write a drawing as another file");
    addDrawingFile(*command, narrow);
    command
        ->add_option("OUT", narrow.converted,
                     "The file to write: .dwg or .dxf; .step or .stp for its solids")
        ->type_name("")
        ->required();
    command
        ->add_option("--release", narrow.release,
                     "The release of OUT [that of FILE, or the next one of these]")
        ->type_name("2000|2007|2013|2018")
        ->check(CLI::IsMember({"2000", "2007", "2013", "2018"}));
    command->add_flag("--binary", arguments.drawingFile.isBinary, "Write a binary file");
    command->add_flag("--flatten", arguments.drawingFile.isFlat,
                      "Write custom entities as plain ones, for programs that do not know them");
    return command;
}

// A size in pixels, as 1600x1200. Nothing for what is none, or too large a picture.
std::optional<std::pair<int, int>> parsePixels(const std::string& text) {
    constexpr int kMost = 30000;
    int sides[2] = {};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (int& side : sides) {
        const auto [behind, error] = std::from_chars(at, end, side);
        if (error != std::errc() || side < 1 || side > kMost) return std::nullopt;
        at = behind;
        if (&side == sides && (at == end || *at++ != 'x')) return std::nullopt;
    }
    if (at != end) return std::nullopt;
    return std::pair(sides[0], sides[1]);
}

std::string checkPixels(const std::string& text) {
    if (parsePixels(text)) return {};
    return "\"" + text +
           "\" is no size of a picture; write WIDTHxHEIGHT in pixels, at most 30000 each, as "
           "1600x1200";
}

CLI::App* addRender(CLI::App& app, Narrow& narrow, Arguments& arguments) {
    CLI::App* const command = app.add_subcommand("render", "Make a picture of a drawing");
    addDrawingFile(*command, narrow);
    command->add_option("-o,--output", narrow.converted, "The picture to write: .png, .svg or .pdf")
        ->type_name("OUT")
        ->required();
    command->add_option("--view", narrow.view, "Where the model is seen from [top]")
        ->type_name("top|front|iso")
        ->check(CLI::IsMember({"top", "front", "iso"}));
    command
        ->add_option("--layout", narrow.layout,
                     "The sheet to show, with what its windows show of the model [the model]")
        ->type_name("NAME");
    command
        ->add_option("--size", narrow.size,
                     "The picture's size in pixels; a sheet is as large as fits [1600x1200]")
        ->type_name("WIDTHxHEIGHT")
        ->check(CLI::Validator(checkPixels, ""));
    command
        ->add_option("--window", arguments.picture.window,
                     "Two corners of what to show, in the view's coordinates [all of the drawing]")
        ->type_name("X1,Y1,X2,Y2")
        ->delimiter(',')
        ->expected(4);
    command
        ->add_option("--layers", narrow.layers,
                     "The layers to show, of those that are on and thawed, with wildcards; may be "
                     "repeated, or have commas between [all]")
        ->type_name("NAMES")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_option("--ground", narrow.ground, "What the drawing stands on [white]")
        ->type_name("white|black")
        ->check(CLI::IsMember({"white", "black"}));
    command->add_flag("--no-lineweights", arguments.picture.hasNoLineWeights,
                      "Draw all lines as thin as can be");
    addHostOptions(*command, narrow, arguments);
    command->footer("What cannot be drawn is named and counted on standard error.");
    return command;
}

CLI::App* addInfo(CLI::App& app, Narrow& narrow) {
    CLI::App* const command = app.add_subcommand(
        "info", "Print what a drawing holds: release, extents, layers, entities");
    addDrawingFile(*command, narrow);
    return command;
}

CLI::App* addDatabaseCommand(CLI::App& db, Narrow& narrow, DatabaseArguments& arguments,
                             DatabaseArguments::Action action, const std::string& name,
                             const std::string& description) {
    CLI::App* const command = db.add_subcommand(name, description);
    command->add_option("FILE", narrow.databaseFile, "The database: an .mdb or .accdb file")
        ->type_name("")
        ->required();
    command->callback([&arguments, action] { arguments.action = action; });
    return command;
}

std::string checkParameter(const std::string& text) {
    const size_t sign = text.find('=');
    if (sign != std::string::npos && sign > 0) return {};
    return "\"" + text + "\" is no parameter; write NAME=VALUE";
}

void addSql(CLI::App& db, Narrow& narrow, DatabaseArguments& arguments) {
    CLI::App* const command =
        addDatabaseCommand(db, narrow, arguments, DatabaseArguments::Action::Sql, "sql",
                           "Run SQL statements: tables on a terminal, else comma-separated values");
    command
        ->add_option("TEXT", narrow.sql,
                     "Statements with \";\" between them; \"-\" reads them from standard input")
        ->type_name("")
        ->required();
    command->add_flag("--csv", arguments.csv, "Comma-separated values on a terminal too");
    command
        ->add_option("-p,--parameter", narrow.parameters,
                     "What a parameter of the statements stands for; may be repeated")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false)
        ->check(CLI::Validator(checkParameter, ""));
    command->footer("EXPLAIN before a statement prints how it is run, and which indexes it uses.");
}

void addImport(CLI::App& db, Narrow& narrow, DatabaseArguments& arguments) {
    CLI::App* const command =
        addDatabaseCommand(db, narrow, arguments, DatabaseArguments::Action::Import, "import",
                           "Add rows from comma-separated values to a table, all of them or none");
    command->add_option("CSV", narrow.input, "The file to read; \"-\" is standard input")
        ->type_name("")
        ->required();
    command
        ->add_option("-t,--table", narrow.table,
                     "The table, linked ones too [the name of CSV without its extension]")
        ->type_name("TABLE");
    CLI::Option* const create =
        command->add_flag("--create", arguments.create,
                          "Make the table, with columns named by the first line and of types that "
                          "hold what is in them");
    command->add_flag("--replace", arguments.replace, "Delete the rows that the table has")
        ->excludes(create);
    command->add_flag("--no-header", arguments.noHeader,
                      "There is no line with names; fields come in the order of the columns");
    command->add_flag("--dry-run", arguments.dryRun, "Try it, and leave the database as it is");
}

void addCompact(CLI::App& db, Narrow& narrow, DatabaseArguments& arguments) {
    CLI::App* const command =
        addDatabaseCommand(db, narrow, arguments, DatabaseArguments::Action::Compact, "compact",
                           "Write the database anew, without the room that nobody uses");
    CLI::Option* const output =
        command->add_option("OUT", narrow.output, "The new file [it takes the place of FILE]")
            ->type_name("");
    command->add_flag("--repair", arguments.repair,
                      "Save what can be read of a damaged file; answers 1 when something is lost");
    command
        ->add_option("--backup", narrow.backup,
                     "Where to keep FILE as it was [with --repair FILE.bak, else nowhere]")
        ->type_name("PATH")
        ->excludes(output);
}

void addBrowse(CLI::App& db, Narrow& narrow, DatabaseArguments& arguments) {
    CLI::App* const command =
        addDatabaseCommand(db, narrow, arguments, DatabaseArguments::Action::Browse, "browse",
                           "Show a table in a window, in which it can be edited");
    command->add_option("TABLE", narrow.table, "The table [the first]")->type_name("");
    command->add_option("--picture", narrow.picture, "Write a picture of the window instead")
        ->type_name("OUT.png");
    command->add_option("--text", narrow.text, "Write the table's text with tabs instead")
        ->type_name("OUT.txt");
    command->add_option("--pdf", narrow.pdf, "Print the table to a file instead")
        ->type_name("OUT.pdf");
}

CLI::App* addDatabaseCommands(CLI::App& app, Narrow& narrow, DatabaseArguments& arguments) {
    using Action = DatabaseArguments::Action;
    CLI::App* const db =
        app.add_subcommand("db", "Show, ask, check, fill and compact a database file");
    db->require_subcommand(0, 1);
    addDatabaseCommand(*db, narrow, arguments, Action::Tables, "tables", "List the tables");

    CLI::App* const schema =
        addDatabaseCommand(*db, narrow, arguments, Action::Schema, "schema",
                           "Print the definitions of tables, indexes and relations");
    schema->add_option("TABLE", narrow.table, "The table [all]")->type_name("");

    CLI::App* const exporting = addDatabaseCommand(*db, narrow, arguments, Action::Export, "export",
                                                   "Write tables as comma-separated values");
    exporting->add_option("TABLE", narrow.table, "The table")->type_name("");
    exporting->add_option("-o,--output", narrow.output, "The file to write [standard output]")
        ->type_name("OUT.csv");
    exporting->add_flag("--all", arguments.all, "Export every table, each to a file of its own");
    exporting->add_option("-d,--directory", narrow.folder, "Where --all puts the files")
        ->type_name("FOLDER");

    addSql(*db, narrow, arguments);
    addImport(*db, narrow, arguments);
    addDatabaseCommand(*db, narrow, arguments, Action::Queries, "queries",
                       "Print the stored queries");
    addBrowse(*db, narrow, arguments);
    addDatabaseCommand(*db, narrow, arguments, Action::Check, "check",
                       "Look for damage; answers 1 when there is any");
    addCompact(*db, narrow, arguments);
    return db;
}

// An import from standard input has no name to take for the table.
void checkImport(const Narrow& narrow, const DatabaseArguments& arguments) {
    if (arguments.action != DatabaseArguments::Action::Import) return;
    if (narrow.input == "-" && narrow.table.empty()) throw CLI::RequiresError("-", "--table");
}

// Throws the parser's error for an export of both or neither of a table and all.
void checkExport(const Narrow& narrow, const DatabaseArguments& arguments) {
    if (arguments.action != DatabaseArguments::Action::Export) return;
    if (arguments.all) {
        if (!narrow.table.empty()) throw CLI::ExcludesError("TABLE", "--all");
        if (!narrow.output.empty()) throw CLI::ExcludesError("--output", "--all");
        if (narrow.folder.empty()) throw CLI::RequiresError("--all", "--directory");
    } else {
        if (!narrow.folder.empty()) throw CLI::RequiresError("--directory", "--all");
        if (narrow.table.empty()) throw CLI::RequiredError("A TABLE or --all");
    }
}

std::vector<std::wstring> widened(const std::vector<std::string>& items) {
    std::vector<std::wstring> wide;
    for (const std::string& item : items)
        wide.push_back(fromUtf8(item));
    return wide;
}

void widen(const Narrow& narrow, Arguments& arguments) {
    arguments.program = fromUtf8(narrow.program);
    arguments.saveAs = fromUtf8(narrow.saveAs);
    arguments.drawing = fromUtf8(narrow.drawing);
    arguments.script = fromUtf8(narrow.script);
    arguments.locale = fromUtf8(narrow.locale);
    arguments.function = fromUtf8(narrow.function);
    arguments.drawingFile.file = fromUtf8(narrow.drawingFile);
    arguments.drawingFile.output = fromUtf8(narrow.converted);
    arguments.picture.view = fromUtf8(narrow.view);
    arguments.picture.layout = fromUtf8(narrow.layout);
    arguments.picture.layers = widened(narrow.layers);
    arguments.picture.isBlack = narrow.ground == "black";
    if (const auto pixels = parsePixels(narrow.size)) {
        arguments.picture.width = pixels->first;
        arguments.picture.height = pixels->second;
    }
    arguments.drawingFile.release = fromUtf8(narrow.release);
    if (arguments.drawingFile.isFlat) arguments.drawing = arguments.drawingFile.file;
    arguments.database.file = fromUtf8(narrow.databaseFile);
    arguments.database.table = fromUtf8(narrow.table);
    arguments.database.output = fromUtf8(narrow.output);
    arguments.database.folder = fromUtf8(narrow.folder);
    arguments.database.sql = fromUtf8(narrow.sql);
    arguments.database.parameters = widened(narrow.parameters);
    arguments.database.input = fromUtf8(narrow.input);
    arguments.database.backup = fromUtf8(narrow.backup);
    arguments.database.picture = fromUtf8(narrow.picture);
    arguments.database.text = fromUtf8(narrow.text);
    arguments.database.pdf = fromUtf8(narrow.pdf);
    arguments.expressions = widened(narrow.expressions);
    arguments.folders = widened(narrow.folders);
    arguments.memoryLimit = parseSize(narrow.memoryLimit).value_or(0);
}

// The command of a name; null when there is none.
const CLI::App* commandNamed(const CLI::App& app, const std::string& name) {
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_name() == name) return command;
    }
    return nullptr;
}

}  // namespace

std::optional<uint64_t> parseSize(std::string_view text) {
    int shift = 20;
    if (!text.empty()) {
        const size_t unit = std::string_view("KkMmGg").find(text.back());
        if (unit != std::string_view::npos) {
            shift = 10 * (static_cast<int>(unit / 2) + 1);
            text.remove_suffix(1);
        }
    }
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    if (number == 0 || number > (UINT64_MAX >> shift)) return std::nullopt;
    return number << shift;
}

ParsedArguments parseArguments(int count, char** words) {
    Arguments arguments;
    Narrow narrow;

    // What follows "--" is the program's, whatever it looks like.
    char** const end = words + count;
    char** const separator =
        std::find_if(words, end, [](const char* word) { return std::strcmp(word, "--") == 0; });

    CLI::App app("Runs AutoLISP programs for building services.", "swiftgate");
    app.set_version_flag("--version", "swiftgate " + toUtf8(SWIFTGATE_VERSION));
    app.require_subcommand(0, 1);
    app.formatter(std::make_shared<HelpFormat>());

    CLI::App* const run = app.add_subcommand("run", "Run a program");
    run->add_option("PROGRAM", narrow.program,
                    "The program: a file as named or with .lsp behind it, looked for on the "
                    "support path too; \"-\" is standard input")
        ->type_name("");
    addDrawingOptions(*run, narrow);
    run->add_option("--save", narrow.saveAs, "Where to write the drawing when the program is done")
        ->type_name("OUT");
    run->add_option("--eval", narrow.expressions,
                    "An expression to run after the program, or instead of one; may be repeated")
        ->type_name("EXPRESSION")
        ->allow_extra_args(false);
    addHostOptions(*run, narrow, arguments);
    run->footer("What follows \"--\" are the program's arguments, which (host-arguments) answers.");

    CLI::App* const repl = app.add_subcommand("repl", "Run what is typed, line by line");
    addDrawingOptions(*repl, narrow);
    addHostOptions(*repl, narrow, arguments);

    CLI::App* const convert = addConvert(app, narrow, arguments);
    CLI::App* const info = addInfo(app, narrow);
    CLI::App* const render = addRender(app, narrow, arguments);
    CLI::App* const db = addDatabaseCommands(app, narrow, arguments.database);

    CLI::App* const help =
        app.add_subcommand("help", "Explain a function or a command, or list all functions");
    help->add_option("FUNCTION", narrow.function, "The name of a function or of a command")
        ->type_name("");
    help->add_flag("--missing", arguments.missing,
                   "List the module's functions that are not part of this build");
    help->add_flag("--names", arguments.names, "List the names of all functions, one a line");
    addHostOptions(*help, narrow, arguments);

    app.failure_message([](const CLI::App* program, const CLI::Error& error) {
        return usageError(*program, error);
    });
    try {
        app.parse(static_cast<int>(separator - words), words);
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError("A command: run, repl, convert, info, render, db or help");
        }
        if (run->parsed() && narrow.program.empty() && narrow.expressions.empty()) {
            throw CLI::RequiredError("A PROGRAM or an --eval expression");
        }
        if (db->parsed() && db->get_subcommands().empty()) {
            throw CLI::RequiredError(
                "A command: tables, schema, export, sql, import, queries, browse, check or "
                "compact");
        }
        if (const CLI::App* const command =
                help->parsed() ? commandNamed(app, narrow.function) : nullptr) {
            std::fputs(command->help(app.get_name()).c_str(), stdout);
            return {std::nullopt, kDone};
        }
        if (db->parsed()) {
            checkExport(narrow, arguments.database);
            checkImport(narrow, arguments.database);
        }
    } catch (const CLI::ParseError& error) {
        return {std::nullopt, app.exit(error) == 0 ? kDone : kWrongUsage};
    }

    arguments.command = run->parsed()       ? Arguments::Command::Run
                        : repl->parsed()    ? Arguments::Command::Repl
                        : convert->parsed() ? Arguments::Command::Convert
                        : info->parsed()    ? Arguments::Command::Info
                        : render->parsed()  ? Arguments::Command::Render
                        : db->parsed()      ? Arguments::Command::Db
                                            : Arguments::Command::Help;
    widen(narrow, arguments);
    for (char** word = separator; word != end && ++word != end;) {
        arguments.programArguments.push_back(fromUtf8(*word));
    }
    return {std::move(arguments), kDone};
}

}  // namespace sg::app
