#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"

// The command line: text to the user, and system variables.

// Prints formatted text; the format is that of wprintf, in which %s takes a wide string, as modules
// written for the system of origin have it. Answers RTNORM.
SG_API int acutPrintf(const wchar_t* format, ...);

// Prints text as it stands.
SG_API int acedPrompt(const wchar_t* text);

// A message box with the text and an OK button.
SG_API int acedAlert(const wchar_t* text);

// Flips to the text screen, and back to the graphics screen.
SG_API int acedTextScr();
SG_API int acedGraphScr();

// A system variable's value in `result`, whose string the caller releases with acutDelString.
// RTERROR for an unknown name.
SG_API int acedGetVar(const wchar_t* name, resbuf* result);
// RTERROR for an unknown or read-only name, a value of the wrong type or outside its range.
SG_API int acedSetVar(const wchar_t* name, const resbuf* value);

// Whether the user has asked to stop what is running; a module that works for long looks now and
// then, and ends early. 1 or 0.
SG_API int acedUsrBrk();
