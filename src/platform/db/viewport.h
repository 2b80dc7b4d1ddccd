#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/db/entity.h"
#include "platform/ge/point2d.h"

// A window of a sheet onto the model.
class SG_API AcDbViewport : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbViewport)
    AcDbViewport();
    ~AcDbViewport() override;

    AcGePoint3d centerPoint() const { return center_; }  // on the sheet
    Acad::ErrorStatus setCenterPoint(const AcGePoint3d& center);
    double width() const { return width_; }
    Acad::ErrorStatus setWidth(double width);
    double height() const { return height_; }
    Acad::ErrorStatus setHeight(double height);
    int16_t number() const { return number_; }  // -1: not shown
    // Of its sheet's windows, from 1 on; 1 stands for the sheet itself, 0 for one that came from no
    // file.
    int16_t sheetNumber() const { return sheetNumber_; }
    bool isOn() const { return (statusFlags_ & 0x20000) == 0; }
    Acad::ErrorStatus setOn();
    Acad::ErrorStatus setOff();

    AcGePoint3d viewTarget() const { return target_; }
    Acad::ErrorStatus setViewTarget(const AcGePoint3d& target);
    AcGeVector3d viewDirection() const { return direction_; }  // from the target to the eye
    Acad::ErrorStatus setViewDirection(const AcGeVector3d& direction);
    double viewHeight() const { return viewHeight_; }
    Acad::ErrorStatus setViewHeight(double height);
    AcGePoint2d viewCenter() const { return viewCenter_; }  // in display coordinates
    Acad::ErrorStatus setViewCenter(const AcGePoint2d& center);
    double twistAngle() const { return twist_; }
    Acad::ErrorStatus setTwistAngle(double angle);
    // What the window is cut to; null for its own rectangle.
    AcDbObjectId clipEntityId() const { return clipEntity_; }
    double customScale() const;  // of the sheet through the model
    Acad::ErrorStatus setCustomScale(double scale);

    // Layers that do not show in this window. What is no layer of the database gives eInvalidInput,
    // and nothing changes.
    Acad::ErrorStatus freezeLayersInViewport(const AcDbObjectIdArray& layers);
    Acad::ErrorStatus thawLayersInViewport(const AcDbObjectIdArray& layers);
    Acad::ErrorStatus thawAllLayersInViewport();
    bool isLayerFrozenInViewport(AcDbObjectId layer) const;
    Acad::ErrorStatus getFrozenLayerList(AcDbObjectIdArray& layers) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override;  // its frame
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    void subList() const override;

  private:
    template <class Value>
    Acad::ErrorStatus assign(Value& member, const Value& value);
    template <class Visitor>
    void visitFields(Visitor&& visit);
    template <class Visitor>
    void visitFile(Visitor&& visit, AcDbDwgFiler* filer, uint32_t& frozen);
    template <class Visitor>
    void visitLight(Visitor&& visit);
    template <class Visitor>
    void visitLightObjects(Visitor&& visit);
    std::array<AcGePoint3d, 4> corners() const;
    void takeField(AcDbDxfFiler* filer, const resbuf& group);

    AcGePoint3d center_, target_;
    double width_ = 0;
    double height_ = 0;
    int16_t number_ = -1;
    int16_t sheetNumber_ = 0;
    int32_t statusFlags_ = 0;
    AcGeVector3d direction_ = AcGeVector3d::kZAxis;
    double viewHeight_ = 1;
    AcGePoint2d viewCenter_;
    double twist_ = 0;
    double lensLength_ = 50;
    double frontClip_ = 0;
    double backClip_ = 0;
    double snapAngle_ = 0;
    AcGePoint2d snapBase_, snapSpacing_{0.5, 0.5}, gridSpacing_{0.5, 0.5};
    int16_t circleSides_ = 1000;
    int16_t renderMode_ = 0;
    AcGePoint3d ucsOrigin_;
    AcGeVector3d ucsXAxis_ = AcGeVector3d::kXAxis;
    AcGeVector3d ucsYAxis_ = AcGeVector3d::kYAxis;
    bool ucsPerViewport_ = true;
    int16_t ucsOrthographic_ = 0;
    double elevation_ = 0;
    std::wstring plotStyleSheet_;
    AcDbHardPointerId clipEntity_;
    AcDbHardPointerId ucs_, baseUcs_;
    std::vector<AcDbSoftPointerId> frozen_;
    // What DWG files from release 2004 and 2007 on have besides, for writing it again.
    struct Look {
        int16_t majorGridLines = 5;
        int16_t shadePlot = 0;
        bool hasDefaultLights = true;
        int16_t lights = 1;  // two distant ones
        double brightness = 0;
        double contrast = 0;
        AcCmColor ambient = byIndex(250);
        AcDbSoftPointerId background, shadePlotObject;
        AcDbHardPointerId visualStyle;
        AcDbHardOwnershipId sun;

        static AcCmColor byIndex(uint16_t index) {
            AcCmColor color;
            color.setColorIndex(index);
            return color;
        }
    };
    Look look_;
};
