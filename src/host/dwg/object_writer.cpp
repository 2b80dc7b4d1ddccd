#include "host/dwg/object_writer.h"

#include <algorithm>

#include "host/dwg/checksums.h"
#include "host/dwg/extended_data.h"
#include "host/dwg/object_types.h"
#include "host/dwg/origin.h"
#include "host/dwg/section_streams.h"
#include "host/model/core/block_ends.h"
#include "host/model/core/proxies.h"
#include "host/render/proxy_graphics.h"

namespace sg::dwg {

using model::ObjectAccess;

namespace {

constexpr uint32_t kObjectsMark = 0x0DCA;  // the objects' section begins with it

// What references in two bits say besides a handle.
enum : unsigned { kByLayer = 0, kByBlock = 1, kStandard = 2, kByHandle = 3 };

}  // namespace

ObjectWriter::ObjectWriter(const model::DatabaseState& state, WriteContext& context,
                           ClassList& classes)
    : state_(state), context_(context), classes_(classes), filer_(context, streams_) {
    if (release() < AcDb::kDHL_1018) return;
    for (unsigned i = 0; i < 4; ++i)
        objects_.push_back(static_cast<uint8_t>(kObjectsMark >> (8 * i)));
}

void ObjectWriter::begin(uint16_t type, uint64_t handle) {
    streams_.clear();
    BitWriter& data = streams_.data;
    if (release() >= AcDb::kDHL_1024) {
        data.objectType(type);
    } else {
        data.bitShort(static_cast<int16_t>(type));
        sizeAt_ = data.position();
        data.rawLong(0);
    }
    data.handle(0, handle);
}

bool ObjectWriter::write(const AcDbObject& object, Neighbours neighbours) {
    const uint64_t handle = context_.handleOf(object.objectId());
    const uint16_t type = classes_.typeOf(object);
    begin(type, handle);
    const model::Extras* const extras = ObjectAccess::extras(object);
    if (extras != nullptr) {
        writeExtendedData(streams_.data, context_, extras->extendedData);
    } else {
        streams_.data.bitShort(0);
    }
    writeCommon(object, neighbours);
    const model::Unguarded guard(object);
    filer_.resetFilerStatus();
    if (object.dwgOut(&filer_) != Acad::eOk) return false;
    finish(handle);
    return true;
}

void ObjectWriter::writeEmptyTable(uint16_t type, uint64_t handle) {
    begin(type, handle);
    BitWriter& data = streams_.data;
    data.bitShort(0);  // no extended data
    data.bitLong(0);   // no reactors
    if (release() >= AcDb::kDHL_1018) data.bit(true);
    if (release() >= AcDb::kDHL_1027) data.bit(false);
    streams_.handles.handle(kSoftPointer, 0);
    if (release() < AcDb::kDHL_1018) streams_.handles.handle(kHardOwner, 0);
    data.bitLong(0);  // no records
    finish(handle);
}

// ---- What all objects have ----------------------------------------------------------------------

// Of a proxy that is written as it is, its own; it needs none when its class is known to all.
std::string ObjectWriter::graphicsOf(const AcDbObject& object) const {
    const model::ProxyData* const data = model::proxyData(object);
    if (data == nullptr || !model::hasDwgForm(object, release())) {
        return render::graphicsForOthers(object);
    }
    if (data->bits == nullptr) return {};
    return {data->bits->graphics.begin(), data->bits->graphics.end()};
}

void ObjectWriter::writeGraphics(const AcDbObject& object) {
    BitWriter& data = streams_.data;
    const std::string graphics = graphicsOf(object);
    data.bit(!graphics.empty());
    if (graphics.empty()) return;
    if (release() >= AcDb::kDHL_1024) {
        data.bitLongLong(graphics.size());
    } else {
        data.rawLong(static_cast<uint32_t>(graphics.size()));
    }
    data.rawBytes(graphics.data(), graphics.size());
}

unsigned ObjectWriter::ownerMode(const AcDbEntity& entity) const {
    const bool isEnd =
        AcDbBlockBegin::cast(&entity) != nullptr || AcDbBlockEnd::cast(&entity) != nullptr;
    if (entity.ownerId() == state_.roots.modelSpace && !isEnd) return 2;
    return entity.ownerId() == state_.roots.paperSpace && !isEnd ? 1 : 0;
}

void ObjectWriter::writeCommon(const AcDbObject& object, Neighbours neighbours) {
    BitWriter& data = streams_.data;
    const auto* const entity = AcDbEntity::cast(&object);
    const AcDbObjectIdArray& reactors = object.persistentReactors();
    if (entity != nullptr) writeGraphics(object);
    const unsigned mode = entity == nullptr ? 0 : ownerMode(*entity);
    if (entity != nullptr) data.bit2(mode);
    const auto isWritten = [&](AcDbObjectId id) { return context_.handleOf(id) != 0; };
    const auto count = std::count_if(reactors.begin(), reactors.end(), isWritten);
    data.bitLong(static_cast<int32_t>(count));
    const uint64_t dictionary = context_.handleOf(object.extensionDictionary());
    const uint64_t own = context_.handleOf(object.objectId());
    const bool hasLinks = neighbours.before + 1 != own || neighbours.behind != own + 1;
    const bool isOld = release() < AcDb::kDHL_1018;
    if (!isOld) {
        data.bit(dictionary == 0);
    } else if (entity != nullptr) {
        data.bit(!hasLinks);
    }
    if (release() >= AcDb::kDHL_1027) {
        const auto* const origin = state_.origin.get();
        data.bit(origin != nullptr && origin->dwg != nullptr &&
                 origin->dwg->withStoredData.contains(own));
    }
    model::EntityData common;
    if (entity != nullptr) common = ObjectAccess::entityData(*entity);
    if (entity != nullptr) writeEntityData(common);
    if (mode == 0) pointer(kSoftPointer, object.ownerId());
    for (const AcDbObjectId reactor : reactors) {
        if (isWritten(reactor)) pointer(kSoftPointer, reactor);
    }
    if (isOld || dictionary != 0) streams_.handles.handle(kHardOwner, dictionary);
    if (entity != nullptr) writeEntityHandles(common, isOld && hasLinks, neighbours);
}

void ObjectWriter::writeColor(const model::EntityData& entity) {
    BitWriter& data = streams_.data;
    const AcCmColor& color = entity.color;
    if (release() < AcDb::kDHL_1018) {
        return data.bitShort(static_cast<int16_t>(color.colorIndex()));
    }
    constexpr unsigned kHasTransparency = 0x2000, kHasValue = 0x8000;
    unsigned word = color.isByColor() ? kHasValue : color.colorIndex();
    if (entity.transparency != 0) word |= kHasTransparency;
    data.bitShort(static_cast<int16_t>(word));
    if (color.isByColor()) {
        constexpr uint32_t kMethod = static_cast<uint32_t>(AcCmColor::kByColor) << 24;
        data.bitLong(static_cast<int32_t>(kMethod | color.rgb()));
    }
    if (entity.transparency != 0) data.bitLong(static_cast<int32_t>(entity.transparency));
}

unsigned ObjectWriter::linetypeFlag(const model::EntityData& entity) const {
    const model::DatabaseRoots& roots = state_.roots;
    if (entity.linetype.isNull() || entity.linetype == roots.byLayerLinetype) return kByLayer;
    if (entity.linetype == roots.byBlockLinetype) return kByBlock;
    if (entity.linetype == roots.continuousLinetype) return kStandard;
    return context_.handleOf(entity.linetype) == 0 ? kByLayer : kByHandle;
}

void ObjectWriter::writeEntityData(const model::EntityData& entity) {
    BitWriter& data = streams_.data;
    writeColor(entity);
    data.bitDouble(entity.linetypeScale);
    data.bit2(linetypeFlag(entity));
    data.bit2(static_cast<unsigned>(entity.plotStyleType));
    if (release() >= AcDb::kDHL_1021) {
        data.bit2(context_.handleOf(entity.material) == 0 ? kByLayer : kByHandle);
        data.rawChar(0);  // casts and receives shadows
    }
    if (release() >= AcDb::kDHL_1024) data.bits(0, 3);  // no visual styles
    data.bitShort(entity.visibility == AcDb::kInvisible ? 1 : 0);
    data.rawChar(model::lineWeightCode(entity.lineWeight));
}

void ObjectWriter::writeEntityHandles(const model::EntityData& entity, bool hasLinks,
                                      Neighbours neighbours) {
    if (hasLinks) {
        streams_.handles.handle(kSoftPointer, neighbours.before);
        streams_.handles.handle(kSoftPointer, neighbours.behind);
    }
    const AcDbObjectId layer =
        context_.handleOf(entity.layer) == 0 ? state_.roots.layerZero : entity.layer;
    pointer(kHardPointer, layer);
    if (linetypeFlag(entity) == kByHandle) pointer(kHardPointer, entity.linetype);
    if (release() >= AcDb::kDHL_1021 && context_.handleOf(entity.material) != 0) {
        pointer(kHardPointer, entity.material);
    }
    if (entity.plotStyleType == AcDb::kPlotStyleNameById) pointer(kHardPointer, entity.plotStyle);
}

// ---- Objects ------------------------------------------------------------------------------------

void ObjectWriter::finish(uint64_t handle) {
    BitWriter& data = streams_.data;
    if (isSplit()) appendTexts(data, streams_.texts);
    const size_t dataBits = data.position();
    if (release() < AcDb::kDHL_1024) {
        data.patchLongAt(sizeAt_, static_cast<uint32_t>(dataBits));
    }
    const size_t handleBits = streams_.handles.position();
    data.bitsOf(streams_.handles.bytes(), handleBits);
    const Bytes& body = data.bytes();
    whole_.clear();
    whole_.modularShort(static_cast<uint32_t>(body.size()));
    if (release() >= AcDb::kDHL_1024) whole_.unsignedModularChar(body.size() * 8 - dataBits);
    whole_.rawBytes(body.data(), body.size());
    whole_.rawShort(crc16(kSectionSeed, whole_.bytes()));
    places_.push_back({handle, objects_.size()});
    objects_.insert(objects_.end(), whole_.bytes().begin(), whole_.bytes().end());
}

std::vector<ObjectPlace> ObjectWriter::places() {
    std::sort(places_.begin(), places_.end(),
              [](const ObjectPlace& a, const ObjectPlace& b) { return a.handle < b.handle; });
    return std::move(places_);
}

}  // namespace sg::dwg
