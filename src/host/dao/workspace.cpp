#include "host/dao/database_session.h"
#include "host/dao/errors.h"
#include "host/jet/compact/compact.h"
#include "host/system/database_files.h"
#include "host/system/paths.h"
#include "platform/dao/database.h"

using sg::absolutePath;
using sg::resolvePath;
using sg::dao::guarded;

void CDaoWorkspace::CompactDatabase(const std::wstring& source, const std::wstring& destination,
                                    const std::wstring& locale, int32_t) {
    guarded([&] {
        sg::jet::CompactOptions options;
        options.locale = sg::jet::parseLocale(locale);
        options.storage = sg::databaseOptions();
        sg::jet::compactDatabase(absolutePath(resolvePath(source).path),
                                 absolutePath(resolvePath(destination).path), options);
    });
}

void CDaoWorkspace::RepairDatabase(const std::wstring& name) {
    guarded([&] {
        sg::jet::CompactOptions options;
        options.repair = true;
        options.storage = sg::databaseOptions();
        const std::wstring path = absolutePath(resolvePath(name).path);
        sg::jet::compactInPlace(path, path + L".bak", options);
    });
}
