#include <cwchar>
#include <memory>
#include <string>

#include "base/text.h"
#include "bridge/call_guard.h"
#include "bridge/marshal_readers.h"
#include "database/db_info.h"
#include "drawing/call_arguments.h"
#include "drawing/current_drawing.h"
#include "platform/ap/documents.h"
#include "platform/db/database.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "standards/lisp_functions.h"
#include "standards/records.h"

namespace sg {
namespace {

// A layer that the drawing has keeps what its user did to it, but for the lock. It can be used even
// where it can't be unlocked.
void unlockLayer(AcDbObjectId id) {
    const Opened<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
    if (layer) layer->setIsLocked(false);
}

void setColor(AcDbLayerTableRecord& layer, const LayerRecord& row) {
    int16_t index = 0;
    if (!row.iColor.get(index)) return;
    AcCmColor color;
    if (color.setColorIndex(static_cast<uint16_t>(index))) layer.setColor(color);
}

// Continuous is what a new layer has; so is what the drawing does not know.
void setLinetype(AcDbLayerTableRecord& layer, const LayerRecord& row, AcDbDatabase& database) {
    const std::wstring name = upperCased(row.sLinetype.get());
    if (name == L"CONTINUOUS") return;
    const Opened<AcDbLinetypeTable> linetypes(database.linetypeTableId(), AcDb::kForRead);
    AcDbObjectId id;
    if (linetypes && linetypes->getAt(name.c_str(), id) == Acad::eOk) {
        layer.setLinetypeObjectId(id);
    }
}

void setLineWeight(AcDbLayerTableRecord& layer, const LayerRecord& row) {
    std::wstring weight;
    if (!row.sLineweight.get(weight) || weight.empty()) return;
    const long hundredths = std::wcstol(weight.c_str(), nullptr, 10);
    if (hundredths < AcDb::kLnWtByLwDefault || hundredths > AcDb::kLnWt211) return;
    layer.setLineWeight(static_cast<AcDb::LineWeight>(hundredths));
}

std::unique_ptr<AcDbLayerTableRecord> newLayer(const LayerRecord& row, AcDbDatabase& database) {
    auto layer = std::make_unique<AcDbLayerTableRecord>();
    setColor(*layer, row);
    layer->setName(row.sName.get().c_str());
    layer->setIsPlottable(row.bPlot.get());
    setLinetype(*layer, row, database);
    setLineWeight(*layer, row);
    return layer;
}

// Plot style names are those of a database, so that the layer has to be in it first.
bool addLayer(AcDbLayerTable& layers, std::unique_ptr<AcDbLayerTableRecord> layer,
              const LayerRecord& row) {
    if (layers.upgradeOpen() != Acad::eOk) return false;
    AcDbObjectId id;
    const bool added = layers.add(id, layer.get()) == Acad::eOk;
    if (added) {
        std::wstring plotStyle;
        if (row.sPlotstyle.get(plotStyle)) layer->setPlotStyleName(plotStyle.c_str());
        layer.release()->close();
    }
    layers.downgradeOpen();
    return added;
}

// The layer as the standards describe it; false when they don't.
bool makeLayer(const std::wstring& name, AcDbLayerTable& layers, AcDbDatabase& database) {
    LayerRecord row(false, currentConnection());
    if (!row.seekKey(name)) return false;
    std::unique_ptr<AcDbLayerTableRecord> layer = newLayer(row, database);
    AcApDocument* const document =
        acDocManagerPtr()->document(acdbHostApplicationServices()->workingDatabase());
    acDocManagerPtr()->lockDocument(document, AcAp::kWrite, nullptr, nullptr, true);
    const bool added = addLayer(layers, std::move(layer), row);
    acDocManagerPtr()->unlockDocument(document);
    return added;
}

bool hasOrMakesLayer(const std::wstring& name) {
    AcDbDatabase* const database = currentDatabase();
    if (database == nullptr) return false;
    const Opened<AcDbLayerTable> layers(database->layerTableId(), AcDb::kForRead);
    if (!layers) return false;
    AcDbObjectId id;
    if (layers->getAt(name.c_str(), id, false) != Acad::eOk) {
        return makeLayer(name, *layers, *database);
    }
    unlockLayer(id);
    return true;
}

}  // namespace

int createLayer() {
    CallArguments arguments;
    std::wstring name;
    if (!nextString(arguments.next, name)) return kLispWrongType;
    if (hasOrMakesLayer(name)) acedRetT();
    return kLispOk;
}

}  // namespace sg
