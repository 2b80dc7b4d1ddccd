#include <cstdint>
#include <optional>

#include "bridge/argument_list.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "bridge/marshal_results.h"
#include "bridge/marshal_variants.h"
#include "database/connection.h"
#include "database/database_error.h"
#include "database/db_info.h"
#include "database/lisp_functions.h"
#include "platform/ed/command_line.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

constexpr const wchar_t* kNoMatch = L"error - unable to match index";
constexpr const wchar_t* kNotDeleted = L"error - failed to delete record";

// The number in a record's first field; 0 for a value that is no whole number.
int32_t firstNumber(const COleSafeArray& record) {
    const auto items = record.Variants();
    if (items.size() < 2) return 0;
    switch (const COleVariant& value = items[1]; value.vt) {
        case VT_I4:
            return value.lVal;
        case VT_I2:
            return value.iVal;
        case VT_UI1:
            return value.bVal;
        default:
            return 0;
    }
}

int32_t lastNumber(CDBConnection& connection) {
    COleSafeArray record;
    return connection.Bottom(record) ? firstNumber(record) : 0;
}

// Drives the table's counter up to `number` by appending and deleting. Sets the call's result: the
// record, a message, or nil. A first field that does not count up would never get there; it is
// answered as a counter that is past the number.
void appendUnder(CDBConnection& connection, int32_t number, const COleSafeArray& record) {
    const wchar_t* message = nullptr;
    std::optional<int32_t> previous;
    while (message == nullptr && acedUsrBrk() == 0) {
        COleSafeArray written;
        if (!connection.Append(record, 0, written)) {
            reportDatabaseError();
            return;
        }
        const int32_t reached = firstNumber(written);
        if (reached == number) {
            returnPairList(written);
            return;
        }
        if (reached > number || (previous && reached <= *previous)) message = kNoMatch;
        previous = reached;
        if (!connection.DeleteRecord()) message = kNotDeleted;
    }
    if (message != nullptr) acedRetStr(message);
}

}  // namespace

int appendRecord() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    acedRetNil();
    const ArgumentList arguments;
    const resbuf* position = arguments.first();
    int32_t flag = 0;
    const int16_t fillRequired = nextInt(position, flag) ? -1 : 0;
    COleSafeArray record, written;
    if (!pairsToVariantArray(position, record)) return kLispOk;
    if (connection->Append(record, fillRequired, written)) {
        returnPairList(written);
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int appendRecordWithIndex() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    acedRetNil();
    const ArgumentList arguments;
    const resbuf* position = arguments.first();
    int32_t number = 0;
    if (!nextInt(position, number)) return kLispWrongType;
    COleSafeArray record;
    if (!pairsToVariantArray(position, record)) return kLispOk;
    if (number < lastNumber(*connection)) {
        acedRetStr(kNoMatch);
    } else {
        appendUnder(*connection, number, record);
    }
    return kLispOk;
}

int replaceRecord() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    acedRetNil();
    const ArgumentList arguments;
    COleSafeArray record, written;
    if (!pairsToVariantArray(arguments.first(), record)) return kLispOk;
    if (connection->Replace(record, written)) {
        returnPairList(written);
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

int deleteRecord() {
    CDBConnection* const connection = currentConnection();
    if (connection == nullptr) return kLispOk;
    if (connection->DeleteRecord()) {
        acedRetT();
    } else {
        reportDatabaseError();
    }
    return kLispOk;
}

}  // namespace sg
