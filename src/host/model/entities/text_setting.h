#pragma once

#include <string>

#include "platform/db/object_id.h"
#include "platform/ge/matrix3d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"
#include "platform/gi/draw.h"

class AcDbDatabase;

namespace sg::model {

// What a text style asks for; the usual one for an id that names none.
AcGiTextStyle textStyleOf(AcDbObjectId style);

// The current text style of a database; null without one.
AcDbObjectId currentTextStyle(const AcDbDatabase* database);

// A flat thing's place in space: a point, and the x axis turned about the normal.
struct Frame {
    AcGePoint3d origin;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double rotation = 0;  // from the axes that the arbitrary axis algorithm gives for the normal

    AcGeVector3d direction() const;
    AcGeVector3d up() const { return normal.crossProduct(direction()); }
    AcGeMatrix3d toWorld() const;  // x along the direction, z along the normal
};

// What a transform makes of a frame and of lengths along its axes.
struct MovedFrame {
    Frame frame;
    double alongX = 1;   // how much longer things along x become
    double acrossX = 1;  // and those at a right angle to it
    double slant = 0;    // the angle by which what was upright leans over
};
// False for a transform that makes the frame flat.
bool moveFrame(const AcGeMatrix3d& transform, const Frame& from, MovedFrame& moved);

// The rotation that gives a direction in the plane of this normal.
double rotationOf(const AcGeVector3d& direction, const AcGeVector3d& normal);

}  // namespace sg::model
