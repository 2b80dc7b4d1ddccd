#pragma once

#include "platform/db/object.h"

// Whether an object is drawn at the size that its sheet's scale asks for. A protocol extension of
// the classes that can be: texts, dimensions, leaders, hatches, blocks and their references, and
// the styles of texts and dimensions. The state stands in the object's extended data (application
// "AcadAnnotative").
class SG_API AcDbAnnotativeObjectPE : public AcRxObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbAnnotativeObjectPE)

    virtual bool annotative(AcDbObject* object) = 0;
    // The object is open for write.
    virtual Acad::ErrorStatus setAnnotative(AcDbObject* object, bool annotative) = 0;
};
