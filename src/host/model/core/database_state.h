#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/export.h"
#include "host/model/core/change_listener.h"
#include "host/model/core/id_records.h"
#include "host/model/core/transactions.h"
#include "host/model/core/undo_log.h"
#include "platform/db/database.h"

namespace sg::model {

struct FileOrigin;

// The objects of a database that are found without a name.
struct DatabaseRoots {
    AcDbObjectId blockTable, layerTable, linetypeTable, textStyleTable, dimStyleTable, viewTable,
        viewportTable, ucsTable, regAppTable;
    AcDbObjectId namedObjects, groups, layouts, plotStyleNames;
    AcDbObjectId modelSpace, paperSpace, currentSpace;
    AcDbObjectId layerZero, continuousLinetype, byLayerLinetype, byBlockLinetype;
};

// What is behind an AcDbDatabase.
class SG_API DatabaseState {
  public:
    DatabaseState(AcDbDatabase& database, bool noDocument);
    ~DatabaseState();
    DatabaseState(const DatabaseState&) = delete;
    DatabaseState& operator=(const DatabaseState&) = delete;

    static DatabaseState& of(const AcDbDatabase& database) { return *database.state_; }
    // Null for an object outside every open database.
    static DatabaseState* of(const AcDbObject& object);

    uint64_t sequence() const { return sequence_; }
    AcDbObjectId makeRecord(uint64_t handle);  // an id for a handle that has none
    AcDbObjectId findHandle(uint64_t handle) const;
    uint64_t nextHandle() const { return nextHandle_; }
    void setNextHandle(uint64_t handle) { nextHandle_ = handle; }

    // Gives an object its id; with a handle other than 0 that one. It stays open for write.
    // eAlreadyInDb, eHandleInUse.
    Acad::ErrorStatus add(AcDbObject& object, uint64_t handle = 0);
    // The same for an object that is read from a file, with the owner that it has there: it is
    // closed, and the reading is no change.
    Acad::ErrorStatus load(AcDbObject& object, uint64_t handle, AcDbObjectId owner);
    // The object takes the id, which another one has perhaps; that one is then nowhere.
    void putInPlace(AcDbObjectId id, AcDbObject* object);
    // Destroys an object that no id names any more, when it is not open any more.
    void discard(AcDbObject* object);
    // Takes a new object away whose open is cancelled.
    void forget(AcDbObject& object);
    // Erases it, or brings it back, without asking.
    void setErased(AcDbObject& object, bool erased);

    const HeaderVariables& header() const { return *header_; }
    HeaderVariables& changeHeader();  // keeps the values before for undo
    void restoreHeader(const HeaderVariables& header);

    // Listeners are not owned; each is removed before it goes.
    void addListener(ChangeListener* listener) { listeners_.push_back(listener); }
    void removeListener(ChangeListener* listener) { std::erase(listeners_, listener); }
    void tellChange(AcDbObjectId id) {
        for (ChangeListener* const listener : listeners_)
            listener->objectChanges(id);
    }

    // Calls `visit` with every object, erased ones too. New objects that it makes are not visited.
    template <class Visit>
    void forEach(const Visit& visit) {
        const uint32_t end = records.count();
        for (uint32_t index = 1; index <= end; ++index) {
            if (AcDbObject* const object = records.find(index)->object) visit(*object);
        }
    }

    AcDbDatabase& database;
    const bool noDocument;
    IdRecords records;
    UndoLog undo;
    TransactionManager transactions;
    DatabaseRoots roots;
    std::wstring filename;
    std::unique_ptr<FileOrigin> origin;  // null for a drawing that no file has brought
    std::vector<AcDbObjectId> proxies;   // ids that proxies have, or had

  private:
    Acad::ErrorStatus take(AcDbObject& object, uint64_t handle);

    uint64_t sequence_;
    uint64_t nextHandle_ = 1;
    std::unique_ptr<HeaderVariables> header_;
    std::vector<ChangeListener*> listeners_;
    std::vector<std::unique_ptr<AcDbObject>> discarded_;  // still open when they were taken away
};

}  // namespace sg::model
