#pragma once

#include "base/export.h"
#include "platform/db/object_id.h"
#include "platform/rx/rxclass.h"
#include "platform/rx/rxobject.h"

class AcGiDrawableTraits;
class AcGiViewportDraw;
class AcGiWorldDraw;

// What can draw itself.
class SG_API AcGiDrawable : public AcRxObject {
  public:
    ACRX_DECLARE_MEMBERS(AcGiDrawable)

    uint32_t setAttributes(AcGiDrawableTraits* traits) { return subSetAttributes(traits); }
    // True when everything is drawn; false asks for viewportDraw() in each viewport.
    bool worldDraw(AcGiWorldDraw* draw) { return subWorldDraw(draw); }
    void viewportDraw(AcGiViewportDraw* draw) { subViewportDraw(draw); }
    uint32_t viewportDrawLogicalFlags(AcGiViewportDraw* draw) {
        return subViewportDrawLogicalFlags(draw);
    }

    virtual bool isPersistent() const = 0;  // has an id
    virtual AcDbObjectId id() const = 0;

  protected:
    virtual uint32_t subSetAttributes(AcGiDrawableTraits* traits) = 0;
    virtual bool subWorldDraw(AcGiWorldDraw* draw) = 0;
    virtual void subViewportDraw(AcGiViewportDraw* draw) = 0;
    virtual uint32_t subViewportDrawLogicalFlags(AcGiViewportDraw* draw) = 0;
};
