#pragma once

#include <cstdint>
#include <string>

#include "base/export.h"
#include "platform/win/exceptions.h"

// What the engine says of an error.
struct CDaoErrorInfo {
    int32_t m_lErrorCode = 0;
    std::wstring m_strSource;
    std::wstring m_strDescription;
};

// An error of the database engine. Thrown by pointer.
class SG_API CDaoException : public CException {
  public:
    CDaoException(int32_t code, std::wstring description);
    ~CDaoException() override;

    CDaoErrorInfo* m_pErrorInfo;  // owned; never null

  protected:
    std::wstring message() const override;
};
