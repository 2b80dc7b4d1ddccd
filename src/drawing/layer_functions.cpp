#include <string>

#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "drawing/lisp_functions.h"
#include "platform/db/database.h"
#include "platform/db/viewport.h"

namespace sg {
namespace {

Opened<AcDbLayerTable> openLayerTable() {
    AcDbDatabase* const database = currentDatabase();
    return {database == nullptr ? AcDbObjectId() : database->layerTableId(), AcDb::kForRead};
}

// The ids of the layers that a list names, unknown names left out. False when there is no list, or
// something in it is no name.
bool nextLayerList(const resbuf*& position, const AcDbLayerTable& layers, AcDbObjectIdArray& ids) {
    if (!nextListBegin(position)) return false;
    while (!nextListEnd(position)) {
        std::wstring name;
        AcDbObjectId id;
        if (!nextString(position, name)) return false;
        if (layers.getAt(name.c_str(), id, false) == Acad::eOk) ids.append(id);
    }
    return true;
}

}  // namespace

int setTrueColor() {
    CallArguments arguments;
    AcDbObjectId id;
    int32_t red = 0, green = 0, blue = 0;
    if (!nextObjectId(arguments.next, id) || !nextInt(arguments.next, red) ||
        !nextInt(arguments.next, green) || !nextInt(arguments.next, blue)) {
        return kLispWrongType;
    }
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) return kLispOk;
    AcCmColor color;
    color.setRGB(static_cast<uint8_t>(red), static_cast<uint8_t>(green),
                 static_cast<uint8_t>(blue));
    entity->setColor(color, true);
    return kLispOk;
}

int setPlotStyle() {
    CallArguments arguments;
    std::wstring layer;
    std::wstring style;
    if (!nextString(arguments.next, layer) || !nextString(arguments.next, style)) {
        return kLispWrongType;
    }
    const Opened<AcDbLayerTable> layers = openLayerTable();
    if (!layers) return kLispWrongType;
    AcDbObjectId id;
    if (layers->getAt(layer.c_str(), id) != Acad::eOk) return kLispOk;
    const Opened<AcDbLayerTableRecord> record(id, AcDb::kForWrite);
    if (record) record->setPlotStyleName(style.c_str());
    return kLispOk;
}

int freezeInViewport() {
    CallArguments arguments;
    AcDbObjectId id;
    bool freeze = false;
    if (!nextObjectId(arguments.next, id) || !nextBool(arguments.next, freeze)) {
        return kLispWrongType;
    }
    AcDbObjectIdArray ids;
    {
        const Opened<AcDbLayerTable> layers = openLayerTable();
        if (!layers) return kLispOk;
        if (!nextLayerList(arguments.next, *layers, ids)) return kLispWrongType;
    }
    const Opened<AcDbViewport> viewport(id, AcDb::kForWrite);
    if (!viewport) return kLispOk;
    if (freeze) {
        viewport->freezeLayersInViewport(ids);
    } else {
        viewport->thawLayersInViewport(ids);
    }
    return kLispOk;
}

}  // namespace sg
