#pragma once

#include <utility>

#include "host/model/core/database_table.h"
#include "host/model/core/extras.h"
#include "platform/db/block_table.h"
#include "platform/db/dictionary.h"
#include "platform/db/entity.h"
#include "platform/db/object.h"
#include "platform/db/symbol_table.h"

namespace sg::model {

// What every entity has besides what every object has.
struct EntityData {
    AcDbObjectId layer, linetype;  // null: layer "0", and ByLayer
    AcCmColor color;
    double linetypeScale = 1;
    AcDb::LineWeight lineWeight = AcDb::kLnWtByLayer;
    AcDb::Visibility visibility = AcDb::kVisible;
    AcDb::PlotStyleNameType plotStyleType = AcDb::kPlotStyleNameByLayer;
    AcDbObjectId plotStyle;  // of kPlotStyleNameById
    AcDbObjectId material;
    uint32_t transparency = 0;
};

// The core's way to the state of objects, past their open modes.
struct SG_API ObjectAccess {
    using Flags = AcDbObject::Flag;
    static constexpr uint16_t kErased = AcDbObject::kErased;
    static constexpr uint16_t kOpenForWrite = AcDbObject::kOpenForWrite;
    static constexpr uint16_t kOpenForNotify = AcDbObject::kOpenForNotify;
    static constexpr uint16_t kModified = AcDbObject::kModified;
    static constexpr uint16_t kNew = AcDbObject::kNew;
    static constexpr uint16_t kEraseToggled = AcDbObject::kEraseToggled;
    static constexpr uint16_t kUndoing = AcDbObject::kUndoing;
    static constexpr uint16_t kRecorded = AcDbObject::kRecorded;
    static constexpr uint16_t kInTransaction = AcDbObject::kInTransaction;
    static constexpr uint16_t kCancelable = AcDbObject::kCancelable;
    static constexpr uint16_t kSession =
        kOpenForWrite | kModified | kNew | kEraseToggled | kRecorded | kInTransaction | kCancelable;

    static uint16_t& flags(const AcDbObject& object) { return object.flags_; }
    static uint16_t& readers(const AcDbObject& object) { return object.readers_; }
    static bool has(const AcDbObject& object, uint16_t flag) { return (object.flags_ & flag) != 0; }
    static bool isOpen(const AcDbObject& object) {
        return object.readers_ != 0 || has(object, kOpenForWrite | kOpenForNotify);
    }

    static void clear(AcDbObject& object, uint16_t flags) {
        object.flags_ &= static_cast<uint16_t>(~flags);
    }

    static void setId(AcDbObject& object, AcDbObjectId id) { object.id_ = id; }
    static void setOwner(AcDbObject& object, AcDbObjectId owner) { object.owner_ = owner; }

    static const Extras* extras(const AcDbObject& object) { return object.extras_.get(); }
    static Extras& needExtras(AcDbObject& object) {
        if (!object.extras_) object.extras_ = std::make_unique<Extras>();
        return *object.extras_;
    }
    static std::unique_ptr<Extras>& extrasPointer(AcDbObject& object) { return object.extras_; }

    // What setXData does, with the applications of this database.
    static Acad::ErrorStatus setExtendedData(AcDbObject& object, const resbuf* data,
                                             const AcDbDatabase* names);

    // What may object to an open.
    static Acad::ErrorStatus askOpen(AcDbObject& object, AcDb::OpenMode mode) {
        return object.subOpen(mode);
    }
    static void enteredTable(AcDbSymbolTableRecord& record) { record.subEnteredTable(); }

    static void setLayer(AcDbEntity& entity, AcDbObjectId layer) { entity.layer_ = layer; }
    static void setLinetype(AcDbEntity& entity, AcDbObjectId linetype) {
        entity.linetype_ = linetype;
    }

    // All at once, for readers and writers of files. Setting asks nothing: neither whether the ids
    // have objects yet, nor what the class would say; null ids of layer and linetype change
    // nothing.
    static EntityData entityData(const AcDbEntity& entity);
    static void setEntityData(AcDbEntity& entity, const EntityData& data);

    using BlockContents = AcDbBlockTableRecord::Contents;
    static BlockContents& contents(const AcDbBlockTableRecord& block) { return *block.contents_; }
    // A part of a polyline or block reference, or the end of its parts, that is in the drawing goes
    // behind those that it has; the whole has been read from a file. False for a whole that takes
    // no such part.
    static bool adoptPart(AcDbEntity& whole, AcDbObjectId part);
    // The parts in their order, with the end of their sequence behind them where they have one.
    static std::vector<AcDbObjectId> partsOf(const AcDbEntity& whole);
    using TableRecords = AcDbSymbolTable::Records;
    static TableRecords& records(const AcDbSymbolTable& table) { return *table.records_; }
    // An entry of a dictionary: its name as it is written there, its object (null: there is no
    // such entry), and its place in the order of the entries.
    struct DictionaryEntry {
        std::wstring name;
        AcDbObjectId id;
        uint64_t order = 0;
    };
    static DictionaryEntry entry(const AcDbDictionary& dictionary, const std::wstring& name);
    // Makes the entry what it was, without keeping anything for undo.
    static void setEntry(AcDbDictionary& dictionary, const DictionaryEntry& entry);
    // Without asking whether the name will do; the record's table finds it under the new name.
    static void setName(AcDbSymbolTableRecord& record, std::wstring name);
    static bool mayBeNameless(const AcDbSymbolTableRecord& record) {
        return record.mayBeNameless();
    }
    static bool allowsSameNames(const AcDbSymbolTable& table) { return table.allowsSameNames(); }
    static int16_t standardFlags(const AcDbSymbolTableRecord& record) {
        return record.standardFlags_;
    }
};

// While one lives its object may be read and changed whether it is open or not, and no change is
// kept for undo.
class Unguarded {
  public:
    explicit Unguarded(const AcDbObject& object)
        : object_(object), before_(ObjectAccess::flags(object) & ObjectAccess::kUndoing) {
        ObjectAccess::flags(object) |= ObjectAccess::kUndoing;
    }
    ~Unguarded() {
        if (before_ == 0) {
            ObjectAccess::flags(object_) &= static_cast<uint16_t>(~ObjectAccess::kUndoing);
        }
    }
    Unguarded(const Unguarded&) = delete;
    Unguarded& operator=(const Unguarded&) = delete;

  private:
    const AcDbObject& object_;
    const uint16_t before_;
};

// The object of an id when it is of this class; null otherwise. It is not opened.
template <class Class>
Class* peek(AcDbObjectId id) {
    return Class::cast(DatabaseTable::objectOf(id));
}

}  // namespace sg::model
