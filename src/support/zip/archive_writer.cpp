#include "support/zip/archive_writer.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/encoding.h"
#include "base/text.h"
#include "support/zip/entry_names.h"
#include "support/zip/zip_target.h"
#include "support/zip/zip_times.h"

namespace sg {
namespace {

constexpr zip_uint32_t kLevel = 6;  // what programs that make ZIP files take by themselves

// The record that ends a ZIP file, and all that one without entries consists of.
constexpr std::string_view kEmptyArchive("PK\5\6\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 22);

bool statusOf(const std::wstring& file, struct stat& info) {
    return ::stat(toUtf8(file).c_str(), &info) == 0;
}

}  // namespace

bool ArchiveWriter::fail(std::wstring reason) {
    reason_ = std::move(reason);
    return false;
}

bool ArchiveWriter::failAt(const std::wstring& file, int code) {
    return fail(L"\"" + file + L"\": " + fromUtf8(std::strerror(code)));
}

bool ArchiveWriter::failInLibrary(const std::wstring& file) {
    return fail(L"\"" + file + L"\": " + fromUtf8(zip_strerror(archive_.get())));
}

bool ArchiveWriter::create(const std::wstring& file) {
    archive_.reset();
    names_.clear();
    file_ = file;
    target_ = std::make_unique<ReplacementFile>(file);
    if (!target_->isOpen()) return failAt(file, target_->error());
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zipTarget(target_->descriptor(), &error);
    if (source != nullptr) {
        archive_.reset(zip_open_from_source(source, ZIP_CREATE | ZIP_TRUNCATE, &error));
        if (archive_ == nullptr) zip_source_free(source);
    }
    if (archive_ == nullptr) fail(fromUtf8(zip_error_strerror(&error)));
    zip_error_fini(&error);
    return archive_ != nullptr;
}

std::wstring ArchiveWriter::freeName(const std::wstring& storedName) {
    std::wstring name = storedName;
    for (unsigned number = 2; !names_.insert(lowerCased(name)).second; ++number)
        name = numberedName(storedName, number);
    return name;
}

bool ArchiveWriter::setTime(zip_uint64_t index, std::time_t changed) {
    zip_file_set_mtime(archive_.get(), index, changed, 0);
    const std::optional<UnixTimeField> field = fieldFromTime(changed);
    return !field || zip_file_extra_field_set(archive_.get(), index, kUnixTimeField,
                                              ZIP_EXTRA_FIELD_NEW, field->data(), field->size(),
                                              ZIP_FL_LOCAL | ZIP_FL_CENTRAL) == 0;
}

bool ArchiveWriter::addFile(const std::wstring& file, const std::wstring& storedName) {
    struct stat info;
    const std::string path = toUtf8(file);
    if (!statusOf(file, info) || ::access(path.c_str(), R_OK) != 0) return failAt(file, errno);
    if (!S_ISREG(info.st_mode)) return fail(L"\"" + file + L"\" is no file");

    const std::string name = toUtf8(freeName(storedName));
    zip_source_t* const source = zip_source_file(archive_.get(), path.c_str(), 0, -1);
    if (source == nullptr) return failInLibrary(file);
    const zip_int64_t added = zip_file_add(archive_.get(), name.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (added < 0) {
        zip_source_free(source);
        return failInLibrary(file);
    }
    const auto index = static_cast<zip_uint64_t>(added);
    const bool isSet = zip_set_file_compression(archive_.get(), added, ZIP_CM_DEFLATE, kLevel) == 0;
    return (isSet && setTime(index, info.st_mtime)) || failInLibrary(file);
}

bool ArchiveWriter::addFolder(const std::wstring& folder, const std::wstring& storedName) {
    struct stat info;
    if (!statusOf(folder, info)) return failAt(folder, errno);
    if (!names_.insert(lowerCased(storedName)).second) return true;
    const zip_int64_t added =
        zip_dir_add(archive_.get(), toUtf8(storedName).c_str(), ZIP_FL_ENC_UTF_8);
    if (added < 0) return failInLibrary(folder);
    return setTime(static_cast<zip_uint64_t>(added), info.st_mtime) || failInLibrary(folder);
}

bool ArchiveWriter::isOwnFile(const std::wstring& file) const {
    struct stat info, own;
    const auto isSame = [&] { return info.st_dev == own.st_dev && info.st_ino == own.st_ino; };
    return statusOf(file, info) && ((statusOf(file_, own) && isSame()) ||
                                    (::fstat(target_->descriptor(), &own) == 0 && isSame()));
}

bool ArchiveWriter::writeEntries() {
    if (zip_get_num_entries(archive_.get(), 0) == 0) {
        archive_.reset();
        return target_->write(kEmptyArchive) || failAt(file_, target_->error());
    }
    if (zip_close(archive_.get()) != 0) return failInLibrary(file_);
    archive_.release();  // zip_close has released it
    return true;
}

bool ArchiveWriter::finish() {
    bool finished = writeEntries();
    if (finished && !target_->commit()) finished = failAt(file_, target_->error());
    archive_.reset();
    target_.reset();
    return finished;
}

}  // namespace sg
