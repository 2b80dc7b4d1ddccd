#include <string>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_builders.h"
#include "bridge/marshal_readers.h"
#include "bridge/marshal_results.h"
#include "bridge/marshal_variants.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "database/db_info.h"
#include "database/lisp_functions.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

// The arguments of a function that takes so many strings ahead of anything else.
class StringArguments {
  public:
    template <class... Strings>
    bool read(Strings&... strings) {
        return (nextString(at, strings) && ...);
    }

  private:
    const ArgumentList list_;

  public:
    const resbuf* at = list_.first();  // behind the strings
};

int retT() {
    acedRetT();
    return kLispOk;
}

// Why an operation of the current connection has answered false; the result is nil.
int retFailure() {
    reportDatabaseError();
    return kLispOk;
}

int retTOrFailure(bool done) {
    return done ? retT() : retFailure();
}

int retNames(bool done, const COleSafeArray& names) {
    if (!done) return retFailure();
    returnValueList(names);
    return kLispOk;
}

int retPairs(bool done, const COleSafeArray& pairs) {
    if (!done) return retFailure();
    returnPairList(pairs);
    return kLispOk;
}

// The engine changes tables that nobody has open.
using FieldOperation = bool (CDBConnection::*)(const std::wstring&, const COleSafeArray&);
int makeFields(FieldOperation operation) {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring table;
    if (!arguments.read(table)) return kLispWrongType;
    COleSafeArray fields;
    if (!listToVariantArray(arguments.at, fields)) return kLispOk;
    connection->CloseNamedTable(table);
    if (!(connection->*operation)(table, fields)) return retFailure();
    acedRetStr(table.c_str());
    return kLispOk;
}

}  // namespace

// --- tables ---

int createTable() {
    return makeFields(&CDBConnection::CreateTable);
}

int modifyTable() {
    return makeFields(&CDBConnection::ModifyTable);
}

int deleteTable() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring table;
    if (!arguments.read(table)) return kLispWrongType;
    bool withRelations = false;
    nextBool(arguments.at, withRelations);
    if (!connection->DeleteTable(table, withRelations)) reportDatabaseError();
    return kLispOk;
}

int renameTable() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring table, newName;
    if (!arguments.read(table, newName)) return kLispWrongType;
    if (!connection->RenameTable(table, newName)) return retFailure();
    acedRetStr(newName.c_str());
    return kLispOk;
}

int listTables() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    COleSafeArray names;
    const bool done = connection->ListTables(names);
    return retNames(done, names);
}

int linkTable() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    acedRetNil();
    StringArguments arguments;
    const resbuf* const first = arguments.at;
    if (first == nullptr || first->rbnext == nullptr || first->rbnext->rbnext == nullptr) {
        return kLispTooFew;
    }
    std::wstring name, file, sourceTable;
    if (!arguments.read(name, file)) return kLispWrongType;
    nextString(arguments.at, sourceTable);
    return retTOrFailure(connection->LinkTable(name, file, sourceTable));
}

// --- fields ---

int tableStructure() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    COleSafeArray record;
    const bool done = connection->GetStructure(record);
    return retPairs(done, record);
}

int fieldRequired() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring table, field;
    if (!arguments.read(table, field)) return kLispWrongType;
    return retTOrFailure(connection->FieldRequired(table, field));
}

int fieldAttributes() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring field;
    if (!arguments.read(field)) return kLispWrongType;
    COleSafeArray attributes;
    const bool done = connection->FieldAttributes(field, attributes);
    return retPairs(done, attributes);
}

// --- indexes ---

int listIndexes() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    COleSafeArray names;
    const bool done = connection->ListIndexes(names);
    return retNames(done, names);
}

int createIndex() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring table, field;
    int16_t unique = 0, primary = 0;
    if (!arguments.read(table, field) || !nextBoolWord(arguments.at, unique) ||
        !nextBoolWord(arguments.at, primary)) {
        return kLispWrongType;
    }
    return retTOrFailure(connection->CreateIndex(table, field, unique, primary));
}

// These and the two on relations look at their arguments even without a connection.

int indexUnique() {
    StringArguments arguments;
    std::wstring index;
    if (!arguments.read(index)) return kLispWrongType;
    if (currentConnection() == nullptr) return kLispOk;
    bool unique = false;
    if (!currentConnection()->IndexUnique(index, unique)) return retFailure();
    unique ? acedRetT() : acedRetNil();
    return kLispOk;
}

int indexFields() {
    StringArguments arguments;
    std::wstring index;
    if (!arguments.read(index)) return kLispWrongType;
    if (currentConnection() == nullptr) return kLispOk;
    COleSafeArray names;
    const bool done = currentConnection()->IndexFields(index, names);
    return retNames(done, names);
}

// --- relations ---

int relationExists() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring relation;
    if (!arguments.read(relation)) return kLispWrongType;
    return retTOrFailure(connection->RelationExists(relation));
}

int relationDelete() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    StringArguments arguments;
    std::wstring table, foreignTable;
    if (!arguments.read(table, foreignTable)) return kLispWrongType;
    return retTOrFailure(connection->DeleteRelations(table, foreignTable));
}

int relationCount() {
    if (currentConnection() == nullptr) return kLispOk;
    int32_t count = 0;
    if (!currentConnection()->RelationCount(count)) return retFailure();
    retIntOrReal(count);
    return kLispOk;
}

int relationInfo() {
    StringArguments arguments;
    std::wstring relation;
    int32_t position = 0;
    const bool byPosition = nextInt(arguments.at, position);
    if (!byPosition && !arguments.read(relation)) return kLispWrongType;
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    COleSafeArray properties;
    const bool done = byPosition ? connection->RelationInfo(position, properties)
                                 : connection->RelationInfo(relation, properties);
    return retPairs(done, properties);
}

}  // namespace sg
