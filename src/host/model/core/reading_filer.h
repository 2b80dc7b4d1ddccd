#pragma once

#include "platform/db/filers.h"

namespace sg::model {

// A DXF filer to read from: what is written to it is refused with eInvalidInput, which also becomes
// its status. Base: AcDbDxfFiler, or a class over it.
template <class Base>
class ReadingFiler : public Base {
  public:
    using Base::Base;

    Acad::ErrorStatus writeItem(const resbuf&) final { return refuse(); }
    Acad::ErrorStatus writeObjectId(int, AcDbObjectId) final { return refuse(); }
    Acad::ErrorStatus writeInt8(int, int8_t) final { return refuse(); }
    Acad::ErrorStatus writeInt16(int, int16_t) final { return refuse(); }
    Acad::ErrorStatus writeInt32(int, int32_t) final { return refuse(); }
    Acad::ErrorStatus writeInt64(int, int64_t) final { return refuse(); }
    Acad::ErrorStatus writeUInt8(int, uint8_t) final { return refuse(); }
    Acad::ErrorStatus writeUInt16(int, uint16_t) final { return refuse(); }
    Acad::ErrorStatus writeUInt32(int, uint32_t) final { return refuse(); }
    Acad::ErrorStatus writeBool(int, bool) final { return refuse(); }
    Acad::ErrorStatus writeDouble(int, double, int) final { return refuse(); }
    Acad::ErrorStatus writePoint2d(int, const AcGePoint2d&, int) final { return refuse(); }
    Acad::ErrorStatus writePoint3d(int, const AcGePoint3d&, int) final { return refuse(); }
    Acad::ErrorStatus writeVector3d(int, const AcGeVector3d&, int) final { return refuse(); }
    Acad::ErrorStatus writeString(int, const wchar_t*) final { return refuse(); }
    Acad::ErrorStatus writeAcDbHandle(int, const AcDbHandle&) final { return refuse(); }
    Acad::ErrorStatus writeBChunk(int, const void*, size_t) final { return refuse(); }

  private:
    Acad::ErrorStatus refuse() {
        this->setFilerStatus(Acad::eInvalidInput);
        return Acad::eInvalidInput;
    }
};

}  // namespace sg::model
