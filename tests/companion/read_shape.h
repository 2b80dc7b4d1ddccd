#pragma once

#include <string>
#include <vector>

#include "platform/db/extents.h"

namespace sg::test {

struct ReadFace {
    AcGePoint3d center;
    AcGeVector3d normal;  // outwards at the centre; of plane faces
    double area = 0;
    bool isPlane = false;
};

// What another program makes of an exact shape.
struct ReadShape {
    bool isValid = false;  // closed solids without faults
    size_t solids = 0;
    double volume = 0;
    std::vector<ReadFace> faces;

    // Whether a plane face with this area looks out of the solid at a place.
    bool hasEnd(const AcGePoint3d& center, const AcGeVector3d& outwards, double area) const;
};

ReadShape readShape(const std::string& bytes);

}  // namespace sg::test
