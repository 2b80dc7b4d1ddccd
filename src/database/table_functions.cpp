#include <array>
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

constexpr size_t kMostKeys = 10;

// Gives LISP the record that an operation of the current connection answers, or nil.
template <class Operation>
int retRecord(const Operation& operation) {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    COleSafeArray record;
    if (operation(*connection, record)) {
        returnPairList(record);
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

bool isString(const resbuf* node) {
    return node != nullptr && node->restype == RTSTR;
}

// One of the two is a string. A list is neither.
bool hasNames(const resbuf& first) {
    return isString(&first) || (first.restype != RTLB && isString(first.rbnext));
}

COleVariant coordinate(const resbuf& point, int axis) {
    return COleVariant::fromDouble(point.resval.rpoint[axis]);
}

int seekPoint(const resbuf& point) {
    return retRecord([&](CDBConnection& connection, COleSafeArray& record) {
        const COleVariant x = coordinate(point, 0), y = coordinate(point, 1);
        if (point.restype == RTPOINT) return connection.SeekTwo(x, y, record);
        return connection.SeekThree(x, y, coordinate(point, 2), record);
    });
}

int seekValue(const resbuf& value) {
    COleVariant key;
    if (value.restype == RTNIL) return kLispOk;
    if (!resbufToVariant(value, key)) return kLispWrongType;
    return retRecord([&](CDBConnection& connection, COleSafeArray& record) {
        return connection.SeekOne(key, record);
    });
}

// Several arguments, or the items of one list.
int seekValues(const resbuf* position) {
    std::array<COleVariant, kMostKeys> keys;
    uint16_t count = 0;
    nextListBegin(position);
    for (; position != nullptr && position->restype != RTLE && count < kMostKeys;
         position = position->rbnext) {
        if (!resbufToVariant(*position, keys[count])) return kLispWrongType;
        ++count;
    }
    return retRecord([&](CDBConnection& connection, COleSafeArray& record) {
        return connection.SeekMany(count, keys.data(), record);
    });
}

}  // namespace

// A table that is no string is one without a name when the index is a string.
int selectTable() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    const ArgumentList arguments;
    const resbuf* const first = arguments.first();
    if (first == nullptr) return kLispTooFew;
    if (!hasNames(*first)) return kLispWrongType;
    const resbuf* position = first;
    std::wstring table, index;
    nextString(position, table);
    position = first->rbnext;
    nextString(position, index);
    if (connection->OpenTable(table, index)) {
        acedRetStr(table.c_str());
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int topRecord() {
    return retRecord(
        [](CDBConnection& connection, COleSafeArray& record) { return connection.Top(record); });
}

int bottomRecord() {
    return retRecord(
        [](CDBConnection& connection, COleSafeArray& record) { return connection.Bottom(record); });
}

int skipRecords() {
    const ArgumentList arguments;
    const resbuf* position = arguments.first();
    int32_t count = 1;
    nextInt(position, count);
    return retRecord([count](CDBConnection& connection, COleSafeArray& record) {
        return connection.Skip(count, record);
    });
}

int seekRecord() {
    if (currentConnection() == nullptr) return kLispOk;
    const ArgumentList arguments;
    const resbuf* const first = arguments.first();
    if (first == nullptr) return kLispTooFew;
    if (first->restype == RTPOINT || first->restype == RT3DPOINT) return seekPoint(*first);
    if (first->rbnext == nullptr) return seekValue(*first);
    return seekValues(first);
}

int currentRecord() {
    return retRecord([](CDBConnection& connection, COleSafeArray& record) {
        return connection.GetRecord(record);
    });
}

int recordCount() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    int32_t count = 0;
    if (connection->GetRecordCount(count)) {
        retIntOrReal(count);
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int currentTable() {
    if (currentConnection() != nullptr) {
        acedRetStr(currentConnection()->GetCurrentTableName().c_str());
    }
    return kLispOk;
}

int currentIndex() {
    if (currentConnection() != nullptr) {
        acedRetStr(currentConnection()->GetCurrentIndexName().c_str());
    }
    return kLispOk;
}

}  // namespace sg
