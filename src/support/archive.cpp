#include "support/archive.h"

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "platform/win/file_operations.h"
#include "platform/win/files.h"
#include "support/zip/archive_reader.h"
#include "support/zip/archive_writer.h"
#include "support/zip/entry_names.h"

namespace sg {
namespace {

namespace fs = std::filesystem;

struct Found {
    std::wstring name;
    bool isFolder = false, isLink = false;
};

// What a pattern finds, without "." and "..".
std::vector<Found> findAll(const std::wstring& pattern) {
    std::vector<Found> all;
    WIN32_FIND_DATAW data;
    SgFileSearch* const search = FindFirstFileW(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return all;
    do {
        Found found{data.cFileName, (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                    (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0};
        if (found.name != L"." && found.name != L"..") all.push_back(std::move(found));
    } while (FindNextFileW(search, &data));
    FindClose(search);
    return all;
}

bool isFolder(const std::wstring& path) {
    std::error_code error;
    return fs::is_directory(toUtf8(path), error);
}

bool isRegularFile(const std::wstring& path) {
    std::error_code error;
    return fs::is_regular_file(toUtf8(path), error);
}

// A name below a folder, either of which may be empty.
std::wstring below(const std::wstring& folder, const std::wstring& name) {
    if (folder.empty() || name.empty()) return folder + name;
    return folder.back() == L'/' ? folder + name : folder + L'/' + name;
}

size_t lastPartOf(std::wstring_view path) {
    const size_t slash = path.find_last_of(L"/\\");
    return slash == std::wstring_view::npos ? 0 : slash + 1;
}

}  // namespace

Archive::Archive() = default;
Archive::~Archive() = default;

bool Archive::refuse(const wchar_t* operation, std::wstring_view subject,
                     std::wstring_view reason) {
    lastError_ = {operation, L"\"" + std::wstring(subject) + L"\": " + std::wstring(reason), {}};
    return false;
}

void Archive::Close() {
    writer_.reset();
    reader_.reset();
}

bool Archive::NewArchive(std::wstring_view path) {
    Close();
    path_ = sgResolvePath(path);
    auto writer = std::make_unique<ArchiveWriter>();
    if (!writer->create(path_)) return refuse(L"NewArchive", path_, writer->reason());
    writer_ = std::move(writer);
    return true;
}

bool Archive::OpenArchive(std::wstring_view path) {
    Close();
    path_ = sgResolvePath(path);
    auto reader = std::make_unique<ArchiveReader>();
    if (!reader->open(path_)) return refuse(L"OpenArchive", path_, reader->reason());
    reader_ = std::move(reader);
    return true;
}

std::wstring Archive::storedName(std::wstring_view path) const {
    return std::wstring(discardsPaths_ ? path.substr(lastPartOf(path)) : path);
}

bool Archive::appendMatches(const std::wstring& folder, const std::wstring& stored,
                            const std::wstring& pattern, bool recurse, size_t& count) {
    for (const Found& found : findAll(below(folder, pattern))) {
        const std::wstring file = below(folder, found.name);
        if (found.isFolder || !isRegularFile(file) || writer_->isOwnFile(file)) continue;
        if (!appendFile(file, storedName(below(stored, found.name)))) return false;
        ++count;
    }
    if (!recurse) return true;
    for (const Found& found : findAll(below(folder, L"*"))) {
        if (!found.isFolder || found.isLink) continue;
        if (!appendMatches(below(folder, found.name), below(stored, found.name), pattern, true,
                           count)) {
            return false;
        }
    }
    return true;
}

bool Archive::AppendFiles(std::wstring_view pattern, bool recurse) {
    if (writer_ == nullptr) return refuse(L"AppendFiles", pattern, L"no archive has been begun");
    const size_t name = lastPartOf(pattern);
    std::wstring folder(pattern.substr(0, name));
    if (name > 1) folder = sgResolvePath(pattern.substr(0, name - 1));
    size_t count = 0;
    if (!appendMatches(folder, L"", std::wstring(pattern.substr(name)), recurse, count)) {
        return refuse(L"AppendFiles", pattern, writer_->reason());
    }
    return count != 0 || refuse(L"AppendFiles", pattern, L"no file matches");
}

bool Archive::appendFolder(const std::wstring& folder, const std::wstring& stored) {
    if (!discardsPaths_ && !stored.empty() && !writer_->addFolder(folder, stored)) return false;
    for (const Found& found : findAll(below(folder, L"*"))) {
        const std::wstring path = below(folder, found.name);
        const std::wstring name = below(stored, found.name);
        if (found.isFolder) {
            if (!found.isLink && !appendFolder(path, name)) return false;
        } else if (isRegularFile(path) && !writer_->isOwnFile(path)) {
            if (!appendFile(path, storedName(name))) return false;
        }
    }
    return true;
}

// A database that is open has everything in its file once that has been opened.
bool Archive::appendFile(const std::wstring& path, const std::wstring& stored) {
    sgCloseFile(sgOpenFile(path.c_str()));
    return writer_->addFile(path, stored);
}

bool Archive::AppendFileOrFolder(std::wstring_view path, bool saveExtraPath) {
    constexpr const wchar_t* kOperation = L"AppendFileOrFolder";
    if (writer_ == nullptr) return refuse(kOperation, path, L"no archive has been begun");
    const std::wstring found = sgResolvePath(path);
    std::wstring stored = storedPath(path);
    if (!saveExtraPath) stored.erase(0, lastPartOf(stored));
    const bool appended =
        isFolder(found) ? appendFolder(found, stored) : appendFile(found, storedName(stored));
    return appended || refuse(kOperation, path, writer_->reason());
}

bool Archive::WriteAndClose() {
    if (writer_ == nullptr) return refuse(L"WriteAndClose", path_, L"no archive has been begun");
    const bool written = writer_->finish() || refuse(L"WriteAndClose", path_, writer_->reason());
    Close();
    return written;
}

bool Archive::ExtractAll(std::wstring_view folder) {
    if (reader_ == nullptr) return refuse(L"ExtractAll", folder, L"no archive is open");
    return reader_->extractAll(sgResolvePath(folder)) ||
           refuse(L"ExtractAll", path_, reader_->reason());
}

}  // namespace sg
