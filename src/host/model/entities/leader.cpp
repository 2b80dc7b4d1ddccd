#include "platform/db/leader.h"

#include <array>
#include <optional>

#include "host/model/core/dwg_form.h"
#include "host/model/curves/curve_access.h"
#include "host/model/curves/filing_groups.h"
#include "host/model/curves/listing.h"
#include "host/model/curves/math/shape.h"
#include "host/model/curves/spline.h"
#include "host/model/entities/solid.h"
#include "host/model/tables/dim_style_table.h"
#include "host/model/tables/filing.h"
#include "host/model/tables/references.h"
#include "platform/db/database.h"
#include "platform/db/line.h"
#include "platform/gi/draw.h"

using sg::model::CurveShape;
using sg::model::FieldReader;
using sg::model::Piece;

ACRX_DXF_DEFINE_MEMBERS(AcDbLeader, AcDbCurve, 0, 0, L"LEADER", nullptr)

namespace {

constexpr int16_t kNoAnnotation = 3;

// A filled arrow, a third as wide as it is long; none on a first piece that is too short for it.
std::optional<std::array<AcGePoint3d, 3>> arrowHead(const AcGePoint3d& tip, const AcGePoint3d& next,
                                                    const AcGeVector3d& normal, double size) {
    const AcGeVector3d along = next - tip;
    if (size <= 0 || along.length() < 2 * size) return std::nullopt;
    const AcGeVector3d back = along.normal() * size;
    const AcGeVector3d side = normal.crossProduct(along).normal() * (size / 6);
    return std::array<AcGePoint3d, 3>{tip, tip + back + side, tip + back - side};
}

}  // namespace

AcDbLeader::AcDbLeader() = default;
AcDbLeader::~AcDbLeader() = default;

// ---- Vertices -----------------------------------------------------------------------------------

AcGePoint3d AcDbLeader::inPlane(const AcGePoint3d& point) const {
    return vertices_.empty() ? point : AcGePlane(vertices_.front(), normal_).orthoProject(point);
}

bool AcDbLeader::appendVertex(const AcGePoint3d& point) {
    const AcGePoint3d projected = inPlane(point);
    if (!vertices_.empty() && vertices_.back() == projected) return false;
    assertWriteEnabled();
    vertices_.push_back(projected);
    return true;
}

void AcDbLeader::removeLastVertex() {
    if (vertices_.empty()) return;
    assertWriteEnabled();
    vertices_.pop_back();
}

AcGePoint3d AcDbLeader::vertexAt(int index) const {
    assertReadEnabled();
    if (index < 0 || index >= numVertices()) return AcGePoint3d();
    return vertices_[static_cast<size_t>(index)];
}

bool AcDbLeader::setVertexAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= numVertices()) return false;
    assertWriteEnabled();
    vertices_[static_cast<size_t>(index)] = index == 0 ? point : inPlane(point);
    return true;
}

// ---- Properties ---------------------------------------------------------------------------------

void AcDbLeader::setToSpline() {
    assign(splined_, true);
}
void AcDbLeader::setToStraight() {
    assign(splined_, false);
}
void AcDbLeader::enableArrowHead() {
    assign(arrow_, true);
}
void AcDbLeader::disableArrowHead() {
    assign(arrow_, false);
}

Acad::ErrorStatus AcDbLeader::setNormal(const AcGeVector3d& normal) {
    return normal.isZeroLength() ? Acad::eInvalidInput : assign(normal_, normal.normal());
}

void AcDbLeader::setDimensionStyle(AcDbObjectId style) {
    assign(dimStyle_, AcDbHardPointerId(style));
}

Acad::ErrorStatus AcDbLeader::attachAnnotation(AcDbObjectId annotation) {
    assertWriteEnabled();
    annotation_ = annotation;
    annotationKind_ = 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::detachAnnotation() {
    assertWriteEnabled();
    annotation_.setNull();
    annotationKind_ = kNoAnnotation;
    return Acad::eOk;
}

double AcDbLeader::dimensionValue(const wchar_t* name) const {
    const auto place = sg::model::findDimVariable(name);
    AcDbDimStyleTableRecord* style = nullptr;
    if (acdbOpenObject(style, dimStyle_) != Acad::eOk) {
        return std::get<double>(sg::model::dimVariableRows()[*place].variable.initial);
    }
    const double value = std::get<double>(style->value(*place));
    style->close();
    return value;
}

double AcDbLeader::dimasz() const {
    return dimensionValue(L"DIMASZ");
}

double AcDbLeader::dimscale() const {
    return dimensionValue(L"DIMSCALE");
}

void AcDbLeader::subSetDatabaseDefaults(AcDbDatabase* database) {
    AcDbCurve::subSetDatabaseDefaults(database);
    if (database != nullptr) dimStyle_ = database->dimstyle();
}

// ---- Geometry -----------------------------------------------------------------------------------

bool AcDbLeader::subShape(CurveShape& shape) const {
    if (vertices_.size() < 2) return false;
    if (splined_ && vertices_.size() > 2) {
        AcGePoint3dArray points;
        for (const AcGePoint3d& vertex : vertices_)
            points.append(vertex);
        const AcDbSpline spline(points);
        if (sg::model::CurveAccess::shapeOf(spline, shape)) return true;
    }
    for (size_t i = 0; i + 1 < vertices_.size(); ++i) {
        const auto from = static_cast<double>(i);
        shape.spans.emplace_back(Piece::line(vertices_[i], vertices_[i + 1]), from, from + 1);
    }
    shape.findPlane();
    return true;
}

AcDbCurve* AcDbLeader::subPart(double, double) const {
    return nullptr;
}

bool AcDbLeader::subWorldDraw(AcGiWorldDraw* draw) {
    AcDbCurve::subWorldDraw(draw);
    const double size = dimasz() * (dimscale() == 0 ? 1 : dimscale());
    if (!arrow_ || vertices_.size() < 2) return true;
    const auto head = arrowHead(vertices_[0], vertices_[1], normal_, size);
    if (!head) return true;
    const AcGiFillType fill = draw->subEntityTraits().fillType();
    draw->subEntityTraits().setFillType(kAcGiFillAlways);
    draw->geometry().polygon(3, head->data());
    draw->subEntityTraits().setFillType(fill);
    return true;
}

Acad::ErrorStatus AcDbLeader::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    for (AcGePoint3d& vertex : vertices_)
        vertex = transform * vertex;
    AcGeVector3d x = normal_.perpVector();
    AcGeVector3d y = normal_.crossProduct(x);
    const AcGeVector3d normal = x.transformBy(transform).crossProduct(y.transformBy(transform));
    if (!normal.isZeroLength()) normal_ = normal.normal();
    horizontal_.transformBy(transform).normalize();
    blockOffset_.transformBy(transform);
    annotationOffset_.transformBy(transform);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                               AcDbIntArray&) const {
    return subGetStretchPoints(points);
}

Acad::ErrorStatus AcDbLeader::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                  const AcGeVector3d& offset) {
    return subMoveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbLeader::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    for (const AcGePoint3d& vertex : vertices_)
        points.append(vertex);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    assertWriteEnabled();
    for (int i = 0; i < numVertices(); ++i) {
        if (indices.contains(i)) vertices_[static_cast<size_t>(i)] += offset;
    }
    return Acad::eOk;
}

// The line as it is, and the arrow.
Acad::ErrorStatus AcDbLeader::subExplode(AcDbVoidPtrArray& entities) const {
    assertReadEnabled();
    if (vertices_.size() < 2) return Acad::eCannotExplodeEntity;
    const auto add = [&](AcDbEntity* part) {
        part->setPropertiesFrom(this);
        entities.append(part);
    };
    if (splined_ && vertices_.size() > 2) {
        AcGePoint3dArray points;
        for (const AcGePoint3d& vertex : vertices_)
            points.append(vertex);
        add(new AcDbSpline(points));
    } else {
        for (size_t i = 0; i + 1 < vertices_.size(); ++i)
            add(new AcDbLine(vertices_[i], vertices_[i + 1]));
    }
    const double size = dimasz() * (dimscale() == 0 ? 1 : dimscale());
    const auto head = arrowHead(vertices_[0], vertices_[1], normal_, size);
    if (!arrow_ || !head) return Acad::eOk;
    auto* const solid = new AcDbSolid((*head)[1], (*head)[2], (*head)[0], (*head)[0]);
    solid->setNormal(normal_);
    add(solid);
    return Acad::eOk;
}

void AcDbLeader::subList() const {
    AcDbCurve::subList();
    for (const AcGePoint3d& vertex : vertices_)
        sg::model::listPoint(L"at", vertex);
    sg::model::listText(L"Dimension Style:", sg::model::nameOf(dimStyle_).c_str());
}

// ---- Filing -------------------------------------------------------------------------------------

namespace {

// Files from release 2010 on do without the annotation's.
bool hasTextSize(AcDbDwgFiler* filer) {
    return filer->dwgForm() == nullptr || sg::model::isBefore(filer, AcDb::kDHL_1024);
}

// Before release 2000: the arrow's kind and size, and a colour among what is not known.
void readOldSettings(AcDbDwgFiler& filer, int16_t& color) {
    int16_t number = 0;
    double arrowSize = 0;
    bool unused = false;
    filer.readInt16(&number);
    filer.readDouble(&arrowSize);
    filer.readBool(&unused);
    filer.readBool(&unused);
    filer.readInt16(&number);
    filer.readInt16(&color);
    filer.readBool(&unused);
    filer.readBool(&unused);
}

}  // namespace

// What files have no place for is written in memory alone.
Acad::ErrorStatus AcDbLeader::dwgOutFields(AcDbDwgFiler* filer) const {
    AcDbCurve::dwgOutFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    if (inFile) filer->writeBool(false);
    filer->writeInt16(annotationKind_);
    filer->writeInt16(splined_ ? 1 : 0);
    filer->writeUInt32(static_cast<uint32_t>(vertices_.size()));
    for (const AcGePoint3d& vertex : vertices_)
        filer->writePoint3d(vertex);
    if (inFile) filer->writePoint3d(vertices_.empty() ? AcGePoint3d() : vertices_.front());
    filer->writeVector3d(normal_);
    filer->writeVector3d(horizontal_);
    filer->writeVector3d(blockOffset_);
    filer->writeVector3d(annotationOffset_);
    if (hasTextSize(filer)) {
        filer->writeDouble(textHeight_);
        filer->writeDouble(textWidth_);
    }
    filer->writeBool(hookLineAlongX_);
    filer->writeBool(arrow_);
    if (inFile) {
        filer->writeInt16(0);
        filer->writeBool(false);
        filer->writeBool(false);
    } else {
        filer->writeBool(hookLine_);
        filer->writeInt16(color_);
    }
    filer->writeHardPointerId(annotation_);
    return filer->writeHardPointerId(dimStyle_);
}

Acad::ErrorStatus AcDbLeader::dwgInFields(AcDbDwgFiler* filer) {
    AcDbCurve::dwgInFields(filer);
    const bool inFile = filer->dwgForm() != nullptr;
    bool unused = false;
    int16_t path = 0;
    uint32_t count = 0;
    if (inFile) filer->readBool(&unused);
    filer->readInt16(&annotationKind_);
    filer->readInt16(&path);
    splined_ = path != 0;
    filer->readUInt32(&count);
    vertices_.clear();
    for (uint32_t i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        filer->readPoint3d(&vertices_.emplace_back());
    }
    AcGePoint3d origin;
    if (inFile) filer->readPoint3d(&origin);
    filer->readVector3d(&normal_);
    filer->readVector3d(&horizontal_);
    filer->readVector3d(&blockOffset_);
    filer->readVector3d(&annotationOffset_);
    double gap = 0;
    if (inFile && sg::model::isBefore(filer, AcDb::kDHL_1015)) filer->readDouble(&gap);
    if (hasTextSize(filer)) {
        filer->readDouble(&textHeight_);
        filer->readDouble(&textWidth_);
    }
    filer->readBool(&hookLineAlongX_);
    filer->readBool(&arrow_);
    if (inFile && sg::model::isBefore(filer, AcDb::kDHL_1015)) {
        readOldSettings(*filer, color_);
    } else if (inFile) {
        int16_t arrowType = 0;
        filer->readInt16(&arrowType);
        filer->readBool(&unused);
        filer->readBool(&unused);
    } else {
        filer->readBool(&hookLine_);
        filer->readInt16(&color_);
    }
    filer->readHardPointerId(&annotation_);
    return filer->readHardPointerId(&dimStyle_);
}

Acad::ErrorStatus AcDbLeader::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbCurve::dxfOutFields(filer);
    filer->writeString(100, L"AcDbLeader");
    sg::model::writeNameOf(filer, 3, dimStyle_, L"Standard");
    filer->writeInt16(71, arrow_ ? 1 : 0);
    filer->writeInt16(72, splined_ ? 1 : 0);
    filer->writeInt16(73, annotationKind_);
    filer->writeInt16(74, hookLineAlongX_ ? 1 : 0);
    filer->writeInt16(75, hookLine_ ? 1 : 0);
    filer->writeDouble(40, textHeight_);
    filer->writeDouble(41, textWidth_);
    filer->writeInt16(76, static_cast<int16_t>(vertices_.size()));
    for (const AcGePoint3d& vertex : vertices_)
        filer->writePoint3d(10, vertex);
    if (color_ != 0) filer->writeInt16(77, color_);
    if (!annotation_.isNull()) filer->writeObjectId(340, annotation_);
    sg::model::writeNormal(filer, normal_);
    filer->writeVector3d(211, horizontal_);
    filer->writeVector3d(212, blockOffset_);
    return filer->writeVector3d(213, annotationOffset_);
}

Acad::ErrorStatus AcDbLeader::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status != Acad::eOk) return status;
    if (!filer->atSubclassData(L"AcDbLeader")) return Acad::eBadDxfSequence;
    std::vector<AcGePoint3d> vertices;
    FieldReader fields(filer);
    while (fields.next()) {
        if (fields.code() == 10) {
            vertices.push_back(fields.point());
        } else {
            takeField(filer, fields.group());
        }
    }
    if (!vertices.empty()) vertices_ = std::move(vertices);
    return filer->filerStatus();
}

void AcDbLeader::takeField(AcDbDxfFiler* filer, const resbuf& group) {
    const FieldReader field(filer, group);
    switch (field.code()) {
        case 3:
            dimStyle_ = sg::model::recordNamed(filer->database(), sg::model::NamedIn::dimStyles,
                                               field.text());
            break;
        case 71:
            arrow_ = field.flag();
            break;
        case 72:
            splined_ = field.flag();
            break;
        case 73:
            annotationKind_ = static_cast<int16_t>(field.integer());
            break;
        case 74:
            hookLineAlongX_ = field.flag();
            break;
        case 75:
            hookLine_ = field.flag();
            break;
        case 40:
            textHeight_ = field.real();
            break;
        case 41:
            textWidth_ = field.real();
            break;
        case 77:
            color_ = static_cast<int16_t>(field.integer());
            break;
        case 340:
            annotation_ = field.objectId();
            break;
        case 210:
            if (!field.vector().isZeroLength()) normal_ = field.vector().normal();
            break;
        case 211:
            horizontal_ = field.vector();
            break;
        case 212:
            blockOffset_ = field.vector();
            break;
        case 213:
            annotationOffset_ = field.vector();
            break;
        default:
            break;
    }
}
