#include <cwchar>

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/proxies.h"
#include "platform/db/object.h"
#include "platform/rx/rxclass.h"

// Filing of what every object has.

using sg::model::Extras;
using sg::model::ObjectAccess;

namespace {

// Which of the extras are filed.
enum Present : uint8_t {
    kData = 1,
    kDictionary = 2,
    kReactors = 4,
    kUnknown = 8,
    kPlotStyle = 16,
    kMaterial = 32,
    kTransparency = 64,
    kFileForm = 128,
};

uint8_t presentIn(const Extras* extras, bool isCopy) {
    if (extras == nullptr) return 0;
    int present = 0;
    if (!extras->extendedData.empty()) present |= kData;
    if (!extras->extensionDictionary.isNull() && !isCopy) present |= kDictionary;
    if (!extras->reactors.isEmpty() && !isCopy) present |= kReactors;
    if (!extras->unknownLists.empty()) present |= kUnknown;
    if (!extras->plotStyle.isNull()) present |= kPlotStyle;
    if (!extras->material.isNull()) present |= kMaterial;
    if (extras->transparency != 0) present |= kTransparency;
    if (extras->fileForm != nullptr) present |= kFileForm;
    return static_cast<uint8_t>(present);
}

void writeReactors(AcDbDwgFiler& filer, const AcDbObjectIdArray& reactors) {
    filer.writeUInt32(static_cast<uint32_t>(reactors.length()));
    for (const AcDbObjectId reactor : reactors)
        filer.writeSoftPointerId(reactor);
}

void readReactors(AcDbDwgFiler& filer, AcDbObjectIdArray& reactors) {
    uint32_t count = 0;
    filer.readUInt32(&count);
    while (count-- > 0 && filer.filerStatus() == Acad::eOk) {
        AcDbSoftPointerId reactor;
        filer.readSoftPointerId(&reactor);
        if (!reactor.isNull()) reactors.append(reactor);
    }
}

void writeFileForm(AcDbDwgFiler& filer, const sg::model::FileForm& form) {
    form.groups.dwgOut(filer);
    form.unknown.dwgOut(filer);
    filer.writeInt64(static_cast<int64_t>(form.fingerprint));
    filer.writeInt16(form.release);
}

std::unique_ptr<sg::model::FileForm> readFileForm(AcDbDwgFiler& filer) {
    auto form = std::make_unique<sg::model::FileForm>();
    int64_t fingerprint = 0;
    form->groups.dwgIn(filer);
    form->unknown.dwgIn(filer);
    filer.readInt64(&fingerprint);
    filer.readInt16(&form->release);
    form->fingerprint = static_cast<uint64_t>(fingerprint);
    return form;
}

void readExtras(AcDbDwgFiler& filer, uint8_t present, Extras& extras) {
    if ((present & kData) != 0) extras.extendedData.dwgIn(filer);
    if ((present & kDictionary) != 0) filer.readHardOwnershipId(&extras.extensionDictionary);
    if ((present & kReactors) != 0) readReactors(filer, extras.reactors);
    if ((present & kUnknown) != 0) extras.unknownLists.dwgIn(filer);
    if ((present & kPlotStyle) != 0) filer.readHardPointerId(&extras.plotStyle);
    if ((present & kMaterial) != 0) filer.readHardPointerId(&extras.material);
    if ((present & kTransparency) != 0) filer.readUInt32(&extras.transparency);
    if ((present & kFileForm) != 0) extras.fileForm = readFileForm(filer);
}

}  // namespace

// ---- In memory ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbObject::dwgOut(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = dwgOutFields(filer);
    return status != Acad::eOk ? status : filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dwgIn(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = dwgInFields(filer);
    return status != Acad::eOk ? status : filer->filerStatus();
}

// A copy outside a database has neither owner nor what stands in a database for its original.
Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    if (filer->dwgForm() != nullptr) return filer->filerStatus();
    const bool isCopy = filer->filerType() == AcDb::kCopyFiler;
    if (!isCopy) filer->writeSoftPointerId(owner_);
    const Extras* const extras = extras_.get();
    const uint8_t present = presentIn(extras, isCopy);
    filer->writeUInt8(present);
    if ((present & kData) != 0) extras->extendedData.dwgOut(*filer);
    if ((present & kDictionary) != 0) filer->writeHardOwnershipId(extras->extensionDictionary);
    if ((present & kReactors) != 0) writeReactors(*filer, extras->reactors);
    if ((present & kUnknown) != 0) extras->unknownLists.dwgOut(*filer);
    if ((present & kPlotStyle) != 0) filer->writeHardPointerId(extras->plotStyle);
    if ((present & kMaterial) != 0) filer->writeHardPointerId(extras->material);
    if ((present & kTransparency) != 0) filer->writeUInt32(extras->transparency);
    if ((present & kFileForm) != 0) writeFileForm(*filer, *extras->fileForm);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    if (filer->dwgForm() != nullptr) return filer->filerStatus();
    const bool isCopy = filer->filerType() == AcDb::kCopyFiler;
    if (!isCopy) {
        AcDbSoftPointerId owner;
        filer->readSoftPointerId(&owner);
        owner_ = owner;
    }
    uint8_t present = 0;
    filer->readUInt8(&present);
    auto before = std::move(extras_);
    if (present != 0) readExtras(*filer, present, ObjectAccess::needExtras(*this));
    if (isCopy && before != nullptr) {
        Extras& extras = ObjectAccess::needExtras(*this);
        extras.extensionDictionary = before->extensionDictionary;
        extras.reactors = before->reactors;
    }
    return filer->filerStatus();
}

// ---- As groups ----------------------------------------------------------------------------------

namespace {

void writeList(AcDbDxfFiler& filer, const wchar_t* name, int code, const AcDbObjectIdArray& ids) {
    filer.writeString(102, name);
    for (const AcDbObjectId id : ids)
        filer.writeObjectId(code, id);
    filer.writeString(102, L"}");
}

// Reads up to the closing brace.
AcDbObjectIdArray readList(AcDbDxfFiler& filer) {
    AcDbObjectIdArray ids;
    resbuf group{};
    while (filer.readItem(&group) == Acad::eOk && group.restype != 102) {
        if (acdbGroupCodeToType(group.restype) != RTENAME) continue;
        const AcDbObjectId id = filer.objectId(group.resval.rlname);
        if (!id.isNull()) ids.append(id);
    }
    return ids;
}

// A list of another application stays as it is, up to the closing brace.
void keepList(AcDbDxfFiler& filer, const resbuf& start, sg::model::GroupData& kept) {
    kept.append(start);
    resbuf group{};
    while (filer.readItem(&group) == Acad::eOk) {
        kept.append(group);
        if (group.restype == 102) return;
    }
}

bool isGroupOf(const resbuf& group, const wchar_t* name) {
    return group.resval.rstring != nullptr && std::wcscmp(group.resval.rstring, name) == 0;
}

constexpr const wchar_t* kReactorList = L"{ACAD_REACTORS";
constexpr const wchar_t* kDictionaryList = L"{ACAD_XDICTIONARY";

bool hasLists(const Extras* extras) {
    return extras != nullptr && (!extras->extensionDictionary.isNull() ||
                                 !extras->reactors.isEmpty() || !extras->unknownLists.empty());
}

void writeAttached(AcDbDxfFiler& filer, const Extras* extras) {
    if (extras == nullptr) return;
    if (!extras->extensionDictionary.isNull()) {
        AcDbObjectIdArray dictionary;
        dictionary.append(extras->extensionDictionary);
        writeList(filer, kDictionaryList, 360, dictionary);
    }
    if (!extras->reactors.isEmpty()) writeList(filer, kReactorList, 330, extras->reactors);
    extras->unknownLists.dxfOut(filer);
}

// Dimension styles have 5 for one of their variables.
int handleCode(const wchar_t* dxfName) {
    return std::wcscmp(dxfName, L"DIMSTYLE") == 0 ? 105 : 5;
}

}  // namespace

// A drawing file has the owner behind the handle and the lists; entget has it there only when there
// are lists, else ahead of the handle.
Acad::ErrorStatus AcDbObject::dxfOut(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    const bool isBag = filer->filerType() == AcDb::kBagFiler;
    const wchar_t* const dxfName = sg::model::dxfNameOf(*this);
    if (isBag && !id_.isNull()) filer->writeObjectId(-1, id_);
    filer->writeString(0, dxfName);
    const bool ownerFirst = isBag && !hasLists(extras_.get());
    if (ownerFirst) filer->writeObjectId(330, owner_);
    if (!id_.isNull()) filer->writeAcDbHandle(handleCode(dxfName), id_.handle());
    writeAttached(*filer, extras_.get());
    if (!ownerFirst) filer->writeObjectId(330, owner_);
    const Acad::ErrorStatus status = dxfOutFields(filer);
    if (status != Acad::eOk) return status;
    if (extras_) extras_->extendedData.dxfOut(*filer);
    return filer->filerStatus();
}

// What stands before the first subclass: identity, which is not the object's to change, the lists,
// and the owner.
Acad::ErrorStatus AcDbObject::dxfIn(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    sg::model::GroupData otherLists;
    resbuf group{};
    while (filer->readItem(&group) == Acad::eOk) {
        if (group.restype == 102) {
            if (isGroupOf(group, kReactorList)) {
                ObjectAccess::needExtras(*this).reactors = readList(*filer);
            } else if (isGroupOf(group, kDictionaryList)) {
                const AcDbObjectIdArray ids = readList(*filer);
                if (!ids.isEmpty()) {
                    ObjectAccess::needExtras(*this).extensionDictionary = ids.first();
                }
            } else {
                keepList(*filer, group, otherLists);
            }
        } else if (group.restype == 330) {
            if (id_.isNull()) owner_ = filer->objectId(group.resval.rlname);
        } else if (group.restype > 0 && group.restype != 5 && group.restype != 105) {
            filer->pushBackItem();
            break;
        }
    }
    if (!otherLists.empty()) ObjectAccess::needExtras(*this).unknownLists = otherLists;
    if (const Acad::ErrorStatus status = dxfInFields(filer); status != Acad::eOk) return status;
    resbuf* const data = filer->takeExtendedData();
    if (data == nullptr) return filer->filerStatus();
    const Acad::ErrorStatus status =
        id_.isNull() ? ObjectAccess::setExtendedData(*this, data, filer->database())
                     : setXData(data);
    acutRelRb(data);
    return status;
}

Acad::ErrorStatus AcDbObject::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    return filer->filerStatus();
}
