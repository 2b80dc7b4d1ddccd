#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/db/object_id.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/lisp/resbuf.h"

// Readers of argument lists. Each takes a position in a result-buffer list, reads what stands
// there, moves the position past what it has read and answers true. When the position is null or
// holds something else it answers false and leaves position and output as they were. A "DXF node"
// is one whose type is a group code, that is below 1000. Nothing is taken from the list: it stays
// with its owner.
namespace sg {

// RTSTR.
bool nextString(const resbuf*& position, std::wstring& text);

// RTSHORT, RTLONG, and RTREAL cut towards zero (a real outside 32 bits gives the smallest integer,
// as the processors of the system of origin convert it). At a DXF node the value is the group code
// and the position stays.
bool nextInt(const resbuf*& position, int32_t& value);

// RTREAL and nothing else.
bool nextReal(const resbuf*& position, double& value);

// RTREAL, or what nextInt takes.
bool nextNumber(const resbuf*& position, double& value);

// RTNIL is false. RTLE is false too, and the position stays. RTLB is refused. Any other node is
// true.
bool nextBool(const resbuf*& position, bool& value);
// As nextBool; 0 or -1.
bool nextBoolWord(const resbuf*& position, int16_t& value);

// RTPOINT, RT3DPOINT, a DXF node of group 10 to 17 (x and y are taken); two RTREAL in a row.
bool nextPoint2d(const resbuf*& position, AcGePoint2d& point);

// RT3DPOINT, a DXF node of group 10 to 17; RTPOINT, z is then 0; or two or three numbers in a row:
// an RTREAL or RTLONG and then an RTREAL or RTLONG, or an RTSHORT and then any node, which is taken
// as an integer (0 when it holds no number); and then an RTREAL, RTLONG or RTSHORT. Without such a
// third number z is 0 and the position is at the node after the second.
bool nextPoint3d(const resbuf*& position, AcGePoint3d& point);

// RTENAME.
bool nextEntityName(const resbuf*& position, ads_name& name);
// RTPICKS.
bool nextSelectionSet(const resbuf*& position, ads_name& name);
// RTENAME of an object that exists.
bool nextObjectId(const resbuf*& position, AcDbObjectId& id);

// RTSTR, as a new array of one byte a character (code page 1252, "?" for what is not in it) with a
// zero at its end.
bool nextBytes(const resbuf*& position, std::unique_ptr<char[]>& bytes);

// RTLB; RTLE.
bool nextListBegin(const resbuf*& position);
bool nextListEnd(const resbuf*& position);

// The five nodes of a dotted pair ("text" . integer); the integer is an RTSHORT or RTLONG.
bool nextKeyedInt(const resbuf*& position, std::wstring& key, int32_t& value);
// True when nextKeyedInt would read a pair here.
bool isKeyedIntNext(const resbuf* position);

// Any node.
bool skipNext(const resbuf*& position);

}  // namespace sg
