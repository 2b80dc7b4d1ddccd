#pragma once

#include <string>

#include "base/export.h"

// The drawing program's own profile: texts in sections of the user's registry, which are made when
// they are first written.
class SG_API CWinApp {
  public:
    std::wstring GetProfileString(const wchar_t* section, const wchar_t* entry,
                                  const wchar_t* byDefault = L"");
    // Null removes the entry. False when it cannot be stored.
    bool WriteProfileString(const wchar_t* section, const wchar_t* entry, const wchar_t* value);
};

SG_API CWinApp* AfxGetApp();
