#pragma once

#include <cstdint>

// The numbers by which programs name types, options and attributes to the database engine.

// Types of recordsets. The default is that of what is opened: a table, or a dynaset of all else.
enum : int32_t {
    AFX_DAO_USE_DEFAULT_TYPE = -1,
    dbOpenTable = 1,
    dbOpenDynaset = 2,
    dbOpenSnapshot = 4,
};

// Options of opening and executing.
enum : int32_t { dbReadOnly = 4, dbFailOnError = 0x80 };

// Types of queries.
enum : int16_t {
    dbQSelect = 0,
    dbQCrosstab = 16,
    dbQDelete = 32,
    dbQUpdate = 48,
    dbQAppend = 64,
    dbQMakeTable = 80,
    dbQDDL = 96,
    dbQSQLPassThrough = 112,
    dbQSetOperation = 128,
};

// Types of fields.
enum : int16_t {
    dbBoolean = 1,
    dbByte = 2,
    dbInteger = 3,
    dbLong = 4,
    dbCurrency = 5,
    dbSingle = 6,
    dbDouble = 7,
    dbDate = 8,
    dbBinary = 9,
    dbText = 10,
    dbLongBinary = 11,
    dbMemo = 12,
    dbGUID = 15,
    dbDecimal = 20,
};

// Attributes of fields.
enum : int32_t {
    dbFixedField = 0x01,
    dbVariableField = 0x02,
    dbAutoIncrField = 0x10,
    dbUpdatableField = 0x20,
    dbHyperlinkField = 0x8000,
};

// Attributes of table definitions.
enum : int32_t {
    dbHiddenObject = 1,
    dbAttachedTable = 0x40000000,
    dbAttachedODBC = 0x20000000,
    dbSystemObject = static_cast<int32_t>(0x80000002),
};

// Attributes of relations.
enum : int32_t {
    dbRelationUnique = 0x01,
    dbRelationDontEnforce = 0x02,
    dbRelationInherited = 0x04,
    dbRelationUpdateCascade = 0x100,
    dbRelationDeleteCascade = 0x1000,
    dbRelationLeft = 0x01000000,
    dbRelationRight = 0x02000000,
};

// Edit modes of recordsets.
enum : int16_t { dbEditNone = 0, dbEditInProgress = 1, dbEditAdd = 2 };

// How much an information call fills in. Each level has what those before it have.
enum : uint32_t { AFX_DAO_PRIMARY_INFO = 1, AFX_DAO_SECONDARY_INFO = 2, AFX_DAO_ALL_INFO = 4 };
