#include "platform/db/text.h"

#include "host/model/curves/listing.h"
#include "host/model/entities/text_drawing.h"
#include "host/model/entities/text_setting.h"
#include "host/text/line.h"
#include "platform/db/database.h"

using sg::model::Frame;
using sg::model::MovedFrame;

ACRX_DXF_DEFINE_MEMBERS(AcDbText, AcDbEntity, 0, 0, L"TEXT", nullptr)

namespace {

constexpr uint8_t kBackward = 2;
constexpr uint8_t kUpsideDown = 4;
// How far letters sink under their baseline, in text heights, for texts that stand on that line.
constexpr double kSink = 1.0 / 3;

// How far the aligned point is over the baseline, in text heights.
double heightOfAlignment(AcDb::TextHorzMode horizontal, AcDb::TextVertMode vertical) {
    if (horizontal == AcDb::kTextMid) return 0.5;
    switch (vertical) {
        case AcDb::kTextBase:
            return 0;
        case AcDb::kTextBottom:
            return -kSink;
        case AcDb::kTextVertMid:
            return 0.5;
        case AcDb::kTextTop:
            return 1;
    }
    return 0;
}

// How far it is along the line, in widths of the text.
double placeOfAlignment(AcDb::TextHorzMode horizontal) {
    switch (horizontal) {
        case AcDb::kTextCenter:
        case AcDb::kTextMid:
            return 0.5;
        case AcDb::kTextRight:
            return 1;
        default:
            return 0;
    }
}

}  // namespace

AcDbText::AcDbText() = default;
AcDbText::AcDbText(const AcGePoint3d& position, const wchar_t* text, AcDbObjectId style,
                   double height, double rotation)
    : position_(position),
      alignmentPoint_(position),
      rotation_(rotation),
      text_(text == nullptr ? L"" : text),
      style_(style) {
    if (height > 0) height_ = height;
}
AcDbText::~AcDbText() = default;

// ---- Properties ---------------------------------------------------------------------------------

Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    position_ = position;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setAlignmentPoint(const AcGePoint3d& point) {
    if (isDefaultAlignment()) return Acad::eNotApplicable;
    assertWriteEnabled();
    alignmentPoint_ = point;
    if (objectId().isNull()) return Acad::eOk;
    return adjustAlignment(database());
}

// Where a text starts to be aligned, its point is where it was placed.
Acad::ErrorStatus AcDbText::setHorizontalMode(AcDb::TextHorzMode mode) {
    if (mode < AcDb::kTextLeft || mode > AcDb::kTextFit) return Acad::eInvalidInput;
    assertWriteEnabled();
    if (isDefaultAlignment()) alignmentPoint_ = position_;
    horizontalMode_ = mode;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setVerticalMode(AcDb::TextVertMode mode) {
    if (mode < AcDb::kTextBase || mode > AcDb::kTextTop) return Acad::eInvalidInput;
    assertWriteEnabled();
    if (isDefaultAlignment()) alignmentPoint_ = position_;
    verticalMode_ = mode;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setNormal(const AcGeVector3d& normal) {
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    assertWriteEnabled();
    normal_ = normal.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setThickness(double thickness) {
    assertWriteEnabled();
    thickness_ = thickness;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setOblique(double angle) {
    assertWriteEnabled();
    oblique_ = angle;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setRotation(double rotation) {
    assertWriteEnabled();
    rotation_ = rotation;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setHeight(double height) {
    if (!(height > 0)) return Acad::eOutOfRange;
    assertWriteEnabled();
    height_ = height;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setWidthFactor(double factor) {
    if (!(factor > 0)) return Acad::eOutOfRange;
    assertWriteEnabled();
    widthFactor_ = factor;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setTextString(const wchar_t* text) {
    if (text == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    text_ = text;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId style) {
    assertWriteEnabled();
    style_ = style;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::mirrorInX(bool mirrored) {
    assertWriteEnabled();
    generation_ =
        static_cast<uint8_t>(mirrored ? generation_ | kBackward : generation_ & ~kBackward);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::mirrorInY(bool mirrored) {
    assertWriteEnabled();
    generation_ =
        static_cast<uint8_t>(mirrored ? generation_ | kUpsideDown : generation_ & ~kUpsideDown);
    return Acad::eOk;
}

void AcDbText::subSetDatabaseDefaults(AcDbDatabase* database) {
    AcDbEntity::subSetDatabaseDefaults(database);
    if (database == nullptr) return;
    style_ = database->textstyle();
    const AcGiTextStyle style = sg::model::textStyleOf(style_);
    AcDbTextStyleTableRecord* record = nullptr;
    if (acdbOpenObject(record, style_) == Acad::eOk) {
        height_ = record->textSize() > 0 ? record->textSize() : database->textsize();
        generation_ = record->flagBits() & (kBackward | kUpsideDown);
        record->close();
    }
    widthFactor_ = style.widthFactor;
    oblique_ = style.oblique;
}

// ---- Geometry -----------------------------------------------------------------------------------

AcGiTextStyle AcDbText::drawingStyle() const {
    AcGiTextStyle style = sg::model::textStyleOf(style_);
    style.height = height_;
    style.widthFactor = widthFactor_;
    style.oblique = oblique_;
    style.backward = isMirroredInX();
    style.upsideDown = isMirroredInY();
    return style;
}

namespace {

Frame frameOf(const AcDbText& text) {
    return {text.position(), text.normal(), text.rotation()};
}

}  // namespace

Acad::ErrorStatus AcDbText::adjustAlignment(const AcDbDatabase*) {
    if (isDefaultAlignment()) return Acad::eOk;
    assertWriteEnabled();
    if (horizontalMode_ == AcDb::kTextAlign || horizontalMode_ == AcDb::kTextFit) {
        return fitBetween();
    }
    const std::wstring plain = sg::text::decodeLine(text_).text;
    const double width = sg::text::measureLine(plain, drawingStyle()).advance;
    const Frame frame = frameOf(*this);
    position_ = alignmentPoint_ - frame.direction() * (width * placeOfAlignment(horizontalMode_)) -
                frame.up() * (height_ * heightOfAlignment(horizontalMode_, verticalMode_));
    return Acad::eOk;
}

// From the position to the alignment point: an aligned text is as high as that makes it, a fitted
// one as broad.
Acad::ErrorStatus AcDbText::fitBetween() {
    const AcGeVector3d span = alignmentPoint_ - position_;
    const std::wstring plain = sg::text::decodeLine(text_).text;
    const double width = sg::text::measureLine(plain, drawingStyle()).advance;
    if (span.isZeroLength() || width <= 0) return Acad::eOk;
    rotation_ = sg::model::rotationOf(span.normal(), normal_);
    const double factor = span.length() / width;
    (horizontalMode_ == AcDb::kTextAlign ? height_ : widthFactor_) *= factor;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    plane = AcGePlane(position_, normal_);
    type = AcDb::kPlanar;
    return Acad::eOk;
}

void AcDbText::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

bool AcDbText::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    sg::model::drawLine(*draw, text_, frameOf(*this), drawingStyle());
    return true;
}

Acad::ErrorStatus AcDbText::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const std::wstring plain = sg::text::decodeLine(text_).text;
    const sg::text::LineBox box = sg::text::measureLine(plain, drawingStyle());
    if (box.isEmpty()) return Acad::eInvalidExtents;
    const AcGeMatrix3d toWorld = frameOf(*this).toWorld();
    for (const double x : {box.left, box.right}) {
        for (const double y : {box.bottom, box.top}) {
            extents.addPoint(toWorld * AcGePoint3d(x, y, 0));
            if (thickness_ != 0) extents.addPoint(toWorld * AcGePoint3d(x, y, thickness_));
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subTransformBy(const AcGeMatrix3d& transform) {
    MovedFrame moved;
    if (!sg::model::moveFrame(transform, frameOf(*this), moved)) return Acad::eInvalidInput;
    assertWriteEnabled();
    position_ = moved.frame.origin;
    alignmentPoint_ = transform * alignmentPoint_;
    thickness_ *= normal_.transformBy(transform).length();
    normal_ = moved.frame.normal;
    rotation_ = moved.frame.rotation;
    height_ *= moved.acrossX;
    widthFactor_ *= moved.alongX / moved.acrossX;
    oblique_ += moved.slant;
    return Acad::eOk;
}

// The start, and the aligned point where there is one.
Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                             AcDbIntArray&) const {
    assertReadEnabled();
    points.append(position_);
    if (!isDefaultAlignment()) points.append(alignmentPoint_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                const AcGeVector3d& offset) {
    if (indices.isEmpty()) return Acad::eOk;
    const bool spans = horizontalMode_ == AcDb::kTextAlign || horizontalMode_ == AcDb::kTextFit;
    if (!spans) return transformBy(AcGeMatrix3d::translation(offset));
    assertWriteEnabled();
    if (indices.contains(0)) position_ += offset;
    if (indices.contains(1)) alignmentPoint_ += offset;
    return adjustAlignment();
}

Acad::ErrorStatus AcDbText::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(isDefaultAlignment() ? position_ : alignmentPoint_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                   const AcGeVector3d& offset) {
    return indices.isEmpty() ? Acad::eOk : transformBy(AcGeMatrix3d::translation(offset));
}

Acad::ErrorStatus AcDbText::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t, const AcGePoint3d&,
                                              const AcGePoint3d&, const AcGeMatrix3d&,
                                              AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    if (mode != AcDb::kOsModeIns) return Acad::eOk;
    points.append(isDefaultAlignment() ? position_ : alignmentPoint_);
    return Acad::eOk;
}

void AcDbText::subList() const {
    AcDbEntity::subList();
    sg::model::listText(L"Text", text_.c_str());
    sg::model::listPoint(L"start point", position_);
    if (!isDefaultAlignment()) sg::model::listPoint(L"alignment point", alignmentPoint_);
    sg::model::listNumber(L"height", height_);
    sg::model::listAngle(L"rotation angle", rotation_);
    sg::model::listNumber(L"width scale factor", widthFactor_);
    sg::model::listAngle(L"obliquing angle", oblique_);
    sg::model::listThickness(thickness_);
    sg::model::listNormal(normal_);
}
