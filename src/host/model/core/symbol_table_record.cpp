#include "base/text.h"
#include "host/model/core/database_state.h"
#include "host/model/core/dwg_form.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"
#include "platform/db/database.h"
#include "platform/db/symbol_table.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)

using sg::model::DatabaseState;
using sg::model::ObjectAccess;
using sg::model::peek;

AcDbSymbolTableRecord::AcDbSymbolTableRecord() = default;
AcDbSymbolTableRecord::~AcDbSymbolTableRecord() = default;

Acad::ErrorStatus AcDbSymbolTableRecord::getName(std::wstring& name) const {
    assertReadEnabled();
    name = name_;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const wchar_t* name) {
    if (name == nullptr) return Acad::eInvalidInput;
    const bool isNameless = *name == L'\0' && mayBeNameless();
    if (!isNameless && !sg::model::isSymbolName(name)) return Acad::eInvalidSymbolTableName;
    const auto* const table = peek<AcDbSymbolTable>(ownerId());
    if (table != nullptr && !ObjectAccess::allowsSameNames(*table) && !isNameless) {
        const AcDbObjectId other = ObjectAccess::records(*table).find(name, false);
        if (!other.isNull() && other != objectId()) return Acad::eDuplicateRecordName;
    }
    assertWriteEnabled();
    ObjectAccess::setName(*this, name);
    return Acad::eOk;
}

void ObjectAccess::setName(AcDbSymbolTableRecord& record, std::wstring name) {
    record.name_ = std::move(name);
    if (const auto* const table = peek<AcDbSymbolTable>(record.ownerId())) {
        records(*table).namesChanged();
    }
}

// What every drawing has stays; and a name that another record has taken meanwhile is not given
// back.
Acad::ErrorStatus AcDbSymbolTableRecord::subErase(bool erasing) {
    const auto* const table = peek<AcDbSymbolTable>(ownerId());
    DatabaseState* const state = DatabaseState::of(*this);
    if (table == nullptr || state == nullptr) return Acad::eOk;
    if (!erasing) {
        const bool taken = !ObjectAccess::allowsSameNames(*table) && !name_.empty() &&
                           !ObjectAccess::records(*table).find(name_, false).isNull();
        return taken ? Acad::eDuplicateRecordName : Acad::eOk;
    }
    const sg::model::DatabaseRoots& roots = state->roots;
    for (const AcDbObjectId fixed :
         {roots.modelSpace, roots.paperSpace, roots.layerZero, roots.continuousLinetype,
          roots.byLayerLinetype, roots.byBlockLinetype}) {
        if (objectId() == fixed) return Acad::eCannotBeErasedByCaller;
    }
    const bool isHostApplication =
        table->objectId() == roots.regAppTable && sg::equalIgnoringCase(name_, L"ACAD");
    return isHostApplication ? Acad::eCannotBeErasedByCaller : Acad::eOk;
}

namespace {

// Of group 70 in all tables: the record came with an external reference, which was found.
enum StandardFlag : int16_t { kDependent = 16, kResolved = 32 };
constexpr int16_t kDependentIndex = 256;

// The block of the external reference that a record came with: its name stands ahead of a bar.
AcDbObjectId referenceOfName(const AcDbDatabase* database, const std::wstring& name) {
    const size_t bar = name.find(L'|');
    if (database == nullptr || bar == std::wstring::npos) return {};
    return sg::model::findRecord(database->blockTableId(), std::wstring_view(name).substr(0, bar));
}

// What files before 2007 say in three places is one number in later ones.
void writeDependence(AcDbDwgFiler& filer, bool isDependent, AcDbObjectId reference) {
    const bool isOld = sg::model::isBefore(&filer, AcDb::kDHL_1021);
    if (isOld) filer.writeBool(true);
    filer.writeInt16(isDependent ? kDependentIndex : 0);
    if (isOld) filer.writeBool(isDependent);
    filer.writeHardPointerId(reference);
}

bool readDependence(AcDbDwgFiler& filer) {
    const bool isOld = sg::model::isBefore(&filer, AcDb::kDHL_1021);
    bool isReferenced = false;
    bool isDependent = false;
    int16_t index = 0;
    AcDbHardPointerId reference;
    if (isOld) filer.readBool(&isReferenced);
    filer.readInt16(&index);
    if (isOld) filer.readBool(&isDependent);
    filer.readHardPointerId(&reference);
    return isDependent || (!isOld && index == kDependentIndex);
}

}  // namespace

Acad::ErrorStatus AcDbSymbolTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbObject::dwgOutFields(filer);
    filer->writeString(name_);
    if (filer->dwgForm() != nullptr) {
        const bool isDependent = (standardFlags_ & kDependent) != 0;
        writeDependence(*filer, isDependent,
                        isDependent ? referenceOfName(filer->database(), name_) : AcDbObjectId());
        return filer->filerStatus();
    }
    return filer->writeInt16(standardFlags_);
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    AcDbObject::dwgInFields(filer);
    filer->readString(name_);
    if (filer->dwgForm() != nullptr) {
        standardFlags_ = readDependence(*filer) ? kDependent | kResolved : 0;
    } else {
        filer->readInt16(&standardFlags_);
    }
    if (const auto* const table = peek<AcDbSymbolTable>(ownerId())) {
        ObjectAccess::records(*table).namesChanged();
    }
    return filer->filerStatus();
}

// A record's name and flags stand among the groups of its class, behind that class's marker.
Acad::ErrorStatus AcDbSymbolTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    return filer->writeString(100, L"AcDbSymbolTableRecord");
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    filer->atSubclassData(L"AcDbSymbolTableRecord");
    return filer->filerStatus();
}
