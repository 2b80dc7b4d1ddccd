#include "host/dwg/object_reader.h"

#include "host/dwg/checksums.h"
#include "host/dwg/extended_data.h"
#include "host/dwg/section_streams.h"
#include "host/model/core/proxies.h"
#include "platform/rx/rxdictionary.h"

namespace sg::dwg {

using model::ObjectAccess;

namespace {

const AcRxClass* classNamed(const wchar_t* name) {
    return static_cast<const AcRxClass*>(acrxClassDictionary()->at(name));
}

std::wstring hexadecimal(uint64_t handle) {
    return AcDbHandle(handle).text();
}

// What references in two bits say of a linetype, plot style or material besides a handle.
enum : unsigned { kByLayer = 0, kByBlock = 1, kStandard = 2, kByHandle = 3 };

}  // namespace

ObjectReader::ObjectReader(Reading& reading)
    : reading_(reading),
      objects_(reading.content.find(section::kObjects)),
      filer_(reading.context) {
    for (const ObjectType& type : objectTypes()) {
        if (known_.size() <= type.number) known_.resize(type.number + 1u);
        const bool isProxy = type.number == kProxyEntity || type.number == kProxyObject;
        if (!isProxy) known_[type.number] = classNamed(type.className);
    }
    for (const ClassEntry& entry : reading.classes)
        classes_.emplace(entry.number, &entry);
}

// ---- Heads --------------------------------------------------------------------------------------

namespace {

// The size of an object and, from release 2010 on, of its handles in bits; false at the end.
bool readSizes(BitReader& reader, AcDb::AcDbDwgVersion release, size_t& size, size_t& handleBits) {
    size = reader.modularShort();
    handleBits = release >= AcDb::kDHL_1024 ? reader.unsignedModularChar() : 0;
    return !reader.hasFailed() && size != 0 && size <= reader.left() / 8;
}

uint16_t readType(BitReader& reader, AcDb::AcDbDwgVersion release) {
    return release >= AcDb::kDHL_1024 ? reader.objectType()
                                      : static_cast<uint16_t>(reader.bitShort());
}

}  // namespace

uint16_t ObjectReader::typeAt(const ObjectPlace& place) const {
    if (place.address >= objects_.size()) return 0;
    BitReader reader(objects_, place.address * 8, objects_.size() * 8);
    size_t size = 0;
    size_t handleBits = 0;
    if (!readSizes(reader, release(), size, handleBits)) return 0;
    return readType(reader, release());
}

std::wstring ObjectReader::nameOf(const Head& head) const {
    const std::wstring handle = L"object " + hexadecimal(head.handle);
    return head.dxfName.empty() ? handle : handle + L" (" + head.dxfName + L")";
}

// Sets the streams to the object. False, with a warning, when there is none.
bool ObjectReader::open(const ObjectPlace& place, Head& head) {
    head.handle = place.handle;
    own_ = place.handle;
    size_t size = 0;
    size_t handleBits = 0;
    if (place.address < objects_.size()) {
        BitReader reader(objects_, place.address * 8, objects_.size() * 8);
        if (readSizes(reader, release(), size, handleBits)) {
            return openBody(objects_.subspan(place.address), reader.position() / 8 - place.address,
                            size, handleBits, head);
        }
    }
    reading_.warn(nameOf(head) + L" is not where the map of objects says; it is left out");
    return false;
}

bool ObjectReader::openBody(ByteSpan whole, size_t start, size_t size, size_t handleBits,
                            Head& head) {
    const size_t end = start + size;
    // Objects don't overlap, so that all together are no longer than what they lie in.
    taken_ += size;
    if (taken_ > objects_.size()) {
        reading_.warn(nameOf(head) + L" overlaps others and is left out");
        return false;
    }
    if (end + 2 <= whole.size() && crc16(kSectionSeed, whole.first(end)) != shortAt(whole, end)) {
        reading_.warn(L"the check number of " + nameOf(head) + L" is wrong");
    }
    const ByteSpan body = whole.subspan(start, size);
    streams_ = {};
    streams_.data = BitReader(body);
    head.type = readType(streams_.data, release());
    size_t dataBits = size * 8;
    if (release() >= AcDb::kDHL_1024) {
        dataBits -= std::min(handleBits, dataBits);
    } else if (release() >= AcDb::kDHL_1015) {
        dataBits = std::min<size_t>(streams_.data.rawLong(), dataBits);
    }
    if (release() >= AcDb::kDHL_1015) {
        streams_.handles = BitReader(body, dataBits, size * 8);
        const size_t at = streams_.data.position();
        streams_.data = BitReader(body, std::min(at, dataBits), dataBits);
    }
    if (release() >= AcDb::kDHL_1021) takeTexts(streams_, dataBits);
    const FileHandle own = streams_.data.handle();
    if (streams_.data.hasFailed() || own.value != head.handle) {
        reading_.warn(nameOf(head) + L" has another handle than in the map of objects");
        if (streams_.data.hasFailed()) return false;
    }
    return classify(head);
}

bool ObjectReader::classify(Head& head) {
    if (const ObjectType* const type = objectType(head.type)) {
        head.dxfName = type->dxfName;
        head.className = type->className;
        head.isEntity = type->isEntity;
        head.descriptor = known_[head.type];
        head.proxyFlags = 0x3FF & ~model::kProxyTransformAllowed;
    } else if (const auto entry = classes_.find(head.type); entry != classes_.end()) {
        setClass(head, *entry->second);
    } else {
        reading_.warn(nameOf(head) + L" is of type " + std::to_wstring(head.type) +
                      L", which is no class of the file; it is left out");
        return false;
    }
    const AcRxClass* const base = head.isEntity ? AcDbEntity::desc() : AcDbObject::desc();
    if (head.descriptor != nullptr && !head.descriptor->isDerivedFrom(base)) {
        head.descriptor = nullptr;
    }
    return true;
}

void ObjectReader::setClass(Head& head, const ClassEntry& entry) const {
    head.dxfName = entry.dxfName;
    head.className = entry.className;
    head.applicationName = entry.applicationName;
    head.proxyFlags = entry.proxyFlags;
    head.isEntity = entry.kind == kEntityClass;
    head.descriptor = classNamed(entry.className.c_str());
}

// ---- What all objects have ----------------------------------------------------------------------

// What the data say of the handles that stand in their own stream.
struct ObjectReader::Flags {
    unsigned mode = 0;  // how the owner is told
    unsigned linetype = kByLayer, plotStyle = kByLayer, material = kByLayer;
    bool hasColorHandle = false;
    uint8_t shadow = 0;
    int visualStyles = 0;
    size_t reactors = 0;
    bool hasDictionary = true;
};

void ObjectReader::readCommon(const Head& head, Common& common) {
    BitReader& data = streams_.data;
    if (!readExtendedData(data, reading_.context, common.data)) {
        reading_.warn(nameOf(head) + L" has extended data that cannot be read");
    }
    if (head.isEntity) readGraphics(common);
    if (release() < AcDb::kDHL_1015) {
        const size_t end = std::min<size_t>(data.rawLong(), data.end());
        streams_.handles = BitReader(data.bytes(), end, data.end());
        data = BitReader(data.bytes(), std::min(data.position(), end), end);
    }
    Flags flags;
    if (head.isEntity) flags.mode = data.bit2();
    flags.reactors = static_cast<uint32_t>(data.bitLong());
    if (head.isEntity && release() < AcDb::kDHL_1015) {
        flags.linetype = data.bit() ? kByLayer : kByHandle;
    }
    if (release() >= AcDb::kDHL_1018) {
        flags.hasDictionary = !data.bit();
    } else if (head.isEntity) {
        common.hasLinks = !data.bit();
    }
    if (release() >= AcDb::kDHL_1027 && data.bit()) {
        reading_.own->withStoredData.insert(head.handle);
    }
    if (head.isEntity) readEntityData(common, flags);
    if (!head.isEntity || flags.mode == 0) {
        common.owner = pointer();
    } else {
        const model::DatabaseRoots& roots = reading_.state.roots;
        common.owner = flags.mode == 1 ? roots.paperSpace : roots.modelSpace;
    }
    readOwnership(head.handle, flags.reactors, flags.hasDictionary, common);
    if (head.isEntity) readEntityHandles(common, flags);
}

void ObjectReader::readGraphics(Common& common) {
    BitReader& data = streams_.data;
    if (!data.bit()) return;
    const uint64_t size = release() >= AcDb::kDHL_1024 ? data.bitLongLong() : data.rawLong();
    if (size > data.left() / 8) return data.skip(data.left() + 1);
    common.graphics.resize(size);
    data.rawBytes(common.graphics.data(), size);
}

void ObjectReader::readColor(Common& common, Flags& flags) {
    BitReader& data = streams_.data;
    const auto word = static_cast<uint16_t>(data.bitShort());
    model::EntityData& entity = common.entity;
    if (release() < AcDb::kDHL_1018) {
        entity.color.setColorIndex(word);
        return;
    }
    constexpr uint16_t kHasTransparency = 0x2000, kHasHandle = 0x4000, kHasValue = 0x8000;
    constexpr uint16_t kIndex = 0x1FF;
    flags.hasColorHandle = (word & kHasHandle) != 0;
    if (!flags.hasColorHandle && (word & kHasValue) != 0) {
        const auto value = static_cast<uint32_t>(data.bitLong());
        entity.color.setRGB(static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8),
                            static_cast<uint8_t>(value));
    } else {
        entity.color.setColorIndex(word & kIndex);
    }
    if ((word & kHasTransparency) != 0) {
        entity.transparency = static_cast<uint32_t>(data.bitLong());
    }
}

void ObjectReader::readEntityData(Common& common, Flags& flags) {
    BitReader& data = streams_.data;
    model::EntityData& entity = common.entity;
    readColor(common, flags);
    entity.linetypeScale = data.bitDouble();
    if (release() >= AcDb::kDHL_1015) {
        flags.linetype = data.bit2();
        flags.plotStyle = data.bit2();
    }
    if (release() >= AcDb::kDHL_1021) {
        flags.material = data.bit2();
        flags.shadow = data.rawChar();
    }
    if (release() >= AcDb::kDHL_1024) {
        for (int i = 0; i < 3; ++i)
            flags.visualStyles += data.bit() ? 1 : 0;
    }
    if ((data.bitShort() & 1) != 0) entity.visibility = AcDb::kInvisible;
    if (release() >= AcDb::kDHL_1015) {
        entity.lineWeight = model::lineWeightOf(data.rawChar());
    }
}

void ObjectReader::readOwnership(uint64_t own, size_t reactors, bool hasDictionary,
                                 Common& common) {
    BitReader& handles = streams_.handles;
    if (reactors > handles.left() / 8) return handles.skip(handles.left() + 1);
    for (; reactors > 0; --reactors) {
        const AcDbObjectId reactor = reading_.context.refer(handles.handle(), own);
        if (!reactor.isNull()) common.reactors.append(reactor);
    }
    if (hasDictionary) common.dictionary = pointer();
}

void ObjectReader::readEntityHandles(Common& common, const Flags& flags) {
    model::EntityData& entity = common.entity;
    const model::DatabaseRoots& roots = reading_.state.roots;
    if (flags.hasColorHandle) pointer();
    const bool isOld = release() < AcDb::kDHL_1015;
    if (isOld) {
        entity.layer = pointer();
        if (flags.linetype == kByHandle) entity.linetype = pointer();
    }
    if (release() < AcDb::kDHL_1018 && common.hasLinks) {
        common.before = streams_.handles.handle().resolved(own_);
        common.behind = streams_.handles.handle().resolved(own_);
    }
    if (isOld) return;
    entity.layer = pointer();
    if (flags.linetype == kByHandle) entity.linetype = pointer();
    if (flags.linetype == kByBlock) entity.linetype = roots.byBlockLinetype;
    if (flags.linetype == kStandard) entity.linetype = roots.continuousLinetype;
    if (flags.material == kByHandle) entity.material = pointer();
    if (flags.shadow == kByHandle) pointer();
    entity.plotStyleType = static_cast<AcDb::PlotStyleNameType>(flags.plotStyle);
    if (flags.plotStyle == kByHandle) entity.plotStyle = pointer();
    for (int i = 0; i < flags.visualStyles; ++i)
        pointer();
}

// ---- Objects ------------------------------------------------------------------------------------

void ObjectReader::attach(AcDbObject& object, Common& common) {
    ObjectAccess::setOwner(object, common.owner);
    if (auto* const entity = AcDbEntity::cast(&object)) {
        ObjectAccess::setEntityData(*entity, common.entity);
    }
    const bool hasExtras =
        !common.data.empty() || !common.dictionary.isNull() || !common.reactors.isEmpty();
    if (!hasExtras) return;
    model::Extras& extras = ObjectAccess::needExtras(object);
    extras.extendedData = common.data;
    extras.extensionDictionary = common.dictionary;
    extras.reactors = common.reactors;
}

std::unique_ptr<AcDbObject> ObjectReader::makeProxy(const Head& head, Common& common) {
    std::unique_ptr<AcDbObject> object;
    if (head.isEntity) {
        object = std::make_unique<AcDbProxyEntity>();
    } else {
        object = std::make_unique<AcDbProxyObject>();
    }
    auto& data = const_cast<model::ProxyData&>(*model::proxyData(*object));
    data.dxfName = head.dxfName;
    data.className = head.className;
    data.applicationName = head.applicationName;
    data.flags = head.proxyFlags;
    attach(*object, common);
    filer_.begin(streams_, head.handle);
    filer_.setGraphics(std::move(common.graphics));
    const bool isWrapped = data.isWrapped();
    object->dwgIn(&filer_);
    if (isWrapped && !data.isWrapped()) reading_.hasWrapped = true;
    return object;
}

std::unique_ptr<AcDbObject> ObjectReader::make(const Head& head, Common& common) {
    AcRxObject* const made = head.descriptor == nullptr ? nullptr : head.descriptor->create();
    std::unique_ptr<AcDbObject> object(AcDbObject::cast(made));
    if (object == nullptr) return makeProxy(head, common);
    attach(*object, common);
    filer_.begin(streams_, head.handle);
    const Acad::ErrorStatus status = object->dwgIn(&filer_);
    if (status == Acad::eOk) return object;
    if (status != Acad::eMakeMeProxy) {
        reading_.warn(nameOf(head) + L" is kept as it is: " + acadErrorStatusText(status));
    }
    return makeProxy(head, common);
}

AcDbObject* ObjectReader::load(const ObjectPlace& place) {
    if (place.handle == 0 || place.handle > dxf::Handles::kGreatest) return nullptr;
    Head head;
    if (!open(place, head)) return nullptr;
    Common common;
    readCommon(head, common);
    if (streams_.data.hasFailed() || streams_.handles.hasFailed()) {
        reading_.warn(nameOf(head) + L" ends too early and is left out");
        return nullptr;
    }
    std::unique_ptr<AcDbObject> object = make(head, common);
    if (reading_.state.load(*object, head.handle, common.owner) != Acad::eOk) {
        reading_.warn(nameOf(head) + L" is in the map of objects twice");
        return nullptr;
    }
    const bool isLinked = head.isEntity && release() < AcDb::kDHL_1018 &&
                          head.type != kBlockBegin && head.type != kBlockEnd &&
                          head.type != kSequenceEnd;
    if (isLinked) {
        const uint64_t before = common.hasLinks ? common.before : head.handle - 1;
        const uint64_t behind = common.hasLinks ? common.behind : head.handle + 1;
        links_.add({common.owner, object->objectId(), head.handle, before, behind});
    }
    return object.release();
}

}  // namespace sg::dwg
