#pragma once

#include <gtest/gtest.h>

#include "platform/db/entity.h"

namespace sg::test {

// An object that is open while this lives.
template <class Class>
class Opened {
  public:
    explicit Opened(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                    bool openErased = false) {
        status = acdbOpenObject(object_, id, mode, openErased);
        EXPECT_EQ(status, Acad::eOk);
    }
    ~Opened() {
        if (object_ != nullptr) object_->close();
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    Class* operator->() const { return object_; }
    Class* get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

    Acad::ErrorStatus status;

  private:
    Class* object_ = nullptr;
};

}  // namespace sg::test

// An entity at a point, with a reference of each kind.
class SampleEntity : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(SampleEntity)

    const AcGePoint3d& at() const { return at_; }
    void setAt(const AcGePoint3d& at);
    AcDbObjectId hard() const { return hard_; }
    AcDbObjectId soft() const { return soft_; }
    AcDbObjectId owned() const { return owned_; }
    void setHard(AcDbObjectId id);
    void setSoft(AcDbObjectId id);
    // Makes another sample of the same database that this one owns.
    AcDbObjectId addOwned();

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    static inline int alive = 0;
    static inline bool asksForProxy = false;
    SampleEntity() { ++alive; }
    ~SampleEntity() override { --alive; }

  protected:
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;  // a circle of radius 1

  private:
    AcGePoint3d at_;
    AcDbHardPointerId hard_;
    AcDbSoftPointerId soft_;
    AcDbHardOwnershipId owned_;
};
