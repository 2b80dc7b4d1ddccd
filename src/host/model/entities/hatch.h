#pragma once

#include <string>
#include <vector>

#include "host/model/entities/hatch/area.h"
#include "platform/db/entity.h"

// An area filled with a pattern of lines, with one colour, or with colours that run into each
// other. The boundary and the pattern's lines are kept in the coordinates of the hatch's plane.
class SG_API AcDbHatch : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbHatch)
    AcDbHatch();
    ~AcDbHatch() override;

    enum PatternType : int16_t { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
    // Colours that run into each other.
    struct Gradient {
        struct Stop {
            double value = 0;  // 0 at the start, 1 at the end
            AcCmColor color;
        };
        int32_t on = 0;  // 1: the hatch is filled so
        int32_t reserved = 0;
        double angle = 0;  // radians
        double shift = 0;
        int32_t oneColor = 0;  // 1: the second colour is a tint of the first
        double tint = 0;
        std::vector<Stop> stops;
        std::wstring name;
    };

    const std::wstring& patternName() const { return pattern_; }
    PatternType patternType() const { return patternType_; }
    double patternAngle() const { return angle_; }
    double patternScale() const { return scale_; }  // or the spacing of a user-defined one
    const std::vector<sg::model::HatchLine>& patternLines() const { return lines_; }
    bool isSolidFill() const { return solid_; }
    bool isGradient() const { return gradient_.on != 0; }
    const Gradient& gradient() const { return gradient_; }
    // A predefined pattern, or SOLID, with angle and scale; a user-defined one has lines at the
    // distance of the scale. eInvalidInput for an unknown name and a scale of 0 or less.
    Acad::ErrorStatus setPattern(PatternType type, const wchar_t* name, double angle = 0,
                                 double scale = 1, bool doubled = false);

    sg::model::HatchStyle hatchStyle() const { return style_; }
    Acad::ErrorStatus setHatchStyle(sg::model::HatchStyle style);
    const std::vector<sg::model::HatchLoop>& loops() const { return loops_; }
    // eDegenerateGeometry for a loop without a piece.
    Acad::ErrorStatus appendLoop(sg::model::HatchLoop loop);
    bool associative() const { return associative_; }
    double elevation() const { return elevation_; }
    Acad::ErrorStatus setElevation(double elevation);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput: the zero vector

    // The stretches of line that show, in world coordinates; two same points are a dot. Nothing for
    // a solid, and for a pattern too dense to be drawn (see kMostDashes), which shows as a solid.
    std::optional<std::vector<std::pair<AcGePoint3d, AcGePoint3d>>> shownLines() const;
    static constexpr size_t kMostDashes = 1000000;

    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;
    void getEcs(AcGeMatrix3d& matrix) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    // eInvalidInput for one that flattens the plane.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    // The centre of its box, which moves the whole.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    // Lines, and points for dots. eCannotExplodeEntity for a solid.
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;
    void subList() const override;

  private:
    struct Groups;

    // As DWG files have it.
    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);
    void writeFilePattern(AcDbDwgFiler& filer) const;
    void readFilePattern(AcDbDwgFiler& filer);
    bool hasDerivedLoop() const;

    AcGeMatrix3d toWorld() const;  // from the plane, its points at height 0
    void fill(AcGiWorldDraw* draw) const;
    void dxfOutPattern(AcDbDxfFiler* filer) const;
    void dxfOutGradient(AcDbDxfFiler* filer) const;
    void completePattern(const AcDbDatabase* database);

    std::wstring pattern_ = L"SOLID";
    PatternType patternType_ = kPreDefined;
    double angle_ = 0;
    double scale_ = 1;
    bool solid_ = true;
    bool doubled_ = false;
    bool associative_ = false;
    sg::model::HatchStyle style_ = sg::model::HatchStyle::Normal;
    double elevation_ = 0;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double pixelSize_ = 0;
    std::vector<sg::model::HatchLoop> loops_;
    std::vector<sg::model::HatchLine> lines_;
    std::vector<AcGePoint2d> seeds_;
    Gradient gradient_;
};
