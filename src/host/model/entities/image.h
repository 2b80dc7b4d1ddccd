#pragma once

#include <string>
#include <vector>

#include "platform/db/entity.h"
#include "platform/ge/arrays.h"
#include "platform/ge/vector2d.h"

namespace sg::model {
class FieldReader;
}

// A file of pixels that images of a drawing show; the dictionary ACAD_IMAGE_DICT has them.
class SG_API AcDbRasterImageDef : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRasterImageDef)
    AcDbRasterImageDef();
    ~AcDbRasterImageDef() override;

    const std::wstring& sourceFileName() const { return file_; }
    Acad::ErrorStatus setSourceFileName(const wchar_t* name);
    AcGeVector2d size() const { return size_; }  // in pixels
    Acad::ErrorStatus setSize(const AcGeVector2d& pixels);
    AcGeVector2d pixelSize() const { return pixelSize_; }  // in drawing units, as it is inserted
    bool isLoaded() const { return loaded_; }

    // The dictionary of a database, which is made when it is not there. Null on failure.
    static AcDbObjectId imageDictionary(AcDbDatabase& database);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    int32_t version_ = 0;
    std::wstring file_;
    AcGeVector2d size_;
    AcGeVector2d pixelSize_{1, 1};
    bool loaded_ = true;
    int16_t units_ = 0;  // of its resolution: 0 none, 2 centimetre, 5 inch
};

// Tells an image of changes of its definition, whose reactor it is.
class SG_API AcDbRasterImageDefReactor : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRasterImageDefReactor)
    AcDbRasterImageDefReactor();
    explicit AcDbRasterImageDefReactor(AcDbObjectId image);
    ~AcDbRasterImageDefReactor() override;

    AcDbObjectId image() const { return image_; }

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    int32_t version_ = 2;
    AcDbSoftPointerId image_;
};

// A picture of pixels in a frame, cut off at a boundary. It draws its frame; the pixels are for who
// shows it.
class SG_API AcDbRasterImage : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRasterImage)
    AcDbRasterImage();
    ~AcDbRasterImage() override;

    enum ClipType : int16_t { kRectangle = 1, kPolygon = 2 };

    AcDbObjectId imageDefId() const { return definition_; }
    Acad::ErrorStatus setImageDefId(AcDbObjectId definition);
    // The lower left corner, and the lower and the left edge.
    void getOrientation(AcGePoint3d& origin, AcGeVector3d& u, AcGeVector3d& v) const;
    // eInvalidInput for edges that span no plane.
    Acad::ErrorStatus setOrientation(const AcGePoint3d& origin, const AcGeVector3d& u,
                                     const AcGeVector3d& v);
    AcGeVector2d imageSize() const { return size_; }  // in pixels
    Acad::ErrorStatus setImageSize(const AcGeVector2d& pixels);

    // In pixels from the middle of the upper left one, y downwards: two opposite corners, or the
    // vertices of a polygon, which may end where it starts. eInvalidInput for fewer than that.
    Acad::ErrorStatus setClipBoundary(ClipType type, const AcGePoint2dArray& points);
    const std::vector<AcGePoint2d>& clipBoundary() const { return clip_; }
    ClipType clipType() const { return clipType_; }
    bool isClipped() const { return clipping_ && (display_ & kUsesClipping) != 0; }
    // The corners of what shows, in world coordinates, each once. An inverted boundary cuts a hole
    // into the image, whose own frame stays.
    std::vector<AcGePoint3d> frame() const;
    // What bounds the pixels that show: the frame, and the hole of an inverted boundary.
    std::vector<std::vector<AcGePoint3d>> shownArea() const;

    bool isShown() const { return (display_ & kShows) != 0; }  // with its pixels
    bool isTransparent() const { return (display_ & kIsTransparent) != 0; }
    int brightness() const { return brightness_; }  // 0 to 100; 50 is as it is
    int contrast() const { return contrast_; }      // 0 to 100; 50 is as it is
    int fade() const { return fade_; }              // 0 to 100

    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    virtual const wchar_t* marker() const { return L"AcDbRasterImage"; }

    // A new one gets a reactor at its definition; it goes with the image.
    Acad::ErrorStatus subClose() override;
    Acad::ErrorStatus subErase(bool erasing) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    // The corners of the frame. One of them moved, the image grows or shrinks evenly towards the
    // corner opposite; all moved, the image moves.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    // The origin, which moves the whole.
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       AcGePoint3dArray& points, int64_t thisMarker,
                                       int64_t otherMarker) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect mode,
                                       const AcGePlane& projection, AcGePoint3dArray& points,
                                       int64_t thisMarker, int64_t otherMarker) const override;
    void subList() const override;

  private:
    enum DisplayFlag : int16_t { kShows = 1, kUsesClipping = 4, kIsTransparent = 8 };

    AcGePoint3d fromPixels(const AcGePoint2d& point) const;
    std::vector<AcGePoint3d> fromPixels(const std::vector<AcGePoint2d>& corners) const;
    std::vector<AcGePoint2d> wholeFrame() const;
    std::vector<AcGePoint2d> clipFrame() const;
    void addReactor();
    bool takeGroup(const sg::model::FieldReader& field);

    int32_t version_ = 0;
    AcGePoint3d origin_;
    AcGeVector3d u_ = AcGeVector3d::kXAxis;  // of one pixel
    AcGeVector3d v_ = AcGeVector3d::kYAxis;
    AcGeVector2d size_{1, 1};
    AcDbHardPointerId definition_;
    AcDbHardOwnershipId reactor_;
    int16_t display_ = 7;
    bool clipping_ = false;
    bool clipInverted_ = false;  // what lies inside the boundary is cut off
    uint8_t brightness_ = 50;
    uint8_t contrast_ = 50;
    uint8_t fade_ = 0;
    ClipType clipType_ = kRectangle;
    std::vector<AcGePoint2d> clip_;
};

// An area that hides what lies behind it: an image without pixels.
class SG_API AcDbWipeout : public AcDbRasterImage {
  public:
    ACRX_DECLARE_MEMBERS(AcDbWipeout)
    AcDbWipeout();
    ~AcDbWipeout() override;

  protected:
    const wchar_t* marker() const override { return L"AcDbWipeout"; }
};

// How a drawing shows its images, and its wipeouts.
class SG_API AcDbRasterVariables : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbRasterVariables)
    AcDbRasterVariables();
    ~AcDbRasterVariables() override;

    // Whether images show their frames.
    static bool showsFrames(const AcDbDatabase& database);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    int32_t version_ = 0;
    int16_t frame_ = 1;
    int16_t quality_ = 1;
    int16_t units_ = 0;
};

class SG_API AcDbWipeoutVariables : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbWipeoutVariables)
    AcDbWipeoutVariables();
    ~AcDbWipeoutVariables() override;

    // Whether wipeouts show their frames.
    static bool showsFrames(const AcDbDatabase& database);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  private:
    int16_t frame_ = 1;
};
