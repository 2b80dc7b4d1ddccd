#include "host/render/looks.h"

#include <algorithm>

#include "base/text.h"
#include "host/lisp/text/wildcard.h"
#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/tables/header_variables.h"

namespace sg::render {
namespace {

constexpr uint32_t kTransparencyByBlock = 0x01000000;
constexpr uint32_t kTransparencyIsAlpha = 0x02000000;
constexpr int kByLayer = -1;
constexpr int kByBlock = -2;
constexpr int kDefaultWeight = 25;
constexpr uint16_t kForeground = 7;

uint8_t alphaOf(uint32_t transparency) {
    return (transparency & kTransparencyIsAlpha) != 0 ? static_cast<uint8_t>(transparency) : 255;
}

AcCmColor indexed(uint16_t index) {
    AcCmColor color;
    color.setColorIndex(index);
    return color;
}

bool isDark(uint32_t color) {
    const uint32_t red = color >> 16 & 0xFF;
    const uint32_t green = color >> 8 & 0xFF;
    const uint32_t blue = color & 0xFF;
    return red * 3 + green * 6 + blue < 5 * 256;
}

}  // namespace

// What a layer's record says.
struct Looks::Layer {
    std::wstring name;
    AcCmColor color = indexed(kForeground);
    AcDbObjectId linetype;
    int lineWeight = kDefaultWeight;
    uint8_t alpha = 255;
    bool isFrozen = false;
    bool isOff = false;
};

Properties Properties::of(const AcDbEntity& entity) {
    return {entity.color(),         entity.layerId(),    entity.linetypeId(),
            entity.linetypeScale(), entity.lineWeight(), entity.transparency()};
}

Looks::Looks(const AcDbDatabase& database, uint32_t ground, LayerChoice choice)
    : database_(database),
      foreground_(isDark(ground) ? 0xFFFFFF : 0x000000),
      choice_(std::move(choice)),
      globalScale_(model::DatabaseState::of(database).header().get<double>(L"LTSCALE")),
      layerZero_(database.layerZero()),
      byLayer_(database.byLayerLinetype()),
      byBlock_(database.byBlockLinetype()) {}

Looks::~Looks() = default;

bool Looks::isChosen(const std::wstring& name) const {
    if (choice_.names.empty()) return true;
    const std::wstring folded = lowerCased(name);
    return std::any_of(choice_.names.begin(), choice_.names.end(), [&](const std::wstring& one) {
        return one == folded || wildcardMatch(folded, one);
    });
}

const Looks::Layer& Looks::layer(AcDbObjectId id) {
    const auto [place, isNew] = layers_.try_emplace(id);
    Layer& layer = place->second;
    if (!isNew) return layer;
    const auto* const record = model::peek<AcDbLayerTableRecord>(id);
    if (record == nullptr) return layer;
    layer.name = record->name();
    if (!record->color().isByLayer() && !record->color().isByBlock()) {
        layer.color = record->color();
    }
    layer.linetype = record->linetypeObjectId();
    if (record->lineWeight() >= 0) layer.lineWeight = record->lineWeight();
    layer.alpha = alphaOf(record->transparency());
    layer.isFrozen = record->isFrozen();
    layer.isOff = record->isOff() || !isChosen(layer.name) ||
                  (choice_.onlyPlottable && !record->isPlottable());
    return layer;
}

const std::wstring& Looks::layerName(AcDbObjectId id) {
    return layer(id).name;
}

std::shared_ptr<const Linetype> Looks::linetype(AcDbObjectId id) {
    const auto [place, isNew] = linetypes_.try_emplace(id);
    if (!isNew) return place->second;
    const auto* const record = model::peek<AcDbLinetypeTableRecord>(id);
    if (record == nullptr) return nullptr;
    auto linetype = std::make_shared<const Linetype>(linetypeOf(*record));
    if (linetype->isBroken()) place->second = std::move(linetype);
    return place->second;
}

PlainProperties Looks::plain(const Properties& own, const PlainProperties* outer) {
    PlainProperties plain;
    plain.isInBlock = true;
    plain.layer = own.layer.isNull() ? layerZero_ : own.layer;
    if (outer != nullptr && outer->isInBlock && plain.layer == layerZero_) {
        plain.layer = outer->layer;
    }
    const Layer& layer = this->layer(plain.layer);
    plain.isFrozen = layer.isFrozen || frozen_.contains(plain.layer);
    plain.isOff = layer.isOff;

    const bool hasOuter = outer != nullptr && outer->isInBlock;
    plain.color = own.color.isByLayer()   ? layer.color
                  : own.color.isByBlock() ? (hasOuter ? outer->color : indexed(kForeground))
                                          : own.color;
    plain.linetype = own.linetype.isNull() || own.linetype == byLayer_ ? layer.linetype
                     : own.linetype == byBlock_ ? (hasOuter ? outer->linetype : AcDbObjectId())
                                                : own.linetype;
    plain.lineWeight = own.lineWeight >= 0                      ? own.lineWeight
                       : own.lineWeight == kByLayer             ? layer.lineWeight
                       : own.lineWeight == kByBlock && hasOuter ? outer->lineWeight
                                                                : kDefaultWeight;
    plain.alpha = own.transparency == 0                      ? layer.alpha
                  : own.transparency != kTransparencyByBlock ? alphaOf(own.transparency)
                  : hasOuter                                 ? outer->alpha
                                                             : 255;
    return plain;
}

Look Looks::look(const PlainProperties& plain, double linetypeScale) {
    Look look;
    const bool isForeground = plain.color.isByACI() && plain.color.colorIndex() == kForeground;
    look.color = isForeground ? foreground_ : plain.color.rgb();
    look.alpha = plain.alpha;
    look.lineWeight = plain.lineWeight;
    look.linetype = linetype(plain.linetype);
    look.linetypeScale = linetypeScale * globalScale_;
    look.layer = plain.layer;
    return look;
}

}  // namespace sg::render
