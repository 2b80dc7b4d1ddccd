#include <exception>

#include "app/arguments.h"
#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/process.h"
#include "base/encoding.h"
#include "host/seam/file_error.h"

using namespace sg;

int main(int count, char** words) {
    app::raiseStackLimit();
    const app::ParsedArguments parsed = app::parseArguments(count, words);
    if (!parsed.arguments) return parsed.exitCode;
    try {
        switch (parsed.arguments->command) {
            case app::Arguments::Command::Run:
                return app::run(*parsed.arguments);
            case app::Arguments::Command::Repl:
                return app::repl(*parsed.arguments);
            case app::Arguments::Command::Help:
                return app::help(*parsed.arguments);
            case app::Arguments::Command::Convert:
                return app::convert(*parsed.arguments);
            case app::Arguments::Command::Info:
                return app::info(*parsed.arguments);
            case app::Arguments::Command::Render:
                return app::render(*parsed.arguments);
            case app::Arguments::Command::Db:
                return app::db(*parsed.arguments);
        }
    } catch (const FileError& error) {
        app::complain(error.text());
        return app::kFileError;
    } catch (const std::exception& error) {
        app::complain(fromUtf8(error.what()));
    }
    return app::kLispError;
}
