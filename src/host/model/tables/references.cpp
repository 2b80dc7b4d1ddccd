#include "host/model/tables/references.h"

#include <memory>

#include "host/model/tables/reg_app_table.h"
#include "platform/db/database.h"

namespace sg::model {
namespace {

AcDbObjectId tableOf(const AcDbDatabase& database, NamedIn table) {
    switch (table) {
        case NamedIn::layers:
            return database.layerTableId();
        case NamedIn::linetypes:
            return database.linetypeTableId();
        case NamedIn::textStyles:
            return database.textStyleTableId();
        case NamedIn::dimStyles:
            return database.dimStyleTableId();
        case NamedIn::blocks:
            return database.blockTableId();
        case NamedIn::ucs:
            return database.UCSTableId();
        case NamedIn::nothing:
            break;
    }
    return {};
}

}  // namespace

AcDbObjectId recordNamed(AcDbDatabase* database, NamedIn table, std::wstring_view name) {
    AcDbObjectId found;
    AcDbSymbolTable* opened = nullptr;
    if (database == nullptr || acdbOpenObject(opened, tableOf(*database, table)) != Acad::eOk) {
        return found;
    }
    opened->getAt(std::wstring(name).c_str(), found);
    opened->close();
    return found;
}

std::wstring nameOf(AcDbObjectId record) {
    std::wstring name;
    AcDbSymbolTableRecord* opened = nullptr;
    if (acdbOpenObject(opened, record, AcDb::kForRead, true) != Acad::eOk) return name;
    name = opened->name();
    opened->close();
    return name;
}

void writeNameOf(AcDbDxfFiler* filer, int code, AcDbObjectId record, const wchar_t* otherwise) {
    const std::wstring name = nameOf(record);
    filer->writeString(code, name.empty() ? otherwise : name.c_str());
}

bool registerApplication(AcDbDatabase& database, const wchar_t* name) {
    AcDbSymbolTable* table = nullptr;
    if (acdbOpenObject(table, database.regAppTableId()) != Acad::eOk) return false;
    bool registered = table->has(name);
    if (!registered && table->upgradeOpen() == Acad::eOk) {
        auto record = std::make_unique<AcDbRegAppTableRecord>();
        registered = record->setName(name) == Acad::eOk && table->add(record.get()) == Acad::eOk;
        if (registered) record.release()->close();
    }
    table->close();
    return registered;
}

AcDbObjectId addRecord(AcDbDatabase& database, NamedIn table, const std::wstring& name) {
    std::unique_ptr<AcDbSymbolTableRecord> record;
    if (table == NamedIn::layers) {
        auto layer = std::make_unique<AcDbLayerTableRecord>();
        layer->setLinetypeObjectId(database.continuousLinetype());
        record = std::move(layer);
    } else if (table == NamedIn::linetypes) {
        record = std::make_unique<AcDbLinetypeTableRecord>();
    } else if (table == NamedIn::textStyles) {
        auto style = std::make_unique<AcDbTextStyleTableRecord>();
        style->setFileName(L"txt");
        record = std::move(style);
    } else {
        return {};
    }
    AcDbSymbolTable* opened = nullptr;
    AcDbObjectId id;
    if (record->setName(name.c_str()) != Acad::eOk ||
        acdbOpenObject(opened, tableOf(database, table), AcDb::kForWrite) != Acad::eOk) {
        return {};
    }
    if (opened->add(id, record.get()) == Acad::eOk) record.release()->close();
    opened->close();
    return id;
}

}  // namespace sg::model
