#include "host/model/entities/register_classes.h"

#include "host/model/entities/dimension/kinds.h"
#include "host/model/entities/hatch.h"
#include "host/model/entities/image.h"
#include "host/model/entities/mesh/mesh.h"
#include "host/model/entities/ole_frame.h"
#include "host/model/entities/solid.h"
#include "platform/db/annotative.h"
#include "platform/db/attribute.h"
#include "platform/db/block_reference.h"
#include "platform/db/exact_shape.h"
#include "platform/db/face.h"
#include "platform/db/leader.h"
#include "platform/db/mtext.h"
#include "platform/db/plain_form.h"
#include "platform/db/viewport.h"

namespace sg::model {
namespace {

template <class... Classes>
void registerAll() {
    (Classes::rxInit(), ...);
}

}  // namespace

void registerEntityClasses() {
    registerAll<AcDbText, AcDbAttributeDefinition, AcDbAttribute, AcDbMText, AcDbBlockReference,
                AcDbMInsertBlock, AcDbFace, AcDbSolid, AcDbTrace, AcDbViewport, AcDbLeader,
                AcDbHatch>();
    registerAll<AcDbPolyFaceMesh, AcDbPolygonMesh, AcDbPolyFaceMeshVertex, AcDbPolygonMeshVertex,
                AcDbFaceRecord>();
    registerAll<AcDbDimension, AcDbAlignedDimension, AcDbRotatedDimension,
                AcDb2LineAngularDimension, AcDb3PointAngularDimension, AcDbArcDimension,
                AcDbRadialDimension, AcDbDiametricDimension, AcDbOrdinateDimension>();
    registerAll<AcDbRasterImage, AcDbWipeout, AcDbRasterImageDef, AcDbRasterImageDefReactor,
                AcDbRasterVariables, AcDbWipeoutVariables, AcDbOle2Frame, AcDbOleFrame>();
    registerAll<AcDbAnnotativeObjectPE, sgExactShapePE, sgPlainFormPE>();
}

}  // namespace sg::model
