#include "support/zip/archive_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "base/encoding.h"
#include "support/zip/entry_names.h"
#include "support/zip/zip_times.h"

namespace sg {
namespace {

constexpr size_t kBufferBytes = size_t(1) << 16;
constexpr uint64_t kHighestDeflateRatio = 1032;
constexpr int kUnix = 3, kDarwin = 19;

// What is wrong with an entry by what its directory declares; empty when nothing is.
std::wstring_view refusal(const ZipEntry& entry) {
    const uint32_t kind = entry.attributes >> 16 & S_IFMT;
    const bool hasKind = (entry.system == kUnix || entry.system == kDarwin) && kind != 0;
    if (hasKind && kind != S_IFREG && kind != S_IFDIR) return L"it is a link or a device";
    if (entry.isEncrypted()) return L"it needs a password";
    switch (entry.method) {
        case ZIP_CM_STORE:
            if (entry.size != entry.packedSize) return L"its declared size is false";
            return {};
        case ZIP_CM_DEFLATE:
            if (entry.size / kHighestDeflateRatio > entry.packedSize) {
                return L"its declared size is false";
            }
            return {};
        default:
            return L"its compression method is not supported";
    }
}

}  // namespace

bool ArchiveReader::fail(std::wstring reason) {
    reason_ = std::move(reason);
    return false;
}

bool ArchiveReader::failAt(std::wstring_view name, std::wstring_view reason) {
    return fail(L"entry \"" + std::wstring(name) + L"\": " + std::wstring(reason));
}

bool ArchiveReader::open(const std::wstring& file) {
    archive_.reset();
    const int descriptor = ::open(toUtf8(file).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return fail(fromUtf8(std::strerror(errno)));
    const bool opened =
        directory_.read(descriptor) ? openLibrary(descriptor) : fail(directory_.reason());
    ::close(descriptor);
    if (!opened) archive_.reset();
    return opened;
}

// Both read through the same open file, so that nobody can exchange it between them.
bool ArchiveReader::openLibrary(int descriptor) {
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (own < 0) return fail(fromUtf8(std::strerror(errno)));
    int error = 0;
    archive_.reset(zip_fdopen(own, 0, &error));
    if (archive_ == nullptr) {
        ::close(own);
        zip_error_t described;
        zip_error_init_with_code(&described, error);
        fail(fromUtf8(zip_error_strerror(&described)));
        zip_error_fini(&described);
        return false;
    }
    return directoriesAgree() || fail(L"its directory is damaged");
}

// The checks are made on our reading of the directory, so the library's must be the same.
bool ArchiveReader::directoriesAgree() {
    const std::vector<ZipEntry>& entries = directory_.entries();
    if (zip_get_num_entries(archive_.get(), 0) != static_cast<zip_int64_t>(entries.size())) {
        return false;
    }
    for (zip_uint64_t i = 0; i < entries.size(); ++i) {
        zip_stat_t info;
        if (zip_stat_index(archive_.get(), i, 0, &info) != 0) return false;
        if (info.size != entries[i].size || info.comp_size != entries[i].packedSize ||
            info.comp_method != entries[i].method) {
            return false;
        }
    }
    return true;
}

std::wstring ArchiveReader::nameOf(zip_uint64_t index) {
    const ZipEntry& entry = directory_.entries()[index];
    const auto name = [&](zip_flags_t encoding) {
        const char* const text = zip_get_name(archive_.get(), index, encoding);
        return std::string(text != nullptr ? text : "");
    };
    // Where a field with the name in UTF-8 belongs to the entry, the library has put it in place.
    const std::string raw = name(ZIP_FL_ENC_RAW);
    const bool isUtf8 = entry.hasUtf8Name() || raw != entry.name;
    return entryName(raw, isUtf8, entry.system, fromUtf8(name(ZIP_FL_ENC_STRICT)));
}

std::time_t ArchiveReader::timeOf(zip_uint64_t index) {
    zip_uint16_t length = 0;
    const zip_uint8_t* const field = zip_file_extra_field_get_by_id(
        archive_.get(), index, kUnixTimeField, 0, &length, ZIP_FL_CENTRAL);
    if (const std::optional<std::time_t> exact = timeFromField({field, length})) return *exact;
    zip_stat_t info;
    return zip_stat_index(archive_.get(), index, 0, &info) == 0 ? info.mtime : 0;
}

bool ArchiveReader::planEntry(zip_uint64_t index, Entry& entry) {
    const std::wstring name = nameOf(index);
    std::wstring reason(refusal(directory_.entries()[index]));
    if (!reason.empty()) return failAt(name, reason);
    std::optional<ExtractionFolder::Path> path = entryPath(name, reason);
    if (!path) return failAt(name, reason);
    entry = {index, *std::move(path), isFolderName(name), directory_.entries()[index].size,
             timeOf(index)};
    return true;
}

bool ArchiveReader::planEntries(std::vector<Entry>& plan) {
    plan.resize(directory_.entries().size());
    for (zip_uint64_t i = 0; i < plan.size(); ++i) {
        if (!planEntry(i, plan[i])) return false;
    }
    return true;
}

bool ArchiveReader::extractAll(const std::wstring& folder) {
    std::vector<Entry> plan;
    if (!planEntries(plan)) return false;
    uint64_t left = freeBytes(folder);
    for (const Entry& entry : plan) {
        if (entry.size > left) return fail(L"there is not enough free space");
        left -= entry.size;
    }
    ExtractionFolder target;
    if (!target.open(folder)) return fail(target.reason());
    for (const Entry& entry : plan) {
        if (!entry.isFolder) {
            if (!extractFile(entry, target)) return false;
        } else if (!target.makeFolder(entry.path)) {
            return fail(target.reason());
        }
    }
    return true;
}

bool ArchiveReader::extractFile(const Entry& entry, ExtractionFolder& target) {
    const std::unique_ptr<zip_file_t, decltype(&zip_fclose)> from(
        zip_fopen_index(archive_.get(), entry.index, 0), &zip_fclose);
    if (from == nullptr) {
        return failAt(entry.path.back(), fromUtf8(zip_strerror(archive_.get())));
    }
    if (!target.beginFile(entry.path)) return fail(target.reason());
    if (!copyContent(from.get(), entry, target)) {
        target.abandonFile();
        return false;
    }
    return target.finishFile(entry.changed) || fail(target.reason());
}

bool ArchiveReader::copyContent(zip_file_t* from, const Entry& entry, ExtractionFolder& target) {
    std::string buffer(kBufferBytes, '\0');
    uint64_t left = entry.size;
    for (;;) {
        const zip_int64_t got = zip_fread(from, buffer.data(), buffer.size());
        if (got < 0) return failAt(entry.path.back(), fromUtf8(zip_file_strerror(from)));
        if (static_cast<uint64_t>(got) > left || (got == 0 && left != 0)) {
            return failAt(entry.path.back(), L"its declared size is false");
        }
        if (got == 0) return true;
        left -= static_cast<uint64_t>(got);
        if (!target.write({buffer.data(), static_cast<size_t>(got)})) {
            return fail(target.reason());
        }
    }
}

}  // namespace sg
