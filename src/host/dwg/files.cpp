#include "host/dwg/files.h"

#include "host/dwg/drawing_reader.h"

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

}  // namespace sg::dwg
