#include "host/model/core/proxies.h"

#include "host/model/core/database_state.h"
#include "host/model/core/group_writer.h"
#include "host/model/core/list_filers.h"
#include "host/model/core/object_access.h"
#include "platform/db/symbol_table.h"
#include "platform/rx/rxdictionary.h"

namespace sg::model {
namespace {

AcDbObjectId idAt(const std::vector<uint8_t>& bytes, size_t offset) {
    uint64_t value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof(value));
    return AcDbObjectId(value);
}

}  // namespace

// ---- ProxyData ----------------------------------------------------------------------------------

// The ids go through the filer as ids, so that copies have them translated; between them go the
// bytes.
void ProxyData::dwgOut(AcDbDwgFiler& filer) const {
    filer.writeString(className);
    filer.writeString(dxfName);
    filer.writeString(applicationName);
    filer.writeInt32(flags);
    filer.writeUInt32(static_cast<uint32_t>(bytes.size()));
    filer.writeUInt32(static_cast<uint32_t>(ids.size()));
    filer.writeBytes(bytes.data(), bytes.size());
    for (const MemoryWriter::IdPlace& place : ids) {
        filer.writeUInt32(static_cast<uint32_t>(place.offset));
        filer.writeUInt8(static_cast<uint8_t>(place.kind));
        writeReference(filer, place.kind, idAt(bytes, place.offset));
    }
    groups.dwgOut(filer);
    filer.writeUInt32(static_cast<uint32_t>(parts.size()));
    for (const AcDbHardOwnershipId& part : parts)
        filer.writeHardOwnershipId(part);
    filer.writeBool(bits != nullptr);
    if (bits != nullptr) bits->dwgOut(filer);
}

bool ProxyData::isOnlyBits() const {
    return bits != nullptr && bits->release != 0 && groups.empty() && bytes.empty();
}

bool ProxyData::isWrapped() const {
    return className == kWrappedEntity || className == kWrappedObject;
}

Acad::ErrorStatus ProxyData::dwgIn(AcDbDwgFiler& filer) {
    uint32_t size = 0;
    uint32_t count = 0;
    filer.readString(className);
    filer.readString(dxfName);
    filer.readString(applicationName);
    filer.readInt32(&flags);
    filer.readUInt32(&size);
    filer.readUInt32(&count);
    readBytes(&filer, size, bytes);
    ids.clear();
    while (count-- > 0 && filer.filerStatus() == Acad::eOk) {
        uint32_t offset = 0;
        uint8_t kind = 0;
        filer.readUInt32(&offset);
        filer.readUInt8(&kind);
        const auto reference = static_cast<Reference>(kind);
        const uint64_t value = readReference(filer, reference).asOldId();
        if (offset + sizeof(value) > bytes.size()) return Acad::eInvalidInput;
        std::memcpy(bytes.data() + offset, &value, sizeof(value));
        ids.push_back({offset, reference});
    }
    groups.dwgIn(filer);
    parts.clear();
    filer.readUInt32(&count);
    while (count-- > 0 && filer.filerStatus() == Acad::eOk) {
        AcDbHardOwnershipId part;
        filer.readHardOwnershipId(&part);
        if (!part.isNull()) parts.push_back(part);
    }
    bool hasBits = false;
    filer.readBool(&hasBits);
    bits = hasBits ? std::make_unique<KeptBits>() : nullptr;
    return hasBits ? bits->dwgIn(filer) : filer.filerStatus();
}

const ProxyData* proxyData(const AcDbObject& object) {
    if (const auto* const entity = AcDbProxyEntity::cast(&object)) return &entity->data;
    const auto* const proxy = AcDbProxyObject::cast(&object);
    return proxy == nullptr ? nullptr : &proxy->data;
}

const wchar_t* dxfNameOf(const AcDbObject& object) {
    const AcRxClass* const type = object.isA();
    if (type == AcDbProxyEntity::desc() || type == AcDbProxyObject::desc()) {
        const ProxyData& data = *proxyData(object);
        if (data.bytes.empty() || !data.groups.empty()) return data.dxfName.c_str();
    }
    const bool isTable = *type->dxfName() == L'\0' && type->isDerivedFrom(AcDbSymbolTable::desc());
    return isTable ? L"TABLE" : type->dxfName();
}

// ---- Making -------------------------------------------------------------------------------------

namespace {

// Reads the fields that every object, or entity, has, and keeps the rest.
template <class Proxy, class Base>
std::unique_ptr<AcDbObject> makeProxyOf(const AcRxClass& descriptor, const FiledObject& filed) {
    auto proxy = std::make_unique<Proxy>();
    MemoryReader reader(filed.bytes, filed.type, filed.database);
    if (proxy->Base::dwgInFields(&reader) != Acad::eOk) return nullptr;
    const size_t start = filed.bytes.size() - reader.rest().size();
    ProxyData& data = proxy->data;
    data.className = descriptor.name();
    data.dxfName = descriptor.dxfName();
    data.applicationName = descriptor.appName();
    data.flags = descriptor.proxyFlags();
    data.bytes.assign(reader.rest().begin(), reader.rest().end());
    for (const MemoryWriter::IdPlace& place : filed.ids) {
        if (place.offset >= start) data.ids.push_back({place.offset - start, place.kind});
    }
    return proxy;
}

}  // namespace

FiledObject fileObject(const AcDbObject& object, AcDb::FilerType type) {
    FiledObject filed{{}, {}, type, object.database()};
    MemoryWriter writer(filed.bytes, type, filed.database, &filed.ids);
    const Unguarded guard(object);
    object.dwgOutFields(&writer);
    return filed;
}

std::unique_ptr<AcDbObject> makeProxy(const AcRxClass& descriptor, const FiledObject& filed) {
    if (descriptor.isDerivedFrom(AcDbEntity::desc())) {
        return makeProxyOf<AcDbProxyEntity, AcDbEntity>(descriptor, filed);
    }
    return makeProxyOf<AcDbProxyObject, AcDbObject>(descriptor, filed);
}

std::unique_ptr<AcDbObject> makeObject(const AcRxClass& descriptor, const FiledObject& filed) {
    std::unique_ptr<AcRxObject> made(descriptor.create());
    AcDbObject* const object = AcDbObject::cast(made.get());
    if (object == nullptr) return nullptr;
    MemoryReader reader(filed.bytes, filed.type, filed.database);
    const Acad::ErrorStatus status = object->dwgIn(&reader);
    if (status == Acad::eMakeMeProxy) return makeProxy(descriptor, filed);
    if (status != Acad::eOk) return nullptr;
    made.release();
    return std::unique_ptr<AcDbObject>(object);
}

// ---- Classes that come and go -------------------------------------------------------------------

namespace {

// The new object is in the old one's place in every respect but its class.
void replace(DatabaseState& state, AcDbObject& old, std::unique_ptr<AcDbObject> object) {
    const AcDbObjectId id = old.objectId();
    state.undo.forgetStates(id);
    ObjectAccess::flags(*object) = ObjectAccess::flags(old);
    ObjectAccess::readers(*object) = ObjectAccess::readers(old);
    state.putInPlace(id, object.release());
    delete &old;
}

// What the proxy's own class would file now.
template <class Proxy, class Base>
FiledObject fileOriginalOf(const Proxy& proxy) {
    FiledObject filed{{}, {}, AcDb::kFileFiler, proxy.database()};
    MemoryWriter writer(filed.bytes, filed.type, filed.database, &filed.ids);
    const Unguarded guard(proxy);
    proxy.Base::dwgOutFields(&writer);
    const size_t start = filed.bytes.size();
    filed.bytes.insert(filed.bytes.end(), proxy.data.bytes.begin(), proxy.data.bytes.end());
    for (const MemoryWriter::IdPlace& place : proxy.data.ids)
        filed.ids.push_back({start + place.offset, place.kind});
    return filed;
}

FiledObject fileOriginal(const AcDbObject& proxy) {
    const auto* const entity = AcDbProxyEntity::cast(&proxy);
    if (entity != nullptr) return fileOriginalOf<AcDbProxyEntity, AcDbEntity>(*entity);
    return fileOriginalOf<AcDbProxyObject, AcDbObject>(static_cast<const AcDbProxyObject&>(proxy));
}

// Keeps what the object's class writes to drawing files behind what every object, or entity, does.
void keepGroups(const AcDbObject& object, ProxyData& data) {
    if (data.dxfName.empty()) return;
    GroupData all;
    GroupCollector collector(all);
    GroupWriter<GroupCollector> writer(collector, object.database(), AcDb::kDHL_CURRENT);
    const Unguarded guard(object);
    object.dxfOutFields(&writer);
    bool isOwn = false;
    for (GroupData::Walk walk(all); walk.next();) {
        const GroupData::Group& group = walk.group();
        isOwn = isOwn || (group.code == 100 && group.text != "AcDbEntity");
        if (isOwn) data.groups.append(group);
    }
}

// A new object of the class that has read what a proxy writes to drawing files.
std::unique_ptr<AcDbObject> makeFromGroups(const AcRxClass& descriptor, const AcDbObject& proxy) {
    std::unique_ptr<AcRxObject> made(descriptor.create());
    AcDbObject* const object = AcDbObject::cast(made.get());
    if (object == nullptr) return nullptr;
    ListWriter writer(proxy.database(), {L"*"}, AcDb::kFileFiler);
    const Unguarded guard(proxy);
    proxy.dxfOut(&writer);
    resbuf* const groups = writer.take();
    ListReader reader(groups, proxy.database(), AcDb::kFileFiler);
    const Acad::ErrorStatus status = object->dxfIn(&reader);
    acutRelRb(groups);
    if (status != Acad::eOk) return nullptr;
    ObjectAccess::setOwner(*object, proxy.ownerId());
    made.release();
    return std::unique_ptr<AcDbObject>(object);
}

// From what it keeps: what its class has filed, what a DWG file had of it, or groups.
std::unique_ptr<AcDbObject> makeOriginal(const AcRxClass& descriptor, AcDbObject& proxy,
                                         const ProxyData& data) {
    if (data.bits != nullptr && data.bits->release != 0 && data.bytes.empty()) {
        const auto make = DatabaseTable::the()->makeFromBits();
        return make == nullptr ? nullptr : make(descriptor, proxy);
    }
    const bool isFiled = !data.bytes.empty() || data.groups.empty();
    return isFiled ? makeObject(descriptor, fileOriginal(proxy))
                   : makeFromGroups(descriptor, proxy);
}

// True when the id has a proxy no more.
bool revive(DatabaseState& state, AcDbObjectId id) {
    AcDbObject* const object = DatabaseTable::objectOf(id);
    const ProxyData* const data = object == nullptr ? nullptr : proxyData(*object);
    if (data == nullptr) return true;
    const auto* const descriptor =
        static_cast<const AcRxClass*>(acrxClassDictionary()->at(data->className.c_str()));
    if (descriptor == nullptr || ObjectAccess::isOpen(*object)) return false;
    const auto* const entity = AcDbProxyEntity::cast(object);
    std::unique_ptr<AcDbObject> original = makeOriginal(*descriptor, *object, *data);
    if (original == nullptr || proxyData(*original) != nullptr) return false;
    AcDbEntity* const revived = AcDbEntity::cast(original.get());
    if (entity != nullptr && revived != nullptr &&
        entity->pendingTransform() != AcGeMatrix3d::kIdentity) {
        revived->transformBy(entity->pendingTransform());
    }
    replace(state, *object, std::move(original));
    return true;
}

}  // namespace

void turnIntoProxies(const AcRxClass& descriptor) {
    DatabaseTable* const table = DatabaseTable::the();
    if (table == nullptr) return;
    for (DatabaseState* const state : table->all()) {
        state->forEach([&](AcDbObject& object) {
            if (object.isA() != &descriptor) return;
            auto proxy = makeProxy(descriptor, fileObject(object, AcDb::kFileFiler));
            if (proxy == nullptr) return;
            keepGroups(object, const_cast<ProxyData&>(*proxyData(*proxy)));
            state->proxies.push_back(object.objectId());
            replace(*state, object, std::move(proxy));
        });
    }
}

void reviveProxies() {
    DatabaseTable* const table = DatabaseTable::the();
    if (table == nullptr) return;
    for (DatabaseState* const state : table->all()) {
        std::erase_if(state->proxies, [&](AcDbObjectId id) { return revive(*state, id); });
    }
}

}  // namespace sg::model
