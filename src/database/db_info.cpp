#include "database/db_info.h"

#include <algorithm>
#include <new>
#include <set>
#include <utility>

#include "base/text.h"
#include "platform/ap/documents.h"

namespace sg {
namespace {

// The module-wide state. It lives as long as the module.
struct DatabaseState {
    DbInfoList list;
    CDBConnection* connection = nullptr;
    std::wstring name;
    int16_t readOnly = 0;
    std::set<CDBConnection*> connections;  // of setNewDatabase
};

DatabaseState& state() {
    static DatabaseState theState;
    return theState;
}

void clearCurrentDatabase() {
    setCurrentDatabase(nullptr, L"", 0);
}

void setCurrentDatabaseFrom(const DB_INFO& entry) {
    setCurrentDatabase(entry.pConnection, entry.strDatabase, entry.bReadOnly ? -1 : 0);
}

// Makes the document's entry the head and its connection the current one. False when it has none.
bool bringToHead(const wchar_t* document) {
    DbInfoList& list = dbInfoList();
    const DB_INFO& head = *list.front();
    if (head.strDocument == document) {
        if (head.pConnection != currentConnection()) setCurrentDatabaseFrom(head);
        return true;
    }
    const auto found = std::find_if(list.begin(), list.end(), [&](const auto& entry) {
        return entry->strDocument == document;
    });
    if (found == list.end()) return false;
    std::swap(list.front(), *found);
    setCurrentDatabaseFrom(*list.front());
    return true;
}

// The current connection's database has been destroyed behind the module's back.
void forgetInvalidConnections() {
    clearCurrentDatabase();
    for (const auto& entry : dbInfoList()) {
        if (entry->pConnection == nullptr || entry->pConnection->IsValid()) continue;
        entry->pConnection = nullptr;
        entry->strDatabase.clear();
    }
}

std::wstring comparableName(const std::wstring& name) {
    std::wstring comparable = upperCased(name);
    std::replace(comparable.begin(), comparable.end(), L'/', L'\\');
    return comparable;
}

// The document's connections stay open and free for adoption.
void giveUpEntries(const wchar_t* document) {
    for (const auto& entry : dbInfoList()) {
        if (entry->strDocument == document) entry->strDocument.clear();
        if (entry->pConnection == currentConnection()) clearCurrentDatabase();
    }
}

// Two drawings never hold one entry: only the document's own and free ones are looked at.
void adoptConnection(const wchar_t* document, const std::wstring& name) {
    DbInfoList& list = dbInfoList();
    for (auto& entry : list) {
        if (!entry->strDocument.empty() && entry->strDocument != document) continue;
        if (!isSameDatabase(entry->pConnection, name)) continue;
        entry->strDocument = document;
        DB_INFO& head = *list.front();
        if (head.strDocument == document) head.strDocument.clear();
        std::swap(entry, list.front());
        setCurrentDatabaseFrom(*list.front());
        return;
    }
}

}  // namespace

DbInfoList& dbInfoList() {
    return state().list;
}

CDBConnection* currentConnection() {
    return state().connection;
}

const std::wstring& currentDatabaseName() {
    return state().name;
}

int16_t currentReadOnly() {
    return state().readOnly;
}

void setCurrentDatabase(CDBConnection* connection, const std::wstring& name, int16_t readOnly) {
    state().connection = connection;
    state().name = name;
    state().readOnly = readOnly;
}

void setNewDatabase(std::unique_ptr<CDBConnection> connection, const std::wstring& name,
                    int16_t readOnly) {
    state().connections.insert(connection.get());
    setCurrentDatabase(connection.release(), name, readOnly);
}

void deleteCurrentConnection() {
    CDBConnection* const connection = std::exchange(state().connection, nullptr);
    if (connection == nullptr) return;
    for (const auto& entry : dbInfoList()) {
        if (entry->pConnection == connection) entry->pConnection = nullptr;
    }
    state().connections.erase(connection);
    delete connection;
}

const wchar_t* currentDocumentName() {
    const AcApDocument* document = acDocManagerPtr()->curDocument();
    return document == nullptr ? L"" : document->fileName();
}

void addDocumentEntry() {
    try {
        auto entry = std::make_unique<DB_INFO>();
        entry->strDocument = currentDocumentName();
        dbInfoList().push_front(std::move(entry));
    } catch (const std::bad_alloc&) {
        // The drawing works without a database.
    }
}

void selectDocumentDatabase() {
    if (dbInfoList().empty() || !bringToHead(currentDocumentName())) {
        clearCurrentDatabase();
        return;
    }
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return;
    const bool valid = connection->IsValid();
    if (valid && connection->IsOpen()) return;
    if (valid) {
        closeCurrentDatabase();
    } else {
        forgetInvalidConnections();
    }
    // Both ways here have emptied the name, so that a lost connection is deliberately not opened
    // again at this point; the next connect or query does that.
    reopenCurrentDatabase();
}

void reopenCurrentDatabase() {
    CDBConnection* const connection = currentConnection();
    const std::wstring name = currentDatabaseName();
    if (connection == nullptr || name.empty()) return;
    const std::wstring opened = connection->Open(name, false, currentReadOnly());
    if (opened.empty() || opened == kRepairNeeded) {
        clearCurrentDatabase();
    } else if (!dbInfoList().empty()) {
        DB_INFO& head = *dbInfoList().front();
        head.pConnection = connection;
        head.strDatabase = name;
    }
}

void closeCurrentDatabase() {
    if (currentConnection() == nullptr) return;
    currentConnection()->Close();
    state().name.clear();
    if (!dbInfoList().empty()) dbInfoList().front()->strDatabase.clear();
}

bool isSameDatabase(const CDBConnection* connection, const std::wstring& name) {
    if (connection == nullptr || !connection->IsValid() || !connection->IsOpen()) return false;
    return comparableName(connection->GetDatabaseName()).find(comparableName(name)) !=
           std::wstring::npos;
}

void bindConnectionToDocument(const std::wstring& name) {
    DbInfoList& list = dbInfoList();
    if (list.empty()) {
        clearCurrentDatabase();
        return;
    }
    if (const DB_INFO& head = *list.front(); isSameDatabase(head.pConnection, name)) {
        if (head.pConnection != currentConnection()) setCurrentDatabaseFrom(head);
        return;
    }
    giveUpEntries(currentDocumentName());
    adoptConnection(currentDocumentName(), name);
}

void removeUnusedEntries() {
    dbInfoList().remove_if([](const auto& entry) {
        return entry->strDocument.empty() && entry->pConnection == nullptr;
    });
}

void addConnectionEntry(const std::wstring& name, bool readOnly) {
    auto entry = std::make_unique<DB_INFO>();
    entry->pConnection = currentConnection();
    entry->strDocument = currentDocumentName();
    entry->strDatabase = name;
    entry->bReadOnly = readOnly;
    dbInfoList().push_front(std::move(entry));
}

void closeAllConnections() {
    DbInfoList& list = dbInfoList();
    while (!list.empty()) {
        DB_INFO& head = *list.front();
        if (head.pConnection != nullptr) {
            head.pConnection->Close();
            head.pConnection = nullptr;
            head.strDatabase.clear();
        }
        list.pop_front();
    }
}

void forgetDatabases() {
    dbInfoList().clear();
    clearCurrentDatabase();
    for (CDBConnection* const connection : std::exchange(state().connections, {}))
        delete connection;
}

}  // namespace sg
