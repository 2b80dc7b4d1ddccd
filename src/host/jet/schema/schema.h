#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "host/jet/catalog/catalog.h"
#include "host/jet/catalog/properties.h"
#include "host/jet/schema/design.h"

// Changes to a database's design. Every function is one operation: done wholly or not at all, and a
// part of the open transaction when there is one. Names are compared ignoring case.
//
// All throw what WriteScope() throws, ReadOnlyDatabase among it. Names that are made and are empty,
// longer than 64 characters, begin with a blank or have one of . ! ` [ ] or a control character in
// them throw 3125 with the name. What changes a table throws 3057 for a linked one and 3033 for the
// engine's own system tables. Tables, linked tables and queries share their names.
namespace sg::jet {

class Database;

// Throws TableExists, ObjectExists (3012) when a query has the name, FieldDefinedTwice with the
// column, TooManyFields, 3264 for a table without columns, RecordTooLarge when the fixed columns
// don't fit in a row, what addColumn() throws for a column, and what createIndex() throws.
SG_API void createTable(Database& database, const TableDesign& design);
// Throws TableNotFound (3376) with the name, 3281 when a relation stands on the table. Linked
// tables lose their link only.
SG_API void dropTable(Database& database, std::wstring_view table);
// Linked tables too. Throws InputTableNotFound, TableExists, ObjectExists for a query's name.
SG_API void renameTable(Database& database, std::wstring_view table, std::wstring_view newName);

// Existing rows have Null in it, but for counters (numbers 1, 2, ...) and automatic Guids. Throws
// InputTableNotFound, FieldExists (3380), TooManyFields, RecordTooLarge when the fixed columns or
// a row with its number don't fit any more; 3259 for a column type that can't be made and for an
// automatic one that is neither Long nor Guid, 3382 with the name for a text or binary that is too
// long, 3090 for a second counter, InvalidArgument for a precision or scale out of range.
SG_API void addColumn(Database& database, std::wstring_view table, const ColumnDesign& column);
// Throws 3381 with both names when there is no such column, 3280 when an index has it, 3303 when a
// relation that is not enforced names it, 3264 when it is the last one.
SG_API void dropColumn(Database& database, std::wstring_view table, std::wstring_view column);
// Makes the column `design.name` as the design says: its rows' values are converted, its indexes
// made anew; it keeps its place and what is kept with it, but is required only when the design says
// so, and keeps its default when the design has none. A counter goes on with `firstNumber`.
// Throws 3381; what addColumn() throws; 3303 for another type where a relation names the column;
// 3259 for a table with rows whose column is to become a counter; what TableWriter throws of the
// values (ConversionError, FieldTooSmall) and createIndex() of the keys.
SG_API void alterColumn(Database& database, std::wstring_view table, const ColumnDesign& column);
// Relations follow. Throws 3381, FieldExists.
SG_API void renameColumn(Database& database, std::wstring_view table, std::wstring_view column,
                         std::wstring_view newName);

// Throws IndexExists (3284), PrimaryKeyExists (3283), 3264 for no columns and 3277 for more than
// ten, 3409 with the name of a column that is not there, FieldDefinedTwice, TooManyIndexes for more
// than 32 with the ends of relations, DuplicateKey when it is unique and rows have equal keys
// (those with a Null in them are never equal), NullInIndex when it is required and a row has Null,
// OperationNotSupported for columns that can't be indexed.
SG_API void createIndex(Database& database, std::wstring_view table, const IndexDesign& index);
// Throws IndexNotFound (3372), 3281 when a relation needs it or it is one's own.
SG_API void dropIndex(Database& database, std::wstring_view table, std::wstring_view index);

// An enforced relation needs a unique index over exactly the columns of the primary table; the
// foreign table gets an index for it when it has none. One that is not enforced may be with linked
// tables. Throws ObjectExists (3012), InputTableNotFound, 3366 for no columns, 3409 with the name
// of a column that is not there, FieldDefinedTwice, 3368 when types differ, 3206 for a column that
// refers to itself, 3374 for no unique index, TooManyIndexes, RelatedRecordRequired (3201) when
// rows break it.
SG_API void createRelation(Database& database, const Relation& relation);
// Throws ItemNotFound (3265).
SG_API void dropRelation(Database& database, std::wstring_view relation);

// A table of another file under a name here. `connect` is ";DATABASE=path", the path as given, with
// a kind of file and options before it or not. Whether the other file and table exist is not asked.
// Throws TableExists, ObjectExists, 3321 when it names no database.
SG_API void linkTable(Database& database, std::wstring_view name, std::wstring_view connect,
                      std::wstring_view foreignName);
// Throws InputTableNotFound, OperationNotSupported for a table that is not linked, 3321.
SG_API void relink(Database& database, std::wstring_view name, std::wstring_view connect);

// Sets a property of a table or query (`column` empty) or of one of its columns; a Null value takes
// it away. Throws InputTableNotFound, FieldNotFound.
SG_API void setProperty(Database& database, std::wstring_view object, std::wstring_view column,
                        const Property& property);

// Keeps a stored query as rows of MSysQueries, start and end among them (QueryRow::object and ::row
// are ignored; without an order rows stand as given); replaces the one of this name where there is
// one. `flags` are the catalog's. Throws TableExists when a table has the name.
SG_API void putQuery(Database& database, std::wstring_view name, uint32_t flags,
                     const std::vector<QueryRow>& rows);
// Throws ItemNotFound (3265).
SG_API void dropQuery(Database& database, std::wstring_view name);
// Throws ItemNotFound, TableExists, ObjectExists.
SG_API void renameQuery(Database& database, std::wstring_view name, std::wstring_view newName);

}  // namespace sg::jet
