#include "host/model/entities/sample_entities.h"

#include <gtest/gtest.h>

#include "host/model/curves/ellipse.h"
#include "host/model/curves/point.h"
#include "host/model/curves/polyline_3d.h"
#include "host/model/curves/ray.h"
#include "host/model/curves/spline.h"
#include "host/model/curves/xline.h"
#include "host/model/entities/dimension/kinds.h"
#include "host/model/entities/hatch.h"
#include "host/model/entities/image.h"
#include "host/model/entities/ole_frame.h"
#include "host/model/entities/solid.h"
#include "platform/db/arc.h"
#include "platform/db/attribute.h"
#include "platform/db/block_reference.h"
#include "platform/db/circle.h"
#include "platform/db/face.h"
#include "platform/db/leader.h"
#include "platform/db/line.h"
#include "platform/db/mtext.h"
#include "platform/db/polyline.h"
#include "platform/db/polyline_2d.h"

namespace sg::test {

namespace {

using Samples = std::vector<EntitySample>;

template <class Class>
Class& add(Samples& samples, const char* name, Class* entity) {
    samples.push_back({name, std::unique_ptr<AcDbEntity>(entity)});
    return *entity;
}

AcGePoint3dArray points(std::initializer_list<AcGePoint3d> list) {
    AcGePoint3dArray result;
    for (const AcGePoint3d& point : list)
        result.append(point);
    return result;
}

void addCurves(Samples& samples, bool vertices) {
    add(samples, "line", new AcDbLine({1, 2, 3}, {4, 6, 3})).setThickness(1);
    add(samples, "ray", new AcDbRay({1, 2, 3}, {1, 2, 0}));
    add(samples, "construction line", new AcDbXline({1, 2, 3}, {2, 1, 0}));
    add(samples, "point", new AcDbPoint({1, 2, 3})).setEcsRotation(0.5);
    add(samples, "circle", new AcDbCircle({1, 2, 3}, AcGeVector3d::kZAxis, 4)).setThickness(2);
    add(samples, "arc", new AcDbArc({1, 2, 3}, 4, 0.5, 2));
    add(samples, "ellipse", new AcDbEllipse({1, 2, 3}, AcGeVector3d::kZAxis, {4, 1, 0}, 0.5));
    add(samples, "elliptic arc",
        new AcDbEllipse({1, 2, 3}, AcGeVector3d::kZAxis, {4, 1, 0}, 0.5, 1, 4));
    add(samples, "spline", new AcDbSpline(points({{0, 0, 3}, {3, 1, 3}, {4, 5, 3}, {1, 6, 3}})));
    auto& polyline = add(samples, "polyline", new AcDbPolyline);
    polyline.addVertexAt(0, {0, 0}, 0.5);
    polyline.addVertexAt(1, {4, 1}, 0, 0.2, 0.4);
    polyline.addVertexAt(2, {3, 5}, -1);
    polyline.setClosed(true);
    polyline.setElevation(3);
    if (!vertices) return;
    add(samples, "2D polyline",
        new AcDb2dPolyline(AcDb::k2dSimplePoly, points({{0, 0, 0}, {4, 1, 0}, {3, 5, 0}}), 3,
                           true));
    add(samples, "3D polyline",
        new AcDb3dPolyline(AcDb::k3dSimplePoly, points({{0, 0, 0}, {4, 1, 2}, {3, 5, 1}})));
}

void addTexts(Samples& samples) {
    auto& text = add(samples, "text", new AcDbText({1, 2, 3}, L"Some %%utext", {}, 2, 0.3));
    text.setWidthFactor(0.8);
    text.setOblique(0.2);
    auto& middle = add(samples, "middle text", new AcDbText({1, 2, 3}, L"centred", {}, 1));
    middle.setHorizontalMode(AcDb::kTextCenter);
    middle.setAlignmentPoint({5, 5, 3});
    middle.adjustAlignment();
    auto& mtext = add(samples, "multi-line text", new AcDbMText);
    mtext.setContents(L"One line\\PAnother {\\H2x;one}, which is wrapped");
    mtext.setTextHeight(1.5);
    mtext.setWidth(12);
    mtext.setLocation({2, 3, 3});
    mtext.setAttachment(AcDbMText::kMiddleCenter);
    mtext.setRotation(0.4);
    add(samples, "attribute definition",
        new AcDbAttributeDefinition({1, 2, 3}, L"value", L"TAG", L"Which?"))
        .setHeight(2);
    auto& attribute = add(samples, "attribute", new AcDbAttribute({1, 2, 3}, L"value", L"TAG"));
    attribute.setHeight(2);
    attribute.setFieldLength(7);
}

void addAreas(Samples& samples) {
    add(samples, "face", new AcDbFace({0, 0, 3}, {4, 0, 3}, {4, 4, 3}, {0, 5, 3}, true, false));
    add(samples, "solid", new AcDbSolid({0, 0, 3}, {4, 0, 3}, {0, 4, 3}, {5, 5, 3}))
        .setThickness(2);
    add(samples, "trace", new AcDbTrace).setPointAt(3, {4, 4, 0});

    auto& lined = add(samples, "hatch of lines", new AcDbHatch);
    lined.setPattern(AcDbHatch::kPreDefined, L"ANSI38", 0.3, 2);
    model::HatchLoop loop;
    loop.type = model::HatchLoop::kPolyline | model::HatchLoop::kExternal;
    loop.vertices = {{{0, 0}, 0.3}, {{6, 0}, 0}, {{5, 6}, -0.2}};
    lined.appendLoop(loop);
    lined.setElevation(3);
    lined.setHatchStyle(model::HatchStyle::Outer);

    auto& solid = add(samples, "hatch of edges", new AcDbHatch);
    model::HatchLoop edges;
    edges.edges.resize(4);
    edges.edges[0].end = {4, 0};
    edges.edges[1].kind = model::HatchEdge::Kind::Arc;
    edges.edges[1].center = {4, 2};
    edges.edges[1].major = {2, 0};
    edges.edges[1].first = 4.71238898038469;
    edges.edges[1].last = 1.5707963267948966;
    edges.edges[2].kind = model::HatchEdge::Kind::Spline;
    edges.edges[2].spline.degree = 2;
    edges.edges[2].spline.knots = {0, 0, 0, 1, 1, 1};
    edges.edges[2].spline.controls = {{4, 4, 0}, {2, 6, 0}, {0, 4, 0}};
    edges.edges[2].spline.weights = {1, 0.5, 1};
    edges.edges[3].kind = model::HatchEdge::Kind::Ellipse;
    edges.edges[3].center = {0, 2};
    edges.edges[3].major = {0, 2};
    edges.edges[3].ratio = 0.5;
    edges.edges[3].first = 0;
    edges.edges[3].last = 3.141592653589793;
    solid.appendLoop(edges);
}

void addDimensions(Samples& samples, AcDbDatabase& database) {
    const size_t before = samples.size();
    auto& rotated = add(samples, "rotated dimension",
                        new AcDbRotatedDimension(0.3, {0, 0, 0}, {30, 4, 0}, {20, 9, 0}));
    rotated.setTextPosition({15, 9, 0});
    add(samples, "aligned dimension", new AcDbAlignedDimension({0, 0, 0}, {3, 4, 0}, {-1, 6, 0}))
        .setOblique(1);
    add(samples, "angular dimension",
        new AcDb2LineAngularDimension({1, 0, 0}, {4, 0, 0}, {1, 1, 0}, {3, 3, 0}, {5, 2, 0}));
    add(samples, "vertex dimension",
        new AcDb3PointAngularDimension({0, 0, 0}, {3, 0, 0}, {0, 2, 0}, {5, 5, 0}));
    add(samples, "arc dimension", new AcDbArcDimension({0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {2, 2, 0}));
    add(samples, "radial dimension", new AcDbRadialDimension({1, 1, 0}, {4, 5, 0}, 2));
    add(samples, "diametric dimension", new AcDbDiametricDimension({4, 5, 0}, {-2, -3, 0}, 2));
    add(samples, "ordinate dimension",
        new AcDbOrdinateDimension(true, {7, 2, 0}, {8, 6, 0}, {1, 1, 0}))
        .setDimensionText(L"at <>");
    for (size_t i = before; i < samples.size(); ++i) {
        static_cast<AcDbDimension&>(*samples[i].entity).setDimensionStyle(database.dimstyle());
    }
}

void addFrames(Samples& samples) {
    auto& image = add(samples, "image", new AcDbRasterImage);
    image.setImageSize({640, 480});
    image.setOrientation({1, 2, 3}, {6.4, 0, 0}, {0, 4.8, 0});
    auto& wipeout = add(samples, "wipeout", new AcDbWipeout);
    wipeout.setOrientation({1, 2, 3}, {4, 0, 0}, {0, 4, 0});
    AcGePoint2dArray boundary;
    for (const AcGePoint2d& point : {AcGePoint2d(-0.5, -0.5), AcGePoint2d(0.5, -0.5),
                                     AcGePoint2d(0, 0.5), AcGePoint2d(-0.5, -0.5)})
        boundary.append(point);
    wipeout.setClipBoundary(AcDbRasterImage::kPolygon, boundary);
    auto& ole = add(samples, "OLE frame", new AcDbOle2Frame);
    ole.setPosition({1, 6, 3}, {5, 2, 3});
    std::vector<uint8_t> data;
    for (int i = 0; i < 300; ++i)
        data.push_back(static_cast<uint8_t>(i * 7));
    ole.setData(AcDbOle2Frame::Type::Static, std::move(data));
}

void addReferences(Samples& samples, AcDbDatabase& database) {
    AcDbBlockTable* table = nullptr;
    AcDbObjectId block;
    ASSERT_EQ(database.getBlockTable(table, AcDb::kForWrite), Acad::eOk);
    auto* const record = new AcDbBlockTableRecord;
    record->setName(L"Sample");
    ASSERT_EQ(table->add(block, record), Acad::eOk);
    table->close();
    for (AcDbEntity* const part : {static_cast<AcDbEntity*>(new AcDbLine({0, 0, 0}, {3, 1, 0})),
                                   static_cast<AcDbEntity*>(new AcDbLine({3, 1, 0}, {1, 4, 0}))}) {
        record->appendAcDbEntity(part);
        part->close();
    }
    record->setOrigin({1, 1, 0});
    record->close();
    auto& reference = add(samples, "block reference", new AcDbBlockReference({1, 2, 3}, block));
    reference.setScaleFactors(AcGeScale3d(2, -3, 1));
    reference.setRotation(0.6);
    auto& array = add(samples, "array of references", new AcDbMInsertBlock);
    array.setBlockTableRecord(block);
    array.setColumns(3);
    array.setRows(2);
    array.setColumnSpacing(5);
    array.setRowSpacing(6);
    auto& leader = add(samples, "leader", new AcDbLeader);
    for (const AcGePoint3d& vertex :
         {AcGePoint3d(0, 0, 3), AcGePoint3d(4, 4, 3), AcGePoint3d(8, 4, 3)})
        leader.appendVertex(vertex);
    leader.setDimensionStyle(database.dimstyle());
}

}  // namespace

std::vector<EntitySample> sampleEntities(AcDbDatabase& database, bool vertices) {
    Samples samples;
    addCurves(samples, vertices);
    addTexts(samples);
    addAreas(samples);
    addDimensions(samples, database);
    addFrames(samples);
    addReferences(samples, database);
    return samples;
}

}  // namespace sg::test
