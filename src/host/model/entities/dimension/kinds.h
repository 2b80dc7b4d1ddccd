#pragma once

#include "host/model/entities/dimension/dimension.h"

// The kinds of dimensions, each with its points by the names that they have in its own terms.

// Between two points, parallel to the line through them.
class SG_API AcDbAlignedDimension : public AcDbDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDbAlignedDimension)
    AcDbAlignedDimension();
    AcDbAlignedDimension(const AcGePoint3d& first, const AcGePoint3d& second,
                         const AcGePoint3d& lineThrough);
    ~AcDbAlignedDimension() override;

    AcGePoint3d xLine1Point() const { return at(k13); }
    Acad::ErrorStatus setXLine1Point(const AcGePoint3d& point) { return put(k13, point); }
    AcGePoint3d xLine2Point() const { return at(k14); }
    Acad::ErrorStatus setXLine2Point(const AcGePoint3d& point) { return put(k14, point); }
    AcGePoint3d dimLinePoint() const { return at(kDefinition); }
    Acad::ErrorStatus setDimLinePoint(const AcGePoint3d& point) { return put(kDefinition, point); }
    double oblique() const { return oblique_; }  // of the extension lines; 0: upright
    Acad::ErrorStatus setOblique(double angle) { return put(oblique_, angle); }

    Kind kind() const override { return Kind::Aligned; }
    double measurement() const override;

  protected:
    virtual double angle() const;  // of the dimension line in the plane
    std::span<const wchar_t* const> markers() const override;
    void dxfOutOwn(AcDbDxfFiler* filer) const override;
    // The points measured between, the ends of the dimension line, the text.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    std::span<const Slot> grips() const override;
    void draw(sg::model::DimensionSketch& sketch) const override;
};

// Between two points, along a given direction.
class SG_API AcDbRotatedDimension : public AcDbAlignedDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRotatedDimension)
    AcDbRotatedDimension();
    AcDbRotatedDimension(double rotation, const AcGePoint3d& first, const AcGePoint3d& second,
                         const AcGePoint3d& lineThrough);
    ~AcDbRotatedDimension() override;

    double rotation() const { return rotation_; }
    Acad::ErrorStatus setRotation(double rotation) { return put(rotation_, rotation); }

    Kind kind() const override { return Kind::Rotated; }

  protected:
    double angle() const override { return rotation_; }
    std::span<const wchar_t* const> markers() const override;
};

// Between two lines.
class SG_API AcDb2LineAngularDimension : public AcDbDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDb2LineAngularDimension)
    AcDb2LineAngularDimension();
    AcDb2LineAngularDimension(const AcGePoint3d& firstStart, const AcGePoint3d& firstEnd,
                              const AcGePoint3d& secondStart, const AcGePoint3d& secondEnd,
                              const AcGePoint3d& arcThrough);
    ~AcDb2LineAngularDimension() override;

    AcGePoint3d xLine1Start() const { return at(k13); }
    AcGePoint3d xLine1End() const { return at(k14); }
    AcGePoint3d xLine2Start() const { return at(k15); }
    AcGePoint3d xLine2End() const { return at(kDefinition); }
    AcGePoint3d arcPoint() const { return at(k16); }
    Acad::ErrorStatus setArcPoint(const AcGePoint3d& point) { return put(k16, point); }

    Kind kind() const override { return Kind::Angular2Line; }
    double measurement() const override;

  protected:
    std::span<const wchar_t* const> markers() const override;
    void dxfOutOwn(AcDbDxfFiler* filer) const override;
    std::span<const Slot> grips() const override;
    void draw(sg::model::DimensionSketch& sketch) const override;
    bool isAngle() const override { return true; }
};

// At a vertex, between the directions to two points.
class SG_API AcDb3PointAngularDimension : public AcDbDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDb3PointAngularDimension)
    AcDb3PointAngularDimension();
    AcDb3PointAngularDimension(const AcGePoint3d& center, const AcGePoint3d& first,
                               const AcGePoint3d& second, const AcGePoint3d& arcThrough);
    ~AcDb3PointAngularDimension() override;

    AcGePoint3d centerPoint() const { return at(k15); }
    AcGePoint3d xLine1Point() const { return at(k13); }
    AcGePoint3d xLine2Point() const { return at(k14); }
    AcGePoint3d arcPoint() const { return at(kDefinition); }
    Acad::ErrorStatus setArcPoint(const AcGePoint3d& point) { return put(kDefinition, point); }

    Kind kind() const override { return Kind::Angular3Point; }
    double measurement() const override;

  protected:
    std::span<const wchar_t* const> markers() const override;
    void dxfOutOwn(AcDbDxfFiler* filer) const override;
    std::span<const Slot> grips() const override;
    void draw(sg::model::DimensionSketch& sketch) const override;
    bool isAngle() const override { return true; }
};

// Along an arc, between two points of it.
class SG_API AcDbArcDimension : public AcDb3PointAngularDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDbArcDimension)
    AcDbArcDimension();
    AcDbArcDimension(const AcGePoint3d& center, const AcGePoint3d& first, const AcGePoint3d& second,
                     const AcGePoint3d& arcThrough);
    ~AcDbArcDimension() override;

    Kind kind() const override { return Kind::Arc; }
    double measurement() const override;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

  protected:
    std::span<const wchar_t* const> markers() const override;
    void dxfOutOwn(AcDbDxfFiler* filer) const override;
    bool dxfInOwn(const sg::model::FieldReader& field) override;
    bool isAngle() const override { return false; }
    std::wstring symbol() const override { return L"\x2312"; }

  private:
    bool partial_ = false;
    bool hasLeader_ = false;
    double startParameter_ = 0;
    double endParameter_ = 0;
};

// From the centre of a circle to a point of it.
class SG_API AcDbRadialDimension : public AcDbDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRadialDimension)
    AcDbRadialDimension();
    AcDbRadialDimension(const AcGePoint3d& center, const AcGePoint3d& chord, double leaderLength);
    ~AcDbRadialDimension() override;

    AcGePoint3d center() const { return at(kDefinition); }
    AcGePoint3d chordPoint() const { return at(k15); }
    Acad::ErrorStatus setChordPoint(const AcGePoint3d& point) { return put(k15, point); }
    double leaderLength() const { return leaderLength_; }

    Kind kind() const override { return Kind::Radial; }
    double measurement() const override { return at(kDefinition).distanceTo(at(k15)); }

  protected:
    std::span<const wchar_t* const> markers() const override;
    void dxfOutOwn(AcDbDxfFiler* filer) const override;
    std::span<const Slot> grips() const override;
    void draw(sg::model::DimensionSketch& sketch) const override;
    std::wstring symbol() const override { return L"R"; }
};

// Between two opposite points of a circle.
class SG_API AcDbDiametricDimension : public AcDbDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDiametricDimension)
    AcDbDiametricDimension();
    AcDbDiametricDimension(const AcGePoint3d& chord, const AcGePoint3d& farChord,
                           double leaderLength);
    ~AcDbDiametricDimension() override;

    AcGePoint3d chordPoint() const { return at(k15); }
    AcGePoint3d farChordPoint() const { return at(kDefinition); }
    double leaderLength() const { return leaderLength_; }

    Kind kind() const override { return Kind::Diametric; }
    double measurement() const override { return at(kDefinition).distanceTo(at(k15)); }

  protected:
    std::span<const wchar_t* const> markers() const override;
    void dxfOutOwn(AcDbDxfFiler* filer) const override;
    std::span<const Slot> grips() const override;
    void draw(sg::model::DimensionSketch& sketch) const override;
    std::wstring symbol() const override { return L"%%c"; }
};

// How far a point lies from an origin, along or across the horizontal direction.
class SG_API AcDbOrdinateDimension : public AcDbDimension {
  public:
    ACRX_DECLARE_MEMBERS(AcDbOrdinateDimension)
    AcDbOrdinateDimension();
    AcDbOrdinateDimension(bool xAxis, const AcGePoint3d& feature, const AcGePoint3d& leaderEnd,
                          const AcGePoint3d& origin = {});
    ~AcDbOrdinateDimension() override;

    bool isUsingXAxis() const { return xType_; }
    AcGePoint3d origin() const { return at(kDefinition); }
    AcGePoint3d definingPoint() const { return at(k13); }
    AcGePoint3d leaderEndPoint() const { return at(k14); }
    Acad::ErrorStatus setLeaderEndPoint(const AcGePoint3d& point) { return put(k14, point); }

    Kind kind() const override { return Kind::Ordinate; }
    double measurement() const override;

  protected:
    std::span<const wchar_t* const> markers() const override;
    void dxfOutOwn(AcDbDxfFiler* filer) const override;
    std::span<const Slot> grips() const override;
    void draw(sg::model::DimensionSketch& sketch) const override;
};
