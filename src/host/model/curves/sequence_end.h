#pragma once

#include "platform/db/entity.h"

// Ends the vertices of a polyline, or the attributes of a block reference, that owns it.
class SG_API AcDbSequenceEnd : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbSequenceEnd)
    AcDbSequenceEnd();
    ~AcDbSequenceEnd() override;

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
};
