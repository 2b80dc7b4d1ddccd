#include "database/connection.h"
#include "platform/win/exceptions.h"

namespace sg {

bool CDBConnection::GetStructure(COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::ListIndexes(COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::ModifyTable(const std::wstring&, const COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::RenameTable(const std::wstring&, const std::wstring&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::CreateTable(const std::wstring&, const COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::DeleteTable(const std::wstring&, bool) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::ListTables(COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::RelationExists(const std::wstring&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::DeleteRelations(const std::wstring&, const std::wstring&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::LinkTable(const std::wstring&, const std::wstring&, const std::wstring&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::CreateIndex(const std::wstring&, const std::wstring&, int16_t, int16_t) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::FieldRequired(const std::wstring&, const std::wstring&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::FieldAttributes(const std::wstring&, COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::IndexUnique(const std::wstring&, bool&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::IndexFields(const std::wstring&, COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::RelationCount(int32_t&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::RelationInfo(const std::wstring&, COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::RelationInfo(int32_t, COleSafeArray&) {
    AfxThrowInvalidArgException();
}

}  // namespace sg
