#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"

// Takes a point, or with `displacement` other than 0 a vector, from one coordinate system to
// another. A system is an RTSHORT: 0 the world's, 1 the user's, 2 the current viewport's display,
// 3 the sheet's display (only from and to 2); an RTENAME: that of an entity; or an RT3DPOINT: that
// of the plane with this normal. RTNORM; RTERROR, and `result` untouched, for what is none of them.
SG_API int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement,
                     ads_point result);
