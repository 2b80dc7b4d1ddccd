#include "host/model/tables/register_classes.h"

#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/layout.h"
#include "host/model/tables/reg_app_table.h"
#include "host/model/tables/styles.h"
#include "host/model/tables/view_tables.h"
#include "host/model/tables/xrecord.h"
#include "platform/db/group.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/db/sortents.h"
#include "platform/db/text_style_table.h"

namespace sg::model {
namespace {

template <class... Classes>
void registerAll() {
    (Classes::rxInit(), ...);
}

}  // namespace

void registerTableClasses() {
    registerAll<AcDbFieldsTableRecord, AcDbLayerTableRecord, AcDbLinetypeTableRecord,
                AcDbTextStyleTableRecord, AcDbDimStyleTableRecord, AcDbViewTableRecord,
                AcDbViewportTableRecord, AcDbUCSTableRecord, AcDbRegAppTableRecord>();
    registerAll<AcDbLayerTable, AcDbLinetypeTable, AcDbTextStyleTable, AcDbDimStyleTable,
                AcDbViewTable, AcDbViewportTable, AcDbUCSTable, AcDbRegAppTable>();
    registerAll<AcDbDictionary, AcDbDictionaryWithDefault, AcDbDictionaryVar, AcDbPlaceHolder,
                AcDbXrecord, AcDbGroup, AcDbPlotSettings, AcDbLayout, AcDbMlineStyle,
                AcDbSortentsTable>();
}

}  // namespace sg::model
