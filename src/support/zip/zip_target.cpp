#include "support/zip/zip_target.h"

#include <unistd.h>

#include <cerrno>
#include <memory>

namespace sg {
namespace {

struct Target {
    explicit Target(int file) : descriptor(file) { zip_error_init(&error); }
    ~Target() { zip_error_fini(&error); }

    int descriptor;
    zip_int64_t position = 0;
    zip_int64_t size = 0;
    zip_error_t error;
};

zip_int64_t write(Target& target, const char* bytes, zip_uint64_t length) {
    zip_uint64_t done = 0;
    while (done < length) {
        const ssize_t written = ::pwrite(target.descriptor, bytes + done, length - done,
                                         target.position + static_cast<zip_int64_t>(done));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            zip_error_set(&target.error, ZIP_ER_WRITE, errno);
            return -1;
        }
        done += static_cast<zip_uint64_t>(written);
    }
    target.position += static_cast<zip_int64_t>(length);
    if (target.position > target.size) target.size = target.position;
    return static_cast<zip_int64_t>(length);
}

zip_int64_t seek(Target& target, void* arguments, zip_uint64_t length) {
    const zip_int64_t position = zip_source_seek_compute_offset(
        static_cast<zip_uint64_t>(target.position), static_cast<zip_uint64_t>(target.size),
        arguments, length, &target.error);
    if (position < 0) return -1;
    target.position = position;
    return 0;
}

// What an empty file is to a reader.
zip_int64_t status(void* data) {
    auto* const info = static_cast<zip_stat_t*>(data);
    zip_stat_init(info);
    info->size = 0;
    info->valid = ZIP_STAT_SIZE;
    return sizeof(*info);
}

zip_int64_t operation(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command) {
    Target& target = *static_cast<Target*>(state);
    switch (command) {
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(
                ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
                ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, ZIP_SOURCE_SEEK, ZIP_SOURCE_TELL,
                ZIP_SOURCE_SUPPORTS, ZIP_SOURCE_BEGIN_WRITE, ZIP_SOURCE_WRITE,
                ZIP_SOURCE_COMMIT_WRITE, ZIP_SOURCE_ROLLBACK_WRITE, ZIP_SOURCE_SEEK_WRITE,
                ZIP_SOURCE_TELL_WRITE, ZIP_SOURCE_REMOVE, -1);
        case ZIP_SOURCE_STAT:
            return status(data);
        case ZIP_SOURCE_ERROR:
            return zip_error_to_data(&target.error, data, length);
        case ZIP_SOURCE_FREE:
            delete &target;
            return 0;
        case ZIP_SOURCE_WRITE:
            return write(target, static_cast<const char*>(data), length);
        case ZIP_SOURCE_SEEK_WRITE:
            return seek(target, data, length);
        case ZIP_SOURCE_TELL_WRITE:
            return target.position;
        case ZIP_SOURCE_OPEN:
        case ZIP_SOURCE_READ:
        case ZIP_SOURCE_CLOSE:
        case ZIP_SOURCE_SEEK:
        case ZIP_SOURCE_TELL:
        case ZIP_SOURCE_BEGIN_WRITE:
        case ZIP_SOURCE_COMMIT_WRITE:
        case ZIP_SOURCE_ROLLBACK_WRITE:
        case ZIP_SOURCE_REMOVE:
            return 0;
        default:
            zip_error_set(&target.error, ZIP_ER_OPNOTSUPP, 0);
            return -1;
    }
}

}  // namespace

zip_source_t* zipTarget(int descriptor, zip_error_t* error) {
    auto target = std::make_unique<Target>(descriptor);
    zip_source_t* const source = zip_source_function_create(&operation, target.get(), error);
    if (source != nullptr) target.release();
    return source;
}

}  // namespace sg
