#pragma once

#include "base/export.h"
#include "platform/lisp/resbuf.h"

// Selection sets. Points are in the user coordinate system.

// Selects entities of the current drawing and gives them as a new set, which the caller frees.
//
// `mode` says how, with or without "_" in front: "W" and "C", a window and a crossing window of the
// corners `first` and `second`; "WP", "CP" and "F", polygons and a fence, `first` being a list of
// points; "L" the last entity; "P" the previous selection; "X" the whole drawing; "A" the current
// space but for frozen and locked layers; "I" what is selected already; "G" the group that `first`
// names. Null or empty: the entity at the point `first`, or, without one, what the user selects.
// Options: ":S" one selection, ":E" everything under a pick, ":L" nothing on locked layers; ":$"
// with `first` two texts, the prompts for adding and for removing; ":K" with `second` a text of
// keywords.
//
// `filter` is null or a list of groups that the entities must match, as a chain of groups or as the
// list that a LISP call has brought.
//
// RTNORM; RTERROR when nothing is found or an argument is wrong, RTCAN at Esc, RTKWORD when the
// user answers with a keyword, which acedGetInput then has. Except with RTNORM, `set` is the name
// of none.
SG_API int acedSSGet(const wchar_t* mode, const void* first, const void* second,
                     const resbuf* filter, ads_name set);

// RTERROR for the name of no set, a place that the set has not, an entity that is not in it.
SG_API int acedSSName(const ads_name set, int index, ads_name entity);
SG_API int acedSSLength(const ads_name set, int* length);
SG_API int acedSSDel(const ads_name entity, const ads_name set);
SG_API int acedSSFree(const ads_name set);
SG_API int acedSSMemb(const ads_name entity, const ads_name set);

// Adds an entity to a set, whose name `result` is too; without a set a new one is made, of the
// entity if there is one.
SG_API int acedSSAdd(const ads_name entity, const ads_name set, ads_name result);
