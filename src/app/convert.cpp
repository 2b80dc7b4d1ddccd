#include <fmt/xchar.h>

#include "app/commands.h"
#include "app/exit_codes.h"
#include "app/session.h"
#include "base/encoding.h"
#include "host/editor/command_line_output.h"
#include "host/editor/documents.h"
#include "host/exchange/drawing_files.h"
#include "host/exchange/flatten.h"
#include "host/exchange/step_file.h"
#include "host/seam/file_error.h"
#include "host/system/file_lock.h"
#include "host/system/paths.h"

namespace sg::app {
namespace {

// A drawing that is read to be looked at or written elsewhere; what it had to be forgiven is said.
void readDrawing(Session& session, AcDbDatabase& database, const std::wstring& name) {
    const ResolvedPath found = resolvePath(absolutePath(name));
    if (!found.exists) throw FileError(L"no such drawing: " + found.path);
    for (const std::wstring& warning : exchange::readFile(database, found.path))
        session.host().output().reportError(warning);
}

void writeDrawing(Session& session, const AcDbDatabase& database,
                  const DrawingArguments& arguments) {
    const std::wstring target = resolvePath(absolutePath(arguments.output)).path;
    exchange::checkCanWrite(target);
    const FileLock lock(target);
    if (!lock.isFree()) {
        throw FileError(fmt::format(L"{}: that drawing is open in {}", target, lock.holder()));
    }
    dxf::WriteOptions options;
    if (!arguments.release.empty()) options.release = dxf::releaseNamed(toUtf8(arguments.release));
    options.isBinary = arguments.isBinary;
    options.report = [&](const std::wstring& text) { session.host().output().reportError(text); };
    exchange::writeFile(database, target, options);
}

// Custom entities are taken apart by their module, which works on open drawings.
void convertFlat(Session& session, const DrawingArguments& arguments) {
    AcDbDatabase& database = *session.document().database();
    for (const auto& [name, count] : exchange::flatten(database)) {
        session.complain(
            fmt::format(L"{} {} cannot be taken apart and stay as they are", count, name));
    }
    writeDrawing(session, database, arguments);
}

void writeSolids(Session& session, const AcDbDatabase& database,
                 const DrawingArguments& arguments) {
    const exchange::StepResult written =
        exchange::writeStepFile(database, resolvePath(absolutePath(arguments.output)).path);
    for (const auto& [name, count] : written.left)
        session.complain(fmt::format(L"not in the file: {} {}", count, name));
}

}  // namespace

int convert(const Arguments& arguments) {
    Session session(arguments, false);
    return session.conclude([&] {
        try {
            const DrawingArguments& drawing = arguments.drawingFile;
            const bool isStep = exchange::isStepName(drawing.output);
            if (!isStep) exchange::checkCanWrite(drawing.output);
            // Modules bring the classes of custom entities, which no file can change its form
            // without.
            session.start();
            if (drawing.isFlat && !isStep) {
                convertFlat(session, drawing);
                return kDone;
            }
            AcDbDatabase database(false, true);
            readDrawing(session, database, drawing.file);
            if (isStep) {
                writeSolids(session, database, drawing);
            } else {
                writeDrawing(session, database, drawing);
            }
        } catch (const dxf::Error& error) {
            throw FileError(error.text());
        }
        return kDone;
    });
}

}  // namespace sg::app
