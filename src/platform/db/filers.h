#pragma once

#include <cstdint>
#include <string>

#include "base/export.h"
#include "platform/db/handle.h"
#include "platform/db/object_id.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/scale3d.h"
#include "platform/ge/vector2d.h"
#include "platform/ge/vector3d.h"
#include "platform/lisp/resbuf.h"
#include "platform/rx/error_status.h"

class AcDbDatabase;

namespace sg::model {
class DwgForm;
}  // namespace sg::model

namespace AcDb {

// What a filer files for.
enum FilerType {
    kFileFiler = 0,     // a drawing file
    kCopyFiler = 1,     // clone()
    kUndoFiler = 2,     // undo and aborted transactions
    kBagFiler = 3,      // entget, entmod and entmake
    kIdXlateFiler = 4,  // translating the ids of a copy
    kPageFiler = 5,
    kDeepCloneFiler = 6,  // a copy within a database
    kIdFiler = 7,         // collecting the ids that an object refers to
    kPurgeFiler = 8,      // collecting those that keep their target from being purged
    kWblockCloneFiler = 9,
};

// Releases of drawing files. A release has the values from its own up to the next one.
enum AcDbDwgVersion {
    kDHL_1009 = 16,  // 12
    kDHL_1012 = 19,  // 13
    kDHL_1014 = 21,  // 14
    kDHL_1015 = 23,  // 2000
    kDHL_1018 = 25,  // 2004
    kDHL_1021 = 27,  // 2007
    kDHL_1024 = 29,  // 2010
    kDHL_1027 = 31,  // 2013
    kDHL_1032 = 33,  // 2018
    kDHL_CURRENT = kDHL_1032,
};

}  // namespace AcDb

// The typed stream through which an object goes out and comes in, in the order that its class
// lays down. Once an operation has failed, filerStatus() says why, and the following ones fail too.
class SG_API AcDbDwgFiler {
  public:
    virtual ~AcDbDwgFiler() = default;

    virtual AcDb::FilerType filerType() const = 0;
    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual void setFilerStatus(Acad::ErrorStatus status) = 0;
    virtual void resetFilerStatus() = 0;
    virtual AcDb::AcDbDwgVersion dwgVersion() const { return AcDb::kDHL_CURRENT; }
    // The database that is filed; null for an object outside one.
    virtual AcDbDatabase* database() const = 0;
    // What a drawing file's own filer can do besides; null for every other filer.
    virtual sg::model::DwgForm* dwgForm() { return nullptr; }

    virtual Acad::ErrorStatus readHardOwnershipId(AcDbHardOwnershipId* id) = 0;
    virtual Acad::ErrorStatus writeHardOwnershipId(const AcDbHardOwnershipId& id) = 0;
    virtual Acad::ErrorStatus readSoftOwnershipId(AcDbSoftOwnershipId* id) = 0;
    virtual Acad::ErrorStatus writeSoftOwnershipId(const AcDbSoftOwnershipId& id) = 0;
    virtual Acad::ErrorStatus readHardPointerId(AcDbHardPointerId* id) = 0;
    virtual Acad::ErrorStatus writeHardPointerId(const AcDbHardPointerId& id) = 0;
    virtual Acad::ErrorStatus readSoftPointerId(AcDbSoftPointerId* id) = 0;
    virtual Acad::ErrorStatus writeSoftPointerId(const AcDbSoftPointerId& id) = 0;

    virtual Acad::ErrorStatus readInt8(int8_t* value) = 0;
    virtual Acad::ErrorStatus writeInt8(int8_t value) = 0;
    virtual Acad::ErrorStatus readInt16(int16_t* value) = 0;
    virtual Acad::ErrorStatus writeInt16(int16_t value) = 0;
    virtual Acad::ErrorStatus readInt32(int32_t* value) = 0;
    virtual Acad::ErrorStatus writeInt32(int32_t value) = 0;
    virtual Acad::ErrorStatus readInt64(int64_t* value) = 0;
    virtual Acad::ErrorStatus writeInt64(int64_t value) = 0;
    virtual Acad::ErrorStatus readUInt8(uint8_t* value) = 0;
    virtual Acad::ErrorStatus writeUInt8(uint8_t value) = 0;
    virtual Acad::ErrorStatus readUInt16(uint16_t* value) = 0;
    virtual Acad::ErrorStatus writeUInt16(uint16_t value) = 0;
    virtual Acad::ErrorStatus readUInt32(uint32_t* value) = 0;
    virtual Acad::ErrorStatus writeUInt32(uint32_t value) = 0;
    virtual Acad::ErrorStatus readBool(bool* value) = 0;
    virtual Acad::ErrorStatus writeBool(bool value) = 0;
    virtual Acad::ErrorStatus readDouble(double* value) = 0;
    virtual Acad::ErrorStatus writeDouble(double value) = 0;
    virtual Acad::ErrorStatus readPoint2d(AcGePoint2d* value) = 0;
    virtual Acad::ErrorStatus writePoint2d(const AcGePoint2d& value) = 0;
    virtual Acad::ErrorStatus readPoint3d(AcGePoint3d* value) = 0;
    virtual Acad::ErrorStatus writePoint3d(const AcGePoint3d& value) = 0;
    virtual Acad::ErrorStatus readVector2d(AcGeVector2d* value) = 0;
    virtual Acad::ErrorStatus writeVector2d(const AcGeVector2d& value) = 0;
    virtual Acad::ErrorStatus readVector3d(AcGeVector3d* value) = 0;
    virtual Acad::ErrorStatus writeVector3d(const AcGeVector3d& value) = 0;
    virtual Acad::ErrorStatus readScale3d(AcGeScale3d* value) = 0;
    virtual Acad::ErrorStatus writeScale3d(const AcGeScale3d& value) = 0;
    virtual Acad::ErrorStatus readString(std::wstring& value) = 0;
    virtual Acad::ErrorStatus writeString(const std::wstring& value) = 0;
    virtual Acad::ErrorStatus readAcDbHandle(AcDbHandle* value) = 0;
    virtual Acad::ErrorStatus writeAcDbHandle(const AcDbHandle& value) = 0;
    virtual Acad::ErrorStatus readBytes(void* bytes, size_t count) = 0;
    virtual Acad::ErrorStatus writeBytes(const void* bytes, size_t count) = 0;
};

// The stream of groups, a code and a value each, through which an object goes out and comes in.
class SG_API AcDbDxfFiler {
  public:
    virtual ~AcDbDxfFiler() = default;

    virtual AcDb::FilerType filerType() const = 0;
    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual void setFilerStatus(Acad::ErrorStatus status) = 0;
    virtual void resetFilerStatus() = 0;
    virtual AcDb::AcDbDwgVersion dwgVersion() const { return AcDb::kDHL_CURRENT; }
    virtual AcDbDatabase* database() const = 0;

    // --- Reading

    // The next group of the object's class data. eEndOfFile when the object's groups are over; that
    // is no failure, and filerStatus() stays as it is. A subclass marker (100) is a group like any
    // other here. Of a group that holds an object, the value is its entity name, for handles too. A
    // string belongs to the filer and holds until the next call.
    virtual Acad::ErrorStatus readItem(resbuf* group) = 0;
    // The group that was read last is given again by the next readItem().
    virtual Acad::ErrorStatus pushBackItem() = 0;
    // True, and it is taken, when the next group is the subclass marker `name`. A filer of groups
    // that have no markers (the older releases, and entmake) answers true when its object's groups
    // are not over, and takes nothing.
    virtual bool atSubclassData(const wchar_t* name) = 0;
    bool atSubClassData(const wchar_t* name) { return atSubclassData(name); }
    virtual bool atEndOfObject() = 0;
    // The extended data behind the class data, from its first 1001 node on; null when there is
    // none. The caller releases it.
    virtual resbuf* takeExtendedData() { return nullptr; }
    // The object that an entity name in a group stands for; the null id for one that does not exist
    // yet and never will.
    virtual AcDbObjectId objectId(const ads_name name) const = 0;
    // Why reading fails, for messages; sets the status.
    virtual Acad::ErrorStatus setError(Acad::ErrorStatus status, const std::wstring& text) = 0;
    virtual std::wstring errorMessage() const = 0;

    // --- Writing. kDfltPrec is 16 significant digits.

    enum { kDfltPrec = -1, kMaxPrec = 16 };

    // True when the reader of this output can do without values that are the default.
    virtual bool includesDefaultValues() const { return false; }

    virtual Acad::ErrorStatus writeItem(const resbuf& group) = 0;  // one, its list is not followed
    virtual Acad::ErrorStatus writeObjectId(int code, AcDbObjectId id) = 0;
    virtual Acad::ErrorStatus writeInt8(int code, int8_t value) = 0;
    virtual Acad::ErrorStatus writeInt16(int code, int16_t value) = 0;
    virtual Acad::ErrorStatus writeInt32(int code, int32_t value) = 0;
    virtual Acad::ErrorStatus writeInt64(int code, int64_t value) = 0;
    virtual Acad::ErrorStatus writeUInt8(int code, uint8_t value) = 0;
    virtual Acad::ErrorStatus writeUInt16(int code, uint16_t value) = 0;
    virtual Acad::ErrorStatus writeUInt32(int code, uint32_t value) = 0;
    virtual Acad::ErrorStatus writeBool(int code, bool value) = 0;
    virtual Acad::ErrorStatus writeDouble(int code, double value, int precision = kDfltPrec) = 0;
    virtual Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d& value,
                                           int precision = kDfltPrec) = 0;
    virtual Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d& value,
                                           int precision = kDfltPrec) = 0;
    virtual Acad::ErrorStatus writeVector3d(int code, const AcGeVector3d& value,
                                            int precision = kDfltPrec) = 0;
    virtual Acad::ErrorStatus writeString(int code, const wchar_t* value) = 0;
    Acad::ErrorStatus writeString(int code, const std::wstring& value) {
        return writeString(code, value.c_str());
    }
    virtual Acad::ErrorStatus writeAcDbHandle(int code, const AcDbHandle& value) = 0;
    virtual Acad::ErrorStatus writeBChunk(int code, const void* bytes, size_t count) = 0;
};
