#include "app/db_browse.h"

#include <vector>

#include "app/browse/browse.h"
#include "app/db_files.h"
#include "app/exit_codes.h"
#include "app/process.h"
#include "host/seam/file_error.h"
#include "host/system/companion_library.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

// To read and write, where that is allowed.
jet::Database openToEdit(const std::wstring& file) {
    try {
        return openDatabase(file, jet::OpenMode::Shared);
    } catch (const jet::Error& error) {
        if (error.code() != jet::CannotOpenFile) throw;
        return openDatabase(file);
    }
}

std::wstring resolvedOrEmpty(const std::wstring& path) {
    return path.empty() ? path : resolvePath(path).path;
}

}  // namespace

int browse(const DatabaseArguments& arguments) {
    jet::Database database = openToEdit(arguments.file);
    BrowseRequest request;
    for (const jet::CatalogObject& table : userTables(database))
        request.tables.push_back(table.name);
    if (!arguments.table.empty()) {
        request.table = findTable(database, arguments.table).name;
    } else if (!request.tables.empty()) {
        request.table = request.tables.front();
    }
    request.picture = resolvedOrEmpty(arguments.picture);
    request.text = resolvedOrEmpty(arguments.text);
    request.pdf = resolvedOrEmpty(arguments.pdf);
    const auto show = reinterpret_cast<BrowseFunction*>(
        companionSymbol("libswiftgate-browse.so", "swiftgateBrowse"));
    if (show == nullptr) throw FileError(L"libswiftgate-browse.so cannot be opened");
    switch (show(database, request)) {
        case BrowseResult::Done:
            return kDone;
        case BrowseResult::NoDisplay:
            complain(L"there is no display to show " + request.table +
                     L" on; --picture, --text and --pdf write files instead");
            return kWrongUsage;
        case BrowseResult::NotWritten:
            return kFileError;
    }
    return kFileError;
}

}  // namespace sg::app
