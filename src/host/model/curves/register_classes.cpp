#include "host/model/curves/register_classes.h"

#include "host/model/curves/ellipse.h"
#include "host/model/curves/point.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/curves/ray.h"
#include "host/model/curves/sequence_end.h"
#include "host/model/curves/spline.h"
#include "host/model/curves/xline.h"
#include "platform/db/arc.h"
#include "platform/db/circle.h"
#include "platform/db/line.h"
#include "platform/db/polyline.h"
#include "platform/db/polyline_2d.h"

namespace sg::model {
namespace {

template <class... Classes>
void registerAll() {
    (Classes::rxInit(), ...);
}

}  // namespace

// Of the classes that share a DXF name a reader takes the one that the flags ask for.
void registerCurveClasses() {
    registerAll<AcDbCurve, AcDbLine, AcDbRay, AcDbXline, AcDbArc, AcDbCircle, AcDbEllipse,
                AcDbSpline, AcDbPolyline, AcDb2dPolyline, AcDb3dPolyline>();
    registerAll<AcDbVertex, AcDb2dVertex, AcDb3dPolylineVertex, AcDbSequenceEnd, AcDbPoint>();
}

}  // namespace sg::model
