#pragma once

#include "host/model/curves/endless_line.h"

// A construction line, without ends. Its parameters are the distances from its base point.
class SG_API AcDbXline : public sg::model::EndlessLine {
  public:
    ACRX_DECLARE_MEMBERS(AcDbXline)
    AcDbXline();  // along the x axis
    AcDbXline(const AcGePoint3d& basePoint, const AcGeVector3d& direction);
    ~AcDbXline() override;

  protected:
    bool isEndlessBackward() const override { return true; }
};
