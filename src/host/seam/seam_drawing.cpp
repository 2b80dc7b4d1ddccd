#include <optional>

#include "host/editor/documents.h"
#include "host/model/tables/coordinate_systems.h"
#include "host/model/tables/references.h"
#include "host/seam/host.h"
#include "platform/db/database.h"
#include "platform/db/entity.h"
#include "platform/ed/transform.h"
#include "platform/ge/matrix3d.h"

// platform/ed/transform.h, and applications of extended data, on the Host.

using namespace sg;

namespace {

enum System : int16_t { kWorld = 0, kUser = 1, kDisplay = 2, kSheetDisplay = 3 };

// Points in an entity's list are in its plane's directions, but from the world's origin; an
// elevation is among their coordinates.
std::optional<AcGeMatrix3d> systemOfEntity(const ads_name name) {
    AcDbObjectId id;
    AcDbEntity* entity = nullptr;
    if (acdbGetObjectId(id, name) != Acad::eOk ||
        acdbOpenObject(entity, id, AcDb::kForRead, true) != Acad::eOk) {
        return std::nullopt;
    }
    AcGeMatrix3d matrix;
    entity->getEcs(matrix);
    matrix.setTranslation(AcGeVector3d());
    entity->close();
    return matrix;
}

// From the system to the world; nullopt for what names none.
std::optional<AcGeMatrix3d> toWorld(const resbuf& system, const AcDbDatabase& database) {
    switch (system.restype) {
        case RTENAME:
            return systemOfEntity(system.resval.rlname);
        case RTPOINT:
        case RT3DPOINT: {
            const double z = system.restype == RT3DPOINT ? system.resval.rpoint[2] : 0;
            const AcGeVector3d normal(system.resval.rpoint[0], system.resval.rpoint[1], z);
            if (normal.isZeroLength()) return std::nullopt;
            return AcGeMatrix3d::planeToWorld(normal);
        }
        case RTSHORT:
            break;
        default:
            return std::nullopt;
    }
    switch (system.resval.rint) {
        case kWorld:
            return AcGeMatrix3d();
        case kUser:
            return model::userToWorld(database);
        case kDisplay:
            return model::displayToWorld(database);
        default:
            return std::nullopt;
    }
}

bool isSheetDisplay(const resbuf& system) {
    return system.restype == RTSHORT && system.resval.rint == kSheetDisplay;
}

bool isDisplay(const resbuf& system) {
    return system.restype == RTSHORT && system.resval.rint == kDisplay;
}

}  // namespace

int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement,
              ads_point result) {
    Document* const document = Host::the().documents().current();
    if (document == nullptr || from == nullptr || to == nullptr) return RTERROR;
    std::optional<AcGeMatrix3d> source, target;
    if (isSheetDisplay(*from) || isSheetDisplay(*to)) {
        // The model's tab shows the model itself: the sheet's display is the view's.
        const bool bothDisplays = isSheetDisplay(*from) ? isDisplay(*to) : isDisplay(*from);
        if (!bothDisplays) return RTERROR;
        source = target = AcGeMatrix3d();
    } else {
        source = toWorld(*from, *document->database());
        target = toWorld(*to, *document->database());
    }
    if (!source || !target) return RTERROR;
    const AcGeMatrix3d matrix = target->inverse() * *source;
    AcGePoint3d moved(point[0], point[1], point[2]);
    if (displacement != 0) {
        moved = AcGePoint3d() + moved.asVector().transformBy(matrix);
    } else {
        moved = matrix * moved;
    }
    result[0] = moved.x;
    result[1] = moved.y;
    result[2] = moved.z;
    return RTNORM;
}

int acdbRegApp(const wchar_t* name) {
    AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr || name == nullptr) return RTERROR;
    return sg::model::registerApplication(*database, name) ? RTNORM : RTERROR;
}
