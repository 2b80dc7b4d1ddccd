#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "base/export.h"
#include "platform/dao/infos.h"

namespace sg::dao {
class DatabaseSession;
}

// One database file that is open, or may be opened. Everything here but the tests of state throws
// CDaoException* with the engine's number and text, and so do the other classes of the engine: 3420
// where the database is not open, or the object was made in what has been closed since.
class SG_API CDaoDatabase {
  public:
    CDaoDatabase();
    // Closes; what is open on it can no longer be used.
    virtual ~CDaoDatabase();
    CDaoDatabase(const CDaoDatabase&) = delete;
    CDaoDatabase& operator=(const CDaoDatabase&) = delete;

    // In every path "/" and "\\" separate, and case does not matter where the file is there in
    // another one. What is open is closed first.

    // Makes a new database file and opens it so that nobody else can. `locale` is of the form
    // ";LANGID=0x0409;CP=1252;COUNTRY=0". Throws 3204 when the file exists, 3044 when its folder
    // does not.
    virtual void Create(const std::wstring& name, const std::wstring& locale, int32_t options = 0);
    // Throws 3024 when there is no such file, 3044 when there is no such folder, 3045 when others
    // use it in a way that excludes this one, 3051 when it may not be read or, unless `readOnly` is
    // set, not be written (as files of other versions than 4.0 may not), 3343 when it is no
    // database, 3049 when it is damaged from the start, 3031 when it asks for a password; 3170 for
    // a `connect` text other than "". `readOnly` leaves the file to others whatever `exclusive`
    // says.
    virtual void Open(const std::wstring& name, bool exclusive = false, bool readOnly = false,
                      const std::wstring& connect = {});
    // Closes the recordsets on it too, and ends its table and query definitions. No effect when it
    // is not open.
    virtual void Close();

    bool IsOpen() const { return m_bOpen; }
    // Open, and may be written.
    bool CanUpdate() const;
    // The file's full path with "/" between folders; "" unless it is open.
    std::wstring GetName() const;
    // "4.0", "3.0", "12.0"...: of the file's format.
    std::wstring GetVersion() const;

    int16_t GetTableDefCount();
    // By position in the order of the names, system tables and links among them, or by name. Throws
    // 3265.
    void GetTableDefInfo(int index, CDaoTableDefInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetTableDefInfo(const std::wstring& name, CDaoTableDefInfo& info,
                         uint32_t level = AFX_DAO_PRIMARY_INFO);
    // Throws 3265; 3211 while a recordset of this database is open on it, 3281 for a table with
    // relations. Of a link only the link goes.
    void DeleteTableDef(const std::wstring& name);

    int16_t GetRelationCount();
    // As for tables.
    void GetRelationInfo(int index, CDaoRelationInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetRelationInfo(const std::wstring& name, CDaoRelationInfo& info,
                         uint32_t level = AFX_DAO_PRIMARY_INFO);
    void CreateRelation(CDaoRelationInfo& info);
    void DeleteRelation(const std::wstring& name);

    int16_t GetQueryDefCount();
    // As for tables.
    void GetQueryDefInfo(int index, CDaoQueryDefInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetQueryDefInfo(const std::wstring& name, CDaoQueryDefInfo& info,
                         uint32_t level = AFX_DAO_PRIMARY_INFO);
    void DeleteQueryDef(const std::wstring& name);

    // Runs a statement that changes rows or the design, or the stored query of this name. It is one
    // transaction. With dbFailOnError a row that is refused (3022, 3058, 3163, 3200, 3201, 3260,
    // 3314, 3317, 3421...) undoes it whole and throws; without, such rows are left out, the others
    // are written and nothing is thrown for them. Throws all else that is wrong in any case: the
    // syntax, 3061 for a name that is nothing, 3065 for a select query, 3078 for a table that is
    // not there, 3211 for a change of a table that a recordset is open on, 3027 in a database that
    // is only read.
    void Execute(const std::wstring& sql, int32_t options = dbFailOnError);
    // By the last Execute of this object.
    int32_t GetRecordsAffected() const { return recordsAffected_; }

    int32_t m_nStatus = 0;  // 0 or 1: the object can be used, open or not
    bool m_bOpen = false;

    // What stands behind it, and behind what is made on it.
    const std::shared_ptr<sg::dao::DatabaseSession>& session() const { return session_; }

  private:
    std::shared_ptr<sg::dao::DatabaseSession> session_;  // never null
    int32_t recordsAffected_ = 0;
};

class SG_API CDaoWorkspace {
  public:
    // Copies a database of any version into a new file of the current one, dense and with its
    // indexes built anew. Nobody may have the source open (3045); throws 3024, 3204, and 3428 with
    // the place for a damaged source.
    static void CompactDatabase(const std::wstring& source, const std::wstring& destination,
                                const std::wstring& locale = {}, int32_t options = 0);
    // Mends a database in place: keeps every row that can be read. The file as it was stays beside
    // it under its name + ".bak".
    static void RepairDatabase(const std::wstring& name);
};
