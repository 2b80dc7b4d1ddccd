#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <utility>

#include "platform/dao/database.h"
#include "platform/dao/exception.h"
#include "platform/dao/recordset.h"
#include "platform/variant/safe_array.h"

namespace sg {

// One database with its open tables, of which the first is the current one.
//
// No operation lets an error of the engine out: it is caught, its code and text are kept, the error
// flag is set and the operation answers false (or an empty text). False without the error flag is
// an ordinary answer: no such record, nothing open. Operations clear the flag before they begin;
// those that deliberately do not are marked "leaves the flag", so that an earlier error shows
// through their false. Code and text of an error stay until the next one.
//
// A "record" is an array of names and values that alternate, in field order. "Table ready" means
// that the database is open and so is the current table.
//
// The virtual operations stand in the order of their slots, which is part of the interface.
class CDBConnection {
  public:
    CDBConnection() = default;
    CDBConnection(const CDBConnection&) = delete;
    CDBConnection& operator=(const CDBConnection&) = delete;

    // The database is open. Leaves the flag.
    virtual bool IsOpen() const;

    // The database's file, with its full path; empty when it is not open. Leaves the flag.
    virtual std::wstring GetDatabaseName() const;

    // The database object can be used at all, open or not. Leaves the flag.
    virtual bool IsValid() const;

    // Closes the open table of exactly this name and forgets it. No effect without one.
    virtual void CloseNamedTable(const std::wstring& name);

    // The current record of the current table. False with no table ready and at BOF or EOF. Leaves
    // the flag.
    virtual bool GetRecord(COleSafeArray& record);

    // Leaves the flag.
    virtual bool NoTablesOpen() const;

    // Closes the current table; the next one becomes current. False with no table ready.
    virtual bool CloseTable();

    // Closes every table, the current one first, and forgets them.
    virtual void CloseAllTables();

    // Closes every table and then the database. No effect on a database that is not open.
    virtual void Close();

    // -1 when the database is open and can be written, otherwise 0. Leaves the flag.
    virtual int16_t GetUpdatable() const;

    // Opens a database, after closing the one that is open, and answers its name. `readOnly` is 0
    // or -1; a file that may not be written is opened read-only whatever was asked. The answer is
    // kRepairNeeded when the file itself needs repair, and empty when it can't be opened read-only
    // either.
    virtual std::wstring Open(const std::wstring& fileName, bool exclusive, int16_t readOnly);

    // Opens a database to be written and shared, after closing the one that is open. `lockedWord`
    // is -1 when the file may not be written, in which case the answer is true and the database not
    // open; otherwise 0.
    virtual bool OpenPlain(const std::wstring& fileName, int16_t& lockedWord);

    // Makes a table current, and opens it when it is not; an index other than "" becomes its
    // current one. A table that is open keeps its record, and without a name its index. True, and
    // nothing done, when the database is not open.
    virtual bool OpenTable(const std::wstring& table, const std::wstring& index);

    // An operation has failed since the error flag was last cleared. Leaves the flag.
    virtual bool HasError() const;

    // To the first or the last record of the current table, which they answer. False with no table
    // ready and for an empty table.
    virtual bool Top(COleSafeArray& record);
    virtual bool Bottom(COleSafeArray& record);

    // So many records forward or back, and answers the record there. False with no table ready, for
    // a count of 0, and beyond the ends: the cursor is then at EOF or BOF.
    virtual bool Skip(int32_t count, COleSafeArray& record);

    // How many records the current table has. False with no table ready.
    virtual bool GetRecordCount(int32_t& count);

    // Deletes the current record; the cursor stays on it. Tries up to 20 times while others lock
    // the record, and is true when they still do after that. False with no table ready, for a
    // database that can't be written, and for any other error, which is not recorded.
    virtual bool DeleteRecord();

    // The database has a table, or a link to one, of exactly this name.
    virtual bool TableExists(const std::wstring& name);

    // Adds a record with the values of `record`, makes it the current one and answers it whole.
    // With a `fillRequired` of -1 text fields that need a value get their default, or an empty or
    // blank text. Tries up to 20 times while others hold locks. False, with no error recorded, with
    // no table ready, for a database that can't be written, for a value that doesn't fit its field
    // (which is printed), and when locks are still held after that.
    virtual bool Append(const COleSafeArray& record, int16_t fillRequired, COleSafeArray& written);

    // As Append with 0, but changes the current record.
    virtual bool Replace(const COleSafeArray& record, COleSafeArray& written);

    // A record of the current table with an empty value for each field, by its type.
    virtual bool GetStructure(COleSafeArray& record);

    // The names of the current table's indexes. False with no table ready and without an index.
    virtual bool ListIndexes(COleSafeArray& names);

    // Adds fields to a table, with their indexes. `fields` is a list of definitions as
    // listToVariantArray gives it. False with no error recorded for a list of another shape.
    virtual bool ModifyTable(const std::wstring& table, const COleSafeArray& fields);

    // An open table of that name is closed first.
    virtual bool RenameTable(const std::wstring& table, const std::wstring& newName);

    // Of the current table; empty with no table ready, and for a table in file order.
    virtual std::wstring GetCurrentIndexName();

    // Empty with no table ready.
    virtual std::wstring GetCurrentTableName();

    // To the first record whose leading index fields equal the keys, and answers it. False with no
    // table ready, with no current index, and when there is no such record.
    virtual bool SeekOne(const COleVariant& key, COleSafeArray& record);
    virtual bool SeekTwo(const COleVariant& key1, const COleVariant& key2, COleSafeArray& record);
    virtual bool SeekThree(const COleVariant& key1, const COleVariant& key2,
                           const COleVariant& key3, COleSafeArray& record);
    virtual bool SeekMany(uint16_t count, const COleVariant* keys, COleSafeArray& record);

    // Makes a new database file. What is open here stays as it is.
    virtual bool CreateDatabase(const std::wstring& fileName);

    // Makes a table of the fields, as ModifyTable takes them. Where a definition is wrong the table
    // has the fields ahead of it, and the answer is false.
    virtual bool CreateTable(const std::wstring& table, const COleSafeArray& fields);

    // False only for an open database that can be written. Leaves the flag.
    virtual bool IsReadOnly() const;

    // Of the current table; false with no table ready.
    virtual bool IsEOF();
    virtual bool IsBOF();

    // Deletes a table; with `withRelations` the relations on either of whose sides it stands go
    // first. An open table of that name is closed.
    virtual bool DeleteTable(const std::wstring& table, bool withRelations);

    // All tables and links but those whose names begin with "MS", in the engine's order.
    virtual bool ListTables(COleSafeArray& names);

    // The rows of a query: of one column their values; of several each row as "*NewRecord*" and its
    // record. Without rows `rows` has no array. False, with no error recorded, when the database is
    // not open.
    virtual bool ExecuteSelect(const std::wstring& sql, COleSafeArray& rows);

    // Run a statement that changes data or design; `count` is how many records it changed. False,
    // with no error recorded, for a database that can't be written.
    virtual bool ExecuteAction(const std::wstring& sql);
    virtual bool ExecuteActionCount(const std::wstring& sql, int32_t& count);

    // There is a relation of this name.
    virtual bool RelationExists(const std::wstring& relation);

    // Deletes every relation from exactly this table to this foreign table.
    virtual bool DeleteRelations(const std::wstring& table, const std::wstring& foreignTable);

    // Copies a database into a new file, dense. What is open here stays as it is.
    virtual bool CompactDatabase(const std::wstring& source, const std::wstring& destination);

    // Makes a link to a table of another file.
    virtual bool LinkTable(const std::wstring& name, const std::wstring& file,
                           const std::wstring& sourceTable);

    // The rows of a stored query, as ExecuteSelect gives them. `parameters` alternates names and
    // values; another array is answered false, with no error recorded.
    virtual bool RunQuery(const std::wstring& query, const COleSafeArray& parameters,
                          COleSafeArray& rows);

    // Makes an ascending index on one field, with that field's name. The flags are 0 or -1.
    virtual bool CreateIndex(const std::wstring& table, const std::wstring& field, int16_t unique,
                             int16_t primary);

    // Gives a stored query a new text.
    virtual bool SetQuerySql(const std::wstring& query, const std::wstring& sql);

    // The field must have a value. Makes `table` the current one.
    virtual bool FieldRequired(const std::wstring& table, const std::wstring& field);

    // The properties of a field of the current table, as names and values that alternate.
    virtual bool FieldAttributes(const std::wstring& field, COleSafeArray& attributes);

    // The value of the current record's field of this name.
    virtual bool GetFieldValueByName(const std::wstring& field, COleVariant& value);

    virtual int16_t GetInterfaceVersion() const;

    // How many fields the current table has. `result` is -1, or 0 with no table ready.
    virtual int32_t GetFieldCount(int16_t& result);

    // By position, from 0 on.
    virtual bool GetFieldName(int32_t position, std::wstring& name);
    virtual bool GetFieldValue(int32_t position, COleVariant& value);

    // Code and text of the last error, which outlive the error flag; the answer is HasError().
    // Leaves the flag.
    virtual bool GetLastError(int32_t& code, std::wstring& text) const;

    virtual ~CDBConnection();

    // Operations without a slot.

    // Whether the current table's index of this name is unique, and its fields in order. False with
    // no table ready.
    bool IndexUnique(const std::wstring& index, bool& unique);
    bool IndexFields(const std::wstring& index, COleSafeArray& names);

    bool RelationCount(int32_t& count);
    // The properties of a relation, as names and values that alternate. By position from 0 on.
    bool RelationInfo(const std::wstring& relation, COleSafeArray& properties);
    bool RelationInfo(int32_t position, COleSafeArray& properties);

  protected:
    using Tables = std::list<std::unique_ptr<CDaoRecordset>>;

    CDaoDatabase database_;
    Tables tables_;  // the current one first

    bool error_ = false;
    int32_t errorCode_ = 0;
    std::wstring errorText_;

    void clearError() { error_ = false; }
    void recordError(const CDaoException& exception);

    // Does `work`, which answers true or false. An error of the engine is recorded and answers
    // false.
    template <class Work>
    bool capture(Work&& work) {
        try {
            return std::forward<Work>(work)();
        } catch (CDaoException* exception) {
            recordError(*exception);
            exception->Delete();
            return false;
        }
    }

    bool isTableReady() const;
    bool canUpdate() const { return IsOpen() && database_.CanUpdate(); }
    // The current table. It takes a table that is ready.
    CDaoRecordset& table() const { return *tables_.front(); }

  private:
    Tables::iterator findTable(const std::wstring& name);
    std::unique_ptr<CDaoRecordset> openRecordset(const std::wstring& table);
    void closeRecordset(CDaoRecordset* recordset);

    template <class Move>
    bool moveAndRead(COleSafeArray& record, const Move& move);
    template <class Find>
    bool seekAndRead(COleSafeArray& record, const Find& find);

    template <class Begin, class Finish>
    bool write(const COleSafeArray& record, COleSafeArray& written, const Begin& begin,
               const Finish& finish);
    bool setFields(const COleSafeArray& record);
    void setField(const std::wstring& name, const COleVariant& value);
    void fillRequiredText();
    void dropEdit();
};

// What Open answers for a file that needs repair.
inline constexpr const wchar_t* kRepairNeeded = L"*REPAIR*";

}  // namespace sg
