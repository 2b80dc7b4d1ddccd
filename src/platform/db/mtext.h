#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/db/entity.h"

namespace sg::text {
struct TextLayout;
}

// Text of several lines, with formatting in its contents: "\P" ends a paragraph, braces limit a
// change, "\L", "\O", "\K" under-, over- and strike-through lines, "\H", "\W", "\Q", "\T", "\C",
// "\c", "\f", "\F", "\A", "\S", "\p" height, width, slant, spacing, colour, font, alignment, stack
// and paragraph.
class SG_API AcDbMText : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbMText)
    AcDbMText();
    ~AcDbMText() override;

    enum AttachmentPoint : int16_t {
        kTopLeft = 1,
        kTopCenter = 2,
        kTopRight = 3,
        kMiddleLeft = 4,
        kMiddleCenter = 5,
        kMiddleRight = 6,
        kBottomLeft = 7,
        kBottomCenter = 8,
        kBottomRight = 9,
    };
    enum FlowDirection : int16_t { kLtoR = 1, kTtoB = 3, kByStyle = 5 };
    enum LineSpacingStyle : int16_t { kAtLeast = 1, kExactly = 2 };

    AcGePoint3d location() const { return location_; }
    Acad::ErrorStatus setLocation(const AcGePoint3d& location);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    // Along the lines of text, in world coordinates; a unit vector.
    AcGeVector3d direction() const { return direction_; }
    Acad::ErrorStatus setDirection(const AcGeVector3d& direction);
    // The direction's angle from the object's x axis.
    double rotation() const;
    Acad::ErrorStatus setRotation(double rotation);

    // Lines are wrapped at this width; 0: they are not.
    double width() const { return width_; }
    Acad::ErrorStatus setWidth(double width);
    double definedHeight() const { return definedHeight_; }  // 0: none
    Acad::ErrorStatus setDefinedHeight(double height);
    double textHeight() const { return textHeight_; }
    Acad::ErrorStatus setTextHeight(double height);
    AcDbObjectId textStyle() const { return style_; }
    Acad::ErrorStatus setTextStyle(AcDbObjectId style);
    AttachmentPoint attachment() const { return attachment_; }
    Acad::ErrorStatus setAttachment(AttachmentPoint attachment);
    FlowDirection flowDirection() const { return flow_; }
    Acad::ErrorStatus setFlowDirection(FlowDirection direction);
    const std::wstring& contents() const { return contents_; }
    // eInvalidInput for null. All of it is taken, whatever its formatting codes are worth.
    Acad::ErrorStatus setContents(const wchar_t* contents);
    // Without formatting; paragraphs end in a line feed.
    std::wstring text() const;
    LineSpacingStyle lineSpacingStyle() const { return lineSpacingStyle_; }
    double lineSpacingFactor() const { return lineSpacingFactor_; }
    Acad::ErrorStatus setLineSpacingStyle(LineSpacingStyle style);
    Acad::ErrorStatus setLineSpacingFactor(double factor);  // 0.25 to 4, else eOutOfRange

    bool backgroundFillOn() const { return fill_ != nullptr && (fill_->flags & 1) != 0; }
    Acad::ErrorStatus setBackgroundFill(bool on);
    bool useBackgroundColorOn() const { return fill_ != nullptr && (fill_->flags & 2) != 0; }
    Acad::ErrorStatus setUseBackgroundColor(bool on);
    Acad::ErrorStatus getBackgroundFillColor(AcCmColor& color) const;
    Acad::ErrorStatus setBackgroundFillColor(const AcCmColor& color);
    Acad::ErrorStatus getBackgroundScaleFactor(double& factor) const;
    Acad::ErrorStatus setBackgroundScaleFactor(double factor);  // 1 to 5, else eOutOfRange

    // Of the text as it is laid out, in drawing units; 0 for an empty text.
    double actualWidth() const;
    double actualHeight() const;
    // How far the first line rises over its baseline, the last line sinks under its.
    double ascent() const;
    double descent() const;
    // The corners of the laid-out text in world coordinates: top left, top right, bottom left,
    // bottom right.
    Acad::ErrorStatus getBoundingPoints(AcGePoint3dArray& corners) const;

    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;
    void getEcs(AcGeMatrix3d& matrix) const override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
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
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;  // to lines of text
    void subList() const override;

  private:
    struct Fill {
        int32_t flags = 0;  // 1 on, 2 the drawing's background
        AcCmColor color;
        double scale = 1.5;
        uint32_t transparency = 0;
    };
    // Columns as DWG files from release 2018 on have them, for writing them again.
    struct Columns {
        int16_t type = 0;  // 1 fixed, 2 of heights of their own
        int32_t count = 0;
        double width = 0;
        double gutter = 0;
        bool isAutomatic = false;
        bool isReversed = false;
        std::vector<double> heights;
    };
    Acad::ErrorStatus writeColumns(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readColumns(AcDbDwgFiler& filer);
    Acad::ErrorStatus readRepeated(AcDbDwgFiler& filer);
    Fill& needFill();
    Acad::ErrorStatus writeFill(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFill(AcDbDwgFiler& filer);
    Acad::ErrorStatus writeRepeated(AcDbDwgFiler& filer) const;
    sg::text::TextLayout layOut() const;
    Acad::ErrorStatus takeField(AcDbDxfFiler* filer, const resbuf& group);

    AcGePoint3d location_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    AcGeVector3d direction_ = AcGeVector3d::kXAxis;
    double width_ = 0;
    double definedHeight_ = 0;
    double textHeight_ = 0.2;
    AcDbHardPointerId style_;
    std::wstring contents_;
    std::unique_ptr<Fill> fill_;
    std::unique_ptr<Columns> columns_;  // null: none
    double lineSpacingFactor_ = 1;
    AttachmentPoint attachment_ = kTopLeft;
    FlowDirection flow_ = kByStyle;
    LineSpacingStyle lineSpacingStyle_ = kAtLeast;
};
