#include "host/model/core/clone_targets.h"

#include "host/model/core/database_state.h"
#include "host/model/core/object_access.h"
#include "host/model/core/symbol_records.h"

namespace sg::model {
namespace {

std::wstring keyOf(const AcDbObject& entry) {
    std::wstring name;
    if (const auto* const dictionary = peek<AcDbDictionary>(entry.ownerId())) {
        const Unguarded guard(*dictionary);
        dictionary->nameAt(entry.objectId(), name);
    }
    return name;
}

AcDbObject* entryOf(const AcDbDictionary& dictionary, const std::wstring& name) {
    AcDbObjectId id;
    const Unguarded guard(dictionary);
    dictionary.getAt(name.c_str(), id);
    return DatabaseTable::objectOf(id);
}

bool isAnonymousBlock(const AcDbObject& object) {
    const auto* const block = AcDbBlockTableRecord::cast(&object);
    return block != nullptr && block->isAnonymous();
}

bool mangles(AcDb::DuplicateRecordCloning duplicates) {
    return duplicates == AcDb::kDrcMangleName || duplicates == AcDb::kDrcXrefMangleName;
}

// "$0$name" and so on: the first that is free.
std::wstring mangledName(const AcDbSymbolTable& table, const std::wstring& name,
                         const AcDbIdMapping& mapping) {
    std::wstring prefix;
    if (mapping.duplicates == AcDb::kDrcXrefMangleName && mapping.origin != nullptr) {
        mapping.origin->getFilename(prefix);
        prefix.erase(0, prefix.find_last_of(L'/') + 1);
        prefix = prefix.substr(0, prefix.rfind(L'.'));
    }
    for (int number = 0;; ++number) {
        const std::wstring candidate = prefix + L"$" + std::to_wstring(number) + L"$" + name;
        if (ObjectAccess::records(table).find(candidate, false).isNull()) return candidate;
    }
}

}  // namespace

void pairRoots(AcDbIdMapping& mapping) {
    const DatabaseRoots& from = DatabaseState::of(*mapping.origin).roots;
    const DatabaseRoots& to = DatabaseState::of(*mapping.destination).roots;
    for (const auto root :
         {&DatabaseRoots::blockTable, &DatabaseRoots::layerTable, &DatabaseRoots::linetypeTable,
          &DatabaseRoots::textStyleTable, &DatabaseRoots::dimStyleTable, &DatabaseRoots::viewTable,
          &DatabaseRoots::viewportTable, &DatabaseRoots::ucsTable, &DatabaseRoots::regAppTable,
          &DatabaseRoots::namedObjects, &DatabaseRoots::groups, &DatabaseRoots::layouts,
          &DatabaseRoots::plotStyleNames, &DatabaseRoots::byLayerLinetype,
          &DatabaseRoots::byBlockLinetype, &DatabaseRoots::modelSpace,
          &DatabaseRoots::paperSpace}) {
        const AcDbObjectId key = from.*root;
        if (!key.isNull() && mapping.find(key) == nullptr) mapping.assign({key, to.*root});
    }
}

AcDbObject* targetOwner(const AcDbObject& original, AcDbIdMapping& mapping) {
    const AcDbObjectId ownerId = original.ownerId();
    if (const AcDbIdMapping::Pair* const pair = mapping.find(ownerId)) {
        return DatabaseTable::objectOf(pair->value);
    }
    const auto* const dictionary = peek<AcDbDictionary>(ownerId);
    if (dictionary == nullptr) return nullptr;
    auto* const parent = AcDbDictionary::cast(targetOwner(*dictionary, mapping));
    const std::wstring name = keyOf(*dictionary);
    if (parent == nullptr || name.empty()) return nullptr;
    AcDbObject* target = entryOf(*parent, name);
    if (target == nullptr) {
        auto* const made = static_cast<AcDbDictionary*>(dictionary->isA()->create());
        if (joinDictionary(*made, *parent, *dictionary) != Acad::eOk) {
            delete made;
            return nullptr;
        }
        made->setTreatElementsAsHard(dictionary->isTreatElementsAsHard());
        made->close();
        target = made;
    }
    mapping.assign({ownerId, target->objectId()});
    return target;
}

AcDbObject* sameNamed(const AcDbObject& original, const AcDbObject& owner,
                      const AcDbIdMapping& mapping) {
    if (mangles(mapping.duplicates) || isAnonymousBlock(original)) return nullptr;
    if (const auto* const table = AcDbSymbolTable::cast(&owner)) {
        const auto* const record = AcDbSymbolTableRecord::cast(&original);
        if (record == nullptr) return nullptr;
        return DatabaseTable::objectOf(ObjectAccess::records(*table).find(record->name(), false));
    }
    const auto* const dictionary = AcDbDictionary::cast(&owner);
    const std::wstring name = dictionary == nullptr ? std::wstring() : keyOf(original);
    return name.empty() ? nullptr : entryOf(*dictionary, name);
}

void nameForTarget(AcDbObject& copy, const AcDbObject& original, const AcDbObject& owner,
                   const AcDbIdMapping& mapping) {
    auto* const record = AcDbSymbolTableRecord::cast(&copy);
    const auto* const table = AcDbSymbolTable::cast(&owner);
    if (record == nullptr || table == nullptr) return;
    if (isAnonymousBlock(original)) {
        ObjectAccess::setName(*record, record->name().substr(0, 2));
    } else if (mangles(mapping.duplicates) &&
               !ObjectAccess::records(*table).find(record->name(), false).isNull()) {
        ObjectAccess::setName(*record, mangledName(*table, record->name(), mapping));
    }
}

Acad::ErrorStatus joinTable(AcDbSymbolTableRecord& copy, AcDbSymbolTable& table) {
    const Unguarded guard(table);
    return table.add(&copy);
}

Acad::ErrorStatus joinDictionary(AcDbObject& copy, AcDbDictionary& dictionary,
                                 const AcDbObject& original) {
    const std::wstring name = keyOf(original);
    if (name.empty()) return Acad::eInvalidKey;
    AcDbDictionary* opened = nullptr;
    const bool isOpen = dictionary.isWriteEnabled();
    if (!isOpen) {
        const auto status = acdbOpenObject(opened, dictionary.objectId(), AcDb::kForWrite);
        if (status != Acad::eOk) return status;
    }
    AcDbObjectId id;
    const Acad::ErrorStatus status = dictionary.setAt(name.c_str(), &copy, id);
    if (!isOpen) opened->close();
    return status;
}

}  // namespace sg::model
