#include "drawing/current_drawing.h"

#include <cmath>

#include "platform/ap/documents.h"
#include "platform/db/database.h"
#include "platform/ed/command_line.h"
#include "platform/ed/transform.h"
#include "platform/ge/vector2d.h"
#include "platform/lisp/external_functions.h"

namespace sg {
namespace {

// Model space of the current database, open for write, and its block table, open for read; both
// closed in the end. Null when one cannot be had, after an alert.
class ModelSpace {
  public:
    ModelSpace() {
        AcDbDatabase* const database = currentDatabase();
        if (database == nullptr || database->getBlockTable(table_, AcDb::kForRead) != Acad::eOk) {
            table_ = nullptr;
            acedAlert(L"Failed to get block table!");
            return;
        }
        const Acad::ErrorStatus status = table_->getAt(ACDB_MODEL_SPACE, record_, AcDb::kForWrite);
        if (status == Acad::eOk) return;
        record_ = nullptr;
        acedAlert(L"Failed to get block table record!");
        acutPrintf(L"\n%i", static_cast<int>(status));
    }
    ~ModelSpace() {
        if (table_ != nullptr) table_->close();
        if (record_ != nullptr) record_->close();
    }
    ModelSpace(const ModelSpace&) = delete;
    ModelSpace& operator=(const ModelSpace&) = delete;

    AcDbBlockTableRecord* record() const { return record_; }

  private:
    AcDbBlockTable* table_ = nullptr;
    AcDbBlockTableRecord* record_ = nullptr;
};

// Write-locks a document for as long as it lives.
class DocumentLock {
  public:
    explicit DocumentLock(AcApDocument* document) : document_(document) {
        acDocManagerPtr()->lockDocument(document_, AcAp::kWrite, nullptr, nullptr, true);
    }
    ~DocumentLock() { acDocManagerPtr()->unlockDocument(document_); }
    DocumentLock(const DocumentLock&) = delete;
    DocumentLock& operator=(const DocumentLock&) = delete;

  private:
    AcApDocument* document_;
};

bool insertFromFile(AcDbDatabase& database, const std::wstring& name, const std::wstring& path,
                    AcDbObjectId& id) {
    AcDbDatabase source(false, false);
    if (source.readDwgFile(path.c_str(), 3, false, nullptr) != Acad::eOk) return false;
    return database.insert(id, name.c_str(), &source, true) == Acad::eOk;
}

}  // namespace

AcDbDatabase* currentDatabase() {
    AcApDocument* const document = acDocManagerPtr()->curDocument();
    return document == nullptr ? nullptr : document->database();
}

bool addToModelSpace(AcDbEntity* entity) {
    const DocumentLock lock(acDocManagerPtr()->curDocument());
    const ModelSpace space;
    if (space.record() == nullptr) return false;
    if (space.record()->appendAcDbEntity(entity) == Acad::eOk) return true;
    acedAlert(L"Failed to append entity!");
    delete entity;
    return false;
}

bool addToModelSpaceAndClose(AcDbEntity* entity) {
    if (!addToModelSpace(entity)) return false;
    entity->close();
    return true;
}

bool findOrLoadBlock(const std::wstring& name, AcDbObjectId& id) {
    AcDbDatabase* const database = currentDatabase();
    AcDbBlockTable* table = nullptr;
    if (database == nullptr || database->getBlockTable(table, AcDb::kForRead) != Acad::eOk) {
        return false;
    }
    const Acad::ErrorStatus found = table->getAt(name.c_str(), id);
    table->close();
    if (found == Acad::eOk) return true;
    std::wstring path;
    const std::wstring file = name + L".dwg";
    if (acdbHostApplicationServices()->findFile(path, file.c_str()) != Acad::eOk) {
        resbuf* const call = acutBuildList(RTSTR, L"qnBlock-alertMissing", RTSTR, name.c_str(), 0);
        resbuf* result = nullptr;
        acedInvoke(call, &result);
        acutRelRb(call);
        acutRelRb(result);
        return false;
    }
    return insertFromFile(*database, name, path, id);
}

bool getLayerId(const std::wstring& name, AcDbObjectId& id) {
    AcDbDatabase* const database = currentDatabase();
    AcDbLayerTable* table = nullptr;
    if (database == nullptr || database->getLayerTable(table, AcDb::kForRead) != Acad::eOk) {
        return false;
    }
    const Acad::ErrorStatus found = table->getAt(name.c_str(), id);
    table->close();
    return found == Acad::eOk;
}

AcGePoint3d convertToWCS(const AcGePoint3d& point) {
    const ads_point given = {point.x, point.y, point.z};
    resbuf from{nullptr, RTSHORT, {}};
    resbuf to{nullptr, RTSHORT, {}};
    from.resval.rint = 1;
    to.resval.rint = 0;
    ads_point world = {point.x, point.y, point.z};
    acedTrans(given, &from, &to, 0, world);
    return {world[0], world[1], world[2]};
}

AcGePoint3d polar(const AcGePoint3d& point, double angle, double distance) {
    return {point.x + distance * std::cos(angle), point.y + distance * std::sin(angle), point.z};
}

double xyAngle(const AcGePoint3d& from, const AcGePoint3d& to) {
    return AcGeVector2d(to.x - from.x, to.y - from.y).angle();
}

}  // namespace sg
