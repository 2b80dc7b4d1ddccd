#include "host/model/core/proxies.h"

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "platform/rx/rxdictionary.h"

namespace sg::model {
namespace {

void writeId(AcDbDwgFiler& filer, Reference kind, AcDbObjectId id) {
    switch (kind) {
        case Reference::hardOwnership:
            filer.writeHardOwnershipId(id);
            break;
        case Reference::softOwnership:
            filer.writeSoftOwnershipId(id);
            break;
        case Reference::hardPointer:
            filer.writeHardPointerId(id);
            break;
        case Reference::softPointer:
            filer.writeSoftPointerId(id);
            break;
    }
}

AcDbObjectId readId(AcDbDwgFiler& filer, Reference kind) {
    AcDbHardOwnershipId hardOwnership;
    AcDbSoftOwnershipId softOwnership;
    AcDbHardPointerId hardPointer;
    AcDbSoftPointerId softPointer;
    switch (kind) {
        case Reference::hardOwnership:
            filer.readHardOwnershipId(&hardOwnership);
            return hardOwnership;
        case Reference::softOwnership:
            filer.readSoftOwnershipId(&softOwnership);
            return softOwnership;
        case Reference::hardPointer:
            filer.readHardPointerId(&hardPointer);
            return hardPointer;
        case Reference::softPointer:
            filer.readSoftPointerId(&softPointer);
            return softPointer;
    }
    return {};
}

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
        writeId(filer, place.kind, idAt(bytes, place.offset));
    }
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
    bytes.resize(size);
    ids.clear();
    filer.readBytes(bytes.data(), size);
    while (count-- > 0 && filer.filerStatus() == Acad::eOk) {
        uint32_t offset = 0;
        uint8_t kind = 0;
        filer.readUInt32(&offset);
        filer.readUInt8(&kind);
        const auto reference = static_cast<Reference>(kind);
        const uint64_t value = readId(filer, reference).asOldId();
        if (offset + sizeof(value) > bytes.size()) return Acad::eInvalidInput;
        std::memcpy(bytes.data() + offset, &value, sizeof(value));
        ids.push_back({offset, reference});
    }
    return filer.filerStatus();
}

const ProxyData* proxyData(const AcDbObject& object) {
    if (const auto* const entity = AcDbProxyEntity::cast(&object)) return &entity->data;
    const auto* const proxy = AcDbProxyObject::cast(&object);
    return proxy == nullptr ? nullptr : &proxy->data;
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
FiledObject fileOriginal(const Proxy& proxy) {
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

// True when the id has a proxy no more.
bool revive(DatabaseState& state, AcDbObjectId id) {
    AcDbObject* const object = DatabaseTable::objectOf(id);
    const ProxyData* const data = object == nullptr ? nullptr : proxyData(*object);
    if (data == nullptr) return true;
    const auto* const descriptor =
        static_cast<const AcRxClass*>(acrxClassDictionary()->at(data->className.c_str()));
    if (descriptor == nullptr || ObjectAccess::isOpen(*object)) return false;
    const auto* const entity = AcDbProxyEntity::cast(object);
    const FiledObject filed = entity != nullptr ? fileOriginal<AcDbProxyEntity, AcDbEntity>(*entity)
                                                : fileOriginal<AcDbProxyObject, AcDbObject>(
                                                      static_cast<const AcDbProxyObject&>(*object));
    std::unique_ptr<AcDbObject> original = makeObject(*descriptor, filed);
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
