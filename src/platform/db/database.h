#pragma once

#include <memory>
#include <string>

#include "base/export.h"
#include "platform/db/block_table.h"
#include "platform/db/dictionary.h"
#include "platform/db/id_mapping.h"
#include "platform/db/layer_table.h"
#include "platform/db/linetype_table.h"
#include "platform/db/object.h"
#include "platform/db/text_style_table.h"
#include "platform/db/transactions.h"

class AcDbSymbolTable;

namespace sg::model {
class DatabaseState;
}

// One drawing's objects. A database belongs to the document that shows it, or to whoever made it.
class SG_API AcDbDatabase {
  public:
    // `buildDefaultDrawing`: with the tables, the spaces and the dictionaries of a new drawing.
    // Without, it is to be read from a file. `noDocument`: no document is told of its changes.
    explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
    AcDbDatabase(const AcDbDatabase&) = delete;
    AcDbDatabase& operator=(const AcDbDatabase&) = delete;
    // Destroys its objects; ids of it are not valid any more.
    virtual ~AcDbDatabase();

    // The file that the database was read from or last saved to; eFileNotFound, and `name` empty,
    // for a drawing that has no file yet.
    Acad::ErrorStatus getFilename(std::wstring& name) const;
    void setFilename(const std::wstring& name);

    // --- Tables and dictionaries. The get... forms open them.

    AcDbObjectId blockTableId() const;
    AcDbObjectId layerTableId() const;
    AcDbObjectId linetypeTableId() const;
    AcDbObjectId textStyleTableId() const;
    AcDbObjectId dimStyleTableId() const;
    AcDbObjectId viewTableId() const;
    AcDbObjectId viewportTableId() const;
    AcDbObjectId UCSTableId() const;
    AcDbObjectId regAppTableId() const;
    AcDbObjectId namedObjectsDictionaryId() const;
    AcDbObjectId groupDictionaryId() const;
    AcDbObjectId layoutDictionaryId() const;
    AcDbObjectId plotStyleNameDictionaryId() const;

    Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode) const {
        return acdbOpenObject(table, blockTableId(), mode);
    }
    Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode) const {
        return acdbOpenObject(table, layerTableId(), mode);
    }
    Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) const {
        return acdbOpenObject(table, linetypeTableId(), mode);
    }
    Acad::ErrorStatus getTextStyleTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode) const {
        return acdbOpenObject(table, textStyleTableId(), mode);
    }
    Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) const {
        return getBlockTable(table, mode);
    }
    Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) const {
        return getLayerTable(table, mode);
    }
    Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) const {
        return getLinetypeTable(table, mode);
    }
    Acad::ErrorStatus getSymbolTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode) const {
        return getTextStyleTable(table, mode);
    }
    Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                                AcDb::OpenMode mode) const {
        return acdbOpenObject(dictionary, namedObjectsDictionaryId(), mode);
    }
    Acad::ErrorStatus getGroupDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode) const {
        return acdbOpenObject(dictionary, groupDictionaryId(), mode);
    }
    Acad::ErrorStatus getLayoutDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode) const {
        return acdbOpenObject(dictionary, layoutDictionaryId(), mode);
    }

    AcDbObjectId modelSpaceId() const;
    AcDbObjectId paperSpaceId() const;
    AcDbObjectId currentSpaceId() const;  // where new entities go
    AcDbObjectId layerZero() const;
    AcDbObjectId continuousLinetype() const;
    AcDbObjectId byLayerLinetype() const;
    AcDbObjectId byBlockLinetype() const;

    // --- Header variables that programs ask for; all others by name through the system variables

    double dimscale() const;
    Acad::ErrorStatus setDimscale(double scale);
    AcDbObjectId clayer() const;
    Acad::ErrorStatus setClayer(AcDbObjectId layer);
    AcCmColor cecolor() const;
    Acad::ErrorStatus setCecolor(const AcCmColor& color);
    AcDbObjectId celtype() const;
    Acad::ErrorStatus setCeltype(AcDbObjectId linetype);
    double celtscale() const;
    AcDb::LineWeight celweight() const;
    AcDbObjectId textstyle() const;
    Acad::ErrorStatus setTextstyle(AcDbObjectId style);
    double textsize() const;
    AcDbObjectId dimstyle() const;
    double ltscale() const;
    AcGePoint3d insbase() const;
    Acad::ErrorStatus setInsbase(const AcGePoint3d& point);
    bool plotStyleMode() const;   // true: plot styles follow colours, not names
    AcDbHandle handseed() const;  // what the next new object gets

    // --- Objects

    // Gives an object its id and handle; its owner is set by the caller. It stays open for write.
    // eAlreadyInDb, eHandleInUse (the object keeps no handle).
    Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* object);
    Acad::ErrorStatus addAcDbObject(AcDbObject* object);
    // The id of a handle. eUnknownHandle; with `createIfNotFound` an id without an object.
    Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                      const AcDbHandle& handle);
    int64_t approxNumObjects() const;  // erased ones counted

    AcDbDatabase* origin() { return this; }
    AcDbTransactionManager* transactionManager() const;

    // --- Copies between databases

    // Makes a block `name` of this database of the model space of another: its entities are copied,
    // with what they need; records whose names are here already stay as they are here. A block that
    // has the name gets the new content. The source is emptied unless `preserveSource`.
    // eInvalidBlockName, eSelfReference.
    Acad::ErrorStatus insert(AcDbObjectId& blockId, const wchar_t* name, AcDbDatabase* source,
                             bool preserveSource = true);
    // Copies into the current space of `this`, moved by the transform.
    Acad::ErrorStatus insert(const AcGeMatrix3d& transform, AcDbDatabase* source,
                             bool preserveSource = true);
    // Copies of objects of this database, in `owner`, with what they own; ids that point at what is
    // copied point at the copies.
    Acad::ErrorStatus deepCloneObjects(const AcDbObjectIdArray& objects, AcDbObjectId owner,
                                       AcDbIdMapping& mapping);
    // Copies of objects of another database into `owner` of this one, with what they own or need.
    Acad::ErrorStatus wblockCloneObjects(const AcDbObjectIdArray& objects, AcDbObjectId owner,
                                         AcDbIdMapping& mapping,
                                         AcDb::DuplicateRecordCloning duplicates);
    // A new database with a block, or these objects, as its model space; the caller owns it.
    Acad::ErrorStatus wblock(AcDbDatabase*& output, AcDbObjectId block);
    Acad::ErrorStatus wblock(AcDbDatabase*& output, const AcDbObjectIdArray& entities,
                             const AcGePoint3d& base);

    // Takes out of `ids` what something not in it refers to hard; what is left may be erased.
    Acad::ErrorStatus purge(AcDbObjectIdArray& ids) const;

    // --- Files

    // eFileNotFound, eFileAccessErr, eUnknownFileType. On failure the database is as a new one
    // without objects. The mode (a sharing mode) is not used; a password is refused.
    Acad::ErrorStatus readDwgFile(const wchar_t* path, int mode = 3,
                                  bool allowCodePageConversion = false,
                                  const wchar_t* password = nullptr);

  private:
    friend class sg::model::DatabaseState;
    friend struct sg::model::ObjectAccess;

    std::unique_ptr<sg::model::DatabaseState> state_;
};

// What the drawing database asks of the program around it.
class SG_API AcDbHostApplicationServices {
  public:
    virtual ~AcDbHostApplicationServices() = default;

    // The database that operations without a database argument work on: that of the current
    // document, unless set otherwise. Null when no document is open.
    virtual AcDbDatabase* workingDatabase() const = 0;
    virtual void setWorkingDatabase(AcDbDatabase* database) = 0;

    enum FindFileHint { kDefault = 0, kFontFile, kCompiledShapeFile, kEmbeddedImageFile };
    // The full path of a file on the support path. eFileNotFound.
    virtual Acad::ErrorStatus findFile(std::wstring& path, const wchar_t* name,
                                       AcDbDatabase* database = nullptr,
                                       FindFileHint hint = kDefault) = 0;
};

SG_API AcDbHostApplicationServices* acdbHostApplicationServices();

// Lets an application keep extended data in the working database. RTNORM, also when it may already;
// RTERROR for a name that no table record can have.
SG_API int acdbRegApp(const wchar_t* name);
