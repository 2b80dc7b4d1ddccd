#include <QGuiApplication>
#include <QMessageBox>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "base/encoding.h"
#include "base/replacement_file.h"
#include "grid/grid_ctrl.h"

// Files of text.
namespace sg::grid {
namespace {

constexpr size_t kLongestHeading = 1024;  // of the first line
constexpr size_t kWriteAt = 1 << 16;

std::wstring withReason(const std::wstring& message, int error) {
    return message + L": " + fromUtf8(std::strerror(error));
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool readAll(std::FILE& file, std::string& bytes) {
    char buffer[1 << 16];
    while (const size_t count = std::fread(buffer, 1, sizeof(buffer), &file))
        bytes.append(buffer, count);
    return std::ferror(&file) == 0;
}

// The next line without its end; false at the end of the text.
bool takeLine(std::wstring_view& text, std::wstring_view& line) {
    if (text.empty()) return false;
    const size_t end = text.find(L'\n');
    line = text.substr(0, end);
    text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
    if (line.ends_with(L'\r')) line.remove_suffix(1);
    return true;
}

// The next field of a line; false when the line has none left.
bool takeField(std::wstring_view& line, wchar_t separator, std::wstring_view& field,
               bool& hasMore) {
    if (!hasMore) return false;
    const size_t end = line.find(separator);
    field = line.substr(0, end);
    hasMore = end != std::wstring_view::npos;
    if (hasMore) line.remove_prefix(end + 1);
    return true;
}

}  // namespace

void CGridCtrl::ReportError(const std::wstring& message) {
    if (QGuiApplication::platformName() == QStringLiteral("offscreen")) {
        std::fprintf(stderr, "%s\n", toUtf8(message).c_str());
        return;
    }
    QMessageBox::warning(window(), window()->windowTitle(), QString::fromStdWString(message));
}

bool CGridCtrl::Load(const std::wstring& path, wchar_t separator) {
    if (isVirtual_) return false;
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(toUtf8(path).c_str(), "rb"));
    if (!file) {
        ReportError(withReason(L"cannot open " + path, errno));
        return false;
    }
    std::string bytes;
    if (!readAll(*file, bytes)) {
        ReportError(L"Unable to load grid data");
        return false;
    }
    const std::wstring content = decodeTextFile(bytes);

    const int fixedRows = fixedRows_, fixedColumns = fixedColumns_;
    DeleteAllItems();
    std::wstring_view rest = content, line, field;
    if (takeLine(rest, line) && !line.empty()) {
        line = line.substr(0, kLongestHeading);
        for (bool hasMore = true; takeField(line, separator, field, hasMore);)
            InsertColumn(std::wstring(field), kHeadingFormat);
    }
    while (takeLine(rest, line)) {
        bool hasMore = true;
        takeField(line, separator, field, hasMore);
        const int row = InsertRow(std::wstring(field));
        for (int column = 1; takeField(line, separator, field, hasMore); ++column)
            SetItemText(row, column, std::wstring(field));
    }
    SetFixedRowCount(std::min(fixedRows, GetRowCount()));
    SetFixedColumnCount(std::min(fixedColumns, GetColumnCount()));
    for (int column = 0; column < GetColumnCount(); ++column)
        AutoSizeColumn(column, autoSizeStyle_, false);
    ResetScrollBars();
    return true;
}

bool CGridCtrl::Save(const std::wstring& path, wchar_t separator) {
    if (isVirtual_) return false;
    ReplacementFile file(path);
    if (!file.isOpen()) {
        ReportError(withReason(L"cannot open " + path, file.error()));
        return false;
    }
    bool isWritten = true;
    std::wstring text;
    for (int row = 0; row < GetRowCount() && isWritten; ++row) {
        for (int column = 0; column < GetColumnCount(); ++column) {
            if (column > 0) text += separator;
            text += GetCell(row, column)->GetText();
        }
        text += L'\n';
        if (text.size() < kWriteAt) continue;
        isWritten = file.write(toUtf8(text));
        text.clear();
    }
    if (isWritten && file.write(toUtf8(text)) && file.commit()) return true;
    ReportError(withReason(L"Unable to save grid list", file.error()));
    return false;
}

}  // namespace sg::grid
