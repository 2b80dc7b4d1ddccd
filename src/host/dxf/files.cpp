#include "host/dxf/files.h"

#include "host/dxf/drawing_reader.h"
#include "host/dxf/drawing_writer.h"
#include "host/model/core/database_state.h"

namespace sg::dxf {

bool isDrawing(std::string_view start) {
    return GroupReader::recognises(start);
}

std::vector<std::wstring> read(AcDbDatabase& database, std::string_view content,
                               const std::wstring& file) {
    try {
        return DrawingReader(database, content, file).read();
    } catch (const Error&) {
        throw;
    } catch (const std::exception& error) {
        throw Error(file + L": the drawing cannot be read: " + fromUtf8(error.what()));
    }
}

const Release& ownRelease(const AcDbDatabase& database) {
    const auto& origin = model::DatabaseState::of(database).origin;
    if (origin == nullptr) return releaseOf(AcDb::kDHL_CURRENT);
    return writtenFor(static_cast<AcDb::AcDbDwgVersion>(origin->release));
}

bool write(const AcDbDatabase& database, const WriteOptions& options,
           const GroupOutput::Write& write) {
    const Release& release = options.release != nullptr ? *options.release : ownRelease(database);
    const auto& origin = model::DatabaseState::of(database).origin;
    const std::string codePage =
        origin == nullptr || origin->codePage.empty() ? "ANSI_1252" : origin->codePage;
    const TextCodec codec(codePage, release.number >= AcDb::kDHL_1021);
    GroupOutput output(write, options.isBinary, codec);
    DrawingWriter writer(database, output, release);
    writer.write();
    if (options.report) {
        for (const auto& [name, count] : writer.losses()) {
            options.report(std::to_wstring(count) + L" " + name +
                           L" kept from a DWG file cannot be written as DXF, left out");
        }
        for (const auto& [name, count] : writer.onlyShown()) {
            options.report(std::to_wstring(count) + L" " + name +
                           L" kept from a DWG file cannot be written as DXF, only its looks are");
        }
    }
    return output.finish();
}

}  // namespace sg::dxf
