#include "host/exchange/summary.h"

#include <algorithm>

#include "host/dxf/releases.h"
#include "host/model/core/block_contents.h"
#include "host/model/core/block_extents.h"
#include "host/model/core/database_state.h"
#include "host/model/core/file_origin.h"
#include "host/model/core/measuring_draw.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/layout.h"
#include "host/render/kept_graphics.h"

namespace sg::exchange {
namespace {

using model::ObjectAccess;
using model::peek;

class Surveyor {
  public:
    explicit Surveyor(const AcDbDatabase& database)
        : state_(model::DatabaseState::of(database)), roots_(state_.roots) {}

    Summary survey() {
        takeFile();
        takeLayers();
        takeBlocks();
        takeObjects();
        summary_.extents = model::extentsOfBlock(roots_.modelSpace);
        return std::move(summary_);
    }

  private:
    void takeFile() {
        const model::FileOrigin* const origin = state_.origin.get();
        const auto number = origin == nullptr ? AcDb::kDHL_CURRENT
                                              : static_cast<AcDb::AcDbDwgVersion>(origin->release);
        summary_.release = dxf::releaseOf(number).name;
        summary_.version = dxf::releaseOf(number).version;
        if (origin == nullptr) return;
        summary_.version = origin->version.empty() ? summary_.version : origin->version;
        summary_.codePage = origin->codePage;
        summary_.isBinary = origin->isBinary;
        summary_.isDwg = origin->dwg != nullptr;
        for (const auto& table : origin->tables) {
            if (!table.groups.empty()) summary_.unreadTables.push_back(table.name);
        }
        for (const auto& section : origin->sections) {
            if (!section.groups.empty()) summary_.unreadSections.push_back(section.name);
        }
    }

    void takeLayers() {
        for (const AcDbObjectId id : recordsOf(roots_.layerTable)) {
            const auto* const layer = peek<AcDbLayerTableRecord>(id);
            if (layer == nullptr || layer->isErased()) continue;
            layers_[id] = summary_.layers.size();
            summary_.layers.push_back(
                {layer->name(), 0, layer->isOff(), layer->isFrozen(), layer->isLocked()});
        }
    }

    void takeBlocks() {
        for (const AcDbObjectId id : recordsOf(roots_.blockTable)) {
            const auto* const block = peek<AcDbBlockTableRecord>(id);
            if (block == nullptr || block->isErased()) continue;
            size_t count = 0;
            for (const AcDbObjectId entityId : block->entityIds()) {
                const auto* const entity = peek<AcDbEntity>(entityId);
                if (entity == nullptr || entity->isErased()) continue;
                ++count;
                takeEntity(*entity);
            }
            const auto* const layout = peek<AcDbLayout>(block->getLayoutId());
            if (layout != nullptr) {
                summary_.layouts.push_back({layout->getLayoutName(), count});
            } else {
                summary_.blocks.push_back({block->name(), count});
            }
        }
    }

    void takeEntity(const AcDbEntity& entity) {
        const std::wstring name = model::dxfNameOf(entity);
        ++summary_.entities[name];
        const auto layer = layers_.find(entity.layerId());
        if (layer != layers_.end()) ++summary_.layers[layer->second].entities;
        if (model::proxyData(entity) == nullptr) return;
        ++summary_.unreadEntities[name];
        model::MeasuringDraw draw;
        const model::Unguarded guard(entity);
        if (!render::drawKeptGraphics(draw, entity)) ++summary_.invisibleEntities[name];
    }

    void takeObjects() {
        state_.forEach([&](const AcDbObject& object) {
            if (object.isErased() || AcDbEntity::cast(&object) != nullptr) return;
            if (model::proxyData(object) != nullptr) {
                ++summary_.unreadObjects[model::dxfNameOf(object)];
            }
        });
    }

    std::vector<AcDbObjectId> recordsOf(AcDbObjectId table) const {
        const auto* const opened = peek<AcDbSymbolTable>(table);
        return opened == nullptr ? std::vector<AcDbObjectId>() : ObjectAccess::records(*opened).ids;
    }

    model::DatabaseState& state_;
    const model::DatabaseRoots& roots_;
    Summary summary_;
    std::map<AcDbObjectId, size_t> layers_;
};

}  // namespace

Summary summaryOf(const AcDbDatabase& database) {
    return Surveyor(database).survey();
}

}  // namespace sg::exchange
