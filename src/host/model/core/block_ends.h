#pragma once

#include "platform/db/entity.h"

// The entities with which a block begins and ends in drawing files. They stand in no block's list
// and draw nothing.
class SG_API AcDbBlockBegin : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockBegin)
    AcDbBlockBegin() = default;

    // In DWG files it has the block's name.
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    // The groups of the block that it begins: name, flags, base point, comments.
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};

class SG_API AcDbBlockEnd : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbBlockEnd)
    AcDbBlockEnd() = default;

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};
