#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "database/connection.h"

// Which database belongs to which open drawing.
namespace sg {

// One drawing's database. An entry without a document but with a connection is a connection that no
// drawing owns at the moment and that a later connect may adopt.
struct DB_INFO {
    std::wstring strDocument;              // the drawing's file name, as its document gives it
    CDBConnection* pConnection = nullptr;  // owned by hand: entries change their connections
    std::wstring strDatabase;              // the database's file; empty when there is none
    bool bReadOnly = false;                // what was asked for, not what was got
};

// The entries, the current drawing's first once selectDocumentDatabase has run. Entries move
// between nodes by being swapped; a node stays where it is.
using DbInfoList = std::list<std::unique_ptr<DB_INFO>>;
DbInfoList& dbInfoList();

// What every sg_ function works on. Null, empty and 0 (-1 is read-only) when there is none.
CDBConnection* currentConnection();
const std::wstring& currentDatabaseName();
int16_t currentReadOnly();

// Stores the three together.
void setCurrentDatabase(CDBConnection* connection, const std::wstring& name, int16_t readOnly);

// The same with a connection that nothing has yet. It lives until deleteCurrentConnection, or until
// the module ends.
void setNewDatabase(std::unique_ptr<CDBConnection> connection, const std::wstring& name,
                    int16_t readOnly);

// Deletes the current connection and makes it null; every entry that still has it loses it. The
// current name and the read-only word stay. No effect without a connection.
void deleteCurrentConnection();

// The file name of the current document; empty without one. Valid as long as the document keeps it.
const wchar_t* currentDocumentName();

// Adds an entry for the current document, without a database, at the head of the list. When memory
// is exhausted the drawing goes without an entry.
void addDocumentEntry();

// Brings the current document's entry to the head of the list and makes its connection the current
// one; a connection that was lost or closed is cleared away. Called ahead of every sg_ function.
void selectDocumentDatabase();

// Opens currentDatabaseName() again on the current connection and notes it in the head entry; on
// failure nothing is current. No effect without a connection or a name.
void reopenCurrentDatabase();

// Closes the current connection and forgets the name, here and in the head entry. The connection
// stays the current one. No effect without a connection.
void closeCurrentDatabase();

// Whether the connection is open on the file that `name` stands for: case and the kind of separator
// do not matter, and a part of the file's full path is enough. False for null.
bool isSameDatabase(const CDBConnection* connection, const std::wstring& name);

// Looks for a connection of the current document to the file, makes its entry the head of the list
// and the connection the current one. A connection that no document owns is taken over. Where there
// is none the document gives up its entries and nothing is current; connections that it had stay
// open.
void bindConnectionToDocument(const std::wstring& name);

// Removes the entries that have neither a document nor a connection.
void removeUnusedEntries();

// Adds an entry for the current document with the current connection at the head of the list.
void addConnectionEntry(const std::wstring& name, bool readOnly);

// Empties the list. The entries' connections are closed; the objects are left, since one of them
// may be the current connection.
void closeAllConnections();

// At the module's end: empties the list, makes nothing current, and deletes the connections of
// setNewDatabase that are left, those that no entry has had for long among them.
void forgetDatabases();

}  // namespace sg
