#include <string>
#include <vector>

#include "host/dao/variants.h"
#include "host/jet/database/database.h"
#include "host/jet/format/error.h"
#include "host/lisp/functions/list_builder.h"
#include "host/lisp/functions/program_state.h"
#include "host/seam/lisp_functions.h"
#include "host/sql/run/session.h"
#include "host/system/companion_library.h"
#include "host/system/database_files.h"
#include "host/system/paths.h"
#include "platform/variant/ole_variant.h"

// Database files for LISP programs that must leave the drawing's own connection as it is; and the
// dialog in which a colour is chosen.
namespace sg {
namespace {

using lisp::Args;
using lisp::FunctionRow;
using lisp::Interpreter;
using lisp::ListBuilder;
using lisp::Value;

// --- Database files ---

jet::Database openNamed(Interpreter& in, Value file, jet::OpenMode mode) {
    const std::wstring path = absolutePath(resolvePath(lisp::fileName(in, file)).path);
    return jet::Database::open(path, mode, databaseOptions());
}

// Numbers, texts, T and nil; nil for Null and for what LISP has no kind of value for.
Value valueOf(Interpreter& in, const COleVariant& value) {
    switch (value.vt) {
        case VT_UI1:
            return Value::integer(value.bVal);
        case VT_I2:
            return Value::integer(value.iVal);
        case VT_I4:
            return Value::integer(value.lVal);
        case VT_BOOL:
            return value.boolVal != VARIANT_FALSE ? in.t() : Value::nil();
        case VT_R4:
            return Value::real(value.fltVal);
        case VT_R8:
            return Value::real(value.dblVal);
        case VT_BSTR:
            return in.string(variantText(value));
        default:
            return Value::nil();
    }
}

template <class Work>
Value onDatabase(Interpreter& in, const Work& work) {
    try {
        return work();
    } catch (const jet::Error& error) {
        in.fail(error.code() == jet::Damaged ? error.describe() : error.text());
    }
}

sql::Limits interruptible(Interpreter& in) {
    sql::Limits limits;
    limits.isCanceled = [&in] { return in.interruptPending(); };
    return limits;
}

// (host-database-select file sql)
Value fnDatabaseSelect(Interpreter& in, Args a) {
    return onDatabase(in, [&] {
        jet::Database database = openNamed(in, a[0], jet::OpenMode::ReadOnly);
        sql::Session session(database);
        session.limit(interruptible(in));
        const auto rows = session.select(in.text(a[1]));
        ListBuilder list(in);
        for (; !rows->isEof(); rows->move(1)) {
            ListBuilder row(in);
            for (size_t column = 0; column < rows->columns().size(); ++column)
                row.add(valueOf(in, dao::toVariant(rows->value(column))));
            list.add(row.list());
        }
        return list.list();
    });
}

std::vector<std::wstring> statementsOf(Interpreter& in, Value given) {
    std::vector<std::wstring> statements;
    if (given.isString()) return {in.str(given)};
    for (Value rest = given; rest.isCons(); rest = rest.asCons()->cdr)
        statements.push_back(in.str(rest.asCons()->car));
    return statements;
}

// (host-database-execute file statements)
Value fnDatabaseExecute(Interpreter& in, Args a) {
    const std::vector<std::wstring> statements = statementsOf(in, a[1]);
    return onDatabase(in, [&] {
        jet::Database database = openNamed(in, a[0], jet::OpenMode::Shared);
        sql::Session session(database);
        session.limit(interruptible(in));
        int64_t count = 0;
        // What throws leaves the transaction to the database's end, which rolls it back.
        database.beginTransaction();
        for (const std::wstring& statement : statements)
            count += session.execute(statement);
        database.commitTransaction();
        return Value::integer(static_cast<int32_t>(count));
    });
}

// --- A colour ---

// (acad_colordlg color [flag])
Value fnColorDialog(Interpreter& in, Args a) {
    constexpr int kFirst = 1, kLast = 255, kByBlock = 0, kByLayer = 256;
    const int current = in.integer(a[0]);
    // Names for colours that are no index of the table are offered where the flag is T.
    const bool withNamed = !a.has(1) || bool(a[1]);
    const int first = withNamed ? kByBlock : kFirst, last = withNamed ? kByLayer : kLast;
    if (current < first || current > last) in.badValue(L"color: " + std::to_wstring(current));
    const auto choose = reinterpret_cast<int (*)(int, bool)>(
        companionSymbol("libswiftgate-ui.so", "swiftgateChooseColor"));
    if (choose == nullptr) in.fail(L"libswiftgate-ui.so cannot be opened");
    const int chosen = choose(current, withNamed);
    return chosen < 0 ? Value::nil() : Value::integer(chosen);
}

constexpr FunctionRow kRows[] = {
    {L"host-database-select", fnDatabaseSelect, 2, 2},
    {L"host-database-execute", fnDatabaseExecute, 2, 2},
    {L"acad_colordlg", fnColorDialog, 1, 2},
};

}  // namespace

std::span<const FunctionRow> dialogSupportFunctions() {
    return kRows;
}

}  // namespace sg
