#include "host/model/tables/filing.h"

#include "host/model/core/dwg_form.h"

namespace sg::model {

double FieldReader::real() const {
    switch (acdbGroupCodeToType(group_.restype)) {
        case RTREAL:
            return group_.resval.rreal;
        case RTSHORT:
            return group_.resval.rint;
        case RTLONG:
            return group_.resval.rlong;
        case RT3DPOINT:
            return group_.resval.rpoint[0];
        default:
            return 0;
    }
}

int32_t FieldReader::integer() const {
    switch (acdbGroupCodeToType(group_.restype)) {
        case RTSHORT:
            return group_.resval.rint;
        case RTLONG:
            return group_.resval.rlong;
        case RTREAL:
            return group_.resval.rreal >= -2147483648.0 && group_.resval.rreal <= 2147483647.0
                       ? static_cast<int32_t>(group_.resval.rreal)
                       : 0;
        default:
            return 0;
    }
}

std::wstring FieldReader::text() const {
    if (acdbGroupCodeToType(group_.restype) != RTSTR || group_.resval.rstring == nullptr) return {};
    return group_.resval.rstring;
}

AcGePoint3d FieldReader::point() const {
    if (acdbGroupCodeToType(group_.restype) != RT3DPOINT) return {};
    return {group_.resval.rpoint[0], group_.resval.rpoint[1], group_.resval.rpoint[2]};
}

AcGePoint2d FieldReader::point2d() const {
    const AcGePoint3d whole = point();
    return {whole.x, whole.y};
}

AcDbObjectId FieldReader::objectId() const {
    if (acdbGroupCodeToType(group_.restype) != RTENAME) return {};
    return filer_->objectId(group_.resval.rlname);
}

Acad::ErrorStatus writeColor(AcDbDwgFiler* filer, const AcCmColor& color) {
    if (DwgForm* const form = filer->dwgForm()) return form->writeColor(color);
    const uint32_t value = color.isByColor() ? color.rgb() : color.colorIndex();
    return filer->writeUInt32(static_cast<uint32_t>(color.colorMethod()) << 24 | value);
}

Acad::ErrorStatus readColor(AcDbDwgFiler* filer, AcCmColor& color) {
    if (DwgForm* const form = filer->dwgForm()) return form->readColor(&color);
    uint32_t word = 0;
    const Acad::ErrorStatus status = filer->readUInt32(&word);
    if (status != Acad::eOk) return status;
    color = AcCmColor();
    if (word >> 24 == AcCmColor::kByColor) {
        color.setRGB(static_cast<uint8_t>(word >> 16), static_cast<uint8_t>(word >> 8),
                     static_cast<uint8_t>(word));
    } else {
        color.setColorIndex(static_cast<uint16_t>(word & 0xFFFF));
    }
    return Acad::eOk;
}

void setTrueColor(AcCmColor& color, int32_t rgb) {
    color.setRGB(static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8),
                 static_cast<uint8_t>(rgb));
}

void eraseObject(AcDbObjectId id, bool erasing) {
    if (!id.isValid() || id.isErased() == erasing) return;
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForWrite, true) != Acad::eOk) return;
    object->erase(erasing);
    object->close();
}

}  // namespace sg::model
