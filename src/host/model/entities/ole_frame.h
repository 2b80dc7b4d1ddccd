#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/db/entity.h"

// What another program has put into the drawing. Its data is kept and not looked into; it shows as
// its frame, a rectangle along the world's X and Y axes.
class SG_API AcDbOle2Frame : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbOle2Frame)
    AcDbOle2Frame();
    ~AcDbOle2Frame() override;

    enum class Type : int16_t { Link = 1, Embedded = 2, Static = 3 };

    AcGePoint3d upperLeft() const { return upperLeft_; }
    AcGePoint3d lowerRight() const { return lowerRight_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& upperLeft, const AcGePoint3d& lowerRight);
    Type type() const { return type_; }
    const std::vector<uint8_t>& data() const { return data_; }
    Acad::ErrorStatus setData(Type type, std::vector<uint8_t> data);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    // The corners go along; the rectangle between them keeps its directions.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    // The four corners from the upper left one on, counter-clockwise. One moved takes the edges
    // that end in it along.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    void subList() const override;

  private:
    std::array<AcGePoint3d, 4> corners() const;
    // Finds in the data of a DWG file where the frame is.
    Acad::ErrorStatus readFrame(AcDbDwgFiler& filer);

    int16_t version_ = 2;
    std::wstring description_;
    AcGePoint3d upperLeft_, lowerRight_;
    Type type_ = Type::Embedded;
    int16_t tileMode_ = 0;
    std::vector<uint8_t> data_;
};

// The older form, of which nothing but the data is known.
class SG_API AcDbOleFrame : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbOleFrame)
    AcDbOleFrame();
    ~AcDbOleFrame() override;

    const std::vector<uint8_t>& data() const { return data_; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    int16_t version_ = 1;
    std::vector<uint8_t> data_;
};
