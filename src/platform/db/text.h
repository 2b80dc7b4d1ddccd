#pragma once

#include <string>

#include "platform/db/entity.h"
#include "platform/gi/draw.h"

namespace AcDb {

enum TextHorzMode {
    kTextLeft = 0,
    kTextCenter = 1,
    kTextRight = 2,
    kTextAlign = 3,
    kTextMid = 4,
    kTextFit = 5,
};
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };

}  // namespace AcDb

// One line of text. Its points are in world coordinates; it lies in a plane along its normal.
class SG_API AcDbText : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbText)
    AcDbText();
    // A null style is the current one of the database that the text comes into.
    AcDbText(const AcGePoint3d& position, const wchar_t* text, AcDbObjectId style = AcDbObjectId(),
             double height = 0, double rotation = 0);
    ~AcDbText() override;

    // Where the baseline starts. With another alignment than left and base it follows from the
    // alignment point when adjustAlignment() runs.
    AcGePoint3d position() const { return position_; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    AcGePoint3d alignmentPoint() const { return alignmentPoint_; }
    Acad::ErrorStatus setAlignmentPoint(
        const AcGePoint3d& point);  // eNotApplicable when left, base
    bool isDefaultAlignment() const {
        return horizontalMode_ == AcDb::kTextLeft && verticalMode_ == AcDb::kTextBase;
    }
    AcDb::TextHorzMode horizontalMode() const { return horizontalMode_; }
    Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode mode);
    AcDb::TextVertMode verticalMode() const { return verticalMode_; }
    Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode mode);
    // Computes the position (and for aligned and fitted text height and width factor) from the
    // alignment point.
    Acad::ErrorStatus adjustAlignment(const AcDbDatabase* database = nullptr);

    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    double thickness() const { return thickness_; }
    Acad::ErrorStatus setThickness(double thickness);
    double oblique() const { return oblique_; }
    Acad::ErrorStatus setOblique(double angle);
    double rotation() const { return rotation_; }  // from the object's x axis
    Acad::ErrorStatus setRotation(double rotation);
    double height() const { return height_; }
    Acad::ErrorStatus setHeight(double height);  // eOutOfRange unless above 0
    double widthFactor() const { return widthFactor_; }
    Acad::ErrorStatus setWidthFactor(double factor);
    const std::wstring& textString() const { return text_; }
    Acad::ErrorStatus setTextString(const wchar_t* text);
    AcDbObjectId textStyle() const { return style_; }
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);
    bool isMirroredInX() const { return (generation_ & 2) != 0; }
    Acad::ErrorStatus mirrorInX(bool mirrored);
    bool isMirroredInY() const { return (generation_ & 4) != 0; }
    Acad::ErrorStatus mirrorInY(bool mirrored);

    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;
    void getEcs(AcGeMatrix3d& matrix) const override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    // Groups of this class behind its first marker; an attribute's second half stands elsewhere.
    Acad::ErrorStatus dxfOutText(AcDbDxfFiler* filer) const;
    Acad::ErrorStatus dxfInText(AcDbDxfFiler* filer);
    void takeHorizontalMode(int mode);
    void takeVerticalMode(int mode);
    // What this text is drawn with: its style's font, and its own height and shape.
    AcGiTextStyle drawingStyle() const;

    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    void subList() const override;

  private:
    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer, sg::model::DwgForm& form) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer, sg::model::DwgForm& form);
    Acad::ErrorStatus readOldFile(AcDbDwgFiler& filer);
    Acad::ErrorStatus fitBetween();

    AcGePoint3d position_, alignmentPoint_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double thickness_ = 0;
    double oblique_ = 0;
    double rotation_ = 0;
    double height_ = 0.2;
    double widthFactor_ = 1;
    std::wstring text_;
    AcDbHardPointerId style_;
    AcDb::TextHorzMode horizontalMode_ = AcDb::kTextLeft;
    AcDb::TextVertMode verticalMode_ = AcDb::kTextBase;
    uint8_t generation_ = 0;  // 2 backward, 4 upside down
};
