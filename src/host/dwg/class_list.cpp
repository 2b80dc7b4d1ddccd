#include "host/dwg/class_list.h"

#include "base/encoding.h"
#include "host/dwg/object_types.h"
#include "host/dxf/class_records.h"
#include "host/model/core/proxies.h"
#include "platform/db/entity.h"

namespace sg::dwg {
namespace {

// What classes say that tell nothing of themselves.
constexpr const wchar_t* kProduct = L"ObjectDBX Classes";

// What may be done with wrapped objects where nobody knows them.
constexpr uint16_t kWrappedFlags = model::kProxyEraseAllowed | model::kProxyCloningAllowed |
                                   model::kProxyColorChangeAllowed |
                                   model::kProxyLayerChangeAllowed;

ClassEntry entryOf(const model::FileOrigin::ClassRecord& record) {
    ClassEntry entry;
    entry.dxfName = record.dxfName;
    entry.className = record.className;
    entry.applicationName = record.applicationName;
    entry.proxyFlags = static_cast<uint16_t>(record.flags);
    for (model::GroupData::Walk walk(record.groups); walk.next();) {
        if (walk.group().code == 280) entry.wasProxy = walk.group().whole != 0;
        if (walk.group().code == 281 && walk.group().whole != 0) entry.kind = kEntityClass;
    }
    return entry;
}

// Interchange files have no class names for what is a part of every drawing format. Meshes and
// their vertices share theirs with other polylines; their markers tell them.
std::wstring classNameOf(const model::ProxyData& data) {
    if (!data.className.empty()) return data.className;
    std::wstring marker;
    for (model::GroupData::Walk walk(data.groups); walk.next();) {
        if (walk.group().code == 100) marker = fromUtf8(walk.group().text);
    }
    const ObjectType* found = nullptr;
    size_t count = 0;
    for (const ObjectType& type : objectTypes()) {
        if (type.dxfName != data.dxfName) continue;
        if (type.className == marker) return marker;
        found = &type;
        ++count;
    }
    return count == 1 ? found->className : std::wstring();
}

}  // namespace

ClassList::ClassList(const model::FileOrigin* origin, AcDb::AcDbDwgVersion release)
    : release_(release) {
    if (origin == nullptr) return;
    for (const model::FileOrigin::ClassRecord& record : origin->classes) {
        ClassEntry& entry = entries_.emplace_back(entryOf(record));
        entry.number = static_cast<uint16_t>(kFirstClass + entries_.size() - 1);
    }
}

// Classes with a type of their own may stand among the file's classes all the same.
ClassList::Known ClassList::find(const std::wstring& className, const std::wstring& dxfName) const {
    Known known;
    for (size_t i = 0; i < entries_.size() && known.entry == kNoEntry; ++i) {
        const ClassEntry& entry = entries_[i];
        if (entry.className == className && entry.dxfName == dxfName) known = {entry.number, i};
    }
    for (const ObjectType& type : objectTypes()) {
        if (type.className == className && type.since <= release_) known.type = type.number;
    }
    return known;
}

void ClassList::describe(ClassEntry& entry, const AcDbObject& object) const {
    if (!model::hasDwgForm(object, release_)) {
        entry.applicationName = L"Swift Gate";
        entry.proxyFlags = kWrappedFlags;
        return;
    }
    if (const dxf::ProductClass* const known = dxf::productClass(entry.dxfName)) {
        entry.applicationName = known->applicationName;
        entry.proxyFlags = static_cast<uint16_t>(known->flags);
        return;
    }
    if (const model::ProxyData* const data = model::proxyData(object)) {
        entry.applicationName = data->applicationName;
        entry.proxyFlags = static_cast<uint16_t>(data->flags);
        entry.wasProxy = true;
    } else {
        const AcRxClass* const type = object.isA();
        entry.applicationName = type->appNameFor(release_);
        entry.proxyFlags = static_cast<uint16_t>(type->proxyFlags());
        int release = 0;
        int maintenance = 0;
        type->getClassVersion(release, maintenance);
        entry.release = release;
        entry.maintenance = maintenance;
    }
    if (entry.applicationName.empty()) entry.applicationName = kProduct;
}

ClassList::Known ClassList::add(const AcDbObject& object, const std::wstring& className,
                                const std::wstring& dxfName) {
    ClassEntry entry;
    entry.number = static_cast<uint16_t>(kFirstClass + entries_.size());
    entry.className = className;
    entry.dxfName = dxfName;
    entry.kind = AcDbEntity::cast(&object) != nullptr ? kEntityClass : kObjectClass;
    describe(entry, object);
    entries_.push_back(std::move(entry));
    return {entries_.back().number, entries_.size() - 1};
}

uint16_t ClassList::typeOf(const AcDbObject& object) {
    const model::ProxyData* const data = model::proxyData(object);
    const AcRxClass* const descriptor = object.isA();
    Known known;
    const auto found = types_.find(descriptor);
    if (data == nullptr && found != types_.end()) {
        known = found->second;
    } else {
        std::wstring className = data != nullptr ? classNameOf(*data) : descriptor->name();
        std::wstring dxfName = data != nullptr ? data->dxfName : descriptor->dxfName();
        if (!model::hasDwgForm(object, release_)) {
            const bool isEntity = AcDbEntity::cast(&object) != nullptr;
            className = isEntity ? model::kWrappedEntity : model::kWrappedObject;
            dxfName = isEntity ? L"SG_KEPT_ENTITY" : L"SG_KEPT_OBJECT";
        }
        known = find(className, dxfName);
        if (known.type == 0) known = add(object, className, dxfName);
        if (data == nullptr) types_.emplace(descriptor, known);
    }
    if (known.entry != kNoEntry) ++entries_[known.entry].instances;
    return known.type;
}

}  // namespace sg::dwg
