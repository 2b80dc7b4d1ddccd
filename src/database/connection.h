#pragma once

#include <cstdint>
#include <string>

namespace sg {

// One database with its open tables. Operations catch the engine's errors, keep code and text of
// the last one and answer false, or an empty text. This build has no database engine: Open always
// fails and says so.
class CDBConnection {
  public:
    CDBConnection() = default;
    CDBConnection(const CDBConnection&) = delete;
    CDBConnection& operator=(const CDBConnection&) = delete;

    // The database is open.
    virtual bool IsOpen() const;

    // The database's file; empty when it is not open.
    virtual std::wstring GetDatabaseName() const;

    // The database object can be used at all, open or not.
    virtual bool IsValid() const;

    // Closes every table, the current one first, and forgets them.
    virtual void CloseAllTables();

    // Clears the error flag, closes every table and then the database. No effect on a database that
    // is not open.
    virtual void Close();

    // -1 when the database is open and can be written, otherwise 0.
    virtual int16_t GetUpdatable() const;

    // Opens a database, after closing the one that is open, and answers its name. `readOnly` is 0
    // or -1. On failure the error is recorded and the answer is "*REPAIR*" when the file itself
    // needs repair, and otherwise empty.
    virtual std::wstring Open(const std::wstring& fileName, bool exclusive, int16_t readOnly);

    // An operation has failed since the error flag was last cleared, which operations do first.
    virtual bool HasError() const;

    // False only for an open database that can be written.
    virtual bool IsReadOnly() const;

    // Code and text of the last error, which outlive the error flag; the answer is HasError().
    virtual bool GetLastError(int32_t& code, std::wstring& text) const;

    virtual ~CDBConnection() = default;

  protected:
    // The engine's object: 0 or 1 while it can be used, anything else once it has been destroyed.
    int32_t databaseStatus_ = 0;
    bool databaseOpen_ = false;
    std::wstring databaseName_;

    bool error_ = false;
    int32_t errorCode_ = 0;
    std::wstring errorText_;

    void recordError(int32_t code, std::wstring text);
};

// What Open answers for a file that needs repair.
inline constexpr const wchar_t* kRepairNeeded = L"*REPAIR*";

}  // namespace sg
