#include "host/dwg/kept_objects.h"

#include "host/dwg/read_filer.h"
#include "host/dwg/write_filer.h"
#include "host/model/core/database_state.h"
#include "host/model/core/file_origin.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "platform/db/database.h"

namespace sg::dwg {
namespace {

using model::KeptBits;
using model::ObjectAccess;

std::string codePageOf(const model::DatabaseState& state) {
    return state.origin == nullptr || state.origin->codePage.empty() ? "ANSI_1252"
                                                                     : state.origin->codePage;
}

// The ids that are kept, as a stream of handles again.
BitWriter handlesOf(const KeptBits& bits) {
    BitWriter handles;
    for (const KeptBits::Id& item : bits.ids)
        handles.handle(kHardPointer, dxf::Handles::of(item.id));
    return handles;
}

void moveExtras(AcDbObject& from, AcDbObject& to) {
    ObjectAccess::extrasPointer(to) = std::move(ObjectAccess::extrasPointer(from));
}

}  // namespace

std::unique_ptr<AcDbObject> makeFromBits(const AcRxClass& descriptor, AcDbObject& proxy) {
    const KeptBits& bits = *model::proxyData(proxy)->bits;
    AcRxObject* const made = descriptor.create();
    std::unique_ptr<AcDbObject> object(AcDbObject::cast(made));
    if (object == nullptr || proxy.database() == nullptr) return nullptr;
    model::DatabaseState& state = model::DatabaseState::of(*proxy.database());
    constexpr bool kHasCarets = false;
    const auto release = static_cast<AcDb::AcDbDwgVersion>(bits.release);
    ReadContext context{
        *proxy.database(), release, {codePageOf(state), false, kHasCarets}, dxf::Handles(state)};
    BitWriter handles = handlesOf(bits);
    const size_t handleBits = handles.position();
    ReadStreams streams;
    streams.data = BitReader(bits.data, 0, bits.dataBits);
    streams.texts = BitReader(bits.texts, 0, bits.textBits);
    streams.handles = BitReader(handles.bytes(), 0, handleBits);

    // An entity's looks are there before its class reads, which may ask for them.
    auto* const entity = AcDbEntity::cast(object.get());
    const auto* const shown = AcDbEntity::cast(&proxy);
    model::EntityData looks;
    if (shown != nullptr) looks = ObjectAccess::entityData(*shown);
    moveExtras(proxy, *object);
    ObjectAccess::setOwner(*object, proxy.ownerId());
    if (entity != nullptr) ObjectAccess::setEntityData(*entity, looks);
    ReadFiler filer(context);
    filer.begin(streams, dxf::Handles::of(proxy.objectId()));
    if (object->dwgIn(&filer) == Acad::eOk) return object;
    moveExtras(*object, proxy);
    return nullptr;
}

}  // namespace sg::dwg
