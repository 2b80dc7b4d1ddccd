#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/model/core/memory_filers.h"
#include "platform/db/color.h"
#include "platform/db/entity.h"
#include "platform/db/filers.h"

// The form that objects have in DWG files.
//
// A class has one description of its fields, dwgOutFields() and dwgInFields(). It serves every
// filer: those in memory (undo, copies, clones) and that of a DWG file, whose order and content it
// follows. A file's filer maps the plain operations so:
//
//     Int16, UInt16   BS      Bool               B       Point3d, Vector3d, Scale3d   3BD
//     Int32, UInt32   BL      Int8, UInt8, Bytes RC      Point2d, Vector2d            2RD
//     Int64           BLL     Double             BD      String                       T (TV or TU)
//     the four kinds of ids and AcDbHandle: H, of their kind, in the order of the calls, in the
//     object's handle stream; AcDbHandle as it stands in the main data (as SORTENTSTABLE has it)
//
// and what is coded otherwise goes through its DwgForm (AcDbDwgFiler::dwgForm()), which filers in
// memory don't have: the functions below write there a plain value instead. What a class needs in
// memory and a file has not is written only where dwgForm() is null, and the other way round.
//
// What a class's description does not do, since it stands elsewhere than class data does, is done
// by the reader and writer of DWG objects: sizes, type codes, handles; of objects the extended
// data, owner, reactors, extension dictionary (ObjectAccess); of entities also everything in
// EntityData and the links between neighbours. With a DwgForm, AcDbObject's and AcDbEntity's own
// fields therefore file nothing.
//
// A whole's parts, which are the entities of a block, the vertices of a polyline and the attributes
// of a block reference, are a list of ids from release 2004 on. Before, a file has the first and
// the last of them; a class then writes these, reads and drops them, and the reader of DWG objects
// puts the parts that it has read into place in the order of their links
// (ObjectAccess::adoptPart(), BlockContents::append()). An end of the sequence is read in all
// releases. Ids are read whatever kind they have in the file.
namespace sg::model {

// The class data of an object that no class reads, as a file has it.
struct KeptBits {
    int16_t release = 0;        // AcDb::AcDbDwgVersion; 0: there is nothing but graphics
    std::vector<uint8_t> data;  // the main data behind what all objects have, from the first bit on
    uint32_t dataBits = 0;
    std::vector<uint8_t> texts;  // the text stream, which files have from 2007 on, likewise
    uint32_t textBits = 0;
    struct Id {
        Reference kind = Reference::softPointer;
        AcDbObjectId id;
    };
    std::vector<Id> ids;            // those of the handle stream behind what all objects have
    std::vector<uint8_t> graphics;  // what an entity's common data has for showing it

    bool empty() const { return dataBits == 0 && textBits == 0 && ids.empty(); }

    // Through a filer in memory.
    void dwgOut(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler& filer);
};

// The codings of a DWG file beyond AcDbDwgFiler's plain operations. Each answers the filer's
// status; a read that fails leaves the value as it is.
class DwgForm {
  public:
    virtual ~DwgForm() = default;

    // `count` bits from 1 to 8, the most significant one first; BB is two.
    virtual Acad::ErrorStatus readBits(uint8_t* value, int count) = 0;
    virtual Acad::ErrorStatus writeBits(uint8_t value, int count) = 0;
    virtual Acad::ErrorStatus readRawInt16(int16_t* value) = 0;  // RS
    virtual Acad::ErrorStatus writeRawInt16(int16_t value) = 0;
    virtual Acad::ErrorStatus readRawInt32(int32_t* value) = 0;  // RL
    virtual Acad::ErrorStatus writeRawInt32(int32_t value) = 0;
    virtual Acad::ErrorStatus readRawDouble(double* value) = 0;  // RD
    virtual Acad::ErrorStatus writeRawDouble(double value) = 0;
    // DD: a number near to one that the reader has already.
    virtual Acad::ErrorStatus readNear(double* value, double known) = 0;
    virtual Acad::ErrorStatus writeNear(double value, double known) = 0;
    virtual Acad::ErrorStatus readThickness(double* value) = 0;  // BT
    virtual Acad::ErrorStatus writeThickness(double value) = 0;
    virtual Acad::ErrorStatus readExtrusion(AcGeVector3d* value) = 0;  // BE
    virtual Acad::ErrorStatus writeExtrusion(const AcGeVector3d& value) = 0;
    virtual Acad::ErrorStatus readColor(AcCmColor* value) = 0;  // CMC
    virtual Acad::ErrorStatus writeColor(const AcCmColor& value) = 0;

    // A text that stands among bytes: in UTF-16 (little-endian) from release 2007 on, else in the
    // file's code page, whose number in DWG files is codePage().
    virtual std::string encode(const std::wstring& text) const = 0;
    virtual std::wstring decode(std::string_view bytes, uint8_t codePage) const = 0;
    virtual uint8_t codePage() const = 0;

    // The block references that show a block, for writing it; in any order.
    virtual std::span<const AcDbObjectId> referencesTo(AcDbObjectId) const { return {}; }

    // The class data of the object that is read, all of it, wherever reading stands; nothing is
    // read by this.
    virtual Acad::ErrorStatus keep(KeptBits& bits) = 0;
    // True when the class data has been read to its end.
    virtual bool isRead() const { return true; }
    // Writes class data that a file had, in place of everything else. Its release is the filer's,
    // or an earlier one from 2007 on in which the class has the same form.
    virtual Acad::ErrorStatus writeKept(const KeptBits& bits) = 0;
};

// ---- Values that are plain in memory ------------------------------------------------------------

inline Acad::ErrorStatus writeThickness(AcDbDwgFiler* filer, double value) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->writeThickness(value) : filer->writeDouble(value);
}
inline Acad::ErrorStatus readThickness(AcDbDwgFiler* filer, double& value) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->readThickness(&value) : filer->readDouble(&value);
}
inline Acad::ErrorStatus writeExtrusion(AcDbDwgFiler* filer, const AcGeVector3d& value) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->writeExtrusion(value) : filer->writeVector3d(value);
}
inline Acad::ErrorStatus readExtrusion(AcDbDwgFiler* filer, AcGeVector3d& value) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->readExtrusion(&value) : filer->readVector3d(&value);
}
inline Acad::ErrorStatus writeRawDouble(AcDbDwgFiler* filer, double value) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->writeRawDouble(value) : filer->writeDouble(value);
}
inline Acad::ErrorStatus readRawDouble(AcDbDwgFiler* filer, double& value) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->readRawDouble(&value) : filer->readDouble(&value);
}
inline Acad::ErrorStatus writeNear(AcDbDwgFiler* filer, double value, double known) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->writeNear(value, known) : filer->writeDouble(value);
}
inline Acad::ErrorStatus readNear(AcDbDwgFiler* filer, double& value, double known) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->readNear(&value, known) : filer->readDouble(&value);
}
// A whole number in as many bits of a file, and a byte in memory.
inline Acad::ErrorStatus writeBits(AcDbDwgFiler* filer, uint8_t value, int count) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->writeBits(value, count) : filer->writeUInt8(value);
}
inline Acad::ErrorStatus readBits(AcDbDwgFiler* filer, uint8_t& value, int count) {
    DwgForm* const form = filer->dwgForm();
    return form != nullptr ? form->readBits(&value, count) : filer->readUInt8(&value);
}

// An enumeration, or a number of another width, as BS.
template <class Value>
Acad::ErrorStatus readInt16As(AcDbDwgFiler* filer, Value& value) {
    int16_t number = 0;
    const Acad::ErrorStatus status = filer->readInt16(&number);
    if (status == Acad::eOk) value = static_cast<Value>(number);
    return status;
}

// Bytes behind their number in 32 bits. They are read in parts, so that a damaged number asks for
// no more memory than there is data.
SG_API Acad::ErrorStatus readBytes(AcDbDwgFiler* filer, std::vector<uint8_t>& bytes);
// The same when the number is read already.
Acad::ErrorStatus readBytes(AcDbDwgFiler* filer, uint32_t size, std::vector<uint8_t>& bytes);

// ---- Parts of a whole ---------------------------------------------------------------------------

// How many parts follow. Files before 2004 have no number.
SG_API Acad::ErrorStatus writePartCount(AcDbDwgFiler* filer, size_t count);
SG_API Acad::ErrorStatus readPartCount(AcDbDwgFiler* filer, uint32_t& count);
// The parts' ids: all of them, in files before 2004 the first and the last, which are read for
// nothing.
SG_API Acad::ErrorStatus writePartIds(AcDbDwgFiler* filer,
                                      const std::vector<AcDbHardOwnershipId>& parts);
SG_API Acad::ErrorStatus readPartIds(AcDbDwgFiler* filer, uint32_t count,
                                     std::vector<AcDbHardOwnershipId>& parts);

// ---- Line weights -------------------------------------------------------------------------------

// A line weight as the number that it has in entities and layers of DWG files, and back; what is
// none is the default.
SG_API uint8_t lineWeightCode(AcDb::LineWeight weight);
SG_API AcDb::LineWeight lineWeightOf(uint8_t code);

// ---- Releases -----------------------------------------------------------------------------------

// In memory everything is in the form of the last release.
inline bool isBefore(const AcDbDwgFiler* filer, AcDb::AcDbDwgVersion release) {
    return filer->dwgVersion() < release;
}

// True for a file that knows of its parts just the first and the last.
inline bool hasLinkedParts(AcDbDwgFiler* filer) {
    return filer->dwgForm() != nullptr && isBefore(filer, AcDb::kDHL_1018);
}

// False for a proxy that a file of the release has no room for: neither does it keep bits that will
// do for it, nor is the form of its class known.
SG_API bool hasDwgForm(const AcDbObject& object, AcDb::AcDbDwgVersion release);

}  // namespace sg::model
