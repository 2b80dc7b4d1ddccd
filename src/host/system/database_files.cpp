#include "host/system/database_files.h"

#include "host/system/paths.h"

namespace sg {

jet::StorageOptions databaseOptions() {
    jet::StorageOptions options;
    options.findFile = [](const std::wstring& path) {
        return absolutePath(resolvePath(path).path);
    };
    return options;
}

}  // namespace sg
