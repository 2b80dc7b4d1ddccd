#include "platform/win/exceptions.h"

#include <algorithm>
#include <cwchar>

#include "platform/dao/exception.h"

CException::~CException() = default;

bool CException::GetErrorMessage(wchar_t* text, unsigned capacity) const {
    const std::wstring whole = message();
    if (text != nullptr && capacity != 0) {
        const size_t length = std::min<size_t>(whole.size(), capacity - 1);
        std::wmemcpy(text, whole.data(), length);
        text[length] = L'\0';
    }
    return !whole.empty();
}

std::wstring CException::message() const {
    return {};
}
std::wstring CMemoryException::message() const {
    return L"Out of memory.";
}
std::wstring CInvalidArgException::message() const {
    return L"Encountered an improper argument.";
}

void AfxThrowMemoryException() {
    throw new CMemoryException;
}
void AfxThrowInvalidArgException() {
    throw new CInvalidArgException;
}

CDaoException::CDaoException(int32_t code, std::wstring description)
    : m_pErrorInfo(new CDaoErrorInfo{code, L"DAO.DbEngine", std::move(description)}) {}
CDaoException::~CDaoException() {
    delete m_pErrorInfo;
}
std::wstring CDaoException::message() const {
    return m_pErrorInfo->m_strDescription;
}
