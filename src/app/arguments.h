#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sg::app {

// The words behind db.
struct DatabaseArguments {
    enum class Action { Tables, Schema, Export, Sql, Import, Queries, Browse, Check, Compact };
    Action action = Action::Tables;
    std::wstring file;
    // Of schema and export; empty: all. Of import; empty: named as the file that is read. Of
    // browse; empty: the first.
    std::wstring table;
    std::wstring output;  // of export; empty: standard output. Of compact; empty: in place
    std::wstring folder;  // of export, with `all`
    bool all = false;

    std::wstring input;  // of import; "-": standard input
    bool create = false;
    bool replace = false;
    bool noHeader = false;
    bool dryRun = false;

    std::wstring sql;                      // of sql: statements; "-": standard input
    std::vector<std::wstring> parameters;  // NAME=VALUE
    bool csv = false;

    bool repair = false;  // of compact
    std::wstring backup;  // empty: as compact sees fit

    // Of browse: files to write instead of showing the window; empty ones are not written.
    std::wstring picture, text, pdf;
};

// The words behind convert, info and render.
struct DrawingArguments {
    std::wstring file;
    std::wstring output;   // of convert and render
    std::wstring release;  // of convert; empty: that of the file
    bool isBinary = false;
    bool isFlat = false;  // without custom entities
};

// The words behind render; its drawing and its picture are those of DrawingArguments.
struct PictureArguments {
    std::wstring view;           // "top", "front" or "iso"
    std::vector<double> window;  // two corners; empty: all of the drawing
    int width = 0;               // pixels; 0: the usual size
    int height = 0;
    std::vector<std::wstring> layers;  // names, with wildcards; none: all
    std::wstring layout;               // empty: the model
    bool isBlack = false;              // the ground
    bool hasNoLineWeights = false;
};

// The command line of the process, taken apart.
struct Arguments {
    enum class Command { Run, Repl, Help, Convert, Info, Render, Db };
    Command command = Command::Run;

    std::wstring program;                   // of run; "-" is standard input, empty is none
    std::vector<std::wstring> expressions;  // of --eval, in order
    std::wstring saveAs;                    // empty: the drawing is not saved

    std::wstring drawing;               // empty: a new one
    std::wstring script;                // the input script; empty: none
    std::vector<std::wstring> folders;  // ahead of the rest of the support path
    std::vector<std::wstring> programArguments;
    std::wstring locale;
    uint64_t memoryLimit = 0;  // bytes; 0: the host's own choice
    bool noModule = false;
    bool failEngine = false;

    std::wstring function;  // of help; empty: the overview
    bool missing = false;
    bool names = false;

    DrawingArguments drawingFile;
    PictureArguments picture;
    DatabaseArguments database;
};

struct ParsedArguments {
    std::optional<Arguments> arguments;
    int exitCode = 0;  // when there are none: what was to be said is printed
};

// Reads the command line. Asking for help or the version prints it and answers code 0, an error
// prints what is wrong on standard error and answers kWrongUsage.
ParsedArguments parseArguments(int count, char** words);

// A size as the options take it: a number with K, M or G (powers of 1024) in either case behind it;
// a number alone counts megabytes. In bytes; nullopt for anything else, zero included.
std::optional<uint64_t> parseSize(std::string_view text);

}  // namespace sg::app
