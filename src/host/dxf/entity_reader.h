#pragma once

#include "host/dxf/object_loader.h"

namespace sg::dxf {

// Puts entities into their blocks as they come. A polyline is followed by its vertices, a block
// reference by its attributes, each up to a SEQEND.
class EntityReader {
  public:
    EntityReader(Reading& reading, ObjectLoader& loader) : reading_(reading), loader_(loader) {}

    // The next entity of the file; it goes to `block`, or for the null id to the space that it
    // names.
    void take(ScannedObject& scanned, AcDbObjectId block);
    // No more entities follow in this block or section.
    void end(size_t position);

  private:
    bool takePart(ScannedObject& scanned);
    AcDbObjectId spaceOf(const ScannedObject& scanned);

    Reading& reading_;
    ObjectLoader& loader_;
    AcDbEntity* whole_ = nullptr;  // waits for its parts
};

}  // namespace sg::dxf
