#pragma once

#include "host/dxf/object_loader.h"

namespace sg::dxf {

// Reads the symbol tables, those first that others refer to.
class TableSection {
  public:
    TableSection(Reading& reading, ObjectLoader& loader) : reading_(reading), loader_(loader) {}

    void read(size_t position);

  private:
    struct Found {
        std::string name;
        size_t position;
    };
    std::vector<Found> find(size_t position);
    void readTable(const Found& found);
    void readRecords(AcDbObjectId table);
    void keep(const Found& found);

    Reading& reading_;
    ObjectLoader& loader_;
};

}  // namespace sg::dxf
