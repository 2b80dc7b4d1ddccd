#include "host/dxf/object_loader.h"

#include <algorithm>

#include "base/encoding.h"
#include "host/dxf/file_form.h"
#include "host/dxf/object_filer.h"
#include "host/model/access/class_names.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "host/model/core/symbol_records.h"
#include "host/model/tables/references.h"
#include "platform/db/block_reference.h"

namespace sg::dxf {
namespace {

using model::NamedIn;
using model::ObjectAccess;

constexpr int kMarker = 100;
constexpr int kApplicationName = 1001;
constexpr int kLayer = 8;
constexpr int kLinetype = 6;
constexpr int kTextStyle = 7;
constexpr int kFlags = 70;
constexpr int kRows = 71;

bool isCounted(const Group* group) {
    return group != nullptr && group->whole > 1;
}

// An array of block references says so by its marker; without markers, by its counts.
bool isArray(const ScannedObject& scanned) {
    if (!scanned.is("INSERT")) return false;
    bool hasMarkers = false;
    for (const Group& group : scanned.groups) {
        if (group.is(kMarker, "AcDbMInsertBlock")) return true;
        hasMarkers = hasMarkers || group.code == kMarker;
    }
    return !hasMarkers && (isCounted(scanned.find(kFlags)) || isCounted(scanned.find(kRows)));
}

}  // namespace

// ---- Classes ------------------------------------------------------------------------------------

const AcRxClass* ObjectLoader::classOf(const ScannedObject& scanned) {
    key_ = scanned.name();
    for (const Group& group : scanned.groups) {
        if (group.code == kApplicationName) break;
        if (group.code != kMarker) continue;
        key_ += ' ';
        key_ += group.text;
    }
    const bool hasKinds = scanned.is("POLYLINE") || scanned.is("VERTEX") || scanned.is("DIMENSION");
    const Group* const flags = hasKinds ? scanned.find(kFlags) : nullptr;
    if (flags != nullptr) key_ += ' ' + std::to_string(flags->whole);
    if (isArray(scanned)) return AcDbMInsertBlock::desc();
    const auto known = classes_.find(key_);
    if (known != classes_.end()) return known->second;
    resbuf* const list = acutBuildList(RTDXF0, fromUtf8(scanned.name()).c_str(), RTNONE);
    resbuf* last = list;
    for (const Group& group : scanned.groups) {
        if (group.code == kApplicationName) break;
        if (group.code != kMarker && group.code != kFlags) continue;
        last->rbnext = acutNewRb(group.code);
        last = last->rbnext;
        if (group.code == kFlags) {
            last->resval.rint = static_cast<int16_t>(group.whole);
        } else {
            last->resval.rstring = acutNewString(fromUtf8(group.text).c_str());
        }
    }
    const AcRxClass* const found = model::classOfGroups(list);
    acutRelRb(list);
    classes_.emplace(key_, found);
    return found;
}

// ---- Names --------------------------------------------------------------------------------------

namespace {

bool hasTextStyle(const ScannedObject& scanned) {
    return scanned.is("TEXT") || scanned.is("MTEXT") || scanned.is("ATTRIB") ||
           scanned.is("ATTDEF");
}

}  // namespace

// Layers, linetypes, text styles and applications that the file uses without having them.
void ObjectLoader::needNames(const ScannedObject& scanned, Role role) {
    bool isExtended = false;
    bool isCommon = role == Role::entity;
    const bool hasStyle = role == Role::entity && hasTextStyle(scanned);
    for (const Group& group : scanned.groups) {
        if (group.code == kMarker && group.text != "AcDbEntity") isCommon = false;
        if (group.code == kApplicationName) {
            isExtended = true;
            needName(group, NamedIn::nothing, scanned);
        } else if (isExtended) {
            continue;
        } else if (group.code == kLayer && isCommon) {
            needName(group, NamedIn::layers, scanned);
        } else if (group.code == kLinetype && isCommon) {
            needName(group, NamedIn::linetypes, scanned);
        } else if (group.code == kTextStyle && hasStyle) {
            needName(group, NamedIn::textStyles, scanned);
        }
    }
}

// In no table: an application.
void ObjectLoader::needName(const Group& group, NamedIn table, const ScannedObject& scanned) {
    if (!knownNames_[static_cast<size_t>(table)].insert(group.text).second) return;
    const std::wstring name = reading_.text(group);
    if (table == NamedIn::nothing) {
        model::registerApplication(reading_.database, name.c_str());
        return;
    }
    if (name.empty() || !model::recordNamed(&reading_.database, table, name).isNull()) return;
    if (model::addRecord(reading_.database, table, name).isNull()) return;
    reading_.report.warn(scanned.position,
                         L"\"" + name + L"\" is in no table of the file and is added");
}

// ---- Reading ------------------------------------------------------------------------------------

std::wstring ObjectLoader::nameOf(const ScannedObject& scanned) const {
    std::wstring name = fromUtf8(scanned.name());
    const Group* const handle = scanned.findIdentity(5);
    if (handle != nullptr) name += L" " + fromUtf8(handle->text);
    return name;
}

AcDbObjectId ObjectLoader::ownerOf(const ScannedObject& scanned) {
    const Group* const owner = scanned.findIdentity(330);
    return owner == nullptr ? AcDbObjectId() : reading_.handles.refer(*owner);
}

// An entity that has lost a number would come out with another shape and is left out; of other
// objects just the group is.
bool ObjectLoader::dropMalformed(ScannedObject& scanned, Role role) {
    const auto isBad = [](const Group& group) { return group.isMalformed; };
    const auto bad = std::find_if(scanned.groups.begin(), scanned.groups.end(), isBad);
    if (bad == scanned.groups.end()) return true;
    const size_t at = reading_.reader.positionOf(*bad);
    const bool isHandle = bad->kind == ValueKind::handle || bad->kind == ValueKind::object;
    std::wstring text = L"group " + std::to_wstring(bad->code) + L" of " + nameOf(scanned) +
                        (isHandle ? L" is not a handle: \"" : L" is not a number: \"") +
                        reading_.text(*bad) + L"\"; ";
    const bool isLost = role == Role::entity && !isHandle;
    reading_.report.warn(at,
                         text + (isLost ? L"the entity is left out" : L"the group is left out"));
    if (isLost) return false;
    std::erase_if(scanned.groups, isBad);
    return true;
}

bool ObjectLoader::fill(AcDbObject& object, const ScannedObject& scanned, std::wstring& error) {
    ObjectFiler filer(std::span(scanned.groups).subspan(1), reading_.codec, reading_.handles,
                      &reading_.database, reading_.release);
    const Acad::ErrorStatus status = object.dxfIn(&filer);
    if (status == Acad::eOk) return true;
    error = filer.errorMessage();
    if (error.empty()) error = acadErrorStatusText(status);
    return false;
}

namespace {

// The markers that later releases have in entities of release 12 for which there is no class.
std::vector<std::string_view> laterMarkers(const ScannedObject& scanned) {
    if (scanned.is("SHAPE")) return {"AcDbShape"};
    return {};
}

}  // namespace

std::unique_ptr<AcDbObject> ObjectLoader::makeProxy(ScannedObject& scanned, Role role) {
    std::unique_ptr<AcDbObject> object;
    if (role == Role::entity) {
        object = std::make_unique<AcDbProxyEntity>();
    } else {
        object = std::make_unique<AcDbProxyObject>();
    }
    auto& data = const_cast<model::ProxyData&>(*model::proxyData(*object));
    data.dxfName = fromUtf8(scanned.name());
    // Its groups are not to be transformed; everything else is done to what all objects have.
    data.flags = 0x3FF & ~model::kProxyTransformAllowed;
    for (const auto& record : reading_.origin->classes) {
        if (record.dxfName != data.dxfName) continue;
        data.className = record.className;
        data.applicationName = record.applicationName;
        break;
    }
    std::wstring error;
    if (fill(*object, scanned, error)) {
        const bool hasMarkers = scanned.find(kMarker) != nullptr;
        model::GroupData groups;
        for (const std::string_view marker : laterMarkers(scanned))
            groups.appendText(kMarker, marker);
        groups.append(data.groups);
        if (!hasMarkers) data.groups = std::move(groups);
        return object;
    }
    reading_.report.warn(scanned.position, nameOf(scanned) + L" is left out: " + error);
    return nullptr;
}

std::unique_ptr<AcDbObject> ObjectLoader::make(ScannedObject& scanned, Role role) {
    const AcRxClass* const type = classOf(scanned);
    const AcRxClass* const base = role == Role::entity ? AcDbEntity::desc() : AcDbObject::desc();
    if (type == nullptr || !type->isDerivedFrom(base)) return makeProxy(scanned, role);
    std::unique_ptr<AcRxObject> made(type->create());
    AcDbObject* const object = AcDbObject::cast(made.get());
    if (object == nullptr) return makeProxy(scanned, role);
    std::wstring error;
    if (fill(*object, scanned, error)) {
        made.release();
        return std::unique_ptr<AcDbObject>(object);
    }
    reading_.report.warn(scanned.position, nameOf(scanned) + L" is kept as it is: " + error);
    return makeProxy(scanned, role);
}

bool ObjectLoader::place(AcDbObject& object, const ScannedObject& scanned, AcDbObjectId owner) {
    const Group* const handle = scanned.findIdentity(scanned.is("DIMSTYLE") ? 105 : 5);
    uint64_t number = handle == nullptr ? 0 : handle->handle;
    if (number > Handles::kGreatest) number = 0;
    Acad::ErrorStatus status = reading_.state.load(object, number, owner);
    if (status == Acad::eHandleInUse) {
        reading_.report.warn(scanned.position, nameOf(scanned) +
                                                   L" has the handle of another object and gets a "
                                                   L"new one");
        status = reading_.state.load(object, 0, owner);
    }
    return status == Acad::eOk;
}

AcDbObject* ObjectLoader::load(ScannedObject& scanned, Role role, AcDbObjectId owner) {
    if (!dropMalformed(scanned, role)) return nullptr;
    needNames(scanned, role);
    std::unique_ptr<AcDbObject> object = make(scanned, role);
    if (object == nullptr || !place(*object, scanned, owner)) return nullptr;
    return object.release();
}

AcDbObject* ObjectLoader::loadAs(ScannedObject& scanned, std::unique_ptr<AcDbObject> object,
                                 AcDbObjectId owner) {
    if (!dropMalformed(scanned, Role::object)) return nullptr;
    needNames(scanned, Role::object);
    ObjectAccess::setOwner(*object, owner);
    std::wstring error;
    if (!fill(*object, scanned, error)) {
        reading_.report.warn(scanned.position, nameOf(scanned) + L" is left out: " + error);
        return nullptr;
    }
    if (!place(*object, scanned, owner)) return nullptr;
    return object.release();
}

// ---- Forms --------------------------------------------------------------------------------------

void ObjectLoader::keepForm(AcDbObject& object, const ScannedObject& scanned) {
    if (!keepsForms()) return;
    std::unique_ptr<model::FileForm> form =
        formToKeep(object, scanned.groups, reading_.codec, reading_.handles, reading_.release);
    if (form != nullptr) ObjectAccess::needExtras(object).fileForm = std::move(form);
}

void ObjectLoader::checkForms() {
    ScannedObject scanned;
    for (const Later& later : later_) {
        AcDbObject* const object = model::DatabaseTable::objectOf(later.id);
        if (object == nullptr) continue;
        reading_.scanner.seek(later.position);
        if (!reading_.scanner.next(scanned)) continue;
        std::erase_if(scanned.groups, [](const Group& group) { return group.isMalformed; });
        // A table's name is no part of the table.
        if (scanned.is("TABLE")) {
            std::erase_if(scanned.groups, [](const Group& group) { return group.code == 2; });
        }
        keepForm(*object, scanned);
    }
    later_.clear();
}

}  // namespace sg::dxf
