#pragma once

#include <string>

#include "base/export.h"

// Exceptions of the application framework. They are thrown and caught by pointer, and the one who
// handles an exception calls its Delete().
class SG_API CException {
  public:
    CException() = default;
    CException(const CException&) = delete;
    CException& operator=(const CException&) = delete;
    virtual ~CException();

    // The text that explains the exception, cut to `capacity` characters with the final zero.
    // False, and an empty text, when it has none.
    virtual bool GetErrorMessage(wchar_t* text, unsigned capacity) const;
    void Delete() { delete this; }

  protected:
    virtual std::wstring message() const;
};

class SG_API CMemoryException : public CException {
  protected:
    std::wstring message() const override;
};

class SG_API CInvalidArgException : public CException {
  protected:
    std::wstring message() const override;
};

[[noreturn]] SG_API void AfxThrowMemoryException();
[[noreturn]] SG_API void AfxThrowInvalidArgException();
