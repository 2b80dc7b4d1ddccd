#pragma once

#include <cstddef>
#include <cstdint>

#include "base/export.h"

// Result buffers: the singly linked lists in which values cross between LISP and native code.
// A list on this wire is flat: a sublist is the run of nodes between an RTLB and its RTLE, and a
// dotted pair has an RTDOTE before its last item.

using ads_real = double;
using ads_point = ads_real[3];  // drawing units, world coordinates unless said otherwise
using ads_name = int32_t[2];    // the name of an entity or a selection set

struct ads_binary {
    int16_t clen;  // bytes in buf
    char* buf;
};

union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    int16_t rint;
    wchar_t* rstring;  // owned by the node; allocated with acutNewString
    ads_name rlname;
    int32_t rlong;
    ads_binary rbinary;
};

struct resbuf {
    resbuf* rbnext;  // owned by this node; null at the end
    int16_t restype;
    ads_u_val resval;
};

// Type codes of a node. A code below 1000 is a DXF group code.
enum : int16_t {
    RTNONE = 5000,
    RTREAL = 5001,
    RTPOINT = 5002,  // 2D point in rpoint[0], rpoint[1]
    RTSHORT = 5003,
    RTANG = 5004,
    RTSTR = 5005,
    RTENAME = 5006,
    RTPICKS = 5007,
    RTORINT = 5008,
    RT3DPOINT = 5009,
    RTLONG = 5010,
    RTVOID = 5014,
    RTLB = 5016,
    RTLE = 5017,
    RTDOTE = 5018,
    RTNIL = 5019,
    RTDXF0 = 5020,
    RTT = 5021,
    RTRESBUF = 5023,
};

// What functions of the host answer.
enum : int {
    RTNORM = 5100,
    RTERROR = -5001,
    RTCAN = -5002,
    RTREJ = -5003,
    RTFAIL = -5004,
    RTKWORD = -5005,
};

// What the handler of an external LISP function answers. RSERR raises an error in the calling
// expression.
enum : int {
    RSRSLT = 1,
    RSERR = 3,
};

// A new node with rbnext null and the value zeroed. Nodes come from a pool; null only when memory
// is exhausted.
SG_API resbuf* acutNewRb(int type);

// Releases a whole list with the strings in it. Null is allowed. Answers RTNORM.
SG_API int acutRelRb(resbuf* list);

// A list from type codes and values, ended by the type code 0 (RTNONE also ends it). The value of
// each code follows it: RTREAL double; RTSHORT, RTLONG int; RTSTR const wchar_t* (copied);
// RTPOINT, RT3DPOINT const ads_real* (copied); RTENAME, RTPICKS const int32_t*; RTLB, RTLE, RTDOTE,
// RTNIL, RTT, RTVOID take none. A DXF group code takes the value of its group's kind.
// Null for an unknown code, with nothing left allocated.
SG_API resbuf* acutBuildList(int firstType, ...);

// A copy of `text` as a node may own it; null when memory is exhausted.
SG_API wchar_t* acutNewString(const wchar_t* text);
SG_API wchar_t* acutNewString(const wchar_t* text, size_t length);
SG_API void acutDelString(wchar_t*& text);

// The same text, which a node owns, for one more node; nobody may write over it then. Lists that
// repeat a text millions of times, as those of a query's records do, have it once. Null when memory
// is exhausted. This host's own.
SG_API wchar_t* sgShareNodeString(wchar_t* text);

// The number of nodes that are allocated and not yet released. Tests compare it before and after a
// call.
SG_API size_t acutLiveNodeCount();

// The kind of value that a DXF group code holds, as one of RTSTR, RTREAL, RTSHORT, RTLONG,
// RT3DPOINT, RTENAME; RTNONE when the code is no group code.
SG_API int16_t acdbGroupCodeToType(int groupCode);
