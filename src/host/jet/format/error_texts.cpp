#include "host/jet/format/error_texts.h"

#include <algorithm>
#include <iterator>

namespace sg::jet {
namespace {

struct Entry {
    int code;
    const wchar_t* text;
};

// Ascending. "|" or "|1", "|2" and "|3" are the places for names, in the order that error.h tells.
constexpr Entry entries[] = {
    {3001, L"Invalid argument."},
    {3003, L"Could not start transaction; too many transactions already nested."},
    {3005, L"'|' is not a valid database name."},
    {3006, L"Database '|' is exclusively locked."},
    {3008,
     L"The table '|' is already opened exclusively by another user, or it is already open through "
     L"the user interface and cannot be manipulated programmatically."},
    {3009,
     L"You tried to lock table '|' while opening it, but the table cannot be locked because it is "
     L"currently in use. Wait a moment, and then try the operation again."},
    {3010, L"Table '|' already exists."},
    {3011,
     L"The Microsoft Jet database engine could not find the object '|'. Make sure the object "
     L"exists and that you spell its name and the path name correctly."},
    {3012, L"Object '|' already exists."},
    {3014, L"Cannot open any more tables."},
    {3015,
     L"'|' is not an index in this table. Look in the Indexes collection of the TableDef object "
     L"to determine the valid index names."},
    {3016, L"Field will not fit in record."},
    {3017, L"The size of a field is too long."},
    {3018, L"Could not find field '|'."},
    {3019, L"Operation invalid without a current index."},
    {3020, L"Update or CancelUpdate without AddNew or Edit."},
    {3021, L"No current record."},
    {3022,
     L"The changes you requested to the table were not successful because they would create "
     L"duplicate values in the index, primary key, or relationship. Change the data in the field "
     L"or fields that contain duplicate data, remove the index, or redefine the index to permit "
     L"duplicate entries and try again."},
    {3023, L"AddNew or Edit already used."},
    {3024, L"Could not find file '|'."},
    {3025, L"Cannot open any more files."},
    {3026, L"Not enough space on disk."},
    {3027, L"Cannot update. Database or object is read-only."},
    {3029, L"Not a valid account name or password."},
    {3031, L"Not a valid password."},
    {3033,
     L"You do not have the necessary permissions to use the '|' object. Have your system "
     L"administrator or the person who created this object establish the appropriate permissions "
     L"for you."},
    {3034, L"You tried to commit or rollback a transaction without first beginning a transaction."},
    {3036, L"Database has reached maximum size."},
    {3037, L"Cannot open any more tables or queries."},
    {3041, L"Cannot open a database created with a previous version of your application."},
    {3043, L"Disk or network error."},
    {3044,
     L"'|' is not a valid path. Make sure that the path name is spelled correctly and that you "
     L"are connected to the server on which the file resides."},
    {3045, L"Could not use '|'; file already in use."},
    {3046, L"Could not save; currently locked by another user."},
    {3047, L"Record is too large."},
    {3048, L"Cannot open any more databases."},
    {3049,
     L"Cannot open database '|'. It may not be a database that your application recognizes, or "
     L"the file may be corrupt."},
    {3050, L"Could not lock file."},
    {3051,
     L"The Microsoft Jet database engine cannot open the file '|'. It is already opened "
     L"exclusively by another user, or you need permission to view its data."},
    {3052, L"File sharing lock count exceeded. Increase MaxLocksPerFile registry entry."},
    {3057, L"Operation not supported on linked tables."},
    {3058, L"Index or primary key cannot contain a Null value."},
    {3059, L"Operation canceled by user."},
    {3061, L"Too few parameters. Expected |."},
    {3062, L"Duplicate output alias '|'."},
    {3063, L"Duplicate output destination '|'."},
    {3065, L"Cannot execute a select query."},
    {3070,
     L"The Microsoft Jet database engine does not recognize '|' as a valid field name or "
     L"expression."},
    {3073, L"Operation must use an updateable query."},
    {3075, L"|1 in query expression '|2'."},
    {3078,
     L"The Microsoft Jet database engine cannot find the input table or query '|'. Make sure it "
     L"exists and that its name is spelled correctly."},
    {3079,
     L"The specified field '|' could refer to more than one table listed in the FROM clause of "
     L"your SQL statement."},
    {3085, L"Undefined function '|' in expression."},
    {3086, L"Could not delete from specified tables."},
    {3090, L"Resultant table not allowed to have more than one AutoNumber field."},
    {3092, L"Cannot use HAVING clause in TRANSFORM statement."},
    {3093, L"ORDER BY clause '|' conflicts with DISTINCT."},
    {3095, L"Cannot have aggregate function in expression (|)."},
    {3096, L"Cannot have aggregate function in WHERE clause (|)."},
    {3098, L"Cannot have aggregate function in GROUP BY clause (|)."},
    {3099, L"Cannot have aggregate function in JOIN operation (|)."},
    {3102, L"Circular reference caused by '|'."},
    {3103, L"Circular reference caused by alias '|' in query definition's SELECT list."},
    {3104, L"Cannot specify fixed column heading '|' in a crosstab query more than once."},
    {3112, L"Record(s) cannot be read; no read permission on '|'."},
    {3113, L"Cannot update '|'; field not updateable."},
    {3121, L"Cannot group on fields selected with '|'."},
    {3122,
     L"You tried to execute a query that does not include the specified expression '|' as part "
     L"of an aggregate function."},
    {3123, L"Cannot use '*' in crosstab query."},
    {3125,
     L"'|' is not a valid name. Make sure that it does not include invalid characters or "
     L"punctuation and that it is not too long."},
    {3126, L"Invalid bracketing of name '|'."},
    {3127,
     L"The INSERT INTO statement contains the following unknown field name: '|'. Make sure you "
     L"have typed the name correctly, and try the operation again."},
    {3128, L"Specify the table containing the records you want to delete."},
    {3129,
     L"Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'."},
    {3130, L"Syntax error in DELETE statement."},
    {3131, L"Syntax error in FROM clause."},
    {3132, L"Syntax error in GROUP BY clause."},
    {3133, L"Syntax error in HAVING clause."},
    {3134, L"Syntax error in INSERT INTO statement."},
    {3135, L"Syntax error in JOIN operation."},
    {3138, L"Syntax error in ORDER BY clause."},
    {3139, L"Syntax error in PARAMETER clause."},
    {3140, L"Syntax error in PROCEDURE clause."},
    {3141,
     L"The SELECT statement includes a reserved word or an argument name that is misspelled or "
     L"missing, or the punctuation is incorrect."},
    {3142, L"Characters found after end of SQL statement."},
    {3143, L"Syntax error in TRANSFORM statement."},
    {3144, L"Syntax error in UPDATE statement."},
    {3145, L"Syntax error in WHERE clause."},
    {3158, L"Could not save record; currently locked by another user."},
    {3159, L"Not a valid bookmark."},
    {3162, L"You tried to assign the Null value to a variable that is not a Variant data type."},
    {3163,
     L"The field is too small to accept the amount of data you attempted to add. Try inserting or "
     L"pasting less data."},
    {3164,
     L"The field cannot be updated because another user or process has locked the corresponding "
     L"record or table."},
    {3167, L"Record is deleted."},
    {3170, L"Could not find installable ISAM."},
    {3183,
     L"The query cannot be completed. Either the size of the query result is larger than the "
     L"maximum size of a database (2 GB), or there is not enough temporary storage space on the "
     L"disk to store the query result."},
    {3186, L"Could not save; currently locked by user '|1' on machine '|2'."},
    {3187, L"Could not read; currently locked by user '|1' on machine '|2'."},
    {3188, L"Could not update; currently locked by another session on this machine."},
    {3189, L"Table '|1' is exclusively locked by user '|2' on machine '|3'."},
    {3190, L"Too many fields defined."},
    {3191, L"Cannot define field more than once."},
    {3192, L"Could not find output table '|'."},
    {3196,
     L"The database '|' is already in use by another person or process. When the database is "
     L"available, try the operation again."},
    {3197,
     L"The Microsoft Jet database engine stopped the process because you and another user are "
     L"attempting to change the same data at the same time."},
    {3200, L"The record cannot be deleted or changed because table '|' includes related records."},
    {3201, L"You cannot add or change a record because a related record is required in table '|'."},
    {3202, L"Could not save; currently locked by another user."},
    {3204, L"Database already exists."},
    {3206, L"Cannot create a relationship between a field and itself."},
    {3211,
     L"The database engine could not lock table '|' because it is already in use by another "
     L"person or process."},
    {3212, L"Could not lock table '|1'; currently in use by user '|2' on machine '|3'."},
    {3218, L"Could not update; currently locked."},
    {3219, L"Invalid operation."},
    {3225, L"Encountered record locking deadlock while performing Btrieve operation."},
    {3246, L"Operation not supported in transactions."},
    {3251, L"Operation is not supported for this type of object."},
    {3259, L"Invalid field data type."},
    {3260, L"Could not update; currently locked by user '|1' on machine '|2'."},
    {3261, L"Table '|1' is exclusively locked by user '|2' on machine '|3'."},
    {3262, L"Could not lock table '|1'; currently in use by user '|2' on machine '|3'."},
    {3264, L"No field defined--cannot append TableDef or Index."},
    {3265, L"Item not found in this collection."},
    {3266, L"Cannot append a Field that is already a part of a Fields collection."},
    {3267,
     L"Property can be set only when the Field is part of a Recordset object's Fields "
     L"collection."},
    {3268, L"Cannot set this property once the object is part of a collection."},
    {3270, L"Property not found."},
    {3273, L"Method not applicable for this object."},
    {3274, L"External table is not in the expected format."},
    {3277, L"Cannot have more than 10 fields in an index."},
    {3280, L"Cannot delete a field that is part of an index or is needed by the system."},
    {3281,
     L"Cannot delete this index or table. It is either the current index or is used in a "
     L"relationship."},
    {3282, L"Operation not supported on a table that contains data."},
    {3283, L"Primary key already exists."},
    {3284, L"Index already exists."},
    {3289, L"Syntax error in CONSTRAINT clause."},
    {3290, L"Syntax error in CREATE TABLE statement."},
    {3291, L"Syntax error in CREATE INDEX statement."},
    {3292, L"Syntax error in field definition."},
    {3293, L"Syntax error in ALTER TABLE statement."},
    {3294, L"Syntax error in DROP INDEX statement."},
    {3295, L"Syntax error in DROP TABLE or DROP INDEX."},
    {3303, L"Cannot delete this field. It is part of one or more relationships."},
    {3306,
     L"You have written a subquery that can return more than one field without using the EXISTS "
     L"reserved word in the main query's FROM clause. Revise the SELECT statement of the "
     L"subquery to request only one field."},
    {3307,
     L"The number of columns in the two selected tables or queries of a union query do not "
     L"match."},
    {3308, L"Invalid TOP argument in select query."},
    {3314,
     L"The field '|' cannot contain a Null value because the Required property for this field is "
     L"set to True. Enter a value in this field."},
    {3315, L"Field '|' cannot be a zero-length string."},
    {3316, L"|"},
    {3317,
     L"One or more values are prohibited by the validation rule '|2' set for '|1'. Enter a value "
     L"that the expression for this field can accept."},
    {3319, L"Syntax error in union query."},
    {3321, L"No database specified in connection string or IN clause."},
    {3340, L"Query '|' is corrupt."},
    {3343, L"Unrecognized database format '|'."},
    {3346, L"Number of query values and destination fields are not the same."},
    {3349, L"Numeric field overflow."},
    {3351,
     L"The ORDER BY expression '|' includes fields that are not selected by the query. Only those "
     L"fields requested in the first query can be included in an ORDER BY expression."},
    {3354, L"At most one record can be returned by this subquery."},
    {3356,
     L"You attempted to open a database that is already opened exclusively by user '|1' on "
     L"machine '|2'. Try again when the database is available."},
    {3360, L"Query is too complex."},
    {3366, L"Cannot append a relation with no fields defined."},
    {3367, L"Cannot append. An object with that name already exists in the collection."},
    {3368, L"Relationship must be on the same number of fields with the same data types."},
    {3370, L"Cannot modify the design of table '|'. It is in a read-only database."},
    {3371, L"Cannot find table or constraint."},
    {3372, L"No such index '|2' on table '|1'."},
    {3373, L"Cannot create relationship. Referenced table '|' does not have a primary key."},
    {3374, L"The specified fields are not uniquely indexed in table '|'."},
    {3375, L"Table '|1' already has an index named '|2'."},
    {3376, L"Table '|' does not exist."},
    {3377, L"No such relationship '|2' on table '|1'."},
    {3378, L"There is already a relationship named '|' in the current database."},
    {3379,
     L"Cannot create relationships to enforce referential integrity. Existing data in table '|2' "
     L"violates referential integrity rules in table '|1'."},
    {3380, L"Field '|2' already exists in table '|1'."},
    {3381, L"There is no field named '|2' in table '|1'."},
    {3382, L"Size of field '|' is too long."},
    {3383, L"Cannot delete field '|'. It is part of one or more relationships."},
    {3384, L"Cannot delete a built-in property."},
    {3396, L"Cannot perform cascading operation. There must be a related record in table '|'."},
    {3398, L"Cannot perform cascading operation. It would result in a null key in table '|'."},
    {3399, L"Cannot perform cascading operation. It would result in a duplicate key in table '|'."},
    {3400,
     L"Cannot perform cascading operation. It would result in two updates on field '|2' in table "
     L"'|1'."},
    {3409, L"Invalid field definition '|' in definition of index or relationship."},
    {3415, L"Zero-length string is valid only in a Text or Memo field."},
    {3420, L"Object invalid or no longer set."},
    {3421, L"Data type conversion error."},
    {3422, L"Cannot modify table structure. Another user has the table open."},
    {3426, L"This action was cancelled by an associated object."},
    {3428,
     L"A problem occurred in your database. Correct the problem by repairing and compacting the "
     L"database."},
    {3464, L"Data type mismatch in criteria expression."},
    {3615, L"Type mismatch in expression."},
    {3624, L"Could not read the record; currently locked by another user."},
    {3626,
     L"The operation failed. There are too many indexes on table '|'. Delete some of the indexes "
     L"on "
     L"the table and try the operation again."},
    {3734,
     L"The database has been placed in a state by user '|1' on machine '|2' that prevents it from "
     L"being opened or locked."},
};

}  // namespace

const wchar_t* errorTemplate(int code) {
    const auto* found =
        std::lower_bound(std::begin(entries), std::end(entries), code,
                         [](const Entry& e, int wanted) { return e.code < wanted; });
    return found != std::end(entries) && found->code == code ? found->text : nullptr;
}

}  // namespace sg::jet
