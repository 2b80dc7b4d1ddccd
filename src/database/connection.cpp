#include "database/connection.h"

#include "database/locale.h"
#include "platform/dao/infos.h"

namespace sg {
namespace {

// The file may not be opened for writing.
constexpr int32_t kFileReadOnly = 3051;

constexpr int16_t kInterfaceVersion = 2;

}  // namespace

CDBConnection::~CDBConnection() = default;

// --- states ---

bool CDBConnection::IsOpen() const {
    return IsValid() && database_.IsOpen();
}

std::wstring CDBConnection::GetDatabaseName() const {
    return IsOpen() ? database_.GetName() : std::wstring();
}

bool CDBConnection::IsValid() const {
    return database_.m_nStatus == 0 || database_.m_nStatus == 1;
}

bool CDBConnection::NoTablesOpen() const {
    return tables_.empty();
}

int16_t CDBConnection::GetUpdatable() const {
    return canUpdate() ? -1 : 0;
}

bool CDBConnection::IsReadOnly() const {
    return !canUpdate();
}

int16_t CDBConnection::GetInterfaceVersion() const {
    return kInterfaceVersion;
}

bool CDBConnection::isTableReady() const {
    return IsOpen() && !tables_.empty() && tables_.front() != nullptr && tables_.front()->IsOpen();
}

// --- opening and closing ---

std::wstring CDBConnection::Open(const std::wstring& fileName, bool exclusive, int16_t readOnly) {
    clearError();
    if (IsOpen()) Close();
    try {
        database_.Open(fileName, exclusive, readOnly != 0);
        return database_.GetName();
    } catch (CDaoException* exception) {
        const std::unique_ptr<CDaoException> owned(exception);
        if (exception->m_pErrorInfo->m_lErrorCode != kFileReadOnly) {
            Close();
            recordError(*exception);
            return kRepairNeeded;
        }
    }
    const bool opened = capture([&] {
        database_.Open(fileName, exclusive, true);
        return true;
    });
    return opened ? database_.GetName() : std::wstring();
}

bool CDBConnection::OpenPlain(const std::wstring& fileName, int16_t& lockedWord) {
    clearError();
    if (IsOpen()) Close();
    lockedWord = 0;
    try {
        database_.Open(fileName, false, false);
    } catch (CDaoException* exception) {
        const std::unique_ptr<CDaoException> owned(exception);
        if (exception->m_pErrorInfo->m_lErrorCode != kFileReadOnly) {
            recordError(*exception);
            return false;
        }
        lockedWord = -1;
    }
    return true;
}

void CDBConnection::Close() {
    clearError();
    CloseAllTables();
    if (!IsOpen()) return;
    capture([&] {
        database_.Close();
        return true;
    });
}

// --- database files ---

bool CDBConnection::CreateDatabase(const std::wstring& fileName) {
    clearError();
    return capture([&] {
        CDaoDatabase database;
        database.Create(fileName, kDatabaseLocale, 0);
        database.Close();
        return true;
    });
}

bool CDBConnection::CompactDatabase(const std::wstring& source, const std::wstring& destination) {
    clearError();
    return capture([&] {
        CDaoWorkspace::CompactDatabase(source, destination, kDatabaseLocale, 0);
        return true;
    });
}

bool CDBConnection::TableExists(const std::wstring& name) {
    clearError();
    if (!IsOpen()) return false;
    return capture([&] {
        const int count = database_.GetTableDefCount();
        for (int index = 0; index < count; ++index) {
            CDaoTableDefInfo info;
            database_.GetTableDefInfo(index, info, AFX_DAO_PRIMARY_INFO);
            if (info.m_strName == name) return true;
        }
        return false;
    });
}

// --- errors ---

bool CDBConnection::HasError() const {
    return error_;
}

bool CDBConnection::GetLastError(int32_t& code, std::wstring& text) const {
    code = errorCode_;
    text = errorText_;
    return error_;
}

void CDBConnection::recordError(const CDaoException& exception) {
    error_ = true;
    errorCode_ = exception.m_pErrorInfo->m_lErrorCode;
    errorText_ = exception.m_pErrorInfo->m_strDescription;
}

}  // namespace sg
