#include "platform/ge/point3d.h"

#include "platform/ge/matrix3d.h"

AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& matrix) {
    return *this = matrix * *this;
}
