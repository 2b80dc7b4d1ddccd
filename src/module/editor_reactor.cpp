#include "module/editor_reactor.h"

#include "database/db_info.h"
#include "platform/ap/documents.h"
#include "platform/win/exceptions.h"

namespace sg {

void sgEditorReactor::saveComplete(AcDbDatabase* database, const wchar_t* fileName) {
    const AcApDocument* active = acDocManagerPtr()->mdiActiveDocument();
    if (active == nullptr || active->database() != database) return;
    if (dbInfoList().empty()) AfxThrowInvalidArgException();
    const DB_INFO& head = *dbInfoList().front();
    if (head.strDocument == fileName) return;
    if (head.pConnection == currentConnection()) closeCurrentDatabase();
}

}  // namespace sg
