#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/render/linetype.h"
#include "platform/db/color.h"
#include "platform/db/database.h"

namespace sg::render {

// The properties that an entity has, or that it draws a part of itself with.
struct Properties {
    AcCmColor color;
    AcDbObjectId layer, linetype;
    double linetypeScale = 1;
    int lineWeight = -1;
    uint32_t transparency = 0;  // as drawing files keep it

    static Properties of(const AcDbEntity& entity);
};

// Properties that depend on nothing any more: what a block hands on to what is in it.
struct PlainProperties {
    AcCmColor color;  // an index or a true colour
    AcDbObjectId layer, linetype;
    int lineWeight = 25;  // hundredths of a millimetre
    uint8_t alpha = 255;
    bool isInBlock = false;  // whether what is on layer 0 takes the layer

    bool isFrozen = false;  // nothing shows, not even what is in the block
    bool isOff = false;     // what is on this layer does not show
};

// How a line or an area is drawn.
struct Look {
    uint32_t color = 0;  // 0xRRGGBB
    uint8_t alpha = 255;
    int lineWeight = 25;                       // hundredths of a millimetre
    std::shared_ptr<const Linetype> linetype;  // null: continuous
    double linetypeScale = 1;
    AcDbObjectId layer;
};

// Which layers show, besides what their records say.
struct LayerChoice {
    bool onlyPlottable = false;
    // Layers that are shown, by the whole of their names in lower case; `*` and `?` stand for
    // others. Empty: all.
    std::vector<std::wstring> names;
};

// Tells how things of a drawing look: by layer, by block, and on which ground. Remembers what it
// has looked up, so that the drawing's tables must not change meanwhile.
class SG_API Looks {
  public:
    Looks(const AcDbDatabase& database, uint32_t ground, LayerChoice choice);
    ~Looks();

    // What `properties` come to within a block that has `outer`; and with null for what stands in
    // no block.
    PlainProperties plain(const Properties& properties, const PlainProperties* outer);
    Look look(const PlainProperties& plain, double linetypeScale);

    const std::wstring& layerName(AcDbObjectId layer);
    // These layers are frozen besides, until the next call.
    void freezeAlso(std::unordered_set<AcDbObjectId> layers) { frozen_ = std::move(layers); }

  private:
    struct Layer;

    const Layer& layer(AcDbObjectId id);
    std::shared_ptr<const Linetype> linetype(AcDbObjectId id);
    bool isChosen(const std::wstring& name) const;

    const AcDbDatabase& database_;
    const uint32_t foreground_;  // of colour 7
    const LayerChoice choice_;
    const double globalScale_;
    const AcDbObjectId layerZero_, byLayer_, byBlock_;
    std::unordered_set<AcDbObjectId> frozen_;
    std::unordered_map<AcDbObjectId, Layer> layers_;
    std::unordered_map<AcDbObjectId, std::shared_ptr<const Linetype>> linetypes_;
};

}  // namespace sg::render
