// The tables of a connection, and the cursor of the current one.

#include <algorithm>
#include <vector>

#include "database/connection.h"

namespace sg {

// --- open tables ---

CDBConnection::Tables::iterator CDBConnection::findTable(const std::wstring& name) {
    return std::find_if(tables_.begin(), tables_.end(), [&](const auto& recordset) {
        return recordset != nullptr && recordset->GetName() == name;
    });
}

// A recordset of a database that has been destroyed is not to be touched but for its deletion.
void CDBConnection::closeRecordset(CDaoRecordset* recordset) {
    if (recordset == nullptr || !IsValid() || !recordset->IsOpen()) return;
    capture([&] {
        recordset->Close();
        return true;
    });
}

void CDBConnection::CloseNamedTable(const std::wstring& name) {
    clearError();
    const auto found = findTable(name);
    if (found == tables_.end()) return;
    closeRecordset(found->get());
    tables_.erase(found);
}

bool CDBConnection::CloseTable() {
    clearError();
    if (!isTableReady()) return false;
    closeRecordset(tables_.front().get());
    tables_.pop_front();
    return true;
}

void CDBConnection::CloseAllTables() {
    clearError();
    while (!tables_.empty()) {
        closeRecordset(tables_.front().get());
        tables_.pop_front();
    }
}

std::unique_ptr<CDaoRecordset> CDBConnection::openRecordset(const std::wstring& table) {
    auto recordset = std::make_unique<CDaoRecordset>(&database_);
    recordset->Open(dbOpenTable, table, database_.CanUpdate() ? 0 : dbReadOnly);
    recordset->SetLockingMode(true);
    return recordset;
}

bool CDBConnection::OpenTable(const std::wstring& name, const std::wstring& index) {
    clearError();
    if (!IsOpen()) return true;
    return capture([&] {
        const auto found = findTable(name);
        if (found == tables_.end()) {
            tables_.push_front(openRecordset(name));
        } else {
            std::swap(tables_.front(), *found);
        }
        if (!index.empty() && index != table().GetCurrentIndex()) table().SetCurrentIndex(index);
        return true;
    });
}

std::wstring CDBConnection::GetCurrentTableName() {
    clearError();
    return isTableReady() ? table().GetName() : std::wstring();
}

std::wstring CDBConnection::GetCurrentIndexName() {
    clearError();
    std::wstring name;
    if (!isTableReady()) return name;
    capture([&] {
        name = table().GetCurrentIndex();
        return true;
    });
    return name;
}

// --- moving ---

bool CDBConnection::IsEOF() {
    clearError();
    return isTableReady() && capture([&] { return table().IsEOF(); });
}

bool CDBConnection::IsBOF() {
    clearError();
    return isTableReady() && capture([&] { return table().IsBOF(); });
}

// `move` answers whether there is a record to be read then.
template <class Move>
bool CDBConnection::moveAndRead(COleSafeArray& record, const Move& move) {
    clearError();
    if (!isTableReady() || !capture([&] { return move(table()); })) return false;
    return GetRecord(record);
}

bool CDBConnection::Top(COleSafeArray& record) {
    return moveAndRead(record, [](CDaoRecordset& rows) {
        if (rows.IsEOF() && rows.IsBOF()) return false;
        rows.MoveFirst();
        return true;
    });
}

bool CDBConnection::Bottom(COleSafeArray& record) {
    return moveAndRead(record, [](CDaoRecordset& rows) {
        if (rows.IsEOF() && rows.IsBOF()) return false;
        rows.MoveLast();
        return true;
    });
}

bool CDBConnection::Skip(int32_t count, COleSafeArray& record) {
    return moveAndRead(record, [count](CDaoRecordset& rows) {
        if (count == 0) return false;
        if (count > 0 ? rows.IsEOF() : rows.IsBOF()) return false;
        rows.Move(count);
        return true;
    });
}

// `find` answers whether it found a record.
template <class Find>
bool CDBConnection::seekAndRead(COleSafeArray& record, const Find& find) {
    return moveAndRead(
        record, [&](CDaoRecordset& rows) { return !rows.GetCurrentIndex().empty() && find(rows); });
}

bool CDBConnection::SeekOne(const COleVariant& key, COleSafeArray& record) {
    return seekAndRead(record, [&](CDaoRecordset& rows) { return rows.Seek(L"=", &key); });
}

bool CDBConnection::SeekTwo(const COleVariant& key1, const COleVariant& key2,
                            COleSafeArray& record) {
    return seekAndRead(record, [&](CDaoRecordset& rows) { return rows.Seek(L"=", &key1, &key2); });
}

bool CDBConnection::SeekThree(const COleVariant& key1, const COleVariant& key2,
                              const COleVariant& key3, COleSafeArray& record) {
    return seekAndRead(record,
                       [&](CDaoRecordset& rows) { return rows.Seek(L"=", &key1, &key2, &key3); });
}

bool CDBConnection::SeekMany(uint16_t count, const COleVariant* keys, COleSafeArray& record) {
    return seekAndRead(record, [&](CDaoRecordset& rows) { return rows.Seek(L"=", keys, count); });
}

// --- reading ---

bool CDBConnection::GetRecord(COleSafeArray& record) {
    if (!isTableReady()) return false;
    return capture([&] {
        if (table().IsBOF() || table().IsEOF()) return false;
        std::vector<COleVariant> items;
        table().sgGetRecord(items);
        record.CreateFromVariants(std::move(items));
        return true;
    });
}

bool CDBConnection::GetRecordCount(int32_t& count) {
    clearError();
    return isTableReady() && capture([&] {
               count = table().GetRecordCount();
               return true;
           });
}

int32_t CDBConnection::GetFieldCount(int16_t& result) {
    clearError();
    int32_t count = 0;
    const bool counted = isTableReady() && capture([&] {
                             count = table().GetFieldCount();
                             return true;
                         });
    result = counted ? -1 : 0;
    return count;
}

bool CDBConnection::GetFieldName(int32_t position, std::wstring& name) {
    clearError();
    return isTableReady() && capture([&] {
               CDaoFieldInfo info;
               table().GetFieldInfo(position, info, AFX_DAO_PRIMARY_INFO);
               name = info.m_strName;
               return true;
           });
}

bool CDBConnection::GetFieldValue(int32_t position, COleVariant& value) {
    clearError();
    return isTableReady() && capture([&] {
               value = table().GetFieldValue(position);
               return true;
           });
}

bool CDBConnection::GetFieldValueByName(const std::wstring& field, COleVariant& value) {
    clearError();
    return isTableReady() && capture([&] {
               value = table().GetFieldValue(field);
               return true;
           });
}

}  // namespace sg
