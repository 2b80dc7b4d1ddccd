#pragma once

// The sg_ functions as the call guard runs them; docs/functions tells what they do.
namespace sg {

// Connections.
int connectDatabase();
int closeDatabase();
int createDatabase();
int databaseName();
int databaseReadOnly();
int tableExists();
int closeTable();
int closeAllTables();

// The table cursor.
int selectTable();
int topRecord();
int bottomRecord();
int skipRecords();
int seekRecord();
int currentRecord();
int recordCount();
int currentTable();
int currentIndex();

// Writing records.
int appendRecord();
int appendRecordWithIndex();
int replaceRecord();
int deleteRecord();

// SQL.
int sqlSelect();
int sqlSelectOrNil();
int sqlSelectOrError();
int sqlCommand();
int runStoredQuery();
int setStoredQuery();

// The design of tables.
int createTable();
int modifyTable();
int deleteTable();
int renameTable();
int listTables();
int linkTable();
int tableStructure();
int fieldRequired();
int fieldAttributes();
int listIndexes();
int createIndex();
int indexUnique();
int indexFields();
int relationExists();
int relationDelete();
int relationCount();
int relationInfo();

// Maintenance and errors.
int lastError();
int resetLastError();
int compactDatabaseFile();
int databaseVersion();

// The product's extended data on entities.
int xdPutList();
int xdGet();
int xdGetList();
int xdGetAll();

// Files and folders.
int fileCopy();
int fileCopyIfChanged();
int fileMove();
int fileDelete();
int fileDirectory();
int makeDirectory();
int removeDirectory();

// Sounds, message boxes and random numbers.
int beep();
int messageBeep();
int messageBox();
int randomNumber();

}  // namespace sg
