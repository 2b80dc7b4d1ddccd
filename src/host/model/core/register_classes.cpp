#include "host/model/core/register_classes.h"

#include "host/model/core/block_ends.h"
#include "host/model/core/proxies.h"
#include "host/model/curves/register_classes.h"
#include "host/model/entities/register_classes.h"
#include "host/model/tables/register_classes.h"
#include "platform/db/block_table.h"
#include "platform/rx/rxclass.h"

namespace sg::model {

void registerCoreClasses() {
    AcGiDrawable::rxInit();
    AcDbObject::rxInit();
    AcDbEntity::rxInit();
    AcDbSymbolTable::rxInit();
    AcDbSymbolTableRecord::rxInit();
    AcDbBlockTable::rxInit();
    AcDbBlockTableRecord::rxInit();
    AcDbBlockBegin::rxInit();
    AcDbBlockEnd::rxInit();
    AcDbProxyObject::rxInit();
    AcDbProxyEntity::rxInit();
}

void registerDatabaseClasses() {
    registerCoreClasses();
    registerTableClasses();
    registerCurveClasses();
    registerEntityClasses();
    acrxBuildClassHierarchy();
}

}  // namespace sg::model
