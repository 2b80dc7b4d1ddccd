#pragma once

#include "host/model/curves/endless_line.h"

// A line with a start and no end. Its parameters are the distances from its start.
class SG_API AcDbRay : public sg::model::EndlessLine {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRay)
    AcDbRay();  // along the x axis
    AcDbRay(const AcGePoint3d& basePoint, const AcGeVector3d& direction);
    ~AcDbRay() override;

  protected:
    bool isEndlessBackward() const override { return false; }
};
