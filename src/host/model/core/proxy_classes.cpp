#include "host/model/core/proxies.h"

#include <algorithm>

#include "host/model/kept/kept_form.h"
#include "host/model/tables/filing.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbProxyObject, AcDbObject, 0, 0, L"ACAD_PROXY_OBJECT", nullptr)
ACRX_DXF_DEFINE_MEMBERS(AcDbProxyEntity, AcDbEntity, 0, 0, L"ACAD_PROXY_ENTITY", nullptr)

using sg::model::ProxyData;
using enum sg::model::ProxyFlags;

namespace {

// The class behind an object that no program knows, in the class list of a file that has one.
constexpr int kUnnamedClass = 500;

Acad::ErrorStatus writeProxyGroups(AcDbDxfFiler& filer, const wchar_t* marker, int ownClass,
                                   const ProxyData& data) {
    filer.writeString(100, marker);
    filer.writeInt32(90, ownClass);
    filer.writeInt32(91, kUnnamedClass);
    filer.writeInt32(93, static_cast<int32_t>(data.bytes.size() * 8));
    constexpr size_t kChunk = 127;
    for (size_t at = 0; at < data.bytes.size(); at += kChunk) {
        filer.writeBChunk(310, data.bytes.data() + at, std::min(kChunk, data.bytes.size() - at));
    }
    return filer.filerStatus();
}

// In a drawing file's own form the object is what its class had there, in another release's what
// its groups say. Where they say nothing it is wrapped.
Acad::ErrorStatus writeBits(AcDbDwgFiler& filer, const ProxyData& data) {
    if (sg::model::keepsBitsFor(data, filer.dwgVersion())) {
        return filer.dwgForm()->writeKept(*data.bits);
    }
    const bool hasForm = sg::model::canWriteKept(data, filer.dwgVersion());
    if (!hasForm || !sg::model::writeKept(filer, data)) data.dwgOut(filer);
    return filer.filerStatus();
}

// The graphics are the file's; they stay with what was wrapped.
bool readWrapped(AcDbDwgFiler& filer, ProxyData& data, sg::model::KeptBits& file) {
    ProxyData original;
    if (original.dwgIn(filer) != Acad::eOk || original.isWrapped()) {
        filer.resetFilerStatus();
        return false;
    }
    if (original.bits == nullptr) original.bits = std::make_unique<sg::model::KeptBits>();
    original.bits->graphics = std::move(file.graphics);
    data = std::move(original);
    return true;
}

Acad::ErrorStatus readBits(AcDbDwgFiler& filer, ProxyData& data) {
    auto bits = std::make_unique<sg::model::KeptBits>();
    const Acad::ErrorStatus status = filer.dwgForm()->keep(*bits);
    if (status != Acad::eOk) return status;
    if (data.isWrapped() && readWrapped(filer, data, *bits)) return Acad::eOk;
    data.bits = std::move(bits);
    if (!sg::model::readKept(filer, data)) filer.resetFilerStatus();
    return Acad::eOk;
}

// entmod changes what every object has, and leaves the rest.
void readGroups(AcDbDxfFiler& filer, ProxyData& data) {
    if (filer.filerType() != AcDb::kFileFiler) return;
    data.groups.clear();
    if (auto* const file = dynamic_cast<sg::model::FileGroupsAccess*>(&filer)) {
        file->readRest(data.groups);
        return;
    }
    resbuf group{};
    while (filer.readItem(&group) == Acad::eOk)
        data.groups.append(group);
}

}  // namespace

// ---- AcDbProxyObject ----------------------------------------------------------------------------

AcDbProxyObject::AcDbProxyObject() = default;
AcDbProxyObject::~AcDbProxyObject() = default;

Acad::ErrorStatus AcDbProxyObject::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) return writeBits(*filer, data);
    data.dwgOut(*filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyObject::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
    if (status != Acad::eOk) return status;
    return filer->dwgForm() != nullptr ? readBits(*filer, data) : data.dwgIn(*filer);
}

Acad::ErrorStatus AcDbProxyObject::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status == Acad::eOk) readGroups(*filer, data);
    return status;
}

Acad::ErrorStatus AcDbProxyObject::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    if (data.bytes.empty() || !data.groups.empty()) return data.groups.dxfOut(*filer);
    return writeProxyGroups(*filer, L"AcDbProxyObject", 499, data);
}

Acad::ErrorStatus AcDbProxyObject::subErase(bool) {
    return data.allows(kProxyEraseAllowed) ? Acad::eOk : Acad::eCannotBeErasedByCaller;
}

Acad::ErrorStatus AcDbProxyObject::subDeepClone(AcDbObject* owner, AcDbObject*& copy,
                                                AcDbIdMapping& mapping, bool isPrimary) const {
    copy = nullptr;
    if (!data.allows(kProxyCloningAllowed)) return Acad::eOk;
    return AcDbObject::subDeepClone(owner, copy, mapping, isPrimary);
}

Acad::ErrorStatus AcDbProxyObject::subWblockClone(AcRxObject* owner, AcDbObject*& copy,
                                                  AcDbIdMapping& mapping, bool isPrimary) const {
    copy = nullptr;
    if (!data.allows(kProxyCloningAllowed)) return Acad::eOk;
    return AcDbObject::subWblockClone(owner, copy, mapping, isPrimary);
}

// ---- AcDbProxyEntity ----------------------------------------------------------------------------

AcDbProxyEntity::AcDbProxyEntity() = default;
AcDbProxyEntity::~AcDbProxyEntity() = default;

Acad::ErrorStatus AcDbProxyEntity::setColor(const AcCmColor& color, bool doSubents) {
    if (!data.allows(kProxyColorChangeAllowed)) return Acad::eNotApplicable;
    return AcDbEntity::setColor(color, doSubents);
}

Acad::ErrorStatus AcDbProxyEntity::setLayer(AcDbObjectId layer, bool doSubents, bool allowHidden) {
    if (!data.allows(kProxyLayerChangeAllowed)) return Acad::eNotApplicable;
    return AcDbEntity::setLayer(layer, doSubents, allowHidden);
}

Acad::ErrorStatus AcDbProxyEntity::setLinetype(AcDbObjectId linetype, bool doSubents) {
    if (!data.allows(kProxyLinetypeChangeAllowed)) return Acad::eNotApplicable;
    return AcDbEntity::setLinetype(linetype, doSubents);
}

Acad::ErrorStatus AcDbProxyEntity::setLinetypeScale(double scale, bool doSubents) {
    if (!data.allows(kProxyLinetypeScaleChangeAllowed)) return Acad::eNotApplicable;
    return AcDbEntity::setLinetypeScale(scale, doSubents);
}

Acad::ErrorStatus AcDbProxyEntity::setLineWeight(AcDb::LineWeight weight, bool doSubents) {
    if (!data.allows(kProxyLineWeightChangeAllowed)) return Acad::eNotApplicable;
    return AcDbEntity::setLineWeight(weight, doSubents);
}

Acad::ErrorStatus AcDbProxyEntity::setVisibility(AcDb::Visibility visibility, bool doSubents) {
    if (!data.allows(kProxyVisibilityChangeAllowed)) return Acad::eNotApplicable;
    return AcDbEntity::setVisibility(visibility, doSubents);
}

Acad::ErrorStatus AcDbProxyEntity::setPlotStyleName(AcDb::PlotStyleNameType type,
                                                    AcDbObjectId style, bool doSubents) {
    if (!data.allows(kProxyPlotStyleNameChangeAllowed)) return Acad::eNotApplicable;
    return AcDbEntity::setPlotStyleName(type, style, doSubents);
}

Acad::ErrorStatus AcDbProxyEntity::subTransformBy(const AcGeMatrix3d& transform) {
    if (!data.allows(kProxyTransformAllowed)) return Acad::eNotApplicable;
    assertWriteEnabled();
    pending_.preMultBy(transform);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbProxyEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbEntity::dwgOutFields(filer);
    if (filer->dwgForm() != nullptr) return writeBits(*filer, data);
    data.dwgOut(*filer);
    for (const auto& row : pending_.entry) {
        for (const double value : row)
            filer->writeDouble(value);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyEntity::dwgInFields(AcDbDwgFiler* filer) {
    AcDbEntity::dwgInFields(filer);
    if (filer->dwgForm() != nullptr) return readBits(*filer, data);
    data.dwgIn(*filer);
    for (auto& row : pending_.entry) {
        for (double& value : row)
            filer->readDouble(&value);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyEntity::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status == Acad::eOk) readGroups(*filer, data);
    return status;
}

Acad::ErrorStatus AcDbProxyEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    const bool hasGroups = !data.groups.empty() || (data.bytes.empty() && !data.isOnlyBits());
    if (hasGroups) return data.groups.dxfOut(*filer);
    return writeProxyGroups(*filer, L"AcDbProxyEntity", 498, data);
}

Acad::ErrorStatus AcDbProxyEntity::subErase(bool erasing) {
    if (!data.allows(kProxyEraseAllowed)) return Acad::eCannotBeErasedByCaller;
    for (const AcDbHardOwnershipId& part : data.parts)
        sg::model::eraseObject(part, erasing);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbProxyEntity::subDeepClone(AcDbObject* owner, AcDbObject*& copy,
                                                AcDbIdMapping& mapping, bool isPrimary) const {
    copy = nullptr;
    if (!data.allows(kProxyCloningAllowed)) return Acad::eOk;
    return AcDbEntity::subDeepClone(owner, copy, mapping, isPrimary);
}

Acad::ErrorStatus AcDbProxyEntity::subWblockClone(AcRxObject* owner, AcDbObject*& copy,
                                                  AcDbIdMapping& mapping, bool isPrimary) const {
    copy = nullptr;
    if (!data.allows(kProxyCloningAllowed)) return Acad::eOk;
    return AcDbEntity::subWblockClone(owner, copy, mapping, isPrimary);
}
