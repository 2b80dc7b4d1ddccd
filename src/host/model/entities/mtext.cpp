#include "platform/db/mtext.h"

#include <algorithm>
#include <array>

#include "host/model/curves/listing.h"
#include "host/model/entities/text_setting.h"
#include "host/text/mtext_layout.h"
#include "platform/db/database.h"
#include "platform/db/text.h"

using sg::model::Frame;
using sg::model::MovedFrame;
using sg::text::LineAlignment;
using sg::text::TextLayout;
using sg::text::TextLine;
using sg::text::TextRun;

ACRX_DXF_DEFINE_MEMBERS(AcDbMText, AcDbEntity, 0, 0, L"MTEXT", nullptr)

namespace {

constexpr int kOn = 1;
constexpr int kDrawingBackground = 2;

// 0 left or top, 1 in the middle, 2 right or bottom.
int columnOf(AcDbMText::AttachmentPoint attachment) {
    return (attachment - 1) % 3;
}
int rowOf(AcDbMText::AttachmentPoint attachment) {
    return (attachment - 1) / 3;
}

}  // namespace

AcDbMText::AcDbMText() = default;
AcDbMText::~AcDbMText() = default;

// ---- Properties ---------------------------------------------------------------------------------

Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d& location) {
    assertWriteEnabled();
    location_ = location;
    return Acad::eOk;
}

// The direction stays in the new plane as near to the old one as it can.
Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d& normal) {
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    assertWriteEnabled();
    normal_ = normal.normal();
    const AcGeVector3d inPlane = direction_ - normal_ * direction_.dotProduct(normal_);
    direction_ = inPlane.isZeroLength() ? normal_.perpVector() : inPlane.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setDirection(const AcGeVector3d& direction) {
    const AcGeVector3d inPlane = direction - normal_ * direction.dotProduct(normal_);
    if (inPlane.isZeroLength()) return Acad::eInvalidInput;
    assertWriteEnabled();
    direction_ = inPlane.normal();
    return Acad::eOk;
}

double AcDbMText::rotation() const {
    return sg::model::rotationOf(direction_, normal_);
}

Acad::ErrorStatus AcDbMText::setRotation(double rotation) {
    return setDirection(Frame{location_, normal_, rotation}.direction());
}

Acad::ErrorStatus AcDbMText::setWidth(double width) {
    if (!(width >= 0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    width_ = width;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setDefinedHeight(double height) {
    assertWriteEnabled();
    definedHeight_ = height;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setTextHeight(double height) {
    if (!(height > 0)) return Acad::eInvalidInput;
    assertWriteEnabled();
    textHeight_ = height;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
    assertWriteEnabled();
    style_ = style;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint attachment) {
    if (attachment < kTopLeft || attachment > kBottomRight) return Acad::eInvalidInput;
    assertWriteEnabled();
    attachment_ = attachment;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setFlowDirection(FlowDirection direction) {
    assertWriteEnabled();
    flow_ = direction;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setContents(const wchar_t* contents) {
    if (contents == nullptr) return Acad::eInvalidInput;
    assertWriteEnabled();
    contents_ = contents;
    return Acad::eOk;
}

std::wstring AcDbMText::text() const {
    return sg::text::plainText(contents_);
}

Acad::ErrorStatus AcDbMText::setLineSpacingStyle(LineSpacingStyle style) {
    if (style != kAtLeast && style != kExactly) return Acad::eInvalidInput;
    assertWriteEnabled();
    lineSpacingStyle_ = style;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setLineSpacingFactor(double factor) {
    if (!(factor >= 0.25 && factor <= 4)) return Acad::eOutOfRange;
    assertWriteEnabled();
    lineSpacingFactor_ = factor;
    return Acad::eOk;
}

AcDbMText::Fill& AcDbMText::needFill() {
    assertWriteEnabled();
    if (fill_ == nullptr) fill_ = std::make_unique<Fill>();
    return *fill_;
}

Acad::ErrorStatus AcDbMText::setBackgroundFill(bool on) {
    Fill& fill = needFill();
    fill.flags = on ? fill.flags | kOn : fill.flags & ~kOn;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setUseBackgroundColor(bool on) {
    Fill& fill = needFill();
    fill.flags = on ? fill.flags | kDrawingBackground : fill.flags & ~kDrawingBackground;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::getBackgroundFillColor(AcCmColor& color) const {
    if (!backgroundFillOn()) return Acad::eNotApplicable;
    color = fill_->color;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setBackgroundFillColor(const AcCmColor& color) {
    needFill().color = color;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::getBackgroundScaleFactor(double& factor) const {
    if (!backgroundFillOn()) return Acad::eNotApplicable;
    factor = fill_->scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::setBackgroundScaleFactor(double factor) {
    if (!(factor >= 1 && factor <= 5)) return Acad::eOutOfRange;
    needFill().scale = factor;
    return Acad::eOk;
}

void AcDbMText::subSetDatabaseDefaults(AcDbDatabase* database) {
    AcDbEntity::subSetDatabaseDefaults(database);
    if (database == nullptr) return;
    style_ = database->textstyle();
    AcDbTextStyleTableRecord* record = nullptr;
    if (acdbOpenObject(record, style_) != Acad::eOk) return;
    textHeight_ = record->textSize() > 0 ? record->textSize() : database->textsize();
    record->close();
}

// ---- Layout -------------------------------------------------------------------------------------

TextLayout AcDbMText::layOut() const {
    sg::text::LayoutOptions options;
    AcDbObjectId style = style_;
    if (style.isNull()) style = sg::model::currentTextStyle(database());
    options.style = sg::model::textStyleOf(style);
    options.style.height = textHeight_;
    options.width = width_;
    options.lineSpacing = lineSpacingFactor_;
    options.exactSpacing = lineSpacingStyle_ == kExactly;
    return sg::text::layOut(contents_, options);
}

double AcDbMText::actualWidth() const {
    assertReadEnabled();
    return layOut().width;
}

double AcDbMText::actualHeight() const {
    assertReadEnabled();
    return layOut().height;
}

double AcDbMText::ascent() const {
    assertReadEnabled();
    return layOut().ascent();
}

double AcDbMText::descent() const {
    assertReadEnabled();
    return layOut().descent();
}

namespace {

// The laid-out text against its attachment point: x to the right, y upwards.
class PlacedText {
  public:
    PlacedText(const AcDbMText& text, const TextLayout& layout)
        : layout_(layout),
          column_(columnOf(text.attachment())),
          left_(-layout.width * column_ / 2.0),
          top_(layout.height * rowOf(text.attachment()) / 2.0),
          toWorld_(Frame{text.location(), text.normal(), text.rotation()}.toWorld()) {}

    double left() const { return left_; }
    double right() const { return left_ + layout_.width; }
    double top() const { return top_; }
    double bottom() const { return top_ - layout_.height; }
    AcGePoint3d at(double x, double y) const { return toWorld_ * AcGePoint3d(x, y, 0); }

    double startOf(const TextLine& line) const {
        const double spare = layout_.width - line.width - line.indent;
        return left_ + line.indent + spare * shareOf(line);
    }
    double baselineOf(const TextLine& line) const { return top_ - line.baseline; }

  private:
    // How much of what a line leaves free stands before it.
    double shareOf(const TextLine& line) const {
        switch (line.alignment) {
            case LineAlignment::center:
                return 0.5;
            case LineAlignment::right:
                return 1;
            case LineAlignment::byEntity:
                return column_ / 2.0;
            default:
                return 0;
        }
    }

    const TextLayout& layout_;
    int column_;
    double left_, top_;
    AcGeMatrix3d toWorld_;
};

}  // namespace

Acad::ErrorStatus AcDbMText::getBoundingPoints(AcGePoint3dArray& corners) const {
    assertReadEnabled();
    const TextLayout layout = layOut();
    const PlacedText placed(*this, layout);
    for (const double y : {placed.top(), placed.bottom()}) {
        for (const double x : {placed.left(), placed.right()})
            corners.append(placed.at(x, y));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    const TextLayout layout = layOut();
    const bool shows = std::any_of(layout.lines.begin(), layout.lines.end(),
                                   [](const TextLine& line) { return line.width > 0; });
    if (!shows) return Acad::eInvalidExtents;
    const PlacedText placed(*this, layout);
    const double over = std::max(0.0, layout.ascent() - layout.lines.front().height);
    for (const double y : {placed.top() + over, placed.bottom() - layout.descent()}) {
        for (const double x : {placed.left(), placed.right()})
            extents.addPoint(placed.at(x, y));
    }
    return Acad::eOk;
}

bool AcDbMText::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const TextLayout layout = layOut();
    const PlacedText placed(*this, layout);
    const AcCmColor own = draw->subEntityTraits().trueColor();
    for (const TextLine& line : layout.lines) {
        const double x = placed.startOf(line);
        const double y = placed.baselineOf(line);
        for (const TextRun& run : line.runs) {
            draw->subEntityTraits().setTrueColor(run.color.value_or(own));
            draw->geometry().text(placed.at(x + run.x, y + run.y), normal_, direction_, run.text,
                                  run.style);
        }
        for (const sg::text::TextRule& rule : line.rules) {
            draw->subEntityTraits().setTrueColor(rule.color.value_or(own));
            const std::array<AcGePoint3d, 2> ends = {placed.at(x + rule.x1, y + rule.y1),
                                                     placed.at(x + rule.x2, y + rule.y2)};
            draw->geometry().polyline(2, ends.data());
        }
    }
    draw->subEntityTraits().setTrueColor(own);
    return true;
}

Acad::ErrorStatus AcDbMText::getPlane(AcGePlane& plane, AcDb::Planarity& type) const {
    plane = AcGePlane(location_, normal_);
    type = AcDb::kPlanar;
    return Acad::eOk;
}

void AcDbMText::getEcs(AcGeMatrix3d& matrix) const {
    matrix = AcGeMatrix3d::planeToWorld(normal_);
}

Acad::ErrorStatus AcDbMText::subTransformBy(const AcGeMatrix3d& transform) {
    MovedFrame moved;
    if (!sg::model::moveFrame(transform, {location_, normal_, rotation()}, moved)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    location_ = moved.frame.origin;
    normal_ = moved.frame.normal;
    direction_ = moved.frame.direction();
    width_ *= moved.alongX;
    textHeight_ *= moved.acrossX;
    definedHeight_ *= moved.acrossX;
    return Acad::eOk;
}

// The location, and the corners.
Acad::ErrorStatus AcDbMText::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                              AcDbIntArray&) const {
    points.append(location_);
    AcGePoint3dArray corners;
    getBoundingPoints(corners);
    points.append(corners);
    return Acad::eOk;
}

// A corner that is moved sideways changes the width at which lines are wrapped.
Acad::ErrorStatus AcDbMText::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                 const AcGeVector3d& offset) {
    if (indices.isEmpty()) return Acad::eOk;
    if (indices.contains(0)) return transformBy(AcGeMatrix3d::translation(offset));
    assertWriteEnabled();
    const double sideways = offset.dotProduct(direction_);
    const bool right = indices.contains(2) || indices.contains(4);
    const double width = width_ > 0 ? width_ : actualWidth();
    width_ = std::max(0.0, width + (right ? sideways : -sideways));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(location_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                    const AcGeVector3d& offset) {
    return indices.isEmpty() ? Acad::eOk : transformBy(AcGeMatrix3d::translation(offset));
}

Acad::ErrorStatus AcDbMText::subGetOsnapPoints(AcDb::OsnapMode mode, int64_t, const AcGePoint3d&,
                                               const AcGePoint3d&, const AcGeMatrix3d&,
                                               AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeIns) points.append(location_);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    const TextLayout layout = layOut();
    const PlacedText placed(*this, layout);
    for (const TextLine& line : layout.lines) {
        const double x = placed.startOf(line);
        const double y = placed.baselineOf(line);
        for (const TextRun& run : line.runs) {
            if (run.text.find_first_not_of(L' ') == std::wstring::npos) continue;
            auto* const piece = new AcDbText(placed.at(x + run.x, y + run.y), run.text.c_str(),
                                             style_, run.style.height, rotation());
            piece->setPropertiesFrom(this);
            if (run.color) piece->setColor(*run.color);
            piece->setNormal(normal_);
            piece->setWidthFactor(run.style.widthFactor);
            piece->setOblique(run.style.oblique);
            entities.append(piece);
        }
    }
    return Acad::eOk;
}

void AcDbMText::subList() const {
    AcDbEntity::subList();
    sg::model::listPoint(L"Location", location_);
    sg::model::listNumber(L"Width", width_);
    sg::model::listAngle(L"Rotation", rotation());
    sg::model::listNumber(L"Text height", textHeight_);
    sg::model::listNumber(L"Line spacing", lineSpacingFactor_);
    sg::model::listText(L"Contents", contents_.c_str());
    sg::model::listNormal(normal_);
}
