#include "host/model/entities/dimension/sketch.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/model/curves/planar.h"
#include "host/model/entities/solid.h"
#include "host/model/entities/text_setting.h"
#include "platform/db/arc.h"
#include "platform/db/block_reference.h"
#include "platform/db/database.h"
#include "platform/db/line.h"

// The parts that dimensions of all kinds are put together from.

namespace sg::model {

namespace {

constexpr double kPi = std::numbers::pi;

AcGeVector2d towards(double angle) {
    return {std::cos(angle), std::sin(angle)};
}

void replaceAll(std::wstring& text, std::wstring_view what, const std::wstring& with) {
    for (size_t at = text.find(what); at != std::wstring::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), with);
        at += with.size();
    }
}

}  // namespace

AcGePoint2d DimensionSketch::flat(const AcDbDimension& dimension, const AcGePoint3d& point) {
    const AcGePoint3d seen = AcGeMatrix3d::worldToPlane(dimension.normal()) * point;
    return {seen.x, seen.y};
}

// Counted the other way round, as drawing files have it.
AcGeVector2d DimensionSketch::horizontal(const AcDbDimension& dimension) {
    return towards(-dimension.horizontalRotation());
}

DimensionSketch::DimensionSketch(const AcDbDimension& dimension)
    : dimension_(dimension),
      style_(dimension),
      arrowSize_(style_.size(L"DIMASZ")),
      gap_(std::abs(style_.size(L"DIMGAP"))) {
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(dimension.normal());
    const double height = (toPlane * dimension.points_[AcDbDimension::kDefinition]).z;
    toWorld_ =
        AcGeMatrix3d::planeToWorld(dimension.normal()) * AcGeMatrix3d::translation({0, 0, height});
    measureText();
}

DimensionSketch::~DimensionSketch() = default;

AcGePoint3d DimensionSketch::textPosition(const AcDbDimension& dimension) {
    DimensionSketch sketch(dimension);
    dimension.draw(sketch);
    return sketch.raised(sketch.box_.middle);
}

AcGePoint3d DimensionSketch::raised(const AcGePoint2d& point) const {
    return toWorld_ * AcGePoint3d(point.x, point.y, 0);
}

// ---- Text ---------------------------------------------------------------------------------------

std::wstring DimensionSketch::text() const {
    const bool isAngle = dimension_.isAngle();
    std::wstring measured =
        dimension_.symbol() + style_.formatted(dimension_.measurement(), isAngle);
    std::wstring around = isAngle ? std::wstring() : style_.text(L"DIMPOST");
    if (around.find(L"<>") != std::wstring::npos) {
        replaceAll(around, L"<>", measured);
        measured = around;
    } else {
        measured += around;
    }
    std::wstring shown = dimension_.dimensionText();
    if (shown.empty()) return measured;
    replaceAll(shown, L"<>", measured);
    return shown;
}

namespace {

std::unique_ptr<AcDbMText> newText(const std::wstring& contents, const DimensionStyle& style) {
    auto text = std::make_unique<AcDbMText>();
    const AcDbObjectId font = style.object(L"DIMTXSTY");
    if (!font.isNull()) text->setTextStyle(font);
    AcDbTextStyleTableRecord* record = nullptr;
    double height = style.size(L"DIMTXT");
    if (acdbOpenObject(record, font, AcDb::kForRead, true) == Acad::eOk) {
        if (record->textSize() > 0) height = record->textSize();
        record->close();
    }
    text->setTextHeight(height);
    text->setContents(contents.c_str());
    text->setAttachment(AcDbMText::kMiddleCenter);
    return text;
}

}  // namespace

// A text of one blank hides it.
void DimensionSketch::measureText() {
    const std::wstring contents = text();
    hasText_ = contents != L" ";
    if (!hasText_) return;
    const auto measured = newText(contents, style_);
    box_.width = measured->actualWidth();
    box_.height = measured->actualHeight();
}

double DimensionSketch::turned(double angle) const {
    const double right = horizontal(dimension_).angle();
    const double inside = normalAngle(angle - right);
    const bool upsideDown = inside > kPi / 2 + 1e-6 && inside <= 3 * kPi / 2 + 1e-6;
    return right + (upsideDown ? inside - kPi : inside);
}

double DimensionSketch::lineTextAngle(double lineAngle, bool inside) const {
    if (dimension_.textRotation() != 0) return dimension_.textRotation();
    const bool level = style_.flag(inside ? L"DIMTIH" : L"DIMTOH");
    return level ? horizontal(dimension_).angle() : turned(lineAngle);
}

AcGeVector2d DimensionSketch::lifted(double angle) const {
    const int32_t where = style_.integer(L"DIMTAD");
    if (where == 0) return towards(angle).perpVector() * style_.size(L"DIMTVP");
    const double lift = gap_ + box_.height / 2;
    return towards(angle).perpVector() * (where == 4 ? -lift : lift);
}

void DimensionSketch::placeText(const AcGePoint2d& usual, double angle) {
    box_.middle = dimension_.isUsingDefaultTextPosition() ? usual : flat(dimension_.textPosition());
    box_.angle = angle;
    if (!hasText_) return;
    auto text = newText(this->text(), style_);
    text->setLocation(raised(box_.middle));
    text->setNormal(dimension_.normal());
    text->setRotation(angle);
    add(std::move(text), Role::Text);
}

// ---- Lines --------------------------------------------------------------------------------------

void DimensionSketch::add(std::unique_ptr<AcDbEntity> part, Role role) {
    const wchar_t* const color = role == Role::Text            ? L"DIMCLRT"
                                 : role == Role::ExtensionLine ? L"DIMCLRE"
                                                               : L"DIMCLRD";
    part->setColor(style_.color(color));
    const int32_t weight =
        role == Role::Text ? AcDb::kLnWtByBlock
                           : style_.integer(role == Role::ExtensionLine ? L"DIMLWE" : L"DIMLWD");
    part->setLineWeight(static_cast<AcDb::LineWeight>(weight));
    const AcDbDatabase* const database = dimension_.database();
    if (database != nullptr) {
        part->setLayer(database->layerZero());
        part->setLinetype(database->byBlockLinetype());
    }
    parts_.push_back(std::move(part));
}

void DimensionSketch::line(const AcGePoint2d& from, const AcGePoint2d& to, Role role) {
    if (from == to) return;
    auto made = std::make_unique<AcDbLine>(raised(from), raised(to));
    made->setNormal(dimension_.normal());
    add(std::move(made), role);
}

// Leaves out what would run through the text.
void DimensionSketch::brokenLine(const AcGePoint2d& from, const AcGePoint2d& to) {
    double enters = 0;
    double leaves = 1;
    if (hasText_) {
        const AcGeVector2d along = to - from;
        const AcGeVector2d off = from - box_.middle;
        const AcGeVector2d axes[] = {towards(box_.angle), towards(box_.angle).perpVector()};
        const double reach[] = {box_.width / 2 + gap_, box_.height / 2 + gap_ / 2};
        for (int i = 0; i < 2; ++i) {
            const double speed = along.dotProduct(axes[i]);
            const double start = off.dotProduct(axes[i]);
            if (std::abs(speed) < 1e-12) {
                if (std::abs(start) >= reach[i]) leaves = -1;
                continue;
            }
            const double a = (-reach[i] - start) / speed;
            const double b = (reach[i] - start) / speed;
            enters = std::max(enters, std::min(a, b));
            leaves = std::min(leaves, std::max(a, b));
        }
    }
    if (!hasText_ || enters >= leaves) return line(from, to, Role::DimensionLine);
    if (enters > 0) line(from, from + (to - from) * enters, Role::DimensionLine);
    if (leaves < 1) line(from + (to - from) * leaves, to, Role::DimensionLine);
}

void DimensionSketch::brokenArc(const AngleSector& sector, double start, double sweep) {
    const auto arc = [&](double from, double to) {
        if (to - from < 1e-9) return;
        add(std::make_unique<AcDbArc>(raised(sector.center), dimension_.normal(), sector.radius,
                                      from, to),
            Role::DimensionLine);
    };
    const AcGeVector2d spoke = box_.middle - sector.center;
    const double across = std::max(box_.width, box_.height) / 2 + gap_;
    const bool clear = std::abs(spoke.length() - sector.radius) > box_.height / 2 || !hasText_ ||
                       across >= sector.radius;
    if (clear) return arc(start, start + sweep);
    const double half = std::asin(across / sector.radius);
    const double middle = start + normalAngle(spoke.angle() - start + half) - half;
    if (middle - half >= start + sweep) return arc(start, start + sweep);
    arc(start, middle - half);
    arc(std::max(start, middle + half), start + sweep);
}

void DimensionSketch::extension(const AcGePoint2d& from, const AcGePoint2d& to, bool first) {
    if (style_.flag(first ? L"DIMSE1" : L"DIMSE2")) return;
    const AcGeVector2d along = to - from;
    const double offset = style_.size(L"DIMEXO");
    if (along.length() <= offset) return;
    const AcGeVector2d unit = along.normal();
    const bool fixed = style_.flag(L"DIMFXLON");
    const double length = style_.size(L"DIMFXL");
    const double start = fixed ? std::max(offset, along.length() - length) : offset;
    line(from + unit * start, to + unit * style_.size(L"DIMEXE"), Role::ExtensionLine);
}

// ---- Arrows -------------------------------------------------------------------------------------

void DimensionSketch::arrowBlock(AcDbObjectId block, const AcGePoint2d& tip,
                                 const AcGeVector2d& outward) {
    auto made = std::make_unique<AcDbBlockReference>(raised(tip), block);
    made->setScaleFactors(AcGeScale3d(arrowSize_, arrowSize_, arrowSize_));
    made->setNormal(dimension_.normal());
    made->setRotation(outward.angle());
    add(std::move(made), Role::DimensionLine);
}

// `outward` is where the arrow points. Without a block of the style it is filled, a third as wide
// as it is long.
void DimensionSketch::arrow(const AcGePoint2d& tip, const AcGeVector2d& outward, bool first) {
    const AcGeVector2d unit = outward.normal();
    const double tick = style_.size(L"DIMTSZ");
    if (tick > 0) {
        const AcGeVector2d slanted = (unit + unit.perpVector()) * tick;
        return line(tip - slanted, tip + slanted, Role::DimensionLine);
    }
    const bool separate = style_.flag(L"DIMSAH");
    const AcDbObjectId block = style_.object(!separate ? L"DIMBLK"
                                             : first   ? L"DIMBLK1"
                                                       : L"DIMBLK2");
    if (!block.isNull()) return arrowBlock(block, tip, unit);
    const AcGePoint2d back = tip - unit * arrowSize_;
    const AcGeVector2d side = unit.perpVector() * (arrowSize_ / 6);
    auto head = std::make_unique<AcDbSolid>(raised(back + side), raised(back - side), raised(tip),
                                            raised(tip));
    head->setNormal(dimension_.normal());
    add(std::move(head), Role::DimensionLine);
}

}  // namespace sg::model
