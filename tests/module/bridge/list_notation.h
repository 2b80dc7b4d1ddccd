#pragma once

#include <memory>
#include <string>

#include "platform/lisp/resbuf.h"

// Result-buffer lists written as text, so that tests can be tables. Items are separated by blanks:
//
//     ( ) .         RTLB, RTLE, RTDOTE          nil T void    RTNIL, RTT, RTVOID
//     5 5s 2.5r     RTLONG, RTSHORT, RTREAL     'text'        RTSTR ("_" stands for a blank)
//     <1,2> <1,2,3> RTPOINT, RT3DPOINT          e:1,2 p:1,2   RTENAME, RTPICKS
//     10:<1,2,3>    DXF nodes: a group code and the value, which is of any kind above
namespace sg::test {

struct ListDeleter {
    void operator()(resbuf* list) const { acutRelRb(list); }
};
using List = std::unique_ptr<resbuf, ListDeleter>;

// A new list; null for an empty notation. Throws std::invalid_argument for a mistake in it.
List makeList(const std::string& notation);

// The notation of a list, or of the rest of it from a position on.
std::string describe(const resbuf* list);

}  // namespace sg::test
