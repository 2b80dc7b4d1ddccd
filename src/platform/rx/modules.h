#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "base/encoding.h"
#include "base/export.h"

// Loads a module: a shared object, found under its path or on the support path, whose entry point
// is sent kInitAppMsg and then kLoadDwgMsg for every open document. `printIt` announces failures on
// the command line; `asCommand` is true when a user asked for it. False when the module cannot be
// found or opened, or refuses to load. A module that is loaded already is true and untouched.
SG_API bool acrxLoadModule(const wchar_t* name, bool printIt, bool asCommand = false);

// Unloads it: kUnloadDwgMsg for every open document, then kUnloadAppMsg. False when it is not
// loaded or locked.
SG_API bool acrxUnloadModule(const wchar_t* name, bool asCommand = false);

// File names of the loaded modules, in the order of loading.
SG_API std::vector<std::wstring> acrxLoadedApplications();

// A module is locked in memory until it asks otherwise during kInitAppMsg. `packet` is what the
// entry point was given.
SG_API bool acrxUnlockApplication(void* packet);
SG_API bool acrxRegisterAppMDIAware(void* packet);

// What acrx_abort throws.
class SG_API AcRxAbort : public std::runtime_error {
  public:
    explicit AcRxAbort(const wchar_t* text) : std::runtime_error(sg::toUtf8(text)) {}
};

// Ends what a module is doing because it cannot go on: reports the text as an error and throws
// AcRxAbort, which ends the message that the module's entry point was sent. The process goes on.
[[noreturn]] SG_API void acrx_abort(const wchar_t* text);
