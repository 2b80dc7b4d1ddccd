#include "host/model/core/memory_filers.h"
#include "host/model/curves/curve_fixture.h"
#include "host/model/curves/group_filer.h"
#include "host/model/curves/point.h"

namespace sg::test {
namespace {

class CurveFilingTest : public CurveTest {
  protected:
    static std::unique_ptr<AcDbEntity> emptyLike(const AcDbEntity& entity) {
        return std::unique_ptr<AcDbEntity>(AcDbEntity::cast(entity.isA()->create()));
    }
    // The groups of the curve's own classes; a layer has no name outside a database.
    static GroupFiler groupsOf(const AcDbEntity& entity, AcDb::FilerType type) {
        GroupFiler filer(type);
        EXPECT_EQ(entity.dxfOutFields(&filer), Acad::eOk);
        GroupFiler base(type);
        entity.AcDbEntity::dxfOutFields(&base);
        filer.groups.erase(filer.groups.begin(),
                           filer.groups.begin() + static_cast<std::ptrdiff_t>(base.groups.size()));
        return filer;
    }
    static void expectSameCurve(const AcDbCurve& a, const AcDbCurve& b) {
        ASSERT_EQ(a.isA(), b.isA());
        const double from = startParam(a);
        const double to = endParam(a);
        EXPECT_NEAR(startParam(b), from, 1e-12);
        EXPECT_NEAR(endParam(b), to, 1e-12 * (1 + to));
        for (int i = 0; i <= 10; ++i) {
            const double at = from + (to - from) * i / 10;
            EXPECT_LT(pointAt(a, at).distanceTo(pointAt(b, at)), 1e-9);
        }
    }
};

TEST_F(CurveFilingTest, MemoryKeepsEverything) {
    RandomCurves random(21);
    for (int kind = 0; kind < RandomCurves::kBoundedKinds; ++kind) {
        for (int round = 0; round < 30; ++round) {
            SCOPED_TRACE(RandomCurves::name(kind));
            const CurvePtr curve = random.make(kind);
            std::vector<uint8_t> bytes;
            model::MemoryWriter writer(bytes, AcDb::kCopyFiler, nullptr);
            ASSERT_EQ(curve->dwgOutFields(&writer), Acad::eOk);
            const auto copy = emptyLike(*curve);
            model::MemoryReader reader(bytes, AcDb::kCopyFiler, nullptr);
            ASSERT_EQ(copy->dwgInFields(&reader), Acad::eOk);
            EXPECT_TRUE(reader.rest().empty());
            expectSameCurve(*curve, *AcDbCurve::cast(copy.get()));
        }
    }
}

// Vertices of 2D and 3D polylines are groups of their own; all others come back whole, with markers
// and without, in a file's form and in entget's.
TEST_F(CurveFilingTest, GroupsBringTheCurveBack) {
    RandomCurves random(22);
    for (const int kind : {0, 1, 2, 3, 4, 5}) {
        for (int round = 0; round < 40; ++round) {
            SCOPED_TRACE(RandomCurves::name(kind));
            const CurvePtr curve = random.make(kind);
            GroupFiler filer =
                groupsOf(*curve, round % 2 == 0 ? AcDb::kFileFiler : AcDb::kBagFiler);
            if (round % 4 >= 2) filer.dropMarkers();
            const auto copy = emptyLike(*curve);
            ASSERT_EQ(copy->dxfInFields(&filer), Acad::eOk);
            EXPECT_TRUE(filer.atEndOfObject());
            expectSameCurve(*curve, *AcDbCurve::cast(copy.get()));
        }
    }
}

TEST_F(CurveFilingTest, GroupsStandInTheirOrder) {
    const AcGeVector3d up = AcGeVector3d::kZAxis;
    AcDbLine line({1, 2, 3}, {4, 5, 6});
    AcDbLine thick({1, 2, 3}, {4, 5, 6});
    thick.setThickness(2);
    thick.setNormal({0, 1, 0});
    const AcDbCircle circle({1, 2, 3}, up, 4);
    const AcDbArc arc({1, 2, 3}, 4, 1, 2);
    const AcDbEllipse ellipse({1, 2, 3}, up, {3, 0, 0}, 0.5);
    const AcDbPoint point({1, 2, 3});
    const AcDbRay ray({1, 2, 3}, {0, 1, 0});
    const AcDb2dPolyline polyline2d;
    const AcDb2dVertex vertex2d({1, 2, 0}, 0.5);
    const AcDb3dPolyline polyline3d;
    const AcDb3dPolylineVertex vertex3d({1, 2, 3});
    AcDbPolyline polyline;
    polyline.addVertexAt(0, {1, 2}, 0.5);
    polyline.addVertexAt(1, {3, 4}, 0, 1, 2);
    AcDbPolyline even;
    even.addVertexAt(0, {1, 2});
    even.addVertexAt(1, {3, 4});
    struct Case {
        const AcDbEntity* entity;
        const char* inFile;
        const char* inBag;
    };
    const Case cases[] = {
        {&line, "10 11", "10 11 210"},
        {&thick, "39 10 11 210", "39 10 11 210"},
        {&circle, "10 40", "10 40 210"},
        {&arc, "10 40 100 50 51", "10 40 210 100 50 51"},
        {&ellipse, "10 11 210 40 41 42", "10 11 210 40 41 42"},
        {&point, "10", "10 210 50"},
        {&ray, "10 11", "10 11"},
        {&polyline, "90 70 10 40 41 42 10 40 41", "90 70 38 39 10 40 41 42 91 10 40 41 42 91 210"},
        {&even, "90 70 43 10 10", "90 70 43 38 39 10 40 41 42 91 10 40 41 42 91 210"},
        {&polyline2d, "66 10", "66 10 70 40 41 210 71 72 73 74 75"},
        {&vertex2d, "100 10 42", "100 10 40 41 42 91 70 50 71 72 73 74"},
        {&polyline3d, "66 10 70", "66 10 70 40 41 210 71 72 73 74 75"},
        {&vertex3d, "100 10 70", "100 10 40 41 42 70 50 71 72 73 74"},
    };
    for (const Case& c : cases) {
        // Behind the marker of the class.
        const auto ownCodes = [&](AcDb::FilerType type) {
            return groupsOf(*c.entity, type).codes().substr(4);
        };
        EXPECT_EQ(ownCodes(AcDb::kFileFiler), c.inFile);
        EXPECT_EQ(ownCodes(AcDb::kBagFiler), c.inBag);
    }
}

TEST_F(CurveFilingTest, PlanarCurvesAreWrittenInTheirPlane) {
    // Seen against the world's y axis, x runs to the left of it.
    const AcDbCircle circle({1, 2, 3}, AcGeVector3d::kYAxis, 4);
    const GroupFiler filer = groupsOf(circle, AcDb::kFileFiler);
    const auto center = filer.value<AcGePoint3d>(10);
    EXPECT_EQ(text([&] {
                  AcGePoint3dArray one;
                  one.append(center);
                  return one;
              }()),
              "-1,3,2");
}

TEST_F(CurveFilingTest, GroupsMayComeInAnyOrderAndFillWhatIsThere) {
    AcDbArc arc({9, 9, 9}, 7, 1, 2);
    GroupFiler filer;
    filer.groups = {{51, 3.0},
                    {210, AcGePoint3d(0, 0, -1)},
                    {999, std::wstring(L"unknown")},
                    {10, AcGePoint3d(1, 2, 3)},
                    {40, 5.0}};
    filer.dropMarkers();
    ASSERT_EQ(arc.dxfInFields(&filer), Acad::eOk);
    EXPECT_EQ(arc.radius(), 5);
    EXPECT_EQ(arc.startAngle(), 1);
    EXPECT_EQ(arc.endAngle(), 3);
    EXPECT_NEAR(arc.center().x, -1, 1e-15);
    EXPECT_NEAR(arc.center().z, -3, 1e-15);
}

TEST_F(CurveFilingTest, ReadingStopsAtTheNextMarker) {
    AcDbLine line;
    GroupFiler filer;
    filer.groups = {{100, std::wstring(L"AcDbEntity")},
                    {100, std::wstring(L"AcDbLine")},
                    {10, AcGePoint3d(1, 2, 3)},
                    {100, std::wstring(L"AcDbOther")},
                    {10, AcGePoint3d(7, 7, 7)}};
    ASSERT_EQ(line.dxfInFields(&filer), Acad::eOk);
    EXPECT_EQ(line.startPoint().x, 1);
    EXPECT_TRUE(filer.atSubclassData(L"AcDbOther"));
}

TEST_F(CurveFilingTest, AConstantWidthIsThatOfAllVertices) {
    AcDbPolyline polyline;
    GroupFiler filer;
    filer.groups = {{43, 0.5}, {70, int64_t{1}},           {10, AcGePoint3d(0, 0, 0)},
                    {42, 1.0}, {10, AcGePoint3d(4, 0, 0)}, {10, AcGePoint3d(4, 4, 0)}};
    filer.dropMarkers();
    ASSERT_EQ(polyline.dxfInFields(&filer), Acad::eOk);
    EXPECT_EQ(polyline.numVerts(), 3U);
    EXPECT_TRUE(polyline.isClosed());
    double width = 0;
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 0.5);
    double bulge = 0;
    polyline.getBulgeAt(0, bulge);
    EXPECT_EQ(bulge, 1);
}

TEST_F(CurveFilingTest, WhatMakesNoCurveIsRefused) {
    AcDbSpline spline;
    GroupFiler filer;
    filer.groups = {{71, int64_t{3}}, {10, AcGePoint3d(0, 0, 0)}, {40, 1.0}};
    filer.dropMarkers();
    EXPECT_EQ(spline.dxfInFields(&filer), Acad::eInvalidInput);
    EXPECT_NE(filer.errorMessage(), L"");
    GroupFiler fit;
    fit.groups = {{71, int64_t{3}},
                  {74, int64_t{3}},
                  {11, AcGePoint3d(0, 0, 0)},
                  {11, AcGePoint3d(1, 1, 0)},
                  {11, AcGePoint3d(2, 0, 0)}};
    fit.dropMarkers();
    ASSERT_EQ(spline.dxfInFields(&fit), Acad::eOk);
    double parameter = 0;
    EXPECT_EQ(spline.getParamAtPoint({1, 1, 0}, parameter), Acad::eOk);
    AcDbEllipse ellipse;
    GroupFiler flat;
    flat.groups = {{11, AcGePoint3d(0, 0, 0)}};
    flat.dropMarkers();
    EXPECT_EQ(ellipse.dxfInFields(&flat), Acad::eInvalidInput);
    // A stream that ends too soon.
    AcDbPolyline polyline;
    polyline.addVertexAt(0, {1, 2});
    std::vector<uint8_t> bytes;
    model::MemoryWriter writer(bytes, AcDb::kCopyFiler, nullptr);
    polyline.dwgOutFields(&writer);
    for (size_t size = 0; size < bytes.size(); ++size) {
        model::MemoryReader reader({bytes.data(), size}, AcDb::kCopyFiler, nullptr);
        EXPECT_NE(polyline.dwgInFields(&reader), Acad::eOk) << size;
    }
}

TEST_F(CurveFilingTest, VertexFlagsTellTheKinds) {
    for (const auto type : {AcDb::k2dVertex, AcDb::k2dSplineCtlVertex, AcDb::k2dSplineFitVertex,
                            AcDb::k2dCurveFitVertex}) {
        AcDb2dVertex vertex({1, 2, 3}, 0.25, 1, 2, 0.5);
        vertex.setVertexType(type);
        vertex.useTangent();
        GroupFiler filer = groupsOf(vertex, AcDb::kFileFiler);
        AcDb2dVertex copy;
        ASSERT_EQ(copy.dxfInFields(&filer), Acad::eOk);
        EXPECT_EQ(copy.vertexType(), type);
        EXPECT_TRUE(copy.isTangentUsed());
        EXPECT_EQ(copy.tangent(), 0.5);
        EXPECT_EQ(copy.bulge(), 0.25);
        EXPECT_EQ(copy.startWidth(), 1);
        EXPECT_EQ(copy.endWidth(), 2);
        EXPECT_EQ(copy.position().z, 3);
    }
}

}  // namespace
}  // namespace sg::test
