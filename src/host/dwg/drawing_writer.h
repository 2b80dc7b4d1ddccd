#pragma once

#include "host/dwg/object_writer.h"
#include "host/dwg/origin.h"
#include "host/dwg/write_container.h"
#include "host/dxf/releases.h"

namespace sg::dwg {

// Writes a whole drawing.
class DrawingWriter {
  public:
    DrawingWriter(const AcDbDatabase& database, const dxf::Release& release);

    Bytes write();
    // What the file does not keep of the drawing; complete after write().
    const std::vector<std::wstring>& losses() const { return losses_; }

  private:
    AcDb::AcDbDwgVersion release() const { return context_.release; }
    void findWritten();
    bool isWritten(const AcDbObject& object);
    bool hasOwnerInFile(const AcDbObject& object) const;
    void findReferences();
    void writeObjects();
    void writeTables();
    void writeBlocks();
    void writeBlock(const AcDbBlockTableRecord& block);
    void writeRow(const std::vector<AcDbObjectId>& entities, bool areParts);
    void writeOthers();
    void write(AcDbObjectId id, ObjectWriter::Neighbours neighbours);
    void write(AcDbObjectId id);
    void writeViewportHeaders();
    void lose(const AcDbObject& object);
    void tellLosses();
    void keepSections(FileParts& parts) const;
    std::vector<uint64_t> rootHandles() const;
    uint64_t handleOf(AcDbObjectId id) const;

    const model::DatabaseState& state_;
    const model::DwgOrigin* own_;
    const dxf::Release& wanted_;
    WriteContext context_;
    ClassList classes_;
    ObjectWriter objects_;
    uint64_t seed_;
    uint64_t viewportHeaders_ = 0;
    std::vector<uint8_t> isIn_;            // by the index of ids: whether the object is in the file
    std::vector<uint8_t> isDone_;          // and whether it is written
    std::map<std::wstring, size_t> lost_;  // by names
    std::map<std::wstring, size_t> wrapped_;  // kept in a form that other programs do not know
    std::vector<std::wstring> losses_;
};

}  // namespace sg::dwg
