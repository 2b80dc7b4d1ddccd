#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/db/entity.h"
#include "platform/gi/draw.h"

class AcDbBlockTableRecord;

// A block as an entity shows it: block references and dimensions.
namespace sg::model {

// The block's entities in the order of drawing, bottom first; the block is open. Erased ones are
// left out.
SG_API std::vector<AcDbObjectId> drawOrder(AcDbBlockTableRecord& block);

// Draws what shows of the block, through the transform. A block that shows itself ends at a depth.
void drawBlock(AcGiWorldDraw* draw, AcDbObjectId block, const AcGeMatrix3d& transform);

// Calls `visit` with a transformed copy of each entity of the block, which it owns. Ends with the
// first status other than eOk; eSelfReference for a block that shows itself.
using VisitShown = std::function<Acad::ErrorStatus(std::unique_ptr<AcDbEntity>)>;
Acad::ErrorStatus forEachShown(AcDbObjectId block, const AcGeMatrix3d& transform,
                               const VisitShown& visit);

// Definitions of attributes show as attributes only, unless they are constant.
bool showsInReferences(const AcDbEntity& entity);

// What stands on layer 0 or takes its looks from the block gets those of the whole.
void takeLooks(AcDbEntity& entity, const AcDbEntity& whole);

// What exploding `whole` gives: copies of the block's entities with its looks.
Acad::ErrorStatus explodeBlock(const AcDbEntity& whole, AcDbObjectId block,
                               const AcGeMatrix3d& transform, AcDbVoidPtrArray& entities);

}  // namespace sg::model
