#include "standards/dialog_library.h"

#include "database/database_error.h"
#include "database/db_info.h"
#include "platform/win/libraries.h"

namespace sg {

StandardsDialogs* standardsDialogs() {
    static const DialogServices services{
        reportDialogDatabaseError,
        [](const CDBConnection* connection) { return connection == currentConnection(); }};
    const FARPROC open =
        GetProcAddress(LoadLibraryW(L"libswiftgate-standards.so"), "swiftgateStandardsDialogs");
    if (open == nullptr) return nullptr;
    return reinterpret_cast<StandardsDialogs* (*)(const DialogServices&)>(open)(services);
}

}  // namespace sg
