#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/db/entity.h"
#include "platform/db/mtext.h"

namespace sg::model {
class DimensionSketch;
class FieldReader;
}  // namespace sg::model

// A dimension: points that it measures between, and an anonymous block that shows it. The block is
// made when the dimension is closed without one or with one that its points have left behind, and
// stays as it came from a file otherwise. Points are in world coordinates, angles radians in the
// plane of the dimension.
class SG_API AcDbDimension : public AcDbEntity {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDimension)
    ~AcDbDimension() override;

    // As drawing files number them.
    enum class Kind : int16_t {
        Rotated = 0,
        Aligned = 1,
        Angular2Line = 2,
        Diametric = 3,
        Radial = 4,
        Angular3Point = 5,
        Ordinate = 6,
        Arc = 8,
    };
    virtual Kind kind() const = 0;

    AcDbObjectId dimBlockId() const { return block_; }
    Acad::ErrorStatus setDimBlockId(AcDbObjectId block);
    AcDbObjectId dimensionStyle() const { return style_; }
    Acad::ErrorStatus setDimensionStyle(AcDbObjectId style);
    AcGePoint3d textPosition() const { return points_[kText]; }
    Acad::ErrorStatus setTextPosition(const AcGePoint3d& position);  // also keeps it there
    bool isUsingDefaultTextPosition() const { return !textPlaced_; }
    Acad::ErrorStatus useDefaultTextPosition();
    // Instead of the measurement, for which "<>" stands in it; empty: the measurement.
    const std::wstring& dimensionText() const { return text_; }
    Acad::ErrorStatus setDimensionText(const wchar_t* text);
    double textRotation() const { return textRotation_; }
    Acad::ErrorStatus setTextRotation(double rotation);
    double horizontalRotation() const { return horizontal_; }
    Acad::ErrorStatus setHorizontalRotation(double rotation);
    AcGeVector3d normal() const { return normal_; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);  // eInvalidInput: the zero vector
    // What it measures: drawing units or radians. 0 where the points leave it open.
    virtual double measurement() const = 0;
    // With units, prefix and suffix as the style says, and the text that goes in its place.
    std::wstring shownText() const;

    // New entities that show it as its style says, which the caller owns.
    std::vector<std::unique_ptr<AcDbEntity>> sketch() const;

    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& type) const override;
    void getEcs(AcGeMatrix3d& matrix) const override;
    void subSetDatabaseDefaults(AcDbDatabase* database) override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

  protected:
    // The points by their group codes.
    enum Slot : size_t { kDefinition, kText, k13, k14, k15, k16, k17, kSlots };

    AcDbDimension();

    const AcGePoint3d& at(Slot slot) const { return points_[slot]; }
    Acad::ErrorStatus put(Slot slot, const AcGePoint3d& point);
    template <class Value>
    Acad::ErrorStatus put(Value& member, const Value& value) {
        assertWriteEnabled();
        member = value;
        stale_ = true;
        return Acad::eOk;
    }

    // The markers behind that of this class, and the points and numbers that files have there.
    virtual std::span<const wchar_t* const> markers() const = 0;
    virtual void dxfOutOwn(AcDbDxfFiler* filer) const = 0;
    virtual bool dxfInOwn(const sg::model::FieldReader& field);
    // Which points are grips, in their order.
    virtual std::span<const Slot> grips() const = 0;
    virtual void draw(sg::model::DimensionSketch& sketch) const = 0;
    virtual bool isAngle() const { return false; }
    virtual std::wstring symbol() const { return {}; }  // in front of the measurement

    Acad::ErrorStatus subClose() override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    // Moved and turned the block goes along; scaled or mirrored it is made anew.
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices,
                                          const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, int64_t marker,
                                        const AcGePoint3d& pick, const AcGePoint3d& last,
                                        const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                        AcDbIntArray& geomIds) const override;
    Acad::ErrorStatus subExplode(AcDbVoidPtrArray& entities) const override;
    void subList() const override;

    double rotation_ = 0;      // 50
    double oblique_ = 0;       // 52
    double leaderLength_ = 0;  // 40
    bool xType_ = false;       // bit 64 of an ordinate's type

  private:
    friend class sg::model::DimensionSketch;

    // As DWG files have it: what all kinds have, then the kind's points and numbers.
    Acad::ErrorStatus writeFile(AcDbDwgFiler& filer) const;
    Acad::ErrorStatus readFile(AcDbDwgFiler& filer);
    void writeFileOwn(AcDbDwgFiler& filer) const;
    void readFileOwn(AcDbDwgFiler& filer);
    std::span<const Slot> filedPoints() const;

    // From the block to the world.
    AcGeMatrix3d blockTransform() const;
    void takeType(int type);
    bool takeGroup(const sg::model::FieldReader& field, AcDbDatabase* database);
    void dxfOutAll(AcDbDxfFiler* filer) const;
    std::vector<uint8_t> definition() const;  // what the block follows from
    std::vector<std::unique_ptr<AcDbEntity>> shownParts() const;
    void renewBlock();

    std::array<AcGePoint3d, kSlots> points_;
    AcGePoint3d blockPosition_;  // 12, in the coordinates of the plane
    double blockRotation_ = 0;   // 54
    AcDbHardPointerId block_;
    AcDbHardPointerId style_;
    std::wstring text_;
    AcGeVector3d normal_ = AcGeVector3d::kZAxis;
    double textRotation_ = 0;
    double horizontal_ = 0;
    double lineSpacing_ = 1;
    AcDbMText::LineSpacingStyle lineSpacingStyle_ = AcDbMText::kAtLeast;
    AcDbMText::AttachmentPoint attachment_ = AcDbMText::kMiddleCenter;
    bool textPlaced_ = false;
    bool blockIsOwn_ = true;  // no other dimension shows it
    bool flipFirst_ = false;
    bool flipSecond_ = false;
    bool stale_ = false;    // the block shows what was before
    AcGeMatrix3d carried_;  // where the block went since it was made
    bool moved_ = false;    // carried_ is not the identity
};
