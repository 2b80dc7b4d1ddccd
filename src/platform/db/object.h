#pragma once

#include <cstdint>
#include <memory>

#include "base/export.h"
#include "platform/db/filers.h"
#include "platform/db/object_id.h"
#include "platform/gi/drawable.h"

class AcDbAuditInfo;
class AcDbIdMapping;

namespace sg::model {
struct ObjectAccess;
struct Extras;
}  // namespace sg::model

namespace AcDb {

enum OpenMode { kNotOpen = -1, kForRead = 0, kForWrite = 1, kForNotify = 2 };

}  // namespace AcDb

// What can live in a drawing database.
//
// An object of a database is opened, used and closed; one that has not been given to a database is
// open for everything, and belongs to whoever made it. Up to 256 readers may hold an object; a
// writer holds it alone. An object is read while it is open in any mode and changed while it is
// open for write; doing either without is a fault of the caller that the assert... operations
// report by an exception.
class SG_API AcDbObject : public AcGiDrawable {
  public:
    ACRX_DECLARE_MEMBERS(AcDbObject)
    ~AcDbObject() override;

    // --- Place in the database

    AcDbObjectId objectId() const { return id_; }  // null until it is in a database
    AcDbObjectId ownerId() const { return owner_; }
    virtual Acad::ErrorStatus setOwnerId(AcDbObjectId owner);
    AcDbDatabase* database() const { return id_.database(); }
    void getAcDbHandle(AcDbHandle& handle) const { handle = id_.handle(); }
    bool isPersistent() const override { return !id_.isNull(); }
    AcDbObjectId id() const override { return id_; }

    // --- Open state

    bool isReadEnabled() const;
    bool isWriteEnabled() const;
    bool isNotifyEnabled() const;
    bool isModified() const;  // since it was opened for write
    bool isErased() const { return (flags_ & kErased) != 0; }
    bool isNewObject() const;  // given to the database in the open session that still lasts
    bool isUndoing() const { return (flags_ & kUndoing) != 0; }
    bool isEraseStatusToggled() const;

    // Throw std::logic_error when the object is not open so.
    void assertReadEnabled() const;
    // Records the state before the first change, so that undo and aborted transactions can put it
    // back. `autoUndo` false leaves that to the caller, `recordModified` false leaves out the mark.
    void assertWriteEnabled(bool autoUndo = true, bool recordModified = true);

    // From read to write. eWasOpenForRead when there are other readers, eOnLockedLayer,
    // eInvalidOpenState when it is not open for read.
    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus downgradeOpen();  // eInvalidOpenState when it is not open for write
    // Ends one open. eInvalidOpenState when it is not open.
    Acad::ErrorStatus close();
    // Ends an open for write and takes back what was changed in it.
    Acad::ErrorStatus cancel();

    // Takes it out of the drawing, or with false brings it back; open for write. The object stays
    // in memory, and its id names it still. eWasErased, eWasNotErased; eCannotBeErasedByCaller for
    // tables and what must always be there.
    Acad::ErrorStatus erase(bool erasing = true);

    // --- What is attached

    // Null when there is none. The caller releases the list (acutRelRb). With an application's
    // name only the part of that application, its 1001 node first.
    virtual resbuf* xData(const wchar_t* application = nullptr) const;
    // Each application whose 1001 node is in the list gets the nodes up to the next one in place of
    // what it had; a 1001 node alone takes its data away. eRegappIdNotFound, eBadDxfSequence,
    // eXdataSizeExceeded (16,383 bytes as a file counts them) change nothing.
    virtual Acad::ErrorStatus setXData(const resbuf* data);

    AcDbObjectId extensionDictionary() const;  // null when there is none
    Acad::ErrorStatus createExtensionDictionary();
    Acad::ErrorStatus releaseExtensionDictionary();  // eContainerNotEmpty

    // Objects that depend on this one; kept in files.
    void addPersistentReactor(AcDbObjectId object);
    void removePersistentReactor(AcDbObjectId object);
    bool hasPersistentReactor(AcDbObjectId object) const;
    const AcDbObjectIdArray& persistentReactors() const;

    // --- Filing: In and Out do the whole object; ...Fields are what classes override, each calling
    // its base class's first.

    Acad::ErrorStatus dwgIn(AcDbDwgFiler* filer);
    Acad::ErrorStatus dwgOut(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus dxfIn(AcDbDxfFiler* filer);
    Acad::ErrorStatus dxfOut(AcDbDxfFiler* filer) const;
    virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer);
    virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const;
    virtual Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer);
    virtual Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const;
    virtual Acad::ErrorStatus audit(AcDbAuditInfo* info);

    // --- Copies

    // A copy outside any database, made through a copy filer; the caller owns it. Null when the
    // class cannot be instantiated.
    AcRxObject* clone() const;
    // Takes over everything but identity from an object of the same class.
    Acad::ErrorStatus copyFrom(const AcRxObject* other);
    // A copy into `owner`'s database with what it owns; its ids are translated when the whole
    // operation ends (see AcDbDatabase::deepCloneObjects). `copy` is null when the operation leaves
    // the object out.
    Acad::ErrorStatus deepClone(AcDbObject* owner, AcDbObject*& copy, AcDbIdMapping& mapping,
                                bool isPrimary = true) const {
        return subDeepClone(owner, copy, mapping, isPrimary);
    }
    Acad::ErrorStatus wblockClone(AcRxObject* owner, AcDbObject*& copy, AcDbIdMapping& mapping,
                                  bool isPrimary = true) const {
        return subWblockClone(owner, copy, mapping, isPrimary);
    }
    // `newObject`, which is in no database, takes this one's place there: its id, handle, owner,
    // and as asked its extended data and extension dictionary; this one, open for write, is then
    // outside. eAlreadyInDb, eNotInDatabase.
    Acad::ErrorStatus handOverTo(AcDbObject* newObject, bool keepXData = true,
                                 bool keepExtensionDictionary = true);

  protected:
    AcDbObject();
    AcDbObject(const AcDbObject&) = delete;
    AcDbObject& operator=(const AcDbObject&) = delete;

    // Called by erase(), close() and cancel(); the base versions allow it.
    virtual Acad::ErrorStatus subErase(bool erasing);
    virtual Acad::ErrorStatus subOpen(AcDb::OpenMode mode);
    virtual Acad::ErrorStatus subClose();
    virtual Acad::ErrorStatus subCancel();
    virtual Acad::ErrorStatus subDeepClone(AcDbObject* owner, AcDbObject*& copy,
                                           AcDbIdMapping& mapping, bool isPrimary) const;
    virtual Acad::ErrorStatus subWblockClone(AcRxObject* owner, AcDbObject*& copy,
                                             AcDbIdMapping& mapping, bool isPrimary) const;

    // Objects that draw nothing.
    uint32_t subSetAttributes(AcGiDrawableTraits* traits) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    void subViewportDraw(AcGiViewportDraw* draw) override;
    uint32_t subViewportDrawLogicalFlags(AcGiViewportDraw* draw) override;

  private:
    friend struct sg::model::ObjectAccess;

    enum Flag : uint16_t {
        kErased = 1,
        kOpenForWrite = 2,
        kOpenForNotify = 4,
        kModified = 8,       // since it was opened for write
        kNew = 16,           // its first open has not ended
        kEraseToggled = 32,  // in this open
        kUndoing = 64,
        kRecorded = 128,       // its state is kept for undo, and need not be again
        kInTransaction = 256,  // a transaction holds it open
        kCancelable = 512,     // its state when it was opened is kept
    };

    AcDbObjectId id_;
    AcDbObjectId owner_;
    std::unique_ptr<sg::model::Extras> extras_;  // null for most objects
    mutable uint16_t flags_ = 0;
    mutable uint16_t readers_ = 0;

  protected:
    // Room for small values of entities, beside the flags.
    uint32_t small_ = 0;
};

// Opens an object. A null pointer, and eNullObjectId, eUnknownHandle (not in an open database),
// eWasErased (unless `openErased`), eAtMaxReaders, eWasOpenForRead, eWasOpenForWrite,
// eWasOpenForNotify, eOnLockedLayer.
SG_API Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id,
                                            AcDb::OpenMode mode, bool openErased = false);

// The same, of a class; an object of another class gives eNotThatKindOfClass and is not open.
template <class Class>
Acad::ErrorStatus acdbOpenObject(Class*& object, AcDbObjectId id,
                                 AcDb::OpenMode mode = AcDb::kForRead, bool openErased = false) {
    object = nullptr;
    AcDbObject* opened = nullptr;
    const Acad::ErrorStatus status = acdbOpenAcDbObject(opened, id, mode, openErased);
    if (status != Acad::eOk) return status;
    object = Class::cast(opened);
    if (object != nullptr) return Acad::eOk;
    opened->close();
    return Acad::eNotThatKindOfClass;
}
