#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"

// Prompts. Points are in the user coordinate system, angles in radians. A null prompt shows
// nothing.
//
// They answer RTNORM; RTNONE for Enter; RTKWORD for a keyword, which acedGetInput has; RTCAN at
// Esc; RTERROR when an argument is wrong.

enum : int {
    RSG_NONULL = 1,   // Enter is refused
    RSG_NOZERO = 2,   // so is 0
    RSG_NONEG = 4,    // and a negative number
    RSG_NOLIM = 8,    // the drawing's limits do not count
    RSG_DASH = 32,    // dashed rubber bands
    RSG_2D = 64,      // distances without z
    RSG_OTHER = 128,  // any text, as if it were a keyword
};

// What the next prompt allows. Keywords stand with blanks between them; what is in capitals must be
// typed, or what stands behind a comma ("LTYPE,LT").
SG_API int acedInitGet(int bits, const wchar_t* keywords);

// `base` may be null but for a corner.
SG_API int acedGetPoint(const ads_point base, const wchar_t* prompt, ads_point result);
SG_API int acedGetCorner(const ads_point base, const wchar_t* prompt, ads_point result);
SG_API int acedGetDist(const ads_point base, const wchar_t* prompt, ads_real* result);
// From the direction that ANGBASE names; from the x axis.
SG_API int acedGetAngle(const ads_point base, const wchar_t* prompt, ads_real* result);
SG_API int acedGetOrient(const ads_point base, const wchar_t* prompt, ads_real* result);
SG_API int acedGetReal(const wchar_t* prompt, ads_real* result);
SG_API int acedGetInt(const wchar_t* prompt, int* result);

// Texts are cut to fit `size` characters with the zero at their end. With `blanks` other than 0 a
// blank does not end the answer.
SG_API int acedGetString(int blanks, const wchar_t* prompt, wchar_t* result, size_t size);
SG_API int acedGetKword(const wchar_t* prompt, wchar_t* result, size_t size);
// The keyword that was answered last; RTERROR when none was.
SG_API int acedGetInput(wchar_t* result, size_t size);

// An entity, and where it was picked. RTERROR for Enter, "ERRNO" being 52, and for a pick that hits
// nothing, "ERRNO" being 7.
SG_API int acedEntSel(const wchar_t* prompt, ads_name entity, ads_point point);
