#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "database/db_info.h"
#include "database/driver_offer.h"
#include "drawing/call_arguments.h"
#include "platform/win/message_box.h"
#include "standards/dialog_library.h"
#include "standards/lisp_functions.h"

namespace sg {
namespace {

CDBConnection* documentConnection() {
    selectDocumentDatabase();
    return currentConnection();
}

// The path that the caller named, or else that of the current document's database.
std::wstring readPath(const resbuf*& position, bool& isNamed) {
    std::wstring path;
    isNamed = nextString(position, path);
    if (!isNamed && documentConnection() != nullptr) path = documentConnection()->GetDatabaseName();
    return path;
}

// A connection of the dialog's own; closed in the end.
class OwnConnection {
  public:
    explicit OwnConnection(const std::wstring& path) {
        const std::wstring opened = connection_.Open(path, false, 0);
        isOpen_ = !opened.empty() && opened != kRepairNeeded;
    }
    ~OwnConnection() { connection_.Close(); }
    OwnConnection(const OwnConnection&) = delete;
    OwnConnection& operator=(const OwnConnection&) = delete;

    // False, when the user has been told why the dialog cannot come up.
    bool isUsable() {
        if (!isOpen_) {
            reportDialogDatabaseError(&connection_);
            return false;
        }
        if (!connection_.IsReadOnly()) return true;
        MessageBoxW(GetActiveWindow(), L"Database is read-only. Cannot be viewed at this time.",
                    L"Quillon", MB_OK | MB_ICONWARNING);
        return false;
    }
    CDBConnection& get() { return connection_; }

  private:
    CDBConnection connection_;
    bool isOpen_ = false;
};

constexpr intptr_t kNotCreated = -1;

// `show` runs a dialog on a connection.
template <class Show>
void showDialog(CDBConnection& connection, const Show& show) {
    StandardsDialogs* const dialogs = standardsDialogs();
    checkDialogResult(dialogs != nullptr ? show(*dialogs, connection) : kNotCreated);
    acedRetNil();  // LISP that the dialog called may have left another result
}

template <class Show>
void showOnPath(const std::wstring& path, const Show& show) {
    OwnConnection connection(path);
    if (connection.isUsable()) showDialog(connection.get(), show);
}

// Without a path, on the document's own connection, which stays open.
template <class Show>
void showOnPathOrDocument(const std::wstring* path, const Show& show) {
    if (path != nullptr) {
        showOnPath(*path, show);
    } else if (CDBConnection* const connection = documentConnection()) {
        showDialog(*connection, show);
    }
}

int showOptions(Discipline discipline, const std::wstring& path, const resbuf* position,
                bool showSolid) {
    int32_t system = 0;
    if (!nextInt(position, system)) return kLispOk;
    showOnPath(path, [&](StandardsDialogs& dialogs, CDBConnection& connection) {
        return dialogs.layerSystemOptions(discipline, connection, system, showSolid);
    });
    return kLispOk;
}

// Takes an argument that may be a text: any other one, a list too, is passed over.
bool takeText(const resbuf*& position, std::wstring& text) {
    if (nextString(position, text)) return true;
    int depth = 0;
    do {
        if (position == nullptr) break;
        if (position->restype == RTLB) ++depth;
        if (position->restype == RTLE) --depth;
        skipNext(position);
    } while (depth > 0);
    return false;
}

std::set<std::wstring> readKeys(const resbuf* position) {
    std::set<std::wstring> keys;
    if (!nextListBegin(position)) return keys;
    while (position != nullptr && position->restype != RTLE) {
        std::wstring key;
        if (takeText(position, key)) keys.insert(key);
    }
    return keys;
}

}  // namespace

int customizeLayers() {
    CallArguments arguments;
    bool isNamed = false;
    const std::wstring path = readPath(arguments.next, isNamed);
    showOnPath(path, [&](StandardsDialogs& dialogs, CDBConnection& connection) {
        return dialogs.customizeLayers(connection, isNamed);
    });
    return kLispOk;
}

int layerSystemOptionsElec() {
    CallArguments arguments;
    std::wstring mode;
    bool isNamed = false;
    // A path needs the mode before it.
    nextString(arguments.next, mode);
    const std::wstring path = readPath(arguments.next, isNamed);
    const bool showSolid = mode != L"Photo" && mode != L"Vantor";
    return showOptions(Discipline::electrical, path, arguments.next, showSolid);
}

int layerSystemOptionsPlumb() {
    CallArguments arguments;
    bool isNamed = false;
    const std::wstring path = readPath(arguments.next, isNamed);
    return showOptions(Discipline::plumbing, path, arguments.next, false);
}

int layerSystemOptionsHvac() {
    CallArguments arguments;
    bool isNamed = false;
    const std::wstring path = readPath(arguments.next, isNamed);
    return showOptions(Discipline::hvac, path, arguments.next, true);
}

int customizeTextStyles() {
    CallArguments arguments;
    std::wstring path, key;
    const bool isNamed = takeText(arguments.next, path);
    takeText(arguments.next, key);
    showOnPathOrDocument(isNamed ? &path : nullptr,
                         [&](StandardsDialogs& dialogs, CDBConnection& connection) {
                             return dialogs.customizeTextStyles(connection, !isNamed, key);
                         });
    return kLispOk;
}

int customizeLabelGroup() {
    CallArguments arguments;
    LabelGroupRequest request;
    std::wstring path;
    if (!nextString(arguments.next, request.group) || !nextString(arguments.next, request.title)) {
        return kLispWrongType;
    }
    const bool isNamed = takeText(arguments.next, path);
    takeText(arguments.next, request.option);
    request.hiddenKeys = readKeys(arguments.next);
    showOnPathOrDocument(isNamed ? &path : nullptr,
                         [&](StandardsDialogs& dialogs, CDBConnection& connection) {
                             return dialogs.customizeLabelGroup(connection, request);
                         });
    return kLispOk;
}

}  // namespace sg
