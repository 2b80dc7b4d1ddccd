#pragma once

#include <map>
#include <string>

#include "host/dxf/object_output.h"
#include "host/model/core/file_origin.h"
#include "platform/db/database.h"

namespace sg::model {
class DatabaseState;
}

namespace sg::dxf {

// Writes a whole drawing.
class DrawingWriter {
  public:
    DrawingWriter(const AcDbDatabase& database, GroupOutput& output, const Release& release);

    void write();
    // What the file does not keep of the drawing, by names in files; complete after write().
    const std::map<std::wstring, size_t>& losses() const { return losses_; }
    // Of what it keeps only how it looks.
    const std::map<std::wstring, size_t>& onlyShown() const { return onlyShown_; }

  private:
    std::vector<std::string> sectionNames() const;
    void writeSection(const std::string& name);
    void writeClasses();
    void writeTables();
    void writeTable(const std::string& name);
    void writeBlocks();
    void writeEntities(AcDbObjectId block);
    void writeEntity(const AcDbEntity& entity);
    void writeObjects();
    bool isWritten(const AcDbObject& object) const;
    bool hasGroups(const AcDbObject& object);

    const AcDbDatabase& database_;
    model::DatabaseState& state_;
    GroupOutput& output_;
    const Release& release_;
    ObjectOutput objects_;
    std::map<std::wstring, size_t> losses_;
    std::map<std::wstring, size_t> onlyShown_;
    model::FileOrigin none_;
    const model::FileOrigin& origin_;
};

}  // namespace sg::dxf
