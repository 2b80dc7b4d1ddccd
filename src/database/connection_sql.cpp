#include "database/connection.h"
#include "platform/win/exceptions.h"

namespace sg {

bool CDBConnection::ExecuteSelect(const std::wstring&, COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::ExecuteAction(const std::wstring&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::ExecuteActionCount(const std::wstring&, int32_t&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::RunQuery(const std::wstring&, const COleSafeArray&, COleSafeArray&) {
    AfxThrowInvalidArgException();
}

bool CDBConnection::SetQuerySql(const std::wstring&, const std::wstring&) {
    AfxThrowInvalidArgException();
}

}  // namespace sg
