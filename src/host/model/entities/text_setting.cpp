#include "host/model/entities/text_setting.h"

#include <cmath>

#include "platform/db/database.h"

namespace sg::model {

AcGiTextStyle textStyleOf(AcDbObjectId style) {
    AcDbTextStyleTableRecord* record = nullptr;
    if (acdbOpenObject(record, style, AcDb::kForRead, true) != Acad::eOk) return {};
    AcGiTextStyle found = record->giTextStyle();
    record->close();
    return found;
}

AcDbObjectId currentTextStyle(const AcDbDatabase* database) {
    return database == nullptr ? AcDbObjectId() : database->textstyle();
}

AcGeVector3d Frame::direction() const {
    AcGeVector3d x = normal.perpVector();
    return rotation == 0 ? x : x.rotateBy(rotation, normal);
}

AcGeMatrix3d Frame::toWorld() const {
    AcGeMatrix3d matrix;
    const AcGeVector3d x = direction();
    return matrix.setCoordSystem(origin, x, normal.crossProduct(x), normal);
}

double rotationOf(const AcGeVector3d& direction, const AcGeVector3d& normal) {
    return normal.perpVector().angleTo(direction, normal);
}

bool moveFrame(const AcGeMatrix3d& transform, const Frame& from, MovedFrame& moved) {
    AcGeVector3d x = from.direction();
    AcGeVector3d y = from.up();
    x.transformBy(transform);
    y.transformBy(transform);
    const AcGeVector3d normal = x.crossProduct(y);
    if (normal.isZeroLength()) return false;
    const AcGeVector3d along = x.normal();
    const AcGeVector3d across = normal.normal().crossProduct(along);
    moved.frame.origin = transform * from.origin;
    moved.frame.normal = normal.normal();
    moved.frame.rotation = rotationOf(along, moved.frame.normal);
    moved.alongX = x.length();
    moved.acrossX = y.dotProduct(across);
    moved.slant = std::atan2(y.dotProduct(along), moved.acrossX);
    return true;
}

}  // namespace sg::model
