#include "jigs/block_contents.h"

#include <fmt/xchar.h>

#include <array>
#include <numbers>
#include <string>

#include "drawing/call_arguments.h"
#include "platform/db/attribute.h"
#include "platform/db/block_table.h"
#include "platform/db/leader.h"
#include "platform/db/mtext.h"

namespace sg {
namespace {

// A block that is being drawn, and those around it.
struct Container {
    AcDbObjectId block;
    const Container* outer = nullptr;

    bool isIn(AcDbObjectId other) const {
        return block == other || (outer != nullptr && outer->isIn(other));
    }
};

// Where the drawing goes, and whose layer takes the place of layer 0.
struct Target {
    AcGiWorldDraw& draw;
    const AcDbEntity* parent;
};

class Transformed {
  public:
    Transformed(AcGiGeometry& geometry, const AcGeMatrix3d& transform) : geometry_(geometry) {
        geometry_.pushModelTransform(transform);
    }
    ~Transformed() { geometry_.popModelTransform(); }
    Transformed(const Transformed&) = delete;
    Transformed& operator=(const Transformed&) = delete;

  private:
    AcGiGeometry& geometry_;
};

// An entity's drawing leaves its traits to the next one, so they are put back.
class KeptTraits {
  public:
    explicit KeptTraits(AcGiSubEntityTraits& traits)
        : traits_(traits),
          color_(traits.trueColor()),
          layer_(traits.layerId()),
          linetype_(traits.lineTypeId()),
          linetypeScale_(traits.lineTypeScale()),
          lineWeight_(traits.lineWeight()),
          fill_(traits.fillType()),
          thickness_(traits.thickness()) {}
    ~KeptTraits() {
        traits_.setTrueColor(color_);
        traits_.setLayer(layer_);
        traits_.setLineType(linetype_);
        traits_.setLineTypeScale(linetypeScale_);
        traits_.setLineWeight(lineWeight_);
        traits_.setFillType(fill_);
        traits_.setThickness(thickness_);
    }
    KeptTraits(const KeptTraits&) = delete;
    KeptTraits& operator=(const KeptTraits&) = delete;

  private:
    AcGiSubEntityTraits& traits_;
    const AcCmColor color_;
    const AcDbObjectId layer_, linetype_;
    const double linetypeScale_;
    const int lineWeight_;
    const AcGiFillType fill_;
    const double thickness_;
};

AcDbObjectId shownLayer(const AcDbEntity& entity, const Target& target) {
    const bool isParents = target.parent != nullptr && entity.layer() == L"0";
    return isParents ? target.parent->layerId() : entity.layerId();
}

void setTraits(const AcDbEntity& entity, const Target& target) {
    AcGiSubEntityTraits& traits = target.draw.subEntityTraits();
    traits.setLayer(shownLayer(entity, target));
    traits.setColor(entity.colorIndex());
}

// ---- Constant attributes ------------------------------------------------------------------------

AcDbMText::AttachmentPoint attachmentOf(const AcDbText& text) {
    using Column = std::array<AcDbMText::AttachmentPoint, 3>;
    constexpr Column kBottom = {AcDbMText::kBottomLeft, AcDbMText::kBottomCenter,
                                AcDbMText::kBottomRight};
    constexpr Column kMiddle = {AcDbMText::kMiddleLeft, AcDbMText::kMiddleCenter,
                                AcDbMText::kMiddleRight};
    constexpr Column kTop = {AcDbMText::kTopLeft, AcDbMText::kTopCenter, AcDbMText::kTopRight};
    size_t column = 0;
    switch (text.horizontalMode()) {
        case AcDb::kTextCenter:
        case AcDb::kTextAlign:
        case AcDb::kTextMid:
            column = 1;
            break;
        case AcDb::kTextRight:
            column = 2;
            break;
        default:
            break;
    }
    switch (text.verticalMode()) {
        case AcDb::kTextVertMid:
            return kMiddle[column];
        case AcDb::kTextTop:
            return kTop[column];
        default:
            return kBottom[column];
    }
}

// A definition's text is plain; in a text of several lines these characters begin formatting, and
// formatting says how wide and how slanted the letters are.
std::wstring contentsOf(const AcDbAttributeDefinition& definition) {
    constexpr double kDegree = std::numbers::pi / 180;
    std::wstring contents =
        fmt::format(L"\\W{};\\Q{};", definition.widthFactor(), definition.oblique() / kDegree);
    for (const wchar_t c : definition.textString()) {
        if (c == L'\\' || c == L'{' || c == L'}') contents += L'\\';
        contents += c;
    }
    return contents;
}

// The point of the text that its attachment names. What is attached by its bottom stands on its
// baseline, on which a definition's own point need not be.
AcGePoint3d anchorOf(const AcDbAttributeDefinition& definition) {
    const AcGePoint3d start = definition.position();
    if (definition.isDefaultAlignment() || definition.horizontalMode() == AcDb::kTextFit) {
        return start;
    }
    const AcGePoint3d point = definition.alignmentPoint();
    if (definition.horizontalMode() == AcDb::kTextAlign) return start + (point - start) / 2;
    const bool isOnBaseline = definition.verticalMode() == AcDb::kTextBase ||
                              definition.verticalMode() == AcDb::kTextBottom;
    if (!isOnBaseline) return point;
    AcGeVector3d up = definition.normal().crossProduct(definition.normal().perpVector());
    up.rotateBy(definition.rotation(), definition.normal());
    return point + up * (start - point).dotProduct(up);
}

void drawConstant(const AcDbAttributeDefinition& definition, const Target& target) {
    const AcGePoint3d at = anchorOf(definition);
    AcDbMText text;
    text.setContents(contentsOf(definition).c_str());
    text.setLocation(at);
    text.setTextHeight(definition.height());
    text.setTextStyle(definition.textStyle());
    text.setAttachment(attachmentOf(definition));
    text.setNormal(definition.normal());
    text.setRotation(0);
    text.transformBy(AcGeMatrix3d::rotation(definition.rotation(), definition.normal(), at));
    text.setLayer(shownLayer(definition, target));
    AcCmColor color;
    color.setColorIndex(definition.colorIndex());
    text.setColor(color);
    setTraits(definition, target);
    text.worldDraw(&target.draw);
}

// ---- Parts of a block ---------------------------------------------------------------------------

void drawSegments(const AcDbLeader& leader, const Target& target) {
    setTraits(leader, target);
    for (int i = 1; i < leader.numVertices(); ++i) {
        const std::array<AcGePoint3d, 2> ends = {leader.vertexAt(i - 1), leader.vertexAt(i)};
        target.draw.geometry().polyline(2, ends.data());
    }
}

void drawContents(const AcDbBlockReference& reference, const Target& target,
                  const Container* around);

void drawPart(AcDbEntity& part, const Target& target, const Container& container) {
    if (const auto* const nested = AcDbBlockReference::cast(&part)) {
        drawContents(*nested, target, &container);
        return;
    }
    const KeptTraits kept(target.draw.subEntityTraits());
    if (const auto* const definition = AcDbAttributeDefinition::cast(&part)) {
        if (definition->isConstant() && !definition->isInvisible()) {
            drawConstant(*definition, target);
        }
        return;
    }
    const auto* const leader = AcDbLeader::cast(&part);
    if (leader != nullptr && target.draw.isDragging()) {
        drawSegments(*leader, target);
        return;
    }
    setTraits(part, target);
    part.worldDraw(&target.draw);
}

// A block that contains itself is not drawn in itself again.
void drawContents(const AcDbBlockReference& reference, const Target& target,
                  const Container* around) {
    const Container container{reference.blockTableRecord(), around};
    if (around != nullptr && around->isIn(container.block)) return;
    const Opened<AcDbBlockTableRecord> block(container.block, AcDb::kForRead);
    if (!block) return;
    const Transformed transformed(target.draw.geometry(), reference.blockTransform());
    for (auto each = block->newIterator(); !each->done(); each->step()) {
        AcDbEntity* part = nullptr;
        if (each->getEntity(part) != Acad::eOk) continue;
        drawPart(*part, target, container);
        part->close();
    }
}

}  // namespace

void drawBlockContents(const AcDbBlockReference& reference, AcGiWorldDraw& draw,
                       const AcDbEntity* parent) {
    drawContents(reference, {draw, parent}, nullptr);
}

}  // namespace sg
