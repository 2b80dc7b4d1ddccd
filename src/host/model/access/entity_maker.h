#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "platform/db/block_reference.h"
#include "platform/db/database.h"
#include "platform/lisp/resbuf.h"

namespace sg::model {

// Makes objects of a drawing from lists of groups, as entmake does: one call an object, and several
// for what consists of several. POLYLINE and, with group 66, INSERT stay open for their vertices or
// attributes until SEQEND; BLOCK stays open for its entities until ENDBLK.
class SG_API EntityMaker {
  public:
    explicit EntityMaker(AcDbDatabase& database) : database_(database) {}
    ~EntityMaker();
    EntityMaker(const EntityMaker&) = delete;
    EntityMaker& operator=(const EntityMaker&) = delete;

    struct Result {
        bool made = false;
        AcDbObjectId id;         // of what is in the drawing now
        std::wstring blockName;  // of a block that is complete
    };
    // `objects`: also objects that no table holds, which somebody has to give an owner. A list that
    // does not describe an object makes nothing, and what was open is given up.
    Result make(const resbuf* groups, bool objects);

    // Gives up what is open.
    void reset();

  private:
    bool wouldShowItself(const AcDbBlockReference& reference) const;
    Result makeEntity(const resbuf* groups, const AcRxClass* type);
    Result beginBlock(const resbuf* groups);
    Result endBlock();
    bool replaceContents(AcDbObjectId existing);
    Result addPart(const resbuf* groups, const AcRxClass* type);
    Result endParts();
    Result makeRecord(const resbuf* groups, AcDbObjectId table, const AcRxClass* type);
    Result makeObject(const resbuf* groups, const AcRxClass* type);
    bool fill(AcDbObject& object, const resbuf* groups);
    bool append(AcDbEntity* entity, AcDbObjectId space, AcDbObjectId& id);
    AcDbObjectId spaceOf(const resbuf* groups) const;

    AcDbDatabase& database_;
    std::unique_ptr<AcDbEntity> whole_;  // waits for its parts
    std::vector<std::unique_ptr<AcDbEntity>> parts_;
    AcDbObjectId space_;      // where it goes
    AcDbObjectId block_;      // the one that is open, under a name of its own
    std::wstring blockName_;  // what it is to be called
};

// Makes the layer that a list of groups names (8) when it is not there. Unless it is kept it goes
// with this: what fails leaves no layer behind.
class SG_API NeededLayer {
  public:
    NeededLayer(AcDbDatabase& database, const resbuf* groups);
    ~NeededLayer();
    NeededLayer(const NeededLayer&) = delete;
    NeededLayer& operator=(const NeededLayer&) = delete;

    void keep() { made_.setNull(); }

  private:
    AcDbObjectId made_;  // null when the layer was there
};

// The first group with this code; null when there is none.
SG_API const resbuf* findGroup(const resbuf* groups, int code);

}  // namespace sg::model
