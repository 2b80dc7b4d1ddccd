#pragma once

#include <cstdint>
#include <string>

#include "base/export.h"
#include "platform/db/color.h"
#include "platform/db/filers.h"
#include "platform/db/object.h"
#include "platform/ge/point2d.h"
#include "platform/ge/point3d.h"
#include "platform/ge/vector3d.h"

namespace sg::model {

// Walks the groups of one subclass: up to the next subclass's marker, which the filer keeps, or the
// end of the object.
//
//     FieldReader fields(filer);
//     while (fields.next()) {
//         switch (fields.code()) { case 40: radius = fields.real(); break; ... }
//     }
class SG_API FieldReader {
  public:
    explicit FieldReader(AcDbDxfFiler* filer) : filer_(filer) {}
    // For looking at one group that has been read.
    FieldReader(AcDbDxfFiler* filer, const resbuf& group) : filer_(filer), group_(group) {}

    bool next() {
        if (filer_->readItem(&group_) != Acad::eOk) return false;
        if (group_.restype != 100) return true;
        filer_->pushBackItem();
        return false;
    }

    int code() const { return group_.restype; }
    // The group's value in the kind asked for; numbers are converted, another kind gives 0, "" or
    // the null id.
    double real() const;
    int32_t integer() const;
    bool flag() const { return integer() != 0; }
    std::wstring text() const;
    AcGePoint3d point() const;
    AcGePoint2d point2d() const;
    AcGeVector3d vector() const { return point().asVector(); }
    AcDbObjectId objectId() const;
    const resbuf& group() const { return group_; }

  private:
    AcDbDxfFiler* filer_;
    resbuf group_{};
};

// A colour through a DWG filer: as files have it (CMC), else in one word.
SG_API Acad::ErrorStatus writeColor(AcDbDwgFiler* filer, const AcCmColor& color);
SG_API Acad::ErrorStatus readColor(AcDbDwgFiler* filer, AcCmColor& color);

// A colour from a group that holds 0xRRGGBB.
SG_API void setTrueColor(AcCmColor& color, int32_t rgb);

// Erases an object, or brings it back; one that is null, or that is so already, is left alone.
SG_API void eraseObject(AcDbObjectId id, bool erasing = true);

}  // namespace sg::model
