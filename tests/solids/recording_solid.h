#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/db/hvac_solid.h"
#include "platform/rx/messages.h"

// A companion module whose solids have no bodies: they write down what is asked of them. It stands
// at file level as modules do; reset it ahead of each test.
namespace sg::test {

struct SolidRecord {
    // A line for each operation on bodies, its arguments in their order: points "(x y z)", profiles
    // "12x8" or "o12x8" for a round one, frames "[x, y, z]" by their vectors, each "+X", "-Z" or
    // its numbers; a frame like the one before it is left out. Numbers have at most four decimals.
    std::vector<std::string> lines;
    // What the next calls of an operation answer; true when nothing is left.
    std::map<std::string, std::deque<bool>> answers;
    // Where elbows and wyes move the ends that they are given.
    std::function<void(AcGePoint3d& head, AcGePoint3d& tail)> moveElbow;
    std::function<void(AcGePoint3d& head, AcGePoint3d& tail1, AcGePoint3d& tail2)> moveWye;
    // What an explosion makes.
    std::function<void(AcDbVoidPtrArray& entities)> explode;
    int alive = 0;
    int made = 0;
};
inline SolidRecord solids;

AcRx::AppRetCode recordingCompanion(AcRx::AppMsgCode message, void* packet);

}  // namespace sg::test
