#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/dao/database.h"
#include "platform/variant/ole_variant.h"

class CDaoQueryDef;

// Rows under a cursor. Before the first row (BOF) and behind the last (EOF) there is no current
// record, in which case what needs one throws 3021.
//
// Values are VARIANTs by field type: VT_BOOL, VT_UI1, VT_I2, VT_I4, VT_CY, VT_R4, VT_R8, VT_DATE,
// VT_BSTR for text and memo, VT_ARRAY | VT_UI1 for binary and long binary, VT_DECIMAL, a GUID as
// the VT_BSTR "{guid {...}}", and VT_NULL for Null.
class SG_API CDaoRecordset {
  public:
    // It can be used as long as the database lives; afterwards it is closed and cannot be opened.
    explicit CDaoRecordset(CDaoDatabase* database);
    virtual ~CDaoRecordset();
    CDaoRecordset(const CDaoRecordset&) = delete;
    CDaoRecordset& operator=(const CDaoRecordset&) = delete;

    // Opens `source`, and stands on the first record: a table, a stored query, or the text of a
    // SELECT, TRANSFORM or UNION query. `options` may have dbReadOnly.
    //
    // dbOpenTable is for tables of this file alone: 3219 for a linked one, 3011 for what is none.
    // A snapshot holds the rows as they are now. A dynaset of a table, linked or not, is its
    // records as dbOpenTable has them, but without indexes (3251); one of a query is only read, and
    // has the rows as they are now (AddNew, Edit and Delete throw 3027, of a snapshot 3251).
    //
    // Throws 3078 when there is no such table or query, what is wrong in a text, 3061 for names in
    // it that are nothing, and 3219 for a statement that gives no rows.
    virtual void Open(int32_t type, const std::wstring& source, int32_t options = 0);
    // The rows of a query with the values of its parameters; as the other for its text.
    virtual void Open(CDaoQueryDef* query, int32_t type = dbOpenDynaset, int32_t options = 0);
    virtual void Close();
    bool IsOpen() const;
    // The source as it was given, of a query its name or its text; "" unless it is open.
    std::wstring GetName() const;
    // dbOpenTable, dbOpenDynaset or dbOpenSnapshot.
    int16_t GetType() const;
    bool CanUpdate() const;

    // From Edit to Update nobody else can write the record. The engine locks in no other way, so
    // that false changes nothing and the answer is always true.
    void SetLockingMode(bool pessimistic);
    bool GetLockingMode() const;

    bool IsBOF() const;
    bool IsEOF() const;
    // Whether the current record has been deleted, by whomever.
    bool IsDeleted() const;
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrev();
    // So many records forward or back; over the end it stops at EOF or BOF without an error, and
    // from there comes back to the last or first record. Throws 3021 when it is there already.
    virtual void Move(int32_t rows);

    // Of a table: exactly. Of others: all their rows.
    int32_t GetRecordCount() const;

    // To the first record (for "<" and "<=": the last) whose leading index fields compare so with
    // the keys, which are converted to the fields' types; a Null key finds Null. False when there
    // is none, and no current record then. Throws 3019 without a current index, 3421 for a key that
    // can't be converted, 3001 for more keys than fields and for another comparison.
    bool Seek(const wchar_t* comparison, const COleVariant* key1, const COleVariant* key2 = nullptr,
              const COleVariant* key3 = nullptr);
    bool Seek(const wchar_t* comparison, const COleVariant* keys, uint16_t count);
    std::wstring GetCurrentIndex() const;
    // "" is file order. The current record stays. Throws 3015 when the table has no such index.
    void SetCurrentIndex(const std::wstring& index);
    int16_t GetIndexCount();
    void GetIndexInfo(int index, CDaoIndexInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetIndexInfo(const std::wstring& name, CDaoIndexInfo& info,
                      uint32_t level = AFX_DAO_PRIMARY_INFO);

    int16_t GetFieldCount();
    // Fields are counted in the order in which programs show them. These throw 3265. A query's
    // field that is a table's field as it stands tells which (m_strSourceTable, m_strSourceField)
    // and what that one is like.
    void GetFieldInfo(int index, CDaoFieldInfo& info, uint32_t level = AFX_DAO_PRIMARY_INFO);
    void GetFieldInfo(const std::wstring& name, CDaoFieldInfo& info,
                      uint32_t level = AFX_DAO_PRIMARY_INFO);
    COleVariant GetFieldValue(const std::wstring& name);
    COleVariant GetFieldValue(int index);
    // The whole current record in place of what `items` held: name and value of each field in
    // turn, as the information calls and GetFieldValue give them one by one. Records share the
    // texts of the names. This host's own.
    void sgGetRecord(std::vector<COleVariant>& items);
    // Converts the value into the field's type: 3421 when it can't, 3163 when it is too long.
    // VT_EMPTY and VT_NULL are Null. 3251 for a counter, 3020 without AddNew or Edit.
    void SetFieldValue(const std::wstring& name, const COleVariant& value);
    void SetFieldValue(int index, const COleVariant& value);

    // A new record has its default values; Edit throws 3260 with the other user's name or, within
    // this database, 3188 when the record is locked. Update puts it into the table (3022, 3058,
    // 3201, 3314...; the edit goes on then) and leaves the cursor where it was. Moves and seeks
    // drop an edit.
    virtual void AddNew();
    virtual void Edit();
    virtual void Update();
    virtual void CancelUpdate();
    // The cursor stays on the deleted record.
    virtual void Delete();
    int16_t GetEditMode() const;

    // A safe array of bytes. SetBookmark throws 3159 for what is no bookmark of this recordset,
    // 3167 when its record has been deleted; GetLastModifiedBookmark 3021 when nothing was written
    // yet.
    COleVariant GetBookmark();
    void SetBookmark(const COleVariant& bookmark);
    COleVariant GetLastModifiedBookmark();

    CDaoDatabase* m_pDatabase;

  private:
    struct State;

    State& opened() const;

    std::shared_ptr<sg::dao::DatabaseSession> session_;  // of m_pDatabase
    std::unique_ptr<State> state_;                       // null unless it is open
};
