#include "host/dwg/files.h"

#include "host/dwg/drawing_reader.h"
#include "host/dwg/drawing_writer.h"

namespace sg::dwg {

bool isDrawing(std::string_view start) {
    return start.size() > 6 && start.starts_with("AC1") && start[6] == '\0';
}

std::vector<std::wstring> read(AcDbDatabase& database, std::string_view content,
                               const std::wstring& file) {
    const ByteSpan bytes(reinterpret_cast<const uint8_t*>(content.data()), content.size());
    try {
        FileContent opened = readContainer(bytes, file);
        return DrawingReader(database, opened, file).read();
    } catch (const Error&) {
        throw;
    } catch (const std::exception& error) {
        throw Error(file + L": the drawing cannot be read: " + fromUtf8(error.what()));
    }
}

bool isWritten(const dxf::Release& release) {
    return release.number >= AcDb::kDHL_1015 && release.number != AcDb::kDHL_1021;
}

const dxf::Release& ownRelease(const AcDbDatabase& database) {
    const auto& origin = model::DatabaseState::of(database).origin;
    if (origin == nullptr) return dxf::releaseOf(AcDb::kDHL_CURRENT);
    auto number = static_cast<AcDb::AcDbDwgVersion>(origin->release);
    while (!isWritten(dxf::releaseOf(number)))
        number = static_cast<AcDb::AcDbDwgVersion>(dxf::releaseOf(number).number + 1);
    return dxf::releaseOf(number);
}

Written write(const AcDbDatabase& database, const dxf::Release& release) {
    DrawingWriter writer(database, release);
    Written written;
    written.bytes = writer.write();
    written.losses = writer.losses();
    return written;
}

}  // namespace sg::dwg
